// SPDX-License-Identifier: Apache-2.0
#include "ui/library/ExampleTiles.h"

#include <QApplication>
#include <QPainter>
#include <QTextLayout>

#include "icons/Icons.h"
#include "ui/render/RenderThumbnails.h"

namespace tavrin {

namespace {

constexpr int kMargin = 10;       // pixels round picture and texts
constexpr int kGap = 6;           // between picture and title
constexpr int kSummaryLines = 2;  // what follows is left out, and told by the tool tip
constexpr int kSign = 40;         // pixels a side, of what stands for a picture
constexpr qreal kPale = 0.75;     // opacity of the summary
constexpr qreal kFaint = 0.4;     // of an outline and of that sign

QFont TitleFont(QFont font) {
    font.setWeight(QFont::DemiBold);
    return font;
}

// Broken between words, the last line with dots where more would follow.
void DrawLines(QPainter& painter, const QRect& place, const QString& text) {
    const QFontMetrics metrics = painter.fontMetrics();
    QTextLayout layout(text, painter.font());
    layout.beginLayout();
    int y = place.top();
    for (int number = 0; number < kSummaryLines; ++number, y += metrics.lineSpacing()) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) break;
        line.setLineWidth(place.width());
        const bool isLast = number == kSummaryLines - 1;
        const QString rest =
            isLast ? text.mid(line.textStart()) : text.mid(line.textStart(), line.textLength());
        painter.drawText(QRect(place.left(), y, place.width(), metrics.height()),
                         Qt::AlignLeft | Qt::AlignTop,
                         metrics.elidedText(rest, Qt::ElideRight, place.width()));
    }
    layout.endLayout();
}

}  // namespace

ExampleTiles::ExampleTiles(QObject* list, RenderThumbnails& thumbnails)
    : QStyledItemDelegate(list), m_thumbnails(thumbnails) {}

QSize ExampleTiles::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& /*index*/) const {
    const int texts =
        QFontMetrics(TitleFont(option.font)).lineSpacing() + kSummaryLines * option.fontMetrics.lineSpacing();
    return {kPictureSize.width() + 2 * kMargin, kPictureSize.height() + kGap + texts + 2 * kMargin};
}

void ExampleTiles::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    const QWidget* list = option.widget;
    const QStyle* style = list != nullptr ? list->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &background, painter, list);

    painter->save();
    const QRect inner = option.rect.adjusted(kMargin, kMargin, -kMargin, -kMargin);
    const QRect place(QPoint(inner.left() + (inner.width() - kPictureSize.width()) / 2, inner.top()),
                      kPictureSize);
    PaintPicture(*painter, place, background, index.data(kPicture).toByteArray().toStdString());
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const auto group = option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    painter->setPen(option.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text));
    painter->setFont(TitleFont(option.font));
    const int spacing = painter->fontMetrics().lineSpacing();
    QRect texts(place.left(), place.bottom() + 1 + kGap, place.width(), spacing);
    painter->drawText(
        texts, Qt::AlignLeft | Qt::AlignTop,
        painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideRight, texts.width()));
    painter->setFont(option.font);
    painter->setOpacity(kPale);
    texts.translate(0, spacing);
    texts.setBottom(inner.bottom());
    DrawLines(*painter, texts, index.data(kSummary).toString());
    painter->restore();
}

void ExampleTiles::PaintPicture(QPainter& painter, const QRect& place, const QStyleOptionViewItem& option,
                                const std::string& path) const {
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QImage picture = m_thumbnails.Of(path, ratio);
    if (!picture.isNull()) {
        const QSizeF size = picture.deviceIndependentSize();
        const QPointF corner = QRectF(place).center() - QPointF(size.width() / 2, size.height() / 2);
        painter.drawImage(QRectF(corner, size), picture);
        return;
    }
    painter.setOpacity(kFaint);
    painter.setPen(option.palette.color(QPalette::Text));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(place.adjusted(0, 0, -1, -1));
    Icon("examples")
        .paint(&painter, QRect(place.center() - QPoint(kSign / 2, kSign / 2), QSize(kSign, kSign)));
    painter.setOpacity(1);
}

}  // namespace tavrin
