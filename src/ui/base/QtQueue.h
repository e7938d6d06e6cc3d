// SPDX-License-Identifier: Apache-2.0
// The core's door to the main thread, fed through Qt's event loop.
#pragma once

#include <QObject>
#include <deque>
#include <functional>
#include <mutex>

#include "base/MainThreadQueue.h"

namespace tavrin {

// Made on the main thread. Work runs from the event loop, in slices, so that a flood of it leaves the
// windows alive; what still waits when the queue is destroyed never runs.
class QtQueue : public QObject, public MainThreadQueue {
  public:
    void Post(std::function<void()> work) override;

    // Main thread: runs all that waits, however long it takes.
    void RunPending();

    // Called after each slice.
    void OnRan(std::function<void()> observer) { m_observer = std::move(observer); }

  protected:
    void customEvent(QEvent* event) override;

  private:
    void WakeUp();
    bool RunOne();

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_work;
    bool m_isAwake = false;  // an event is on its way to us
    std::function<void()> m_observer;
};

}  // namespace tavrin
