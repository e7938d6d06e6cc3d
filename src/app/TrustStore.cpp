// SPDX-License-Identifier: Apache-2.0
#include "app/TrustStore.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/FileDescriptor.h"
#include "base/Files.h"
#include "base/Paths.h"

namespace tavrin {

namespace {

std::string LineOf(TrustStore::Kind kind, const std::string& digest) {
    const char* word = kind == TrustStore::Kind::kSiteCommands ? "site "
                       : kind == TrustStore::Kind::kExports    ? "export "
                                                               : "text ";
    return word + digest + "\n";
}

// With what is missing above it, for the user alone.
void MakePrivateDirectories(const std::string& path) {
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        if (::mkdir(path.substr(0, end).c_str(), 0700) != 0 && errno != EEXIST) return;
        if (end == std::string::npos) return;
    }
}

// Nothing if it is not there, or another user may have written it.
FileDescriptor OpenOwn(const std::string& path, int flags) {
    FileDescriptor file(::open(path.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat status {};
    const bool isOwn = file && ::fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode) &&
                       status.st_uid == ::geteuid() && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    if (!isOwn) file.Close();
    return file;
}

bool HasLine(std::string_view text, std::string_view line) {
    for (size_t at = text.find(line); at != std::string_view::npos; at = text.find(line, at + 1)) {
        if (at == 0 || text[at - 1] == '\n') return true;
    }
    return false;
}

// The younger half, from the beginning of a line on.
std::string_view YoungerHalf(std::string_view text) {
    const size_t lineEnd = text.find('\n', text.size() / 2);
    return lineEnd == std::string_view::npos ? std::string_view() : text.substr(lineEnd + 1);
}

// A write that is cut short leaves half a line, which is no digest of anything.
void WriteTo(int file, std::string_view text) {
    [[maybe_unused]] const ssize_t written = ::write(file, text.data(), text.size());
}

}  // namespace

std::string TrustStore::Path() const { return JoinPath(m_directory, "trusted"); }

bool TrustStore::Holds(Kind kind, const std::string& digest) const {
    const std::string line = LineOf(kind, digest);
    if (m_added.contains(line)) return true;
    if (m_directory.empty()) return false;
    std::string text;
    std::string error;
    const FileDescriptor file = OpenOwn(Path(), O_RDONLY);
    return file && ReadOpenFile(file.Get(), text, error) && HasLine(text, line);
}

void TrustStore::Add(Kind kind, const std::string& digest) {
    std::string line = LineOf(kind, digest);
    if (!m_added.insert(line).second || m_directory.empty()) return;
    MakePrivateDirectories(m_directory);
    const FileDescriptor file = OpenOwn(Path(), O_RDWR | O_CREAT | O_APPEND);
    std::string text;
    std::string error;
    if (!file || ::flock(file.Get(), LOCK_EX) != 0 || !ReadOpenFile(file.Get(), text, error)) return;
    if (HasLine(text, line)) return;
    if (text.size() + line.size() > kLargestFile) {
        const std::string younger(YoungerHalf(text));
        if (::ftruncate(file.Get(), 0) != 0) return;
        line = younger + line;
    } else if (!text.empty() && text.back() != '\n') {
        line = "\n" + line;
    }
    WriteTo(file.Get(), line);
}

}  // namespace tavrin
