// SPDX-License-Identifier: Apache-2.0
// The commands on the desk: the edits of its boxes, the view, what is shown of the network, the wallpaper.
#pragma once

#include <string>

class QWidget;

namespace tavrin {

class CommandActions;
class CStatusBox;
class DeskPane;
class DocumentCommands;
struct Workspace;

// Belongs to the frame.
class DeskWork {
  public:
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        Workspace& work;
        DeskPane& desk;
        CStatusBox& statusBox;
    };
    explicit DeskWork(const Needs& needs);

    void AddTo(CommandActions& commands);
    // Tells in the status box what waits for the user on the desk, and drops help that is out of date.
    void UpdateHints();

  private:
    void AddHistory(CommandActions& commands);
    void AddEdits(CommandActions& commands);
    void AddSelection(CommandActions& commands);
    void AddView(CommandActions& commands);
    void AddFlags(CommandActions& commands);
    void AddWallpaper(CommandActions& commands);
    void SetWallpaper();
    bool IsLocked() const;
    bool HasBoxes() const;

    Needs m_needs;
    std::string m_imageBrowserDir;  // where Set Wallpaper starts
};

}  // namespace tavrin
