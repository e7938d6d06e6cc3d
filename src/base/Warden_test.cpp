// SPDX-License-Identifier: Apache-2.0
#include "base/Warden.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "base/Process.h"
#include "base/ProcessTag.h"
#include "support/Patience.h"
#include "support/Processes.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

// A program of its own that has a warden, starts this shell text as a child and comes to `end`.
pid_t Program(const std::string& text, bool isTagged, const std::function<void()>& end) {
    const pid_t program = ::fork();
    if (program != 0) return program;
    {
        const Warden warden;
        const FileDescriptor tag = MakeTag(TagName(::getpid(), 1));
        SpawnRequest request;
        request.words = {"sh", "-c", text};
        request.environment = {"PATH=/usr/bin:/bin"};
        if (isTagged) request.tag = tag.Get();
        std::string error;
        Spawn(request, error);
        end();
    }
    ::_exit(0);
}

class WardenTest : public testing::Test {
  protected:
    // The number that the child leaves in a file of the directory.
    pid_t Told(const std::string& name) {
        const std::string path = directory / name;
        EXPECT_TRUE(test::SleepUntil([&] { return test::ReadFile(path).ends_with('\n'); })) << name;
        return std::stoi("0" + test::ReadFile(path));
    }
    // Tells its number and goes on for ever.
    std::string Tells(const std::string& name) const {
        return "echo $$ > " + directory / name + "; while :; do sleep 0.05; done";
    }

    test::TempDir directory;
};

TEST_F(WardenTest, WhateverSignalEndsTheProgramItsChildrenEndToo) {
    for (const int signal : {SIGKILL, SIGTERM, SIGSEGV, SIGABRT, SIGHUP}) {
        const std::string name = "child." + std::to_string(signal);
        const pid_t program = Program("trap '' TERM HUP INT; " + Tells(name), true, [] { ::pause(); });
        const pid_t child = Told(name);
        ::kill(program, signal);
        ::waitpid(program, nullptr, 0);
        EXPECT_TRUE(test::SleepUntil([&] { return test::IsGone(child); })) << "signal " << signal;
        ::kill(child, SIGKILL);
    }
}

TEST_F(WardenTest, AChildThatHeedsASignalEndsByItself) {
    const pid_t program =
        Program("trap 'echo 1 > " + directory / "heeded" + "; exit' TERM; " + Tells("child"), true,
                [] { ::pause(); });
    Told("child");
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    EXPECT_EQ(Told("heeded"), 1);
}

TEST_F(WardenTest, ASignalToTheWholeGroupOfTheProgramDoesNotReachTheWarden) {
    const pid_t program = Program(Tells("child"), true, [this] {
        ::setpgid(0, 0);
        directory.Write("group", "1\n");
        ::pause();
    });
    Told("group");
    const pid_t child = Told("child");
    ::kill(-program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    EXPECT_TRUE(test::SleepUntil([&] { return test::IsGone(child); }));
}

TEST_F(WardenTest, WhatWasLetGoStays) {
    const pid_t program = Program(Tells("free"), false, [] { ::pause(); });
    const pid_t free = Told("free");
    ::kill(program, SIGKILL);
    ::waitpid(program, nullptr, 0);
    // By the time that one of a later program has ended the warden of this one has looked.
    const pid_t later = Program(Tells("held"), true, [] { ::pause(); });
    const pid_t held = Told("held");
    ::kill(later, SIGKILL);
    ::waitpid(later, nullptr, 0);
    EXPECT_TRUE(test::SleepUntil([&] { return test::IsGone(held); }));
    EXPECT_FALSE(test::IsGone(free));
    ::kill(free, SIGKILL);
}

TEST_F(WardenTest, AProgramThatEndsInGoodOrderLeavesNoWarden) {
    // Who waits for the program's output to close waits for the warden, too, if that has it.
    const pid_t program = ::fork();
    if (program == 0) {
        Warden warden;
        warden.Dismiss();
        ::_exit(::waitpid(-1, nullptr, 0) < 0 ? 0 : 1);
    }
    int status = -1;
    ::waitpid(program, &status, 0);
    EXPECT_EQ(status, 0) << "a process was left to be buried";
}

}  // namespace
}  // namespace tavrin
