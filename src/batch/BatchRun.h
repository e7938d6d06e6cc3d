// One run of tavrin-batch.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/TvApp.h"
#include "batch/CommandLine.h"
#include "batch/Interruption.h"
#include "batch/TerminalSink.h"
#include "render/RenderSession.h"

namespace tavrin {

// The exit status of the program.
enum class ExitStatus : int {
    kDone = 0,
    kFailed = 1,
    kWrongCommandLine = 2,
    kSignalBase = 128,
};

// Collects what the command line asks, then does it. Made once, by main.
class BatchRun : private CommandLineDelegate {
  public:
    explicit BatchRun(std::string programPath) : m_programPath(std::move(programPath)) {}

    // Does everything; the program's exit status.
    int Run(const std::vector<std::string>& words);

  private:
    void Document(const std::string& path) override { m_documentPath = path; }
    void KeepWork(const std::string& directory) override { m_keepWork = directory; }
    void Library(const std::string& name) override { m_library = name; }
    void Force() override { m_force = true; }
    void Quiet() override { m_sink.SetQuiet(); }
    void SaveShader() override;
    void Render() override;
    void Save(const std::string& path) override;
    void Set(const std::string& name, const std::string& value) override;
    void ListOperators() override;
    void Describe(const std::string& operatorName) override;
    void Help() override {
        if (!m_printAndEnd) m_printAndEnd = CommandLine::HelpText();
    }
    void Version() override;

    // False if the program cannot start; the reason has been told.
    bool Start();
    void RunSteps();
    void Finish();
    int Status() const;

    void DoRender();
    void DoSave(const std::string& path);
    void DoSet(const std::string& name, const std::string& value);
    void DoDescribe(const std::string& operatorName);
    void Print(const std::string& text);
    void Fail(const std::string& message);

    std::string m_programPath;
    std::string m_documentPath;
    std::optional<std::string> m_keepWork;
    std::optional<std::string> m_library;
    bool m_force = false;
    std::optional<std::string> m_printAndEnd;  // the first of --help and --version
    std::vector<std::function<void()>> m_steps;

    TerminalSink m_sink{2};
    Report m_report;
    PlainQueue m_queue;
    bool m_failed = false;
    bool m_cutShort = false;  // the document could not be read to its end
    std::unique_ptr<CTvApp> m_app;
    std::unique_ptr<CTvDoc> m_document;
    std::unique_ptr<RenderSession> m_session;
    // Last, so that its thread ends before what it interrupts.
    std::unique_ptr<Interruption> m_interruption;
};

}  // namespace tavrin
