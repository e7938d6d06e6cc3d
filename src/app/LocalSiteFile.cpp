// SPDX-License-Identifier: Apache-2.0
#include "app/LocalSiteFile.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "base/FileDescriptor.h"
#include "base/Files.h"
#include "base/Paths.h"

namespace tavrin {

namespace {

constexpr size_t kNameBuffer = 65536;  // bytes for an entry of the lists of users and groups

// The group that systems make for each user, to whom alone it gives anything.
bool IsUsersOwnGroup(gid_t group) {
    std::array<char, kNameBuffer> userBuffer;
    std::array<char, kNameBuffer> groupBuffer;
    passwd user{};
    passwd* foundUser = nullptr;
    ::group entry{};
    ::group* foundGroup = nullptr;
    if (::getpwuid_r(::geteuid(), &user, userBuffer.data(), userBuffer.size(), &foundUser) != 0 ||
        foundUser == nullptr || user.pw_gid != group ||
        ::getgrgid_r(group, &entry, groupBuffer.data(), groupBuffer.size(), &foundGroup) != 0 ||
        foundGroup == nullptr || std::strcmp(entry.gr_name, user.pw_name) != 0)
        return false;
    for (char** member = entry.gr_mem; *member != nullptr; ++member) {
        if (std::strcmp(*member, user.pw_name) != 0) return false;
    }
    return true;
}

// An access list may let others in by what the mode shows as the group's.
bool HasAccessList(int file) { return ::fgetxattr(file, "system.posix_acl_access", nullptr, 0) > 0; }

// Why others may have a say in what is open as `file`; empty if they have none.
std::string OthersHand(int file) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return std::strerror(errno);
    if (status.st_uid != ::geteuid() && status.st_uid != 0) return "belongs to another user";
    if ((status.st_mode & S_IWOTH) != 0) return "can be written by others";
    const bool isGroupsToo = (status.st_mode & S_IWGRP) != 0 && status.st_gid != 0;
    if (isGroupsToo && (HasAccessList(file) || !IsUsersOwnGroup(status.st_gid)))
        return "can be written by others";
    return {};
}

std::string DirectorysProblem(const std::string& path) {
    const FileDescriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::string hand = directory ? OthersHand(directory.Get()) : std::strerror(errno);
    std::string full = FullPath(path);
    if (full.size() > 1 && full.back() == '/') full.pop_back();
    return hand.empty() ? hand : "its directory " + full + " " + hand;
}

// The directory that an open file lies in, behind all links.
std::string RealDirectory(int file) {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), error);
    return error ? std::string() : path.parent_path().string();
}

bool IsOpenFile(int file, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(file, &open) == 0 && ::stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

std::string ProblemOf(int file) {
    if (const std::string hand = OthersHand(file); !hand.empty()) return "it " + hand;
    if (const std::string problem = DirectorysProblem("."); !problem.empty()) return problem;
    const std::string real = RealDirectory(file);
    return real.empty() ? "where it lies cannot be found out" : DirectorysProblem(real);
}

}  // namespace

LocalSiteFile ReadLocalSiteFile(const std::string& name, const std::string& known,
                                const std::string& alsoKnown) {
    LocalSiteFile local;
    // Not blocking, so that opening a pipe without a writer does not wait for ever.
    const FileDescriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const int error = errno;
    if (!file && !PathExists(name)) return local;
    local.path = FullPath(name);
    if (!file) {
        local.problem = std::strerror(error);
        return local;
    }
    local.isOther = !IsOpenFile(file.Get(), known) && !IsOpenFile(file.Get(), alsoKnown);
    if (local.isOther) local.problem = ProblemOf(file.Get());
    if (local.problem.empty()) ReadOpenFile(file.Get(), local.text, local.problem);
    return local;
}

}  // namespace tavrin
