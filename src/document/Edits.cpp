// SPDX-License-Identifier: Apache-2.0
#include "document/Edits.h"

#include <utility>

#include "document/EditHistory.h"
#include "document/TvDoc.h"

namespace tavrin {

namespace {

constexpr const char* kUnnamedAct = "Edit";

}  // namespace

// One that has gone may have left its address to another that came later.
template <typename Object>
std::vector<Object*> Edits::Noted<Object>::All() const {
    auto members = m_members;
    std::vector<Object*> all;
    all.reserve(members.size());
    for (Object* object : m_order) {
        if (members.erase(object) != 0) all.push_back(object);
    }
    return all;
}

template <typename Object>
std::vector<Object*> Edits::Noted<Object>::Take() {
    std::vector<Object*> taken = All();
    m_order.clear();
    m_members.clear();
    return taken;
}

void Edits::Mark() {
    m_document.SetModified();
    m_change.marks = true;
}

template <typename Note>
void Edits::NoteEdit(Note note) {
    if (m_depth == 0) ++m_strayEdits;
    ++m_depth;
    note();
    End();
}

void Edits::BoxCame(COpBox& box) {
    NoteEdit([&] { m_came.Add(box); });
}

void Edits::BoxDropped(COpBox& box) {
    NoteEdit([&] {
        Mark();
        m_dropped.Add(box);
    });
}

void Edits::BoxWent(const COpBox& box, Stood stood) {
    NoteEdit([&] {
        if (stood == Stood::kInNetwork) Mark();
        m_change.went.push_back({box.Serial(), box.BoxTitleWid()});
        m_came.Forget(box);
        m_dropped.Forget(box);
        m_touched.Forget(box);
        for (const auto* side : {&box.inputs, &box.outputs}) {
            for (const auto& button : *side) {
                ForgetButton(*button);
                m_change.wires = m_change.wires || !button->connections.Empty() || !button->NamedBy().Empty();
            }
        }
    });
}

void Edits::BoxTouched(COpBox& box) {
    NoteEdit([&] {
        Mark();
        m_touched.Add(box);
        m_change.reshaped = true;
        // Those of its buttons that are destroyed now cannot be told apart later.
        for (const auto* side : {&box.inputs, &box.outputs}) {
            for (const auto& button : *side) ForgetButton(*button);
        }
    });
}

void Edits::BoxMoved(COpBox& box) {
    if (!m_buttons.IsEmpty() || !m_tuned.IsEmpty()) return BoxTouched(box);  // of which some may be its own
    NoteEdit([&] {
        Mark();
        m_touched.Add(box);
    });
}

// Whether it is one of a touched box, which then has more to it than its place.
bool Edits::IsToldWithItsBox(const COpButton& button) {
    if (!m_touched.Has(*button.owner)) return false;
    m_change.reshaped = true;
    return true;
}

void Edits::ButtonTouched(COpButton& button) {
    NoteEdit([&] {
        Mark();
        if (IsToldWithItsBox(button)) return;
        m_tuned.Forget(button);
        m_buttons.Add(button);
    });
}

void Edits::ButtonTuned(COpButton& button) {
    NoteEdit([&] {
        Mark();
        ButtonTunedUnmarked(button);
    });
}

void Edits::ButtonTunedUnmarked(COpButton& button) {
    NoteEdit([&] {
        if (!IsToldWithItsBox(button) && !m_buttons.Has(button)) m_tuned.Add(button);
    });
}

void Edits::ForgetButton(const COpButton& button) {
    m_buttons.Forget(button);
    m_tuned.Forget(button);
}

void Edits::WiresChanged() {
    NoteEdit([&] {
        Mark();
        m_change.wires = true;
    });
}

void Edits::OptionsChanged() {
    NoteEdit([&] {
        Mark();
        m_change.options = true;
    });
}

void Edits::SettingsChanged() {
    NoteEdit([&] {
        Mark();
        m_change.settings = true;
    });
}

void Edits::FramesChanged() {
    NoteEdit([&] {
        Mark();
        m_change.frames = true;
    });
}

void Edits::BroughtBoxes() {
    NoteEdit([&] { m_document.SetModified(); });
}

void Edits::SelectionChanged() {
    Change change;
    change.selection = true;
    m_listeners.Tell(change);
}

void Edits::Replaced() {
    ForgetNotes();
    Change change;
    change.replaced = true;
    for (const auto& box : m_document.m_boxes) change.came.push_back(box.get());
    if (EditHistory* history = m_document.History()) history->DocumentReplaced();
    m_listeners.Tell(change);
}

void Edits::ForgetNotes() {
    m_change = {};
    m_came.Take();
    m_dropped.Take();
    m_touched.Take();
    m_buttons.Take();
    m_tuned.Take();
}

void Edits::JoinRun() { m_change.joins = true; }

void Edits::Leave(std::unique_ptr<COpBox> box) {
    if (EditHistory* history = m_document.History()) history->Park(std::move(box));
}

void Edits::Leave(std::unique_ptr<COpButton> button) {
    if (EditHistory* history = m_document.History()) history->Park(std::move(button));
}

void Edits::Hold(const std::string& act) { m_held = act; }

// A drag is a step by itself, whatever its parts are.
void Edits::Release() {
    m_held.reset();
    m_change.joins = false;
    if (m_depth == 0) TellNoted();
}

void Edits::Begin(const std::string& act) {
    if (m_depth == 0 && m_held && act != *m_held) TellNoted();
    ++m_depth;
    if (m_change.act.empty()) m_change.act = act;
}

void Edits::End() {
    if (--m_depth != 0) return;
    if (m_held && m_change.act == *m_held) {
        m_partListeners.Tell();
    } else {
        TellNoted();
    }
}

Change Edits::Pending() const {
    Change change = m_change;
    change.came = m_came.All();
    change.dropped = m_dropped.All();
    change.touched = m_touched.All();
    change.buttons = m_buttons.All();
    change.tuned = m_tuned.All();
    return change;
}

void Edits::TellNoted() {
    Change change = std::exchange(m_change, {});
    change.came = m_came.Take();
    change.dropped = m_dropped.Take();
    change.touched = m_touched.Take();
    change.buttons = m_buttons.Take();
    change.tuned = m_tuned.Take();
    if (change.IsEmpty()) return;
    if (change.act.empty()) change.act = kUnnamedAct;
    if (EditHistory* history = m_document.History()) history->Commit(change);
    m_listeners.Tell(change);
}

EditScope::EditScope(CTvDoc& document, const std::string& act) : m_edits(document.edits) {
    m_edits.Begin(act);
}

HeldEdit::HeldEdit(CTvDoc& document, const std::string& act) : m_edits(document.edits) { m_edits.Hold(act); }

}  // namespace tavrin
