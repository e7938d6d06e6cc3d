// SPDX-License-Identifier: Apache-2.0
// How an example looks among the others: its picture, its name, and what it is.
#pragma once

#include <QStyledItemDelegate>
#include <string>

namespace tavrin {

class RenderThumbnails;

// Owned by the list. Pictures come as they are read; where there is none a sign stands for it. All tiles have
// one size.
class ExampleTiles : public QStyledItemDelegate {
  public:
    // What the rows of the model have: the title is the display role.
    enum Role { kPath = Qt::UserRole, kSummary, kPicture };  // paths as bytes
    static constexpr QSize kPictureSize{224, 168};

    // The thumbnails, which outlive it, are of that size.
    ExampleTiles(QObject* list, RenderThumbnails& thumbnails);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    void PaintPicture(QPainter& painter, const QRect& place, const QStyleOptionViewItem& option,
                      const std::string& path) const;

    RenderThumbnails& m_thumbnails;
};

}  // namespace tavrin
