// SPDX-License-Identifier: Apache-2.0
#include "app/SiteFileReader.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "codegen/CodeGen.h"
#include "document/ExportOptions.h"
#include "site/Site.h"

namespace tavrin {

namespace {

constexpr const char* kSiteFile = "tavrn.def";
constexpr std::string_view kCodegenPrefix = "codegen.";
constexpr std::string_view kCodeformatPrefix = "codeformat.";

// The directory of the user's own site file; empty if the environment names none.
std::string PersonalDirectory(const Environment& environment) {
    const auto drive = environment.Get("homeDrive");
    const auto path = environment.Get("homePath");
    if (drive && path) return *drive + Separator(kNativeStyle) + *path;
    return environment.Get("HOME").value_or("");
}

}  // namespace

void ReadSiteFiles(SiteTargets& targets) {
    targets.site.settingsLibrary = targets.site.directories.libName;
    if (!targets.site.directories.libDir.empty()) ReadSiteFile(targets.site.LibraryPath(kSiteFile), targets);
    const std::string personal = PersonalDirectory(targets.site.environment);
    if (!personal.empty()) ReadSiteFile(personal + Separator(kNativeStyle) + kSiteFile, targets);
    ReadSiteFile(std::string(".") + Separator(kNativeStyle) + kSiteFile, targets);
}

void ReadSiteFile(const std::string& path, SiteTargets& targets) {
    std::string error;
    auto archive = CArchive::Open(path, error);
    if (archive) {
        SiteFileReader(*archive, targets).Read();
    } else if (PathExists(path)) {
        targets.site.report.LogLine("WARNING: site file %s is not read: %s", path.c_str(), error.c_str());
    }
}

SiteFileReader::SiteFileReader(CArchive& archive, SiteTargets& targets)
    : TokenParser(archive, targets.site.report), m_targets(targets), m_site(targets.site) {}

void SiteFileReader::Read() {
    std::string keyword;
    while (ReadToken(m_archive, keyword)) {
        if (!ReadClause(keyword)) return;
    }
}

std::string SiteFileReader::RestOfLine() {
    std::string_view line;
    m_archive.ReadLine(line);
    return std::string(Trim(line));
}

// False ends the reading of this file.
bool SiteFileReader::ReadClause(const std::string& keyword) {
    if (keyword == "roe") {
        m_targets.readForm(m_archive);
    } else if (keyword == "wwm") {
        SkipBlock();
    } else if (keyword == "toolbutton") {
        ReadToolButton();
    } else if (keyword == "wordtranslate.clear") {
        m_site.types.ClearWords();
    } else if (keyword == "exportoptions") {
        ReadExportOptions(m_archive, m_targets.exportDefaults, m_report);
    } else if (keyword == "wordtranslate.add") {
        ReadWordTranslation();
    } else if (keyword == "menudir.add") {
        m_site.menuDirs.push_back(RestOfLine());
    } else if (keyword.starts_with(kCodegenPrefix)) {
        return ReadCodeGen(keyword.substr(kCodegenPrefix.size()));
    } else if (keyword.starts_with(kCodeformatPrefix)) {
        RestOfLine();
    } else if (keyword == "datatype.clearall") {
        m_site.types.ResetDataTypes();
    } else if (keyword == "datatype.add") {
        ReadDataType();
    } else if (keyword == "ext.shaderiface") {
        return ReadShaderIface();
    } else if (!keyword.empty()) {
        m_site.settings.Store(keyword, RestOfLine());
    }
    return true;
}

void SiteFileReader::SkipBlock() {
    std::string_view line;
    while (m_archive.ReadLine(line) && !line.starts_with('}')) {
    }
}

// The first of a file empties the list, so that a later file replaces it and does not add to it.
void SiteFileReader::ReadToolButton() {
    if (!m_toolButtonsSeen) m_site.toolButtons.clear();
    m_toolButtonsSeen = true;
    const std::string line = RestOfLine();
    FieldScanner scanner(line);
    if (!scanner.Int() || !scanner.Literal("=")) return;
    if (const auto name = scanner.Word()) m_site.toolButtons.emplace_back(*name);
}

void SiteFileReader::ReadWordTranslation() {
    const std::string line = RestOfLine();
    FieldScanner scanner(line);
    const auto word = scanner.Word();
    const auto translation = scanner.Word();
    if (word) m_site.types.SetWord(std::string(*word), std::string(translation.value_or("")));
}

bool SiteFileReader::ReadShaderIface() {
    const std::string line = RestOfLine();
    FieldScanner scanner(line);
    const auto type = scanner.Word();
    const auto extension = scanner.Word();
    if (!type) {
        m_report.AlertAt(m_archive, "invalid shaderiface extension spec: %s", line.c_str());
        return false;
    }
    m_site.shaderIfaceExts[std::string(*type)] = extension.value_or("");
    return true;
}

bool SiteFileReader::ReadCodeGen(const std::string& keyword) {
    std::string errorText;
    if (m_targets.codeGen.ParseClause(m_archive, keyword, m_site.directories.libDir, errorText)) return true;
    m_report.AlertAt(m_archive, "%s", errorText.c_str());
    return false;
}

// Lines up to one with a brace in its first column. Those that do not hold two words are passed over, the
// one with the opening brace among them.
void SiteFileReader::ReadDataType() {
    std::string name;
    TypeTables::Declaration declaration;
    std::string_view line;
    while (m_archive.ReadLine(line) && !line.starts_with('}')) {
        FieldScanner scanner(line.substr(0, line.find('#')));
        const auto word = scanner.Word();
        const std::string text = StripQuotes(Trim(scanner.Rest()));
        if (!word || Trim(scanner.Rest()).empty()) continue;
        if (*word == "name") {
            name = text;
        } else if (*word == "declarehead") {
            declaration.head = text;
        } else if (*word == "declaretail") {
            declaration.tail = text;
        } else {
            m_report.AlertAt(m_archive, "invalid keyword in datatype.add clause: %s",
                             std::string(*word).c_str());
            break;
        }
    }
    m_site.types.SetDataType(name, std::move(declaration));
}

}  // namespace tavrin
