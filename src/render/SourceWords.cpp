// SPDX-License-Identifier: Apache-2.0
#include "render/SourceWords.h"

#include <algorithm>

#include "site/Site.h"
#include "text/Archive.h"
#include "text/TokenParser.h"

namespace tavrin {

namespace {

constexpr const char* kSetting = "source.words";

struct NamedClass {
    std::string_view name;
    SourceClass kind;
};
constexpr NamedClass kClasses[] = {
    {"keyword", SourceClass::kKeyword},   {"type", SourceClass::kType},
    {"function", SourceClass::kFunction}, {"variable", SourceClass::kVariable},
    {"constant", SourceClass::kConstant}, {"directive", SourceClass::kDirective},
};

}  // namespace

// Reads one file; each operation that returns false has alerted where and why.
class SourceWords::Parser : private TokenParser {
  public:
    Parser(SourceWords& words, CArchive& archive, Report& report)
        : TokenParser(archive, report), m_words(words) {}

    bool Read() {
        std::string keyword;
        while (ReadToken(m_archive, keyword)) {
            if (!TakeClause(keyword)) return false;
        }
        return true;
    }

  private:
    bool Fail(const std::string& problem) {
        m_report.AlertAt(m_archive, "%s", problem.c_str());
        return false;
    }

    bool TakeClause(const std::string& keyword) {
        if (keyword == "linecomment") return TakeMarks(SourceClass::kComment, false, false);
        if (keyword == "blockcomment") return TakeMarks(SourceClass::kComment, true, false);
        if (keyword == "string") return TakeMarks(SourceClass::kString, true, true);
        if (keyword == "directive") return TakeMark(m_words.m_directive);
        if (keyword == "numbers") return TakeFlag(m_words.m_hasNumbers);
        if (keyword == "ignorecase") return TakeCase();
        if (keyword == "letters") return TakeLetters();
        if (keyword == "class") return TakeClass();
        return Fail("\"" + keyword +
                    "\" is none of linecomment, blockcomment, string, directive, numbers, ignorecase, "
                    "letters and class");
    }

    bool TakeMark(std::string& mark) {
        if (!Operand(mark)) return false;
        const bool isMark = !mark.empty() && mark.find_first_of(" \t\r\n") == std::string::npos;
        return isMark || Fail("\"" + mark + "\" is no mark: it must not be empty, nor hold blanks");
    }

    bool TakeMarks(SourceClass kind, bool hasClose, bool isOfLine) {
        Marks marks;
        marks.kind = kind;
        if (!TakeMark(marks.open) || (hasClose && !TakeMark(marks.close))) return false;
        marks.overLines = hasClose && !isOfLine;
        if (isOfLine) {
            std::string escape;
            if (!Operand(escape)) return false;
            if (escape.size() > 1) return Fail("\"" + escape + "\" is more than one character");
            marks.escape = escape.empty() ? '\0' : escape.front();
        }
        m_words.m_opening[static_cast<unsigned char>(marks.open.front())] = true;
        m_words.m_marks.push_back(std::move(marks));
        return true;
    }

    bool TakeFlag(bool& flag) {
        int number = 0;
        if (!Flag(number)) return false;
        flag = number != 0;
        return true;
    }

    bool TakeCase() {
        if (!m_words.m_words.empty() || !m_words.m_beginnings.empty())
            return Fail("ignorecase stands before the first class");
        return TakeFlag(m_words.m_ignoresCase);
    }

    bool TakeLetters() {
        std::string letters;
        if (!Operand(letters)) return false;
        for (const char c : letters) m_words.m_letters[static_cast<unsigned char>(c)] = true;
        return true;
    }

    bool TakeClass() {
        std::string name;
        if (!Operand(name)) return false;
        const auto known = std::find_if(std::begin(kClasses), std::end(kClasses),
                                        [&name](const NamedClass& each) { return each.name == name; });
        if (known == std::end(kClasses)) {
            return Fail("\"" + name +
                        "\" is no class of words: keyword, type, function, variable, constant or directive");
        }
        if (!Expect("{")) return false;
        std::string word;
        while (ReadToken(m_archive, word)) {
            if (word == "}") return true;
            if (!AddWord(word, known->kind)) return false;
        }
        return Fail("the words of the class " + name + " have no closing brace");
    }

    bool AddWord(const std::string& written, SourceClass kind) {
        std::string word = m_words.m_ignoresCase ? ToLower(written) : written;
        const bool isBeginning = word.size() > 1 && word.ends_with('*');
        if (isBeginning) word.pop_back();
        const bool isWord = !word.empty() && std::all_of(word.begin(), word.end(),
                                                         [this](char c) { return m_words.IsLetter(c); });
        if (!isWord) {
            return Fail("\"" + written +
                        "\" is no word: it is of letters, digits, _ and what \"letters\" names, and * at its "
                        "end stands for more of them");
        }
        if (!isBeginning) {
            m_words.m_words.insert_or_assign(std::move(word), kind);
            return true;
        }
        m_words.m_beginnings.push_back({std::move(word), kind});
        return true;
    }

    SourceWords& m_words;
};

SourceWords::SourceWords() {
    for (unsigned c = 0; c < m_letters.size(); ++c) {
        m_letters[c] = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                       c == '_' || c >= 0x80;
    }
}

std::optional<SourceWords> SourceWords::Read(CArchive& archive, Report& report) {
    SourceWords words;
    if (!Parser(words, archive, report).Read()) return std::nullopt;
    // So that the first mark that fits is the right one, as "///" before "//".
    std::stable_sort(words.m_marks.begin(), words.m_marks.end(),
                     [](const Marks& a, const Marks& b) { return a.open.size() > b.open.size(); });
    std::stable_sort(words.m_beginnings.begin(), words.m_beginnings.end(),
                     [](const Beginning& a, const Beginning& b) { return a.text.size() > b.text.size(); });
    return words;
}

// A document can bring another library into use, of which these settings say nothing.
SourceWords SourceWords::Of(const Site& site) {
    std::string name;
    const bool isNamed = site.settingsLibrary == site.directories.libName &&
                         site.settings.GetSettingToken(kSetting, name) && !name.empty();
    if (!isNamed) return {};
    const std::string path = site.LibraryPath(name);
    std::string error;
    auto archive = CArchive::Open(path, error);
    if (!archive) {
        site.report.Alert("unable to open %s for reading: %s", path.c_str(), error.c_str());
        return {};
    }
    return Read(*archive, site.report).value_or(SourceWords());
}

SourceClass SourceWords::ClassOf(std::string_view word) const {
    std::string lower;
    if (m_ignoresCase) word = lower = ToLower(word);
    if (const auto found = m_words.find(word); found != m_words.end()) return found->second;
    for (const Beginning& beginning : m_beginnings) {
        if (word.starts_with(beginning.text)) return beginning.kind;
    }
    return SourceClass::kPlain;
}

}  // namespace tavrin
