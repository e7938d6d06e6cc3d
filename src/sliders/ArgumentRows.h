// SPDX-License-Identifier: Apache-2.0
// What the Argument Editor lists, and which part of the list is seen.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "library/LiveObjects.h"
#include "library/OpButton.h"

namespace tavrin {

// The controls of a row, in the order of the Tab key.
enum class ArgumentField { kFlag, kName, kComment };
inline constexpr size_t kArgumentFields = 3;

// Whether the user may change it: the flag unless the operator forbids that, the others of an argument.
bool IsEditable(const COpButton& button, ArgumentField field);

// A field of a row.
struct ArgumentPlace {
    size_t row = 0;
    ArgumentField field = ArgumentField::kFlag;
    bool operator==(const ArgumentPlace&) const = default;
};

// Rows of one height below one another, of which a client area shows as many as it has room for. A plain
// value of the editor; buttons belong to their boxes and may go at any time. Lengths are pixels. The offset
// is how much of the list has been scrolled away above the client area: never so much that room below the
// last row is seen while there are rows above.
class ArgumentRows {
  public:
    // Rows for these buttons, top first. The offset stays where it can.
    void SetButtons(const std::vector<COpButton*>& buttons);
    size_t Count() const { return m_buttons.size(); }
    // Null once it has gone.
    COpButton* ButtonAt(size_t row) const { return m_buttons[row].Get(); }

    void SetRowHeight(int height);  // at least 1
    void SetClientHeight(int height);
    int RowHeight() const { return m_rowHeight; }
    int TotalHeight() const { return static_cast<int>(m_buttons.size()) * m_rowHeight; }

    int ScrollTop() const { return m_scrollTop; }
    void SetScrollTop(int offset);
    // The end of the range of offsets, at which the bottom row stands at the bottom; in a client area lower
    // than a row, at its top. 0 where all is seen.
    int LastScrollTop() const;
    // As little as it takes.
    void BringIntoView(size_t row);

    // Where a row stands in the client area, which may be above or below what is seen.
    int TopOf(size_t row) const { return static_cast<int>(row) * m_rowHeight - m_scrollTop; }
    // Half open.
    struct Span {
        size_t begin = 0;
        size_t end = 0;
        bool Contains(size_t row) const { return row >= begin && row < end; }
    };
    // The rows of which something is seen, and so many more at either end.
    Span InView(size_t beside) const;

    // The next field that can be used, on from the last row to the first or the other way round. From nowhere
    // that is the first one in view, or the last one above. Nothing if no field can be used.
    std::optional<ArgumentPlace> Next(const std::optional<ArgumentPlace>& from, bool forward) const;
    // The same field of the nearest row below, or above, where it can be used. Nothing past the ends.
    std::optional<ArgumentPlace> Beyond(const ArgumentPlace& from, bool below) const;

  private:
    bool IsEditableAt(const ArgumentPlace& place) const;

    std::vector<LiveRef<COpButton>> m_buttons;
    int m_rowHeight = 1;
    int m_clientHeight = 0;
    int m_scrollTop = 0;
};

}  // namespace tavrin
