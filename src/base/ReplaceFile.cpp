// SPDX-License-Identifier: Apache-2.0
#include "base/ReplaceFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "base/FileAttributes.h"
#include "base/FileIo.h"
#include "base/Files.h"
#include "base/OverwriteFile.h"

namespace tavrin {

namespace {

constexpr std::string_view kAsidePrefix = ".tavrin-save-";  // of a file that is being written
constexpr size_t kAsideLetters = 8;
constexpr int kNameAttempts = 100;
constexpr int kMostLinks = 40;  // as the system has it
constexpr mode_t kNewFile = 0666;
constexpr mode_t kUsersAlone = 0600;

// With the separator; empty for a name in the current directory. Here '\' is a letter like any other.
std::string DirectoryOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

// From a link to what it names, which may be missing. False for links that go round in a circle.
bool FollowLinks(std::string& path) {
    for (int link = 0; link < kMostLinks; ++link) {
        std::error_code isNone;
        const std::string target = std::filesystem::read_symlink(path, isNone).string();
        if (isNone) return true;
        path = target.starts_with('/') ? target : DirectoryOf(path) + target;
    }
    return false;
}

// A new file in the directory, locked so that everybody sees that it is being written. The mode goes through
// the user's mask, or the directory's access list.
FileDescriptor MakeAside(const std::string& directory, mode_t mode, std::string& path) {
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        path = directory + std::string(kAsidePrefix) + RandomLetters(kAsideLetters);
        FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        if (!file && errno != EEXIST) return {};
        if (!file) continue;
        // Another program may be clearing up, and take it for a leftover in this very moment.
        const bool isOurs = TryLock(file) || errno != EWOULDBLOCK;
        if (isOurs && LeadsTo(path, file)) return file;
    }
    errno = EEXIST;
    return {};
}

// The rename itself is made durable by flushing the directory; a failure here loses nothing.
void FlushDirectory(const std::string& directory) {
    const FileDescriptor parent(
        ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (parent) ::fsync(parent.Get());
}

enum class Outcome { kReplaced, kFailed, kOnlyInPlace };

// Errors that say: not by another file.
bool ForbidsAnother(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY;
}

// `model` tells of the file that is there; null if there is none. On failure `errno` tells why.
Outcome ReplaceByAnother(const std::string& target, std::string_view text, const struct stat* model) {
    const std::string directory = DirectoryOf(target);
    std::string aside;
    // What was private is so from the first byte on.
    FileDescriptor file = MakeAside(directory, model == nullptr ? kNewFile : kUsersAlone, aside);
    if (!file) return model != nullptr && ForbidsAnother(errno) ? Outcome::kOnlyInPlace : Outcome::kFailed;
    Outcome outcome = Outcome::kFailed;
    if (model != nullptr && !TakeAttributes(file.Get(), target, *model)) {
        outcome = Outcome::kOnlyInPlace;
    } else if (WriteAll(file.Get(), text) && ::fsync(file.Get()) == 0) {
        if (::rename(aside.c_str(), target.c_str()) == 0) {
            FlushDirectory(directory);
            return Outcome::kReplaced;
        }
        if (model != nullptr && ForbidsAnother(errno)) outcome = Outcome::kOnlyInPlace;
    }
    const int number = errno;
    ::unlink(aside.c_str());
    errno = number;
    return outcome;
}

// Links do what the call cannot on file systems that do not know it.
bool RenameUnlessThere(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    if (::link(from.c_str(), to.c_str()) != 0) return false;
    ::unlink(from.c_str());
    return true;
}

bool IsAsideName(std::string_view name) {
    return name.starts_with(kAsidePrefix) && name.size() == kAsidePrefix.size() + kAsideLetters;
}

}  // namespace

bool ReplaceFile(const std::string& path, std::string_view text, std::string& error,
                 const PutAside& putAside) {
    std::string target = path;
    if (!FollowLinks(target)) return FailWith(error, ELOOP);
    struct stat status {};
    const bool isThere = ::stat(target.c_str(), &status) == 0;
    if (!isThere && errno != ENOENT) return FailWith(error, errno);
    if (isThere && S_ISDIR(status.st_mode)) return FailWith(error, EISDIR);
    if (isThere && !S_ISREG(status.st_mode)) return WriteWholeFile(target, text, error);
    if (isThere && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        return FailWith(error, errno);

    const bool hasOtherNames = isThere && status.st_nlink > 1;
    const Outcome outcome =
        hasOtherNames ? Outcome::kOnlyInPlace : ReplaceByAnother(target, text, isThere ? &status : nullptr);
    if (outcome == Outcome::kReplaced) return true;
    if (outcome == Outcome::kFailed) return FailWith(error, errno);
    return OverwriteFile(target, text, error, putAside);
}

int MakeNewFile(const std::string& path, const std::function<bool(int file)>& write) {
    const std::string directory = DirectoryOf(path);
    std::string aside;
    const FileDescriptor file = MakeAside(directory, kNewFile, aside);
    if (!file) return errno;
    if (write(file.Get()) && ::fsync(file.Get()) == 0 && RenameUnlessThere(aside, path)) {
        FlushDirectory(directory);
        return 0;
    }
    const int number = errno;
    ::unlink(aside.c_str());
    return number;
}

bool CanReplaceFile(const std::string& path, std::string& error) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) return FailWith(error, EISDIR);
        if (::access(path.c_str(), W_OK) != 0) return FailWith(error, errno);
        if (!S_ISREG(status.st_mode)) return true;
    }
    const std::string directory = DirectoryOf(path);
    const std::string parent = directory.empty() ? "." : directory;
    if (directory.size() == path.size() || (PathExists(parent) && !IsDirectory(parent)))
        return FailWith(error, ENOTDIR);
    return ::access(parent.c_str(), W_OK | X_OK) == 0 || FailWith(error, errno);
}

void ClearAbandonedSaves(const std::string& directory) {
    const std::string folder = directory.empty() ? "." : directory;
    std::vector<DirEntry> entries;
    if (!ListDirectory(folder, entries)) return;
    for (const DirEntry& entry : entries) {
        if (!IsAsideName(entry.name)) continue;
        const std::string path = folder + "/" + entry.name;
        const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat status {};
        if (!file || ::fstat(file.Get(), &status) != 0) continue;
        const bool isOwn = S_ISREG(status.st_mode) && status.st_uid == ::geteuid() && status.st_nlink == 1;
        if (isOwn && TryLock(file) && LeadsTo(path, file)) ::unlink(path.c_str());
    }
}

void ClearAbandonedSavesBeside(std::string path) {
    if (FollowLinks(path)) ClearAbandonedSaves(DirectoryOf(path));
}

}  // namespace tavrin
