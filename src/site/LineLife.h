// SPDX-License-Identifier: Apache-2.0
// The life of a LineChild, from its start to its end; for the files of that class and of Commands alone. What
// it reads and writes stands in LineLifeStreams.cpp.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <mutex>
#include <optional>
#include <thread>

#include "base/FileDescriptor.h"
#include "base/MainThreadQueue.h"
#include "base/Process.h"
#include "site/ChildOutput.h"
#include "site/ChildWatch.h"
#include "site/LineChild.h"

namespace tavrin {

// Shared by who speaks to the child, by the commands, which join its thread, and by what is on the way to the
// main thread. The thread owns process and pipes, and is the only one to signal the process.
class LineLife : public std::enable_shared_from_this<LineLife> {
  public:
    // What it stands on; all of it outlives the thread.
    struct Ground {
        MainThreadQueue& queue;
        std::function<void(const std::string&)> log;  // main thread; heeds that the commands may be gone
        uint64_t outputLimit = 0;                     // of standard error that goes there
        std::string workDir;
        std::string killFile;  // its name there
        std::string tag;
    };
    LineLife(LineCall call, std::vector<std::string> environment, Ground ground);

    // Main thread. A child for which there is no thread has ended.
    void Begin(LineHands hands);
    void StopHearing();
    void Join();

    void Send(std::string_view line);
    void SetDeadline(std::optional<std::chrono::milliseconds> time, std::string why);
    enum class Wish { kStay, kGo, kGoNow };
    void SetWish(Wish wish);

    // Any thread: process and thread are at their end.
    bool IsFinished() const { return m_isFinished; }

  private:
    using Clock = std::chrono::steady_clock;
    // A stream of the child's, in lines.
    struct Stream {
        FileDescriptor pipe;
        std::string line;  // what has come of the last one
        bool IsOpen() const { return static_cast<bool>(pipe); }
    };

    void Live();
    bool Start(std::string& why);
    void GiveWay() const;
    bool OpenStreams(SpawnRequest& request, std::vector<FileDescriptor>& childEnds);
    // Each tells why the child is to be ended, if it is.
    std::optional<std::string> Attend();
    std::optional<std::string> HeedWishes();
    std::optional<std::string> Wait();
    std::optional<std::string> ReadAll(Stream& stream);
    std::optional<std::string> TakePiece(Stream& stream, std::string_view piece);
    void WriteWaiting();
    void TakeLine(const Stream& stream, std::string& line);
    void DrainStreams();
    int Bury();
    void Tell(LineEnd end);
    void PostLog(std::string text);
    void Arrived(size_t cost);
    void WakeUp() const;
    bool IsLate();
    int TimeToWait() const;
    bool MayRead() const;

    const LineCall m_call;
    const std::vector<std::string> m_environment;
    const Ground m_ground;
    FileDescriptor m_wake;
    std::thread m_worker;
    std::atomic<bool> m_isFinished = false;
    std::atomic<bool> m_isHeard = true;
    std::atomic<uint64_t> m_delivered = 0;     // lines, of m_posted
    std::atomic<size_t> m_underway = 0;        // bytes on the way to the main thread
    std::shared_ptr<const LineHands> m_hands;  // main thread

    std::mutex m_mutex;  // guards these
    Wish m_wish = Wish::kStay;
    std::string m_toSend;
    std::optional<Clock::time_point> m_deadline;
    std::string m_late;  // why that ends the child

    // Of the thread.
    pid_t m_process = -1;
    FileDescriptor m_exit;  // readable: the process has ended
    FileDescriptor m_input;
    Stream m_output;
    Stream m_errors;
    OutputBound m_bound;
    ChildWatch m_watch;
    std::string m_writing;
    bool m_isWatched = false;  // something is expected of it
    enum class Phase { kRuns, kAsked, kSignalled } m_phase = Phase::kRuns;
    Clock::time_point m_nextPhase = Clock::time_point::max();
    Clock::time_point m_until = Clock::time_point::max();  // the deadline, as seen last
    Clock::time_point m_lateFor;                           // one that has passed, ...
    uint64_t m_saidInTime = 0;                             // ... and how many lines had come until then
    uint64_t m_posted = 0;
};

}  // namespace tavrin
