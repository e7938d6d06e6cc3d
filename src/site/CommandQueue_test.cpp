// SPDX-License-Identifier: Apache-2.0
// Commands beside each other.
#include "site/CommandQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <thread>

#include "base/Files.h"
#include "site/Commands.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ReadFile;
using testing::IsEmpty;

class CommandQueueTest : public testing::Test {
  protected:
    CommandQueueTest() {
        report.SetSink(&sink);
        environment.Set("PATH", "/usr/bin:/bin");
    }

    // Adds a script that knows the test's directory as D, has a function that waits for a file of it, and
    // writes what it says to "said".
    size_t Add(CommandQueue& queue, const std::string& script) {
        const std::string name = "script." + std::to_string(++m_scripts);
        return queue.Add(
            {"sh", directory.Write(name, "D=" + directory.Path() +
                                             "\nawait() { until [ -e $D/$1 ]; do sleep 0.01; done; }\n"
                                             "say() { echo $1 >> $D/said; }\n" +
                                             script)});
    }
    std::string Said() const { return ReadFile(directory / "said"); }
    bool Has(const std::string& name) const { return PathExists(directory / name); }

    test::TempDir directory;
    test::CollectingSink sink;
    Report report;
    PlainQueue mainThread;
    Environment environment;
    Commands commands{report, environment, mainThread};

  private:
    int m_scripts = 0;
};

