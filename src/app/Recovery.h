// SPDX-License-Identifier: Apache-2.0
// Unsaved work, written aside so that a crash or a kill loses no more than the last moments of it.
#pragma once

#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "app/RecoverySession.h"
#include "app/RecoveryWriter.h"
#include "base/Environment.h"
#include "base/MainThreadQueue.h"

namespace tavrin {

class CTvDoc;
class DocumentCommands;
class DocumentSnapshot;
class Report;
class Settings;

// The user's directory for what programs keep between runs: "tavrin" below $XDG_STATE_HOME, or below
// $HOME/.local/state. Empty if neither variable holds an absolute path.
std::string StateDirectory(const Environment& environment);

// One for the process, called on the main thread. The copy lies in "recovery" below the state directory;
// the document's own file is never touched. Programs that run at once do not see each other's copies. What
// fails is logged and told, once until it works again or fails for another reason, and never alerted.
class Recovery {
  public:
    static constexpr int kDefaultInterval = 2;  // seconds
    static constexpr int kFailuresAllowed = 3;  // attempts at reading a copy before it is offered no more

    // The site's "autosave.interval" in seconds, at most a day; 0 turns writing aside off.
    static int IntervalOf(const Settings& settings);

    // Without a state directory nothing can be written aside.
    Recovery(const std::string& stateDirectory, Report& report, MainThreadQueue& queue);
    Recovery(const Recovery&) = delete;
    Recovery& operator=(const Recovery&) = delete;
    // Leaves a copy that was not discarded to the next start.
    ~Recovery();

    // Writes the document aside if it is modified and differs from what was written last; takes the copy
    // away if it is not modified. The document stays as it is. False if it should have been written and
    // could not be; an older copy then stays.
    bool Update(CTvDoc& document);
    // Has a modified document written aside on another thread, so that neither waits for the other. The text
    // is the snapshot's, which is brought up to date.
    void UpdateBehind(CTvDoc& document, DocumentSnapshot& snapshot);
    // Takes the copy away: at a clean end, after New, Open and Save.
    void Discard();
    // Called with a sentence for the user when unsaved work is no longer in safety.
    void OnFailure(std::function<void(const std::string&)> tell) { m_tellFailure = std::move(tell); }
    // The last attempt has failed.
    bool IsFailing() const { return !m_failure.empty(); }

    struct Found {
        std::string copyPath;
        std::string documentPath;  // of the document's own file; empty if it had none
        std::string title;         // as the document's
        std::time_t savedAt = 0;
        bool wasCutShort = false;              // the document's own file had not been read to its end
        bool documentIsNewer = false;          // the document's own file was written after the copy
        int failures = 0;                      // attempts at reading the copy so far
        std::optional<ContentMark> held = {};  // by the document's own file when it was last read or written
    };
    // The copies of processes that are gone, newest first. No other process finds them while this one
    // lives. Clears away what processes without a copy have left.
    std::vector<Found> FindLeftovers();
    // Removes a copy that FindLeftovers gave.
    void Remove(const Found& found);
    // Opens a copy that FindLeftovers gave. If it was read to its end it is removed, as soon as the document
    // is written aside anew. If not, the result is false and the copy stays: it is offered again by later
    // starts, until reading has failed kFailuresAllowed times.
    bool Restore(const Found& found, DocumentCommands& commands, CTvDoc& document);

  private:
    static RecoveryOrigin OriginOf(const CTvDoc& document);
    void Heed(const std::string& error);
    void HeedOutcome();
    // The name of a session that this process has claimed; empty for any other.
    std::string ClaimedSession(const Found& found) const;

    Report& m_report;
    RecoverySession m_session;  // the writer's while it writes
    const RecoveryDirectory& m_directory;
    std::map<std::string, FileDescriptor> m_claims;  // locks of what FindLeftovers gave, by session
    std::function<void(const std::string&)> m_tellFailure;
    std::string m_failure;  // as it was told last; empty while all goes well
    // What the writer posts must not reach an object that is gone.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
    RecoveryWriter m_writer;  // last: its thread ends before what it writes to
};

}  // namespace tavrin
