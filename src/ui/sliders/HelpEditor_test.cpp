// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/HelpEditor.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QPlainTextEdit>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include "support/TestHost.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

class HelpEditor : public test::DocumentTest {
  protected:
    HelpEditor() { edit = editor.findChild<QPlainTextEdit*>(); }

    void SetHelp(const std::string& text) {
        document.customshaderhelp = text;
        document.SetModified(false);
        editor.Refresh();
    }
    const std::string& Help() const { return document.customshaderhelp; }

    CTvDoc* shownDocument = &document;
    int changes = 0;
    Edits::Subscription listener = document.edits.Observe([this](const Change&) { ++changes; });
    CHelpEditor editor{nullptr, [this] { return shownDocument; }};
    QPlainTextEdit* edit;
};

TEST_F(HelpEditor, ShowsTheDocumentsHelpWhichIsNoChange) {
    SetHelp("one\r\n\r\n  two");
    EXPECT_EQ(editor.windowTitle(), "Help Editor");
    EXPECT_EQ(edit->toPlainText(), "one\n\n  two");
    EXPECT_EQ(Help(), "one\r\n\r\n  two");
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(changes, 0);
}

TEST_F(HelpEditor, LinesThatEndOtherwiseAreJoinedByTheFirstChangeAndNotBefore) {
    SetHelp("one\ntwo");
    EXPECT_EQ(edit->toPlainText(), "one\ntwo");
    EXPECT_EQ(Help(), "one\ntwo");
    EXPECT_FALSE(document.IsModified());
    test::ShowActive(editor);
    QTest::keyClick(edit, '>');
    EXPECT_EQ(Help(), ">one\r\ntwo");
}

TEST_F(HelpEditor, EachKeyIsInTheDocumentAtOnce) {
    SetHelp("one");
    test::ShowActive(editor);
    QTest::keyClick(edit, Qt::Key_End, Qt::ControlModifier);
    EXPECT_FALSE(document.IsModified());
    QTest::keyClick(edit, '!');
    EXPECT_EQ(Help(), "one!");
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(changes, 1);
}

TEST_F(HelpEditor, EnterAndTabAreText) {
    SetHelp("");
    test::ShowActive(editor);
    QTest::keyClicks(edit, "a");
    QTest::keyClick(edit, Qt::Key_Return);
    QTest::keyClick(edit, Qt::Key_Tab);
    QTest::keyClicks(edit, "b");
    QTest::keyClick(edit, Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(edit, "c");
    EXPECT_EQ(Help(), "a\r\n\tb\r\nc");
    EXPECT_TRUE(test::HasFocus(*edit));
}

TEST_F(HelpEditor, TheCaretAndTheUndoStepsStayWhenTheTextIsTheSame) {
    SetHelp("one\r\ntwo");
    test::ShowActive(editor);
    QTest::keyClick(edit, Qt::Key_Right);
    QTest::keyClick(edit, 'x');
    editor.Refresh();
    EXPECT_EQ(edit->textCursor().position(), 2);
    QTest::keySequence(edit, QKeySequence::Undo);
    EXPECT_EQ(Help(), "one\r\ntwo");
}

TEST_F(HelpEditor, NothingOfOneDocumentIsUndoneIntoTheNext) {
    SetHelp("one");
    test::ShowActive(editor);
    QTest::keyClick(edit, 'x');
    SetHelp("two");
    QTest::keySequence(edit, QKeySequence::Undo);
    EXPECT_EQ(Help(), "two");

    QTest::keyClick(edit, 'x');
    QTest::keySequence(edit, QKeySequence::Undo);
    document.SetModified(false);
    editor.DocumentReplaced();  // its help is the same
    QTest::keySequence(edit, QKeySequence::Redo);
    EXPECT_EQ(Help(), "two");
    EXPECT_FALSE(document.IsModified());
}

TEST_F(HelpEditor, LinesAreNotWrapped) {
    SetHelp(std::string(2000, 'm'));
    test::ShowActive(editor);
    EXPECT_EQ(edit->document()->firstBlock().layout()->lineCount(), 1);
    EXPECT_EQ(edit->geometry(), editor.rect());
    EXPECT_EQ(edit->fontMetrics().horizontalAdvance('i'), edit->fontMetrics().horizontalAdvance('m'));
}

TEST_F(HelpEditor, KeysOfCommandsThatAreTextKeysStayInTheEditor) {
    SetHelp("one\r\ntwo");
    std::vector<int> commands;
    QWidget frame;
    for (const int key : {Qt::Key_Delete, Qt::Key_Down, Qt::Key_Escape, Qt::Key_F1}) {
        auto* action = new QAction(&frame);
        action->setShortcut(QKeySequence(key));
        action->setShortcutContext(Qt::ApplicationShortcut);
        frame.addAction(action);
        QObject::connect(action, &QAction::triggered, &frame, [&commands, key] { commands.push_back(key); });
    }
    frame.show();
    test::ShowActive(editor);
    QTest::keyClick(edit, Qt::Key_Down);
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_EQ(Help(), "one\r\nwo");
    EXPECT_EQ(commands, std::vector<int>{});
    QTest::keyClick(edit, Qt::Key_F1);
    EXPECT_EQ(commands, std::vector<int>{Qt::Key_F1});
}

TEST_F(HelpEditor, TextOfOtherTimesKeepsItsBytes) {
    SetHelp("caf\xE9\xA0x");
    EXPECT_EQ(edit->document()->toRawText(), QString::fromUtf8("caf\xC3\xA9\xC2\xA0x"));
    test::ShowActive(editor);
    QTest::keyClick(edit, '>');
    EXPECT_EQ(Help(), ">caf\xE9\xA0x");
    edit->insertPlainText(QString::fromUtf8("\xE2\x82\xAC"));
    EXPECT_EQ(Help(),
              ">\xE2\x82\xAC"
              "caf\xC3\xA9\xC2\xA0x");
}

TEST_F(HelpEditor, HardSpacesAndOtherScriptsStayWhatTheyAre) {
    SetHelp(
        "a\xC2\xA0"
        "b \xE6\x9C\xA8");
    test::ShowActive(editor);
    QTest::keyClick(edit, '>');
    EXPECT_EQ(Help(),
              ">a\xC2\xA0"
              "b \xE6\x9C\xA8");
}

TEST_F(HelpEditor, WithoutADocumentItIsEmptyAndCannotBeUsed) {
    SetHelp("one");
    shownDocument = nullptr;
    editor.Refresh();
    EXPECT_EQ(edit->toPlainText(), "");
    EXPECT_FALSE(edit->isEnabled());
    EXPECT_EQ(Help(), "one");
    shownDocument = &document;
    editor.DocumentReplaced();
    EXPECT_EQ(edit->toPlainText(), "one");
    EXPECT_TRUE(edit->isEnabled());
}

}  // namespace
}  // namespace tavrin
