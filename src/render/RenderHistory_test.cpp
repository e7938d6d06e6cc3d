// SPDX-License-Identifier: Apache-2.0
// The list of renders and their directories, and going back to one.
#include "render/RenderHistory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class RenderHistoryTest : public test::DocumentTest {
  protected:
    RenderHistoryTest() {
        // Neither filter nor launcher has anything to do here.
        WriteFilter();
        host.Directory().Write("bin/PerlExec", "#!/bin/sh\n");
        fs::permissions(host.Directory() / "bin/PerlExec", fs::perms::owner_all);
        site.environment.Set("PATH", host.Directory() / "bin" + ":/usr/bin:/bin");
        document.SetPath("/documents/plastic.tvn");
        Add(test::MakeLink("Link", 1));
    }
    void WriteFilter() const { host.Directory().Write("installation/mini/bin/redirect.pl", "exit 0;\n"); }
    // Documents that are read may hold it.
    void AddLinkOperator() {
        host.startsProcesses = false;
        host.AddOperator("Link", "input in { float { 0 0 1 0 %g } } output out { float out }");
        WriteFilter();  // a new operator brings a library's usual scripts
    }
    RenderSession& Session(const std::string& maxHistory = {}) {
        if (!maxHistory.empty()) site.settings.Store("maxhistory", maxHistory);
        session = std::make_unique<RenderSession>(document, site, siteCodeGen);
        return *session;
    }
    int MaxHistory(const std::string& setting) { return Session(setting).History().MaxHistory(); }
    bool IsKept(int number) const { return fs::exists(site.WorkPath(std::to_string(number))); }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
    std::unique_ptr<RenderSession> session;
};

TEST_F(RenderHistoryTest, TheNewestRenderStandsFirst) {
    Session().RenderIt();
    document.SetPath("/documents/glass.tvn");
    session->RenderIt();
    EXPECT_THAT(session->History().Entries(), ElementsAre("02 glass", "01 plastic"));
    EXPECT_TRUE(IsKept(1));
    EXPECT_TRUE(IsKept(2));
}

