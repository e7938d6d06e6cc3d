// SPDX-License-Identifier: Apache-2.0
#include "ui/log/LogEdit.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include "ui/base/Text.h"

namespace tavrin {

namespace {

// The longest row, in characters. A window full of such rows is still painted in no time.
constexpr int kLongestRow = 2000;
// States of a block: begins a line, or goes on with that of the block before it.
constexpr int kBegins = -1;
constexpr int kGoesOn = 1;

bool GoesOn(const QTextBlock& block) { return block.userState() == kGoesOn; }

// Removes whole lines, or all from the beginning of one. What then stands there begins a line, from whichever
// of the blocks the document has kept the state.
void RemoveLines(QTextCursor& selection) {
    selection.removeSelectedText();
    selection.block().setUserState(kBegins);
}

// The text of a step as the document takes it: characters that would mean something to the document itself
// are shown as what cannot be shown.
QString ForDocument(const std::string& bytes) {
    QString text = Shown(bytes);
    for (QChar& character : text) {
        const char16_t code = character.unicode();
        if (code == 0 || code == QChar::ParagraphSeparator || code == QChar::ObjectReplacementCharacter ||
            code == 0xFDD0 || code == 0xFDD1) {
            character = QChar::ReplacementCharacter;
        }
    }
    return text;
}

bool HasLongRow(const QString& text, qsizetype before) {
    for (qsizetype start = 0; start <= text.size(); before = 0) {
        qsizetype end = text.indexOf('\n', start);
        if (end < 0) end = text.size();
        if (before + end - start > kLongestRow) return true;
        start = end + 1;
    }
    return false;
}

}  // namespace

LogEdit::LogEdit(QWidget* parent, int limit) : QPlainTextEdit(parent), m_limit(limit) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    UseLogColours();
    setUndoRedoEnabled(false);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setFrameShape(QFrame::NoFrame);
    const QScrollBar* bar = verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, [this] {
        if (!m_applying) m_follows = ShowsEnd();
    });
    // Another size of the window, or of the text by the user's hand.
    connect(bar, &QScrollBar::rangeChanged, this, [this] {
        if (!m_applying && m_follows) verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    });
}

// The same in a light and a dark palette, and the selection as well seen while another window is active.
void LogEdit::UseLogColours() {
    QPalette colours = palette();
    colours.setColor(QPalette::Base, Qt::black);
    colours.setColor(QPalette::Text, Qt::white);
    colours.setColor(QPalette::Highlight, QColor(52, 101, 164));
    colours.setColor(QPalette::HighlightedText, Qt::white);
    setPalette(colours);
}

