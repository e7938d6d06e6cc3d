// SPDX-License-Identifier: Apache-2.0
#include "base/MainThreadQueue.h"

namespace tavrin {

void PlainQueue::Post(std::function<void()> work) {
    {
        const std::lock_guard lock(m_mutex);
        m_work.push_back(std::move(work));
    }
    m_posted.notify_one();
}

bool PlainQueue::RunPending(std::chrono::milliseconds wait) {
    std::deque<std::function<void()>> work;
    {
        std::unique_lock lock(m_mutex);
        m_posted.wait_for(lock, wait, [this] { return !m_work.empty(); });
        work.swap(m_work);
    }
    for (auto& step : work) step();
    return !work.empty();
}

}  // namespace tavrin
