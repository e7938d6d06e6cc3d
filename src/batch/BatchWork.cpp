// SPDX-License-Identifier: Apache-2.0
#include "batch/BatchWork.h"

#include <algorithm>

#include "base/Files.h"
#include "batch/CommandLine.h"
#include "batch/Describe.h"
#include "document/DocumentReader.h"
#include "forms/FormFrame.h"
#include "library/OpRegistry.h"
#include "library/SavedNetwork.h"
#include "render/NetworkCheck.h"
#include "text/Archive.h"
#include "text/NearestNames.h"
#include "text/OutOfMemory.h"

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds kQueueWait{50};  // between looks at whether a process is left
constexpr float kGapBesideTheRest = 200;             // desk units between networks
constexpr const char* kSaveElsewhere = "save under another name";
constexpr const char* kExportElsewhere = "export to another directory";

ExportKind KindOf(const std::string& word) {
    if (word == export_words::kShaderSource) return ExportKind::kShaderSource;
    if (word == export_words::kCompiledShader) return ExportKind::kCompiledShader;
    if (word == export_words::kShaderIface) return ExportKind::kShaderIface;
    return ExportKind::kRenderIface;
}

}  // namespace

BatchWork::BatchWork(CTvApp& app, PlainQueue& queue, std::function<bool()> isInterrupted,
                     const BatchRules& rules)
    : m_app(app),
      m_queue(queue),
      m_isInterrupted(std::move(isInterrupted)),
      m_work(app, DocumentCommands::Announce::kNo),
      m_actions(*this, app.GetSite().commands, app.GetSite().report),
      m_rules(rules) {
    m_work.exporter.AskBeforeForeign([this](const ExportPlan& plan) { return MayFollow(plan); });
    m_work.exporter.AskBeforeLoss(
        [this](const std::string& path) { return MayLoseUnread(path, "exporting", kExportElsewhere); });
    m_work.exporter.AskBeforeReplacing([this](const std::string& path, DocumentFile::Now now) {
        return MayReplace(path, now, kExportElsewhere);
    });
}

bool BatchWork::Fail(const std::string& message) {
    GetSite().report.Alert("%s", message.c_str());
    return false;
}

bool BatchWork::Open(const std::string& path) {
    GetSite().report.TakePending();
    if (!m_work.commands.Open(path)) return false;
    m_openedPath = path;
    const bool isTold = !m_work.document.WasCutShort() || GetSite().report.HasPending();
    if (!isTold) Fail(path + " was not read to its end");
    return true;
}

bool BatchWork::Probe(const std::string& output) {
    // A picture of something else would be taken for that of this output.
    m_work.session.m_shown = Rendered::kProbe;
    m_work.probe.End();
    m_probed = output;
    std::string error;
    COpButton* found = tavrin::Probe::Find(m_work.document, output, error);
    if (found == nullptr) return Fail("--probe " + output + ": " + error);
    return m_work.probe.Show(*found);
}

// A later step may have opened another document, or taken away what the output was shown by.
bool BatchWork::ProbeStands() {
    if (m_work.session.m_shown != Rendered::kProbe) return true;
    const COpButton* output = m_work.probe.Output();
    if (output == nullptr) return Fail("nothing is made: --probe " + m_probed + " shows no output");
    const std::string problem = m_work.probe.WhyNot(*output);
    return problem.empty() || Fail(problem);
}

bool BatchWork::Render() {
    const bool started = ProbeStands() && m_work.session.RenderIt();
    WaitForProcesses();
    return started;
}

bool BatchWork::ExportAll() {
    const bool started = m_work.exporter.ExportAll();
    WaitForProcesses();
    return started;
}

bool BatchWork::Export(const std::string& kind, const std::string& path) {
    const bool started = m_work.exporter.Export(ShaderExport::OnlyThis(KindOf(kind), path));
    WaitForProcesses();
    return started;
}

void BatchWork::WaitForProcesses() {
    const Commands& commands = GetSite().commands;
    while (commands.AnyProcessLeft() && !m_isInterrupted()) m_queue.RunPending(kQueueWait);
    m_queue.RunPending();
}

bool BatchWork::MayFollow(const ExportPlan& plan) {
    if (m_rules.trustExports || m_app.Trust().Holds(TrustStore::Kind::kExports, plan.digest)) return true;
    std::string wishes;
    for (const std::string& line : plan.lines) wishes += (wishes.empty() ? "" : "; ") + line;
    return Fail(m_work.document.Path() + " was not saved by you on this machine, and asks to " + wishes +
                "; use --trust-exports if that may be done");
}

bool BatchWork::MayLoseUnread(const std::string& path, const char* writing, const char* wayOut) {
    return m_rules.force || Fail(path + " was not read to its end, and " + writing +
                                 " would lose the rest; " + wayOut + ", or use --force");
}

bool BatchWork::MayReplace(const std::string& path, DocumentFile::Now now, const char* wayOut) {
    if (m_rules.force || now == DocumentFile::Now::kAsKnown) return true;
    const bool isGone = now == DocumentFile::Now::kGone;
    return Fail(path +
                (isGone ? " is gone, which was there when it was last read or saved; "
                        : " has changed since it was last read or saved; ") +
                wayOut + ", or use --force");
}

bool BatchWork::Save(const std::string& path) {
    if (m_work.document.WouldLoseUnread(path)) {
        if (!MayLoseUnread(path, "saving", kSaveElsewhere)) return false;
    } else if (!MayReplace(path, m_work.document.LookAt(path), kSaveElsewhere)) {
        return false;
    }
    return m_work.commands.Save(path);
}

