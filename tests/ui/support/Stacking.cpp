// SPDX-License-Identifier: Apache-2.0
#include "ui/support/Stacking.h"

#include <QStringList>
#include <QWidget>

#include "ui/base/Text.h"
#include "ui/support/RunningProgram.h"

namespace tavrin::test {

bool IsAbove(const QWidget& upper, const QWidget& lower) {
    // "... window id # 0x600007, 0x600012": the lowest first.
    const Said said = Ask("xprop", {"-root", "_NET_CLIENT_LIST_STACKING"});
    const QStringList windows = Shown(said.text).section("# ", 1).trimmed().split(", ");
    const auto place = [&](const QWidget& window) {
        return windows.indexOf("0x" + QString::number(window.window()->effectiveWinId(), 16));
    };
    return place(lower) >= 0 && place(upper) > place(lower);
}

}  // namespace tavrin::test
