// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/DeskWork.h"

#include <utility>

#include "app/Workspace.h"
#include "base/Paths.h"
#include "document/EditHistory.h"
#include "images/SgiImage.h"
#include "ui/base/Text.h"
#include "ui/commands/CommandActions.h"
#include "ui/desk/DeskPane.h"
#include "ui/dialogs/FileDialogs.h"
#include "ui/frame/StatusBox.h"

namespace tavrin {

namespace {

// What waits for the user on the desk.
QString HintOf(const COpDesk& desk, const DeskGestures& gestures, const Probe& probe) {
    if (desk.HasPending()) return "Click to drop, Delete to throw away";
    if (desk.m_selectedButton == nullptr)
        return probe.Output() == nullptr ? QString() : "Showing " + Shown(probe.Name()) + ", Esc ends it";
    const bool isDrawn = gestures.Current() == DeskGestures::Kind::kWiring;
    return isDrawn ? "Release on a button to wire it" : "Click a button to wire it, the desk to let go";
}

}  // namespace

DeskWork::DeskWork(const Needs& needs) : m_needs(needs) {
    Site& site = m_needs.work.app.GetSite();
    std::string imageDir;
    site.settings.GetSettingToken("imagebrowser_dir", imageDir);
    m_imageBrowserDir = site.LibraryPath(imageDir);
}

bool DeskWork::IsLocked() const { return m_needs.work.document.lock != 0; }

bool DeskWork::HasBoxes() const { return !m_needs.work.document.IsBare(); }

void DeskWork::UpdateHints() {
    DeskGestures& gestures = m_needs.desk.Gestures();
    m_needs.statusBox.SetHint(HintOf(m_needs.work.desk, gestures, m_needs.work.probe));
    // Unless something else is shown by now.
    const auto stale = gestures.TakeStaleHelp();
    if (stale && m_needs.statusBox.Shows(*stale)) m_needs.statusBox.SetStatus(kDeskHint);
}

void DeskWork::AddTo(CommandActions& commands) {
    AddHistory(commands);
    AddEdits(commands);
    AddSelection(commands);
    AddView(commands);
    AddFlags(commands);
    AddWallpaper(commands);
}

void DeskWork::AddHistory(CommandActions& commands) {
    COpDesk& desk = m_needs.work.desk;
    const EditHistory& history = *m_needs.work.document.History();
    const auto named = [](const char* verb, const std::string& act) {
        return act.empty() ? QString(verb) : QString(verb) + " " + LiteralLabel(Shown(act));
    };
    commands.On(CommandId::kUndo, {.run = [&desk] { desk.Undo(); },
                                   .enabled = [this, &desk] { return desk.CanUndo() && !IsLocked(); },
                                   .text =
                                       [&history, named] {
                                           const size_t place = history.Place();
                                           return named("&Undo", place == 0 ? "" : history.Name(place - 1));
                                       }});
    commands.On(CommandId::kRedo, {.run = [&desk] { desk.Redo(); },
                                   .enabled = [this, &desk] { return desk.CanRedo() && !IsLocked(); },
                                   .text =
                                       [&history, named] {
                                           const size_t place = history.Place();
                                           return named("&Redo",
                                                        place == history.Count() ? "" : history.Name(place));
                                       }});
}

void DeskWork::AddEdits(CommandActions& commands) {
    COpDesk& desk = m_needs.work.desk;
    const auto isSelected = [this, &desk] { return desk.AnySelected() && !IsLocked(); };
    commands.On(CommandId::kCut, {[&desk] { desk.CutBoxes(); }, isSelected});
    commands.On(CommandId::kCopy, {[&desk] { desk.CopySelection(); }, isSelected});
    commands.On(CommandId::kPaste, {[this, &desk] { desk.PasteBoxes(m_needs.desk.CursorOnDesk()); },
                                    [this, &desk] { return desk.CanPaste() && !IsLocked(); }});
    commands.On(CommandId::kDelete, {[&desk] { desk.DeleteSelection(); },
                                     [this, &desk] { return desk.CanDelete() && !IsLocked(); }});
}

void DeskWork::AddSelection(CommandActions& commands) {
    COpDesk& desk = m_needs.work.desk;
    const auto canSelect = [this] { return HasBoxes() && !IsLocked(); };
    commands.On(CommandId::kSelectAllBoxes, {[&desk] { desk.SelectAllBoxes(); }, canSelect});
    commands.On(CommandId::kUnselectAllBoxes, {[&desk] { desk.UnselectAllBoxes(); }, canSelect});
}

void DeskWork::AddView(CommandActions& commands) {
    DeskPane& desk = m_needs.desk;
    const auto canMove = [this] { return HasBoxes() && !IsLocked(); };
    const auto isZoomed = [this] { return m_needs.work.document.zoomFactor != 1.0F && !IsLocked(); };
    commands.On(CommandId::kFitToWindow, {[&desk] { desk.FitToWindow(); }, canMove});
    commands.On(CommandId::kZoomReset, {[&desk] { desk.ZoomReset(); }, isZoomed});
    commands.On(CommandId::kZoomIn, {[&desk] { desk.ZoomIn(); }, canMove});
    commands.On(CommandId::kZoomOut, {[&desk] { desk.ZoomOut(); }, canMove});
}

void DeskWork::AddFlags(CommandActions& commands) {
    const CTvDoc& document = m_needs.work.document;
    DocumentCommands& edits = m_needs.work.commands;
    // A locked desk keeps what it shows as well.
    const auto add = [&](CommandId id, void (DocumentCommands::*toggle)(), const int& flag) {
        commands.On(id, {[&edits, toggle] { (edits.*toggle)(); }, [this] { return !IsLocked(); },
                         [&flag] { return flag != 0; }});
    };
    add(CommandId::kDisplayIcons, &DocumentCommands::ToggleIcons, document.showiconimages);
    add(CommandId::kStraightTraceLines, &DocumentCommands::ToggleLineType, document.linetype);
    add(CommandId::kLinesOverBoxes, &DocumentCommands::ToggleLinesOverBoxes, document.drawlinesoverboxes);
    add(CommandId::kShowVarnames, &DocumentCommands::ToggleVarNames, document.showvarnames);
    commands.On(CommandId::kLockDesk,
                {.run = [&edits] { edits.ToggleLock(); }, .checked = [this] { return IsLocked(); }});
}

void DeskWork::AddWallpaper(CommandActions& commands) {
    const auto add = [&](CommandId id, bool& flag) {
        commands.On(id, {.run =
                             [this, &flag] {
                                 flag = !flag;
                                 m_needs.desk.Repaint();
                             },
                         .checked = [&flag] { return flag; }});
    };
    add(CommandId::kShowWallpaper, m_needs.desk.m_showWallpaper);
    add(CommandId::kTileWallpaper, m_needs.desk.m_tileWallpaper);
    commands.On(CommandId::kSetWallpaper, {[this] { SetWallpaper(); }});
}

void DeskWork::SetWallpaper() {
    FileDialogRequest request;
    request.title = "Select";
    request.filters = {"SGI Images (*.sgi)"};
    request.directory = m_imageBrowserDir;
    request.extension = "sgi";
    const auto chosen = AskFileToOpen(&m_needs.frame, request);
    if (!chosen) return;
    m_imageBrowserDir = PathDir(chosen->path);
    Report& report = m_needs.work.app.GetSite().report;
    auto image = std::make_unique<CSgiImage>(
        chosen->path, [&report](const std::string& line) { report.LogLine("%s", line.c_str()); });
    if (image->pixels == nullptr) {
        report.Alert("%s", image->message.c_str());
    } else {
        m_needs.desk.SetWallpaper(std::move(image));
    }
}

}  // namespace tavrin
