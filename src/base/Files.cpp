// SPDX-License-Identifier: Apache-2.0
#include "base/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>

#include "base/FileDescriptor.h"
#include "base/Paths.h"
#include "base/ReadLimit.h"

namespace tavrin {

namespace {

bool Fail(std::string& error, int number) {
    error = std::strerror(number);
    return false;
}

bool WriteAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(file, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        text.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

// 0, or the error number: EFBIG where there is more than may be read.
int ReadAll(int file, size_t expected, std::string& text) {
    const uint64_t limit = ReadLimit();
    if (expected > limit) return EFBIG;
    text.resize(expected + 1);
    size_t used = 0;
    for (;;) {
        if (used > limit) return EFBIG;
        if (used == text.size()) text.resize(text.size() * 2);
        const ssize_t count = ::read(file, text.data() + used, text.size() - used);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        if (count == 0) break;
        used += static_cast<size_t>(count);
    }
    text.resize(used);
    return 0;
}

mode_t DefaultFileMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

bool IsLink(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// Writes, flushes and closes the file behind `file`; on failure `errno` tells why.
bool FillAndClose(FileDescriptor file, std::string_view text, mode_t mode) {
    if (!WriteAll(file.Get(), text) || ::fchmod(file.Get(), mode) != 0 || ::fsync(file.Get()) != 0)
        return false;
    return ::close(file.Release()) == 0;
}

}  // namespace

bool ReadWholeFile(const std::string& path, std::string& text, std::string& error) {
    text.clear();
    // Not blocking, so that opening a pipe without a writer does not wait for ever.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) return Fail(error, errno);
    return ReadOpenFile(file.Get(), text, error);
}

bool ReadOpenFile(int file, std::string& text, std::string& error) {
    text.clear();
    struct stat status {};
    if (::fstat(file, &status) != 0) return Fail(error, errno);
    if (S_ISDIR(status.st_mode)) return Fail(error, EISDIR);
    if (!S_ISREG(status.st_mode)) {
        error = "Not a regular file";
        return false;
    }
    int number = ENOMEM;
    try {
        number = ReadAll(file, static_cast<size_t>(status.st_size), text);
    } catch (const std::bad_alloc&) {
    }
    if (number == 0) return true;
    text = {};
    Fail(error, number);
    if (number == EFBIG) error = TooLarge();
    return false;
}

bool WriteWholeFile(const std::string& path, std::string_view text, std::string& error) {
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!file || !WriteAll(file.Get(), text)) return Fail(error, errno);
    if (::close(file.Release()) != 0) return Fail(error, errno);
    return true;
}

bool ReplaceFile(const std::string& path, std::string_view text, std::string& error) {
    std::string target = path;
    std::error_code ignored;
    if (const auto real = std::filesystem::canonical(path, ignored); !ignored) target = real.string();
    struct stat status {};
    const bool exists = ::stat(target.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) return Fail(error, EISDIR);
    if (exists && !S_ISREG(status.st_mode)) return WriteWholeFile(target, text, error);
    if (exists && ::access(target.c_str(), W_OK) != 0) return Fail(error, errno);

    const std::string directory = PathDir(target);
    std::string temporary = directory + "." + PathFile(target) + ".XXXXXX";
    FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file) return Fail(error, errno);
    const mode_t mode = exists ? (status.st_mode & 07777) : DefaultFileMode();
    if (!FillAndClose(std::move(file), text, mode) || ::rename(temporary.c_str(), target.c_str()) != 0) {
        const int number = errno;
        ::unlink(temporary.c_str());
        return Fail(error, number);
    }
    // The rename itself is made durable by flushing the directory; a failure here loses nothing.
    FileDescriptor parent(
        ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (parent) ::fsync(parent.Get());
    return true;
}

bool CanReplaceFile(const std::string& path, std::string& error) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) return Fail(error, EISDIR);
        if (::access(path.c_str(), W_OK) != 0) return Fail(error, errno);
        if (!S_ISREG(status.st_mode)) return true;
    }
    const std::string directory = PathDir(path);
    const std::string parent = directory.empty() ? "." : directory;
    if (PathFile(path).empty() || (PathExists(parent) && !IsDirectory(parent))) return Fail(error, ENOTDIR);
    return ::access(parent.c_str(), W_OK | X_OK) == 0 || Fail(error, errno);
}

int MakeDirectory(const std::string& path) { return ::mkdir(path.c_str(), 0777) == 0 ? 0 : errno; }

bool PathExists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

bool IsSameFile(const std::string& one, const std::string& other) {
    std::error_code missing;
    return std::filesystem::equivalent(one, other, missing);
}

bool IsDirectory(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool ListDirectory(const std::string& path, std::vector<DirEntry>& entries) {
    entries.clear();
    DIR* directory = ::opendir(path.c_str());
    if (directory == nullptr) return false;
    while (const dirent* entry = ::readdir(directory)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        const bool known = entry->d_type != DT_UNKNOWN && entry->d_type != DT_LNK;
        entries.push_back({name, known ? entry->d_type == DT_DIR : IsDirectory(JoinPath(path, name))});
    }
    ::closedir(directory);
    return true;
}

bool RemoveTree(const std::string& path, const std::function<void(const std::string&)>& log) {
    if (IsLink(path)) return ::unlink(path.c_str()) == 0;
    std::vector<DirEntry> entries;
    if (!ListDirectory(path, entries)) return true;
    bool removed = true;
    for (const DirEntry& entry : entries) {
        const std::string full = JoinPath(path, entry.name);
        struct stat status {};
        const bool isDirectory = ::lstat(full.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        if (!isDirectory) {
            ::unlink(full.c_str());
        } else if (entry.name.front() != '.') {
            removed = RemoveTree(full, log) && removed;
        }
    }
    if (::rmdir(path.c_str()) != 0) {
        log("unable to remove " + path);
        removed = false;
    }
    return removed;
}

bool CanRemoveTree(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return true;
    std::vector<DirEntry> entries;
    if (!ListDirectory(path, entries)) return true;
    if (!entries.empty() && ::access(path.c_str(), W_OK | X_OK) != 0) return false;
    for (const DirEntry& entry : entries) {
        const std::string full = JoinPath(path, entry.name);
        struct stat below {};
        if (::lstat(full.c_str(), &below) != 0 || !S_ISDIR(below.st_mode)) continue;
        // What is mounted there holds its place; what cannot be listed is left alone.
        if (entry.name.front() == '.' || below.st_dev != status.st_dev) return false;
        if (::access(full.c_str(), R_OK) != 0 || !CanRemoveTree(full)) return false;
    }
    return true;
}

bool MakeWritableDirectory(const std::string& path, std::string& error) {
    std::error_code code;
    std::filesystem::create_directories(path, code);
    if (code) {
        error = code.message();
        return false;
    }
    if (!IsDirectory(path)) return Fail(error, ENOTDIR);
    return ::access(path.c_str(), W_OK | X_OK) == 0 || Fail(error, errno);
}

bool CopyTree(const std::string& from, const std::string& to, std::string& error) {
    namespace fs = std::filesystem;
    std::error_code code;
    fs::create_directories(to, code);
    if (!code) {
        fs::copy(from, to,
                 fs::copy_options::recursive | fs::copy_options::overwrite_existing |
                     fs::copy_options::copy_symlinks,
                 code);
    }
    if (code) error = code.message();
    return !code;
}

}  // namespace tavrin
