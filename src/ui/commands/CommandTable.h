// SPDX-License-Identifier: Apache-2.0
// The commands of the main window as data: texts, keys, icons, and where they stand in menus and toolbar.
#pragma once

#include <vector>

#include "app/CommandId.h"

namespace tavrin {

// A row of app/CommandList.def, which tells its columns.
struct CommandSpec {
    CommandId id;
    const char* text;
    const char* keys;
    const char* icon;
    const char* tip;
};

// In the order of the menus.
const std::vector<CommandSpec>& CommandTable();
const CommandSpec& SpecOf(CommandId id);

// A place in a menu or a toolbar: a command or a gap.
struct Slot {
    enum class Kind { kCommand, kGap, kSubmenu, kRecentFiles } kind;
    CommandId id{};             // kCommand
    const char* title = "";     // kSubmenu
    std::vector<Slot> items{};  // kSubmenu
};

// A menu of the menu bar.
struct MenuSpec {
    const char* title;
    std::vector<Slot> slots;
};

// File to Help; the operators' menus stand behind them.
const std::vector<MenuSpec>& MenuBarLayout();
const std::vector<Slot>& ToolBarLayout();

// The keys that work in every tool window as well, F1 first.
const std::vector<CommandId>& HotKeys();

}  // namespace tavrin
