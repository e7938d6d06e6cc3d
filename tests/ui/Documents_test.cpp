// SPDX-License-Identifier: Apache-2.0
// Documents as the frame opens and saves them, drops and recent files among the ways.
#include "ui/support/DocumentsTest.h"

namespace tavrin {
namespace {

using test::DocumentsTest;
using test::kMetalOption;
using test::kShaderTypeForm;
using test::kTimeOfDay;
namespace fs = std::filesystem;

using test::AnswerFileDialog;
using test::BoxesShown;
using test::EnterName;
using test::PressWhenBoxComes;
using test::ReadFile;
using test::SeenDialog;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// New, Save, Save As

TEST_F(DocumentsTest, NewIsSavedAsUntitledAmongTheDocumentsWithoutAsking) {
    StartWithDocs();
    Do(CommandId::kNew);
    Settle();
    EXPECT_EQ(FullPath(Document().Path()), directory / "docs/untitled.tvn");
    EXPECT_EQ(Bytes(Frame().windowTitle()), "untitled.tvn[*]");
    EXPECT_TRUE(Document().m_boxes.empty());
    AddBoxes(2);
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(directory / "docs/untitled.tvn"), 2U);
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(DocumentsTest, ANewDocumentAsksBeforeItTakesThePlaceOfAnEarlierUntitledOne) {
    StartWithDocs();
    directory.Write("docs/untitled.tvn", "earlier work");
    Do(CommandId::kNew);
    AddBoxes(1);
    PressWhenBoxComes("No");
    Do(CommandId::kSave);
    EXPECT_EQ(test::ReadFile(directory / "docs/untitled.tvn"), "earlier work");
    EXPECT_TRUE(Document().IsModified());
    PressWhenBoxComes("Yes");
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(directory / "docs/untitled.tvn"), 1U);
    EXPECT_EQ(test::BoxesShown().last(),
              "Warning: " + Shown(Document().Path()) + " is there already.  Replace it?");
    AddBoxes(1);
    Do(CommandId::kSave);  // its own file now
    EXPECT_EQ(BoxesIn(directory / "docs/untitled.tvn"), 2U);
}

TEST_F(DocumentsTest, AFileThatAnotherProgramHasSavedMeanwhileIsAskedAbout) {
    StartWithDocs();
    const std::string path = WriteDocument("docs/a", 1);
    Open(path);
    AddBoxes(1);
    WriteDocument("docs/a", 3);
    PressWhenBoxComes("No");
    Do(CommandId::kSave);
    ExpectBox("Warning: " + path + " has changed since it was last read or saved.  Replace it?");
    EXPECT_EQ(BoxesIn(path), 3U);
    EXPECT_TRUE(Document().IsModified());
    PressWhenBoxComes("Yes");
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(path), 2U);
    AddBoxes(1);
    Do(CommandId::kSave);  // as it knows it
    EXPECT_EQ(BoxesShown().size(), 2);
}

TEST_F(DocumentsTest, AFileThatAnotherProgramHasRemovedMeanwhileIsAskedAbout) {
    StartWithDocs();
    const std::string path = WriteDocument("docs/a", 1);
    Open(path);
    AddBoxes(1);
    fs::remove(path);
    PressWhenBoxComes("No");
    Do(CommandId::kSave);
    ExpectBox("Warning: " + path +
              " is gone, which was there when it was last read or saved.  Save it again?");
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(Document().IsModified());
    PressWhenBoxComes("Yes");
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(path), 2U);
}

TEST_F(DocumentsTest, AFileWithTwoNamesKeepsThem) {
    StartWithDocs();
    const std::string path = WriteDocument("docs/a", 1);
    fs::create_hard_link(path, directory / "docs/other.tvn");
    Open(path);
    AddBoxes(1);
    Do(CommandId::kSave);
    EXPECT_FALSE(Document().IsModified());
    EXPECT_TRUE(fs::equivalent(path, directory / "docs/other.tvn"));
    EXPECT_EQ(BoxesIn(directory / "docs/other.tvn"), 2U);
    EXPECT_TRUE(fs::is_empty(directory / "state/tavrin/recovery"));
}

