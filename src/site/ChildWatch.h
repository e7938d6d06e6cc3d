// SPDX-License-Identifier: Apache-2.0
// Holds one child to its limits.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>

#include "site/ProgramCall.h"

namespace tavrin {

// What a child that is asked to end by a signal has for it.
inline constexpr std::chrono::milliseconds kTimeToHeed{500};

// Sends a signal to the child's process group and to all that carries its tag.
void SignalChild(pid_t child, const std::string& tag, int signal);

// Owned by whoever waits for the child, and made when that is started. Memory is what the child and all that
// carries its tag have to themselves, looked at now and then: a limit of address space would not do, of which
// graphics drivers take far more than they use.
class ChildWatch {
  public:
    ChildWatch(std::string name, std::string tag, ChildLimits limits);

    // How often Look is to be called while it is needed.
    static constexpr std::chrono::milliseconds kStep{200};
    bool IsNeeded() const { return m_limits.AreAny(); }

    // Ends a child, which has not been reaped, that has broken a limit: it is asked first, then no more. What
    // the user is to be told, once. Costs next to nothing where it is not time to look.
    std::optional<std::string> Look(pid_t child);
    // Nothing more can be done to end it.
    bool IsOver() const { return m_phase == Phase::kOver; }

  private:
    using Clock = std::chrono::steady_clock;
    enum class Phase { kRuns, kAsked, kKilled, kOver };

    std::optional<std::string> BrokenLimit() const;
    std::string Who(pid_t child) const;

    std::string m_name;
    std::string m_tag;
    ChildLimits m_limits;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_nextLook = m_start;
    Phase m_phase = Phase::kRuns;
};

}  // namespace tavrin
