// SPDX-License-Identifier: Apache-2.0
// A child that is spoken to in lines: what it hears, what is heard of it, and every way in which it ends.
#include "site/LineChild.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "base/ProcessTag.h"
#include "site/CommandsGround.h"
#include "support/Processes.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using std::chrono::hours;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// Stands for a script that answers each line that it hears.
constexpr const char* kEcho = "while read -r line; do echo \"heard $line\"; done\n";

long Descriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}
long Threads() { return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator()); }

class LineChildTest : public test::CommandsGround<test::CollectingSink> {
  protected:
    void Start(
        const std::string& text, const std::function<void(LineCall&)>& change = [](LineCall&) {}) {
        LineCall call;
        call.call = CallOf({"PerlExec", Script(text)}, "live");
        change(call);
        m_end.reset();
        m_child = commands->StartLines(std::move(call), {[this](const std::string& line) {
                                                             m_lines.push_back(line);
                                                             if (m_onLine) m_onLine();
                                                         },
                                                         [this](const LineEnd& end) { m_end = end; }});
    }
    bool PumpToLines(size_t count) {
        return PumpUntil([&] { return m_lines.size() >= count; });
    }
    // Until the child says no more.
    std::string PumpToEnd() {
        if (!PumpUntil([this] { return m_end.has_value(); })) return "it does not end";
        return m_end->why;
    }
    bool PumpUntilNothingIsLeft() {
        return PumpUntil([this] { return !commands->AnyLineChildLeft(); });
    }
    // The process that a script has told of in its first line.
    pid_t Told() const { return static_cast<pid_t>(std::stol(m_lines.at(0))); }

    std::unique_ptr<LineChild> m_child;
    std::vector<std::string> m_lines;
    std::optional<LineEnd> m_end;
    std::function<void()> m_onLine;
};

TEST_F(LineChildTest, EachLineIsHeardAndAnswered) {
    Start(kEcho);
    m_child->Send("one");
    m_child->Send("two words");
    ASSERT_TRUE(PumpToLines(2));
    m_child->Send("three");
    ASSERT_TRUE(PumpToLines(3));
    EXPECT_THAT(m_lines, ElementsAre("heard one", "heard two words", "heard three"));
    EXPECT_FALSE(m_end.has_value());
    EXPECT_TRUE(sink.alerts.empty());
}

TEST_F(LineChildTest, ItGetsTheEnvironmentOfAllChildrenAndItsOwn) {
    environment.Set("COMMON", "for all");
    environment.Set("OTHER", "hidden");
    Start("echo \"$COMMON, $OTHER, ${TAVRN_KILLFILE%.*}\"\n", [](LineCall& call) {
        call.environment = {{"OTHER", "its own"}};
    });
    EXPECT_EQ(PumpToEnd(), "it ended with status 0");
    EXPECT_THAT(m_lines, ElementsAre("for all, its own, " + work + "/kill"));
}

TEST_F(LineChildTest, ItGivesWayToTheProgram) {
    Start("read -r line; nice\n");
    m_child->Send("go on");
    EXPECT_EQ(PumpToEnd(), "it ended with status 0");
    const int own = ::getpriority(PRIO_PROCESS, 0);
    EXPECT_THAT(m_lines, ElementsAre(std::to_string(std::min(own + 5, 19))));
}

TEST_F(LineChildTest, ALineMayComeInPiecesAndTheLastOneWithoutItsEnd) {
    Start("printf 'one '; printf 'line\\r\\n\\ntwo'\n");
    PumpToEnd();
    EXPECT_THAT(m_lines, ElementsAre("one line", "", "two"));
}

TEST_F(LineChildTest, WithoutInputItsInputIsAtItsEnd) {
    Start("cat; echo read\n", [](LineCall& call) { call.hasInput = false; });
    EXPECT_EQ(PumpToEnd(), "it ended with status 0");
    EXPECT_THAT(m_lines, ElementsAre("read"));
}

TEST_F(LineChildTest, StandardErrorComesIntoTheLogInWholeLinesAndIsNoAnswer) {
    Start("printf 'a ' >&2; printf 'warning\\nlast' >&2; echo answer\n");
    PumpToEnd();
    EXPECT_THAT(m_lines, ElementsAre("answer"));
    EXPECT_EQ(sink.log, "a warning\nlast\n");
}

TEST_F(LineChildTest, StandardErrorAmongTheLinesIsAChoice) {
    Start("echo one >&2; echo two\n", [](LineCall& call) { call.errorsAreLines = true; });
    PumpToEnd();
    EXPECT_THAT(m_lines, ElementsAre("one", "two"));
    EXPECT_EQ(sink.log, "");
}

