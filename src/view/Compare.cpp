// SPDX-License-Identifier: Apache-2.0
#include "view/Compare.h"

#include <algorithm>
#include <cstdlib>

namespace tavrin {

namespace {

constexpr int kMost = 255;

struct Sums {
    int greatest = 0;
    uint64_t total = 0;
};

// Opaque pixels by their bytes, of which the fourth are the same: many at once. So few that the sum fits.
constexpr size_t kBytesAtOnce = size_t{1} << 20;

void CompareBytes(const uint8_t* one, const uint8_t* other, uint8_t* to, size_t count, unsigned gain,
                  Sums& sums) {
    uint32_t total = 0;
    uint8_t greatest = 0;
    for (size_t i = 0; i < count; ++i) {
        const auto apart = static_cast<uint8_t>(std::max(one[i], other[i]) - std::min(one[i], other[i]));
        total += apart;
        greatest = std::max(greatest, apart);
        to[i] = static_cast<uint8_t>(std::min<unsigned>(kMost, apart * gain));
    }
    sums.total += total;
    sums.greatest = std::max<int>(sums.greatest, greatest);
}

void CompareOpaqueRow(const QRgb* one, const QRgb* other, QRgb* to, int width, int gain, Sums& sums) {
    const size_t bytes = static_cast<size_t>(width) * sizeof(QRgb);
    for (size_t at = 0; at < bytes; at += kBytesAtOnce)
        CompareBytes(reinterpret_cast<const uint8_t*>(one) + at, reinterpret_cast<const uint8_t*>(other) + at,
                     reinterpret_cast<uint8_t*>(to) + at, std::min(kBytesAtOnce, bytes - at),
                     static_cast<unsigned>(gain), sums);
}

// One row; `opaque` is or-ed to pixels whose fourth byte says nothing.
void CompareRow(const QRgb* one, const QRgb* other, QRgb* to, int width, QRgb oneOpaque, QRgb otherOpaque,
                int gain, Sums& sums) {
    uint64_t total = 0;
    int greatest = 0;
    for (int x = 0; x < width; ++x) {
        const QRgb a = one[x] | oneOpaque;
        const QRgb b = other[x] | otherOpaque;
        const int alpha = std::abs(qAlpha(a) - qAlpha(b));
        const int red = std::abs(qRed(a) - qRed(b));
        const int green = std::abs(qGreen(a) - qGreen(b));
        const int blue = std::abs(qBlue(a) - qBlue(b));
        total += uint64_t(red + green + blue + alpha);
        greatest = std::max({greatest, red, green, blue, alpha});
        const auto shown = [&](int difference) {
            return std::min(kMost, std::max(difference, alpha) * gain);
        };
        to[x] = qRgb(shown(red), shown(green), shown(blue));
    }
    sums.total += total;
    sums.greatest = std::max(sums.greatest, greatest);
}

}  // namespace

PictureDifference DifferenceOf(const Picture& one, const Picture& other, int gain) {
    PictureDifference difference;
    difference.all = one.Size().expandedTo(other.Size());
    difference.common = {std::min(one.Size().width(), other.Size().width()),
                         std::min(one.Rows(), other.Rows())};
    if (difference.common.isEmpty()) return difference;
    difference.picture = std::make_shared<Picture>(difference.common, false);
    const auto opaque = [](const Picture& picture) {
        return picture.HasAlpha() ? QRgb(0) : QRgb(0xff000000);
    };
    Sums sums;
    const int width = difference.common.width();
    for (int y = 0; y < difference.common.height(); ++y) {
        QRgb* row = difference.picture->Row(y);
        if (one.HasAlpha() || other.HasAlpha()) {
            CompareRow(one.Row(y), other.Row(y), row, width, opaque(one), opaque(other), gain, sums);
        } else {
            CompareOpaqueRow(one.Row(y), other.Row(y), row, width, gain, sums);
        }
    }
    difference.picture->RowsAreThere(difference.common.height());
    const int channels = one.HasAlpha() || other.HasAlpha() ? 4 : 3;
    difference.greatest = sums.greatest;
    difference.mean = double(sums.total) / channels / difference.common.width() / difference.common.height();
    return difference;
}

}  // namespace tavrin
