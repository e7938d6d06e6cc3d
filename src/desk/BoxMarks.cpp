// SPDX-License-Identifier: Apache-2.0
#include "desk/BoxMarks.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "library/OpBox.h"

namespace tavrin {

namespace {

constexpr std::string_view kBox = "box ";
constexpr std::string_view kWarning = "warning:";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsWord(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

bool IsWarning(std::string_view line) {
    const auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    return std::search(line.begin(), line.end(), kWarning.begin(), kWarning.end(), same) != line.end();
}

// Up to its number, which ends it: a title may hold blanks.
std::string_view NameAt(std::string_view text) {
    for (size_t at = text.find('_', 1); at != std::string_view::npos; at = text.find('_', at + 1)) {
        size_t end = at + 1;
        while (end < text.size() && IsDigit(text[end])) ++end;
        if (end > at + 1 && (end == text.size() || !IsWord(text[end]))) return text.substr(0, end);
    }
    return {};
}

// What stands behind the label of a child; nothing of one that is another render's.
std::string_view WithoutLabel(std::string_view line, int render) {
    constexpr std::string_view kRender = "[render ";
    const size_t end = line.find("] ");
    if (!line.starts_with(kRender) || end == std::string_view::npos) return line;
    const bool isOwn = line.substr(kRender.size(), end - kRender.size()) == std::to_string(render);
    return isOwn ? line.substr(end + 2) : std::string_view();
}

}  // namespace

void BoxMarks::Begin() {
    m_line.clear();
    m_render = 0;
    if (!std::exchange(m_marks, {}).empty()) afterChange.Tell();
}

void BoxMarks::Hear(std::string_view piece) {
    if (TakePiece(piece)) afterChange.Tell();
}

void BoxMarks::Replace(std::string_view text) {
    const auto before = std::exchange(m_marks, {});
    m_line.clear();
    TakePiece(text);
    TakePiece("\n");
    if (m_marks != before) afterChange.Tell();
}

const std::string* BoxMarks::Find(const std::string& boxTitleWid) const {
    const auto found = m_marks.find(boxTitleWid);
    return found == m_marks.end() ? nullptr : &found->second;
}

bool BoxMarks::TakePiece(std::string_view piece) {
    bool hasChanged = false;
    while (!piece.empty()) {
        const size_t end = piece.find_first_of("\r\n");
        const std::string_view part = piece.substr(0, end);
        m_line += part.substr(0, kLongestLine - std::min(m_line.size(), kLongestLine));
        if (end == std::string_view::npos) break;
        hasChanged |= TakeLine(m_line);
        m_line.clear();
        piece.remove_prefix(end + 1);
    }
    return hasChanged;
}

bool BoxMarks::TakeLine(std::string_view line) {
    const std::string_view text = WithoutLabel(line, m_render);
    if (text.find(kBox) == std::string_view::npos || IsWarning(text)) return false;
    bool hasChanged = false;
    for (size_t at = text.find(kBox); at != std::string_view::npos; at = text.find(kBox, at + 1)) {
        if (at > 0 && IsWord(text[at - 1])) continue;  // a word that ends so
        const std::string_view name = NameAt(text.substr(at + kBox.size()));
        if (!name.empty()) hasChanged |= Mark(std::string(name), text);
    }
    return hasChanged;
}

bool BoxMarks::Mark(const std::string& box, std::string_view message) {
    if (m_marks.size() >= kMostBoxes && !m_marks.contains(box)) return false;
    std::string& known = m_marks[box];
    const auto lines = static_cast<size_t>(std::count(known.begin(), known.end(), '\n')) + 1;
    if (!known.empty()) {
        if (lines >= kMostLines || known.find(message) != std::string::npos) return false;
        known += '\n';
    }
    known += message;
    return true;
}

std::string HelpOf(const COpBox& box, const BoxMarks* marks) {
    if (marks == nullptr || marks->IsEmpty()) return box.boxhelp;
    const std::string* message = marks->Find(box.BoxTitleWid());
    if (message == nullptr) return box.boxhelp;
    return box.boxhelp.empty() ? *message : *message + "\n\n" + box.boxhelp;
}

}  // namespace tavrin
