#include "ui/render/RenderHistoryDlg.h"

#include <QKeyEvent>
#include <QListWidget>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>

#include "render/RenderHistory.h"
#include "ui/Text.h"

namespace tavrin {

namespace {

constexpr QColor kText(0, 20, 0);
constexpr QColor kBackground(190, 190, 210);
constexpr QColor kSelectedText(255, 255, 255);
constexpr QColor kSelectedBackground(52, 70, 134);
constexpr int kEntryRole = Qt::UserRole;  // the entry's bytes, which its text may not show exactly
constexpr int kColumns = 40;
constexpr int kRows = 20;

// The list takes Enter for itself and moves by a line for each notch of the wheel.
class HistoryList : public QListWidget {
  public:
    HistoryList(QWidget* parent, std::function<void()> onEnter)
        : QListWidget(parent), m_onEnter(std::move(onEnter)) {}

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            m_onEnter();
        } else {
            QListWidget::keyPressEvent(event);
        }
    }

    void wheelEvent(QWheelEvent* event) override {
        const int delta = event->angleDelta().y();
        if (delta == 0) {
            QListWidget::wheelEvent(event);
            return;
        }
        if ((delta < 0) != (m_turned < 0)) m_turned = 0;
        m_turned += delta;  // fine wheels tell of parts of a notch
        const int notches = m_turned / QWheelEvent::DefaultDeltasPerStep;
        m_turned -= notches * QWheelEvent::DefaultDeltasPerStep;
        verticalScrollBar()->setValue(verticalScrollBar()->value() - notches);
        event->accept();
    }

  private:
    std::function<void()> m_onEnter;
    int m_turned = 0;  // eighths of a degree that made no notch yet
};

std::string EntryOf(const QListWidgetItem* item) {
    return item == nullptr ? std::string() : item->data(kEntryRole).toByteArray().toStdString();
}

QListWidgetItem* MakeItem(const std::string& entry) {
    auto* item = new QListWidgetItem(Shown(entry));
    item->setData(kEntryRole, QByteArray::fromStdString(entry));
    return item;
}

// The same colours in every palette of the desktop.
QPalette ListPalette(QPalette palette) {
    palette.setColor(QPalette::Base, kBackground);
    palette.setColor(QPalette::Text, kText);
    palette.setColor(QPalette::Highlight, kSelectedBackground);
    palette.setColor(QPalette::HighlightedText, kSelectedText);
    return palette;
}

}  // namespace

CRenderHistoryDlg::CRenderHistoryDlg(QWidget* frame, Entries entries, Open open)
    : ToolWindow("Render History [F6]", frame), m_entries(std::move(entries)), m_open(std::move(open)) {
    m_list = new HistoryList(this, [this] {
        // A list that gets the focus has a current row at once, but not one that the user chose.
        const QList<QListWidgetItem*> selected = m_list->selectedItems();
        if (!selected.isEmpty()) OpenEntry(selected.first());
    });
    m_list->setPalette(ListPalette(m_list->palette()));
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setUniformItemSizes(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    connect(m_list, &QListWidget::itemDoubleClicked, this,
            [this](const QListWidgetItem* item) { OpenEntry(item); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    setFocusProxy(m_list);
    const QFontMetrics metrics = m_list->fontMetrics();
    resize(kColumns * metrics.averageCharWidth(), kRows * metrics.lineSpacing());
    Refresh();
}

void CRenderHistoryDlg::Refresh() {
    const std::deque<std::string>& entries = m_entries();
    const std::string current = EntryOf(m_list->currentItem());
    // Entries come at the front and go at the back; rows that stay are left alone, so that the list keeps
    // its place.
    const auto known = std::find(entries.begin(), entries.end(), EntryOf(m_list->item(0)));
    if (known == entries.end()) m_list->clear();
    for (auto entry = known; entry != entries.begin();) m_list->insertItem(0, MakeItem(*--entry));
    while (m_list->count() > static_cast<int>(entries.size())) delete m_list->takeItem(m_list->count() - 1);
    if (EntryOf(m_list->currentItem()) != current) m_list->selectionModel()->clear();
}

void CRenderHistoryDlg::OpenEntry(const QListWidgetItem* item) {
    int number = 0;
    std::string name;
    if (RenderHistory::ParseEntry(EntryOf(item), number, name)) m_open(name, number);
}

}  // namespace tavrin
