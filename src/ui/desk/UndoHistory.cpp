// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/UndoHistory.h"

#include <QAbstractListModel>
#include <QFont>
#include <QListView>
#include <QPalette>
#include <QVBoxLayout>

#include "desk/OpDesk.h"
#include "document/EditHistory.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr int kColumns = 40;  // for the title as well
constexpr int kRows = 20;
constexpr const char* kBeginning = "Beginning";

}  // namespace

// Row 0 is the beginning, row N the N-th step.
class HistoryModel : public QAbstractListModel {
  public:
    HistoryModel(QObject* parent, const CTvDoc& document)
        : QAbstractListModel(parent), m_document(document) {}

    void Reset() {
        beginResetModel();
        endResetModel();
    }
    int Place() const { return static_cast<int>(History().Place()); }

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(History().Count()) + 1;
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const int row = index.row();
        switch (role) {
            case Qt::DisplayRole:
                return row == 0 ? QString(kBeginning) : Shown(History().Name(static_cast<size_t>(row - 1)));
            case Qt::ForegroundRole:
                return row > Place() ? QVariant(QPalette().brush(QPalette::Disabled, QPalette::Text))
                                     : QVariant();
            default:
                return {};
        }
    }

  private:
    const EditHistory& History() const { return *m_document.History(); }

    const CTvDoc& m_document;
};

CUndoHistory::CUndoHistory(QWidget* frame, CTvDoc& document, COpDesk& desk)
    : ToolWindow("Undo History", frame),
      m_document(document),
      m_model(new HistoryModel(this, document)),
      m_list(new QListView(this)) {
    m_list->setModel(m_model);
    m_list->setUniformItemSizes(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setAccessibleName("Steps");
    const auto go = [&desk](const QModelIndex& row) { desk.GoToStep(static_cast<size_t>(row.row())); };
    connect(m_list, &QListView::clicked, this, go);
    connect(m_list, &QListView::activated, this, go);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    setFocusProxy(m_list);
    const QFontMetrics metrics = m_list->fontMetrics();
    resize(kColumns * metrics.averageCharWidth(), kRows * metrics.lineSpacing());
    Refresh();
}

CUndoHistory::~CUndoHistory() = default;

void CUndoHistory::Follow(const Change& change) {
    if (isVisible() && !change.selection) Refresh();
}

void CUndoHistory::SetLocked(bool locked) { m_list->setEnabled(!locked); }

void CUndoHistory::showEvent(QShowEvent* event) {
    Refresh();
    ToolWindow::showEvent(event);
}

void CUndoHistory::Refresh() {
    m_model->Reset();
    const QModelIndex now = m_model->index(m_model->Place());
    m_list->setCurrentIndex(now);
    m_list->scrollTo(now);
}

}  // namespace tavrin
