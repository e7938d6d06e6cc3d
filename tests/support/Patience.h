// SPDX-License-Identifier: Apache-2.0
// How long a test waits for what has to come.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace tavrin::test {

// Far more than anything in a test takes, also on a machine that has much else to do: a test that has waited
// so long has failed.
inline constexpr std::chrono::seconds kPatience{90};

// For what another process or thread does: sleeps until the condition holds; false if that takes far too
// long.
inline bool SleepUntil(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace tavrin::test
