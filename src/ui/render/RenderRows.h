// SPDX-License-Identifier: Apache-2.0
// How the rows of the Render History look.
#pragma once

#include <QStyledItemDelegate>
#include <functional>
#include <string>

namespace tavrin {

struct RenderRecord;
class RenderThumbnails;

// What the tool tip of a row tells: all that is known of the render.
std::string TipOf(const RenderRecord& record);

// Draws the picture of a render in small, its line of the history, and below that when it began, how long it
// took and what became of it. Owned by the list.
class RenderRows : public QStyledItemDelegate {
  public:
    // What is known of the render with a line; null for nothing.
    using Find = std::function<const RenderRecord*(const std::string& entry)>;

    // The thumbnails outlive it.
    RenderRows(QObject* list, Find find, RenderThumbnails& thumbnails);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    // The same for all rows.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    void PaintCell(QPainter& painter, const QRectF& cell, const RenderRecord& record, const QColor& ink,
                   qreal ratio) const;

    Find m_find;
    RenderThumbnails& m_thumbnails;
};

}  // namespace tavrin
