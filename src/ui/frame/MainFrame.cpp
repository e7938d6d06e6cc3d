#include "ui/frame/MainFrame.h"

#include <QCoreApplication>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "ui/Messages.h"
#include "ui/QtQueue.h"
#include "ui/TableWindow.h"
#include "ui/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/SafetyCopies.h"
#include "ui/frame/Splash.h"
#include "ui/frame/StatusBox.h"
#include "ui/icons/Icons.h"
#include "ui/library/BoxFinder.h"
#include "ui/library/MenuFinder.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/log/LogWindow.h"
#include "ui/render/ExportDlg.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/sliders/HelpEditor.h"
#include "ui/sliders/SliderPane.h"

namespace tavrin {

namespace {

constexpr QSize kFirstSize(1280, 860);  // of a frame that was never placed
constexpr QSize kWindowBorder(16, 48);  // room for what the window manager draws round it
constexpr int kToolIcon = 20;           // pixels a side

QStringList ArgumentRow(const COpButton& button, const NameSource& names) {
    return {Shown(button.VariableName(names)), button.arg != 0 ? "yes" : "no", Shown(button.argname),
            Shown(button.comments)};
}

}  // namespace

class MainFrame::Sink : public ReportSink {
  public:
    explicit Sink(MainFrame& frame) : m_frame(frame) {}
    void OnAlert(const std::string&, const std::string&) override { m_frame.m_idle.Request(); }
    void OnLog(std::string_view text) override { m_frame.m_windows.log->Append(text); }

