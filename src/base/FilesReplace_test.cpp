// SPDX-License-Identifier: Apache-2.0
// Replacing a file so that whatever fails the old one is whole.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>

#include "base/FileDescriptor.h"
#include "base/FileIo.h"
#include "base/Files.h"
#include "base/ReplaceFile.h"
#include "support/Disk.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::FileSizeLimit;
using test::ModeOf;
using test::NamesIn;
using test::ReadFile;
using test::TempDir;
using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::UnorderedElementsAre;

constexpr uid_t kNobody = 65534;

// In a process of its own, and without the rights of root: replaces the file and leaves by 0 if that
// fails, with the reason on standard error.
[[noreturn]] void ReplaceAsNobody(const std::string& path) {
    if (::geteuid() == 0 && ::setresuid(kNobody, kNobody, kNobody) != 0) ::_exit(2);
    std::string error;
    const bool replaced = ReplaceFile(path, "new", error);
    std::fprintf(stderr, "%s\n", error.c_str());
    ::_exit(replaced ? 1 : 0);
}

TEST(ReplaceFile, MakesANewFile) {
    const TempDir directory;
    const std::string path = directory / "doc.tvn";
    std::string error;
    const std::string text("a\0b\n", 4);
    ASSERT_TRUE(ReplaceFile(path, text, error)) << error;
    EXPECT_EQ(ReadFile(path), text);
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre("doc.tvn"));
}

TEST(ReplaceFile, ANewFileGetsThePermissionsThatTheUserChose) {
    const TempDir directory;
    const mode_t before = ::umask(027);
    std::string error;
    const bool replaced = ReplaceFile(directory / "doc.tvn", "x", error);
    const mode_t mask = ::umask(before);
    ASSERT_TRUE(replaced) << error;
    EXPECT_EQ(ModeOf(directory / "doc.tvn"), 0640U);
    EXPECT_EQ(mask, 027U);
}

TEST(ReplaceFile, ReplacesTheWholeText) {
    const TempDir directory;
    const std::string path = directory.Write("doc.tvn", "a much longer text than before");
    std::string error;
    ASSERT_TRUE(ReplaceFile(path, "new", error)) << error;
    EXPECT_EQ(ReadFile(path), "new");
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre("doc.tvn"));
}

TEST(ReplaceFile, KeepsThePermissions) {
    const TempDir directory;
    const std::string path = directory.Write("doc.tvn", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0604), 0);
    std::string error;
    ASSERT_TRUE(ReplaceFile(path, "new", error)) << error;
    EXPECT_EQ(ModeOf(path), 0604U);
}

TEST(ReplaceFile, WhoHasTheOldFileOpenKeepsReadingIt) {
    const TempDir directory;
    const std::string path = directory.Write("doc.tvn", "old");
    const FileDescriptor before(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::string error;
    ASSERT_TRUE(ReplaceFile(path, "new", error)) << error;
    char read[8] = {};
    EXPECT_EQ(::read(before.Get(), read, sizeof read), 3);
    EXPECT_STREQ(read, "old");
    EXPECT_EQ(ReadFile(path), "new");
}

TEST(ReplaceFile, FollowsASymbolicLinkToItsFile) {
    const TempDir directory;
    const std::string target = directory.Write("real/doc.tvn", "old");
    fs::create_symlink("real/doc.tvn", directory / "inner.tvn");
    fs::create_symlink("inner.tvn", directory / "link.tvn");
    std::string error;
    ASSERT_TRUE(ReplaceFile(directory / "link.tvn", "new", error)) << error;
    EXPECT_EQ(fs::read_symlink(directory / "link.tvn"), "inner.tvn");
    EXPECT_EQ(fs::read_symlink(directory / "inner.tvn"), "real/doc.tvn");
    EXPECT_FALSE(fs::is_symlink(target));
    EXPECT_EQ(ReadFile(target), "new");
    EXPECT_THAT(NamesIn(directory.Path()), UnorderedElementsAre("real", "link.tvn", "inner.tvn"));
}

TEST(ReplaceFile, AFileInTheCurrentDirectoryNeedsNoPath) {
    const TempDir directory;
    const fs::path before = fs::current_path();
    fs::current_path(directory.Path());
    std::string error;
    const bool replaced = ReplaceFile("doc.tvn", "new", error);
    fs::current_path(before);
    EXPECT_TRUE(replaced) << error;
    EXPECT_EQ(ReadFile(directory / "doc.tvn"), "new");
}

TEST(ReplaceFile, AFullDiskLeavesTheOldFileWhole) {
    const TempDir directory;
    const std::string path = directory.Write("doc.tvn", "old text");
    std::string error;
    bool replaced = true;
    {
        const FileSizeLimit limit(100);
        replaced = ReplaceFile(path, std::string(5000, 'n'), error);
    }
    EXPECT_FALSE(replaced);
    EXPECT_EQ(error, "File too large");
    EXPECT_EQ(ReadFile(path), "old text");
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre("doc.tvn"));
}

