// The commands of the main window as actions, which menus, keys and toolbars share.
#pragma once

#include <QString>
#include <functional>
#include <map>

#include "ui/frame/CommandTable.h"

class QAction;
class QMainWindow;
class QMenu;
class QToolBar;

namespace tavrin {

// Belongs to the frame, which owns the actions.
class CommandActions {
  public:
    // `run` does a command when its action is chosen and enabled. The hot keys reach it from every window of
    // the program, and whether the command is enabled or not: it tells by itself why it cannot be done.
    CommandActions(QMainWindow& frame, std::function<void(CommandId)> run);

    QAction& Get(CommandId id) const { return *m_actions.at(id); }
    // The menu's text, the key left out; '&' and all.
    void SetText(CommandId id, const QString& text);
    void Update(const FrameState& state);

    // Fills a menu, a toolbar. Submenus of recent files are handed to `addRecentFiles`.
    void Fill(QMenu& menu, const std::vector<Slot>& slots,
              const std::function<void(QMenu&)>& addRecentFiles) const;
    void Fill(QToolBar& bar, const std::vector<Slot>& slots) const;

  private:
    void Add(QMainWindow& frame, const CommandSpec& spec);
    void AddHotKeys(QMainWindow& frame);

    std::function<void(CommandId)> m_run;
    std::map<CommandId, QAction*> m_actions;
};

}  // namespace tavrin
