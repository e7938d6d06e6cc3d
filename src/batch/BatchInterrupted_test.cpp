// SPDX-License-Identifier: Apache-2.0
// The program being told to stop, and two of it at once.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "base/FileDescriptor.h"
#include "base/Files.h"
#include "base/Process.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kPerl = "#!/usr/bin/perl\n";
// A script that cannot be persuaded, with a child of its own that cannot either. Both write their numbers.
constexpr const char* kStubborn =
    "$SIG{TERM} = $SIG{INT} = $SIG{HUP} = 'IGNORE';\n"
    "my $child = fork;\n"
    "open my $file, '>', \"$ENV{TEST_DIR}/pid.$$\"; close $file;\n"
    "sleep 1 while 1;\n";
// A script that goes when it is told to, but whose child cannot be persuaded.
constexpr const char* kStubbornChild =
    "if (!fork) {\n"
    "    $SIG{TERM} = 'IGNORE';\n"
    "    close STDOUT; close STDERR;\n"
    "    open my $file, '>', \"$ENV{TEST_DIR}/pid.$$\"; close $file;\n"
    "    sleep 1 while 1;\n"
    "}\n"
    "open my $file, '>', \"$ENV{TEST_DIR}/pid.$$\"; close $file;\n"
    "sleep 1 while 1;\n";

// Whether a process runs; one that only waits to be buried does not.
bool Runs(const std::string& pid) {
    const std::string stat = test::ReadFile("/proc/" + pid + "/stat");
    return !stat.empty() && stat.find(") Z ") == std::string::npos;
}

class BatchInterruptedTest : public testing::Test {
  protected:
    BatchInterruptedTest() {
        for (const char* directory : {"tmp", "site/bin", "site/small/bin"})
            fs::create_directories(In(directory));
        fs::copy(test::SourcePath("installation/bin/PerlExec"), In("site/bin"));
        fs::copy(test::SourcePath("installation/mray/bin/redirect.pl"), In("site/small/bin"));
        fs::copy(test::SourcePath("installation/mray/bin/spp"), In("site/small/bin"));
        m_directory.Write("site/small/menu/0010.Link", "input in { float { 0 0 1 0 %g } }\n");
        Script("codefilter", "");
        m_directory.Write("doc.tvn",
                          "opdesk\n{\n    opbox\n    {\n        filename Link\n        wid 1\n    }\n}\n");
        for (const char* name : {"TEMP", "homeDrive", "homePath"}) m_environment.Unset(name);
        m_environment.Set("HOME", In("home"));
        m_environment.Unset("XDG_STATE_HOME");
        m_environment.Set("TAVRN_DIR", In("site"));
        m_environment.Set("TAVRN_LIB", "/small");
        m_environment.Set("TAVRN_TMPDIR", In("tmp"));
        m_environment.Set("TEST_DIR", In(""));
    }
    // Whatever a failing test leaves is ended, by the numbers that it has written.
    ~BatchInterruptedTest() override {
        for (const std::string& pid : Pids()) {
            if (Runs(pid)) ::kill(std::stoi(pid), SIGKILL);
        }
    }

