// SPDX-License-Identifier: Apache-2.0
// Being told to stop: INT, TERM and HUP.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace tavrin {

// Blocks the signals in the thread that makes it, which must be the first, and waits for them on a thread
// of its own. Where there is no thread to be had they are not blocked, and end the program as ever. On one of
// them `onSignal` is called there with the way to go on: SIGTERM at once and, as long as the program has not
// ended, SIGKILL some time later. A second signal skips that time.
class Interruption {
  public:
    // Blocks the signals in this thread and those that it starts, for a program that has threads before it
    // can make the object.
    static void Block();

    explicit Interruption(std::function<void(int signalToPassOn)> onSignal);
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    // The number of the first signal; 0 if none came.
    int Signal() const { return m_signal; }

  private:
    void Wait();

    std::function<void(int)> m_onSignal;
    std::atomic<int> m_signal = 0;
    std::atomic<bool> m_ending = false;
    std::thread m_thread;
};

}  // namespace tavrin