TEST_F(DocumentsTest, TheDocumentOfTheStartAsksWhereItIsToBeSaved) {
    StartWithDocs();
    AddBoxes(1);
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "docs/first.tvn");
    Do(CommandId::kSave);
    EXPECT_EQ(seen.title, "Save As");
    EXPECT_EQ(seen.directory, directory / "docs/");
    EXPECT_EQ(seen.name, "Untitled.tvn");
    EXPECT_EQ(BoxesIn(directory / "docs/first.tvn"), 1U);
    EXPECT_EQ(Bytes(Frame().windowTitle()), "first.tvn[*]");
}

TEST_F(DocumentsTest, SaveAsTakesTheDocumentsNameAndDirectoryWithIt) {
    StartWithDocs();
    Open(WriteDocument("docs/a", 1));
    AddBoxes(1);
    fs::create_directories(directory / "other");
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "other/b");  // the extension comes by itself
    Do(CommandId::kSaveAs);
    EXPECT_EQ(seen.directory, directory / "docs/");
    EXPECT_EQ(seen.name, "a.tvn");
    EXPECT_EQ(Document().Path(), directory / "other/b.tvn");
    EXPECT_EQ(DocDir(), directory / "other/");
    EXPECT_EQ(Bytes(Frame().windowTitle()), "b.tvn[*]");
    EXPECT_FALSE(Frame().isWindowModified());
    EXPECT_EQ(BoxesIn(directory / "other/b.tvn"), 2U);
    EXPECT_EQ(BoxesIn(directory / "docs/a.tvn"), 1U);
    EXPECT_THAT(Log(), ContainsRegex("saved " + directory.Path() + "/other/b.tvn" + kTimeOfDay));
    AddBoxes(1);
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(directory / "other/b.tvn"), 3U);
}

TEST_F(DocumentsTest, SaveAsOverAFileAsksAndMayBeCancelled) {
    StartWithDocs();
    const std::string before = ReadFile(WriteDocument("docs/b", 2));
    AddBoxes(1);
    test::WhenDialogComes([&](QDialog& dialog) {
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        EnterName(*name, "b.tvn");
        PressWhenBoxComes("No");
        QTest::keyClick(name, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        dialog.reject();
    });
    Do(CommandId::kSaveAs);
    EXPECT_EQ(ReadFile(directory / "docs/b.tvn"), before);
    EXPECT_EQ(Document().Path(), "");
    EXPECT_TRUE(Document().IsModified());
    EXPECT_EQ(DocDir(), directory / "docs/");
}

TEST_F(DocumentsTest, SaveIsOfferedForAModifiedDocumentAlone) {
    StartWithDocs();
    Open(WriteDocument("docs/a", 1));
    EXPECT_FALSE(Action(CommandId::kSave).isEnabled());
    EXPECT_FALSE(Frame().isWindowModified());
    Change();
    EXPECT_TRUE(Action(CommandId::kSave).isEnabled());
    EXPECT_TRUE(Frame().isWindowModified());
    Do(CommandId::kSave);
    Settle();
    EXPECT_FALSE(Action(CommandId::kSave).isEnabled());
    EXPECT_FALSE(Frame().isWindowModified());
}

TEST_F(DocumentsTest, TheLogTellsWhatWasOpenedAndSavedAndWhen) {
    StartWithDocs();
    const std::string path = WriteDocument("docs/a", 1);
    Open(path);
    EXPECT_THAT(Log(), ContainsRegex("opened " + path + kTimeOfDay));
    EXPECT_THAT(Log(), Not(HasSubstr("saved")));
    Change();
    Do(CommandId::kSave);
    EXPECT_THAT(Log(), ContainsRegex("saved " + path + kTimeOfDay));
}

TEST_F(DocumentsTest, TheTitleTellsTheShadersType) {
    AddToSite(kShaderTypeForm);
    StartWithDocs();
    Open(directory.Write("docs/typed.tvn", kMetalOption));
    EXPECT_EQ(Bytes(Frame().windowTitle()), "typed.tvn [metal][*]");
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "docs/again.tvn");
    Do(CommandId::kSaveAs);
    EXPECT_EQ(Bytes(Frame().windowTitle()), "again.tvn [metal][*]");
    Do(CommandId::kNew);
    EXPECT_EQ(Bytes(Frame().windowTitle()), "untitled.tvn [surface][*]");
    auto* chooser = Frame().OperatorBar().findChild<QComboBox*>();
    EXPECT_EQ(Bytes(chooser->currentText()), "surface");
    chooser->setFocus();
    QTest::keyClick(chooser, Qt::Key_Home);
    Settle();
    EXPECT_EQ(Bytes(Frame().windowTitle()), "untitled.tvn [metal][*]");
}

