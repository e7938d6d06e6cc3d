// SPDX-License-Identifier: Apache-2.0
// What the program does when nothing else is to be done: the checks after its start, and the alert that
// waits.
#pragma once

#include <functional>
#include <memory>

class QWidget;

namespace tavrin {

class CTvApp;
class Splash;

// Belongs to the frame.
class IdleWork {
  public:
    struct Needs {
        std::function<void()> quit;     // the program cannot go on
        std::function<void()> started;  // the checks after the start have passed
    };

    // Takes the splash over.
    IdleWork(CTvApp& app, QWidget& frame, std::unique_ptr<Splash> splash, Needs needs);
    ~IdleWork();

    // Once the frame has been shown; nothing if the splash is gone.
    void ShowSplash();
    // One idle pass. Does nothing while a box of an earlier pass is still open.
    void Step();

  private:
    // False if the program cannot go on.
    bool CheckStart();
    void ShowPendingAlerts();

    CTvApp& m_app;
    QWidget& m_frame;
    std::unique_ptr<Splash> m_splash;
    Needs m_needs;
    bool m_startupChecked = false;
    bool m_isShowing = false;  // a box is open
};

}  // namespace tavrin
