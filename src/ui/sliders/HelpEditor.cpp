// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/HelpEditor.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "document/TvDoc.h"
#include "ui/base/DocumentText.h"

namespace tavrin {

namespace {

constexpr char kFontFamily[] = "Courier New";
constexpr int kFontSize = 10;  // points
constexpr int kTabColumns = 8;
constexpr int kColumns = 84;
constexpr int kLines = 32;

// Keeps the keys that are text or move the caret from the commands of the frame that have the same ones.
class HelpEdit : public QPlainTextEdit {
  public:
    using QPlainTextEdit::QPlainTextEdit;

  protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::ShortcutOverride && IsOurs(*static_cast<QKeyEvent*>(event))) {
            event->accept();
            return true;
        }
        return QPlainTextEdit::event(event);
    }

  private:
    static bool IsOurs(const QKeyEvent& key) {
        const bool isFunctionKey = key.key() >= Qt::Key_F1 && key.key() <= Qt::Key_F35;
        return !isFunctionKey &&
               !(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    }
};

QFont EditorFont() {
    QFont font = QFontDatabase::hasFamily(kFontFamily) ? QFont(kFontFamily)
                                                       : QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setStyleHint(QFont::Monospace);
    font.setPointSize(kFontSize);
    return font;
}

// Whatever ends a line becomes what joins lines in the document.
QString WithLinesJoined(QString text) {
    text.replace("\r\n", "\n");
    for (const QChar end : {QChar(u'\r'), QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator)}) {
        text.replace(end, u'\n');
    }
    return text.replace("\n", "\r\n");
}

// The editor's plain text would turn hard spaces into blanks.
QString TextOf(const QPlainTextEdit& edit) { return WithLinesJoined(edit.document()->toRawText()); }

}  // namespace

CHelpEditor::CHelpEditor(QWidget* frame, std::function<CTvDoc*()> document)
    : ToolWindow("Help Editor", frame), m_document(std::move(document)) {
    m_edit = new HelpEdit(this);
    m_edit->setAccessibleName("Shader Help");
    m_edit->setFrameShape(QFrame::NoFrame);
    m_edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_edit->setFont(EditorFont());
    const QFontMetricsF metrics(m_edit->font());
    const double columnWidth = metrics.horizontalAdvance(' ');
    m_edit->setTabStopDistance(kTabColumns * columnWidth);
    connect(m_edit, &QPlainTextEdit::textChanged, this, [this] { Commit(); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_edit);
    setFocusProxy(m_edit);
    resize(qRound(kColumns * columnWidth), qRound(kLines * metrics.lineSpacing()));
    Refresh();
}

void CHelpEditor::Refresh() {
    const CTvDoc* document = m_document();
    setEnabled(document != nullptr);
    const DocumentText help = Decoded(document != nullptr ? document->customshaderhelp : "");
    m_isLatin1 = help.isLatin1;
    const QString text = WithLinesJoined(help.text);
    if (text == TextOf(*m_edit)) return;
    const QSignalBlocker silent(m_edit);
    m_edit->setPlainText(text);
}

void CHelpEditor::DocumentReplaced() {
    Refresh();
    m_edit->document()->clearUndoRedoStacks();
}

void CHelpEditor::Follow(const Change& change) {
    if (change.replaced) DocumentReplaced();
    if (change.settings) Refresh();
}

void CHelpEditor::Commit() {
    CTvDoc* document = m_document();
    if (document == nullptr) return;
    const std::string text = Encoded({TextOf(*m_edit), m_isLatin1});
    if (text == document->customshaderhelp) return;
    const EditScope edit(*document, "Help");
    document->edits.SettingsChanged();
    document->edits.JoinRun();
    document->customshaderhelp = text;
}

}  // namespace tavrin
