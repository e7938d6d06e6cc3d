// SPDX-License-Identifier: Apache-2.0
// Where what is new comes to lie on the desk: what is searched for, dropped, pasted, merged or copied.
#include <algorithm>
#include <cmath>

#include "desk/DeskFlow.h"
#include "desk/FrameGeometry.h"
#include "desk/OpDesk.h"
#include "library/KnownOperator.h"

namespace tavrin {

namespace {

constexpr float kEdge = 8;          // desk units between what is brought into sight and the edge of that
constexpr float kBeside = 16;       // to the right and downward from a box to its copy
constexpr float kSamePlace = 0.5F;  // desk units; closer boxes cannot be told apart

// How far a stretch is to move to lie within another; one that is longer has its middle there.
float ShiftOf(float low, float length, float roomLow, float roomLength) {
    if (length >= roomLength) return roomLow + roomLength * 0.5F - (low + length * 0.5F);
    return std::clamp(low, roomLow, roomLow + roomLength - length) - low;
}

DeskPoint ShiftInto(const DeskRect& rect, const DeskRect& sight) {
    const DeskRect room = sight.GrownBy(-std::min({kEdge, sight.width * 0.25F, sight.height * 0.25F}));
    return {ShiftOf(rect.left, rect.width, room.left, room.width),
            ShiftOf(rect.bottom, rect.height, room.bottom, room.height)};
}

// Of some boxes, and of the frames and notes that are with them.
DeskRect RectOf(const COpDesk::BoxVector& boxes, const std::vector<DeskFrame>& frames) {
    DeskRect all = BoxRect(*boxes.front());
    for (const auto& box : boxes) all = all.UnitedWith(BoxRect(*box));
    for (const DeskFrame& frame : frames) all = all.UnitedWith(FrameRect(frame));
    return all;
}

// What was promised of the definition, unless that reads otherwise by now.
COpButton* ButtonFor(const COpButton& picked, COpBox& box, const WireFit& fit) {
    // An input and an output may bear one name.
    for (const auto& button : picked.IsOutput() ? box.inputs : box.outputs) {
        if (button->DisplayName() == fit.button && picked.CanConnect(*button)) return button.get();
    }
    return FitFor(picked, box);
}

}  // namespace

// Where they are put the next layout puts them as well, whatever the zoom is.
void COpDesk::Shift(const BoxVector& boxes, DeskPoint by) {
    for (const auto& box : boxes) {
        box->layout.left += by.x;
        box->layout.bottom += by.y;
        box->xypos[0] += by.x;
        box->xypos[1] += by.y;
    }
}

bool COpDesk::PutOperator(const std::string& name, DeskPoint at, const WireFit* fit) {
    const EditScope edit(m_document, "Add " + name);
    COpButton* picked = fit == nullptr ? nullptr : m_selectedButton;
    AddOperator(name);
    if (!HasPending()) return false;
    if (m_pendingBoxes.empty()) {  // a network of notes
        const DeskPoint from = PendingAnchor();
        MovePendingFrames({at.x - from.x, at.y - from.y});
        LandPending(false);
        return true;
    }
    COpBox& first = *m_pendingBoxes.front();
    COpButton* button = picked == nullptr ? nullptr : ButtonFor(*picked, first, *fit);
    if (button != nullptr && !fit->castType.empty()) {
        const int cast = button->FindCast(fit->castType);
        if (cast >= 0) button->SetCast(static_cast<size_t>(cast));
        m_view->LayoutBox(first);
    }
    const DeskPoint hold =
        button == nullptr ? TitleRect(first).Middle() : ButtonAnchor(ButtonPlace::Of(*button));
    Shift(m_pendingBoxes, {at.x - hold.x, at.y - hold.y});
    if (const auto sight = m_view->Sight())
        Shift(m_pendingBoxes, ShiftInto(RectOf(m_pendingBoxes, FramesInHand()), *sight));
    LandPending(button == nullptr);
    if (button != nullptr) Connect(*picked, *button);
    m_view->Repaint();
    m_view->UpdateScrollBars();
    return true;
}

void COpDesk::DropPending() { LandPending(true); }

void COpDesk::LandPending(bool onWires) {
    if (!HasPending()) return;
    const EditScope edit(m_document, m_pendingAct);
    DropPendingFrames();
    for (auto& box : m_pendingBoxes) {
        m_document.edits.BoxDropped(*box);
        m_document.m_boxes.push_front(std::move(box));
    }
    const bool isOne = m_pendingBoxes.size() == 1;
    m_pendingBoxes.clear();
    if (isOne && onWires && m_rules.insertBoxes) InsertIntoWire(*m_document.m_boxes.front());
}

// Round the pointer, or else in the middle of what is seen, until the mouse takes them along.
void COpDesk::ShowPending(const std::optional<DeskPoint>& cursor) {
    const std::optional<DeskRect> sight = m_view->Sight();
    if (!sight || m_pendingBoxes.empty()) return;
    const DeskPoint at = cursor.value_or(sight->Middle());
    const DeskPoint middle = RectOf(m_pendingBoxes, FramesInHand()).Middle();
    Shift(m_pendingBoxes, {at.x - middle.x, at.y - middle.y});
    Shift(m_pendingBoxes, ShiftInto(RectOf(m_pendingBoxes, FramesInHand()), *sight));
    m_pendingPlaced = true;
    m_mouseDesk[0] = at.x;
    m_mouseDesk[1] = at.y;
    m_view->Repaint();
}

// A copy that lies on another one, or beyond the edge, might as well not be there. Far out a step is larger,
// so that it is seen as well.
void COpDesk::SetBesides(COpBox& copy) {
    constexpr int kMostSteps = 64;
    const float step = kBeside / std::clamp(m_document.zoomFactor, 0.01F, 1.0F);
    const std::optional<DeskRect> sight = m_view->Sight();
    const DeskRect start = BoxRect(copy);
    DeskPoint by{step - kBeside, kBeside - step};
    const auto isTaken = [&](DeskPoint shift) {
        return std::any_of(m_document.m_boxes.begin(), m_document.m_boxes.end(), [&](const auto& other) {
            return std::abs(other->layout.left - start.left - shift.x) < kSamePlace &&
                   std::abs(other->layout.bottom - start.bottom - shift.y) < kSamePlace;
        });
    };
    for (int i = 0; i < kMostSteps && isTaken(by); ++i) by = {by.x + step, by.y - step};
    DeskRect place = start;
    place.left += by.x;
    place.bottom += by.y;
    const DeskPoint more = sight ? ShiftInto(place, *sight) : DeskPoint{};
    by = {by.x + more.x, by.y + more.y};
    copy.layout.left += by.x;
    copy.layout.bottom += by.y;
    copy.xypos[0] += by.x;
    copy.xypos[1] += by.y;
}

}  // namespace tavrin
