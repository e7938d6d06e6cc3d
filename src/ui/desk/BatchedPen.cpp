// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/BatchedPen.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "images/SgiImage.h"

namespace tavrin {

namespace {

// What would take too much of the texture is drawn plainly.
constexpr int kWidestWriting = 1024;
constexpr int kLargestIcon = 256;

}  // namespace

bool BatchedPen::IsUsable() const {
    GLint size = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &size);
    return size >= m_atlas.Size();
}

void BatchedPen::ContextIsNew() {
    DeskPen::ContextIsNew();
    m_atlas.ContextIsNew();
}

void BatchedPen::Flush() {
    m_layers.Draw(PixelRatio(), [this] { m_atlas.Bind(); });
}

void BatchedPen::ForgetPictures() {
    Flush();  // what waits to be drawn looks at the texture as it is
    m_atlas.Clear();
    m_icons.clear();
    m_marks.clear();
    for (auto& writings : m_writings) writings.clear();
    m_generation = Fonts().Generation();
}

std::optional<BatchedPen::Place> BatchedPen::Room(int width, int height) {
    auto place = m_atlas.Add(width, height);
    if (place) return place;
    ForgetPictures();
    return m_atlas.Add(width, height);
}

void BatchedPen::Picture(const Place& place, const DeskRect& window, const Rgb& color) {
    const auto inTexture = [size = static_cast<float>(m_atlas.Size())](int x, int y) {
        return DeskPoint{static_cast<float>(x) / size, static_cast<float>(y) / size};
    };
    m_layers.AddPicture(
        {inTexture(place.x, place.y), inTexture(place.x + place.width, place.y + place.height)},
        {{window.left, window.bottom}, {window.Right(), window.Top()}}, color);
}

std::optional<BatchedPen::Writing> BatchedPen::Write(int font, const std::u32string& letters) {
    int left = 0;
    int right = 0;
    int bottom = 0;
    int top = 0;
    int pen = 0;
    for (const char32_t letter : letters) {
        const Glyph& glyph = Fonts().GlyphOf(font, letter);
        if (glyph.width > 0) {
            const bool isFirst = left == right;
            const int begin = pen + glyph.left;
            left = isFirst ? begin : std::min(left, begin);
            right = isFirst ? begin + glyph.width : std::max(right, begin + glyph.width);
            bottom = isFirst ? glyph.bottom : std::min(bottom, glyph.bottom);
            top = isFirst ? glyph.bottom + glyph.height : std::max(top, glyph.bottom + glyph.height);
        }
        pen += Fonts().AdvanceOf(font, letter);
    }
    if (left == right) return Writing{};
    if (right - left > kWidestWriting) return std::nullopt;
    const auto place = Room(right - left, top - bottom);
    if (!place) return std::nullopt;
    const Writing writing{*place, left, bottom};
    Ink(font, letters, writing);
    return writing;
}

void BatchedPen::Ink(int font, const std::u32string& letters, const Writing& writing) {
    int pen = -writing.left;
    for (const char32_t letter : letters) {
        const Glyph& glyph = Fonts().GlyphOf(font, letter);
        for (int y = 0; y < glyph.height; ++y) {
            unsigned char* row = m_atlas.Row(writing.place, y + glyph.bottom - writing.bottom);
            for (int x = 0; x < glyph.width; ++x) {
                // Letters may reach into one another: of what is left of a pixel each covers its part.
                unsigned char* pixel = row + 4 * (pen + glyph.left + x);
                const int left = 255 - *pixel;
                std::memset(pixel, *pixel + (left * glyph.InkAt(x, y) + 127) / 255, 4);
            }
        }
        pen += Fonts().AdvanceOf(font, letter);
    }
}

const BatchedPen::Writing* BatchedPen::WritingOf(int font, const std::string& text) {
    if (m_generation != Fonts().Generation()) ForgetPictures();
    auto& writings = m_writings[static_cast<size_t>(font)];
    if (const auto known = writings.find(text); known != writings.end()) return &known->second;
    const auto writing = Write(font, LettersOf(text));
    return writing ? &writings.emplace(text, *writing).first->second : nullptr;
}

void BatchedPen::Text(int font, const std::string& text, const Rgb& color, DeskPoint at) {
    const Writing* writing = WritingOf(font, text);
    if (writing == nullptr) {
        Flush();
        TextByLists(font, text, color, at);
        return;
    }
    if (writing->place.width == 0) return;
    const DeskPoint begin = PixelOfText(at);
    Picture(writing->place,
            {begin.x + static_cast<float>(writing->left), begin.y + static_cast<float>(writing->bottom),
             static_cast<float>(writing->place.width), static_cast<float>(writing->place.height)},
            color);
}

void BatchedPen::Cover(const Glyph& mark, const Rgb& color, int x, int y) {
    auto known = m_marks.find(&mark);
    if (known == m_marks.end()) {
        const auto place = Room(mark.width, mark.height);
        if (!place) {
            Flush();
            CoverByPixels(mark, color, x, y);
            return;
        }
        for (int row = 0; row < mark.height; ++row) {
            unsigned char* to = m_atlas.Row(*place, row);
            for (int i = 0; i < mark.width; ++i) std::memset(to + 4 * i, mark.InkAt(i, row), 4);
        }
        known = m_marks.emplace(&mark, *place).first;
    }
    Picture(known->second,
            {static_cast<float>(x), static_cast<float>(y), static_cast<float>(mark.width),
             static_cast<float>(mark.height)},
            color);
}

const BatchedPen::Place* BatchedPen::PlaceOf(const CSgiImage& image) {
    if (const auto known = m_icons.find(&image); known != m_icons.end()) return &known->second;
    if (std::max(image.width, image.height) > kLargestIcon) return nullptr;
    const auto place = Room(image.width, image.height);
    if (!place) return nullptr;
    const auto rowBytes = static_cast<size_t>(4 * image.width);
    for (int y = 0; y < image.height; ++y) {
        unsigned char* row = m_atlas.Row(*place, y);
        std::memcpy(row, image.pixels.get() + static_cast<size_t>(y) * rowBytes, rowBytes);
        for (int x = 0; x < image.width; ++x)
            row[4 * x + 3] = 0xFF;  // it covers what lies below, clear or not
    }
    return &m_icons.emplace(&image, *place).first->second;
}

// Where pixels are drawn they begin at the nearest whole one.
void BatchedPen::Image(const CSgiImage& image, DeskPoint lowerLeft) {
    const Place* place = PlaceOf(image);
    if (place == nullptr) {
        Flush();
        ImageByPixels(image, lowerLeft, 1 / Pixel());
        return;
    }
    const DeskPoint begin = FromCorner(lowerLeft);
    Picture(
        *place,
        {std::round(begin.x + kPixelCentre), std::round(begin.y + kPixelCentre),
         static_cast<float>(image.width) * DevicePixels(), static_cast<float>(image.height) * DevicePixels()},
        {1, 1, 1});
}

}  // namespace tavrin
