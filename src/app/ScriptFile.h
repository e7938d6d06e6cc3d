// SPDX-License-Identifier: Apache-2.0
// The statements of `.tvx` script files.
#pragma once

#include <array>
#include <string>

#include "text/Archive.h"

namespace tavrin {

// Three words at most; missing ones are empty. There is no quoting, and further words are passed over.
using ScriptStatement = std::array<std::string, 3>;

// Reads a script statement by statement. A statement ends at a line feed, a ';' or the end of the file; a
// '#' anywhere ends it too and starts a comment that runs to the end of the line.
class ScriptFile {
  public:
    explicit ScriptFile(CArchive archive) : m_archive(std::move(archive)) {}

    // The next statement that holds a word; false at the end.
    bool Next(ScriptStatement& statement);

    // The line that the statement read last stands in.
    int LineNumber() const { return m_line; }
    const std::string& Path() const { return m_archive.Path(); }

  private:
    bool ReadText(std::string& text);

    CArchive m_archive;
    int m_line = 0;
    int m_nextLine = 1;
};

}  // namespace tavrin
