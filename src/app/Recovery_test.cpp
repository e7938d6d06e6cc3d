// SPDX-License-Identifier: Apache-2.0
// What is written aside, and what the next start finds of it.
#include "app/Recovery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "base/Paths.h"
#include "support/Disk.h"
#include "support/Processes.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::MakeLink;
using test::ModeOf;
using test::ReadFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;
using testing::UnorderedElementsAre;

// Another process that has written a document aside and lives until it is killed.
class OtherProgram {
  public:
    OtherProgram(const std::string& state, CTvDoc& document, Report& report) {
        int ready[2];
        EXPECT_EQ(::pipe(ready), 0);
        if (m_process.Fork()) {
            PlainQueue queue;
            Recovery recovery(state, report, queue);
            const char answer = recovery.Update(document) ? 'y' : 'n';
            if (::write(ready[1], &answer, 1) == 1) {
                for (;;) ::pause();
            }
            ::_exit(1);
        }
        ::close(ready[1]);
        char answer = '-';
        EXPECT_EQ(::read(ready[0], &answer, 1), 1);
        EXPECT_EQ(answer, 'y');
        ::close(ready[0]);
    }

    void Kill() { m_process.Kill(); }

  private:
    test::ForkedChild m_process;
};

class RecoveryTest : public test::DocumentTest {
  protected:
    RecoveryTest() {
        Add(MakeLink("a", 2));
        Add(MakeLink("b", 1));
        document.SetPath("/there/doc.tvn");
        document.SetModified();
    }
    Report& GetReport() { return host.GetSite().report; }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        if (!fs::exists(folder)) return names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        return names;
    }
    // The one file of that extension.
    std::string Only(const std::string& extension) const {
        std::string path;
        for (const std::string& name : Names()) {
            if (!name.ends_with(extension)) continue;
            EXPECT_EQ(path, "");
            path = JoinPath(folder, name);
        }
        EXPECT_NE(path, "") << extension;
        return path;
    }
    // The state after a program was killed with the document written aside; the copy's path.
    std::string LeaveBehind() {
        OtherProgram(state, document, GetReport()).Kill();
        return Only(".tvn");
    }
    static std::vector<std::string> Titles(const std::vector<Recovery::Found>& leftovers) {
        std::vector<std::string> titles;
        for (const auto& found : leftovers) titles.push_back(found.title);
        return titles;
    }

    std::string state = host.Directory() / "home/.local/state/tavrin";
    std::string folder = state + "/recovery";
    PlainQueue queue;
};

TEST(StateDirectory, LiesWhereTheDesktopSaysOrBelowTheHome) {
    Environment environment;
    EXPECT_EQ(StateDirectory(environment), "");
    environment.Set("HOME", "/home/ann");
    EXPECT_EQ(StateDirectory(environment), "/home/ann/.local/state/tavrin");
    environment.Set("XDG_STATE_HOME", "state");
    EXPECT_EQ(StateDirectory(environment), "/home/ann/.local/state/tavrin");
    environment.Set("XDG_STATE_HOME", "/var/ann");
    EXPECT_EQ(StateDirectory(environment), "/var/ann/tavrin");
    environment.Unset("XDG_STATE_HOME");
    environment.Set("HOME", "ann");
    EXPECT_EQ(StateDirectory(environment), "");
}

TEST(RecoveryInterval, IsTheSitesWithinADay) {
    Settings settings;
    EXPECT_EQ(Recovery::IntervalOf(settings), 2);
    for (const auto& [text, seconds] :
         std::map<std::string, int>{{"30", 30}, {"0", 0}, {"-5", 0}, {"2000000000", 86400}, {"soon", 2}}) {
        settings.Store("autosave.interval", text);
        EXPECT_EQ(Recovery::IntervalOf(settings), seconds) << text;
    }
}

// Writing aside.

