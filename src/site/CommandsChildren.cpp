// SPDX-License-Identifier: Apache-2.0
// The asynchronous children of Commands: each is started, read and reaped by a thread of its own.
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <system_error>

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Process.h"
#include "base/ProcessTag.h"
#include "site/CommandsChild.h"
#include "text/Report.h"

namespace tavrin {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPollStep{5};
constexpr int kCannotStart = 127;  // the exit code of what could not be started

// What a child gets as its standard streams, and our end of its output.
struct ChildPipes {
    bool areWhole = false;
    FileDescriptor childInput;  // at its end from the start
    FileDescriptor childOutput;
    FileDescriptor reader;

    static ChildPipes Open() {
        int input[2] = {-1, -1};
        int output[2] = {-1, -1};
        const bool piped = ::pipe2(input, O_CLOEXEC) == 0 && ::pipe2(output, O_CLOEXEC) == 0;
        FileDescriptor(input[1]).Close();
        return {piped, FileDescriptor(input[0]), FileDescriptor(output[1]), FileDescriptor(output[0])};
    }
};

}  // namespace

struct Commands::Start {
    std::string shownAs;
    SpawnRequest request;
};

std::string Commands::KillFile(int id) const { return JoinPath(m_workDir, FormatText("kill.%d", id)); }

int Commands::RunScript(ProgramCall call) {
    JoinFinished();
    const int id = ++m_lastId;
    const std::string tag = TagName(::getpid(), ++m_lastTag);
    auto child = std::make_unique<Child>(id, ChildWatch(call.name, tag, call.limits), tag);
    child->wake = FileDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    const std::string killFile = KillFile(id);
    ::unlink(killFile.c_str());

    Start start;
    start.shownAs = "PerlExec " + call.shownAs;
    start.request.words = std::move(call.words);
    start.request.words.insert(start.request.words.begin(), "PerlExec");
    Environment environment = m_environment;
    environment.Set("TAVRN_KILLFILE", killFile);
    start.request.environment = environment.ToList();
    {
        const std::lock_guard lock(m_childMutex);
        m_children.insert(id);
    }
    m_childLog.Begin(id, call.name);
    Child& worker = *child;
    m_workers.push_back(std::move(child));
    try {
        worker.thread = std::thread([this, &worker, start] { Work(worker, start); });
    } catch (const std::system_error& error) {
        m_report.Alert("unable to start a thread for \"%s\": %s", start.shownAs.c_str(),
                       error.code().message().c_str());
        m_childLog.End(id);
        ForgetRunning(worker);
        m_workers.pop_back();
        return 0;
    }
    return id;
}

void Commands::Post(std::function<void()> work) {
    m_queue.Post([alive = m_alive, work = std::move(work)] {
        if (*alive) work();
    });
}

// The whole life of a child, on a thread of its own. It counts as running until its output has closed.
void Commands::Work(Child& child, const Start& start) {
    RunUntilOutputCloses(child, start);
    Post([this, id = child.id] { m_childLog.End(id); });
    ForgetRunning(child);
    ChildEnd end{child.id, Reap(child)};
    end.brokeLimit = child.brokeLimit;
    {
        const std::lock_guard lock(m_childMutex);
        end.wasStopped = child.wasStopped;
    }
    Post([this, end] { afterChild.Tell(end); });
    child.finished = true;
}

void Commands::RunUntilOutputCloses(Child& child, const Start& start) {
    ChildPipes pipes = ChildPipes::Open();
    FileDescriptor tag = MakeTag(child.tag);
    SpawnRequest request = start.request;
    request.standardInput = pipes.childInput.Get();
    request.standardOutput = pipes.childOutput.Get();
    request.standardError = pipes.childOutput.Get();
    request.tag = tag.Get();
    bool hasStarted = false;
    {
        const std::lock_guard lock(m_childMutex);
        if (m_ending) return;  // without a word: nobody waits for it any more
        std::string error;
        if (pipes.areWhole && child.wake) child.pid = Spawn(request, error);
        hasStarted = child.pid >= 0;
    }
    // What is left open here would keep the output from closing.
    pipes.childInput.Close();
    pipes.childOutput.Close();
    tag.Close();
    if (hasStarted) return ReadOutput(child, pipes.reader.Get());
    Post([this, id = child.id, line = start.shownAs] {
        m_childLog.Append(id, FormatText("CreateProcess failed: \"%s\"", line.c_str()));
    });
}

void Commands::ForgetRunning(const Child& child) {
    const std::lock_guard lock(m_childMutex);
    m_children.erase(child.id);
}

// The exit code of the child's process, once it has ended.
int Commands::Reap(Child& child) {
    const int process = child.pid;  // nobody but this thread changes it
    if (process < 0) return kCannotStart;
    while (child.watch.IsNeeded() && !HasExited(process)) {
        MayGoOn(child);
        AwaitAnyExit({process}, ChildWatch::kStep);
    }
    AwaitExit(process);
    const std::lock_guard lock(m_childMutex);
    // What the child leaves behind goes with it; not yet reaped, it still holds the number of its group.
    if (m_ending) SignalChild(process, child.tag, SIGKILL);
    child.pid = -1;
    return WaitForEnd(process);
}

