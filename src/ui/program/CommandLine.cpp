// SPDX-License-Identifier: Apache-2.0
#include "ui/program/CommandLine.h"

namespace tavrin {

ProgramOptions ParseProgramOptions(const std::vector<std::string>& words) {
    ProgramOptions options;
    bool isOver = false;  // of options
    for (const std::string& word : words) {
        if (!isOver && word == "--") {
            isOver = true;
        } else if (!isOver && (word == "--help" || word == "-h")) {
            options.help = true;
        } else if (!isOver && word == "--version") {
            options.version = true;
        } else if (!isOver && word.size() > 1 && word.front() == '-') {
            options.error = "unknown option " + word + "; see tavrin --help";
        } else if (!options.documentPath.empty()) {
            options.error = "one document at most can be opened: " + word + " is one too many";
        } else {
            options.documentPath = word;
        }
        if (!options.error.empty()) break;
    }
    return options;
}

std::string ProgramHelp() {
    return "usage: tavrin [DOCUMENT.tvn]\n"
           "\n"
           "Opens the visual shader builder, with the document if one is named.\n"
           "\n"
           "  --help      print this and end\n"
           "  --version   print the version and end\n"
           "\n"
           "Environment:\n"
           "  TAVRN_DIR        the installation; by default ../share/tavrin beside the program\n"
           "  TAVRN_LIB        the library: the last component of this path, below TAVRN_DIR\n"
           "  TAVRN_TMPDIR     where the work directory is made; by default /tmp\n"
           "  TAVRN_EDITORCMD  the text editor; by default $VISUAL, else $EDITOR, else the desktop's\n"
           "  TERMINAL         the terminal for an editor that needs one\n"
           "\n"
           "tavrin-batch does the same work without a window.\n";
}

}  // namespace tavrin
