// SPDX-License-Identifier: Apache-2.0
// One run of tavrin-batch.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/TvApp.h"
#include "base/Interruption.h"
#include "base/Listeners.h"
#include "batch/BatchWork.h"
#include "batch/CommandLine.h"
#include "batch/TerminalSink.h"

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
    void Picture(const std::string& path) override { m_picture = path; }
    void Library(const std::string& name) override { m_library = name; }
    void Force() override { m_rules.force = true; }
    void TrustExports() override { m_rules.trustExports = true; }
    void NoSiteCommands() override { m_localCommands = LocalCommandsRule::kRefuse; }
    void Quiet() override { m_sink.SetQuiet(); }
    void TimeLimit(std::chrono::seconds time) override { m_timeLimit = time; }
    void SaveShader() override;
    void Render() override;
    void Save(const std::string& path) override;
    void Set(const std::string& name, const std::string& value) override;
    void ListOperators() override;
    void Describe(const std::string& operatorName) override;
    void Script(const std::string& path) override;
    void ExportAll() override;
    void Export(const std::string& kind, const std::string& path) override;
    void Merge(const std::string& path) override;
    void Add(const std::string& operatorName) override;
    void View(const std::string& kind) override;
    void Check() override;
    void Probe(const std::string& output) override;
    void Help() override {
        if (!m_printAndEnd) m_printAndEnd = CommandLine::HelpText();
    }
    void Version() override;

    // False if the program cannot start; the reason has been told.
    bool Start();
    // Tells children where pictures and work files are to stay. False if they could not be written there.
    bool SetTargets();
    void SetTimeLimit();
    void CheckPicture();
    void RunSteps();
    void Finish();
    int Status() const;

    // Appends a step that is done when its turn comes; a false result is a failure.
    void AddStep(std::function<bool()> step) { m_steps.push_back(std::move(step)); }
    bool DoDescribe(const std::string& operatorName);
    bool DoView(const std::string& kind);
    bool DoCheck();
    // To standard output, byte by byte.
    void Print(const std::string& text);
    // What the program words itself, in which names from files may hold anything: made harmless to terminals.
    void PrintCleaned(const std::string& text);
    void Fail(const std::string& message);

    std::string m_programPath;
    std::string m_documentPath;
    std::optional<std::string> m_keepWork;
    std::optional<std::string> m_picture;
    std::string m_pictureBefore;  // the stamp of what was there
    bool m_mayRender = false;     // a step may make a picture
    std::optional<std::string> m_library;
    std::optional<std::chrono::seconds> m_timeLimit;
    BatchRules m_rules;
    LocalCommandsRule m_localCommands = LocalCommandsRule::kUse;
    std::optional<std::string> m_printAndEnd;  // the first of --help and --version
    std::vector<std::function<bool()>> m_steps;

    TerminalSink m_sink{2};
    Report m_report;
    PlainQueue m_queue;
    bool m_failed = false;
    bool m_childFailed = false;  // in the present step
    Listeners<const ChildEnd&>::Subscription m_childEnds;
    std::unique_ptr<CTvApp> m_app;
    std::unique_ptr<BatchWork> m_work;
    // Last, so that its thread ends before what it interrupts.
    std::unique_ptr<Interruption> m_interruption;
};

}  // namespace tavrin
