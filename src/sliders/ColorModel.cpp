// SPDX-License-Identifier: Apache-2.0
#include "sliders/ColorModel.h"

#include <algorithm>

#include "sliders/NumberText.h"

namespace tavrin {

namespace {

constexpr double kSextants = 6;
constexpr float kOneSixth = 0.16666667F;
constexpr double kTurnsInRadian = 0.15915494327375637;

struct Components {
    double r, g, b;
    double least, most;
};

// In sixths of a turn. `range` is the most less the least.
double Sextants(const Components& color, double range) {
    const double r2 = (color.most - color.r) / range;
    const double g2 = (color.most - color.g) / range;
    const double b2 = (color.most - color.b) / range;
    if (color.r == color.most) return color.g == color.least ? 5 + b2 : 1 - g2;
    if (color.g == color.most) return color.b == color.least ? 1 + r2 : 3 - b2;
    return color.r == color.least ? 3 + g2 : 5 - r2;
}

Color Of(double r, double g, double b) {
    return {static_cast<float>(r), static_cast<float>(g), static_cast<float>(b)};
}

Color ColorOf(double hue, double saturation, double lightness) {
    const double top =
        lightness <= 0.5 ? (saturation + 1) * lightness : saturation + lightness - saturation * lightness;
    if (!(top > 0)) return {};
    const double low = 2 * lightness - top;
    const double sextants = hue * kSextants;
    const int sextant = static_cast<int>(sextants);
    const double fraction = sextants - sextant;
    const double share = (top - low) / top;
    const double rise = top * share * fraction;
    const double rising = low + rise;
    const double falling = top - rise;
    switch (sextant % 6) {
        case 0:
            return Of(top, rising, low);
        case 1:
            return Of(falling, top, low);
        case 2:
            return Of(low, top, rising);
        case 3:
            return Of(low, falling, top);
        case 4:
            return Of(rising, low, top);
        default:
            return Of(top, low, falling);
    }
}

}  // namespace

Hsl HslOf(const Color& color) {
    Components parts{color.r, color.g, color.b, 0, 0};
    parts.most = std::max({parts.r, parts.g, parts.b});
    parts.least = std::min({parts.r, parts.g, parts.b});
    const double sum = parts.most + parts.least;
    const double lightness = sum * 0.5;
    Hsl hsl{0, 0, static_cast<float>(lightness)};
    const double range = parts.most - parts.least;
    if (!(lightness > 0) || !(range > 0)) return hsl;
    hsl.s = static_cast<float>(range / (lightness <= 0.5 ? sum : 2 - sum));
    const double sextants = Sextants(parts, range);
    // Red comes out at the end of the turn.
    if (sextants < kSextants) hsl.h = static_cast<float>(sextants * static_cast<double>(kOneSixth));
    return hsl;
}

Color ColorOf(const Hsl& hsl) {
    return ColorOf(static_cast<double>(hsl.h), static_cast<double>(hsl.s), static_cast<double>(hsl.l));
}

Color PureColor(double angle) {
    const double positive = angle < 0 ? angle + kWholeTurn : angle;
    return ColorOf(positive * kTurnsInRadian, 1, 0.5);
}

Color Rounded(const Color& color) {
    return {RoundedToThousandths(color.r), RoundedToThousandths(color.g), RoundedToThousandths(color.b)};
}

}  // namespace tavrin
