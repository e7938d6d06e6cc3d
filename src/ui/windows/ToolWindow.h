// SPDX-License-Identifier: Apache-2.0
// The base of the modeless windows that float over the main frame.
#pragma once

#include <QPoint>
#include <QWidget>
#include <functional>

class QCloseEvent;

namespace tavrin {

struct Change;

// Lives as long as the frame, its parent, which it is never below once the frame is on the screen. Its close
// button hides it.
class ToolWindow : public QWidget {
  public:
    // `frame` may be null in tests.
    ToolWindow(const QString& title, QWidget* frame);

    // What the check mark of its command shows: visible and not minimized.
    bool IsUp() const { return isVisible() && !isMinimized(); }
    // The rule of a toggling command: hides a window that is up, restores one that is minimized, and brings
    // any other to the top, without moving, sizing or activating it.
    void Toggle();
    // The rule of a command that never hides: restores, or brings to the top.
    void ComeUp();

    // Becomes the active window, with the keys where they do the most.
    virtual void TakeKeys() { activateWindow(); }

    void setVisible(bool visible) override;
    // Asked for a place, once, when the window comes up first: for one that was never placed.
    void PlaceWhenFirstShown(std::function<QPoint()> place) { m_firstPlace = std::move(place); }
    // It has a place to be kept.
    bool IsPlaced() const { return !m_firstPlace; }

    // What the frame tells all its windows; each heeds what changes what it shows.
    virtual void Follow(const Change&) {}  // of the document, of whatever kind
    virtual void TitleChanged() {}         // the document's name, its shader's type
    virtual void LibraryChanged() {}       // the operators were looked for anew
    virtual void HistoryChanged() {}       // a render was started
    virtual void SetLocked(bool) {}        // whether the desk is locked

    // Called when the window was shown or hidden by whatever way.
    void OnShownOrHidden(std::function<void()> observer) { m_observer = std::move(observer); }

  protected:
    // Called when the user closes the window; it is hidden after that.
    virtual void Closing() {}

    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    std::function<QPoint()> m_firstPlace;
    std::function<void()> m_observer;
};

}  // namespace tavrin
