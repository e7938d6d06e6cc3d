// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/CommandTable.h"

#include <algorithm>
#include <string>

namespace tavrin {

namespace {

constexpr int kHotKeys = 8;  // F1 to F8

// Reads the list of commands from its head to its end.
class Reader {
  public:
    Reader() {
#define COMMAND(name, number, text, keys, icon, tip) Add({CommandId::name, text, keys, icon, tip});
#define AGAIN(name) Place({Slot::Kind::kCommand, CommandId::name});
#define GAP() Place({Slot::Kind::kGap});
#define RECENT_FILES() Place({Slot::Kind::kRecentFiles});
#define MENU(title) BeginMenu(title);
#define SUBMENU(title) BeginSubmenu(title);
#define END_SUBMENU() EndSubmenu();
#define TOOLBAR() m_at = &toolBar;
#define ELSEWHERE() m_at = nullptr;
#include "app/CommandList.def"
    }

    std::vector<CommandSpec> commands;
    std::vector<MenuSpec> menus;
    std::vector<Slot> toolBar;

  private:
    void Add(const CommandSpec& spec) {
        commands.push_back(spec);
        if (m_at != nullptr) Place({Slot::Kind::kCommand, spec.id});
    }
    void Place(const Slot& slot) { m_at->push_back(slot); }
    void BeginMenu(const char* title) {
        menus.push_back({title, {}});
        m_at = &menus.back().slots;
    }
    void BeginSubmenu(const char* title) {
        Place({Slot::Kind::kSubmenu, {}, title, {}});
        m_at = &m_at->back().items;
    }
    void EndSubmenu() { m_at = &menus.back().slots; }

    std::vector<Slot>* m_at = nullptr;  // what is being filled; null for commands that stand nowhere
};

const Reader& List() {
    static const Reader list;
    return list;
}

}  // namespace

const std::vector<CommandSpec>& CommandTable() { return List().commands; }

const CommandSpec& SpecOf(CommandId id) {
    const auto& table = CommandTable();
    return *std::find_if(table.begin(), table.end(), [id](const CommandSpec& spec) { return spec.id == id; });
}

const std::vector<MenuSpec>& MenuBarLayout() { return List().menus; }

const std::vector<Slot>& ToolBarLayout() { return List().toolBar; }

const std::vector<CommandId>& HotKeys() {
    static const std::vector<CommandId> hotKeys = [] {
        std::vector<CommandId> ids;
        for (int key = 1; key <= kHotKeys; ++key) {
            for (const CommandSpec& spec : CommandTable()) {
                if (spec.keys == "F" + std::to_string(key)) ids.push_back(spec.id);
            }
        }
        return ids;
    }();
    return hotKeys;
}

}  // namespace tavrin
