// SPDX-License-Identifier: Apache-2.0
#include "render/ShaderExport.h"

#include <algorithm>
#include <array>

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Sha256.h"
#include "document/TvDoc.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "text/VisibleText.h"

namespace tavrin {

namespace {

struct KindFields {
    int CExportOptions::*flag;
    std::string CExportOptions::*path;
};

KindFields FieldsOf(ExportKind kind) {
    switch (kind) {
        case ExportKind::kShaderSource:
            return {&CExportOptions::saveSource, &CExportOptions::sourcePath};
        case ExportKind::kCompiledShader:
            return {&CExportOptions::saveCompiled, &CExportOptions::compiledPath};
        case ExportKind::kShaderIface:
            return {&CExportOptions::saveShaderIface, &CExportOptions::shaderIfacePath};
        case ExportKind::kRenderIface:
            break;
    }
    return {&CExportOptions::saveRenderIface, &CExportOptions::renderIfacePath};
}

// The files, in the order in which the script is told of them.
struct Target {
    int CExportOptions::*flag;
    std::string CExportOptions::*path;
};
constexpr std::array<Target, 5> kTargets = {
    {{&CExportOptions::saveTavrn, &CExportOptions::tavrnPath},
     {&CExportOptions::saveSource, &CExportOptions::sourcePath},
     {&CExportOptions::saveCompiled, &CExportOptions::compiledPath},
     {&CExportOptions::saveShaderIface, &CExportOptions::shaderIfacePath},
     {&CExportOptions::saveRenderIface, &CExportOptions::renderIfacePath}}};

std::string TargetWord(int flag, const std::string& path) { return flag != 0 && !path.empty() ? path : "-"; }

}  // namespace

CExportOptions ShaderExport::OnlyThis(ExportKind kind, const std::string& path) {
    CExportOptions options;
    const KindFields fields = FieldsOf(kind);
    options.*fields.flag = 1;
    options.*fields.path = path;
    return options;
}

std::string ShaderExport::DocumentPath(ExportKind kind) const {
    return m_document.exportOptions.*FieldsOf(kind).path;
}

bool ShaderExport::ExportPathOk(const std::string& path) {
    const std::string full = FullPath(path);
    if (!HasWhitespace(full)) return true;
    m_site.report.Alert("export file path \"%s\" contains whitespace", full.c_str());
    return false;
}

// Which flag checks which path is as it has always been, the last two pairs included.
bool ShaderExport::PathsOk(const CExportOptions& options) {
    return (options.saveTavrn == 0 || ExportPathOk(options.tavrnPath)) &&
           (options.saveSource == 0 || ExportPathOk(options.sourcePath)) &&
           (options.saveCompiled == 0 || ExportPathOk(options.compiledPath)) &&
           (options.saveRenderIface == 0 || ExportPathOk(options.shaderIfacePath)) &&
           (options.runPostSave == 0 || ExportPathOk(options.renderIfacePath));
}

// The script splits the command into words by its double quotes.
bool ShaderExport::PostSaveOk(const CExportOptions& options) {
    const std::string& command = options.postSaveScript;
    if (options.runPostSave == 0 || std::count(command.begin(), command.end(), '"') % 2 == 0) return true;
    m_site.report.Alert("post save command %s has a double quote that is not closed", command.c_str());
    return false;
}

bool ShaderExport::WriteDocument(const std::string& path) {
    if (m_document.WouldLoseUnread(path)) {
        if (m_mayLose == nullptr) {
            m_site.report.Alert("%s was not read to its end, and exporting would lose the rest",
                                path.c_str());
            return false;
        }
        if (!m_mayLose(path)) return false;
    }
    const DocumentFile::Now now = m_document.LookAt(path);
    if (now != DocumentFile::Now::kAsKnown && (m_mayReplace == nullptr || !m_mayReplace(path, now))) {
        if (m_mayReplace == nullptr)
            m_site.report.Alert("%s is no longer what it was when it was last read or saved", path.c_str());
        return false;
    }
    std::string error;
    if (m_document.SaveCopy(path, error)) return true;
    m_site.report.Alert("unable to write shader file %s", path.c_str());
    return false;
}

// Each path is a word of its own on its way to the script; but logs and the script's own messages are lines.
bool ShaderExport::IsFreeOfControls(const char* what, const std::string& text) {
    const auto isControl = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < ' ' || byte == 0x7F;
    };
    if (std::none_of(text.begin(), text.end(), isControl)) return true;
    m_site.report.Alert("%s \"%s\" contains a control character", what, VisibleOneLine(text).c_str());
    return false;
}

