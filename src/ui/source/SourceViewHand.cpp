// SPDX-License-Identifier: Apache-2.0
// What the hand does in a source: the caret, what is selected, and what is copied.
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QTextLayout>
#include <algorithm>

#include "ui/base/Text.h"
#include "ui/source/SourceView.h"

namespace tavrin {

namespace {

bool IsPartOfWord(QChar c) { return c.isLetterOrNumber() || c == '_'; }

}  // namespace

SourceView::Place SourceView::PlaceAt(QPoint at) {
    if (LineCount() == 0) return {};
    const int row = at.y() < 0 ? -1 : at.y() / RowHeight();
    const long long line = static_cast<long long>(FirstLineInView()) - 1 + row;
    const auto last = static_cast<long long>(LineCount()) - 1;
    Place place{static_cast<size_t>(std::clamp(line, 0LL, last)), 0};
    QTextLayout layout;
    LayOut(layout, place.line);
    place.column = layout.lineAt(0).xToCursor(at.x() - LeftOfText());
    return place;
}

void SourceView::MoveCaret(Place to, bool selects) {
    const size_t before = m_caret.line;
    m_caret = to;
    if (!selects) m_anchor = to;
    ShowCaret();
    viewport()->update();
    if (m_caret.line != before && m_hands.caretMoved) m_hands.caretMoved(CaretLine());
}

void SourceView::ShowCaret() {
    if (LineCount() == 0) return;
    if (CaretLine() < FirstLineInView()) verticalScrollBar()->setValue(static_cast<int>(m_caret.line));
    if (CaretLine() >= FirstLineInView() + LinesInView())
        verticalScrollBar()->setValue(static_cast<int>(CaretLine() - LinesInView()));
    QTextLayout layout;
    LayOut(layout, m_caret.line);
    const auto x = static_cast<int>(layout.lineAt(0).cursorToX(m_caret.column));
    const int room = horizontalScrollBar()->pageStep();
    QScrollBar& bar = *horizontalScrollBar();
    if (x < bar.value()) bar.setValue(x);
    if (x >= bar.value() + room) bar.setValue(x - room + bar.singleStep());
}

SourceView::Place SourceView::BesideCaret(int letters) const {
    Place place = m_caret;
    place.column += letters;
    if (place.column < 0 && place.line > 0) {
        --place.line;
        place.column = static_cast<int>(TextOf(place.line).size());
    } else if (place.column > TextOf(place.line).size() && place.line + 1 < LineCount()) {
        ++place.line;
        place.column = 0;
    }
    place.column = std::clamp(place.column, 0, static_cast<int>(TextOf(place.line).size()));
    return place;
}

SourceView::Place SourceView::LinesFromCaret(long long lines) const {
    const long long line = static_cast<long long>(m_caret.line) + lines;
    Place place{static_cast<size_t>(std::clamp(line, 0LL, static_cast<long long>(LineCount()) - 1)), 0};
    place.column = std::min(m_caret.column, static_cast<int>(TextOf(place.line).size()));
    return place;
}

bool SourceView::MoveByKey(const QKeyEvent& key) {
    if (LineCount() == 0) return false;
    using Keys = QKeySequence;
    const auto page = static_cast<long long>(LinesInView());
    const auto endOf = [this](size_t line) { return Place{line, static_cast<int>(TextOf(line).size())}; };
    const struct {
        Keys::StandardKey move;
        Keys::StandardKey select;
        std::function<Place()> to;
    } moves[] = {
        {Keys::MoveToNextLine, Keys::SelectNextLine, [&] { return LinesFromCaret(1); }},
        {Keys::MoveToPreviousLine, Keys::SelectPreviousLine, [&] { return LinesFromCaret(-1); }},
        {Keys::MoveToNextPage, Keys::SelectNextPage, [&] { return LinesFromCaret(page); }},
        {Keys::MoveToPreviousPage, Keys::SelectPreviousPage, [&] { return LinesFromCaret(-page); }},
        {Keys::MoveToNextChar, Keys::SelectNextChar, [&] { return BesideCaret(1); }},
        {Keys::MoveToPreviousChar, Keys::SelectPreviousChar, [&] { return BesideCaret(-1); }},
        {Keys::MoveToStartOfLine, Keys::SelectStartOfLine,
         [&] {
             return Place{m_caret.line, 0};
         }},
        {Keys::MoveToEndOfLine, Keys::SelectEndOfLine, [&] { return endOf(m_caret.line); }},
        {Keys::MoveToStartOfDocument, Keys::SelectStartOfDocument, [] { return Place{}; }},
        {Keys::MoveToEndOfDocument, Keys::SelectEndOfDocument, [&] { return endOf(LineCount() - 1); }},
    };
    for (const auto& each : moves) {
        const bool selects = key.matches(each.select);
        if (!selects && !key.matches(each.move)) continue;
        MoveCaret(each.to(), selects);
        return true;
    }
    return false;
}

// Of the keys that the frame has for its commands those that would hit the desk from a text.
bool SourceView::Claims(const QKeyEvent& key) const {
    for (const auto standard : {QKeySequence::Copy, QKeySequence::Cut, QKeySequence::Paste,
                                QKeySequence::SelectAll, QKeySequence::Delete}) {
        if (key.matches(standard)) return true;
    }
    const bool isArrow = key.key() == Qt::Key_Up || key.key() == Qt::Key_Down;
    return isArrow || (key.key() == Qt::Key_Escape && HasSelection());
}

bool SourceView::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && Claims(static_cast<const QKeyEvent&>(*event))) {
        event->accept();
        return true;
    }
    return QAbstractScrollArea::event(event);
}

