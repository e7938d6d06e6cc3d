// SPDX-License-Identifier: Apache-2.0
// The shapes that the desk is drawn from, in desk units.
#pragma once

#include <span>
#include <string>

#include "desk/DeskStyle.h"
#include "desk/DeskViewport.h"
#include "ui/desk/DeskMarks.h"
#include "ui/desk/DeskTextLists.h"

namespace tavrin {

class CSgiImage;

// How a line is drawn.
struct LineLook {
    Rgb color;
    float width = 1;  // pixels
    bool stippled = false;
};

// The mark of a type at a button.
struct MarkLook {
    TypeShape shape = TypeShape::kCircle;
    Rgb color;
    float size = 1;  // of the square that it fills, desk units
    bool filled = true;
};

// Draws into the current context with OpenGL 1.1, between Begin and End, what is told first below what is
// told later. Lengths that are told in pixels are window pixels, whatever the device has of them. How shapes
// reach the context is up to those who derive from it; what is seen is not.
class DeskPen {
  public:
    // Both outlive it.
    DeskPen(const DeskViewport& view, DeskFonts& fonts) : m_view(view), m_fonts(fonts), m_lists(fonts) {}
    virtual ~DeskPen() = default;
    DeskPen(const DeskPen&) = delete;
    DeskPen& operator=(const DeskPen&) = delete;

    // What was kept in a context before is gone.
    virtual void ContextIsNew() { m_lists.ContextIsNew(); }
    // Lines get shades at their edges, unless they are stippled.
    void SetSmoothLines(bool smooth) { m_smoothLines = smooth; }
    // Sets the context up for the view as it stands, and clears the window.
    void Begin(const Rgb& background);
    void End();

    const DeskRect& Visible() const { return m_visible; }
    float Pixel() const { return 1 / m_zoom; }  // in desk units
    bool HasLabels() const { return m_labelFont != DeskFonts::kNone; }

    // What follows, up to the next call or to EndObjects, lies inside the rectangle, and in this order: faces
    // below texts and icons, these below lines, these below polygons. So objects that do not overlap can be
    // drawn together.
    virtual void BeginObject(const DeskRect& /*bounds*/) {}
    virtual void EndObjects() {}

    // Faces.
    void Fill(const DeskRect& rect, const Rgb& color);
    // A face with lit edges at the top and left and shaded ones at the bottom and right.
    void Bevel(const DeskRect& rect, const Rgb& color);
    // Without a corner that points inward.
    virtual void Polygon(std::span<const DeskPoint> corners, const Rgb& color) = 0;
    virtual void Line(std::span<const DeskPoint> points, const LineLook& look) = 0;
    // Covers every second pixel of what is seen.
    void Veil(const Rgb& color);

    // The left end of the base line is at the point.
    void LabelAt(const std::string& text, const Rgb& color, DeskPoint at) {
        TextAt(m_labelFont, text, color, at);
    }
    // Both in desk units.
    float LabelWidth(const std::string& text) { return m_fonts.TextWidth(m_labelFont, text) * Pixel(); }
    float LabelHeight() { return m_fonts.MetricsOf(m_labelFont).height * Pixel(); }
    void CentredLabel(const std::string& text, const DeskRect& rect) { Centred(m_labelFont, text, rect); }
    void CentredTitle(const std::string& text, const DeskRect& rect) { Centred(m_titleFont, text, rect); }

    // In an edge of ink; what is not filled has a hole of it. In objects it comes among the texts.
    void Mark(const MarkLook& look, DeskPoint middle);

    // Texts in a size of their own, in points at a zoom of 1; lengths in desk units. Nothing in kNone.
    int FontOf(float points) const { return m_fonts.ForTitles(points / kTitlePoints); }
    float LineHeight(int font) {
        const DeskFonts::Metrics metrics = m_fonts.MetricsOf(font);
        return (metrics.height + metrics.leading) * Pixel();
    }
    float DescentOf(int font) { return m_fonts.MetricsOf(font).descent * Pixel(); }
    float WidthOf(int font, const std::string& text) { return m_fonts.TextWidth(font, text) * Pixel(); }
    void TextIn(int font, const std::string& text, const Rgb& color, DeskPoint at) {
        TextAt(font, text, color, at);
    }

    // One pixel of the image is one desk unit large. Images stay as they are while there is a pen.
    void Icon(const CSgiImage& image, DeskPoint lowerLeft);
    // Stands in the middle of the window, or fills it with copies from the lower left corner on.
    void Wallpaper(const CSgiImage& image, bool tiled);

  protected:
    static constexpr float kTitlePoints = 12;      // what titles have at a zoom of 1
    static constexpr float kPixelCentre = 0.375F;  // shift by which lines land on pixel centres

    // After Begin.
    virtual void ViewIsSet() {}
    // Faces of four corners each.
    virtual void Quads(std::span<const DeskPoint> corners, const Rgb& color) = 0;
    // Neither the font nor the text is empty, and the point is not far from the window.
    virtual void Text(int font, const std::string& text, const Rgb& color, DeskPoint at) = 0;
    // Some of it is in view.
    virtual void Image(const CSgiImage& image, DeskPoint lowerLeft) = 0;
    // What it covers gets the colour. Its lower left corner is at a pixel, from the lower left one of what is
    // seen on. It stays as it is while there is a pen, and its picture is known again by its address.
    virtual void Cover(const Glyph& mark, const Rgb& color, int x, int y) = 0;
    // Draws what waits to be drawn.
    virtual void Flush() {}

    DeskFonts& Fonts() { return m_fonts; }
    float DevicePixels() const { return m_zoom * m_ratio; }  // in a desk unit
    float PixelRatio() const { return m_ratio; }
    // In device pixels from the lower left corner of what is seen.
    DeskPoint FromCorner(DeskPoint at) const {
        return {(at.x - m_visible.left) * DevicePixels(), (at.y - m_visible.bottom) * DevicePixels()};
    }
    float DeviceWidth(const LineLook& look) const;
    bool IsSmooth(const LineLook& look) const { return m_smoothLines && !look.stippled; }
    // The pixel in which a text begins.
    DeskPoint PixelOfText(DeskPoint at) const;
    // The ways of OpenGL for single letters and images.
    void TextByLists(int font, const std::string& text, const Rgb& color, DeskPoint at);
    void ImageByPixels(const CSgiImage& image, DeskPoint lowerLeft, float scale);
    // As Cover does.
    void CoverByPixels(const Glyph& mark, const Rgb& color, int x, int y);

  private:
    void MoveRaster(DeskPoint to) const { MoveRasterToPixel(FromCorner(to)); }
    void MoveRasterToPixel(DeskPoint to) const;
    void TextAt(int font, const std::string& text, const Rgb& color, DeskPoint at);
    float SmoothBaseLine(const DeskRect& rect, float capital) const;
    void Centred(int font, const std::string& text, const DeskRect& rect);
    void Tile(const CSgiImage& image);

    const DeskViewport& m_view;
    DeskFonts& m_fonts;
    DeskTextLists m_lists;
    DeskMarks m_marks;
    bool m_smoothLines = false;
    float m_zoom = 1;
    float m_ratio = 1;  // device pixels in a window pixel
    DeskRect m_visible;
    int m_labelFont = DeskFonts::kNone;
    int m_titleFont = DeskFonts::kNone;
};

}  // namespace tavrin
