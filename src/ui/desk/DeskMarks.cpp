// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskMarks.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <cmath>

namespace tavrin {

namespace {

// Shapes that end in points stand out of their squares a little and square ones keep inside, so that all seem
// of one size. Sides that run along the pixels lie between two.
constexpr double kOut = 0.08;
constexpr double kBarInset = 0.2;

// Each side moved inward.
QPolygonF Triangle(double side, double inset) {
    const double out = side * kOut;
    const double base = side + 2 * out;
    const double height = side + out;
    const double radius = base * height / (base + 2 * std::hypot(base / 2, height));  // of the circle inside
    const QPointF middle(side / 2, side - radius);
    const double part = 1 - inset / radius;
    if (!(part > 0)) return {};
    const auto moved = [&](double x, double y) { return middle + (QPointF(x, y) - middle) * part; };
    return {{moved(side / 2, -out), moved(side + out, side), moved(-out, side)}};
}

QPolygonF Diamond(double side, double inset) {
    const double reach = side * (0.5 + kOut) - inset * std::sqrt(2.0);
    if (!(reach > 0)) return {};
    const double middle = side / 2;
    return {{{middle, middle - reach},
             {middle + reach, middle},
             {middle, middle + reach},
             {middle - reach, middle}}};
}

// With y downward.
QPainterPath PathOf(TypeShape shape, double side, double inset) {
    QPainterPath path;
    const QRectF inner(inset, inset, side - 2 * inset, side - 2 * inset);
    const double narrow = shape == TypeShape::kBar ? std::round(side * kBarInset) : 0;
    const double smaller = shape == TypeShape::kSquare ? std::floor(side * kOut) : 0;
    const QRectF rect = inner.adjusted(narrow + smaller, smaller, -narrow - smaller, -smaller);
    switch (shape) {
        case TypeShape::kCircle:
            if (inner.isValid()) path.addEllipse(inner);
            break;
        case TypeShape::kSquare:
        case TypeShape::kBar:
            if (rect.isValid()) path.addRect(rect);
            break;
        case TypeShape::kDiamond:
            path.addPolygon(Diamond(side, inset));
            break;
        case TypeShape::kTriangle:
            path.addPolygon(Triangle(side, inset));
            break;
        case TypeShape::kWedge:
            path.addPolygon(QTransform(1, 0, 0, -1, 0, side).map(Triangle(side, inset)));
            break;
    }
    path.closeSubpath();
    return path;
}

}  // namespace

const Glyph& DeskMarks::MarkOf(TypeShape shape, int pixels, int inset) {
    const auto [place, isNew] = m_marks.try_emplace({shape, pixels, inset});
    Glyph& mark = place->second;
    const QPainterPath path = isNew ? PathOf(shape, pixels, inset) : QPainterPath();
    if (path.boundingRect().isEmpty()) return mark;
    const int margin = 1 + pixels / 12;  // points may stand out
    const int side = pixels + 2 * margin;
    QImage image(side, side, QImage::Format_Grayscale8);
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(margin, margin);
    painter.fillPath(path, Qt::white);
    painter.end();
    mark.left = mark.bottom = -margin;
    mark.width = mark.height = side;
    for (int y = side - 1; y >= 0; --y) {
        const uchar* row = image.constScanLine(y);
        mark.ink.insert(mark.ink.end(), row, row + side);
    }
    return mark;
}

}  // namespace tavrin
