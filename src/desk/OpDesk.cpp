// SPDX-License-Identifier: Apache-2.0
#include "desk/OpDesk.h"

#include <algorithm>
#include <unordered_set>

#include "base/ReadLimit.h"
#include "document/DocumentReader.h"
#include "document/EditHistory.h"
#include "library/OpRegistry.h"
#include "library/SavedNetwork.h"
#include "site/Site.h"
#include "text/OutOfMemory.h"

namespace tavrin {

namespace {

constexpr size_t kVectorRoom = 100;

// The anchor of the first box, else the corner of the first frame.
DeskPoint OriginOf(const CTvDoc::BoxList& boxes, const DeskFrames& frames) {
    if (!boxes.empty()) return {boxes.front()->xypos[0], boxes.front()->xypos[1]};
    const DeskFrame& first = frames.begin()->second;
    return {first.left, first.bottom};
}

std::vector<DeskFrame> FramesSeenFrom(DeskPoint origin, const DeskFrames& frames) {
    std::vector<DeskFrame> seen;
    for (const auto& [number, frame] : frames) {
        DeskFrame& own = seen.emplace_back(frame);
        own.left -= origin.x;
        own.bottom -= origin.y;
    }
    return seen;
}

}  // namespace

COpDesk::COpDesk(CTvDoc& document, DocumentHost& host)
    : m_document(document), m_host(host), m_rules(DeskRules::Read(host.GetSite().settings)) {
    m_clipboardBoxes.reserve(kVectorRoom);
    m_pendingBoxes.reserve(kVectorRoom);
    m_beforeDelete = document.beforeDelete.Add([this] { ForgetReferences(); });
    m_afterReorder = document.afterReorder.Add([this] { m_view->Repaint(); });
    m_changes = document.edits.Observe([this](const Change& change) {
        if (change.swapped) FollowSwap(change);
    });
}

void COpDesk::SetView(DeskView* view) { m_view = view == nullptr ? &m_noView : view; }

// Where nothing comes of it, what was selected and what waited are gone all the same.
void COpDesk::AddOperator(const std::string& name) {
    const EditScope edit(m_document, "Add Operator");
    ClearSelections();
    DeletePending();
    WithinMemory(m_host.GetSite().report, "the operator " + name, [&] {
        BringOperator(name);
        return true;
    });
    m_pendingAct = "Add " + name;
}

void COpDesk::BringOperator(const std::string& name) {
    Report& report = m_host.GetSite().report;
    const COpEntry* entry = m_host.Registry().FindByName(name);
    if (entry == nullptr && !m_host.Registry().MayHaveBeenCalled(name).empty()) return AddBox(name);
    if (entry == nullptr) {
        report.Alert("%s: unknown operator name", name.c_str());
        return;
    }
    std::string reason;
    auto archive = CArchive::Open(entry->path, reason);
    if (!archive) {
        report.Alert("unable to open %s for reading%s", entry->path.c_str(),
                     reason == TooLarge() ? (": " + reason).c_str() : "");
        return;
    }
    switch (KindOf(*archive)) {
        case OperatorText::kEmpty:
            report.AlertAt(*archive, "unexpected input");
            break;
        case OperatorText::kNetwork:
            AddMacro(ReadDesk(std::move(*archive)));
            break;
        case OperatorText::kDefinition:
            AddBox(name);
            break;
    }
}

void COpDesk::AddMacro(const DocumentForm& network) {
    CTvDoc scratch(m_host);
    if (scratch.LoadDesk(network)) MergeBoxes(scratch.m_boxes, scratch.frames);
}

void COpDesk::AddBox(const std::string& name) {
    auto box = std::make_unique<COpBox>();
    if (!m_host.DefineBox(*box, name) || !AdmitBox(*box)) return;
    m_view->LayoutBox(*box);
    m_pendingBoxes.push_back(std::move(box));
    m_pendingPlaced = false;
}

COpDesk::InstanceCounts COpDesk::CountInstances() const {
    InstanceCounts counts;
    for (const auto& box : m_document.m_boxes) ++counts[box->filename];
    for (const auto& box : m_pendingBoxes) ++counts[box->filename];
    return counts;
}

bool COpDesk::AdmitBox(COpBox& box) {
    const EditScope edit(m_document, "Add Box");
    InstanceCounts counts;
    if (box.maxinstances != 0) counts = CountInstances();
    return AdmitBox(box, counts);
}

// `counts` holds the boxes on the desk by operator, and takes up the one admitted.
bool COpDesk::AdmitBox(COpBox& box, InstanceCounts& counts) {
    int& count = counts[box.filename];
    if (box.maxinstances != 0 && box.maxinstances < count + 1) {
        m_host.GetSite().report.Alert("WARNING: not creating \"%s\" (only %d allowed on desk)",
                                      box.filename.c_str(), box.maxinstances);
        return false;
    }
    ++count;
    box.selected = 1;
    box.wid = NextWid();
    m_view->LayoutBox(box);
    m_document.edits.BoxCame(box);
    return true;
}

void COpDesk::MergeBoxes(CTvDoc::BoxList& boxes, const DeskFrames& frames) {
    if (boxes.empty() && frames.empty()) return;
    const EditScope edit(m_document, "Merge");
    ClearSelections();
    DeletePending();
    const DeskPoint origin = OriginOf(boxes, frames);
    InstanceCounts counts = CountInstances();
    for (auto& box : boxes) {
        MoveBox(*box, -origin.x, -origin.y);
        if (AdmitBox(*box, counts)) m_pendingBoxes.push_back(std::move(box));
    }
    boxes.clear();  // destroys those that were refused, with their connections
    m_pendingPlaced = false;
    BringFrames(FramesSeenFrom(origin, frames), m_view->CursorOnDesk());
    if (m_rules.copiesInSight) ShowPending(m_view->CursorOnDesk());
    m_pendingAct = "Merge";
    m_document.edits.BroughtBoxes();
}

void COpDesk::RemoveBox(std::unique_ptr<COpBox> box) {
    BoxVector boxes;
    boxes.push_back(std::move(box));
    Discard(boxes, Edits::Stood::kInNetwork);
}

void COpDesk::Discard(BoxVector& boxes, Edits::Stood stood) {
    const EditScope edit(m_document, "Delete");
    if (!m_selectedConnects.empty()) {
        std::unordered_set<const COpButton*> inputs;
        for (const auto& box : boxes) {
            for (const auto& input : box->inputs) inputs.insert(input.get());
        }
        std::erase_if(m_selectedConnects, [&](const COpButton* input) { return inputs.contains(input); });
    }
    for (auto& box : boxes) {
        ForgetBox(*box, stood);
        if (stood == Edits::Stood::kInNetwork) m_document.edits.Leave(std::move(box));
        box.reset();
    }
    boxes.clear();
}

void COpDesk::ForgetBox(const COpBox& box, Edits::Stood stood) {
    m_usedWids.Remove(box.wid);
    m_document.edits.BoxWent(box, stood);
    if (m_mouseBox == &box) m_mouseBox = nullptr;
    for (const auto* side : {&box.inputs, &box.outputs}) {
        for (const auto& button : *side) ForgetButton(*button);
    }
}

void COpDesk::ForgetButton(const COpButton& button) {
    if (m_mouseButton == &button) m_mouseButton = nullptr;
    if (m_selectedButton == &button || m_pulledInput == &button) ClearSelectedButton();
}

void COpDesk::RaiseBox(const COpBox& box) {
    auto& stack = m_document.m_boxes;
    const auto place =
        std::find_if(stack.begin(), stack.end(), [&](const auto& own) { return own.get() == &box; });
    if (place != stack.end()) stack.splice(stack.begin(), stack, place);
}

bool COpDesk::CanUndo() const { return m_document.History() != nullptr && m_document.History()->CanUndo(); }

bool COpDesk::CanRedo() const { return m_document.History() != nullptr && m_document.History()->CanRedo(); }

void COpDesk::Undo() {
    if (CanUndo()) GoToStep(m_document.History()->Place() - 1);
}

void COpDesk::Redo() {
    if (CanRedo()) GoToStep(m_document.History()->Place() + 1);
}

// What waits under the mouse is no part of the network, but holds numbers that those who come back need.
void COpDesk::GoToStep(size_t place) {
    EditHistory* history = m_document.History();
    if (history == nullptr || m_document.edits.IsOpen()) return;
    DeletePending();
    history->GoTo(place);
}

void COpDesk::FollowSwap(const Change& change) {
    ForgetGoneFrames();
    m_usedWids.Clear();
    for (const auto& box : m_document.m_boxes) m_usedWids.Add(box->wid);
    for (COpBox* box : change.came) m_view->LayoutBox(*box);
    for (COpBox* box : change.touched) m_view->LayoutBox(*box);
    const auto isGone = [](const COpButton* button) { return !COpButton::IsLive(button); };
    // A wire in hand may have another end now.
    if (isGone(m_selectedButton) || m_pulledInput != nullptr) ClearSelectedButton();
    if (isGone(m_mouseButton)) m_mouseButton = nullptr;
    if (!COpBox::IsLive(m_mouseBox)) m_mouseBox = nullptr;
    std::erase_if(m_selectedConnects,
                  [&](const COpButton* input) { return isGone(input) || input->connections.Empty(); });
}

// The factor on the anchor is as the desk has always behaved: at a zoom other than 1 a dragged box is seen
// to move by the drag while its anchor moves further, to where the next layout puts the box.
void COpDesk::MoveBox(COpBox& box, float dx, float dy) {
    const float factor = m_rules.plainAnchors ? 1 : m_document.zoomFactor;
    box.layout.left += dx;
    box.layout.bottom += dy;
    box.xypos[0] += factor * dx;
    box.xypos[1] += factor * dy;
}

void COpDesk::MoveSelectedBoxes(float dx, float dy) {
    if (dx == 0.0F && dy == 0.0F) return;
    const EditScope edit(m_document, "Move");
    MoveSelectedFrames(dx, dy);
    for (const auto& box : m_document.m_boxes) {
        if (box->selected == 0 && !m_carriedBoxes.contains(box->Serial())) continue;
        m_document.edits.BoxMoved(*box);
        MoveBox(*box, dx, dy);
    }
    m_view->Repaint();
    m_view->UpdateScrollBars();
}

void COpDesk::ShiftPending(float dx, float dy) {
    for (const auto& box : m_pendingBoxes) {
        box->xypos[0] += dx;
        box->xypos[1] += dy;
    }
}

void COpDesk::CopyBoxes(const std::vector<COpBox*>& source, BoxVector& destination, const DeskRules& rules) {
    std::unordered_map<const COpBox*, COpBox*> clones;
    for (const COpBox* box : source) {
        COpBox& clone = *destination.emplace_back(std::make_unique<COpBox>(*box));
        if (rules.copyTemplates) clone.TakeTemplates(*box);
        clones[box] = &clone;
    }
    for (const COpBox* box : source) {
        for (size_t input = 0; input < box->inputs.size(); ++input) {
            COpButton* output = box->inputs[input]->connections.First();
            const auto feeder = output == nullptr ? clones.end() : clones.find(output->owner);
            if (feeder == clones.end()) continue;  // fed by nothing, or from outside the copied boxes
            const size_t position = output->owner->IndexOfButton(*output);
            clones[box]->inputs[input]->Connect(*feeder->second->outputs[position]);
        }
    }
}

COpButton* COpDesk::GrowVinput(bool above) {
    if (m_mouseBox == nullptr || m_mouseButton == nullptr || m_mouseButton->kind != ButtonKind::kVinput ||
        m_mouseButton->IsUnknown())
        return nullptr;
    const EditScope edit(m_document, "Add Input");
    m_document.edits.BoxTouched(*m_mouseBox);
    COpButton* copy = m_mouseBox->CopyButton(*m_mouseButton, above);
    m_view->LayoutBox(*m_mouseBox);
    return copy;
}

void COpDesk::Connect(COpButton& button, COpButton& other) {
    const EditScope edit(m_document, "Wire");
    m_document.edits.WiresChanged();
    button.Connect(other);
}

}  // namespace tavrin
