// SPDX-License-Identifier: Apache-2.0
#include "desk/OperatorWatch.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/ReadLimit.h"
#include "library/DefinitionTexts.h"
#include "library/OpRegistry.h"
#include "library/SavedNetwork.h"
#include "site/Site.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

// Of what a child has logged, the last line that says something.
std::string LastLine(const std::string& log) {
    const std::string_view text = TrimRight(log);
    const size_t begin = text.find_last_of("\r\n");
    return std::string(begin == std::string_view::npos ? text : text.substr(begin + 1));
}

}  // namespace

WatchFindings OperatorWatch::Look(bool looksAtAll) {
    WatchFindings findings;
    m_stamps.clear();
    std::vector<std::pair<const COpEntry*, const Boxes*>> changed;
    std::vector<const COpEntry*> unknown;
    const std::map<std::string, Boxes> operators = BoxesByOperator();
    for (const auto& [name, boxes] : operators) {
        const COpEntry* entry = m_host.Registry().FindByName(name);
        if (entry == nullptr) {
            if (looksAtAll)
                findings.notes.push_back("the library has no operator " + name +
                                         " any more; its boxes stay as they are");
            continue;
        }
        if (!looksAtAll && !HasChanged(boxes)) continue;
        changed.emplace_back(entry, &boxes);
        if (looksAtAll || !IsKnown(*entry)) unknown.push_back(entry);
    }
    Read(unknown);
    for (const auto& [entry, boxes] : changed) Judge(*entry, *boxes, looksAtAll, findings);
    return findings;
}

// Those of which it is known what they were read from.
std::map<std::string, OperatorWatch::Boxes> OperatorWatch::BoxesByOperator() const {
    std::map<std::string, Boxes> operators;
    for (const auto& box : m_document.m_boxes) {
        if (box->source != nullptr) operators[box->filename].push_back(box.get());
    }
    return operators;
}

const FileStamp& OperatorWatch::Stamp(const std::string& path) {
    auto found = m_stamps.find(path);
    if (found == m_stamps.end()) found = m_stamps.emplace(path, StampOf(path)).first;
    return found->second;
}

bool OperatorWatch::IsCurrent(const DefinitionSource& source) {
    return !source.isUncertain &&
           std::all_of(source.files.begin(), source.files.end(),
                       [this](const FileStamp& file) { return file == Stamp(file.path); });
}

bool OperatorWatch::HasChanged(const Boxes& boxes) {
    std::unordered_set<const DefinitionSource*> seen;
    return std::any_of(boxes.begin(), boxes.end(), [&](const COpBox* box) {
        return seen.insert(box->source.get()).second && !IsCurrent(*box->source);
    });
}

bool OperatorWatch::IsKnown(const COpEntry& entry) {
    const auto known = m_known.find(entry.path);
    return known != m_known.end() && known->second.problem.empty() && IsCurrent(known->second.source);
}

void OperatorWatch::Read(const std::vector<const COpEntry*>& entries) {
    std::vector<const COpEntry*> readable;
    std::vector<std::string_view> names;
    for (const COpEntry* entry : entries) {
        Known& known = m_known[entry->path];
        known.problem = ProblemOfFile(*entry);
        if (!known.problem.empty()) continue;
        readable.push_back(entry);
        names.push_back(entry->name);
    }
    if (readable.empty()) return;
    DefinitionTexts texts(m_host.Registry(), m_host.GetSite(), DefinitionTexts::Sharing::kAlways);
    texts.Expect(names);
    for (const COpEntry* entry : readable) m_known[entry->path] = ReadDefinition(*entry, texts);
}

// What a preprocessor need not be run for.
std::string OperatorWatch::ProblemOfFile(const COpEntry& entry) {
    const FileStamp& file = Stamp(entry.path);
    if (!file.IsThere()) return entry.path + " is not there";
    if (static_cast<uint64_t>(file.size) > ReadLimit()) return entry.path + " is " + TooLarge();
    if (IsSavedNetwork(entry.path)) return entry.path + " is a saved network now";
    return {};
}

OperatorWatch::Known OperatorWatch::ReadDefinition(const COpEntry& entry, DefinitionTexts& texts) {
    Site& site = m_host.GetSite();
    const DefinitionText* text = texts.Find(entry);
    if (text == nullptr) {
        const std::string cause = LastLine(site.LogText(DefinitionTexts::ErrorPath(site)));
        return {{}, cause.empty() ? "the preprocessor fails for " + entry.path : cause};
    }
    Report report;
    const HeldAlerts held(report);
    COpBox trial;
    if (trial.ReadText(entry, *text, site, report)) return {*text->source, {}};
    // One that the file ends in says nothing.
    return {*text->source, held.All().empty() ? entry.path + " ends too early" : held.All().back().text};
}

void OperatorWatch::Judge(const COpEntry& entry, const Boxes& boxes, bool looksAtAll,
                          WatchFindings& findings) {
    const auto& [source, problem] = m_known[entry.path];
    if (!problem.empty()) {
        const bool isNew = std::exchange(m_told[entry.path], problem) != problem;
        if (isNew || looksAtAll)
            findings.problems.push_back(
                "operator " + entry.name +
                " cannot be read, so its boxes stay as they are: " + OneLine(problem));
        return;
    }
    m_told.erase(entry.path);
    const size_t hash = source.textHash;
    const auto answered = m_answered.find(entry.path);
    const bool isAnswered = answered != m_answered.end() && answered->second == hash;
    if (answered != m_answered.end() && !isAnswered) m_answered.erase(answered);
    const auto count = static_cast<size_t>(std::count_if(
        boxes.begin(), boxes.end(), [hash](const COpBox* box) { return box->source->textHash != hash; }));
    if (count > 0 && (looksAtAll || !isAnswered)) findings.stale.push_back({boxes.front()->filename, count});
}

void OperatorWatch::Declined(const std::vector<StaleOperator>& operators) {
    for (const StaleOperator& stale : operators) {
        const COpEntry* entry = m_host.Registry().FindByName(stale.name);
        if (entry != nullptr) m_answered[entry->path] = m_known[entry->path].source.textHash;
    }
}

void OperatorWatch::Updated(const std::vector<StaleOperator>& operators) {
    const std::map<std::string, Boxes> boxes = BoxesByOperator();
    for (const StaleOperator& stale : operators) {
        const COpEntry* entry = m_host.Registry().FindByName(stale.name);
        const auto found = boxes.find(stale.name);
        if (entry != nullptr && found != boxes.end())
            m_answered[entry->path] = found->second.front()->source->textHash;
    }
}

}  // namespace tavrin