TEST_F(LineChildTest, OfStandardErrorTheLogGetsWhatTheSiteAllows) {
    commands->SetOutputLimit(1000);
    Start("i=0; while [ $i -lt 2000 ]; do echo \"line $i of many\" >&2; i=$((i + 1)); done\n");
    PumpToEnd();
    EXPECT_THAT(sink.log, StartsWith("line 0 of many\nline 1 of many\n"));
    EXPECT_THAT(sink.log, HasSubstr("bytes of output are left out here"));
    EXPECT_TRUE(sink.log.ends_with("line 1999 of many\n"));
    EXPECT_LT(sink.log.size(), 1000U + OutputBound::kLastBytes + 500U);
}

TEST_F(LineChildTest, ItIsNoneOfTheChildrenThatRendersWaitFor) {
    Start(kEcho);
    EXPECT_FALSE(commands->AnyChildRunning());
    EXPECT_FALSE(commands->AnyProcessLeft());
    EXPECT_TRUE(commands->AnyLineChildLeft());
    commands->KillChildren();
    m_child->Send("still there");
    EXPECT_TRUE(PumpToLines(1));
}

TEST_F(LineChildTest, ItsLinesCutNoLineOfARender) {
    const std::string go = directory / "go";
    commands->RunScript(
        {Script("printf 'half '; while [ ! -e " + go + " ]; do sleep 0.01; done; echo done\n")}, "render 1");
    ASSERT_TRUE(PumpUntilLogged("half "));
    Start("echo 'in between' >&2\n");
    PumpToEnd();
    directory.Write("go", "");
    ASSERT_TRUE(PumpToTheEnd());
    EXPECT_EQ(sink.log, "half \nin between\ndone\n");
}

// What it may not do

TEST_F(LineChildTest, ALineWithoutAnEndEndsIt) {
    Start("exec perl -e '$| = 1; print \"x\" x 1000 while 1'\n");
    EXPECT_EQ(PumpToEnd(), "it wrote a line of more than 64 KB");
    EXPECT_TRUE(m_end->wasEnded);
    EXPECT_THAT(m_lines, IsEmpty());
    EXPECT_TRUE(PumpUntilNothingIsLeft());
}

TEST_F(LineChildTest, ALineOfTheMostThatIsAllowedPasses) {
    Start("exec perl -e 'print \"x\" x 65536, \"\\n\"'\n");
    EXPECT_EQ(PumpToEnd(), "it ended with status 0");
    ASSERT_EQ(m_lines.size(), 1U);
    EXPECT_EQ(m_lines[0].size(), LineChild::kLongestLine);
}

