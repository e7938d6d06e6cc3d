// SPDX-License-Identifier: Apache-2.0
#include "document/DeskFrame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "text/Numbers.h"

namespace tavrin {

namespace {

constexpr std::string_view kFrameWord = "frame";
constexpr std::string_view kNoteWord = "note";
constexpr std::string_view kDigits = "0123456789ABCDEF";

bool IsEscaped(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return c == '%' || byte < 0x20 || byte == 0x7F;
}

// -1 for what is no digit.
int DigitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        if (!IsEscaped(c)) {
            escaped += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        escaped += {'%', kDigits[byte / 16], kDigits[byte % 16]};
    }
    return escaped;
}

// A '%' that no two digits follow stands for itself.
std::string Unescaped(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const bool hasDigits = text[i] == '%' && i + 2 < text.size();
        const int high = hasDigits ? DigitOf(text[i + 1]) : -1;
        const int low = hasDigits ? DigitOf(text[i + 2]) : -1;
        if (high < 0 || low < 0) {
            plain += text[i];
        } else {
            plain += static_cast<char>(static_cast<unsigned char>(high * 16 + low));
            i += 2;
        }
    }
    return plain;
}

}  // namespace

void DeskFrame::KeepBounds() {
    color = std::clamp(color, 0, kColors - 1);
    width = std::clamp(width, kLeastSide, kMostSide);
    height = std::clamp(height, kLeastSide, kMostSide);
    left = std::clamp(left, -kFarthest, kFarthest);
    bottom = std::clamp(bottom, -kFarthest, kFarthest);
}

bool AddFrame(DeskFrames& frames, DeskFrame frame) {
    if (frames.size() >= kMostFrames) return false;
    const int number = frames.empty() ? 1 : frames.rbegin()->first + 1;
    frames.emplace_hint(frames.end(), number, std::move(frame));
    return true;
}

std::string WordsOf(const DeskFrame& frame) {
    std::string words(frame.kind == DeskFrame::Kind::kFrame ? kFrameWord : kNoteWord);
    words += " " + std::to_string(frame.color);
    for (const float number : {frame.left, frame.bottom, frame.width, frame.height})
        words += " " + FormatF(static_cast<double>(number));
    return words + " " + Escaped(frame.text);
}

std::optional<DeskFrame> FrameOf(std::string_view words) {
    FieldScanner scanner(words);
    const auto kind = scanner.Word();
    if (!kind || (*kind != kFrameWord && *kind != kNoteWord)) return std::nullopt;
    const auto color = scanner.Int();
    std::array<float, 4> numbers{};
    for (float& number : numbers) {
        const auto read = color ? scanner.Float() : std::nullopt;
        if (!read || !std::isfinite(*read)) return std::nullopt;
        number = *read;
    }
    std::string_view text = scanner.Rest();
    if (text.starts_with(' ')) text.remove_prefix(1);
    DeskFrame frame{.kind = *kind == kFrameWord ? DeskFrame::Kind::kFrame : DeskFrame::Kind::kNote,
                    .color = *color,
                    .left = numbers[0],
                    .bottom = numbers[1],
                    .width = numbers[2],
                    .height = numbers[3],
                    .text = Unescaped(text)};
    frame.KeepBounds();
    return frame;
}

}  // namespace tavrin
