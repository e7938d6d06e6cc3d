// SPDX-License-Identifier: Apache-2.0
#include "ui/render/RenderHistoryDlg.h"

#include <QMenu>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <set>
#include <utility>
#include <vector>

#include "render/RenderHistory.h"
#include "ui/render/RenderRows.h"
#include "ui/render/RenderThumbnails.h"
#include "ui/windows/FinderList.h"
#include "ui/windows/WheelNotches.h"

namespace tavrin {

namespace {

constexpr QRgb kText = qRgb(0, 20, 0);
constexpr QRgb kBackground = qRgb(190, 190, 210);
constexpr int kColumns = 40;
constexpr int kRows = 8;

// Moves by a row for each notch of the wheel.
class HistoryList : public FinderList {
  public:
    using FinderList::FinderList;

  protected:
    void wheelEvent(QWheelEvent* event) override {
        if (event->angleDelta().y() == 0) {
            FinderList::wheelEvent(event);
            return;
        }
        verticalScrollBar()->setValue(verticalScrollBar()->value() - m_wheel.Turn(*event));
        event->accept();
    }

  private:
    WheelNotches m_wheel;
};

}  // namespace

CRenderHistoryDlg::CRenderHistoryDlg(QWidget* frame, Needs needs)
    : ToolWindow("Render History [F6]", frame), m_needs(std::move(needs)) {
    m_list = new HistoryList(this, FinderList::Colours{QColor(kBackground), QColor(kText)}, m_needs.open);
    m_thumbnails = new RenderThumbnails(m_list, [this] { m_list->viewport()->update(); });
    auto* rows = new RenderRows(
        m_list, [this](const std::string& entry) { return RecordOf(entry); }, *m_thumbnails);
    m_list->setItemDelegate(rows);
    m_list->OnMenu([this](QMenu& menu, const std::string& entry) { FillMenu(menu, entry); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    setFocusProxy(m_list);
    QStyleOptionViewItem option;
    option.fontMetrics = m_list->fontMetrics();
    resize(kColumns * option.fontMetrics.averageCharWidth(), kRows * rows->sizeHint(option, {}).height());
    m_records = m_needs.records.afterRecord.Add([this](const RenderRecord&) { Refresh(); });
    Refresh();
}

void CRenderHistoryDlg::Refresh() {
    std::vector<FinderRow> rows;
    std::set<std::string> pictures;
    for (const std::string& entry : m_needs.entries()) {
        const RenderRecord* record = RecordOf(entry);
        rows.push_back({.text = entry, .tip = record == nullptr ? "" : TipOf(*record)});
        if (record != nullptr) pictures.insert(record->picture);
    }
    m_thumbnails->Refresh(pictures);
    m_list->SetRows(std::move(rows));
}

const RenderRecord* CRenderHistoryDlg::RecordOf(const std::string& entry) const {
    int number = 0;
    std::string name;
    return RenderHistory::ParseEntry(entry, number, name) ? m_needs.records.Find(number) : nullptr;
}

std::optional<int> CRenderHistoryDlg::CurrentRender() const {
    const std::string* entry = m_list->SelectedText();
    const RenderRecord* record = entry == nullptr || !IsUp() ? nullptr : RecordOf(*entry);
    return record == nullptr ? std::nullopt : std::optional(record->number);
}

void CRenderHistoryDlg::SelectRender(int number) {
    if (const RenderRecord* record = m_needs.records.Find(number))
        m_list->Select(RenderHistory::EntryText(number, record->name));
}

// Pictures may have gone while nobody looked.
void CRenderHistoryDlg::showEvent(QShowEvent* event) {
    Refresh();
    ToolWindow::showEvent(event);
}

void CRenderHistoryDlg::FillMenu(QMenu& menu, const std::string& entry) {
    menu.addAction("&Open", this, [this, entry] { m_needs.open(entry); });
    const RenderRecord* record = RecordOf(entry);
    if (record == nullptr) return;
    const int number = record->number;
    QAction* keep = menu.addAction("&Keep Render", this, [this, number] { m_needs.keep(number); });
    keep->setEnabled(m_needs.canKeep(number));
    if (m_needs.compare)
        menu.addAction("&Compare with Desk", this, [this, number] { m_needs.compare(number); });
}

}  // namespace tavrin
