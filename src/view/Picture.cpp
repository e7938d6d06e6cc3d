// SPDX-License-Identifier: Apache-2.0
#include "view/Picture.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tavrin {

namespace {

constexpr int kMostLevels = 12;

int Half(int length) { return (length + 1) / 2; }

// Of four pixels whose channels count alike.
QRgb Mean(QRgb a, QRgb b, QRgb c, QRgb d) {
    constexpr QRgb kOdd = 0x00ff00ff;
    const auto mean = [&](int shift) {
        const QRgb sum = ((a >> shift) & kOdd) + ((b >> shift) & kOdd) + ((c >> shift) & kOdd) +
                         ((d >> shift) & kOdd) + 0x00020002;
        return (sum >> 2) & kOdd;
    };
    return mean(0) | (mean(8) << 8);
}

}  // namespace

std::string Picture::TroubleWithSize(int64_t width, int64_t height) {
    if (width < 1 || height < 1) return "a picture without pixels";
    if (width <= kMostPixels && height <= kMostPixels && width * height <= kMostPixels) return {};
    return std::to_string(width) + " x " + std::to_string(height) +
           " pixels are more than this window shows (" + std::to_string(kMostPixels >> 20) +
           " million): make a smaller copy of the picture, or open it with another viewer";
}

Picture::Picture(QSize size, bool hasAlpha)
    : m_pixels(new QRgb[size_t(size.width()) * size_t(size.height())]),
      m_image(
          reinterpret_cast<const uchar*>(m_pixels.get()), size.width(), size.height(),
          qsizetype(size.width()) * qsizetype(sizeof(QRgb)),
          hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32,
          [](void* pixels) { delete static_cast<std::shared_ptr<QRgb[]>*>(pixels); },
          new std::shared_ptr<QRgb[]>(m_pixels)),
      m_hasAlpha(hasAlpha) {}

Picture::Picture(const QImage& image) : Picture(image.size(), image.hasAlphaChannel()) {
    const QImage plain = image.convertToFormat(m_image.format());
    for (int y = 0; y < Size().height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(plain.constScanLine(y));
        const QRgb opaque = m_hasAlpha ? 0 : 0xff000000;
        std::transform(line, line + Size().width(), Row(y), [opaque](QRgb pixel) { return pixel | opaque; });
    }
    RowsAreThere(Size().height());
}

size_t Picture::Bytes() const {
    size_t bytes = size_t(m_image.sizeInBytes());
    for (const Reduced& level : m_levels) bytes += size_t(level.image.sizeInBytes());
    return bytes;
}

void Picture::RowsAreThere(int rows, bool anew) {
    m_rows = std::min(rows, Size().height());
    ++m_changes;
    if (!anew) return;
    for (Reduced& level : m_levels) level.rows = 0;
}

std::optional<QRgb> Picture::At(QPoint pixel) const {
    if (!QRect(0, 0, Size().width(), m_rows).contains(pixel)) return std::nullopt;
    const QRgb value = Row(pixel.y())[pixel.x()];
    return m_hasAlpha ? value : value | 0xff000000;
}

int Picture::RowsOf(int level) const {
    int rows = m_rows;
    int height = Size().height();
    // A row of a level is there once both that it is made of are.
    for (; level > 0; --level) {
        rows = rows == height ? Half(height) : rows / 2;
        height = Half(height);
    }
    return rows;
}

int Picture::LevelFor(double zoom) const {
    int level = 0;
    QSize size = Size();
    while (zoom <= 0.5 && level < kMostLevels && (size.width() > 1 || size.height() > 1)) {
        zoom *= 2;
        size = {Half(size.width()), Half(size.height())};
        ++level;
    }
    return level;
}

const QImage& Picture::Level(int level) {
    if (level == 0) return m_image;
    while (int(m_levels.size()) < level) {
        const QSize size = m_levels.empty() ? Size() : m_levels.back().image.size();
        m_levels.push_back({QImage(Half(size.width()), Half(size.height()),
                                   m_hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32),
                            0});
    }
    for (int at = 1; at <= level; ++at) {
        Reduced& reduced = m_levels[size_t(at) - 1];
        const int rows = RowsOf(at);
        if (reduced.rows < rows)
            Reduce(at == 1 ? m_image : m_levels[size_t(at) - 2].image, reduced, rows, at == 1 && m_hasAlpha);
    }
    return m_levels[size_t(level) - 1].image;
}

void Picture::Reduce(const QImage& from, Reduced& to, int rows, bool fromPlain) const {
    const int width = to.image.width();
    const int last = from.width() - 1;
    for (int y = to.rows; y < rows; ++y) {
        const auto* upper = reinterpret_cast<const QRgb*>(from.constScanLine(2 * y));
        const auto* lower =
            reinterpret_cast<const QRgb*>(from.constScanLine(std::min(2 * y + 1, from.height() - 1)));
        auto* line = reinterpret_cast<QRgb*>(to.image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const int left = 2 * x;
            const int right = std::min(left + 1, last);
            line[x] = fromPlain ? Mean(qPremultiply(upper[left]), qPremultiply(upper[right]),
                                       qPremultiply(lower[left]), qPremultiply(lower[right]))
                                : Mean(upper[left], upper[right], lower[left], lower[right]);
        }
    }
    to.rows = rows;
}

QImage Picture::Thumbnail(QSize most) {
    const QSize size = Size().scaled(most, Qt::KeepAspectRatio).expandedTo({1, 1}).boundedTo(Size());
    const int level = LevelFor(double(size.width()) / Size().width());
    const QImage& source = Level(level);
    const int rows = RowsOf(level);
    QImage small(size, QImage::Format_ARGB32_Premultiplied);
    small.fill(Qt::transparent);
    QPainter painter(&small);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const double scale = double(size.height()) / source.height();
    painter.drawImage(QRectF(0, 0, size.width(), rows * scale), source, QRectF(0, 0, source.width(), rows));
    return small;
}

}  // namespace tavrin
