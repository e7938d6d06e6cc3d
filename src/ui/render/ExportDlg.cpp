// SPDX-License-Identifier: Apache-2.0
#include "ui/render/ExportDlg.h"

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>

#include "base/Process.h"
#include "document/TvDoc.h"
#include "ui/base/Text.h"
#include "ui/dialogs/Messages.h"
#include "ui/render/SelectLocation.h"

namespace tavrin {

namespace {

struct RowText {
    const char* label;  // '&' stands before the key that reaches the row
    int CExportOptions::*flag;
    std::string CExportOptions::*path;
    const char* kind;  // the file as its help calls it
};

constexpr RowText kRows[] = {
    {"&Tavrin File", &CExportOptions::saveTavrn, &CExportOptions::tavrnPath, ".tvn"},
    {"Shader &Source", &CExportOptions::saveSource, &CExportOptions::sourcePath, "shader source"},
    {"&Compiled Shader", &CExportOptions::saveCompiled, &CExportOptions::compiledPath, "compiled shader"},
    {"Shader &Interface", &CExportOptions::saveShaderIface, &CExportOptions::shaderIfacePath,
     "shader interface"},
    {"&Render Interface", &CExportOptions::saveRenderIface, &CExportOptions::renderIfacePath,
     "render interface"},
    {"&Post Save Script", &CExportOptions::runPostSave, &CExportOptions::postSaveScript, ""},
};
constexpr int kTavrnRow = 0;
constexpr int kScriptRow = 5;
constexpr int kPathColumn = 2;
constexpr int kLeastPathColumns = 24;  // characters
constexpr int kFirstPathColumns = 56;
const QRegularExpression kLineEnd("[\\r\\n\\x{2028}\\x{2029}]");

const QString kScriptInfo =
    "The path specified here is for an optional user-supplied\n"
    "program to execute when 'Export All' finishes generating\n"
    "all its files.  This can be used to update external programs\n"
    "to recognize your new changes.";

QString LabelOf(int row) { return QString(kRows[row].label).remove('&'); }

QString InfoOf(int row) {
    if (row == kScriptRow) return kScriptInfo;
    QString text =
        QString("The path specified here affects:\n\n  1) where 'File->Export All' saves the %1 file\n")
            .arg(kRows[row].kind);
    // A document is not exported alone.
    if (row != kTavrnRow) text += QString("  2) the 'File->Export->%1' browser default\n").arg(LabelOf(row));
    return text;
}

// A path that fits no field can be read here; names of files are never read as markup.
QString ToolTipOf(const QString& path) {
    return path.isEmpty() ? path : "<p style='white-space:pre'>" + path.toHtmlEscaped() + "</p>";
}

// Leaves a text that is shown already alone, and with it the cursor of whoever types.
void ShowText(QLineEdit& field, const std::string& text) {
    const QString shown = Shown(text);
    if (field.text() != shown) field.setText(shown);
    field.setToolTip(ToolTipOf(shown));
}

}  // namespace

CExportDlg::CExportDlg(QWidget* frame, Needs needs)
    : ToolWindow("Export Options", frame), m_needs(std::move(needs)) {
    auto* grid = new QGridLayout(this);
    grid->setColumnStretch(kPathColumn, 1);
    for (int row = 0; row < kRowCount; ++row) AddRow(*grid, row);
    grid->setRowStretch(kRowCount, 1);
    auto* reset = AddButton("Reset &Defaults", "Reset Defaults");
    grid->addWidget(reset, kRowCount + 1, kPathColumn + 1, 1, 2);
    connect(reset, &QPushButton::clicked, this, [this] { ResetDefaults(); });

    connect(m_rows[kScriptRow].path, &QLineEdit::textEdited, this, [this] { CommitScript(); });
    const int columnWidth = fontMetrics().averageCharWidth();
    resize(sizeHint().width() + (kFirstPathColumns - kLeastPathColumns) * columnWidth, sizeHint().height());
    ShadePathFields();
    Refresh();
}

void CExportDlg::AddRow(QGridLayout& grid, int row) {
    const QString name = LabelOf(row);
    auto* label = new QLabel(kRows[row].label, this);
    auto* flag = new QCheckBox(this);
    auto* path = new QLineEdit(this);
    auto* file = AddButton("File...", name + " File");
    auto* info = AddButton("Info...", name + " Info");
    m_rows[static_cast<size_t>(row)] = {flag, path};

    label->setBuddy(flag);
    flag->setAccessibleName(name);
    path->setAccessibleName(name + " Path");
    path->setReadOnly(row != kScriptRow);
    path->setMinimumWidth(kLeastPathColumns * fontMetrics().averageCharWidth());
    connect(flag, &QCheckBox::clicked, this, [this] { CommitAll(); });
    connect(file, &QPushButton::clicked, this, [this, row] { AskForFile(row); });
    connect(info, &QPushButton::clicked, this, [this, row] { ShowInfo(row); });
    int column = 0;
    for (QWidget* widget : std::initializer_list<QWidget*>{label, flag, path, file, info}) {
        grid.addWidget(widget, row, column++);
    }
}

QPushButton* CExportDlg::AddButton(const QString& text, const QString& accessibleName) {
    auto* button = new QPushButton(text, this);
    button->setAccessibleName(accessibleName);
    button->setAutoDefault(true);  // Enter presses the one with the focus
    return button;
}

// What cannot be typed in looks like it, in light and in dark.
void CExportDlg::ShadePathFields() {
    for (int row = 0; row < kScriptRow; ++row) {
        QPalette shaded;
        shaded.setBrush(QPalette::Base, palette().brush(QPalette::Window));
        m_rows[static_cast<size_t>(row)].path->setPalette(shaded);
    }
}

void CExportDlg::changeEvent(QEvent* event) {
    ToolWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_rows.front().path != nullptr) ShadePathFields();
}

