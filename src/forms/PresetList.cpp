// SPDX-License-Identifier: Apache-2.0
#include "forms/PresetList.h"

#include <utility>

namespace tavrin {

void PresetList::SetCaption(std::string text) {
    if (m_standIn && m_lines.size() > 1) m_lines.pop_front();
    m_standIn = false;
    m_lines.pop_front();
    m_lines.push_back(std::move(text));
    m_selected = kNothing;  // the line that was shown is gone
}

void PresetList::AddPreset(std::string line) {
    m_lines.push_back(std::move(line));
    m_selected = 0;
}

const std::string* PresetList::Choose(int index) {
    m_selected = 0;
    const auto line = static_cast<size_t>(index);
    return index > 0 && line < m_lines.size() ? &m_lines[line] : nullptr;
}

}  // namespace tavrin
