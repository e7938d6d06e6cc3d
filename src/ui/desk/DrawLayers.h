// Shapes that wait to be drawn: layer above layer, and in a layer kind above kind.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "desk/DeskGeometry.h"
#include "ui/desk/DeskPen.h"

namespace tavrin {

// Shapes go to the context, as one vertex array for each kind of a layer, when Draw is called. Whoever adds a
// shape need not mind the layers: it comes above everything that it overlaps and that was added before it.
// Inside an object the kinds lie above one another in their order, whenever they come.
class DrawLayers {
  public:
    enum class Kind { kFaces, kPictures, kLines, kPolygons };
    // A rectangle of the texture: from the lower left to the upper right corner, 0 to 1.
    struct TextureRect {
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
    void AddPicture(const TextureRect& texture, DeskPoint low, DeskPoint high, const Rgb& color);
    void AddLine(std::span<const DeskPoint> points, const LineLook& look);

    // Everything, lowest first; nothing is left. `bindTexture` makes the pictures' texture the current one.
    template <typename BindTexture>
    void Draw(float pixelRatio, BindTexture bindTexture) {
        for (size_t i = 0; i < m_used; ++i) {
            Layer& layer = m_layers[i];
            DrawShapes(layer.faces);
            if (!layer.pictures.empty()) {
                bindTexture();
                DrawPictures(layer.pictures);
            }
            DrawLines(layer, pixelRatio);
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
        float width = 1;
        bool stippled = false;
        int first = 0;
        int count = 0;
    };
    struct Layer {
        std::vector<Vertex> faces;
        std::vector<PictureVertex> pictures;
        std::vector<Vertex> lines;
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
    // The part of the view that objects are sought in.
    struct Cells {
        size_t left = 0, right = 0, bottom = 0, top = 0;  // all of them are part of it
    };
    Cells CellsOf(const DeskRect& bounds) const;
    static void DrawShapes(const std::vector<Vertex>& vertices);
    static void DrawPictures(const std::vector<PictureVertex>& vertices);
    static void DrawLines(const Layer& layer, float pixelRatio);

    std::vector<Layer> m_layers;  // kept with their memory from one picture to the next
    size_t m_used = 0;
    bool m_inObject = false;
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
