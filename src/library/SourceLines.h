// SPDX-License-Identifier: Apache-2.0
// Where the lines of a preprocessed definition come from, as far as the preprocessor tells it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

// A preprocessor may end its output with a table, all of it comments of the definition:
//
//   #source lines
//   #file PATH             each file that was read, the operator's own first
//   #line N FILE LINE      from line N of the text on: the FILEth of those from its line LINE on
//
// The place where the table begins, which is the end of the definition; the whole length if there is none.
size_t EndOfDefinition(std::string_view preprocessed);

// A table that is only gone through when something is asked of it. It looks at the text, which outlives it.
class SourceLines {
  public:
    // What stands from EndOfDefinition on.
    explicit SourceLines(std::string_view table) : m_table(table) {}

    std::vector<std::string> Files() const;

    // From which line of the text on lines come from where.
    struct Run {
        int first = 0;
        int file = 0;  // of Files, counted from 1; may be none of them
        int line = 0;
    };
    // In the order of the text. What stands elsewhere in the order is left out.
    std::vector<Run> Runs() const;

    struct Place {
        std::string file;
        int line = 0;
    };
    // Of a line of the text, counted from 1. Nothing where the table does not tell it.
    std::optional<Place> Find(int line) const;

  private:
    std::string_view m_table;
};

}  // namespace tavrin
