// SPDX-License-Identifier: Apache-2.0
// Single files: reading, writing in place, asking about them. Replacing and trees have tests of their own.
#include "base/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>

#include "base/ReadLimit.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TempDir;
using testing::Pair;
using testing::UnorderedElementsAre;

TEST(ReadWholeFile, GivesEveryByte) {
    const TempDir directory;
    const std::string text("a\0b\r\n\xFF", 6);
    std::string read;
    std::string error;
    ASSERT_TRUE(ReadWholeFile(directory.Write("file", text), read, error)) << error;
    EXPECT_EQ(read, text);
}

TEST(ReadWholeFile, ReplacesWhatTheTextHeld) {
    const TempDir directory;
    std::string read = "stale";
    std::string error;
    ASSERT_TRUE(ReadWholeFile(directory.Write("empty", ""), read, error));
    EXPECT_EQ(read, "");
}

TEST(ReadWholeFile, ReadsFilesThatDoNotTellTheirSize) {
    std::string read;
    std::string error;
    ASSERT_TRUE(ReadWholeFile("/proc/self/environ", read, error)) << error;
    EXPECT_NE(read.find("PATH="), std::string::npos);
}

TEST(ReadWholeFile, ReadsLargeFilesWhole) {
    const TempDir directory;
    std::string text;
    for (int i = 0; i < 200000; ++i) text += std::to_string(i);
    std::string read;
    std::string error;
    ASSERT_TRUE(ReadWholeFile(directory.Write("large", text), read, error));
    EXPECT_TRUE(read == text);
}

TEST(ReadWholeFile, AFileBeyondTheLimitIsRefusedAndOneOfThatSizeIsRead) {
    const TempDir directory;
    const std::string path = directory.Write("large", std::string(1001, 'x'));
    std::string read;
    std::string error;
    SetReadLimit(1000);
    EXPECT_FALSE(ReadWholeFile(path, read, error));
    EXPECT_EQ(error, "larger than the 1000 bytes that are read of a file (setting maxfilesize)");
    EXPECT_EQ(read, "");
    SetReadLimit(1001);
    EXPECT_TRUE(ReadWholeFile(path, read, error));
    SetReadLimit(3);
    EXPECT_FALSE(ReadWholeFile("/proc/self/stat", read, error)) << "it does not tell its size";
    SetReadLimit(kDefaultReadLimit);
    EXPECT_EQ(TooLarge(), "larger than the 256 MB that are read of a file (setting maxfilesize)");
}

// A file may be larger than all memory without holding anything.
TEST(ReadWholeFile, AFileForWhichThereIsNoMemoryIsRefused) {
    const TempDir directory;
    const std::string path = directory.Write("huge", "");
    std::string read;
    std::string error;
    if (::truncate(path.c_str(), off_t{1} << 42) != 0) GTEST_SKIP() << "the disk has no files of this size";
    EXPECT_FALSE(ReadWholeFile(path, read, error));
    EXPECT_EQ(error, TooLarge());
#ifndef __SANITIZE_ADDRESS__
    SetReadLimit(uint64_t{1} << 50);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_AS, &before), 0);
    const rlimit small{rlim_t{1} << 36, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_AS, &small), 0);
    EXPECT_FALSE(ReadWholeFile(path, read, error));
    EXPECT_EQ(error, std::strerror(ENOMEM));
    ::setrlimit(RLIMIT_AS, &before);
    SetReadLimit(kDefaultReadLimit);
#endif
}

TEST(ReadWholeFile, AMissingFileSaysSoAndEmptiesTheText) {
    const TempDir directory;
    std::string read = "stale";
    std::string error;
    EXPECT_FALSE(ReadWholeFile(directory / "absent", read, error));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_EQ(read, "");
}

