// SPDX-License-Identifier: Apache-2.0
// The end of the program: no child outlives it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <thread>

#include "base/Files.h"
#include "site/CommandsGround.h"
#include "support/Patience.h"
#include "support/Processes.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using std::chrono::milliseconds;
using std::chrono::minutes;
using test::ReadFile;
using test::TempDir;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kUntilKillFile = "while [ ! -e \"$TAVRN_KILLFILE\" ]; do sleep 0.01; done\n";
constexpr const char* kForEver = "while :; do sleep 0.01; done\n";

// A machine may be as slow as it likes; who is to be waited for in vain is given nothing.
constexpr minutes kAllTime{1};
constexpr milliseconds kNoTime{0};

class CommandsEnd : public test::CommandsGround<test::CollectingSink> {
  protected:
    // Starts a child that runs this shell text, and waits for it to have written `ready`.
    void Start(const std::string& text, const std::string& ready) {
        commands->RunScript({Script(text)}, "");
        ASSERT_TRUE(PumpUntilLogged(ready));
    }
    // The number that follows this word in the log.
    pid_t LoggedPid(const std::string& word) const {
        return std::stoi(sink.log.substr(sink.log.find(word) + word.size()));
    }
    bool Ends(pid_t pid) {
        const bool ended = PumpUntil([pid] { return test::IsGone(pid); });
        if (!ended) ::kill(pid, SIGKILL);
        return ended;
    }
};

TEST_F(CommandsEnd, WithoutAChildNothingHappens) {
    commands->EndChildren(kAllTime);
    std::vector<DirEntry> entries;
    ASSERT_TRUE(ListDirectory(work, entries));
    EXPECT_TRUE(entries.empty());
}

TEST_F(CommandsEnd, AChildThatHeedsItsKillFileEndsByItself) {
    Start("trap 'echo signalled' TERM\necho begun\n" + std::string(kUntilKillFile) + "echo own end",
          "begun\n");
    commands->EndChildren(kAllTime);
    EXPECT_FALSE(commands->AnyChildRunning());
    EXPECT_FALSE(commands->AnyProcessLeft());
    while (queue.RunPending()) {
    }
    EXPECT_EQ(sink.log, "begun\nown end\n");
    EXPECT_TRUE(PathExists(work + "/kill.1"));
}

TEST_F(CommandsEnd, AChildThatDoesNotHeedItIsAskedBySignal) {
    Start("trap 'echo signalled; exit 0' TERM\necho \"child $$.\"\n" + std::string(kForEver), ".\n");
    commands->EndChildren(kNoTime, kAllTime);
    EXPECT_FALSE(commands->AnyProcessLeft());
    EXPECT_TRUE(test::IsGone(LoggedPid("child ")));
    while (queue.RunPending()) {
    }
    EXPECT_THAT(sink.log, HasSubstr("signalled\n"));
}

TEST_F(CommandsEnd, AStubbornChildIsEnded) {
    Start("trap '' TERM INT HUP\necho \"child $$.\"\n" + std::string(kForEver), ".\n");
    commands->EndChildren(kNoTime, kNoTime);
    EXPECT_FALSE(commands->AnyProcessLeft());
    EXPECT_TRUE(test::IsGone(LoggedPid("child ")));
}

TEST_F(CommandsEnd, AStubbornChildsOwnChildrenAreEnded) {
    Start("trap '' TERM\n(" + std::string(kForEver) + ") &\necho \"child $$ grandchild $!.\"\n" + kForEver,
          ".\n");
    commands->EndChildren(kNoTime, kNoTime);
    EXPECT_TRUE(test::IsGone(LoggedPid("child ")));
    EXPECT_TRUE(Ends(LoggedPid("grandchild ")));
}

TEST_F(CommandsEnd, AGrandchildThatHoldsTheOutputIsEnded) {
    Start("trap '' TERM\n(" + std::string(kForEver) + ") &\necho \"grandchild $!.\"\n", ".\n");
    commands->EndChildren(kNoTime, kNoTime);
    EXPECT_FALSE(commands->AnyProcessLeft());
    EXPECT_TRUE(Ends(LoggedPid("grandchild ")));
}

