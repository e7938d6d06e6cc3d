// SPDX-License-Identifier: Apache-2.0
// What is known of each operator of the library, read bit by bit while the program has nothing else to do.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "library/DefinitionSource.h"
#include "library/KnownOperator.h"

namespace tavrin {

class COpRegistry;
class CommandQueue;
struct Site;

// Owned by who shows the library; one is enough for a program. Names and menus are there at once. The files
// are read in steps, and then, where the library has declared its preprocessor pure, run through it, several
// at a time beside all else. Without that they are read as they stand, since a second run beside one that the
// user waits for may do harm: what only the preprocessor brings in is then not known. Nothing is reported, no
// file that a message could name is touched, and a definition that cannot be read costs nothing but itself.
// Main thread only.
class OperatorIndex {
  public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    struct Limits {
        // A run that takes longer is ended, and counts as failed.
        std::chrono::milliseconds run{10000};
        // Bytes of a text that is read within one step; of an operator with a longer one no more than name
        // and menu is known.
        size_t text = 256 * 1024;
        // Runs beside each other; 0 for half of the cores, since the user works meanwhile.
        size_t atATime = 0;
    };

    // All outlive it. It begins empty.
    OperatorIndex(const COpRegistry& registry, Site& site);
    OperatorIndex(const COpRegistry& registry, Site& site, const Limits& limits, Clock clock);
    OperatorIndex(const OperatorIndex&) = delete;
    OperatorIndex& operator=(const OperatorIndex&) = delete;
    // Ends what still runs.
    ~OperatorIndex();

    // After each scan of the registry. What is known of a file that is still there stays, until the file, or
    // one that its preprocessor names, turns out to be another; a definition that could not be read is tried
    // again.
    void Reload();

    enum class Pace {
        kBusy,     // the time was not enough: go on soon
        kWaiting,  // for processes: nothing can be done before one of them ends or takes too long
        kDone,     // until the next Reload
    };
    // Works for about so long.
    Pace Step(std::chrono::microseconds slice);

    // In the order of the scan. References hold until the next Reload.
    const std::vector<KnownOperator>& Operators() const { return m_operators; }
    // Grows with each change of one of them.
    uint64_t Revision() const { return m_revision; }
    // How often the list was made anew.
    uint64_t Reloads() const { return m_reloads; }
    // How many of them are not yet read to the end.
    size_t Unread() const { return m_operators.size() - m_settled; }

  private:
    struct Run {
        size_t place = 0;   // of the operator
        size_t number = 0;  // in the queue
        std::string outputPath;
        std::string errorPath;
        RunStart begun = 0;
        std::chrono::steady_clock::time_point started;
    };
    using Sources = std::unordered_map<std::string, std::shared_ptr<const DefinitionSource>>;

    void ListOperators();
    void KeepWhatIsKnown(std::vector<KnownOperator> former);
    const FileStamp& Stamp(const std::string& path);
    bool IsCurrent(const KnownOperator& known);
    bool StepOnce();
    void LookAtFile(size_t place);
    bool ReadOwnFile(KnownOperator& known, std::string& text);
    void StartRun(size_t place);
    bool FinishOneRun();
    void Finish(const Run& run);
    std::string LearnFromRun(const Run& run, KnownOperator& known);
    void Learn(KnownOperator& known, const std::string& text) const;
    bool ReadBounded(const std::string& path, std::string& text, std::string& problem) const;
    void EndRuns();
    void Changed(KnownOperator& known) { known.revision = ++m_revision; }

    const COpRegistry& m_registry;
    Site& m_site;
    const Limits m_limits;
    const Clock m_clock;
    std::vector<KnownOperator> m_operators;
    Sources m_sources;  // by the operator's file; of those that have been read
    uint64_t m_revision = 0;
    uint64_t m_reloads = 0;

    size_t m_nextFile = 0;        // operators before it have been looked at since the last Reload
    std::vector<size_t> m_toRun;  // places of those that the preprocessor is wanted for
    size_t m_nextRun = 0;         // of m_toRun
    size_t m_settled = 0;         // operators of which no more will come
    std::unique_ptr<CommandQueue> m_queue;
    std::vector<Run> m_running;
    std::unordered_map<std::string, FileStamp> m_stamps;  // as files looked since the last Reload
    FileStamp m_preprocessor;
};

}  // namespace tavrin
