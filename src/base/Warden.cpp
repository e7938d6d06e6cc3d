// SPDX-License-Identifier: Apache-2.0
#include "base/Warden.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include "base/ProcessTag.h"

namespace tavrin {

namespace {

constexpr char kAllIsWell = '.';
constexpr std::chrono::milliseconds kStep{20};
constexpr int kStepsToHeed = 50;  // for processes that were asked to end
constexpr int kStepsToDie = 500;  // for those that were not asked any more

// Leaves the program's terminal and group, which may be signalled as a whole, and whatever it has open.
void GoAside(int lifeline) {
    ::setsid();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) ::signal(signal, SIG_IGN);
    ::prctl(PR_SET_NAME, "tavrin-warden");
    ::dup2(lifeline, STDIN_FILENO);
    const int nothing = ::open("/dev/null", O_RDWR);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) ::dup2(nothing, stream);
    if (::syscall(SYS_close_range, STDERR_FILENO + 1, ~0U, 0) == 0) return;
    for (long number = ::sysconf(_SC_OPEN_MAX); number > STDERR_FILENO; --number)
        ::close(static_cast<int>(number));
}

// Whether the program has ended without a word.
bool IsOrphaned() {
    char word = 0;
    ssize_t count = 0;
    while ((count = ::read(STDIN_FILENO, &word, 1)) < 0 && errno == EINTR) {
    }
    return count != 1 || word != kAllIsWell;
}

void EndAll(const std::string& tags, pid_t session) {
    bool isAnyLeft = SignalTagged(tags, session, SIGTERM);
    for (int step = 0; isAnyLeft && step < kStepsToHeed; ++step) {
        std::this_thread::sleep_for(kStep);
        isAnyLeft = !TaggedProcesses(tags, session).empty();
    }
    // Again and again, for those that were being started.
    for (int step = 0; isAnyLeft && step < kStepsToDie; ++step) {
        isAnyLeft = SignalTagged(tags, session, SIGKILL);
        std::this_thread::sleep_for(kStep);
    }
}

}  // namespace

Warden::Warden() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return;
    const FileDescriptor reader(ends[0]);
    m_lifeline = FileDescriptor(ends[1]);
    const std::string tags = TagNames(::getpid());
    const pid_t session = ::getsid(0);
    m_process = ::fork();
    if (m_process != 0) return;
    GoAside(reader.Get());
    if (IsOrphaned()) EndAll(tags, session);
    ::_exit(0);
}

void Warden::Dismiss() {
    if (m_process <= 0) return;
    [[maybe_unused]] const ssize_t written = ::write(m_lifeline.Get(), &kAllIsWell, 1);
    m_lifeline.Close();
    // Buried here: where the program was started as the first of all, nobody else would.
    while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
    }
    m_process = -1;
}

}  // namespace tavrin
