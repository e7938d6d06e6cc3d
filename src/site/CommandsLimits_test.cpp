// SPDX-License-Identifier: Apache-2.0
// What children may use: time, memory, the log; and what becomes of a child for which the system has no room.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "base/Files.h"
#include "base/Process.h"
#include "site/CommandsGround.h"
#include "support/NoRoom.h"
#include "support/Patience.h"
#include "support/Processes.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ReadFile;
using test::TempDir;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr uint64_t kMegabyte = 1 << 20;
constexpr const char* kForEver = "while :; do sleep 0.05; done\n";

ChildLimits Seconds(int seconds) { return {std::chrono::seconds(seconds), 0, "limit.rendertime", ""}; }
ChildLimits Megabytes(uint64_t megabytes) {
    return {std::chrono::seconds(0), megabytes * kMegabyte, "", "limit.memory"};
}

class CommandsLimits : public test::CommandsGround<test::CollectingSink> {
  protected:
    void Start(const std::string& text, const ChildLimits& limits) {
        commands->RunScript(CallOf({Script(text)}, "render 1", limits));
    }
    bool Run(const std::string& text, const ChildLimits& limits) {
        return commands->RunCall(CallOf({"sh", Script(text)}, "codefilter", limits), &info);
    }
    // Shell text that prints so many thousand bytes, and tells how many it has.
    std::string Prints(int thousands) const {
        const std::string told = directory / "printed";
        return "perl -e '$| = 1; for (1 .. " + std::to_string(thousands) +
               ") { print \"x\" x 1000; open F, q(>), q(" + told + ".new); print F $_; close F; rename q(" +
               told + ".new), q(" + told + ") }'\n";
    }
    // Until such a child gets on no more. One that is only slow passes for one that waits, which fails no
    // test.
    bool UntilTheChildWaits() {
        constexpr int kOften = 50;
        const auto limit = std::chrono::steady_clock::now() + test::kPatience;
        int last = 0;
        for (int same = 0; same < kOften; std::this_thread::sleep_for(std::chrono::milliseconds(10))) {
            if (std::chrono::steady_clock::now() > limit) return false;
            const int now = Told("printed");
            same = now == last && now > 0 ? same + 1 : 0;
            last = now;
        }
        return true;
    }
    // The number that a script has left in a file.
    pid_t Told(const std::string& name) { return std::stoi("0" + ReadFile(directory / name)); }

    ProcessInfo info;
};

// Time and memory

