// SPDX-License-Identifier: Apache-2.0
#include "library/OpRegistry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::CollectingSink;
using test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;

class OpRegistry : public testing::Test {
  protected:
    OpRegistry() : registry(report) { report.SetSink(&sink); }

    void AddFiles(std::initializer_list<const char*> names) {
        for (const char* name : names) directory.Write(name, "");
    }
    void Scan() { registry.AddDirectory(directory.Path()); }

    TempDir directory;
    CollectingSink sink;
    Report report;
    COpRegistry registry;
};

// A menu as text: operators by name, "-" for a separator, a submenu with its items in parentheses.
std::string TextOf(const OpMenu& menu) {
    std::string text;
    for (const OpMenuItem& item : menu.items) {
        if (!text.empty()) text += " ";
        if (item.kind == OpMenuItem::Kind::kOperator) text += item.label;
        if (item.kind == OpMenuItem::Kind::kSeparator) text += "-";
        if (item.kind == OpMenuItem::Kind::kSubmenu) text += item.label + "(" + TextOf(*item.submenu) + ")";
    }
    return text;
}

// The scan

TEST_F(OpRegistry, DirectoriesBecomeSubmenusAndIdsFollowTheOrderOfTheScan) {
    AddFiles({"0200.Mix", "0100.Patterns/0010.Noise"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "Patterns(Noise) Mix");
    EXPECT_THAT(registry.Names(), ElementsAre("Noise", "Mix"));
    EXPECT_EQ(registry.FindByName("Noise")->id, 40960U);
    EXPECT_EQ(registry.FindByName("Mix")->id, 40962U);
    EXPECT_EQ(registry.FindByName("Noise")->path, directory / "0100.Patterns/0010.Noise");
    EXPECT_EQ(registry.Root().items[1].id, 40962U);
    EXPECT_EQ(registry.SubmenuCount(), 1U);
}

TEST_F(OpRegistry, EntriesSortByTheBytesOfTheWholeFileName) {
    AddFiles({"b000.one", "a000.two", "B000.three", "0900.nine", "0100.z", "0100.a", "0100.Z", "~000.last"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "Z a nine three two one last") << "z is Z again and is left out";
}

TEST_F(OpRegistry, FilesAndDirectoriesAreSortedTogether) {
    AddFiles({"0100.A", "0200.B/0100.C", "0300.D"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "A B(C) D");
}

TEST_F(OpRegistry, NamesWithoutFourCharactersAndADotAreLeftOut) {
    AddFiles({"010.short", "01000.long", "Readme", "0100", "0100.", "0100-x", "0100.ok"});
    Scan();
    EXPECT_THAT(registry.Names(), ElementsAre("ok"));
}

TEST_F(OpRegistry, AnyFourCharactersAreASortKey) {
    AddFiles({"  a .blank", "1.2..dots", "#\xE4!x.bytes", "\"\\# .quotes"});
    Scan();
    EXPECT_THAT(registry.Names(), ElementsAre("blank", "quotes", "bytes", "dots"));
    EXPECT_EQ(sink.log, "");
}

TEST_F(OpRegistry, NamesThatBeginWithADotAreSkipped) {
    AddFiles({".bak.Mix", "...a.Noise", ".svn.Dir/0100.Inner", "0100.Kept"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "Kept");
    EXPECT_EQ(registry.SubmenuCount(), 0U);
}

TEST_F(OpRegistry, AFurtherDotBelongsToTheName) {
    AddFiles({"0100.a.b", "0200..c"});
    Scan();
    EXPECT_THAT(registry.Names(), ElementsAre("a.b", ".c"));
    ASSERT_NE(registry.FindByName("A.B"), nullptr);
}

TEST_F(OpRegistry, TheSeparatorNameInAnyCaseIsASeparatorAndNoOperator) {
    AddFiles({"0100.A", "0200._SEPARATOR_", "0300.B", "0400._separator_", "0500._SePaRaToR_"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "A - B - -");
    EXPECT_THAT(registry.Names(), ElementsAre("A", "B"));
    EXPECT_EQ(registry.FindByName("B")->id, 40962U) << "a separator takes no id";
    EXPECT_EQ(registry.FindByName("_SEPARATOR_"), nullptr);
    EXPECT_THAT(sink.log, IsEmpty()) << "separators may repeat";
}

TEST_F(OpRegistry, ADirectoryNamedLikeASeparatorIsASubmenu) {
    AddFiles({"0100._SEPARATOR_/0100.A"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "_SEPARATOR_(A)");
}

TEST_F(OpRegistry, ADirectoryWithOnlyEmptyDirectoriesAddsNoSubmenuButIsKept) {
    fs::create_directories(directory / "0100.Outer/0100.Inner");
    AddFiles({"0200.Files/ignored.txt", "0300.A"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "A");
    EXPECT_EQ(registry.SubmenuCount(), 3U);
}

TEST_F(OpRegistry, ASeparatorAloneMakesASubmenu) {
    AddFiles({"0100.Sub/0100._SEPARATOR_"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "Sub(-)");
}

TEST_F(OpRegistry, AMissingDirectoryAddsNothing) {
    registry.AddDirectory(directory / "nowhere");
    registry.AddDirectory(directory.Write("file", ""));
    EXPECT_THAT(registry.Root().items, IsEmpty());
    EXPECT_THAT(registry.Entries(), IsEmpty());
}

TEST_F(OpRegistry, ALinkToADirectoryAboveDoesNotGoRoundInACircle) {
    AddFiles({"0100.Sub/0100.A", "0200.B"});
    fs::create_directory_symlink(directory.Path(), directory / "0100.Sub/0200.Up");
    fs::create_directory_symlink(".", directory / "0100.Sub/0300.Here");
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "Sub(A) B");
    EXPECT_THAT(sink.log, IsEmpty());
}

TEST_F(OpRegistry, ALinkedDirectoryIsASubmenuAndALinkedFileAnOperator) {
    TempDir elsewhere;
    elsewhere.Write("0100.A", "");
    fs::create_directory_symlink(elsewhere.Path(), directory / "0100.Linked");
    fs::create_symlink(elsewhere / "0100.A", directory / "0200.Other");
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "Linked(A) Other");
}

TEST_F(OpRegistry, ADirectoryThatIsNotOnTheWayDownIsScannedAgainForALink) {
    AddFiles({"0100.Sub/0100.A"});
    fs::create_directory_symlink(directory / "0100.Sub", directory / "0200.Same");
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "Sub(A)");
    EXPECT_EQ(sink.log, "WARNING: operator A is not unique\r\n");
    EXPECT_EQ(registry.SubmenuCount(), 2U);
}

// Names

TEST_F(OpRegistry, TheSameNameInASecondDirectoryIsSkippedWithAWarning) {
    TempDir second;
    second.Write("0001.Mix", "");
    second.Write("0002.Other", "");
    AddFiles({"0100.Mix"});
    Scan();
    registry.AddDirectory(second.Path());
    EXPECT_EQ(registry.FindByName("Mix")->path, directory / "0100.Mix");
    EXPECT_EQ(sink.log, "WARNING: operator Mix is not unique\r\n");
    EXPECT_EQ(TextOf(registry.Root()), "Mix Other");
    EXPECT_EQ(registry.FindByName("Other")->id, 40962U) << "a skipped file takes no id";
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(OpRegistry, NamesThatDifferOnlyInCaseCollideAndTheWarningShowsTheSecond) {
    AddFiles({"0100.noise", "0200.Sub/0100.NOISE"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "noise");
    EXPECT_EQ(sink.log, "WARNING: operator NOISE is not unique\r\n");
}

TEST_F(OpRegistry, TwoFilesOfOneNameInOneDirectoryKeepTheFirst) {
    AddFiles({"0200.Mix", "0100.Mix"});
    Scan();
    EXPECT_EQ(registry.FindByName("Mix")->path, directory / "0100.Mix");
    EXPECT_EQ(registry.Entries().size(), 1U);
}

TEST_F(OpRegistry, ASubmenuMayShareItsNameWithAnOperator) {
    AddFiles({"0100.Mix/0100.Mix"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "Mix(Mix)");
    EXPECT_THAT(sink.log, IsEmpty());
}

TEST_F(OpRegistry, NamesAreFoundInAnyCaseAndKeepTheirOwn) {
    AddFiles({"0100.MixIt"});
    Scan();
    for (const char* name : {"MixIt", "mixit", "MIXIT"}) {
        ASSERT_NE(registry.FindByName(name), nullptr) << name;
        EXPECT_EQ(registry.FindByName(name)->name, "MixIt");
    }
    EXPECT_EQ(registry.FindByName("Mix"), nullptr);
    EXPECT_EQ(registry.FindByName("MixIt "), nullptr);
    EXPECT_EQ(registry.FindByName(""), nullptr);
}

TEST_F(OpRegistry, ANameThatDocumentsCannotHoldIsNotOffered) {
    for (const char* name :
         {"two words", "a#b", "#", "say\"so", "back\\slash", "line\nend", "tab\t", " lead"}) {
        SCOPED_TRACE(name);
        TempDir single;
        const std::string path = single.Write("0100." + std::string(name), "");
        single.Write("0200.Kept", "");
        registry.Clear();
        sink.log.clear();
        registry.AddDirectory(single.Path());
        EXPECT_EQ(TextOf(registry.Root()), "Kept");
        EXPECT_EQ(registry.FindByName(name), nullptr);
        EXPECT_EQ(registry.FindByName("Kept")->id, 40960U) << "a file that is left out takes no id";
        std::string shown = path;
        std::replace(shown.begin(), shown.end(), '\n', ' ');
        EXPECT_EQ(sink.log,
                  "WARNING: operator file " + shown +
                      " is not offered: a document cannot hold its name; use a name without blanks, line "
                      "breaks, double quotes, backslashes and #\r\n");
        registry.Clear();
        registry.AddDirectory(single.Path());
        EXPECT_THAT(sink.log, testing::EndsWith("and #\r\n"));
        EXPECT_EQ(std::count(sink.log.begin(), sink.log.end(), '\n'), 1)
            << "told once, however often it is scanned";
    }
}

TEST_F(OpRegistry, ASavedNetworkMayHaveAnyName) {
    TempDir single;
    single.Write("0100.Two words #2", "# saved\ntavrn-version 1.3.32\n");
    registry.Clear();
    sink.log.clear();
    registry.AddDirectory(single.Path());
    EXPECT_EQ(TextOf(registry.Root()), "Two words #2");
    EXPECT_EQ(sink.log, "");
}

TEST_F(OpRegistry, OnlyAsciiLettersAreFolded) {
    AddFiles({"0100.\xC3\x84rger", "0200.\xC3\xA4rger"});
    Scan();
    EXPECT_EQ(registry.Entries().size(), 2U);
    EXPECT_EQ(registry.FindByName("\xC3\x84RGER")->id, 40960U);
    EXPECT_EQ(registry.FindByName("\xC3\xA4RGER")->id, 40962U);
}

TEST_F(OpRegistry, APercentSignInANameIsTextInTheWarning) {
    AddFiles({"0100.%s%n", "0200.%s%n"});
    Scan();
    EXPECT_EQ(sink.log, "WARNING: operator %s%n is not unique\r\n");
}

// Ids

TEST_F(OpRegistry, IdsBetweenTwoOperatorsBelongToNobody) {
    AddFiles({"0100.A", "0200.B"});
    Scan();
    EXPECT_EQ(registry.FindById(40960)->name, "A");
    EXPECT_EQ(registry.FindById(40961), nullptr);
    EXPECT_EQ(registry.FindById(40962)->name, "B");
    EXPECT_EQ(registry.FindById(40964), nullptr);
    EXPECT_EQ(registry.FindById(0), nullptr);
}

TEST_F(OpRegistry, AFurtherDirectoryGoesOnWithTheIds) {
    TempDir second;
    second.Write("0001.B", "");
    AddFiles({"0100.A"});
    Scan();
    registry.AddDirectory(second.Path());
    EXPECT_EQ(registry.FindByName("B")->id, 40962U);
    EXPECT_EQ(TextOf(registry.Root()), "A B");
}

TEST_F(OpRegistry, OperatorsPastTheLastMenuCommandAreStillFoundByName) {
    constexpr int kCount = 2050;
    for (int i = 0; i < kCount; ++i) directory.Write("0000.op" + std::to_string(10000 + i), "");
    Scan();
    EXPECT_EQ(registry.FindByName("op12048")->id, COpRegistry::kLastId);
    EXPECT_EQ(registry.FindByName("op12049")->id, COpRegistry::kLastId + 2);
}

// Clear and the menu path

TEST_F(OpRegistry, ClearForgetsEverythingAndIdsStartAgain) {
    AddFiles({"0100.Sub/0100.A", "0200._SEPARATOR_", "0300.B"});
    Scan();
    registry.Clear();
    EXPECT_THAT(registry.Root().items, IsEmpty());
    EXPECT_THAT(registry.Entries(), IsEmpty());
    EXPECT_THAT(registry.Names(), IsEmpty());
    EXPECT_EQ(registry.SubmenuCount(), 0U);
    EXPECT_EQ(registry.FindByName("A"), nullptr);
    EXPECT_EQ(registry.FindById(40960), nullptr);
    AddFiles({"0050.New"});
    Scan();
    EXPECT_EQ(TextOf(registry.Root()), "New Sub(A) - B");
    EXPECT_EQ(registry.FindByName("New")->id, 40960U);
    EXPECT_THAT(sink.log, IsEmpty()) << "names of before are free again";
}

TEST_F(OpRegistry, TheMenuPathNamesTheSubmenusFromTheOutside) {
    AddFiles({"0100.Outer/0100.Inner/0100.A", "0100.Outer/0200.B", "0200.C"});
    Scan();
    EXPECT_EQ(registry.MenuPath(*registry.FindByName("A")), "Outer > Inner");
    EXPECT_EQ(registry.MenuPath(*registry.FindByName("B")), "Outer");
    EXPECT_EQ(registry.MenuPath(*registry.FindByName("C")), "");
}

}  // namespace
}  // namespace tavrin
