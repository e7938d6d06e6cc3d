// SPDX-License-Identifier: Apache-2.0
// One source, with line numbers and in colours, to be read and copied.
#pragma once

#include <QAbstractScrollArea>
#include <functional>
#include <vector>

#include "render/SourceText.h"

class QTextLayout;

namespace tavrin {

// Paints what is in view of a source of any size. A caret and a selection are led by mouse and keys as in any
// text that cannot be changed; a click or Enter chooses the line as well. Owned by its window. What the hand
// does stands in SourceViewHand.cpp. Lines count from 1 here, as users count them.
class SourceView : public QAbstractScrollArea {
  public:
    struct Hands {
        std::function<void(size_t line)> caretMoved;  // to another line
        std::function<void(size_t line)> chosen;
    };
    SourceView(QWidget* parent, Hands hands);

    // The lines in view, the caret and what is selected stay where they can.
    void Show(SourceText text);
    // Lights these lines, in their order, and no others.
    void Light(std::vector<size_t> lines);
    // Brings lit lines into view, the most that stand together, unless some are there.
    void ShowLit();
    // Strikes these lines with a mark in the gutter.
    void Mark(std::vector<size_t> lines);
    void GoTo(size_t line);

    const std::vector<size_t>& Lit() const { return m_lit; }
    const std::vector<size_t>& Marked() const { return m_marked; }
    size_t LineCount() const { return m_text.LineCount(); }
    const SourceText& Source() const { return m_text; }
    size_t FirstLineInView() const;
    size_t LinesInView() const;
    size_t CaretLine() const { return m_caret.line + 1; }
    QString SelectedText() const;
    void CopySelected() const;
    void SelectAll();
    // Where a line stands in the viewport.
    QRect PlaceOfLine(size_t line) const;

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    // A place between two letters; lines from 0.
    struct Place {
        size_t line = 0;
        int column = 0;  // of the text as it is shown
        auto operator<=>(const Place&) const = default;
    };

    QString TextOf(size_t line) const;
    void LayOut(QTextLayout& layout, size_t line);
    void SetRanges();
    int GutterWidth() const;
    int RowHeight() const;
    int LeftOfText() const;
    void PaintLine(QPainter& painter, size_t line, const QRect& place);
    void PaintGutter(QPainter& painter, size_t line, const QRect& place) const;
    bool IsIn(const std::vector<size_t>& lines, size_t line) const;

    Place PlaceAt(QPoint at);
    void MoveCaret(Place to, bool selects);
    bool MoveByKey(const QKeyEvent& key);
    Place BesideCaret(int letters) const;
    Place LinesFromCaret(long long lines) const;
    void ShowCaret();
    bool HasSelection() const { return m_caret != m_anchor; }
    bool Claims(const QKeyEvent& key) const;

    Hands m_hands;
    SourceText m_text;
    std::vector<size_t> m_lit;
    std::vector<size_t> m_marked;
    Place m_caret;
    Place m_anchor;  // the other end of what is selected
};

}  // namespace tavrin
