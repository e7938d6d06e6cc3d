// SPDX-License-Identifier: Apache-2.0
#include "site/ChildLog.h"

#include <algorithm>
#include <utility>

#include "text/Report.h"

namespace tavrin {

namespace {

// A line that goes on for longer than this is broken, so that what waits is bounded.
constexpr size_t kLongestLine = 4096;

// What a terminal would show of a line: a return without a line feed goes back to the line's beginning, by
// which progress is told.
std::string_view ShownPart(std::string_view line) {
    const size_t end = line.ends_with("\r\n") ? line.size() - 2 : line.size();
    const size_t back = line.substr(0, end).rfind('\r');
    return back == std::string_view::npos ? line : line.substr(back + 1);
}

}  // namespace

void ChildLog::Begin(int id, std::string label) {
    m_streams[id].label = std::move(label);
    const auto hasLabel = [](const auto& stream) { return !stream.second.label.empty(); };
    if (std::count_if(m_streams.begin(), m_streams.end(), hasLabel) < 2) return;
    for (auto& [other, stream] : m_streams) stream.isLabelled = !stream.label.empty();
}

void ChildLog::Append(int id, std::string_view piece) {
    Stream& stream = m_streams[id];
    if (!stream.isLabelled) {
        m_openLine = piece.ends_with('\n') ? kNobody : id;
        m_report.LogRaw(piece);
        return;
    }
    std::string& line = stream.line;
    for (const char c : piece) {
        line += c;
        if (c != '\n' && line.size() < kLongestLine) continue;
        if (c != '\n') line += '\n';
        EmitLine(id, stream, line);
        line.clear();
    }
}

void ChildLog::Note(std::string_view lines) {
    if (std::exchange(m_openLine, kNobody) != kNobody) m_report.LogRaw("\n");
    m_report.LogRaw(lines);
}

void ChildLog::End(int id) {
    const auto found = m_streams.find(id);
    if (found == m_streams.end()) return;
    const Stream& stream = found->second;
    if (!stream.line.empty()) EmitLine(id, stream, stream.line + "\n");
    m_streams.erase(found);
    if (m_streams.empty()) m_openLine = kNobody;
}

void ChildLog::EmitLine(int id, const Stream& stream, std::string_view line) {
    const int open = m_openLine;
    m_openLine = kNobody;
    // The rest of a line that the child began before it had company.
    if (open == id) return m_report.LogRaw(line);
    if (open != kNobody) m_report.LogRaw("\n");
    std::string labelled = "[" + stream.label + "] ";
    labelled += ShownPart(line);
    m_report.LogRaw(labelled);
}

}  // namespace tavrin
