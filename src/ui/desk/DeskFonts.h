// SPDX-License-Identifier: Apache-2.0
// The desk's texts: one face, as pictures of its letters. They are black and white, in the point sizes 3 to
// 24, or have shades, in any size that a zoom asks for.
#pragma once

#include <QFont>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desk/DeskGeometry.h"

namespace tavrin {

// The picture of a letter. All lengths are device pixels, seen from the point on the base line where it
// begins.
struct Glyph {
    int left = 0;
    int bottom = 0;
    int width = 0;  // 0 for a letter without ink
    int height = 0;
    // A byte for each pixel, the lowest row first: 0 or 255, or what of it is covered.
    std::vector<unsigned char> ink;
    bool HasInk(int x, int y) const { return InkAt(x, y) != 0; }
    unsigned char InkAt(int x, int y) const { return ink[static_cast<size_t>(y * width + x)]; }
};

// How texts are to be read.
struct Legibility {
    // Letters have shades. Labels shrink with the zoom no further than to `leastLetters`, and go where their
    // rows are too low for that.
    bool smooth = false;
    float leastLetters = 0;  // device pixels of a letter's square; texts of smaller ones are left out
};

// Owned by the desk's window; needs no context. Sizes and letters are made when they are first needed.
// Letters that the face lacks are taken from another one of the platform's; control characters have no width
// and no ink.
class DeskFonts {
  public:
    static constexpr int kLeastPoints = 3;
    static constexpr int kMostPoints = 24;
    static constexpr int kSizes = kMostPoints - kLeastPoints + 1;
    static constexpr int kMostPixels = 192;  // of letters with shades, device pixels
    static constexpr int kAllSizes = kSizes + kMostPixels;
    static constexpr float kThinnestEdge =
        0.5F;                         // of the edges round smooth texts, as a part of what they are
    static constexpr int kNone = -1;  // no size fits: nothing is drawn, and all widths are 0

    // `fail` gets the message if the platform has no font; the program cannot go on then.
    DeskFonts(const std::string& face, std::function<void(const std::string&)> fail,
              Legibility legibility = {});
    ~DeskFonts();

    // The index of the largest size that is not above so many points. Labels have 6 and titles 12 points for
    // each unit of the zoom, cut to whole points.
    static int IndexFor(float points);
    static int LabelFont(float zoom) { return IndexFor(zoom * 6); }
    static int TitleFont(float zoom) { return IndexFor(zoom * 12); }

    // What labels and titles have at a zoom: these, or a size with shades; kNone where they cannot be read.
    int ForLabels(float zoom) const;
    int ForTitles(float zoom) const;
    bool IsSmooth() const { return m_legibility.smooth; }

    // Device pixels in a window pixel. Everything that was made for another ratio is made anew.
    void SetPixelRatio(float ratio);
    float PixelRatio() const { return m_ratio; }
    // Counts the times that all letters were made anew, so that who keeps some can tell.
    int Generation() const { return m_generation; }

    // All in window pixels.
    float TextWidth(int font, const std::string& text);
    // The room that a label or a title takes at a zoom. Where smooth ones are left out it is kept free, so
    // that boxes stay as they are.
    float LabelRoom(float zoom, const std::string& text);
    float TitleRoom(float zoom, const std::string& text);
    struct Metrics {
        float height = 0;  // of a line, without the space between lines
        float leading = 0;
        float descent = 0;
        float capital = 0;  // of a capital letter
    };
    Metrics MetricsOf(int font);

    // Of one letter; the advance is in device pixels. Not for kNone.
    int AdvanceOf(int font, char32_t letter);
    const Glyph& GlyphOf(int font, char32_t letter);

  private:
    struct Size;
    Size& SizeAt(int font);
    int PixelsOf(int font) const;
    bool IsReadable(int font) const;
    int SmoothFont(float pixels) const;
    float RoomFor(int font, int usual, float zoom, const std::string& text);

    QString m_face;
    std::function<void(const std::string&)> m_fail;
    Legibility m_legibility;
    std::array<std::unique_ptr<Size>, kAllSizes> m_sizes;
    float m_ratio = 1;
    int m_generation = 0;
};

// The letters of a text in UTF-8. What is not well formed becomes the replacement character.
std::u32string LettersOf(const std::string& text);

// The widths that belong to a zoom.
class DeskTextMeasure : public TextMeasure {
  public:
    DeskTextMeasure(DeskFonts& fonts, float zoom) : m_fonts(fonts), m_zoom(zoom) {}
    float LabelWidth(const std::string& text) const override { return m_fonts.LabelRoom(m_zoom, text); }
    float TitleWidth(const std::string& text) const override { return m_fonts.TitleRoom(m_zoom, text); }

  private:
    DeskFonts& m_fonts;
    float m_zoom;
};

}  // namespace tavrin
