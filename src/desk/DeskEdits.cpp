// SPDX-License-Identifier: Apache-2.0
// Edits that put boxes in order, and that keep the flow of a network: between, past and through boxes.
#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

#include "desk/DeskFlow.h"
#include "desk/OpDesk.h"

namespace tavrin {

namespace {

constexpr float kInPlace = 0.01F;    // desk units; what is less is an effect of rounding
constexpr float kWidestApart = 160;  // between columns, however many wires turn there
constexpr float kLeastApart = 64;

// The wires among the boxes, by their places in the list.
std::vector<LayoutWire> WiresAmong(const std::vector<COpBox*>& boxes) {
    std::unordered_map<const COpBox*, size_t> places;
    for (size_t i = 0; i < boxes.size(); ++i) places[boxes[i]] = i;
    std::vector<LayoutWire> wires;
    for (size_t i = 0; i < boxes.size(); ++i) {
        ForEachConnection(*boxes[i], [&](const ButtonPlace& from, const ButtonPlace& to, COpButton&) {
            const auto source = places.find(from.box);
            if (source == places.end()) return true;
            wires.push_back({source->second, i, ButtonAnchor(from).y - from.box->layout.bottom,
                             ButtonAnchor(to).y - to.box->layout.bottom});
            return true;
        });
    }
    return wires;
}

// Traced lines turn beside the inputs, a step for each.
LayoutGaps GapsFor(const std::vector<COpBox*>& boxes) {
    size_t most = 0;
    for (const COpBox* box : boxes) most = std::max(most, box->inputs.size());
    const float turns = static_cast<float>(most + 2) * desk_lengths::kRouteSpacing;
    return {.across = std::clamp(turns, kLeastApart, kWidestApart)};
}

}  // namespace

// In the order of their numbers, which neither a click nor a save changes.
std::vector<COpBox*> COpDesk::BoxesToArrange(bool all) const {
    std::vector<COpBox*> boxes;
    for (const auto& box : m_document.m_boxes) {
        if (all || box->selected != 0) boxes.push_back(box.get());
    }
    std::stable_sort(boxes.begin(), boxes.end(),
                     [](const COpBox* left, const COpBox* right) { return left->wid < right->wid; });
    return boxes;
}

template <typename Arrange>
void COpDesk::ArrangeBoxes(const char* act, const std::vector<COpBox*>& boxes, Arrange arrange) {
    if (boxes.size() < 2) return;
    const EditScope edit(m_document, act);
    std::vector<DeskRect> rects;
    rects.reserve(boxes.size());
    for (const COpBox* box : boxes) rects.push_back(BoxRect(*box));
    const std::vector<DeskPoint> corners = arrange(rects);
    for (size_t i = 0; i < boxes.size(); ++i) PlaceBox(*boxes[i], corners[i]);
    m_view->Repaint();
    m_view->UpdateScrollBars();
}

// Where it is put, the next layout puts it as well, whatever the zoom is.
void COpDesk::PlaceBox(COpBox& box, DeskPoint corner) {
    BoxLayout& layout = box.layout;
    const bool isThere =
        std::abs(layout.left - corner.x) < kInPlace && std::abs(layout.bottom - corner.y) < kInPlace;
    if (isThere) return;
    m_document.edits.BoxMoved(box);
    layout.left = corner.x;
    layout.bottom = corner.y;
    const DeskPoint middle = BoxRect(box).Middle();
    box.xypos[0] = middle.x;
    box.xypos[1] = middle.y;
}

void COpDesk::AlignSelected(DeskAlign align) {
    ArrangeBoxes("Align", BoxesToArrange(false),
                 [&](const std::vector<DeskRect>& rects) { return AlignRects(rects, align); });
}

void COpDesk::DistributeSelected(DeskAxis axis) {
    ArrangeBoxes("Distribute", BoxesToArrange(false),
                 [&](const std::vector<DeskRect>& rects) { return DistributeRects(rects, axis); });
}

void COpDesk::Tidy(TidyScope scope) {
    const std::vector<COpBox*> boxes = BoxesToArrange(scope == TidyScope::kAll);
    ArrangeBoxes("Tidy", boxes, [&](const std::vector<DeskRect>& rects) {
        return TidyRects(rects, WiresAmong(boxes), GapsFor(boxes));
    });
}

// From the inputs' sides, so that the wires are whole.
bool COpDesk::InsertIntoWire(COpBox& box) {
    const auto place = FindInsertion(m_document, box);
    if (!place) return false;
    const EditScope edit(m_document, "Insert");
    m_document.edits.WiresChanged();
    place->input->Connect(*place->source);
    place->target->Connect(*place->output);
    return true;
}

void COpDesk::DropOnWire() {
    if (!m_rules.insertBoxes) return;
    const std::vector<COpBox*> boxes = BoxesToArrange(false);
    if (boxes.size() == 1) InsertIntoWire(*boxes.front());
}

// A line that is selected itself is to go, and nothing takes its place.
void COpDesk::DeleteKeepingFlow() {
    const EditScope edit(m_document, "Delete");
    std::vector<FlowWire> wires = WiresPast(BoxesToArrange(false));
    const std::unordered_set<const COpButton*> cut(m_selectedConnects.begin(), m_selectedConnects.end());
    std::erase_if(wires, [&](const FlowWire& wire) { return cut.contains(wire.target); });
    DeleteSelection();
    for (const FlowWire& wire : wires) {
        if (wire.target->WouldLoop(*wire.source)) continue;  // around a circle that a file has brought
        m_document.edits.WiresChanged();
        wire.target->Connect(*wire.source);
    }
}

// What wires carry through them is another with it.
void COpDesk::MuteSelected() {
    const std::vector<COpBox*> boxes = BoxesToArrange(false);
    const auto isMuted = [](const COpBox* box) { return box->muted != 0; };
    const bool mutes = !std::all_of(boxes.begin(), boxes.end(), isMuted);
    const EditScope edit(m_document, mutes ? "Mute" : "Unmute");
    for (COpBox* box : boxes) {
        if (isMuted(box) == mutes) continue;
        m_document.edits.BoxTouched(*box);
        m_document.edits.WiresChanged();
        box->muted = mutes ? 1 : 0;
    }
    m_view->Repaint();
}

void COpDesk::MoveWire(COpButton& from, COpButton& to) {
    COpButton* source = from.connections.First();
    if (source == nullptr || &from == &to) return;
    const EditScope edit(m_document, "Move Wire");
    m_document.edits.WiresChanged();
    std::erase(m_selectedConnects, &from);
    from.Disconnect();
    to.Connect(*source);
}

void COpDesk::CutWire(COpButton& input) {
    if (input.connections.Empty()) return;
    const EditScope edit(m_document, "Cut Wire");
    m_document.edits.WiresChanged();
    std::erase(m_selectedConnects, &input);
    input.Disconnect();
}

}  // namespace tavrin
