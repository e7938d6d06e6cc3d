// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/WrappedText.h"

#include <algorithm>
#include <string_view>

namespace tavrin {

namespace {

constexpr const char* kEllipsis = "\xE2\x80\xA6";
constexpr size_t kMostBytes = 1024;  // of a line: characters may have no width at all

// Back to where a character begins.
size_t WholeCharacters(std::string_view text, size_t end) {
    if (end >= text.size()) return text.size();
    constexpr size_t kLongest = 4;
    size_t whole = end;
    while (whole > 0 && end - whole < kLongest && (static_cast<unsigned char>(text[whole]) & 0xC0) == 0x80)
        --whole;
    return whole;
}

// How many bytes of the text have room, to whole characters.
size_t Fitting(std::string_view text, float width, const MeasureText& measure) {
    const auto fits = [&](size_t bytes) { return measure(std::string(text.substr(0, bytes))) <= width; };
    const size_t all = WholeCharacters(text, std::min(text.size(), kMostBytes));
    if (fits(all)) return all;
    size_t low = 0;
    size_t high = all;
    while (high - low > 1) {
        const size_t middle = low + (high - low) / 2;
        (fits(WholeCharacters(text, middle)) ? low : high) = middle;
    }
    return WholeCharacters(text, low);
}

// One character at least, so that each line takes something.
size_t FirstCharacter(std::string_view text) {
    size_t end = 1;
    while (end < text.size() && WholeCharacters(text, end) == 0) ++end;
    return std::min(end, text.size());
}

// The bytes of the first line: up to the last blank that has room, if one has.
size_t LineLength(std::string_view line, float width, const MeasureText& measure) {
    const size_t fitting = Fitting(line, width, measure);
    if (fitting == line.size()) return fitting;
    if (line[fitting] == ' ') return fitting;
    const size_t blank = line.substr(0, fitting).find_last_of(' ');
    if (blank != std::string_view::npos && blank > 0) return blank;
    return fitting > 0 ? fitting : FirstCharacter(line);
}

}  // namespace

std::string CutToWidth(const std::string& text, float width, const MeasureText& measure) {
    if (text.size() <= kMostBytes && measure(text) <= width) return text;
    const size_t fitting = Fitting(text, width - measure(kEllipsis), measure);
    return text.substr(0, fitting) + kEllipsis;
}

std::vector<std::string> WrapText(const std::string& text, float width, size_t most,
                                  const MeasureText& measure) {
    std::vector<std::string> lines;
    std::string_view rest = text;
    while (!rest.empty() && lines.size() < most) {
        const size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = rest.substr(0, end);
        const size_t taken = line.empty() ? 0 : LineLength(line, width, measure);
        std::string shown(line.substr(0, taken));
        rest.remove_prefix(taken);
        if (taken == end) {
            rest.remove_prefix(std::min<size_t>(rest.size(), 1));  // what ended the line
        } else if (rest.starts_with(' ')) {
            rest.remove_prefix(1);
        }
        const bool isCut = lines.size() + 1 == most && !rest.empty();
        if (isCut) shown = CutToWidth(shown + kEllipsis, width, measure);
        lines.push_back(std::move(shown));
    }
    return lines;
}

}  // namespace tavrin
