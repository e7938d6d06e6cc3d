// SPDX-License-Identifier: Apache-2.0
#include "base/FileIo.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <random>

namespace tavrin {

namespace {

constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

}  // namespace

bool FailWith(std::string& error, int number) {
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

std::string RandomLetters(size_t count) {
    std::string letters(count, '\0');
    if (::getrandom(letters.data(), count, 0) != static_cast<ssize_t>(count)) {
        std::random_device device;
        for (char& letter : letters) letter = static_cast<char>(device() & 0xFFU);
    }
    for (char& letter : letters) letter = kLetters[static_cast<unsigned char>(letter) % kLetters.size()];
    return letters;
}

bool TryLock(const FileDescriptor& file) { return ::flock(file.Get(), LOCK_EX | LOCK_NB) == 0; }

bool LeadsTo(const std::string& path, const FileDescriptor& file) {
    struct stat there {};
    struct stat open {};
    return ::lstat(path.c_str(), &there) == 0 && ::fstat(file.Get(), &open) == 0 &&
           there.st_dev == open.st_dev && there.st_ino == open.st_ino;
}

FileDescriptor OpenOwnDirectory(const std::string& path) {
    FileDescriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!directory || ::fstat(directory.Get(), &status) != 0) return {};
    if (status.st_uid == ::geteuid()) return directory;
    errno = EPERM;
    return {};
}

}  // namespace tavrin
