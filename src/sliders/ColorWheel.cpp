// SPDX-License-Identifier: Apache-2.0
#include "sliders/ColorWheel.h"

#include <algorithm>
#include <cmath>

namespace tavrin {

namespace {

constexpr double kHalfTurn = 3.14159265;
constexpr double kQuarterTurn = 1.570796325;
constexpr double kThreeQuarterTurn = 4.712388975;
constexpr double kMarkerScale = 6.5;  // of the ring's width

const double kSin60 = std::sin(1.04719755);
const double kTan30 = std::tan(0.523598775);

// Beyond this, 64 bits have no digits left for a place in the triangle.
constexpr float kLargest = 1e6F;

bool IsColor(const Color& color) {
    const auto isComponent = [](float component) { return std::abs(component) <= kLargest; };
    return isComponent(color.r) && isComponent(color.g) && isComponent(color.b);
}

}  // namespace

double HueOfDirection(double dx, double dy) {
    if (dy == 0) return dx > 0 ? kQuarterTurn : kThreeQuarterTurn;
    const double angle = std::atan(std::abs(dx / dy));
    if (dy < 0) return dx > 0 ? angle : kWholeTurn - angle;
    return dx > 0 ? kHalfTurn - angle : angle + kHalfTurn;
}

ColorWheel::ColorWheel(double size)
    : m_size(size),
      m_centre(0.5 * size),
      m_radius(kTriangleRadius * size),
      m_side(2 * kSin60 * m_radius),
      m_pure{m_centre + m_radius, m_centre},
      m_white{m_centre - 0.5 * m_radius, m_centre - kSin60 * m_radius},
      m_black{m_white.x, m_centre + kSin60 * m_radius},
      m_point(m_pure) {}

double ColorWheel::MarkerScale() const { return kMarkerScale * kRingWidth * m_size; }

WheelPoint ColorWheel::RingMarker() const {
    const double radius = (kRingRadius + 0.5 * kRingWidth) * m_size;
    return {m_centre + std::sin(m_hue) * radius, m_centre - std::cos(m_hue) * radius};
}

// A line from the pure corner through the marker meets the left edge at a grey: the colour lies between both.
Color ColorWheel::MarkerColor() const {
    const Color pure = HueColor();
    if (m_point.x == m_pure.x) return pure;
    const double slope = (m_point.y - m_centre) / (m_point.x - m_pure.x);
    const double edgeY = m_point.y - slope * m_point.x + m_white.x * slope;
    const double grey = (m_black.y - edgeY) / m_side;
    const double greyShare = (m_pure.x - m_point.x) / (1.5 * m_radius);
    const auto mixed = [&](float component) {
        const double sum = static_cast<double>(component) * (1 - greyShare) + greyShare * grey;
        return static_cast<float>(std::clamp(sum, 0.0, 1.0));
    };
    return {mixed(pure.r), mixed(pure.g), mixed(pure.b)};
}

// The pure color of a hue has nothing of one component and all of another. So what a color has of the first
// is the part of white in it, and what it has of the other beyond that is how much of the pure one there is.
void ColorWheel::SetColor(const Color& color) {
    if (!IsColor(color) || color == Rounded(MarkerColor())) return;
    if (color.r == color.g && color.g == color.b) {
        m_point = Constrained({m_black.x, m_black.y - static_cast<double>(color.r) * m_side});
        return;
    }
    m_hue = static_cast<double>(HslOf(color).h) * kWholeTurn;
    const double base = std::min({color.r, color.g, color.b});
    const double most = std::max({color.r, color.g, color.b});
    const double pureShare = most - base;
    const double rest = 1 - pureShare;
    WheelPoint point{m_black.x + 1.5 * m_radius * pureShare, m_pure.y};
    if (rest != 0) point.y = (m_black.y - (base / rest) * m_side - m_pure.y) * rest + m_pure.y;
    m_point = Constrained(point);
}

bool ColorWheel::IsOnRing(WheelPoint at) const {
    const double dx = at.x - m_centre;
    const double dy = at.y - m_centre;
    const double radius = kRingRadius * m_size;
    return dx * dx + dy * dy > radius * radius;
}

bool ColorWheel::IsInTriangle(WheelPoint at) const {
    return at.x >= m_black.x && std::abs(at.y - m_pure.y) <= (m_pure.x - at.x) * kTan30;
}

// A point outside comes to where a ray to it from the centre leaves the triangle.
WheelPoint ColorWheel::Constrained(WheelPoint at) const {
    if (IsInTriangle(at)) return at;
    const double dx = at.x - m_centre;
    const double dy = at.y - m_centre;
    if (dy == 0) return {dx < 0 ? m_black.x : m_pure.x, at.y};
    if (dx < 0 && std::abs(dx / dy) > kTan30) return {m_black.x, m_centre - (m_centre - m_black.x) * dy / dx};
    const double slope = dy < 0 ? kTan30 : -kTan30;
    const double atLeft = m_pure.y - m_pure.x * slope;
    if (dx == 0) return {at.x, slope * at.x + atLeft};
    const double ray = dy / dx;
    const double x = (at.y - ray * at.x - atLeft) / (slope - ray);
    return {x, slope * x + atLeft};
}

bool ColorWheel::Press(WheelPoint at) {
    m_held = IsOnRing(at) ? Part::kRing : Part::kTriangle;
    return MoveHeld(at);
}

// With nothing in hand, the hand takes what it comes to.
bool ColorWheel::Drag(WheelPoint at) {
    if (m_held == Part::kNone && IsOnRing(at)) m_held = Part::kRing;
    if (m_held == Part::kNone && IsInTriangle(at)) m_held = Part::kTriangle;
    return MoveHeld(at);
}

bool ColorWheel::MoveHeld(WheelPoint at) {
    const double hue = m_hue;
    const WheelPoint point = m_point;
    if (m_held == Part::kRing) m_hue = HueOfDirection(at.x - m_centre, at.y - m_centre);
    if (m_held == Part::kTriangle) m_point = Constrained(at);
    return m_hue != hue || m_point != point;
}

}  // namespace tavrin
