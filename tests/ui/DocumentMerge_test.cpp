// SPDX-License-Identifier: Apache-2.0
// Networks merged into the one on the desk.
#include "ui/support/DocumentsTest.h"

namespace tavrin {
namespace {

using test::DocumentsTest;
using test::kFrozenText;
using test::kMetalOption;
using test::kShaderTypeForm;
using test::kTimeOfDay;
namespace fs = std::filesystem;

using test::AnswerFileDialog;
using test::BoxesShown;
using test::PressWhenBoxComes;
using test::SeenDialog;
using testing::ElementsAre;

// Merge

class MergeTest : public DocumentsTest {
  protected:
    // `thenPress` is the button of the box that comes after the file dialog; empty if none does.
    SeenDialog Merge(const std::string& path, const QString& thenPress = {}) {
        SeenDialog seen;
        AnswerFileDialog(seen, path);
        if (!thenPress.isEmpty()) PressWhenBoxComes(thenPress);
        Do(CommandId::kMerge);
        Settle();
        return seen;
    }
    std::vector<int> Wids() {
        std::vector<int> wids;
        for (const auto& box : Document().m_boxes) wids.push_back(box->wid);
        std::sort(wids.begin(), wids.end());
        return wids;
    }
    void ClickDesk() {
        QWidget& desk = Frame().Desk().Desk();
        QMouseEvent move(QEvent::MouseMove, desk.rect().center(), desk.mapToGlobal(desk.rect().center()),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&desk, &move);
        QTest::mouseClick(&desk, Qt::LeftButton, {}, desk.rect().center());
        Settle();
    }
};

TEST_F(MergeTest, PutsTheBoxesUnderTheMouseWithNewNumbersUntilTheNextPress) {
    StartWithDocs();
    Open(WriteDocument("docs/a", 1));
    fs::create_directories(directory / "more");
    const std::string more = WriteDocument("more/b", 2);
    const SeenDialog seen = Merge(more, "OK");
    EXPECT_EQ(seen.title, "Merge");
    EXPECT_EQ(seen.directory, directory / "docs/");
    EXPECT_EQ(seen.filters, QStringList("Tavrin Documents (*.tvn)"));
    EXPECT_EQ(Boxes(), 1U);
    ClickDesk();
    EXPECT_THAT(Wids(), ElementsAre(1, 2, 3));
    EXPECT_TRUE(Document().IsModified());
    EXPECT_EQ(Document().Path(), directory / "docs/a.tvn");
    EXPECT_EQ(DocDir(), directory / "docs/");
    EXPECT_THAT(RecentFilesShown(), ElementsAre(directory / "docs/a.tvn"));
}

TEST_F(MergeTest, FreezesTheSlidersAndSaysSoOnce) {
    StartWithDocs();
    const std::string path = WriteDocument("docs/b", 2);
    Merge(path, "OK");
    EXPECT_THAT(BoxesShown(), ElementsAre(kFrozenText));
    EXPECT_TRUE(IsChecked(CommandId::kFreezeSliders));
    Merge(path);
    EXPECT_EQ(BoxesShown().size(), 1);
    Do(CommandId::kFreezeSliders);  // thawed
    Merge(path, "OK");
    EXPECT_EQ(BoxesShown().size(), 2);
    EXPECT_TRUE(IsChecked(CommandId::kFreezeSliders));
}

TEST_F(MergeTest, ASecondMergeDestroysWhatStillWaitsOfTheFirst) {
    StartWithDocs();
    Do(CommandId::kFreezeSliders);
    Merge(WriteDocument("docs/b", 2));
    Merge(WriteDocument("docs/c", 3));
    ClickDesk();
    EXPECT_EQ(Boxes(), 3U);
}

TEST_F(MergeTest, TakesBoxesAloneAndNoOptionsLibraryOrLock) {
    fs::copy(directory / "tavrin/tiny", directory / "tavrin/other", fs::copy_options::recursive);
    AddToSite(kShaderTypeForm);
    StartWithDocs();
    Do(CommandId::kFreezeSliders);
    Merge(directory.Write("docs/o.tvn",
                          "tavrn-renderer other\nopdesk { lock 1 opbox { filename Constant wid 1 } }\n" +
                              std::string(kMetalOption)));
    ClickDesk();
    EXPECT_EQ(Boxes(), 1U);
    EXPECT_EQ(Document().m_renderOptions["TAVRN_SHADER_TYPE"], "surface");
    EXPECT_EQ(Document().lock, 0);
    EXPECT_EQ(App().GetSite().directories.libName, "tiny");
}

TEST_F(MergeTest, AFileThatCannotBeReadIsToldInABoxAndInTheLog) {
    StartWithDocs();
    const std::string path = MakeUnreadableFile("docs/deaf.tvn");
    Merge(path, "OK");
    ExpectBox("Alert: unable to open " + path + " for reading");
    EXPECT_THAT(Log(), testing::StartsWith("unable to open " + path + " for reading\n"));
    EXPECT_FALSE(IsChecked(CommandId::kFreezeSliders));
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(MergeTest, AFileWithAnErrorBringsNothing) {
    StartWithDocs();
    Do(CommandId::kFreezeSliders);
    const std::string path = WriteBrokenDocument("docs/broken.tvn");
    Merge(path, "OK");
    ExpectBox("Alert: " + path + " near line 5: unexpected input");
    ClickDesk();
    EXPECT_EQ(Boxes(), 0U);
}

TEST_F(MergeTest, ACancelledMergeFreezesNothing) {
    StartWithDocs();
    Merge("");
    EXPECT_FALSE(IsChecked(CommandId::kFreezeSliders));
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(MergeTest, OnALockedDeskTheBoxesWaitUntilTheLockIsLifted) {
    StartWithDocs();
    Do(CommandId::kFreezeSliders);
    Do(CommandId::kLockDesk);
    Merge(WriteDocument("docs/b", 2));
    ClickDesk();
    EXPECT_EQ(Boxes(), 0U);
    Do(CommandId::kLockDesk);
    ClickDesk();
    EXPECT_EQ(Boxes(), 2U);
}

}  // namespace
}  // namespace tavrin
