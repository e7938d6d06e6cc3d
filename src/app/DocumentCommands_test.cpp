// SPDX-License-Identifier: Apache-2.0
#include "app/DocumentCommands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <utility>

#include "base/Files.h"
#include "forms/FormFields.h"
#include "forms/FormFrame.h"
#include "support/SmallApp.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

// An application with a library whose operators are copied as they stand, and a form with two options.
class DocumentCommandsTest : public test::SmallAppTest {
  protected:
    DocumentCommandsTest() {
        directory.Write("site/small/tavrn.def",
                        "tavrnbrowser_dir /shaders\next.shadersource .src\next.shaderiface light .lif\n"
                        "roe {\nchooser {\nenvname TAVRN_SHADER_TYPE\nvalue surface\nchoosercontents "
                        "{\nsurface\nlight\n}\n}\n"
                        "xfield {\nenvname SIZE\nvalue 4\n}\n}\n");
        MakeApp();
        app->LoadSiteDefaults();
        document = std::make_unique<CTvDoc>(*app);
        desk = std::make_unique<COpDesk>(*document, *app);
        app->SetDocument(document.get());
        commands =
            std::make_unique<DocumentCommands>(*app, *document, *desk, DocumentCommands::Announce::kYes);
    }

    // A saved document with one box and a shader type.
    std::string SavedDocument(const std::string& name, const std::string& type) {
        return directory.Write(
            name, "opdesk { opbox { filename Grain wid 7 } }\nrenderoptions { setenv TAVRN_SHADER_TYPE " +
                      type + " setenv SIZE 9 }\n");
    }

    std::unique_ptr<CTvDoc> document;
    std::unique_ptr<COpDesk> desk;
    std::unique_ptr<DocumentCommands> commands;
};

// There is no memory for the first alert.
class PoorSink : public test::CollectingSink {
  public:
    void OnAlert(const std::string& text, const std::string& file) override {
        if (!std::exchange(m_hasThrown, true)) throw std::bad_alloc();
        CollectingSink::OnAlert(text, file);
    }

  private:
    bool m_hasThrown = false;
};

TEST_F(DocumentCommandsTest, MergingOrAddingThatRunsOutOfMemoryIsAlertedAndPutsNothingUnderTheMouse) {
    const std::string path =
        directory.Write("a.tvn", "opdesk { opbox { filename Grain wid 7 } opbox { filename Gone wid 8 } }");
    PoorSink poor;
    report.SetSink(&poor);
    EXPECT_FALSE(commands->Merge(path));
    EXPECT_THAT(poor.alerts, testing::ElementsAre("not enough memory for merging " + path));
    EXPECT_TRUE(desk->m_pendingBoxes.empty());
    PoorSink poorer;
    report.SetSink(&poorer);
    desk->AddOperator("Gone");
    EXPECT_THAT(poorer.alerts, testing::ElementsAre("not enough memory for the operator Gone"));
    report.SetSink(&sink);
}

TEST_F(DocumentCommandsTest, ANewDocumentWillBeSavedAsUntitledWhereDialogsOpen) {
    ASSERT_TRUE(commands->Open(SavedDocument("a.tvn", "light")));
    app->GetSite().directories.docBrowserDir = "/shaders";
    commands->New();
    EXPECT_EQ(document->Path(), "/shaders/untitled.tvn");
    EXPECT_TRUE(document->m_boxes.empty());
    EXPECT_FALSE(document->IsModified());
    EXPECT_EQ(app->WindowTitle(), "untitled.tvn [surface]");
    EXPECT_EQ(desk->NextWid(), 1);
}

TEST_F(DocumentCommandsTest, OpeningTellsTheLogAndMovesTheDialogs) {
    ASSERT_TRUE(commands->Open(SavedDocument("there/a.tvn", "light")));
    EXPECT_EQ(app->GetSite().directories.docBrowserDir, directory / "there/");
    EXPECT_THAT(sink.log, MatchesRegex("opened .*/there/a.tvn at [01][0-9]:[0-5][0-9] [AP]M\r\n"));
}

