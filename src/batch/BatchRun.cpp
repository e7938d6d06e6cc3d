#include "batch/BatchRun.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>

#include "app/Version.h"
#include "base/Files.h"
#include "batch/Describe.h"

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds kGrace{2000};   // for children to heed their kill file at the end
constexpr std::chrono::milliseconds kQueueWait{50}; // between looks at whether a render goes on

// Whether both lead to one file, by whatever way.
bool IsSameFile(const std::string& one, const std::string& other) {
    std::error_code missing;
    return std::filesystem::equivalent(one, other, missing);
}

}  // namespace

void BatchRun::SaveShader() {
    m_steps.push_back([this] { m_failed = !m_session->SaveShader() || m_failed; });
}
void BatchRun::Render() {
    m_steps.push_back([this] { DoRender(); });
}
void BatchRun::Save(const std::string& path) {
    m_steps.push_back([this, path] { DoSave(path); });
}
void BatchRun::Set(const std::string& name, const std::string& value) {
    m_steps.push_back([this, name, value] { DoSet(name, value); });
}
void BatchRun::ListOperators() {
    m_steps.push_back([this] { Print(OperatorList(m_app->Registry())); });
}
void BatchRun::Describe(const std::string& operatorName) {
    m_steps.push_back([this, operatorName] { DoDescribe(operatorName); });
}
void BatchRun::Version() {
    if (!m_printAndEnd) m_printAndEnd = "tavrin-batch " + VersionText(kProductVersion) + "\n";
}

int BatchRun::Run(const std::vector<std::string>& words) {
    ::signal(SIGPIPE, SIG_IGN);  // a reader that goes away must not leave the work directory behind
    m_report.SetSink(&m_sink);
    std::string error;
    const bool parsed = CommandLine(*this).Parse(words, error);
    if (parsed && m_printAndEnd) {
        Print(*m_printAndEnd);
        return Status();
    }
    if (parsed && m_documentPath.empty() && m_steps.empty()) error = "nothing to do; see tavrin-batch --help";
    if (!error.empty()) {
        const std::string line = m_sink.Cleaned("tavrin-batch: " + error + "\n");
        [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
        return static_cast<int>(ExitStatus::kWrongCommandLine);
    }
    if (Start()) RunSteps();
    Finish();
    return Status();
}

bool BatchRun::Start() {
    m_app = std::make_unique<CTvApp>(m_report, m_queue, Environment::FromProcess(), m_programPath);
    Commands& commands = m_app->GetSite().commands;
    m_interruption = std::make_unique<Interruption>([this, &commands](int signal) {
        m_sink.Silence();
        commands.InterruptCommand(signal);
        m_queue.Post([] {});
    });
    commands.SetCommandOutput(STDERR_FILENO);  // standard output is for data
    commands.OnChildEnd([this](int exitCode) {
        if (exitCode == 0) return;
        m_failed = true;
        m_sink.EndLine();
        m_report.LogLine("script ended with status %d", exitCode);
    });
    if (m_library && !m_app->SelectLibrary(*m_library)) {
        Fail("--library " + *m_library + ": expected the plain name of a directory of the installation");
        return false;
    }
    m_app->LoadSiteDefaults();
    if (const auto problem = m_app->StartUpProblem()) {
        m_report.Alert("%s%s", problem->isFatalError ? "Fatal Error: " : "", problem->text.c_str());
        return false;
    }
    const Directories& directories = m_app->GetSite().directories;
    if (!IsDirectory(directories.libDir)) {
        Fail("there is no library " + directories.libName + " in " + directories.tavrnDir);
        return false;
    }
    m_document = std::make_unique<CTvDoc>(*m_app);
    m_app->SetDocument(m_document.get());
    m_session = std::make_unique<RenderSession>(*m_document, m_app->GetSite(), m_app->CodeGen());
    return true;
}

void BatchRun::RunSteps() {
    m_report.TakePending();
    if (!m_documentPath.empty() && !m_document->Open(m_documentPath)) return;
    m_cutShort = m_document->WasCutShort();
    if (m_cutShort && !m_report.HasPending()) Fail(m_documentPath + " was not read to its end");
    m_app->ShaderTypeChanged();
    for (const auto& step : m_steps) {
        if (m_interruption->Signal() != 0) return;
        step();
        m_report.TakePending();
    }
}

void BatchRun::DoRender() {
    if (!m_session->RenderIt()) {
        m_failed = true;
        return;
    }
    const Commands& commands = m_app->GetSite().commands;
    while (commands.AnyProcessLeft() && m_interruption->Signal() == 0) m_queue.RunPending(kQueueWait);
    m_queue.RunPending();
    m_sink.EndLine();
}

void BatchRun::DoSave(const std::string& path) {
    if (m_cutShort && !m_force && IsSameFile(path, m_documentPath)) {
        return Fail(path + " was not read to its end, and saving would lose the rest; save under another name, or"
                           " use --force");
    }
    std::string error;
    if (!m_document->Save(path, error)) Fail("unable to save " + path + ": " + error);
}

void BatchRun::DoSet(const std::string& name, const std::string& value) {
    if (!m_document->m_renderOptions.contains(name)) {
        m_report.LogLine("WARNING: the library's form has no render option %s", name.c_str());
    }
    m_app->SetVariable(name, value, false);
}

void BatchRun::DoDescribe(const std::string& operatorName) {
    COpBox box;
    m_report.TakePending();
    if (box.Define(operatorName, m_app->Registry(), m_app->GetSite())) return Print(OperatorDescription(box));
    if (!m_report.HasPending()) Fail(operatorName + ": the definition ends too early");
}

void BatchRun::Print(const std::string& text) {
    // Cleaned like everything that a terminal may show: names of operators come from files.
    const std::string clean = TerminalSink(STDOUT_FILENO).Cleaned(text);
    std::string_view left = clean;
    while (!left.empty()) {
        const ssize_t count = ::write(STDOUT_FILENO, left.data(), left.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return Fail(std::string("unable to write to standard output: ") + std::strerror(errno));
        left.remove_prefix(static_cast<size_t>(count));
    }
}

void BatchRun::Fail(const std::string& message) {
    m_failed = true;
    m_report.Alert("%s", message.c_str());
}

void BatchRun::Finish() {
    // Boxes go before the site whose children and directories they may name.
    m_app->GetSite().commands.EndChildren(kGrace);
    m_queue.RunPending();
    const std::string& workDir = m_app->GetSite().directories.workDir;
    if (m_keepWork && !workDir.empty() && IsDirectory(workDir)) {
        std::string error;
        if (!CopyTree(workDir, *m_keepWork, error)) {
            Fail("unable to copy the work directory to " + *m_keepWork + ": " + error);
        }
    }
    if (!m_app->CloseDown(std::chrono::milliseconds(0))) m_failed = true;
    m_app->SetDocument(nullptr);
}

int BatchRun::Status() const {
    if (m_interruption && m_interruption->Signal() != 0) {
        return static_cast<int>(ExitStatus::kSignalBase) + m_interruption->Signal();
    }
    return static_cast<int>(m_failed || m_sink.AnyAlert() ? ExitStatus::kFailed : ExitStatus::kDone);
}

}  // namespace tavrin