TEST_F(RenderHistoryTest, BeyondTheLimitTheOldestGoesWithItsDirectoryAndNumbersGoOn) {
    Session("2");
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(session->RenderIt());
    EXPECT_THAT(session->History().Entries(), ElementsAre("03 plastic", "02 plastic"));
    EXPECT_FALSE(IsKept(1));
    EXPECT_TRUE(IsKept(2));
    EXPECT_TRUE(session->RenderIt());
    EXPECT_THAT(session->History().Entries(), ElementsAre("04 plastic", "03 plastic"));
    EXPECT_FALSE(IsKept(2));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(RenderHistoryTest, ALimitOfNothingKeepsNoEntry) {
    EXPECT_TRUE(Session("0").RenderIt());
    EXPECT_THAT(session->History().Entries(), IsEmpty());
    EXPECT_FALSE(IsKept(1));
}

TEST_F(RenderHistoryTest, ARenderWithoutHistoryIsNotListed) {
    Session().m_keepHistory = false;
    session->RenderIt();
    session->m_keepHistory = true;
    session->RenderIt();
    EXPECT_THAT(session->History().Entries(), ElementsAre("02 plastic"));
}

TEST_F(RenderHistoryTest, ARenderWhoseHistoryCannotBeKeptIsNotListed) {
    host.Directory().Write("work/1", "in the way");
    EXPECT_FALSE(Session().RenderIt());
    EXPECT_THAT(session->History().Entries(), IsEmpty());
}

TEST_F(RenderHistoryTest, TheLimitIsANumberCutToAWholeOne) {
    EXPECT_EQ(MaxHistory(""), 100);
    EXPECT_EQ(MaxHistory("2.9"), 2);
    EXPECT_EQ(MaxHistory("7 # ours"), 7);
    EXPECT_EQ(MaxHistory("many"), 100);
}

TEST_F(RenderHistoryTest, ADirectoryWhoseNameIsNoNumberIsLeftAndAlerted) {
    const std::string path = host.Directory().Write("work/-5/precious", "x");
    site.settings.Store("maxhistory", "0");
    RenderHistory history(site);
    history.AddEntry("-5 plastic");
    EXPECT_THAT(Alerts(), ElementsAre("unexpected render history directory name -5"));
    EXPECT_TRUE(fs::exists(path));
    EXPECT_THAT(history.Entries(), IsEmpty());
}

TEST_F(RenderHistoryTest, LinesHaveTwoDigitsOrMoreAndAreReadBack) {
    EXPECT_EQ(RenderHistory::EntryText(7, "plastic"), "07 plastic");
    EXPECT_EQ(RenderHistory::EntryText(123, "plastic"), "123 plastic");
    int number = 0;
    std::string name;
    EXPECT_TRUE(RenderHistory::ParseEntry("07 plastic", number, name));
    EXPECT_EQ(number, 7);
    EXPECT_EQ(name, "plastic");
    EXPECT_TRUE(RenderHistory::ParseEntry("123 a.b", number, name));
    EXPECT_EQ(number, 123);
    EXPECT_EQ(name, "a.b");
    EXPECT_FALSE(RenderHistory::ParseEntry("plastic", number, name));
    EXPECT_FALSE(RenderHistory::ParseEntry("8", number, name));
}

TEST_F(RenderHistoryTest, TheSiteSaysWhetherSeveralRendersMayRun) {
    EXPECT_TRUE(Session().m_multipleRenders);
    site.settings.Store("multiplerenders", "0");
    EXPECT_FALSE(Session().m_multipleRenders);
    site.settings.Store("multiplerenders", "none");
    EXPECT_TRUE(Session().m_multipleRenders);
}

TEST_F(RenderHistoryTest, GoingBackOpensTheEntryUnderTheDocumentsOwnPlace) {
    host.AddOperator("Link", "input in { float { 0 0 1 0 %g } } output out { float out }");
    site.directories.docBrowserDir = "/documents";
    document.m_renderOptions["DEPTH"] = "2";
    host.Directory().Write("work/3/plastic.tvn", document.Store());
    document.m_renderOptions["DEPTH"] = "4";
    host.appVariables["DEPTH"] = "1";
    EXPECT_TRUE(Session().LoadHistoryEntry("03 plastic"));
    EXPECT_EQ(document.m_renderOptions["DEPTH"], "2");
    EXPECT_EQ(document.Path(), "/documents/plastic.tvn");
    EXPECT_EQ(document.m_boxes.size(), 1U);
}

TEST_F(RenderHistoryTest, AnEntryGoesBackToTheFileOfTheDocumentThatWasRendered) {
    AddLinkOperator();
    site.directories.docBrowserDir = host.Directory() / "b/";
    const std::string path = host.Directory().Write("a/one.tvn", document.Store());
    const std::string sameName = host.Directory().Write("b/one.tvn", "# another");
    ASSERT_TRUE(document.Open(path));
    ASSERT_TRUE(Session().RenderIt());
    ASSERT_TRUE(document.Open(host.Directory().Write("b/other.tvn", "# nothing\n")));
    ASSERT_TRUE(session->LoadHistoryEntry("01 one"));
    EXPECT_EQ(document.Path(), path);
    EXPECT_FALSE(document.Origin().file->HoldsOther());
    EXPECT_FALSE(document.IsModified());
    EXPECT_TRUE(document.DiffersFromFile());
    // An entry of the entry.
    ASSERT_TRUE(session->RenderIt());
    ASSERT_TRUE(document.Open(sameName));
    ASSERT_TRUE(session->LoadHistoryEntry("02 one"));
    EXPECT_EQ(document.Path(), path);
    host.Directory().Write("a/one.tvn", "somebody else's");
    EXPECT_TRUE(document.Origin().file->HoldsOther());
}

TEST_F(RenderHistoryTest, AnEntryOfADocumentWithoutAFileHasNone) {
    site.directories.docBrowserDir = "/documents";
    document.SetPath("");
    ASSERT_TRUE(Session().RenderIt());
    document.SetPath("/documents/glass.tvn");
    ASSERT_TRUE(session->LoadHistoryEntry("01 Untitled"));
    EXPECT_EQ(document.Path(), "");
}

TEST_F(RenderHistoryTest, AnEntryOfACutDocumentIsCutShortAsWell) {
    AddLinkOperator();
    const std::string path =
        host.Directory().Write("a/cut.tvn", "opdesk { opbox { filename Link wid 1 }\noops }\n");
    ASSERT_TRUE(document.Open(path));
    ASSERT_TRUE(Session().RenderIt());
    ASSERT_TRUE(document.Open(host.Directory().Write("b/other.tvn", "# nothing\n")));
    ASSERT_FALSE(document.WasCutShort());
    ASSERT_TRUE(session->LoadHistoryEntry("01 cut"));
    EXPECT_TRUE(document.WasCutShort());
    EXPECT_TRUE(document.WouldLoseUnread(path));
}

TEST_F(RenderHistoryTest, AnEntryThatIsCutItselfIsNoVersionToReplaceTheFileUnasked) {
    const std::string path = host.Directory().Write("a/one.tvn", document.Store());
    document.SetPath(path);
    ASSERT_TRUE(Session().RenderIt());
    host.Directory().Write("work/1/one.tvn", "toolbar");
    ASSERT_TRUE(session->LoadHistoryEntry("01 one"));
    EXPECT_EQ(document.Path(), path);
    EXPECT_TRUE(document.WouldLoseUnread(path));
}

TEST_F(RenderHistoryTest, AnEntryIsFoundByItsPath) {
    ASSERT_TRUE(Session().RenderIt());
    const std::string* entry = session->EntryAt(site.WorkPath("1/plastic.tvn"));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(*entry, "01 plastic");
    EXPECT_EQ(session->EntryAt(site.WorkPath("2/plastic.tvn")), nullptr);
    EXPECT_EQ(session->EntryAt("/documents/plastic.tvn"), nullptr);
}

TEST_F(RenderHistoryTest, ALineThatIsNoEntryOpensNothing) {
    document.SetModified();
    EXPECT_FALSE(Session().LoadHistoryEntry("no number"));
    EXPECT_THAT(Alerts(), ElementsAre("no number is no entry of the render history"));
    EXPECT_EQ(document.Path(), "/documents/plastic.tvn");
    EXPECT_TRUE(document.IsModified());
}

TEST_F(RenderHistoryTest, AnEntryThatIsGoneLeavesTheDocumentAsItWas) {
    document.SetModified();
    EXPECT_FALSE(Session().LoadHistoryEntry("09 plastic"));
    EXPECT_THAT(Alerts(), ElementsAre("unable to open " + site.WorkPath("9/plastic.tvn") +
                                      " for reading: No such file or directory"));
    EXPECT_EQ(document.Path(), "/documents/plastic.tvn");
    EXPECT_EQ(document.m_boxes.size(), 1U);
    EXPECT_TRUE(document.IsModified());
}

}  // namespace
}  // namespace tavrin
