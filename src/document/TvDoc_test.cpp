// SPDX-License-Identifier: Apache-2.0
// The document object: its defaults, opening and its state.
#include "document/TvDoc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <new>
#include <set>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::WidsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class TvDoc : public test::DocumentTest {
  protected:
    std::string Write(const std::string& name, const std::string& text) {
        return host.Directory().Write(name, text);
    }
    void SetKey(const std::string& key, const std::string& value) {
        host.GetSite().settings.Store(key, value);
    }
};

TEST_F(TvDoc, ANewDocumentIsEmptyAndUnmodified) {
    EXPECT_THAT(document.m_boxes, IsEmpty());
    EXPECT_EQ(document.Path(), "");
    EXPECT_FALSE(document.IsModified());
    EXPECT_FALSE(document.WasCutShort());
    EXPECT_EQ(document.showiconimages + document.linetype + document.drawlinesoverboxes +
                  document.showvarnames + document.lock,
              0);
    EXPECT_THAT(document.offset, ElementsAre(0.0F, 0.0F));
    EXPECT_THAT(document.zoom, ElementsAre(0.5F, 0.5F));
    EXPECT_EQ(document.zoomFactor, 1.0F);
}

TEST_F(TvDoc, TheDefaultsAreTheApplications) {
    host.GetSite().toolButtons = {"Noise", "Mix"};
    host.appVariables = {{"A", "1"}};
    host.exportDefaults.saveSource = 1;
    host.exportDefaults.sourcePath = "/s/";
    const CTvDoc made(host);
    EXPECT_THAT(made.toolbar, ElementsAre("Noise", "Mix"));
    EXPECT_EQ(made.m_renderOptions, host.appVariables);
    EXPECT_EQ(made.exportOptions.saveSource, 1);
    EXPECT_EQ(made.exportOptions.sourcePath, "/s/");
}

TEST_F(TvDoc, OnlyFourSettingsOfTheDeskComeFromTheSite) {
    for (const char* key : {"showiconimages", "showvarnames", "lock", "drawlinesoverboxes"}) {
        SetKey(std::string("desk.") + key, "1");
    }
    SetKey("desk.linetype", "trace");
    const CTvDoc made(host);
    EXPECT_EQ(made.showiconimages, 1);
    EXPECT_EQ(made.showvarnames, 1);
    EXPECT_EQ(made.lock, 1);
    EXPECT_EQ(made.drawlinesoverboxes, 0);
    EXPECT_EQ(made.linetype, 1);
}

TEST_F(TvDoc, TheFlagsOfTheSiteAreOnForAnyNumberButZeroAndTheLineTypeIsOneWord) {
    SetKey("desk.showiconimages", "yes");
    SetKey("desk.showvarnames", "2");
    SetKey("desk.linetype", "direct");
    const CTvDoc direct(host);
    EXPECT_EQ(direct.showiconimages, 0);
    EXPECT_EQ(direct.showvarnames, 1) << "as documents have it";
    EXPECT_EQ(direct.linetype, 0);
    SetKey("desk.linetype", "\"trace\" # always");
    EXPECT_EQ(CTvDoc(host).linetype, 1);
    SetKey("desk.linetype", "Trace");
    EXPECT_EQ(CTvDoc(host).linetype, 0);
}

TEST_F(TvDoc, TheHelpOfANewDocumentIsATemplate) {
    std::vector<std::string> lines{""};
    for (const char c : document.customshaderhelp) {
        if (c == '\n') {
            ASSERT_TRUE(lines.back().ends_with('\r'));
            lines.back().pop_back();
            lines.emplace_back();
        } else {
            lines.back() += c;
        }
    }
    ASSERT_EQ(lines.size(), 14U);
    for (const size_t line : {size_t{1}, size_t{13}}) {
        EXPECT_THAT(lines[line], StartsWith("    "));
        EXPECT_GT(lines[line].size(), 5U);
        lines[line] = "ours";
    }
    EXPECT_THAT(
        lines,
        ElementsAre("    T I T L E   O F   S H A D E R", "ours", "", "VARIABLES",
                    "    VARNAME1 - short description", "    VARNAME2 - another short description", "",
                    "DESCRIPTION", "    Your indepth description of the shader goes here.",
                    "    This text is saved as part of your shader's tavrn file,",
                    "    so it can be made available to others who use the shader.", "", "AUTHOR", "ours"));
}

