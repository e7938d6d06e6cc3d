#include "ui/desk/DeskFonts.h"

#include <GL/gl.h>

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

#include "text/Report.h"
#include "ui/Text.h"

namespace tavrin {

namespace {

constexpr int kBlock = 128;                       // display lists in a block
constexpr int kCharacters = 256;                  // Latin-1: a block for the lower half, one for the upper
constexpr float kPixelsInAPoint = 96.0F / 72.0F;  // whatever the screen: texts are to fit their boxes
constexpr int kGlyphMargin = 2;                   // pixels that a glyph may stand out of its advance

// The lower halves of all sizes come first, then the upper ones.
int ListOf(int font, int character) {
    const bool isUpper = character >= kBlock;
    return kBlock * (font + (isUpper ? DeskFonts::kSizes : 0)) + character - (isUpper ? kBlock : 0);
}

bool IsShown(int character) { return (character >= 32 && character < 127) || character >= 160; }

bool IsLatin(const std::string& text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
}

// One byte for each character. What Latin-1 lacks becomes a question mark.
QByteArray CharactersOf(const std::string& text) {
    if (IsLatin(text)) return QByteArray::fromRawData(text.data(), qsizetype(text.size()));
    const QList<uint> letters = Shown(text).toUcs4();
    QByteArray bytes;
    for (const uint letter : letters) bytes += letter < kCharacters ? char(letter) : '?';
    return bytes;
}

}  // namespace

struct DeskFonts::Size {
    QFont font;
    int ascent = 0;  // all in device pixels
    int descent = 0;
    int leading = 0;
    std::array<short, kCharacters> advances{};
    bool hasLists = false;
};

DeskFonts::DeskFonts(const std::string& face, std::function<void(const std::string&)> fail)
    : m_face(Shown(face)), m_fail(std::move(fail)) {}

DeskFonts::~DeskFonts() = default;

int DeskFonts::IndexFor(float points) {
    if (!(points >= kLeastPoints)) return kNone;
    return static_cast<int>(std::min(points, float(kMostPoints))) - kLeastPoints;
}

void DeskFonts::SetPixelRatio(float ratio) {
    if (ratio == m_ratio) return;
    m_ratio = ratio;
    for (auto& size : m_sizes) size.reset();
}

DeskFonts::Size& DeskFonts::SizeAt(int font) {
    auto& size = m_sizes[static_cast<size_t>(font)];
    if (size) return *size;
    size = std::make_unique<Size>();
    const int points = font + kLeastPoints;
    size->font = QFont(m_face);
    size->font.setPixelSize(std::max(1, int(std::lround(float(points) * kPixelsInAPoint * m_ratio))));
    size->font.setStyleStrategy(QFont::NoAntialias);
    size->font.setHintingPreference(QFont::PreferFullHinting);
    const QFontMetrics metrics(size->font);
    size->ascent = metrics.ascent();
    size->descent = metrics.descent();
    size->leading = metrics.leading();
    if (size->ascent <= 0) {
        m_fail("FATAL ERROR: " + std::to_string(points) + " point font unavailable");
    }
    for (int c = 0; c < kCharacters; ++c) {
        if (IsShown(c)) size->advances[size_t(c)] = short(metrics.horizontalAdvance(QChar(char16_t(c))));
    }
    return *size;
}

float DeskFonts::TextWidth(int font, const std::string& text) {
    if (font == kNone) return 0;
    const Size& size = SizeAt(font);
    int width = 0;
    for (const char c : CharactersOf(text)) width += size.advances[static_cast<unsigned char>(c)];
    return float(width) / m_ratio;
}

DeskFonts::Metrics DeskFonts::MetricsOf(int font) {
    if (font == kNone) return {};
    const Size& size = SizeAt(font);
    return {float(size.ascent + size.descent) / m_ratio, float(size.leading) / m_ratio,
            float(size.descent) / m_ratio};
}

void DeskFonts::ContextIsNew() {
    m_listBase = 0;
    for (auto& size : m_sizes) {
        if (size) size->hasLists = false;
    }
}

void DeskFonts::MakeLists(int font, Size& size) {
    if (m_listBase == 0) m_listBase = glGenLists(kCharacters * kSizes);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    const int height = size.ascent + size.descent;
    for (int c = 0; c < kCharacters; ++c) {
        if (!IsShown(c)) continue;
        const int advance = size.advances[size_t(c)];
        QImage image(advance + 2 * kGlyphMargin, height, QImage::Format_Mono);
        image.fill(0);
        QPainter painter(&image);
        painter.setFont(size.font);
        painter.setPen(Qt::white);
        painter.drawText(QPoint(kGlyphMargin, size.ascent), QString(QChar(char16_t(c))));
        painter.end();
        // Rows run upward in a bitmap, and here without the image's padding.
        const int bytes = (image.width() + 7) / 8;
        std::vector<unsigned char> bits;
        for (int row = height - 1; row >= 0; --row) {
            bits.insert(bits.end(), image.constScanLine(row), image.constScanLine(row) + bytes);
        }
        glNewList(m_listBase + unsigned(ListOf(font, c)), GL_COMPILE);
        glBitmap(image.width(), height, float(kGlyphMargin), float(size.descent), float(advance), 0,
                 bits.data());
        glEndList();
    }
    size.hasLists = true;
}

void DeskFonts::Draw(int font, const std::string& text) {
    if (font == kNone || text.empty()) return;
    Size& size = SizeAt(font);
    if (!size.hasLists) MakeLists(font, size);
    const QByteArray characters = CharactersOf(text);
    glPushAttrib(GL_LIST_BIT);
    const auto isUpper = [](char c) { return (c & 0x80) != 0; };
    for (qsizetype start = 0, end = 0; start < characters.size(); start = end) {
        const bool upper = isUpper(characters[start]);
        while (end < characters.size() && isUpper(characters[end]) == upper) ++end;
        // Bytes of the upper half count from 128.
        const int base = ListOf(font, upper ? kBlock : 0) - (upper ? kBlock : 0);
        glListBase(m_listBase + unsigned(base));
        glCallLists(GLsizei(end - start), GL_UNSIGNED_BYTE, characters.constData() + start);
    }
    glPopAttrib();
}

}  // namespace tavrin
