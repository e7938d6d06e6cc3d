// SPDX-License-Identifier: Apache-2.0
// What the log has been told and its text does not hold yet.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavrin {

// Takes output in pieces and keeps what is still to be done to the text, worked out as far as it can be: a
// progress counter that runs through a thousand steps while nobody looks costs the text nothing. Owned by
// the log's window. Bells, bare returns and line ends are understood here, since the bounds of pieces count
// for them; bytes of a character that are split between pieces wait for each other. Time and room are
// linear in what is appended, and the room is bounded by the text's limit.
class LogBuffer {
  public:
    // `limit`: how many characters the text holds at most; while they wait, each byte counts.
    explicit LogBuffer(size_t limit) : m_limit(limit) {}

    // One piece of output:
    // - a bell is counted and left out;
    // - a return with a line feed behind it in the same piece is one line end with it;
    // - any other return removes the last line, what stands of it in the text included;
    // - all else is text.
    // What exceeds the limit loses its oldest lines, and with them goes the whole text before it.
    void Append(std::string_view piece);
    // Forgets all that waits.
    void Clear();

    // What is to be done to the text, in this order.
    struct Step {
        bool eraseText = false;      // all of it
        bool eraseLastLine = false;  // what stands behind the last line end
        std::string text;            // to be added at the end; lines end with a line feed
    };
    bool HasStep() const { return m_eraseText || m_eraseLastLine || Ready(m_waiting.size()) > m_start; }
    // The next step, of at most `most` bytes (4 or more). Ends before a character that is not whole yet.
    Step Take(size_t most);

    // What the text would be like after all steps, as far as it does not depend on the text.
    bool HasText() const { return m_waiting.size() > m_start; }
    bool ErasesText() const { return m_eraseText; }
    bool ErasesLastLine() const { return m_eraseLastLine; }

    // Whether a bell has come since the last call.
    bool TakeBell();

  private:
    void EraseLastLine();
    void DropOldestLines();
    size_t Ready(size_t end) const;

    size_t m_limit;
    std::string m_waiting;  // from m_start
    size_t m_start = 0;
    bool m_eraseText = false;
    bool m_eraseLastLine = false;
    bool m_bell = false;
};

}  // namespace tavrin
