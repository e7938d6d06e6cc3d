// SPDX-License-Identifier: Apache-2.0
#include "ui/base/QtQueue.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>

namespace tavrin {

namespace {

constexpr qint64 kSlice = 8;  // milliseconds
const QEvent::Type kWorkWaits = QEvent::Type(QEvent::registerEventType());

}  // namespace

void QtQueue::Post(std::function<void()> work) {
    const std::lock_guard lock(m_mutex);
    m_work.push_back(std::move(work));
    WakeUp();
}

// Called under the lock.
void QtQueue::WakeUp() {
    if (std::exchange(m_isAwake, true)) return;
    // Behind what the user does.
    QCoreApplication::postEvent(this, new QEvent(kWorkWaits), Qt::LowEventPriority);
}

void QtQueue::customEvent(QEvent* event) {
    if (event->type() != kWorkWaits) return;
    {
        const std::lock_guard lock(m_mutex);
        m_isAwake = false;
    }
    QElapsedTimer clock;
    clock.start();
    bool isMore = RunOne();
    while (isMore && clock.elapsed() < kSlice) isMore = RunOne();
    if (isMore) {
        const std::lock_guard lock(m_mutex);
        WakeUp();
    }
    if (m_observer) m_observer();
}

void QtQueue::RunPending() {
    while (RunOne()) {
    }
}

// True if something ran.
bool QtQueue::RunOne() {
    std::function<void()> work;
    {
        const std::lock_guard lock(m_mutex);
        if (m_work.empty()) return false;
        work = std::move(m_work.front());
        m_work.pop_front();
    }
    work();
    return true;
}

}  // namespace tavrin
