// SPDX-License-Identifier: Apache-2.0
#include "text/Archive.h"

#include <algorithm>

#include "base/Files.h"

namespace tavrin {

std::optional<CArchive> CArchive::Open(const std::string& path, std::string& error) {
    CArchive archive;
    archive.m_path = path;
    if (!ReadWholeFile(path, archive.m_text, error)) return std::nullopt;
    return archive;
}

CArchive CArchive::FromText(std::string path, std::string text) {
    CArchive archive;
    archive.m_path = std::move(path);
    archive.m_text = std::move(text);
    return archive;
}

bool CArchive::ReadLine(std::string_view& line) {
    if (m_position >= m_text.size()) return false;
    const std::string_view rest = Rest();
    const auto end = rest.find('\n');
    line = rest.substr(0, end);
    m_position += end == std::string_view::npos ? rest.size() : end + 1;
    if (end != std::string_view::npos && !line.empty() && line.back() == '\r') line.remove_suffix(1);
    return true;
}

void CArchive::SkipToLineEnd() {
    const auto end = m_text.find('\n', m_position);
    m_position = end == std::string::npos ? m_text.size() : end;
}

std::string CArchive::CutOff(size_t position) {
    std::string rest = m_text.substr(position);
    m_text.resize(position);
    return rest;
}

int CArchive::LineAt(size_t position) const {
    if (position < m_countedTo) {
        m_countedTo = 0;
        m_lineFeeds = 0;
    }
    const std::string_view passed = Text().substr(m_countedTo, position - m_countedTo);
    m_lineFeeds += static_cast<int>(std::count(passed.begin(), passed.end(), '\n'));
    m_countedTo = position;
    return 1 + m_lineFeeds;
}

}  // namespace tavrin