TEST_F(TvDoc, DeletingTheContentsPutsEveryDefaultBack) {
    const std::string fresh = document.Store();
    const size_t live = COpBox::LiveCount();
    document.toolbar = {"x"};
    Add(test::MakeLink("a", 1));
    document.showiconimages = document.linetype = document.drawlinesoverboxes = 1;
    document.showvarnames = document.lock = 1;
    document.offset[0] = document.offset[1] = document.zoom[0] = document.zoom[1] = document.zoomFactor = 9;
    document.m_renderOptions["new"] = "x";
    document.exportOptions.saveTavrn = 1;
    document.customshaderhelp = "x";
    document.SetModified();
    document.DeleteContents();
    EXPECT_EQ(document.Store(), fresh);
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(COpBox::LiveCount(), live);
}

TEST_F(TvDoc, TheTitleIsTheNameOfTheFile) {
    EXPECT_EQ(document.Title(), "Untitled.tvn");
    document.SetPath("/home/user/my shader.tvn");
    EXPECT_EQ(document.Title(), "my shader.tvn");
    document.SetPath("plain");
    EXPECT_EQ(document.Title(), "plain");
}

TEST_F(TvDoc, OpeningReplacesEverything) {
    host.AddOperator("op", "");
    host.appVariables = {{"A", "1"}};
    document.DeleteContents();
    Add(test::MakeLink("old", 1));
    document.lock = 1;
    document.m_renderOptions["A"] = "changed";
    document.toolbar = {"old"};
    document.SetModified();
    const std::string path = Write("doc.tvn", "opdesk { opbox { filename op wid 2 } }\n");
    EXPECT_TRUE(document.Open(path));
    EXPECT_THAT(WidsOf(document), ElementsAre(2));
    EXPECT_EQ(document.lock, 0);
    EXPECT_EQ(document.m_renderOptions["A"], "1");
    EXPECT_THAT(document.toolbar, IsEmpty());
    EXPECT_EQ(document.Path(), path);
    EXPECT_EQ(document.Title(), "doc.tvn");
    EXPECT_FALSE(document.IsModified());
    EXPECT_FALSE(document.WasCutShort());
}

TEST_F(TvDoc, AFileThatCannotBeOpenedLeavesTheDocumentAsItWas) {
    Add(test::MakeLink("kept", 3));
    document.SetPath("/before.tvn");
    document.SetModified();
    for (const std::string& path : {host.Directory() / "missing.tvn", host.Directory().Path()}) {
        host.Sink().alerts.clear();
        EXPECT_FALSE(document.Open(path));
        EXPECT_THAT(Alerts(), ElementsAre(StartsWith("unable to open " + path + " for reading")));
        EXPECT_THAT(WidsOf(document), ElementsAre(3));
        EXPECT_EQ(document.Path(), "/before.tvn");
        EXPECT_TRUE(document.IsModified());
    }
}

TEST_F(TvDoc, AFileThatStopsTheReadingIsOpenWithWhatWasReadAndCutShort) {
    host.AddOperator("op", "");
    const std::string path = Write("doc.tvn", "opdesk { opbox { filename op wid 2 }\nlock 1\noops }\n");
    EXPECT_TRUE(document.Open(path));
    EXPECT_THAT(Alerts(), ElementsAre(path + " near line 3: unexpected input"));
    EXPECT_THAT(host.Sink().files, ElementsAre(path));
    EXPECT_THAT(WidsOf(document), ElementsAre(2));
    EXPECT_EQ(document.lock, 1);
    EXPECT_EQ(document.Path(), path);
    EXPECT_TRUE(document.WasCutShort());
    EXPECT_TRUE(document.Open(Write("good.tvn", "# nothing\n")));
    EXPECT_FALSE(document.WasCutShort());
}

