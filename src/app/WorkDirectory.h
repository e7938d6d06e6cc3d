// SPDX-License-Identifier: Apache-2.0
// The directory in which a process keeps what it hands to the library's scripts and they hand back.
#pragma once

#include <functional>
#include <string>

#include "base/FileDescriptor.h"

namespace tavrin {

// One for the process, owned by the application. "tavrn.PID.RANDOM" below the temporary root, which every
// user of the machine may write: so its name cannot be foreseen, nobody else can enter it, and one that is
// there already is never used. It is locked as long as the process lives, whatever its end; that tells a
// later start what may be cleared away.
class WorkDirectory {
  public:
    WorkDirectory() = default;
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;

    // Makes it, and the root if that is missing. Where it cannot be made the path tells where it would have
    // been, and nothing may be written there.
    bool Make(const std::string& temporaryRoot);
    const std::string& Path() const { return m_path; }
    // It has been made, and is to be removed.
    bool IsOurs() const { return m_isOurs; }

    // Makes it again where it has been cleared away. What somebody else has put there instead is not used.
    void Restore();
    // False if something of it stays, named to `log` as RemoveTree does.
    bool Remove(const std::function<void(const std::string&)>& log);
    // Whether that would leave nothing of it, as far as can be told without doing it.
    bool CanRemove() const;

    // Removes what this user's processes that are gone have left below the root.
    static void ClearAbandoned(const std::string& temporaryRoot);

  private:
    bool MakeAndLock();

    std::string m_path;
    FileDescriptor m_directory;  // holds the lock
    bool m_isOurs = false;
};

}  // namespace tavrin