void LogEdit::SetEditable(bool editable) {
    setReadOnly(!editable);
    // Text is selected by keyboard as well, and the caret shows where.
    if (!editable) setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void LogEdit::SetWordWrap(bool wrap) {
    setLineWrapMode(wrap ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
}

void LogEdit::Apply(const LogBuffer::Step& step) {
    const bool follows = m_follows && !textCursor().hasSelection();
    QScrollBar* bar = verticalScrollBar();
    const QTextCursor top(firstVisibleBlock());
    const int rowsAbove = bar->value() - top.block().firstLineNumber();
    m_applying = true;
    QTextCursor edit(document());
    edit.beginEditBlock();
    if (step.eraseText) {
        edit.select(QTextCursor::Document);
        RemoveLines(edit);
    }
    if (step.eraseLastLine) EraseLastLine();
    const QString text = ForDocument(step.text);
    MakeRoom(static_cast<int>(text.size()));
    const int anchor = textCursor().anchor();
    const int position = textCursor().position();
    Add(text);
    edit.endEditBlock();
    if (anchor != position && (textCursor().anchor() != anchor || textCursor().position() != position)) {
        QTextCursor selection = textCursor();
        selection.setPosition(anchor);
        selection.setPosition(position, QTextCursor::KeepAnchor);
        setTextCursor(selection);
    }
    bar->setValue(follows ? bar->maximum() : top.block().firstLineNumber() + rowsAbove);
    m_applying = false;
    m_follows = ShowsEnd();
}

void LogEdit::EraseLastLine() {
    QTextCursor edit(LastLine());
    edit.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    RemoveLines(edit);
}

// The oldest whole lines go, and at least as many characters as are to come.
void LogEdit::MakeRoom(int coming) {
    if (document()->characterCount() - 1 + coming <= m_limit) return;
    QTextBlock kept = document()->findBlock(coming);
    while (kept.isValid() && (kept.position() < coming || GoesOn(kept))) kept = kept.next();
    QTextCursor edit(document());
    if (kept.isValid()) {
        edit.setPosition(kept.position(), QTextCursor::KeepAnchor);
    } else {
        edit.select(QTextCursor::Document);
    }
    RemoveLines(edit);
}

void LogEdit::Add(const QString& text) {
    if (text.isEmpty()) return;
    QTextCursor edit(document());
    edit.movePosition(QTextCursor::End);
    if (HasLongRow(text, edit.positionInBlock())) {
        AddInRows(edit, text);
    } else {
        edit.insertText(text);
    }
}

void LogEdit::AddInRows(QTextCursor& edit, const QString& text) {
    for (qsizetype start = 0; start < text.size();) {
        if (text[start] == '\n') {
            edit.insertBlock();
            edit.block().setUserState(kBegins);
            ++start;
            continue;
        }
        qsizetype end = text.indexOf('\n', start);
        if (end < 0) end = text.size();
        qsizetype room = kLongestRow - edit.positionInBlock();
        if (room <= 0) {
            edit.insertBlock();
            edit.block().setUserState(kGoesOn);
            room = kLongestRow;
        }
        qsizetype length = std::min(end - start, room);
        if (length < end - start && text[start + length].isLowSurrogate()) ++length;
        edit.insertText(text.mid(start, length));
        start += length;
    }
}

QTextBlock LogEdit::LastLine() const {
    QTextBlock row = document()->lastBlock();
    while (GoesOn(row) && row.previous().isValid()) row = row.previous();
    return row;
}

QString LogEdit::Between(int from, int to) const {
    QString text;
    text.reserve(to - from);
    for (QTextBlock row = document()->findBlock(from); row.isValid() && row.position() <= to;
         row = row.next()) {
        const int start = std::max(from - row.position(), 0);
        if (row.position() > from && !GoesOn(row)) text += '\n';
        text += row.text().mid(start, to - row.position() - start);
    }
    return text;
}

bool LogEdit::ShowsEnd() const { return verticalScrollBar()->value() >= verticalScrollBar()->maximum(); }

void LogEdit::SetLinks(LogLinks::Needs needs) {
    m_links.emplace(std::move(needs));
    viewport()->setMouseTracking(true);
    viewport()->update();
}

std::optional<LogLinks::Link> LogEdit::LinkAt(QPoint place) const {
    if (!m_links) return std::nullopt;
    const QTextCursor cursor = cursorForPosition(place);
    // The position is the nearest between two characters, and for a place beside the text its end.
    for (const int position : {cursor.positionInBlock(), cursor.positionInBlock() - 1}) {
        auto link = m_links->At(cursor.block().text(), position);
        if (!link) continue;
        QTextCursor first(cursor.block());
        first.setPosition(cursor.block().position() + position);
        QTextCursor behind = first;
        behind.movePosition(QTextCursor::NextCharacter);
        const QRect left = cursorRect(first);
        const QRect right = cursorRect(behind);
        if (QRect(left.topLeft(), QPoint(right.left(), left.bottom())).contains(place)) return link;
    }
    return std::nullopt;
}

void LogEdit::paintEvent(QPaintEvent* event) {
    QPlainTextEdit::paintEvent(event);
    if (!m_links) return;
    QPainter painter(viewport());
    const QPointF offset = contentOffset();
    for (QTextBlock row = firstVisibleBlock(); row.isValid(); row = row.next()) {
        const QRectF place = blockBoundingGeometry(row).translated(offset);
        if (place.top() > event->rect().bottom()) break;
        if (place.bottom() >= event->rect().top()) m_links->Paint(painter, row, place.topLeft());
    }
}

void LogEdit::mouseMoveEvent(QMouseEvent* event) {
    QPlainTextEdit::mouseMoveEvent(event);
    const bool isLink = event->buttons() == Qt::NoButton && LinkAt(event->position().toPoint());
    viewport()->setCursor(isLink ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

// A click selects nothing; who selects text does not want to go anywhere.
void LogEdit::mouseReleaseEvent(QMouseEvent* event) {
    QPlainTextEdit::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton || textCursor().hasSelection()) return;
    if (const auto link = LinkAt(event->position().toPoint())) m_links->GoTo(*link);
}

bool LogEdit::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool isCommand = key.matches(QKeySequence::Copy) || key.matches(QKeySequence::Paste) ||
                               key.matches(QKeySequence::Cut) ||
                               key.key() == Qt::Key_Delete;  // Ctrl+Delete clears
        if (isCommand) {
            event->ignore();
            return true;
        }
    }
    return QPlainTextEdit::event(event);
}

QMimeData* LogEdit::createMimeDataFromSelection() const {
    auto* copied = new QMimeData;
    copied->setText(Between(textCursor().selectionStart(), textCursor().selectionEnd()));
    return copied;
}

}  // namespace tavrin
