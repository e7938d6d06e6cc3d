// SPDX-License-Identifier: Apache-2.0
// The question before a modified document gives place to another, on every way.
#include "ui/support/DocumentsTest.h"

namespace tavrin {
namespace {

using test::DocumentsTest;
using test::kTimeOfDay;
namespace fs = std::filesystem;

using test::AnswerFileDialog;
using test::BoxesShown;
using test::PressWhenBoxComes;
using test::SeenDialog;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;

// The question before a modified document goes

// Each way in which a modified document gives place to another.
class QuestionTest : public DocumentsTest, public testing::WithParamInterface<const char*> {
  protected:
    // Answers the question on the way with a button, "" for Escape, and a box after it, if one comes.
    void Go(const QString& answer, const QString& next = {}) {
        const std::string way = GetParam();
        SeenDialog seen;
        if (way == "Open") AnswerFileDialog(seen, m_b);
        if (answer.isEmpty()) {
            test::WhenDialogComes([](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
        } else {
            PressWhenBoxComes(answer);
        }
        if (!next.isEmpty()) PressWhenBoxComes(next);
        if (way == "New") Do(CommandId::kNew);
        if (way == "Open") Do(CommandId::kOpen);
        if (way == "History") DoubleClickOldestEntry();
        if (way == "Recent") ChooseRecentFile(m_b);
        if (way == "Drop") Drop(m_b);
        if (way == "Action") Frame().ActionDispatch().DoAction("form", "loadtavrn", m_b);
        Settle();
    }
    void ExpectReplaced() {
        const std::string way = GetParam();
        EXPECT_EQ(Boxes(), way == "New" ? 0U : way == "History" ? 1U : 2U);
        EXPECT_FALSE(Document().IsModified());
        // An older version is not what the document's file holds.
        EXPECT_EQ(Document().DiffersFromFile(), way == "History");
        EXPECT_EQ(FullPath(Document().Path()), way == "New"       ? directory / "docs/untitled.tvn"
                                               : way == "History" ? m_a
                                                                  : m_b);
    }
    void ExpectKept() {
        EXPECT_EQ(Boxes(), 4U);
        EXPECT_TRUE(Document().IsModified());
        EXPECT_TRUE(Frame().isWindowModified());
        EXPECT_EQ(Document().Path(), m_a);
        EXPECT_EQ(Bytes(Frame().windowTitle()), "a.tvn[*]");
    }

  private:
    void DoubleClickOldestEntry() {
        Do(CommandId::kRenderHistory);
        Settle();
        auto* list = Frame().Windows().Of(CommandId::kRenderHistory).findChild<QListView*>();
        const int last = list->model()->rowCount() - 1;
        const QPoint at = list->visualRect(list->model()->index(last, 0)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
    }
};

INSTANTIATE_TEST_SUITE_P(Ways, QuestionTest,
                         testing::Values("New", "Open", "History", "Recent", "Drop", "Action"),
                         [](const auto& way) { return std::string(way.param); });

TEST_P(QuestionTest, SaveSavesAndGoesOn) {
    StartModified();
    Go("Save");
    EXPECT_EQ(Bytes(BoxesShown().last()), "Tavrin: Save changes to a.tvn?");
    ExpectReplaced();
    EXPECT_EQ(BoxesIn(m_a), 4U);
    EXPECT_THAT(Log(), ContainsRegex("saved " + m_a + kTimeOfDay));
}

TEST_P(QuestionTest, DiscardGoesOnAndLeavesTheFileAlone) {
    StartModified();
    Go("Discard");
    ExpectReplaced();
    EXPECT_EQ(BoxesIn(m_a), 1U);
}

TEST_P(QuestionTest, CancelStaysWithTheDocument) {
    StartModified();
    Go("Cancel");
    ExpectKept();
    Go("");
    ExpectKept();
    EXPECT_EQ(BoxesIn(m_a), 1U);
}

TEST_P(QuestionTest, ASaveThatFailsStaysWithTheDocument) {
    StartModified();
    fs::remove(m_a);
    fs::create_directory(m_a);
    Go("Save", "OK");
    EXPECT_THAT(Bytes(BoxesShown().last()), HasSubstr("Alert: unable to save " + m_a + ": "));
    ExpectKept();
}

// Each way that may lead to a file that cannot be opened.
class FailedOpenTest : public QuestionTest {
  protected:
    size_t Copies() {
        size_t copies = 0;
        for (const auto& file : fs::directory_iterator(directory / "state/tavrin/recovery"))
            copies += file.path().extension() == ".tvn" ? 1 : 0;
        return copies;
    }
};

INSTANTIATE_TEST_SUITE_P(Ways, FailedOpenTest, testing::Values("History", "Recent", "Drop", "Action"),
                         [](const auto& way) { return std::string(way.param); });

TEST_P(FailedOpenTest, StaysWithTheModifiedDocumentAndItsCopyAside) {
    StartModified();
    Frame().SaveAside();
    ASSERT_EQ(Copies(), 1U);
    fs::remove(m_b);
    fs::create_directory(m_b);
    fs::remove(WorkDir() + "/1/a.tvn");
    Go("Discard", "OK");
    EXPECT_THAT(Bytes(BoxesShown().last()), HasSubstr("Alert: unable to open "));
    ExpectKept();
    EXPECT_TRUE(IsEnabled(CommandId::kSave));
    EXPECT_EQ(Copies(), 1U);
    PressWhenBoxComes("Cancel");
    Do(CommandId::kNew);
    EXPECT_EQ(Bytes(BoxesShown().last()), "Tavrin: Save changes to a.tvn?");
}

TEST_F(DocumentsTest, AnUnmodifiedDocumentGoesWithoutAQuestion) {
    StartModified();
    Do(CommandId::kSave);
    Open(m_b);
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(DocumentsTest, ADocumentWithoutAFileMayBeKeptByCancellingWhereToSaveIt) {
    StartWithDocs();
    AddBoxes(3);
    PressWhenBoxComes("Save");
    test::CancelWhenDialogComes();
    Do(CommandId::kNew);
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_TRUE(Document().IsModified());
}

}  // namespace
}  // namespace tavrin
