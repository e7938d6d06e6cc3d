// What the frame's commands do.
#include <QFileInfo>
#include <QMenuBar>
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
#include "ui/library/OperatorMenus.h"
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
    [[maybe_unused]] const bool known = DoDocumentCommand(id) || DoDeskCommand(id) || DoRenderCommand(id) ||
                                        DoWindowCommand(id) || DoOption(id);
    m_idle.Request();
}

bool MainFrame::DoDocumentCommand(CommandId id) {
    switch (id) {
        case CommandId::kNew:
            m_documents->New();
            return true;
        case CommandId::kOpen:
            m_documents->Open();
            return true;
        case CommandId::kMerge:
            m_documents->Merge();
            return true;
        case CommandId::kSave:
            m_documents->Save();
            return true;
        case CommandId::kSaveAs:
            m_documents->SaveAs();
            return true;
        case CommandId::kDisplayIcons:
            ToggleDocumentFlag(&DocumentCommands::ToggleIcons);
            return true;
        case CommandId::kStraightTraceLines:
            ToggleDocumentFlag(&DocumentCommands::ToggleLineType);
            return true;
        case CommandId::kLinesOverBoxes:
            ToggleDocumentFlag(&DocumentCommands::ToggleLinesOverBoxes);
            return true;
        case CommandId::kShowVarnames:
            ToggleDocumentFlag(&DocumentCommands::ToggleVarNames);
            return true;
        case CommandId::kLockDesk:
            ToggleDocumentFlag(&DocumentCommands::ToggleLock);
            return true;
        case CommandId::kExit:
            close();
            return true;
        default:
            return false;
    }
}

bool MainFrame::DoDeskCommand(CommandId id) {
    COpDesk& desk = m_work->desk;
    switch (id) {
        case CommandId::kCut:
            desk.CutBoxes();
            return true;
        case CommandId::kCopy:
            desk.CopySelection();
            return true;
        case CommandId::kPaste:
            desk.PasteBoxes(m_desk->CursorOnDesk());
            return true;
        case CommandId::kDelete:
            desk.DeleteSelection();
            return true;
        case CommandId::kSelectAllBoxes:
            desk.SelectAllBoxes();
            return true;
        case CommandId::kUnselectAllBoxes:
            desk.UnselectAllBoxes();
            return true;
        case CommandId::kFitToWindow:
            m_desk->FitToWindow();
            return true;
        case CommandId::kZoomReset:
            m_desk->ZoomReset();
            return true;
        case CommandId::kZoomIn:
            m_desk->ZoomIn();
            return true;
        case CommandId::kZoomOut:
            m_desk->ZoomOut();
            return true;
        case CommandId::kShowWallpaper:
            m_desk->m_showWallpaper = !m_desk->m_showWallpaper;
            Repaint();
            return true;
        case CommandId::kTileWallpaper:
            m_desk->m_tileWallpaper = !m_desk->m_tileWallpaper;
            Repaint();
            return true;
        case CommandId::kSetWallpaper:
            SetWallpaper();
            return true;
        default:
            return false;
    }
}

bool MainFrame::DoRenderCommand(CommandId id) {
    switch (id) {
        case CommandId::kRenderIt:
            m_renders->RenderIt();
            return true;
        case CommandId::kStopRender:
            m_renders->StopRender();
            return true;
        case CommandId::kExportAll:
            m_renders->ExportAll();
            return true;
        case CommandId::kExportShaderSource:
            m_renders->ExportOne(ExportKind::kShaderSource);
            return true;
        case CommandId::kExportCompiledShader:
            m_renders->ExportOne(ExportKind::kCompiledShader);
            return true;
        case CommandId::kExportRenderInterface:
            m_renders->ExportOne(ExportKind::kRenderIface);
            return true;
        case CommandId::kExportShaderInterface:
            m_renders->ExportOne(ExportKind::kShaderIface);
            return true;
        case CommandId::kViewShaderSource:
            m_renders->ViewShaderSource();
            return true;
        case CommandId::kViewRenderInterface:
            m_renders->ViewRenderInterface();
            return true;
        case CommandId::kViewShaderInterface:
            m_renders->ViewShaderInterface();
            return true;
        case CommandId::kRunScript:
            RunScript();
            return true;
        case CommandId::kHaltScript:
            m_dispatch.HaltScript();
            return true;
        default:
            return false;
    }
}