TEST_F(CommandsEnd, AGrandchildThatHoldsTheOutputIsAskedBySignalFirst) {
    Start("(trap 'echo signalled; exit' TERM; echo trapped\n" + std::string(kForEver) + ") &\n", "trapped\n");
    commands->EndChildren(kNoTime, kAllTime);
    while (queue.RunPending()) {
    }
    EXPECT_THAT(sink.log, HasSubstr("signalled\n"));
}

TEST_F(CommandsEnd, AStubbornGrandchildIsEndedAlsoIfTheChildGoesAtTheSignal) {
    Start("(trap '' TERM; echo trapped; exec > /dev/null 2>&1\n" + std::string(kForEver) +
              ") &\necho \"grandchild $!.\"\n" + kForEver,
          "trapped\n");
    ASSERT_TRUE(PumpUntil([this] { return sink.log.find(".\n") != std::string::npos; }));
    commands->EndChildren(kNoTime, kAllTime);
    EXPECT_TRUE(Ends(LoggedPid("grandchild ")));
}

TEST_F(CommandsEnd, AGrandchildIsEndedAlsoIfTheChildGoesAtTheKillFile) {
    Start("(exec > /dev/null 2>&1\n" + std::string(kForEver) + ") &\necho \"grandchild $!.\"\n" +
              kUntilKillFile,
          ".\n");
    commands->EndChildren(kAllTime);
    EXPECT_TRUE(Ends(LoggedPid("grandchild ")));
}

TEST_F(CommandsEnd, AChildThatClosedItsOutputIsEnded) {
    Start("echo \"child $$.\"\nexec > /dev/null 2>&1\n" + std::string(kForEver), ".\n");
    ASSERT_TRUE(PumpUntil([this] { return !commands->AnyChildRunning(); }));
    commands->EndChildren(kNoTime, kAllTime);
    EXPECT_FALSE(commands->AnyProcessLeft());
    EXPECT_TRUE(test::IsGone(LoggedPid("child ")));
}

TEST_F(CommandsEnd, AChildThatWasStoppedBeforeIsStillEnded) {
    Start("echo \"child $$.\"\n" + std::string(kForEver), ".\n");
    commands->KillChildren();
    EXPECT_FALSE(commands->AnyChildRunning());
    commands->EndChildren(kNoTime, kAllTime);
    EXPECT_TRUE(test::IsGone(LoggedPid("child ")));
}

TEST_F(CommandsEnd, AStrayOutsideTheGroupThatHoldsTheOutputIsNotWaitedFor) {
    Start("setsid sh -c 'echo \"stray $$.\"; while :; do sleep 0.01; done' &\nwait\n", ".\n");
    const pid_t stray = LoggedPid("stray ");
    commands->EndChildren(kNoTime, kNoTime);
    EXPECT_FALSE(commands->AnyProcessLeft());
    ::kill(stray, SIGKILL);
}

TEST_F(CommandsEnd, ChildrenCanBeStartedAgain) {
    Start("echo begun\n" + std::string(kUntilKillFile), "begun\n");
    commands->EndChildren(kAllTime);
    Start("echo anew", "anew\n");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(CommandsEnd, TheEndOfTheObjectEndsItsChildrenAndItsReports) {
    Start("echo \"child $$.\"\ntrap 'echo late; exit' TERM\n" + std::string(kForEver), ".\n");
    int told = 0;
    const auto ends = commands->afterChild.Add([&told](const ChildEnd&) { ++told; });
    commands.reset();
    EXPECT_TRUE(test::IsGone(LoggedPid("child ")));
    while (queue.RunPending()) {
    }
    EXPECT_EQ(told, 0);
    EXPECT_EQ(sink.log.find("late"), std::string::npos);
}

TEST_F(CommandsEnd, ACommandThatWasLetGoOutlivesTheObject) {
    const std::string go = directory / "go";
    const std::string done = directory / "done";
    ASSERT_TRUE(commands->RunCommand(
        "sh " + directory.Write("script", "while [ ! -e " + go + " ]; do sleep 0.01; done; echo x > " + done),
        false));
    commands.reset();
    directory.Write("go", "");
    EXPECT_TRUE(PumpUntil([&] { return ReadFile(done) == "x\n"; }));
}

}  // namespace
}  // namespace tavrin
