// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/IdleWork.h"

#include <QWidget>

#include "app/TvApp.h"
#include "ui/base/Text.h"
#include "ui/dialogs/Messages.h"
#include "ui/frame/Splash.h"

namespace tavrin {

IdleWork::IdleWork(CTvApp& app, QWidget& frame, std::unique_ptr<Splash> splash, Needs needs)
    : m_app(app), m_frame(frame), m_splash(std::move(splash)), m_needs(std::move(needs)) {}

IdleWork::~IdleWork() = default;

void IdleWork::ShowSplash() {
    if (m_splash == nullptr) return;
    // The toolkit turns the event loop while it shows a splash. A step meanwhile would destroy the splash
    // below its own show, and run boxes before the frame is up.
    m_isShowing = true;
    m_splash->ShowOverFrame();
    m_isShowing = false;
}

void IdleWork::Step() {
    if (m_isShowing) return;
    const bool mayGoOn = m_startupChecked || CheckStart();
    ShowPendingAlerts();
    if (!mayGoOn) m_needs.quit();
}

bool IdleWork::CheckStart() {
    if (m_splash != nullptr && m_splash->TimeLeft() > 0 && !m_app.GetSite().report.HasPending()) return true;
    m_splash.reset();
    m_frame.update();
    m_startupChecked = true;
    const auto problem = m_app.StartUpProblem();
    if (!problem) {
        // It may ask: an alert that waits comes behind its questions.
        m_isShowing = true;
        m_needs.started();
        m_isShowing = false;
        return true;
    }
    if (problem->isFatalError) {
        m_isShowing = true;
        ShowStop(&m_frame, "Fatal Error", Shown(problem->text));
        m_isShowing = false;
    } else {
        m_app.GetSite().report.Alert("%s", problem->text.c_str());
    }
    return false;
}

// An alert that is raised while a box is open has found nobody to show it, so it follows at once.
void IdleWork::ShowPendingAlerts() {
    Report& report = m_app.GetSite().report;
    while (const auto alert = report.TakePending()) {
        if (!alert->file.empty()) m_app.OpenInEditor(alert->file);
        m_isShowing = true;
        ShowStop(m_frame.isVisible() ? &m_frame : nullptr, "Alert", Shown(alert->text));
        m_isShowing = false;
        report.LogLine("ALERT: %s", alert->text.c_str());
    }
}

}  // namespace tavrin
