// SPDX-License-Identifier: Apache-2.0
#include "site/DesktopEntries.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Process.h"

namespace tavrin {

namespace {

using Keys = std::map<std::string, std::string>;

std::vector<std::string> Split(std::string_view list, char separator) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const size_t end = std::min(list.find(separator), list.size());
        if (end > 0) parts.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return parts;
}

std::string Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    return std::string(text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1));
}

// The keys of one group of a file; none if there is no such file.
Keys ReadGroup(const std::string& path, const std::string& group) {
    Keys keys;
    std::string text;
    std::string error;
    if (!ReadWholeFile(path, text, error)) return keys;
    bool isWithin = false;
    for (const std::string& raw : Split(text, '\n')) {
        const std::string line = Trimmed(raw);
        if (line.starts_with('[')) {
            isWithin = line == "[" + group + "]";
        } else if (const size_t equals = line.find('=');
                   isWithin && !line.starts_with('#') && equals != std::string::npos) {
            keys.emplace(Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1)));
        }
    }
    return keys;
}

std::string ValueOf(const Keys& keys, const std::string& key) {
    const auto found = keys.find(key);
    return found == keys.end() ? std::string() : found->second;
}

// The variable's value, or what stands for it where it is not set or empty.
std::string ValueOr(const Environment& environment, const char* name, const std::string& otherwise) {
    const std::string value = environment.Get(name).value_or("");
    return value.empty() ? otherwise : value;
}

// Where lists and entries lie, the places that count most first.
struct Places {
    explicit Places(const Environment& environment) {
        const std::string home = environment.Get("HOME").value_or("");
        const std::string config = ValueOr(environment, "XDG_CONFIG_HOME", JoinPath(home, ".config"));
        const std::string data = ValueOr(environment, "XDG_DATA_HOME", JoinPath(home, ".local/share"));
        lists = Split(config + ":" + ValueOr(environment, "XDG_CONFIG_DIRS", "/etc/xdg"), ':');
        for (const std::string& directory :
             Split(data + ":" + ValueOr(environment, "XDG_DATA_DIRS", "/usr/local/share:/usr/share"), ':'))
            entries.push_back(JoinPath(directory, "applications"));
        lists.insert(lists.end(), entries.begin(), entries.end());
        for (std::string desktop : Split(environment.Get("XDG_CURRENT_DESKTOP").value_or(""), ':')) {
            for (char& c : desktop) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
            listNames.push_back(desktop + "-mimeapps.list");
        }
        listNames.emplace_back("mimeapps.list");
    }

    std::vector<std::string> lists;      // directories of the lists
    std::vector<std::string> entries;    // directories of the entries
    std::vector<std::string> listNames;  // what the lists are called
};

struct Candidates {
    std::vector<std::string> chosen;   // by the user or the desktop, the best first
    std::vector<std::string> capable;  // what else says that it opens the type
};

Candidates CandidatesFor(const Places& places, const std::string& mimeType) {
    Candidates candidates;
    std::vector<std::string> added;
    std::set<std::string> removed;
    const auto append = [&](std::vector<std::string>& to, const std::string& path, const char* group) {
        for (const std::string& id : Split(ValueOf(ReadGroup(path, group), mimeType), ';')) to.push_back(id);
    };
    for (const std::string& directory : places.lists) {
        for (const std::string& name : places.listNames) {
            const std::string path = JoinPath(directory, name);
            append(candidates.chosen, path, "Default Applications");
            append(added, path, "Added Associations");
            for (const std::string& id :
                 Split(ValueOf(ReadGroup(path, "Removed Associations"), mimeType), ';'))
                removed.insert(id);
        }
    }
    // What older desktops have in the place of those lists.
    for (const std::string& directory : places.entries)
        append(candidates.chosen, JoinPath(directory, "defaults.list"), "Default Applications");
    candidates.chosen.insert(candidates.chosen.end(), added.begin(), added.end());
    for (const std::string& directory : places.entries)
        append(candidates.capable, JoinPath(directory, "mimeinfo.cache"), "MIME Cache");
    std::erase_if(candidates.capable, [&removed](const std::string& id) { return removed.contains(id); });
    return candidates;
}

// The entry of that identifier, in which each '-' may stand for the '/' of a directory; empty if there is
// none.
std::string EntryPath(const Places& places, const std::string& id) {
    if (id.find('/') != std::string::npos) return {};
    for (const std::string& directory : places.entries) {
        std::string name = id;
        for (;;) {
            if (const std::string path = JoinPath(directory, name); PathExists(path)) return path;
            const size_t dash = name.find('-');
            if (dash == std::string::npos) break;
            name[dash] = '/';
        }
    }
    return {};
}

