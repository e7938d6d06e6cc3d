// SPDX-License-Identifier: Apache-2.0
#include "ui/render/RenderHistoryDlg.h"

#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>

#include "ui/windows/FinderList.h"
#include "ui/windows/WheelNotches.h"

namespace tavrin {

namespace {

constexpr QRgb kText = qRgb(0, 20, 0);
constexpr QRgb kBackground = qRgb(190, 190, 210);
constexpr int kColumns = 40;
constexpr int kRows = 20;

// Moves by a line for each notch of the wheel.
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

CRenderHistoryDlg::CRenderHistoryDlg(QWidget* frame, Entries entries, Open open)
    : ToolWindow("Render History [F6]", frame), m_entries(std::move(entries)) {
    m_list = new HistoryList(this, FinderList::Colours{QColor(kBackground), QColor(kText)}, std::move(open));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    setFocusProxy(m_list);
    const QFontMetrics metrics = m_list->fontMetrics();
    resize(kColumns * metrics.averageCharWidth(), kRows * metrics.lineSpacing());
    Refresh();
}

void CRenderHistoryDlg::Refresh() {
    std::vector<FinderRow> rows;
    for (const std::string& entry : m_entries()) rows.push_back({entry});
    m_list->SetRows(std::move(rows));
}

}  // namespace tavrin
