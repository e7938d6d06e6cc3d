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
#include "base/FileIo.h"
#include "base/Paths.h"
#include "base/ReadLimit.h"

namespace tavrin {

namespace {

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

}  // namespace

bool ReadWholeFile(const std::string& path, std::string& text, std::string& error) {
    text.clear();
    // Not blocking, so that opening a pipe without a writer does not wait for ever.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) return FailWith(error, errno);
    return ReadOpenFile(file.Get(), text, error);
}

bool ReadOpenFile(int file, std::string& text, std::string& error) {
    text.clear();
    struct stat status {};
    if (::fstat(file, &status) != 0) return FailWith(error, errno);
    if (S_ISDIR(status.st_mode)) return FailWith(error, EISDIR);
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
    FailWith(error, number);
    if (number == EFBIG) error = TooLarge();
    return false;
}

bool WriteWholeFile(const std::string& path, std::string_view text, std::string& error) {
    FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!file || !WriteAll(file.Get(), text)) return FailWith(error, errno);
    if (::close(file.Release()) != 0) return FailWith(error, errno);
    return true;
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

bool CanRemoveTree(const std::string& path, std::string_view own) {
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
        const bool isLeft = entry.name.front() == '.' && entry.name != own;
        if (isLeft || below.st_dev != status.st_dev) return false;
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
    if (!IsDirectory(path)) return FailWith(error, ENOTDIR);
    return ::access(path.c_str(), W_OK | X_OK) == 0 || FailWith(error, errno);
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
