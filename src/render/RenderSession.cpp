// SPDX-License-Identifier: Apache-2.0
#include "render/RenderSession.h"

#include <algorithm>
#include <array>

#include "base/Files.h"
#include "base/Paths.h"
#include "codegen/CodeGen.h"
#include "render/ArgInfo.h"
#include "render/FilterScript.h"
#include "render/NetworkCompare.h"
#include "render/Probe.h"
#include "site/Site.h"
#include "text/OutOfMemory.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr const char* kRenderOptions = "render_options";

std::string JoinLines(const std::vector<std::string>& lines) {
    size_t size = 0;
    for (const std::string& line : lines) size += line.size() + 1;
    std::string text;
    text.reserve(size);
    for (const std::string& line : lines) text.append(line).append("\n");
    return text;
}

bool IsControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < ' ' || byte == 0x7F;
}

// Names that the work directory has for files of its own, numbered history directories among them.
bool IsWorkFile(const std::string& name) {
    constexpr std::array kFiles = {
        "",           ".",       "..",    "codegenfile", "linemap", "hintfile", "render_options",
        "errors.txt", "arginfo", ".live", "sourcefiles"};
    return std::find(kFiles.begin(), kFiles.end(), name) != kFiles.end() || name.starts_with("kill.") ||
           name.starts_with("boxdef.") || name.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

bool HasWhitespace(std::string_view text) { return text.find_first_of(" \t\n") != std::string_view::npos; }

RenderSession::RenderSession(CTvDoc& document, Site& site, const CCodeGen& siteCodeGen)
    : records(site),
      m_document(document),
      m_site(site),
      m_siteCodeGen(siteCodeGen),
      m_history(site),
      m_leaves(m_history.afterLeave.Add([this](int number) { records.Forget(number); })),
      m_ends(site.commands.afterChild.Add([this](const ChildEnd& end) { records.End(end); })),
      m_saves(document.afterSave.Add(
          [this](const DocumentFile& before) { m_history.NoteSaved(before, *m_document.Origin().file); })),
      m_changes(document.edits.Observe([this](const Change& change) {
          if (change.replaced) marks.Begin();
      })) {
    int multiple = 1;
    site.settings.GetSettingInt("multiplerenders", multiple);
    m_multipleRenders = multiple != 0;
}

std::string RenderSession::ShaderName() const {
    return m_document.Path().empty() ? "Untitled" : PathBase(m_document.Path());
}

ShaderText RenderSession::Generate() {
    ShaderText text = GenerateShader(m_document, ShaderName(), m_site, m_siteCodeGen);
    m_document.preparedVariables.Update(std::move(text.variables));
    return text;
}

bool RenderSession::ShaderNameOk() {
    const std::string name = ShaderName();
    if (HasWhitespace(name)) {
        m_site.report.Alert("shader name contains whitespace characters");
    } else if (std::any_of(name.begin(), name.end(), IsControl)) {
        // In a comment of the shader a return would end the comment.
        m_site.report.Alert("shader name contains control characters; save the document under another name");
    } else if (IsWorkFile(name)) {
        m_site.report.Alert("shader name %s is that of a work file; save the document under another name",
                            name.c_str());
    } else {
        return true;
    }
    return false;
}

bool RenderSession::SaveShader() {
    if (!ShaderNameOk()) return false;
    marks.Begin();
    return WithinMemory(m_site.report, "generating the shader " + ShaderName(),
                        [this] { return WriteWorkFiles(MakeWorkFiles(m_shown)) && RunFilter(); });
}

std::optional<ProbeShader> RenderSession::GenerateProbe(Rendered shown) {
    if (shown != Rendered::kProbe || m_probe == nullptr) return std::nullopt;
    return m_probe->Generate(ShaderName(), m_siteCodeGen);
}

WorkFiles RenderSession::MakeWorkFiles(Rendered shown) {
    std::optional<ProbeShader> shader = GenerateProbe(shown);
    if (!shader) {
        shader.emplace();
        shader->text = Generate();
        shader->argInfo = WriteArgInfo(m_document, m_site.report, &shader->arguments);
    }
    const ShaderText& text = shader->text;
    const auto before = std::count(shader->argInfo.begin(), shader->argInfo.end(), '\n');
    return {shader->argInfo + JoinLines(text.code),
            text.lines.Store(static_cast<size_t>(before), shader->arguments), JoinLines(text.hints),
            RenderOptionsText()};
}

std::string RenderSession::ArgInfo() {
    const auto probed = GenerateProbe(m_shown);
    return probed ? probed->argInfo : WriteArgInfo(m_document, m_site.report);
}

std::string RenderSession::RenderOptionsText() const {
    std::string text;
    for (const auto& [key, value] : m_document.m_renderOptions) {
        text.append("setenv ").append(key).append(" ").append(QuoteString(value)).append("\r\n");
    }
    return text;
}

bool RenderSession::WriteWorkFiles(const WorkFiles& files) {
    const auto write = [this](const char* name, const std::string& content) {
        std::string error;
        if (m_site.WriteWorkFile(name, content, error)) return true;
        m_site.report.Alert("%s: %s", m_site.WorkPath(name).c_str(), error.c_str());
        return false;
    };
    if (!write("codegenfile", files.code) || !write("linemap", files.lines)) return false;
    WriteRenderOptions(files.options);
    return write("hintfile", files.hints);
}

// A failure is alerted and does not stop the run.
void RenderSession::WriteRenderOptions(const std::string& text) {
    const std::string own = m_site.WorkPath(kRenderOptions);
    const std::string path = m_site.environment.Get("TAVRN_RENOPTS").value_or(own);
    std::string error;
    const bool written =
        path == own ? m_site.WriteWorkFile(kRenderOptions, text, error) : WriteWholeFile(path, text, error);
    if (!written) m_site.report.Alert("%s: unable to open for writing", path.c_str());
}

bool RenderSession::RunFilter() {
    std::string filter = "bin/codefilter";
    m_site.settings.GetSettingToken("sourcecodeprefilter", filter);
    const std::string name = ShaderName();
    const auto code = RunFilterScript(m_site, m_site.WorkPath("codegenfile"), m_site.LibraryPath(filter),
                                      name, m_site.WorkPath(name));
    if (code.value_or(0) != 0) m_site.report.LogLine("save shader command returned %d", *code);
    return code == 0;
}

std::string RenderSession::HistoryDir(int number) const { return m_site.WorkPath(std::to_string(number)); }

std::string RenderSession::HistoryPath(const std::string& name, int number) const {
    return JoinPath(HistoryDir(number), name + m_site.docExt);
}

bool RenderSession::RenderIt() {
    Report& report = m_site.report;
    if (m_document.m_boxes.empty()) {
        report.Alert("desk is empty");
        return false;
    }
    if (!m_multipleRenders && m_site.commands.AnyChildRunning()) {
        report.Alert("script is running");
        return false;
    }
    if (!SaveShader()) return false;
    const std::string name = ShaderName();
    if (m_keepHistory && !KeepHistory(name)) return false;
    StartScript(name);
    return true;
}

void RenderSession::StartScript(const std::string& name) {
    RenderRecord record;
    record.number = m_nextRender++;
    marks.SetRender(record.number);
    record.name = name;
    record.started = std::chrono::system_clock::now();
    record.differs = WhatDiffers();
    const std::string number = std::to_string(record.number);
    const std::string renderit = m_site.LibraryPath("bin/renderit");
    const int child = m_site.commands.RunScript({{renderit, name, number},
                                                 renderit + " \"" + name + "\" " + number,
                                                 "render " + number,
                                                 m_site.renderLimits});
    records.Begin(record, m_history.Lists(record.number), child);
}

bool RenderSession::KeepHistory(const std::string& name) {
    MakeDirectory(HistoryDir(m_nextRender));
    const std::string path = HistoryPath(name, m_nextRender);
    std::string error;
    const std::string below = JoinPath(std::to_string(m_nextRender), PathFile(path));
    const std::string text = m_document.Store();
    if (m_site.WriteWorkFile(below, text, error)) {
        m_history.AddEntry(RenderHistory::EntryText(m_nextRender, name),
                           {m_document.Origin(), MarkOf(text), m_document.IsNetworkSaved()});
        return true;
    }
    m_site.report.Alert("unable to create history file %s", path.c_str());
    return false;
}

// From the render before, whichever document that was of.
std::string RenderSession::WhatDiffers() {
    constexpr size_t kMostTold = 3;
    NetworkPicture picture = CaptureNetwork(m_document);
    std::string differs;
    if (m_lastRendered) differs = Summary(CompareNetworks(*m_lastRendered, picture), kMostTold);
    m_lastRendered = std::move(picture);
    return differs;
}

std::string RenderSession::DocumentOf(int number) const {
    const RenderRecord* record = records.Find(number);
    return record == nullptr ? "" : HistoryPath(record->name, number);
}

bool RenderSession::LoadHistoryEntry(const std::string& entry) {
    int number = 0;
    std::string name;
    if (!RenderHistory::ParseEntry(entry, number, name)) {
        m_site.report.Alert("%s is no entry of the render history", entry.c_str());
        return false;
    }
    const DocumentOrigin origin = m_history.OriginOf(entry);
    if (!m_document.Open(HistoryPath(name, number))) return false;
    // So that a save goes to the document's own place and never into the history.
    if (origin.file == nullptr) {
        m_document.SetPath(JoinPath(m_site.directories.docBrowserDir, name + m_site.docExt));
    } else if (m_document.WasCutShort()) {
        m_document.SetPath(origin.file->path);
        m_document.SetForeign(origin.isForeign);
    } else {
        m_document.SetOrigin(origin);
    }
    m_document.SetDiffersFromFile();
    return true;
}

const std::string* RenderSession::EntryAt(const std::string& path) const {
    int number = 0;
    std::string name;
    for (const std::string& entry : m_history.Entries()) {
        const bool isEntry = RenderHistory::ParseEntry(entry, number, name);
        if (isEntry && HistoryPath(name, number) == path) return &entry;
    }
    return nullptr;
}

void RenderSession::StopRender() { m_site.commands.KillChildren(); }

}  // namespace tavrin