TEST_F(RecoveryTest, AModifiedDocumentIsWrittenAsideAsAPlainDocument) {
    Recovery recovery(state, GetReport(), queue);
    EXPECT_TRUE(recovery.Update(document));
    EXPECT_THAT(Names(), UnorderedElementsAre(MatchesRegex("unsaved-[A-Za-z0-9]{6}\\.tvn"),
                                              MatchesRegex("unsaved-[A-Za-z0-9]{6}\\.origin"),
                                              MatchesRegex("unsaved-[A-Za-z0-9]{6}\\.lock")));
    EXPECT_THAT(test::WidsOf(document), ElementsAre(2, 1));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.Path(), "/there/doc.tvn");
    EXPECT_EQ(ReadFile(Only(".tvn")), document.Store());
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(RecoveryTest, OnlyTheUserCanReadWhatIsWrittenAside) {
    fs::create_directories(folder);
    fs::permissions(folder, fs::perms::all);
    Recovery recovery(state, GetReport(), queue);
    const mode_t mask = ::umask(0);
    EXPECT_TRUE(recovery.Update(document));
    document.toolbar = {"new"};
    EXPECT_TRUE(recovery.Update(document));
    ::umask(mask);
    EXPECT_EQ(ModeOf(folder), 0700U);
    for (const char* extension : {".tvn", ".origin", ".lock"}) EXPECT_EQ(ModeOf(Only(extension)), 0600U);
}

TEST_F(RecoveryTest, EveryDirectoryThatIsMadeIsTheUsersAlone) {
    Recovery recovery(state, GetReport(), queue);
    const mode_t mask = ::umask(0);
    EXPECT_TRUE(recovery.Update(document));
    ::umask(mask);
    for (const char* made : {"home", "home/.local", "home/.local/state", "home/.local/state/tavrin"})
        EXPECT_EQ(ModeOf(host.Directory() / made), 0700U) << made;
}

TEST_F(RecoveryTest, WithoutAChangeNothingIsWrittenAgain) {
    host.GetSite().environment.Set("SOURCE_DATE_EPOCH", "1000000000");
    Recovery recovery(state, GetReport(), queue);
    ASSERT_TRUE(recovery.Update(document));
    const std::string copy = Only(".tvn");
    const std::string text = ReadFile(copy);
    host.GetSite().environment.Set("SOURCE_DATE_EPOCH", "1000000120");
    EXPECT_TRUE(recovery.Update(document));
    EXPECT_EQ(ReadFile(copy), text);
    document.m_boxes.front()->xypos[0] += 1;
    EXPECT_TRUE(recovery.Update(document));
    EXPECT_NE(ReadFile(copy), text);
    EXPECT_EQ(Only(".tvn"), copy);
}

TEST_F(RecoveryTest, ACopyThatSomebodyTookAwayIsWrittenAgain) {
    Recovery recovery(state, GetReport(), queue);
    ASSERT_TRUE(recovery.Update(document));
    fs::remove(Only(".tvn"));
    EXPECT_TRUE(recovery.Update(document));
    EXPECT_EQ(ReadFile(Only(".tvn")), document.Store());
}