TEST_F(DocumentCommandsTest, AnOpenedDocumentTakesItsNumbersAndItsTypeAlong) {
    ASSERT_TRUE(commands->Open(SavedDocument("a.tvn", "light")));
    EXPECT_EQ(app->WindowTitle(), "a.tvn [light]");
    EXPECT_EQ(document->exportOptions.shaderIfacePath, "./a.lif");
    EXPECT_EQ(document->exportOptions.sourcePath, "./a.src");
    for (int wid = 1; wid < 7; ++wid) EXPECT_EQ(desk->NextWid(), wid);
    EXPECT_EQ(desk->NextWid(), 8);
}

TEST_F(DocumentCommandsTest, TheFormShowsTheOptionsOfTheOpenedDocument) {
    const auto& field = dynamic_cast<const CFormXField&>(*app->RenderOptionsForm().children[1]);
    ASSERT_EQ(field.text, "4");
    ASSERT_TRUE(commands->Open(SavedDocument("a.tvn", "light")));
    EXPECT_EQ(field.text, "9");
}

TEST_F(DocumentCommandsTest, AnExampleIsACopyThatHasItsNameAndNoFile) {
    app->GetSite().directories.docBrowserDir = "/shaders";
    const std::string path = SavedDocument("there/a.tvn", "light");
    const std::string before = test::ReadFile(path);
    ASSERT_TRUE(commands->OpenExample(path));
    EXPECT_EQ(document->Path(), "");
    EXPECT_EQ(app->WindowTitle(), "a.tvn [light]");
    EXPECT_EQ(document->m_boxes.size(), 1U);
    EXPECT_FALSE(document->IsModified());
    EXPECT_EQ(app->GetSite().directories.docBrowserDir, "/shaders");
    EXPECT_THAT(sink.log, MatchesRegex("opened a copy of .*/there/a.tvn at [01][0-9]:[0-5][0-9] [AP]M\r\n"));

    const std::string own = directory / "own.tvn";
    ASSERT_TRUE(commands->SaveAs(own));
    EXPECT_EQ(document->Path(), own);
    EXPECT_EQ(app->WindowTitle(), "own.tvn [light]");
    EXPECT_EQ(test::ReadFile(path), before);
}

TEST_F(DocumentCommandsTest, AnExampleThatCannotBeOpenedLeavesEverythingAsItWas) {
    ASSERT_TRUE(commands->Open(SavedDocument("there/a.tvn", "light")));
    EXPECT_FALSE(commands->OpenExample(directory / "none.tvn"));
    EXPECT_THAT(sink.LastAlert(), HasSubstr("none.tvn"));
    EXPECT_FALSE(commands->OpenExample(directory.Write("picture.tvn", "\x89PNG\r\n")));
    EXPECT_THAT(sink.LastAlert(), HasSubstr("picture.tvn"));
    EXPECT_EQ(document->m_boxes.size(), 1U);
    EXPECT_EQ(document->Title(), "a.tvn");
}

TEST_F(DocumentCommandsTest, WhatFollowsAnExampleIsNotCalledByItsName) {
    ASSERT_TRUE(commands->OpenExample(SavedDocument("a.tvn", "light")));
    commands->StartUntitled();
    EXPECT_EQ(document->Title(), "Untitled.tvn");
    ASSERT_TRUE(commands->OpenExample(SavedDocument("a.tvn", "light")));
    commands->New();
    EXPECT_EQ(document->Title(), "untitled.tvn");
}

TEST_F(DocumentCommandsTest, AFileThatCannotBeOpenedLeavesEverythingAsItWas) {
    ASSERT_TRUE(commands->Open(SavedDocument("there/a.tvn", "light")));
    sink.log.clear();
    EXPECT_FALSE(commands->Open(directory / "none.tvn"));
    EXPECT_THAT(sink.LastAlert(), HasSubstr("none.tvn"));
    EXPECT_EQ(document->m_boxes.size(), 1U);
    EXPECT_EQ(document->Title(), "a.tvn");
    EXPECT_EQ(app->GetSite().directories.docBrowserDir, directory / "there/");
    EXPECT_EQ(sink.log, "");
}

