// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/SmoothStroke.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tavrin {

namespace {

Rgb Covered(const Rgb& color, float cover) { return {color.r * cover, color.g * cover, color.b * cover}; }

// From `low` to `high` beside the way from start to end, covering as told at each.
void AddBand(DeskPoint start, DeskPoint end, DeskPoint beside, float low, float lowCover, float high,
             float highCover, const Rgb& color, std::vector<StrokeCorner>& corners) {
    const auto add = [&](DeskPoint at, float distance, float cover) {
        corners.push_back(
            {{at.x + beside.x * distance, at.y + beside.y * distance}, Covered(color, cover), cover});
    };
    add(start, low, lowCover);
    add(end, low, lowCover);
    add(end, high, highCover);
    add(start, high, highCover);
}

}  // namespace

void AddStroke(std::span<const DeskPoint> points, float width, float pixel, const Rgb& color,
               std::vector<StrokeCorner>& corners) {
    const float half = width * 0.5F * pixel;
    for (size_t i = 1; i < points.size(); ++i) {
        DeskPoint start = points[i - 1];
        DeskPoint end = points[i];
        const float length = std::hypot(end.x - start.x, end.y - start.y);
        if (!(length > 0)) continue;
        const DeskPoint along{(end.x - start.x) / length, (end.y - start.y) / length};
        const DeskPoint beside{-along.y, along.x};
        if (i > 1) start = {start.x - along.x * half, start.y - along.y * half};
        if (i + 1 < points.size()) end = {end.x + along.x * half, end.y + along.y * half};
        if (along.x == 0 || along.y == 0) {
            AddBand(start, end, beside, -half, 1, half, 1, color, corners);
            continue;
        }
        const float core = std::max(half - 0.5F * pixel, 0.0F);
        const float edge = core + pixel;
        AddBand(start, end, beside, -core, 1, core, 1, color, corners);
        AddBand(start, end, beside, -edge, 0, -core, 1, color, corners);
        AddBand(start, end, beside, core, 1, edge, 0, color, corners);
    }
}

// The alpha of the window stays whole, so that nothing shines through it.
void DrawStrokes(const StrokeCorner* corners, int count) {
    if (count == 0) return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glShadeModel(GL_SMOOTH);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    static_assert(sizeof(Rgb) == 3 * sizeof(float) &&
                  offsetof(StrokeCorner, cover) == offsetof(StrokeCorner, color) + sizeof(Rgb));
    glVertexPointer(2, GL_FLOAT, sizeof(StrokeCorner), &corners->at);
    glColorPointer(4, GL_FLOAT, sizeof(StrokeCorner), &corners->color);
    glDrawArrays(GL_QUADS, 0, count);
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    glShadeModel(GL_FLAT);
    glDisable(GL_BLEND);
}

}  // namespace tavrin
