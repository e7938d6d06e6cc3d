// SPDX-License-Identifier: Apache-2.0
#include "app/SiteFileReader.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "app/LocalSiteFile.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "base/Sha256.h"
#include "codegen/CodeGen.h"
#include "document/ExportOptions.h"
#include "site/Site.h"
#include "text/VisibleText.h"

namespace tavrin {

namespace {

constexpr const char* kSiteFile = "tavrn.def";
constexpr std::string_view kCodegenPrefix = "codegen.";
constexpr std::string_view kCodeformatPrefix = "codeformat.";
// Settings whose value is a program that is run.
constexpr std::array<std::string_view, 3> kCommandSettings = {"editorcmd", "sourcecodeprefilter",
                                                              "livecommand"};

// The directory of the user's own site file; empty if the environment names none.
std::string PersonalDirectory(const Environment& environment) {
    const auto drive = environment.Get("homeDrive");
    const auto path = environment.Get("homePath");
    if (drive && path) return *drive + Separator(kNativeStyle) + *path;
    return environment.Get("HOME").value_or("");
}

// What it names to be run stays in `local`, unless it is a file that has been read already.
void ReadLocalFile(SiteTargets& targets, const std::string& library, const std::string& personal) {
    const std::string path = std::string(".") + Separator(kNativeStyle) + kSiteFile;
    LocalSiteFile file = ReadLocalSiteFile(path, library, personal);
    if (file.path.empty()) return;
    if (!file.problem.empty()) {
        targets.site.report.LogLine("WARNING: site file %s is not read: %s", file.path.c_str(),
                                    file.problem.c_str());
        return;
    }
    targets.isLocal = file.isOther;
    targets.local.path = file.path;
    targets.local.digest = Sha256Hex(file.path + '\0' + file.text);
    CArchive archive = CArchive::FromText(path, std::move(file.text));
    SiteFileReader(archive, targets).Read();
    targets.isLocal = false;
}

}  // namespace

std::vector<std::string> LocalCommands::Lines() const {
    std::vector<std::string> lines;
    for (const auto& [key, value] : settings) lines.push_back(VisibleOneLine(key + " " + value));
    if (postSave) lines.push_back(VisibleOneLine("postsavescript " + postSave->second));
    for (const std::string& line : formLines) lines.push_back(VisibleOneLine(line));
    return lines;
}

void ReadSiteFiles(SiteTargets& targets) {
    targets.site.settingsLibrary = targets.site.directories.libName;
    std::string library;
    if (!targets.site.directories.libDir.empty()) library = targets.site.LibraryPath(kSiteFile);
    if (!library.empty()) ReadSiteFile(library, targets);
    std::string personal = PersonalDirectory(targets.site.environment);
    if (!personal.empty()) {
        personal += std::string(1, Separator(kNativeStyle)) + kSiteFile;
        ReadSiteFile(personal, targets);
    }
    ReadLocalFile(targets, library, personal);
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
    } else if (keyword == "probe") {
        ReadProbe();
    } else if (keyword == "wordtranslate.clear") {
        m_site.types.ClearWords();
    } else if (keyword == "exportoptions") {
        ReadExports();
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
        ReadSetting(keyword);
    }
    return true;
}

void SiteFileReader::ReadSetting(const std::string& key) {
    const bool isCommand =
        std::find(kCommandSettings.begin(), kCommandSettings.end(), key) != kCommandSettings.end();
    if (m_targets.isLocal && isCommand) {
        m_targets.local.settings.emplace_back(key, RestOfLine());
    } else {
        m_site.settings.Store(key, RestOfLine());
    }
}

void SiteFileReader::ReadExports() {
    CExportOptions& options = m_targets.exportDefaults;
    const std::pair before(options.runPostSave, options.postSaveScript);
    ReadExportOptions(m_archive, options, m_report);
    const std::pair after(options.runPostSave, options.postSaveScript);
    if (!m_targets.isLocal || after == before) return;
    m_targets.local.postSave = after;
    std::tie(options.runPostSave, options.postSaveScript) = before;
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

void SiteFileReader::ReadProbe() {
    CArchive line = CArchive::FromText({}, RestOfLine());
    std::string file;
    if (ReadToken(line, file) && !file.empty()) m_site.probes.push_back(std::move(file));
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
    m_targets.codeGen.ReadFrom(m_archive.Path());
    if (m_targets.codeGen.ParseClause(m_archive, keyword, m_site.directories.libDir, errorText)) return true;
    m_report.AlertAt(m_archive, "%s", errorText.c_str());
    return false;
}

// Lines up to one with a brace in its first column. Those that do not hold two words are passed over, the
// one with the opening brace among them.
void SiteFileReader::ReadDataType() {
    std::string name;
    TypeTables::Declaration declaration;
    TypeMark mark;
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
        } else if (*word == "color") {
            mark.color = ReadMarkColor(text);
        } else if (*word == "shape") {
            mark.shape = ReadMarkShape(text);
        } else {
            m_report.AlertAt(m_archive, "invalid keyword in datatype.add clause: %s",
                             std::string(*word).c_str());
            break;
        }
    }
    m_site.types.SetDataType(name, std::move(declaration));
    m_site.types.SetMark(name, mark);
}

std::optional<std::array<float, 3>> SiteFileReader::ReadMarkColor(const std::string& text) {
    FieldScanner scanner(text);
    std::array<float, 3> color{};
    for (float& component : color) {
        const auto number = scanner.Float();
        if (!number || !(*number >= 0 && *number <= 1)) {
            m_report.AlertAt(m_archive,
                             "the color of a type is three numbers from 0 to 1, such as 0.9 0.7 0.2: %s",
                             text.c_str());
            return std::nullopt;
        }
        component = *number;
    }
    return color;
}

std::optional<TypeShape> SiteFileReader::ReadMarkShape(const std::string& text) {
    const auto shape = TypeShapeNamed(text);
    if (shape) return shape;
    std::string names;
    for (const std::string_view name : kTypeShapeNames) names.append(names.empty() ? "" : ", ").append(name);
    m_report.AlertAt(m_archive, "the shape of a type is one of %s: %s", names.c_str(), text.c_str());
    return std::nullopt;
}

}  // namespace tavrin