TEST_F(CommandsLimits, ACommandWithinItsLimitsIsNotTouched) {
    EXPECT_TRUE(Run("exit 3", {std::chrono::hours(1), 1024 * kMegabyte, "", ""}));
    EXPECT_EQ(info.exitCode, 3);
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(CommandsLimits, ACommandThatTakesTooLongIsStoppedWithAllThatItStartedAndTheLimitIsNamed) {
    EXPECT_TRUE(Run(
        "trap '' TERM\nperl -e 'setpgrp; $SIG{TERM} = \"IGNORE\"; open F, q(>), shift; print F $$; close F;"
        " sleep 1 while 1' " +
            directory / "inner" + " &\n" + kForEver,
        Seconds(1)));
    EXPECT_EQ(info.exitCode, 128 + SIGKILL);
    EXPECT_THAT(sink.alerts,
                ElementsAre(testing::MatchesRegex(
                    "codefilter( \\(.*\\))? was stopped: it took more than 1 second, the limit of "
                    "limit.rendertime")));
    EXPECT_TRUE(PumpUntil([this] { return test::IsGone(Told("inner")); }));
}

TEST_F(CommandsLimits, ARenderThatTakesTooLongIsStoppedAndTold) {
    int ended = 0;
    const auto ends = commands->afterChild.Add([&](const ChildEnd& end) {
        ended = end.exitCode;
        EXPECT_TRUE(end.brokeLimit);
        EXPECT_FALSE(end.wasStopped) << "nobody has asked it to";
    });
    Start("echo begun\n" + std::string(kForEver), Seconds(1));
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(ended, 128 + SIGTERM);
    EXPECT_EQ(sink.log, "begun\n");
    ASSERT_THAT(sink.alerts, SizeIs(1));
    EXPECT_THAT(sink.alerts[0], StartsWith("render 1"));
    EXPECT_THAT(sink.alerts[0],
                EndsWith("was stopped: it took more than 1 second, the limit of limit.rendertime"));
}

TEST_F(CommandsLimits, TheLimitHoldsForARenderThatHasClosedItsOutputAndForOneThatFloodsIt) {
    Start("exec > /dev/null 2>&1\n" + std::string(kForEver), Seconds(1));
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(sink.alerts, SizeIs(1));
    Start("trap '' TERM\nwhile :; do echo flood; done\n", Seconds(1));
    // Nobody takes the pieces meanwhile.
    const auto limit = std::chrono::steady_clock::now() + test::kPatience;
    while (commands->AnyProcessLeft() && std::chrono::steady_clock::now() < limit)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_FALSE(commands->AnyProcessLeft());
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(sink.alerts, SizeIs(2));
}

TEST_F(CommandsLimits, ARenderWhoseOwnChildHoldsTheOutputIsStoppedWithIt) {
    Start("(trap '' TERM; echo $$ > /dev/null\n" + std::string(kForEver) + ") &\n", Seconds(1));
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(sink.alerts, SizeIs(1));
}

// Keeps what it takes until it is stopped.
std::string Hoards(int megabytes) {
    return "perl -e '$x = \"x\" x (" + std::to_string(megabytes) + " << 20); sleep 1 while 1' &\nwait\n";
}

TEST_F(CommandsLimits, WhatTakesTooMuchMemoryIsStoppedAndTheProgramNamed) {
    EXPECT_TRUE(Run(Hoards(100), Megabytes(64)));
    Start(Hoards(100), Megabytes(64));
    ASSERT_TRUE(PumpToTheEnd());
    const std::string rest =
        " (perl) was stopped: it took more than 64 MB of memory, the limit of limit.memory";
    EXPECT_THAT(sink.alerts, ElementsAre("codefilter" + rest, "render 1" + rest));
}

// Output

// Bytes that the allocator has given out.
size_t InUse() { return ::mallinfo2().uordblks; }

TEST_F(CommandsLimits, AChildThatNobodyListensToWaitsAndTakesNoMemoryHere) {
    [[maybe_unused]] const size_t before = InUse();
    Start(Prints(5000), {});
    ASSERT_TRUE(UntilTheChildWaits());
    EXPECT_LT(Told("printed"), 5000);
#ifndef __SANITIZE_ADDRESS__
    EXPECT_LT(InUse(), before + 4 * kMegabyte);
#endif
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(Told("printed"), 5000);
    EXPECT_EQ(sink.log.size(), 5'000'000U) << "nothing of it is lost";
}

TEST_F(CommandsLimits, OutputBeyondTheBoundIsLeftOutAndItsEndIsShown) {
    commands->SetOutputLimit(1000);
    commands->RunScript(
        {Script("i=0; while [ $i -lt 20000 ]; do echo \"line $i\"; i=$((i+1)); done; echo last")},
        "render 1");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(sink.log, StartsWith("line 0\nline 1\n"));
    EXPECT_THAT(sink.log, HasSubstr(" bytes of output are left out here; limit.output "));
    EXPECT_THAT(sink.log, EndsWith("line 19999\nlast\n"));
    EXPECT_LT(sink.log.size(), 1000U + 4096U + 200U);
}

TEST_F(CommandsLimits, AChildThatWaitsForSomebodyToListenDoesNotHoldUpTheEnd) {
    Start("trap '' TERM\n" + Prints(5000), {});
    ASSERT_TRUE(UntilTheChildWaits());
    commands->EndChildren(std::chrono::milliseconds(0), std::chrono::milliseconds(0));
    EXPECT_FALSE(commands->AnyProcessLeft());
}

TEST_F(CommandsLimits, AChildThatWaitsForSomebodyToListenSeesItsKillFile) {
    Start(Prints(5000) + "until [ -e \"$TAVRN_KILLFILE\" ]; do sleep 0.01; done\necho 1 > " +
              directory / "heeded",
          {});
    ASSERT_TRUE(UntilTheChildWaits());
    commands->EndChildren(test::kPatience);
    EXPECT_EQ(ReadFile(directory / "heeded"), "1\n");
}

// No room in the system

TEST_F(CommandsLimits, WhereNoThreadCanBeStartedOneChildFailsWithAnAlert) {
    ::chmod(directory.Path().c_str(), 0755);
    const int result = test::WhereNothingCanBeStarted([this] {
        if (commands->RunScript({"bin/renderit", "a b"}, "render 1") != 0) return 3;
        const std::string expected =
            "unable to start a thread for \"PerlExec bin/renderit a b\": Resource temporarily unavailable";
        if (sink.LastAlert() != expected) return 1;
        if (commands->AnyChildRunning() || commands->AnyProcessLeft()) return 2;
        commands->EndChildren(std::chrono::milliseconds(0));
        return 0;
    });
    EXPECT_EQ(result, 0);
}

TEST_F(CommandsLimits, WhereNoProcessCanBeStartedOneCommandFailsWithAnAlert) {
    ::chmod(directory.Path().c_str(), 0755);
    const int result = test::WhereNothingCanBeStarted([this] {
        if (commands->RunCall(CallOf({"true"}))) return 1;
        return sink.LastAlert() == "command failed: true" ? 0 : 2;
    });
    EXPECT_EQ(result, 0);
}

}  // namespace
}  // namespace tavrin
