// SPDX-License-Identifier: Apache-2.0
// What a file keeps when it is saved again, and where no other file can take its place.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <functional>

#include "base/ReplaceFile.h"
#include "support/Disk.h"
#include "support/Processes.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::NamesIn;
using test::ReadFile;
using test::TempDir;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

constexpr uid_t kNobody = 65534;
constexpr const char* kNote = "user.note";
constexpr const char* kAccessList = "system.posix_acl_access";
constexpr const char* kDefaultList = "system.posix_acl_default";

struct stat StatusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status;
}

// Runs in a process of its own as a user without rights; whether it says true.
bool AsNobody(const std::function<bool()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        const bool changed = ::geteuid() != 0 || ::setresuid(kNobody, kNobody, kNobody) == 0;
        ::_exit(changed && work() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// An access list as the system stores it, by which besides the owner one more user may read and write.
std::string AccessList() {
    struct Entry {
        uint16_t tag;
        uint16_t permissions;
        uint32_t id;
    };
    constexpr uint32_t kVersion = 2;
    constexpr uint32_t kNoId = 0xFFFFFFFF;
    const Entry entries[] = {
        {0x01, 6, kNoId}, {0x02, 6, 12345}, {0x04, 4, kNoId}, {0x10, 6, kNoId}, {0x20, 0, kNoId}};
    std::string list(sizeof kVersion + sizeof entries, '\0');
    std::memcpy(list.data(), &kVersion, sizeof kVersion);
    std::memcpy(list.data() + sizeof kVersion, entries, sizeof entries);
    return list;
}

bool Put(const std::string& path, const char* name, const std::string& value) {
    return ::setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

std::string Get(const std::string& path, const char* name) {
    char value[256];
    const ssize_t size = ::getxattr(path.c_str(), name, value, sizeof value);
    return size < 0 ? std::strerror(errno) : std::string(value, static_cast<size_t>(size));
}

const std::string kNone = std::strerror(ENODATA);

// Remembers what happened to it.
struct Aside {
    std::vector<std::string> seen;  // what the file held when the copy was made
    bool removed = false;
    bool fails = false;

    PutAside Of(const std::string& path) {
        return [this, path](std::string& error) -> std::unique_ptr<SafeCopy> {
            seen.push_back(ReadFile(path));
            if (!fails) return std::make_unique<Copy>(*this);
            error = "no room";
            return nullptr;
        };
    }

  private:
    class Copy : public SafeCopy {
      public:
        explicit Copy(Aside& aside) : m_aside(aside) {}
        void Remove() override { m_aside.removed = true; }
        std::string Path() const override { return "/aside"; }

      private:
        Aside& m_aside;
    };
};

class ReplaceKeeps : public testing::Test {
  protected:
    ReplaceKeeps() { ::chmod(directory.Path().c_str(), 0777); }
    bool Replace(const std::string& path, const std::string& text = "new") {
        return ReplaceFile(path, text, error, aside.Of(path));
    }

    TempDir directory;
    std::string error;
    Aside aside;
};

TEST_F(ReplaceKeeps, OwnerAndGroup) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file to another";
    const std::string path = directory.Write("doc.tvn", "old");
    ASSERT_EQ(::chown(path.c_str(), 1234, 2345), 0);
    ASSERT_EQ(::chmod(path.c_str(), 02664), 0);
    ASSERT_TRUE(Replace(path)) << error;
    EXPECT_EQ(StatusOf(path).st_uid, 1234U);
    EXPECT_EQ(StatusOf(path).st_gid, 2345U);
    EXPECT_EQ(StatusOf(path).st_mode & 07777U, 02664U);
    EXPECT_EQ(ReadFile(path), "new");
    EXPECT_TRUE(aside.seen.empty()) << "another file takes its place";
}

TEST_F(ReplaceKeeps, ExtendedAttributes) {
    const std::string path = directory.Write("doc.tvn", "old");
    if (!Put(path, kNote, "kept")) GTEST_SKIP() << "no extended attributes here: " << std::strerror(errno);
    const ino_t before = StatusOf(path).st_ino;
    ASSERT_TRUE(Replace(path)) << error;
    EXPECT_EQ(Get(path, kNote), "kept");
    EXPECT_NE(StatusOf(path).st_ino, before);
}

TEST_F(ReplaceKeeps, AccessLists) {
    const std::string path = directory.Write("doc.tvn", "old");
    if (!Put(path, kAccessList, AccessList()))
        GTEST_SKIP() << "no access lists here: " << std::strerror(errno);
    const mode_t mode = StatusOf(path).st_mode;
    ASSERT_TRUE(Replace(path)) << error;
    EXPECT_EQ(Get(path, kAccessList), AccessList());
    EXPECT_EQ(StatusOf(path).st_mode, mode);
    EXPECT_TRUE(aside.seen.empty());
}

TEST_F(ReplaceKeeps, AFileWithoutAnAccessListHasNoneOfItsDirectorys) {
    const std::string path = directory.Write("doc.tvn", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    if (!Put(directory.Path(), kDefaultList, AccessList()))
        GTEST_SKIP() << "no access lists here: " << std::strerror(errno);
    ASSERT_TRUE(Replace(path)) << error;
    EXPECT_EQ(Get(path, kAccessList), kNone);
    EXPECT_EQ(StatusOf(path).st_mode & 07777U, 0640U);
    ASSERT_TRUE(Replace(directory / "new.tvn")) << error;
    EXPECT_EQ(Get(directory / "new.tvn", kAccessList), AccessList()) << "a new one has";
}

TEST_F(ReplaceKeeps, AllNamesOfAFile) {
    const std::string path = directory.Write("doc.tvn", "old text");
    fs::create_hard_link(path, directory / "other.tvn");
    ASSERT_TRUE(Replace(path)) << error;
    EXPECT_EQ(ReadFile(path), "new");
    EXPECT_EQ(ReadFile(directory / "other.tvn"), "new");
    EXPECT_EQ(StatusOf(path).st_nlink, 2U);
    EXPECT_THAT(aside.seen, ElementsAre("old text"));
    EXPECT_TRUE(aside.removed);
    EXPECT_THAT(NamesIn(directory.Path()), UnorderedElementsAre("doc.tvn", "other.tvn"));
}

TEST_F(ReplaceKeeps, WhatCannotBePutInSafetyIsNotWrittenInPlace) {
    const std::string path = directory.Write("doc.tvn", "old");
    fs::create_hard_link(path, directory / "other.tvn");
    aside.fails = true;
    EXPECT_FALSE(Replace(path));
    EXPECT_THAT(error, testing::AllOf(HasSubstr("in place"), HasSubstr("no room")));
    EXPECT_EQ(ReadFile(path), "old");
}

TEST_F(ReplaceKeeps, AFileInADirectoryThatLetsNobodyMakeFilesIsWrittenInPlace) {
    const std::string path = directory.Write("closed/doc.tvn", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(::chmod((directory / "closed").c_str(), 0555), 0);
    EXPECT_TRUE(AsNobody(
        [&] { return Replace(path) && aside.seen == std::vector<std::string>{"old"} && aside.removed; }));
    EXPECT_EQ(ReadFile(path), "new");
    EXPECT_THAT(NamesIn(directory / "closed"), ElementsAre("doc.tvn"));
    ::chmod((directory / "closed").c_str(), 0755);
}

TEST_F(ReplaceKeeps, AFileOfAnotherUserStaysTheirs) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root has two users to try it with";
    const std::string path = directory.Write("doc.tvn", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
    const ino_t before = StatusOf(path).st_ino;
    EXPECT_TRUE(AsNobody([&] { return Replace(path); }));
    EXPECT_EQ(ReadFile(path), "new");
    EXPECT_EQ(StatusOf(path).st_uid, 0U);
    EXPECT_EQ(StatusOf(path).st_ino, before);
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre("doc.tvn"));
}

TEST_F(ReplaceKeeps, NamesOfAnyLength) {
    for (const size_t length : {239U, 240U, 248U, 255U}) {
        const std::string path = directory / (std::string(length - 4, 'n') + ".tvn");
        ASSERT_TRUE(Replace(path, "first")) << length << ": " << error;
        ASSERT_TRUE(Replace(path, "second")) << length << ": " << error;
        EXPECT_EQ(ReadFile(path), "second");
    }
    EXPECT_FALSE(Replace(directory / (std::string(252, 'n') + ".tvn")));
    EXPECT_EQ(error, std::strerror(ENAMETOOLONG));
    EXPECT_EQ(NamesIn(directory.Path()).size(), 4U);
}

TEST_F(ReplaceKeeps, ABackslashInANameIsALetter) {
    ASSERT_TRUE(Replace(directory / "a\\b.tvn")) << error;
    EXPECT_THAT(NamesIn(directory.Path()), ElementsAre("a\\b.tvn"));
}

TEST_F(ReplaceKeeps, ALinkToAFileThatIsYetToCome) {
    fs::create_directory(directory / "real");
    fs::create_symlink("real/doc.tvn", directory / "inner.tvn");
    fs::create_symlink("inner.tvn", directory / "link.tvn");
    ASSERT_TRUE(Replace(directory / "link.tvn")) << error;
    EXPECT_EQ(fs::read_symlink(directory / "link.tvn"), "inner.tvn");
    EXPECT_EQ(fs::read_symlink(directory / "inner.tvn"), "real/doc.tvn");
    EXPECT_EQ(ReadFile(directory / "real/doc.tvn"), "new");
    EXPECT_THAT(NamesIn(directory / "real"), ElementsAre("doc.tvn"));
}

TEST_F(ReplaceKeeps, ALinkThatLeadsNowhereStaysAsItIs) {
    fs::create_symlink("none/doc.tvn", directory / "link.tvn");
    EXPECT_FALSE(Replace(directory / "link.tvn"));
    EXPECT_EQ(error, std::strerror(ENOENT));
    fs::create_symlink("two.tvn", directory / "one.tvn");
    fs::create_symlink("one.tvn", directory / "two.tvn");
    EXPECT_FALSE(Replace(directory / "one.tvn"));
    EXPECT_EQ(error, std::strerror(ELOOP));
    EXPECT_TRUE(fs::is_symlink(directory / "link.tvn"));
    EXPECT_TRUE(fs::is_symlink(directory / "one.tvn"));
}

// The disk is full after each number of bytes.
class FullDisk : public ReplaceKeeps, public testing::WithParamInterface<bool> {};

TEST_P(FullDisk, LeavesTheOldFileOrTheNewOne) {
    const bool inPlace = GetParam();
    const std::string path = directory.Write("doc.tvn", "the old text");
    if (inPlace) fs::create_hard_link(path, directory / "other.tvn");
    const std::string text = "the new text, which is longer";
    int failed = 0;
    for (rlim_t room = 0; room <= text.size(); ++room) {
        bool replaced = false;
        {
            const test::FileSizeLimit limit(room);
            replaced = Replace(path, text);
        }
        EXPECT_EQ(ReadFile(path), replaced ? text : "the old text") << room;
        failed += replaced ? 0 : 1;
        EXPECT_EQ(replaced, room >= text.size()) << room;
        EXPECT_TRUE(replaced || error == std::strerror(EFBIG)) << room << ": " << error;
    }
    EXPECT_EQ(NamesIn(directory.Path()).size(), inPlace ? 2U : 1U);
    EXPECT_EQ(aside.seen.size(), inPlace ? text.size() + 1 : 0U);
}

INSTANTIATE_TEST_SUITE_P(Ways, FullDisk, testing::Values(false, true),
                         [](const auto& way) { return way.param ? "InPlace" : "ByAnother"; });

// A disk of 64 KB that is full for good, below `at` in a world of its own. What `work` says.
enum class OnSmallDisk { kTrue, kFalse, kNoDisk };
OnSmallDisk TryOnSmallDisk(const std::string& at, const std::function<bool()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        const bool mounted = ::unshare(CLONE_NEWNS) == 0 &&
                             ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                             ::mount("tmpfs", at.c_str(), "tmpfs", 0, "size=64k") == 0;
        ::_exit(!mounted ? 2 : work() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFEXITED(status)) return OnSmallDisk::kFalse;
    return WEXITSTATUS(status) == 0   ? OnSmallDisk::kTrue
           : WEXITSTATUS(status) == 2 ? OnSmallDisk::kNoDisk
                                      : OnSmallDisk::kFalse;
}

TEST_F(ReplaceKeeps, TheOldFileOnADiskThatIsReallyFull) {
    fs::create_directory(directory / "disk");
    for (const bool inPlace : {false, true}) {
        const auto outcome = TryOnSmallDisk(directory / "disk", [&] {
            const std::string path = directory.Write("disk/doc.tvn", std::string(30000, 'o'));
            if (inPlace) fs::create_hard_link(path, directory / "disk/other.tvn");
            const bool failed = !Replace(path, std::string(70000, 'n')) && error == std::strerror(ENOSPC) &&
                                ReadFile(path) == std::string(30000, 'o');
            const bool goesOn = Replace(path, std::string(20000, 'n'));
            return failed && goesOn && ReadFile(path) == std::string(20000, 'n') &&
                   NamesIn(directory / "disk").size() == (inPlace ? 2U : 1U);
        });
        if (outcome == OnSmallDisk::kNoDisk) GTEST_SKIP() << "no disk can be mounted here";
        EXPECT_EQ(outcome, OnSmallDisk::kTrue) << inPlace;
    }
}

// What killed saves leave.

class AbandonedSaves : public ReplaceKeeps {
  protected:
    // A process that saves a large file again and again.
    void StartSaving() {
        if (!m_child.Fork()) return;
        const std::string text(4'000'000, 'n');
        for (;;) ReplaceFile(directory / "doc.tvn", text, error);
    }
    // Stops it in the middle of a save; the file that it is writing.
    std::string StopInTheMiddle() {
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            ::kill(m_child.Id(), SIGSTOP);
            ::waitpid(m_child.Id(), nullptr, WUNTRACED);
            for (const std::string& name : NamesIn(directory.Path())) {
                // Locked as well, if it has got that far.
                const bool isBegun = name != "doc.tvn" && fs::file_size(directory / name) > 0;
                if (isBegun) return directory / name;
            }
            ::kill(m_child.Id(), SIGCONT);
            ::usleep(static_cast<useconds_t>(attempt));
        }
        return {};
    }
    void Kill() { m_child.Kill(); }

  private:
    static constexpr int kAttempts = 10000;
    test::ForkedChild m_child;
};

TEST_F(AbandonedSaves, GoOnceNobodyWritesThemAnyMore) {
    StartSaving();
    const std::string left = StopInTheMiddle();
    ASSERT_NE(left, "");
    ClearAbandonedSaves(directory.Path());
    EXPECT_TRUE(fs::exists(left)) << "its owner lives";
    Kill();
    fs::create_symlink(directory / "doc.tvn", directory / "link.tvn");
    ClearAbandonedSavesBeside(directory / "link.tvn");
    EXPECT_FALSE(fs::exists(left));
    directory.Write("doc.tvn", "");  // whatever became of it, it may go on
    EXPECT_THAT(NamesIn(directory.Path()), UnorderedElementsAre("doc.tvn", "link.tvn"));
}

TEST_F(AbandonedSaves, NothingElseIsTakenForOne) {
    StartSaving();
    const std::string left = StopInTheMiddle();
    ASSERT_NE(left, "");
    Kill();
    fs::remove(directory / "doc.tvn");
    const std::string name = fs::path(left).filename();
    fs::rename(left, directory / "kept");
    fs::create_symlink("kept", directory / name);
    for (const char* other : {".tavrin-save-", ".tavrin-save-abc", ".tavrin-save-abcdefghi",
                              ".doc.tvn.aB3dE6", "tavrin-save-abcdefgh", ".doc.tvn.swp"})
        directory.Write(other, "mine");
    fs::create_directory(directory / (name.substr(0, name.size() - 1) + "-"));
    const auto before = NamesIn(directory.Path());
    ClearAbandonedSaves(directory.Path());
    EXPECT_THAT(NamesIn(directory.Path()), testing::UnorderedElementsAreArray(before));

    if (::geteuid() != 0) return;
    fs::remove(directory / name);
    fs::rename(directory / "kept", directory / name);
    EXPECT_TRUE(AsNobody([&] {
        ClearAbandonedSaves(directory.Path());
        return true;
    }));
    EXPECT_TRUE(fs::exists(directory / name)) << "it is another user's";
}

}  // namespace
}  // namespace tavrin
