// SPDX-License-Identifier: Apache-2.0
// The document: one shader network with everything needed to reopen it.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Listeners.h"
#include "document/DeskFrame.h"
#include "document/DocumentFile.h"
#include "document/Edits.h"
#include "document/ExportOptions.h"
#include "library/CodeNames.h"
#include "library/OpBox.h"

namespace tavrin {

class COpRegistry;
class DefinitionTexts;
class DocumentForm;
class EditHistory;
class SafeCopy;
struct HistoryLimits;
struct Site;

// What a document asks of the application that it belongs to.
class DocumentHost {
  public:
    virtual ~DocumentHost() = default;

    virtual Site& GetSite() = 0;
    virtual const COpRegistry& Registry() const = 0;
    // What a new document starts with, besides the site's settings.
    virtual const std::map<std::string, std::string>& AppVariables() const = 0;
    virtual const CExportOptions& ExportDefaults() const = 0;
    // Render options that documents do not hold.
    virtual bool IsUnsavedOption(const std::string& name) const = 0;
    // Loads a new box with its operator's definition; false, reported, if that fails. The boxes of one
    // reading share `texts`.
    bool DefineBox(COpBox& box, const std::string& operatorName, DefinitionTexts* texts = nullptr) {
        return LoadDefinition(box, operatorName, texts);
    }
    // A box whose operator cannot be had stands in the document as its file has it, and ends no reading.
    virtual bool WantsPlaceholders();
    // Selects the library that a document names and scans its operators. False if the name is no plain
    // name of a directory, so that it could lead out of the installation; nothing is changed then.
    virtual bool UseLibrary(const std::string& name) = 0;
    // Keeps what is about to be written over a file where the next start finds it, as ReplaceFile wants it.
    virtual std::unique_ptr<SafeCopy> PutAside(const std::string& path, std::string_view text,
                                               std::string& error);
    // The short form of the program's version, as documents carry it.
    virtual std::string DocumentVersion() const = 0;
    // Whether this is what a file holds that this user's program has written here, of a document that was the
    // user's own. Who keeps no account of that takes every file for one.
    virtual bool IsOwnText(std::string_view /*text*/) const { return true; }
    // A document of the user's own was written to a file as this text.
    virtual void NoteOwnText(std::string_view /*text*/) {}

  protected:
    // Overridden where no process may be started for it.
    virtual bool LoadDefinition(COpBox& box, const std::string& operatorName, DefinitionTexts* texts) {
        return box.Define(operatorName, Registry(), GetSite(), texts);
    }
};

// Owned by the workspace of a program, which has one; what reads or merges a file makes scratch ones. It owns
// its boxes and who listens to it, and never speaks to a window. An operation that fails has reported it,
// returns false, and leaves the document as it was, but for a file with an error in it: what was read of that
// stays, and is guarded. The order of generation and of lists stands in BoxOrder.cpp.
class CTvDoc {
  public:
    explicit CTvDoc(DocumentHost& host);
    ~CTvDoc();
    CTvDoc(const CTvDoc&) = delete;
    CTvDoc& operator=(const CTvDoc&) = delete;

    // Empties the document and puts the defaults back.
    void DeleteContents();
    // Told before that: reading a large file takes its time, in which nobody may look at boxes that have
    // gone.
    Listeners<> beforeDelete;
    // Told when storing or reading has changed the order of the stack: what is seen of it is out of date.
    Listeners<> afterReorder;

    // Told when Save has written the document, with the file that it had before that.
    Listeners<const DocumentFile&> afterSave;

    // Opens a file: empties the document, then reads. False if the file cannot be opened or is no document,
    // with an alert; the document then stays as it was. Errors in the file are alerted and leave what was
    // read; WasCutShort tells.
    bool Open(const std::string& path);
    // Takes what a file says into the document as it stands; false if that stopped at an error.
    bool Load(const DocumentForm& form);
    // Takes only the boxes, the connections and the state of the desk, of what ReadDesk gave. False, with an
    // alert unless the file has no desk, if that fails.
    bool LoadDesk(const DocumentForm& form);

    // The document as its file holds it; boxes are brought into the order of their numbers.
    std::string Store();
    // The same text, from which nothing of the document changes, the order of the stack least of all.
    std::string Snapshot();
    // Writes the file so that a failure leaves the old one whole. On success it is the document's path and
    // the document is unmodified; on failure `error` holds the platform's message.
    bool Save(const std::string& path, std::string& error);
    // Writes it in the same way, and the document stays what it is: its path, and whether it is modified.
    bool SaveCopy(const std::string& path, std::string& error);

