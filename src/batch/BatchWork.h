// SPDX-License-Identifier: Apache-2.0
// What tavrin-batch does on its one document.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/Actions.h"
#include "app/Workspace.h"
#include "base/MainThreadQueue.h"

namespace tavrin {

// What the command line lets the work do. A plain value.
struct BatchRules {
    bool force = false;         // files that were not read to their end may be replaced
    bool trustExports = false;  // what a document wants exported and run is done, whoever has written it
};

// The document with everything round it that a window program has in its frame. Made by the run after the
// application has started. Every operation reports before it returns false.
class BatchWork : private ActionTarget {
  public:
    // `isInterrupted` tells whether the program is being stopped: waiting ends then. Unless it is forced, the
    // file that was not read to its end is not replaced, neither by a save nor by an export, nor is the
    // document's own file once somebody else has changed or removed it.
    BatchWork(CTvApp& app, PlainQueue& queue, std::function<bool()> isInterrupted, const BatchRules& rules);

    // False if the file cannot be opened. A file that cannot be read to its end is alerted, and the work
    // goes on with what it gave.
    bool Open(const std::string& path);

    // What is saved, rendered and viewed from here on is this output, "BOX.OUTPUT". False, alerted with what
    // there is, if there is no such output or it cannot be shown; then nothing is made until another can.
    bool Probe(const std::string& output);

    bool SaveShader() { return ProbeStands() && m_work.session.SaveShader(); }
    // Renders and exports return when every process that they started has ended.
    bool Render();
    bool ExportAll();
    bool Export(const std::string& kind, const std::string& path);

    bool Save(const std::string& path);
    // False, alerted with the names that come nearest, for an option that no form knows.
    bool Set(const std::string& name, const std::string& value);
    bool RunScript(const std::string& path);
    bool Merge(const std::string& path);
    bool Add(const std::string& operatorName);

    // The text that the editor would be given; nothing if it could not be made.
    std::optional<std::string> View(const std::string& kind);

    // A line for each finding. `anyError` tells whether one is an error.
    std::string Check(bool& anyError);

    // What is printed of an operator: of a box its help and buttons, of a saved network its help and boxes.
    std::optional<std::string> Describe(const std::string& operatorName);

    // For who listens to what is done to it.
    CTvDoc& Document() { return m_work.document; }
    // A script has asked for the end of the program.
    bool IsClosing() const { return m_closing; }

  private:
    // What actions ask of a frame.
    void Command(CommandId command) override;
    void Close() override;
    void HideRenderOptions() override {}
    void OpenDocument(const std::string& path) override { Open(path); }
    void LoadFormDefaults() override;
    bool PumpMessages(std::chrono::milliseconds wait) override;

    Site& GetSite() { return m_app.GetSite(); }
    bool Fail(const std::string& message);
    bool ProbeStands();
    bool MayFollow(const ExportPlan& plan);
    bool MayLoseUnread(const std::string& path, const char* writing, const char* wayOut);
    bool MayReplace(const std::string& path, DocumentFile::Now now, const char* wayOut);
    void WaitForProcesses();
    // Drops what was added or merged, to the right of what stands on the desk.
    bool DropBesideTheRest();

    CTvApp& m_app;
    PlainQueue& m_queue;
    std::function<bool()> m_isInterrupted;
    Workspace m_work;
    Actions m_actions;
    std::string m_openedPath;
    std::string m_probed;  // as it was asked for; empty while the network is made
    BatchRules m_rules;
    bool m_closing = false;
    bool m_commandFailed = false;  // one that the present script sent
};

}  // namespace tavrin
