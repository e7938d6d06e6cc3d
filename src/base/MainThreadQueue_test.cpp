// SPDX-License-Identifier: Apache-2.0
#include "base/MainThreadQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <numeric>
#include <thread>
#include <vector>

namespace tavrin {
namespace {

using std::chrono::minutes;
using testing::ElementsAre;

TEST(PlainQueue, RunsInTheOrderOfPosting) {
    PlainQueue queue;
    std::vector<int> ran;
    for (int i = 1; i <= 3; ++i) queue.Post([&ran, i] { ran.push_back(i); });
    EXPECT_TRUE(ran.empty());
    EXPECT_TRUE(queue.RunPending());
    EXPECT_THAT(ran, ElementsAre(1, 2, 3));
}

TEST(PlainQueue, AnEmptyQueueSaysThatNothingRan) {
    PlainQueue queue;
    EXPECT_FALSE(queue.RunPending());
    queue.Post([] {});
    queue.RunPending();
    EXPECT_FALSE(queue.RunPending());
}

TEST(PlainQueue, WorkPostedByWorkRunsInTheNextRound) {
    PlainQueue queue;
    std::vector<int> ran;
    queue.Post([&] {
        ran.push_back(1);
        queue.Post([&ran] { ran.push_back(2); });
    });
    EXPECT_TRUE(queue.RunPending());
    EXPECT_THAT(ran, ElementsAre(1));
    EXPECT_TRUE(queue.RunPending());
    EXPECT_THAT(ran, ElementsAre(1, 2));
}

TEST(PlainQueue, WaitsForAPostFromAnotherThread) {
    PlainQueue queue;
    std::thread::id ranOn;
    std::promise<void> waiting;
    std::thread poster([&queue, &ranOn, begun = waiting.get_future()]() mutable {
        begun.wait();
        queue.Post([&ranOn] { ranOn = std::this_thread::get_id(); });
    });
    waiting.set_value();
    EXPECT_TRUE(queue.RunPending(minutes(1)));
    poster.join();
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST(PlainQueue, NothingPostedFromManyThreadsIsLost) {
    PlainQueue queue;
    constexpr int kThreads = 4;
    constexpr int kPosts = 500;
    std::vector<std::vector<int>> ran(kThreads);  // written on this thread alone
    std::vector<std::thread> posters;
    for (int thread = 0; thread < kThreads; ++thread) {
        posters.emplace_back([&queue, &ran, thread] {
            for (int i = 0; i < kPosts; ++i) {
                queue.Post([&ran, thread, i] { ran[static_cast<size_t>(thread)].push_back(i); });
            }
        });
    }
    const auto count = [&ran] {
        return std::accumulate(ran.begin(), ran.end(), size_t{0},
                               [](size_t sum, const auto& list) { return sum + list.size(); });
    };
    while (count() < kThreads * kPosts && queue.RunPending(minutes(1))) {
    }
    for (std::thread& poster : posters) poster.join();
    std::vector<int> expected(kPosts);
    std::iota(expected.begin(), expected.end(), 0);
    for (const auto& list : ran) EXPECT_EQ(list, expected);
}

}  // namespace
}  // namespace tavrin
