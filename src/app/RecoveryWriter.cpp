// SPDX-License-Identifier: Apache-2.0
#include "app/RecoveryWriter.h"

#include <new>
#include <system_error>
#include <utility>

namespace tavrin {

RecoveryWriter::RecoveryWriter(RecoverySession& session, std::function<void()> onDone)
    : m_session(session), m_onDone(std::move(onDone)) {}

RecoveryWriter::~RecoveryWriter() {
    Settle();
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

void RecoveryWriter::Give(Work work) {
    try {
        if (!m_thread.joinable()) m_thread = std::thread([this] { Run(); });
    } catch (const std::system_error&) {
        m_outcome = Write(work);
        m_onDone();
        return;
    }
    {
        const std::lock_guard lock(m_mutex);
        m_waiting = std::move(work);
    }
    m_changed.notify_all();
}

void RecoveryWriter::Settle() {
    std::unique_lock lock(m_mutex);
    m_waiting.reset();
    m_changed.wait(lock, [this] { return !m_isWriting; });
}

std::optional<RecoveryWriter::Outcome> RecoveryWriter::TakeOutcome() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_outcome, std::nullopt);
}

void RecoveryWriter::Run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isEnding || m_waiting; });
        if (m_isEnding) return;
        std::optional<Work> work = std::exchange(m_waiting, std::nullopt);
        m_isWriting = true;
        lock.unlock();
        Outcome outcome = Write(*work);
        work.reset();
        lock.lock();
        m_outcome = std::move(outcome);
        m_isWriting = false;
        m_changed.notify_all();
        m_onDone();
    }
}

RecoveryWriter::Outcome RecoveryWriter::Write(const Work& work) {
    std::string error;
    try {
        if (m_session.Write(work.origin, TextOf(work.pieces), error)) return {};
    } catch (const std::bad_alloc&) {
        return "out of memory";
    }
    return error;
}

}  // namespace tavrin
