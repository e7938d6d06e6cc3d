// SPDX-License-Identifier: Apache-2.0
#include "base/FileAttributes.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace tavrin {

namespace {

constexpr const char* kAccessList = "system.posix_acl_access";

// What a user has put there, as opposed to what the system has.
bool IsUsers(std::string_view name) { return name.starts_with("user.") || name == kAccessList; }

// What a call gives that tells the size it needs when it is given none. Nothing, with `errno` set, if it
// fails.
std::optional<std::string> Fetch(const std::function<ssize_t(char*, size_t)>& call) {
    for (;;) {
        const ssize_t size = call(nullptr, 0);
        if (size < 0) return std::nullopt;
        std::string data(static_cast<size_t>(size), '\0');
        if (size == 0) return data;
        const ssize_t count = call(data.data(), data.size());
        if (count < 0 && errno == ERANGE) continue;  // it has grown
        if (count < 0) return std::nullopt;
        data.resize(static_cast<size_t>(count));
        return data;
    }
}

// Where a file system has no attributes there are none.
bool ListNames(const std::function<ssize_t(char*, size_t)>& call, std::vector<std::string>& names) {
    const auto list = Fetch(call);
    if (!list) return errno == ENOTSUP || errno == ENOSYS;
    for (size_t at = 0; at < list->size();) {
        const size_t end = std::min(list->find('\0', at), list->size());
        names.push_back(list->substr(at, end - at));
        at = end + 1;
    }
    return true;
}

bool TakeOwners(int file, const struct stat& status) {
    struct stat now {};
    if (::fstat(file, &now) != 0) return false;
    return (now.st_uid == status.st_uid && now.st_gid == status.st_gid) ||
           ::fchown(file, status.st_uid, status.st_gid) == 0;
}

bool TakeExtended(int file, const std::string& path, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        const auto value = Fetch(
            [&](char* data, size_t size) { return ::getxattr(path.c_str(), name.c_str(), data, size); });
        const bool taken = value && ::fsetxattr(file, name.c_str(), value->data(), value->size(), 0) == 0;
        if (!taken && IsUsers(name)) return false;
    }
    return true;
}

// Such as an access list that a new file has from its directory.
bool DropOthers(int file, const std::vector<std::string>& wanted) {
    std::vector<std::string> names;
    if (!ListNames([file](char* data, size_t size) { return ::flistxattr(file, data, size); }, names))
        return false;
    return std::all_of(names.begin(), names.end(), [&](const std::string& name) {
        return !IsUsers(name) || std::find(wanted.begin(), wanted.end(), name) != wanted.end() ||
               ::fremovexattr(file, name.c_str()) == 0;
    });
}

}  // namespace

bool TakeAttributes(int file, const std::string& path, const struct stat& status) {
    constexpr mode_t kPermissions = 07777;
    std::vector<std::string> names;
    const auto list = [&path](char* data, size_t size) { return ::listxattr(path.c_str(), data, size); };
    // The permissions come after the owners, whose change takes some of them away, and before the access
    // list, with which the group's mean another thing.
    if (!ListNames(list, names) || !TakeOwners(file, status) || !DropOthers(file, names) ||
        ::fchmod(file, status.st_mode & kPermissions) != 0 || !TakeExtended(file, path, names))
        return false;
    struct stat now {};
    return ::fstat(file, &now) == 0 && (now.st_mode & kPermissions) == (status.st_mode & kPermissions);
}

}  // namespace tavrin