void SourceView::keyPressEvent(QKeyEvent* event) {
    if (MoveByKey(*event)) return;
    if (event->matches(QKeySequence::Copy)) {
        CopySelected();
    } else if (event->matches(QKeySequence::SelectAll)) {
        SelectAll();
    } else if (event->key() == Qt::Key_Escape && HasSelection()) {
        MoveCaret(m_caret, false);
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (LineCount() > 0 && m_hands.chosen) m_hands.chosen(CaretLine());
    } else if (!Claims(*event)) {
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void SourceView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || LineCount() == 0) return;
    MoveCaret(PlaceAt(event->pos()), event->modifiers().testFlag(Qt::ShiftModifier));
}

void SourceView::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton) || LineCount() == 0) return;
    MoveCaret(PlaceAt(event->pos()), true);
}

void SourceView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || LineCount() == 0) return;
    QClipboard& clipboard = *QGuiApplication::clipboard();
    if (HasSelection()) {
        if (clipboard.supportsSelection()) clipboard.setText(SelectedText(), QClipboard::Selection);
    } else if (PlaceOfLine(CaretLine()).contains(event->pos()) && m_hands.chosen) {
        m_hands.chosen(CaretLine());
    }
}

void SourceView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || LineCount() == 0) return;
    const Place at = PlaceAt(event->pos());
    const QString text = TextOf(at.line);
    int begin = at.column;
    int end = at.column;
    while (begin > 0 && IsPartOfWord(text[begin - 1])) --begin;
    while (end < text.size() && IsPartOfWord(text[end])) ++end;
    MoveCaret({at.line, begin}, false);
    MoveCaret({at.line, end}, true);
}

void SourceView::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    QAction* goTo = menu.addAction("&Go to Box");
    goTo->setEnabled(LineCount() > 0);
    menu.addSeparator();
    QAction* copy = menu.addAction("&Copy");
    copy->setEnabled(HasSelection());
    QAction* all = menu.addAction("Select &All");
    all->setEnabled(LineCount() > 0);
    const Place at = event->reason() == QContextMenuEvent::Mouse ? PlaceAt(event->pos()) : m_caret;
    const QAction* chosen = menu.exec(event->globalPos());
    if (chosen == copy) CopySelected();
    if (chosen == all) SelectAll();
    if (chosen == goTo && m_hands.chosen) m_hands.chosen(at.line + 1);
}

void SourceView::SelectAll() {
    if (LineCount() == 0) return;
    m_anchor = {};
    m_caret = {LineCount() - 1, static_cast<int>(TextOf(LineCount() - 1).size())};
    viewport()->update();
}

void SourceView::CopySelected() const {
    if (HasSelection()) QGuiApplication::clipboard()->setText(SelectedText());
}

// As it stands in the source, also what is left out of a line that is too long to be shown.
QString SourceView::SelectedText() const {
    if (!HasSelection()) return {};
    const auto [begin, end] = std::minmax(m_caret, m_anchor);
    QString selected;
    for (size_t line = begin.line; line <= end.line; ++line) {
        const QString text = Shown(std::string(m_text.Line(line)));
        const bool isToItsEnd = line < end.line || end.column >= TextOf(line).size();
        const qsizetype from = line == begin.line ? begin.column : 0;
        const qsizetype to = isToItsEnd ? text.size() : end.column;
        if (line > begin.line) selected += '\n';
        selected += text.mid(from, to - from);
    }
    return selected;
}

void SourceView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void SourceView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

}  // namespace tavrin
