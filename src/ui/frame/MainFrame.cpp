// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/MainFrame.h"

#include <QApplication>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <cstdlib>

#include "document/EditHistory.h"
#include "forms/FormWidget.h"
#include "icons/Icons.h"
#include "ui/base/QtQueue.h"
#include "ui/commands/DeskWork.h"
#include "ui/commands/DocumentWork.h"
#include "ui/commands/EscapeKey.h"
#include "ui/commands/FlowWork.h"
#include "ui/commands/FrameCommands.h"
#include "ui/commands/HelpWork.h"
#include "ui/commands/KeepWork.h"
#include "ui/commands/LiveWork.h"
#include "ui/commands/OperatorWork.h"
#include "ui/commands/OptionWork.h"
#include "ui/commands/PictureWork.h"
#include "ui/commands/ProbeWork.h"
#include "ui/commands/RenderWork.h"
#include "ui/commands/ScriptWork.h"
#include "ui/commands/SearchWork.h"
#include "ui/commands/SliderWork.h"
#include "ui/commands/UpdateOffer.h"
#include "ui/desk/DeskPane.h"
#include "ui/desk/WelcomeHint.h"
#include "ui/frame/SafetyCopies.h"
#include "ui/frame/Splash.h"
#include "ui/frame/StatusBox.h"
#include "ui/library/BoxFinder.h"
#include "ui/log/LogWindow.h"
#include "ui/render/CompareWindow.h"
#include "ui/render/PictureLink.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/sliders/SliderPane.h"

namespace tavrin {

namespace {

constexpr QSize kFirstSize(1320, 860);  // of a frame that was never placed
constexpr QSize kWindowBorder(16, 48);  // room for what the window manager draws round it
constexpr int kToolIcon = 20;           // pixels a side
constexpr int kTimeToRead = 10;         // seconds, of a warning

CStatusBox* MakeStatusBox(QWidget* frame, Site& site) {
    float background[3] = {0.76F, 0.76F, 0.76F};
    site.settings.GetSettingRgb("status.backgroundcolor", background);
    return new CStatusBox(frame, background);
}

}  // namespace

class MainFrame::Sink : public ReportSink {
  public:
    Sink(Report& report, LogWindow& log, IdleDriver& idle) : m_report(report), m_log(log), m_idle(idle) {
        m_report.SetSink(this);
    }
    ~Sink() override { m_report.SetSink(nullptr); }
    void OnAlert(const std::string&, const std::string&) override { m_idle.Request(); }
    void OnLog(std::string_view text) override {
        m_log.Append(text);
        if (m_marks != nullptr) m_marks->Hear(text);
    }
    // Hears the log from now on; null for nobody.
    void SetMarks(BoxMarks* marks) { m_marks = marks; }

  private:
    Report& m_report;
    LogWindow& m_log;
    IdleDriver& m_idle;
    BoxMarks* m_marks = nullptr;
};

MainFrame::MainFrame(const Needs& needs, bool showSplash)
    : m_app(needs.app),
      m_queue(needs.queue),
      m_profile(needs.profile),
      m_idle([this] { OnIdle(); }),
      m_commands(*this, [this] { m_idle.Request(); }),
      m_recentFiles(needs.profile),
      m_recentFilesMenu(m_recentFiles, [this](const std::string& path) { return OpenDocumentFile(path); }),
      m_log(new LogWindow(this, needs.profile)),
      m_sink(std::make_unique<Sink>(GetSite().report, *m_log, m_idle)) {
    TakePlace();
    auto splash = showSplash ? std::make_unique<Splash>(this, m_app.ProductVersion()) : nullptr;
    m_app.LoadSiteDefaults(LocalCommandsRule::kAsk);
    m_work = std::make_unique<Workspace>(m_app, DocumentCommands::Announce::kYes);
    m_work->document.KeepHistory();
    m_sink->SetMarks(&m_work->session.marks);
    CreateClientArea();
    CreateBars();
    CreatePictures();
    CreateWork();
    CreateWindows();
    AddCommands();
    m_app.SetTitleView(this);
    m_queue.OnRan([this] { m_idle.Request(); });
    StartIdleWork(std::move(splash));
    m_changes = m_work->document.edits.Observe([this](const Change& change) { OnChange(change); });
    m_work->commands.StartUntitled();
    setAcceptDrops(true);
    // Who comes back may have edited an operator elsewhere.
    connect(qApp, &QApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) m_updateOffer->LookAtFiles();
        m_idle.Request();
    });
    // Who comes to another field does something else from there on.
    connect(qApp, &QApplication::focusChanged, this, [this] { m_work->document.History()->EndRun(); });
}

