// SPDX-License-Identifier: Apache-2.0
// What tests of windows build on: waiting for conditions, answering boxes, watching the toolkit.
#pragma once

#include <QImage>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <functional>
#include <string>

class QWidget;
class QDialog;

namespace tavrin::test {

// Makes each warning of the toolkit, and each window that a test leaves behind, a failure of that test. Each
// test begins with no button of the mouse down.
// Called once, by main.
void WatchToolkit();

// Handles events until the condition holds. False if that does not come in time: the test has failed.
bool WaitUntil(const std::function<bool()>& condition);
// The same for a window to be seen.
bool WaitUntilSeen(QWidget& window);
// Handles what waits for the main thread now.
void HandleEvents();

// Shows the window and waits until it is there, and is the active one.
void ShowActive(QWidget& window);
// Waits until the widget has the focus in its window, which is shown. A late word of the window manager about
// another window may take that away again, so both are asked for until they stand.
void GiveFocus(QWidget& widget);

// Whether the widget has the focus, or gets it back when late word of the window manager has taken it from
// the whole program. To be asked of what should have it.
bool HasFocus(const QWidget& widget);
// The same for any window of the program.
bool HasFocus();
// What has the focus, in the same way.
QWidget& FocusWidget();

// Moves the mouse to a place in the widget from elsewhere in its window, again and again until the condition
// holds: late word of where the real mouse is, as when a window comes up under it, undoes one such move.
// False if it does not come to hold.
bool HoverUntil(QWidget& widget, QPoint at, const std::function<bool()>& condition);

// What the screen shows where the widget is, with whatever lies above it; in device pixels.
QImage SeenOnScreen(const QWidget& widget);

// While a modal box or dialog runs, nothing behind the call that opened it goes on. So its answer is given
// beforehand: `answer` is called once, from the event loop, with the next dialog that comes up.
void WhenDialogComes(std::function<void(QDialog&)> answer);
// The common answers. A message box: presses the button of that text ("Yes", "Discard"), '&' left out.
void PressWhenBoxComes(const QString& button);
// What the boxes that were answered by PressWhenBoxComes said: "TITLE: TEXT", in order. Emptied before each
// test.
const QStringList& BoxesShown();
// Dialogs that came up with no answer waiting are closed after a moment and fail the test.

// A file dialog: enters the path and accepts, or cancels.
void ChooseFileWhenDialogComes(const std::string& path);
void CancelWhenDialogComes();

}  // namespace tavrin::test
