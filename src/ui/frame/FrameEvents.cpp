// SPDX-License-Identifier: Apache-2.0
// What the frame does when something happens to it: idle moments, its end, drops, words from the desk.
#include <QCloseEvent>
#include <QCoreApplication>
#include <QMenuBar>
#include <QMimeData>
#include <QSplitter>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <utility>

#include "forms/FormWidget.h"
#include "text/VisibleText.h"
#include "ui/base/Text.h"
#include "ui/commands/DeskWork.h"
#include "ui/commands/DocumentWork.h"
#include "ui/commands/KeepWork.h"
#include "ui/commands/LiveWork.h"
#include "ui/commands/OperatorWork.h"
#include "ui/commands/OptionWork.h"
#include "ui/commands/ScriptWork.h"
#include "ui/commands/SearchWork.h"
#include "ui/commands/UpdateOffer.h"
#include "ui/desk/DeskPane.h"
#include "ui/dialogs/Messages.h"
#include "ui/frame/MainFrame.h"
#include "ui/frame/SafetyCopies.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/sliders/SliderPane.h"

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds kGrace{2000};  // for children to heed their kill file at the end
constexpr qsizetype kFirstLockedMenu = 5;          // on the menu bar, from there up to the last but one

// The document among what is being dropped; empty if there is none.
std::string DroppedDocument(const QMimeData& data, const std::string& extension) {
    for (const QUrl& file : data.urls()) {
        const QString path = file.toLocalFile();
        if (path.endsWith(Shown(extension), Qt::CaseInsensitive)) return Bytes(path);
    }
    return {};
}

}  // namespace

OperatorToolBar& MainFrame::OperatorBar() { return m_operators->Bar(); }

Actions& MainFrame::ActionDispatch() { return m_scripts->Dispatch(); }

bool MainFrame::OpenDocumentFile(const std::string& path) { return m_documents->OpenDocument(path); }

void MainFrame::OnChange(const Change& change) {
    if (change.swapped && change.options) {
        m_app.PushOptionsToForm();
        m_app.ShaderTypeChanged();
    }
    if (change.swapped && change.settings) m_app.UpdateTitle();
    m_operators->Follow(change);
    m_windows->Tell(&ToolWindow::Follow, change);
    SetLocked(m_work->document.lock != 0);
    // Keys may follow each other faster than the program comes to rest.
    for (const CommandId id : {CommandId::kUndo, CommandId::kRedo}) m_commands.Update(id);
    m_idle.Request();
}

void MainFrame::AskAboutCommands() {
    constexpr size_t kMostLines = 20;
    const LocalCommands* commands = m_app.WaitingCommands();
    if (commands == nullptr) return;
    std::string text = "The site file " + VisibleOneLine(commands->path) + " names commands:\n";
    const std::vector<std::string> lines = commands->Lines();
    for (size_t i = 0; i < std::min(lines.size(), kMostLines); ++i) text += "\n  " + lines[i];
    if (lines.size() > kMostLines)
        text += "\n  and " + std::to_string(lines.size() - kMostLines) + " more, which the file shows";
    text += "\n\nMay they be run?  You are asked once, until the file changes.";
    m_app.AnswerForCommands(AskWarning(this, Shown(text)));
}

void MainFrame::Dispatch(const FormAction& action) {
    if (action.isHeld) {
        GetSite().report.Alert(
            "%s is not run: the site file of the current directory names it, and you have "
            "not agreed to its commands",
            action.argument.c_str());
        return;
    }
    ActionDispatch().DoAction(action.to, action.message, action.argument);
}

void MainFrame::LibraryChanged() {
    m_search->LibraryChanged();
    m_windows->Tell(&ToolWindow::LibraryChanged);
    // The new menus are as grey as the old.
    if (std::exchange(m_locked, false)) SetLocked(true);
}

void MainFrame::SetLocked(bool locked) {
    if (locked == m_locked) return;
    m_locked = locked;
    m_sliders->setEnabled(!locked);
    m_desk->setEnabled(!locked);
    const QList<QAction*> menus = menuBar()->actions();
    for (qsizetype place = kFirstLockedMenu; place < menus.size() - 1; ++place)
        menus[place]->setEnabled(!locked);
    m_operators->Bar().SetLocked(locked);
    m_windows->Tell(&ToolWindow::SetLocked, locked);
}

