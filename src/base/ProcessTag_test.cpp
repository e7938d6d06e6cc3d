// SPDX-License-Identifier: Apache-2.0
#include "base/ProcessTag.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "base/Process.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using testing::Contains;
using testing::Each;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class ProcessTagTest : public testing::Test {
  protected:
    ~ProcessTagTest() override {
        SignalTagged(TagNames(::getpid()), session, SIGKILL);
        for (const pid_t child : children) WaitForEnd(child);
    }
    // Starts a shell with this tag that runs the text.
    pid_t Start(const std::string& tag, const std::string& text) {
        const FileDescriptor carried = MakeTag(tag);
        SpawnRequest request;
        request.words = {"sh", "-c", text};
        request.environment = {"PATH=/usr/bin:/bin"};
        request.tag = carried.Get();
        std::string error;
        children.push_back(Spawn(request, error));
        EXPECT_GT(children.back(), 0) << error;
        return children.back();
    }
    std::vector<pid_t> Tagged(const std::string& name) const { return TaggedProcesses(name, session); }

    const pid_t session = ::getsid(0);
    const std::string one = TagName(::getpid(), 1);
    std::vector<pid_t> children;
};

TEST_F(ProcessTagTest, AChildIsFoundByItsTagWithAllThatItStarts) {
    const pid_t child = Start(one, "sleep 1000 & sleep 1000 & wait");
    EXPECT_TRUE(test::SleepUntil([&] { return Tagged(one).size() == 3; }));
    EXPECT_THAT(Tagged(one), Contains(child));
    EXPECT_THAT(Tagged(TagNames(::getpid())), SizeIs(3));
    EXPECT_THAT(Tagged(TagName(::getpid(), 11)), IsEmpty());
    EXPECT_THAT(Tagged(TagNames(::getpid() + 1)), IsEmpty());
}

TEST_F(ProcessTagTest, ATagIsNotTakenForOneThatItsNameBegins) {
    const pid_t child = Start(TagName(::getpid(), 12), "sleep 1000; true");
    EXPECT_THAT(Tagged(one), Not(Contains(child)));
}

TEST_F(ProcessTagTest, AGroupOfItsOwnDoesNotHideAProcess) {
    Start(one, "exec perl -e 'if (!fork) { setpgrp; exec qw(sleep 1000) } wait'");
    EXPECT_TRUE(test::SleepUntil([&] {
        const std::vector<pid_t> found = Tagged(one);
        return found.size() == 2 && ::getpgid(found[0]) != ::getpgid(found[1]);
    }));
}

TEST_F(ProcessTagTest, WhatHasASessionOfItsOwnHasGoneItsWay) {
    const test::TempDir directory;
    const std::string said = directory / "said";
    Start(one, "setsid sh -c 'echo $$ > " + said + "; exec sleep 1000' &\nsleep 1000; true");
    ASSERT_TRUE(test::SleepUntil([&] { return test::ReadFile(said).ends_with('\n'); }));
    const pid_t gone = std::stoi(test::ReadFile(said));
    EXPECT_THAT(Tagged(one), Not(Contains(gone)));
    EXPECT_THAT(TaggedProcesses(one, gone), Contains(gone));
    ::kill(gone, SIGKILL);
}

TEST_F(ProcessTagTest, ASignalReachesEachOfThem) {
    const pid_t child = Start(one, "trap '' TERM; sleep 1000; true");
    EXPECT_TRUE(SignalTagged(one, session, SIGKILL));
    EXPECT_EQ(WaitForEnd(child), 128 + SIGKILL);
    children.clear();
    EXPECT_TRUE(test::SleepUntil([&] { return !SignalTagged(one, session, SIGKILL); }));
}

TEST_F(ProcessTagTest, AProcessWithoutATagIsNotFound) {
    SpawnRequest request;
    request.words = {"sleep", "1000"};
    request.environment = {"PATH=/usr/bin:/bin"};
    std::string error;
    const pid_t child = Spawn(request, error);
    EXPECT_THAT(Tagged(TagNames(::getpid())), Not(Contains(child)));
    ::kill(child, SIGKILL);
    WaitForEnd(child);
}

TEST_F(ProcessTagTest, MemoryIsWhatAProcessHasTouched) {
    const pid_t child = Start(one, "exec perl -e '$x = \"x\" x 50_000_000; sleep 1000'");
    EXPECT_TRUE(test::SleepUntil([&] { return OwnMemory(child) > 50'000'000; }));
    EXPECT_EQ(ProgramOf(child), "perl");
    EXPECT_EQ(OwnMemory(0), 0U);
    EXPECT_EQ(ProgramOf(0), "");
}

}  // namespace
}  // namespace tavrin
