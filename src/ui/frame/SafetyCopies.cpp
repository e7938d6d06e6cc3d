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

SafetyCopies::SafetyCopies(Workspace& work)
    : m_work(work), m_recovery(StateDirectory(work.app.GetSite().environment), work.app.GetSite().report) {
    const int interval = Recovery::IntervalOf(work.app.GetSite().settings);
    m_timer.callOnTimeout([this] { Update(); });
    if (interval > 0) m_timer.start(std::chrono::seconds(interval));
}

void SafetyCopies::Update() { m_recovery.Update(m_work.document); }

void SafetyCopies::Discard() { m_recovery.Discard(); }

void SafetyCopies::OfferLeftovers(QWidget& frame, const std::function<bool()>& settleChanges) {
    for (const Recovery::Found& found : m_recovery.FindLeftovers()) {
        switch (AskAbout(frame, found)) {
            case Answer::kRecover:
                // One document holds one copy; the others are offered by the next start.
                if (!settleChanges()) return;
                m_recovery.Restore(found, m_work.commands, m_work.document);
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
