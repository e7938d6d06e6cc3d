#include "ui/frame/WindowPlaces.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include "base/Profile.h"

namespace tavrin {

void WindowPlaces::RestoreWindow(QWidget& window, const std::string& name, RestoreParts parts) {
    constexpr int kMissing = std::numeric_limits<int>::min();
    const int x = m_profile.GetInt(name + ".x", kMissing);
    const int y = m_profile.GetInt(name + ".y", kMissing);
    if (x == kMissing || y == kMissing) return;
    const QSize screen = QGuiApplication::primaryScreen()->virtualSize();
    if (parts.size) {
        const QSize size(m_profile.GetInt(name + ".width", 0), m_profile.GetInt(name + ".height", 0));
        if (!size.isEmpty()) window.resize(size.boundedTo(screen));
    } else if (window.size().isEmpty()) {
        return;
    }
    window.move(std::min(x, screen.width() - kKeptOnScreen), std::min(y, screen.height() - kKeptOnScreen));
    if (parts.visible && m_profile.GetInt(name + ".visible", 0) != 0) window.show();
}

void WindowPlaces::SaveWindow(const QWidget& window, const std::string& name) {
    if (window.isMinimized()) return;
    m_profile.SetInt(name + ".x", window.x());
    m_profile.SetInt(name + ".y", window.y());
    m_profile.SetInt(name + ".width", window.width());
    m_profile.SetInt(name + ".height", window.height());
    m_profile.SetInt(name + ".visible", window.isVisible() ? 1 : 0);
}

}  // namespace tavrin
