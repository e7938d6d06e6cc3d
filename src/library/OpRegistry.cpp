// SPDX-License-Identifier: Apache-2.0
#include "library/OpRegistry.h"

#include <algorithm>
#include <filesystem>

#include "base/Files.h"
#include "base/Paths.h"
#include "library/SavedNetwork.h"
#include "text/Report.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr size_t kKeyLength = 4;  // of the sort key, which a dot follows
constexpr std::string_view kSeparatorName = "_separator_";
constexpr std::string_view kAliasKeyword = "alias";

bool IsLibraryName(const std::string& name) {
    return name.size() > kKeyLength + 1 && name[kKeyLength] == '.' && name.front() != '.';
}

// The labels on the way from `menu` to the operator, innermost last; false if it is not below `menu`.
bool FindPath(const OpMenu& menu, uint32_t id, std::vector<std::string>& labels) {
    for (const OpMenuItem& item : menu.items) {
        if (item.kind == OpMenuItem::Kind::kOperator && item.id == id) return true;
        if (item.kind != OpMenuItem::Kind::kSubmenu) continue;
        labels.push_back(item.label);
        if (FindPath(*item.submenu, id, labels)) return true;
        labels.pop_back();
    }
    return false;
}

}  // namespace

void COpRegistry::Clear() {
    ++m_clears;
    m_root.items.clear();
    m_entries.clear();
    m_submenus.clear();
    m_byId.clear();
    m_byName.clear();
    m_nextId = kFirstId;
    ForgetFormerNames();
}

void COpRegistry::ForgetFormerNames() const {
    m_byFormerName.reset();
    m_claims.clear();
    m_warned.clear();
}

void COpRegistry::AddDirectory(const std::string& path) {
    ForgetFormerNames();
    ScanDirectory(m_root, path);
}

void COpRegistry::ScanDirectory(OpMenu& parentMenu, const std::string& directory) {
    std::error_code unreadable;
    const std::string real = std::filesystem::canonical(directory, unreadable).string();
    // A link to a directory above would be scanned without end.
    if (unreadable || std::find(m_scanning.begin(), m_scanning.end(), real) != m_scanning.end()) return;
    std::vector<DirEntry> entries;
    if (!ListDirectory(directory, entries)) return;
    m_scanning.push_back(real);

    std::vector<std::string> names;
    for (const DirEntry& entry : entries) {
        if (IsLibraryName(entry.name)) names.push_back(entry.isDirectory ? entry.name + "/" : entry.name);
    }
    std::sort(names.begin(), names.end());
    for (std::string& name : names) {
        const bool isDirectory = name.back() == '/';
        if (isDirectory) name.pop_back();
        const std::string label = name.substr(kKeyLength + 1);
        const std::string path = JoinPath(directory, name);
        if (isDirectory) {
            OpMenu& submenu = *m_submenus.emplace_back(std::make_unique<OpMenu>());
            ScanDirectory(submenu, path);
            if (!submenu.items.empty())
                parentMenu.items.push_back({OpMenuItem::Kind::kSubmenu, label, 0, &submenu});
        } else if (ToLower(label) == kSeparatorName) {
            parentMenu.items.push_back({OpMenuItem::Kind::kSeparator, {}, 0, nullptr});
        } else {
            AddOperator(parentMenu, path, label);
        }
    }
    m_scanning.pop_back();
}

void COpRegistry::AddOperator(OpMenu& parentMenu, const std::string& path, const std::string& label) {
    // A saved network is in no document by its own name.
    if (!IsBareToken(label) && !IsSavedNetwork(path)) {
        if (m_told.insert(path).second) {
            m_report.LogLine("WARNING: operator file %s is not offered: a document cannot hold its name; %s",
                             OneLine(path).c_str(), kBareTokenRule);
        }
        return;
    }
    const std::string key = ToLower(label);
    if (m_byName.contains(key)) {
        m_report.LogLine("WARNING: operator %s is not unique", label.c_str());
        return;
    }
    const uint32_t id = m_nextId++;
    parentMenu.items.push_back({OpMenuItem::Kind::kOperator, label, id, nullptr});
    const auto& entry = m_entries.emplace_back(std::make_unique<COpEntry>(COpEntry{id, path, label}));
    m_byName[key] = entry.get();
    m_byId[id] = entry.get();
    ++m_nextId;
}

const COpEntry* COpRegistry::FindByName(const std::string& name) const {
    const auto found = m_byName.find(ToLower(name));
    return found == m_byName.end() ? nullptr : found->second;
}

const std::vector<const COpEntry*>& COpRegistry::MayHaveBeenCalled(const std::string& name) const {
    static const std::vector<const COpEntry*> kNone;
    if (!m_byFormerName) {
        m_byFormerName.emplace();
        for (const auto& entry : m_entries) AddFormerNames(*entry, *m_byFormerName);
    }
    const auto found = m_byFormerName->find(ToLower(name));
    return found == m_byFormerName->end() ? kNone : found->second;
}

void COpRegistry::AddFormerNames(const COpEntry& entry, FormerNames& names) {
    std::string reason;
    auto file = CArchive::Open(entry.path, reason);
    if (!file || KindOf(*file) != OperatorText::kDefinition) return;
    std::string_view line;
    while (file->ReadLine(line)) {
        line = Trim(line);
        if (!line.starts_with(kAliasKeyword)) continue;
        CArchive words = CArchive::FromText(entry.path, std::string(line));
        std::string keyword;
        std::string name;
        if (!ReadToken(words, keyword) || keyword != kAliasKeyword || !ReadToken(words, name)) continue;
        auto& entries = names[ToLower(name)];
        if (entries.empty() || entries.back() != &entry) entries.push_back(&entry);
    }
}

bool COpRegistry::IsFirstClaim(const std::string& name, const COpEntry& entry) const {
    return m_claims.insert(ToLower(name) + "\n" + entry.path).second;
}

void COpRegistry::WarnOnce(const std::string& message) const {
    if (m_warned.insert(message).second) m_report.LogLine("WARNING: %s", message.c_str());
}

const COpEntry* COpRegistry::FindById(uint32_t id) const {
    const auto found = m_byId.find(id);
    return found == m_byId.end() ? nullptr : found->second;
}

std::vector<std::string> COpRegistry::Names() const {
    std::vector<std::string> names;
    for (const auto& entry : m_entries) names.push_back(entry->name);
    return names;
}

std::string COpRegistry::MenuPath(const COpEntry& entry) const {
    std::vector<std::string> labels;
    FindPath(m_root, entry.id, labels);
    std::string path;
    for (const std::string& label : labels) path.append(path.empty() ? "" : " > ").append(label);
    return path;
}

}  // namespace tavrin