TEST(ReplaceFile, NoFileIsMadeWhereTheDirectoryDoesNotLetIt) {
    const TempDir directory;
    ASSERT_EQ(::chmod(directory.Path().c_str(), 0555), 0);
    EXPECT_EXIT(ReplaceAsNobody(directory / "doc.tvn"), ExitedWithCode(0), "Permission denied");
    ::chmod(directory.Path().c_str(), 0755);
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre());
}

TEST(ReplaceFile, AFileThatMayNotBeWrittenIsNotReplaced) {
    const TempDir directory;
    const std::string path = directory.Write("doc.tvn", "old text");
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(directory.Path().c_str(), 0777), 0);
    EXPECT_EXIT(ReplaceAsNobody(path), ExitedWithCode(0), "Permission denied");
    EXPECT_EQ(ReadFile(path), "old text");
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre("doc.tvn"));
}

TEST(ReplaceFile, ADirectoryIsAnError) {
    const TempDir directory;
    fs::create_directory(directory / "sub");
    std::string error;
    EXPECT_FALSE(ReplaceFile(directory / "sub", "new", error));
    EXPECT_EQ(error, "Is a directory");
    EXPECT_TRUE(fs::is_directory(directory / "sub"));
}

TEST(ReplaceFile, AMissingDirectoryIsAnError) {
    const TempDir directory;
    std::string error;
    EXPECT_FALSE(ReplaceFile(directory / "absent/doc.tvn", "new", error));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre());
}

// A named pipe stands in for devices: whatever goes wrong here, no file that others use is replaced.
TEST(ReplaceFile, ADeviceIsWrittenInPlace) {
    const TempDir directory;
    const std::string path = directory / "device";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const FileDescriptor reader(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(reader);
    std::string error;
    EXPECT_TRUE(ReplaceFile(path, "text", error)) << error;
    EXPECT_TRUE(fs::is_fifo(path));
    char written[16];
    ASSERT_EQ(::read(reader.Get(), written, sizeof written), 4);
    EXPECT_EQ(std::string(written, 4), "text");
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre("device"));
}

TEST(CanReplaceFile, FilesNewFilesAndDevicesCanBeWritten) {
    const TempDir directory;
    std::string error;
    EXPECT_TRUE(CanReplaceFile(directory / "new", error));
    EXPECT_TRUE(CanReplaceFile(directory.Write("old", "x"), error));
    EXPECT_TRUE(CanReplaceFile("new-in-the-current-directory", error));
    EXPECT_TRUE(CanReplaceFile("/dev/null", error));
    EXPECT_EQ(error, "");
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre("old")) << "nothing is made";
    EXPECT_EQ(ReadFile(directory / "old"), "x");
}

TEST(CanReplaceFile, SaysWhyNot) {
    const TempDir directory;
    directory.Write("file", "x");
    const auto errorOf = [&directory](const std::string& name) {
        std::string error;
        EXPECT_FALSE(CanReplaceFile(directory / name, error)) << name;
        return error;
    };
    EXPECT_EQ(errorOf(""), "Is a directory");
    EXPECT_EQ(errorOf("none/new"), "No such file or directory");
    EXPECT_EQ(errorOf("file/new"), "Not a directory");
    EXPECT_EQ(errorOf("none/"), "Not a directory");
}

