// SPDX-License-Identifier: Apache-2.0
// How the canvas is painted: views are copied, and over them stand the line of the wipe and titles.
#include <QPaintEvent>
#include <QPainter>
#include <cmath>

#include "view/PictureCanvas.h"

namespace tavrin {

namespace {

constexpr QRgb kLine = 0xfff4f4f4;
constexpr QRgb kTitleGround = 0xb0101214;
constexpr QRgb kTitleText = 0xfff4f4f4;

}  // namespace

// A neutral grey, so that no colour beside the picture changes how it looks.
ViewGround PictureCanvas::Ground() const {
    ViewGround ground;
    const bool isDark = qGray(palette().color(QPalette::Window).rgb()) < 128;
    ground.around = isDark ? qRgb(28, 28, 28) : qRgb(198, 198, 198);
    ground.missing = isDark ? qRgb(52, 52, 52) : qRgb(178, 178, 178);
    return ground;
}

void PictureCanvas::ShowViews() {
    const QSize size = DeviceSize();
    const ViewGround ground = Ground();
    const QSize extent = ComparedExtent();
    const auto extentFor = [&](const PicturePtr& picture) {
        return picture != nullptr && picture->Size() == extent ? QSize() : extent;
    };
    switch (ModeShown()) {
        case Mode::kSingle:
            m_firstView.Show(m_first, size, m_place, {}, ground);
            break;
        case Mode::kDifference:
            m_firstView.Show(m_difference.picture, size, m_place, extentFor(m_difference.picture), ground);
            break;
        case Mode::kToggle:
        case Mode::kWipe:
            m_firstView.Show(m_first, size, m_place, extentFor(m_first), ground);
            m_secondView.Show(m_second, size, m_place, extentFor(m_second), ground);
            break;
    }
}

void PictureCanvas::paintEvent(QPaintEvent* event) {
    ShowViews();
    QPainter painter(this);
    const double ratio = devicePixelRatioF();
    for (const QRect& part : event->region()) {
        painter.save();
        // Device pixels, which are copied as they are.
        painter.scale(1 / ratio, 1 / ratio);
        const QPoint corner(int(std::floor(part.left() * ratio)), int(std::floor(part.top() * ratio)));
        const QPoint end(int(std::ceil((part.right() + 1) * ratio)),
                         int(std::ceil((part.bottom() + 1) * ratio)));
        DrawViews(painter, QRect(corner, end - QPoint(1, 1)) & QRect(QPoint(0, 0), DeviceSize()));
        painter.restore();
    }
    if (ModeShown() == Mode::kWipe) DrawWipeLine(painter);
    DrawTitles(painter);
    if (m_first == nullptr && !m_hint.isEmpty()) {
        QColor ink = palette().color(QPalette::WindowText);
        ink.setAlphaF(0.7F);
        painter.setPen(ink);
        painter.drawText(rect().adjusted(kMargin, kMargin, -kMargin, -kMargin),
                         Qt::AlignCenter | Qt::TextWordWrap, m_hint);
    }
    if (m_hands.painted) m_hands.painted();
}

void PictureCanvas::DrawViews(QPainter& painter, const QRect& part) {
    const auto draw = [&](const PictureView& view, const QRect& of) {
        if (!of.isEmpty()) painter.drawImage(of.topLeft(), view.Image(), of);
    };
    const Mode mode = ModeShown();
    if (mode == Mode::kWipe) {
        const int line = WipeLine();
        draw(m_firstView, part & QRect(0, 0, line, part.bottom() + 1));
        draw(m_secondView, part & QRect(line, 0, DeviceSize().width() - line, part.bottom() + 1));
        return;
    }
    draw(mode == Mode::kToggle && m_showsSecond ? m_secondView : m_firstView, part);
}

void PictureCanvas::DrawWipeLine(QPainter& painter) {
    const double x = WipeLine() / devicePixelRatioF();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0, 0, 0, 110), 3));
    painter.drawLine(QPointF(x, 0), QPointF(x, height()));
    painter.setPen(QPen(QColor(kLine), 1));
    painter.drawLine(QPointF(x, 0), QPointF(x, height()));
    const QPointF middle(x, height() / 2.0);
    painter.setPen(QPen(QColor(0, 0, 0, 110), 1));
    painter.setBrush(QColor(kLine));
    painter.drawEllipse(middle, kGrip - 1, kGrip - 1);
    painter.setPen(QPen(QColor(60, 60, 60), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    for (const double side : {-1.0, 1.0}) {
        const QPointF tip = middle + QPointF(side * 6, 0);
        const QPointF points[] = {tip + QPointF(-side * 3, -3.5), tip, tip + QPointF(-side * 3, 3.5)};
        painter.drawPolyline(points, 3);
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void PictureCanvas::DrawTitles(QPainter& painter) {
    switch (ModeShown()) {
        case Mode::kSingle:
            return;
        case Mode::kToggle:
            return m_showsSecond ? DrawTitle(painter, "B   " + m_secondTitle, Qt::AlignRight)
                                 : DrawTitle(painter, "A   " + m_firstTitle, Qt::AlignLeft);
        case Mode::kWipe:
            DrawTitle(painter, "A   " + m_firstTitle, Qt::AlignLeft);
            return DrawTitle(painter, "B   " + m_secondTitle, Qt::AlignRight);
        case Mode::kDifference:
            return DrawTitle(painter, QString::fromUtf8("A \xe2\x88\x92 B   \xc3\x97%1").arg(m_gain),
                             Qt::AlignLeft);
    }
}

void PictureCanvas::DrawTitle(QPainter& painter, const QString& text, Qt::Alignment side) {
    const int most = width() / 2 - 4 * kMargin;
    const QString shown = fontMetrics().elidedText(text, Qt::ElideRight, most);
    const QSize size(fontMetrics().horizontalAdvance(shown) + 2 * kMargin, fontMetrics().height() + kMargin);
    const int x = side == Qt::AlignLeft ? kMargin : width() - kMargin - size.width();
    const QRect ground(QPoint(x, kMargin), size);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgba(kTitleGround));
    painter.drawRoundedRect(ground, size.height() / 2.0, size.height() / 2.0);
    painter.setPen(QColor(kTitleText));
    painter.drawText(ground, Qt::AlignCenter, shown);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

}  // namespace tavrin
