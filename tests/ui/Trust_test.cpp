// SPDX-License-Identifier: Apache-2.0
// What the window asks before it does what documents want that somebody else has written.
#include <QMessageBox>
#include <QTest>
#include <filesystem>

#include "ui/base/Text.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::BoxesShown;
using test::FrameTest;
using test::PressWhenBoxComes;
using test::WaitUntil;
using test::WhenDialogComes;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class TrustTest : public FrameTest {
  protected:
    // Looks at the next question and presses Return on it, which gives its default.
    void TakeDefaultOfQuestion() {
        WhenDialogComes([this](QDialog& dialog) {
            auto* box = qobject_cast<QMessageBox*>(&dialog);
            ASSERT_NE(box, nullptr);
            question = Bytes(box->text());
            EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::No));
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
    }
    void WaitForQuestion() {
        EXPECT_TRUE(WaitUntil([this] { return !question.empty(); }));
        Settle();
    }

    std::string question;
};

// Exports

class ForeignExportsTest : public TrustTest {
  protected:
    // A document of a stranger that wants a file written and a command run is open.
    void StartWithForeign() {
        fs::create_directories(directory / "out");
        Start();
        foreign = WriteDocument("foreign", 1);
        std::string text = test::ReadFile(foreign);
        const auto put = [&text](const std::string& old, const std::string& wanted) {
            const size_t at = text.find(old);
            ASSERT_NE(at, std::string::npos) << old;
            text.replace(at, text.find('\n', at) - at, wanted);
        };
        put("shadersourcedir", "shadersourcedir 1 " + (directory / "out/"));
        put("postsavescript", "postsavescript 1 touch it");
        directory.Write("foreign.tvn", text);
        ASSERT_TRUE(Frame().OpenDocumentFile(foreign));
        Settle();
    }
    // How often the export script has run.
    int Exports() {
        EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
        return static_cast<int>(Shown(Log()).count("exportall foreign "));
    }

    std::string foreign;
};

TEST_F(ForeignExportsTest, WhatADocumentFromElsewhereWantsIsShownAndNotDoneUnlessTheUserAgrees) {
    StartWithForeign();
    TakeDefaultOfQuestion();
    QTest::keyClick(&Frame(), Qt::Key_F7);
    WaitForQuestion();
    EXPECT_THAT(question, AllOf(HasSubstr(foreign), HasSubstr("\n  write " + (directory / "out/foreign")),
                                HasSubstr("\n  run touch it\n")));
    EXPECT_EQ(Exports(), 0);
    PressWhenBoxComes("Yes");
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
}

TEST_F(ForeignExportsTest, WhatWasAgreedToIsNotAskedAboutAgain) {
    StartWithForeign();
    PressWhenBoxComes("Yes");
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 2);
    Start();
    ASSERT_TRUE(Frame().OpenDocumentFile(foreign));
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
    EXPECT_THAT(BoxesShown(), SizeIs(1));
}

TEST_F(ForeignExportsTest, SavingItAndTakingItFromTheHistoryLeavesItAForeignOne) {
    StartWithForeign();
    Document().SetModified();
    Do(CommandId::kSave);
    TakeDefaultOfQuestion();
    Do(CommandId::kExportAll);
    WaitForQuestion();
    Do(CommandId::kRenderIt);
    EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
    ASSERT_FALSE(Frame().Work().session.History().Entries().empty());
    ASSERT_TRUE(Frame().Work().session.LoadHistoryEntry(Frame().Work().session.History().Entries().front()));
    question.clear();
    TakeDefaultOfQuestion();
    Do(CommandId::kExportAll);
    WaitForQuestion();
    EXPECT_EQ(Exports(), 0);
}

TEST_F(ForeignExportsTest, ADocumentOfTheUsersOwnIsNeverAskedAbout) {
    StartWithForeign();
    Do(CommandId::kNew);
    AddBoxes(1);
    Document().exportOptions.saveSource = 1;
    Document().exportOptions.sourcePath = directory / "out/";
    ASSERT_TRUE(Frame().Work().commands.SaveAs(directory / "foreign.tvn"));
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
    Start();
    ASSERT_TRUE(Frame().OpenDocumentFile(foreign));
    Do(CommandId::kRenderIt);
    EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
    ASSERT_TRUE(Frame().Work().session.LoadHistoryEntry(Frame().Work().session.History().Entries().front()));
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

}  // namespace
}  // namespace tavrin
