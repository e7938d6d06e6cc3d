// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/EditKeys.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QVBoxLayout>

#include "ui/support/Stacking.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

class EditKeysTest : public testing::Test {
  protected:
    EditKeysTest() {
        auto* middle = new QWidget;
        auto* column = new QVBoxLayout(middle);
        for (QWidget* widget : std::initializer_list<QWidget*>{line, text, list, slider, chooser, plain}) {
            widget->setFocusPolicy(Qt::StrongFocus);
            column->addWidget(widget);
        }
        text->setTabChangesFocus(true);
        window.setCentralWidget(middle);
        column->addWidget(first);
        list->addItems({"a", "b", "c"});
        chooser->addItems({"a", "b", "c"});
        for (const char* key : {"Up", "Down", "Esc", "Delete", "Ctrl+A", "Ctrl+C", "Ctrl+V", "Ctrl+X"}) {
            auto* action = new QAction(&window);
            action->setShortcut(QKeySequence(key));
            QObject::connect(action, &QAction::triggered, &window, [this, key] { commands << key; });
            window.addAction(action);
        }
        test::ShowActive(window);
    }

    // By the Tab key, from whatever has the focus.
    void TabTo(QWidget* widget) {
        for (int press = 0; press < 20 && !widget->hasFocus(); ++press)
            QTest::keyClick(&test::FocusWidget(), Qt::Key_Tab);
        ASSERT_TRUE(test::HasFocus(*widget));
    }
    // Pressed where the focus is.
    void Press(Qt::Key key) { QTest::keyClick(&test::FocusWidget(), key); }
    // And it has the focus, somewhere in it.
    void ShowOther(QWidget& other) {
        test::ShowActive(other);
        const auto hasFocus = [&] { return other.isAncestorOf(QApplication::focusWidget()); };
        EXPECT_TRUE(test::WaitUntil(hasFocus));
    }

    void Press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        widget->setFocus();
        QTest::keyClick(widget, key, modifiers);
    }
    void PressAll(QWidget* widget) {
        for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Escape, Qt::Key_Delete})
            Press(widget, key);
        for (const Qt::Key key : {Qt::Key_A, Qt::Key_C, Qt::Key_V, Qt::Key_X}) {
            Press(widget, key, Qt::ControlModifier);
        }
    }

    QMainWindow window;
    QPushButton* first = new QPushButton("first");
    QLineEdit* line = new QLineEdit("some text");
    QPlainTextEdit* text = new QPlainTextEdit("one\ntwo");
    QListWidget* list = new QListWidget;
    QSlider* slider = new QSlider(Qt::Vertical);
    QComboBox* chooser = new QComboBox;
    QWidget* plain = new QWidget;
    QStringList commands;
    EditKeys keys;
};

TEST_F(EditKeysTest, ActOnTheTextWhileATextFieldHasTheFocus) {
    PressAll(line);
    PressAll(text);
    EXPECT_EQ(commands, QStringList());
    EXPECT_EQ(line->text(), "some text");  // selected whole, copied and pasted over itself
    Press(line, Qt::Key_A, Qt::ControlModifier);
    Press(line, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(line->text(), "");
    EXPECT_EQ(commands, QStringList());
}

TEST_F(EditKeysTest, ReachTheCommandsFromAnywhereElse) {
    PressAll(plain);
    EXPECT_EQ(commands, (QStringList{"Up", "Down", "Esc", "Delete", "Ctrl+A", "Ctrl+C", "Ctrl+V", "Ctrl+X"}));
}

TEST_F(EditKeysTest, ArrowsMoveWithinAListASliderOrAChooserThatTheTabKeyHasLedTo) {
    list->setCurrentRow(0);
    TabTo(list);
    Press(Qt::Key_Down);
    EXPECT_EQ(list->currentRow(), 1);
    TabTo(slider);
    Press(Qt::Key_Up);
    EXPECT_EQ(slider->value(), 1);
    TabTo(chooser);
    Press(Qt::Key_Down);
    EXPECT_EQ(chooser->currentIndex(), 1);
    EXPECT_EQ(commands, QStringList());
    Press(list, Qt::Key_Delete);
    EXPECT_EQ(commands, QStringList{"Delete"});
}

TEST_F(EditKeysTest, ArrowsMoveWithinAListThatWasClickedAlsoIfItHadTheFocusBefore) {
    list->setFocus();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
    Press(Qt::Key_Down);
    EXPECT_EQ(list->currentRow(), 1);
    EXPECT_EQ(commands, QStringList());
}

TEST_F(EditKeysTest, ArrowsReachTheCommandsFromWhatOnlyCameToHaveTheFocus) {
    for (QWidget* widget : std::initializer_list<QWidget*>{list, slider, chooser}) {
        commands.clear();
        Press(widget, Qt::Key_Up);
        Press(widget, Qt::Key_Down);
        EXPECT_EQ(commands, (QStringList{"Up", "Down"})) << widget->metaObject()->className();
    }
}

TEST_F(EditKeysTest, ArrowsReachTheCommandsAgainOnceTheFocusWasElsewhere) {
    TabTo(list);
    first->setFocus();
    list->setFocus();
    Press(Qt::Key_Down);
    EXPECT_EQ(commands, QStringList{"Down"});
}

// The toolkit gives the focus of a new window to the first in the order of the Tab key, and names that key.
TEST_F(EditKeysTest, ArrowsReachTheCommandsFromTheListOfAWindowThatCameUp) {
    QWidget other(&window, Qt::Tool);  // such a one hands keys on to its parent
    QVBoxLayout column(&other);
    auto* inside = new QListWidget;
    inside->addItems({"a", "b"});
    column.addWidget(inside);
    ShowOther(other);
    Press(Qt::Key_Down);
    EXPECT_EQ(commands, QStringList{"Down"});
    QTest::mouseClick(inside->viewport(), Qt::LeftButton, {}, {5, 5});
    Press(Qt::Key_Down);
    EXPECT_EQ(inside->currentRow(), 1);
    EXPECT_EQ(commands, QStringList{"Down"});
    other.hide();
    test::WaitUntilLetGo(other);
    test::ShowActive(other);
    test::GiveFocus(*inside);
    Press(Qt::Key_Up);
    EXPECT_EQ(commands, (QStringList{"Down", "Up"}));
}

TEST_F(EditKeysTest, AListKeepsTheArrowsWhileItsWindowIsNotTheActiveOne) {
    list->setCurrentRow(0);
    TabTo(list);
    QWidget other(&window, Qt::Window);
    QVBoxLayout column(&other);
    column.addWidget(new QPushButton("other"));
    ShowOther(other);
    other.hide();
    ASSERT_TRUE(test::WaitUntil([&] { return list->hasFocus(); }));
    Press(Qt::Key_Down);
    EXPECT_EQ(list->currentRow(), 1);
    EXPECT_EQ(commands, QStringList());
}

TEST_F(EditKeysTest, ArrowsMoveWithinTheOpenListOfAChooser) {
    chooser->setFocus();
    chooser->showPopup();
    QWidget* open = chooser->view();
    ASSERT_TRUE(test::WaitUntil([&] { return open->isVisible(); }));
    QTest::keyClick(open, Qt::Key_Down);
    QTest::keyClick(open, Qt::Key_Return);
    EXPECT_EQ(chooser->currentIndex(), 1);
    EXPECT_EQ(commands, QStringList());
}

}  // namespace
}  // namespace tavrin
