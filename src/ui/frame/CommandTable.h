// The commands of the main window as data: texts, keys, icons, and when each is enabled and checked.
#pragma once

#include <vector>

#include "app/CommandId.h"
#include "ui/frame/FrameState.h"

namespace tavrin {

using StateRule = bool (*)(const FrameState&);

struct CommandSpec {
    CommandId id;
    const char* text;             // of the menu item; '&' before the letter that chooses it
    const char* keys;             // accelerators, joined by ";"; empty for none
    const char* icon;             // name of the drawing; empty for none
    const char* tip;              // status tip, and tool tip together with the keys
    StateRule enabled = nullptr;  // nothing: always
    StateRule checked = nullptr;  // nothing: no check mark
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

struct MenuSpec {
    const char* title;
    std::vector<Slot> slots;
};

// File to Help; the operators' menus stand behind them.
const std::vector<MenuSpec>& MenuBarLayout();
const std::vector<Slot>& ToolBarLayout();

// The keys that work in every tool window as well, F1 first.
const std::vector<CommandId>& HotKeys();

// While the desk is locked, the menu bar's items from this place up to the last but one are grey.
inline constexpr int kFirstLockedMenu = 5;

}  // namespace tavrin
