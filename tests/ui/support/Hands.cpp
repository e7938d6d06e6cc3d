// SPDX-License-Identifier: Apache-2.0
#include "ui/support/Hands.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolBar>
#include <QWindow>

#include "ui/base/Text.h"
#include "ui/support/Windows.h"

namespace tavrin::test {

namespace {

// The items that lead from the menu to the action, the action last; none if it is not below the menu.
QList<QAction*> WayTo(const QMenu& menu, QAction& action) {
    for (QAction* item : menu.actions()) {
        if (item == &action) return {item};
        if (item->menu() == nullptr) continue;
        const QList<QAction*> rest = WayTo(*item->menu(), action);
        if (!rest.isEmpty()) return QList<QAction*>{item} + rest;
    }
    return {};
}

bool Click(QMenu& menu, QAction* item) {
    if (!WaitUntil([&] { return menu.isVisible(); })) return false;
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(item).center());
    return true;
}

void CloseMenus() {
    while (QWidget* menu = QApplication::activePopupWidget()) {
        menu->close();
        HandleEvents();
    }
}

}  // namespace

void ChooseInMenu(QMainWindow& frame, const QString& menu, QAction& action) {
    QMenuBar& bar = *frame.menuBar();
    for (QAction* title : bar.actions()) {
        if (title->text().remove('&') != menu) continue;
        QList<QAction*> way = WayTo(*title->menu(), action);
        ASSERT_FALSE(way.isEmpty()) << Bytes(menu) << " does not hold " << Bytes(action.text());
        QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(title).center());
        QMenu* level = title->menu();
        for (QAction* item : way) {
            EXPECT_TRUE(item->isEnabled()) << Bytes(item->text());
            ASSERT_TRUE(Click(*level, item)) << "the menu of " << Bytes(item->text()) << " does not open";
            level = item->menu();
        }
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << Bytes(action.text()) << " was not chosen";
        CloseMenus();
        return;
    }
    FAIL() << "there is no menu " << Bytes(menu);
}

void ClickOnToolBar(QMainWindow& frame, const char* toolBar, QAction& action) {
    const auto* bar = frame.findChild<QToolBar*>(toolBar);
    ASSERT_NE(bar, nullptr) << toolBar;
    QWidget* button = bar->widgetForAction(&action);
    ASSERT_NE(button, nullptr) << Bytes(action.text()) << " has no button on " << toolBar;
    EXPECT_TRUE(button->isEnabled()) << Bytes(action.text());
    ASSERT_TRUE(button->isVisible()) << Bytes(action.text());
    // Through the window, so that a button that something else covers is not reached.
    QWidget* window = button->window();
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                      button->mapTo(window, button->rect().center()));
}

void PressKeys(const QString& keys) {
    ASSERT_TRUE(HasFocus()) << "no window of the program has the focus";
    QWindow* window = QGuiApplication::focusWindow();
    const QKeySequence sequence(keys);
    ASSERT_EQ(sequence.count(), 1) << Bytes(keys);
    QTest::keyClick(window, sequence[0].key(), sequence[0].keyboardModifiers());
}

void FocusOn(QWidget& widget) {
    ShowActive(*widget.window());
    widget.setFocus();
    ASSERT_TRUE(WaitUntil([&] { return QApplication::focusWidget() == &widget; }));
}

void TabTo(QWidget& widget) {
    ShowActive(*widget.window());
    const qsizetype most = widget.window()->findChildren<QWidget*>().size();
    for (qsizetype press = 0; press <= most; ++press) {
        PressKeys("Tab");
        if (QApplication::focusWidget() == &widget) return;
    }
    FAIL() << "the Tab key does not lead to " << Bytes(widget.objectName());
}

}  // namespace tavrin::test
