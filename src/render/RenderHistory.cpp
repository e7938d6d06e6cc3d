// SPDX-License-Identifier: Apache-2.0
#include "render/RenderHistory.h"

#include <algorithm>
#include <cmath>

#include "base/Files.h"
#include "base/Paths.h"
#include "site/Site.h"
#include "text/Numbers.h"

namespace tavrin {

namespace {

constexpr float kDefaultMaxHistory = 100;
constexpr float kMostHistory = 1e9F;  // within what an int holds

bool IsNumber(const std::string& text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

RenderHistory::RenderHistory(Site& site) : m_site(site) {
    float limit = kDefaultMaxHistory;
    site.settings.GetSettingFloat("maxhistory", limit);
    if (std::isnan(limit)) limit = kDefaultMaxHistory;
    m_maxHistory = static_cast<int>(std::clamp(limit, 0.0F, kMostHistory));
}

std::string RenderHistory::EntryText(int number, const std::string& name) {
    return FormatText("%02d %s", number, name.c_str());
}

bool RenderHistory::ParseEntry(const std::string& text, int& number, std::string& name) {
    FieldScanner scanner(text);
    const auto scannedNumber = scanner.Int();
    const auto scannedName = scanner.Word();
    if (!scannedNumber || !scannedName) return false;
    number = *scannedNumber;
    name = *scannedName;
    return true;
}

void RenderHistory::AddEntry(const std::string& text, const HistoryNote& note) {
    m_entries.push_front(text);
    m_notes.push_front(note);
    if (m_entries.size() <= static_cast<size_t>(m_maxHistory)) return;
    const std::string oldest = m_entries.back();
    m_entries.pop_back();
    m_notes.pop_back();
    RemoveDirectoryOf(oldest);
    afterLeave.Tell(ParseInt(oldest));
}

bool RenderHistory::Lists(int number) const {
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [number](const std::string& entry) { return ParseInt(entry) == number; });
}

HistoryNote RenderHistory::NoteOf(const std::string& text) const {
    const auto entry = std::find(m_entries.begin(), m_entries.end(), text);
    if (entry == m_entries.end()) return {};
    return m_notes[static_cast<size_t>(entry - m_entries.begin())];
}

void RenderHistory::NoteSaved(const DocumentFile& before, const DocumentFile& now) {
    for (HistoryNote& note : m_notes) {
        const DocumentFile* file = note.origin.file.get();
        if (file != &before && file != &now) continue;
        note.isSaved = true;
        if (note.savedTo.empty()) note.savedTo = now.path;
    }
}

// A whole tree is removed here, so its name is looked at once more.
void RenderHistory::RemoveDirectoryOf(const std::string& text) {
    const std::string path = m_site.WorkPath(std::to_string(ParseInt(text)));
    const std::string name = PathFile(path);
    if (!IsNumber(name)) {
        m_site.report.Alert("unexpected render history directory name %s", name.c_str());
        return;
    }
    RemoveTree(path, [this](const std::string& line) { m_site.report.LogLine("%s", line.c_str()); });
}

}  // namespace tavrin
