// SPDX-License-Identifier: Apache-2.0
#include "view/PictureView.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

namespace tavrin {

namespace {

constexpr int kCheck = 8;           // device pixels a side
constexpr int kStripe = 6;          // device pixels across
constexpr double kNearestFrom = 2;  // zoom
constexpr int kTiny = 64;           // pixels a side, of a picture that may be fitted larger than life
constexpr double kTinyZoom = 4;
constexpr double kSeen = 32;  // device pixels of a picture that stay on the canvas

QRgb Over(QRgb premultiplied, QRgb ground) {
    const int rest = 255 - qAlpha(premultiplied);
    const auto mix = [rest](int above, int below) { return above + (below * rest + 127) / 255; };
    return qRgb(mix(qRed(premultiplied), qRed(ground)), mix(qGreen(premultiplied), qGreen(ground)),
                mix(qBlue(premultiplied), qBlue(ground)));
}

// The place of the left end of something of that length.
double HeldAlong(double at, double length, double room) {
    if (length <= room) return std::clamp(at, 0.0, room - length);
    return std::clamp(at, kSeen - length, room - kSeen);
}

}  // namespace

QPoint ViewPlace::PixelAt(QPoint canvas) const {
    const QPointF at = ToPicture(QPointF(canvas) + QPointF(0.5, 0.5));
    return {int(std::floor(at.x())), int(std::floor(at.y()))};
}

ViewPlace ViewPlace::Centred(QSize picture, QSize canvas, double zoom) {
    const QSizeF shown = QSizeF(picture) * zoom;
    // On whole device pixels, so that a picture at 1:1 is not smeared.
    return {zoom, QPointF(std::round((canvas.width() - shown.width()) / 2),
                          std::round((canvas.height() - shown.height()) / 2))};
}

ViewPlace ViewPlace::Fit(QSize picture, QSize canvas) {
    if (picture.isEmpty() || canvas.isEmpty()) return {};
    const double most = picture.width() <= kTiny && picture.height() <= kTiny ? kTinyZoom : 1;
    const double zoom = std::min(
        {double(canvas.width()) / picture.width(), double(canvas.height()) / picture.height(), most});
    return Centred(picture, canvas, std::clamp(zoom, kLeastZoom, kMostZoom));
}

ViewPlace ViewPlace::Zoomed(double to, QPointF about) const {
    const double bounded = std::clamp(to, kLeastZoom, kMostZoom);
    const QPointF corner = about - ToPicture(about) * bounded;
    return {bounded, QPointF(std::round(corner.x()), std::round(corner.y()))};
}

ViewPlace ViewPlace::Held(QSize picture, QSize canvas) const {
    const QPointF held(HeldAlong(origin.x(), picture.width() * zoom, canvas.width()),
                       HeldAlong(origin.y(), picture.height() * zoom, canvas.height()));
    return {zoom, QPointF(std::round(held.x()), std::round(held.y()))};
}

void PictureView::Show(const PicturePtr& picture, QSize canvas, const ViewPlace& place, QSize extent,
                       const ViewGround& ground) {
    const bool isSameView = picture == m_picture && canvas == m_image.size() && place == m_place &&
                            extent == m_extent && ground == m_ground;
    const int changes = picture == nullptr ? 0 : picture->Changes();
    if (isSameView && changes == m_changes) return;
    const int before = isSameView ? m_rows : 0;
    m_picture = picture;
    m_place = place;
    m_extent = extent;
    m_ground = ground;
    m_rows = picture == nullptr ? 0 : picture->Rows();
    m_changes = changes;
    if (canvas != m_image.size()) m_image = QImage(canvas, QImage::Format_RGB32);
    if (m_image.isNull()) return;
    QRect region = m_image.rect();
    // Of a picture that has grown, what has come.
    if (before > 0 && before < m_rows) {
        const int margin = 2 << picture->LevelFor(place.zoom);  // rows that smoothing reaches over
        region.setTop(int(std::floor(place.ToCanvas(QPointF(0, before - margin)).y())));
        region &= m_image.rect();
    }
    Paint(region);
}

// In whole device pixels.
QRect PictureView::PictureRect(QSize size) const {
    const QPointF corner = m_place.ToCanvas(QPointF(size.width(), size.height()));
    return {QPoint(int(std::round(m_place.origin.x())), int(std::round(m_place.origin.y()))),
            QPoint(int(std::ceil(corner.x() - 0.5)) - 1, int(std::ceil(corner.y() - 0.5)) - 1)};
}

void PictureView::Paint(const QRect& region) {
    PaintGround(region);
    if (m_picture == nullptr || m_rows == 0) return;
    const QSize there(m_picture->Size().width(), m_rows);
    QRect inside = PictureRect(there) & region;
    // However small it is, it is seen.
    if (PictureRect(there).isEmpty()) inside = QRect(PictureRect(there).topLeft(), QSize(1, 1)) & region;
    if (inside.isEmpty()) return;
    const int level = m_picture->LevelFor(m_place.zoom);
    const double scale = m_place.zoom * (1 << level);
    const QImage& image = m_picture->Level(level);
    if (scale >= kNearestFrom || scale == 1) {
        PaintNearest(image, 1 << level, inside);
    } else {
        PaintSmooth(image, 1 << level, inside);
    }
}

void PictureView::PaintGround(const QRect& region) {
    for (int y = region.top(); y <= region.bottom(); ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(m_image.scanLine(y)) + region.left();
        std::fill_n(line, region.width(), m_ground.around);
    }
    const QRect striped = m_extent.isEmpty() ? QRect() : PictureRect(m_extent) & region;
    for (int y = striped.top(); y <= striped.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(m_image.scanLine(y));
        for (int x = striped.left(); x <= striped.right(); ++x)
            if ((x + y) / kStripe % 2 == 0) line[x] = m_ground.missing;
    }
}

void PictureView::PaintNearest(const QImage& level, int factor, const QRect& region) {
    const bool hasAlpha = m_picture->HasAlpha();
    const auto columnOf = [&](int x) {
        return std::clamp(m_place.PixelAt({x, 0}).x() / factor, 0, level.width() - 1);
    };
    std::vector<int> columns;
    for (int x = region.left(); x <= region.right(); ++x) columns.push_back(columnOf(x));
    for (int y = region.top(); y <= region.bottom(); ++y) {
        const int row = std::clamp(m_place.PixelAt({0, y}).y() / factor, 0, level.height() - 1);
        const auto* from = reinterpret_cast<const QRgb*>(level.constScanLine(row));
        QRgb* line = reinterpret_cast<QRgb*>(m_image.scanLine(y)) + region.left();
        for (size_t i = 0; i < columns.size(); ++i) {
            const QRgb pixel = from[columns[i]];
            if (!hasAlpha) {
                line[i] = pixel | 0xff000000;
                continue;
            }
            const bool isDark = ((region.left() + int(i)) / kCheck + y / kCheck) % 2 != 0;
            line[i] = Over(factor == 1 ? qPremultiply(pixel) : pixel,
                           isDark ? m_ground.checkDark : m_ground.checkLight);
        }
    }
}

void PictureView::PaintSmooth(const QImage& level, int factor, const QRect& region) {
    if (m_picture->HasAlpha()) {
        for (int y = region.top(); y <= region.bottom(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(m_image.scanLine(y));
            for (int x = region.left(); x <= region.right(); ++x)
                line[x] = (x / kCheck + y / kCheck) % 2 != 0 ? m_ground.checkDark : m_ground.checkLight;
        }
    }
    QPainter painter(&m_image);
    painter.setClipRect(region);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const double scale = m_place.zoom * factor;
    const int rows = std::max(1, m_picture->RowsOf(m_picture->LevelFor(m_place.zoom)));
    const QRectF source(0, 0, level.width(), std::min(rows, level.height()));
    painter.drawImage(QRectF(m_place.origin, source.size() * scale), level, source);
}

}  // namespace tavrin