bool ShaderExport::TextsOk(const CExportOptions& options) {
    for (const Target& target : kTargets) {
        if (options.*target.flag != 0 && !IsFreeOfControls("export file path", options.*target.path))
            return false;
    }
    std::string command = options.runPostSave != 0 ? options.postSaveScript : std::string();
    std::replace(command.begin(), command.end(), '\t', ' ');  // which parts words, as a blank does
    return IsFreeOfControls("post save command", command);
}

bool ShaderExport::Check(const CExportOptions& options) {
    if (m_document.m_boxes.empty()) {
        m_site.report.Alert("desk is empty");
        return false;
    }
    if (m_session.m_shown == Rendered::kProbe) {
        m_site.report.Alert("an output that is probed is not exported; export without the probe");
        return false;
    }
    return PathsOk(options) && TextsOk(options) && PostSaveOk(options);
}

bool ShaderExport::Export(const CExportOptions& options) { return Check(options) && Start(options); }

bool ShaderExport::ExportAll() { return ExportForDocument(m_document.exportOptions); }

bool ShaderExport::ExportAsDocumentSays(ExportKind kind) {
    return ExportForDocument(OnlyThis(kind, DocumentPath(kind)));
}

bool ShaderExport::ExportForDocument(const CExportOptions& options) {
    if (!Check(options)) return false;
    const ExportPlan plan = PlanOf(options);
    if (m_document.IsForeign() && !plan.lines.empty()) {
        if (m_mayFollow == nullptr) {
            m_site.report.Alert("%s was not saved here: what it wants exported is not done",
                                m_document.Path().c_str());
            return false;
        }
        const CExportOptions asked = options;  // the document may change while the question is open
        return m_mayFollow(plan) && Start(asked);
    }
    return Start(options);
}

ExportPlan ShaderExport::PlanOf(const CExportOptions& options) const {
    ExportPlan plan;
    std::string all = FullPath(m_document.Path()) + '\0';
    for (const Target& target : kTargets) {
        const std::string& path = options.*target.path;
        if (options.*target.flag == 0 || path.empty()) {
            all += '\0';
            continue;
        }
        const std::string full = FullPath(path);
        all += full + '\0';
        plan.lines.push_back("write " + VisibleOneLine(full) +
                             (PathExists(full) ? ", which replaces the file there" : ""));
    }
    if (options.runPostSave != 0 && !options.postSaveScript.empty()) {
        all += options.postSaveScript;
        plan.lines.push_back("run " + VisibleOneLine(options.postSaveScript));
    }
    plan.digest = Sha256Hex(all);
    return plan;
}

bool ShaderExport::Start(const CExportOptions& options) {
    const bool writesDocument = options.saveTavrn != 0 && !options.tavrnPath.empty();
    if (writesDocument && !WriteDocument(options.tavrnPath)) return false;
    if (!m_session.SaveShader()) return false;
    m_site.commands.RunScript({m_site.LibraryPath("bin/exportall"), m_session.ShaderName(),
                               TargetWord(options.saveSource, options.sourcePath),
                               TargetWord(options.saveCompiled, options.compiledPath),
                               TargetWord(options.saveShaderIface, options.shaderIfacePath),
                               TargetWord(options.saveRenderIface, options.renderIfacePath),
                               TargetWord(options.runPostSave, options.postSaveScript)},
                              "export");
    return true;
}

void UpdateExportPaths(CTvDoc& document, const Site& site) {
    const std::string base = PathBase(document.Title());
    CExportOptions& options = document.exportOptions;
    const auto rename = [&base](std::string& path, const std::string& extension) {
        path = PathDir(path) + base + extension;
    };
    rename(options.tavrnPath, site.docExt);
    rename(options.sourcePath, site.extShaderSource);
    rename(options.compiledPath, site.extCompiledShader);
    rename(options.renderIfacePath, site.extRenderIface);
    rename(options.shaderIfacePath, site.extShaderIface);
}

}  // namespace tavrin
