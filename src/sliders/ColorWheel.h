// SPDX-License-Identifier: Apache-2.0
// The colour wheel without its window: where its parts and markers stand, and what a hand does to them.
#pragma once

#include "sliders/ColorModel.h"

namespace tavrin {

// In pixels from the left top corner of the wheel's square window; y grows downward.
struct WheelPoint {
    double x = 0;
    double y = 0;
    bool operator==(const WheelPoint&) const = default;
};

// Where a direction points on the ring, in radians: 0 is up, rising clockwise, straight up is one whole turn.
// Without a direction it is to the left.
double HueOfDirection(double dx, double dy);

// A ring of the pure hues round a triangle that mixes the chosen one with white and black. A marker stands on
// each, and both together are the colour. Owned by the wheel's window.
class ColorWheel {
  public:
    // What a hand has hold of.
    enum class Part { kNone, kRing, kTriangle };

    // Shares of the window's side.
    static constexpr double kRingRadius = 0.345;  // the ring's inner one; what lies farther out is the ring
    static constexpr double kRingWidth = 0.12;
    static constexpr double kTriangleRadius = 0.31;  // of the circle through its corners

    explicit ColorWheel(double size);

    double Size() const { return m_size; }
    WheelPoint Centre() const { return {m_centre, m_centre}; }
    WheelPoint PureCorner() const { return m_pure; }
    WheelPoint WhiteCorner() const { return m_white; }
    WheelPoint BlackCorner() const { return m_black; }
    double MarkerScale() const;  // of the lengths that a marker is drawn with

    double Hue() const { return m_hue; }
    WheelPoint TriangleMarker() const { return m_point; }
    WheelPoint RingMarker() const;

    // The pure colour of the hue, and the colour that both markers show.
    Color HueColor() const { return PureColor(m_hue); }
    Color MarkerColor() const;
    // Moves the markers to a colour. For a grey the hue stays. Nothing moves for a colour that they show
    // already, which in the dark and among greys would be another hue each time, nor for one that is none.
    void SetColor(const Color& color);

    // The hand's button went down there; it moved there with the button down; the button went up. True if a
    // marker moved.
    bool Press(WheelPoint at);
    bool Drag(WheelPoint at);
    void Release() { m_held = Part::kNone; }
    Part Held() const { return m_held; }

  private:
    bool IsOnRing(WheelPoint at) const;
    bool IsInTriangle(WheelPoint at) const;
    WheelPoint Constrained(WheelPoint at) const;
    bool MoveHeld(WheelPoint at);

    double m_size;
    double m_centre;
    double m_radius;     // of the triangle
    double m_side;       // of the triangle
    WheelPoint m_pure;   // at the right
    WheelPoint m_white;  // at the left above
    WheelPoint m_black;  // at the left below
    Part m_held = Part::kNone;
    double m_hue = 0;  // radians
    WheelPoint m_point;
};

}  // namespace tavrin
