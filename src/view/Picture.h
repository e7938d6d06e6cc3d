// SPDX-License-Identifier: Apache-2.0
// A picture in memory that may still be growing.
#pragma once

#include <QImage>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

// Pixels of 8 bits a channel, RGB32 (the fourth byte is 255) or ARGB32 (not premultiplied), and smaller
// copies of them for views from afar. Shared by all who show it; main thread only.
class Picture {
  public:
    // What may be shown: more would take memory that the desk and the renderer need.
    static constexpr int64_t kMostPixels = int64_t{64} << 20;
    // Why a picture of that size is not shown; empty if it is.
    static std::string TroubleWithSize(int64_t width, int64_t height);

    // Of a size without trouble; no row is there yet.
    Picture(QSize size, bool hasAlpha);
    // A whole one.
    explicit Picture(const QImage& image);
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    QSize Size() const { return m_image.size(); }
    bool HasAlpha() const { return m_hasAlpha; }
    // So many rows from the top are there.
    int Rows() const { return m_rows; }
    bool IsWhole() const { return m_rows == Size().height(); }
    size_t Bytes() const;
    // Grows with each change.
    int Changes() const { return m_changes; }

    // To be written, and told afterwards: so many rows are there. `anew`: those that were there may have
    // changed.
    QRgb* Row(int y) { return m_pixels.get() + size_t(y) * size_t(Size().width()); }
    const QRgb* Row(int y) const { return m_pixels.get() + size_t(y) * size_t(Size().width()); }
    void RowsAreThere(int rows, bool anew = false);

    // None outside, and where nothing is yet.
    std::optional<QRgb> At(QPoint pixel) const;
    // All of it, shared: what is written later is seen in it.
    const QImage& Image() const { return m_image; }
    // Each pixel of level 1 is the mean of four of this picture, and so on; level 0 is the picture. Made when
    // it is asked for; those with alpha are premultiplied. Rows that are not there yet hold anything.
    const QImage& Level(int level);
    // How many rows of a level are there.
    int RowsOf(int level) const;
    // The lowest level that has a pixel for each of a view at this zoom (pixels shown for one of the
    // picture).
    int LevelFor(double zoom) const;

    // A small copy; rows that are not there are left transparent.
    QImage Thumbnail(QSize most);

  private:
    struct Reduced {
        QImage image;
        int rows = 0;  // that are up to date
    };
    void Reduce(const QImage& from, Reduced& to, int rows, bool fromPlain) const;

    std::shared_ptr<QRgb[]> m_pixels;
    QImage m_image;  // of these pixels
    bool m_hasAlpha;
    int m_rows = 0;
    int m_changes = 0;
    std::vector<Reduced> m_levels;  // from 1 on
};

using PicturePtr = std::shared_ptr<Picture>;

}  // namespace tavrin
