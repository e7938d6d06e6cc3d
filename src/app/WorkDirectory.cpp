// SPDX-License-Identifier: Apache-2.0
#include "app/WorkDirectory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

#include "base/FileIo.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "render/LiveState.h"

namespace tavrin {

namespace {

constexpr std::string_view kPrefix = "tavrn.";
constexpr size_t kLetters = 8;
constexpr int kNameAttempts = 100;
constexpr mode_t kUsersAlone = 0700;
constexpr mode_t kRoot = 01777;  // less the user's mask; in a shared one nobody can rename what others made

bool IsLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsOfAnotherUser(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && status.st_uid != ::geteuid();
}

// As Make gives it.
bool IsName(std::string_view name) {
    if (!name.starts_with(kPrefix)) return false;
    const std::string_view rest = name.substr(kPrefix.size());
    const size_t dot = rest.find('.');
    if (dot == 0 || dot == std::string_view::npos) return false;
    const std::string_view process = rest.substr(0, dot);
    const std::string_view letters = rest.substr(dot + 1);
    return std::all_of(process.begin(), process.end(), IsDigit) && letters.size() == kLetters &&
           std::all_of(letters.begin(), letters.end(), IsLetterOrDigit);
}

// What Live keeps there has a name that no shader has, and that RemoveTree leaves in peace.
bool RemoveAll(const std::string& path, const std::function<void(const std::string&)>& log) {
    const bool isRemoved = RemoveTree(JoinPath(path, kLiveDirectory), log);
    return RemoveTree(path, log) && isRemoved;
}

}  // namespace

bool WorkDirectory::Make(const std::string& temporaryRoot) {
    ::mkdir(temporaryRoot.c_str(), kRoot);
    const std::string name = std::string(kPrefix) + std::to_string(::getpid()) + ".";
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        m_path = JoinPath(temporaryRoot, name + RandomLetters(kLetters));
        m_isOurs = MakeAndLock();
        if (m_isOurs || errno != EEXIST) break;
    }
    return m_isOurs;
}

// On failure `errno` tells why: EEXIST if another name may do.
bool WorkDirectory::MakeAndLock() {
    if (::mkdir(m_path.c_str(), kUsersAlone) != 0) return false;
    m_directory = OpenOwnDirectory(m_path);
    if (!m_directory) return false;
    // Another start may be clearing up, and take it for a leftover in this very moment.
    const bool isAlone = TryLock(m_directory) || errno != EWOULDBLOCK;
    if (isAlone && LeadsTo(m_path, m_directory)) return true;
    m_directory.Close();
    errno = EEXIST;
    return false;
}

void WorkDirectory::Restore() {
    if (m_isOurs && !LeadsTo(m_path, m_directory)) MakeAndLock();
}

bool WorkDirectory::Remove(const std::function<void(const std::string&)>& log) {
    return !m_isOurs || IsOfAnotherUser(m_path) || RemoveAll(m_path, log);
}

bool WorkDirectory::CanRemove() const { return !m_isOurs || CanRemoveTree(m_path, kLiveDirectory); }

void WorkDirectory::ClearAbandoned(const std::string& temporaryRoot) {
    std::vector<DirEntry> entries;
    if (!ListDirectory(temporaryRoot, entries)) return;
    for (const DirEntry& entry : entries) {
        if (!IsName(entry.name)) continue;
        const std::string path = JoinPath(temporaryRoot, entry.name);
        const FileDescriptor directory = OpenOwnDirectory(path);
        if (directory && TryLock(directory) && LeadsTo(path, directory))
            RemoveAll(path, [](const std::string&) {});
    }
}

}  // namespace tavrin
