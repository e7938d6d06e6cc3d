// SPDX-License-Identifier: Apache-2.0
// The command channel of forms and scripts: an action is three words, turned into what the user's menus do.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "app/CommandId.h"
#include "app/ScriptFile.h"

namespace tavrin {

class Commands;
class Report;

// What actions act on: the program's frame, or the batch run.
class ActionTarget {
  public:
    virtual ~ActionTarget() = default;

    virtual void Command(CommandId command) = 0;
    virtual void Close() = 0;
    virtual void HideRenderOptions() = 0;
    virtual void OpenDocument(const std::string& path) = 0;
    virtual void LoadFormDefaults() = 0;
    // Handles everything that waits for the main thread, idle work included, and waits up to `wait` for
    // something to come. False if the program is to quit.
    virtual bool PumpMessages(std::chrono::milliseconds wait) = 0;
};

// Dispatches actions and runs scripts. One for the process; main thread only. An action may lead back here,
// since waiting keeps the interface alive.
class Actions {
  public:
    Actions(ActionTarget& target, Commands& commands, Report& report)
        : m_target(target), m_commands(commands), m_report(report) {}

    // Performs one action, compared exactly after the words are trimmed. "form render render" returns when
    // the render has ended. An unknown action is named in the log; false.
    bool DoAction(const std::string& actionto, const std::string& actionmsg, const std::string& actionarg);

    // Runs a `.tvx` file to its end, each statement after the children of the one before. A script that
    // cannot be opened, or a second one, is alerted; false. Unknown actions do not stop it; they are
    // counted in UnknownActions.
    bool RunScriptFile(const std::string& path);
    // Stops the script after its present statement, whose children are asked to end.
    void HaltScript();
    bool ScriptRunning() const { return m_script.has_value(); }

    // How many statements of the script that ran last were unknown.
    int UnknownActions() const { return m_unknownActions; }

  private:
    bool DoFormAction(const std::string& message, const std::string& argument);
    bool DoExport(const std::string& kind);
    // Waits until no child runs. If the program is to quit meanwhile, that ends the script as well.
    void WaitForChildren();

    ActionTarget& m_target;
    Commands& m_commands;
    Report& m_report;
    std::optional<ScriptFile> m_script;
    int m_unknownActions = 0;
};

}  // namespace tavrin