// The escapes that every text of an entry may have.
std::string Unescaped(std::string_view text) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        const char c = text[++i];
        result += c == 's' ? ' ' : c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
    }
    return result;
}

struct ExecWord {
    std::string text;
    bool isQuoted = false;  // some of it
};

// Words are parted by blanks; in double quotes a backslash takes the next character as it is.
std::vector<ExecWord> ExecWords(std::string_view exec) {
    std::vector<ExecWord> words;
    ExecWord word;
    bool begun = false;
    bool inQuotes = false;
    for (size_t i = 0; i < exec.size(); ++i) {
        const char c = exec[i];
        if (c == '"') {
            inQuotes = !inQuotes;
            begun = word.isQuoted = true;
        } else if (inQuotes && c == '\\' && i + 1 < exec.size()) {
            word.text += exec[++i];
        } else if (!inQuotes && (c == ' ' || c == '\t' || c == '\n')) {
            if (begun) words.push_back(std::exchange(word, {}));
            begun = false;
        } else {
            word.text += c;
            begun = true;
        }
    }
    if (begun) words.push_back(word);
    return words;
}

// A word with its field codes filled in. `hasFile` becomes true where one stood for the file.
std::string FilledIn(const std::string& word, const std::string& file, const std::string& path,
                     const Keys& keys, bool& hasFile) {
    constexpr std::string_view kFileCodes = "fFuU";
    std::string result;
    for (size_t i = 0; i < word.size(); ++i) {
        if (word[i] != '%' || i + 1 == word.size()) {
            result += word[i];
            continue;
        }
        const char code = word[++i];
        if (kFileCodes.find(code) != std::string_view::npos) {
            hasFile = true;
            result += file;
        } else if (code == 'c') {
            result += ValueOf(keys, "Name");
        } else if (code == 'k') {
            result += path;
        } else if (code == '%') {
            result += '%';
        }  // those that are left are out of use
    }
    return result;
}

// None for an entry that is no way to start a program on a file of any name.
std::vector<std::string> WordsFor(const Keys& keys, const std::string& path, const std::string& file) {
    constexpr size_t kCodeLength = 2;
    std::vector<std::string> words;
    bool hasFile = false;
    for (const auto& [word, isQuoted] : ExecWords(Unescaped(ValueOf(keys, "Exec")))) {
        if (word == "%i") {
            const std::string icon = ValueOf(keys, "Icon");
            if (!icon.empty()) words.insert(words.end(), {"--icon", icon});
            continue;
        }
        const bool hadFile = std::exchange(hasFile, false);
        std::string filled = FilledIn(word, file, path, keys, hasFile);
        // A text of several words, as a shell takes one: the file's name would be part of the command.
        if (isQuoted && hasFile && word.size() > kCodeLength) return {};
        hasFile = hasFile || hadFile;
        // A word that was a field code alone goes with it.
        if (!filled.empty() || word.find('%') == std::string::npos) words.push_back(std::move(filled));
    }
    if (!words.empty() && !hasFile) words.push_back(file);
    return words;
}

}  // namespace

std::optional<DesktopCommand> FindDesktopCommand(const Environment& environment, const std::string& mimeType,
                                                 const std::string& category, const std::string& file,
                                                 const std::function<bool(const std::string&)>& isFit) {
    const Places places(environment);
    const std::string searchPath = environment.Get("PATH").value_or("");
    const auto use = [&](const std::string& id, bool ofCategory) -> std::optional<DesktopCommand> {
        const std::string path = EntryPath(places, id);
        if (path.empty()) return std::nullopt;
        const Keys keys = ReadGroup(path, "Desktop Entry");
        const std::vector<std::string> categories = Split(ValueOf(keys, "Categories"), ';');
        if (ofCategory && std::find(categories.begin(), categories.end(), category) == categories.end())
            return std::nullopt;
        const std::string tried = Unescaped(ValueOf(keys, "TryExec"));
        std::vector<std::string> words = WordsFor(keys, path, file);
        if (ValueOf(keys, "Hidden") == "true" || words.empty() || !isFit(PathFile(words.front())) ||
            !HasProgram(words.front(), searchPath) || (!tried.empty() && !HasProgram(tried, searchPath)))
            return std::nullopt;
        return DesktopCommand{std::move(words), ValueOf(keys, "Terminal") == "true"};
    };
    const Candidates candidates = CandidatesFor(places, mimeType);
    for (const std::string& id : candidates.chosen) {
        if (auto command = use(id, false)) return command;
    }
    for (const bool ofCategory : {true, false}) {
        for (const std::string& id : candidates.capable) {
            if (auto command = use(id, ofCategory)) return command;
        }
    }
    return std::nullopt;
}

}  // namespace tavrin
