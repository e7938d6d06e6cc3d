#include "ui/desk/DeskPainter.h"

#include <array>

#include "document/TvDoc.h"

namespace tavrin {

namespace {

constexpr float kVeilShade = 0.2F;         // how much darker than the background
constexpr DeskPoint kVarNameOffset{4, 6};  // of a variable's name from the start of its line, desk units

}  // namespace

void DeskPainter::Paint(const Extras& extras) {
    m_pen.Begin(m_parts.style.background);
    if (extras.wallpaper != nullptr) PaintWallpaper(*extras.wallpaper, extras.tileWallpaper);
    const bool linesOver = m_parts.document.drawlinesoverboxes != 0;
    if (!linesOver) PaintAllLines();
    PaintAllBoxes(extras.highlightedBox);
    if (linesOver) PaintAllLines();
    PaintGesture();
    if (m_parts.document.lock != 0) PaintVeil();
    m_pen.End();
}

// It stands still in the window and does not scroll with the desk.
void DeskPainter::PaintWallpaper(const CSgiImage& image, bool tiled) {
    const DeskRect& visible = m_pen.Visible();
    if (tiled) {
        m_pen.Image(image, {visible.left, visible.bottom}, 1);
        m_pen.Tile(image);
        return;
    }
    const float half = m_pen.Pixel() * 0.5F;
    const DeskPoint middle = visible.Middle();
    m_pen.Image(image,
                {middle.x - static_cast<float>(image.width) * half,
                 middle.y - static_cast<float>(image.height) * half},
                1);
}

void DeskPainter::PaintAllLines() {
    const auto& selected = m_parts.desk.m_selectedConnects;
    m_selectedLines = {selected.begin(), selected.end()};
    m_pen.LineWidth(m_parts.style.connectWidth);
    PaintLines(m_parts.document.m_boxes);
    if (m_parts.desk.m_pendingPlaced) PaintLines(m_parts.desk.m_pendingBoxes);
    m_pen.LineWidth(1);
}

// The selected ones come out above the others.
template <typename Boxes>
void DeskPainter::PaintLines(const Boxes& boxes) {
    const DeskStyle& style = m_parts.style;
    for (const bool selected : {false, true}) {
        if (selected && m_selectedLines.empty()) break;
        for (const auto& box : boxes) {
            ForEachConnection(*box, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton& input) {
                if (m_selectedLines.contains(&input) != selected) return true;
                const COpButton& output = *from.box->outputs[from.index];
                const bool stippled = !selected && input.CurrentType() != output.CurrentType();
                const Rgb& plain = selected ? style.selectedConnect : style.connect;
                m_pen.Stipple(stippled);
                PaintLine(from, to, stippled ? style.stippleLine : plain);
                return true;
            });
        }
    }
    m_pen.Stipple(false);
}

void DeskPainter::PaintLine(const ButtonPlace& from, const ButtonPlace& to, const Rgb& color) {
    const Polyline line = ConnectionPolyline(from, to, m_parts.document.linetype == 1);
    m_pen.Use(color);
    m_pen.Strip(line);
    if (m_parts.document.showvarnames == 0 || !m_pen.HasLabels()) return;
    COpButton& output = *from.box->outputs[from.index];
    const DeskPoint start = line.points[0];
    m_pen.LabelAt(output.VariableName(m_parts.report), color,
                  {start.x + kVarNameOffset.x, start.y + kVarNameOffset.y});
}

void DeskPainter::PaintGesture() {
    using Kind = DeskGestures::Kind;
    const DeskGestures& gestures = m_parts.gestures;
    const COpButton* selected = m_parts.desk.m_selectedButton;
    const bool drawsWire =
        selected != nullptr && selected != m_parts.desk.m_mouseButton && selected->disableconnectflag == 0;
    if (gestures.Current() == Kind::kWiring && drawsWire) {
        m_pen.Use(m_parts.style.connect);
        m_pen.LineWidth(m_parts.style.connectWidth);
        m_pen.Strip(std::array{ButtonAnchor(ButtonPlace::Of(*selected)), gestures.Mouse()});
    }
    if (gestures.Current() == Kind::kBandAdd || gestures.Current() == Kind::kBandToggle) {
        const DeskRect band = gestures.Band();
        const DeskPoint first{band.left, band.bottom};
        m_pen.Use(m_parts.style.rubberBand);
        m_pen.Strip(std::array{first, DeskPoint{band.Right(), band.bottom},
                               DeskPoint{band.Right(), band.Top()}, DeskPoint{band.left, band.Top()}, first});
    }
}

// A locked desk stays readable through it.
void DeskPainter::PaintVeil() {
    const Rgb& color = m_parts.style.background;
    m_pen.Veil({color.r - kVeilShade, color.g - kVeilShade, color.b - kVeilShade});
}

}  // namespace tavrin
