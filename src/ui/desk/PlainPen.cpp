// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/PlainPen.h"

#include <GL/gl.h>

#include <vector>

#include "ui/desk/SmoothStroke.h"

namespace tavrin {

namespace {

// Not without a point: at least one renderer then loses the shape that follows.
void Shape(GLenum kind, std::span<const DeskPoint> points, const Rgb& color) {
    if (points.empty()) return;
    glColor3f(color.r, color.g, color.b);
    glBegin(kind);
    for (const DeskPoint& point : points) glVertex2f(point.x, point.y);
    glEnd();
}

}  // namespace

void PlainPen::Quads(std::span<const DeskPoint> corners, const Rgb& color) {
    Shape(GL_QUADS, corners, color);
}

void PlainPen::Polygon(std::span<const DeskPoint> corners, const Rgb& color) {
    Shape(GL_POLYGON, corners, color);
}

void PlainPen::Line(std::span<const DeskPoint> points, const LineLook& look) {
    if (IsSmooth(look)) {
        std::vector<StrokeCorner> corners;
        AddStroke(points, DeviceWidth(look), 1 / DevicePixels(), look.color, corners);
        DrawStrokes(corners.data(), static_cast<int>(corners.size()));
        return;
    }
    glLineWidth(DeviceWidth(look));
    if (look.stippled) glEnable(GL_LINE_STIPPLE);
    Shape(GL_LINE_STRIP, points, look.color);
    if (look.stippled) glDisable(GL_LINE_STIPPLE);
}

void PlainPen::Text(int font, const std::string& text, const Rgb& color, DeskPoint at) {
    TextByLists(font, text, color, at);
}

void PlainPen::Cover(const Glyph& mark, const Rgb& color, int x, int y) { CoverByPixels(mark, color, x, y); }

void PlainPen::Image(const CSgiImage& image, DeskPoint lowerLeft) {
    ImageByPixels(image, lowerLeft, 1 / Pixel());
}

}  // namespace tavrin
