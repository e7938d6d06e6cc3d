// SPDX-License-Identifier: Apache-2.0
// The model of the desk: everything that exists only while a network is being edited. It stands over a
// document, which owns the network's boxes.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "desk/DeskGeometry.h"
#include "desk/DeskLayout.h"
#include "desk/DeskRules.h"
#include "desk/WidPool.h"
#include "document/TvDoc.h"

namespace tavrin {

struct RevivedBox;
struct WireFit;

// What the desk asks of the window that shows it, while an act goes on; what has come of the act, the
// document's listeners are told at its end. The batch program has no window, and this does nothing.
class DeskView {
  public:
    virtual ~DeskView() = default;
    virtual void LayoutBox(COpBox&) {}
    virtual void Repaint() {}
    virtual void UpdateScrollBars() {}
    // What of the desk is seen; nothing where no window is on the screen.
    virtual std::optional<DeskRect> Sight() const { return std::nullopt; }
    // Where the pointer is, if it is over the desk.
    virtual std::optional<DeskPoint> CursorOnDesk() const { return std::nullopt; }
};

// Fresh boxes, each for the one of the network whose place it is to take.
using BoxReplacements = std::unordered_map<const COpBox*, std::unique_ptr<COpBox>>;

// A box on a desk is in exactly one of three places: the network (saved and generated), the pending boxes
// (numbered, waiting under the mouse), the clipboard (clones without a number). Clipboard and context menus
// stand in DeskClipboard.cpp, selection and references in DeskSelection.cpp, replacement in BoxUpdate.cpp,
// what becomes of placeholders in DeskRevival.cpp, order and flow in DeskEdits.cpp, frames
// and notes in DeskFrames.cpp, where what is new comes to
// lie in DeskPlacing.cpp.
class COpDesk {
  public:
    using BoxVector = std::vector<std::unique_ptr<COpBox>>;

    COpDesk(CTvDoc& document, DocumentHost& host);
    // Without a window until this names one, which takes itself back with null before it goes.
    void SetView(DeskView* view);
    COpDesk(const COpDesk&) = delete;
    COpDesk& operator=(const COpDesk&) = delete;

    // Makes a box of the operator, or the network of a macro operator, and hands it to the mouse. What
    // waited there is destroyed. Failures are alerted.
    void AddOperator(const std::string& name);
    // Puts a box of the operator, or the network of a macro operator, into the network at once and selects
    // it, as one edit; what waited under the mouse is destroyed. The title comes to lie at the place, moved
    // by as little as brings all of it into sight. With a fit, which tells the button of the new box, it is
    // that button that lies there, wired to the picked one. False, alerted, if no box came of it.
    bool PutOperator(const std::string& name, DeskPoint at, const WireFit* fit = nullptr);
    // Checks `maxinstances`, numbers the box, selects it and lays it out. False, with an alert, if the desk
    // may hold no more of it. The caller puts it where it belongs.
    bool AdmitBox(COpBox& box);
    // Takes over all boxes of another document as pending boxes, with new numbers; the list is emptied. Its
    // frames and notes wait with them.
    void MergeBoxes(CTvDoc::BoxList& boxes, const DeskFrames& frames = {});
    // Puts the pending boxes on top of the network; a single one on a wire goes between, where the library
    // wants that.
    void DropPending();
    // Puts real boxes in the place of all placeholders whose operators can be had again, with their wires, as
    // one edit, and in that of those on the clipboard; the log tells which, and what does not fit any more.
    // How many came back to the network. None while the desk is locked, nor while an edit goes on.
    size_t RevivePlaceholders();
    // Forgets every reference to a box that is out of the network, and destroys it.
    void RemoveBox(std::unique_ptr<COpBox> box);
    // The same for all boxes that wait under the mouse.
    void DeletePending();
    // Boxes, frames or notes wait under the mouse.
    bool HasPending() const { return !m_pendingBoxes.empty() || !m_pendingFrames.empty(); }
    // Puts each fresh box, which has the number of the one that it stands for, in the place of that in the
    // stack. Nothing is wired to it. Who has something selected of those that go lets it go before.
    void ReplaceBoxes(BoxReplacements fresh);
    // Moves a box of the network to the top of the stack.
    void RaiseBox(const COpBox& box);
    // Takes the smallest free number.
    int NextWid() { return m_usedWids.Next(); }
    // Moves by desk units; the saved anchor moves further by the factor of the zoom, unless anchors are
    // plain.
    void MoveBox(COpBox& box, float dx, float dy);
    void MoveSelectedBoxes(float dx, float dy);

