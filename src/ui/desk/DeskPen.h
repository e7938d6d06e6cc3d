// The shapes that the desk is drawn from, in desk units, with OpenGL 1.1.
#pragma once

#include <string>

#include "desk/DeskStyle.h"
#include "desk/DeskViewport.h"
#include "ui/desk/DeskFonts.h"

namespace tavrin {

class CSgiImage;

// Everything goes to the current context, between Begin and End. Lengths that are told in pixels are window
// pixels, whatever the device has of them.
class DeskPen {
  public:
    DeskPen(const DeskViewport& view, DeskFonts& fonts) : m_view(view), m_fonts(fonts) {}

    // Sets the context up for the view as it stands, and clears the window.
    void Begin(const Rgb& background);
    void End();

    const DeskRect& Visible() const { return m_visible; }
    float Pixel() const { return 1 / m_zoom; }  // in desk units
    bool HasLabels() const { return m_labelFont != DeskFonts::kNone; }

    void Use(const Rgb& color);
    void LineWidth(float pixels);
    void Fill(const DeskRect& rect);  // in the colour in use
    template <typename Points>
    void Strip(const Points& points) {
        BeginStrip();
        for (const DeskPoint& point : points) Vertex(point);
        EndShape();
    }
    template <typename Points>
    void Polygon(const Points& points) {
        BeginPolygon();
        for (const DeskPoint& point : points) Vertex(point);
        EndShape();
    }
    void Stipple(bool on);  // of lines
    // A face with lit edges at the top and left and shaded ones at the bottom and right.
    void Bevel(const DeskRect& rect, const Rgb& color);
    // Covers every second pixel of what is seen.
    void Veil(const Rgb& color);

    void LabelAt(const std::string& text, const Rgb& color, DeskPoint at);
    void CentredLabel(const std::string& text, const DeskRect& rect) { Centred(m_labelFont, text, rect); }
    void CentredTitle(const std::string& text, const DeskRect& rect) { Centred(m_titleFont, text, rect); }
    // One pixel of the image is `scale` window pixels large.
    void Image(const CSgiImage& image, DeskPoint lowerLeft, float scale);
    // Fills what is seen with copies of the image that stands in the window's lower left corner.
    void Tile(const CSgiImage& image);

  private:
    static void BeginStrip();
    static void BeginPolygon();
    static void EndShape();
    static void Vertex(DeskPoint point);
    static void Quad(DeskPoint a, DeskPoint b, DeskPoint c, DeskPoint d);
    void MoveRaster(DeskPoint to) const;
    void TextAt(int font, const std::string& text, DeskPoint at);
    void Centred(int font, const std::string& text, const DeskRect& rect);

    const DeskViewport& m_view;
    DeskFonts& m_fonts;
    float m_zoom = 1;
    float m_ratio = 1;  // device pixels in a window pixel
    DeskRect m_visible;
    int m_labelFont = DeskFonts::kNone;
    int m_titleFont = DeskFonts::kNone;
};

}  // namespace tavrin
