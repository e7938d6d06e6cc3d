// SPDX-License-Identifier: Apache-2.0
// Writing and removing where another user may have had a hand in what stands in the way: every step goes from
// an open directory to the next, and never through a link.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/FileIo.h"
#include "base/Files.h"
#include "base/Paths.h"

namespace tavrin {

namespace {

using Log = std::function<void(const std::string&)>;

constexpr int kOpenDirectory = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool IsDirectoryIn(int directory, const std::string& name) {
    struct stat status {};
    return ::fstatat(directory, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

bool NamesIn(int directory, std::vector<std::string>& names) {
    FileDescriptor own(::openat(directory, ".", kOpenDirectory));
    if (!own) return false;
    DIR* list = ::fdopendir(own.Get());
    if (list == nullptr) return false;
    own.Release();  // the list's now
    while (const dirent* entry = ::readdir(list)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    ::closedir(list);
    return true;
}

// `path` is how the directory is called to the user.
bool RemoveDirectoryIn(int parent, const std::string& name, const std::string& path, const Log& log) {
    std::vector<std::string> names;
    bool removed = true;
    {
        const FileDescriptor directory(::openat(parent, name.c_str(), kOpenDirectory));
        if (!directory || !NamesIn(directory.Get(), names)) return true;
        for (const std::string& entry : names) {
            if (!IsDirectoryIn(directory.Get(), entry)) {
                ::unlinkat(directory.Get(), entry.c_str(), 0);
            } else if (entry.front() != '.') {
                removed = RemoveDirectoryIn(directory.Get(), entry, JoinPath(path, entry), log) && removed;
            }
        }
    }
    if (::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0) return removed;
    log("unable to remove " + path);
    return false;
}

}  // namespace

bool WriteOwnFile(const std::string& directory, const std::string& name, std::string_view text,
                  std::string& error) {
    FileDescriptor folder = OpenOwnDirectory(directory);
    std::string rest = name;
    for (size_t end = rest.find('/'); folder && end != std::string::npos; end = rest.find('/')) {
        folder = FileDescriptor(::openat(folder.Get(), rest.substr(0, end).c_str(), kOpenDirectory));
        rest.erase(0, end + 1);
    }
    if (!folder) return FailWith(error, errno);
    // Not blocking, so that opening a pipe without a reader does not wait for ever.
    FileDescriptor file(::openat(folder.Get(), rest.c_str(),
                                 O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666));
    if (!file || !WriteAll(file.Get(), text)) return FailWith(error, errno);
    return ::close(file.Release()) == 0 || FailWith(error, errno);
}

bool RemoveTree(const std::string& path, const Log& log) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) return ::unlink(path.c_str()) == 0;
    return RemoveDirectoryIn(AT_FDCWD, path, path, log);
}

}  // namespace tavrin
