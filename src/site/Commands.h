// SPDX-License-Identifier: Apache-2.0
// External programs: commands that are waited for, and children whose output flows into the log.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "base/Environment.h"
#include "base/FileDescriptor.h"
#include "base/Listeners.h"
#include "base/MainThreadQueue.h"
#include "site/ChildLog.h"
#include "site/ChildOutput.h"
#include "site/ChildWatch.h"
#include "site/ProgramCall.h"

namespace tavrin {

class LineChild;
class LineLife;
class Report;
struct LineCall;
struct LineHands;

// What RunCommand tells of a process that it waited for.
struct ProcessInfo {
    int exitCode = 0;
};

// How a child of RunScript has ended. A plain value.
struct ChildEnd {
    int id = 0;  // as RunScript gave it
    int exitCode = 0;
    bool wasStopped = false;  // KillChildren asked it to end while it ran
    bool brokeLimit = false;  // and was ended for that
};

// Owned by the application object. Main thread only, but for InterruptCommand.
// Its children stand in CommandsChildren.cpp.
class Commands {
  public:
    // Output of a child is posted to the main thread in pieces of at most this many bytes.
    static constexpr size_t kPieceSize = 31;
    // Of what a child writes this much goes into the log, unless the site says otherwise.
    static constexpr uint64_t kMostOutput = 64ULL << 20;
    static constexpr uint64_t kAnyOutput = 1ULL << 62;

    Commands(Report& report, const Environment& environment, MainThreadQueue& queue);
    ~Commands();

    // The directory of the kill files: kill.1, kill.2 and so on. A child finds its own in TAVRN_KILLFILE,
    // and ends when the file appears.
    void SetWorkDir(const std::string& workDir) { m_workDir = workDir; }

    // Where the standard output of commands goes; -1, the start, lets them inherit ours.
    void SetCommandOutput(int descriptor) { m_commandOutput = descriptor; }

    // Tells, on the main thread, how long RunCommand has been waiting: at the start with 0, now and then
    // while it waits, and when the wait has ended with nothing.
    using WaitObserver = std::function<void(std::optional<std::chrono::milliseconds>)>;
    void OnWait(WaitObserver observer) { m_waitObserver = std::move(observer); }

    // How many bytes of a child's output, and of a file of errors, go into the log.
    void SetOutputLimit(uint64_t bytes) { m_outputLimit = bytes; }
    uint64_t OutputLimit() const { return m_outputLimit; }

    // Starts a command that the author of a script or a site wrote, split by blanks and double quotes,
    // without a shell. With `wait` it returns when the process has ended, its exit code in `processInfo`. A
    // command that cannot start is alerted as "command failed: COMMAND"; false.
    bool RunCommand(const std::string& command, bool wait, ProcessInfo* processInfo = nullptr);

    // The same, waiting, for what the program composes. A limit that it breaks ends it, and is alerted.
    bool RunCall(const ProgramCall& call, ProcessInfo* processInfo = nullptr);

    // Starts a program with these words, whatever they hold, and lets it go: it may outlive this one. In the
    // alert of one that cannot start it is called `shownAs`.
    bool StartProgram(const std::vector<std::string>& words, const std::string& shownAs);

    // RunCall in pieces, for who has several commands run beside each other (CommandQueue). Each process that
    // is started is to be collected or ended; both let it go.

    // Starts a program; its process, or -1, unreported, if it cannot start or the program is to end.
    int StartCommand(const std::vector<std::string>& words);
    // Returns when one of the processes has ended, of which there is one at least.
    void WaitForOne(const std::vector<int>& processes) const;
    // Waits for the end; the exit code.
    int CollectCommand(int process);
    // Ends the process and those of its group at once.
    void EndCommand(int process);

    // Any thread: the program is to end. No command is started any more, without a word; the process
    // groups of those that are waited for get this signal.
    void InterruptCommand(int signal);
    bool IsInterrupted() const;

    // Starts "PerlExec" with the words of the call and its output going to the log, and returns at once. The
    // child counts as running until its output has closed, also on the side of its own children. Where
    // children with names run at the same time, each one's lines stand behind its name. A limit that it
    // breaks ends it, and is alerted; so is a child for which there is no thread. Gives the child's number,
    // by which afterChild tells its end; 0 for one that has no thread, whose end is not told.
    int RunScript(ProgramCall call);
    int RunScript(const std::vector<std::string>& words, const std::string& name) {
        return RunScript(CallOf(words, name));
    }

    // Told on the main thread when a child's process has ended, behind all that it wrote.
    Listeners<const ChildEnd&> afterChild;

    // Starts a child that stays (LineChild.h), or one whose lines somebody reads. It is none of those that
    // the calls below tell of, but for EndChildren, which ends it like the others.
    std::unique_ptr<LineChild> StartLines(LineCall call, LineHands hands);

    // Leaves the kill file of every running child and forgets the children: stopping is their own act.
    void KillChildren();

    bool AnyChildRunning() const;

    // A process that StartLines has started, or its thread, is left.
    bool AnyLineChildLeft() const;

    // True while a child's process or its reader is left, forgotten ones included.
    bool AnyProcessLeft() const;

    // For the end of the program: kill files, then up to `grace` for the children to go by themselves, then
    // a signal that asks them, then, after `timeToHeed`, the end of their process groups. No child and no
    // thread is left afterwards.
    void EndChildren(std::chrono::milliseconds grace, std::chrono::milliseconds timeToHeed = kTimeToHeed);

  private:
    struct Child;
    struct Start;

    int Launch(const std::vector<std::string>& words, bool isWaitedFor);
    void FailToStart(const std::string& shownAs);
    void WaitUntilOneEnds(const std::vector<int>& processes, const std::function<void()>& eachStep,
                          std::chrono::milliseconds step) const;
    void Post(std::function<void()> work);
    void Work(Child& child, const Start& start);
    void RunUntilOutputCloses(Child& child, const Start& start);
    void ReadOutput(Child& child, int pipe);
    bool PostPiece(Child& child, OutputBound& bound, std::string_view piece);
    bool MayGoOn(Child& child);
    void ForgetRunning(const Child& child);
    int Reap(Child& child);
    void ReapUnwatched();
    void JoinFinished();
    bool WaitForWorkers(std::chrono::milliseconds time);
    void SignalChildren(int signal);
    void StopReading();
    void JoinFinishedLines();
    void EndLines(bool atOnce);
    std::string KillFile(int id) const;

    Report& m_report;
    const Environment& m_environment;
    MainThreadQueue& m_queue;
    std::string m_workDir;
    int m_commandOutput = -1;
    uint64_t m_outputLimit = kMostOutput;
    int m_lastTag = 0;
    WaitObserver m_waitObserver;

    mutable std::mutex m_waitedMutex;
    bool m_interrupted = false;
    std::map<int, std::string> m_waitedFor;  // processes that are to be collected, and their tags
    std::set<int> m_unwatched;               // processes started without waiting, to be reaped when they end

    mutable std::mutex m_childMutex;
    std::set<int> m_children;  // identifiers of running children
    bool m_ending = false;     // nothing may be started any more
    std::list<std::unique_ptr<Child>> m_workers;
    std::list<std::shared_ptr<LineLife>> m_lines;
    int m_lastId = 0;
    ChildLog m_childLog;
    OutputBrake m_brake;
    // Closed workers must not reach an object that is gone: posted work holds this.
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

}  // namespace tavrin
