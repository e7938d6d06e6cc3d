// SPDX-License-Identifier: Apache-2.0
// Two texts side by side, line against line.
#pragma once

#include <QAbstractScrollArea>
#include <vector>

#include "text/LineDifference.h"

namespace tavrin {

// Paints what is in view of a difference of any size; both columns scroll together. What differs is told by a
// sign in the gutter, a tint, and a bolder tint with a line below it for the words. Owned by its window. The
// keys N and P, and Alt with the arrows, lead from change to change.
class SourceColumns : public QAbstractScrollArea {
  public:
    explicit SourceColumns(QWidget* parent);

    // Shows another one, which outlives that; the rows in view stay where they can. Null for none.
    void Show(const LineDifference* difference);

    // Runs of rows that differ.
    size_t ChangeCount() const { return m_changes.size(); }
    // The one that was gone to last, from 0; -1 for none.
    int CurrentChange() const { return m_change; }
    // Brings the next or the one before into view, from the current one or, without one, from the rows in
    // view; nothing happens beyond the last.
    void GoToChange(bool next);

    int FirstRowInView() const;
    int RowsInView() const;
    // The sign in the gutter of a row.
    static QChar SignOf(const LineRow& row);

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    struct Change {
        int first;
        int behind;
    };
    struct Column {
        QRect place;
        bool isLeft;
    };

    void FindChanges();
    void SetRanges();
    int ColumnWidth() const;
    int GutterWidth() const;
    void PaintRow(QPainter& painter, int row, const QRect& place) const;
    void PaintSide(QPainter& painter, const LineRow& row, const QRect& place, bool isLeft) const;

    const LineDifference* m_difference = nullptr;  // null for none
    std::vector<Change> m_changes;
    int m_change = -1;
    int m_widest = 0;  // columns of the longest line
};

}  // namespace tavrin
