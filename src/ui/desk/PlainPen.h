// SPDX-License-Identifier: Apache-2.0
// Draws the desk shape by shape.
#pragma once

#include "ui/desk/DeskPen.h"

namespace tavrin {

// Every shape goes to the context as it is told, letters as bitmaps and icons as pixels. It asks for nothing
// but OpenGL 1.1, and shows what the faster pen is measured by.
class PlainPen : public DeskPen {
  public:
    using DeskPen::DeskPen;

    void Polygon(std::span<const DeskPoint> corners, const Rgb& color) override;
    void Line(std::span<const DeskPoint> points, const LineLook& look) override;

  protected:
    void Quads(std::span<const DeskPoint> corners, const Rgb& color) override;
    void Text(int font, const std::string& text, const Rgb& color, DeskPoint at) override;
    void Image(const CSgiImage& image, DeskPoint lowerLeft) override;
    void Cover(const Glyph& mark, const Rgb& color, int x, int y) override;
};

}  // namespace tavrin
