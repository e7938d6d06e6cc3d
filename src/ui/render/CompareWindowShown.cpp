// SPDX-License-Identifier: Apache-2.0
// What the window "Compare Renders" shows, and when it finds that out.
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTabWidget>
#include <set>
#include <utility>

#include "document/Change.h"
#include "render/RenderSession.h"
#include "ui/base/Text.h"
#include "ui/render/CompareWindow.h"
#include "ui/render/DifferenceList.h"
#include "ui/render/SourceColumns.h"

namespace tavrin {

namespace {

constexpr int kMostNotes = 3;  // that are seen; the tip has all

}  // namespace

void CompareWindow::FillChoosers() {
    const std::deque<std::string>& entries = m_needs.comparison.session.History().Entries();
    int older = m_comparison.Older();
    int newer = m_comparison.Newer();
    if (m_followsNewest) {
        std::string name;
        if (entries.empty() || !RenderHistory::ParseEntry(entries.front(), older, name))
            older = Comparison::kDesk;
        newer = Comparison::kDesk;
    }
    if (older != m_comparison.Older() || newer != m_comparison.Newer()) {
        m_source->Show(nullptr);
        m_comparison.Choose(older, newer);
    }
    FillChooser(*m_older, older);
    FillChooser(*m_newer, newer);
    m_list->SetNames(Shown(m_comparison.NameOf(older)), Shown(m_comparison.NameOf(newer)));
}

// A render that has left the history stays chosen, with what is known of it.
void CompareWindow::FillChooser(QComboBox& chooser, int chosen) {
    const QSignalBlocker quiet(chooser);
    chooser.clear();
    chooser.addItem(Shown(m_comparison.NameOf(Comparison::kDesk)), Comparison::kDesk);
    for (const std::string& entry : m_needs.comparison.session.History().Entries()) {
        int number = 0;
        std::string name;
        if (RenderHistory::ParseEntry(entry, number, name)) chooser.addItem(Shown(entry), number);
    }
    if (chooser.findData(chosen) < 0)
        chooser.addItem(Shown(m_comparison.NameOf(chosen)) + " (no longer in the history)", chosen);
    chooser.setCurrentIndex(chooser.findData(chosen));
}

void CompareWindow::ChosenByHand() {
    m_followsNewest = false;
    m_source->Show(nullptr);
    m_comparison.Choose(m_older->currentData().toInt(), m_newer->currentData().toInt());
    FillChoosers();
    Refresh();
}

void CompareWindow::Compare(int older, int newer) {
    m_followsNewest = false;
    m_source->Show(nullptr);
    m_comparison.Choose(older, newer);
    FillChoosers();
    ComeUp();
    Refresh();
}

void CompareWindow::Follow(const Change& change) {
    if (change.HasBoxes() || !change.buttons.empty() || !change.tuned.empty() || change.wires ||
        change.options || change.settings)
        DeskChanged();
}

void CompareWindow::LibraryChanged() {
    m_source->Show(nullptr);
    m_comparison.LibraryChanged();
    DeskChanged();
}

void CompareWindow::DeskChanged() {
    m_isStale = true;
    if (IsUp()) m_pause.start();
}

void CompareWindow::HistoryChanged() {
    const int older = m_comparison.Older();
    FillChoosers();
    if (IsUp() && older != m_comparison.Older()) Refresh();
}

void CompareWindow::SetLocked(bool locked) {
    m_isLocked = locked;
    UpdateButtons();
}

void CompareWindow::showEvent(QShowEvent* event) {
    ToolWindow::showEvent(event);
    m_isStale = true;
    m_pause.start(0);
}

void CompareWindow::RefreshWhenIdle() {
    m_pause.setInterval(kPause);
    const bool isBusy =
        QGuiApplication::mouseButtons() != Qt::NoButton || m_needs.comparison.document.edits.IsOpen();
    if (isBusy) {
        ++m_delays;
        m_pause.start();
    } else if (IsUp()) {
        Refresh();
    }
}

void CompareWindow::Refresh() {
    ++m_refreshes;
    m_pause.stop();
    m_source->Show(nullptr);
    if (std::exchange(m_isStale, false)) m_comparison.DeskChanged();
    std::set<std::string> onDesk;
    for (const auto& box : m_needs.comparison.document.m_boxes) onDesk.insert(box->BoxTitleWid());
    m_list->Show(m_comparison.Differences(),
                 [&onDesk](const Difference& difference) { return onDesk.contains(difference.box); });
    m_parts->setTabText(static_cast<int>(Part::kDifferences),
                        QString("&Differences (%1)").arg(m_comparison.Differences().size()));
    if (m_parts->currentIndex() == static_cast<int>(Part::kSource)) RefreshSource();
    RefreshPictures();
    RefreshNotes();
    UpdateButtons();
}

void CompareWindow::RefreshSource() {
    m_source->Show(&m_comparison.Source());
    const auto count = m_source->ChangeCount();
    m_changes->setText(count == 0   ? QString("No line differs")
                       : count == 1 ? QString("1 change")
                                    : QString("%1 changes").arg(count));
    RefreshNotes();
    UpdateButtons();
}

void CompareWindow::RefreshNotes() {
    std::vector<std::string> notes = m_comparison.Notes();
    if (m_needs.comparison.session.History().Entries().empty() &&
        m_comparison.Older() == m_comparison.Newer())
        notes.insert(notes.begin(),
                     "Nothing has been rendered yet: renders are compared with the desk here.");
    QStringList all;
    for (const std::string& note : notes) all += Shown(note);
    QStringList seen = all.mid(0, kMostNotes);
    if (all.size() > seen.size()) seen += QString("and %1 more").arg(all.size() - seen.size());
    m_notes->setText(seen.join('\n'));
    m_notes->setToolTip("<qt>" + all.join('\n').toHtmlEscaped().replace('\n', "<br>") + "</qt>");
    m_notes->setVisible(!all.isEmpty());
}

void CompareWindow::RefreshPictures() {
    QString why;
    if (m_comparison.Older() == m_comparison.Newer()) {
        why = "Choose two renders to compare their pictures.";
    } else if (m_comparison.HasDesk()) {
        why = "The desk has no picture of its own: render it, and compare that render.";
    } else {
        for (const int number : {m_comparison.Older(), m_comparison.Newer()}) {
            if (why.isEmpty() && m_needs.comparison.session.records.PictureOf(number).empty())
                why = Shown(m_comparison.NameOf(number)) + " has left no picture.";
        }
    }
    m_comparePictures->setEnabled(why.isEmpty());
    m_pictures->setText(!why.isEmpty() ? why
                                       : Shown(m_comparison.NameOf(m_comparison.Older()) + " and " +
                                               m_comparison.NameOf(m_comparison.Newer()) +
                                               " are compared in the picture window."));
}

}  // namespace tavrin
