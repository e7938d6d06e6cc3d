// SPDX-License-Identifier: Apache-2.0
// Commands that are started plainly: waited for, or let go.
#include "site/Commands.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

#include "base/Files.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ReadFile;
using test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;

bool IsProcess(pid_t pid) { return PathExists("/proc/" + std::to_string(pid)); }

class CommandsTest : public testing::Test {
  protected:
    CommandsTest() {
        report.SetSink(&sink);
        environment.Set("PATH", "/usr/bin:/bin");
    }

    // Runs the command with its output caught.
    std::string OutputOf(const std::string& command) {
        const FileDescriptor output(
            ::open((directory / "output").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        commands.SetCommandOutput(output.Get());
        EXPECT_TRUE(commands.RunCommand(command, true));
        commands.SetCommandOutput(-1);
        return ReadFile(directory / "output");
    }
    std::string Script(std::string_view text) const { return "sh " + directory.Write("script.sh", text); }

    TempDir directory;
    test::CollectingSink sink;
    Report report;
    PlainQueue queue;
    Environment environment;
    Commands commands{report, environment, queue};
};

TEST_F(CommandsTest, ACommandThatIsWaitedForHasEndedWithItsExitCode) {
    ProcessInfo info{-1};
    EXPECT_TRUE(commands.RunCommand(Script("echo done > " + directory / "done" + "\nexit 3"), true, &info));
    EXPECT_EQ(info.exitCode, 3);
    EXPECT_EQ(ReadFile(directory / "done"), "done\n");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(CommandsTest, AFailingCommandHasStarted) {
    EXPECT_TRUE(commands.RunCommand("false", true));
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(CommandsTest, ACommandThatASignalEndsTellsWhich) {
    ProcessInfo info;
    EXPECT_TRUE(commands.RunCommand(Script("kill -9 $$"), true, &info));
    EXPECT_EQ(info.exitCode, 128 + SIGKILL);
}

TEST_F(CommandsTest, ACommandThatCannotStartIsAlerted) {
    ProcessInfo info{77};
    EXPECT_FALSE(commands.RunCommand("no-such-program \"a b\" %s", true, &info));
    EXPECT_FALSE(commands.RunCommand("/no/such/program", false));
    EXPECT_FALSE(commands.RunCommand("", true));
    EXPECT_THAT(sink.alerts, ElementsAre("command failed: no-such-program \"a b\" %s",
                                         "command failed: /no/such/program", "command failed: "));
    EXPECT_EQ(info.exitCode, 77);
}

TEST_F(CommandsTest, WordsAreSplitWithoutAShell) {
    EXPECT_EQ(OutputOf("printf <%s> \"a b\" $HOME ; * 'c d'"), "<a b><$HOME><;><*><'c><d'>");
}

TEST_F(CommandsTest, TheProgramIsFoundThroughTheSearchPathOfTheSite) {
    const std::string program = directory.Write("bin/tavrin-test-prog", "#!/bin/sh\necho found\n");
    EXPECT_FALSE(commands.RunCommand("tavrin-test-prog", true));
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    environment.Set("PATH", directory / "bin");
    EXPECT_EQ(OutputOf("tavrin-test-prog"), "found\n");
}

TEST_F(CommandsTest, CommandsSeeTheEnvironmentOfTheSite) {
    environment.Set("TAVRN_RENOPTS", "a b");
    EXPECT_EQ(OutputOf("printenv TAVRN_RENOPTS"), "a b\n");
    EXPECT_EQ(OutputOf("env"), "PATH=/usr/bin:/bin\nTAVRN_RENOPTS=a b\n");
}

TEST_F(CommandsTest, ACommandThatIsNotWaitedForRunsOn) {
    const std::string go = directory / "go";
    const std::string done = directory / "done";
    ASSERT_TRUE(commands.RunCommand(
        Script("while [ ! -e " + go + " ]; do sleep 0.01; done; echo x > " + done), false));
    EXPECT_FALSE(PathExists(done));
    EXPECT_FALSE(commands.AnyChildRunning());
    EXPECT_FALSE(commands.AnyProcessLeft());
    directory.Write("go", "");
    EXPECT_TRUE(test::SleepUntil([&] { return ReadFile(done) == "x\n"; }));
}

TEST_F(CommandsTest, ACommandThatIsNotWaitedForLeavesNothingBehind) {
    ASSERT_TRUE(commands.RunCommand(Script("echo $$ > " + directory / "pid"), false));
    ASSERT_TRUE(test::SleepUntil([&] { return !ReadFile(directory / "pid").empty(); }));
    const pid_t pid = std::stoi(ReadFile(directory / "pid"));
    EXPECT_TRUE(test::SleepUntil([&] {
        commands.RunCommand("true", true);
        return !IsProcess(pid);
    }));
}

TEST_F(CommandsTest, InterruptingEndsTheCommandThatIsWaitedForAndItsChildren) {
    const std::string pidFile = directory / "pid";
    const std::string command = Script("sleep 1000 &\necho $! > " + pidFile + "\nwait\n");
    std::thread other([&] {
        test::SleepUntil([&] { return ReadFile(pidFile).ends_with('\n'); });
        commands.InterruptCommand(SIGTERM);
    });
    ProcessInfo info;
    EXPECT_TRUE(commands.RunCommand(command, true, &info));
    other.join();
    EXPECT_EQ(info.exitCode, 128 + SIGTERM);
    // Whoever inherits the command's own child may take a moment to bury it.
    const std::string stat = "/proc/" + std::to_string(std::stoi(ReadFile(pidFile))) + "/stat";
    EXPECT_TRUE(test::SleepUntil([&] {
        const std::string state = ReadFile(stat);
        return state.empty() || state.find(") Z ") != std::string::npos;
    }));
}

TEST_F(CommandsTest, AfterAnInterruptNoCommandStarts) {
    commands.InterruptCommand(SIGTERM);
    const std::string done = directory / "done";
    EXPECT_FALSE(commands.RunCommand("touch " + done, true));
    EXPECT_FALSE(commands.RunCommand("touch " + done, false));
    EXPECT_FALSE(commands.RunCommand("no-such-program", true));
    EXPECT_FALSE(PathExists(done));
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(CommandsTest, ACommandThatIsNotWaitedForIsNotInterrupted) {
    const std::string go = directory / "go";
    const std::string done = directory / "done";
    ASSERT_TRUE(commands.RunCommand(
        Script("while [ ! -e " + go + " ]; do sleep 0.01; done; echo x > " + done), false));
    commands.InterruptCommand(SIGKILL);
    directory.Write("go", "");
    EXPECT_TRUE(test::SleepUntil([&] { return ReadFile(done) == "x\n"; }));
}

TEST_F(CommandsTest, AWaitIsToldFromItsBeginningToItsEnd) {
    std::vector<std::optional<std::chrono::milliseconds>> told;
    commands.OnWait([&](auto elapsed) {
        told.push_back(elapsed);
        // The command ends once the wait has been told a third time.
        if (told.size() == 3) directory.Write("go", "");
    });
    EXPECT_TRUE(
        commands.RunCommand(Script("until [ -e " + directory / "go" + " ]; do sleep 0.01; done"), true));
    ASSERT_GE(told.size(), 4U);
    EXPECT_EQ(told.front(), std::chrono::milliseconds(0));
    EXPECT_GT(*told[2], *told[1]);
    EXPECT_EQ(told.back(), std::nullopt);
    EXPECT_EQ(std::count(told.begin(), told.end(), std::nullopt), 1);
}

TEST_F(CommandsTest, ACommandThatIsLetGoOrCannotStartIsNoWait) {
    bool isTold = false;
    commands.OnWait([&](auto) { isTold = true; });
    EXPECT_TRUE(commands.RunCommand("true", false));
    EXPECT_FALSE(commands.RunCommand("/no/such/program", true));
    EXPECT_FALSE(isTold);
}

}  // namespace
}  // namespace tavrin
