// SPDX-License-Identifier: Apache-2.0
// The Argument Editor in the frame: what is said there reaches the shader, and what is done elsewhere
// reaches it.
#include <QApplication>
#include <QCheckBox>
#include <QTest>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/sliders/ArgumentEditor.h"
#include "ui/sliders/ArgumentRow.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"
#include "ui/windows/OneLineField.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::HasSubstr;
using testing::Not;

class Arguments : public test::FrameTest {
  protected:
    using Field = ArgumentField;

    void StartWithEditor(int boxes) {
        Start();
        AddBoxes(boxes);
        QTest::keyClick(&Frame(), Qt::Key_F5);
        ASSERT_TRUE(WaitUntil([this] { return Editor().IsUp(); }));
        ASSERT_TRUE(test::WaitUntilSeen(Editor()));
    }
    CArgumentEditor& Editor() { return Frame().Windows().Get<CArgumentEditor>(); }
    QWidget& Control(size_t row, Field field) { return Editor().RowWindows().at(row)->Control(field); }
    QCheckBox& Flag(size_t row) { return static_cast<QCheckBox&>(Control(row, Field::kFlag)); }
    void Tick(size_t row) {
        QTest::mouseClick(&Flag(row), Qt::LeftButton, {}, {Flag(row).height() / 2, Flag(row).height() / 2});
    }
    void Type(size_t row, Field field, const QString& text) {
        test::FocusOn(Control(row, field));
        for (const QChar key : text) test::PressKeys(key == u' ' ? QString("Space") : QString(key));
    }
    std::string Text(size_t row, Field field) {
        return Bytes(static_cast<OneLineField&>(Control(row, field)).text());
    }
    // What a render hands to the filter script: the arguments, then the code.
    std::string Code() {
        Do(CommandId::kRenderIt);
        EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        return test::ReadFile(WorkDir() + "/codegenfile");
    }
};

TEST_F(Arguments, WhatIsSaidInTheEditorStandsInTheNextShader) {
    StartWithEditor(2);
    EXPECT_THAT(Code(), Not(HasSubstr("ArgName")));
    Tick(1);
    EXPECT_THAT(Code(), HasSubstr("ArgName Constant_2_value\n"));
    Type(1, Field::kName, "ka");
    Type(1, Field::kComment, "how much");
    const std::string code = Code();
    EXPECT_THAT(code, HasSubstr("ArgName ka\n{\n"));
    EXPECT_THAT(code, HasSubstr("    Comments    how much\n"));
    EXPECT_THAT(code, HasSubstr("Constant_2_result = ka;"));
    EXPECT_THAT(code, HasSubstr("Constant_1_result = 0.25;"));
    Tick(1);
    EXPECT_THAT(Code(), Not(HasSubstr("ka")));
}

TEST_F(Arguments, AnEditThereMarksTheDocumentAndIsThereAfterOpeningItAgain) {
    StartWithEditor(1);
    std::string error;
    ASSERT_TRUE(Document().Save(directory / "kept.tvn", error)) << error;
    Tick(0);
    Settle();
    EXPECT_TRUE(Frame().isWindowModified());
    Type(0, Field::kName, "ka");
    Type(0, Field::kComment, "c");
    ASSERT_TRUE(Document().Save(directory / "kept.tvn", error)) << error;
    ASSERT_TRUE(Frame().OpenDocumentFile(directory / "kept.tvn"));
    EXPECT_TRUE(Flag(0).isChecked());
    EXPECT_EQ(Text(0, Field::kName), "ka");
    EXPECT_EQ(Text(0, Field::kComment), "c");
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(Arguments, ADocumentThatIsOpenedWhileTypingIsNotTypedInto) {
    StartWithEditor(3);
    const std::string path = WriteDocument("other", 2);
    Tick(2);
    Type(2, Field::kName, "half");
    Document().SetModified(false);
    ASSERT_TRUE(Frame().OpenDocumentFile(path));
    Settle();
    EXPECT_EQ(Editor().Rows().Count(), 2U);
    QTest::keyClicks(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : &Editor(), "x");
    for (const COpButton* button : Document().CollectUnconnectedInputs()) EXPECT_EQ(button->argname, "");
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(Arguments, ABoxThatIsDeletedWhileItsRowIsTypedInGoesQuietly) {
    StartWithEditor(2);
    Tick(0);
    Type(0, Field::kName, "half");
    Desk().DeleteBox(*Editor().Rows().ButtonAt(0)->owner);
    Settle();
    EXPECT_EQ(Editor().Rows().Count(), 1U);
    EXPECT_EQ(Editor().Rows().ButtonAt(0)->argname, "");
    EXPECT_FALSE(Flag(0).isChecked());
}

TEST_F(Arguments, KeysOfCommandsThatAreEditingKeysStayInItsFields) {
    StartWithEditor(2);
    Desk().SelectAllBoxes();
    Tick(0);
    Type(0, Field::kName, "ab");
    test::PressKeys("Home");
    test::PressKeys("Delete");
    EXPECT_EQ(Editor().Rows().ButtonAt(0)->argname, "b");
    test::PressKeys("Ctrl+A");
    test::PressKeys("Ctrl+X");
    EXPECT_EQ(Editor().Rows().ButtonAt(0)->argname, "");
    test::PressKeys("Ctrl+V");
    EXPECT_EQ(Editor().Rows().ButtonAt(0)->argname, "b");
    EXPECT_EQ(Document().m_boxes.size(), 2U);
}

TEST_F(Arguments, ALockedDeskLocksTheSlidersAndNotTheArguments) {
    StartWithEditor(1);
    Do(CommandId::kLockDesk);
    Settle();
    EXPECT_TRUE(Editor().isEnabled());
    Tick(0);
    EXPECT_EQ(Editor().Rows().ButtonAt(0)->arg, 1);
}

TEST_F(Arguments, SelectionsOnTheDeskAndItsSwitchesRefreshNoRow) {
    StartWithEditor(3);
    const int before = Editor().Refreshes();
    Do(CommandId::kSelectAllBoxes);
    Do(CommandId::kUnselectAllBoxes);
    Do(CommandId::kShowVarnames);
    Do(CommandId::kZoomIn);
    Settle();
    EXPECT_EQ(Editor().Refreshes(), before);
}

}  // namespace
}  // namespace tavrin