  private:
    MainFrame& m_frame;
};

MainFrame::MainFrame(const Ground& ground, bool showSplash)
    : m_app(ground.app),
      m_queue(ground.queue),
      m_profile(ground.profile),
      m_idle([this] { OnIdle(); }),
      m_sink(std::make_unique<Sink>(*this)),
      m_dispatch(*this, GetSite().commands, GetSite().report),
      m_recentFiles(ground.profile),
      m_recentFilesMenu(m_recentFiles, [this](const std::string& path) { return OpenDocumentFile(path); }) {
    setObjectName("MainFrame");
    setContextMenuPolicy(Qt::NoContextMenu);  // else bars could be hidden there, to be found again nowhere
    setWindowIcon(ApplicationIcon());
    resize(kFirstSize.boundedTo(screen()->availableSize() - kWindowBorder));
    WindowPlaces(m_profile).RestoreWindow(*this, kPlaceName, {true, false});
    m_normalPlace.Note();
    if (showSplash) m_splash = std::make_unique<Splash>(this, m_app.ProductVersion());
    m_windows.log = new LogWindow(this, m_profile);
    GetSite().report.SetSink(m_sink.get());
    m_app.LoadSiteDefaults();
    m_work = std::make_unique<Workspace>(m_app, DocumentCommands::Announce::kYes);

    CreateWindows();
    CreateBars();
    CreateClientArea();
    CreateMenus();
    RetitleCommands();
    m_app.SetTitleView(this);

    m_queue.OnRan([this] { m_idle.Request(); });
    m_safetyCopies = std::make_unique<SafetyCopies>(*m_work);
    m_idleWork = std::make_unique<IdleWork>(
        m_app, *this, std::move(m_splash),
        IdleWork::Callbacks{.quit =
                                [this] {
                                    m_failure = EXIT_FAILURE;
                                    close();
                                },
                            .started =
                                [this] {
                                    const auto settle = [this] { return m_documents->SettleChanges(); };
                                    m_safetyCopies->OfferLeftovers(*this, settle);
                                }});
    m_changes = m_work->document.edits.Observe([this](const Change& change) { OnChange(change); });
    m_work->commands.StartUntitled();
    setAcceptDrops(true);
    // The splash goes after its time even if nothing happens meanwhile; not a moment too early to count.
    QTimer::singleShot(Splash::kTime + 1, Qt::PreciseTimer, this, [this] { m_idle.Request(); });
}

MainFrame::~MainFrame() {
    m_queue.OnRan({});
    m_app.SetTitleView(nullptr);
    // The document goes before the windows that its desk speaks to, children before the queue they post to.
    m_renders.reset();
    m_safetyCopies.reset();
    delete m_splitter;
    m_work.reset();
    GetSite().report.SetSink(nullptr);
}

void MainFrame::CreateWindows() {
    m_windows.renderOptions = new TableWindow("Render Options [F2]", this, {"Option", "Value"}, [this] {
        TableWindow::Rows rows;
        for (const auto& [name, value] : m_work->document.m_renderOptions)
            rows.push_back({Shown(name), Shown(value)});
        return rows;
    });
    m_windows.argumentEditor = new TableWindow(
        "Argument Editor [F5]", this, {"Input", "Argument", "Name", "Comment"}, [this] {
            TableWindow::Rows rows;
            for (const COpButton* button : m_work->document.CollectUnconnectedInputs()) {
                rows.push_back(ArgumentRow(*button, {m_work->document.preparedVariables}));
            }
            return rows;
        });
    const auto document = [this] { return &m_work->document; };
    m_windows.helpEditor = new CHelpEditor(this, document);
    m_windows.boxFinder =
        new BoxFinder(this, {.centreOnBox = [this](const std::string& name) { m_desk->CentreOnBox(name); },
                             .repaintDesk = [this] { m_desk->Repaint(); }});
    m_windows.menuFinder =
        new MenuFinder(this, m_app.Registry(), [this](uint32_t id) { AddOperatorById(id); });
    m_windows.renderHistory = new CRenderHistoryDlg(
        this, [this]() -> const std::deque<std::string>& { return m_work->session.History().Entries(); },
        [this](const std::string& name, int number) { m_documents->OpenHistoryEntry(name, number); });
    m_windows.exportDialog = new CExportDlg(
        this, {.document = document,
               .defaults = [this]() -> const CExportOptions& { return m_app.ExportDefaults(); },
               .updateExportPaths = [this] { UpdateExportPaths(m_work->document, GetSite()); }});
    for (ToolWindow* window : m_windows.All()) window->OnShownOrHidden([this] { m_idle.Request(); });
}

void MainFrame::CreateBars() {
    ConnectDocumentCommands();
    ConnectDeskCommands();
    ConnectRenderCommands();
    ConnectWindowCommands();
    ConnectOptions();
    m_actions = std::make_unique<CommandActions>(*this, [this](CommandId id) { Command(id); });
    auto* tools = addToolBar("Main Toolbar");
    tools->setObjectName("MainToolBar");
    tools->setIconSize({kToolIcon, kToolIcon});
    tools->setMovable(false);
    m_actions->Fill(*tools, ToolBarLayout());
    addToolBarBreak();
    m_operatorBar = new OperatorToolBar(
        this, m_app.Registry(),
        {.shaderTypeChosen =
             [this](const std::string& type) { m_app.SetVariable(kShaderTypeOption, type, true); },
         .focusDesk = [this] { m_desk->setFocus(); },
         .render = [this] { Command(CommandId::kRenderIt); },
         .customize = [this] { Command(CommandId::kCustomize); },
         .addOperator = [this](uint32_t id) { AddOperatorById(id); },
         .logLine = [this](const std::string& line) { GetSite().report.LogLine("%s", line.c_str()); },
         .showStatus = [this](const std::string& text) { m_statusBox->SetStatus(text); }});
    m_operatorBar->setObjectName("OperatorToolBar");
    m_operatorBar->setMovable(false);
    addToolBar(m_operatorBar);
    m_operatorBar->SetShaderTypes(m_app.ShaderTypes());
    statusBar();

    int shown = 1;
    GetSite().settings.GetSettingInt("desk.statusbar", shown);
    m_showStatus = shown != 0;
    std::string imageDir;
    GetSite().settings.GetSettingToken("imagebrowser_dir", imageDir);
    m_imageBrowserDir = GetSite().LibraryPath(imageDir);
    float ground[3] = {0.76F, 0.76F, 0.76F};
    GetSite().settings.GetSettingRgb("status.backgroundcolor", ground);
    m_statusBox = new CStatusBox(this, ground);
    m_statusBox->setVisible(m_showStatus);
    m_renders = std::make_unique<RenderWork>(*this, *m_work, *m_statusBox,
                                             [this] { m_windows.renderHistory->Refresh(); });
    m_documents = std::make_unique<DocumentWork>(
        *this, *m_work, *m_renders, m_recentFiles,
        DocumentWork::Callbacks{.workIsSafe = [this] { m_safetyCopies->Discard(); },
                                .slidersFrozen = [this] { return m_sliders->IsFrozen(); },
                                .freezeSliders = [this] { m_sliders->SetFrozen(true); }});
}

void MainFrame::CreateClientArea() {
    m_splitter = new QSplitter(Qt::Horizontal, this);
    m_splitter->setChildrenCollapsible(false);
    m_sliders = new SliderPane(m_splitter);
    m_sliderColumnWidth = m_sliders->ColumnWidth();
    m_sliders->setFixedWidth(m_sliderColumnWidth);
    m_desk = new DeskPane(m_splitter, m_work->document, m_work->desk, GetSite(),
                          {.highlightedBox = [this] { return m_windows.boxFinder->CurrentName(); },
                           .showStatus = [this](const std::string& text) { m_statusBox->SetStatus(text); },
                           .fail =
                               [this](const std::string& text, int status) {
                                   if (HasFailed()) return;
                                   m_failure = status;
                                   std::fprintf(stderr, "tavrin: %s\n", text.c_str());
                                   ShowStop(this, "Fatal Error", Shown(text));
                                   m_isClosed = true;
                                   QCoreApplication::quit();
                               },
                           .editFile = [this](const std::string& name) { m_app.EditOperator(name); }});
    m_splitter->setStretchFactor(1, 1);
    auto* central = new QWidget(this);
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_splitter, 1);
    column->addWidget(m_statusBox);
    setCentralWidget(central);
    m_desk->setFocus();
    m_desk->SetScrollBarsShown(m_profile.GetInt(kScrollBarsKey, 1) != 0);
}

