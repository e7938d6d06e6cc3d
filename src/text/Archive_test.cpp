// SPDX-License-Identifier: Apache-2.0
#include "text/Archive.h"

#include <gtest/gtest.h>

#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::TempDir;

TEST(Archive, BytesComeOneByOneAndThenTheEnd) {
    CArchive archive = ArchiveOf("a\xFF");
    EXPECT_EQ(archive.PeekByte(), 'a');
    EXPECT_EQ(archive.ReadByte(), 'a');
    EXPECT_EQ(archive.ReadByte(), 0xFF);
    EXPECT_EQ(archive.PeekByte(), -1);
    EXPECT_EQ(archive.ReadByte(), -1);
    EXPECT_EQ(archive.ReadByte(), -1);
}

TEST(Archive, ZeroBytesAreBytes) {
    CArchive archive = ArchiveOf(std::string_view("a\0b\n", 4));
    std::string_view line;
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_EQ(line, std::string_view("a\0b", 3));
}

TEST(Archive, LinesComeWithoutTheirLineEnds) {
    CArchive archive = ArchiveOf("unix\nother\r\n\nlast");
    std::string_view line;
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_EQ(line, "unix");
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_EQ(line, "other");
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_EQ(line, "");
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_EQ(line, "last");
    EXPECT_FALSE(archive.ReadLine(line));
}

TEST(Archive, ALineFeedAtTheEndOfTheFileBeginsNoFurtherLine) {
    CArchive archive = ArchiveOf("only\n");
    std::string_view line;
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_FALSE(archive.ReadLine(line));
}

TEST(Archive, OnlyTheLastCarriageReturnBelongsToTheLineEnd) {
    CArchive archive = ArchiveOf("a\rb\r\r\n");
    std::string_view line;
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_EQ(line, "a\rb\r");
}

TEST(Archive, ACarriageReturnWithoutALineFeedIsText) {
    CArchive archive = ArchiveOf("last\r");
    std::string_view line;
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_EQ(line, "last\r");
}

TEST(Archive, BytesAndLinesShareOnePosition) {
    CArchive archive = ArchiveOf("one two\nthree\n");
    archive.ReadByte();
    archive.Skip(3);
    EXPECT_EQ(archive.Rest(), "two\nthree\n");
    std::string_view line;
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_EQ(line, "two");
    EXPECT_EQ(archive.ReadByte(), 't');
}

TEST(Archive, SkippingToTheLineEndLeavesTheLineFeed) {
    CArchive archive = ArchiveOf("one\ntwo");
    archive.SkipToLineEnd();
    EXPECT_EQ(archive.ReadByte(), '\n');
    archive.SkipToLineEnd();
    EXPECT_EQ(archive.ReadByte(), -1);
}

TEST(Archive, RewindingBeginsAnew) {
    CArchive archive = ArchiveOf("one\ntwo\n");
    std::string_view line;
    archive.ReadLine(line);
    archive.ReadLine(line);
    archive.Rewind();
    EXPECT_EQ(archive.LineNumber(), 1);
    ASSERT_TRUE(archive.ReadLine(line));
    EXPECT_EQ(line, "one");
}

TEST(Archive, TheLineNumberCountsTheLineFeedsThatWereRead) {
    CArchive archive = ArchiveOf("one\r\n\r\nthree");
    EXPECT_EQ(archive.LineNumber(), 1);
    archive.SkipToLineEnd();
    EXPECT_EQ(archive.LineNumber(), 1);
    archive.ReadByte();
    EXPECT_EQ(archive.LineNumber(), 2);
    std::string_view line;
    archive.ReadLine(line);
    EXPECT_EQ(archive.LineNumber(), 3);
    archive.ReadLine(line);
    EXPECT_EQ(archive.LineNumber(), 3);
    archive.Rewind();
    archive.ReadLine(line);
    EXPECT_EQ(archive.LineNumber(), 2) << "counted from the beginning again";
    archive.ReadLine(line);
    EXPECT_EQ(archive.LineNumber(), 3);
}

TEST(Archive, AFileIsReadAsItStands) {
    const TempDir directory;
    const std::string text("head\r\n\0tail \xC3\xA4\n", 15);
    const std::string path = directory.Write("file.def", text);
    std::string error;
    auto archive = CArchive::Open(path, error);
    ASSERT_TRUE(archive) << error;
    EXPECT_EQ(archive->Path(), path);
    EXPECT_EQ(archive->Rest(), text);
}

TEST(Archive, AnEmptyFileOpensAndEndsAtOnce) {
    const TempDir directory;
    std::string error;
    auto archive = CArchive::Open(directory.Write("empty", ""), error);
    ASSERT_TRUE(archive);
    EXPECT_EQ(archive->LineNumber(), 1);
    EXPECT_EQ(archive->ReadByte(), -1);
}

TEST(Archive, AMissingFileSaysWhy) {
    const TempDir directory;
    std::string error;
    EXPECT_FALSE(CArchive::Open(directory / "absent", error));
    EXPECT_EQ(error, "No such file or directory");
}

TEST(Archive, ADirectoryIsNoFile) {
    const TempDir directory;
    std::string error;
    EXPECT_FALSE(CArchive::Open(directory.Path(), error));
    EXPECT_EQ(error, "Is a directory");
}

TEST(Archive, TheLineOfAnyPlaceIsKnownInAnyOrder) {
    const CArchive archive = ArchiveOf("a\nb\n\nc");
    EXPECT_EQ(archive.LineAt(2), 2);
    EXPECT_EQ(archive.LineAt(5), 4);
    EXPECT_EQ(archive.LineAt(archive.Text().size()), 4);
    EXPECT_EQ(archive.LineAt(0), 1);
    EXPECT_EQ(archive.LineAt(1), 1) << "a line feed belongs to the line that it ends";
}

}  // namespace
}  // namespace tavrin
