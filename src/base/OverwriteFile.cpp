// SPDX-License-Identifier: Apache-2.0
#include "base/OverwriteFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/FileIo.h"

namespace tavrin {

namespace {

// All of it, from the beginning. On failure `errno` tells why.
bool ReadFrom(int file, std::string& text) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return false;
    text.resize(static_cast<size_t>(status.st_size));
    size_t used = 0;
    while (used < text.size()) {
        const ssize_t count = ::pread(file, text.data() + used, text.size() - used, static_cast<off_t>(used));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;
        used += static_cast<size_t>(count);
    }
    text.resize(used);
    return true;
}

bool IsFull(int error) { return error == ENOSPC || error == EDQUOT || error == EFBIG; }

// Takes the room for what is longer than before, where the file system can: a full disk is then met before
// anything is changed.
bool TakeRoom(int file, size_t before, size_t size) {
    if (size <= before || ::fallocate(file, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0 ||
        !IsFull(errno))
        return true;
    const int number = errno;
    [[maybe_unused]] const int given = ::ftruncate(file, static_cast<off_t>(before));
    errno = number;
    return false;
}

// Over what is there, which is then cut at `size`: what the old text has taken of the disk is not given back
// first.
bool WriteOver(int file, std::string_view text, size_t size) {
    return ::lseek(file, 0, SEEK_SET) == 0 && WriteAll(file, text) &&
           ::ftruncate(file, static_cast<off_t>(size)) == 0 && ::fsync(file) == 0;
}

// After a write that has come as far as the file stands. What it has not touched needs no room.
bool PutBack(int file, std::string_view before) {
    const off_t touched = ::lseek(file, 0, SEEK_CUR);
    return touched >= 0 && WriteOver(file, before.substr(0, static_cast<size_t>(touched)), before.size());
}

}  // namespace

bool OverwriteFile(const std::string& path, std::string_view text, std::string& error,
                   const PutAside& putAside) {
    const FileDescriptor file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    std::string before;
    if (!file || !ReadFrom(file.Get(), before)) return FailWith(error, errno);
    std::unique_ptr<SafeCopy> copy;
    if (putAside) {
        std::string reason;
        copy = putAside(reason);
        if (copy == nullptr) {
            error = "it can only be written in place, and no copy could be put in safety before: " + reason;
            return false;
        }
    }
    const bool hasRoom = TakeRoom(file.Get(), before.size(), text.size());
    if (hasRoom && WriteOver(file.Get(), text, text.size())) {
        if (copy != nullptr) copy->Remove();
        return true;
    }
    FailWith(error, errno);
    if (!hasRoom || PutBack(file.Get(), before)) {
        if (copy != nullptr) copy->Remove();
    } else if (copy != nullptr) {
        error += "; the file is damaged, and what was to be saved lies in " + copy->Path();
    }
    return false;
}

}  // namespace tavrin