void MainFrame::CreateMenus() {
    for (const MenuSpec& spec : MenuBarLayout()) {
        QMenu* menu = menuBar()->addMenu(spec.title);
        menu->setToolTipsVisible(false);
        m_actions->Fill(*menu, spec.slots, [this](QMenu& files) { m_recentFilesMenu.AddTo(files); });
        connect(menu, &QMenu::aboutToShow, this, [this] { m_actions->Update(State()); });
    }
    m_operatorMenus = std::make_unique<OperatorMenuBar>(*menuBar(), m_app.Registry(),
                                                        [this](uint32_t id) { AddOperatorById(id); });
    RebuildOperatorMenus();
}

// The extensions are those of the library at hand, and of this moment.
void MainFrame::RetitleCommands() {
    const Site& site = GetSite();
    const auto retitle = [this](CommandId id, const std::string& extension) {
        QString text = SpecOf(id).text;
        m_actions->SetText(id, text.replace("()", "(" + Shown(extension) + ")"));
    };
    retitle(CommandId::kExportShaderSource, site.extShaderSource);
    retitle(CommandId::kExportCompiledShader, site.extCompiledShader);
    retitle(CommandId::kExportRenderInterface, site.extRenderIface);
    retitle(CommandId::kExportShaderInterface, site.extShaderIface);
    retitle(CommandId::kViewShaderSource, site.extShaderSource);
    retitle(CommandId::kViewRenderInterface, site.extRenderIface);
    retitle(CommandId::kViewShaderInterface, site.extShaderIface);
}

void MainFrame::DocumentReplaced() {
    RebuildOperatorMenus();
    m_operatorBar->RebuildButtons(m_work->document.toolbar);
    m_windows.helpEditor->DocumentReplaced();
}

void MainFrame::ShowShaderType(const std::string& type) { m_operatorBar->ShowShaderType(type); }

void MainFrame::ShowTitle(const std::string& title) {
    // "[*]" is where the toolkit puts the mark of a modified document.
    setWindowTitle(Shown(title).replace("[*]", "[*][*]") + "[*]");
    setWindowModified(m_work->document.IsModified());
    m_windows.exportDialog->Refresh();
    m_windows.RefreshTables();
}

}  // namespace tavrin
