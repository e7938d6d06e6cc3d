// SPDX-License-Identifier: Apache-2.0
#include "app/Actions.h"

#include "site/Commands.h"
#include "text/Report.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds kWait{100};  // between looks at whether a child still runs

}  // namespace

bool Actions::DoAction(const std::string& actionto, const std::string& actionmsg,
                       const std::string& actionarg) {
    const std::string target(Trim(actionto));
    const std::string message(Trim(actionmsg));
    const std::string argument(Trim(actionarg));
    if (target == "form" && DoFormAction(message, argument)) return true;
    if (target == "roe" && message == "use-defaults") {
        m_target.LoadFormDefaults();
        return true;
    }
    m_report.LogLine("unknown action: %s %s %s", target.c_str(), message.c_str(), argument.c_str());
    return false;
}

bool Actions::DoFormAction(const std::string& message, const std::string& argument) {
    if (message == "render" && argument == "render") {
        m_target.Command(CommandId::kRenderIt);
        WaitForChildren();
    } else if (message == "render" && argument == "kill") {
        m_target.Command(CommandId::kStopRender);
    } else if (message == "exit") {
        m_target.Close();
    } else if (message == "system") {
        m_commands.RunCommand(argument, true);
    } else if (message == "roe" && argument == "hide") {
        m_target.HideRenderOptions();
    } else if (message == "loadtavrn") {
        m_target.OpenDocument(argument);
    } else {
        return message == "export" && DoExport(argument);
    }
    return true;
}

// Source and render interface alone are menu commands only.
bool Actions::DoExport(const std::string& kind) {
    if (kind == "all") {
        m_target.Command(CommandId::kExportAll);
    } else if (kind == "compiledShader") {
        m_target.Command(CommandId::kExportCompiledShader);
    } else if (kind == "shaderIFace") {
        m_target.Command(CommandId::kExportShaderInterface);
    } else {
        return false;
    }
    return true;
}

void Actions::WaitForChildren() {
    while (m_commands.AnyChildRunning()) {
        if (m_target.PumpMessages(kWait)) continue;
        m_script.reset();
        return;
    }
}

bool Actions::RunScriptFile(const std::string& path) {
    if (ScriptRunning()) {
        m_report.Alert("script already running");
        return false;
    }
    std::string error;
    auto archive = CArchive::Open(path, error);
    if (!archive) {
        m_report.Alert("%s: %s", path.c_str(), error.c_str());
        return false;
    }
    m_unknownActions = 0;
    m_script.emplace(std::move(*archive));
    ScriptStatement statement;
    while (m_script && m_script->Next(statement)) {
        if (!DoAction(statement[0], statement[1], statement[2])) ++m_unknownActions;
        WaitForChildren();
    }
    m_script.reset();
    return true;
}

void Actions::HaltScript() {
    if (!m_script) return;
    if (m_commands.AnyChildRunning()) m_commands.KillChildren();
    m_script.reset();
}

}  // namespace tavrin
