// SPDX-License-Identifier: Apache-2.0
#include "base/Interruption.h"

#include <pthread.h>

#include <csignal>
#include <ctime>
#include <system_error>

namespace tavrin {

namespace {

constexpr int kWakeUp = SIGUSR1;  // ends the waiting thread
constexpr time_t kSecondsToHeedTerm = 2;

// Whoever started us may want some of the three ignored, as nohup does.
bool IsIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t Signals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, kWakeUp}) {
        if (!IsIgnored(signal)) sigaddset(&set, signal);
    }
    return set;
}

}  // namespace

void Interruption::Block() {
    const sigset_t set = Signals();
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

Interruption::Interruption(std::function<void(int)> onSignal) : m_onSignal(std::move(onSignal)) {
    Block();
    try {
        m_thread = std::thread([this] { Wait(); });
    } catch (const std::system_error&) {
        const sigset_t set = Signals();
        ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    }
}

Interruption::~Interruption() {
    if (!m_thread.joinable()) return;
    m_ending = true;
    ::pthread_kill(m_thread.native_handle(), kWakeUp);
    m_thread.join();
}

void Interruption::Wait() {
    const sigset_t set = Signals();
    const timespec patience{kSecondsToHeedTerm, 0};
    while (!m_ending) {
        const int signal =
            m_signal == 0 ? ::sigwaitinfo(&set, nullptr) : ::sigtimedwait(&set, nullptr, &patience);
        if (m_ending || signal == kWakeUp) continue;
        if (m_signal != 0) {
            m_onSignal(SIGKILL);
        } else if (signal > 0) {
            m_signal = signal;
            m_onSignal(SIGTERM);
        }
    }
}

}  // namespace tavrin
