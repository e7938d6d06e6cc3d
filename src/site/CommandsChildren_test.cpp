// SPDX-License-Identifier: Apache-2.0
// Children whose output flows into the log.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "base/Files.h"
#include "site/CommandsGround.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ReadFile;
using test::TempDir;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kUntilKillFile = "while [ ! -e \"$TAVRN_KILLFILE\" ]; do sleep 0.01; done\n";

// Keeps each piece of the log as it came, and the thread that it came on.
class PieceSink : public test::CollectingSink {
  public:
    void OnLog(std::string_view text) override {
        CollectingSink::OnLog(text);
        sizes.push_back(text.size());
        onMainThread = onMainThread && std::this_thread::get_id() == m_mainThread;
    }

    std::vector<size_t> sizes;
    bool onMainThread = true;

  private:
    std::thread::id m_mainThread = std::this_thread::get_id();
};

class CommandsChildren : public test::CommandsGround<PieceSink> {
  protected:
    // Starts a child that runs this shell text.
    void Start(const std::string& text) { commands->RunScript({Script(text)}, ""); }
};

// Output

TEST_F(CommandsChildren, BothOutputStreamsFlowIntoTheLog) {
    Start("echo out; echo err >&2; echo again");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, "out\nerr\nagain\n");
    EXPECT_THAT(sink.alerts, IsEmpty());
    EXPECT_FALSE(report.HasPending());
}

TEST_F(CommandsChildren, OutputComesInPiecesOfAtMost31BytesAndInOrder) {
    Start("i=0; while [ $i -lt 500 ]; do echo \"line $i\"; i=$((i+1)); done");
    ASSERT_TRUE(PumpToTheEnd());
    std::string expected;
    for (int i = 0; i < 500; ++i) expected += "line " + std::to_string(i) + "\n";
    EXPECT_EQ(sink.log, expected);
    ASSERT_FALSE(sink.sizes.empty());
    EXPECT_LE(*std::max_element(sink.sizes.begin(), sink.sizes.end()), 31U);
}

TEST_F(CommandsChildren, LongOutputFillsItsPieces) {
    Start("head -c 100 /dev/zero | tr '\\0' x");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(sink.sizes, ElementsAre(31, 31, 31, 7));
}

TEST_F(CommandsChildren, BytesOfEveryValuePass) {
    Start("printf 'a\\000b\\377\\r\\n'");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, std::string("a\0b\xFF\r\n", 6));
}

TEST_F(CommandsChildren, OutputReachesTheLogOnTheMainThreadOnly) {
    Start("echo one");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, "one\n");
    EXPECT_TRUE(sink.onMainThread);
}

TEST_F(CommandsChildren, ASilentChildLeavesAnEmptyLogAndIsGone) {
    Start("");
    ASSERT_TRUE(PumpUntil([this] { return !commands->AnyChildRunning(); }));
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(sink.sizes, IsEmpty());
}

TEST_F(CommandsChildren, AChildSeesTheEndOfItsInputAtOnce) {
    Start("cat; echo behind");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, "behind\n");
}

// What a child is given

TEST_F(CommandsChildren, TheWordsOfTheCommandFollowPerlExec) {
    ::chmod(directory.Write("bin/PerlExec", "#!/bin/sh\nprintf '<%s>' \"$@\"\n").c_str(), 0755);
    commands->RunScript({"/lib/bin/renderit", "a b", "$HOME;x", "say \"hi\"", "-c", "", "two\nlines"}, "");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, "</lib/bin/renderit><a b><$HOME;x><say \"hi\"><-c><><two\nlines>");
}

TEST_F(CommandsChildren, LongCommandsStayWhole) {
    ::chmod(directory.Write("bin/PerlExec", "#!/bin/sh\nprintf %s \"$1\"\n").c_str(), 0755);
    commands->RunScript({std::string(1000, 'x')}, "");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, std::string(1000, 'x'));
}

TEST_F(CommandsChildren, EachChildFindsAKillFileOfItsOwn) {
    environment.Set("TAVRN_WORKDIR", work);
    Start("echo $TAVRN_KILLFILE $TAVRN_WORKDIR");
    ASSERT_TRUE(PumpToTheEnd());
    Start("echo $TAVRN_KILLFILE");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, work + "/kill.1 " + work + "\n" + work + "/kill.2\n");
    EXPECT_EQ(environment.Get("TAVRN_KILLFILE"), std::nullopt);
    EXPECT_EQ(std::getenv("TAVRN_KILLFILE"), nullptr);
}

TEST_F(CommandsChildren, AKillFileThatIsLeftFromEarlierIsRemoved) {
    directory.Write("work/kill.1", "");
    Start("[ -e \"$TAVRN_KILLFILE\" ] && echo stopped || echo runs");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, "runs\n");
}

TEST_F(CommandsChildren, AChildLeadsAProcessGroupOfItsOwn) {
    Start("cut -d' ' -f1,5 /proc/$$/stat; echo $$ $$");
    ASSERT_TRUE(PumpToTheEnd());
    const size_t half = sink.log.size() / 2;
    EXPECT_EQ(sink.log.substr(0, half), sink.log.substr(half));
}