TEST(ReadWholeFile, ADirectoryIsNotReadable) {
    const TempDir directory;
    std::string read;
    std::string error;
    EXPECT_FALSE(ReadWholeFile(directory.Path(), read, error));
    EXPECT_EQ(error, "Is a directory");
}

TEST(ReadWholeFile, APipeWithoutAWriterIsRefusedAndNotWaitedFor) {
    const TempDir directory;
    const std::string path = directory / "pipe";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::string read;
    std::string error;
    EXPECT_FALSE(ReadWholeFile(path, read, error));
    EXPECT_EQ(error, "Not a regular file");
}

TEST(WriteWholeFile, MakesAFileOrReplacesItsText) {
    const TempDir directory;
    const std::string path = directory / "file";
    std::string error;
    ASSERT_TRUE(WriteWholeFile(path, std::string_view("long text\0", 10), error));
    EXPECT_EQ(ReadFile(path), std::string("long text\0", 10));
    ASSERT_TRUE(WriteWholeFile(path, "x", error));
    EXPECT_EQ(ReadFile(path), "x");
    ASSERT_TRUE(WriteWholeFile(path, "", error));
    EXPECT_EQ(ReadFile(path), "");
}

TEST(WriteWholeFile, SaysWhyItCannot) {
    const TempDir directory;
    std::string error;
    EXPECT_FALSE(WriteWholeFile(directory / "absent/file", "x", error));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_FALSE(WriteWholeFile(directory.Path(), "x", error));
    EXPECT_EQ(error, "Is a directory");
}

TEST(MakeDirectory, MakesOneLevel) {
    const TempDir directory;
    EXPECT_EQ(MakeDirectory(directory / "a"), 0);
    EXPECT_TRUE(IsDirectory(directory / "a"));
    EXPECT_EQ(MakeDirectory(directory / "b/c"), ENOENT);
    EXPECT_FALSE(PathExists(directory / "b"));
}

TEST(MakeDirectory, AnExistingPathIsAnError) {
    const TempDir directory;
    EXPECT_EQ(MakeDirectory(directory.Path()), EEXIST);
    EXPECT_EQ(MakeDirectory(directory.Write("file", "")), EEXIST);
}

TEST(PathExists, KnowsFilesAndDirectories) {
    const TempDir directory;
    const std::string file = directory.Write("file", "");
    EXPECT_TRUE(PathExists(file));
    EXPECT_TRUE(PathExists(directory.Path()));
    EXPECT_FALSE(PathExists(directory / "absent"));
    EXPECT_TRUE(IsDirectory(directory.Path()));
    EXPECT_FALSE(IsDirectory(file));
    EXPECT_FALSE(IsDirectory(directory / "absent"));
}

TEST(ListDirectory, NamesEveryEntryAndItsKind) {
    const TempDir directory;
    directory.Write("file", "");
    directory.Write(".hidden", "");
    directory.Write("sub/inner", "");
    fs::create_directory_symlink(directory / "sub", directory / "link");
    fs::create_symlink(directory / "absent", directory / "dangling");
    std::vector<DirEntry> entries = {{"stale", false}};
    ASSERT_TRUE(ListDirectory(directory.Path(), entries));
    std::map<std::string, bool> kinds;
    for (const DirEntry& entry : entries) kinds[entry.name] = entry.isDirectory;
    EXPECT_EQ(kinds.size(), entries.size());
    EXPECT_THAT(kinds, UnorderedElementsAre(Pair("file", false), Pair(".hidden", false), Pair("sub", true),
                                            Pair("link", true), Pair("dangling", false)));
}

TEST(ListDirectory, AFileOrAMissingPathCannotBeListed) {
    const TempDir directory;
    std::vector<DirEntry> entries = {{"stale", false}};
    EXPECT_FALSE(ListDirectory(directory / "absent", entries));
    EXPECT_TRUE(entries.empty());
    EXPECT_FALSE(ListDirectory(directory.Write("file", ""), entries));
}

}  // namespace
}  // namespace tavrin
