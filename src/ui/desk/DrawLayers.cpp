#include "ui/desk/DrawLayers.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>

namespace tavrin {

namespace {

constexpr float kCellPixels = 64;

// Of cells, for a position that may be anything.
size_t Clamped(float position, size_t count) {
    return static_cast<size_t>(std::clamp(position, 0.0F, static_cast<float>(count - 1)));
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

DrawLayers::Cells DrawLayers::CellsOf(const DeskRect& bounds) const {
    return {Clamped((bounds.left - m_view.left) / m_cell, m_columns),
            Clamped((bounds.Right() - m_view.left) / m_cell, m_columns),
            Clamped((bounds.bottom - m_view.bottom) / m_cell, m_rows),
            Clamped((bounds.Top() - m_view.bottom) / m_cell, m_rows)};
}

void DrawLayers::BeginObject(const DeskRect& bounds) {
    if (!m_inObject) m_firstLayer = m_used;
    m_inObject = true;
    m_current = m_firstLayer;
    const Cells cells = CellsOf(bounds);
    for (size_t row = cells.bottom; row <= cells.top; ++row) {
        for (size_t column = cells.left; column <= cells.right; ++column) {
            for (const Object& object : m_cells[row * m_columns + column]) {
                if (object.layer >= m_current && object.bounds.Overlaps(bounds)) m_current = object.layer + 1;
            }
        }
    }
    for (size_t row = cells.bottom; row <= cells.top; ++row) {
        for (size_t column = cells.left; column <= cells.right; ++column) {
            m_cells[row * m_columns + column].push_back({bounds, m_current});
        }
    }
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
    auto& polygons = LayerFor(Kind::kPolygons).polygons;
    for (size_t i = 1; i + 1 < corners.size(); i += 2) {
        const size_t last = std::min(i + 2, corners.size() - 1);
        for (const size_t corner : {size_t{0}, i, i + 1, last}) polygons.push_back({corners[corner], color});
    }
}

void DrawLayers::AddPicture(const TextureRect& texture, DeskPoint low, DeskPoint high, const Rgb& color) {
    auto& pictures = LayerFor(Kind::kPictures).pictures;
    pictures.push_back({low, texture.low, color});
    pictures.push_back({{high.x, low.y}, {texture.high.x, texture.low.y}, color});
    pictures.push_back({high, texture.high, color});
    pictures.push_back({{low.x, high.y}, {texture.low.x, texture.high.y}, color});
}

void DrawLayers::AddLine(std::span<const DeskPoint> points, const LineLook& look) {
    Layer& layer = LayerFor(Kind::kLines);
    const auto first = static_cast<int>(layer.lines.size());
    if (look.stippled) {
        for (const DeskPoint& point : points) layer.lines.push_back({point, look.color});
        layer.runs.push_back({look.width, true, first, static_cast<int>(points.size())});
        return;
    }
    for (size_t i = 1; i < points.size(); ++i) {
        layer.lines.push_back({points[i - 1], look.color});
        layer.lines.push_back({points[i], look.color});
    }
    const bool goesOn =
        !layer.runs.empty() && !layer.runs.back().stippled && layer.runs.back().width == look.width;
    if (!goesOn) layer.runs.push_back({look.width, false, first, 0});
    layer.runs.back().count = static_cast<int>(layer.lines.size()) - layer.runs.back().first;
}

void DrawLayers::Clear() {
    for (size_t i = 0; i < m_used; ++i) {
        Layer& layer = m_layers[i];
        layer.faces.clear();
        layer.pictures.clear();
        layer.lines.clear();
        layer.runs.clear();
        layer.polygons.clear();
    }
    ForgetObjects();
    m_used = 0;
    m_current = 0;
    m_firstLayer = 0;
    m_kind = Kind::kFaces;
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

void DrawLayers::DrawPictures(const std::vector<PictureVertex>& vertices) {
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_GREATER, 0.5F);
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
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_TEXTURE_2D);
}

void DrawLayers::DrawLines(const Layer& layer, float pixelRatio) {
    if (layer.lines.empty()) return;
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(2, GL_FLOAT, sizeof(Vertex), &layer.lines[0].at);
    glColorPointer(3, GL_FLOAT, sizeof(Vertex), &layer.lines[0].color);
    for (const Run& run : layer.runs) {
        glLineWidth(run.width * pixelRatio);
        if (run.stippled) glEnable(GL_LINE_STIPPLE);
        glDrawArrays(run.stippled ? GL_LINE_STRIP : GL_LINES, run.first, run.count);
        if (run.stippled) glDisable(GL_LINE_STIPPLE);
    }
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}

}  // namespace tavrin
