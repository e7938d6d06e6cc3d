// SPDX-License-Identifier: Apache-2.0
// Commands that are waited for, and such as are let go.
#include "site/Commands.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "base/Process.h"
#include "base/ProcessTag.h"
#include "site/CommandsChild.h"
#include "text/Report.h"

namespace tavrin {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kTellStep{100};  // between two words on how long a wait lasts
constexpr std::chrono::milliseconds kForEver{std::chrono::hours(1)};

}  // namespace

Commands::Commands(Report& report, const Environment& environment, MainThreadQueue& queue)
    : m_report(report), m_environment(environment), m_queue(queue), m_childLog(report) {}

Commands::~Commands() {
    EndChildren(std::chrono::milliseconds(0));
    *m_alive = false;
}

bool Commands::RunCommand(const std::string& command, bool wait, ProcessInfo* processInfo) {
    std::vector<std::string> words = SplitCommandLine(command);
    if (!wait) return StartProgram(words, command);
    return RunCall({std::move(words), command, {}, {}}, processInfo);
}

bool Commands::StartProgram(const std::vector<std::string>& words, const std::string& shownAs) {
    const int child = Launch(words, false);
    if (child >= 0) {
        m_unwatched.insert(child);
    } else {
        FailToStart(shownAs);
    }
    return child >= 0;
}

bool Commands::RunCall(const ProgramCall& call, ProcessInfo* processInfo) {
    const int child = Launch(call.words, true);
    if (child < 0) {
        FailToStart(call.shownAs);
        return false;
    }
    ChildWatch watch(call.name, TagName(::getpid(), m_lastTag), call.limits);
    std::optional<std::string> told;
    WaitUntilOneEnds(
        {child},
        [&] {
            if (auto text = watch.Look(child)) told = std::move(text);
        },
        watch.IsNeeded() ? ChildWatch::kStep : kForEver);
    const int exitCode = CollectCommand(child);
    if (told) m_report.Alert("%s", told->c_str());
    if (processInfo != nullptr) processInfo->exitCode = exitCode;
    return true;
}

void Commands::FailToStart(const std::string& shownAs) {
    if (!IsInterrupted()) m_report.Alert("command failed: %s", shownAs.c_str());
}

// What is waited for carries a tag, so that nothing of it outlives the program.
int Commands::Launch(const std::vector<std::string>& words, bool isWaitedFor) {
    ReapUnwatched();
    SpawnRequest request;
    request.words = words;
    request.environment = m_environment.ToList();
    request.standardOutput = m_commandOutput;
    FileDescriptor tag;
    if (isWaitedFor) tag = MakeTag(TagName(::getpid(), ++m_lastTag));
    request.tag = tag.Get();
    std::string error;
    const std::lock_guard lock(m_waitedMutex);
    if (m_interrupted) return -1;
    const pid_t child = Spawn(request, error);
    if (child >= 0 && isWaitedFor) m_waitedFor.emplace(child, TagName(::getpid(), m_lastTag));
    return child;
}

int Commands::StartCommand(const std::vector<std::string>& words) { return Launch(words, true); }

void Commands::WaitForOne(const std::vector<int>& processes) const {
    WaitUntilOneEnds(
        processes, [] {}, kForEver);
}

void Commands::WaitUntilOneEnds(const std::vector<int>& processes, const std::function<void()>& eachStep,
                                std::chrono::milliseconds step) const {
    const auto start = Clock::now();
    if (m_waitObserver) step = std::min(step, kTellStep);
    do {
        if (m_waitObserver)
            m_waitObserver(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start));
        eachStep();
        AwaitAnyExit(processes, step);
    } while (std::none_of(processes.begin(), processes.end(), HasExited));
    if (m_waitObserver) m_waitObserver(std::nullopt);
}

int Commands::CollectCommand(int process) {
    // The process is not reaped before its number is withdrawn, so that InterruptCommand never meets a
    // number that has passed to another process.
    AwaitExit(process);
    const std::lock_guard lock(m_waitedMutex);
    // What an interrupted command leaves behind in its group goes with it.
    if (m_interrupted) SignalChild(process, m_waitedFor[process], SIGKILL);
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
    for (const auto& [process, tag] : m_waitedFor) {
        if (signal == SIGKILL) {
            SignalChild(process, tag, signal);
        } else {
            ::kill(-process, signal);
        }
    }
}

bool Commands::IsInterrupted() const {
    const std::lock_guard lock(m_waitedMutex);
    return m_interrupted;
}

void Commands::ReapUnwatched() {
    std::erase_if(m_unwatched, [](int pid) { return ::waitpid(pid, nullptr, WNOHANG) != 0; });
}

}  // namespace tavrin
