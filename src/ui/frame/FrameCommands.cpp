// What the frame's commands do.
#include <sstream>

#include "base/Files.h"
#include "base/Paths.h"
#include "forms/FormFrame.h"
#include "images/SgiImage.h"
#include "text/Tokens.h"
#include "ui/FileDialogs.h"
#include "ui/TableWindow.h"
#include "ui/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/MainFrame.h"
#include "ui/frame/SafetyCopies.h"
#include "ui/frame/Splash.h"
#include "ui/frame/StatusBox.h"
#include "ui/library/BoxFinder.h"
#include "ui/library/CustomizeDialog.h"
#include "ui/library/MenuFinder.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/log/LogWindow.h"
#include "ui/render/ExportDlg.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/sliders/HelpEditor.h"
#include "ui/sliders/SliderPane.h"

namespace tavrin {

namespace {

// Where the line "URL=..." of a shortcut file leads; empty if there is none. What is no address of the
// network is a file beside the shortcut.
std::string ShortcutTarget(const std::string& path) {
    constexpr std::string_view kKey = "URL=";
    std::string text;
    std::string error;
    if (!ReadWholeFile(path, text, error)) return {};
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(kKey)) continue;
        const std::string target(Trim(std::string_view(line).substr(kKey.size())));
        const bool isAddress = target.find("://") != std::string::npos;
        return isAddress ? target : ResolvePath(target, PathDir(path));
    }
    return {};
}

}  // namespace

void MainFrame::Command(CommandId id) {
    // The sliders' commands have nothing to act on while no panel stands.
    if (const auto handler = m_handlers.find(id); handler != m_handlers.end()) handler->second();
    m_idle.Request();
}

void MainFrame::ConnectDocumentCommands() {
    m_handlers[CommandId::kNew] = [this] { m_documents->New(); };
    m_handlers[CommandId::kOpen] = [this] { m_documents->Open(); };
    m_handlers[CommandId::kMerge] = [this] { m_documents->Merge(); };
    m_handlers[CommandId::kSave] = [this] { m_documents->Save(); };
    m_handlers[CommandId::kSaveAs] = [this] { m_documents->SaveAs(); };
    m_handlers[CommandId::kDisplayIcons] = [this] { ToggleDocumentFlag(&DocumentCommands::ToggleIcons); };
    m_handlers[CommandId::kStraightTraceLines] = [this] {
        ToggleDocumentFlag(&DocumentCommands::ToggleLineType);
    };
    m_handlers[CommandId::kLinesOverBoxes] = [this] {
        ToggleDocumentFlag(&DocumentCommands::ToggleLinesOverBoxes);
    };
    m_handlers[CommandId::kShowVarnames] = [this] { ToggleDocumentFlag(&DocumentCommands::ToggleVarNames); };
    m_handlers[CommandId::kLockDesk] = [this] { ToggleDocumentFlag(&DocumentCommands::ToggleLock); };
    m_handlers[CommandId::kExit] = [this] { close(); };
}

void MainFrame::ConnectDeskCommands() {
    m_handlers[CommandId::kCut] = [this] { m_work->desk.CutBoxes(); };
    m_handlers[CommandId::kCopy] = [this] { m_work->desk.CopySelection(); };
    m_handlers[CommandId::kPaste] = [this] { m_work->desk.PasteBoxes(m_desk->CursorOnDesk()); };
    m_handlers[CommandId::kDelete] = [this] { m_work->desk.DeleteSelection(); };
    m_handlers[CommandId::kSelectAllBoxes] = [this] { m_work->desk.SelectAllBoxes(); };
    m_handlers[CommandId::kUnselectAllBoxes] = [this] { m_work->desk.UnselectAllBoxes(); };
    m_handlers[CommandId::kFitToWindow] = [this] { m_desk->FitToWindow(); };
    m_handlers[CommandId::kZoomReset] = [this] { m_desk->ZoomReset(); };
    m_handlers[CommandId::kZoomIn] = [this] { m_desk->ZoomIn(); };
    m_handlers[CommandId::kZoomOut] = [this] { m_desk->ZoomOut(); };
    m_handlers[CommandId::kShowWallpaper] = [this] {
        m_desk->m_showWallpaper = !m_desk->m_showWallpaper;
        m_desk->Repaint();
    };
    m_handlers[CommandId::kTileWallpaper] = [this] {
        m_desk->m_tileWallpaper = !m_desk->m_tileWallpaper;
        m_desk->Repaint();
    };
    m_handlers[CommandId::kSetWallpaper] = [this] { SetWallpaper(); };
}

