// SPDX-License-Identifier: Apache-2.0
#include "ui/log/LogWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>

#include "base/Files.h"
#include "ui/base/Text.h"
#include "ui/log/LogEdit.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using enum LogCommand;

class LogWindowTest : public testing::Test {
  protected:
    LogOptions Options() {
        return {kLogTextLimit, [this] { ++beeps; }};
    }
    bool IsEnabled(LogCommand command) const { return window.Command(command)->isEnabled(); }
    bool IsChecked(LogCommand command) const { return window.Command(command)->isChecked(); }
    void Do(LogCommand command) { window.Command(command)->trigger(); }
    void Press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&window.Edit(), Qt::Key(key), modifiers);
    }
    void Select(int from, int to) {
        QTextCursor cursor = window.Edit().textCursor();
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        window.Edit().setTextCursor(cursor);
    }
    std::string InTemporary(const std::string& name) const { return Bytes(temporary.path()) + "/" + name; }

    MemoryProfile profile;
    int beeps = 0;
    LogWindow window{nullptr, profile, Options()};
    QTemporaryDir temporary;
};

// What is said.

TEST_F(LogWindowTest, TwoProgressTextsEndedByBareReturnsLeaveAnEmptyLastLine) {
    window.Append("before\n10%\r20%\r");
    EXPECT_EQ(window.Text(), "before\n");
    EXPECT_EQ(window.Edit().document()->blockCount(), 2);
}

TEST_F(LogWindowTest, AReturnWithALineFeedBetweenTwoWordsMakesTwoLines) {
    window.Append("one\r\ntwo");
    EXPECT_EQ(window.Text(), "one\ntwo");
    EXPECT_EQ(window.Edit().document()->blockCount(), 2);
}

TEST_F(LogWindowTest, ABellAloneBeepsAndAddsNothing) {
    window.Append("\a");
    EXPECT_EQ(beeps, 1);
    EXPECT_TRUE(window.IsEmpty());
    EXPECT_EQ(window.Text(), "");
}

TEST_F(LogWindowTest, AFloodOfBellsBeepsOnlyNowAndThen) {
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 10'000; ++i) window.Append("\a");
    EXPECT_GE(beeps, 1);
    EXPECT_LE(beeps, 1 + clock.elapsed() / 100);
}

TEST_F(LogWindowTest, APieceThatEndsBetweenReturnAndLineFeedLosesItsLine) {
    window.Append("lost\r");
    window.Append("\nnext");
    EXPECT_EQ(window.Text(), "\nnext");
}

TEST_F(LogWindowTest, CharactersSplitBetweenPiecesComeOutWhole) {
    std::string said;
    for (int i = 0; i < 40; ++i) said += "\xE2\x82\xAC\xC3\xA9\xF0\x9F\x98\x80 ";
    for (size_t at = 0; at < said.size(); at += 31) {
        window.Append(std::string_view(said).substr(at, 31));
        window.Flush();
    }
    EXPECT_EQ(Bytes(window.Text()), said);
}

TEST_F(LogWindowTest, ComesIntoTheTextByItselfShownOrHidden) {
    window.Append("hidden");
    EXPECT_TRUE(test::WaitUntil([&] { return window.Edit().toPlainText() == "hidden"; }));
    test::ShowActive(window);
    window.Append(" shown");
    EXPECT_TRUE(test::WaitUntil([&] { return window.Edit().toPlainText() == "hidden shown"; }));
    window.close();
    EXPECT_FALSE(window.isVisible());
    window.Append(" hidden");
    EXPECT_TRUE(test::WaitUntil([&] { return window.Edit().toPlainText() == "hidden shown hidden"; }));
}