TEST_F(DocumentCommandsTest, RecoveredWorkIsTheModifiedDocumentOfItsOwnFile) {
    const std::string copy = SavedDocument("state/copy.tvn", "light");
    app->GetSite().directories.docBrowserDir = "/shaders";
    ASSERT_TRUE(commands->OpenRecovered(copy, "/there/a.tvn", false));
    EXPECT_EQ(document->Path(), "/there/a.tvn");
    EXPECT_TRUE(document->IsModified());
    EXPECT_FALSE(document->WasCutShort());
    EXPECT_EQ(app->WindowTitle(), "a.tvn [light]");
    EXPECT_EQ(document->exportOptions.sourcePath, "./a.src");
    EXPECT_EQ(dynamic_cast<const CFormXField&>(*app->RenderOptionsForm().children[1]).text, "9");
    EXPECT_EQ(desk->NextWid(), 1);
    EXPECT_EQ(document->m_boxes.size(), 1U);
    EXPECT_EQ(app->GetSite().directories.docBrowserDir, "/shaders");
    EXPECT_EQ(sink.log, "recovered a.tvn\r\n");
}

TEST_F(DocumentCommandsTest, RecoveredWorkWithoutAFileIsUntitled) {
    ASSERT_TRUE(commands->OpenRecovered(SavedDocument("copy.tvn", "light"), "", false));
    EXPECT_EQ(document->Path(), "");
    EXPECT_EQ(sink.log, "recovered Untitled.tvn\r\n");
}

TEST_F(DocumentCommandsTest, RecoveredWorkOfAFileThatWasCutShortStaysProtected) {
    EXPECT_TRUE(commands->OpenRecovered(SavedDocument("copy.tvn", "light"), "/a.tvn", true));
    EXPECT_TRUE(document->WasCutShort());
}

TEST_F(DocumentCommandsTest, ACopyThatCannotBeReadToItsEndGivesWhatWasRead) {
    const std::string copy = directory.Write("copy.tvn", "opdesk { opbox { filename Grain wid 7 }\noops }");
    EXPECT_FALSE(commands->OpenRecovered(copy, "/a.tvn", false));
    EXPECT_EQ(sink.LastAlert(), copy + " near line 2: unexpected input");
    EXPECT_EQ(document->m_boxes.size(), 1U);
    EXPECT_EQ(document->Path(), "/a.tvn");
    EXPECT_TRUE(document->IsModified());
    EXPECT_TRUE(document->WasCutShort());
    EXPECT_EQ(app->WindowTitle(), "a.tvn [surface]");
}

TEST_F(DocumentCommandsTest, ACopyThatCannotBeOpenedLeavesEverythingAsItWas) {
    ASSERT_TRUE(commands->Open(SavedDocument("a.tvn", "light")));
    desk->m_pendingBoxes.push_back(std::make_unique<COpBox>());
    sink.log.clear();
    EXPECT_FALSE(commands->OpenRecovered(directory / "none.tvn", "/b.tvn", true));
    EXPECT_EQ(document->Title(), "a.tvn");
    EXPECT_FALSE(document->IsModified());
    EXPECT_FALSE(document->WasCutShort());
    EXPECT_EQ(desk->m_pendingBoxes.size(), 1U);
    EXPECT_EQ(sink.log, "");
}

TEST_F(DocumentCommandsTest, OpeningWhatIsNoDocumentLeavesEverythingAsItIs) {
    const std::string path = SavedDocument("here/a.tvn", "light");
    ASSERT_TRUE(commands->Open(path));
    const std::string browsed = app->GetSite().directories.docBrowserDir;
    document->SetModified();
    EXPECT_FALSE(commands->Open(directory.Write("there/picture.tvn", "\x89PNG")));
    EXPECT_EQ(document->Path(), path);
    EXPECT_TRUE(document->IsModified());
    EXPECT_EQ(document->m_boxes.size(), 1U);
    EXPECT_EQ(app->GetSite().directories.docBrowserDir, browsed);
}