TEST_F(RecoveryTest, ADocumentThatIsNotModifiedHasNoCopy) {
    document.SetModified(false);
    {
        Recovery recovery(state, GetReport(), queue);
        EXPECT_TRUE(recovery.Update(document));
        EXPECT_FALSE(fs::exists(folder));
        document.SetModified();
        EXPECT_TRUE(recovery.Update(document));
        document.SetModified(false);
        EXPECT_TRUE(recovery.Update(document));
        EXPECT_THAT(Names(), ElementsAre(testing::EndsWith(".lock")));
        document.SetModified();
        EXPECT_TRUE(recovery.Update(document));  // though nothing differs from what was written last
        EXPECT_EQ(ReadFile(Only(".tvn")), document.Store());
        recovery.Discard();
        EXPECT_THAT(Names(), SizeIs(1));
    }
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(RecoveryTest, TheDocumentsOwnFileIsNeverTouched) {
    const std::string path = host.Directory().Write("own.tvn", "as it was");
    document.SetPath(path);
    Recovery recovery(state, GetReport(), queue);
    ASSERT_TRUE(recovery.Update(document));
    recovery.Discard();
    EXPECT_EQ(ReadFile(path), "as it was");
}

TEST_F(RecoveryTest, AFailureIsLoggedOnceUntilItWorksAgain) {
    host.Directory().Write("home/.local", "no directory");
    Recovery recovery(state, GetReport(), queue);
    EXPECT_FALSE(recovery.Update(document));
    EXPECT_FALSE(recovery.Update(document));
    const std::string line =
        "WARNING: unsaved work cannot be written aside to " + folder + ": Not a directory\r\n";
    EXPECT_EQ(host.Sink().log, line);
    EXPECT_THAT(Alerts(), IsEmpty());
    fs::remove(host.Directory() / "home/.local");
    EXPECT_TRUE(recovery.Update(document));
    EXPECT_TRUE(fs::remove_all(folder) > 0);
    host.Directory().Write("home/.local/state/tavrin/recovery", "no directory");
    document.toolbar = {"new"};
    EXPECT_FALSE(recovery.Update(document));
    EXPECT_EQ(host.Sink().log, line + "WARNING: unsaved work cannot be written aside to " + folder +
                                   ": Not a directory of the user's own\r\n");
}

TEST_F(RecoveryTest, AFailureLeavesTheLastCopyWhole) {
    Recovery recovery(state, GetReport(), queue);
    ASSERT_TRUE(recovery.Update(document));
    const std::string copy = Only(".tvn");
    const std::string text = ReadFile(copy);
    fs::remove(Only(".origin"));
    fs::create_directory(fs::path(copy).replace_extension(".origin"));
    document.toolbar = {"new"};
    EXPECT_FALSE(recovery.Update(document));
    EXPECT_EQ(ReadFile(copy), text);
    EXPECT_THAT(host.Sink().log, HasSubstr("Not a file of the user's own"));
}

TEST_F(RecoveryTest, WithoutAHomeThereIsNoRecovery) {
    Recovery recovery("", GetReport(), queue);
    EXPECT_FALSE(recovery.Update(document));
    EXPECT_THAT(host.Sink().log, HasSubstr("no home directory"));
    recovery.Discard();
    EXPECT_THAT(recovery.FindLeftovers(), IsEmpty());
}

TEST_F(RecoveryTest, NothingIsWrittenThroughALink) {
    const std::string elsewhere = host.Directory() / "elsewhere";
    fs::create_directories(elsewhere);
    fs::create_directories(state);
    fs::create_directory_symlink(elsewhere, folder);
    Recovery linked(state, GetReport(), queue);
    EXPECT_FALSE(linked.Update(document));
    EXPECT_TRUE(fs::is_empty(elsewhere));
    fs::remove(folder);

    Recovery recovery(state, GetReport(), queue);
    ASSERT_TRUE(recovery.Update(document));
    const std::string copy = Only(".tvn");
    const std::string target = host.Directory().Write("target", "as it was");
    fs::remove(copy);
    fs::create_symlink(target, copy);
    document.toolbar = {"new"};
    EXPECT_FALSE(recovery.Update(document));
    EXPECT_EQ(ReadFile(target), "as it was");
}

// What is found.

TEST_F(RecoveryTest, WhatTheFileHeldIsKnownAfterTheCrash) {
    const std::string path = host.Directory().Write("own.tvn", "toolbar { }\n");
    ASSERT_TRUE(document.Open(path));
    document.SetModified();
    LeaveBehind();
    Recovery recovery(state, GetReport(), queue);
    const auto leftovers = recovery.FindLeftovers();
    ASSERT_THAT(leftovers, SizeIs(1));
    EXPECT_EQ(leftovers[0].documentPath, path);
    EXPECT_EQ(leftovers[0].held, MarkOf("toolbar { }\n"));
}

TEST_F(RecoveryTest, OfAFileThatTheDocumentNeverReadNothingIsKnown) {
    LeaveBehind();
    Recovery recovery(state, GetReport(), queue);
    const auto leftovers = recovery.FindLeftovers();
    ASSERT_THAT(leftovers, SizeIs(1));
    EXPECT_EQ(leftovers[0].held, std::nullopt);
}

TEST_F(RecoveryTest, TheWorkOfAKilledProgramIsFoundWithItsOrigin) {
    document.SetCutShort();
    const std::string copy = LeaveBehind();
    Recovery recovery(state, GetReport(), queue);
    const auto leftovers = recovery.FindLeftovers();
    ASSERT_THAT(leftovers, SizeIs(1));
    EXPECT_EQ(leftovers[0].copyPath, copy);
    EXPECT_EQ(leftovers[0].documentPath, "/there/doc.tvn");
    EXPECT_EQ(leftovers[0].title, "doc.tvn");
    EXPECT_TRUE(leftovers[0].wasCutShort);
    EXPECT_FALSE(leftovers[0].documentIsNewer);
    struct stat status {};
    ASSERT_EQ(::stat(copy.c_str(), &status), 0);
    EXPECT_LE(leftovers[0].savedAt, status.st_mtime);
    EXPECT_GE(leftovers[0].savedAt, status.st_mtime - 60);
    EXPECT_EQ(ReadFile(copy), document.Store());
    EXPECT_THAT(recovery.FindLeftovers(), SizeIs(1));  // as often as it is asked
    recovery.Remove(leftovers[0]);
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_THAT(recovery.FindLeftovers(), IsEmpty());
}

TEST_F(RecoveryTest, ProgramsThatRunDoNotSeeEachOthersWork) {
    OtherProgram other(state, document, GetReport());
    Recovery recovery(state, GetReport(), queue);
    EXPECT_TRUE(recovery.Update(document));
    EXPECT_THAT(recovery.FindLeftovers(), IsEmpty());
    EXPECT_THAT(Names(), SizeIs(6));
    other.Kill();
    EXPECT_THAT(recovery.FindLeftovers(), SizeIs(1));
}

TEST_F(RecoveryTest, WhatOneProgramOffersNoOtherDoesWhileItLives) {
    const std::string copy = LeaveBehind();
    Recovery second(state, GetReport(), queue);
    {
        Recovery first(state, GetReport(), queue);
        const auto leftovers = first.FindLeftovers();
        ASSERT_THAT(leftovers, SizeIs(1));
        EXPECT_THAT(second.FindLeftovers(), IsEmpty());
        second.Remove(leftovers[0]);  // not its own to remove
        EXPECT_TRUE(fs::exists(copy));
    }
    EXPECT_THAT(second.FindLeftovers(), SizeIs(1));
}

TEST_F(RecoveryTest, AnEndWithoutDiscardingLeavesTheWorkToTheNextStart) {
    {
        Recovery recovery(state, GetReport(), queue);
        ASSERT_TRUE(recovery.Update(document));
    }
    Recovery next(state, GetReport(), queue);
    EXPECT_THAT(Titles(next.FindLeftovers()), ElementsAre("doc.tvn"));
}

TEST_F(RecoveryTest, ALockThatSomebodyTookAwayIsReplacedWithAllThatItGuards) {
    Recovery recovery(state, GetReport(), queue);
    ASSERT_TRUE(recovery.Update(document));
    const std::string first = Only(".tvn");
    fs::remove(Only(".lock"));
    EXPECT_TRUE(recovery.Update(document));
    EXPECT_NE(Only(".tvn"), first);
    Recovery other(state, GetReport(), queue);
    EXPECT_THAT(other.FindLeftovers(), IsEmpty());
}

TEST_F(RecoveryTest, TheNewestComesFirst) {
    for (const char* name : {"old", "new", "middle"}) {
        document.SetPath(std::string("/there/") + name);
        OtherProgram(state, document, GetReport()).Kill();
    }
    const std::map<std::string, std::string> times = {{"old", "100"}, {"middle", "200"}, {"new", "300"}};
    for (const std::string& name : Names()) {
        if (!name.ends_with(".origin")) continue;
        for (const auto& [title, time] : times) {
            if (ReadFile(JoinPath(folder, name)).find("/" + title + "\"") == std::string::npos) continue;
            std::ofstream(JoinPath(folder, name))
                << "tavrin-recovery 1\ndocument /there/" << title << "\nsaved " << time << "\n";
        }
    }
    Recovery recovery(state, GetReport(), queue);
    const auto leftovers = recovery.FindLeftovers();
    EXPECT_THAT(Titles(leftovers), ElementsAre("new", "middle", "old"));
    EXPECT_EQ(leftovers.at(0).savedAt, 300);
}

TEST_F(RecoveryTest, AnOwnFileThatWasWrittenLaterIsTold) {
    document.SetPath(host.Directory().Write("own.tvn", ""));
    LeaveBehind();
    fs::last_write_time(document.Path(), fs::file_time_type::clock::now() + std::chrono::hours(1));
    Recovery recovery(state, GetReport(), queue);
    EXPECT_TRUE(recovery.FindLeftovers().at(0).documentIsNewer);
}

TEST_F(RecoveryTest, PathsOfAnyBytesComeBack) {
    std::string path = "/";
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/' && byte != '\\') path += static_cast<char>(byte);
    }
    document.SetPath(path);
    LeaveBehind();
    Recovery recovery(state, GetReport(), queue);
    EXPECT_EQ(recovery.FindLeftovers().at(0).documentPath, path);
}

