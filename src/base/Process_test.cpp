// SPDX-License-Identifier: Apache-2.0
#include "base/Process.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "base/FileDescriptor.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(SplitCommandLine, BlanksTabsAndLineEndsSeparateWords) {
    EXPECT_THAT(SplitCommandLine("  prog  -a\tb\r\nc "), ElementsAre("prog", "-a", "b", "c"));
    EXPECT_THAT(SplitCommandLine(""), IsEmpty());
    EXPECT_THAT(SplitCommandLine(" \t "), IsEmpty());
}

TEST(SplitCommandLine, DoubleQuotesHoldBlanksAndAreDropped) {
    EXPECT_THAT(SplitCommandLine("\"/my dir/prog\" \"a  b\" c"), ElementsAre("/my dir/prog", "a  b", "c"));
}

TEST(SplitCommandLine, QuotesMayStandInsideAWord) {
    EXPECT_THAT(SplitCommandLine("a\"b c\"d --x=\"1 2\""), ElementsAre("ab cd", "--x=1 2"));
}

TEST(SplitCommandLine, AnEmptyPairOfQuotesIsAnEmptyWord) {
    EXPECT_THAT(SplitCommandLine("a \"\" b"), ElementsAre("a", "", "b"));
    EXPECT_THAT(SplitCommandLine("\"\""), ElementsAre(""));
}

TEST(SplitCommandLine, AnOpenQuoteRunsToTheEnd) {
    EXPECT_THAT(SplitCommandLine("a \"b c "), ElementsAre("a", "b c "));
    EXPECT_THAT(SplitCommandLine("a \""), ElementsAre("a", ""));
}

TEST(SplitCommandLine, NoOtherCharacterMeansAnything) {
    EXPECT_THAT(SplitCommandLine(R"(a\ b 'c d' $HOME ; | > `x` \"y z\")"),
                ElementsAre("a\\", "b", "'c", "d'", "$HOME", ";", "|", ">", "`x`", "\\y z\\"));
}

TEST(JoinCommandLine, WordsThatAreEmptyOrHoldBlanksAreQuoted) {
    const std::vector<std::string> words = {"a", "b c", "", "d\te", "f"};
    EXPECT_EQ(JoinCommandLine(words), "a \"b c\" \"\" \"d\te\" f");
    EXPECT_EQ(SplitCommandLine(JoinCommandLine(words)), words);
    EXPECT_EQ(JoinCommandLine({}), "");
}

TEST(SearchPathOf, IsTheValueOfPath) {
    EXPECT_EQ(SearchPathOf({"XPATH=/x", "PATH=/a:/b=c", "PATHS=/y"}), "/a:/b=c");
    EXPECT_EQ(SearchPathOf({"XPATH=/x"}), "");
}

std::string WriteProgram(const TempDir& directory, std::string_view name, std::string_view text) {
    const std::string path = directory.Write(name, text);
    ::chmod(path.c_str(), 0755);
    return path;
}

TEST(FindProgram, TheFirstDirectoryThatHasItWins) {
    const TempDir directory;
    WriteProgram(directory, "two/prog", "");
    WriteProgram(directory, "three/prog", "");
    const std::string path = directory / "one" + ":" + directory / "two" + ":" + directory / "three";
    EXPECT_EQ(FindProgram("prog", path), directory / "two/prog");
    EXPECT_EQ(FindProgram("absent", path), "");
    EXPECT_EQ(FindProgram("prog", ""), "");
}

TEST(FindProgram, WhatCannotBeRunIsPassedOver) {
    const TempDir directory;
    directory.Write("plain/prog", "");
    std::filesystem::create_directories(directory / "dir/prog");
    WriteProgram(directory, "real/prog", "");
    EXPECT_EQ(FindProgram("prog", directory / "plain" + ":" + directory / "dir" + ":" + directory / "real"),
              directory / "real/prog");
}

TEST(FindProgram, AWordWithASlashStandsForItself) {
    EXPECT_EQ(FindProgram("/no/such/prog", "/bin"), "/no/such/prog");
    EXPECT_EQ(FindProgram("./prog", "/bin"), "./prog");
}