TEST_F(DocumentCommandsTest, MergedBoxesWaitWithNewNumbersAndNothingElseComes) {
    commands->New();
    ASSERT_TRUE(commands->Merge(SavedDocument("there/a.tvn", "light")));
    ASSERT_EQ(desk->m_pendingBoxes.size(), 1U);
    EXPECT_EQ(desk->m_pendingBoxes[0]->wid, 1);
    EXPECT_TRUE(document->m_boxes.empty());
    EXPECT_EQ(document->m_renderOptions["SIZE"], "4");
    EXPECT_EQ(app->GetSite().directories.docBrowserDir, "/shaders");
}

TEST_F(DocumentCommandsTest, ASecondMergeDestroysWhatStillWaits) {
    ASSERT_TRUE(commands->Merge(SavedDocument("a.tvn", "light")));
    const size_t live = COpBox::LiveCount();
    ASSERT_TRUE(commands->Merge(SavedDocument("a.tvn", "light")));
    EXPECT_EQ(desk->m_pendingBoxes.size(), 1U);
    EXPECT_EQ(COpBox::LiveCount(), live);
}

TEST_F(DocumentCommandsTest, AMergeOfWhatIsNoDocumentIsAlertedAndWhatWaitsGoesOnWaiting) {
    ASSERT_TRUE(commands->Merge(SavedDocument("a.tvn", "light")));
    const COpBox* waiting = desk->m_pendingBoxes.at(0).get();
    bool isToldAsOpen = false;
    for (const char* text : {"", "GIF89a noise"}) {
        sink.alerts.clear();
        const std::string path = directory.Write("b.tvn", text);
        EXPECT_FALSE(commands->Merge(path, [&] { isToldAsOpen = true; }));
        EXPECT_THAT(sink.LastAlert(), testing::StartsWith(path + " is no Tavrin document: "));
    }
    EXPECT_FALSE(isToldAsOpen);
    EXPECT_EQ(desk->m_pendingBoxes.at(0).get(), waiting);
    sink.alerts.clear();
    EXPECT_FALSE(commands->Merge(directory.Write("c.tvn", "tavrn-version 1")));
    EXPECT_EQ(sink.LastAlert(), "") << "a document without a desk";
}

TEST_F(DocumentCommandsTest, AMergeThatCannotBeOpenedIsAlertedAndLogged) {
    const std::string path = directory / "none.tvn";
    EXPECT_FALSE(commands->Merge(path));
    EXPECT_EQ(sink.LastAlert(), "unable to open " + path + " for reading");
    EXPECT_EQ(sink.log, "unable to open " + path + " for reading\r\n");
}

TEST_F(DocumentCommandsTest, SavingTellsTheLogAndMarksTheDocumentUnmodified) {
    document->SetModified();
    ASSERT_TRUE(commands->Save(directory / "b.tvn"));
    EXPECT_FALSE(document->IsModified());
    EXPECT_THAT(sink.log, MatchesRegex("saved .*/b.tvn at [01][0-9]:[0-5][0-9] [AP]M\r\n"));
    EXPECT_EQ(document->exportOptions.tavrnPath, "./b.tvn");
    EXPECT_EQ(app->GetSite().directories.docBrowserDir, "/shaders");
}

TEST_F(DocumentCommandsTest, SavingUnderAnotherNameMovesTheDialogs) {
    ASSERT_EQ(MakeDirectory(directory / "else"), 0);
    ASSERT_TRUE(commands->SaveAs(directory / "else/b.tvn"));
    EXPECT_EQ(app->GetSite().directories.docBrowserDir, directory / "else/");
    EXPECT_EQ(app->WindowTitle(), "b.tvn [surface]");
}

