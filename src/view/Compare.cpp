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
    for (int y = 0; y < difference.common.height(); ++y)
        CompareRow(one.Row(y), other.Row(y), difference.picture->Row(y), difference.common.width(),
                   opaque(one), opaque(other), gain, sums);
    difference.picture->RowsAreThere(difference.common.height());
    const int channels = one.HasAlpha() || other.HasAlpha() ? 4 : 3;
    difference.greatest = sums.greatest;
    difference.mean = double(sums.total) / channels / difference.common.width() / difference.common.height();
    return difference;
}

}  // namespace tavrin
