#include "ui/desk/DeskPainter.h"

#include <GL/gl.h>

#include <array>

#include "document/TvDoc.h"
#include "images/SgiImage.h"

namespace tavrin {

namespace {

using namespace desk_colors;

constexpr float kPixelCentre = 0.375F;  // shift by which lines land on pixel centres
constexpr unsigned short kStipple = 0x3333;
constexpr float kVeilShade = 0.2F;         // how much darker than the background
constexpr DeskPoint kVarNameOffset{4, 6};  // of a variable's name from the start of its line, desk units
constexpr float kCrossDistance = 12;       // marks left of a button, desk units
constexpr float kCrossSize = 4;
constexpr float kCrossWidth = 2;  // pixels
constexpr float kArgumentDistance = 7;
constexpr std::array<DeskPoint, 6> kHexagon{
    {{-2, 0}, {-1, 1.74F}, {1, 1.74F}, {2, 0}, {1, -1.74F}, {-1, -1.74F}}};
constexpr float kMarksWidth = kCrossDistance + kCrossSize;  // what a box's marks stand out of it
constexpr float kArrowHalf = 10;                            // triangle in a grow arrow, desk units
constexpr float kArrowMargin = 3;

void Use(const Rgb& color) { glColor3f(color.r, color.g, color.b); }
void Vertex(DeskPoint point) { glVertex2f(point.x, point.y); }
void Fill(const DeskRect& rect) { glRectf(rect.left, rect.bottom, rect.Right(), rect.Top()); }

void Quad(DeskPoint a, DeskPoint b, DeskPoint c, DeskPoint d) {
    Vertex(a);
    Vertex(b);
    Vertex(c);
    Vertex(d);
}

Rgb Sum(const float (&color)[3], const Rgb& tint) {
    return {color[0] + tint.r, color[1] + tint.g, color[2] + tint.b};
}

bool Overlaps(const DeskRect& one, const DeskRect& other) {
    return one.left < other.Right() && other.left < one.Right() && one.bottom < other.Top() &&
           other.bottom < one.Top();
}

}  // namespace

void DeskPainter::Paint(const std::string& highlightedBox, const Wallpaper& wallpaper) {
    m_zoom = m_parts.view.Zoom();
    m_visible = m_parts.view.Visible();
    m_labelFont = DeskFonts::LabelFont(m_zoom);
    m_titleFont = DeskFonts::TitleFont(m_zoom);
    SetUp();
    PaintBackground();
    if (wallpaper.image != nullptr) PaintWallpaper(wallpaper);
    const bool linesOver = m_parts.document.drawlinesoverboxes != 0;
    if (!linesOver) PaintAllLines();
    PaintAllBoxes(highlightedBox);
    if (linesOver) PaintAllLines();
    PaintGesture();
    if (m_parts.document.lock != 0) PaintVeil();
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glFinish();
}

void DeskPainter::SetUp() const {
    const DeskViewport& view = m_parts.view;
    const float ratio = m_parts.fonts.PixelRatio();
    glViewport(0, 0, static_cast<int>(view.Width() * ratio), static_cast<int>(view.Height() * ratio));
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, static_cast<double>(view.Width()), 0, static_cast<double>(view.Height()), -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(kPixelCentre / ratio, kPixelCentre / ratio, 0);
    glTranslatef(m_parts.document.offset[0], m_parts.document.offset[1], 0);
    glScalef(m_zoom, m_zoom, 1);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glPolygonMode(GL_FRONT, GL_FILL);
    glLineStipple(1, kStipple);
    glLineWidth(ratio);
}

// The alpha of the window stays whole, so that nothing shines through it.
void DeskPainter::PaintBackground() const {
    const Rgb& color = m_parts.style.background;
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClearColor(color.r, color.g, color.b, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
}

// A raster position outside the window would be invalid, so it starts in the corner and moves from there.
void DeskPainter::PaintWallpaper(const Wallpaper& wallpaper) const {
    const CSgiImage& image = *wallpaper.image;
    const float ratio = m_parts.fonts.PixelRatio();
    const float width = static_cast<float>(image.width) / m_zoom;  // of a tile, in desk units
    const float height = static_cast<float>(image.height) / m_zoom;
    const uint8_t nothing = 0;
    glRasterPos2f(m_visible.left, m_visible.bottom);
    if (!wallpaper.isTiled) {
        glBitmap(1, 1, 0, 0, (m_visible.width - width) * 0.5F * m_zoom * ratio,
                 (m_visible.height - height) * 0.5F * m_zoom * ratio, &nothing);
    }
    glPixelZoom(ratio, ratio);
    glDrawPixels(image.width, image.height, GL_RGBA, GL_UNSIGNED_BYTE, image.pixels.get());
    glPixelZoom(1, 1);
    if (!wallpaper.isTiled) return;
    const auto rows = static_cast<int>(m_visible.height / height + 1);
    const auto columns = static_cast<int>(m_visible.width / width + 1);
    for (int row = 0; row < rows; ++row) {
        for (int column = row == 0 ? 1 : 0; column < columns; ++column) {
            glRasterPos2f(m_visible.left + static_cast<float>(column) * width,
                          m_visible.bottom + static_cast<float>(row) * height);
            // From where the first tile stands.
            glCopyPixels(0, 0, static_cast<int>(static_cast<float>(image.width) * ratio),
                         static_cast<int>(static_cast<float>(image.height) * ratio), GL_COLOR);
        }
    }
}

// Lines.

void DeskPainter::PaintAllLines() {
    const auto& selected = m_parts.desk.m_selectedConnects;
    m_selectedLines = {selected.begin(), selected.end()};
    PaintLines(m_parts.document.m_boxes);
    if (m_parts.desk.m_pendingPlaced) PaintLines(m_parts.desk.m_pendingBoxes);
}

// The selected ones come out above the others.
template <typename Boxes>
void DeskPainter::PaintLines(const Boxes& boxes) {
    const DeskStyle& style = m_parts.style;
    glPushAttrib(GL_CURRENT_BIT | GL_LINE_BIT | GL_ENABLE_BIT);
    glLineWidth(style.connectWidth * m_parts.fonts.PixelRatio());
    for (const bool selected : {false, true}) {
        if (selected && m_selectedLines.empty()) break;
        for (const auto& box : boxes) {
            ForEachConnection(*box, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton& input) {
                if (m_selectedLines.contains(&input) != selected) return true;
                const COpButton& output = *input.connections.First();
                const bool stippled = !selected && input.CurrentType() != output.CurrentType();
                if (stippled) glEnable(GL_LINE_STIPPLE);
                PaintLine(from, to,
                          selected   ? style.selectedConnect
                          : stippled ? style.stippleLine
                                     : style.connect);
                if (stippled) glDisable(GL_LINE_STIPPLE);
                return true;
            });
        }
    }
    glPopAttrib();
}

void DeskPainter::PaintLine(const ButtonPlace& from, const ButtonPlace& to, const Rgb& color) {
    const Polyline line = ConnectionPolyline(from, to, m_parts.document.linetype == 1);
    Use(color);
    glBegin(GL_LINE_STRIP);
    for (const DeskPoint& point : line) Vertex(point);
    glEnd();
    if (m_parts.document.showvarnames == 0 || m_labelFont == DeskFonts::kNone) return;
    COpButton& output = *from.box->outputs[from.index];
    const DeskPoint start = line.points[0];
    TextAt(m_labelFont, color, output.VariableName(m_parts.report),
           {start.x + kVarNameOffset.x, start.y + kVarNameOffset.y});
}

// Boxes.

void DeskPainter::PaintAllBoxes(const std::string& highlightedBox) {
    const auto paint = [&](const COpBox& box) {
        const float margin = kMarksWidth + m_parts.style.selectedBoxWidth / m_zoom;
        if (!Overlaps(BoxRect(box).GrownBy(margin), m_visible)) return;
        PaintBox(box, !highlightedBox.empty() && box.BoxTitleWid() == highlightedBox);
    };
    const auto& boxes = m_parts.document.m_boxes;
    for (auto box = boxes.rbegin(); box != boxes.rend(); ++box) paint(**box);
    if (!m_parts.desk.m_pendingPlaced) return;
    for (const auto& box : m_parts.desk.m_pendingBoxes) paint(*box);
}

void DeskPainter::PaintBox(const COpBox& box, bool isHighlighted) {
    const DeskStyle& style = m_parts.style;
    const Rgb color = isHighlighted ? style.highlightedBox : Sum(box.color, style.boxTint);
    const DeskRect title = TitleRect(box);
    Bevel(title, color);
    CentredText(m_labelFont, box.filename + " " + std::to_string(box.wid), title);
    PaintPanel(box, color);
    PaintButtons(box, false, color);
    PaintButtons(box, true, color);
    if (box.selected != 0) PaintSelection(BoxRect(box));
    if (m_parts.gestures.GrowArrowsShown() && m_parts.desk.m_mouseBox == &box) PaintGrowArrows(box, color);
}

void DeskPainter::PaintPanel(const COpBox& box, const Rgb& color) {
    const DeskRect panel = PanelRect(box);
    Bevel(panel, color);
    CentredText(m_titleFont, box.icontext, panel);
}

void DeskPainter::PaintButtons(const COpBox& box, bool outputs, const Rgb& color) {
    const auto& buttons = outputs ? box.outputs : box.inputs;
    if (buttons.empty()) {
        Use(kBevelDark);
        Fill(ButtonColumnRect(box, outputs));
        return;
    }
    for (size_t index = buttons.size(); index-- > 0;) {
        const COpButton& button = *buttons[index];
        const DeskRect row = ButtonRect({&box, outputs, index});
        Bevel(row, IsButtonLit(button) ? m_parts.style.selectedButton : color);
        CentredText(m_labelFont, button.DisplayName(), row);
        PaintMarks(button, row);
    }
}

// The button that was picked, and the one under the mouse if the two may be wired.
bool DeskPainter::IsButtonLit(const COpButton& button) const {
    const COpDesk& desk = m_parts.desk;
    const DeskGestures& gestures = m_parts.gestures;
    const bool isUnderMouse = &button == desk.m_mouseButton;
    if (isUnderMouse && (gestures.IsGrowArrowHot(true) || gestures.IsGrowArrowHot(false))) return false;
    const COpButton* selected = desk.m_selectedButton;
    if (&button == selected) return true;
    return isUnderMouse && selected != nullptr && selected->CanConnect(button) &&
           !selected->WouldLoop(button);
}

void DeskPainter::PaintMarks(const COpButton& button, const DeskRect& row) const {
    const float middle = row.Middle().y;
    if (button.disableconnectflag != 0) {
        const float x = row.left - kCrossDistance;
        Use(kInk);
        glLineWidth(kCrossWidth * m_parts.fonts.PixelRatio());
        glBegin(GL_LINES);
        for (const float slope : {1.0F, -1.0F}) {
            glVertex2f(x - kCrossSize, middle - slope * kCrossSize);
            glVertex2f(x + kCrossSize, middle + slope * kCrossSize);
        }
        glEnd();
    }
    if (button.arg != 0) {
        Use(kArgumentMark);
        glBegin(GL_POLYGON);
        for (const DeskPoint& corner : kHexagon) {
            glVertex2f(row.left - kArgumentDistance + corner.x, middle + corner.y);
        }
        glEnd();
    }
}

void DeskPainter::PaintSelection(const DeskRect& rect) const {
    const float width = m_parts.style.selectedBoxWidth / m_zoom;
    const DeskRect outer = rect.GrownBy(width);
    Use(m_parts.style.selectedBox);
    Fill({outer.left, outer.bottom, width, outer.height});
    Fill({rect.Right(), outer.bottom, width, outer.height});
    Fill({rect.left, outer.bottom, rect.width, width});
    Fill({rect.left, rect.Top(), rect.width, width});
}

void DeskPainter::PaintGrowArrows(const COpBox& box, const Rgb& color) const {
    const COpButton& button = *m_parts.desk.m_mouseButton;
    const ButtonPlace place{&box, false, box.IndexOfButton(button)};
    for (const bool above : {true, false}) {
        const DeskRect rect = GrowArrowRect(place, above);
        Bevel(rect, m_parts.gestures.IsGrowArrowHot(above) ? m_parts.style.selectedButton : color);
        const float middle = rect.Middle().x;
        const float high = rect.Top() - kArrowMargin;
        const float low = rect.bottom + kArrowMargin;
        const float base = above ? low : high;
        Use(kInk);
        glBegin(GL_TRIANGLES);
        glVertex2f(middle, above ? high : low);
        glVertex2f(middle - kArrowHalf, base);
        glVertex2f(middle + kArrowHalf, base);
        glEnd();
    }
}

// What comes on top.

void DeskPainter::PaintGesture() const {
    const DeskGestures& gestures = m_parts.gestures;
    const COpDesk& desk = m_parts.desk;
    const COpButton* selected = desk.m_selectedButton;
    if (gestures.Current() == DeskGestures::Kind::kWiring && selected != nullptr &&
        selected != desk.m_mouseButton && selected->disableconnectflag == 0) {
        Use(m_parts.style.connect);
        glLineWidth(m_parts.style.connectWidth * m_parts.fonts.PixelRatio());
        glBegin(GL_LINE_STRIP);
        Vertex(ButtonAnchor(ButtonPlace::Of(*selected)));
        Vertex(gestures.Mouse());
        glEnd();
    }
    if (gestures.Current() != DeskGestures::Kind::kBandAdd &&
        gestures.Current() != DeskGestures::Kind::kBandToggle)
        return;
    const DeskRect band = gestures.Band();
    Use(m_parts.style.rubberBand);
    glBegin(GL_LINE_STRIP);
    Quad({band.left, band.bottom}, {band.Right(), band.bottom}, {band.Right(), band.Top()},
         {band.left, band.Top()});
    Vertex({band.left, band.bottom});
    glEnd();
}

// A locked desk stays readable through a checkerboard of single pixels.
void DeskPainter::PaintVeil() const {
    std::array<unsigned char, 128> checkerboard;
    for (size_t i = 0; i < checkerboard.size(); ++i) checkerboard[i] = (i / 4) % 2 == 0 ? 0xAA : 0x55;
    const Rgb& color = m_parts.style.background;
    glEnable(GL_POLYGON_STIPPLE);
    glPolygonStipple(checkerboard.data());
    Use({color.r - kVeilShade, color.g - kVeilShade, color.b - kVeilShade});
    Fill(m_visible);
    glDisable(GL_POLYGON_STIPPLE);
}

// Pieces.

// A face with lit edges at the top and left and shaded ones at the bottom and right, mitred.
void DeskPainter::Bevel(const DeskRect& rect, const Rgb& color) const {
    const float edge = m_zoom < 1 ? desk_lengths::kBevel / m_zoom : desk_lengths::kBevel;
    const DeskRect inner = rect.GrownBy(-edge);
    const auto corner = [](const DeskRect& of, bool right, bool top) {
        return DeskPoint{right ? of.Right() : of.left, top ? of.Top() : of.bottom};
    };
    const DeskPoint lowLeft = corner(rect, false, false);
    const DeskPoint lowRight = corner(rect, true, false);
    const DeskPoint topLeft = corner(rect, false, true);
    const DeskPoint topRight = corner(rect, true, true);
    const DeskPoint innerLowLeft = corner(inner, false, false);
    const DeskPoint innerLowRight = corner(inner, true, false);
    const DeskPoint innerTopLeft = corner(inner, false, true);
    const DeskPoint innerTopRight = corner(inner, true, true);
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

// The raster is moved from a place that is always valid: so a text may begin outside the window.
void DeskPainter::TextAt(int font, const Rgb& color, const std::string& text, DeskPoint at) {
    static constexpr unsigned char kNothing[4] = {};
    if (font == DeskFonts::kNone || text.empty()) return;
    const float pixels = m_zoom * m_parts.fonts.PixelRatio();
    Use(color);
    glRasterPos2f(m_visible.left, m_visible.bottom);
    glBitmap(1, 1, 0, 0, (at.x - m_visible.left) * pixels, (at.y - m_visible.bottom) * pixels, kNothing);
    m_parts.fonts.Draw(font, text);
}

void DeskPainter::CentredText(int font, const std::string& text, const DeskRect& rect) {
    if (font == DeskFonts::kNone || text.empty()) return;
    const float pixel = 1 / m_zoom;
    const DeskFonts::Metrics metrics = m_parts.fonts.MetricsOf(font);
    const float width = m_parts.fonts.TextWidth(font, text) * pixel;
    const float height = (metrics.height + metrics.leading) * pixel;
    TextAt(font, kInk, text,
           {rect.left + (rect.width - width) * 0.5F,
            rect.Top() - (height + rect.height) * 0.5F + metrics.descent * pixel});
}

}  // namespace tavrin
