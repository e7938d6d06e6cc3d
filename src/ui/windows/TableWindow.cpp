// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/TableWindow.h"

#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tavrin {

namespace {

constexpr int kColumnsWide = 22;  // average characters of a column at first
constexpr int kRowsHigh = 16;

}  // namespace

TableWindow::TableWindow(const QString& title, QWidget* frame, const QStringList& columns,
                         std::function<Rows()> rows)
    : ToolWindow(title, frame), m_rows(std::move(rows)), m_table(new QTreeWidget(this)) {
    m_table->setHeaderLabels(columns);
    m_table->setRootIsDecorated(false);
    m_table->setUniformRowHeights(true);
    m_table->setAlternatingRowColors(true);
    m_table->setFrameShape(QFrame::NoFrame);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_table);
    const int width = kColumnsWide * fontMetrics().averageCharWidth();
    resize(width * static_cast<int>(columns.size()), kRowsHigh * fontMetrics().lineSpacing());
}

void TableWindow::Refresh() {
    if (!isVisible()) return;
    Rows rows = m_rows();
    if (rows == m_shown && m_table->topLevelItemCount() == static_cast<int>(rows.size())) return;
    m_shown = std::move(rows);
    m_table->clear();
    QList<QTreeWidgetItem*> items;
    for (const QStringList& row : m_shown) items << new QTreeWidgetItem(row);
    m_table->addTopLevelItems(items);
    for (int column = 0; column + 1 < m_table->columnCount(); ++column)
        m_table->resizeColumnToContents(column);
}

void TableWindow::showEvent(QShowEvent* event) {
    ToolWindow::showEvent(event);
    Refresh();
}

}  // namespace tavrin