    std::string In(const std::string& name) const { return m_directory / name; }
    void Script(const std::string& name, const std::string& text) const {
        fs::permissions(m_directory.Write("site/small/bin/" + name, kPerl + text), fs::perms::owner_all);
    }
    pid_t Start(std::vector<std::string> words, const std::string& logName = "log") {
        words.insert(words.begin(), {test::BuildPath("bin/tavrin-batch"), In("doc.tvn")});
        const FileDescriptor log(::open(In(logName).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        std::string error;
        const pid_t process = Spawn({words, m_environment.ToList(), -1, log.Get(), log.Get()}, error);
        EXPECT_GE(process, 0) << error;
        return process;
    }
    // The processes that the scripts have told of.
    std::vector<std::string> Pids() const {
        std::vector<std::string> pids;
        for (const auto& entry : fs::directory_iterator(In(""))) {
            const std::string name = entry.path().filename();
            if (name.starts_with("pid.")) pids.push_back(name.substr(4));
        }
        return pids;
    }
    // Interrupts the program once so many processes have told of themselves; the status.
    int StatusWhenInterrupted(const std::vector<std::string>& words, int signal, size_t processes = 2) {
        const pid_t program = Start(words);
        EXPECT_TRUE(test::SleepUntil([this, processes] { return Pids().size() == processes; }));
        ::kill(program, signal);
        return EndOf(program);
    }
    // The status of a program that is expected to end by itself.
    static int EndOf(pid_t program) {
        const bool ended = test::SleepUntil([program] {
            siginfo_t information{};
            ::waitid(P_PID, static_cast<id_t>(program), &information, WEXITED | WNOHANG | WNOWAIT);
            return information.si_pid == program;
        });
        EXPECT_TRUE(ended);
        if (!ended) ::kill(program, SIGKILL);
        return WaitForEnd(program);
    }
    // Whatever ran has gone: the scripts, their children, the work directory.
    void ExpectNothingLeft() const {
        for (const std::string& pid : Pids()) {
            EXPECT_TRUE(test::SleepUntil([&pid] { return !Runs(pid); })) << pid;
        }
        EXPECT_TRUE(fs::is_empty(In("tmp")));
    }
    std::string Log() const { return test::ReadFile(In("log")); }

  private:
    test::TempDir m_directory;
    Environment m_environment = Environment::FromProcess();
};

TEST_F(BatchInterruptedTest, AStubbornRenderIsEnded) {
    Script("renderit", kStubborn);
    EXPECT_EQ(StatusWhenInterrupted({"--render", "--list-operators"}, SIGTERM), 128 + SIGTERM);
    ExpectNothingLeft();
    EXPECT_EQ(Log(), "");
}

TEST_F(BatchInterruptedTest, ARenderThatHeedsItsKillFileEndsByItselfAndWhatItMadeCanBeKept) {
    Script("renderit",
           "open my $note, '>', \"$ENV{TEST_DIR}/pid.$$\"; close $note;\n"
           "select undef, undef, undef, 0.01 until -e $ENV{TAVRN_KILLFILE};\n"
           "open my $file, '>', \"$ENV{TAVRN_WORKDIR}/heeded\";\n");
    EXPECT_EQ(StatusWhenInterrupted({"--render", "--keep-work", In("kept")}, SIGINT, 1), 128 + SIGINT);
    EXPECT_TRUE(fs::exists(In("kept/heeded")));
    EXPECT_TRUE(fs::exists(In("kept/1/doc.tvn")));
    ExpectNothingLeft();
}

TEST_F(BatchInterruptedTest, AHangUpEndsTheRenderAndWhatItHasStarted) {
    Script("renderit", kStubbornChild);
    EXPECT_EQ(StatusWhenInterrupted({"--render"}, SIGHUP), 128 + SIGHUP);
    ExpectNothingLeft();
}

TEST_F(BatchInterruptedTest, AStubbornFilterIsEndedAndWhatFollowsIsNotDone) {
    Script("codefilter", kStubborn);
    EXPECT_EQ(StatusWhenInterrupted({"--save-shader", "--save", In("new.tvn")}, SIGTERM), 128 + SIGTERM);
    ExpectNothingLeft();
    EXPECT_FALSE(fs::exists(In("new.tvn")));
    EXPECT_EQ(Log(), "");
}

TEST_F(BatchInterruptedTest, TheStubbornChildOfAFilterIsEndedWithIt) {
    Script("codefilter", kStubbornChild);
    EXPECT_EQ(StatusWhenInterrupted({"--save-shader"}, SIGTERM), 128 + SIGTERM);
    ExpectNothingLeft();
}

TEST_F(BatchInterruptedTest, OpeningADocumentIsEnded) {
    Script("spp", kStubborn);
    EXPECT_EQ(StatusWhenInterrupted({"--save", In("new.tvn")}, SIGINT), 128 + SIGINT);
    ExpectNothingLeft();
    EXPECT_FALSE(fs::exists(In("new.tvn")));
    EXPECT_EQ(Log(), "");
}

TEST_F(BatchInterruptedTest, TwoAtOnceDoNotMeet) {
    // Each render waits for the other and then shows that its own files are still there.
    Script("renderit",
           "my ($name, $number) = @ARGV;\n"
           "open my $file, '>', \"$ENV{TEST_DIR}/pid.$$\"; close $file;\n"
           "my $tries = 0;\n"
           "select undef, undef, undef, 0.01 until (() = glob \"$ENV{TEST_DIR}/pid.*\") == 2 || ++$tries > "
           "3000;\n"
           "print -e \"$ENV{TAVRN_WORKDIR}/$number/$name.tvn\" ? 'own ' : 'lost ';\n"
           "print $tries > 3000 ? 'alone' : 'both';\n");
    const pid_t first = Start({"--render"}, "first");
    const pid_t second = Start({"--render"}, "second");
    EXPECT_EQ(EndOf(first), 0);
    EXPECT_EQ(EndOf(second), 0);
    EXPECT_EQ(test::ReadFile(In("first")), "own both\n");
    EXPECT_EQ(test::ReadFile(In("second")), "own both\n");
    ExpectNothingLeft();
}

}  // namespace
}  // namespace tavrin