TEST_F(RecoveryTest, ARelativePathIsKeptInFullAndNoneAsNone) {
    document.SetPath("doc.tvn");
    LeaveBehind();
    Recovery recovery(state, GetReport(), queue);
    const auto leftovers = recovery.FindLeftovers();
    EXPECT_EQ(leftovers.at(0).documentPath, FullPath("doc.tvn"));
    recovery.Remove(leftovers[0]);
    document.SetPath("");
    LeaveBehind();
    EXPECT_EQ(recovery.FindLeftovers().at(0).documentPath, "");
    EXPECT_THAT(Titles(recovery.FindLeftovers()), ElementsAre("Untitled.tvn"));
}

TEST_F(RecoveryTest, ACopyWhoseOriginIsBrokenIsThatOfAnUntitledDocument) {
    const std::string copy = LeaveBehind();
    const std::string origin = Only(".origin");
    const std::string huge = "tavrin-recovery 1\ndocument /a\n" + std::string(100000, '#');
    for (const std::string& text : std::vector<std::string>{
             "", "rubbish", "tavrin-recovery 2\ndocument /a\n", "tavrin-recovery 1\ndocument a.tvn\n",
             std::string("tavrin-recovery 1\ndocument \"/a\0b\"\n", 34), huge}) {
        std::ofstream(origin, std::ios::binary) << text;
        Recovery recovery(state, GetReport(), queue);
        const auto leftovers = recovery.FindLeftovers();
        ASSERT_THAT(leftovers, SizeIs(1)) << text.substr(0, 40);
        EXPECT_EQ(leftovers[0].documentPath, "");
        EXPECT_EQ(leftovers[0].title, "Untitled.tvn");
        struct stat status {};
        ASSERT_EQ(::stat(copy.c_str(), &status), 0);
        EXPECT_EQ(leftovers[0].savedAt, status.st_mtime);
    }
    fs::remove(origin);
    fs::create_symlink(host.Directory().Write("x", "tavrin-recovery 1\ndocument /a\n"), origin);
    Recovery recovery(state, GetReport(), queue);
    EXPECT_EQ(recovery.FindLeftovers().at(0).documentPath, "");
}