TEST_F(TvDoc, ACopyIsCalledByWhatItWasReadFromAndHasNoFile) {
    host.AddOperator("op", "");
    const std::string path = Write("doc.tvn", "opdesk { opbox { filename op wid 2 } }\n");
    ASSERT_TRUE(document.Open(path));
    document.BecomeCopy();
    EXPECT_EQ(document.Path(), "");
    EXPECT_EQ(document.Title(), "doc.tvn");
    EXPECT_FALSE(document.IsModified());
    EXPECT_TRUE(document.IsNetworkSaved());
    document.SetModified();
    EXPECT_FALSE(document.IsNetworkSaved());
    document.SetPath({});
    EXPECT_EQ(document.Title(), "Untitled.tvn");
    EXPECT_FALSE(document.IsNetworkSaved());
}

TEST_F(TvDoc, ACopyOfWhatWasCutShortMayBeSavedAnywhereButThere) {
    host.AddOperator("op", "");
    const std::string path = Write("doc.tvn", "opdesk { opbox { filename op wid 2 }\noops }\n");
    ASSERT_TRUE(document.Open(path));
    document.BecomeCopy();
    EXPECT_FALSE(document.WasCutShort());
    EXPECT_TRUE(document.WouldLoseUnread(path));
    EXPECT_FALSE(document.WouldLoseUnread(host.Directory() / "other.tvn"));
}

// Has no memory left for the second box.
class PoorHost : public test::TestHost {
  protected:
    bool LoadDefinition(COpBox& box, const std::string& operatorName, DefinitionTexts* texts) override {
        if (++m_boxes == 2) throw std::bad_alloc();
        return TestHost::LoadDefinition(box, operatorName, texts);
    }

  private:
    int m_boxes = 0;
};

TEST(TvDocMemory, OpeningThatRunsOutOfMemoryIsAlertedAndKeepsTheFileFromBeingReplaced) {
    PoorHost host;
    host.startsProcesses = false;
    host.AddOperator("Link", "output out { float out }");
    CTvDoc document(host);
    const std::string path = host.Directory().Write("large.tvn",
                                                    "opdesk { opbox { filename Link wid 1 } opbox { filename "
                                                    "Link wid 2 } opbox { filename Link wid 3 } }");
    EXPECT_TRUE(document.Open(path));
    EXPECT_THAT(host.Sink().alerts, ElementsAre("not enough memory for opening " + path));
    EXPECT_TRUE(document.WasCutShort());
    EXPECT_TRUE(document.WouldLoseUnread(path));
    document.DeleteContents();
    EXPECT_TRUE(document.Open(path)) << "now there is enough";
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2, 3));
    EXPECT_FALSE(document.WasCutShort());
}

// Knows the texts of its own by heart.
class RememberingHost : public test::TestHost {
  public:
    bool IsOwnText(std::string_view text) const override { return texts.contains(std::string(text)); }
    void NoteOwnText(std::string_view text) override { texts.emplace(text); }

    std::set<std::string> texts;
};

class ForeignDocument : public testing::Test {
  protected:
    std::string Stranger() const {
        return host.Directory().Write("stranger.tvn", "toolbar { button 0=A }\n");
    }
    std::string Path(const std::string& name) const { return host.Directory() / name; }
    void Save(const std::string& name) {
        std::string error;
        ASSERT_TRUE(document.Save(Path(name), error)) << error;
    }

    RememberingHost host;
    CTvDoc document{host};
};

TEST_F(ForeignDocument, ANewOneIsTheUsersOwnAndSoItIsWhenItWasSavedAndIsOpenedAgain) {
    EXPECT_FALSE(document.IsForeign());
    Save("own.tvn");
    std::filesystem::rename(Path("own.tvn"), Path("moved.tvn"));
    ASSERT_TRUE(document.Open(Path("moved.tvn")));
    EXPECT_FALSE(document.IsForeign());
}

