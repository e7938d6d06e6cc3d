// SPDX-License-Identifier: Apache-2.0
#include "library/SourceLines.h"

#include <array>
#include <charconv>

namespace tavrin {

namespace {

constexpr std::string_view kHead = "#source lines\n";
constexpr std::string_view kFile = "#file ";
constexpr std::string_view kLine = "#line ";
constexpr int kMost = 1'000'000'000;  // so that two can be added

// Takes the first line off a text; without its line feed.
std::string_view TakeLine(std::string_view& text) {
    const size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

// The three numbers of a line that says from where on the text comes from where.
std::optional<std::array<int, 3>> NumbersOf(std::string_view line) {
    std::array<int, 3> numbers{};
    if (!line.starts_with(kLine)) return std::nullopt;
    line.remove_prefix(kLine.size());
    for (size_t i = 0; i < numbers.size(); ++i) {
        const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), numbers[i]);
        if (error != std::errc() || numbers[i] < 1 || numbers[i] > kMost) return std::nullopt;
        line.remove_prefix(static_cast<size_t>(end - line.data()));
        if (i + 1 == numbers.size()) break;
        if (!line.starts_with(' ')) return std::nullopt;
        line.remove_prefix(1);
    }
    if (!line.empty()) return std::nullopt;
    return numbers;
}

// By a look that costs next to nothing, since it is made for every box.
bool IsOfTable(std::string_view line) {
    if (line.starts_with(kFile)) return line.size() > kFile.size();
    return line.starts_with(kLine) && line.size() > kLine.size() &&
           line.find_first_not_of("0123456789 ", kLine.size()) == std::string_view::npos;
}

}  // namespace

// Comments of the author's that look alike are told from a table by what must follow up to the end.
size_t EndOfDefinition(std::string_view preprocessed) {
    if (!preprocessed.ends_with('\n')) return preprocessed.size();
    const size_t last = preprocessed.rfind('\n', preprocessed.size() - 2);
    if (last == std::string_view::npos ||
        !IsOfTable(preprocessed.substr(last + 1, preprocessed.size() - last - 2)))
        return preprocessed.size();
    const size_t begin = preprocessed.rfind(kHead);
    if (begin == std::string_view::npos || (begin > 0 && preprocessed[begin - 1] != '\n'))
        return preprocessed.size();
    for (std::string_view rest = preprocessed.substr(begin + kHead.size()); !rest.empty();) {
        if (!IsOfTable(TakeLine(rest))) return preprocessed.size();
    }
    return begin;
}

std::vector<std::string> SourceLines::Files() const {
    std::vector<std::string> files;
    for (std::string_view rest = m_table; !rest.empty();) {
        const std::string_view line = TakeLine(rest);
        if (line.starts_with(kFile)) files.emplace_back(line.substr(kFile.size()));
    }
    return files;
}

std::vector<SourceLines::Run> SourceLines::Runs() const {
    std::vector<Run> runs;
    for (std::string_view rest = m_table; !rest.empty();) {
        const auto numbers = NumbersOf(TakeLine(rest));
        if (!numbers || (!runs.empty() && (*numbers)[0] <= runs.back().first)) continue;
        runs.push_back({(*numbers)[0], (*numbers)[1], (*numbers)[2]});
    }
    return runs;
}

std::optional<SourceLines::Place> SourceLines::Find(int line) const {
    std::optional<std::array<int, 3>> run;
    for (std::string_view rest = m_table; !rest.empty();) {
        const auto numbers = NumbersOf(TakeLine(rest));
        if (numbers && (*numbers)[0] <= line) run = numbers;
    }
    if (!run) return std::nullopt;
    const auto [first, file, firstLine] = *run;
    const std::vector<std::string> files = Files();
    if (static_cast<size_t>(file) > files.size()) return std::nullopt;
    return Place{files[static_cast<size_t>(file) - 1], firstLine + (line - first)};
}

}  // namespace tavrin