    // Appends a clone of each box, connected among themselves as the originals are.
    static void CopyBoxes(const std::vector<COpBox*>& source, BoxVector& destination,
                          const DeskRules& rules = {});
    // Moves the anchors of what waits under the mouse, whatever the zoom is.
    void ShiftPending(float dx, float dy);
    // Adds a copy of the vinput under the mouse next to it; nothing if there is none.
    COpButton* GrowVinput(bool above);
    // Wires an input and an output, in either order, that may be wired: callers have tested.
    void Connect(COpButton& button, COpButton& other);

    // The Edit commands. The clipboard holds what was copied or cut last, nothing if nothing was selected,
    // and outlives the document. Whether the desk is locked is for the caller to ask.
    void CopySelection();
    void CutBoxes();
    // Hands clones of the clipboard to the mouse; what waited there is destroyed. `cursor` is the mouse in
    // desk units if it is inside the desk's window: the first clone's anchor comes to lie there. Without it
    // nothing is seen of them until the mouse comes. Where the library wants copies in sight, it is the
    // middle of all of them, and without the mouse they wait in the middle of what is seen.
    void PasteBoxes(const std::optional<DeskPoint>& cursor);
    // Deletes selected boxes and what waits under the mouse, and cuts selected connections.
    void DeleteSelection();
    bool CanPaste() const { return !m_clipboardBoxes.empty() || !m_clipboardFrames.empty(); }
    bool CanDelete() const {
        return m_selectedButton != nullptr || !m_selectedConnects.empty() || HasPending() || AnySelected();
    }

    // Put boxes in order, as DeskLayout.h tells; what is in order already is no edit. With less than two
    // boxes nothing happens, and others are not moved.
    void AlignSelected(DeskAlign align);
    void DistributeSelected(DeskAxis axis);
    enum class TidyScope { kSelected, kAll };
    void Tidy(TidyScope scope);

    // Puts a box of the network between the ends of the wire under it that it fits into; false if it fits
    // into none.
    bool InsertIntoWire(COpBox& box);
    // The same for the one selected box, where the library wants that.
    void DropOnWire();
    // DeleteSelection, after which what fed the boxes feeds what they fed, as far as types match.
    void DeleteKeepingFlow();
    // Mutes the selected boxes, or unmutes them if all of them are muted.
    void MuteSelected();
    // The wire of the input `from` enters the input `to` instead; callers have tested that it may.
    void MoveWire(COpButton& from, COpButton& to);
    void CutWire(COpButton& input);

    // Frames and notes, by their numbers; that of none does nothing. They stand in DeskFrames.cpp. New ones
    // are all that is selected then; the result is their number, or 0, alerted, where there is no more room.
    int FrameSelected(DeskPoint middle);  // round what is selected, else in the middle
    int AddNote(DeskPoint middle);
    void SetFrameText(int number, const std::string& text);  // those that follow one another are one step
    void SetFrameColor(int number, int color);
    void ResizeFrame(int number, size_t corner, DeskPoint at);
    void DeleteFrame(int number);  // what lies on it stays
    // What lies wholly on a selected frame now moves with it until the next call.
    void TakeAlong();
    // Those that wait under the mouse, where they are seen; without boxes they are moved by this.
    void MovePendingFrames(DeskPoint delta);
    std::vector<DeskFrame> FramesInHand() const;

    // Through the document's history, if it keeps one; not while an edit goes on. What waits under the mouse
    // is destroyed.
    bool CanUndo() const;
    bool CanRedo() const;
    void Undo();
    void Redo();
    void GoToStep(size_t place);

    // The commands of the context menus. Those on a button mean the one under the mouse and do nothing
    // where the menu does not offer them for it.
    void DuplicateBox(const COpBox& box);  // the clone comes to the top, without connections
    void DeleteBox(const COpBox& box);
    void DeleteButton();  // vinputs only, the last copy among them
    void DeleteConnections();
    void ToggleArgument();
    void ChooseCast(size_t cast);