void MainFrame::OnIdle() {
    if (m_isClosed) return;
    m_commands.Update();
    m_operators->Bar().SetRenderEnabled(m_commands.Get(CommandId::kRenderIt).isEnabled());
    setWindowModified(m_work->document.IsModified());
    m_deskWork->UpdateHints();
    m_idleWork->Step();
    m_updateOffer->OnIdle();
    m_search->OnIdle();
}

void MainFrame::Fail(const std::string& text, int status) {
    if (HasFailed()) return;
    m_failure = status;
    std::fprintf(stderr, "tavrin: %s\n", text.c_str());
    ShowStop(this, "Fatal Error", Shown(text));
    m_isClosed = true;
    // Not by quit, which asks the windows first: this may come from within the show of one.
    QCoreApplication::exit(status);
}

void MainFrame::SaveAside() { m_safetyCopies->Update(); }

// The questions before the end, in their order. Until the last is answered the program may go on, so nothing
// of the session is ended or removed before, but for a script.
bool MainFrame::MayClose() {
    const bool isScripted = ActionDispatch().ScriptRunning();
    if (isScripted) {
        if (!AskWarning(this, "Running script.  Quit anyway?")) return false;
        ActionDispatch().HaltScript();
    }
    const std::string& workDir = GetSite().directories.workDir;
    // A child at work would fill the directory again, or lose the ground under its feet.
    if (!workDir.empty() && (GetSite().commands.AnyProcessLeft() || !m_app.CanRemoveWorkDirectory()) &&
        !AskWarning(this, Shown("An open editor or image window or an in-progress render prevent removal of"
                                " work directory " +
                                workDir + ".  Quit anyway?"))) {
        return false;
    }
    WindowPlaces places(m_profile);
    places.SaveWindow(*this, kPlaceName, m_normalPlace);
    if (m_hasBeenShown) m_windows->SavePlaces(places);
    m_options->Save();
    // Only then is it known what no file will hold.
    return m_documents->SettleChanges() && (isScripted || m_keeps->SettleRenders());
}

void MainFrame::setVisible(bool visible) {
    const bool isFirst = visible && !std::exchange(m_hasBeenShown, true);
    WindowPlaces places(m_profile);
    // Only now: any change of size, as by a layout that is made, would end that state.
    if (isFirst) places.RestoreMaximized(*this, kPlaceName);
    QMainWindow::setVisible(visible);
    if (!isFirst) return;
    // Not before the frame is on its way to the screen: a window manager that does not know the frame yet
    // cannot keep them over it.
    m_windows->RestorePlaces(places, [this] { return ViewsOnScreen(); });
    m_idleWork->ShowSplash();
    m_idle.Request();
}

// In global coordinates.
QRect MainFrame::ViewsOnScreen() const { return {m_splitter->mapToGlobal(QPoint(0, 0)), m_splitter->size()}; }

void MainFrame::closeEvent(QCloseEvent* event) {
    if (!m_isClosed) {
        if (!MayClose()) {
            event->ignore();
            return;
        }
        m_isClosed = true;
        // While the window stands, so that its going is the program's end.
        m_live->End();
        m_search->End();
        m_app.CloseDown(kGrace);
    }
    m_safetyCopies->Discard();
    m_windows->HideAll();
    event->accept();
    QCoreApplication::quit();
}

void MainFrame::dragEnterEvent(QDragEnterEvent* event) {
    if (!DroppedDocument(*event->mimeData(), GetSite().docExt).empty()) event->acceptProposedAction();
}

void MainFrame::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    // Once the drop is over: a question may come up.
    QTimer::singleShot(0, this, [this, path = DroppedDocument(*event->mimeData(), GetSite().docExt)] {
        OpenDocumentFile(path);
    });
}

void MainFrame::ShowShaderType(const std::string& type) { m_operators->Bar().ShowShaderType(type); }

void MainFrame::ShowTitle(const std::string& title) {
    // "[*]" is where the toolkit puts the mark of a modified document.
    setWindowTitle(Shown(title).replace("[*]", "[*][*]") + "[*]");
    setWindowModified(m_work->document.IsModified());
    m_windows->Tell(&ToolWindow::TitleChanged);
}

}  // namespace tavrin
