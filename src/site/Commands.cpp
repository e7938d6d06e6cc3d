// SPDX-License-Identifier: Apache-2.0
// Commands that are waited for, and such as are let go.
#include "site/Commands.h"

#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "base/Process.h"
#include "site/CommandsChild.h"
#include "text/Report.h"

namespace tavrin {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kTellStep{100};  // between two words on how long a wait lasts

}  // namespace

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

}  // namespace tavrin
