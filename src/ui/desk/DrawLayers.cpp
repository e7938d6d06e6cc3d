// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DrawLayers.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>

namespace tavrin {

namespace {

constexpr float kCellPixels = 64;
// Objects of a cell that are told apart. Beyond them they count as one, which may put what comes later into
// a higher layer than it needs, but bounds the search where all of a network lies on one spot.
constexpr size_t kMostInCell = 64;
// Memory of a layer and of the layers together that is kept in any case: vertices and layers.
constexpr size_t kLittle = 256;

// The cell of a position, which may be anything, not a number as well.
size_t Clamped(float position, size_t count) {
    if (!(position > 0)) return 0;
    return static_cast<size_t>(std::min(position, static_cast<float>(count - 1)));
}

// Whether so much memory is far more than what was needed.
bool IsFarMore(size_t memory, size_t used) { return memory > 4 * used + kLittle; }

template <typename Vertices>
void Empty(Vertices& vertices) {
    if (IsFarMore(vertices.capacity(), vertices.size())) {
        Vertices().swap(vertices);
    } else {
        vertices.clear();
    }
}

}  // namespace

void DrawLayers::SetView(const DeskRect& visible, float pixel) {
    m_view = visible;
    m_cell = kCellPixels * pixel;
    const auto cells = [this](float length) {
        return static_cast<size_t>(std::max(length, 0.0F) / m_cell) + 1;
    };
    m_columns = cells(visible.width);
    m_rows = cells(visible.height);
    m_cells.resize(m_columns * m_rows);
    ForgetObjects();
}

void DrawLayers::ForgetObjects() {
    for (auto& cell : m_cells) cell.clear();
}

template <typename Visit>
void DrawLayers::ForEachCell(const DeskRect& bounds, Visit visit) {
    const size_t left = Clamped((bounds.left - m_view.left) / m_cell, m_columns);
    const size_t right = Clamped((bounds.Right() - m_view.left) / m_cell, m_columns);
    const size_t bottom = Clamped((bounds.bottom - m_view.bottom) / m_cell, m_rows);
    const size_t top = Clamped((bounds.Top() - m_view.bottom) / m_cell, m_rows);
    for (size_t row = bottom; row <= top; ++row) {
        for (size_t column = left; column <= right; ++column) visit(m_cells[row * m_columns + column]);
    }
}

void DrawLayers::BeginObject(const DeskRect& bounds) {
    if (!m_inObject) m_firstLayer = m_used;
    m_inObject = true;
    m_bounds = bounds;
    m_current = m_firstLayer;
    ForEachCell(bounds, [&](const std::vector<Object>& cell) {
        for (const Object& object : cell) {
            if (object.layer >= m_current && object.bounds.Overlaps(bounds)) m_current = object.layer + 1;
        }
    });
    RememberObject({bounds, m_current});
}

void DrawLayers::RememberObject(const Object& object) {
    ForEachCell(object.bounds, [&](std::vector<Object>& cell) {
        if (cell.size() == kMostInCell) {
            Object all = cell.front();
            for (const Object& one : cell) {
                all = {all.bounds.UnitedWith(one.bounds), std::max(all.layer, one.layer)};
            }
            cell.assign(1, all);
        }
        cell.push_back(object);
    });
}

void DrawLayers::EndObjects() {
    if (!m_inObject) return;
    m_inObject = false;
    ForgetObjects();
    m_current = m_used;
    m_kind = Kind::kFaces;
}

DrawLayers::Layer& DrawLayers::LayerAt(size_t index) {
    if (index >= m_layers.size()) m_layers.resize(index + 1);
    m_used = std::max(m_used, index + 1);
    return m_layers[index];
}

// Outside objects a kind that would come to lie below the last one begins a layer.
DrawLayers::Layer& DrawLayers::LayerFor(Kind kind) {
    if (!m_inObject) {
        if (kind < m_kind) m_current = m_used;
        m_kind = kind;
    }
    return LayerAt(m_current);
}

void DrawLayers::AddFaces(std::span<const DeskPoint> corners, const Rgb& color) {
    auto& faces = LayerFor(Kind::kFaces).faces;
    for (const DeskPoint& corner : corners) faces.push_back({corner, color});
}

// As quads that share the first corner.
void DrawLayers::AddPolygon(std::span<const DeskPoint> corners, const Rgb& color) {
    if (corners.size() < 3) return;
    auto& polygons = LayerFor(Kind::kPolygons).polygons;
    for (size_t i = 1; i + 1 < corners.size(); i += 2) {
        const size_t last = std::min(i + 2, corners.size() - 1);
        for (const size_t corner : {size_t{0}, i, i + 1, last}) polygons.push_back({corners[corner], color});
    }
}

void DrawLayers::AddPicture(const Span& texture, const Span& window, const Rgb& color) {
    auto& pictures = LayerFor(Kind::kPictures).pictures;
    pictures.push_back({window.low, texture.low, color});
    pictures.push_back({{window.high.x, window.low.y}, {texture.high.x, texture.low.y}, color});
    pictures.push_back({window.high, texture.high, color});
    pictures.push_back({{window.low.x, window.high.y}, {texture.low.x, texture.high.y}, color});
}

void DrawLayers::AddLine(std::span<const DeskPoint> points, const LineLook& look) {
    if (points.size() < 2) return;
    Layer& layer = LayerFor(Kind::kLines);
    const auto first = static_cast<int>(layer.lines.size());
    if (look.stippled) {
        for (const DeskPoint& point : points) layer.lines.push_back({point, look.color});
        layer.runs.push_back({look.width, true, false, first, static_cast<int>(points.size())});
        return;
    }
    for (size_t i = 1; i < points.size(); ++i) {
        layer.lines.push_back({points[i - 1], look.color});
        layer.lines.push_back({points[i], look.color});
    }
    const bool goesOn = !layer.runs.empty() && !layer.runs.back().stippled && !layer.runs.back().smooth &&
                        layer.runs.back().width == look.width;
    if (!goesOn) layer.runs.push_back({look.width, false, false, first, 0});
    layer.runs.back().count = static_cast<int>(layer.lines.size()) - layer.runs.back().first;
}

void DrawLayers::AddSmoothLine(std::span<const DeskPoint> points, const LineLook& look, float pixel) {
    if (points.size() < 2) return;
    Layer& layer = LayerFor(Kind::kLines);
    const auto first = static_cast<int>(layer.strokes.size());
    AddStroke(points, look.width, pixel, look.color, layer.strokes);
    if (layer.runs.empty() || !layer.runs.back().smooth) layer.runs.push_back({1, false, true, first, 0});
    layer.runs.back().count = static_cast<int>(layer.strokes.size()) - layer.runs.back().first;
}

void DrawLayers::Clear() {
    for (size_t i = 0; i < m_used; ++i) {
        Layer& layer = m_layers[i];
        tavrin::Empty(layer.faces);
        tavrin::Empty(layer.pictures);
        tavrin::Empty(layer.lines);
        tavrin::Empty(layer.strokes);
        tavrin::Empty(layer.runs);
        tavrin::Empty(layer.polygons);
    }
    if (IsFarMore(m_layers.size(), m_used)) m_layers.resize(m_used);
    m_used = 0;
    m_current = 0;
    m_firstLayer = 0;
    m_kind = Kind::kFaces;
    ForgetObjects();
    if (m_inObject) RememberObject({m_bounds, 0});
}

void DrawLayers::DrawShapes(const std::vector<Vertex>& vertices) {
    if (vertices.empty()) return;
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(2, GL_FLOAT, sizeof(Vertex), &vertices[0].at);
    glColorPointer(3, GL_FLOAT, sizeof(Vertex), &vertices[0].color);
    glDrawArrays(GL_QUADS, 0, static_cast<GLsizei>(vertices.size()));
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}

void DrawLayers::DrawPictures(const std::vector<PictureVertex>& vertices, float pixelRatio) {
    glPushMatrix();
    glLoadIdentity();
    glScalef(1 / pixelRatio, 1 / pixelRatio, 1);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(2, GL_FLOAT, sizeof(PictureVertex), &vertices[0].at);
    glTexCoordPointer(2, GL_FLOAT, sizeof(PictureVertex), &vertices[0].texture);
    glColorPointer(3, GL_FLOAT, sizeof(PictureVertex), &vertices[0].color);
    glDrawArrays(GL_QUADS, 0, static_cast<GLsizei>(vertices.size()));
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
    glPopMatrix();
}

void DrawLayers::DrawLines(const Layer& layer) {
    for (const Run& run : layer.runs) {
        if (run.smooth) {
            DrawStrokes(layer.strokes.data() + run.first, run.count);
            continue;
        }
        glEnableClientState(GL_VERTEX_ARRAY);
        glEnableClientState(GL_COLOR_ARRAY);
        glVertexPointer(2, GL_FLOAT, sizeof(Vertex), &layer.lines[0].at);
        glColorPointer(3, GL_FLOAT, sizeof(Vertex), &layer.lines[0].color);
        glLineWidth(run.width);
        if (run.stippled) glEnable(GL_LINE_STIPPLE);
        glDrawArrays(run.stippled ? GL_LINE_STRIP : GL_LINES, run.first, run.count);
        if (run.stippled) glDisable(GL_LINE_STIPPLE);
        glDisableClientState(GL_COLOR_ARRAY);
        glDisableClientState(GL_VERTEX_ARRAY);
    }
}

}  // namespace tavrin
