// SPDX-License-Identifier: Apache-2.0
// The door by which worker threads reach the main thread. The desktop program feeds its event loop
// through it; the batch program uses the plain queue below.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace tavrin {

// One for the process, made by the program before what posts to it, and gone after that. Posting never fails.
class MainThreadQueue {
  public:
    virtual ~MainThreadQueue() = default;

    // Callable from any thread: `work` will run on the main thread, in the order of posting.
    virtual void Post(std::function<void()> work) = 0;
};

// The queue of a program without an event loop. What waits at its end is dropped.
class PlainQueue : public MainThreadQueue {
  public:
    void Post(std::function<void()> work) override;

    // Main thread: waits until something was posted or the time is over, then runs all that waits.
    // True if anything ran.
    bool RunPending(std::chrono::milliseconds wait = std::chrono::milliseconds(0));

  private:
    std::mutex m_mutex;
    std::condition_variable m_posted;
    std::deque<std::function<void()>> m_work;
};

}  // namespace tavrin
