// SPDX-License-Identifier: Apache-2.0
// The program itself, started as a user starts it, seen and steered through the display.
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "ui/base/Text.h"
#include "ui/support/RunningProgram.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::Ask;
using test::FrameTest;
using test::RunningProgram;
using test::WaitUntil;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

// With a home of its own, in which nothing is set but HOME.
class ProgramTest : public FrameTest {
  protected:
    ProgramTest() {
        fs::create_directories(directory / "home");
        for (const char* name : {"XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
            environment.Unset(name);
        Define("autosave.interval 1\n");
    }
    RunningProgram Tavrin(const QStringList& words = {}) { return RunningProgram(environment, words); }

    // A document file with one box.
    std::string MakeDocument(const std::string& name) {
        Make();
        std::string path = WriteDocument(name);
        End();
        return path;
    }
    void Define(const std::string& more) {
        const std::string name = "tavrin/tiny/tavrn.def";
        directory.Write(name, test::ReadFile(directory / name) + more);
    }
    // Once it is there.
    std::string WorkDirOf(const RunningProgram& run) {
        const std::string prefix = "tavrn." + std::to_string(run.Id()) + ".";
        std::string path;
        EXPECT_TRUE(WaitUntil([&] {
            std::error_code missing;
            for (const auto& entry : fs::directory_iterator(directory / "tmp", missing)) {
                if (entry.path().filename().string().starts_with(prefix)) path = entry.path();
            }
            return !path.empty() || !run.IsRunning();
        }));
        return path;
    }
    // Below the home, directories with a '/' behind.
    std::vector<std::string> Home(const std::string& below = {}, bool recursive = false) {
        std::vector<std::string> names;
        const auto add = [&](const fs::directory_entry& entry) {
            names.push_back(entry.path().lexically_relative(directory / "home").string() +
                            (entry.is_directory() ? "/" : ""));
        };
        const std::string root = directory / "home/" + below;
        if (!fs::exists(root)) return names;
        if (recursive) {
            for (const auto& entry : fs::recursive_directory_iterator(root)) add(entry);
        } else {
            for (const auto& entry : fs::directory_iterator(root)) add(entry);
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    // The copies of unsaved work.
    std::vector<std::string> Copies() {
        std::vector<std::string> copies;
        for (const std::string& name : Home(".local/state/tavrin/recovery")) {
            // One that is just being made is empty.
            std::error_code gone;
            const auto size = fs::file_size(directory / ("home/" + name), gone);
            if (name.ends_with(".tvn") && !gone && size > 0) copies.push_back(name);
        }
        return copies;
    }
    void WaitForCopies(size_t count) {
        EXPECT_TRUE(WaitUntil([&] { return Copies().size() == count; })) << Copies().size();
    }
    static void ChangeDocument(const RunningProgram& run, const QString& title) {
        run.Press("^" + title + "$", "ctrl+t");
        run.WaitForTitle(title + "\\*");
    }
};

TEST_F(ProgramTest, HelpAndVersionNeedNoDisplay) {
    environment.Unset("DISPLAY");
    RunningProgram help = Tavrin({"--help"});
    EXPECT_EQ(help.Status(), 0);
    EXPECT_THAT(help.Output(), testing::StartsWith("usage: tavrin [DOCUMENT.tvn]\n"));
    RunningProgram version = Tavrin({"--version"});
    EXPECT_EQ(version.Status(), 0);
    EXPECT_THAT(version.Output(), testing::MatchesRegex("tavrin [0-9.]+\n"));
    EXPECT_THAT(Home(), IsEmpty());
}

TEST_F(ProgramTest, AnUnknownOptionEndsItBeforeAnyWindow) {
    RunningProgram run = Tavrin({"--bogus"});
    EXPECT_EQ(run.Status(), 2);
    EXPECT_EQ(run.Errors(), "tavrin: unknown option --bogus; see tavrin --help\n");
    EXPECT_EQ(run.Output(), "");
    RunningProgram two = Tavrin({"a.tvn", "b.tvn"});
    EXPECT_EQ(two.Status(), 2);
    EXPECT_FALSE(fs::exists(directory / "tmp"));
}

TEST_F(ProgramTest, AMissingDocumentIsToldInABoxAndOnStandardErrorAndEndsIt) {
    const std::string path = directory / "missing.tvn";
    RunningProgram run = Tavrin({Shown(path)});
    const std::string work = WorkDirOf(run);
    run.Press("^Alert$", "Return");
    EXPECT_EQ(run.Status(), 1);
    EXPECT_THAT(run.Errors(), testing::AllOf(testing::StartsWith("tavrin: "), HasSubstr(path)));
    EXPECT_FALSE(fs::exists(work));
}

TEST_F(ProgramTest, WhatItPrintsOfANameCannotSteerATerminal) {
    RunningProgram run = Tavrin({Shown(directory / "gone\x1b[2J\rx.tvn")});
    run.Press("^Alert$", "Return");
    EXPECT_EQ(run.Status(), 1);
    EXPECT_THAT(run.Errors(), testing::AllOf(HasSubstr("gone\\x1b[2J\\rx.tvn"), Not(HasSubstr("\x1b"))));
    RunningProgram option = Tavrin({Shown("--\x1b[2J")});
    EXPECT_EQ(option.Status(), 2);
    EXPECT_THAT(option.Errors(), HasSubstr("unknown option --\\x1b[2J;"));
}

TEST_F(ProgramTest, ADocumentOpensAndTheWindowTellsItsNameAndShaderType) {
    Define("roe {\nxfield {\nenvname TAVRN_SHADER_TYPE\nvalue light\n}\n}\n");
    const std::string path = MakeDocument("work");
    RunningProgram run = Tavrin({Shown(path)});
    const QString window = run.Window("^work.tvn \\[light\\]$");
    EXPECT_EQ(Ask("xprop", {"-id", window, "WM_CLASS"}).text, "WM_CLASS(STRING) = \"tavrin\", \"tavrin\"\n");
    EXPECT_TRUE(fs::exists(WorkDirOf(run)));
    const std::string work = WorkDirOf(run);
    run.Press("^work.tvn \\[light\\]$", "alt+F4");
    EXPECT_EQ(run.Status(), 0);
    EXPECT_EQ(run.Errors(), "");
    EXPECT_EQ(run.Output(), "");
    EXPECT_FALSE(fs::exists(work));
}

TEST_F(ProgramTest, TheHomeDirectoryHoldsNothingButTheBaseDirectoriesOfTheDesktop) {
    const std::string path = MakeDocument("work");
    RunningProgram run = Tavrin({Shown(path)});
    ChangeDocument(run, "work.tvn");
    WaitForCopies(1);
    run.Press("^work.tvn\\*$", "ctrl+s");
    run.WaitForTitle("work.tvn");
    WaitForCopies(0);
    run.Press("^work.tvn$", "ctrl+q");
    EXPECT_EQ(run.Status(), 0);
    for (const std::string& name : Home()) EXPECT_THAT(name, AnyOf(".config/", ".local/", ".cache/"));
    EXPECT_THAT(Home(".config", true), ElementsAre(".config/Orlane/", ".config/Orlane/Tavrin.ini"));
    EXPECT_THAT(Home(".local", true),
                ElementsAre(".local/state/", ".local/state/tavrin/", ".local/state/tavrin/recovery/"));
    EXPECT_THAT(test::ReadFile(directory / "home/.config/Orlane/Tavrin.ini"),
                testing::AllOf(HasSubstr("[Settings]"), HasSubstr("MainWindow.x="), HasSubstr(path)));
}

TEST_F(ProgramTest, TheWindowComesBackInTheNextRun) {
    RunningProgram run = Tavrin();
    const QString window = run.Window("^Untitled.tvn$");
    ASSERT_TRUE(Ask("xdotool", {"windowsize", window, "1010", "707"}).ok);
    const auto size = [](const QString& id) {
        return Shown(Ask("xdotool", {"getwindowgeometry", id}).text).section("Geometry: ", 1).trimmed();
    };
    ASSERT_TRUE(WaitUntil([&] { return size(window) == "1010x707"; }));
    run.Press("^Untitled.tvn$", "alt+F4");
    EXPECT_EQ(run.Status(), 0);
    RunningProgram next = Tavrin();
    const QString again = next.Window("^Untitled.tvn$");
    EXPECT_TRUE(WaitUntil([&] { return size(again) == "1010x707"; })) << Bytes(size(again));
}

TEST_F(ProgramTest, EndedFromOutsideItLeavesNoWorkDirectoryAndOffersTheWorkAtTheNextStart) {
    Define("autosave.interval 0\n");  // the end alone puts it aside
    const std::string path = MakeDocument("work");
    const std::string written = test::ReadFile(path);
    RunningProgram run = Tavrin({Shown(path)});
    const std::string work = WorkDirOf(run);
    ChangeDocument(run, "work.tvn");
    run.Send(SIGTERM);
    EXPECT_EQ(run.Status(), 128 + SIGTERM);
    EXPECT_FALSE(fs::exists(work));
    EXPECT_EQ(test::ReadFile(path), written);
    EXPECT_THAT(Copies(), SizeIs(1));

    RunningProgram next = Tavrin();
    next.Press("^Recover$", "Return");
    next.WaitForTitle("work.tvn\\*");
    EXPECT_EQ(test::ReadFile(path), written);
    // The copy is that of the new program now, and goes once the work is saved.
    WaitForCopies(1);
    next.Press("^work.tvn\\*$", "ctrl+s");
    next.WaitForTitle("work.tvn");
    WaitForCopies(0);
    EXPECT_NE(test::ReadFile(path), written);
    next.Press("^work.tvn$", "alt+F4");
    EXPECT_EQ(next.Status(), 0);
}

TEST_F(ProgramTest, KilledItsWorkIsOfferedUntilItIsDiscarded) {
    RunningProgram run = Tavrin();
    ChangeDocument(run, "Untitled.tvn");
    WaitForCopies(1);
    run.Send(SIGKILL);
    EXPECT_EQ(run.Status(), -1);

    RunningProgram later = Tavrin();
    later.Press("^Recover$", "alt+l");
    later.Press("^Untitled.tvn$", "alt+F4");
    EXPECT_EQ(later.Status(), 0);
    EXPECT_THAT(Copies(), SizeIs(1));

    RunningProgram discard = Tavrin();
    discard.Press("^Recover$", "alt+d");
    WaitForCopies(0);
    discard.Press("^Untitled.tvn$", "alt+F4");
    EXPECT_EQ(discard.Status(), 0);
    EXPECT_THAT(Home(".local", true),
                ElementsAre(".local/state/", ".local/state/tavrin/", ".local/state/tavrin/recovery/"));
}

// None of these ways out asks the program to do anything more.
TEST_F(ProgramTest, WhateverEndsItsUnsavedWorkIsOffered) {
    const std::string path = MakeDocument("work");
    for (const int end : {SIGSEGV, SIGABRT, SIGBUS, 0}) {
        RunningProgram run = Tavrin({Shown(path)});
        const std::string work = WorkDirOf(run);
        ChangeDocument(run, "work.tvn");
        WaitForCopies(1);
        if (end == 0) {
            // The display goes away.
            EXPECT_TRUE(Ask("xdotool", {"windowkill", run.Window("^work.tvn\\*$")}).ok);
        } else {
            run.Send(end);
        }
        EXPECT_NE(run.Status(), 0) << end;
        RunningProgram next = Tavrin();
        next.Press("^Recover$", "Return");
        next.WaitForTitle("work.tvn\\*");
        EXPECT_FALSE(fs::exists(work)) << "the next start clears it away";
        next.Press("^work.tvn\\*$", "ctrl+s");
        next.WaitForTitle("work.tvn");
        WaitForCopies(0);
        next.Press("^work.tvn$", "alt+F4");
        EXPECT_EQ(next.Status(), 0);
    }
}

TEST_F(ProgramTest, ChangesThatAreDiscardedAtTheEndLeaveNoCopy) {
    RunningProgram run = Tavrin();
    ChangeDocument(run, "Untitled.tvn");
    WaitForCopies(1);
    run.Press("^Untitled.tvn\\*$", "alt+F4");
    run.Press("^Tavrin$", "Tab");  // from Save to Discard
    run.Press("^Tavrin$", "space");
    EXPECT_EQ(run.Status(), 0);
    EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(ProgramTest, TwoProgramsAtOnceDoNotOfferEachOthersWork) {
    RunningProgram first = Tavrin();
    ChangeDocument(first, "Untitled.tvn");
    WaitForCopies(1);
    RunningProgram second = Tavrin();
    second.WaitForSplashToGo();
    EXPECT_THAT(second.Windows("^Recover$"), IsEmpty());
    EXPECT_THAT(Copies(), SizeIs(1));
    ChangeDocument(second, "Untitled.tvn");
    WaitForCopies(2);
    second.Send(SIGTERM);
    EXPECT_EQ(second.Status(), 128 + SIGTERM);
    EXPECT_THAT(Copies(), SizeIs(2));
    EXPECT_TRUE(first.IsRunning());
}

// Also while it is still on its way to its document.
TEST_F(ProgramTest, EndedAtFirstSightItEnds) {
    const std::string path = MakeDocument("work");
    for (int round = 0; round < 3; ++round) {
        RunningProgram closed = Tavrin({Shown(path)});
        closed.Press("^(Untitled|work).tvn$", "alt+F4");
        EXPECT_EQ(closed.Status(), 0);
        RunningProgram signalled = Tavrin({Shown(path)});
        signalled.Window("^(Untitled|work).tvn$");
        signalled.Send(SIGTERM);
        EXPECT_EQ(signalled.Status(), 128 + SIGTERM);
    }
}

TEST_F(ProgramTest, EachSignalEndsItWithItsStatus) {
    for (const int signal : {SIGINT, SIGHUP}) {
        RunningProgram run = Tavrin();
        const std::string work = WorkDirOf(run);
        run.WaitForTitle("Untitled.tvn");
        run.Send(signal);
        EXPECT_EQ(run.Status(), 128 + signal);
        EXPECT_FALSE(fs::exists(work));
    }
}

TEST_F(ProgramTest, ASignalEndsItWhileABoxWaitsForAnAnswer) {
    Define("autosave.interval 0\n");
    RunningProgram run = Tavrin();
    const std::string work = WorkDirOf(run);
    ChangeDocument(run, "Untitled.tvn");
    run.Press("^Untitled.tvn\\*$", "alt+F4");
    run.Window("^Tavrin$");
    run.Send(SIGTERM);
    EXPECT_EQ(run.Status(), 128 + SIGTERM);
    EXPECT_THAT(Copies(), SizeIs(1));
    EXPECT_FALSE(fs::exists(work));
}

TEST_F(ProgramTest, ASignalEndsItsRenderAsWell) {
    fs::permissions(
        directory.Write("tavrin/tiny/bin/renderit",
                        "#!/usr/bin/perl\nopen my $f, '>', \"$ENV{TAVRN_DIR}/../process\" or die;\n"
                        "print $f \"$$\\n\"; close $f;\n"
                        "select undef, undef, undef, 0.01 until -e $ENV{TAVRN_KILLFILE};\n"),
        fs::perms::owner_all);
    const std::string path = MakeDocument("work");
    RunningProgram run = Tavrin({Shown(path)});
    const std::string work = WorkDirOf(run);
    run.Press("^work.tvn$", "F1");
    ASSERT_TRUE(WaitUntil([&] {
        return fs::exists(directory / "process") && test::ReadFile(directory / "process").ends_with('\n');
    }));
    const int child = std::stoi(test::ReadFile(directory / "process"));
    EXPECT_EQ(::kill(child, 0), 0);
    run.Send(SIGTERM);
    EXPECT_EQ(run.Status(), 128 + SIGTERM);
    EXPECT_NE(::kill(child, 0), 0);
    EXPECT_FALSE(fs::exists(work));
}

TEST_F(ProgramTest, KilledItsRenderEndsAsWellWithWhatItStarted) {
    // The one that the render starts is in a group of its own, and neither heeds a word.
    fs::permissions(
        directory.Write(
            "tavrin/tiny/bin/renderit",
            "#!/usr/bin/perl\n$SIG{$_} = 'IGNORE' for qw(TERM HUP PIPE);\n"
            "sub note { open my $f, '>', \"$ENV{TAVRN_DIR}/../$_[0]\" or die; print $f \"$$\\n\"; }\n"
            "if (!fork) { setpgrp; note('inner'); sleep 1 while 1; }\n"
            "note('outer'); sleep 1 while 1;\n"),
        fs::perms::owner_all);
    const std::string path = MakeDocument("work");
    RunningProgram run = Tavrin({Shown(path)});
    run.Press("^work.tvn$", "F1");
    for (const char* name : {"inner", "outer"}) {
        ASSERT_TRUE(WaitUntil([&] {
            return fs::exists(directory / name) && test::ReadFile(directory / name).ends_with('\n');
        })) << name;
    }
    run.Send(SIGKILL);
    EXPECT_EQ(run.Status(), -1);
    for (const char* name : {"inner", "outer"}) {
        const std::string stat =
            "/proc/" + std::to_string(std::stoi(test::ReadFile(directory / name))) + "/stat";
        EXPECT_TRUE(WaitUntil([&] {
            const std::string state = test::ReadFile(stat);
            return state.empty() || state.find(") Z ") != std::string::npos;
        })) << name;
    }
}

TEST_F(ProgramTest, AFatalStartTellsItsReasonAndEnds) {
    environment.Set("TAVRN_DIR", directory / "nowhere");
    RunningProgram run = Tavrin();
    run.Press("^Fatal Error$", "Return");
    EXPECT_NE(run.Status(), -1);
}

// What /proc tells of a process.
double CpuSeconds(pid_t process) {
    std::string text = test::ReadFile("/proc/" + std::to_string(process) + "/stat");
    std::istringstream fields(text.substr(text.rfind(')') + 1));
    std::string skipped;
    for (int field = 0; field < 11; ++field) fields >> skipped;
    double user = 0;
    double system = 0;
    fields >> user >> system;
    return (user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

long ResidentPages(pid_t process) {
    std::istringstream fields(test::ReadFile("/proc/" + std::to_string(process) + "/statm"));
    long size = 0;
    long resident = 0;
    fields >> size >> resident;
    return resident;
}

TEST_F(ProgramTest, WithNothingToDoItNeitherComputesNorGrows) {
    constexpr int kSeconds = 2;
    constexpr double kShare = 0.03;  // of a core; the timer of unsaved work ticks each second
    constexpr long kPages = 64;
    RunningProgram run = Tavrin();
    ChangeDocument(run, "Untitled.tvn");
    run.WaitForSplashToGo();
    WaitForCopies(1);
    // What the start has begun, and whoever asks it something meanwhile, may still be seen at first.
    const auto rests = [&] {
        const double before = CpuSeconds(run.Id());
        ::sleep(kSeconds);
        return CpuSeconds(run.Id()) - before < kShare * kSeconds;
    };
    ASSERT_TRUE(WaitUntil(rests));
    const long pages = ResidentPages(run.Id());
    EXPECT_TRUE(WaitUntil(rests));
    EXPECT_LE(ResidentPages(run.Id()), pages + kPages);
}

}  // namespace
}  // namespace tavrin
