// SPDX-License-Identifier: Apache-2.0
// Which window the window manager has over which.
#pragma once

class QWidget;

namespace tavrin::test {

// Both windows are managed, and the first is above the second, as the window manager tells it now.
bool IsAbove(const QWidget& upper, const QWidget& lower);

}  // namespace tavrin::test
