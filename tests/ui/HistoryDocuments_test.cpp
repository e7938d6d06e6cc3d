// SPDX-License-Identifier: Apache-2.0
// Versions of documents that come back from the history of renders, and where they are saved.
#include "ui/support/DocumentsTest.h"

namespace tavrin {
namespace {

using test::DocumentsTest;
using test::kTimeOfDay;
namespace fs = std::filesystem;

using test::AnswerFileDialog;
using test::BoxesShown;
using test::PressWhenBoxComes;
using test::ReadFile;
using test::SeenDialog;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class HistoryDocumentTest : public DocumentsTest {
  protected:
    // "a/one.tvn" has been rendered with its one box, "b/other.tvn" with two is open; "b/one.tvn" with three
    // is none of these.
    void StartWithEntry() {
        for (const char* name : {"a", "b"}) fs::create_directories(directory / name);
        Start();
        m_one = WriteDocument("a/one", 1);
        m_other = WriteDocument("b/other", 2);
        m_sameName = WriteDocument("b/one", 3);
        m_sameNameText = ReadFile(m_sameName);
        Open(m_one);
        Render();
        Open(m_other);
    }
    void Render() {
        Do(CommandId::kRenderIt);
        ASSERT_TRUE(test::WaitUntil([this] { return !ChildRuns(); }));
    }
    // The entries are told by their rows, the newest has 0.
    void OpenEntry(int row = 0) {
        if (!Frame().Windows().Of(CommandId::kRenderHistory).isVisible()) Do(CommandId::kRenderHistory);
        Settle();
        auto* list = Frame().Windows().Of(CommandId::kRenderHistory).findChild<QListView*>();
        const QPoint at = list->visualRect(list->model()->index(row, 0)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        Settle();
    }
    void Save() {
        ASSERT_TRUE(IsEnabled(CommandId::kSave));
        Do(CommandId::kSave);
        Settle();
    }
    void ExpectToAskBeforeSaving(const std::string& path, const std::string& what) {
        const std::string before = ReadFile(path);
        PressWhenBoxComes("No");
        Save();
        ExpectBox("Warning: " + path + what + "  Replace it?");
        EXPECT_EQ(ReadFile(path), before);
        EXPECT_TRUE(IsEnabled(CommandId::kSave));
        PressWhenBoxComes("Yes");
        Save();
        EXPECT_EQ(BoxesIn(path), Boxes());
        const auto boxes = BoxesShown().size();
        Change();
        Save();  // its own file now
        EXPECT_EQ(BoxesShown().size(), boxes);
    }

    static constexpr const char* kHasChanged = " has changed since it was last read or saved.";
    std::string m_one;
    std::string m_other;
    std::string m_sameName;
    std::string m_sameNameText;
};

TEST_F(HistoryDocumentTest, AnEntryIsSavedWhereItsDocumentCameFrom) {
    StartWithEntry();
    OpenEntry();
    EXPECT_EQ(Boxes(), 1U);
    EXPECT_EQ(Document().Path(), m_one);
    EXPECT_EQ(Bytes(Frame().windowTitle()), "one.tvn[*]");
    EXPECT_THAT(Log(), ContainsRegex("opened history entry 01 one of " + m_one + kTimeOfDay));
    EXPECT_THAT(Log(), Not(HasSubstr(m_sameName)));
    AddBoxes(3);
    Save();
    EXPECT_EQ(BoxesIn(m_one), 4U);
    EXPECT_EQ(ReadFile(m_sameName), m_sameNameText);
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(HistoryDocumentTest, AnEntryIsNotModifiedAndCanBeSavedAllTheSame) {
    StartWithEntry();
    OpenEntry();
    OpenEntry();
    EXPECT_FALSE(Document().IsModified());
    EXPECT_FALSE(Frame().isWindowModified());
    Save();
    EXPECT_EQ(BoxesIn(m_one), 1U);
    EXPECT_FALSE(IsEnabled(CommandId::kSave));
    OpenEntry();
    EXPECT_TRUE(IsEnabled(CommandId::kSave));
    Open(m_other);
    EXPECT_FALSE(IsEnabled(CommandId::kSave));
    EXPECT_THAT(BoxesShown(), IsEmpty());
    OpenEntry();
    Change();
    PressWhenBoxComes("Cancel");
    OpenEntry();
    EXPECT_TRUE(Document().IsModified());
}

TEST_F(HistoryDocumentTest, AFileThatTheDocumentHasSavedSinceIsItsOwn) {
    StartWithEntry();
    Open(m_one);
    AddBoxes(4);
    Save();
    OpenEntry();
    Save();
    EXPECT_EQ(BoxesIn(m_one), 1U);
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(HistoryDocumentTest, AFileThatSomebodyElseHasChangedIsAskedAbout) {
    StartWithEntry();
    directory.Write("a/one.tvn", ReadFile(m_other));
    OpenEntry();
    ExpectToAskBeforeSaving(m_one, kHasChanged);
}

TEST_F(HistoryDocumentTest, ADocumentThatHasTakenItsPlaceIsAskedAbout) {
    StartWithEntry();
    test::WhenDialogComes([this](QDialog& dialog) {
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        test::EnterName(*name, m_one);
        PressWhenBoxComes("Yes");
        QTest::keyClick(name, Qt::Key_Return);
    });
    Do(CommandId::kSaveAs);
    ASSERT_EQ(Document().Path(), m_one);
    ASSERT_EQ(BoxesIn(m_one), 2U);
    OpenEntry();
    ExpectToAskBeforeSaving(m_one, kHasChanged);
}

TEST_F(HistoryDocumentTest, AFileThatIsGoneIsAskedAboutBeforeItIsMadeAgain) {
    StartWithEntry();
    fs::remove(m_one);
    OpenEntry();
    PressWhenBoxComes("No");
    Save();
    ExpectBox("Warning: " + m_one +
              " is gone, which was there when it was last read or saved.  Save it again?");
    EXPECT_FALSE(fs::exists(m_one));
    PressWhenBoxComes("Yes");
    Save();
    EXPECT_EQ(BoxesIn(m_one), 1U);
}

TEST_F(HistoryDocumentTest, AnEntryOfAnEntryGoesBackToTheSameFile) {
    StartWithEntry();
    OpenEntry();
    AddBoxes(1);
    Render();
    PressWhenBoxComes("Discard");
    Open(m_sameName);
    OpenEntry();
    EXPECT_EQ(Boxes(), 2U);
    Save();
    EXPECT_EQ(BoxesIn(m_one), 2U);
    EXPECT_EQ(ReadFile(m_sameName), m_sameNameText);
}

TEST_F(HistoryDocumentTest, AnEntryFromBeforeASaveAsGoesBackToTheFileBefore) {
    StartWithEntry();
    OpenEntry();
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "b/copy.tvn");
    Do(CommandId::kSaveAs);
    EXPECT_EQ(seen.directory, directory / "a/");
    OpenEntry();
    EXPECT_EQ(Document().Path(), m_one);
    Save();
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(HistoryDocumentTest, AnEntryOfAnUntitledDocumentAsksWhereItIsToBeSaved) {
    StartWithDocs();
    const std::string sameName = WriteDocument("docs/Untitled", 2);
    const std::string text = ReadFile(sameName);
    AddBoxes(1);
    Render();
    PressWhenBoxComes("Discard");
    Open(sameName);
    OpenEntry();
    EXPECT_EQ(Document().Path(), "");
    EXPECT_THAT(Log(), ContainsRegex(std::string("opened history entry 01 Untitled") + kTimeOfDay));
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "docs/first.tvn");
    Save();
    EXPECT_EQ(seen.title, "Save As");
    EXPECT_EQ(BoxesIn(directory / "docs/first.tvn"), 1U);
    EXPECT_EQ(ReadFile(sameName), text);
}

TEST_F(HistoryDocumentTest, OfTwoNewDocumentsOneDoesNotReplaceTheOther) {
    StartWithDocs();
    Do(CommandId::kNew);
    AddBoxes(1);
    Render();
    PressWhenBoxComes("Discard");
    Do(CommandId::kNew);
    AddBoxes(2);
    Save();
    ASSERT_EQ(BoxesIn(directory / "docs/untitled.tvn"), 2U);
    OpenEntry();
    ExpectToAskBeforeSaving(Document().Path(), " is there already.");
}

TEST_F(HistoryDocumentTest, ItsCopyInTheHistoryIsTheEntryByWhateverWayItIsOpened) {
    StartWithEntry();
    const std::string copy = WorkDir() + "/1/one.tvn";
    const std::string text = ReadFile(copy);
    Frame().ActionDispatch().DoAction("form", "loadtavrn", copy);
    Settle();
    EXPECT_EQ(Document().Path(), m_one);
    Open(m_other);
    Drop(WorkDir() + "/../" + fs::path(WorkDir()).filename().string() + "/1/one.tvn");
    EXPECT_EQ(Document().Path(), m_one);
    EXPECT_THAT(RecentFilesShown(), ElementsAre(m_other, m_one));
    AddBoxes(1);
    Save();
    EXPECT_EQ(ReadFile(copy), text);
    EXPECT_EQ(BoxesIn(m_one), 2U);
}

// Files that others change, and documents that were cut short

TEST_F(HistoryDocumentTest, ADocumentWhoseFileSomebodyElseHasChangedAsks) {
    StartWithEntry();
    Change();
    directory.Write("b/other.tvn", ReadFile(m_sameName));
    ExpectToAskBeforeSaving(m_other, kHasChanged);
}

TEST_F(HistoryDocumentTest, WhatExportAllHasWrittenIsTheDocumentsOwn) {
    StartWithEntry();
    Document().SetForeign(false);
    Document().exportOptions.saveTavrn = 1;
    Document().exportOptions.tavrnPath = m_other;
    AddBoxes(1);
    Do(CommandId::kExportAll);
    ASSERT_TRUE(test::WaitUntil([this] { return !ChildRuns(); }));
    EXPECT_EQ(BoxesIn(m_other), 3U);
    AddBoxes(1);
    Save();
    EXPECT_EQ(BoxesIn(m_other), 4U);
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

class CutDocumentTest : public HistoryDocumentTest {
  protected:
    void OpenCut() {
        StartWithDocs();
        m_cut = WriteBrokenDocument("docs/cut.tvn");
        m_text = ReadFile(m_cut);
        PressWhenBoxComes("OK");
        Open(m_cut);
        ExpectBox("Alert: " + m_cut + " near line 5: unexpected input");
        m_question = "Warning: " + m_cut +
                     " was not read to its end because of an error in it.  Saving replaces the file and "
                     "loses what was not read.  Save anyway?";
    }
    void ExportAll() {
        Document().SetForeign(false);
        Document().exportOptions.saveTavrn = 1;
        Document().exportOptions.tavrnPath = m_cut;
        Do(CommandId::kExportAll);
        ASSERT_TRUE(test::WaitUntil([this] { return !ChildRuns(); }));
        Settle();
    }
    std::string m_cut;
    std::string m_text;
    std::string m_question;
};

TEST_F(CutDocumentTest, ItsEntryAsksBeforeItsFileIsSavedOver) {
    OpenCut();
    Render();
    Open(WriteDocument("docs/b", 1));
    OpenEntry();
    EXPECT_EQ(Document().Path(), m_cut);
    PressWhenBoxComes("No");
    Save();
    ExpectBox(m_question);
    EXPECT_EQ(ReadFile(m_cut), m_text);
    PressWhenBoxComes("Yes");
    Save();
    EXPECT_EQ(BoxesIn(m_cut), 2U);
    OpenEntry();
    const auto boxes = BoxesShown().size();
    Save();  // nothing is left to be lost
    EXPECT_EQ(BoxesShown().size(), boxes);
}

TEST_F(CutDocumentTest, ItIsExportedOverItsFileOnlyIfThatIsWanted) {
    OpenCut();
    PressWhenBoxComes("No");
    ExportAll();
    ExpectBox(m_question);
    EXPECT_EQ(ReadFile(m_cut), m_text);
    EXPECT_THAT(Log(), Not(HasSubstr("exportall")));
    PressWhenBoxComes("Yes");
    ExportAll();
    EXPECT_THAT(Log(), HasSubstr("exportall cut"));
    EXPECT_EQ(BoxesIn(m_cut), 2U);
    const auto boxes = BoxesShown().size();
    ExportAll();
    Change();
    Save();
    EXPECT_EQ(BoxesShown().size(), boxes);
}

TEST_F(CutDocumentTest, AScriptAsksBeforeItExportsOverIt) {
    OpenCut();
    Document().SetForeign(false);
    Document().exportOptions.saveTavrn = 1;
    Document().exportOptions.tavrnPath = m_cut;
    PressWhenBoxComes("No");
    Frame().ActionDispatch().DoAction("form", "export", "all");
    Settle();
    ExpectBox(m_question);
    EXPECT_EQ(ReadFile(m_cut), m_text);
}

}  // namespace
}  // namespace tavrin
