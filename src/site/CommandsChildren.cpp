// SPDX-License-Identifier: Apache-2.0
// The asynchronous children of Commands: each is started, read and reaped by a thread of its own.
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Process.h"
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
    std::string commandLine;
    SpawnRequest request;
};

std::string Commands::KillFile(int id) const { return JoinPath(m_workDir, FormatText("kill.%d", id)); }

void Commands::RunScriptCommand(const std::string& command, const std::string& label) {
    const std::string commandLine = "PerlExec " + command;
    StartChild(SplitCommandLine(commandLine), commandLine, label);
}

void Commands::RunScript(const std::vector<std::string>& words, const std::string& label) {
    std::vector<std::string> all = {"PerlExec"};
    all.insert(all.end(), words.begin(), words.end());
    StartChild(all, JoinCommandLine(all), label);
}

void Commands::StartChild(std::vector<std::string> words, std::string commandLine, const std::string& label) {
    JoinFinished();
    auto child = std::make_unique<Child>();
    child->id = ++m_lastId;
    child->wake = FileDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    const std::string killFile = KillFile(child->id);
    ::unlink(killFile.c_str());

    Start start;
    start.commandLine = std::move(commandLine);
    start.request.words = std::move(words);
    Environment environment = m_environment;
    environment.Set("TAVRN_KILLFILE", killFile);
    start.request.environment = environment.ToList();
    {
        const std::lock_guard lock(m_childMutex);
        m_children.insert(child->id);
    }
    m_childLog.Begin(child->id, label);
    Child& worker = *child;
    m_workers.push_back(std::move(child));
    worker.thread = std::thread([this, &worker, start = std::move(start)] { Work(worker, start); });
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
    const int exitCode = Reap(child);
    Post([this, exitCode] {
        if (m_childEnd) m_childEnd(exitCode);
    });
    child.finished = true;
}

void Commands::RunUntilOutputCloses(Child& child, const Start& start) {
    ChildPipes pipes = ChildPipes::Open();
    SpawnRequest request = start.request;
    request.standardInput = pipes.childInput.Get();
    request.standardOutput = pipes.childOutput.Get();
    request.standardError = pipes.childOutput.Get();
    bool hasStarted = false;
    {
        const std::lock_guard lock(m_childMutex);
        if (m_ending) return;  // without a word: nobody waits for it any more
        std::string error;
        if (pipes.areWhole) child.pid = Spawn(request, error);
        hasStarted = child.pid >= 0;
    }
    // What is left open here would keep the output from closing.
    pipes.childInput.Close();
    pipes.childOutput.Close();
    if (hasStarted) return ReadOutput(child, pipes.reader.Get());
    Post([this, id = child.id, line = start.commandLine] {
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
    AwaitExit(process);
    const std::lock_guard lock(m_childMutex);
    // What the child leaves behind in its group goes with it; not yet reaped, it still holds the number.
    if (m_ending) ::kill(-process, SIGKILL);
    child.pid = -1;
    return WaitForEnd(process);
}

void Commands::ReadOutput(Child& child, int pipe) {
    ::fcntl(pipe, F_SETFL, O_NONBLOCK);
    char piece[kPieceSize];
    for (;;) {
        const ssize_t count = ::read(pipe, piece, sizeof piece);
        if (count > 0) {
            Post([this, id = child.id, text = std::string(piece, static_cast<size_t>(count))] {
                m_childLog.Append(id, text);
            });
            continue;
        }
        if (count == 0 || (errno != EAGAIN && errno != EINTR)) return;
        pollfd waits[2] = {{pipe, POLLIN, 0}, {child.wake.Get(), POLLIN, 0}};
        ::poll(waits, 2, -1);
        if ((waits[1].revents & POLLIN) != 0) return;
    }
}

void Commands::KillChildren() {
    const std::lock_guard lock(m_childMutex);
    std::string ignored;
    for (const int id : m_children) WriteOwnFile(m_workDir, PathFile(KillFile(id)), {}, ignored);
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
    while (AnyProcessLeft() && Clock::now() < until) std::this_thread::sleep_for(kPollStep);
    JoinFinished();
    return m_workers.empty();
}

void Commands::SignalChildren(int signal) {
    const std::lock_guard lock(m_childMutex);
    for (const auto& worker : m_workers) {
        if (worker->pid < 0) continue;
        ::kill(-worker->pid, signal);
        ::kill(worker->pid, signal);  // in case it has left its group
    }
}

void Commands::EndChildren(std::chrono::milliseconds grace, std::chrono::milliseconds timeToHeed) {
    {
        const std::lock_guard lock(m_childMutex);
        m_ending = true;
    }
    KillChildren();
    bool areGone = WaitForWorkers(grace);
    if (!areGone) {
        SignalChildren(SIGTERM);
        areGone = WaitForWorkers(timeToHeed);
    }
    if (!areGone) {
        SignalChildren(SIGKILL);
        StopReading();
    }
    ReapUnwatched();
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
