// SPDX-License-Identifier: Apache-2.0
// Colours as the picker has them: as components, and as hue, saturation and lightness of the double cone.
#pragma once

namespace tavrin {

inline constexpr double kWholeTurn = 6.2831853;  // radians, wherever the picker has an angle

// All from 0 to 1. What a document holds may lie outside: nothing here fails then.
struct Color {
    float r = 0;
    float g = 0;
    float b = 0;
    bool operator==(const Color&) const = default;
};

// The double cone, by K. Fishkin's conversions in Graphics Gems: white and black are its tips, and the pure
// hues stand round its waist at the lightness 0.5. Hue is the share of a turn: 0 is red, a third is green.
struct Hsl {
    float h = 0;
    float s = 0;
    float l = 0;
};

// Greys have no hue: it is 0 for them, as for red, and never 1.
Hsl HslOf(const Color& color);
// A hue of 1 is one whole turn, which is 0 again.
Color ColorOf(const Hsl& hsl);

// The pure colour at an angle of the wheel, in radians from minus one turn to one turn.
Color PureColor(double angle);

// Each component through "%.3f" and back.
Color Rounded(const Color& color);

}  // namespace tavrin
