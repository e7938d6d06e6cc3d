// SPDX-License-Identifier: Apache-2.0
// The commands of the main window as actions, which menus, keys and toolbars share.
#pragma once

#include <QString>
#include <functional>
#include <map>

#include "ui/commands/CommandTable.h"

class QAction;
class QKeySequence;
class QMainWindow;
class QMenu;
class QToolBar;

namespace tavrin {

// What a command does, and its rules as they are at the moment of asking.
struct CommandHandler {
    std::function<void()> run;
    std::function<bool()> enabled = {};  // nothing: always
    std::function<bool()> checked = {};  // nothing: no check mark
    std::function<QString()> text = {};  // nothing: that of the table
};

// Belongs to the frame, which owns the actions. Each command is handled by whoever has its subject; one that
// nobody handles is disabled and does nothing.
class CommandActions {
  public:
    // `hasRun` is called after each command.
    CommandActions(QMainWindow& frame, std::function<void()> hasRun);

    // To be called once for a command.
    void On(CommandId id, CommandHandler handler);
    // Does a command, whether it is enabled or not: it tells by itself why it cannot be done. The hot keys
    // reach this from every window of the program.
    void Run(CommandId id);

    QAction& Get(CommandId id) const { return *m_actions.at(id); }
    // Takes a key from one command and gives it to another, where a library wants that.
    void MoveKey(const QKeySequence& key, CommandId from, CommandId to);
    // The menu's text, the key left out; '&' and all.
    void SetText(CommandId id, const QString& text);
    // Brings the actions in line with the rules.
    void Update();
    // One alone, for what may be wanted again before the program has come to rest.
    void Update(CommandId id);

    // Fills a menu, a toolbar. Submenus of recent files are handed to `addRecentFiles`.
    void Fill(QMenu& menu, const std::vector<Slot>& slots,
              const std::function<void(QMenu&)>& addRecentFiles) const;
    void Fill(QToolBar& bar, const std::vector<Slot>& slots) const;

  private:
    void Add(QMainWindow& frame, const CommandSpec& spec);
    void Update(CommandId id, const CommandHandler& handler);
    void AddHotKeys(QMainWindow& frame);

    std::function<void()> m_hasRun;
    std::map<CommandId, QAction*> m_actions;
    std::map<CommandId, CommandHandler> m_handlers;
};

}  // namespace tavrin
