// SPDX-License-Identifier: Apache-2.0
#include "site/ChildWatch.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <utility>

#include "base/ProcessTag.h"
#include "text/Report.h"

namespace tavrin {

void SignalChild(pid_t child, const std::string& tag, int signal) {
    ::kill(-child, signal);
    SignalTagged(tag, ::getsid(0), signal);
}

ChildWatch::ChildWatch(std::string name, std::string tag, ChildLimits limits)
    : m_name(std::move(name)), m_tag(std::move(tag)), m_limits(std::move(limits)) {}

std::optional<std::string> ChildWatch::Look(pid_t child) {
    if (!IsNeeded()) return std::nullopt;
    const auto now = Clock::now();
    if (now < m_nextLook) return std::nullopt;
    m_nextLook = now + kStep;
    switch (m_phase) {
        case Phase::kRuns: {
            const auto broken = BrokenLimit();
            if (!broken) return std::nullopt;
            const std::string told = Who(child) + " was stopped: " + *broken;
            SignalChild(child, m_tag, SIGTERM);
            m_phase = Phase::kAsked;
            m_nextLook = now + kTimeToHeed;
            return told;
        }
        case Phase::kAsked:
        case Phase::kKilled:
            SignalChild(child, m_tag, SIGKILL);
            m_phase = m_phase == Phase::kAsked ? Phase::kKilled : Phase::kOver;
            break;
        case Phase::kOver:
            break;
    }
    return std::nullopt;
}

std::optional<std::string> ChildWatch::BrokenLimit() const {
    if (m_limits.time.count() > 0 && Clock::now() - m_start > m_limits.time) {
        const auto seconds = static_cast<long long>(m_limits.time.count());
        return FormatText("it took more than %lld second%s, the limit of %s", seconds,
                          seconds == 1 ? "" : "s", m_limits.timeSetBy.c_str());
    }
    if (m_limits.memory == 0) return std::nullopt;
    uint64_t used = 0;
    for (const pid_t process : TaggedProcesses(m_tag, ::getsid(0))) used += OwnMemory(process);
    if (used <= m_limits.memory) return std::nullopt;
    return FormatText("it took more than %llu MB of memory, the limit of %s",
                      static_cast<unsigned long long>(m_limits.memory >> 20), m_limits.memorySetBy.c_str());
}

// With the program that it runs: the script itself is seldom at fault.
std::string ChildWatch::Who(pid_t child) const {
    uint64_t most = 0;
    std::string program;
    for (const pid_t process : TaggedProcesses(m_tag, ::getsid(0))) {
        const uint64_t memory = OwnMemory(process);
        if (process == child || memory < most) continue;
        most = memory;
        program = ProgramOf(process);
    }
    return program.empty() ? m_name : m_name + " (" + program + ")";
}

}  // namespace tavrin
