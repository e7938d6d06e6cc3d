// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskFonts.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>

#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr float kPixelsInAPoint = 96.0F / 72.0F;  // whatever the screen: texts are to fit their boxes
constexpr char32_t kCommonLetters = 256;          // those of Latin-1, found without a search
constexpr char32_t kDelete = 127;
// Letters of so few pixels, without shades, stand at even distances: their faces' own ones, rounded to
// pixels, would tear some words apart and let the letters of others touch.
constexpr int kSmallPixels = 10;
constexpr int kSmallGap = 1;
constexpr int kSmallBlank = 3;
constexpr char32_t kFirstUpperLetter = 160;
// Smooth letters, in window pixels at a zoom of 1.
constexpr float kLabelPixels = 8;
constexpr float kTitlePixels = 16;
// What of a label's row its letters may fill; the row is as high as a title's letters.
constexpr float kMostOfRow = 0.9F;
constexpr float kLeastPixels = 3;  // device pixels
constexpr float kEdges = desk_lengths::kTextGap + 2 * desk_lengths::kBevel;

bool IsShown(char32_t letter) { return (letter >= U' ' && letter < kDelete) || letter >= kFirstUpperLetter; }

bool IsAscii(const std::string& text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
}

QString TextOf(char32_t letter) { return QString::fromUcs4(&letter, 1); }

// What of a pixel is covered with ink: white on black, or a bit.
unsigned char InkAt(const QImage& image, int x, int y) {
    if (image.format() == QImage::Format_Mono) return image.pixelIndex(x, y) != 0 ? 0xFF : 0;
    return image.constScanLine(y)[x];
}

// The part of a picture of white ink on black that has ink, rows turned upward. `origin` is where the letter
// begins on its base line.
Glyph CutOut(const QImage& image, QPoint origin) {
    QRect inked;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (InkAt(image, x, y) != 0) inked |= QRect(x, y, 1, 1);
        }
    }
    Glyph glyph;
    if (inked.isEmpty()) return glyph;
    glyph.left = inked.left() - origin.x();
    glyph.bottom = origin.y() - inked.bottom() - 1;
    glyph.width = inked.width();
    glyph.height = inked.height();
    glyph.ink.reserve(static_cast<size_t>(glyph.width * glyph.height));
    for (int y = inked.bottom(); y >= inked.top(); --y) {
        for (int x = inked.left(); x <= inked.right(); ++x) {
            glyph.ink.push_back(InkAt(image, x, y));
        }
    }
    return glyph;
}

}  // namespace

struct DeskFonts::Size {
    struct Letter {
        std::optional<int> advance;
        std::optional<Glyph> glyph;
    };

    explicit Size(const QFont& face) : font(face), metrics(face) {}
    bool IsSmooth() const { return (font.styleStrategy() & QFont::NoAntialias) == 0; }
    bool IsSmall() const { return font.pixelSize() <= kSmallPixels && !IsSmooth(); }
    Letter& At(char32_t letter) { return letter < kCommonLetters ? common[letter] : others[letter]; }

    QFont font;
    QFontMetrics metrics;
    std::array<Letter, kCommonLetters> common;
    std::unordered_map<char32_t, Letter> others;
};

DeskFonts::DeskFonts(const std::string& face, std::function<void(const std::string&)> fail,
                     Legibility legibility)
    : m_face(Shown(face)), m_fail(std::move(fail)), m_legibility(legibility) {}

DeskFonts::~DeskFonts() = default;

int DeskFonts::IndexFor(float points) {
    if (!(points >= kLeastPoints)) return kNone;
    return static_cast<int>(std::min(points, float(kMostPoints))) - kLeastPoints;
}

int DeskFonts::PixelsOf(int font) const {
    if (font >= kSizes) return font - kSizes + 1;
    const int points = font + kLeastPoints;
    return std::max(1, int(std::lround(float(points) * kPixelsInAPoint * m_ratio)));
}

bool DeskFonts::IsReadable(int font) const {
    return font != kNone && float(PixelsOf(font)) >= m_legibility.leastLetters;
}

int DeskFonts::SmoothFont(float pixels) const {
    const float least = std::max(kLeastPixels, std::min(m_legibility.leastLetters, float(kMostPixels)));
    if (!(std::round(pixels) >= least)) return kNone;
    return kSizes - 1 + int(std::lround(std::min(pixels, float(kMostPixels))));
}

int DeskFonts::ForLabels(float zoom) const {
    if (!IsSmooth()) return IsReadable(LabelFont(zoom)) ? LabelFont(zoom) : kNone;
    const float row = kTitlePixels * zoom * m_ratio;
    const float wanted = kLabelPixels * zoom * m_ratio;
    const float least = m_legibility.leastLetters;
    return SmoothFont(wanted < least && least <= row * kMostOfRow ? least : wanted);
}

