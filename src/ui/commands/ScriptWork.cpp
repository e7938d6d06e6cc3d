// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/ScriptWork.h"

#include <QWidget>
#include <utility>

#include "app/TvApp.h"
#include "base/Paths.h"
#include "ui/commands/CommandActions.h"
#include "ui/commands/DocumentWork.h"
#include "ui/commands/RenderWork.h"
#include "ui/dialogs/FileDialogs.h"
#include "ui/frame/EventPump.h"
#include "ui/frame/FrameWindows.h"

namespace tavrin {

ScriptWork::ScriptWork(Needs needs)
    : m_needs(std::move(needs)),
      m_dispatch(*this, m_needs.app.GetSite().commands, m_needs.app.GetSite().report) {}

void ScriptWork::AddTo(CommandActions& commands) {
    commands.On(CommandId::kRunScript, {[this] { RunScript(); }, [this] { return IsQuiet(); }});
    commands.On(CommandId::kHaltScript,
                {[this] { HaltScript(); }, [this] { return m_dispatch.ScriptRunning(); }});
}

bool ScriptWork::IsQuiet() const {
    return !m_dispatch.ScriptRunning() && !m_needs.app.GetSite().commands.AnyChildRunning();
}

void ScriptWork::RunScript() {
    Site& site = m_needs.app.GetSite();
    if (m_dispatch.ScriptRunning()) {
        site.report.Alert("script already running");
        return;
    }
    FileDialogRequest request;
    request.title = "Select";
    request.filters = {"Tavrin Script (*.tvx)"};
    request.directory = site.directories.scriptBrowserDir;
    request.extension = "tvx";
    const auto chosen = AskFileToOpen(&m_needs.frame, request);
    if (!chosen) return;
    site.directories.scriptBrowserDir = PathDir(chosen->path);
    m_dispatch.RunScriptFile(chosen->path);
}

void ScriptWork::HaltScript() {
    m_dispatch.HaltScript();
    m_needs.renders.ChildrenAreStopped();
}

void ScriptWork::Command(CommandId id) { m_needs.commands.Run(id); }

void ScriptWork::Close() { m_needs.frame.close(); }

void ScriptWork::HideRenderOptions() { m_needs.windows.Of(CommandId::kRenderOptions).hide(); }

void ScriptWork::OpenDocument(const std::string& path) { m_needs.documents.OpenDocument(path); }

void ScriptWork::LoadFormDefaults() { m_needs.app.LoadFormDefaults(); }

bool ScriptWork::PumpMessages(std::chrono::milliseconds wait) {
    PumpEvents(wait);
    return !m_needs.isClosed();
}

}  // namespace tavrin
