// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ArgumentEditor.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>
#include <memory>
#include <unordered_map>

#include "document/TvDoc.h"
#include "ui/sliders/ArgumentRow.h"
#include "ui/windows/DialogUnits.h"

namespace tavrin {

namespace {

constexpr int kUnitsWide = 393;  // of a row, at first
constexpr int kRowsHigh = 16;
constexpr int kNarrowest = 220;  // pixels; columns are of no use below
constexpr size_t kBeside = 1;    // rows with a window above and below those in view
constexpr size_t kMostSpare = 4;

}  // namespace

CArgumentEditor::CArgumentEditor(QWidget* frame, CTvDoc& document)
    : ToolWindow("Argument Editor [F5]", frame), m_document(document) {
    m_client = new QWidget(this);
    m_nothing = new QLabel("No free inputs", m_client);
    m_nothing->setAlignment(Qt::AlignCenter);
    m_nothing->setEnabled(false);
    m_bar = new QScrollBar(Qt::Vertical, this);
    connect(m_bar, &QScrollBar::valueChanged, this, [this](int value) { SetScrollTop(value); });
    m_beforeDelete = document.beforeDelete.Add([this] { LetAllGo(); });
    MeasureRow();
    setMinimumSize(kNarrowest, m_rows.RowHeight());
    resize(DialogUnits(fontMetrics()).Across(kUnitsWide) + m_bar->sizeHint().width(),
           kRowsHigh * m_rows.RowHeight());
}

void CArgumentEditor::MeasureRow() {
    const auto sample = std::make_unique<CArgumentRow>(m_client, m_document, [](const CArgumentRow&) {});
    m_rows.SetRowHeight(sample->MeasuredHeight());
}

void CArgumentEditor::Follow(const Change& change) {
    if (change.replaced) m_rows.SetScrollTop(0);
    if (!isVisible()) return;
    if (change.HasBoxes() || change.wires) {
        SyncRows();
        return;
    }
    for (const COpButton* button : change.buttons) RefreshRow(*button);
    for (const COpButton* button : change.tuned) RefreshRow(*button);
}

void CArgumentEditor::SyncRows() {
    if (!isVisible()) return;
    m_rows.SetButtons(m_document.CollectUnconnectedInputs());
    MatchWindows();
    PlaceRows();
}

void CArgumentEditor::RefreshRow(const COpButton& button) {
    for (const auto& [row, window] : m_windows) {
        if (window->Button() != &button) continue;
        window->Refresh();
        ++m_refreshes;
        return;
    }
}

// Each window goes to the row where its button is now; what has changed of the button is shown.
void CArgumentEditor::MatchWindows() {
    std::unordered_map<const COpButton*, CArgumentRow*> known;
    for (const auto& [row, window] : m_windows) {
        if (window->Button() != nullptr) {
            known.emplace(window->Button(), window);
        } else {
            m_spare.push_back(window);
        }
    }
    m_windows.clear();
    for (size_t row = 0; row < m_rows.Count() && !known.empty(); ++row) {
        const auto found = known.find(m_rows.ButtonAt(row));
        if (found == known.end()) continue;
        found->second->Refresh();
        ++m_refreshes;
        m_windows.emplace(row, found->second);
        known.erase(found);
    }
    for (const auto& [button, window] : known) m_spare.push_back(window);
    for (CArgumentRow* window : m_spare) window->LetGo();
}

// The document is about to empty itself.
void CArgumentEditor::LetAllGo() {
    m_rows.SetButtons({});
    MatchWindows();
    PlaceRows();
}

void CArgumentEditor::SetScrollTop(int offset) {
    m_rows.SetScrollTop(offset);
    PlaceRows();
}

void CArgumentEditor::PlaceRows() {
    if (!isVisible()) return;
    const ArgumentRows::Span span = m_rows.InView(kBeside);
    SpareWindowsOutOf(span);
    for (size_t row = span.begin; row < span.end; ++row) PlaceWindow(row);
    for (const auto& [row, window] : m_windows) {
        if (!span.Contains(row)) window->move(0, m_rows.TopOf(row));
    }
    DropSpareWindows();
    m_nothing->setVisible(m_rows.Count() == 0);
    UpdateScrollBar();
}

// All but the row with the focus, which the user may go on typing in.
void CArgumentEditor::SpareWindowsOutOf(const ArgumentRows::Span& span) {
    std::erase_if(m_windows, [&](const auto& entry) {
        const auto& [row, window] = entry;
        if (window->Button() != nullptr && (span.Contains(row) || window->FocusedField())) return false;
        window->LetGo();
        m_spare.push_back(window);
        return true;
    });
}

void CArgumentEditor::PlaceWindow(size_t row) {
    COpButton* button = m_rows.ButtonAt(row);
    if (button == nullptr) return;  // gone in an act that is not told yet
    const auto [entry, isNew] = m_windows.try_emplace(row, nullptr);
    if (isNew) entry->second = SpareWindow();
    CArgumentRow& window = *entry->second;
    window.setGeometry(0, m_rows.TopOf(row), m_client->width(), m_rows.RowHeight());
    if (isNew) {
        window.SetButton(*button);
        ++m_refreshes;
    }
    window.show();
}

CArgumentRow* CArgumentEditor::SpareWindow() {
    if (m_spare.empty()) {
        return new CArgumentRow(m_client, m_document,
                                [this](const CArgumentRow& window) { ShowWholeRow(window); });
    }
    CArgumentRow* window = m_spare.back();
    m_spare.pop_back();
    return window;
}

// A few stay for the next step. The others may be in the middle of an event, as of the wheel that was turned
// over them.
void CArgumentEditor::DropSpareWindows() {
    for (CArgumentRow* window : m_spare) window->hide();
    for (; m_spare.size() > kMostSpare; m_spare.pop_back()) m_spare.back()->deleteLater();
}

void CArgumentEditor::UpdateScrollBar() {
    const QSignalBlocker silent(m_bar);
    m_bar->setRange(0, m_rows.LastScrollTop());
    m_bar->setSingleStep(m_rows.RowHeight());
    m_bar->setPageStep(m_client->height());
    m_bar->setValue(m_rows.ScrollTop());
}

std::optional<ArgumentPlace> CArgumentEditor::FocusedPlace() const {
    for (const auto& [row, window] : m_windows) {
        if (const auto field = window->FocusedField()) return ArgumentPlace{row, *field};
    }
    return std::nullopt;
}

// One that is typed in may have been scrolled away.
void CArgumentEditor::ShowWholeRow(const CArgumentRow& window) {
    const auto found = std::find_if(m_windows.begin(), m_windows.end(),
                                    [&](const auto& entry) { return entry.second == &window; });
    if (found == m_windows.end()) return;
    const int before = m_rows.ScrollTop();
    m_rows.BringIntoView(found->first);
    if (m_rows.ScrollTop() != before) PlaceRows();
}

bool CArgumentEditor::FocusOn(const std::optional<ArgumentPlace>& place, Qt::FocusReason reason) {
    if (!place) return false;
    m_rows.BringIntoView(place->row);
    PlaceRows();
    const auto window = m_windows.find(place->row);
    if (window == m_windows.end()) return false;
    window->second->Control(place->field).setFocus(reason);
    return true;
}

bool CArgumentEditor::focusNextPrevChild(bool next) {
    return FocusOn(m_rows.Next(FocusedPlace(), next), next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

void CArgumentEditor::keyPressEvent(QKeyEvent* event) {
    const bool isDown = event->key() == Qt::Key_Down || event->key() == Qt::Key_PageDown;
    switch (event->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
            if (const auto from = FocusedPlace())
                FocusOn(m_rows.Beyond(*from, isDown), isDown ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return;
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            m_bar->triggerAction(isDown ? QAbstractSlider::SliderPageStepAdd
                                        : QAbstractSlider::SliderPageStepSub);
            return;
        default:
            ToolWindow::keyPressEvent(event);
    }
}

void CArgumentEditor::showEvent(QShowEvent* event) {
    ToolWindow::showEvent(event);
    SyncRows();
}

void CArgumentEditor::resizeEvent(QResizeEvent* event) {
    ToolWindow::resizeEvent(event);
    const int barWidth = m_bar->sizeHint().width();
    m_bar->setGeometry(width() - barWidth, 0, barWidth, height());
    m_client->setGeometry(0, 0, width() - barWidth, height());
    m_nothing->setGeometry(m_client->rect());
    m_rows.SetClientHeight(m_client->height());
    PlaceRows();
}

void CArgumentEditor::wheelEvent(QWheelEvent* event) {
    QCoreApplication::sendEvent(m_bar, event);
    event->accept();
}

void CArgumentEditor::changeEvent(QEvent* event) {
    ToolWindow::changeEvent(event);
    if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
    MeasureRow();
    PlaceRows();
}

}  // namespace tavrin
