// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskPen.h"

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "images/SgiImage.h"

namespace tavrin {

namespace {

using namespace desk_colors;

constexpr unsigned short kLineStipple = 0x3333;
constexpr size_t kRowBytes = 4;  // of a stipple pattern with 32 rows
constexpr size_t kPatternBytes = 32 * kRowBytes;
// Device pixels; no text is so long that it would be seen from there.
constexpr float kFarAway = 1e6F;
// Before a letter's place is cut to whole pixels: what lies on one is not to fall below it by rounding.
constexpr float kCutMargin = 0.0001F;

GLsizei Rounded(float length) { return static_cast<GLsizei>(std::lround(length)); }

}  // namespace

void DeskPen::Begin(const Rgb& background) {
    m_zoom = m_view.Zoom();
    m_ratio = m_fonts.PixelRatio();
    m_visible = m_view.Visible();
    m_labelFont = m_fonts.ForLabels(m_zoom);
    m_titleFont = m_fonts.ForTitles(m_zoom);
    glViewport(0, 0, Rounded(m_view.Width() * m_ratio), Rounded(m_view.Height() * m_ratio));
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, static_cast<double>(m_view.Width()), 0, static_cast<double>(m_view.Height()), -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(kPixelCentre / m_ratio, kPixelCentre / m_ratio, 0);
    glTranslatef(-m_visible.left * m_zoom, -m_visible.bottom * m_zoom, 0);
    glScalef(m_zoom, m_zoom, 1);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glPolygonMode(GL_FRONT, GL_FILL);
    // Blended between corners of one colour, the thinnest faces may get another one.
    glShadeModel(GL_FLAT);
    glDisable(GL_DITHER);  // colours are what the site says
    glLineStipple(1, kLineStipple);
    glClearColor(background.r, background.g, background.b, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    ViewIsSet();
}

void DeskPen::End() {
    Flush();
    glFinish();
}

void DeskPen::Fill(const DeskRect& rect, const Rgb& color) { Quads(rect.Corners(), color); }

// The edges are mitred where they meet.
void DeskPen::Bevel(const DeskRect& rect, const Rgb& color) {
    const float thin = m_fonts.IsSmooth() ? DeskFonts::kThinnestEdge : 1;
    const float edge = desk_lengths::kBevel * std::max(1.0F, thin / m_zoom);
    const DeskRect inner = rect.GrownBy(-edge);
    const DeskPoint lowLeft{rect.left, rect.bottom};
    const DeskPoint lowRight{rect.Right(), rect.bottom};
    const DeskPoint topLeft{rect.left, rect.Top()};
    const DeskPoint topRight{rect.Right(), rect.Top()};
    const DeskPoint innerLowLeft{inner.left, inner.bottom};
    const DeskPoint innerLowRight{inner.Right(), inner.bottom};
    const DeskPoint innerTopLeft{inner.left, inner.Top()};
    const DeskPoint innerTopRight{inner.Right(), inner.Top()};
    Quads(std::array{innerLowLeft, innerLowRight, innerTopRight, innerTopLeft}, color);
    Quads(std::array{innerTopLeft, innerTopRight, topRight, topLeft,  // top
                     lowLeft, innerLowLeft, innerTopLeft, topLeft},   // left
          kBevelLight);
    Quads(std::array{lowLeft, lowRight, innerLowRight, innerLowLeft,     // bottom
                     innerLowRight, lowRight, topRight, innerTopRight},  // right
          kBevelDark);
}

// A width that the context would refuse counts as the least one.
float DeskPen::DeviceWidth(const LineLook& look) const { return look.width > 0 ? look.width * m_ratio : 1; }

void DeskPen::Veil(const Rgb& color) {
    Flush();
    std::array<unsigned char, kPatternBytes> checkerboard;
    for (size_t i = 0; i < kPatternBytes; ++i) checkerboard[i] = (i / kRowBytes) % 2 == 0 ? 0xAA : 0x55;
    glEnable(GL_POLYGON_STIPPLE);
    glPolygonStipple(checkerboard.data());
    Fill(m_visible, color);
    Flush();
    glDisable(GL_POLYGON_STIPPLE);
}

// From the window's corner, which is always valid: so what follows may begin outside the window. The corner
// is told in pixels, since desk units far from the origin are not fine enough. The colour in use when the
// raster is moved is that of the text.
void DeskPen::MoveRasterToPixel(DeskPoint to) const {
    static constexpr unsigned char kNothing[4] = {};
    const float corner = kPixelCentre / m_ratio;
    glPushMatrix();
    glLoadIdentity();
    glRasterPos2f(corner, corner);
    glPopMatrix();
    glBitmap(1, 1, 0, 0, to.x, to.y, kNothing);
}

void DeskPen::TextAt(int font, const std::string& text, const Rgb& color, DeskPoint at) {
    if (font == DeskFonts::kNone || text.empty()) return;
    const DeskPoint begin = FromCorner(at);
    const bool isNear = std::abs(begin.x) < kFarAway && std::abs(begin.y) < kFarAway;
    if (isNear) Text(font, text, color, at);
}

void DeskPen::TextByLists(int font, const std::string& text, const Rgb& color, DeskPoint at) {
    if (!m_fonts.IsSmooth()) {
        glColor3f(color.r, color.g, color.b);
        MoveRaster(at);
        m_lists.Draw(font, text);
        return;
    }
    const DeskPoint begin = PixelOfText(at);
    int x = static_cast<int>(begin.x);
    const int y = static_cast<int>(begin.y);
    for (const char32_t letter : LettersOf(text)) {
        const Glyph& glyph = m_fonts.GlyphOf(font, letter);
        CoverByPixels(glyph, color, x + glyph.left, y + glyph.bottom);
        x += m_fonts.AdvanceOf(font, letter);
    }
}

DeskPoint DeskPen::PixelOfText(DeskPoint at) const {
    const DeskPoint begin = FromCorner(at);
    constexpr float kCut = kPixelCentre + kCutMargin;
    return {std::floor(begin.x + kCut), std::floor(begin.y + kCut)};
}

void DeskPen::CoverByPixels(const Glyph& mark, const Rgb& color, int x, int y) {
    if (mark.width == 0) return;
    std::vector<unsigned char> pixels;
    pixels.reserve(mark.ink.size() * 4);
    for (const unsigned char ink : mark.ink) {
        const auto covered = [ink](float channel) {
            return static_cast<unsigned char>(std::lround(channel * static_cast<float>(ink)));
        };
        pixels.insert(pixels.end(), {covered(color.r), covered(color.g), covered(color.b), ink});
    }
    MoveRasterToPixel({static_cast<float>(x), static_cast<float>(y)});
    glPixelZoom(1, 1);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDrawPixels(mark.width, mark.height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glDisable(GL_BLEND);
}

// Of whole pixels and with its middle on one or between two, so that all marks of a size are alike.
void DeskPen::Mark(const MarkLook& look, DeskPoint middle) {
    const auto wanted = static_cast<int>(std::lround(look.size * DevicePixels()));
    const int pixels = std::clamp(wanted, 1, DeskMarks::kMostPixels);
    const int edge = std::max(1, static_cast<int>(std::lround(m_ratio)));
    const DeskPoint at = FromCorner(middle);
    const bool isNear = std::abs(at.x) < kFarAway && std::abs(at.y) < kFarAway;
    if (!isNear) return;
    const int left = static_cast<int>(std::lround(at.x - static_cast<float>(pixels) * 0.5F));
    const int bottom = static_cast<int>(std::lround(at.y - static_cast<float>(pixels) * 0.5F));
    const auto cover = [&](int inset, const Rgb& color) {
        const Glyph& mark = m_marks.MarkOf(look.shape, pixels, inset);
        if (mark.width > 0) Cover(mark, color, left + mark.left, bottom + mark.bottom);
    };
    cover(0, kInk);
    cover(edge, look.color);
    if (!look.filled) cover(edge + std::max(edge, pixels / 8), kInk);
}

// As far above the lowest pixels of the rectangle in each of them, so that rows look alike; what is left over
// goes below, where some letters reach.
float DeskPen::SmoothBaseLine(const DeskRect& rect, float capital) const {
    const float lowest = std::round(FromCorner({rect.left, rect.bottom}).y);
    const float below = std::round((rect.height * DevicePixels() - capital) * 0.5F);
    return m_visible.bottom + (lowest + below) / DevicePixels();
}

void DeskPen::Centred(int font, const std::string& text, const DeskRect& rect) {
    if (font == DeskFonts::kNone || text.empty()) return;
    const DeskFonts::Metrics metrics = m_fonts.MetricsOf(font);
    const float width = m_fonts.TextWidth(font, text) * Pixel();
    if (m_fonts.IsSmooth()) {
        const float left = rect.left + (rect.width - width) * 0.5F;
        TextAt(font, text, kInk, {left, SmoothBaseLine(rect, metrics.capital * m_ratio)});
        return;
    }
    const float height = (metrics.height + metrics.leading) * Pixel();
    TextAt(font, text, kInk,
           {rect.left + (rect.width - width) * 0.5F,
            rect.Top() - (height + rect.height) * 0.5F + metrics.descent * Pixel()});
}

void DeskPen::Icon(const CSgiImage& image, DeskPoint lowerLeft) {
    const DeskRect rect{lowerLeft.x, lowerLeft.y, static_cast<float>(image.width),
                        static_cast<float>(image.height)};
    if (rect.GrownBy(Pixel()).Overlaps(m_visible)) Image(image, lowerLeft);
}

// All else is opaque. The alpha of an image may not come into the window, through which something would
// shine; a mask for all that is drawn would make software renderers slower.
void DeskPen::ImageByPixels(const CSgiImage& image, DeskPoint lowerLeft, float scale) {
    MoveRaster(lowerLeft);
    glPixelZoom(scale * m_ratio, scale * m_ratio);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    glDrawPixels(image.width, image.height, GL_RGBA, GL_UNSIGNED_BYTE, image.pixels.get());
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glPixelZoom(1, 1);
}

// It stands still in the window and does not scroll with the desk.
void DeskPen::Wallpaper(const CSgiImage& image, bool tiled) {
    Flush();
    if (tiled) {
        ImageByPixels(image, {m_visible.left, m_visible.bottom}, 1);
        Tile(image);
        return;
    }
    const float half = Pixel() * 0.5F;
    const DeskPoint middle = m_visible.Middle();
    ImageByPixels(image,
                  {middle.x - static_cast<float>(image.width) * half,
                   middle.y - static_cast<float>(image.height) * half},
                  1);
}

// What stands already is copied to its right, then upward: each copy doubles it.
void DeskPen::Tile(const CSgiImage& image) {
    const GLsizei windowWidth = Rounded(m_view.Width() * m_ratio);
    const GLsizei windowHeight = Rounded(m_view.Height() * m_ratio);
    const float unit = 1 / DevicePixels();
    GLsizei width = Rounded(static_cast<float>(image.width) * m_ratio);
    GLsizei height = Rounded(static_cast<float>(image.height) * m_ratio);
    for (; width < windowWidth; width *= 2) {
        MoveRaster({m_visible.left + static_cast<float>(width) * unit, m_visible.bottom});
        glCopyPixels(0, 0, width, height, GL_COLOR);
    }
    for (; height < windowHeight; height *= 2) {
        MoveRaster({m_visible.left, m_visible.bottom + static_cast<float>(height) * unit});
        glCopyPixels(0, 0, windowWidth, height, GL_COLOR);
    }
}

}  // namespace tavrin
