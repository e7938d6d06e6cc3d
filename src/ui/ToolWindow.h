// The base of the modeless windows that float beside the main frame.
#pragma once

#include <QWidget>
#include <functional>

class QCloseEvent;

namespace tavrin {

// Lives as long as the frame, its parent. Its close button hides it.
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

    // Called when the window was shown or hidden by whatever way.
    void OnShownOrHidden(std::function<void()> observer) { m_observer = std::move(observer); }

  protected:
    // Called when the user closes the window; it is hidden after that.
    virtual void Closing() {}

    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    std::function<void()> m_observer;
};

}  // namespace tavrin
