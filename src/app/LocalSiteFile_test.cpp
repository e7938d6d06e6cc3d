// SPDX-License-Identifier: Apache-2.0
// Whose site file in the current directory is read.
#include "app/LocalSiteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "base/ReadLimit.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr uid_t kOther = 65534;

class LocalSiteFileTest : public testing::Test {
  protected:
    LocalSiteFileTest() {
        fs::create_directories(Here());
        ::chmod(Here().c_str(), 0755);
        fs::current_path(Here());
    }
    ~LocalSiteFileTest() override { fs::current_path(m_before); }

    std::string Here() const { return directory / "here"; }
    std::string File() const { return Here() + "/tavrn.def"; }
    void Write(mode_t mode = 0644) const {
        directory.Write("here/tavrn.def", "maxhistory 5\n");
        ::chmod(File().c_str(), mode);
    }
    LocalSiteFile Read() const {
        return ReadLocalSiteFile("./tavrn.def", directory / "lib", directory / "home");
    }
    std::string Problem() const { return Read().problem; }

    test::TempDir directory;

  private:
    fs::path m_before = fs::current_path();
};

TEST_F(LocalSiteFileTest, TheUsersOwnIsRead) {
    Write();
    const LocalSiteFile file = Read();
    EXPECT_EQ(file.text, "maxhistory 5\n");
    EXPECT_EQ(file.path, File());
    EXPECT_EQ(file.problem, "");
    EXPECT_TRUE(file.isOther);
}

TEST_F(LocalSiteFileTest, OneThatIsNotThereIsNotTold) {
    EXPECT_EQ(Read().path, "");
    EXPECT_EQ(Problem(), "");
}

TEST_F(LocalSiteFileTest, OneThatOthersCanWriteIsNotRead) {
    for (const mode_t mode : {0646, 0666}) {
        Write(mode);
        EXPECT_EQ(Problem(), "it can be written by others");
        EXPECT_EQ(Read().text, "");
    }
}

TEST_F(LocalSiteFileTest, OneInADirectoryThatOthersCanWriteIsNotRead) {
    Write();
    for (const mode_t mode : {0757, 01777}) {
        ASSERT_EQ(::chmod(Here().c_str(), mode), 0);
        EXPECT_THAT(Problem(), HasSubstr("its directory " + Here() + " can be written by others"));
    }
}

TEST_F(LocalSiteFileTest, AGroupThatHasOthersInItCountsAsOthers) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file to any group";
    Write(0664);
    ASSERT_EQ(::chown(File().c_str(), 0, kOther), 0);
    EXPECT_EQ(Problem(), "it can be written by others");
    ASSERT_EQ(::chown(File().c_str(), 0, 0), 0);
    EXPECT_EQ(Problem(), "");
    ASSERT_EQ(::chmod(Here().c_str(), 0775), 0);
    ASSERT_EQ(::chown(Here().c_str(), 0, kOther), 0);
    EXPECT_EQ(Problem(), "its directory " + Here() + " can be written by others");
}

TEST_F(LocalSiteFileTest, OneOfAnotherUserIsNotRead) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file to another user";
    Write();
    ASSERT_EQ(::chown(File().c_str(), kOther, kOther), 0);
    EXPECT_EQ(Problem(), "it belongs to another user");
    ASSERT_EQ(::chown(File().c_str(), 0, 0), 0);
    ASSERT_EQ(::chown(Here().c_str(), kOther, kOther), 0);
    EXPECT_EQ(Problem(), "its directory " + Here() + " belongs to another user");
}

// What root has put there is no stranger's, and another user's still is.
TEST_F(LocalSiteFileTest, AnotherUserReadsWhatRootHasPutThereAndNotWhatAThirdHas) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can become another user";
    Write();
    ASSERT_EQ(::chmod(directory.Path().c_str(), 0755), 0);
    const auto problemForOther = [this] {
        const pid_t child = ::fork();
        if (child == 0) {
            const bool isOther = ::setgid(kOther) == 0 && ::setuid(kOther) == 0;
            const LocalSiteFile file = Read();
            ::_exit(!isOther ? 9 : file.text.empty() ? 1 : 0);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return WEXITSTATUS(status);
    };
    EXPECT_EQ(problemForOther(), 0);
    ASSERT_EQ(::chown(File().c_str(), kOther, kOther), 0);
    EXPECT_EQ(problemForOther(), 0) << "now it is the user's own";
    ASSERT_EQ(::chown(File().c_str(), 12345, 12345), 0);
    EXPECT_EQ(problemForOther(), 1);
}

TEST_F(LocalSiteFileTest, ALinkIsFollowedToAFileThatIsSafeWhereItLies) {
    directory.Write("site/shared.def", "maxhistory 7\n");
    ::chmod((directory / "site/shared.def").c_str(), 0644);
    ::chmod((directory / "site").c_str(), 0755);
    fs::create_symlink(directory / "site/shared.def", File());
    EXPECT_EQ(Problem(), "");
    EXPECT_EQ(Read().text, "maxhistory 7\n");
    ASSERT_EQ(::chmod((directory / "site").c_str(), 0777), 0);
    EXPECT_EQ(Problem(), "its directory " + (directory / "site") + " can be written by others");
    EXPECT_EQ(Read().text, "");
}

TEST_F(LocalSiteFileTest, OneThatIsKnownUnderAnotherNameIsReadWhereverItLies) {
    Write(0666);
    ::link(File().c_str(), (directory / "home").c_str());
    const LocalSiteFile file = Read();
    EXPECT_FALSE(file.isOther);
    EXPECT_EQ(file.text, "maxhistory 5\n");
}

TEST_F(LocalSiteFileTest, WhatIsNoFileOrTooLargeIsNotRead) {
    fs::create_directory(File());
    EXPECT_EQ(Problem(), "Is a directory");
    fs::remove(File());
    ASSERT_EQ(::mkfifo(File().c_str(), 0600), 0);
    EXPECT_EQ(Problem(), "Not a regular file");
    fs::remove(File());
    Write();
    SetReadLimit(5);
    EXPECT_EQ(Problem(), "larger than the 5 bytes that are read of a file (setting maxfilesize)");
    SetReadLimit(kDefaultReadLimit);
}

}  // namespace
}  // namespace tavrin