void MainFrame::ConnectRenderCommands() {
    m_handlers[CommandId::kRenderIt] = [this] { m_renders->RenderIt(); };
    m_handlers[CommandId::kStopRender] = [this] { m_renders->StopRender(); };
    m_handlers[CommandId::kExportAll] = [this] { m_renders->ExportAll(); };
    m_handlers[CommandId::kExportShaderSource] = [this] { m_renders->ExportOne(ExportKind::kShaderSource); };
    m_handlers[CommandId::kExportCompiledShader] = [this] {
        m_renders->ExportOne(ExportKind::kCompiledShader);
    };
    m_handlers[CommandId::kExportRenderInterface] = [this] {
        m_renders->ExportOne(ExportKind::kRenderIface);
    };
    m_handlers[CommandId::kExportShaderInterface] = [this] {
        m_renders->ExportOne(ExportKind::kShaderIface);
    };
    m_handlers[CommandId::kViewShaderSource] = [this] { m_renders->ViewShaderSource(); };
    m_handlers[CommandId::kViewRenderInterface] = [this] { m_renders->ViewRenderInterface(); };
    m_handlers[CommandId::kViewShaderInterface] = [this] { m_renders->ViewShaderInterface(); };
    m_handlers[CommandId::kRunScript] = [this] { RunScript(); };
    m_handlers[CommandId::kHaltScript] = [this] {
        m_dispatch.HaltScript();
        m_renders->ChildrenAreStopped();
    };
}

void MainFrame::ConnectWindowCommands() {
    m_handlers[CommandId::kExportOptions] = [this] { m_windows.exportDialog->Toggle(); };
    m_handlers[CommandId::kRenderHistory] = [this] { m_windows.renderHistory->Toggle(); };
    m_handlers[CommandId::kBoxFinder] = [this] { m_windows.boxFinder->Toggle(); };
    m_handlers[CommandId::kMenuFinder] = [this] { m_windows.menuFinder->Toggle(); };
    m_handlers[CommandId::kRenderOptions] = [this] { m_windows.renderOptions->Toggle(); };
    m_handlers[CommandId::kArgumentEditor] = [this] { m_windows.argumentEditor->Toggle(); };
    m_handlers[CommandId::kShaderHelp] = [this] { m_windows.helpEditor->Toggle(); };
    m_handlers[CommandId::kDisplayLog] = [this] { m_windows.log->ComeUp(); };
    m_handlers[CommandId::kClearLog] = [this] { m_windows.log->Clear(); };
    m_handlers[CommandId::kReloadOperators] = [this] { ReloadOperators(); };
    m_handlers[CommandId::kCustomize] = [this] { CustomizeToolBar(); };
    m_handlers[CommandId::kOnlineDocumentation] = [this] { OpenDocumentation(); };
    m_handlers[CommandId::kAbout] = [this] { ShowAboutBox(this, m_app.ProductVersion()); };
}

void MainFrame::ConnectOptions() {
    m_handlers[CommandId::kFreezeSliders] = [this] { m_sliders->SetFrozen(!m_sliders->IsFrozen()); };
    m_handlers[CommandId::kStatusBar] = [this] {
        m_showStatus = !m_showStatus;
        m_statusBox->setVisible(m_showStatus);
    };
    m_handlers[CommandId::kScrollBars] = [this] { m_desk->SetScrollBarsShown(!m_desk->ScrollBarsShown()); };
    m_handlers[CommandId::kSliderDesk] = [this] {
        m_showSliderDesk = !m_showSliderDesk;
        m_sliders->setFixedWidth(m_showSliderDesk ? m_sliderColumnWidth : 0);
    };
    m_handlers[CommandId::kKeepHistory] = [this] {
        m_work->session.m_keepHistory = !m_work->session.m_keepHistory;
    };
    m_handlers[CommandId::kMultipleRenders] = [this] {
        m_work->session.m_multipleRenders = !m_work->session.m_multipleRenders;
    };
    // Children see a switch from its first use on.
    m_handlers[CommandId::kSoundEffects] = [this] {
        GetSite().quietMode = !GetSite().quietMode;
        GetSite().environment.Set("TAVRN_QUIET", GetSite().quietMode ? "1" : "0");
    };
    m_handlers[CommandId::kDebugMode] = [this] {
        GetSite().debugMode = !GetSite().debugMode;
        GetSite().environment.Set("TAVRN_DEBUG", GetSite().debugMode ? "1" : "0");
    };
}

