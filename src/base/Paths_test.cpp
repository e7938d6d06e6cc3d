// SPDX-License-Identifier: Apache-2.0
#include "base/Paths.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tavrin {
namespace {

constexpr PathStyle kPosix = PathStyle::Posix;
constexpr PathStyle kWindows = PathStyle::Windows;

TEST(ResolvePath, AnEmptyPathIsTheCurrentDirectory) {
    EXPECT_EQ(ResolvePath("", "/base", kPosix), ".");
    EXPECT_EQ(ResolvePath("", "C:\\base", kWindows), ".");
}

TEST(ResolvePath, ARelativePathIsJoinedToTheBase) {
    EXPECT_EQ(ResolvePath("bin/filter", "/base", kPosix), "/base/bin/filter");
    EXPECT_EQ(ResolvePath("bin/filter", "C:\\base", kWindows), "C:\\base\\bin\\filter");
}

TEST(ResolvePath, ForeignSeparatorsBecomeTheStylesOwn) {
    EXPECT_EQ(ResolvePath("bin\\sub/filter", "\\base/dir", kPosix), "/base/dir/bin/sub/filter");
    EXPECT_EQ(ResolvePath("bin\\sub/filter", "C:/base", kWindows), "C:\\base\\bin\\sub\\filter");
    EXPECT_EQ(ResolvePath(".\\x", "/base", kPosix), "./x");
    EXPECT_EQ(ResolvePath("./x", "C:\\base", kWindows), ".\\x");
}

TEST(ResolvePath, APathThatBeginsWithADotIsKept) {
    for (const PathStyle style : {kPosix, kWindows}) {
        EXPECT_EQ(ResolvePath(".", "base", style), ".");
        EXPECT_EQ(ResolvePath("..", "base", style), "..");
        EXPECT_EQ(ResolvePath(".hidden", "base", style), ".hidden");
    }
}

TEST(ResolvePath, APathThatBeginsWithABackslashIsKept) {
    EXPECT_EQ(ResolvePath("\\usr\\x", "/base", kPosix), "/usr/x");
    EXPECT_EQ(ResolvePath("\\usr\\x", "C:\\base", kWindows), "\\usr\\x");
}

TEST(ResolvePath, TheRootAloneIsKept) {
    EXPECT_EQ(ResolvePath("/", "/base", kPosix), "/");
    EXPECT_EQ(ResolvePath("/", "C:\\base", kWindows), "\\");
}

TEST(ResolvePath, APathThatBeginsWithASlashIsAbsoluteInThePosixStyleAlone) {
    EXPECT_EQ(ResolvePath("/usr/x", "/base", kPosix), "/usr/x");
    EXPECT_EQ(ResolvePath("/usr/x", "C:\\base", kWindows), "C:\\base\\\\usr\\x");
}

TEST(ResolvePath, ADriveLetterIsKept) {
    EXPECT_EQ(ResolvePath("D:\\x", "C:\\base", kWindows), "D:\\x");
    EXPECT_EQ(ResolvePath("D:x", "C:\\base", kWindows), "D:x");
    EXPECT_EQ(ResolvePath("D:\\x", "/base", kPosix), "D:/x");
    EXPECT_EQ(ResolvePath("DD:x", "C:\\base", kWindows), "C:\\base\\DD:x");
}

TEST(ResolvePath, ASingleLetterIsRelative) { EXPECT_EQ(ResolvePath("x", "/base", kPosix), "/base/x"); }

TEST(ResolvePath, TheProgramUsesThePosixStyle) { EXPECT_EQ(ResolvePath("a\\b", "/base"), "/base/a/b"); }

TEST(PathParts, ThePathEndsBehindTheLastSeparatorOfEitherKind) {
    EXPECT_EQ(PathDir("/a/b/file.tvn"), "/a/b/");
    EXPECT_EQ(PathDir("C:\\a\\file.tvn"), "C:\\a\\");
    EXPECT_EQ(PathDir("a/b\\file"), "a/b\\");
    EXPECT_EQ(PathDir("a\\b/file"), "a\\b/");
    EXPECT_EQ(PathDir("/file"), "/");
    EXPECT_EQ(PathDir("dir/"), "dir/");
}

TEST(PathParts, AFileAloneHasNoDirectory) {
    EXPECT_EQ(PathDir("file.tvn"), "");
    EXPECT_EQ(PathDir(""), "");
    EXPECT_EQ(PathFile("file.tvn"), "file.tvn");
}

TEST(PathParts, ADriveIsADirectory) {
    EXPECT_EQ(PathDir("C:file"), "C:");
    EXPECT_EQ(PathFile("C:file"), "file");
}

TEST(PathParts, TheFileIsNameAndExtension) {
    EXPECT_EQ(PathFile("/a/b/file.tvn"), "file.tvn");
    EXPECT_EQ(PathFile("a\\file.tvn"), "file.tvn");
    EXPECT_EQ(PathFile("dir/"), "");
}

TEST(PathParts, TheBaseEndsBeforeTheLastDot) {
    EXPECT_EQ(PathBase("/a/b.c/file.tar.gz"), "file.tar");
    EXPECT_EQ(PathBase("a.b/file"), "file");
    EXPECT_EQ(PathBase("a.b\\file"), "file");
    EXPECT_EQ(PathBase("/a/.hidden"), "");
    EXPECT_EQ(PathBase("file."), "file");
}

TEST(JoinPath, PutsOneSeparatorBetween) {
    EXPECT_EQ(JoinPath("/a", "b", kPosix), "/a/b");
    EXPECT_EQ(JoinPath("C:\\a", "b", kWindows), "C:\\a\\b");
    EXPECT_EQ(JoinPath("/a/", "b"), "/a/b");
    EXPECT_EQ(JoinPath("a\\", "b", kPosix), "a\\b");
    EXPECT_EQ(JoinPath("", "b", kPosix), "/b");
}

TEST(FullPath, BeginsAtTheCurrentDirectory) {
    const std::string here = std::filesystem::current_path().string();
    EXPECT_EQ(FullPath("x"), here == "/" ? "/x" : here + "/x");
}

TEST(FullPath, TakesDotsOutAsText) {
    EXPECT_EQ(FullPath("/a/./b/../c//d"), "/a/c/d");
    EXPECT_EQ(FullPath("/../a"), "/a");
}

}  // namespace
}  // namespace tavrin
