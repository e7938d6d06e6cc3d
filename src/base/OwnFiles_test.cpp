// SPDX-License-Identifier: Apache-2.0
// Files of the user's own directories, where others may have put something in the way.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "base/Files.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;

class WriteOwnFileTest : public testing::Test {
  protected:
    WriteOwnFileTest() { fs::create_directories(work + "/1"); }
    bool Write(const std::string& name) { return WriteOwnFile(work, name, "new", error); }

    test::TempDir directory;
    std::string work = directory / "work";
    std::string precious = directory.Write("precious", "as it was");
    std::string error;
};

TEST_F(WriteOwnFileTest, WritesAnewAndBelow) {
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(Write("file")) << error;
        EXPECT_TRUE(Write("1/file")) << error;
    }
    EXPECT_EQ(ReadFile(work + "/file"), "new");
    EXPECT_EQ(ReadFile(work + "/1/file"), "new");
}

TEST_F(WriteOwnFileTest, FollowsNoLink) {
    fs::create_symlink(precious, work + "/file");
    EXPECT_FALSE(Write("file"));
    EXPECT_EQ(error, std::strerror(ELOOP));
    fs::create_symlink(directory / "missing", work + "/dangling");
    EXPECT_FALSE(Write("dangling"));
    fs::create_directory_symlink(directory.Path(), work + "/2");
    EXPECT_FALSE(Write("2/precious"));
    fs::rename(work, directory / "elsewhere");
    fs::create_directory_symlink(directory / "elsewhere", work);
    EXPECT_FALSE(Write("other"));
    EXPECT_EQ(ReadFile(precious), "as it was");
    EXPECT_FALSE(fs::exists(directory / "missing"));
    EXPECT_FALSE(fs::exists(directory / "elsewhere/other"));
}

TEST_F(WriteOwnFileTest, WritesIntoNobodyElsesDirectory) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a directory to another";
    ASSERT_EQ(::chown(work.c_str(), 65534, 65534), 0);
    EXPECT_FALSE(Write("file"));
    EXPECT_EQ(error, std::strerror(EPERM));
    EXPECT_FALSE(fs::exists(work + "/file"));
}

TEST_F(WriteOwnFileTest, DoesNotWaitAtAPipe) {
    ASSERT_EQ(::mkfifo((work + "/file").c_str(), 0600), 0);
    EXPECT_FALSE(Write("file"));
}

}  // namespace
}  // namespace tavrin
