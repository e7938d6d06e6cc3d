// SPDX-License-Identifier: Apache-2.0
#include "app/RecoveryDirectory.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "base/FileIo.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "base/ReplaceFile.h"
#include "text/Archive.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr std::string_view kCopy = ".tvn";
constexpr std::string_view kOrigin = ".origin";
constexpr std::string_view kLock = ".lock";
constexpr std::string_view kNamePrefix = "unsaved-";
constexpr size_t kRandomLength = 6;   // of the part of a name that mkostemps chooses
constexpr size_t kRandomLetters = 6;  // of a session's name, where mkstemp wants as many letters X
constexpr int kNameAttempts = 100;
constexpr off_t kLargestOrigin = 65536;  // bytes; far beyond any path
constexpr const char* kOriginKeyword = "tavrin-recovery";
constexpr const char* kOriginVersion = "1";

bool IsOwnFile(const std::string& path, struct stat& status) {
    return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
}

void RemoveOwnFile(const std::string& path) {
    struct stat status {};
    if (IsOwnFile(path, status)) ::unlink(path.c_str());
}

bool IsThere(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

bool IsRandomPart(std::string_view text) {
    return text.size() == kRandomLength && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
           });
}

// The session that a file belongs to, empty for none of ours. A file that was being replaced has a '.'
// before its name and a random part behind it.
std::string SessionOf(std::string_view file) {
    if (file.starts_with('.')) {
        const size_t last = file.rfind('.');
        if (!IsRandomPart(file.substr(last + 1))) return {};
        file = file.substr(1, last == 0 ? 0 : last - 1);
    }
    for (const std::string_view extension : {kCopy, kOrigin, kLock}) {
        if (!file.ends_with(extension)) continue;
        const std::string_view session = file.substr(0, file.size() - extension.size());
        const bool isOurs =
            session.starts_with(kNamePrefix) && IsRandomPart(session.substr(kNamePrefix.size()));
        return isOurs ? std::string(session) : std::string();
    }
    return {};
}

}  // namespace

