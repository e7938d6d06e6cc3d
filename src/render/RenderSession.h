// SPDX-License-Identifier: Apache-2.0
// From the network to files, scripts and pictures: the step that every render, view and export starts
// with, and the renders with their numbered history.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desk/BoxMarks.h"
#include "document/TvDoc.h"
#include "render/NetworkPicture.h"
#include "render/RenderHistory.h"
#include "render/RenderRecords.h"
#include "render/ShaderText.h"

namespace tavrin {

class CCodeGen;
class Probe;
struct ChildEnd;
struct ProbeShader;
struct Site;

// The texts of the work files that scripts find their input in. A plain value.
struct WorkFiles {
    std::string code;   // the arguments, then the source as it is before the filter script
    std::string lines;  // where those of the code come from
    std::string hints;
    std::string options;  // of the render

    bool operator==(const WorkFiles&) const = default;
};

// Which picture of the document is meant.
enum class Rendered {
    kNetwork,
    kProbe,  // the output that is probed, where there is one; else the network
};

// Owned by the program's frame; works on the one document. Failures are reported before an operation
// returns false.
class RenderSession {
  public:
    // `siteCodeGen` is the template of the site, copied for each save.
    RenderSession(CTvDoc& document, Site& site, const CCodeGen& siteCodeGen);
    // Who knows which output is probed; it outlives this. Without one none is.
    void SetProbe(Probe& probe) { m_probe = &probe; }

    // The document's file name without directory and extension; "Untitled" for one without a path.
    std::string ShaderName() const;
    // Alerts a name that cannot be used for a file of the work directory.
    bool ShaderNameOk();

    // Generates the shader, writes the work files and runs the site's filter script on them, waiting for
    // its end. What a later step finds in the work directory is what this left there.
    bool SaveShader();

    // The text of the shader. What names were made from stays with the document.
    ShaderText Generate();

    // What SaveShader would write, and nothing is written. An output that cannot be shown any more is
    // alerted, and its probe ends, before this gives the network.
    WorkFiles MakeWorkFiles(Rendered shown = Rendered::kNetwork);
    // The help and the arguments of what SaveShader saves.
    std::string ArgInfo();

    // Saves the shader, keeps a copy of the document as a history entry and starts the library's render
    // script, whose output flows into the log. False if no render was started.
    bool RenderIt();
    // Asks all children to stop.
    void StopRender();

    const RenderHistory& History() const { return m_history; }
    // What is known of each render, listed there or not.
    RenderRecords records;
    // What the last run says of boxes: a render, an export, a view, or a state of Live. Who shows the log
    // lets them hear it.
    BoxMarks marks;
    // Opens the document of an entry, a line of the history. It goes back to the file that it had when it was
    // rendered; where that is not known, its path becomes the place of a document of that name where document
    // dialogs open. False, reported, if the line is no entry or the document cannot be opened; it then stays
    // as it was.
    bool LoadHistoryEntry(const std::string& entry);
    // Where the history keeps the document of a render, whether it is there or not. Empty for one that has no
    // record.
    std::string DocumentOf(int number) const;
    // The entry whose document the path leads to; null if it leads to none.
    const std::string* EntryAt(const std::string& path) const;

    bool m_keepHistory = true;
    bool m_multipleRenders = true;          // from the site's setting
    int m_nextRender = 1;                   // number of the next render; grows with every render started
    Rendered m_shown = Rendered::kNetwork;  // what SaveShader, and with it each render and view, makes

  private:
    std::optional<ProbeShader> GenerateProbe(Rendered shown);
    std::string HistoryDir(int number) const;
    std::string HistoryPath(const std::string& name, int number) const;
    std::string RenderOptionsText() const;
    bool WriteWorkFiles(const WorkFiles& files);
    void WriteRenderOptions(const std::string& text);
    bool RunFilter();
    bool KeepHistory(const std::string& name);
    void StartScript(const std::string& name);
    std::string WhatDiffers();

    CTvDoc& m_document;
    Site& m_site;
    const CCodeGen& m_siteCodeGen;
    Probe* m_probe = nullptr;
    RenderHistory m_history;
    Listeners<int>::Subscription m_leaves;
    Listeners<const ChildEnd&>::Subscription m_ends;
    Listeners<const DocumentFile&>::Subscription m_saves;
    Edits::Subscription m_changes;
    std::optional<NetworkPicture> m_lastRendered;
};

// True if the text contains a blank, a tab or a line feed.
bool HasWhitespace(std::string_view text);

}  // namespace tavrin