void Commands::ReadOutput(Child& child, int pipe) {
    ::fcntl(pipe, F_SETFL, O_NONBLOCK);
    OutputBound bound(m_outputLimit);
    const int step = child.watch.IsNeeded() ? static_cast<int>(ChildWatch::kStep.count()) : -1;
    char piece[kPieceSize];
    while (MayGoOn(child)) {
        const ssize_t count = ::read(pipe, piece, sizeof piece);
        if (count > 0) {
            if (!PostPiece(child, bound, {piece, static_cast<size_t>(count)})) break;
            continue;
        }
        if (count == 0 || (errno != EAGAIN && errno != EINTR)) break;
        pollfd waits[2] = {{pipe, POLLIN, 0}, {child.wake.Get(), POLLIN, 0}};
        ::poll(waits, 2, step);
        if ((waits[1].revents & POLLIN) != 0) break;
    }
    if (std::string rest = bound.Rest(); !rest.empty())
        Post([this, id = child.id, rest = std::move(rest)] { m_childLog.Append(id, rest); });
}

// Holds the child to its limits; false if it has been ended, so that nothing of it is worth waiting for.
bool Commands::MayGoOn(Child& child) {
    if (const auto told = child.watch.Look(child.pid)) {
        child.brokeLimit = true;
        Post([this, text = *told] { m_report.Alert("%s", text.c_str()); });
    }
    return !child.watch.IsOver();
}

// Waits while too much is on the way, and so does the child in the end.
bool Commands::PostPiece(Child& child, OutputBound& bound, std::string_view piece) {
    if (!bound.Passes(piece)) return true;
    while (!m_brake.Take(ChildWatch::kStep)) {
        if (!MayGoOn(child)) return false;
        if (!m_brake.IsOff()) continue;
        bound.LeaveOut(piece);
        return true;
    }
    Post([this, id = child.id, text = std::string(piece)] {
        m_brake.Give();
        m_childLog.Append(id, text);
    });
    return true;
}

void Commands::KillChildren() {
    const std::lock_guard lock(m_childMutex);
    std::string ignored;
    for (const auto& worker : m_workers) {
        if (!m_children.contains(worker->id)) continue;
        worker->wasStopped = true;
        WriteOwnFile(m_workDir, PathFile(KillFile(worker->id)), {}, ignored);
    }
    m_children.clear();
}

bool Commands::AnyChildRunning() const {
    const std::lock_guard lock(m_childMutex);
    return !m_children.empty();
}

bool Commands::AnyProcessLeft() const {
    for (const auto& worker : m_workers) {
        if (!worker->finished) return true;
    }
    return false;
}

void Commands::JoinFinished() {
    std::erase_if(m_workers, [](const std::unique_ptr<Child>& worker) {
        if (!worker->finished) return false;
        worker->thread.join();
        return true;
    });
}

bool Commands::WaitForWorkers(std::chrono::milliseconds time) {
    const auto until = Clock::now() + time;
    const auto anyLeft = [this] { return AnyProcessLeft() || AnyLineChildLeft(); };
    while (anyLeft() && Clock::now() < until) std::this_thread::sleep_for(kPollStep);
    JoinFinished();
    JoinFinishedLines();
    return m_workers.empty() && m_lines.empty();
}

void Commands::SignalChildren(int signal) {
    const std::lock_guard lock(m_childMutex);
    for (const auto& worker : m_workers) {
        if (worker->pid < 0) continue;
        SignalChild(worker->pid, worker->tag, signal);
        ::kill(worker->pid, signal);  // in case it has left its group
    }
}

void Commands::EndChildren(std::chrono::milliseconds grace, std::chrono::milliseconds timeToHeed) {
    {
        const std::lock_guard lock(m_childMutex);
        m_ending = true;
    }
    m_brake.SetOff(true);
    KillChildren();
    EndLines(false);
    bool areGone = WaitForWorkers(grace);
    if (!areGone) {
        SignalChildren(SIGTERM);
        areGone = WaitForWorkers(timeToHeed);
    }
    if (!areGone) {
        SignalChildren(SIGKILL);
        EndLines(true);
        StopReading();
    }
    ReapUnwatched();
    m_brake.SetOff(false);
    const std::lock_guard lock(m_childMutex);
    m_ending = false;
}

// Output that somebody outside a child's group still holds open is no longer waited for.
void Commands::StopReading() {
    for (const auto& worker : m_workers) {
        const uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = ::write(worker->wake.Get(), &one, sizeof one);
    }
    for (const auto& worker : m_workers) worker->thread.join();
    m_workers.clear();
}

}  // namespace tavrin