MainFrame::~MainFrame() {
    m_sink->SetMarks(nullptr);
    disconnect(qApp, nullptr, this, nullptr);  // windows that go move the focus
    m_queue.OnRan({});
    m_app.SetTitleView(nullptr);
}

void MainFrame::TakePlace() {
    setObjectName("MainFrame");
    setContextMenuPolicy(Qt::NoContextMenu);  // else bars could be hidden there, to be found again nowhere
    setWindowIcon(ApplicationIcon());
    resize(kFirstSize.boundedTo(screen()->availableSize() - kWindowBorder));
    WindowPlaces(m_profile).RestoreWindow(*this, kPlaceName, {true, false});
    m_normalPlace.Note();
}

void MainFrame::CreateClientArea() {
    m_statusBox = MakeStatusBox(this, GetSite());
    m_splitter = std::make_unique<QSplitter>(Qt::Horizontal, this);
    m_splitter->setChildrenCollapsible(false);
    m_sliderDesk = std::make_unique<CSliderDesk>(m_work->document);
    m_sliders = new SliderPane(m_splitter.get(), *m_sliderDesk,
                               {m_work->document, GetSite(), [this](const std::string& text, int seconds) {
                                    m_statusBox->SetStatus(text, seconds);
                                }});
    m_desk = new DeskPane(
        m_splitter.get(), m_work->document, m_work->desk, GetSite(),
        {.highlightedBox = [this] { return m_windows->Get<BoxFinder>().CurrentName(); },
         .showStatus = [this](const std::string& text) { m_statusBox->SetStatus(text); },
         .fail = [this](const std::string& text, int status) { Fail(text, status); },
         .editFile = [this](const std::string& name) { m_app.EditOperator(name); },
         .shownOutput = [this] { return m_work->probe.Output(); },
         .toggleShown = [this](COpButton& output) { m_work->probe.Toggle(output); },
         .search = [this](const QString& begun) { return m_search->OpenByKey(begun); },
         .wireDropped = [this](COpButton& button, DeskPoint at) { return m_search->OpenForWire(button, at); },
         .marks = &m_work->session.marks});
    m_splitter->setStretchFactor(1, 1);
    auto* central = new QWidget(this);
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_splitter.get(), 1);
    column->addWidget(m_statusBox);
    setCentralWidget(central);
    m_desk->setFocus();
}

void MainFrame::CreateBars() {
    for (const MenuSpec& spec : MenuBarLayout()) {
        QMenu* menu = menuBar()->addMenu(spec.title);
        menu->setToolTipsVisible(false);
        m_commands.Fill(*menu, spec.slots, [this](QMenu& files) { m_recentFilesMenu.AddTo(files); });
        connect(menu, &QMenu::aboutToShow, this, [this] { m_commands.Update(); });
    }
    auto* tools = addToolBar("Main Toolbar");
    tools->setObjectName("MainToolBar");
    tools->setIconSize({kToolIcon, kToolIcon});
    tools->setMovable(false);
    m_commands.Fill(*tools, ToolBarLayout());
    statusBar();
}

void MainFrame::CreatePictures() {
    m_pictures = std::make_unique<PictureLink>(
        GetSite(),
        PictureLink::Hands{
            .selectRender = [this](int number) { m_windows->Get<CRenderHistoryDlg>().SelectRender(number); },
            .restoreRender = [this](int number) { PictureWork::Restore(number, *m_work, *m_documents); },
            .keepRender = [this](int number) { m_keeps->Keep(number); },
            .liveShown = [this](uint64_t id) { m_live->afterShown.Tell(id); },
            .cameOrWent = [this] { m_idle.Request(); }});
    m_pictureWork = std::make_unique<PictureWork>(PictureWork::Needs{*this, *m_work, *m_pictures});
    m_live = std::make_unique<LiveWork>(
        LiveWork::Needs{*m_work, *m_statusBox, *m_pictures, [this] { m_idle.Request(); }});
}

