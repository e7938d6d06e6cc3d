#include "ui/desk/DeskPen.h"

#include <GL/gl.h>

#include <array>
#include <cmath>

#include "images/SgiImage.h"

namespace tavrin {

namespace {

using namespace desk_colors;

constexpr float kPixelCentre = 0.375F;  // shift by which lines land on pixel centres
constexpr unsigned short kLineStipple = 0x3333;
constexpr size_t kRowBytes = 4;  // of a stipple pattern with 32 rows
constexpr size_t kPatternBytes = 32 * kRowBytes;

}  // namespace

void DeskPen::Begin(const Rgb& background) {
    m_zoom = m_view.Zoom();
    m_ratio = m_fonts.PixelRatio();
    m_visible = m_view.Visible();
    m_labelFont = DeskFonts::LabelFont(m_zoom);
    m_titleFont = DeskFonts::TitleFont(m_zoom);
    const auto pixels = [this](float length) { return static_cast<GLsizei>(std::lround(length * m_ratio)); };
    glViewport(0, 0, pixels(m_view.Width()), pixels(m_view.Height()));
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
    glLineStipple(1, kLineStipple);
    LineWidth(1);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClearColor(background.r, background.g, background.b, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    // The alpha of the window stays whole, so that nothing shines through it.
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
}

void DeskPen::End() {
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glFinish();
}

void DeskPen::Use(const Rgb& color) { glColor3f(color.r, color.g, color.b); }
void DeskPen::LineWidth(float pixels) { glLineWidth(pixels * m_ratio); }
void DeskPen::Fill(const DeskRect& rect) { glRectf(rect.left, rect.bottom, rect.Right(), rect.Top()); }
void DeskPen::BeginStrip() { glBegin(GL_LINE_STRIP); }
void DeskPen::BeginPolygon() { glBegin(GL_POLYGON); }
void DeskPen::EndShape() { glEnd(); }
void DeskPen::Vertex(DeskPoint point) { glVertex2f(point.x, point.y); }

void DeskPen::Quad(DeskPoint a, DeskPoint b, DeskPoint c, DeskPoint d) {
    for (const DeskPoint& point : {a, b, c, d}) Vertex(point);
}

void DeskPen::Stipple(bool on) {
    if (on) {
        glEnable(GL_LINE_STIPPLE);
    } else {
        glDisable(GL_LINE_STIPPLE);
    }
}

// The edges are mitred where they meet.
void DeskPen::Bevel(const DeskRect& rect, const Rgb& color) {
    const float edge = m_zoom < 1 ? desk_lengths::kBevel / m_zoom : desk_lengths::kBevel;
    const DeskRect inner = rect.GrownBy(-edge);
    const DeskPoint lowLeft{rect.left, rect.bottom};
    const DeskPoint lowRight{rect.Right(), rect.bottom};
    const DeskPoint topLeft{rect.left, rect.Top()};
    const DeskPoint topRight{rect.Right(), rect.Top()};
    const DeskPoint innerLowLeft{inner.left, inner.bottom};
    const DeskPoint innerLowRight{inner.Right(), inner.bottom};
    const DeskPoint innerTopLeft{inner.left, inner.Top()};
    const DeskPoint innerTopRight{inner.Right(), inner.Top()};
    glBegin(GL_QUADS);
    Use(color);
    Quad(innerLowLeft, innerLowRight, innerTopRight, innerTopLeft);
    Use(kBevelLight);
    Quad(innerTopLeft, innerTopRight, topRight, topLeft);
    Quad(lowLeft, innerLowLeft, innerTopLeft, topLeft);
    Use(kBevelDark);
    Quad(lowLeft, lowRight, innerLowRight, innerLowLeft);
    Quad(innerLowRight, lowRight, topRight, innerTopRight);
    glEnd();
}

void DeskPen::Veil(const Rgb& color) {
    std::array<unsigned char, kPatternBytes> checkerboard;
    for (size_t i = 0; i < kPatternBytes; ++i) checkerboard[i] = (i / kRowBytes) % 2 == 0 ? 0xAA : 0x55;
    glEnable(GL_POLYGON_STIPPLE);
    glPolygonStipple(checkerboard.data());
    Use(color);
    Fill(m_visible);
    glDisable(GL_POLYGON_STIPPLE);
}

// From a place that is always valid: so what follows may begin outside the window. The colour in use when the
// raster is moved is that of the text.
void DeskPen::MoveRaster(DeskPoint to) const {
    static constexpr unsigned char kNothing[4] = {};
    const float pixels = m_zoom * m_ratio;
    glRasterPos2f(m_visible.left, m_visible.bottom);
    glBitmap(1, 1, 0, 0, (to.x - m_visible.left) * pixels, (to.y - m_visible.bottom) * pixels, kNothing);
}

void DeskPen::TextAt(int font, const std::string& text, DeskPoint at) {
    if (font == DeskFonts::kNone || text.empty()) return;
    MoveRaster(at);
    m_fonts.Draw(font, text);
}

void DeskPen::LabelAt(const std::string& text, const Rgb& color, DeskPoint at) {
    Use(color);
    TextAt(m_labelFont, text, at);
}

void DeskPen::Centred(int font, const std::string& text, const DeskRect& rect) {
    if (font == DeskFonts::kNone || text.empty()) return;
    const DeskFonts::Metrics metrics = m_fonts.MetricsOf(font);
    const float width = m_fonts.TextWidth(font, text) * Pixel();
    const float height = (metrics.height + metrics.leading) * Pixel();
    Use(kInk);
    TextAt(font, text,
           {rect.left + (rect.width - width) * 0.5F,
            rect.Top() - (height + rect.height) * 0.5F + metrics.descent * Pixel()});
}

void DeskPen::Image(const CSgiImage& image, DeskPoint lowerLeft, float scale) {
    MoveRaster(lowerLeft);
    glPixelZoom(scale * m_ratio, scale * m_ratio);
    glDrawPixels(image.width, image.height, GL_RGBA, GL_UNSIGNED_BYTE, image.pixels.get());
    glPixelZoom(1, 1);
}

// What stands already is copied to its right, then upward: each copy doubles it.
void DeskPen::Tile(const CSgiImage& image) {
    const auto pixels = [this](float length) { return static_cast<GLsizei>(std::lround(length * m_ratio)); };
    const GLsizei windowWidth = pixels(m_view.Width());
    const GLsizei windowHeight = pixels(m_view.Height());
    const float unit = Pixel() / m_ratio;  // a device pixel in desk units
    GLsizei width = pixels(static_cast<float>(image.width));
    GLsizei height = pixels(static_cast<float>(image.height));
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
