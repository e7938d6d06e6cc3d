// SPDX-License-Identifier: Apache-2.0
// Where every edit of a document ends: what changes a document says so here, what shows it is told from here.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/Listeners.h"
#include "document/Change.h"

namespace tavrin {

class CTvDoc;

// One for each document, which owns it. Whoever changes the document notes that while an EditScope is open;
// at the end of the outermost one the listeners hear one Change. A note of an edit marks the document
// modified at once. Main thread only; nothing here can fail.
class Edits {
  public:
    using Subscription = Listeners<const Change&>::Subscription;

    explicit Edits(CTvDoc& document) : m_document(document) {}
    Edits(const Edits&) = delete;
    Edits& operator=(const Edits&) = delete;

    // Listeners change nothing of the document while they are told.
    [[nodiscard]] Subscription Observe(Listeners<const Change&>::Listener listener) {
        return m_listeners.Add(std::move(listener));
    }

    // Told after each part of an act that goes on (HeldEdit), of which the others hear only at its end: for
    // who follows the document while the hand moves. Pending has what it has changed so far.
    [[nodiscard]] Listeners<>::Subscription ObserveParts(Listeners<>::Listener listener) {
        return m_partListeners.Add(std::move(listener));
    }

    // What an edit changes, said before it is done or after. Without an open scope the note is an edit by
    // itself, told at once, so that nobody misses it; but it is a fault of the program, which StrayEdits
    // counts.
    void BoxCame(COpBox& box);     // it waits; by itself that does not modify the document
    void BoxDropped(COpBox& box);  // it stands in the network
    enum class Stood { kWaiting, kInNetwork };
    // It is about to be destroyed; by itself that modifies the document only if it stood in the network.
    void BoxWent(const COpBox& box, Stood stood);
    void BoxTouched(COpBox& box);  // its place, its inputs, whether it is muted, or anything of its buttons
    void BoxMoved(COpBox& box);    // nothing but its place
    void ButtonTouched(COpButton& button);  // nothing of its box but this button
    void ButtonTuned(COpButton& button);    // of which only what is tuned, as Change has it
    // The same by an act that does not count as a change of the document.
    void ButtonTunedUnmarked(COpButton& button);
    void WiresChanged();
    void OptionsChanged();
    void SettingsChanged();
    void FramesChanged();
    // Boxes that wait under the mouse were brought by an act that counts as a change of the document.
    void BroughtBoxes();

    // What is selected is no edit: it is told at once, whatever is open.
    void SelectionChanged();
    // The document has been read anew. What was noted of the former one is forgotten, and listeners are told
    // at once, whatever is open.
    void Replaced();

    // The document's boxes are about to be destroyed all at once, to give place to others.
    void ForgetNotes();

    // The act that is open goes on with a run: several of its kind on the same thing, such as keys that are
    // typed, are one step to undo.
    void JoinRun();
    // The end of what has left the network: the document's history parks it, and without one it is destroyed.
    // BoxWent or BoxTouched has been said.
    void Leave(std::unique_ptr<COpBox> box);
    void Leave(std::unique_ptr<COpButton> button);
    // For the document's history: tells what an undo or a redo has changed.
    void TellSwapped(const Change& change) { m_listeners.Tell(change); }

    // What was noted and is still to be told.
    Change Pending() const;
    // Something may have been noted that is still to be told.
    bool IsOpen() const { return m_depth > 0 || m_held; }
    int StrayEdits() const { return m_strayEdits; }

  private:
    friend class EditScope;
    friend class HeldEdit;
    // Objects in the order in which they were noted, without those that have gone.
    template <typename Object>
    class Noted {
      public:
        void Add(Object& object) {
            if (m_members.insert(&object).second) m_order.push_back(&object);
        }
        void Forget(const Object& object) { m_members.erase(const_cast<Object*>(&object)); }
        bool Has(const Object& object) const { return m_members.contains(const_cast<Object*>(&object)); }
        bool IsEmpty() const { return m_members.empty(); }
        std::vector<Object*> All() const;
        // Leaves nothing.
        std::vector<Object*> Take();

      private:
        std::vector<Object*> m_order;
        std::unordered_set<Object*> m_members;
    };

    void Begin(const std::string& act);
    void End();
    void Hold(const std::string& act);
    void Release();
    void TellNoted();
    void ForgetButton(const COpButton& button);
    bool IsToldWithItsBox(const COpButton& button);
    template <typename Note>
    void NoteEdit(Note note);
    void Mark();

    CTvDoc& m_document;
    Listeners<const Change&> m_listeners;
    Listeners<> m_partListeners;
    int m_depth = 0;
    std::optional<std::string> m_held;  // the act that goes on
    int m_strayEdits = 0;
    Change m_change;  // but for the lists of what stands, which are these
    Noted<COpBox> m_came;
    Noted<COpBox> m_dropped;
    Noted<COpBox> m_touched;
    Noted<COpButton> m_buttons;
    Noted<COpButton> m_tuned;
};

// Stands round one act of the user, on the stack. They nest; the outermost counts, with the name of the first
// one that has a name.
class EditScope {
  public:
    EditScope(CTvDoc& document, const std::string& act);
    ~EditScope() { m_edits.End(); }
    EditScope(const EditScope&) = delete;
    EditScope& operator=(const EditScope&) = delete;

  private:
    Edits& m_edits;
};

// Stands for an act that goes on over several events, such as a drag: all scopes of its name are one act,
// which is told at its end. A scope of another name is an act by itself, before which what was done so far is
// told. One at a time; the document outlives it.
class HeldEdit {
  public:
    HeldEdit(CTvDoc& document, const std::string& act);
    ~HeldEdit() { m_edits.Release(); }
    HeldEdit(const HeldEdit&) = delete;
    HeldEdit& operator=(const HeldEdit&) = delete;

  private:
    Edits& m_edits;
};

}  // namespace tavrin
