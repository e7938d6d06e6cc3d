// SPDX-License-Identifier: Apache-2.0
// The one top-level window: it owns the parts of the desktop program, puts them together, and hands on what
// the window system, the document and the application tell it.
#pragma once

#include <QMainWindow>
#include <memory>
#include <string>

#include "app/RecentFiles.h"
#include "app/TvApp.h"
#include "app/Workspace.h"
#include "ui/commands/CommandActions.h"
#include "ui/frame/EditKeys.h"
#include "ui/frame/FrameWindows.h"
#include "ui/frame/IdleDriver.h"
#include "ui/frame/IdleWork.h"
#include "ui/frame/RecentFilesMenu.h"
#include "ui/windows/NormalPlace.h"

class QSplitter;

namespace tavrin {

class Actions;
class CSliderDesk;
class CStatusBox;
class DeskPane;
class DeskWork;
class DocumentWork;
class EscapeKey;
struct FormAction;
class KeepWork;
class LiveWork;
class OperatorToolBar;
class OperatorWork;
class OptionWork;
class PictureLink;
class PictureWork;
class ProbeWork;
class Profile;
class QtQueue;
class RenderWork;
class SafetyCopies;
class ScriptWork;
class SearchWork;
class SliderPane;
class UpdateOffer;

// Made once by the program, which shows it. Main thread only.
// What happens to it stands in FrameEvents.cpp.
class MainFrame : public QMainWindow, private TitleView {
  public:
    // All of it outlives the frame.
    struct Needs {
        CTvApp& app;
        QtQueue& queue;
        Profile& profile;
    };

    // Reads the site's defaults; the log window stands before that. The splash is left out for a frame
    // that nobody sees start, as in tests.
    MainFrame(const Needs& needs, bool showSplash);
    ~MainFrame() override;

    // Does a command, as its menu item would. One that is disabled is done as well, and tells why it cannot.
    void Command(CommandId id) { m_commands.Run(id); }
    // Opens a document through the normal open operation. False, reported, if that fails.
    bool OpenDocumentFile(const std::string& path);

    // Puts unsaved changes in safety at once: the program is being ended from outside.
    void SaveAside();
    // The user has closed the frame, or the program cannot go on.
    bool IsClosed() const { return m_isClosed; }
    bool HasFailed() const { return m_failure != 0; }
    int ExitStatusOfFailure() const { return m_failure; }

    Workspace& Work() { return *m_work; }
    const FrameWindows& Windows() const { return *m_windows; }
    CommandActions& Commands() { return m_commands; }
    CStatusBox& StatusBox() { return *m_statusBox; }
    OperatorToolBar& OperatorBar();
    DeskPane& Desk() { return *m_desk; }
    SliderPane& Sliders() { return *m_sliders; }
    CSliderDesk& SliderDesk() { return *m_sliderDesk; }
    LiveWork& Live() { return *m_live; }
    SearchWork& Search() { return *m_search; }
    Actions& ActionDispatch();

    // What floats over the frame comes up with it.
    void setVisible(bool visible) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    // What the application tells of the document.
    void ShowShaderType(const std::string& type) override;
    void ShowTitle(const std::string& title) override;

    // Making the frame, in this order.
    void TakePlace();
    void CreateClientArea();
    void CreateBars();
    void CreatePictures();
    void CreateWork();
    void CreateEscapeKey();
    void CreateWindows();
    void AddCommands();
    void StartIdleWork(std::unique_ptr<Splash> splash);

    // Whether the commands of the current directory's site file may be run; No unless the user says
    // otherwise.
    void AskAboutCommands();
    // What a widget of the form sends.
    void Dispatch(const FormAction& action);
    void OnChange(const Change& change);
    void LibraryChanged();
    void SetLocked(bool locked);
    void OnIdle();
    void Fail(const std::string& text, int status);
    bool MayClose();
    QRect ViewsOnScreen() const;

    Site& GetSite() { return m_app.GetSite(); }

    static constexpr const char* kPlaceName = "MainWindow";  // in the profile

    // Routes the core's reports: the log to its window, alerts to the next idle pass.
    class Sink;

    // What is below goes before what it stands on. The toolkit destroys what are plain pointers here, after
    // all the rest.
    CTvApp& m_app;
    QtQueue& m_queue;
    Profile& m_profile;
    IdleDriver m_idle;
    EditKeys m_editKeys;
    NormalPlace m_normalPlace{*this};
    CommandActions m_commands;
    RecentFiles m_recentFiles;
    RecentFilesMenu m_recentFilesMenu;
    LogWindow* m_log;
    std::unique_ptr<Sink> m_sink;
    std::unique_ptr<Workspace> m_work;
    CStatusBox* m_statusBox = nullptr;
    std::unique_ptr<CSliderDesk> m_sliderDesk;
    std::unique_ptr<QSplitter> m_splitter;  // what is in it works on the document
    SliderPane* m_sliders = nullptr;
    DeskPane* m_desk = nullptr;
    std::unique_ptr<PictureLink> m_pictures;
    std::unique_ptr<PictureWork> m_pictureWork;
    std::unique_ptr<LiveWork> m_live;
    std::unique_ptr<SafetyCopies> m_safetyCopies;
    std::unique_ptr<RenderWork> m_renders;
    std::unique_ptr<KeepWork> m_keeps;
    std::unique_ptr<DocumentWork> m_documents;
    std::unique_ptr<OperatorWork> m_operators;
    std::unique_ptr<OptionWork> m_options;
    std::unique_ptr<DeskWork> m_deskWork;
    std::unique_ptr<SearchWork> m_search;
    std::unique_ptr<EscapeKey> m_escapeKey;
    std::unique_ptr<ProbeWork> m_probeWork;
    std::unique_ptr<FrameWindows> m_windows;
    std::unique_ptr<ScriptWork> m_scripts;
    std::unique_ptr<UpdateOffer> m_updateOffer;
    std::unique_ptr<IdleWork> m_idleWork;
    Edits::Subscription m_changes;
    bool m_locked = false;
    bool m_hasBeenShown = false;
    bool m_isClosed = false;
    int m_failure = 0;  // exit status where it was closed because the program could not go on
};

}  // namespace tavrin
