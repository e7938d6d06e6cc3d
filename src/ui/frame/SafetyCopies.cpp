// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/SafetyCopies.h"

#include <QDateTime>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>

#include "app/Workspace.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr std::chrono::microseconds kSlice{2000};  // of the time between two frames

enum class Answer { kRecover, kDiscard, kLater };

Answer AskAbout(QWidget& frame, const Recovery::Found& found) {
    const QString time =
        QLocale::c().toString(QDateTime::fromSecsSinceEpoch(found.savedAt), "yyyy-MM-dd hh:mm");
    QString text =
        "Tavrin ended before " + Shown(found.title) + " was saved.  There is a copy of " + time + ".";
    if (found.documentIsNewer) text += "\nThe file itself was written after that.";
    QMessageBox box(QMessageBox::Question, "Recover", text, QMessageBox::NoButton, &frame);
    box.setTextFormat(Qt::PlainText);
    const auto* recover = box.addButton("&Recover", QMessageBox::AcceptRole);
    const auto* discard = box.addButton("&Discard Copy", QMessageBox::DestructiveRole);
    auto* later = box.addButton("Ask &Later", QMessageBox::RejectRole);
    box.setDefaultButton(qobject_cast<QPushButton*>(box.buttons().value(0)));
    box.setEscapeButton(later);
    box.exec();
    if (box.clickedButton() == recover) return Answer::kRecover;
    return box.clickedButton() == discard ? Answer::kDiscard : Answer::kLater;
}

}  // namespace

SafetyCopies::SafetyCopies(Workspace& work, MainThreadQueue& queue,
                           std::function<void(const std::string&)> tell)
    : m_work(work),
      m_recovery(StateDirectory(work.app.GetSite().environment), work.app.GetSite().report, queue),
      m_snapshot(work.document, work.app) {
    m_recovery.OnFailure(std::move(tell));
    m_look.callOnTimeout([this] { Look(); });
    m_prepare.callOnTimeout([this] { Prepare(); });
    // The other half is for making the text and writing it.
    const std::chrono::seconds interval(Recovery::IntervalOf(work.app.GetSite().settings));
    if (interval.count() > 0) m_look.start(std::chrono::milliseconds(interval) / 2);
}

bool SafetyCopies::IsInSafety() const { return m_hasCopy && m_snapshot.IsUpToDate(); }

void SafetyCopies::Look() {
    if (!m_work.document.IsModified()) {
        if (m_hasCopy) Discard();
    } else if (!m_prepare.isActive() && (!IsInSafety() || m_recovery.IsFailing())) {
        m_patience = QDeadlineTimer(m_look.intervalAsDuration() / 2);
        m_prepare.start(0);
    }
}

// Edits that come thick and fast do not put it off for ever.
void SafetyCopies::Prepare() {
    if (!m_snapshot.Advance(kSlice) && !m_patience.hasExpired()) return;
    m_prepare.stop();
    if (!m_work.document.IsModified()) return;
    m_recovery.UpdateBehind(m_work.document, m_snapshot);
    m_hasCopy = true;
}

void SafetyCopies::Update() {
    m_prepare.stop();
    m_recovery.Update(m_work.document);
    m_hasCopy = true;
}

void SafetyCopies::Discard() {
    m_prepare.stop();
    m_recovery.Discard();
    m_hasCopy = false;
}

void SafetyCopies::OfferLeftovers(QWidget& frame, const std::function<bool()>& settleChanges) {
    for (const Recovery::Found& found : m_recovery.FindLeftovers()) {
        switch (AskAbout(frame, found)) {
            case Answer::kRecover:
                // One document holds one copy; the others are offered by the next start.
                if (!settleChanges()) return;
                m_recovery.Restore(found, m_work.commands, m_work.document);
                m_hasCopy = true;
                return;
            case Answer::kDiscard:
                m_recovery.Remove(found);
                break;
            case Answer::kLater:
                break;
        }
    }
}

}  // namespace tavrin
