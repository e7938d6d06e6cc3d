// SPDX-License-Identifier: Apache-2.0
#include "render/LiveMaker.h"

#include <utility>

#include "site/Site.h"
#include "text/VisibleText.h"

namespace tavrin {

namespace {

constexpr std::chrono::seconds kTimeOfASite{10};  // where it sets none

}  // namespace

LiveLimit LiveLimit::Of(const Site& site) {
    int set = 0;
    const bool isSet = site.settings.GetSettingInt("limit.rendertime", set) && set >= 0;
    const std::chrono::seconds time = isSet ? site.renderLimits.time : kTimeOfASite;
    const auto seconds = static_cast<long long>(time.count());
    return {time, FormatText("it gave no answer within %lld s; limit.rendertime in the site definitions sets "
                             "how long it may take",
                             seconds)};
}

void LiveNotes::Add(std::string_view text) {
    if (m_isCut) return;
    m_isCut = m_notes.size() + text.size() > kMostBytes;
    m_notes += m_isCut ? "WARNING: more notes are left out here" : VisibleOneLine(text);
    m_notes += "\n";
}

void LiveNotes::Say() {
    m_isCut = false;
    const std::string notes = std::exchange(m_notes, {});
    if (notes.empty() || notes == m_said) return;
    m_said = notes;
    for (size_t begin = 0; begin < notes.size();) {
        const size_t end = notes.find('\n', begin);
        m_site.report.LogLine("[live] %s", notes.substr(begin, end - begin).c_str());
        begin = end + 1;
    }
}

std::string LiveNotes::First() const { return m_notes.substr(0, m_notes.find('\n')); }

}  // namespace tavrin
