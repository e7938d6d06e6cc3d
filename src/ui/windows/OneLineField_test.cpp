// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/OneLineField.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QTest>

#include "ui/support/Hands.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OneLineFieldTest : public testing::Test {
  protected:
    void SetUp() override { test::ShowActive(field); }
    void Paste(const QString& text) {
        QApplication::clipboard()->setText(text);
        test::PressKeys("Ctrl+V");
    }
    void Drop(const QString& text) {
        QMimeData data;
        data.setText(text);
        const QPointF at(3, field.height() / 2);
        QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&field, &enter);
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&field, &drop);
    }
    std::string Text() { return field.text().toStdString(); }

    std::vector<std::string> told;
    OneLineField field{nullptr, [this](const std::string& bytes) { told.push_back(bytes); }};
};

TEST_F(OneLineFieldTest, TellsEachChangeOfTheUsersAndNothingThatItIsShown) {
    field.ShowText("one");
    test::GiveFocus(field);
    field.setCursorPosition(3);
    EXPECT_THAT(told, IsEmpty());
    test::PressKeys("x");
    test::PressKeys("Backspace");
    EXPECT_THAT(told, ElementsAre("onex", "one"));
}

TEST_F(OneLineFieldTest, ATextThatIsShownAlreadyKeepsCaretAndUndoSteps) {
    field.ShowText("one");
    test::GiveFocus(field);
    field.setCursorPosition(1);
    test::PressKeys("x");
    field.ShowText("oxne");
    EXPECT_EQ(field.cursorPosition(), 2);
    test::PressKeys("Ctrl+Z");
    EXPECT_EQ(Text(), "one");
}

TEST_F(OneLineFieldTest, AnotherTextLeavesTheCaretWhereItCanAndNothingToUndo) {
    field.ShowText("one");
    test::GiveFocus(field);
    field.setCursorPosition(1);
    test::PressKeys("x");
    field.ShowText("another");
    EXPECT_EQ(field.cursorPosition(), 2);
    field.ShowText("a");
    EXPECT_EQ(field.cursorPosition(), 1);
    EXPECT_FALSE(field.isUndoAvailable());
}

TEST_F(OneLineFieldTest, AFieldWithoutTheFocusShowsTheBeginning) {
    field.clearFocus();
    field.ShowText(std::string(500, 'm'));
    EXPECT_EQ(field.cursorPosition(), 0);
}

TEST_F(OneLineFieldTest, APasteOfSeveralLinesBecomesOneAndCanBeUndone) {
    field.ShowText("ab");
    test::GiveFocus(field);
    field.setCursorPosition(1);
    Paste("one\ntwo\r\nthree");
    EXPECT_EQ(Text(), "aone two threeb");
    EXPECT_THAT(told, ElementsAre("aone two threeb"));
    test::PressKeys("Ctrl+Z");
    EXPECT_EQ(Text(), "ab");
}

TEST_F(OneLineFieldTest, LinesThatComeByAnyOtherWayBecomeOneAsWell) {
    test::GiveFocus(field);
    QApplication::clipboard()->setText("one\ntwo");
    field.paste();  // as its menu does
    EXPECT_EQ(Text(), "one two");
    field.clear();
    told.clear();
    Drop("three\nfour");
    EXPECT_EQ(Text(), "three four");
    QInputMethodEvent typed;
    typed.setCommitString("\n!");
    QApplication::sendEvent(&field, &typed);
    EXPECT_EQ(Text(), "three four !");
    EXPECT_THAT(told, ElementsAre("three four", "three four !"));
}

TEST_F(OneLineFieldTest, AMegabyteThatIsPastedIsRefusedAsAWhole) {
    field.ShowText("former");
    test::GiveFocus(field);
    Paste(QString(1'000'000, 'm'));
    EXPECT_EQ(Text(), "former");
    Paste(QString(500'000, 'm') + "\n" + QString(500'000, 'm'));
    EXPECT_EQ(Text(), "former");
    Drop(QString(1'000'000, 'm'));
    EXPECT_EQ(Text(), "former");
    EXPECT_THAT(told, IsEmpty());
    field.setCursorPosition(6);
    test::PressKeys("x");
    EXPECT_EQ(Text(), "formerx");
}

TEST_F(OneLineFieldTest, TheLongestTextCanBeEditedButTakesNoMore) {
    field.ShowText(std::string(OneLineField::kMostCharacters, 'm'));
    EXPECT_FALSE(field.isReadOnly());
    test::GiveFocus(field);
    test::PressKeys("x");
    EXPECT_THAT(told, IsEmpty());
    test::PressKeys("Delete");
    test::PressKeys("x");
    EXPECT_EQ(told.back(), "x" + std::string(OneLineField::kMostCharacters - 1, 'm'));
}

TEST_F(OneLineFieldTest, ALongerTextIsShownWholeAndCannotBeEdited) {
    const std::string text(OneLineField::kMostCharacters + 10, 'm');
    field.ShowText(text);
    EXPECT_EQ(Text(), text);
    EXPECT_TRUE(field.isReadOnly());
    EXPECT_NE(field.toolTip(), "");
    test::GiveFocus(field);
    test::PressKeys("x");
    Paste("one\ntwo");
    EXPECT_EQ(Text(), text);
    EXPECT_THAT(told, IsEmpty());
    field.ShowText("short");
    EXPECT_FALSE(field.isReadOnly());
    EXPECT_EQ(field.toolTip(), "");
    Paste(QString(1'000'000, 'm'));
    EXPECT_EQ(Text(), "short");
    test::PressKeys("x");
    EXPECT_EQ(told.size(), 1U);
}

TEST_F(OneLineFieldTest, LinesOfADocumentStayUntilTheUserChangesTheText) {
    field.ShowText("one\r\ntwo");
    test::GiveFocus(field);
    field.setCursorPosition(0);
    EXPECT_THAT(told, IsEmpty());
    field.ShowText("one\r\ntwo");
    test::PressKeys("x");
    EXPECT_THAT(told, ElementsAre("xone two"));
}

TEST_F(OneLineFieldTest, BytesThatAreNoUtf8KeepTheirBytesWhileTheyAreEdited) {
    field.ShowText("caf\xE9");
    EXPECT_EQ(Text(), "caf\xC3\xA9");
    test::GiveFocus(field);
    field.setCursorPosition(4);
    test::PressKeys("x");
    EXPECT_THAT(told, ElementsAre("caf\xE9"
                                  "x"));
}

TEST_F(OneLineFieldTest, LeavingItTellsNothing) {
    QWidget window;
    OneLineField inner(&window, [this](const std::string& bytes) { told.push_back(bytes); });
    QLineEdit other(&window);
    other.move(0, 100);
    window.resize(300, 200);
    inner.ShowText("a\nb\xFF");
    test::ShowActive(window);
    test::GiveFocus(inner);
    test::GiveFocus(other);
    EXPECT_THAT(told, IsEmpty());
}

}  // namespace
}  // namespace tavrin
