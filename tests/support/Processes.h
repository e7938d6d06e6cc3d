// SPDX-License-Identifier: Apache-2.0
// Processes that a test looks at from outside.
#pragma once

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "support/TestSite.h"

namespace tavrin::test {

// A process that has ended counts as gone, buried or not.
inline bool IsGone(pid_t pid) {
    const std::string stat = ReadFile("/proc/" + std::to_string(pid) + "/stat");
    return stat.empty() || stat.find(") Z ") != std::string::npos;
}

// A child that has been forked; killed at the latest with this object.
class ForkedChild {
  public:
    ForkedChild() = default;
    ~ForkedChild() { Kill(); }
    ForkedChild(const ForkedChild&) = delete;
    ForkedChild& operator=(const ForkedChild&) = delete;

    // True in the child.
    bool Fork() {
        m_id = ::fork();
        return m_id == 0;
    }
    pid_t Id() const { return m_id; }
    void Kill() {
        if (m_id <= 0) return;
        ::kill(m_id, SIGKILL);
        ::waitpid(m_id, nullptr, 0);
        m_id = 0;
    }

  private:
    pid_t m_id = 0;
};

}  // namespace tavrin::test
