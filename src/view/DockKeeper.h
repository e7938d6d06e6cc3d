// SPDX-License-Identifier: Apache-2.0
// Keeps the picture window where the user has put it: docked to a desk, or anywhere.
#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>
#include <map>
#include <optional>
#include <string>

#include "view/Dock.h"

class QSettings;
class QWidget;

namespace tavrin {

// Watches its window, which outlives it. A move that is not its own and has come to rest is the user's: near
// a desk it docks, away from it it lets go. The place is kept in the settings as it changes.
class DockKeeper : public QObject {
  public:
    // How long a window is to be at rest for a move of it to be over, in milliseconds.
    static constexpr int kRest = 200;

    DockKeeper(QWidget& window, QSettings& settings);

    // Before the window is shown first: its size and place of the last time.
    void Restore();
    // Where a desk's main window stands now; it has gone.
    void FrameMoved(const std::string& desk, const QRect& frame);
    void DeskWent(const std::string& desk);

    // Whether it is known where the window stands before a desk has told where that is.
    bool IsSettled() const { return m_wasPlaced && !m_dock; }
    bool IsDocked() const { return m_dock.has_value(); }
    // To which desk; empty while that is not there.
    const std::string& DockedTo() const { return m_desk; }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void CameToRest();
    void TryDock(const std::string& desk);
    void Follow();
    void MoveTo(QPoint place);
    void Store();
    QRect Frame() const;

    QWidget& m_window;
    QSettings& m_settings;
    std::map<std::string, QRect> m_frames;  // of desks
    std::optional<Dock> m_dock;
    std::string m_desk;
    struct Asked {
        QPoint to, from;
    };
    std::optional<Asked> m_asked;  // of the window manager last
    bool m_wasPlaced = false;      // ever, by whomever
    QTimer m_rest;
};

}  // namespace tavrin
