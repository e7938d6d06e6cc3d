// SPDX-License-Identifier: Apache-2.0
// From the network to files, scripts and pictures: the step that every render, view and export starts
// with, and the renders with their numbered history.
#pragma once

#include <string>
#include <vector>

#include "document/TvDoc.h"
#include "render/RenderHistory.h"
#include "render/ShaderText.h"

namespace tavrin {

class CCodeGen;
struct Site;

// The texts of the work files that scripts find their input in. A plain value.
struct WorkFiles {
    std::string code;  // the arguments, then the source as it is before the filter script
    std::string hints;
    std::string options;  // of the render
};

// Which picture of the document is meant.
enum class Shown {
    kNetwork,
    kProbe,  // the output that is probed, where there is one; else the network
};

// Owned by the program's frame; works on the one document. Failures are reported before an operation
// returns false.
class RenderSession {
  public:
    // `siteCodeGen` is the template of the site, copied for each save.
    RenderSession(CTvDoc& document, Site& site, const CCodeGen& siteCodeGen);

    // The document's file name without directory and extension; "Untitled" for one without a path.
    std::string ShaderName() const;

    // Generates the shader, writes the work files and runs the site's filter script on them, waiting for
    // its end. What a later step finds in the work directory is what this left there.
    bool SaveShader();

    // The text of the shader. What names were made from stays with the document.
    ShaderText Generate();

    // What SaveShader would write, and nothing is written.
    WorkFiles MakeWorkFiles(Shown shown = Shown::kNetwork);

    // Saves the shader, keeps a copy of the document as a history entry and starts the library's render
    // script, whose output flows into the log. False if no render was started.
    bool RenderIt();
    // Asks all children to stop.
    void StopRender();

    const RenderHistory& History() const { return m_history; }
    // Opens the document of an entry, a line of the history. It goes back to the file that it had when it was
    // rendered; where that is not known, its path becomes the place of a document of that name where document
    // dialogs open. False, reported, if the line is no entry or the document cannot be opened; it then stays
    // as it was.
    bool LoadHistoryEntry(const std::string& entry);
    // The entry whose document the path leads to; null if it leads to none.
    const std::string* EntryAt(const std::string& path) const;

    bool m_keepHistory = true;
    bool m_multipleRenders = true;  // from the site's setting
    int m_nextRender = 1;           // number of the next render; grows with every render started

  private:
    bool ShaderNameOk();
    std::string HistoryDir(int number) const;
    std::string HistoryPath(const std::string& name, int number) const;
    std::string RenderOptionsText() const;
    bool WriteWorkFiles(const WorkFiles& files);
    void WriteRenderOptions(const std::string& text);
    bool RunFilter();
    bool KeepHistory(const std::string& name);

    CTvDoc& m_document;
    Site& m_site;
    const CCodeGen& m_siteCodeGen;
    RenderHistory m_history;
};

// True if the text contains a blank, a tab or a line feed.
bool HasWhitespace(std::string_view text);

}  // namespace tavrin
