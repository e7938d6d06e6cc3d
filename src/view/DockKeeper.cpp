// SPDX-License-Identifier: Apache-2.0
#include "view/DockKeeper.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QWidget>
#include <utility>

namespace tavrin {

namespace {

constexpr int kKeptOnScreen = 100;  // pixels of a window that is brought back

}  // namespace

DockKeeper::DockKeeper(QWidget& window, QSettings& settings) : m_window(window), m_settings(settings) {
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRest);
    m_rest.callOnTimeout([this] { CameToRest(); });
    m_window.installEventFilter(this);
}

void DockKeeper::Restore() {
    const QRect screen = m_window.screen()->availableGeometry();
    const QSize size = m_settings.value("Window/size").toSize();
    if (!size.isEmpty()) m_window.resize(size.boundedTo(screen.size()));
    const QVariant side = m_settings.value("Window/side");
    if (side.isValid())
        m_dock = Dock{static_cast<Dock::Side>(qBound(0, side.toInt(), 3)),
                      m_settings.value("Window/offset").toInt()};
    const QVariant place = m_settings.value("Window/place");
    m_wasPlaced = place.isValid();
    if (!m_wasPlaced) return;
    const QSize all = QGuiApplication::primaryScreen()->virtualSize();
    const QPoint at = place.toPoint();
    m_window.move(qBound(kKeptOnScreen - m_window.width(), at.x(), all.width() - kKeptOnScreen),
                  qBound(0, at.y(), all.height() - kKeptOnScreen));
}

QRect DockKeeper::Frame() const { return m_window.frameGeometry(); }

void DockKeeper::FrameMoved(const std::string& desk, const QRect& frame) {
    const bool isNew = !m_frames.contains(desk);
    m_frames[desk] = frame;
    if (!m_wasPlaced) {
        m_wasPlaced = true;
        m_dock = Dock::First(Frame().size(), frame, m_window.screen()->availableGeometry());
    }
    // The desk that it was docked to has gone, or is that of an earlier time.
    if (isNew && m_dock && m_desk.empty()) m_desk = desk;
    if (m_dock && desk == m_desk) Follow();
}

void DockKeeper::DeskWent(const std::string& desk) {
    m_frames.erase(desk);
    if (desk != m_desk) return;
    // The dock is for the next desk that comes, whatever move of the window is just over.
    m_desk.clear();
    m_rest.stop();
}

void DockKeeper::Follow() { MoveTo(m_dock->Place(Frame().size(), m_frames.at(m_desk))); }

void DockKeeper::MoveTo(QPoint place) {
    const QPoint from = m_window.pos();
    // A window manager that will not have it there is asked once.
    const bool isRefused = m_asked && m_asked->to == place && m_asked->from == from;
    if (m_window.isMaximized() || m_window.isFullScreen() || isRefused) return;
    m_asked = Asked{place, from};
    if (place != from) m_window.move(place);
}

bool DockKeeper::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) m_rest.start();
    return QObject::eventFilter(object, event);
}

void DockKeeper::CameToRest() {
    if (!m_window.isVisible() || m_window.isMinimized() || m_window.isMaximized() || m_window.isFullScreen())
        return;
    // Before any desk has told where it stands, nothing is known.
    if (!m_frames.empty()) {
        m_wasPlaced = true;
        m_dock.reset();
        const std::string before = std::exchange(m_desk, {});
        if (m_frames.contains(before)) TryDock(before);
        for (const auto& [desk, frame] : m_frames) {
            if (!m_dock) TryDock(desk);
        }
        if (m_dock) Follow();
    }
    Store();
}

void DockKeeper::TryDock(const std::string& desk) {
    m_dock = Dock::Of(Frame(), m_frames.at(desk));
    if (m_dock) m_desk = desk;
}

void DockKeeper::Store() {
    m_settings.setValue("Window/size", m_window.size());
    if (m_wasPlaced) m_settings.setValue("Window/place", m_window.pos());
    if (m_dock) {
        m_settings.setValue("Window/side", static_cast<int>(m_dock->side));
        m_settings.setValue("Window/offset", m_dock->offset);
    } else if (m_wasPlaced) {
        m_settings.remove("Window/side");
        m_settings.remove("Window/offset");
    }
}

}  // namespace tavrin
