// SPDX-License-Identifier: Apache-2.0
#include "ui/render/RenderRows.h"

#include <QDateTime>
#include <QPainter>
#include <algorithm>

#include "render/RenderRecord.h"
#include "text/Duration.h"
#include "ui/base/Text.h"
#include "ui/render/RenderThumbnails.h"

namespace tavrin {

namespace {

using State = RenderRecord::State;

constexpr int kMargin = 3;         // pixels round the picture
constexpr int kGap = 8;            // between picture and text
constexpr int kDimmed = 170;       // alpha of the second line
constexpr int kFaint = 70;         // alpha of an outline
constexpr qreal kBadge = 16;       // pixels across, of the sign in the corner
constexpr qreal kSignShare = 0.2;  // of the badge, from its middle to the end of the sign
constexpr QRgb kFailed = qRgb(176, 24, 16);
constexpr QRgb kStopped = qRgb(84, 84, 96);

QColor WithAlpha(QColor colour, int alpha) {
    colour.setAlpha(alpha);
    return colour;
}

QDateTime StartOf(const RenderRecord& record) {
    const auto since = record.started.time_since_epoch();
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
}

QString WordFor(State state) {
    switch (state) {
        case State::kRunning:
            return "running";
        case State::kFailed:
            return "failed";
        case State::kStopped:
            return "stopped";
        case State::kDone:
            break;
    }
    return {};
}

QString SecondLine(const RenderRecord& record) {
    QStringList parts(StartOf(record).toString("HH:mm"));
    if (record.state != State::kRunning) parts << Shown(DurationText(record.duration));
    if (const QString word = WordFor(record.state); !word.isEmpty()) parts << word;
    if (!record.kept.empty()) parts << "kept";
    return parts.join(QString::fromUtf8(" \u00b7 "));
}

// A cross for a render that failed, a square for one that was stopped.
void PaintBadge(QPainter& painter, QPointF middle, State state) {
    const bool hasFailed = state == State::kFailed;
    painter.setPen(QPen(Qt::white, 1));
    painter.setBrush(QColor(hasFailed ? kFailed : kStopped));
    painter.drawEllipse(middle, kBadge / 2, kBadge / 2);
    const qreal reach = kBadge * kSignShare;
    if (hasFailed) {
        painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(middle - QPointF(reach, reach), middle + QPointF(reach, reach));
        painter.drawLine(middle - QPointF(reach, -reach), middle + QPointF(reach, -reach));
    } else {
        painter.fillRect(QRectF(middle - QPointF(reach, reach), QSizeF(2 * reach, 2 * reach)), Qt::white);
    }
}

void PaintDots(QPainter& painter, QPointF middle, const QColor& ink) {
    constexpr qreal kRadius = 2;
    constexpr qreal kStep = 8;
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    for (const int place : {-1, 0, 1})
        painter.drawEllipse(middle + QPointF(place * kStep, 0), kRadius, kRadius);
}

}  // namespace

std::string TipOf(const RenderRecord& record) {
    std::string tip = "Render " + std::to_string(record.number) + " of " + record.name + "\nStarted at " +
                      Bytes(StartOf(record).toString("HH:mm:ss"));
    const std::string took = DurationText(record.duration);
    switch (record.state) {
        case State::kRunning:
            tip += ", is running";
            break;
        case State::kDone:
            tip += ", took " + took;
            break;
        case State::kFailed:
            tip += ", failed after " + took + " (" + record.failure + ")";
            break;
        case State::kStopped:
            tip += ", was stopped after " + took;
            break;
    }
    if (!record.differs.empty()) tip += "\nDiffers from the one before: " + record.differs;
    if (!record.picture.empty()) tip += "\nPicture: " + record.picture;
    if (!record.kept.empty()) tip += "\nKept as " + record.kept;
    return tip;
}

RenderRows::RenderRows(QObject* list, Find find, RenderThumbnails& thumbnails)
    : QStyledItemDelegate(list), m_find(std::move(find)), m_thumbnails(thumbnails) {}

QSize RenderRows::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& /*index*/) const {
    const int content = std::max(RenderThumbnails::kSize.height(), 2 * option.fontMetrics.lineSpacing());
    return {RenderThumbnails::kSize.width() + kGap + 2 * kMargin, content + 2 * kMargin};
}

void RenderRows::paint(QPainter* painter, const QStyleOptionViewItem& option,
                       const QModelIndex& index) const {
    // The selection and the frame of the focus, as the style draws them.
    QStyleOptionViewItem ground(option);
    initStyleOption(&ground, index);
    const QString text = std::exchange(ground.text, {});
    ground.widget->style()->drawControl(QStyle::CE_ItemViewItem, &ground, painter, ground.widget);

    const bool isSelected = (option.state & QStyle::State_Selected) != 0;
    const bool isEnabled = (option.state & QStyle::State_Enabled) != 0;
    const QColor ink = option.palette.color(isEnabled ? QPalette::Active : QPalette::Disabled,
                                            isSelected ? QPalette::HighlightedText : QPalette::Text);
    const RenderRecord* record = m_find(Bytes(text));
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setClipRect(option.rect);
    QRectF cell(QPointF(option.rect.topLeft()) + QPointF(kMargin, 0), QSizeF(RenderThumbnails::kSize));
    cell.moveTop(option.rect.top() + (option.rect.height() - RenderThumbnails::kSize.height()) / 2);
    if (record != nullptr) PaintCell(*painter, cell, *record, ink, ground.widget->devicePixelRatioF());

    const int left = int(cell.right()) + kGap;
    QRect line(left, option.rect.top(), option.rect.right() - kMargin - left,
               option.fontMetrics.lineSpacing());
    line.moveTop(option.rect.center().y() - (record == nullptr ? line.height() / 2 : line.height()));
    const auto draw = [&](const QString& words, Qt::TextElideMode elide) {
        painter->drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          option.fontMetrics.elidedText(words, elide, line.width()));
        line.translate(0, line.height());
    };
    painter->setFont(option.font);
    painter->setPen(ink);
    draw(text, Qt::ElideMiddle);
    if (record != nullptr) {
        const bool isRed = record->state == State::kFailed && isEnabled && !isSelected;
        painter->setPen(isRed ? QColor(kFailed) : WithAlpha(ink, kDimmed));
        draw(SecondLine(*record), Qt::ElideRight);
    }
    painter->restore();
}

void RenderRows::PaintCell(QPainter& painter, const QRectF& cell, const RenderRecord& record,
                           const QColor& ink, qreal ratio) const {
    const QImage image = m_thumbnails.Of(record.picture, ratio);
    QRectF frame = cell;
    if (!image.isNull()) {
        frame.setSize(image.deviceIndependentSize());
        frame.moveCenter(cell.center());
        painter.drawImage(frame, image);
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(WithAlpha(ink, kFaint), 1));
    painter.drawRect(frame.adjusted(0.5, 0.5, -0.5, -0.5));
    if (record.state == State::kRunning) return PaintDots(painter, cell.center(), WithAlpha(ink, kDimmed));
    if (record.state == State::kDone) return;
    const qreal inset = kBadge / 2 + 1;
    PaintBadge(painter, image.isNull() ? cell.center() : cell.bottomRight() - QPointF(inset, inset),
               record.state);
}

}  // namespace tavrin
