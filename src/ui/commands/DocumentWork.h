// SPDX-License-Identifier: Apache-2.0
// The document's commands with the dialogs and questions that belong to them.
#pragma once

#include <string>

#include "document/DocumentFile.h"

class QWidget;

namespace tavrin {

class CommandActions;
class RecentFiles;
class RenderWork;
class SafetyCopies;
class CSliderDesk;
struct Workspace;

// Belongs to the frame.
class DocumentWork {
  public:
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        Workspace& work;
        RenderWork& renders;   // tells how long the reading takes
        SafetyCopies& copies;  // go when nothing unsaved is left of what was edited
        CSliderDesk& sliders;
        RecentFiles& recentFiles;
    };
    explicit DocumentWork(Needs needs);

    void AddTo(CommandActions& commands);

    void New();
    void Open();
    // The normal way to open a file, whoever asks for it: settles changes, opens, remembers the file. False
    // if the user cancels or the file cannot be opened; the document is then as it was.
    bool OpenDocument(const std::string& path);
    // Opens an example as the beginning of a new document, which has no file yet. It is not remembered as a
    // recent file. False as above.
    bool OpenExample(const std::string& path);
    // Opens the copy that a render has kept, as an earlier version of the document that was rendered: nothing
    // is modified, and it can be saved where that document belongs. It is not remembered as a recent file.
    // `entry` is a line of the history, which may drop it meanwhile. False as above.
    bool OpenHistoryEntry(std::string entry);
    void Merge();
    // Lets the user choose one of the library's examples.
    void Examples();
    // False if the document was not saved.
    bool Save();
    bool SaveAs();

    // Asks whether changes are to be saved, and saves them. False if the document is to stay.
    bool SettleChanges();

  private:
    bool SaveTo(const std::string& path, bool asNew);
    // Asks before a file is written that would lose something by it. One that was chosen in a dialog was
    // asked about there.
    bool MayReplace(const std::string& path, bool wasChosen);
    bool MayLoseUnread(const std::string& path);
    bool MayReplaceWhatIsThere(const std::string& path, DocumentFile::Now now);

    Needs m_needs;
    Workspace& m_work;
    const std::string m_examples;  // their directory; empty where the library names none
    int m_lastFilterIndex = 0;     // chosen last in the Open dialog
};

}  // namespace tavrin
