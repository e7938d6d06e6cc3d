// SPDX-License-Identifier: Apache-2.0
// Keeping renders beyond the session: the command, and the question at the end of the program.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "render/KeptRender.h"

class QWidget;

namespace tavrin {

class CommandActions;
class CStatusBox;
struct Workspace;

// Belongs to the frame.
class KeepWork {
  public:
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        Workspace& work;
        CStatusBox& statusBox;
        std::function<std::optional<int>()> currentRender;  // that the user has selected, if any
    };
    explicit KeepWork(Needs needs);

    void AddTo(CommandActions& commands);

    bool CanKeep(int number) const { return m_keeper.CanKeep(number); }
    // Keeps a render beside its document, and asks where if that has no file. False if the user cancels, if
    // there is nothing to be kept, which the status box tells, or, alerted, if that fails.
    bool Keep(int number);

    // Where the site wants it asked: whether the renders that nobody has kept or saved are to be kept. False
    // if they are to stay, and the program with them.
    bool SettleRenders();

  private:
    std::optional<int> Wanted() const;
    bool KeepAll(const std::vector<int>& numbers);
    // The document's path; nothing as with Keep.
    std::optional<std::string> KeepWhereTheUserSays(int number);
    bool Tell(int number, const std::optional<std::string>& path);

    Needs m_needs;
    Workspace& m_work;
    RenderKeeper m_keeper;
};

}  // namespace tavrin
