// SPDX-License-Identifier: Apache-2.0
#include "Heartbeat.h"

#include <utility>

namespace tavrin::mray {

Heartbeat::Heartbeat(std::chrono::milliseconds period, std::function<void()> beat)
    : thread_([this, period, beat = std::move(beat)] {
          std::unique_lock lock(mutex_);
          while (!ended_.wait_for(lock, period, [this] { return ends_; })) {
              beat();
          }
      }) {}

Heartbeat::~Heartbeat() {
    {
        const std::lock_guard lock(mutex_);
        ends_ = true;
    }
    ended_.notify_all();
    thread_.join();
}

}  // namespace tavrin::mray
