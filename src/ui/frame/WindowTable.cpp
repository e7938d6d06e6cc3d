// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/WindowTable.h"

#include <memory>

#include "app/Workspace.h"
#include "desk/BoxNames.h"
#include "ui/base/Text.h"
#include "ui/commands/CommandActions.h"
#include "ui/commands/DocumentWork.h"
#include "ui/commands/KeepWork.h"
#include "ui/commands/OperatorWork.h"
#include "ui/desk/DeskPane.h"
#include "ui/desk/UndoHistory.h"
#include "ui/forms/RenderOptionsWindow.h"
#include "ui/library/BoxFinder.h"
#include "ui/library/MenuFinder.h"
#include "ui/log/LogEdit.h"
#include "ui/log/LogWindow.h"
#include "ui/render/CheckWindow.h"
#include "ui/render/CompareWindow.h"
#include "ui/render/ExportDlg.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/sliders/ArgumentEditor.h"
#include "ui/sliders/HelpEditor.h"
#include "ui/source/SourceWindow.h"

namespace tavrin {

namespace {

ToolWindow* MakeRenderHistory(const WindowNeeds& needs) {
    RenderSession& session = needs.work.session;
    return new CRenderHistoryDlg(
        &needs.frame,
        {.entries = [&session]() -> const std::deque<std::string>& { return session.History().Entries(); },
         .open = [&documents =
                      needs.documents](const std::string& entry) { documents.OpenHistoryEntry(entry); },
         .records = session.records,
         .canKeep = [&keeps = needs.keeps](int number) { return keeps.CanKeep(number); },
         .keep = [&keeps = needs.keeps](int number) { keeps.Keep(number); },
         .compare = [compare = needs.compare](int number) { compare(number, Comparison::kDesk); }});
}

std::function<void(const std::string&)> GoToBox(const WindowNeeds& needs) {
    return [&desk = needs.desk](const std::string& name) { desk.GoToBox(name); };
}

ToolWindow* MakeCompareWindow(const WindowNeeds& needs) {
    Workspace& work = needs.work;
    return new CompareWindow(
        &needs.frame,
        {.comparison = {work.document, work.app, work.session, work.app.CodeGen()},
         .goToBox = GoToBox(needs),
         .setOption = [&app = work.app](const std::string& name,
                                        const std::string& value) { app.SetVariable(name, value, true); },
         .comparePictures = needs.comparePictures});
}

ToolWindow* MakeSourceWindow(const WindowNeeds& needs) {
    Workspace& work = needs.work;
    return new SourceWindow(&needs.frame, {.document = work.document,
                                           .session = work.session,
                                           .site = work.app.GetSite(),
                                           .siteCodeGen = work.app.CodeGen(),
                                           .types = [&app = work.app] { return app.ShaderTypes(); },
                                           .goToBox = GoToBox(needs)});
}

ToolWindow* MakeCheckWindow(const WindowNeeds& needs) {
    Workspace& work = needs.work;
    Site& site = work.app.GetSite();
    return new CheckWindow(&needs.frame, {.document = work.document,
                                          .desk = work.desk,
                                          .registry = work.app.Registry(),
                                          .site = site,
                                          .goToBox = GoToBox(needs),
                                          .tell = [&report = site.report](const std::string& why) {
                                              report.Alert("%s", why.c_str());
                                          }});
}

ToolWindow* MakeUndoHistory(const WindowNeeds& needs) {
    return new CUndoHistory(&needs.frame, needs.work.document, needs.work.desk);
}

ToolWindow* MakeBoxFinder(const WindowNeeds& needs) {
    DeskPane& desk = needs.desk;
    return new BoxFinder(&needs.frame,
                         {.centreOnBox = [&desk](const std::string& name) { desk.CentreOnBox(name); },
                          .repaintDesk = [&desk] { desk.Repaint(); }});
}

ToolWindow* MakeMenuFinder(const WindowNeeds& needs) {
    return new MenuFinder(&needs.frame, needs.work.app.Registry(),
                          [&operators = needs.operators](uint32_t id) { operators.AddOperator(id); });
}

ToolWindow* MakeArgumentEditor(const WindowNeeds& needs) {
    return new CArgumentEditor(&needs.frame, needs.work.document);
}

ToolWindow* MakeRenderOptions(const WindowNeeds& needs) {
    CTvApp& app = needs.work.app;
    return new RenderOptionsWindow(&needs.frame, app.RenderOptionsForm(),
                                   {app.OptionStore(), needs.doAction});
}

ToolWindow* MakeExportOptions(const WindowNeeds& needs) {
    Workspace& work = needs.work;
    return new CExportDlg(
        &needs.frame,
        {.document = [&work] { return &work.document; },
         .defaults = [&work]() -> const CExportOptions& { return work.app.ExportDefaults(); },
         .updateExportPaths = [&work] { UpdateExportPaths(work.document, work.app.GetSite()); }});
}

ToolWindow* MakeHelpEditor(const WindowNeeds& needs) {
    return new CHelpEditor(&needs.frame, [&document = needs.work.document] { return &document; });
}

ToolWindow* TheLog(const WindowNeeds& needs) {
    auto names = std::make_shared<BoxNames>(needs.work.document);
    needs.log.Edit().SetLinks(
        {[names](const std::string& box) { return names->Stands(box); }, GoToBox(needs)});
    return &needs.log;
}

void AddLogCommands(ToolWindow& window, CommandActions& commands) {
    auto& log = static_cast<LogWindow&>(window);
    commands.On(CommandId::kClearLog, {[&log] { log.Clear(); }});
}

}  // namespace

const std::vector<WindowRow>& WindowTable() {
    using Id = CommandId;
    using Way = WindowRow::Way;
    static const std::vector<WindowRow> table = {
        {Id::kRenderHistory, Way::kToggles, "RenderHistory", true, {1, 1}, MakeRenderHistory},
        {Id::kCompareRenders, Way::kToggles, "CompareRenders", true, {0.5, 0.5}, MakeCompareWindow},
        {Id::kSource, Way::kToggles, "Source", true, {1, 0.3}, MakeSourceWindow},
        {Id::kCheck, Way::kToggles, "Check", true, {0.05, 0.8}, MakeCheckWindow},
        {Id::kUndoHistory, Way::kToggles, "UndoHistory", true, {1, 0.5}, MakeUndoHistory},
        {Id::kBoxFinder, Way::kToggles, "BoxFinder", true, {1, 0}, MakeBoxFinder, nullptr, true},
        {Id::kMenuFinder, Way::kToggles, "MenuFinder", true, {0, 0}, MakeMenuFinder, nullptr, true},
        {Id::kArgumentEditor, Way::kToggles, "ArgumentEditor", true, {0.5, 0.9}, MakeArgumentEditor},
        {Id::kRenderOptions, Way::kToggles, "RenderOptionsEditor", false, {0.2, 0.2}, MakeRenderOptions},
        {Id::kExportOptions, Way::kToggles, "ExportOptionsEditor", false, {0.5, 0.3}, MakeExportOptions},
        {Id::kShaderHelp, Way::kToggles, "HelpEditor", true, {0.7, 0.5}, MakeHelpEditor},
        {Id::kDisplayLog, Way::kComesUp, "Log", true, {0.1, 1}, TheLog, AddLogCommands},
    };
    return table;
}

}  // namespace tavrin