bool MainFrame::DoWindowCommand(CommandId id) {
    switch (id) {
        case CommandId::kExportOptions:
            m_windows.exportDialog->Toggle();
            return true;
        case CommandId::kRenderHistory:
            m_windows.renderHistory->Toggle();
            return true;
        case CommandId::kBoxFinder:
            m_windows.boxFinder->Toggle();
            return true;
        case CommandId::kMenuFinder:
            m_windows.menuFinder->Toggle();
            return true;
        case CommandId::kRenderOptions:
            m_windows.renderOptions->Toggle();
            return true;
        case CommandId::kArgumentEditor:
            m_windows.argumentEditor->Toggle();
            return true;
        case CommandId::kShaderHelp:
            m_windows.helpEditor->Toggle();
            return true;
        case CommandId::kDisplayLog:
            m_windows.log->ComeUp();
            return true;
        case CommandId::kClearLog:
            m_windows.log->Clear();
            return true;
        case CommandId::kCustomize:
            CustomizeToolBar();
            return true;
        case CommandId::kOnlineDocumentation:
            OpenDocumentation();
            return true;
        case CommandId::kAbout:
            ShowAboutBox(this, m_app.ProductVersion());
            return true;
        default:
            return false;
    }
}

bool MainFrame::DoOption(CommandId id) {
    Site& site = GetSite();
    switch (id) {
        case CommandId::kFreezeSliders:
            m_sliders->SetFrozen(!m_sliders->IsFrozen());
            return true;
        case CommandId::kStatusBar:
            m_showStatus = !m_showStatus;
            m_statusBox->setVisible(m_showStatus);
            return true;
        case CommandId::kScrollBars:
            m_desk->SetScrollBarsShown(!m_desk->ScrollBarsShown());
            return true;
        case CommandId::kSliderDesk:
            m_showSliderDesk = !m_showSliderDesk;
            m_sliders->setFixedWidth(m_showSliderDesk ? m_sliderColumnWidth : 0);
            return true;
        case CommandId::kKeepHistory:
            m_work->session.m_keepHistory = !m_work->session.m_keepHistory;
            return true;
        case CommandId::kMultipleRenders:
            m_work->session.m_multipleRenders = !m_work->session.m_multipleRenders;
            return true;
        // Children see a switch from its first use on.
        case CommandId::kSoundEffects:
            site.quietMode = !site.quietMode;
            site.environment.Set("TAVRN_QUIET", site.quietMode ? "1" : "0");
            return true;
        case CommandId::kDebugMode:
            site.debugMode = !site.debugMode;
            site.environment.Set("TAVRN_DEBUG", site.debugMode ? "1" : "0");
            return true;
        default:
            return false;
    }
}

FrameState MainFrame::State() const {
    const CTvDoc& document = m_work->document;
    const Site& site = m_app.GetSite();
    FrameState state;
    state.modified = document.IsModified();
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
    UpdateTitle();
    m_windows.RefreshTables();
}

void MainFrame::ToggleDocumentFlag(void (DocumentCommands::*toggle)()) {
    (m_work->commands.*toggle)();
    RefreshAllViews();
}

void MainFrame::RebuildOperatorMenus() {
    m_app.ReloadOperators();
    ShowOperatorMenus();
}

// The menus of the present operators, behind the frame's own.
void MainFrame::ShowOperatorMenus() {
    const QList<QAction*> before = menuBar()->actions();
    for (int index = 0; index < m_opMenuCount; ++index) {
        QAction* old = before.value(m_opMenuFirst + index);
        menuBar()->removeAction(old);
        if (old->menu() != nullptr) old->menu()->deleteLater();
    }
    m_opMenuFirst = static_cast<int>(menuBar()->actions().size());
    m_opMenuCount = 0;
    for (const OpMenuItem& item : m_app.Registry().Root().items) {
        if (item.kind == OpMenuItem::Kind::kSeparator) continue;
        QMenu* menu = menuBar()->addMenu(LiteralLabel(item.label));
        if (item.submenu != nullptr) {
            FillOperatorMenu(*menu, *item.submenu, [this](uint32_t id) { AddOperatorById(id); });
        }
        ++m_opMenuCount;
    }
    m_windows.menuFinder->Refresh();
    // The new ones are as grey as the old.
    if (std::exchange(m_locked, false)) SetLocked(true);
}

void MainFrame::AddOperatorById(uint32_t id) {
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
    m_work->document.toolbar = dialog.Result();
    m_work->document.SetModified();
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

// Filled anew whenever the menu comes up, in front of what stands behind this place.
void MainFrame::AddRecentFiles(QMenu& menu) {
    QAction* end = menu.addSeparator();
    connect(&menu, &QMenu::aboutToShow, this, [this, &menu, end, shown = QList<QAction*>()]() mutable {
        qDeleteAll(std::exchange(shown, {}));
        int number = 0;
        for (const std::string& path : m_recentFiles.List()) {
            auto* file = new QAction(QString("&%1 %2").arg(++number).arg(LiteralLabel(path)), &menu);
            connect(file, &QAction::triggered, this, [this, path] { OpenRecentFile(path); });
            shown << file;
        }
        if (shown.isEmpty()) {
            shown << new QAction("Recent Files", &menu);
            shown.first()->setEnabled(false);
        }
        menu.insertActions(end, shown);
    });
}

// One that is gone leaves the list.
void MainFrame::OpenRecentFile(const std::string& path) {
    if (!OpenDocumentFile(path) && !QFileInfo::exists(Shown(path))) m_recentFiles.Remove(path);
}

}  // namespace tavrin