TEST_F(DocumentsTest, ADocumentWithoutOptionsGetsTheDefaultsAndNotThoseBefore) {
    AddToSite(kShaderTypeForm);
    StartWithDocs();
    Open(directory.Write("docs/typed.tvn", kMetalOption));
    Open(directory.Write("docs/plain.tvn", "opdesk { }\n"));
    EXPECT_EQ(Bytes(Frame().windowTitle()), "plain.tvn [surface][*]");
}

// Open

TEST_F(DocumentsTest, TheOpenDialogKeepsItsDirectoryAndItsFilter) {
    StartWithDocs();
    fs::create_directories(directory / "more");
    const std::string more = WriteDocument("more/c", 3);
    SeenDialog first;
    AnswerFileDialog(first, more, "All Files (*)");
    Do(CommandId::kOpen);
    Settle();
    EXPECT_EQ(first.title, "Open");
    EXPECT_EQ(first.directory, directory / "docs/");
    EXPECT_EQ(first.filters, QStringList({"Tavrin Documents (*.tvn)", "All Files (*)"}));
    EXPECT_EQ(first.filter, "Tavrin Documents (*.tvn)");
    EXPECT_EQ(Document().Path(), more);
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_EQ(DocDir(), directory / "more/");

    SeenDialog second;
    AnswerFileDialog(second, "");
    Do(CommandId::kOpen);
    EXPECT_EQ(second.directory, directory / "more/");
    EXPECT_EQ(second.filter, "All Files (*)");
    EXPECT_EQ(Document().Path(), more);
}

TEST_F(DocumentsTest, ACancelledOpenDialogForgetsItsDirectoryAndFilterAndAsksNothing) {
    StartModified();
    SeenDialog seen;
    test::WhenDialogComes([&](QDialog& dialog) {
        qobject_cast<QFileDialog*>(&dialog)->setDirectory(Shown(directory.Path()));
        dialog.findChild<QComboBox*>("fileTypeCombo")->setCurrentIndex(1);
        dialog.reject();
    });
    Do(CommandId::kOpen);
    EXPECT_EQ(Boxes(), 4U);
    EXPECT_EQ(DocDir(), directory / "docs/");
    AnswerFileDialog(seen, "");
    Do(CommandId::kOpen);
    EXPECT_EQ(seen.directory, directory / "docs/");
    EXPECT_EQ(seen.filter, "Tavrin Documents (*.tvn)");
}

TEST_F(DocumentsTest, WhatCannotBeOpenedLeavesTheDocumentAsItWas) {
    StartModified();
    fs::create_directories(directory / "docs/folder.tvn");
    const std::vector<std::pair<std::string, std::string>> cases = {
        {directory / "docs/folder.tvn", "Is a directory"},
        {directory / "docs/gone.tvn", "No such file or directory"},
        {MakeUnreadableFile("docs/deaf.tvn"), "No such device or address"},
    };
    for (const auto& [path, reason] : cases) {
        PressWhenBoxComes("Discard");
        PressWhenBoxComes("OK");
        EXPECT_FALSE(Frame().OpenDocumentFile(path));
        ExpectBox("Alert: unable to open " + path + " for reading: " + reason);
        EXPECT_EQ(Boxes(), 4U);
        EXPECT_EQ(Document().Path(), m_a);
        EXPECT_TRUE(Document().IsModified());
        EXPECT_THAT(Log(), Not(HasSubstr("opened " + path)));
        EXPECT_THAT(Log(), HasSubstr("ALERT: unable to open " + path));
    }
    EXPECT_THAT(RecentFilesShown(), ElementsAre(m_a, m_b));
}

