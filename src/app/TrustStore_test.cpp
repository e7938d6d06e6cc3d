// SPDX-License-Identifier: Apache-2.0
#include "app/TrustStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "base/Sha256.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using Kind = TrustStore::Kind;

class TrustStoreTest : public testing::Test {
  protected:
    bool IsKept(Kind kind, const std::string& one) const {
        return TrustStore(directory / "state").Holds(kind, one);
    }
    void Add(const std::string& one) const { TrustStore(directory / "state").Add(Kind::kOwnText, one); }
    std::string File() const { return directory / "state/trusted"; }

    test::TempDir directory;
    const std::string digest = Sha256Hex("agreed");
};

TEST_F(TrustStoreTest, WhatWasAgreedToIsKnownInTheNextRun) {
    EXPECT_FALSE(IsKept(Kind::kExports, digest));
    TrustStore(directory / "state").Add(Kind::kExports, digest);
    EXPECT_TRUE(IsKept(Kind::kExports, digest));
    EXPECT_FALSE(IsKept(Kind::kSiteCommands, digest)) << "it was agreed to as something else";
    EXPECT_FALSE(IsKept(Kind::kExports, digest.substr(1)));
}

TEST_F(TrustStoreTest, TheFileAndItsDirectoryAreTheUsersAlone) {
    Add(digest);
    EXPECT_EQ(fs::status(File()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(directory / "state").permissions(), fs::perms::owner_all);
}

TEST_F(TrustStoreTest, ADigestIsWrittenOnce) {
    Add(digest);
    const auto size = fs::file_size(File());
    Add(digest);
    EXPECT_EQ(fs::file_size(File()), size);
}

TEST_F(TrustStoreTest, AFileThatOthersCanWriteOrALinkTellsNothing) {
    Add(digest);
    fs::permissions(File(), fs::perms::others_write, fs::perm_options::add);
    EXPECT_FALSE(IsKept(Kind::kOwnText, digest));
    fs::permissions(File(), fs::perms::others_write, fs::perm_options::remove);
    EXPECT_TRUE(IsKept(Kind::kOwnText, digest));
    fs::rename(File(), directory / "elsewhere");
    fs::create_symlink(directory / "elsewhere", File());
    EXPECT_FALSE(IsKept(Kind::kOwnText, digest));
    Add(Sha256Hex("more"));
    EXPECT_EQ(test::ReadFile(directory / "elsewhere"), "text " + digest + "\n");
}

TEST_F(TrustStoreTest, AFileOfAnotherUserTellsNothing) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file to another user";
    Add(digest);
    ASSERT_EQ(::chown(File().c_str(), 65534, 65534), 0);
    EXPECT_FALSE(IsKept(Kind::kOwnText, digest));
}

TEST_F(TrustStoreTest, WhereNothingCanBeKeptItHoldsForThisRun) {
    directory.Write("state", "no directory");
    TrustStore store(directory / "state");
    store.Add(Kind::kExports, digest);
    EXPECT_TRUE(store.Holds(Kind::kExports, digest));
    EXPECT_FALSE(IsKept(Kind::kExports, digest));
    TrustStore homeless("");
    homeless.Add(Kind::kExports, digest);
    EXPECT_TRUE(homeless.Holds(Kind::kExports, digest));
}

TEST_F(TrustStoreTest, ALineThatWasCutShortDoesNotSpoilTheNext) {
    directory.Write("state/trusted", "text 0123");
    fs::permissions(File(), fs::perms::owner_read | fs::perms::owner_write);
    Add(digest);
    EXPECT_TRUE(IsKept(Kind::kOwnText, digest));
}

TEST_F(TrustStoreTest, TheFileDoesNotGrowForEver) {
    std::string old;
    for (int i = 0; old.size() + 70 <= TrustStore::kLargestFile; ++i)
        old += "text " + Sha256Hex(std::to_string(i)) + "\n";
    directory.Write("state/trusted", old);
    fs::permissions(File(), fs::perms::owner_read | fs::perms::owner_write);
    const std::string oldest = old.substr(5, digest.size());
    const std::string youngest = old.substr(old.size() - 1 - digest.size(), digest.size());
    Add(digest);
    EXPECT_LT(fs::file_size(File()), TrustStore::kLargestFile * 6 / 10);
    EXPECT_TRUE(IsKept(Kind::kOwnText, digest));
    EXPECT_TRUE(IsKept(Kind::kOwnText, youngest));
    EXPECT_FALSE(IsKept(Kind::kOwnText, oldest));
}

}  // namespace
}  // namespace tavrin
