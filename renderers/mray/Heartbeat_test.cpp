// SPDX-License-Identifier: Apache-2.0
#include "Heartbeat.h"

#include <gtest/gtest.h>

#include <atomic>

namespace tavrin::mray {
namespace {

TEST(Heartbeat, BeatsAsLongAsItIsThere) {
    std::atomic<int> beats = 0;
    {
        const Heartbeat heartbeat(std::chrono::milliseconds(1), [&beats] { ++beats; });
        while (beats < 3) {
            std::this_thread::yield();
        }
    }
    const int last = beats;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(beats, last);
}

TEST(Heartbeat, EndsBeforeItHasBeaten) {
    std::atomic<int> beats = 0;
    {
        const Heartbeat heartbeat(std::chrono::hours(1), [&beats] { ++beats; });
    }
    EXPECT_EQ(beats, 0);
}

}  // namespace
}  // namespace tavrin::mray
