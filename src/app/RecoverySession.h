// SPDX-License-Identifier: Apache-2.0
// What one process has put aside of one document.
#pragma once

#include <string>

#include "app/RecoveryDirectory.h"
#include "base/FileDescriptor.h"

namespace tavrin {

// Holds a session of the directory "recovery" below the state directory, from the first copy on. Used by one
// thread at a time. A copy that was not discarded stays behind for the next start.
class RecoverySession {
  public:
    // Without a state directory nothing can be put aside.
    explicit RecoverySession(const std::string& stateDirectory);
    RecoverySession(const RecoverySession&) = delete;
    RecoverySession& operator=(const RecoverySession&) = delete;
    ~RecoverySession();

    // Puts the text aside with what it was taken of, at the present time, unless the copy holds the same
    // already. On failure an older copy stays, and `error` says why.
    bool Write(RecoveryOrigin origin, const std::string& text, std::string& error);
    void Discard();

    const RecoveryDirectory& Directory() const { return m_directory; }
    const std::string& Folder() const { return m_path; }
    // Empty until there was something to write.
    const std::string& Name() const { return m_name; }
    // The copy's; without one, the folder's.
    std::string CopyPath() const { return m_name.empty() ? m_path : m_directory.CopyPath(m_name); }

  private:
    bool Hold(std::string& error);

    std::string m_path;
    RecoveryDirectory m_directory;
    std::string m_name;
    FileDescriptor m_lock;
    bool m_hasCopy = false;
    RecoveryOrigin m_origin;  // of the copy
    size_t m_hash = 0;        // of what the copy holds
};

}  // namespace tavrin