TEST_F(LogWindowTest, AFloodComesInWithOtherEventsBetween) {
    std::string flood;
    for (int i = 0; i < 100'000; ++i) flood += "line of a flood\n";
    window.Append(flood);
    const auto lines = [&] { return window.Edit().document()->blockCount(); };
    int between = 0;  // times that another event came while only a part was in
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&] { between += lines() > 1 && lines() < 100'001; });
    other.start(0);
    EXPECT_TRUE(test::WaitUntil([&] { return lines() == 100'001; }));
    EXPECT_GT(between, 1);
}

TEST_F(LogWindowTest, AFullLogLosesItsOldestLines) {
    LogWindow small(nullptr, profile, {30, {}});
    for (int i = 0; i < 10; ++i) {
        small.Append("line " + std::to_string(i) + "\n");
        small.Flush();
    }
    EXPECT_EQ(small.Text(), "line 6\nline 7\nline 8\nline 9\n");
    small.Append("waited for nobody\nline a\nline b\nline c\nline d\n");
    EXPECT_EQ(small.Text(), "line a\nline b\nline c\nline d\n");
}

// The commands and their rules.

TEST_F(LogWindowTest, SaveAndClearAreEnabledWhileTheLogIsNotEmpty) {
    for (const auto command : {kSave, kClear}) {
        EXPECT_FALSE(IsEnabled(command));
        window.Append("10%");
        EXPECT_TRUE(IsEnabled(command));
        window.Append("\r");
        EXPECT_FALSE(IsEnabled(command));
        window.Append("20%");
        window.Flush();
        EXPECT_TRUE(IsEnabled(command));
        window.Append("\r");
        EXPECT_FALSE(IsEnabled(command));
        window.Append("\n");
        EXPECT_TRUE(IsEnabled(command));
        window.Flush();
        window.Append("\r");
        EXPECT_TRUE(IsEnabled(command));
        window.Clear();
        EXPECT_FALSE(IsEnabled(command));
    }
}

TEST_F(LogWindowTest, SaveIsEnabledAsSoonAsTheUserTypesSomething) {
    Do(kEditable);
    test::ShowActive(window);
    Press(Qt::Key_A);
    EXPECT_TRUE(IsEnabled(kSave));
    Press(Qt::Key_Backspace);
    EXPECT_FALSE(IsEnabled(kSave));
}

TEST_F(LogWindowTest, CopyIsEnabledWhileTextIsSelectedAndTakesIt) {
    window.Append("one two three");
    window.Flush();
    EXPECT_FALSE(IsEnabled(kCopy));
    Select(4, 7);
    EXPECT_TRUE(IsEnabled(kCopy));
    window.Append(" four");
    window.Flush();
    EXPECT_TRUE(IsEnabled(kCopy));
    Do(kCopy);
    EXPECT_EQ(QApplication::clipboard()->text(), "two");
    Select(0, 0);
    EXPECT_FALSE(IsEnabled(kCopy));
}

TEST_F(LogWindowTest, ClearTakesAwayWhatIsShownAndWhatWaits) {
    for (const auto command : {kClear, kClearLog}) {
        window.Append("shown\n");
        window.Flush();
        window.Append("waits");
        Do(command);
        EXPECT_TRUE(window.IsEmpty());
        EXPECT_EQ(window.Text(), "");
        Do(command);
        EXPECT_EQ(window.Text(), "");
    }
}

TEST_F(LogWindowTest, CutPasteAndDeleteDoNothingUntilTheLogIsEditable) {
    window.Append("one two");
    window.Flush();
    QApplication::clipboard()->setText("PASTED");
    test::ShowActive(window);
    for (const auto command : {kCut, kPaste, kDelete}) {
        Select(0, 4);
        Do(command);
    }
    Press(Qt::Key_V, Qt::ControlModifier);
    Press(Qt::Key_X, Qt::ControlModifier);
    Press(Qt::Key_Delete);
    Press(Qt::Key_A);
    EXPECT_EQ(window.Text(), "one two");
    EXPECT_EQ(QApplication::clipboard()->text(), "PASTED");
}

TEST_F(LogWindowTest, CutPasteAndDeleteWorkOnAnEditableLog) {
    Do(kEditable);
    window.Append("one two three");
    window.Flush();
    Select(0, 4);
    Do(kCut);
    EXPECT_EQ(window.Text(), "two three");
    EXPECT_EQ(QApplication::clipboard()->text(), "one ");
    Select(0, 4);
    Do(kDelete);
    EXPECT_EQ(window.Text(), "three");
    Do(kPaste);
    EXPECT_EQ(window.Text(), "one three");
    Do(kDelete);  // nothing is selected
    EXPECT_EQ(window.Text(), "one three");
}

TEST_F(LogWindowTest, TheKeysAreThoseOfTheCommands) {
    Do(kEditable);
    window.Append("one two three");
    window.Flush();
    test::ShowActive(window);
    Select(0, 4);
    Press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "one ");
    EXPECT_EQ(window.Text(), "one two three");
    Select(4, 8);
    Press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(window.Text(), "one three");
    EXPECT_EQ(QApplication::clipboard()->text(), "two ");
    Select(0, 4);
    Press(Qt::Key_Delete);
    EXPECT_EQ(window.Text(), "three");
    Press(Qt::Key_Delete);  // nothing is selected
    EXPECT_EQ(window.Text(), "three");
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(window.Text(), "two three");
}

TEST_F(LogWindowTest, ControlDeleteClearsTheLogAndDeletesNoWord) {
    Do(kEditable);
    window.Append("one two");
    window.Flush();
    test::ShowActive(window);
    Select(0, 0);
    Press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(window.Text(), "");
}

TEST_F(LogWindowTest, EditableIsCheckedWrittenAtOnceAndKept) {
    EXPECT_FALSE(IsChecked(kEditable));
    EXPECT_TRUE(window.Edit().isReadOnly());
    Do(kEditable);
    EXPECT_TRUE(IsChecked(kEditable));
    EXPECT_FALSE(window.Edit().isReadOnly());
    EXPECT_EQ(profile.numbers["Log.editable"], 1);
    LogWindow next(nullptr, profile);
    EXPECT_TRUE(next.Command(kEditable)->isChecked());
    EXPECT_FALSE(next.Edit().isReadOnly());
    Do(kEditable);
    EXPECT_FALSE(IsChecked(kEditable));
    EXPECT_TRUE(window.Edit().isReadOnly());
    EXPECT_EQ(profile.numbers["Log.editable"], 0);
}

TEST_F(LogWindowTest, TheSwitchesShowTheirCheckMarksInTheMenu) {
    for (const auto command : {kWrap, kEditable}) {
        const QAction* action = window.Command(command);
        EXPECT_FALSE(action->icon().isNull()) << "the toolbar's";
        // An icon in the menu would stand where the check mark belongs.
        EXPECT_TRUE(action->isCheckable());
        EXPECT_FALSE(action->isIconVisibleInMenu());
    }
}

TEST_F(LogWindowTest, WrapIsCheckedWrittenAtOnceAndKept) {
    EXPECT_FALSE(IsChecked(kWrap));
    EXPECT_FALSE(window.Edit().HasWordWrap());
    Do(kWrap);
    EXPECT_TRUE(IsChecked(kWrap));
    EXPECT_TRUE(window.Edit().HasWordWrap());
    EXPECT_EQ(profile.numbers["Log.wordwrap"], 1);
    LogWindow next(nullptr, profile);
    EXPECT_TRUE(next.Command(kWrap)->isChecked());
    EXPECT_TRUE(next.Edit().HasWordWrap());
    Do(kWrap);
    EXPECT_FALSE(window.Edit().HasWordWrap());
    EXPECT_EQ(profile.numbers["Log.wordwrap"], 0);
}

TEST_F(LogWindowTest, NothingIsWrittenToTheProfileUntilSomethingChanges) {
    EXPECT_TRUE(profile.numbers.empty());
}

TEST_F(LogWindowTest, TheToolBarHoldsItsCommandsInOrderWithToolTips) {
    QStringList captions;
    const auto* bar = window.findChild<QToolBar*>();
    for (const QAction* action : bar->actions()) {
        captions << action->text().remove('&');
        EXPECT_FALSE(action->toolTip().isEmpty());
    }
    EXPECT_EQ(captions, (QStringList{"Save", "Copy", "Clear", "Wrap", "Editable"}));
}

TEST_F(LogWindowTest, EveryCommandIsInAMenu) {
    const auto inMenus = window.findChildren<QMenu*>();
    for (const auto command : {kSave, kCopy, kClear, kWrap, kEditable, kCut, kPaste, kDelete}) {
        const bool found = std::any_of(inMenus.begin(), inMenus.end(), [&](const QMenu* menu) {
            return menu->actions().contains(window.Command(command));
        });
        EXPECT_TRUE(found) << static_cast<int>(command);
    }
    EXPECT_TRUE(window.Edit().actions().contains(window.Command(kClearLog)));
}

// Saving.

TEST_F(LogWindowTest, SaveWritesTheWholeTextAndGivesANameItsExtension) {
    window.Append("one\r\ntw\xC3\xB6\n");
    window.Flush();
    window.Append("waits\xC2\xA0too");
    test::WhenDialogComes([&](QDialog& dialog) {
        const auto& files = dynamic_cast<QFileDialog&>(dialog);
        EXPECT_EQ(files.windowTitle(), "Save Log");
        EXPECT_EQ(files.nameFilters(), QStringList{"*.txt"});
        EXPECT_EQ(files.defaultSuffix(), "txt");
        dialog.reject();
    });
    Do(kSave);
    test::ChooseFileWhenDialogComes(InTemporary("kept"));
    Do(kSave);
    std::string text, error;
    EXPECT_TRUE(ReadWholeFile(InTemporary("kept.txt"), text, error)) << error;
    EXPECT_EQ(text, "one\ntw\xC3\xB6\nwaits\xC2\xA0too");
}

TEST_F(LogWindowTest, SaveSaysWhenItIsUnableToWrite) {
    const std::string path = InTemporary("log.txt");
    window.Append("text");
    // Between the choice and the writing the place has become a directory.
    test::WhenDialogComes([&](QDialog& dialog) {
        auto& files = dynamic_cast<QFileDialog&>(dialog);
        files.selectFile(Shown(path));
        QObject::connect(&files, &QDialog::finished, [&] { EXPECT_EQ(MakeDirectory(path), 0); });
        dialog.done(QDialog::Accepted);
    });
    test::WhenDialogComes([&](QDialog& dialog) {
        auto& box = dynamic_cast<QMessageBox&>(dialog);
        EXPECT_EQ(box.windowTitle(), "Error");
        EXPECT_EQ(box.text(), "unable to write to " + Shown(path));
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        box.accept();
    });
    Do(kSave);
    EXPECT_EQ(window.Text(), "text");
}

}  // namespace
}  // namespace tavrin