TEST(FindProgram, AnEmptyEntryIsNotTheCurrentDirectory) {
    const TempDir directory;
    WriteProgram(directory, "prog", "");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(directory.Path());
    const std::string found = FindProgram("prog", "::");
    std::filesystem::current_path(before);
    EXPECT_EQ(found, "");
}

// Starting programs

struct Outcome {
    bool started = false;
    std::string error;
    int exitCode = -1;
    std::string output;  // standard output and standard error
    pid_t pid = -1;
};

Outcome OutcomeOf(std::vector<std::string> words,
                  std::vector<std::string> environment = {"PATH=/usr/bin:/bin"}) {
    int ends[2];
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const FileDescriptor reader(ends[0]);
    FileDescriptor writer(ends[1]);
    Outcome outcome;
    outcome.pid =
        Spawn({std::move(words), std::move(environment), -1, writer.Get(), writer.Get()}, outcome.error);
    writer.Close();
    outcome.started = outcome.pid >= 0;
    if (!outcome.started) return outcome;
    char piece[256];
    for (ssize_t count = 0; (count = ::read(reader.Get(), piece, sizeof piece)) > 0;) {
        outcome.output.append(piece, static_cast<size_t>(count));
    }
    outcome.exitCode = WaitForEnd(outcome.pid);
    return outcome;
}

TEST(HasProgram, IsTrueForWhatMayBeRun) {
    const test::TempDir directory;
    const std::string plain = directory.Write("plain", "");
    const std::string program = directory.Write("program", "");
    ::chmod(program.c_str(), 0755);
    EXPECT_TRUE(HasProgram("program", directory.Path()));
    EXPECT_TRUE(HasProgram(program, ""));
    EXPECT_FALSE(HasProgram("plain", directory.Path()));
    EXPECT_FALSE(HasProgram(plain, directory.Path()));
    EXPECT_FALSE(HasProgram(directory / "gone", ""));
    EXPECT_FALSE(HasProgram(directory.Path(), "")) << "a directory";
    EXPECT_FALSE(HasProgram("", directory.Path()));
}

TEST(Spawn, WordsReachTheProgramAsTheyAre) {
    EXPECT_EQ(OutcomeOf({"printf", "<%s>", "a b", "", "$HOME;*", "\"q\""}).output, "<a b><><$HOME;*><\"q\">");
}

TEST(Spawn, TheProgramSeesTheGivenEnvironmentAlone) {
    ::setenv("TAVRIN_TEST_VALUE", "ours", 1);
    EXPECT_EQ(OutcomeOf({"env"}, {"PATH=/usr/bin:/bin", "A=1 2"}).output, "PATH=/usr/bin:/bin\nA=1 2\n");
    ::unsetenv("TAVRIN_TEST_VALUE");
}

TEST(Spawn, TheSearchPathIsTheOneOfTheGivenEnvironment) {
    const TempDir directory;
    WriteProgram(directory, "tavrin-test-prog", "#!/bin/sh\necho found\n");
    EXPECT_EQ(OutcomeOf({"tavrin-test-prog"}, {"PATH=" + directory.Path()}).output, "found\n");
    EXPECT_FALSE(OutcomeOf({"tavrin-test-prog"}, {"PATH=/usr/bin"}).started);
}

TEST(Spawn, BothOutputStreamsGoWhereTheyAreSent) {
    EXPECT_EQ(OutcomeOf({"sh", "-c", "echo out; echo err >&2"}).output, "out\nerr\n");
}

