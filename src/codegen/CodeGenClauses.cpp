// SPDX-License-Identifier: Apache-2.0
// The template clauses of site files and box definitions.
#include <algorithm>

#include "codegen/CodeGen.h"
#include "text/Archive.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr std::string_view kTerminator = "<<EOT>>";

enum ModeCodes : int {
    kFirstFileMode = 3,
    kUnknownMode = 6,
};

// The in-line form: whole lines as they stand, up to the terminator.
bool ReadInlineLines(CArchive& archive, std::vector<std::string>& lines, std::string& errorText) {
    std::string_view line;
    while (archive.ReadLine(line)) {
        if (line == kTerminator) return true;
        lines.emplace_back(line);
    }
    errorText = "Unexpected EOF while searching for <<EOT>>\n";
    return false;
}

// What the mode names behind its '@'.
std::string TemplateFile(const std::string& modeText, const std::string& libraryDir) {
    std::string path = modeText.substr(modeText.find('@') + 1);
    if (!path.starts_with('/') && !path.starts_with('.')) path = libraryDir + "/" + path;
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

bool ReadFileLines(const std::string& keyword, const std::string& modeText, const std::string& path,
                   std::vector<std::string>& lines, std::string& errorText) {
    std::string reason;
    auto file = CArchive::Open(path, reason);
    if (!file) {
        errorText = "codegen." + keyword + " " + modeText + ": '" + path + "': " + reason;
        return false;
    }
    std::string_view line;
    while (file->ReadLine(line)) lines.emplace_back(TrimRight(line));
    return true;
}

}  // namespace

int CCodeGen::ModeCode(std::string_view modeText) {
    if (modeText == "append") return 0;
    if (modeText == "insert") return 1;
    if (modeText == "unique") return 2;
    if (modeText.starts_with("append@")) return kFirstFileMode;
    if (modeText.starts_with("insert@")) return kFirstFileMode + 1;
    if (modeText.starts_with("unique@")) return kFirstFileMode + 2;
    return kUnknownMode;
}

bool CCodeGen::ParseClause(CArchive& archive, const std::string& keyword, const std::string& libraryDir,
                           std::string& errorText) {
    bool isSetting = true;
    const bool read = ParseSetting(archive, keyword, isSetting, errorText);
    return isSetting ? read : ParseBlock(archive, keyword, libraryDir, errorText);
}

bool CCodeGen::ParseSetting(CArchive& archive, const std::string& keyword, bool& isSetting,
                            std::string& errorText) {
    const auto readInto = [&](std::string& target, const char* missing) {
        std::string token;
        if (ReadToken(archive, token)) {
            target = std::move(token);
            return true;
        }
        errorText = "'" + keyword + "'" + missing;
        return false;
    };
    if (keyword == "clearallvariables") {
        ClearVariables();
        return true;
    }
    if (keyword == "setvariable") {
        std::string name;
        std::string value;
        if (!readInto(name, " missing <varname> argument") ||
            !readInto(value, " missing <varvalue> argument")) {
            return false;
        }
        SetVariable(name, value);
        return true;
    }
    if (keyword == "linecomment") return readInto(m_lineComment, ": missing <comment> argument");
    if (keyword == "opencomment") return readInto(m_openComment, ": missing <comment> argument");
    if (keyword == "closecomment") return readInto(m_closeComment, ": missing <comment> argument");
    if (keyword == "vararg.sep") return readInto(m_varargSep, ": missing <quoted arg separator> argument");
    isSetting = false;
    return true;
}

bool CCodeGen::ParseBlock(CArchive& archive, const std::string& keyword, const std::string& libraryDir,
                          std::string& errorText) {
    std::string_view rest;
    if (!archive.ReadLine(rest)) {
        errorText = "expected <append|insert|unique> argument";
        return false;
    }
    const std::string modeText(Trim(rest));
    const int code = ModeCode(modeText);
    if (code == kUnknownMode) {
        errorText = "ERROR: unknown codegen type '" + keyword + "'";
        return false;
    }
    std::vector<std::string> lines;
    uint32_t file = m_readFrom;
    size_t number = 1;
    if (code < kFirstFileMode) {
        number = static_cast<size_t>(archive.LineNumber());
        if (!ReadInlineLines(archive, lines, errorText)) return false;
    } else {
        const std::string path = TemplateFile(modeText, libraryDir);
        if (!ReadFileLines(keyword, modeText, path, lines, errorText)) return false;
        file = NumberOf(path);
    }
    for (std::string& line : lines) AddLineCoded(keyword, code, std::move(line), LineSource(file, number++));
    return true;
}

}  // namespace tavrin
