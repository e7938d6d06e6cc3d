// SPDX-License-Identifier: Apache-2.0
#include "batch/BatchRun.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "app/Version.h"
#include "base/Files.h"
#include "base/ReplaceFile.h"
#include "batch/Describe.h"

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds kGrace{2000};  // for children to heed their kill file at the end

// What tells two states of a file apart; empty if there is none.
std::string StampOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return {};
    return FormatText("%lld %lld %lld.%09ld", static_cast<long long>(status.st_ino),
                      static_cast<long long>(status.st_size), static_cast<long long>(status.st_mtim.tv_sec),
                      status.st_mtim.tv_nsec);
}

bool IsDevice(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

}  // namespace

void BatchRun::SaveShader() {
    AddStep([this] { return m_work->SaveShader(); });
}
void BatchRun::Render() {
    m_mayRender = true;
    AddStep([this] { return m_work->Render(); });
}
void BatchRun::Save(const std::string& path) {
    AddStep([this, path] { return m_work->Save(path); });
}
void BatchRun::Set(const std::string& name, const std::string& value) {
    AddStep([this, name, value] { return m_work->Set(name, value); });
}
void BatchRun::ListOperators() {
    AddStep([this] {
        PrintCleaned(OperatorList(m_app->Registry()));
        return true;
    });
}
void BatchRun::Describe(const std::string& operatorName) {
    AddStep([this, operatorName] { return DoDescribe(operatorName); });
}
void BatchRun::Script(const std::string& path) {
    m_mayRender = true;
    AddStep([this, path] { return m_work->RunScript(path); });
}
void BatchRun::ExportAll() {
    AddStep([this] { return m_work->ExportAll(); });
}
void BatchRun::Export(const std::string& kind, const std::string& path) {
    AddStep([this, kind, path] { return m_work->Export(kind, path); });
}
void BatchRun::Merge(const std::string& path) {
    AddStep([this, path] { return m_work->Merge(path); });
}
void BatchRun::Add(const std::string& operatorName) {
    AddStep([this, operatorName] { return m_work->Add(operatorName); });
}
void BatchRun::View(const std::string& kind) {
    AddStep([this, kind] { return DoView(kind); });
}
void BatchRun::Check() {
    AddStep([this] { return DoCheck(); });
}
void BatchRun::Probe(const std::string& output) {
    AddStep([this, output] { return m_work->Probe(output); });
}
void BatchRun::Version() {
    if (!m_printAndEnd) m_printAndEnd = "tavrin-batch " + VersionText(kProductVersion) + "\n";
}

int BatchRun::Run(const std::vector<std::string>& words) {
    ::signal(SIGPIPE, SIG_IGN);  // a reader that goes away must not leave the work directory behind
    ::signal(SIGXFSZ, SIG_IGN);  // nor a file that may not grow; the write fails
    m_report.SetSink(&m_sink);
    std::string error;
    const bool parsed = CommandLine(*this).Parse(words, error);
    if (parsed && m_printAndEnd) {
        Print(*m_printAndEnd);
        return Status();
    }
    if (parsed && m_documentPath.empty() && m_steps.empty()) error = "nothing to do; see tavrin-batch --help";
    if (parsed && error.empty() && m_picture && !m_mayRender)
        error = "--picture needs --render, or a script that renders; see tavrin-batch --help";
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
    // Scripts show no pictures here, wherever the program was started.
    for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY"}) m_app->GetSite().environment.Unset(display);
    m_childEnds = commands.afterChild.Add([this](const ChildEnd& end) {
        if (end.exitCode == 0) return;
        m_failed = true;
        m_sink.EndLine();
        m_report.LogLine("script ended with status %d", end.exitCode);
        m_childFailed = true;
    });
    if (m_library && !m_app->SelectLibrary(*m_library)) {
        Fail("--library " + *m_library + ": expected the plain name of a directory of the installation");
        return false;
    }
    m_app->LoadSiteDefaults(m_localCommands);
    if (const auto problem = m_app->StartUpProblem()) {
        m_report.Alert("%s%s", problem->isFatalError ? "Fatal Error: " : "", problem->text.c_str());
        return false;
    }
    SetTimeLimit();
    const Directories& directories = m_app->GetSite().directories;
    if (!IsDirectory(directories.libDir)) {
        Fail("there is no library " + directories.libName + " in " + directories.tavrnDir);
        return false;
    }
    if (!SetTargets()) return false;
    m_work = std::make_unique<BatchWork>(
        *m_app, m_queue, [this] { return m_interruption->Signal() != 0; }, m_rules);
    return true;
}

