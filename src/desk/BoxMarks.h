// SPDX-License-Identifier: Apache-2.0
// Which boxes the errors of the last run name, and what these say of them.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "base/Listeners.h"

namespace tavrin {

class COpBox;

// Hears what a run says, in pieces of any length, and marks each box that a line of it names by the words
// "box NAME", NAME being title and number such as "Noise_3". A line that says "warning:" marks none, nor does
// one behind the label of another render. The marks stay until the next run. Owned by the render session;
// main thread only. Of a flood it keeps what a user can read.
class BoxMarks {
  public:
    static constexpr size_t kMostBoxes = 1000;
    static constexpr size_t kMostLines = 8;       // of one box
    static constexpr size_t kLongestLine = 1000;  // bytes; the rest of a longer one is not heard

    // The next run begins, and the marks of the last one go.
    void Begin();
    // From now on its lines may come behind a label, "[render 2] ...": those with a number other than this
    // are another's.
    void SetRender(int number) { m_render = number; }

    void Hear(std::string_view piece);
    // A run of which all is known at once, line by line.
    void Replace(std::string_view text);

    // What is said of a box, one or several lines; null for one without a mark.
    const std::string* Find(const std::string& boxTitleWid) const;
    bool IsEmpty() const { return m_marks.empty(); }

    // Told when boxes have got marks or lost them.
    mutable Listeners<> afterChange;

  private:
    bool TakePiece(std::string_view piece);
    bool TakeLine(std::string_view line);
    bool Mark(const std::string& box, std::string_view message);

    std::map<std::string, std::string> m_marks;  // by box
    std::string m_line;                          // what has come of it
    int m_render = 0;
};

// The help of a box, behind what the last run says of it. `marks` may be null.
std::string HelpOf(const COpBox& box, const BoxMarks* marks);

}  // namespace tavrin
