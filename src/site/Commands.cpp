#include "site/Commands.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Process.h"
#include "text/Report.h"

namespace tavrin {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPollStep{5};
constexpr std::chrono::milliseconds kTellStep{100};  // between two words on how long a wait lasts
constexpr std::chrono::milliseconds kTimeToHeedTerm{500};

// Returns when the process has ended, which leaves it to be reaped.
void AwaitExit(int process) {
    siginfo_t information{};
    while (::waitid(P_PID, static_cast<id_t>(process), &information, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
}

}  // namespace

// One asynchronous child and the thread that owns its pipes.
struct Commands::Child {
    int id = 0;
    int pid = -1;                        // guarded by m_childMutex
    std::atomic<bool> finished = false;  // the process has been reaped and the thread is about to end
    FileDescriptor wake{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};  // readable: stop reading
    std::thread thread;
};

struct Commands::Start {
    std::string commandLine;
    SpawnRequest request;
};

Commands::Commands(Report& report, const Environment& environment, MainThreadQueue& queue)
    : m_report(report), m_environment(environment), m_queue(queue), m_childLog(report) {}

Commands::~Commands() {
    EndChildren(std::chrono::milliseconds(0));
    *m_alive = false;
}

bool Commands::RunCommand(const std::string& command, bool wait, ProcessInfo* processInfo) {
    return Run(SplitCommandLine(command), command, wait, processInfo);
}

bool Commands::StartProgram(const std::vector<std::string>& words, const std::string& shownAs) {
    return Run(words, shownAs, false, nullptr);
}

bool Commands::Run(const std::vector<std::string>& words, const std::string& shownAs, bool wait,
                   ProcessInfo* processInfo) {
    const int child = Launch(words, wait);
    if (child < 0) {
        if (!IsInterrupted()) m_report.Alert("command failed: %s", shownAs.c_str());
        return false;
    }
    if (!wait) {
        m_unwatched.insert(child);
        return true;
    }
    WaitForOne({child});
    const int exitCode = CollectCommand(child);
    if (processInfo != nullptr) processInfo->exitCode = exitCode;
    return true;
}

int Commands::Launch(const std::vector<std::string>& words, bool isWaitedFor) {
    ReapUnwatched();
    SpawnRequest request;
    request.words = words;
    request.environment = m_environment.ToList();
    request.standardOutput = m_commandOutput;
    std::string error;
    const std::lock_guard lock(m_waitedMutex);
    if (m_interrupted) return -1;
    const pid_t child = Spawn(request, error);
    if (child >= 0 && isWaitedFor) m_waitedFor.insert(child);
    return child;
}

int Commands::StartCommand(const std::string& command) { return Launch(SplitCommandLine(command), true); }

void Commands::WaitForOne(const std::vector<int>& processes) const {
    std::vector<FileDescriptor> watched;
    std::vector<pollfd> waits;
    bool canWatch = true;
    for (const int process : processes) {
        watched.emplace_back(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
        waits.push_back({watched.back().Get(), POLLIN, 0});
        canWatch = canWatch && watched.back();
    }
    const auto start = Clock::now();
    const int step = m_waitObserver ? static_cast<int>(kTellStep.count()) : -1;
    do {
        if (m_waitObserver)
            m_waitObserver(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start));
    } while (canWatch && ::poll(waits.data(), waits.size(), step) <= 0);
    // Where the system has no such descriptors the wait goes on for the first of them, untold.
    if (!canWatch) AwaitExit(processes.front());
    if (m_waitObserver) m_waitObserver(std::nullopt);
}

bool Commands::HasEnded(int process) {
    siginfo_t information{};
    const int result = ::waitid(P_PID, static_cast<id_t>(process), &information, WEXITED | WNOHANG | WNOWAIT);
    return result != 0 || information.si_pid == process;
}

int Commands::CollectCommand(int process) {
    // The process is not reaped before its number is withdrawn, so that InterruptCommand never meets a
    // number that has passed to another process.
    AwaitExit(process);
    const std::lock_guard lock(m_waitedMutex);
    // What an interrupted command leaves behind in its group goes with it.
    if (m_interrupted) ::kill(-process, SIGKILL);
    m_waitedFor.erase(process);
    return WaitForEnd(process);
}

void Commands::EndCommand(int process) {
    ::kill(-process, SIGKILL);
    CollectCommand(process);
}

void Commands::InterruptCommand(int signal) {
    const std::lock_guard lock(m_waitedMutex);
    m_interrupted = true;
    for (const int process : m_waitedFor) ::kill(-process, signal);
}

bool Commands::IsInterrupted() const {
    const std::lock_guard lock(m_waitedMutex);
    return m_interrupted;
}

void Commands::ReapUnwatched() {
    std::erase_if(m_unwatched, [](int pid) { return ::waitpid(pid, nullptr, WNOHANG) != 0; });
}

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

void Commands::Work(Child& child, const Start& start) {
    const auto post = [this](std::function<void()> work) {
        m_queue.Post([alive = m_alive, work = std::move(work)] {
            if (*alive) work();
        });
    };
    int input[2] = {-1, -1};
    int output[2] = {-1, -1};
    const bool piped = ::pipe2(input, O_CLOEXEC) == 0 && ::pipe2(output, O_CLOEXEC) == 0;
    FileDescriptor childInput(input[0]);
    FileDescriptor childOutput(output[1]);
    FileDescriptor reader(output[0]);
    FileDescriptor(input[1]).Close();  // the child sees the end of its input at once

    SpawnRequest request = start.request;
    request.standardInput = childInput.Get();
    request.standardOutput = childOutput.Get();
    request.standardError = childOutput.Get();
    std::string error;
    pid_t pid = -1;
    bool ending = false;
    {
        const std::lock_guard lock(m_childMutex);
        ending = m_ending;
        if (piped && !ending) pid = Spawn(request, error);
        child.pid = pid;
    }
    childInput.Close();
    childOutput.Close();
    if (pid < 0 && !ending) {
        post([this, id = child.id, line = start.commandLine] {
            m_childLog.Append(id, FormatText("CreateProcess failed: \"%s\"", line.c_str()));
        });
    } else if (pid >= 0) {
        ReadOutput(child, reader.Get());
    }
    reader.Close();
    post([this, id = child.id] { m_childLog.End(id); });
    {
        const std::lock_guard lock(m_childMutex);
        m_children.erase(child.id);
    }
    constexpr int kCannotStart = 127;
    int exitCode = kCannotStart;
    if (pid >= 0) {
        AwaitExit(pid);
        const std::lock_guard lock(m_childMutex);
        // What the child leaves behind in its group goes with it; not yet reaped, it still holds the number.
        if (m_ending) ::kill(-pid, SIGKILL);
        child.pid = -1;
        exitCode = WaitForEnd(pid);
    }
    post([this, exitCode] {
        if (m_childEnd) m_childEnd(exitCode);
    });
    child.finished = true;
}

void Commands::ReadOutput(Child& child, int pipe) {
    ::fcntl(pipe, F_SETFL, O_NONBLOCK);
    char piece[kPieceSize];
    for (;;) {
        const ssize_t count = ::read(pipe, piece, sizeof piece);
        if (count > 0) {
            m_queue.Post([this, alive = m_alive, id = child.id,
                          text = std::string(piece, static_cast<size_t>(count))] {
                if (*alive) m_childLog.Append(id, text);
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
    for (const int id : m_children) WriteWholeFile(KillFile(id), {}, ignored);
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

void Commands::EndChildren(std::chrono::milliseconds grace) {
    {
        const std::lock_guard lock(m_childMutex);
        m_ending = true;
    }
    KillChildren();
    if (!WaitForWorkers(grace)) {
        SignalChildren(SIGTERM);
        if (!WaitForWorkers(kTimeToHeedTerm)) {
            SignalChildren(SIGKILL);
            // Output that somebody outside the group still holds open is no longer waited for.
            for (const auto& worker : m_workers) {
                const uint64_t one = 1;
                [[maybe_unused]] const ssize_t written = ::write(worker->wake.Get(), &one, sizeof one);
            }
            for (const auto& worker : m_workers) worker->thread.join();
            m_workers.clear();
        }
    }
    ReapUnwatched();
    const std::lock_guard lock(m_childMutex);
    m_ending = false;
}

}  // namespace tavrin
