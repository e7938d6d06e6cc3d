// SPDX-License-Identifier: Apache-2.0
// Scripts of actions, and what an action of theirs does here.
#pragma once

#include <functional>

#include "app/Actions.h"

class QWidget;

namespace tavrin {

class CommandActions;
class CTvApp;
class DocumentWork;
class FrameWindows;
class RenderWork;

// Belongs to the frame.
class ScriptWork : private ActionTarget {
  public:
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        CTvApp& app;
        CommandActions& commands;
        DocumentWork& documents;
        RenderWork& renders;
        FrameWindows& windows;
        std::function<bool()> isClosed;  // the frame, for good
    };
    explicit ScriptWork(Needs needs);

    void AddTo(CommandActions& commands);
    Actions& Dispatch() { return m_dispatch; }
    // Neither a script nor a child runs.
    bool IsQuiet() const;

  private:
    // What actions ask.
    void Command(CommandId id) override;
    void Close() override;
    void HideRenderOptions() override;
    void OpenDocument(const std::string& path) override;
    void LoadFormDefaults() override;
    bool PumpMessages(std::chrono::milliseconds wait) override;

    void RunScript();
    void HaltScript();

    Needs m_needs;
    Actions m_dispatch;
};

}  // namespace tavrin
