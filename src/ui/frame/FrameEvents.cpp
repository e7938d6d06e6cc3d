// What the frame does when something happens to it: idle moments, its end, drops, words from the desk.
#include <QCloseEvent>
#include <QCoreApplication>
#include <QMenuBar>
#include <QMimeData>
#include <QSplitter>
#include <QTimer>
#include <utility>

#include "base/Profile.h"
#include "ui/Messages.h"
#include "ui/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/EventPump.h"
#include "ui/frame/MainFrame.h"
#include "ui/frame/SafetyCopies.h"
#include "ui/frame/StatusBox.h"
#include "ui/library/BoxFinder.h"
#include "ui/library/MenuFinder.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/render/ExportDlg.h"
#include "ui/sliders/HelpEditor.h"
#include "ui/sliders/SliderPane.h"

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds kGrace{2000};  // for children to heed their kill file at the end

// The document among what is being dropped; empty if there is none.
std::string DroppedDocument(const QMimeData& data, const std::string& extension) {
    for (const QUrl& file : data.urls()) {
        const QString path = file.toLocalFile();
        if (path.endsWith(Shown(extension), Qt::CaseInsensitive)) return Bytes(path);
    }
    return {};
}

}  // namespace

void MainFrame::SetLocked(bool locked) {
    if (locked == m_locked) return;
    m_locked = locked;
    m_sliders->setEnabled(!locked);
    m_desk->setEnabled(!locked);
    const QList<QAction*> menus = menuBar()->actions();
    for (qsizetype place = kFirstLockedMenu; place < menus.size() - 1; ++place)
        menus[place]->setEnabled(!locked);
    m_operatorBar->SetLocked(locked);
    m_windows.boxFinder->SetLocked(locked);
    m_windows.menuFinder->SetLocked(locked);
}

// What waits for the user on the desk.
QString MainFrame::DeskHint() const {
    const COpDesk& desk = m_work->desk;
    if (!desk.m_pendingBoxes.empty()) return "Click to drop, Delete to throw away";
    if (desk.m_selectedButton == nullptr) return {};
    const bool isDrawn = m_desk->Gestures().Current() == DeskGestures::Kind::kWiring;
    return isDrawn ? "Release on a button to wire it" : "Click a button to wire it, the desk to let go";
}

// Unless something else is shown by now.
void MainFrame::DropStaleHelp() {
    const auto help = m_desk->Gestures().TakeStaleHelp();
    if (help && m_statusBox->Shows(*help)) m_statusBox->SetStatus(kDeskHint);
}

void MainFrame::OnIdle() {
    if (m_isClosed) return;
    const FrameState state = State();
    m_actions->Update(state);
    m_operatorBar->SetRenderEnabled(SpecOf(CommandId::kRenderIt).enabled(state));
    setWindowModified(m_work->document.IsModified());
    m_statusBox->SetHint(DeskHint());
    DropStaleHelp();
    m_idleWork->Step();
}

bool MainFrame::PumpMessages(std::chrono::milliseconds wait) {
    PumpEvents(wait);
    return !m_isClosed;
}

void MainFrame::SaveAside() { m_safetyCopies->Update(); }

// The questions before the end, in their order. Until the last is answered the program may go on, so nothing
// of the session is ended or removed before, but for a script.
bool MainFrame::MayClose() {
    if (m_dispatch.ScriptRunning()) {
        if (!AskWarning(this, "Running script.  Quit anyway?")) return false;
        m_dispatch.HaltScript();
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
    if (m_hasBeenShown) m_windows.SavePlaces(places);
    m_profile.SetInt(kScrollBarsKey, m_desk->ScrollBarsShown() ? 1 : 0);
    return m_documents->SettleChanges();
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
    m_windows.RestorePlaces(places, [this] { return ViewsOnScreen(); });
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
        m_app.CloseDown(kGrace);
    }
    m_safetyCopies->Discard();
    for (ToolWindow* window : m_windows.All()) window->hide();
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

void MainFrame::OnChange(const Change& change) {
    if (change.replaced) DocumentReplaced();
    m_windows.boxFinder->Follow(change);
    if (change.settings) {
        m_windows.exportDialog->Refresh();
        m_windows.helpEditor->Refresh();
    }
    SetLocked(m_work->document.lock != 0);
    m_windows.RefreshTables();
    m_idle.Request();
}

}  // namespace tavrin
