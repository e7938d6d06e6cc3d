// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/FinderList.h"

#include <QAbstractListModel>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPalette>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "ui/base/DocumentText.h"
#include "ui/base/Text.h"

namespace tavrin {

class FinderModel : public QAbstractListModel {
  public:
    void SetRows(std::vector<FinderRow> rows) {
        const auto isSame = [](const FinderRow& a, const FinderRow& b) {
            return a.text == b.text && a.isHeading == b.isHeading;
        };
        // Who is at a row, as with a menu or a tool tip, is not disturbed by what is said of another.
        if (!rows.empty() && std::equal(rows.begin(), rows.end(), m_rows.begin(), m_rows.end(), isSame)) {
            m_rows = std::move(rows);
            Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1));
            return;
        }
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
    }
    const std::string& TextAt(const QModelIndex& index) const { return m_rows[size_t(index.row())].text; }
    QModelIndex IndexOf(const std::string& text) const {
        const auto found = std::find_if(m_rows.begin(), m_rows.end(),
                                        [&](const FinderRow& row) { return row.text == text; });
        return found == m_rows.end() ? QModelIndex() : index(int(found - m_rows.begin()));
    }

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : int(m_rows.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid()) return {};
        const FinderRow& row = m_rows[size_t(index.row())];
        if (role == Qt::DisplayRole) return Shown(row.text);
        if (row.tip.empty()) return {};
        if (role == Qt::ToolTipRole) return PlainToolTip(Shown(row.tip));
        return role == Qt::AccessibleDescriptionRole ? Shown(row.tip) : QVariant();
    }
    // The search by typing asks this.
    QModelIndexList match(const QModelIndex& start, int role, const QVariant& value, int hits,
                          Qt::MatchFlags flags) const override {
        QModelIndexList found = QAbstractListModel::match(start, role, value, -1, flags);
        found.removeIf([this](const QModelIndex& index) { return m_rows[size_t(index.row())].isHeading; });
        return hits < 0 ? found : found.mid(0, hits);
    }

  private:
    std::vector<FinderRow> m_rows;
};

namespace {

constexpr QRgb kSelectedBackground = qRgb(44, 84, 112);
constexpr QRgb kSelectedText = qRgb(255, 255, 255);
constexpr int kRowPadding = 3;          // above and below the text together
constexpr int kDisabledTextShare = 45;  // percent of the text's colour in that of a disabled list

class PaddedRows : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, kRowPadding);
    }
};

QColor Mixed(const QColor& a, const QColor& b, int percentOfA) {
    const auto mix = [&](int x, int y) { return (x * percentOfA + y * (100 - percentOfA)) / 100; };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

// A selection shows also while another window has the focus.
QPalette FixedPalette(const FinderList::Colours& colours) {
    const QColor disabled = Mixed(colours.text, colours.background, kDisabledTextShare);
    QPalette palette;
    palette.setColor(QPalette::Base, colours.background);
    palette.setColor(QPalette::Text, colours.text);
    palette.setColor(QPalette::Highlight, QColor(kSelectedBackground));
    palette.setColor(QPalette::HighlightedText, QColor(kSelectedText));
    palette.setColor(QPalette::Disabled, QPalette::Text, disabled);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, disabled);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, colours.background);
    return palette;
}

}  // namespace

FinderList::FinderList(QWidget* parent, const Colours& colours,
                       std::function<void(const std::string&)> chosen)
    : QListView(parent), m_model(std::make_unique<FinderModel>()), m_chosen(std::move(chosen)) {
    setObjectName("list");
    setModel(m_model.get());
    setItemDelegate(new PaddedRows(this));
    setPalette(FixedPalette(colours));
    setFrameShape(QFrame::NoFrame);
    setEditTriggers(NoEditTriggers);
    setUniformItemSizes(true);  // thousands of rows are measured by the first
    setTextElideMode(Qt::ElideMiddle);
}

FinderList::~FinderList() = default;

void FinderList::SetRows(std::vector<FinderRow> rows) {
    const QModelIndexList selected = selectedIndexes();
    const std::string text = selected.isEmpty() ? std::string() : m_model->TextAt(selected.front());
    const int scrolled = verticalScrollBar()->value();
    m_model->SetRows(std::move(rows));
    if (!selected.isEmpty()) setCurrentIndex(m_model->IndexOf(text));
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(scrolled);
}

const std::string* FinderList::SelectedText() const {
    const QModelIndexList selected = selectedIndexes();
    return selected.isEmpty() ? nullptr : &m_model->TextAt(selected.front());
}

void FinderList::Select(const std::string& text) {
    const QModelIndex index = m_model->IndexOf(text);
    if (!index.isValid()) return;
    setCurrentIndex(index);
    scrollTo(index);
}

void FinderList::TakeKeys() {
    m_takesKeys = !isActiveWindow();
    setFocus(Qt::ShortcutFocusReason);
}

// A window that becomes active only gives back the focus; arrow keys are left to the desk by a list that has
// come to it like that.
bool FinderList::event(QEvent* event) {
    const bool hasCome = event->type() == QEvent::WindowActivate && std::exchange(m_takesKeys, false);
    if (event->type() == QEvent::Hide) m_takesKeys = false;
    const bool isDone = QListView::event(event);
    if (hasCome) setFocus(Qt::ShortcutFocusReason);
    return isDone;
}

void FinderList::contextMenuEvent(QContextMenuEvent* event) {
    QModelIndex index = indexAt(viewport()->mapFromGlobal(event->globalPos()));
    QPoint place = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const QModelIndexList selected = selectedIndexes();
        index = selected.isEmpty() ? QModelIndex() : selected.front();
        place = viewport()->mapToGlobal(visualRect(index).center());
    }
    if (!m_fillMenu || !index.isValid()) return;
    setCurrentIndex(index);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    m_fillMenu(*menu, std::string(m_model->TextAt(index)));
    menu->popup(place);
}

void FinderList::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QListView::keyPressEvent(event);
        return;
    }
    // The list may have a current row that is not selected, and so does not show.
    const QModelIndexList selected = selectedIndexes();
    if (!selected.isEmpty()) Choose(selected.front());
}

void FinderList::mouseDoubleClickEvent(QMouseEvent* event) {
    QListView::mouseDoubleClickEvent(event);
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid()) Choose(index);
}

void FinderList::Choose(const QModelIndex& index) {
    const std::string text = m_model->TextAt(index);  // a copy: the rows may change meanwhile
    m_chosen(text);
}

}  // namespace tavrin
