// SPDX-License-Identifier: Apache-2.0
#include "ui/base/QtQueue.h"

#include <gtest/gtest.h>

#include <QTimer>
#include <atomic>
#include <thread>

#include "ui/support/Windows.h"

namespace tavrin {
namespace {

TEST(QtQueue, RunsWorkOfOtherThreadsOnTheMainThreadInItsOrder) {
    QtQueue queue;
    const auto mainThread = std::this_thread::get_id();
    std::string done;
    bool allHere = true;
    std::thread worker([&] {
        for (char c = 'a'; c <= 'z'; ++c) {
            queue.Post([&, c] {
                done += c;
                allHere = allHere && std::this_thread::get_id() == mainThread;
            });
        }
    });
    ASSERT_TRUE(test::WaitUntil([&] { return done.size() == 26; }));
    worker.join();
    EXPECT_EQ(done, "abcdefghijklmnopqrstuvwxyz");
    EXPECT_TRUE(allHere);
}

TEST(QtQueue, AFloodOfWorkLetsTimersThrough) {
    QtQueue queue;
    std::atomic<bool> enough = false;
    // Posts anew whatever runs: the flood never ends by itself.
    std::function<void()> again = [&] {
        if (!enough) queue.Post(again);
    };
    for (int i = 0; i < 100; ++i) queue.Post(again);
    int ticks = 0;
    QTimer timer;
    timer.callOnTimeout([&] { ++ticks; });
    timer.start(1);
    EXPECT_TRUE(test::WaitUntil([&] { return ticks >= 5; }));
    enough = true;
    queue.RunPending();
}

TEST(QtQueue, WhatWaitsWhenItGoesNeverRuns) {
    bool ran = false;
    {
        QtQueue queue;
        queue.Post([&] { ran = true; });
    }
    test::HandleEvents();
    EXPECT_FALSE(ran);
}

TEST(QtQueue, TellsThatSomethingHasRun) {
    QtQueue queue;
    int told = 0;
    queue.OnRan([&] { ++told; });
    queue.Post([] {});
    ASSERT_TRUE(test::WaitUntil([&] { return told > 0; }));
}

}  // namespace
}  // namespace tavrin
