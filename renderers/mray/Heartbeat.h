// SPDX-License-Identifier: Apache-2.0
// Calls a function now and then while something takes long that nobody can look into.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace tavrin::mray {

class Heartbeat {
  public:
    // The function is called on a thread of its own, each time after the period, until this
    // goes; not afterwards.  It must not throw.
    Heartbeat(std::chrono::milliseconds period, std::function<void()> beat);
    ~Heartbeat();
    Heartbeat(const Heartbeat&) = delete;
    Heartbeat& operator=(const Heartbeat&) = delete;

  private:
    // The thread comes last: it uses the others at once.
    std::mutex mutex_;
    std::condition_variable ended_;
    bool ends_ = false;
    std::thread thread_;
};

}  // namespace tavrin::mray
