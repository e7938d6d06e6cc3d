// SPDX-License-Identifier: Apache-2.0
// The files in which unsaved work is kept from one run to the next.
#pragma once

#include <ctime>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/FileDescriptor.h"
#include "document/DocumentFile.h"

namespace tavrin {

// What a copy was taken of.
struct RecoveryOrigin {
    std::string documentPath;  // absolute; empty if the document had no file
    std::time_t savedAt = 0;
    bool wasCutShort = false;              // that file had not been read to its end
    int failures = 0;                      // attempts at reading the copy so far
    std::optional<ContentMark> held = {};  // by that file, as DocumentFile has it
};

// A directory that only the user can enter. A process that has something to keep has a session there, three
// files of one random name:
//   unsaved-NAME.tvn     the copy, a plain document
//   unsaved-NAME.origin  what it was taken of
//   unsaved-NAME.lock    locked as long as the process lives, whatever its end
// Files of other names, links, and files of other users are neither read nor removed. Operations that fail
// say why in `error` where they have one.
class RecoveryDirectory {
  public:
    explicit RecoveryDirectory(std::string path) : m_path(std::move(path)) {}

    // Makes the directory and what is missing above it, for the user alone.
    bool Prepare(std::string& error) const;
    // Whether it is there and may be trusted: the user's own, and no link.
    bool IsOwn() const;

    // Makes a session of a new name and locks it.
    bool Begin(std::string& session, FileDescriptor& lock, std::string& error) const;
    // Locks a session whose process is gone; nothing if it lives.
    FileDescriptor Claim(const std::string& session) const;
    // False once the lock's file was taken away: it then keeps nobody out.
    bool IsHeld(const std::string& session, const FileDescriptor& lock) const;

    // Both leave the old file whole if they fail.
    bool WriteCopy(const std::string& session, std::string_view text, std::string& error) const;
    bool WriteOrigin(const std::string& session, const RecoveryOrigin& origin, std::string& error) const;
    // False if there is none that can be understood.
    bool ReadOrigin(const std::string& session, RecoveryOrigin& origin) const;

    std::string CopyPath(const std::string& session) const;
    // A copy that holds something; `writtenAt` is the time of its file.
    bool HasCopy(const std::string& session, std::time_t& writtenAt) const;
    // Every session, with the paths of files that a kill of an earlier release left half written; what later
    // ones have left so is cleared away.
    std::map<std::string, std::vector<std::string>> Sessions() const;
    // Copy and origin.
    void RemoveFiles(const std::string& session) const;
    // The lock's file, for a session that is at its end.
    void RemoveLock(const std::string& session) const;

  private:
    std::string PathOf(const std::string& session, std::string_view extension) const;
    bool WritePrivate(const std::string& path, std::string_view text, std::string& error) const;

    std::string m_path;
};

}  // namespace tavrin