TEST_F(ForeignDocument, OneThatSomebodyElseHasWrittenIsForeignAndSavingDoesNotMakeItOwn) {
    ASSERT_TRUE(document.Open(Stranger()));
    EXPECT_TRUE(document.IsForeign());
    Save("saved.tvn");
    EXPECT_TRUE(document.IsForeign());
    ASSERT_TRUE(document.Open(Path("saved.tvn")));
    EXPECT_TRUE(document.IsForeign());
    document.SetForeign(false);
    Save("agreed.tvn");
    ASSERT_TRUE(document.Open(Path("agreed.tvn")));
    EXPECT_FALSE(document.IsForeign());
}

TEST_F(ForeignDocument, WhatTakesItsPlaceIsForeignOrNotByItself) {
    Save("own.tvn");
    ASSERT_TRUE(document.Open(Stranger()));
    document.DeleteContents();
    EXPECT_FALSE(document.IsForeign());
    ASSERT_TRUE(document.Open(Stranger()));
    ASSERT_TRUE(document.Open(Path("own.tvn")));
    EXPECT_FALSE(document.IsForeign());
}

TEST_F(ForeignDocument, ACopyThatWasExportedIsTheUsersOwnToo) {
    std::string error;
    ASSERT_TRUE(document.SaveCopy(Path("copy.tvn"), error));
    ASSERT_TRUE(document.Open(Path("copy.tvn")));
    EXPECT_FALSE(document.IsForeign());
}

TEST_F(ForeignDocument, UnsavedWorkThatIsRecoveredIsWhatItsDocumentWas) {
    Save("own.tvn");
    const auto held = document.Origin().file->held;
    ASSERT_TRUE(held);
    ASSERT_TRUE(document.Open(Stranger()));
    const auto strange = document.Origin().file->held;
    document.BecomeRecovered(Path("own.tvn"), false, held);
    EXPECT_FALSE(document.IsForeign());
    document.BecomeRecovered(Path("stranger.tvn"), false, strange);
    EXPECT_TRUE(document.IsForeign());
    document.BecomeRecovered("", false, std::nullopt);
    EXPECT_FALSE(document.IsForeign()) << "it never had a file";
    document.BecomeRecovered(Path("gone.tvn"), false, held);
    EXPECT_TRUE(document.IsForeign());
}

TEST_F(TvDoc, ANewDocumentIsNotCutShort) {
    document.Open(Write("doc.tvn", "toolbar"));
    ASSERT_TRUE(document.WasCutShort());
    document.DeleteContents();
    EXPECT_FALSE(document.WasCutShort());
}

TEST_F(TvDoc, AHelpWithoutItsEndCountsAsCutShort) {
    EXPECT_TRUE(document.Open(Write("doc.tvn", "customshaderhelp\n{\n>x\n")));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_TRUE(document.WasCutShort());
}

TEST_F(TvDoc, ReadingAFileTwiceDoesNotDoubleItsBoxes) {
    host.AddOperator("op", "");
    const std::string path = Write("doc.tvn", "opdesk { opbox { filename op wid 2 } }\n");
    EXPECT_TRUE(document.Open(path));
    EXPECT_TRUE(document.Open(path));
    EXPECT_EQ(document.m_boxes.size(), 1U);
}

TEST_F(TvDoc, ADocumentThatGoesTakesItsBoxesAlong) {
    const size_t boxes = COpBox::LiveCount();
    const size_t buttons = COpButton::LiveCount();
    {
        CTvDoc scratch(host);
        scratch.m_boxes.push_back(test::MakeLink("a", 1));
        scratch.m_boxes.push_back(test::MakeLink("b", 2));
        test::Wire(BoxAt(scratch, 0), 0, BoxAt(scratch, 1), 0);
    }
    EXPECT_EQ(COpBox::LiveCount(), boxes);
    EXPECT_EQ(COpButton::LiveCount(), buttons);
}

}  // namespace
}  // namespace tavrin
