// SPDX-License-Identifier: Apache-2.0
// Which window the window manager has over which.
#pragma once

class QWidget;

namespace tavrin::test {

// Both windows are managed, and the first is above the second, as the window manager tells it now.
bool IsAbove(const QWidget& upper, const QWidget& lower);

// Waits until the window manager has let go of a window that was hidden: shown again before that, it might
// be let go of while it is up.
void WaitUntilLetGo(const QWidget& window);

}  // namespace tavrin::test