void CExportDlg::UpdateExportPaths() {
    if (m_needs.document() != nullptr) m_needs.updateExportPaths();
    Refresh();
}

void CExportDlg::Follow(const Change& change) {
    if (change.settings) Refresh();
}

void CExportDlg::Refresh() {
    const CTvDoc* document = m_needs.document();
    setEnabled(document != nullptr);
    const CExportOptions none{.tavrnPath = "",
                              .compiledPath = "",
                              .sourcePath = "",
                              .shaderIfacePath = "",
                              .renderIfacePath = "",
                              .postSaveScript = ""};
    const CExportOptions& options = document != nullptr ? document->exportOptions : none;
    for (int row = 0; row < kRowCount; ++row) {
        const Row& shown = m_rows[static_cast<size_t>(row)];
        shown.flag->setChecked(options.*kRows[row].flag != 0);
        ShowText(*shown.path, options.*kRows[row].path);
    }
}

void CExportDlg::CommitAll() {
    CTvDoc* document = m_needs.document();
    if (document == nullptr) return;
    for (int row = 0; row < kRowCount; ++row) {
        document->exportOptions.*kRows[row].flag = m_rows[static_cast<size_t>(row)].flag->isChecked() ? 1 : 0;
    }
    NoteEdit(*document);
}

void CExportDlg::CommitScript() {
    CTvDoc* document = m_needs.document();
    QLineEdit& field = *m_rows[kScriptRow].path;
    if (document == nullptr) return;
    // A pasted line feed would end the option's line in the document's file.
    if (field.text().contains(kLineEnd)) {
        const int cursor = field.cursorPosition();
        field.setText(field.text().replace(kLineEnd, " "));
        field.setCursorPosition(cursor);
    }
    document->exportOptions.postSaveScript = Bytes(field.text());
    field.setToolTip(ToolTipOf(field.text()));
    NoteEdit(*document);
}

void CExportDlg::AskForFile(int row) {
    CTvDoc* document = m_needs.document();
    if (document == nullptr) return;
    const std::string before = document->exportOptions.*kRows[row].path;
    std::string path = before;
    if (row == kScriptRow) {
        if (!AskForScript(path) || path == before) return;
    } else if (!SelectLocation(path, this)) {
        return;
    }
    document = m_needs.document();  // scripts go on while a dialog is open
    if (document == nullptr) return;
    document->exportOptions.*kRows[row].path = path;
    Refresh();
    NoteEdit(*document);
}

// The command is split into words by blanks and double quotes, so a file with blanks in its path is quoted.
bool CExportDlg::AskForScript(std::string& command) {
    const std::vector<std::string> words = SplitCommandLine(command);
    std::string path = words.empty() ? std::string() : words.front();
    if (!SelectFile(path, this, FilePurpose::kRead)) return false;
    if (path.find('"') != std::string::npos) {
        ShowStop(this, "Alert",
                 "A post save command cannot name a file with a double quote in its path:\n" + Shown(path));
        return false;
    }
    command = JoinCommandLine({path});
    return true;
}

void CExportDlg::ShowInfo(int row) { ShowInformation(this, LabelOf(row) + " Field", InfoOf(row)); }

void CExportDlg::ResetDefaults() {
    CTvDoc* document = m_needs.document();
    if (document == nullptr) return;
    document->exportOptions = m_needs.defaults();
    UpdateExportPaths();
    NoteEdit(*document);
}

void CExportDlg::NoteEdit(CTvDoc& document) {
    const EditScope edit(document, "Export Options");
    document.edits.SettingsChanged();
}

}  // namespace tavrin