// Running and not running

TEST_F(CommandsChildren, AChildCountsAsRunningFromTheCallOn) {
    EXPECT_FALSE(commands->AnyChildRunning());
    EXPECT_FALSE(commands->AnyProcessLeft());
    Start(kUntilKillFile);
    EXPECT_TRUE(commands->AnyChildRunning());
    EXPECT_TRUE(commands->AnyProcessLeft());
    commands->KillChildren();
    EXPECT_TRUE(PumpToTheEnd());
}

TEST_F(CommandsChildren, AGrandchildThatHoldsTheOutputKeepsTheChildRunning) {
    const std::string go = directory / "go";
    Start("(while [ ! -e " + go + " ]; do sleep 0.01; done; echo late) &\necho \"pid $$.\"");
    ASSERT_TRUE(PumpUntilLogged("."));
    const std::string stat = "/proc/" + std::to_string(std::stoi(sink.log.substr(4))) + "/stat";
    ASSERT_TRUE(PumpUntil([&] { return ReadFile(stat).find(") Z ") != std::string::npos; }))
        << "the child has not ended";
    EXPECT_TRUE(commands->AnyChildRunning());
    directory.Write("go", "");
    EXPECT_TRUE(PumpUntil([this] { return !commands->AnyChildRunning(); }));
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(sink.log, HasSubstr("late\n"));
}

TEST_F(CommandsChildren, AChildEndsWithItsOutputAlsoIfItsProcessGoesOn) {
    const std::string go = directory / "go";
    Start("exec > /dev/null 2>&1\nwhile [ ! -e " + go + " ]; do sleep 0.01; done");
    EXPECT_TRUE(PumpUntil([this] { return !commands->AnyChildRunning(); }));
    EXPECT_TRUE(commands->AnyProcessLeft());
    directory.Write("go", "");
    EXPECT_TRUE(PumpToTheEnd());
}

TEST_F(CommandsChildren, AShortChildEndsWhileALongOneRuns) {
    Start("echo long\n" + std::string(kUntilKillFile));
    ASSERT_TRUE(PumpUntilLogged("long\n"));
    int ended = 0;
    const auto ends = commands->afterChild.Add([&ended](const ChildEnd&) { ++ended; });
    Start("echo short");
    EXPECT_TRUE(PumpUntil([&ended] { return ended == 1; }));
    EXPECT_TRUE(commands->AnyChildRunning());
    commands->KillChildren();
    EXPECT_TRUE(PumpToTheEnd());
}

TEST_F(CommandsChildren, LinesOfChildrenThatRunTogetherAreWholeAndTellWhoseTheyAre) {
    const std::string go = directory / "go";
    const std::string waits = "while [ ! -e " + go + " ]; do sleep 0.01; done\n";
    const auto start = [&](const std::string& text, const std::string& label) {
        const std::string script = Script(text);
        commands->RunScript({script, "a \"b\" c"}, label);
    };
    start("printf 'alone\\nhalf a '\n" + waits + "echo \"line, longer than a piece of output: $1\"\n",
          "render 1");
    ASSERT_TRUE(PumpUntilLogged("half a "));
    start("echo second\n" + waits + "printf 'no line end'\n", "render 2");
    ASSERT_TRUE(PumpUntilLogged("second"));
    EXPECT_EQ(sink.log, "alone\nhalf a \n[render 2] second\n");
    directory.Write("go", "");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(sink.log, HasSubstr("\n[render 1] line, longer than a piece of output: a \"b\" c\n"));
    EXPECT_THAT(sink.log, HasSubstr("\n[render 2] no line end\n"));
    sink.log.clear();
    start("echo alone again", "render 3");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, "alone again\n");
}

TEST_F(CommandsChildren, AChildThatCannotStartIsToldBehindItsLabel) {
    commands->RunScript({directory.Write("script", kUntilKillFile)}, "render 1");
    environment.Set("PATH", work);
    commands->RunScript({{"bin/renderit", "a b", "2"}, "bin/renderit \"a b\" 2", "render 2", {}});
    EXPECT_TRUE(PumpUntilLogged("2\"\n"));
    EXPECT_EQ(sink.log, "[render 2] CreateProcess failed: \"PerlExec bin/renderit \"a b\" 2\"\n");
    commands->KillChildren();
    EXPECT_TRUE(PumpToTheEnd());
}

// The end of a child

TEST_F(CommandsChildren, TheExitCodeIsToldAfterAllOutput) {
    std::vector<std::string> told;
    const auto ends = commands->afterChild.Add(
        [&](const ChildEnd& end) { told.push_back(sink.log + std::to_string(end.exitCode)); });
    Start("echo all of it; exit 7");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(told, ElementsAre("all of it\n7"));
}