TEST_F(RecoveryTest, WhatKilledProgramsLeaveBesideTheirCopiesIsClearedAway) {
    const std::string copy = LeaveBehind();
    const std::string own = "." + PathFile(copy) + ".Zz0123";
    host.Directory().Write("home/.local/state/tavrin/recovery/" + own, "half");
    for (const char* name :
         {"unsaved-aaaaaa.lock", "unsaved-bbbbbb.origin", "unsaved-cccccc.tvn", ".unsaved-dddddd.tvn.abc123"})
        host.Directory().Write(std::string("home/.local/state/tavrin/recovery/") + name, "");
    Recovery recovery(state, GetReport(), queue);
    EXPECT_THAT(recovery.FindLeftovers(), SizeIs(1));
    EXPECT_THAT(Names(),
                UnorderedElementsAre(PathFile(copy), PathFile(Only(".origin")), PathFile(Only(".lock"))));
    EXPECT_EQ(ReadFile(copy), document.Store());
}

TEST_F(RecoveryTest, FilesOfOthersAreNeitherOfferedNorRemoved) {
    const std::string target = host.Directory().Write("target.tvn", "as it was");
    fs::create_directories(folder);
    fs::create_symlink(target, folder + "/unsaved-aaaaaa.tvn");
    fs::create_directory(folder + "/unsaved-bbbbbb.tvn");
    ASSERT_EQ(::mkfifo((folder + "/unsaved-cccccc.tvn").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo((folder + "/unsaved-dddddd.lock").c_str(), 0600), 0);
    for (const char* name :
         {"mine.tvn", "unsaved-.tvn", "unsaved-abc.tvn", "unsaved-ab-def.tvn", "unsaved-abcdef.tvn~",
          "unsaved-abcdef", ".unsaved-abcdef.tvn", "..x", ".unsaved-abcdef.tvn.short", "Unsaved-abcdef.tvn"})
        std::ofstream(JoinPath(folder, name)) << "tavrn-version 1";
    std::ofstream(folder + "/unsaved-eeeeee.tvn") << "tavrn-version 1";
    fs::create_symlink(target, folder + "/unsaved-eeeeee.lock");
    const auto before = Names();
    Recovery recovery(state, GetReport(), queue);
    EXPECT_THAT(recovery.FindLeftovers(), IsEmpty());
    EXPECT_THAT(Names(), testing::UnorderedElementsAreArray(before));
    EXPECT_EQ(ReadFile(target), "as it was");
    Recovery::Found forged;
    forged.copyPath = target;
    recovery.Remove(forged);
    EXPECT_TRUE(fs::exists(target));
}

TEST_F(RecoveryTest, ACopyWithoutALockIsOfferedToOneProgram) {
    host.Directory().Write("home/.local/state/tavrin/recovery/unsaved-abcdef.tvn", "tavrn-version 1");
    Recovery first(state, GetReport(), queue);
    Recovery second(state, GetReport(), queue);
    EXPECT_THAT(first.FindLeftovers(), SizeIs(1));
    EXPECT_THAT(second.FindLeftovers(), IsEmpty());
}

TEST_F(RecoveryTest, ADirectoryThatIsALinkIsNotLookedInto) {
    const std::string copy = LeaveBehind();
    const std::string elsewhere = host.Directory() / "elsewhere";
    fs::rename(folder, elsewhere);
    fs::create_directory_symlink(elsewhere, folder);
    Recovery recovery(state, GetReport(), queue);
    EXPECT_THAT(recovery.FindLeftovers(), IsEmpty());
    EXPECT_TRUE(fs::exists(JoinPath(elsewhere, PathFile(copy))));
}

}  // namespace
}  // namespace tavrin
