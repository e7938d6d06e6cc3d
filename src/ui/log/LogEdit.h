// SPDX-License-Identifier: Apache-2.0
// The text of the log: white on black, in a font of one width.
#pragma once

#include <QPlainTextEdit>
#include <QTextBlock>
#include <optional>

#include "ui/log/LogBuffer.h"
#include "ui/log/LogLinks.h"

namespace tavrin {

// Owned by the log's window. Follows the end of the text while its end is in view and nothing is selected;
// otherwise what is in view and what is selected stay as they are while the text grows. Keeps no undo.
//
// A very long line is laid out in several rows, since the cost of a row grows with its length each time
// something is added to it; to all who ask for text it is one line.
class LogEdit : public QPlainTextEdit {
  public:
    // `limit`: how many characters the text holds at most before its oldest lines go.
    LogEdit(QWidget* parent, int limit);

    void SetEditable(bool editable);
    void SetWordWrap(bool wrap);
    bool HasWordWrap() const { return lineWrapMode() != QPlainTextEdit::NoWrap; }

    // From now on names of boxes lead to them.
    void SetLinks(LogLinks::Needs needs);
    // Under a place of the viewport; nothing where there is none.
    std::optional<LogLinks::Link> LinkAt(QPoint place) const;

    void Apply(const LogBuffer::Step& step);
    void DeleteSelection() { textCursor().removeSelectedText(); }

    QString Text() const { return Between(0, document()->characterCount() - 1); }
    bool HasText() const { return document()->characterCount() > 1; }
    // False also for an empty text: whether there is a line end in it.
    bool HasLineEnd() const { return LastLine().blockNumber() > 0; }

  protected:
    // Keys of the window's and the frame's commands are theirs.
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;

  private:
    void UseLogColours();
    void EraseLastLine();
    void MakeRoom(int coming);
    void Add(const QString& text);
    void AddInRows(QTextCursor& cursor, const QString& text);
    QTextBlock LastLine() const;  // its first row
    QString Between(int from, int to) const;
    bool ShowsEnd() const;

    int m_limit;
    std::optional<LogLinks> m_links;
    bool m_follows = true;  // the end of the text was in view when the user last scrolled
    bool m_applying = false;
};

}  // namespace tavrin