TEST(Spawn, TheInputComesFromTheGivenDescriptor) {
    const TempDir directory;
    const FileDescriptor input(::open(directory.Write("input", "given").c_str(), O_RDONLY | O_CLOEXEC));
    const FileDescriptor output(::open((directory / "output").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    std::string error;
    const pid_t child = Spawn({{"cat"}, {"PATH=/usr/bin:/bin"}, input.Get(), output.Get(), -1}, error);
    ASSERT_GE(child, 0) << error;
    EXPECT_EQ(WaitForEnd(child), 0);
    EXPECT_EQ(test::ReadFile(directory / "output"), "given");
}

TEST(Spawn, AMissingProgramSaysSo) {
    for (const char* word : {"no-such-program-anywhere", "/no/such/program", ""}) {
        const Outcome outcome = OutcomeOf({word});
        EXPECT_FALSE(outcome.started) << word;
        EXPECT_EQ(outcome.error, "No such file or directory") << word;
    }
    EXPECT_FALSE(OutcomeOf({}).started);
}

TEST(Spawn, AFileThatMayNotBeRunSaysSo) {
    const TempDir directory;
    const Outcome outcome = OutcomeOf({directory.Write("plain", "#!/bin/sh\n")});
    EXPECT_FALSE(outcome.started);
    EXPECT_EQ(outcome.error, "Permission denied");
}

TEST(Spawn, AFileThatIsNoProgramIsNotHandedToAShell) {
    const TempDir directory;
    const Outcome outcome = OutcomeOf({WriteProgram(directory, "text", "echo from a shell\n")});
    EXPECT_FALSE(outcome.started);
    EXPECT_EQ(outcome.output, "");
}

TEST(Spawn, TheChildLeadsAProcessGroupOfItsOwn) {
    // The fields are the process and its group.
    const Outcome outcome = OutcomeOf({"sh", "-c", "cut -d' ' -f1,5 /proc/$$/stat"});
    const std::string pid = std::to_string(outcome.pid);
    EXPECT_EQ(outcome.output, pid + " " + pid + "\n");
}

TEST(Spawn, SignalsThatWeIgnoreOrBlockAreFreeInTheChild) {
    const auto handler = std::signal(SIGINT, SIG_IGN);
    const auto ofSize = std::signal(SIGXFSZ, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const std::string masks = OutcomeOf({"sed", "-n", "s/^Sig[BI][lg][kn]://p", "/proc/self/status"}).output;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGINT, handler);
    std::signal(SIGXFSZ, ofSize);
    std::istringstream fields(masks);
    unsigned long long blockedThere = 1;
    unsigned long long ignoredThere = 1;
    ASSERT_TRUE(fields >> std::hex >> blockedThere >> ignoredThere) << masks;
    constexpr unsigned long long kUsersSignals = 0x7FFFFFFF;  // above are the thread library's own
    EXPECT_EQ(blockedThere & kUsersSignals, 0U);
    EXPECT_EQ(ignoredThere & kUsersSignals, 0U);
}

TEST(Spawn, OurOwnDescriptorsAreClosedInTheChild) {
    const FileDescriptor ours(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const std::string path = "/proc/self/fd/" + std::to_string(ours.Get());
    EXPECT_EQ(OutcomeOf({"test", "-e", path}).exitCode, 1);
    EXPECT_EQ(OutcomeOf({"test", "-e", "/proc/self/fd/1"}).exitCode, 0);
}

TEST(WaitForEnd, GivesTheExitCode) {
    EXPECT_EQ(OutcomeOf({"sh", "-c", "exit 0"}).exitCode, 0);
    EXPECT_EQ(OutcomeOf({"sh", "-c", "exit 77"}).exitCode, 77);
    EXPECT_EQ(OutcomeOf({"sh", "-c", "exit 255"}).exitCode, 255);
}

TEST(WaitForEnd, ASignalCountsFrom128) {
    EXPECT_EQ(OutcomeOf({"sh", "-c", "kill -9 $$"}).exitCode, 128 + SIGKILL);
    EXPECT_EQ(OutcomeOf({"sh", "-c", "kill -15 $$"}).exitCode, 128 + SIGTERM);
}

TEST(WaitForEnd, AProcessThatIsNoChildIs127) {
    const Outcome outcome = OutcomeOf({"true"});
    EXPECT_EQ(WaitForEnd(outcome.pid), 127);
}

}  // namespace
}  // namespace tavrin
