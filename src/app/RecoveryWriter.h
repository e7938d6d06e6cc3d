// SPDX-License-Identifier: Apache-2.0
// Puts unsaved work aside on a thread of its own.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "app/RecoverySession.h"
#include "document/DocumentSnapshot.h"

namespace tavrin {

// Belongs to Recovery, and is used on the main thread. What was given is written however long that thread is
// busy afterwards: this one waits for nothing but the disk. Where no thread can be started the giver writes
// itself.
class RecoveryWriter {
  public:
    struct Work {
        RecoveryOrigin origin;
        DocumentSnapshot::Pieces pieces;
    };
    // What went wrong; empty for nothing.
    using Outcome = std::string;

    // `session` outlives it. `onDone` is called after each writing, on the thread.
    RecoveryWriter(RecoverySession& session, std::function<void()> onDone);
    RecoveryWriter(const RecoveryWriter&) = delete;
    RecoveryWriter& operator=(const RecoveryWriter&) = delete;
    // As Settle.
    ~RecoveryWriter();

    // Takes the place of what waits.
    void Give(Work work);
    // Drops what waits, and returns when nothing is being written: the session is the caller's until more is
    // given.
    void Settle();
    // What became of the last writing, once.
    std::optional<Outcome> TakeOutcome();

  private:
    void Run();
    Outcome Write(const Work& work);

    RecoverySession& m_session;
    std::function<void()> m_onDone;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<Work> m_waiting;
    std::optional<Outcome> m_outcome;
    bool m_isWriting = false;
    bool m_isEnding = false;
    std::thread m_thread;  // from the first work on
};

}  // namespace tavrin
