// SPDX-License-Identifier: Apache-2.0
// Shapes that wait to be drawn: layer above layer, and in a layer kind above kind.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "desk/DeskGeometry.h"
#include "ui/desk/DeskPen.h"
#include "ui/desk/SmoothStroke.h"

namespace tavrin {

// Shapes go to the context, as one vertex array for each kind of a layer, when Draw is called. Whoever adds a
// shape need not mind the layers: it comes above everything that it overlaps and that was added before it.
// Inside an object the kinds lie above one another in their order, whenever they come.
class DrawLayers {
  public:
    enum class Kind { kFaces, kPictures, kLines, kPolygons };
    // From the lower left to the upper right corner.
    struct Span {
        DeskPoint low;
        DeskPoint high;
    };

    // All of an object lies inside its bounds. `visible` and `pixel`, one in desk units, tell how finely
    // objects are told apart.
    void SetView(const DeskRect& visible, float pixel);
    void BeginObject(const DeskRect& bounds);
    void EndObjects();

    void AddFaces(std::span<const DeskPoint> corners, const Rgb& color);  // four corners each
    void AddPolygon(std::span<const DeskPoint> corners, const Rgb& color);
    // A part of the texture, which is 1 wide and high, fills a part of the window, in device pixels from its
    // lower left corner: however far the view is from the desk's origin, these are exact.
    void AddPicture(const Span& texture, const Span& window, const Rgb& color);
    void AddLine(std::span<const DeskPoint> points, const LineLook& look);  // its width in device pixels
    // The same with shades at its edges; `pixel` is a device pixel in desk units.
    void AddSmoothLine(std::span<const DeskPoint> points, const LineLook& look, float pixel);

    // Everything, lowest first; nothing is left. An object that has begun goes on above it. `bindTexture`
    // makes the pictures' texture the current one.
    template <typename BindTexture>
    void Draw(float pixelRatio, BindTexture bindTexture) {
        if (Empty()) return;
        for (size_t i = 0; i < m_used; ++i) {
            Layer& layer = m_layers[i];
            DrawShapes(layer.faces);
            if (!layer.pictures.empty()) {
                bindTexture();
                DrawPictures(layer.pictures, pixelRatio);
            }
            DrawLines(layer);
            DrawShapes(layer.polygons);
        }
        Clear();
    }
    bool Empty() const { return m_used == 0; }

  private:
    struct Vertex {
        DeskPoint at;
        Rgb color;
    };
    struct PictureVertex {
        DeskPoint at;
        DeskPoint texture;
        Rgb color;
    };
    // Lines that look alike but for their colour.
    struct Run {
        float width = 1;  // device pixels
        bool stippled = false;
        bool smooth = false;  // stands among the strokes
        int first = 0;
        int count = 0;
    };
    struct Layer {
        std::vector<Vertex> faces;
        std::vector<PictureVertex> pictures;
        std::vector<Vertex> lines;
        std::vector<StrokeCorner> strokes;
        std::vector<Run> runs;  // stippled ones are single strips, whose pattern runs on round corners
        std::vector<Vertex> polygons;
    };
    struct Object {
        DeskRect bounds;
        size_t layer = 0;
    };

    Layer& LayerFor(Kind kind);
    Layer& LayerAt(size_t index);
    void Clear();
    void ForgetObjects();
    void RememberObject(const Object& object);
    // Calls `visit` for the cells that a rectangle may touch; what is out of view counts for the outermost
    // ones.
    template <typename Visit>
    void ForEachCell(const DeskRect& bounds, Visit visit);
    static void DrawShapes(const std::vector<Vertex>& vertices);
    static void DrawPictures(const std::vector<PictureVertex>& vertices, float pixelRatio);
    static void DrawLines(const Layer& layer);

    std::vector<Layer> m_layers;  // kept with their memory for the next picture, which is often like this one
    size_t m_used = 0;
    bool m_inObject = false;
    DeskRect m_bounds;           // of the object
    size_t m_current = 0;        // layer of what comes next
    Kind m_kind = Kind::kFaces;  // of what came last outside objects
    size_t m_firstLayer = 0;     // of the objects
    DeskRect m_view;
    float m_cell = 1;  // side of a cell in desk units
    size_t m_columns = 1;
    size_t m_rows = 1;
    std::vector<std::vector<Object>> m_cells;
};

}  // namespace tavrin
