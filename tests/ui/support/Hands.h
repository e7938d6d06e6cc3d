// SPDX-License-Identifier: Apache-2.0
// A user's hands on the main frame: menus, toolbar buttons and keys, through events of the windows.
#pragma once

#include <QString>

class QAction;
class QMainWindow;
class QWidget;

namespace tavrin::test {

// Opens the menu of that title ('&' left out) with the mouse, and submenus down to the action, and clicks its
// item. Fails the test if the item does not stand there or cannot be chosen. What the command opens modally
// is to be answered beforehand.
void ChooseInMenu(QMainWindow& frame, const QString& menu, QAction& action);

// Clicks the button of the action on the toolbar of that object name, which must be in view and enabled.
void ClickOnToolBar(QMainWindow& frame, const char* toolBar, QAction& action);

// Presses keys such as "Ctrl+A" in the window that has the focus, as the platform would.
void PressKeys(const QString& keys);

// Makes the window the active one with the focus in the widget, which nobody has chosen by hand.
void FocusOn(QWidget& widget);
// Presses the Tab key in the widget's window, which becomes the active one, until the widget has the focus.
void TabTo(QWidget& widget);

}  // namespace tavrin::test