TEST_F(DocumentCommandsTest, AFailedSaveIsAlertedAndLeavesTheDocumentModified) {
    document->SetModified();
    EXPECT_FALSE(commands->SaveAs(directory / "missing/b.tvn"));
    EXPECT_THAT(sink.LastAlert(), HasSubstr("missing/b.tvn: No such file or directory"));
    EXPECT_TRUE(document->IsModified());
    EXPECT_EQ(document->Path(), "");
    EXPECT_EQ(app->GetSite().directories.docBrowserDir, "/shaders");
    EXPECT_EQ(sink.log, "");
}

TEST_F(DocumentCommandsTest, TogglesFlipTheirFlagAndMarkTheDocument) {
    struct Case {
        void (DocumentCommands::*toggle)();
        int CTvDoc::*flag;
    };
    for (const Case& one : {Case{&DocumentCommands::ToggleIcons, &CTvDoc::showiconimages},
                            Case{&DocumentCommands::ToggleLineType, &CTvDoc::linetype},
                            Case{&DocumentCommands::ToggleLinesOverBoxes, &CTvDoc::drawlinesoverboxes},
                            Case{&DocumentCommands::ToggleVarNames, &CTvDoc::showvarnames},
                            Case{&DocumentCommands::ToggleLock, &CTvDoc::lock}}) {
        document->SetModified(false);
        (*commands.*one.toggle)();
        EXPECT_EQ((*document).*one.flag, 1);
        EXPECT_TRUE(document->IsModified());
        (*commands.*one.toggle)();
        EXPECT_EQ((*document).*one.flag, 0);
    }
}

TEST_F(DocumentCommandsTest, ALockedDeskFreezesItsDisplayOptions) {
    EXPECT_TRUE(commands->CanToggleDisplay());
    commands->ToggleLock();
    EXPECT_FALSE(commands->CanToggleDisplay());
}

TEST_F(DocumentCommandsTest, WithoutAShaderTypeTheTitleIsTheFileName) {
    document->m_renderOptions.erase("TAVRN_SHADER_TYPE");
    EXPECT_EQ(app->WindowTitle(), "Untitled.tvn");
}

TEST_F(DocumentCommandsTest, TheFirstDocumentHasNoPath) {
    ASSERT_TRUE(commands->Open(SavedDocument("a.tvn", "light")));
    commands->StartUntitled();
    EXPECT_EQ(document->Path(), "");
    EXPECT_EQ(app->WindowTitle(), "Untitled.tvn [surface]");
    EXPECT_TRUE(document->m_boxes.empty());
    EXPECT_FALSE(document->IsModified());
}

TEST_F(DocumentCommandsTest, WhatWasReadByAnotherWayIsTakenUpAndLogged) {
    ASSERT_TRUE(document->Open(SavedDocument("there/a.tvn", "light")));
    commands->HasBeenOpened("there/a.tvn");
    EXPECT_EQ(app->GetSite().extShaderIface, ".lif");
    EXPECT_EQ(desk->NextWid(), 1);
    EXPECT_THAT(sink.log, MatchesRegex("opened there/a.tvn at [0-9:]+ [AP]M\r\n"));
}

TEST_F(DocumentCommandsTest, AMergeTellsThatTheFileIsOpenBeforeItIsRead) {
    size_t waiting = 99;
    ASSERT_TRUE(
        commands->Merge(SavedDocument("a.tvn", "light"), [&] { waiting = desk->m_pendingBoxes.size(); }));
    EXPECT_EQ(waiting, 0U);
    EXPECT_EQ(desk->m_pendingBoxes.size(), 1U);
    bool isOpen = false;
    EXPECT_FALSE(commands->Merge(directory / "missing.tvn", [&] { isOpen = true; }));
    EXPECT_FALSE(isOpen);
}

TEST_F(DocumentCommandsTest, TheFormsShaderTypesAreKeptForTheToolbar) {
    EXPECT_EQ(app->ShaderTypes(), (std::vector<std::string>{"surface", "light"}));
}

}  // namespace
}  // namespace tavrin