TEST_F(CommandsChildren, AnEndTellsWhichChildItIsOf) {
    std::vector<std::pair<int, int>> told;
    const auto ends =
        commands->afterChild.Add([&](const ChildEnd& end) { told.emplace_back(end.id, end.exitCode); });
    const int waiting = commands->RunScript({Script(kUntilKillFile + std::string("exit 1"))}, "");
    const int quick = commands->RunScript({Script("exit 2")}, "");
    ASSERT_TRUE(PumpUntil([&] { return told.size() == 1; }));
    commands->KillChildren();
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_NE(waiting, quick);
    EXPECT_THAT(told, ElementsAre(std::pair(quick, 2), std::pair(waiting, 1)));
}

TEST_F(CommandsChildren, AnEndTellsWhetherTheChildWasAskedToStop) {
    std::vector<bool> told;
    const auto ends = commands->afterChild.Add([&](const ChildEnd& end) {
        EXPECT_FALSE(end.brokeLimit);
        told.push_back(end.wasStopped);
    });
    Start("exit 0");
    ASSERT_TRUE(PumpToTheEnd());
    commands->KillChildren();  // too late for that one
    Start(kUntilKillFile);
    commands->KillChildren();
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(told, ElementsAre(false, true));
}

TEST_F(CommandsChildren, EverybodyWhoWantsToHearOfAnEndDoes) {
    int first = 0;
    int second = 0;
    const auto one = commands->afterChild.Add([&](const ChildEnd&) { ++first; });
    auto other = commands->afterChild.Add([&](const ChildEnd&) { ++second; });
    Start("exit 0");
    ASSERT_TRUE(PumpToTheEnd());
    other.reset();
    Start("exit 0");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(first, 2);
    EXPECT_EQ(second, 1);
}

TEST_F(CommandsChildren, TheSignalThatEndedAChildIsTold) {
    int told = -1;
    const auto ends = commands->afterChild.Add([&told](const ChildEnd& end) { told = end.exitCode; });
    Start("kill -9 $$");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(told, 128 + SIGKILL);
}

TEST_F(CommandsChildren, AChildThatCannotStartSaysSoInTheLog) {
    int told = -1;
    const auto ends = commands->afterChild.Add([&told](const ChildEnd& end) { told = end.exitCode; });
    environment.Set("PATH", work);
    commands->RunScript({"bin/renderit", "100%s"}, "");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, "CreateProcess failed: \"PerlExec bin/renderit 100%s\"");
    EXPECT_FALSE(commands->AnyChildRunning());
    EXPECT_THAT(sink.alerts, IsEmpty());
    EXPECT_EQ(told, 127);
}

// Stopping

TEST_F(CommandsChildren, WithoutAChildStoppingCreatesNoFile) {
    commands->KillChildren();
    Start("");
    ASSERT_TRUE(PumpToTheEnd());
    commands->KillChildren();
    std::vector<DirEntry> entries;
    ASSERT_TRUE(ListDirectory(work, entries));
    EXPECT_TRUE(entries.empty());
}

TEST_F(CommandsChildren, AStoppedChildIsForgottenAtOnceAndItsOutputStillArrives) {
    Start("echo begun\n" + std::string(kUntilKillFile) + "echo stopped");
    ASSERT_TRUE(PumpUntilLogged("begun\n"));
    EXPECT_FALSE(PathExists(work + "/kill.1"));
    commands->KillChildren();
    EXPECT_TRUE(PathExists(work + "/kill.1"));
    EXPECT_EQ(ReadFile(work + "/kill.1"), "");
    EXPECT_FALSE(commands->AnyChildRunning());
    EXPECT_TRUE(PumpUntilLogged("stopped\n"));
    EXPECT_TRUE(PumpToTheEnd());
    EXPECT_FALSE(commands->AnyChildRunning());
}

TEST_F(CommandsChildren, StoppingReachesAllChildren) {
    Start(std::string(kUntilKillFile) + "echo first");
    Start(std::string(kUntilKillFile) + "echo second");
    commands->KillChildren();
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_THAT(sink.log, HasSubstr("first\n"));
    EXPECT_THAT(sink.log, HasSubstr("second\n"));
    EXPECT_TRUE(PathExists(work + "/kill.1"));
    EXPECT_TRUE(PathExists(work + "/kill.2"));
}

TEST_F(CommandsChildren, StoppingTouchesNoProcess) {
    const std::string go = directory / "go";
    Start("trap 'echo signalled; exit' TERM INT HUP\necho begun\nwhile [ ! -e " + go +
          " ]; do sleep 0.01; done; echo own end");
    ASSERT_TRUE(PumpUntilLogged("begun\n"));
    commands->KillChildren();
    directory.Write("go", "");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, "begun\nown end\n");
}

TEST_F(CommandsChildren, AChildStartedAfterAStopRunsOn) {
    Start(kUntilKillFile);
    commands->KillChildren();
    Start("[ -e \"$TAVRN_KILLFILE\" ] && echo stopped || echo runs\n" + std::string(kUntilKillFile));
    ASSERT_TRUE(PumpUntilLogged("\n"));
    EXPECT_EQ(sink.log, "runs\n");
    EXPECT_TRUE(commands->AnyChildRunning());
    commands->KillChildren();
    EXPECT_TRUE(PumpToTheEnd());
}

}  // namespace
}  // namespace tavrin
