// The one top-level window: it holds the views and bars, and does the commands.
#pragma once

#include <QMainWindow>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "app/Actions.h"
#include "app/RecentFiles.h"
#include "app/TvApp.h"
#include "app/Workspace.h"
#include "ui/NormalPlace.h"
#include "ui/frame/CommandActions.h"
#include "ui/frame/DocumentWork.h"
#include "ui/frame/EditKeys.h"
#include "ui/frame/FrameWindows.h"
#include "ui/frame/IdleDriver.h"
#include "ui/frame/IdleWork.h"
#include "ui/frame/RecentFilesMenu.h"
#include "ui/frame/RenderWork.h"
#include "ui/library/OperatorMenuBar.h"

class QSplitter;

namespace tavrin {

class CStatusBox;
class DeskPane;
class OperatorToolBar;
class Profile;
class QtQueue;
class Recovery;
class SafetyCopies;
class SliderPane;

// Made once by the program, which shows it. Main thread only.
class MainFrame : public QMainWindow, private ActionTarget, private TitleView {
  public:
    // What the frame's windows and the document stand on. All of it outlives the frame.
    struct Ground {
        CTvApp& app;
        QtQueue& queue;
        Profile& profile;
    };

    // Reads the site's defaults; the log window stands before that. The splash is left out for a frame
    // that nobody sees start, as in tests.
    MainFrame(const Ground& ground, bool showSplash);
    ~MainFrame() override;

    // Does a command, as its menu item would. One that is disabled is done as well, and tells why it cannot.
    void Command(CommandId id) override;
    // Opens a document through the normal open operation. False, reported, if that fails.
    bool OpenDocumentFile(const std::string& path);

    // Puts unsaved changes in safety at once: the program is being ended from outside.
    void SaveAside();
    // The user has closed the frame, or the program cannot go on.
    bool IsClosed() const { return m_isClosed; }
    bool HasFailed() const { return m_failure != 0; }
    int ExitStatusOfFailure() const { return m_failure; }

    Workspace& Work() { return *m_work; }
    const FrameWindows& Windows() const { return m_windows; }
    CommandActions& Commands() { return *m_actions; }
    CStatusBox& StatusBox() { return *m_statusBox; }
    OperatorToolBar& OperatorBar() { return *m_operatorBar; }
    DeskPane& Desk() { return *m_desk; }
    Actions& ActionDispatch() { return m_dispatch; }
    FrameState State() const;

    // What floats over the frame comes up with it.
    void setVisible(bool visible) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    // What actions ask.
    void Close() override { close(); }
    void HideRenderOptions() override;
    void OpenDocument(const std::string& path) override { OpenDocumentFile(path); }
    void LoadFormDefaults() override;
    bool PumpMessages(std::chrono::milliseconds wait) override;


    // What the application tells of the document.
    void ShowShaderType(const std::string& type) override;
    void ShowTitle(const std::string& title) override;

    // Making the frame, in this order.
    void CreateWindows();
    void CreateBars();
    void CreateClientArea();
    void CreateMenus();
    void RetitleCommands();

    void ReloadOperators();
    void RebuildOperatorMenus();
    void AddOperatorById(uint32_t id);
    void CustomizeToolBar();
    void SetWallpaper();
    void OpenDocumentation();
    void RunScript();
    void ToggleDocumentFlag(void (DocumentCommands::*toggle)());

    // Say what the commands do.
    void ConnectDocumentCommands();
    void ConnectDeskCommands();
    void ConnectRenderCommands();
    void ConnectWindowCommands();
    void ConnectOptions();

    void OnChange(const Change& change);
    void DocumentReplaced();
    void SetLocked(bool locked);
    void OnIdle();
    QString DeskHint() const;
    void DropStaleHelp();
    bool MayClose();
    QRect ViewsOnScreen() const;

    Site& GetSite() { return m_app.GetSite(); }

    // In the profile.
    static constexpr const char* kPlaceName = "MainWindow";
    static constexpr const char* kScrollBarsKey = "OpDesk.scrollbars";

    // Routes the core's reports: the log to its window, alerts to the next idle pass.
    class Sink;

    CTvApp& m_app;
    QtQueue& m_queue;
    Profile& m_profile;
    IdleDriver m_idle;
    EditKeys m_editKeys;
    NormalPlace m_normalPlace{*this};
    FrameWindows m_windows;
    std::unique_ptr<Sink> m_sink;
    std::unique_ptr<Splash> m_splash;
    std::unique_ptr<Workspace> m_work;
    Actions m_dispatch;
    RecentFiles m_recentFiles;
    RecentFilesMenu m_recentFilesMenu;
    std::map<CommandId, std::function<void()>> m_handlers;
    std::unique_ptr<CommandActions> m_actions;
    std::unique_ptr<OperatorMenuBar> m_operatorMenus;
    std::unique_ptr<DocumentWork> m_documents;
    std::unique_ptr<RenderWork> m_renders;
    std::unique_ptr<IdleWork> m_idleWork;
    std::unique_ptr<SafetyCopies> m_safetyCopies;
    QSplitter* m_splitter = nullptr;
    SliderPane* m_sliders = nullptr;
    DeskPane* m_desk = nullptr;
    Edits::Subscription m_changes;
    CStatusBox* m_statusBox = nullptr;
    OperatorToolBar* m_operatorBar = nullptr;
    std::string m_imageBrowserDir;  // where Set Wallpaper starts
    int m_sliderColumnWidth = 0;    // pixels
    bool m_showStatus = true;
    bool m_showSliderDesk = true;
    bool m_locked = false;
    bool m_hasBeenShown = false;
    bool m_isClosed = false;
    int m_failure = 0;  // exit status where it was closed because the program could not go on
};

}  // namespace tavrin