bool BatchWork::Set(const std::string& name, const std::string& value) {
    const auto& options = m_work.document.m_renderOptions;
    if (!options.contains(name)) {
        std::vector<std::string> known;
        for (const auto& option : options) known.push_back(option.first);
        const std::string nearest = JoinNames(NearestNames(name, known));
        return Fail("--set " + name + ": the library's form has no such render option" +
                    (nearest.empty() ? "" : "; there is " + nearest));
    }
    m_app.SetVariable(name, value, true);
    return true;
}

bool BatchWork::RunScript(const std::string& path) {
    m_commandFailed = false;
    const bool ran = m_actions.RunScriptFile(path);
    WaitForProcesses();
    return ran && m_actions.UnknownActions() == 0 && !m_commandFailed;
}

bool BatchWork::Merge(const std::string& path) {
    GetSite().report.TakePending();
    if (m_work.commands.Merge(path)) return DropBesideTheRest();
    return GetSite().report.HasPending() ? false : Fail(path + " holds no network");
}

bool BatchWork::Add(const std::string& operatorName) {
    GetSite().report.TakePending();
    m_work.desk.AddOperator(operatorName);
    const bool added = DropBesideTheRest();
    if (!added && !GetSite().report.HasPending()) Fail(operatorName + " has put nothing on the desk");
    return added;
}

// There is no mouse under which the boxes could wait.
bool BatchWork::DropBesideTheRest() {
    if (!m_work.desk.HasPending()) return false;
    if (!m_work.document.m_boxes.empty() && !m_work.desk.m_pendingBoxes.empty()) {
        const auto left = [](const auto& one, const auto& other) { return one->xypos[0] < other->xypos[0]; };
        const auto& rest = m_work.document.m_boxes;
        const auto& pending = m_work.desk.m_pendingBoxes;
        const float edge = (*std::max_element(rest.begin(), rest.end(), left))->xypos[0];
        const float start = (*std::min_element(pending.begin(), pending.end(), left))->xypos[0];
        m_work.desk.ShiftPending(edge + kGapBesideTheRest - start, 0);
    }
    m_work.desk.DropPending();
    return true;
}

std::optional<std::string> BatchWork::View(const std::string& kind) {
    if (!ProbeStands()) return std::nullopt;
    const auto path = kind == view_words::kSource        ? m_work.views.ViewShaderSource()
                      : kind == view_words::kRenderIface ? m_work.views.ViewRenderInterface()
                                                         : m_work.views.ViewShaderInterface();
    if (!path) return std::nullopt;
    std::string text;
    std::string error;
    if (ReadWholeFile(*path, text, error)) return text;
    Fail("unable to open " + *path + " for reading: " + error);
    return std::nullopt;
}

std::optional<std::string> BatchWork::Describe(const std::string& operatorName) {
    Report& report = GetSite().report;
    report.TakePending();
    const COpEntry* entry = m_app.Registry().FindByName(operatorName);
    if (entry != nullptr && IsSavedNetwork(entry->path)) {
        const COpEntry found = *entry;  // opening a document may scan the operators again
        CTvDoc network(m_app);
        const std::string unchangedHelp = network.customshaderhelp;
        if (!network.Open(found.path)) return std::nullopt;
        if (network.customshaderhelp == unchangedHelp) network.customshaderhelp.clear();
        return NetworkDescription(found.name, network);
    }
    COpBox box;
    if (box.Define(operatorName, m_app.Registry(), GetSite())) return OperatorDescription(box);
    if (!report.HasPending()) Fail(operatorName + ": the definition ends too early");
    return std::nullopt;
}

std::string BatchWork::Check(bool& anyError) {
    std::vector<Finding> findings;
    std::string error;
    if (auto archive = CArchive::Open(m_openedPath, error)) {
        findings = CheckDocumentForm(ReadDocument(std::move(*archive)), m_work.document, m_app.Registry());
    }
    const std::vector<Finding> network = CheckNetwork(m_work.document, GetSite());
    findings.insert(findings.end(), network.begin(), network.end());
    WithinMemory(GetSite().report, "generating the shader " + m_work.session.ShaderName(), [this] {
        m_work.session.Generate();
        return true;
    });
    std::string text;
    for (const Finding& finding : findings) {
        text += finding.Text() + "\n";
        anyError = anyError || finding.severity == Finding::Severity::kError;
    }
    return text;
}

void BatchWork::Command(CommandId command) {
    // Where a window would ask for the path of a single export, the one that it would offer is taken.
    const auto exportOne = [this](ExportKind kind) { return m_work.exporter.ExportAsDocumentSays(kind); };
    bool done = true;
    switch (command) {
        case CommandId::kRenderIt:
            done = ProbeStands() && m_work.session.RenderIt();
            break;
        case CommandId::kStopRender:
            m_work.session.StopRender();
            break;
        case CommandId::kExportAll:
            done = m_work.exporter.ExportAll();
            break;
        case CommandId::kExportCompiledShader:
            done = exportOne(ExportKind::kCompiledShader);
            break;
        case CommandId::kExportShaderInterface:
            done = exportOne(ExportKind::kShaderIface);
            break;
        default:  // no action sends any other
            break;
    }
    m_commandFailed = m_commandFailed || !done;
}

void BatchWork::Close() {
    m_closing = true;
    m_actions.HaltScript();
}

void BatchWork::LoadFormDefaults() { m_app.LoadFormDefaults(); }

bool BatchWork::PumpMessages(std::chrono::milliseconds wait) {
    m_queue.RunPending(wait);
    GetSite().report.TakePending();
    return !m_isInterrupted() && !m_closing;
}

}  // namespace tavrin