bool RecoveryDirectory::Prepare(std::string& error) const {
    for (size_t end = m_path.find('/', 1);; end = m_path.find('/', end + 1)) {
        const std::string part = m_path.substr(0, end);
        if (::mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return FailWith(error, errno);
        if (end == std::string::npos) break;
    }
    if (!IsOwn()) {
        error = "Not a directory of the user's own";
        return false;
    }
    struct stat status {};
    if (::lstat(m_path.c_str(), &status) != 0) return FailWith(error, errno);
    if ((status.st_mode & 0777) == 0700 || ::chmod(m_path.c_str(), 0700) == 0) return true;
    return FailWith(error, errno);
}

bool RecoveryDirectory::IsOwn() const {
    struct stat status {};
    return ::lstat(m_path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

std::string RecoveryDirectory::PathOf(const std::string& session, std::string_view extension) const {
    return JoinPath(m_path, session).append(extension);
}

std::string RecoveryDirectory::CopyPath(const std::string& session) const { return PathOf(session, kCopy); }

bool RecoveryDirectory::Begin(std::string& session, FileDescriptor& lock, std::string& error) const {
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        std::string path = PathOf(std::string(kNamePrefix).append(kRandomLetters, 'X'), kLock);
        FileDescriptor file(::mkostemps(path.data(), static_cast<int>(kLock.size()), O_CLOEXEC));
        if (!file) return FailWith(error, errno);
        const std::string name = SessionOf(PathFile(path));
        if (!TryLock(file)) {
            // Another start may be taking it for a leftover, in this very moment.
            if (errno != EWOULDBLOCK) {
                const int number = errno;
                ::unlink(path.c_str());
                return FailWith(error, number);
            }
        } else if (IsHeld(name, file)) {
            if (!IsThere(PathOf(name, kCopy)) && !IsThere(PathOf(name, kOrigin))) {
                session = name;
                lock = std::move(file);
                return true;
            }
            ::unlink(path.c_str());
        }
    }
    error = "No free name";
    return false;
}

FileDescriptor RecoveryDirectory::Claim(const std::string& session) const {
    FileDescriptor lock(
        ::open(PathOf(session, kLock).c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    if (lock && TryLock(lock) && IsHeld(session, lock)) return lock;
    return {};
}

bool RecoveryDirectory::IsHeld(const std::string& session, const FileDescriptor& lock) const {
    struct stat status {};
    const std::string path = PathOf(session, kLock);
    return IsOwnFile(path, status) && LeadsTo(path, lock);
}

// What is replaced keeps its permissions: so a new file is made empty first, for the user alone.
bool RecoveryDirectory::WritePrivate(const std::string& path, std::string_view text,
                                     std::string& error) const {
    struct stat status {};
    const bool isNew = !IsThere(path);
    if (isNew) {
        const FileDescriptor file(
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (!file) return FailWith(error, errno);
    } else if (!IsOwnFile(path, status)) {
        error = "Not a file of the user's own";
        return false;
    }
    if (ReplaceFile(path, text, error)) return true;
    if (isNew) ::unlink(path.c_str());
    return false;
}

bool RecoveryDirectory::WriteCopy(const std::string& session, std::string_view text,
                                  std::string& error) const {
    return WritePrivate(PathOf(session, kCopy), text, error);
}

bool RecoveryDirectory::WriteOrigin(const std::string& session, const RecoveryOrigin& origin,
                                    std::string& error) const {
    std::string text = std::string(kOriginKeyword) + " " + kOriginVersion + "\n";
    text += "document " + QuoteString(origin.documentPath) + "\n";
    text += "saved " + std::to_string(origin.savedAt) + "\n";
    text += "cutshort " + std::to_string(origin.wasCutShort ? 1 : 0) + "\n";
    text += "failures " + std::to_string(origin.failures) + "\n";
    if (origin.held) text += "held " + std::to_string(*origin.held) + "\n";
    return WritePrivate(PathOf(session, kOrigin), text, error);
}

bool RecoveryDirectory::ReadOrigin(const std::string& session, RecoveryOrigin& origin) const {
    const std::string path = PathOf(session, kOrigin);
    struct stat status {};
    if (!IsOwnFile(path, status) || status.st_size > kLargestOrigin) return false;
    std::string error;
    auto archive = CArchive::Open(path, error);
    if (!archive) return false;
    std::string key;
    std::string value;
    if (!ReadToken(*archive, key) || !ReadToken(*archive, value) || key != kOriginKeyword ||
        value != kOriginVersion)
        return false;
    RecoveryOrigin read;
    while (ReadToken(*archive, key) && ReadToken(*archive, value)) {
        const long long number = std::strtoll(value.c_str(), nullptr, 10);
        if (key == "document") read.documentPath = value;
        if (key == "saved") read.savedAt = static_cast<std::time_t>(number);
        if (key == "cutshort") read.wasCutShort = number != 0;
        if (key == "held") read.held = std::strtoull(value.c_str(), nullptr, 10);
        if (key == "failures") read.failures = static_cast<int>(std::clamp(number, 0LL, 1000000LL));
    }
    const std::string& document = read.documentPath;
    const bool isPath = document.starts_with('/') && document.find('\0') == std::string::npos;
    if (!document.empty() && !isPath) return false;
    origin = read;
    return true;
}

bool RecoveryDirectory::HasCopy(const std::string& session, std::time_t& writtenAt) const {
    struct stat status {};
    const std::string path = PathOf(session, kCopy);
    if (!IsOwnFile(path, status) || status.st_size == 0) return false;
    writtenAt = status.st_mtime;
    return true;
}

std::map<std::string, std::vector<std::string>> RecoveryDirectory::Sessions() const {
    std::map<std::string, std::vector<std::string>> sessions;
    std::vector<DirEntry> entries;
    if (!IsOwn()) return sessions;
    ClearAbandonedSaves(m_path);
    if (!ListDirectory(m_path, entries)) return sessions;
    for (const DirEntry& entry : entries) {
        const std::string session = SessionOf(entry.name);
        const std::string path = JoinPath(m_path, entry.name);
        struct stat status {};
        if (session.empty() || !IsOwnFile(path, status)) continue;
        auto& halfWritten = sessions[session];
        if (entry.name.starts_with('.')) halfWritten.push_back(path);
    }
    return sessions;
}

void RecoveryDirectory::RemoveFiles(const std::string& session) const {
    RemoveOwnFile(PathOf(session, kCopy));
    RemoveOwnFile(PathOf(session, kOrigin));
}

void RecoveryDirectory::RemoveLock(const std::string& session) const {
    RemoveOwnFile(PathOf(session, kLock));
}

}  // namespace tavrin
