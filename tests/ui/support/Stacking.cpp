// SPDX-License-Identifier: Apache-2.0
#include "ui/support/Stacking.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <QWidget>

#include "ui/base/Text.h"
#include "ui/support/RunningProgram.h"
#include "ui/support/Windows.h"

namespace tavrin::test {

namespace {

// Of what the window manager looks after, from a property of the root such as "... window id # 0x600007,
// 0x600012".
QStringList WindowsIn(const char* property) {
    const Said said = Ask("xprop", {"-root", property});
    return Shown(said.text).section("# ", 1).trimmed().split(", ");
}

QString NameOf(const QWidget& window) { return "0x" + QString::number(window.window()->internalWinId(), 16); }

}  // namespace

bool IsAbove(const QWidget& upper, const QWidget& lower) {
    const QStringList windows = WindowsIn("_NET_CLIENT_LIST_STACKING");  // the lowest first
    const qsizetype lowerPlace = windows.indexOf(NameOf(lower));
    return lowerPlace >= 0 && windows.indexOf(NameOf(upper)) > lowerPlace;
}

void WaitUntilLetGo(const QWidget& window) {
    const QString name = NameOf(window);
    ASSERT_TRUE(WaitUntil([&] { return !WindowsIn("_NET_CLIENT_LIST").contains(name); }));
}

}  // namespace tavrin::test
