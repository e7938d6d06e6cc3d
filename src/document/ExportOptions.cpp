// SPDX-License-Identifier: Apache-2.0
#include "document/ExportOptions.h"

#include <array>

#include "base/Paths.h"
#include "text/Archive.h"
#include "text/Numbers.h"
#include "text/Report.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

// In the order in which documents hold them.
struct ExportKey {
    std::string_view key;
    int CExportOptions::*flag;
    std::string CExportOptions::*path;
    bool isDirectory;
};
constexpr std::array<ExportKey, 6> kKeys = {{
    {"tavrndir", &CExportOptions::saveTavrn, &CExportOptions::tavrnPath, true},
    {"shadersourcedir", &CExportOptions::saveSource, &CExportOptions::sourcePath, true},
    {"compiledshaderdir", &CExportOptions::saveCompiled, &CExportOptions::compiledPath, true},
    {"shaderinterfacedir", &CExportOptions::saveShaderIface, &CExportOptions::shaderIfacePath, true},
    {"renderinterfacedir", &CExportOptions::saveRenderIface, &CExportOptions::renderIfacePath, true},
    {"postsavescript", &CExportOptions::runPostSave, &CExportOptions::postSaveScript, false},
}};

const ExportKey* FindKey(std::string_view key) {
    for (const ExportKey& candidate : kKeys) {
        if (candidate.key == key) return &candidate;
    }
    return nullptr;
}

bool EndsInSeparator(const std::string& path) {
    return !path.empty() && (path.back() == '/' || path.back() == '\\');
}

}  // namespace

bool IsExportOption(std::string_view key) { return FindKey(key) != nullptr; }

void SetExportOption(CExportOptions& options, std::string_view key, std::string_view line) {
    const ExportKey* known = FindKey(key);
    if (known == nullptr) return;
    FieldScanner scanner(line);
    const auto flag = scanner.Int();
    if (flag) options.*known->flag = *flag;
    std::string& path = options.*known->path;
    if (const std::string_view text = Trim(scanner.Rest()); flag && !text.empty()) path = text;
    path = Trim(path);
    if (known->isDirectory && !EndsInSeparator(path)) path += Separator(kNativeStyle);
}

bool ReadExportOptions(CArchive& archive, CExportOptions& options, Report& report) {
    std::string token;
    if (!ReadToken(archive, token)) return true;
    while (ReadToken(archive, token) && token != "}") {
        std::string_view rest;
        archive.ReadLine(rest);  // of an unknown option too: its flag and path are no words of the caller's
        if (!IsExportOption(token)) {
            report.AlertAt(archive, "unknown export option: %s", token.c_str());
            return false;
        }
        SetExportOption(options, token, rest);
    }
    return true;
}

std::string ExportOptionLines(const CExportOptions& options) {
    std::string text;
    for (const ExportKey& key : kKeys) {
        const std::string& path = options.*key.path;
        text.append("    ").append(key.key).append(" ").append(std::to_string(options.*key.flag)).append(" ");
        const std::string line = OneLine(key.isDirectory ? PathDir(path) : path);
        text.append(Trim(line)).append("\n");
    }
    return text;
}

}  // namespace tavrin
