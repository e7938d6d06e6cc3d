// SPDX-License-Identifier: Apache-2.0
// Removing and copying directory trees.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/Files.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class RemoveTreeTest : public testing::Test {
  protected:
    bool Remove(const std::string& path) {
        return RemoveTree(path, [this](const std::string& line) { log.push_back(line); });
    }

    TempDir directory;
    std::string tree = directory / "tree";
    std::vector<std::string> log;
};

TEST_F(RemoveTreeTest, FilesAndDirectoriesGo) {
    directory.Write("tree/file", "x");
    directory.Write("tree/sub/deep/file", "x");
    fs::create_directory(directory / "tree/empty");
    EXPECT_TRUE(CanRemoveTree(tree));
    EXPECT_TRUE(fs::exists(directory / "tree/sub/deep/file"));
    EXPECT_TRUE(Remove(tree));
    EXPECT_FALSE(fs::exists(tree));
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(RemoveTreeTest, FilesThatBeginWithADotGo) {
    directory.Write("tree/.hidden", "x");
    EXPECT_TRUE(CanRemoveTree(tree));
    EXPECT_TRUE(Remove(tree));
    EXPECT_FALSE(fs::exists(tree));
}

TEST_F(RemoveTreeTest, DirectoriesThatBeginWithADotStayWithTheirParents) {
    const std::string kept = directory.Write("tree/sub/.keep/file", "kept");
    directory.Write("tree/sub/file", "x");
    directory.Write("tree/other/file", "x");
    EXPECT_FALSE(CanRemoveTree(tree));
    EXPECT_TRUE(fs::exists(directory / "tree/other/file"));
    EXPECT_FALSE(Remove(tree));
    EXPECT_EQ(ReadFile(kept), "kept");
    EXPECT_FALSE(fs::exists(directory / "tree/sub/file"));
    EXPECT_FALSE(fs::exists(directory / "tree/other"));
    EXPECT_THAT(log, ElementsAre("unable to remove " + tree + "/sub", "unable to remove " + tree));
}

TEST_F(RemoveTreeTest, TheTreeItselfMayBeginWithADot) {
    directory.Write(".tree/file", "x");
    EXPECT_TRUE(CanRemoveTree(directory / ".tree"));
    EXPECT_TRUE(Remove(directory / ".tree"));
    EXPECT_FALSE(fs::exists(directory / ".tree"));
}

TEST_F(RemoveTreeTest, LinksGoAndAreNotFollowed) {
    const std::string outside = directory.Write("outside/file", "kept");
    fs::create_directory(tree);
    fs::create_directory_symlink(directory / "outside", directory / "tree/directory");
    fs::create_symlink(outside, directory / "tree/file");
    fs::create_symlink("nowhere", directory / "tree/dangling");
    fs::create_directory_symlink(directory / "outside", directory / "tree/.hidden");
    EXPECT_TRUE(Remove(tree));
    EXPECT_FALSE(fs::exists(tree));
    EXPECT_EQ(ReadFile(outside), "kept");
}

TEST_F(RemoveTreeTest, ALinkInPlaceOfTheTreeIsNotFollowedEither) {
    const std::string outside = directory.Write("outside/file", "kept");
    fs::create_directory_symlink(directory / "outside", tree);
    EXPECT_TRUE(Remove(tree));
    EXPECT_EQ(ReadFile(outside), "kept");
    EXPECT_FALSE(fs::is_symlink(tree));
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(RemoveTreeTest, APathThatCannotBeListedIsLeftAlone) {
    EXPECT_TRUE(Remove(directory / "absent"));
    const std::string file = directory.Write("file", "kept");
    EXPECT_TRUE(Remove(file));
    EXPECT_EQ(ReadFile(file), "kept");
    EXPECT_THAT(log, IsEmpty());
}

TEST(CopyTree, CopiesFilesOfAllLevels) {
    const TempDir directory;
    directory.Write("from/file", "one");
    directory.Write("from/.hidden", "two");
    directory.Write("from/sub/deep/file", "three");
    std::string error;
    ASSERT_TRUE(CopyTree(directory / "from", directory / "missing/parents/to", error)) << error;
    EXPECT_EQ(ReadFile(directory / "missing/parents/to/file"), "one");
    EXPECT_EQ(ReadFile(directory / "missing/parents/to/.hidden"), "two");
    EXPECT_EQ(ReadFile(directory / "missing/parents/to/sub/deep/file"), "three");
    EXPECT_EQ(ReadFile(directory / "from/file"), "one");
}

TEST(CopyTree, ReplacesFilesAndKeepsTheOthers) {
    const TempDir directory;
    directory.Write("from/file", "new");
    directory.Write("to/file", "old and longer");
    directory.Write("to/other", "kept");
    std::string error;
    ASSERT_TRUE(CopyTree(directory / "from", directory / "to", error)) << error;
    EXPECT_EQ(ReadFile(directory / "to/file"), "new");
    EXPECT_EQ(ReadFile(directory / "to/other"), "kept");
}

TEST(CopyTree, SaysWhyItCannot) {
    const TempDir directory;
    std::string error;
    EXPECT_FALSE(CopyTree(directory / "absent", directory / "to", error));
    EXPECT_EQ(error, "No such file or directory");
    directory.Write("from/file", "x");
    directory.Write("blocked", "a file");
    error.clear();
    EXPECT_FALSE(CopyTree(directory / "from", directory / "blocked", error));
    EXPECT_NE(error, "");
    EXPECT_EQ(ReadFile(directory / "blocked"), "a file");
}

}  // namespace
}  // namespace tavrin