TEST(MakeWritableDirectory, MakesWhatIsMissing) {
    const TempDir directory;
    std::string error;
    EXPECT_TRUE(MakeWritableDirectory(directory / "a/b", error));
    EXPECT_TRUE(MakeWritableDirectory(directory / "a/b", error));
    EXPECT_TRUE(IsDirectory(directory / "a/b"));
    directory.Write("file", "x");
    EXPECT_FALSE(MakeWritableDirectory(directory / "file/a", error));
    EXPECT_EQ(error, "Not a directory");
    EXPECT_FALSE(MakeWritableDirectory(directory / "file", error));
    EXPECT_EQ(error, "Not a directory");
}

TEST(WriteWholeFile, AFullDiskIsAnError) {
    const TempDir directory;
    std::string error;
    bool written = true;
    {
        const FileSizeLimit limit(100);
        written = WriteWholeFile(directory / "work", std::string(5000, 'n'), error);
    }
    EXPECT_FALSE(written);
    EXPECT_EQ(error, "File too large");
}

TEST(MakeNewFile, MakesAFileThatIsNotThere) {
    const TempDir directory;
    EXPECT_EQ(MakeNewFile(directory / "new", [](int file) { return WriteAll(file, "all of it"); }), 0);
    EXPECT_EQ(ReadFile(directory / "new"), "all of it");
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre("new"));
}

TEST(MakeNewFile, TheFileGetsItsNameWhenItIsWhole) {
    const TempDir directory;
    const std::string path = directory / "new";
    EXPECT_EQ(MakeNewFile(path,
                          [&](int file) {
                              EXPECT_FALSE(PathExists(path));
                              return WriteAll(file, "x");
                          }),
              0);
    EXPECT_TRUE(PathExists(path));
}

TEST(MakeNewFile, LeavesWhateverHasComeToStandThere) {
    const TempDir directory;
    const std::string path = directory.Write("file", "mine");
    fs::create_directory(directory / "directory");
    fs::create_symlink("nowhere", directory / "link");
    for (const char* name : {"file", "directory", "link"})
        EXPECT_EQ(MakeNewFile(directory / name, [](int file) { return WriteAll(file, "x"); }), EEXIST);
    EXPECT_EQ(ReadFile(path), "mine");
    EXPECT_THAT(NamesIn(directory.Path()), UnorderedElementsAre("file", "directory", "link"));
    // Also what comes while it is written.
    const std::string late = directory / "late";
    EXPECT_EQ(MakeNewFile(late,
                          [&](int file) {
                              directory.Write("late", "somebody's");
                              return WriteAll(file, "x");
                          }),
              EEXIST);
    EXPECT_EQ(ReadFile(late), "somebody's");
}

TEST(MakeNewFile, ADirectoryThatTakesNothingKeepsWhatItHas) {
    const TempDir directory;
    ASSERT_EQ(::chmod(directory.Path().c_str(), 0555), 0);
    const auto make = [&] {
        if (::geteuid() == 0 && ::setresuid(kNobody, kNobody, kNobody) != 0) ::_exit(2);
        const int error = MakeNewFile(directory / "new", [](int file) { return WriteAll(file, "x"); });
        ::_exit(error == EACCES ? 0 : 1);
    };
    EXPECT_EXIT(make(), ExitedWithCode(0), "");
    EXPECT_THAT(NamesIn(directory.Path()), testing::IsEmpty());
    ::chmod(directory.Path().c_str(), 0755);
}

TEST(MakeNewFile, OneThatCannotBeMadeLeavesNothing) {
    const TempDir directory;
    const auto fail = [](int) {
        errno = ENOSPC;
        return false;
    };
    EXPECT_EQ(MakeNewFile(directory / "new", fail), ENOSPC);
    {
        const FileSizeLimit limit(100);
        EXPECT_EQ(
            MakeNewFile(directory / "new", [](int file) { return WriteAll(file, std::string(1000, 'x')); }),
            EFBIG);
    }
    EXPECT_EQ(MakeNewFile(directory / "none/new", [](int) { return true; }), ENOENT);
    EXPECT_THAT(NamesIn(directory.Path()), testing::IsEmpty());
}

}  // namespace
}  // namespace tavrin
