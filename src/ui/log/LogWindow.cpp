// SPDX-License-Identifier: Apache-2.0
#include "ui/log/LogWindow.h"

#include <QAction>
#include <QApplication>
#include <QMenuBar>
#include <QToolBar>
#include <QVBoxLayout>

#include "base/ReplaceFile.h"
#include "icons/Icons.h"
#include "ui/base/Text.h"
#include "ui/dialogs/FileDialogs.h"
#include "ui/dialogs/Messages.h"
#include "ui/log/LogEdit.h"

namespace tavrin {

namespace {

constexpr const char* kWrapSetting = "Log.wordwrap";
constexpr const char* kEditableSetting = "Log.editable";

// Pieces come in bursts: the first waits this long, in milliseconds, for those behind it.
constexpr int kGatherTime = 10;
// How long text is brought in before other events have their turn, in milliseconds, and how much is at once.
constexpr int kSliceTime = 8;
constexpr size_t kStepBytes = 32 * 1024;
// A flood of bells beeps this often, in milliseconds.
constexpr int kBeepInterval = 300;

// The size at first, in characters.
constexpr int kColumns = 100;
constexpr int kRows = 30;

}  // namespace

LogWindow::LogWindow(QWidget* frame, Profile& profile, LogOptions options)
    : ToolWindow("Log [F8]", frame),
      m_profile(profile),
      m_options(std::move(options)),
      m_buffer(static_cast<size_t>(m_options.textLimit)),
      m_edit(new LogEdit(this, m_options.textLimit)) {
    if (!m_options.beep) m_options.beep = QApplication::beep;
    setWindowIcon(ApplicationIcon());
    m_slices.setSingleShot(true);
    connect(&m_slices, &QTimer::timeout, this, [this] { ApplySlice(); });
    MakeCommands();
    MakeSwitches();
    LayOut();
    OfferContextMenu();
    const auto update = [this] { UpdateCommands(); };
    connect(m_edit, &QPlainTextEdit::selectionChanged, this, update);
    connect(m_edit, &QPlainTextEdit::textChanged, this, update);
    UpdateCommands();
}

QAction* LogWindow::Add(LogCommand command, const QString& caption, const QString& icon, const QString& tip,
                        const QKeySequence& key) {
    auto* action = new QAction(Icon(icon), caption, this);
    action->setShortcut(key);
    action->setToolTip(key.isEmpty() ? tip : tip + " (" + key.toString(QKeySequence::NativeText) + ")");
    addAction(action);
    return m_commands[command] = action;
}

void LogWindow::MakeCommands() {
    const auto run = [this](QAction* action, auto work) { connect(action, &QAction::triggered, this, work); };
    const auto whenEditable = [this](auto edit) {
        return [this, edit] {
            if (m_editable) edit();
        };
    };
    const auto clear = [this] { Clear(); };
    run(Add(LogCommand::kSave, "&Save", "log-save", "Save the log to a file"), [this] { Save(); });
    run(Add(LogCommand::kCopy, "&Copy", "log-copy", "Copy the selection", Qt::CTRL | Qt::Key_C),
        [this] { m_edit->copy(); });
    run(Add(LogCommand::kClear, "C&lear", "log-clear", "Clear the log"), clear);
    run(Add(LogCommand::kClearLog, "C&lear Log", "log-clear", "Clear the log", Qt::CTRL | Qt::Key_Delete),
        clear);
    run(Add(LogCommand::kCut, "Cu&t", "cut", "Cut the selection", Qt::CTRL | Qt::Key_X),
        whenEditable([this] { m_edit->cut(); }));
    run(Add(LogCommand::kPaste, "&Paste", "paste", "Paste at the caret", Qt::CTRL | Qt::Key_V),
        whenEditable([this] { m_edit->paste(); }));
    run(Add(LogCommand::kDelete, "&Delete", "delete", "Delete the selection", Qt::Key_Delete),
        whenEditable([this] { m_edit->DeleteSelection(); }));
}

// What is set here comes from the profile; what the user switches goes there at once.
void LogWindow::MakeSwitches() {
    const auto addSwitch = [this](QAction* action, const char* setting, auto set) {
        const bool on = m_profile.GetInt(setting, 0) != 0;
        action->setCheckable(true);
        action->setIconVisibleInMenu(false);  // it would stand where the check mark belongs
        action->setChecked(on);
        set(on);
        connect(action, &QAction::toggled, this, [this, setting, set](bool now) {
            set(now);
            m_profile.SetInt(setting, now ? 1 : 0);
        });
    };
    addSwitch(Add(LogCommand::kWrap, "&Wrap", "log-wrap", "Wrap long lines"), kWrapSetting,
              [this](bool on) { m_edit->SetWordWrap(on); });
    addSwitch(Add(LogCommand::kEditable, "&Editable", "log-editable", "Let the text be edited"),
              kEditableSetting, [this](bool on) { SetEditable(on); });
}

void LogWindow::LayOut() {
    auto* menus = new QMenuBar(this);
    menus->addMenu("&File")->addAction(Command(LogCommand::kSave));
    QMenu* edit = menus->addMenu("&Edit");
    for (const auto command :
         {LogCommand::kCut, LogCommand::kCopy, LogCommand::kPaste, LogCommand::kDelete}) {
        edit->addAction(Command(command));
    }
    edit->addSeparator();
    edit->addAction(Command(LogCommand::kClear));
    QMenu* view = menus->addMenu("&View");
    view->addAction(Command(LogCommand::kWrap));
    view->addAction(Command(LogCommand::kEditable));

    auto* bar = new QToolBar(this);
    for (const auto command : {LogCommand::kSave, LogCommand::kCopy, LogCommand::kClear, LogCommand::kWrap,
                               LogCommand::kEditable}) {
        bar->addAction(Command(command));
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->setMenuBar(menus);
    layout->addWidget(bar);
    layout->addWidget(m_edit);
    const QFontMetrics letters(m_edit->font());
    resize(letters.horizontalAdvance('m') * kColumns,
           letters.lineSpacing() * kRows + menus->sizeHint().height() + bar->sizeHint().height());
}

void LogWindow::OfferContextMenu() {
    m_edit->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const auto command :
         {LogCommand::kCut, LogCommand::kCopy, LogCommand::kPaste, LogCommand::kDelete}) {
        m_edit->addAction(Command(command));
    }
    auto* separator = new QAction(m_edit);
    separator->setSeparator(true);
    m_edit->addAction(separator);
    m_edit->addAction(Command(LogCommand::kClearLog));
    setFocusProxy(m_edit);
}

void LogWindow::UpdateCommands() {
    const bool hasText = !IsEmpty();
    Command(LogCommand::kSave)->setEnabled(hasText);
    Command(LogCommand::kClear)->setEnabled(hasText);
    Command(LogCommand::kCopy)->setEnabled(m_edit->textCursor().hasSelection());
    for (const auto command : {LogCommand::kCut, LogCommand::kPaste, LogCommand::kDelete}) {
        Command(command)->setEnabled(m_editable);
    }
}

void LogWindow::SetEditable(bool editable) {
    m_editable = editable;
    m_edit->SetEditable(editable);
    UpdateCommands();
}

void LogWindow::Append(std::string_view bytes) {
    m_buffer.Append(bytes);
    if (m_buffer.TakeBell() && (!m_sinceBeep.isValid() || m_sinceBeep.elapsed() >= kBeepInterval)) {
        m_sinceBeep.start();
        m_options.beep();
    }
    if (m_buffer.HasStep() && !m_slices.isActive()) m_slices.start(kGatherTime);
    if (Command(LogCommand::kSave)->isEnabled() == IsEmpty()) UpdateCommands();
}

void LogWindow::ApplySlice() {
    QElapsedTimer clock;
    clock.start();
    while (m_buffer.HasStep() && clock.elapsed() < kSliceTime) m_edit->Apply(m_buffer.Take(kStepBytes));
    if (m_buffer.HasStep()) m_slices.start(0);
}

void LogWindow::Flush() {
    while (m_buffer.HasStep()) m_edit->Apply(m_buffer.Take(kStepBytes));
    m_slices.stop();
}

void LogWindow::Clear() {
    m_buffer.Clear();
    m_slices.stop();
    m_edit->clear();
    UpdateCommands();
}

QString LogWindow::Text() {
    Flush();
    return m_edit->Text();
}

bool LogWindow::IsEmpty() const {
    if (m_buffer.HasText()) return false;
    if (m_buffer.ErasesText()) return true;
    return m_buffer.ErasesLastLine() ? !m_edit->HasLineEnd() : !m_edit->HasText();
}

void LogWindow::Save() {
    FileDialogRequest request;
    request.title = "Save Log";
    request.filters = QStringList{"*.txt"};
    request.extension = "txt";
    const auto chosen = AskFileToSave(this, request);
    if (!chosen) return;
    std::string error;
    if (!ReplaceFile(chosen->path, Bytes(Text()), error)) {
        ShowStop(this, "Error", "unable to write to " + Shown(chosen->path));
    }
}

}  // namespace tavrin
