// SPDX-License-Identifier: Apache-2.0
// Draws the desk in few large pieces.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <unordered_map>

#include "ui/desk/DeskAtlas.h"
#include "ui/desk/DrawLayers.h"

namespace tavrin {

// Gathers shapes for as long as it can; texts and icons stand in one texture. The picture is that of
// PlainPen. Where the context's textures are too small, IsUsable tells.
class BatchedPen : public DeskPen {
  public:
    static constexpr int kTextureSize = 2048;
    // The texture has so many pixels on a side, a power of two.
    BatchedPen(const DeskViewport& view, DeskFonts& fonts, int textureSize = kTextureSize)
        : DeskPen(view, fonts), m_atlas(textureSize) {}

    // In the current context.
    bool IsUsable() const;
    void ContextIsNew() override;

    void BeginObject(const DeskRect& bounds) override { m_layers.BeginObject(bounds); }
    void EndObjects() override { m_layers.EndObjects(); }
    void Polygon(std::span<const DeskPoint> corners, const Rgb& color) override {
        m_layers.AddPolygon(corners, color);
    }
    void Line(std::span<const DeskPoint> points, const LineLook& look) override {
        const LineLook device{look.color, DeviceWidth(look), look.stippled};
        if (IsSmooth(look)) {
            m_layers.AddSmoothLine(points, device, 1 / DevicePixels());
        } else {
            m_layers.AddLine(points, device);
        }
    }

  protected:
    void ViewIsSet() override { m_layers.SetView(Visible(), Pixel()); }
    void Quads(std::span<const DeskPoint> corners, const Rgb& color) override {
        m_layers.AddFaces(corners, color);
    }
    void Text(int font, const std::string& text, const Rgb& color, DeskPoint at) override;
    void Image(const CSgiImage& image, DeskPoint lowerLeft) override;
    void Cover(const Glyph& mark, const Rgb& color, int x, int y) override;
    void Flush() override;

  private:
    using Place = DeskAtlas::Place;
    // A text as it stands in the texture.
    struct Writing {
        Place place;   // without width for a text without ink
        int left = 0;  // device pixels from where the text begins on its base line
        int bottom = 0;
    };

    void ForgetPictures();
    // Makes room if there is none; nothing for what is too large.
    std::optional<Place> Room(int width, int height);
    // Nothing for a text that is too wide.
    const Writing* WritingOf(int font, const std::string& text);
    std::optional<Writing> Write(int font, const std::u32string& letters);
    void Ink(int font, const std::u32string& letters, const Writing& writing);
    const Place* PlaceOf(const CSgiImage& image);
    // Over a rectangle of the window, in device pixels from its lower left corner.
    void Picture(const Place& place, const DeskRect& window, const Rgb& color);

    DrawLayers m_layers;
    DeskAtlas m_atlas;
    std::array<std::unordered_map<std::string, Writing>, DeskFonts::kAllSizes> m_writings;
    std::unordered_map<const Glyph*, Place> m_marks;
    std::unordered_map<const CSgiImage*, Place> m_icons;
    int m_generation = 0;  // of the letters in the texture
};

}  // namespace tavrin
