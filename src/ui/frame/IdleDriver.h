// SPDX-License-Identifier: Apache-2.0
// Runs the idle step when the event loop has nothing more urgent to do.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

namespace tavrin {

// Watches the application's events: after anything that the user or a child did, the step runs once. Moves
// of the mouse, of windows, and timers do not count.
class IdleDriver : public QObject {
  public:
    explicit IdleDriver(std::function<void()> step);
    ~IdleDriver() override;

    // The step is to run soon, for a reason that is no event.
    void Request();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    QTimer m_timer;  // not running: nothing has happened since the last step
};

}  // namespace tavrin