void BatchRun::SetTimeLimit() {
    if (!m_timeLimit) return;
    Site& site = m_app->GetSite();
    for (ChildLimits* limits : {&site.renderLimits, &site.compileLimits}) {
        limits->time = *m_timeLimit;
        limits->timeSetBy = "--time-limit";
    }
}

bool BatchRun::SetTargets() {
    Environment& environment = m_app->GetSite().environment;
    environment.Set("TAVRN_KEEPWORK", m_keepWork.value_or(""));
    environment.Set("TAVRN_PICTURE", m_picture.value_or(""));
    std::string error;
    if (m_keepWork && !MakeWritableDirectory(*m_keepWork, error)) {
        Fail("unable to copy the work directory to " + *m_keepWork + ": " + error);
        m_keepWork.reset();
        return false;
    }
    if (m_picture && !CanReplaceFile(*m_picture, error)) {
        Fail("unable to write the picture to " + *m_picture + ": " + error);
        m_picture.reset();
        return false;
    }
    if (m_picture) m_pictureBefore = StampOf(*m_picture);
    return true;
}

// A library's script that does not heed the option would otherwise leave it without a word.
void BatchRun::CheckPicture() {
    if (!m_picture || IsDevice(*m_picture) || Status() != static_cast<int>(ExitStatus::kDone)) return;
    if (StampOf(*m_picture) != m_pictureBefore) return;
    Fail("no picture came to " + *m_picture +
         ": nothing was rendered, or the library's bin/renderit does not heed TAVRN_PICTURE");
}

void BatchRun::RunSteps() {
    const bool isOpen = m_documentPath.empty() || m_work->Open(m_documentPath);
    m_sink.EndStep(!isOpen);
    if (!isOpen) return;
    for (const auto& step : m_steps) {
        if (m_interruption->Signal() != 0 || m_work->IsClosing()) return;
        m_report.TakePending();
        m_childFailed = false;
        const bool done = step();
        m_failed = m_failed || !done;
        m_sink.EndStep(!done || m_childFailed);
    }
}

bool BatchRun::DoDescribe(const std::string& operatorName) {
    const auto text = m_work->Describe(operatorName);
    if (text) PrintCleaned(*text);
    return text.has_value();
}

bool BatchRun::DoView(const std::string& kind) {
    const auto text = m_work->View(kind);
    if (!text) return false;
    // Data for whoever reads it, but not for a terminal, which it could steer.
    if (::isatty(STDOUT_FILENO) == 1) {
        PrintCleaned(*text);
    } else {
        Print(*text);
    }
    return true;
}

bool BatchRun::DoCheck() {
    bool anyError = false;
    PrintCleaned(m_work->Check(anyError));
    m_sink.ForgetKept();  // the findings have said it
    return !anyError;
}

void BatchRun::PrintCleaned(const std::string& text) {
    TerminalSink output(STDOUT_FILENO);
    std::string cleaned = output.Cleaned(text);
    cleaned += output.Rest();
    Print(cleaned);
}

void BatchRun::Print(const std::string& text) {
    std::string_view left = text;
    while (!left.empty()) {
        const ssize_t count = ::write(STDOUT_FILENO, left.data(), left.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0)
            return Fail(std::string("unable to write to standard output: ") + std::strerror(errno));
        left.remove_prefix(static_cast<size_t>(count));
    }
}

void BatchRun::Fail(const std::string& message) {
    m_failed = true;
    m_report.Alert("%s", message.c_str());
}

void BatchRun::Finish() {
    m_app->GetSite().commands.EndChildren(kGrace);
    m_queue.RunPending();
    CheckPicture();
    const std::string& workDir = m_app->GetSite().directories.workDir;
    if (m_keepWork && !workDir.empty() && IsDirectory(workDir)) {
        std::string error;
        if (!CopyTree(workDir, *m_keepWork, error)) {
            Fail("unable to copy the work directory to " + *m_keepWork + ": " + error);
        }
    }
    const bool isClosed = m_app->CloseDown(std::chrono::milliseconds(0));
    m_failed = m_failed || !isClosed;
    m_sink.EndStep(!isClosed);
}

int BatchRun::Status() const {
    if (m_interruption && m_interruption->Signal() != 0) {
        return static_cast<int>(ExitStatus::kSignalBase) + m_interruption->Signal();
    }
    return static_cast<int>(m_failed || m_sink.AnyAlert() ? ExitStatus::kFailed : ExitStatus::kDone);
}

}  // namespace tavrin
