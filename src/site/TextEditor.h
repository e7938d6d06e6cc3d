// SPDX-License-Identifier: Apache-2.0
// The user's text editor.
#pragma once

#include <string>
#include <vector>

#include "base/Environment.h"

namespace tavrin {

// The editor where nobody has named one. It stands for the desktop's text editor and is never started itself:
// it would choose a program by the file's own type, and for a document that is this program.
inline constexpr const char* kDesktopsEditor = "xdg-open";

// How a file is opened in an editor.
struct EditorStart {
    std::vector<std::string> words;  // empty if there is no way
    bool isAsNamed = true;           // they are those of the editor's name, and the file
    std::string problem;             // what the user is told if there is no way
};

// The words that open `path` as a text in the editor that is called `editor`: a program and its arguments,
// split once by blanks and double quotes; the path is one word, whatever it holds. Without a name, or if it
// is kDesktopsEditor or another program that goes by a file's type, the editor is the desktop's choice for
// plain text. An editor that needs a terminal is given a terminal of its own.
EditorStart StartOfEditor(const std::string& editor, const std::string& path, const Environment& environment);

}  // namespace tavrin
