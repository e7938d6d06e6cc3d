// The desk's texts: one face in the point sizes 3 to 24, drawn as bitmaps from display lists.
#pragma once

#include <QFont>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include "desk/DeskGeometry.h"

namespace tavrin {

// Owned by the desk's window. Widths and heights can be asked for at any time; drawing needs the context for
// which ContextIsNew was called last. A size is made when it is first needed. Characters beyond Latin-1 are
// drawn as question marks.
class DeskFonts {
  public:
    static constexpr int kLeastPoints = 3;
    static constexpr int kMostPoints = 24;
    static constexpr int kSizes = kMostPoints - kLeastPoints + 1;
    static constexpr int kNone = -1;  // no size fits: nothing is drawn, and all widths are 0

    // `fail` gets the message if the platform has no font; the program cannot go on then.
    DeskFonts(const std::string& face, std::function<void(const std::string&)> fail);
    ~DeskFonts();

    // The index of the largest size that is not above so many points. Labels have 6 and titles 12 points for
    // each unit of the zoom, cut to whole points.
    static int IndexFor(float points);
    static int LabelFont(float zoom) { return IndexFor(zoom * 6); }
    static int TitleFont(float zoom) { return IndexFor(zoom * 12); }

    // Device pixels in a window pixel. Everything that was made for another ratio is made anew.
    void SetPixelRatio(float ratio);
    float PixelRatio() const { return m_ratio; }

    // All in window pixels.
    float TextWidth(int font, const std::string& text);
    struct Metrics {
        float height = 0;  // of a line, without the space between lines
        float leading = 0;
        float descent = 0;
    };
    Metrics MetricsOf(int font);

    // Lists made before are forgotten with the context that held them.
    void ContextIsNew();
    // Draws at the raster position, in the raster colour.
    void Draw(int font, const std::string& text);

  private:
    struct Size;
    Size& SizeAt(int font);
    void MakeLists(int font, Size& size);

    QString m_face;
    std::function<void(const std::string&)> m_fail;
    std::array<std::unique_ptr<Size>, kSizes> m_sizes;
    float m_ratio = 1;
    unsigned m_listBase = 0;  // 0 until the context's first text
};

// The widths that belong to a zoom.
class DeskTextMeasure : public TextMeasure {
  public:
    DeskTextMeasure(DeskFonts& fonts, float zoom)
        : m_fonts(fonts), m_label(DeskFonts::LabelFont(zoom)), m_title(DeskFonts::TitleFont(zoom)) {}
    float LabelWidth(const std::string& text) const override { return m_fonts.TextWidth(m_label, text); }
    float TitleWidth(const std::string& text) const override { return m_fonts.TextWidth(m_title, text); }

  private:
    DeskFonts& m_fonts;
    int m_label;
    int m_title;
};

}  // namespace tavrin