int DeskFonts::ForTitles(float zoom) const {
    if (IsSmooth()) return SmoothFont(kTitlePixels * zoom * m_ratio);
    return IsReadable(TitleFont(zoom)) ? TitleFont(zoom) : kNone;
}

float DeskFonts::RoomFor(int font, int usual, float zoom, const std::string& text) {
    if (!IsSmooth()) return TextWidth(font, text);
    const float width = font == kNone ? TextWidth(usual, text) * zoom : TextWidth(font, text);
    // The layout adds edges of whole pixels at any zoom. Those beside smooth texts shrink to a half, and
    // without texts as far as the box does.
    const float least = font == kNone ? 0 : kThinnestEdge;
    return width - kEdges * (1 - std::clamp(zoom, least, 1.0F));
}

float DeskFonts::LabelRoom(float zoom, const std::string& text) {
    return RoomFor(ForLabels(zoom), ForLabels(1), zoom, text);
}

float DeskFonts::TitleRoom(float zoom, const std::string& text) {
    return RoomFor(ForTitles(zoom), ForTitles(1), zoom, text);
}

void DeskFonts::SetPixelRatio(float ratio) {
    if (ratio == m_ratio) return;
    m_ratio = ratio;
    ++m_generation;
    for (auto& size : m_sizes) size.reset();
}

DeskFonts::Size& DeskFonts::SizeAt(int font) {
    auto& size = m_sizes[static_cast<size_t>(font)];
    if (size) return *size;
    QFont face(m_face);
    face.setPixelSize(PixelsOf(font));
    face.setStyleStrategy(font < kSizes
                              ? QFont::NoAntialias
                              : QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    face.setHintingPreference(QFont::PreferFullHinting);
    size = std::make_unique<Size>(face);
    // Without a single face the toolkit draws frames in the place of letters; they are of no family.
    if (size->metrics.ascent() <= 0 || QFontInfo(face).family().isEmpty()) {
        const std::string which = font < kSizes ? std::to_string(font + kLeastPoints) + " point"
                                                : std::to_string(PixelsOf(font)) + " pixel";
        m_fail("FATAL ERROR: " + which + " font unavailable");
    }
    return *size;
}

int DeskFonts::AdvanceOf(int font, char32_t letter) {
    if (!IsShown(letter)) return 0;
    Size& size = SizeAt(font);
    std::optional<int>& advance = size.At(letter).advance;
    if (advance) return *advance;
    advance = size.metrics.horizontalAdvance(TextOf(letter));
    if (size.IsSmall() && *advance > 0) {
        const Glyph& glyph = GlyphOf(font, letter);
        advance = glyph.width > 0 ? glyph.width + kSmallGap : std::max(*advance, kSmallBlank);
    }
    return *advance;
}

const Glyph& DeskFonts::GlyphOf(int font, char32_t letter) {
    Size& size = SizeAt(font);
    std::optional<Glyph>& glyph = size.At(letter).glyph;
    if (glyph) return *glyph;
    if (!IsShown(letter)) return glyph.emplace();
    // A letter may stand out of its advance and of its line on all sides.
    const int margin = size.font.pixelSize();
    const QPoint origin(margin, margin + size.metrics.ascent());
    const int advance = size.metrics.horizontalAdvance(TextOf(letter));
    QImage image(advance + 2 * margin, size.metrics.height() + 2 * margin,
                 size.IsSmooth() ? QImage::Format_Grayscale8 : QImage::Format_Mono);
    image.fill(0);
    QPainter painter(&image);
    painter.setFont(size.font);
    painter.setPen(Qt::white);
    painter.drawText(origin, TextOf(letter));
    painter.end();
    glyph = CutOut(image, origin);
    if (size.IsSmall() && advance > 0) glyph->left = 0;
    return *glyph;
}

float DeskFonts::TextWidth(int font, const std::string& text) {
    if (font == kNone) return 0;
    int width = 0;
    if (IsAscii(text)) {
        for (const char c : text) width += AdvanceOf(font, static_cast<char32_t>(c));
    } else {
        for (const char32_t letter : LettersOf(text)) width += AdvanceOf(font, letter);
    }
    return float(width) / m_ratio;
}

DeskFonts::Metrics DeskFonts::MetricsOf(int font) {
    if (font == kNone) return {};
    const QFontMetrics& metrics = SizeAt(font).metrics;
    return {float(metrics.ascent() + metrics.descent()) / m_ratio, float(metrics.leading()) / m_ratio,
            float(metrics.descent()) / m_ratio, float(metrics.capHeight()) / m_ratio};
}

std::u32string LettersOf(const std::string& text) {
    if (IsAscii(text)) return {text.begin(), text.end()};
    return Shown(text).toStdU32String();
}

}  // namespace tavrin