TEST_F(DocumentsTest, ADocumentOfAnotherLibraryBringsItsMenus) {
    fs::copy(directory / "tavrin/tiny", directory / "tavrin/other", fs::copy_options::recursive);
    fs::remove_all(directory / "tavrin/other/menu/0300.Patterns");
    fs::rename(directory / "tavrin/other/menu/0200.Paint", directory / "tavrin/other/menu/0200.Lacquer");
    StartWithDocs();
    const auto titles = [this] {
        QStringList texts;
        for (const QAction* item : Frame().menuBar()->actions()) texts << item->text().remove('&');
        return Bytes(texts.join(' '));
    };
    const std::string own = WriteDocument("docs/a", 1);
    Open(
        directory.Write("docs/o.tvn", "tavrn-renderer other\nopdesk { opbox { filename Lacquer wid 1 } }\n"));
    EXPECT_EQ(titles(), "File Edit Find View Options Render Help Constant Lacquer Shapes");
    EXPECT_EQ(Boxes(), 1U);
    Open(own);
    EXPECT_EQ(titles(), "File Edit Find View Options Render Help Constant Paint Patterns Shapes");
}

TEST_F(DocumentsTest, TheSiteMayLockTheDeskFromTheStart) {
    AddToSite("desk.lock 1\n");
    StartWithDocs();
    EXPECT_EQ(Document().lock, 1);
    EXPECT_TRUE(IsChecked(CommandId::kLockDesk));
    EXPECT_FALSE(Frame().Desk().isEnabled());
    EXPECT_FALSE(Frame().isWindowModified());
    Do(CommandId::kLockDesk);
    EXPECT_TRUE(Frame().Desk().isEnabled());
    PressWhenBoxComes("Discard");
    Do(CommandId::kNew);
    EXPECT_FALSE(Frame().Desk().isEnabled());
}

// Drops and recent files

TEST_F(DocumentsTest, ADroppedDocumentIsOpened) {
    StartWithDocs();
    const std::string path = WriteDocument("docs/a", 2);
    fs::rename(path, directory / "docs/LOUD.TVN");
    Drop(directory / "docs/LOUD.TVN");
    EXPECT_EQ(Document().Path(), directory / "docs/LOUD.TVN");
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_THAT(RecentFilesShown(), ElementsAre(directory / "docs/LOUD.TVN"));
}

TEST_F(DocumentsTest, OtherThingsThanDocumentsAreNotTakenWhenDropped) {
    StartWithDocs();
    directory.Write("docs/a.txt", "");
    EXPECT_FALSE(TakesDrag({QUrl::fromLocalFile(Shown(directory / "docs/a.txt"))}));
    EXPECT_FALSE(TakesDrag({QUrl("http://example.org/a.tvn")}));
    EXPECT_FALSE(TakesDrag({}));
    EXPECT_TRUE(TakesDrag({QUrl::fromLocalFile(Shown(directory / "docs/a.txt")),
                           QUrl::fromLocalFile(Shown(directory / "docs/a.tvn"))}));
}

TEST_F(DocumentsTest, TheFileMenuShowsTheFourFilesThatWereUsedLast) {
    StartWithDocs();
    std::vector<std::string> paths;
    for (const char* name : {"docs/a", "docs/b", "docs/c", "docs/d", "docs/e"}) {
        paths.push_back(WriteDocument(name, 1));
        Open(paths.back());
    }
    EXPECT_THAT(RecentFilesShown(), ElementsAre(paths[4], paths[3], paths[2], paths[1]));
    ChooseRecentFile(paths[2]);
    EXPECT_EQ(Document().Path(), paths[2]);
    EXPECT_THAT(RecentFilesShown(), ElementsAre(paths[2], paths[4], paths[3], paths[1]));
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "docs/new & odd.tvn");
    Do(CommandId::kSaveAs);
    Start();
    EXPECT_EQ(RecentFilesShown().size(), 4U);
    ChooseRecentFile(directory / "docs/new && odd.tvn");
    EXPECT_EQ(Document().Path(), directory / "docs/new & odd.tvn");
}

TEST_F(DocumentsTest, ARecentFileThatIsGoneLeavesTheMenu) {
    StartWithDocs();
    const std::string gone = WriteDocument("docs/a", 1);
    const std::string there = WriteDocument("docs/b", 2);
    Open(gone);
    Open(there);
    fs::remove(gone);
    PressWhenBoxComes("OK");
    ChooseRecentFile(gone);
    ExpectBox("Alert: unable to open " + gone + " for reading: No such file or directory");
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_THAT(RecentFilesShown(), ElementsAre(there));
}

}  // namespace
}  // namespace tavrin
