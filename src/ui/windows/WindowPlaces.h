// SPDX-License-Identifier: Apache-2.0
// Where the windows stood when the program ended, and back; and where they stand at first.
#pragma once

#include <QPointF>
#include <QRect>
#include <string>
#include <vector>

class QWidget;

namespace tavrin {

class NormalPlace;
class Profile;

// What of a window comes back besides its position.
struct RestoreParts {
    bool size = true;
    bool visible = true;
};

// Five integers for each window: NAME.x, .y, .width, .height and .visible, in device-independent pixels; a
// sixth, .maximized, for one that comes back maximized.
class WindowPlaces {
  public:
    // A window is brought back at least this far from the right and bottom edges of the screen. Nothing
    // keeps it from the left and the top.
    static constexpr int kKeptOnScreen = 100;

    explicit WindowPlaces(Profile& profile) : m_profile(profile) {}

    // False for a window of which nothing was stored yet. It stays where and as it is, hidden if it was to
    // come back with its visibility. Showing does not activate.
    bool RestoreWindow(QWidget& window, const std::string& name, RestoreParts parts);
    // Makes a window that was maximized so again. What was restored before is its normal place.
    void RestoreMaximized(QWidget& window, const std::string& name);

    // Both store nothing for a minimized window. With the normal place, that is stored, and whether the
    // window is maximized.
    void SaveWindow(const QWidget& window, const std::string& name);
    void SaveWindow(const QWidget& window, const std::string& name, const NormalPlace& normal);

  private:
    void Store(const QWidget& window, const std::string& name, const QRect& place);

    Profile& m_profile;
};

// What there is to place a window in that was never placed.
struct FirstPlaceRoom {
    QRect ground;               // that it is to stand on, in global coordinates
    QRect screen;               // which it does not leave
    std::vector<QPoint> taken;  // the corners of windows that stand there already
};

// Where the left top corner of a window of that size comes. `share` tells how much of what the ground leaves
// free is to be left of it and above it, from 0 to 1. Two windows do not come to one spot while the screen
// has room for that.
QPoint FirstPlace(const FirstPlaceRoom& room, QSize size, QPointF share);

}  // namespace tavrin