void MainFrame::CreateWork() {
    m_safetyCopies = std::make_unique<SafetyCopies>(*m_work, m_queue, [this](const std::string& failure) {
        m_statusBox->SetStatus("WARNING: " + failure, kTimeToRead);
    });
    m_renders = std::make_unique<RenderWork>(RenderWork::Needs{
        *this, *m_work, *m_statusBox, [this] { m_windows->Tell(&ToolWindow::HistoryChanged); }});
    m_keeps = std::make_unique<KeepWork>(
        KeepWork::Needs{*this, *m_work, *m_statusBox,
                        [this] { return m_windows->Get<CRenderHistoryDlg>().CurrentRender(); }});
    m_documents = std::make_unique<DocumentWork>(
        DocumentWork::Needs{*this, *m_work, *m_renders, *m_safetyCopies, *m_sliderDesk, m_recentFiles});
    m_operators = std::make_unique<OperatorWork>(
        OperatorWork::Needs{*this, *m_work, m_commands, *m_desk, *m_statusBox, [this] { LibraryChanged(); },
                            [this] { m_updateOffer->LookAtAll(); }});
    m_options = std::make_unique<OptionWork>(
        OptionWork::Needs{GetSite(), m_profile, *m_desk, *m_sliders, *m_statusBox});
    m_deskWork = std::make_unique<DeskWork>(DeskWork::Needs{*this, *m_work, *m_desk, *m_statusBox});
    m_search = std::make_unique<SearchWork>(SearchWork::Needs{*this, *m_work, *m_desk, m_profile});
    CreateEscapeKey();
    m_probeWork = std::make_unique<ProbeWork>(ProbeWork::Needs{*m_work, *m_desk, [this] {
                                                                   m_escapeKey->Follow();
                                                                   m_idle.Request();
                                                               }});
}

// What is in hand goes before what is only looked at.
void MainFrame::CreateEscapeKey() {
    const COpDesk& desk = m_work->desk;
    Probe& probe = m_work->probe;
    const EscapeKey::Step letGo{[this, &desk] {
                                    return m_work->document.lock == 0 && desk.Rules().escapeWires &&
                                           desk.m_selectedButton != nullptr;
                                },
                                [this] { m_desk->Gestures().LetGo(); }};
    const EscapeKey::Step endProbe{[&probe] { return probe.Output() != nullptr; }, [&probe] { probe.End(); }};
    m_escapeKey = std::make_unique<EscapeKey>(EscapeKey::Needs{
        *this, m_commands.Get(CommandId::kZoomReset), {letGo, endProbe}, [this] { m_idle.Request(); }});
}

void MainFrame::CreateWindows() {
    m_windows = std::make_unique<FrameWindows>(
        WindowNeeds{*this, *m_work, *m_desk, *m_documents, *m_keeps, *m_operators, *m_log,
                    [this](const FormAction& action) { Dispatch(action); },
                    [this](int older, int newer) { m_windows->Get<CompareWindow>().Compare(older, newer); },
                    [this](int first, int second) { m_pictures->CompareRenders(first, second); }},
        m_commands);
    m_windows->OnShownOrHidden([this] { m_idle.Request(); });
    m_scripts = std::make_unique<ScriptWork>(ScriptWork::Needs{
        *this, m_app, m_commands, *m_documents, *m_renders, *m_windows, [this] { return m_isClosed; }});
    m_updateOffer = std::make_unique<UpdateOffer>(UpdateOffer::Needs{
        *this, *m_work, *m_desk, *m_statusBox, [this] { return ActionDispatch().ScriptRunning(); }});
}

void MainFrame::AddCommands() {
    m_documents->AddTo(m_commands);
    m_deskWork->AddTo(m_commands);
    m_search->AddTo(m_commands);
    AddFlowCommands(m_commands, *m_work);
    AddFrameCommands(m_commands, *m_work, *m_desk);
    m_renders->AddTo(m_commands);
    m_live->AddTo(m_commands);
    m_pictureWork->AddTo(m_commands);
    m_keeps->AddTo(m_commands);
    m_scripts->AddTo(m_commands);
    m_operators->AddTo(m_commands);
    m_options->AddTo(m_commands);
    AddSliderCommands(m_commands, *m_sliderDesk);
    AddHelpCommands(m_commands, *this, m_app);
    WelcomeHint::AddTo(*m_desk, *m_work, [this] { m_commands.Run(CommandId::kExamples); });
    m_commands.On(CommandId::kExit, {[this] { close(); }, [this] { return m_scripts->IsQuiet(); }});
}

void MainFrame::StartIdleWork(std::unique_ptr<Splash> splash) {
    const auto quit = [this] {
        m_failure = EXIT_FAILURE;
        close();
    };
    const auto started = [this] {
        AskAboutCommands();
        const auto settle = [this] { return m_documents->SettleChanges(); };
        m_safetyCopies->OfferLeftovers(*this, settle);
    };
    m_idleWork = std::make_unique<IdleWork>(m_app, *this, std::move(splash), IdleWork::Needs{quit, started});
    // The splash goes after its time even if nothing happens meanwhile; not a moment too early to count.
    QTimer::singleShot(Splash::kTime + 1, Qt::PreciseTimer, this, [this] { m_idle.Request(); });
}

}  // namespace tavrin
