// SPDX-License-Identifier: Apache-2.0
// The library of operators as the directories of the library have it: names, command ids and paths, and
// the menu tree. No definition is opened here.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tavrin {

class Report;

// One operator. Immutable; gone after Clear, so whoever keeps a reference across a reload keeps the name.
struct COpEntry {
    uint32_t id = 0;   // menu command
    std::string path;  // definition file
    std::string name;  // the file name without its sort key, in the case found on disk
};

struct OpMenu;

// A line of an operator menu.
struct OpMenuItem {
    enum class Kind { kOperator, kSubmenu, kSeparator };
    Kind kind = Kind::kSeparator;
    std::string label;
    uint32_t id = 0;                  // kOperator
    const OpMenu* submenu = nullptr;  // kSubmenu
};

// A menu of operators, owned by the registry until the next reload.
struct OpMenu {
    std::vector<OpMenuItem> items;
};

// One for the process, owned by the application object; filled at start and by every reload.
class COpRegistry {
  public:
    // Command ids go up by two for each operator. Commands above the last do not reach the menus' handler.
    static constexpr uint32_t kFirstId = 40960;
    static constexpr uint32_t kLastId = 45056;

    explicit COpRegistry(Report& report) : m_report(report) {}

    void Clear();
    // Grows with each Clear: what was made of operators before may be out of date.
    uint64_t Clears() const { return m_clears; }
    // Scans a directory into the root menu. Entries are named by four characters that are a sort key and
    // no more, a dot and the operator's name; the first of a name wins, without regard to case. A file with a
    // name that documents cannot hold is left out, which the log tells once in the registry's life.
    void AddDirectory(const std::string& path);

    const COpEntry* FindByName(const std::string& name) const;
    const COpEntry* FindById(uint32_t id) const;

    // The operators in whose files a line says that something was called so before, in the order of the scan:
    // the operator itself or one of its buttons, which the preprocessed definition tells. The files are read
    // when this is asked for the first time since the last scan.
    const std::vector<const COpEntry*>& MayHaveBeenCalled(const std::string& name) const;
    // Whether an entry is asked about for the first time since the last scan, as one that claims a name after
    // another one.
    bool IsFirstClaim(const std::string& name, const COpEntry& entry) const;
    // Writes a warning to the log, unless it stands there since the last scan.
    void WarnOnce(const std::string& message) const;

    const OpMenu& Root() const { return m_root; }
    const std::vector<std::unique_ptr<COpEntry>>& Entries() const { return m_entries; }
    // In the order of the scan.
    std::vector<std::string> Names() const;
    // One for each directory met, those that stayed empty among them.
    size_t SubmenuCount() const { return m_submenus.size(); }
    // Where the operator stands in the menus: the labels of its submenus joined by " > ", empty at the top.
    std::string MenuPath(const COpEntry& entry) const;

  private:
    void ScanDirectory(OpMenu& parentMenu, const std::string& directory);
    void AddOperator(OpMenu& parentMenu, const std::string& path, const std::string& label);
    using FormerNames = std::map<std::string, std::vector<const COpEntry*>>;
    static void AddFormerNames(const COpEntry& entry, FormerNames& names);
    void ForgetFormerNames() const;

    Report& m_report;
    uint64_t m_clears = 0;
    OpMenu m_root;
    std::vector<std::unique_ptr<COpEntry>> m_entries;
    std::vector<std::unique_ptr<OpMenu>> m_submenus;
    std::map<uint32_t, const COpEntry*> m_byId;
    std::map<std::string, const COpEntry*> m_byName;  // by the name in lower case
    uint32_t m_nextId = kFirstId;
    std::set<std::string> m_told;  // paths of the files that were left out for their names
    // What is read of the files on demand, by the name in lower case, and what was told of them.
    mutable std::optional<FormerNames> m_byFormerName;
    mutable std::set<std::string> m_claims;
    mutable std::set<std::string> m_warned;
    std::vector<std::string> m_scanning;  // real paths of the directories being scanned, outermost first
};

}  // namespace tavrin
