// SPDX-License-Identifier: Apache-2.0
// The operators of the library in the frame: their menus, their toolbar, and how one comes to the desk.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QMainWindow;

namespace tavrin {

class CommandActions;
class CStatusBox;
class DeskPane;
class OperatorMenuBar;
class OperatorToolBar;
struct Change;
struct Workspace;

// Belongs to the frame, whose menu bar has its own menus already.
class OperatorWork {
  public:
    // All of it outlives this.
    struct Needs {
        QMainWindow& frame;
        Workspace& work;
        CommandActions& commands;
        DeskPane& desk;
        CStatusBox& statusBox;
        std::function<void()> menusRebuilt;  // menus stand there that the frame has not seen yet
        std::function<void()> reloaded;      // the user had the operators scanned again
    };
    explicit OperatorWork(Needs needs);
    ~OperatorWork();

    void AddTo(CommandActions& commands);
    OperatorToolBar& Bar() { return *m_bar; }

    // Keeps menus and toolbar those of the library and the document.
    void Follow(const Change& change);
    // Puts an operator in the user's hand; an id of none is alerted.
    void AddOperator(uint32_t id);

  private:
    OperatorToolBar* MakeBar();
    // Shows the library as it is, and the document's toolbar.
    void Refresh();
    void ShowToolbar();
    void Reload();
    void Customize();

    Needs m_needs;
    OperatorToolBar* m_bar;            // the frame's child
    std::vector<std::string> m_shown;  // the operators of the toolbar
    std::unique_ptr<OperatorMenuBar> m_menus;
};

}  // namespace tavrin