TEST_F(CommandQueueTest, EachResultIsThatOfItsCommandInWhateverOrderTheyAreAsked) {
    CommandQueue queue(commands, 2);
    std::vector<size_t> numbers;
    for (int code = 0; code < 6; ++code) numbers.push_back(Add(queue, "exit " + std::to_string(code)));
    for (const int code : {3, 0, 5, 5, 1, 2, 4})
        EXPECT_EQ(queue.Result(numbers[static_cast<size_t>(code)]), code);
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(CommandQueueTest, AsManyRunAtATimeAsThereIsRoomFor) {
    CommandQueue queue(commands, 2);
    const size_t first = Add(queue, "touch $D/first; await second");
    Add(queue, "touch $D/second; await first");
    EXPECT_EQ(queue.Result(first), 0) << "each waits for the other to run";
}

TEST_F(CommandQueueTest, NoMoreRunAtATimeThanThereIsRoomFor) {
    CommandQueue queue(commands, 1);
    std::vector<size_t> numbers;
    for (int i = 0; i < 5; ++i) numbers.push_back(Add(queue, "mkdir $D/alone || exit 1; rmdir $D/alone"));
    queue.Continue();
    for (const size_t number : numbers) EXPECT_EQ(queue.Result(number), 0);
}

TEST_F(CommandQueueTest, NothingStartsBeforeItIsToldTo) {
    CommandQueue queue(commands, 1);
    Add(queue, "say first");
    EXPECT_EQ(Said(), "");
}

TEST_F(CommandQueueTest, OneThatIsAskedForBeforeItsTurnStartsNext) {
    CommandQueue queue(commands, 1);
    Add(queue, "say first");
    const size_t second = Add(queue, "say second");
    const size_t third = Add(queue, "say third");
    queue.Continue();
    EXPECT_EQ(queue.Result(third), 0);
    EXPECT_EQ(queue.Result(second), 0);
    EXPECT_EQ(Said(), "first\nthird\nsecond\n");
}

TEST_F(CommandQueueTest, ACommandThatCannotStartHasNoResultAndTheOthersHave) {
    CommandQueue queue(commands, 1);
    const size_t missing = queue.Add({"/no/such/program"});
    const size_t there = queue.Add({"true"});
    EXPECT_EQ(queue.Result(missing), std::nullopt);
    EXPECT_EQ(queue.Result(there), 0);
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(CommandQueueTest, WhatStillRunsWhenTheQueueGoesIsEndedAndTheRestIsNotStarted) {
    {
        CommandQueue queue(commands, 2);
        const size_t first = Add(queue, "touch $D/started");
        Add(queue, "say $$; await never");
        Add(queue, "say $$; await never");
        EXPECT_EQ(queue.Result(first), 0);
        while (Said().empty()) std::this_thread::yield();
    }
    const std::string process = "/proc/" + std::to_string(std::stoi(Said()));
    EXPECT_FALSE(PathExists(process)) << "ended, and buried";
    const std::string said = Said();
    EXPECT_LE(std::count(said.begin(), said.end(), '\n'), 2);
}

TEST_F(CommandQueueTest, AnInterruptEndsAllThatRunAndNoneStartsAfterwards) {
    CommandQueue queue(commands, 2);
    const size_t first = Add(queue, "touch $D/first; await never");
    const size_t second = Add(queue, "touch $D/second; await never");
    const size_t third = Add(queue, "touch $D/third");
    std::thread other([&] {
        while (!Has("first") || !Has("second")) std::this_thread::yield();
        commands.InterruptCommand(SIGTERM);
    });
    EXPECT_EQ(queue.Result(first), 128 + SIGTERM);
    other.join();
    EXPECT_EQ(queue.Result(second), 128 + SIGTERM);
    EXPECT_EQ(queue.Result(third), std::nullopt);
    EXPECT_FALSE(Has("third"));
    EXPECT_TRUE(commands.IsInterrupted());
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(CommandQueueTest, AWaitIsToldLikeAnyOther) {
    bool isWaiting = false;
    int tellings = 0;
    commands.OnWait([&](auto elapsed) {
        isWaiting = elapsed.has_value();
        // The command ends once it has been told of a second time.
        if (++tellings == 2) directory.Write("go", "");
    });
    CommandQueue queue(commands, 1);
    EXPECT_EQ(queue.Result(Add(queue, "await go")), 0);
    EXPECT_GE(tellings, 3);
    EXPECT_FALSE(isWaiting);
}

TEST_F(CommandQueueTest, WhetherACommandHasEndedIsToldWithoutWaiting) {
    CommandQueue queue(commands, 1);
    const size_t first = Add(queue, "await go; exit 3");
    const size_t second = Add(queue, "exit 4");
    EXPECT_FALSE(queue.HasEnded(first)) << "it has not begun";
    queue.Continue();
    EXPECT_FALSE(queue.HasEnded(first));
    EXPECT_FALSE(queue.HasEnded(second));
    directory.Write("go", "");
    EXPECT_TRUE(test::SleepUntil([&] { return queue.HasEnded(first); }));
    EXPECT_FALSE(queue.HasEnded(second)) << "asking starts nothing";
    EXPECT_EQ(queue.Result(first), 3);
    EXPECT_EQ(queue.Result(second), 4);
    EXPECT_TRUE(queue.HasEnded(second));
}

TEST_F(CommandQueueTest, ACommandThatIsEndedMakesRoomAndHasNoResult) {
    CommandQueue queue(commands, 1);
    const size_t hanging = Add(queue, "touch $D/begun; await never");
    const size_t next = Add(queue, "exit 5");
    queue.Continue();
    EXPECT_TRUE(test::SleepUntil([&] { return Has("begun"); }));
    queue.End(hanging);
    EXPECT_TRUE(queue.HasEnded(hanging));
    EXPECT_EQ(queue.Result(hanging), std::nullopt);
    EXPECT_EQ(queue.Result(next), 5);
}

TEST_F(CommandQueueTest, ACommandThatIsEndedBeforeItsTurnIsNeverStarted) {
    CommandQueue queue(commands, 1);
    const size_t first = Add(queue, "await go");
    const size_t second = Add(queue, "say second");
    queue.Continue();
    queue.End(second);
    directory.Write("go", "");
    EXPECT_EQ(queue.Result(first), 0);
    EXPECT_EQ(queue.Result(second), std::nullopt);
    EXPECT_FALSE(Has("said"));
}

TEST_F(CommandQueueTest, EndingACommandThatHasEndedLeavesItsResult) {
    CommandQueue queue(commands, 1);
    const size_t number = Add(queue, "exit 6");
    EXPECT_EQ(queue.Result(number), 6);
    queue.End(number);
    EXPECT_EQ(queue.Result(number), 6);
}

}  // namespace
}  // namespace tavrin