    // Without a word: who selects others then tells it once.
    void ClearBoxSelection();
    void ClearSelectedButton() { m_selectedButton = m_pulledInput = nullptr; }
    void ClearSelectedConnects() { m_selectedConnects.clear(); }
    bool AnyBoxSelected() const;
    bool AnySelected() const { return !m_selectedFrames.empty() || AnyBoxSelected(); }
    // The box of this title alone; nothing happens where there is none.
    void SelectBox(const std::string& boxTitleWid);
    void SelectAllBoxes() { SetAllSelected(1); }
    void UnselectAllBoxes() { SetAllSelected(0); }

    // Logs and mends references to objects that are gone.
    void ValidateReferences();
    // After every New and Open: forgets the old network and takes up the new one.
    void OnInitialUpdate();
    const DeskRules& Rules() const { return m_rules; }

    BoxVector m_clipboardBoxes;
    BoxVector m_pendingBoxes;
    bool m_pendingPlaced = false;           // the pending boxes have been under the mouse
    std::set<int> m_selectedFrames;         // frames and notes, by their numbers
    COpButton* m_selectedButton = nullptr;  // one end of a connection still to be made
    COpButton* m_pulledInput = nullptr;     // whose wire is in hand, with its output as the selected button
    std::vector<COpButton*> m_selectedConnects;  // inputs, each standing for the connection that enters it
    COpBox* m_mouseBox = nullptr;
    COpButton* m_mouseButton = nullptr;
    float m_mouseDesk[2] = {0, 0};  // last position of the mouse in desk units

  private:
    using InstanceCounts = std::unordered_map<std::string, int>;
    InstanceCounts CountInstances() const;
    bool AdmitBox(COpBox& box, InstanceCounts& counts);
    void BringOperator(const std::string& name);
    void AddMacro(const DocumentForm& network);
    void AddBox(const std::string& name);
    void LandPending(bool onWires);
    void ShowPending(const std::optional<DeskPoint>& cursor);
    void SetBesides(COpBox& copy);
    static void Shift(const BoxVector& boxes, DeskPoint by);
    void ClearSelections();
    void UnselectBoxes();
    void SetAllSelected(int selected);
    void ForgetReferences();
    void FollowSwap(const Change& change);
    void ForgetButton(const COpButton& button);
    // Costs no search for each.
    void Discard(BoxVector& boxes, Edits::Stood stood);
    void ForgetBox(const COpBox& box, Edits::Stood stood);
    void PutInPlace(std::unique_ptr<COpBox>& place, RevivedBox revived);
    BoxVector TakeSelectedBoxes();
    COpButton* LiveMouseButton() const;
    DeskFrame* FindFrame(int number);
    int TakeUpFrame(DeskFrame frame);
    int AddFrameOrNote(const DeskFrame& frame);
    template <typename Change>
    void EditFrame(int number, const char* act, Change change);
    void MoveSelectedFrames(float dx, float dy);
    void CopySelectedFrames(const COpBox* first);
    void BringFrames(const std::vector<DeskFrame>& frames, const std::optional<DeskPoint>& cursor);
    DeskPoint PendingAnchor() const;
    void DropPendingFrames();
    void ForgetGoneFrames();
    std::vector<COpBox*> BoxesToArrange(bool all) const;
    template <typename Arrange>
    void ArrangeBoxes(const char* act, const std::vector<COpBox*>& boxes, Arrange arrange);
    void PlaceBox(COpBox& box, DeskPoint corner);

    CTvDoc& m_document;
    DocumentHost& m_host;
    const DeskRules m_rules;
    DeskView m_noView;
    DeskView* m_view = &m_noView;
    WidPool m_usedWids;
    // Their places are told from the anchor of the first box that is with them, else from a point of their
    // own.
    std::vector<DeskFrame> m_clipboardFrames;
    std::vector<DeskFrame> m_pendingFrames;
    DeskPoint m_pendingAnchor;
    // What lies on selected frames, boxes by their serial numbers.
    std::unordered_set<uint64_t> m_carriedBoxes;
    std::set<int> m_carriedFrames;
    std::string m_pendingAct = "Add";  // what dropping them is called
    Listeners<>::Subscription m_beforeDelete;
    Listeners<>::Subscription m_afterReorder;
    Edits::Subscription m_changes;
};

}  // namespace tavrin