FrameState MainFrame::State() const {
    const CTvDoc& document = m_work->document;
    const Site& site = m_app.GetSite();
    FrameState state;
    state.modified = document.IsModified();
    state.differsFromFile = document.DiffersFromFile();
    state.locked = document.lock != 0;
    state.childRuns = site.commands.AnyChildRunning();
    state.scriptRuns = m_dispatch.ScriptRunning();
    state.empty = document.m_boxes.empty();
    state.zoomIsOne = document.zoomFactor == 1.0F;
    state.boxSelected = m_work->desk.AnyBoxSelected();
    state.canPaste = m_work->desk.CanPaste();
    state.canDelete = m_work->desk.CanDelete();
    state.multipleRenders = m_work->session.m_multipleRenders;
    m_windows.TellState(state);
    state.frozen = m_sliders->IsFrozen();
    state.displayIcons = document.showiconimages != 0;
    state.traceLines = document.linetype != 0;
    state.linesOverBoxes = document.drawlinesoverboxes != 0;
    state.varnames = document.showvarnames != 0;
    state.statusBox = m_showStatus;
    state.scrollBars = m_desk->ScrollBarsShown();
    state.sliderDesk = m_showSliderDesk;
    state.keepHistory = m_work->session.m_keepHistory;
    state.quiet = site.quietMode;
    state.debug = site.debugMode;
    state.wallpaper = m_desk->m_showWallpaper;
    state.wallpaperTiled = m_desk->m_tileWallpaper;
    return state;
}

bool MainFrame::OpenDocumentFile(const std::string& path) { return m_documents->OpenDocument(path); }

void MainFrame::HideRenderOptions() { m_windows.renderOptions->hide(); }

void MainFrame::LoadFormDefaults() {
    m_app.LoadFormDefaults();
    m_windows.RefreshTables();
}

void MainFrame::ToggleDocumentFlag(void (DocumentCommands::*toggle)()) {
    (m_work->commands.*toggle)();
}

void MainFrame::ReloadOperators() {
    m_app.ReloadOperators();
    RebuildOperatorMenus();
    m_operatorBar->RebuildButtons(m_work->document.toolbar);  // with the commands of now
    m_statusBox->SetStatus("Operators reloaded: " + std::to_string(m_app.Registry().Entries().size()));
}

// The registry has been scanned anew.
void MainFrame::RebuildOperatorMenus() {
    m_operatorMenus->Rebuild();
    m_windows.menuFinder->Refresh();
    // The new ones are as grey as the old.
    if (std::exchange(m_locked, false)) SetLocked(true);
}

void MainFrame::AddOperatorById(uint32_t id) {
    m_app.RestoreWorkDirectory();
    const COpEntry* entry = m_app.Registry().FindById(id);
    if (entry == nullptr) {
        GetSite().report.Alert("WARNING: no operator found for ID %d", static_cast<int>(id));
    } else {
        m_work->desk.AddOperator(entry->name);
    }
    m_idle.Request();
}

void MainFrame::CustomizeToolBar() {
    CustomizeDialog dialog(this, m_app.Registry(), m_work->document.toolbar);
    if (dialog.exec() != QDialog::Accepted) return;
    {
        const EditScope edit(m_work->document, "Customize Toolbar");
        m_work->document.edits.SettingsChanged();
        m_work->document.toolbar = dialog.Result();
    }
    m_operatorBar->RebuildButtons(m_work->document.toolbar);
}

void MainFrame::SetWallpaper() {
    FileDialogRequest request;
    request.title = "Select";
    request.filters = {"SGI Images (*.sgi)"};
    request.directory = m_imageBrowserDir;
    request.extension = "sgi";
    const auto chosen = AskFileToOpen(this, request);
    if (!chosen) return;
    m_imageBrowserDir = PathDir(chosen->path);
    Report& report = GetSite().report;
    auto image = std::make_unique<CSgiImage>(
        chosen->path, [&report](const std::string& line) { report.LogLine("%s", line.c_str()); });
    if (image->pixels == nullptr) {
        report.Alert("%s", image->message.c_str());
    } else {
        m_desk->SetWallpaper(std::move(image));
    }
}

void MainFrame::OpenDocumentation() {
    const std::string path = JoinPath(GetSite().directories.tavrnDir, "Readme.url");
    const std::string target = ShortcutTarget(path);
    if (!target.empty() && GetSite().commands.RunCommand("xdg-open \"" + target + "\"", false)) return;
    GetSite().report.Alert("unable to open %s", path.c_str());
}

void MainFrame::RunScript() {
    if (m_dispatch.ScriptRunning()) {
        GetSite().report.Alert("script already running");
        return;
    }
    FileDialogRequest request;
    request.title = "Select";
    request.filters = {"Tavrin Script (*.tvx)"};
    request.directory = GetSite().directories.scriptBrowserDir;
    request.extension = "tvx";
    const auto chosen = AskFileToOpen(this, request);
    if (!chosen) return;
    GetSite().directories.scriptBrowserDir = PathDir(chosen->path);
    m_dispatch.RunScriptFile(chosen->path);
}

}  // namespace tavrin
