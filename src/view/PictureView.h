// SPDX-License-Identifier: Apache-2.0
// A picture as a canvas shows it: where it stands, and its pixels there.
#pragma once

#include <QImage>
#include <QPointF>
#include <QRegion>
#include <QSize>
#include <memory>

#include "view/Picture.h"

namespace tavrin {

// Where a picture stands on a canvas, in device pixels. A plain value.
struct ViewPlace {
    static constexpr double kLeastZoom = 1.0 / 256;
    static constexpr double kMostZoom = 64;

    double zoom = 1;  // device pixels for one of the picture
    QPointF origin;   // of the picture's left top corner

    QPointF ToCanvas(QPointF picture) const { return origin + picture * zoom; }
    QPointF ToPicture(QPointF canvas) const { return (canvas - origin) / zoom; }
    // The pixel of the picture under a device pixel.
    QPoint PixelAt(QPoint canvas) const;

    // The largest place in which all of a picture is seen, in the middle; not larger than life, unless
    // that is tiny.
    static ViewPlace Fit(QSize picture, QSize canvas);
    // In the middle, at this zoom.
    static ViewPlace Centred(QSize picture, QSize canvas, double zoom);
    // At another zoom, with what is under the point left under it.
    ViewPlace Zoomed(double to, QPointF about) const;
    // So that something of the picture can be seen, and all of it where it fits along an axis.
    ViewPlace Held(QSize picture, QSize canvas) const;

    bool operator==(const ViewPlace&) const = default;
};

// What is seen where there is no picture. Plain colours that go with the theme.
struct ViewGround {
    QRgb around = 0xff202124;      // beside the picture
    QRgb missing = 0xff303338;     // a stripe where only the other of two pictures is
    QRgb checkLight = 0xffb4b4b4;  // behind what is not opaque
    QRgb checkDark = 0xff8c8c8c;

    bool operator==(const ViewGround&) const = default;
};

// One canvas full of a picture, kept until something changes: a view is put together from such ones by
// copying alone. Nearest pixels from 2:1 on and at 1:1, smooth in between and below.
class PictureView {
  public:
    // Brings it up to date. `extent`: what the picture is compared with reaches so far; what it has not of
    // that is striped. Null shows the ground alone.
    void Show(const PicturePtr& picture, QSize canvas, const ViewPlace& place, QSize extent,
              const ViewGround& ground);
    // In device pixels, ratio 1.
    const QImage& Image() const { return m_image; }

  private:
    void Paint(const QRect& region);
    void PaintGround(const QRect& region);
    void PaintNearest(const QImage& level, int factor, const QRect& region);
    void PaintSmooth(const QImage& level, int factor, const QRect& region);
    QRect PictureRect(QSize size) const;

    QImage m_image;
    PicturePtr m_picture;
    ViewPlace m_place;
    QSize m_extent;
    ViewGround m_ground;
    int m_changes = -1;
    int m_rows = 0;
};

}  // namespace tavrin
