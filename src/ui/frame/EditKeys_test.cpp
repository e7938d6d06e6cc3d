#include "ui/frame/EditKeys.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QSlider>
#include <QTest>
#include <QVBoxLayout>

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
        window.setCentralWidget(middle);
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

TEST_F(EditKeysTest, ArrowsMoveWithinListsSlidersAndChoosers) {
    list->setCurrentRow(0);
    Press(list, Qt::Key_Down);
    EXPECT_EQ(list->currentRow(), 1);
    Press(slider, Qt::Key_Up);
    EXPECT_EQ(slider->value(), 1);
    Press(chooser, Qt::Key_Down);
    EXPECT_EQ(chooser->currentIndex(), 1);
    EXPECT_EQ(commands, QStringList());
    Press(list, Qt::Key_Delete);
    EXPECT_EQ(commands, QStringList{"Delete"});
}

}  // namespace
}  // namespace tavrin