    // An error in the file that is now the document's path kept part of it from being read: saving there
    // would lose that part.
    bool WasCutShort() const { return m_origin.cutFile == m_origin.file && m_origin.file->cutShort; }
    // For a document that was read from a copy of its unsaved work.
    void SetCutShort();
    // It was read from a copy of the unsaved work on the document that belongs to `path` (empty if it had no
    // file), of which is known whether it was cut short and what it held.
    void BecomeRecovered(const std::string& path, bool wasCutShort, std::optional<ContentMark> held);
    // The same for any path that leads to the file, also once the document has been saved elsewhere.
    bool WouldLoseUnread(const std::string& path) const;
    // What stands at a path that leads to the document's own file; any other is as known.
    DocumentFile::Now LookAt(const std::string& path) const;
    // It was opened to begin something new with: it has no file from here on, so that who saves it is asked
    // where to, and what it was read from stays as it is. Until then it is called by the name of that.
    void BecomeCopy();

    const std::string& Path() const { return m_origin.file->path; }
    // Whatever stands there is none of the document's. One that was cut short stays so.
    void SetPath(const std::string& path);
    // `origin` is what this gave earlier: the document goes back to the file that it had then.
    const DocumentOrigin& Origin() const { return m_origin; }
    void SetOrigin(const DocumentOrigin& origin) { m_origin = origin; }
    // File name; without a path that of what it is a copy of, else "Untitled.tvn".
    std::string Title() const { return TitleOf(Path().empty() ? m_origin.file->copyOf : Path()); }
    static std::string TitleOf(const std::string& path);
    // It was read from a file that the user has not written here: what it says is to be exported, and which
    // command is to be run after that, is the wish of somebody else. Saving does not change that.
    bool IsForeign() const { return m_origin.isForeign; }
    void SetForeign(bool isForeign) { m_origin.isForeign = isForeign; }
    // Nobody has changed the document, but it is not what its file holds: an earlier version of it, which may
    // be saved. Until it is, or the document gives place to another.
    bool DiffersFromFile() const { return m_differsFromFile; }
    void SetDiffersFromFile() { m_differsFromFile = true; }
    bool IsModified() const { return m_modified; }
    // The network and its options are what the file holds, or the one that it is a copy of, whatever has been
    // seen of the desk meanwhile.
    bool IsNetworkSaved() const;
    // For what reads and writes documents, and for `edits`: an edit is noted there.
    void SetModified(bool modified = true) { m_modified = modified; }
    // What is seen of the desk is saved with it: another view is no edit, but a document to be saved.
    void ViewMoved();

    // Where all who change the document say so, and all who show it listen.
    Edits edits{*this};
    // Keeps a history from now on, for Undo.
    void KeepHistory();
    void KeepHistory(HistoryLimits limits);
    // Null for a document that keeps none.
    EditHistory* History() const { return m_history.get(); }
    // For the history: whether the document counts as modified where it stands now.
    void HistoryMoved(bool isAtSaved) { m_modified = m_modifiedBeside || !isAtSaved; }

    // All boxes in the order of generation: each stands after everything that feeds it. Boxes of a cycle
    // that feeds nothing else are left out. Placeholders stand where their operators would.
    std::vector<COpBox*> OrderBoxes() const;
    // The inputs that nothing feeds and the library knows, boxes by their title and number as text without
    // regard to case.
    std::vector<COpButton*> CollectUnconnectedInputs() const;
    void SortBoxesByWid();
    // Neither a box nor a frame nor a note stands on the desk.
    bool IsBare() const { return m_boxes.empty() && frames.empty(); }

    using BoxList = std::list<std::unique_ptr<COpBox>>;

    std::vector<std::string> toolbar;  // names of operators
    BoxList m_boxes;                   // in stacking order, topmost first
    DeskFrames frames;                 // behind the boxes
    int showiconimages = 0;
    int linetype = 0;  // 1 trace, 0 direct
    int drawlinesoverboxes = 0;
    int showvarnames = 0;
    int lock = 0;
    float offset[2] = {0, 0};      // pixels
    float zoom[2] = {0.5F, 0.5F};  // saved, and read by nothing else
    float zoomFactor = 1;
    std::map<std::string, std::string> m_renderOptions;
    CExportOptions exportOptions;
    std::string customshaderhelp;  // lines joined by CR LF
    // Left by the last generation, for who shows names; no part of what is stored.
    PreparedVariables preparedVariables;

  private:
    std::vector<COpBox*> BoxesByTitle() const;
    bool BringIntoOrder();  // whether that has changed anything
    std::shared_ptr<DocumentFile> NewFile(const std::string& path);
    std::shared_ptr<DocumentFile> FileReadFrom(const std::string& path, ContentMark mark);
    bool Write(const std::string& path, std::string& error);
    bool HoldsOwnText(const DocumentFile& file) const;

    DocumentHost& m_host;
    std::vector<std::weak_ptr<DocumentFile>> m_files;  // every one since the start that is still needed
    DocumentOrigin m_origin;                           // its file is never null
    bool m_modified = false;
    bool m_modifiedBeside = false;  // by what is no step of the history
    bool m_differsFromFile = false;
    std::unique_ptr<EditHistory> m_history;
};

}  // namespace tavrin
