// SPDX-License-Identifier: Apache-2.0
// The command line of the desktop program.
#pragma once

#include <string>
#include <vector>

namespace tavrin {

// What the words of the command line ask for. A plain value.
struct ProgramOptions {
    std::string documentPath;  // empty for none
    bool help = false;
    bool version = false;
    std::string error;  // what is wrong with the command line; empty if nothing
};

// The toolkit's own options, and what follows them, are not known here: they have been taken out before.
ProgramOptions ParseProgramOptions(const std::vector<std::string>& words);

std::string ProgramHelp();

}  // namespace tavrin
