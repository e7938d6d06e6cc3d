// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/WindowPlaces.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>

#include "base/Profile.h"
#include "ui/windows/NormalPlace.h"

namespace tavrin {

namespace {

constexpr int kApart = 32;  // pixels from one title bar to the next, on both axes

// As far left and up as the screen asks for; its left top corner comes first.
QPoint OnScreen(QPoint place, QSize size, const QRect& screen) {
    const auto bound = [](int at, int length, int begin, int room) {
        return std::clamp(at, begin, std::max(begin, begin + room - length));
    };
    return {bound(place.x(), size.width(), screen.x(), screen.width()),
            bound(place.y(), size.height(), screen.y(), screen.height())};
}

bool IsTaken(QPoint place, const std::vector<QPoint>& taken) {
    return std::any_of(taken.begin(), taken.end(),
                       [&](QPoint other) { return (other - place).manhattanLength() < kApart; });
}

}  // namespace

bool WindowPlaces::RestoreWindow(QWidget& window, const std::string& name, RestoreParts parts) {
    constexpr int kMissing = std::numeric_limits<int>::min();
    const int x = m_profile.GetInt(name + ".x", kMissing);
    const int y = m_profile.GetInt(name + ".y", kMissing);
    if (x == kMissing || y == kMissing) return false;
    const QSize screen = QGuiApplication::primaryScreen()->virtualSize();
    if (parts.size) {
        const QSize size(m_profile.GetInt(name + ".width", 0), m_profile.GetInt(name + ".height", 0));
        if (!size.isEmpty()) window.resize(size.boundedTo(screen));
    } else if (window.size().isEmpty()) {
        return false;
    }
    window.move(std::min(x, screen.width() - kKeptOnScreen), std::min(y, screen.height() - kKeptOnScreen));
    if (parts.visible && m_profile.GetInt(name + ".visible", 0) != 0) window.show();
    return true;
}

void WindowPlaces::RestoreMaximized(QWidget& window, const std::string& name) {
    if (m_profile.GetInt(name + ".maximized", 0) == 0) return;
    window.setWindowState(window.windowState() | Qt::WindowMaximized);
}

void WindowPlaces::SaveWindow(const QWidget& window, const std::string& name) {
    if (!window.isMinimized()) Store(window, name, {window.pos(), window.size()});
}

void WindowPlaces::SaveWindow(const QWidget& window, const std::string& name, const NormalPlace& normal) {
    if (window.isMinimized()) return;
    Store(window, name, {normal.Position(), normal.Size()});
    m_profile.SetInt(name + ".maximized", window.isMaximized() ? 1 : 0);
}

void WindowPlaces::Store(const QWidget& window, const std::string& name, const QRect& place) {
    m_profile.SetInt(name + ".x", place.x());
    m_profile.SetInt(name + ".y", place.y());
    m_profile.SetInt(name + ".width", place.width());
    m_profile.SetInt(name + ".height", place.height());
    m_profile.SetInt(name + ".visible", window.isVisible() ? 1 : 0);
}

QPoint FirstPlace(const FirstPlaceRoom& room, QSize size, QPointF share) {
    const QSize free = room.ground.size() - size;
    const QPoint offset(qRound(share.x() * free.width()), qRound(share.y() * free.height()));
    const QPoint first = OnScreen(room.ground.topLeft() + offset, size, room.screen);
    // Away from another towards where there is more room.
    const QPoint middle = first + QPoint(size.width(), size.height()) / 2;
    const QPoint step(middle.x() > room.screen.center().x() ? -kApart : kApart,
                      middle.y() > room.screen.center().y() ? -kApart : kApart);
    QPoint place = first;
    for (size_t tries = 0; tries < room.taken.size() && IsTaken(place, room.taken); ++tries)
        place = OnScreen(place + step, size, room.screen);
    return place;
}

}  // namespace tavrin
