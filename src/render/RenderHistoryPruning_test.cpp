// SPDX-License-Identifier: Apache-2.0
// What leaves the render history, what stays, and going back to an entry that a render has left.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "render/RenderHistory.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class RenderHistoryPruningTest : public test::DocumentTest {
  protected:
    RenderHistoryPruningTest() {
        // Read directly, since nothing but the filter runs in these tests, and that does nothing.
        host.startsProcesses = false;
        host.AddOperator("Link", "input in { float { 0 0 1 0 %g } } output out { float out }");
        host.Directory().Write("installation/mini/bin/redirect.pl", "exit 0;\n");
        host.Directory().Write("bin/PerlExec", "#!/bin/sh\n");
        fs::permissions(host.Directory() / "bin/PerlExec", fs::perms::owner_all);
        site.environment.Set("PATH", host.Directory() / "bin" + ":/usr/bin:/bin");
        site.directories.docBrowserDir = "/documents";
        document.SetPath("/elsewhere/plastic.tvn");
        Add(test::MakeLink("Link", 1));
    }
    RenderHistory Limited(const std::string& limit) {
        site.settings.Store("maxhistory", limit);
        return RenderHistory(site);
    }
    std::string InWork(const std::string& name) const { return site.WorkPath(name); }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
};

TEST_F(RenderHistoryPruningTest, AnEntryGoesWithEverythingThatARenderLeftInItsDirectory) {
    RenderHistory history = Limited("1");
    host.Directory().Write("work/1/plastic.tvn", "x");
    host.Directory().Write("work/1/pictures/a/plastic.png", "x");
    host.Directory().Write("work/2/plastic.tvn", "x");
    history.AddEntry("01 plastic");
    history.AddEntry("02 plastic");
    EXPECT_THAT(history.Entries(), ElementsAre("02 plastic"));
    EXPECT_FALSE(fs::exists(InWork("1")));
    EXPECT_TRUE(fs::exists(InWork("2/plastic.tvn")));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(RenderHistoryPruningTest, TheDirectoryIsThatOfTheNumberWithoutLeadingZeros) {
    RenderHistory history = Limited("0");
    host.Directory().Write("work/7/x", "");
    host.Directory().Write("work/07/x", "");
    host.Directory().Write("work/123/x", "");
    history.AddEntry("07 plastic");
    history.AddEntry("123 plastic");
    EXPECT_FALSE(fs::exists(InWork("7")));
    EXPECT_TRUE(fs::exists(InWork("07")));
    EXPECT_FALSE(fs::exists(InWork("123")));
}

TEST_F(RenderHistoryPruningTest, ADirectoryThatIsGoneAlreadyIsNotMissed) {
    RenderHistory history = Limited("0");
    history.AddEntry("05 plastic");
    EXPECT_THAT(history.Entries(), IsEmpty());
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(RenderHistoryPruningTest, ALimitBelowNothingIsNothingAndAVastOneIsNoLimit) {
    EXPECT_EQ(Limited("-3").MaxHistory(), 0);
    EXPECT_EQ(Limited("-0.5").MaxHistory(), 0);
    EXPECT_EQ(Limited("1e30").MaxHistory(), 1000000000);
    EXPECT_EQ(Limited("inf").MaxHistory(), 1000000000);
    EXPECT_EQ(Limited("nan").MaxHistory(), 100);
}

TEST_F(RenderHistoryPruningTest, WithoutASettingAHundredEntriesAreKept) {
    RenderHistory history(site);
    for (int i = 1; i <= 101; ++i) history.AddEntry(RenderHistory::EntryText(i, "plastic"));
    EXPECT_EQ(history.Entries().size(), 100U);
    EXPECT_EQ(history.Entries().front(), "101 plastic");
    EXPECT_EQ(history.Entries().back(), "02 plastic");
}

TEST_F(RenderHistoryPruningTest, ARenderWhoseEntryIsRemovedAtOnceIsStartedAllTheSame) {
    host.Directory().Write("bin/PerlExec", "#!/bin/sh\necho \"$3\" > \"$TAVRN_WORKDIR/number\"\n");
    site.settings.Store("maxhistory", "0");
    RenderSession session(document, site, siteCodeGen);
    EXPECT_TRUE(session.RenderIt());
    EXPECT_TRUE(session.RenderIt());
    EXPECT_EQ(session.m_nextRender, 3);
    EXPECT_FALSE(fs::exists(InWork("2")));
    EXPECT_THAT(session.History().Entries(), IsEmpty());
}

TEST_F(RenderHistoryPruningTest, AShaderThatCannotBeSavedLeavesNoEntry) {
    host.Directory().Write("installation/mini/bin/redirect.pl", "exit 1;\n");
    RenderSession session(document, site, siteCodeGen);
    EXPECT_FALSE(session.RenderIt());
    EXPECT_THAT(session.History().Entries(), IsEmpty());
    EXPECT_FALSE(fs::exists(InWork("1")));
}

TEST_F(RenderHistoryPruningTest, GoingBackLeavesTheEntryAndTheNumbersAsTheyAre) {
    RenderSession session(document, site, siteCodeGen);
    EXPECT_TRUE(session.RenderIt());
    document.SetPath("/elsewhere/glass.tvn");
    EXPECT_TRUE(session.RenderIt());
    const std::string kept = test::ReadFile(InWork("1/plastic.tvn"));
    EXPECT_TRUE(session.LoadHistoryEntry(session.History().Entries().back()));
    EXPECT_EQ(document.Path(), "/elsewhere/plastic.tvn");
    EXPECT_EQ(document.Title(), "plastic.tvn");
    EXPECT_EQ(session.ShaderName(), "plastic");
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(test::ReadFile(InWork("1/plastic.tvn")), kept);
    EXPECT_THAT(session.History().Entries(), ElementsAre("02 glass", "01 plastic"));
    EXPECT_EQ(session.m_nextRender, 3);
    EXPECT_TRUE(session.RenderIt());
    EXPECT_THAT(session.History().Entries(), ElementsAre("03 plastic", "02 glass", "01 plastic"));
}

}  // namespace
}  // namespace tavrin
