// SPDX-License-Identifier: Apache-2.0
#include "text/Tokens.h"

#include <algorithm>
#include <array>

#include "base/Files.h"
#include "text/Numbers.h"
#include "text/Report.h"

namespace tavrin {

namespace {

// What stands for nothing but itself in a token outside quotes.
constexpr std::array<bool, 256> kPlainTable = [] {
    std::array<bool, 256> table{};
    table.fill(true);
    for (const char c : {' ', '\t', '\r', '\n', '#', '"', '\\'}) table[static_cast<unsigned char>(c)] = false;
    return table;
}();

// How many plain bytes the text begins with.
size_t PlainRun(std::string_view text) {
    size_t length = 0;
    while (length < text.size() && kPlainTable[static_cast<unsigned char>(text[length])]) ++length;
    return length;
}

}  // namespace

bool EndsToken(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool SkipToToken(CArchive& archive) {
    for (;;) {
        const std::string_view rest = archive.Rest();
        size_t blanks = 0;
        while (blanks < rest.size() && EndsToken(rest[blanks])) ++blanks;
        archive.Skip(blanks);
        if (blanks == rest.size()) return false;
        if (rest[blanks] != '#') return true;
        archive.SkipToLineEnd();
    }
}

// Most tokens are one run of plain bytes, or one between double quotes.
bool ReadToken(CArchive& archive, std::string_view& token, std::string& store) {
    if (!SkipToToken(archive)) return false;
    const std::string_view rest = archive.Rest();
    if (const size_t length = PlainRun(rest); length > 0) {
        const bool atEnd = length == rest.size();
        if (atEnd || EndsToken(rest[length])) {
            token = rest.substr(0, length);
            archive.Skip(atEnd || rest[length] == '\n' ? length : length + 1);
            return true;
        }
    } else if (rest.front() == '"') {
        const size_t end = rest.find_first_of("\"\\", 1);
        if (end != std::string_view::npos && rest[end] == '"') {
            token = rest.substr(1, end - 1);
            archive.Skip(end + 1);
            return true;
        }
    }
    const bool isRead = ReadToken(archive, store);
    token = store;
    return isRead;
}

bool ReadToken(CArchive& archive, std::string& token) {
    token.clear();
    if (!SkipToToken(archive)) return false;
    bool inQuotes = false;
    bool escaped = false;
    std::string_view rest = archive.Rest();
    size_t i = PlainRun(rest);  // most often the whole token
    token.assign(rest, 0, i);
    for (; i < rest.size(); ++i) {
        const char c = rest[i];
        if (!inQuotes && (c == '#' || EndsToken(c))) {
            // A backslash may stand before; it has added nothing, so the token can still be empty.
            if (!token.empty()) break;
            archive.Skip(i);
            if (!SkipToToken(archive)) return false;
            rest = archive.Rest();
            i = static_cast<size_t>(-1);
            escaped = false;
        } else if (c == '"' && !escaped) {
            if (inQuotes) {
                archive.Skip(i + 1);
                return true;
            }
            inQuotes = true;
        } else if (c == '\\' && !escaped) {
            escaped = true;
        } else {
            token += c;
            escaped = false;
        }
    }
    // The byte that ended the token is consumed unless it is a line feed.
    const bool ended = i < rest.size();
    archive.Skip(ended && rest[i] != '\n' && rest[i] != '#' ? i + 1 : i);
    if (ended && rest[i] == '#') archive.SkipToLineEnd();
    return !token.empty();
}

bool ReadOpeningBrace(CArchive& archive, Report& report) {
    std::string token;
    if (!ReadToken(archive, token)) return false;
    if (token == "{") return true;
    report.AlertAt(archive, "expected opening brace");
    return false;
}

bool ReadKeyValueLine(CArchive& archive, std::string& key, std::string& value) {
    std::string_view line;
    while (archive.ReadLine(line)) {
        line = Trim(line);
        line = line.substr(0, line.find('#'));
        if (line.empty()) continue;
        if (line == "}") return false;
        const auto begin = std::find_if_not(line.begin(), line.end(), IsBlank);
        const auto end = std::find_if(begin, line.end(), IsBlank);
        if (begin == end) continue;  // nothing but blanks stood before the comment
        key.assign(begin, end);
        value = StripQuotes(Trim(std::string_view(end, line.end())));
        return true;
    }
    return false;
}

bool ReadTextBlock(CArchive& archive, std::string& text) {
    text.clear();
    bool begun = false;
    std::string_view line;
    while (archive.ReadLine(line)) {
        line = Trim(line);
        if (line == "}") return true;
        if (line.empty() && !begun) continue;
        if (begun) text += "\r\n";
        begun = true;
        if (line.starts_with('>')) line.remove_prefix(1);
        text += line;
    }
    return false;
}

int ParseBool(std::string_view text) {
    if (text == "false") return 0;
    if (text == "true") return 1;
    return ParseInt(text);
}

std::string QuoteString(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += c;
    }
    result += '"';
    return result;
}

std::string StripQuotes(std::string_view text) {
    if (text.empty() || text.front() != '"' || text.back() != '"') return std::string(text);
    return text.size() == 1 ? std::string() : std::string(text.substr(1, text.size() - 2));
}

std::string_view TrimRight(std::string_view text) {
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    return TrimRight(text);
}

std::string ToLower(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return result;
}

bool ReadFileToText(const std::string& path, std::string& text) {
    text.clear();
    std::string raw;
    std::string error;
    if (!ReadWholeFile(path, raw, error)) return false;
    for (const char c : raw) {
        if (c == '\n') text += '\r';
        text += c;
    }
    return true;
}

}  // namespace tavrin
