// SPDX-License-Identifier: Apache-2.0
// The Edit commands with the desk's own clipboard, and what the context menus do.
#include <algorithm>
#include <unordered_set>

#include "desk/OpDesk.h"

namespace tavrin {

namespace {

// Where a duplicate comes to lie, seen from its original.
constexpr float kDuplicateOffset[2] = {16, -16};

}  // namespace

// Out of the network, in the order of the stack.
COpDesk::BoxVector COpDesk::TakeSelectedBoxes() {
    BoxVector taken;
    m_document.m_boxes.remove_if([&taken](auto& box) {
        if (box->selected == 0) return false;
        taken.push_back(std::move(box));
        return true;
    });
    return taken;
}

void COpDesk::CopySelection() {
    m_clipboardBoxes.clear();  // nothing refers to clones there
    std::vector<COpBox*> selected;
    for (const auto& box : m_document.m_boxes) {
        if (box->selected != 0) selected.push_back(box.get());
    }
    CopyBoxes(selected, m_clipboardBoxes, m_rules);
    CopySelectedFrames(selected.empty() ? nullptr : selected.front());
}

void COpDesk::CutBoxes() {
    const EditScope edit(m_document, "Cut");
    CopySelection();  // while the connections among the boxes still stand
    for (const int number : std::set<int>(m_selectedFrames)) DeleteFrame(number);
    BoxVector cut = TakeSelectedBoxes();
    if (cut.empty()) return;
    Discard(cut, Edits::Stood::kInNetwork);
}

void COpDesk::PasteBoxes(const std::optional<DeskPoint>& cursor) {
    if (!CanPaste()) return;
    const EditScope edit(m_document, "Paste");
    ClearSelections();
    DeletePending();
    std::vector<COpBox*> source;
    for (const auto& box : m_clipboardBoxes) source.push_back(box.get());
    BoxVector clones;
    CopyBoxes(source, clones, m_rules);

    m_pendingPlaced = cursor.has_value();
    DeskPoint delta;
    if (!clones.empty()) delta = {clones.front()->xypos[0], clones.front()->xypos[1]};
    if (cursor) {
        // The view may have moved under a resting mouse; its next move is counted from here.
        m_mouseDesk[0] = cursor->x;
        m_mouseDesk[1] = cursor->y;
        delta = {delta.x - cursor->x, delta.y - cursor->y};
    }
    InstanceCounts counts = CountInstances();
    for (auto& clone : clones) {
        MoveBox(*clone, -delta.x, -delta.y);
        if (AdmitBox(*clone, counts)) m_pendingBoxes.push_back(std::move(clone));
    }
    clones.clear();  // those that were refused, with their connections
    BringFrames(m_clipboardFrames, cursor);
    if (m_rules.copiesInSight) ShowPending(cursor);
    m_pendingAct = "Paste";
    m_document.edits.BroughtBoxes();
}

void COpDesk::DeleteSelection() {
    const EditScope edit(m_document, "Delete");
    for (const int number : std::set<int>(m_selectedFrames)) DeleteFrame(number);
    BoxVector deleted = TakeSelectedBoxes();
    Discard(deleted, Edits::Stood::kInNetwork);
    DeletePending();
    for (COpButton* input : m_selectedConnects) {
        m_document.edits.WiresChanged();
        if (COpButton::IsLive(input)) input->Disconnect();
    }
    ClearSelectedConnects();
}

void COpDesk::DuplicateBox(const COpBox& box) {
    const EditScope edit(m_document, "Copy Box");
    UnselectBoxes();
    auto clone = std::make_unique<COpBox>(box);
    if (m_rules.copyTemplates) clone->TakeTemplates(box);
    MoveBox(*clone, kDuplicateOffset[0], kDuplicateOffset[1]);
    if (!AdmitBox(*clone)) return;
    if (m_rules.copiesInSight) SetBesides(*clone);
    m_document.edits.BoxDropped(*clone);
    m_document.m_boxes.push_front(std::move(clone));
}

void COpDesk::DeleteBox(const COpBox& box) {
    auto& stack = m_document.m_boxes;
    const auto place =
        std::find_if(stack.begin(), stack.end(), [&](const auto& own) { return own.get() == &box; });
    if (place == stack.end()) return;
    const EditScope edit(m_document, "Delete Box");
    auto owned = std::move(*place);
    stack.erase(place);
    RemoveBox(std::move(owned));
}

// A menu may have been open for long: what it was opened on need not stand any more.
COpButton* COpDesk::LiveMouseButton() const {
    return COpButton::IsLive(m_mouseButton) ? m_mouseButton : nullptr;
}

void COpDesk::DeleteButton() {
    COpButton* button = LiveMouseButton();
    if (button == nullptr || button->kind != ButtonKind::kVinput || button->owner->IsPlaceholder()) return;
    const EditScope edit(m_document, "Delete Input");
    COpBox& box = *button->owner;
    if (!button->connections.Empty()) m_document.edits.WiresChanged();
    m_document.edits.BoxTouched(box);
    std::erase(m_selectedConnects, button);
    m_document.edits.Leave(box.TakeButton(*button));
    m_mouseButton = nullptr;
    ClearSelectedButton();
    m_view->LayoutBox(box);
}

void COpDesk::DeleteConnections() {
    COpButton* button = LiveMouseButton();
    if (button == nullptr || button->connections.Empty()) return;
    const EditScope edit(m_document, "Cut Wires");
    m_document.edits.WiresChanged();
    if (button->IsOutput()) {
        const std::unordered_set<const COpButton*> inputs(button->connections.begin(),
                                                          button->connections.end());
        std::erase_if(m_selectedConnects, [&](const COpButton* input) { return inputs.contains(input); });
    } else {
        std::erase(m_selectedConnects, button);
    }
    button->Disconnect();
}

void COpDesk::ToggleArgument() {
    COpButton* button = LiveMouseButton();
    if (button == nullptr || button->IsOutput() || button->disableargflag != 0 || button->IsUnknown()) return;
    const EditScope edit(m_document, "Argument");
    m_document.edits.ButtonTouched(*button);
    button->arg = button->arg == 0 ? 1 : 0;
}

void COpDesk::ChooseCast(size_t cast) {
    COpButton* button = LiveMouseButton();
    if (button == nullptr || cast >= button->values.size() || button->IsUnknown()) return;
    const EditScope edit(m_document, "Cast");
    m_document.edits.BoxTouched(*button->owner);  // other buttons may follow
    button->SetCast(cast);
}

}  // namespace tavrin
