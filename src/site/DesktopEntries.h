// SPDX-License-Identifier: Apache-2.0
// What the user's desktop knows of programs: which one opens files of a type, and how it is started.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Environment.h"

namespace tavrin {

// A command line of the desktop with everything put in.
struct DesktopCommand {
    std::vector<std::string> words;  // program and arguments, the file among them as one word
    bool needsTerminal = false;
};

// The command by which the desktop opens `file` as one of this MIME type, whatever the file's own name says
// of its type. The user's choice comes first, then the desktop's, then the programs that say that they open
// the type, those for `category` before the others. Passed over is what is not installed and what `isFit`,
// asked of the program's name without its directory, does not want. Nothing if that leaves none.
//
// Reads the lists and entries where the environment says that they are (the XDG_ variables and their
// defaults), each time anew.
std::optional<DesktopCommand> FindDesktopCommand(const Environment& environment, const std::string& mimeType,
                                                 const std::string& category, const std::string& file,
                                                 const std::function<bool(const std::string&)>& isFit);

}  // namespace tavrin