// Nobody takes the lines meanwhile: what waits for the main thread stays small, and the child waits.
TEST_F(LineChildTest, MillionsOfLinesWaitInTheChildAndNotHere) {
    const std::string count = directory / "count";
    Start(
        "exec perl -e '$| = 1; while (1) { print \"x\" x 99, \"\\n\"; next if ++$n % 100; open my $f, \">\", "
        "\"" +
        count + "\"; print $f $n; close $f }'\n");
    const auto written = [&] {
        const std::string text = test::ReadFile(count);
        return text.empty() ? 0L : std::stol(text);
    };
    // Without a look at the queue: it stands still once pipe and way are full.
    ASSERT_TRUE(test::SleepUntil([&] { return written() >= 1000; }));
    long before = -1;
    ASSERT_TRUE(test::SleepUntil([&] {
        const long now = written();
        std::this_thread::sleep_for(milliseconds(50));
        return std::exchange(before, now) == now;
    }));
    EXPECT_LT(written(), 10'000);
    // Who takes them gets on.
    ASSERT_TRUE(PumpToLines(20'000));
    m_child->EndNow();
    EXPECT_EQ(PumpToEnd(), "it was ended");
}

TEST_F(LineChildTest, AnAnswerThatDoesNotComeEndsIt) {
    Start("while read -r line; do sleep 1000; done\n");
    m_child->Send("one");
    m_child->ExpectWithin(milliseconds(20), "it gave no answer");
    EXPECT_EQ(PumpToEnd(), "it gave no answer");
    EXPECT_TRUE(m_end->wasEnded);
    EXPECT_TRUE(PumpUntilNothingIsLeft());
}

TEST_F(LineChildTest, OneThatOwesNothingMayWait) {
    Start(kEcho);
    m_child->ExpectWithin(hours(1), "it gave no answer");
    m_child->ExpectNothing();
    m_child->Send("one");
    EXPECT_TRUE(PumpToLines(1));
}

// The main thread may be busy for longer than a child has.
TEST_F(LineChildTest, AnAnswerInTimeCountsHoweverLateItIsHeard) {
    const std::string said = directory / "said";
    Start("read -r line; echo answer; echo > " + said + "; cat\n");
    m_onLine = [this] { m_child->ExpectNothing(); };
    const auto time = std::chrono::seconds(3);
    const auto deadline = std::chrono::steady_clock::now() + time;
    m_child->ExpectWithin(time, "it gave no answer");
    m_child->Send("one");
    ASSERT_TRUE(test::SleepUntil([&] { return fs::exists(said); }));
    ASSERT_TRUE(
        test::SleepUntil([&] { return std::chrono::steady_clock::now() > deadline + milliseconds(50); }));
    ASSERT_TRUE(PumpToLines(1));
    EXPECT_FALSE(m_end.has_value());
    EXPECT_TRUE(commands->AnyLineChildLeft());
}

TEST_F(LineChildTest, MemoryBeyondTheLimitEndsIt) {
    Start("exec perl -e 'my $x = \"x\" x (100 << 20); sleep 1000'\n", [](LineCall& call) {
        call.call.limits.memory = 50 << 20;
        call.call.limits.memorySetBy = "limit.memory";
    });
    m_child->ExpectWithin(hours(1), "it gave no answer");
    EXPECT_THAT(PumpToEnd(), HasSubstr("more than 50 MB of memory, the limit of limit.memory"));
    EXPECT_TRUE(PumpUntilNothingIsLeft());
}

TEST_F(LineChildTest, OneThatDiesIsToldOfWithItsStatus) {
    Start("exit 3\n");
    EXPECT_EQ(PumpToEnd(), "it ended with status 3");
    EXPECT_FALSE(m_end->wasEnded);
    EXPECT_EQ(m_end->exitCode, 3);
    m_child->Send("nobody hears this");
    m_child->ExpectWithin(milliseconds(1), "late");
    Start("kill -9 $$\n");
    EXPECT_EQ(PumpToEnd(), "it was ended by signal 9");
}

TEST_F(LineChildTest, OneThatCannotBeStartedHasEnded) {
    Start("", [](LineCall& call) { call.call.words = {"there-is-no-such-program"}; });
    EXPECT_EQ(PumpToEnd(), "it cannot be started: No such file or directory");
    EXPECT_TRUE(m_end->wasEnded);
    EXPECT_TRUE(PumpUntilNothingIsLeft());
}

TEST_F(LineChildTest, OneThatClosesItsOutputIsEnded) {
    Start("echo $$; exec >&-; exec sleep 1000\n");
    EXPECT_EQ(PumpToEnd(), "it closed its output");
    EXPECT_TRUE(test::SleepUntil([this] { return test::IsGone(Told()); }));
}

TEST_F(LineChildTest, OneThatReadsNoMoreDoesNotHoldUsUp) {
    Start("exec <&-; echo closed; sleep 1000\n");
    ASSERT_TRUE(PumpToLines(1));
    for (int line = 0; line < 2000; ++line) m_child->Send(std::string(100, 'x'));
    m_child->ExpectWithin(milliseconds(20), "it gave no answer");
    EXPECT_EQ(PumpToEnd(), "it gave no answer");
}

TEST_F(LineChildTest, OneThatDoesNotReadDoesNotHoldUsUpEither) {
    Start("echo ready; sleep 1000\n");
    ASSERT_TRUE(PumpToLines(1));
    for (int line = 0; line < 2000; ++line) m_child->Send(std::string(100, 'x'));
    m_child->EndNow();
    EXPECT_EQ(PumpToEnd(), "it was ended");
}

// How it goes

TEST_F(LineChildTest, LettingItGoEndsItsInput) {
    Start("echo ready; cat > /dev/null; echo end > " + directory / "asked" + "\n");
    ASSERT_TRUE(PumpToLines(1));
    m_child.reset();
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    EXPECT_TRUE(fs::exists(directory / "asked"));
    EXPECT_FALSE(m_end.has_value()) << "who has let it go hears no more";
}

TEST_F(LineChildTest, OneThatIgnoresItsInputFindsItsKillFileWhichGoesWithIt) {
    Start("echo $TAVRN_KILLFILE; until [ -e $TAVRN_KILLFILE ]; do sleep 0.01; done; echo seen > " +
          directory / "asked" + "\n");
    ASSERT_TRUE(PumpToLines(1));
    m_child.reset();
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    EXPECT_TRUE(fs::exists(directory / "asked"));
    EXPECT_FALSE(fs::exists(m_lines[0]));
}

TEST_F(LineChildTest, OneThatHeedsNothingIsEndedAllTheSame) {
    Start("trap '' TERM INT HUP; echo $$; while :; do sleep 1000; done\n");
    ASSERT_TRUE(PumpToLines(1));
    m_child.reset();
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    EXPECT_TRUE(test::IsGone(Told()));
}

TEST_F(LineChildTest, WhatItHasStartedGoesWithItAlsoFromAnotherGroup) {
    Start(
        "exec perl -e '$| = 1; my $child = fork; if (!$child) { setpgrp; sleep 1000; exit } print "
        "\"$child\\n\"; sleep "
        "1000'\n");
    ASSERT_TRUE(PumpToLines(1));
    m_child->EndNow();
    EXPECT_EQ(PumpToEnd(), "it was ended");
    EXPECT_TRUE(test::IsGone(Told()));
}

// The pipe stays open on their side.
TEST_F(LineChildTest, ChildrenThatHoldItsOutputDoNotKeepItsEndFromBeingTold) {
    Start("sleep 1000 & echo $!; exit 4\n");
    EXPECT_EQ(PumpToEnd(), "it ended with status 4");
    EXPECT_TRUE(test::IsGone(Told()));
    EXPECT_TRUE(PumpUntilNothingIsLeft());
}

TEST_F(LineChildTest, TheEndOfTheProgramEndsItWithoutAWord) {
    Start("trap '' TERM; echo $$; while :; do sleep 1000; done\n");
    ASSERT_TRUE(PumpToLines(1));
    commands->EndChildren(milliseconds(0), milliseconds(0));
    EXPECT_FALSE(commands->AnyLineChildLeft());
    EXPECT_TRUE(test::IsGone(Told()));
    while (queue.RunPending()) {
    }
    EXPECT_FALSE(m_end.has_value());
}

TEST_F(LineChildTest, TheEndOfTheProgramLeavesOneTheTimeToGo) {
    Start("echo ready; cat > /dev/null; echo went > " + directory / "went" + "\n");
    ASSERT_TRUE(PumpToLines(1));
    commands->EndChildren(test::kPatience);
    EXPECT_TRUE(fs::exists(directory / "went"));
}

TEST_F(LineChildTest, ItOutlivesNeitherTheCommandsNorDoesItsOwnerNeedThem) {
    Start("echo $$; sleep 1000\n");
    ASSERT_TRUE(PumpToLines(1));
    commands.reset();
    EXPECT_TRUE(test::IsGone(Told()));
    m_child->Send("nobody hears this");
    m_child.reset();
    while (queue.RunPending()) {
    }
}

TEST_F(LineChildTest, ItMayBeLetGoWhileItIsHeard) {
    m_onLine = [this] { m_child.reset(); };
    Start("echo one; echo two; cat\n");
    ASSERT_TRUE(PumpToLines(1));
    EXPECT_TRUE(PumpUntilNothingIsLeft());
    while (queue.RunPending()) {
    }
    EXPECT_THAT(m_lines, ElementsAre("one"));
}

TEST_F(LineChildTest, ItCarriesATagOfTheProgram) {
    Start("echo $$; cat\n");
    ASSERT_TRUE(PumpToLines(1));
    EXPECT_THAT(TaggedProcesses(TagNames(::getpid()), ::getsid(0)), testing::Contains(Told()));
}

TEST_F(LineChildTest, ManyOneAfterAnotherLeaveNeitherThreadsNorDescriptorsNorFiles) {
    Start("exit 0\n");
    PumpToEnd();
    m_child.reset();
    ASSERT_TRUE(PumpUntilNothingIsLeft());
    commands->EndChildren(milliseconds(0));
    const long descriptors = Descriptors();
    const long threads = Threads();
    for (int round = 0; round < 30; ++round) {
        Start(round % 3 == 0 ? "exit 0\n" : kEcho);
        if (round % 3 == 1) m_child->EndNow();
        m_child.reset();
    }
    ASSERT_TRUE(PumpUntilNothingIsLeft());
    commands->EndChildren(milliseconds(0));
    // The last of its threads lets go of what it had behind its last word.
    EXPECT_TRUE(test::SleepUntil([&] { return Descriptors() == descriptors; })) << Descriptors();
    EXPECT_TRUE(test::SleepUntil([&] { return Threads() == threads; }));
    EXPECT_TRUE(fs::is_empty(work));
}

}  // namespace
}  // namespace tavrin
