// SPDX-License-Identifier: Apache-2.0
// A window that stands at the edge of another one and goes with it.
#pragma once

#include <QRect>
#include <optional>

namespace tavrin {

// How it stands there. All places are those of whole windows, with what is drawn round them. A plain value.
struct Dock {
    static constexpr int kReach = 24;  // pixels from edge to edge, within which a window that is moved snaps

    enum class Side { kLeft, kRight, kTop, kBottom };

    Side side = Side::kRight;
    int offset = 0;  // along the side, of the left or top edge from that of the other window

    // How a window there is docked; none if it is not near enough. An edge that lies within reach of the
    // other window's along the side snaps as well.
    static std::optional<Dock> Of(const QRect& window, const QRect& other);
    // Where a docked window of that size stands.
    QPoint Place(QSize window, const QRect& other) const;
    // Where it is best put at first: at the right, at the left, where the screen has room for it; else none.
    static std::optional<Dock> First(QSize window, const QRect& other, const QRect& screen);

    bool operator==(const Dock&) const = default;
};

}  // namespace tavrin
