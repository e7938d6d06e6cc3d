// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/UpdateOffer.h"

#include <QApplication>
#include <algorithm>
#include <utility>

#include "app/Workspace.h"
#include "desk/BoxUpdate.h"
#include "text/OutOfMemory.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/dialogs/Messages.h"
#include "ui/frame/StatusBox.h"

namespace tavrin {

namespace {

constexpr int kTimeToRead = 10;   // seconds, of a warning
constexpr int kTimeToNotice = 3;  // seconds; what comes meanwhile is not shown
constexpr size_t kMostLines = 20;

std::string CountOf(size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : what.ends_with("x") ? "es" : "s");
}

std::string TextOf(const std::vector<StaleOperator>& stale) {
    std::string text = stale.size() == 1
                           ? "The definition of an operator has changed:\n"
                           : "The definitions of " + CountOf(stale.size(), "operator") + " have changed:\n";
    for (size_t i = 0; i < std::min(stale.size(), kMostLines); ++i)
        text += "\n  " + stale[i].name + " (" + CountOf(stale[i].boxes, "box") + ")";
    if (stale.size() > kMostLines) text += "\n  and " + std::to_string(stale.size() - kMostLines) + " more";
    return text +
           "\n\nBring these boxes up to date?  Values, casts, arguments and wires stay where the definition "
           "still has "
           "them; the log tells what is lost.  Undo brings the old boxes back.";
}

}  // namespace

UpdateOffer::UpdateOffer(Needs needs)
    : m_needs(std::move(needs)), m_watch(m_needs.work.document, m_needs.work.app) {}

// A box that came up there would take away what the user is about, or do what the desk is locked against.
// What ends any of it makes another idle pass.
bool UpdateOffer::IsInHand() const {
    const Workspace& work = m_needs.work;
    return work.document.lock != 0 || work.document.edits.IsOpen() || !work.desk.m_pendingBoxes.empty() ||
           m_needs.desk.Gestures().Current() != DeskGestures::Kind::kIdle || m_needs.isScriptRunning() ||
           QApplication::mouseButtons() != Qt::NoButton || QApplication::activePopupWidget() != nullptr ||
           QApplication::activeModalWidget() != nullptr || !m_needs.frame.isVisible();
}

void UpdateOffer::OnIdle() {
    if (m_due == Look::kNone || m_isAsking || IsInHand()) return;
    const bool isAtAll = std::exchange(m_due, Look::kNone) == Look::kAtAll;
    m_needs.work.app.RestoreWorkDirectory();
    Report& report = m_needs.work.app.GetSite().report;
    WatchFindings findings;
    WithinMemory(report, "reading the operators that have changed", [&] {
        findings = isAtAll ? m_watch.LookAtAll() : m_watch.LookAtFiles();
        return true;
    });
    for (const std::string& note : findings.notes) report.LogLine("WARNING: %s", note.c_str());
    TellProblems(findings.problems, isAtAll);
    if (findings.stale.empty()) return;
    m_isAsking = true;
    const bool isWanted = Ask(findings.stale);
    m_isAsking = false;
    if (!isWanted) {
        m_watch.Declined(findings.stale);
        return;
    }
    Update(findings.stale);
    m_watch.Updated(findings.stale);
}

void UpdateOffer::TellProblems(const std::vector<std::string>& problems, bool byAlert) {
    if (problems.empty()) return;
    Report& report = m_needs.work.app.GetSite().report;
    std::string all;
    for (const std::string& problem : problems) {
        if (!byAlert) report.LogLine("WARNING: %s", problem.c_str());
        all += (all.empty() ? "" : "\n\n") + problem;
    }
    if (byAlert) {
        report.Alert("%s", all.c_str());
    } else {
        m_needs.statusBox.SetStatus("WARNING: " + all, kTimeToRead);
    }
}

bool UpdateOffer::Ask(const std::vector<StaleOperator>& stale) {
    return AskQuestion(&m_needs.frame, "Operators Changed", Shown(TextOf(stale)), "&Update", "&Keep");
}

void UpdateOffer::Update(const std::vector<StaleOperator>& stale) {
    std::vector<std::string> names;
    for (const StaleOperator& one : stale) names.push_back(one.name);
    const BoxUpdateResult result =
        BoxUpdate(m_needs.work.document, m_needs.work.desk, m_needs.work.app).Run(names);
    std::string text = "Updated: " + CountOf(result.boxes, "box");
    if (result.losses > 0)
        text += "; what is lost stands in the log (" + CountOf(result.losses, "line") + ")";
    if (!result.failed.empty()) text += "; not updated: " + CountOf(result.failed.size(), "operator");
    m_needs.statusBox.SetStatus(text, kTimeToNotice);
}

}  // namespace tavrin
