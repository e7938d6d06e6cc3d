// SPDX-License-Identifier: Apache-2.0
// The commands on the one document: New, Open, Merge, Save and Save As, the option toggles, the title.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/TvApp.h"
#include "desk/OpDesk.h"

namespace tavrin {

// Keeps desk, form, title and export paths in step with the document. Asks nothing: whether a modified
// document may go is settled before. Every operation reports before it returns false.
class DocumentCommands {
  public:
    // Whether the log tells of every document that was opened or saved, with the time of day.
    enum class Announce { kNo, kYes };

    DocumentCommands(CTvApp& app, CTvDoc& document, COpDesk& desk, Announce announce)
        : m_app(app), m_document(document), m_desk(desk), m_announce(announce) {}

    // An empty document with the site's defaults and without a path: what the program starts with.
    void StartUntitled();
    // The same, to be saved as "untitled.tvn" where document dialogs open.
    void New();
    // Document dialogs open in the file's directory from here on. False if the file cannot be opened; the
    // document is then as it was. A file that could not be read to its end counts as opened.
    bool Open(const std::string& path);
    // Opens a file to begin something new with: the document is a copy without a path, so that saving asks
    // for one and the file stays as it is. Document dialogs open where they did. False as above.
    bool OpenExample(const std::string& path);
    // To be called when the document was read by another way; the log says that this was opened.
    void HasBeenOpened(const std::string& what);
    // Reads a copy of unsaved work, taken of the document that belongs to `documentPath` (empty if it had
    // no file), a file that `held` that when it was read or written last; document dialogs open where they
    // did. The document is modified, and as protected as its own file is if that `wasCutShort`. False if the
    // copy could not be opened, which leaves the document as it was, or not be read to its end: what was read
    // is then there, and the copy must be kept.
    bool OpenRecovered(const std::string& copyPath, const std::string& documentPath, bool wasCutShort,
                       std::optional<ContentMark> held = {});
    // Puts the boxes of a file under the mouse, with new numbers; nothing else of it is taken. `opened` is
    // called between the opening of the file and the reading.
    bool Merge(const std::string& path, const std::function<void()>& opened = {});
    bool Save(const std::string& path);
    // Document dialogs open in the file's directory from here on.
    bool SaveAs(const std::string& path);

    // The flags that the user toggles.
    void ToggleIcons() { Toggle(m_document.showiconimages, "Display Icons"); }
    void ToggleLineType() { Toggle(m_document.linetype, "Trace Lines"); }
    void ToggleLinesOverBoxes() { Toggle(m_document.drawlinesoverboxes, "Lines Over Boxes"); }
    void ToggleVarNames() { Toggle(m_document.showvarnames, "Show Varnames"); }
    void ToggleLock() { Toggle(m_document.lock, "Lock Desk"); }
    // A locked desk's display options, all but the lock itself, are frozen with it.
    bool CanToggleDisplay() const { return m_document.lock == 0; }

  private:
    void Toggle(int& flag, const char* act);
    void Log(const char* what, const std::string& path);
    void Refresh();

    CTvApp& m_app;
    CTvDoc& m_document;
    COpDesk& m_desk;
    Announce m_announce;
};

}  // namespace tavrin
