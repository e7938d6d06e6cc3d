// SPDX-License-Identifier: Apache-2.0
#include "site/TextEditor.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "base/Paths.h"
#include "base/Process.h"
#include "site/DesktopEntries.h"

namespace tavrin {

namespace {

// Editors that draw in the terminal that they were started from.
constexpr std::array kTerminalEditors = {
    "amp",  "dte",   "e3",   "ed",   "elvis",  "emacs-nox", "ex",      "helix", "hx",
    "jed",  "jmacs", "joe",  "jove", "jpico",  "jstar",     "kak",     "le",    "mcedit",
    "mg",   "micro", "nano", "ne",   "neatvi", "nvi",       "nvim",    "pico",  "rnano",
    "rvim", "tilde", "vi",   "view", "vile",   "vim",       "vimdiff", "zile",  "sensible-editor"};

// Names that stand for other programs.
constexpr std::array kAliases = {"editor", "emacs", "emacsclient"};

// Programs that choose another by the file's own type. For a document that is this one, which would open it
// again, and so on.
constexpr std::array kOpeners = {"exo-open", "gio",       "gnome-open",   "gvfs-open",
                                 "kde-open", "kde-open5", "mimeopen",     "run-mailcap",
                                 "see",      "tavrin",    kDesktopsEditor};

// Terminals, with the words that come before the command to be run in them.
struct Terminal {
    const char* program;
    const char* before;  // empty for none
};
constexpr std::array kTerminals = {Terminal{"xdg-terminal-exec", ""},
                                   Terminal{"x-terminal-emulator", "-e"},
                                   Terminal{"gnome-terminal", "--"},
                                   Terminal{"kgx", "--"},
                                   Terminal{"konsole", "-e"},
                                   Terminal{"xfce4-terminal", "-x"},
                                   Terminal{"mate-terminal", "-x"},
                                   Terminal{"kitty", ""},
                                   Terminal{"foot", ""},
                                   Terminal{"alacritty", "-e"},
                                   Terminal{"urxvt", "-e"},
                                   Terminal{"xterm", "-e"}};

template <size_t Count>
bool Holds(const std::array<const char*, Count>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// What a name stands for in the end, by the links of the platform: vim.basic is vim.
std::string ResolvedName(const std::string& program, std::string_view searchPath) {
    std::error_code error;
    const auto path = std::filesystem::canonical(FindProgram(program, searchPath), error);
    const std::string name = path.filename();
    return Holds(kTerminalEditors, name) ? name : name.substr(0, name.find('.'));
}

bool NeedsTerminal(const std::vector<std::string>& words, std::string_view searchPath) {
    const std::string name = PathFile(words.front());
    if (Holds(kTerminalEditors, name)) return true;
    if (!Holds(kAliases, name)) return false;
    for (const char* option : {"-nw", "--no-window-system", "-t", "--tty"}) {
        if (std::find(words.begin() + 1, words.end(), option) != words.end()) return true;
    }
    return Holds(kTerminalEditors, ResolvedName(words.front(), searchPath));
}

// Puts a terminal round the command; false if there is none.
bool PutInTerminal(std::vector<std::string>& words, const Environment& environment,
                   std::string_view searchPath) {
    const auto put = [&words](std::vector<std::string> before, const char* option) {
        if (*option != '\0') before.emplace_back(option);
        words.insert(words.begin(), before.begin(), before.end());
        return true;
    };
    std::vector<std::string> named = SplitCommandLine(environment.Get("TERMINAL").value_or(""));
    if (!named.empty() && HasProgram(named.front(), searchPath)) {
        const std::string name = PathFile(named.front());
        const auto known = std::find_if(kTerminals.begin(), kTerminals.end(),
                                        [&name](const Terminal& one) { return name == one.program; });
        return put(named, known == kTerminals.end() ? "-e" : known->before);
    }
    for (const Terminal& terminal : kTerminals) {
        if (HasProgram(terminal.program, searchPath)) return put({terminal.program}, terminal.before);
    }
    return false;
}

bool IsFitForTexts(const std::string& name) { return !Holds(kOpeners, name); }

EditorStart InTerminal(std::vector<std::string> words, const Environment& environment,
                       std::string_view searchPath) {
    const std::string name = words.front();
    if (PutInTerminal(words, environment, searchPath)) return {std::move(words), false, {}};
    return {
        {},
        false,
        "the text editor " + name +
            " needs a terminal, and none is found: name one in TERMINAL, or a text editor with a window in"
            " TAVRN_EDITORCMD"};
}

}  // namespace

EditorStart StartOfEditor(const std::string& editor, const std::string& path,
                          const Environment& environment) {
    const std::string searchPath = environment.Get("PATH").value_or("");
    std::vector<std::string> words = SplitCommandLine(editor);
    const bool isDesktops = words.empty() || words.front().empty() || !IsFitForTexts(PathFile(words.front()));
    if (!isDesktops) {
        const bool inTerminal = NeedsTerminal(words, searchPath) && HasProgram(words.front(), searchPath);
        words.push_back(path);
        if (inTerminal) return InTerminal(std::move(words), environment, searchPath);
        return {std::move(words), true, {}};
    }
    auto command = FindDesktopCommand(environment, "text/plain", "TextEditor", path, IsFitForTexts);
    if (!command) {
        return {
            {},
            false,
            "there is no text editor to open " + path +
                " with: name one in TAVRN_EDITORCMD, VISUAL or EDITOR, or choose one for plain text in the"
                " desktop's settings"};
    }
    if (command->needsTerminal) return InTerminal(std::move(command->words), environment, searchPath);
    return {std::move(command->words), false, {}};
}

}  // namespace tavrin
