// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskGestures.h"

#include <algorithm>
#include <utility>

#include "desk/BoxMarks.h"
#include "desk/HitTest.h"
#include "text/Report.h"

namespace tavrin {

const char* const kDeskHint =
    "LEFT: Select        SHIFT+LEFT: Add Selection        CTRL+LEFT: Toggle Selection        LEFT DRAG: Move "
    "  "
    "     WHEEL: Zoom        MIDDLE or SHIFT+RIGHT DRAG: Pan/Scroll        RIGHT: Menu";

namespace {

constexpr float kAutoScrollStep = 8;  // pixels
constexpr const char* kMove = "Move";
constexpr const char* kResize = "Resize";
constexpr const char* kLoopHelp = ">>>\r\n>>> HEY!!!  That would make an endless loop\r\n>>>";
// A release words it differently.
constexpr const char* kLoopAtPress = "That would create endless loop!  Watch status box for warnings.";

template <typename Object>
bool HasGone(const Object* object, uint64_t serial) {
    return object != nullptr && (!Object::IsLive(object) || object->Serial() != serial);
}

// One that may be multiplied.
bool IsVinput(const COpButton* button) {
    return button != nullptr && button->kind == ButtonKind::kVinput && !button->IsUnknown();
}

}  // namespace

void DeskGestures::LeftDown(const PointerState& pointer) {
    m_needs.windows.Repaint();
    m_hover = {};
    EndGesture();
    m_isTakenUp = false;
    if (m_needs.desk.HasPending()) {
        m_needs.desk.DropPending();
        return;
    }
    const DeskPoint at = m_needs.view.ToDesk(pointer.at);
    COpBox* box = HitBox(m_needs.document, at);
    COpButton* button = box == nullptr ? nullptr : HitButton(*box, at);
    // What the last move left, unless the view has changed under a pointer at rest.
    Remember(pointer, at);
    m_needs.desk.m_mouseBox = box;
    m_needs.desk.m_mouseButton = button;
    if (button != nullptr) {
        PressButton(*button);
    } else if (box != nullptr) {
        PressBox(*box, pointer);
    } else if (COpButton* input = LineAt(at)) {
        PressLine(*input, pointer);
    } else if (const auto frame = HitFrame(m_needs.document.frames, at, m_needs.view.Zoom())) {
        PressFrame(*frame, at, pointer);
    } else {
        PressEmptyDesk(at, pointer);
    }
}

void DeskGestures::PressButton(COpButton& button) {
    COpDesk& desk = m_needs.desk;
    desk.ClearSelectedConnects();
    COpButton* selected = desk.m_selectedButton;
    if (selected != nullptr && selected->CanConnect(button)) {
        if (selected->WouldLoop(button)) {
            m_needs.report.Alert("%s", kLoopAtPress);
        } else {
            Wire(button);
        }
        return;
    }
    desk.ClearSelectedButton();
    desk.m_selectedButton = &button;
    m_growArrowsShown = m_growArrowsShown || IsVinput(&button);
    m_gesture = Kind::kWiring;
}

void DeskGestures::PressBox(COpBox& box, const PointerState& pointer) {
    COpDesk& desk = m_needs.desk;
    desk.ClearSelectedButton();
    desk.ClearSelectedConnects();
    m_gesture = Kind::kMoving;
    desk.TakeAlong();
    const bool wasSelected = box.selected != 0;
    if (wasSelected && !pointer.control) return;  // what is selected stays, ready to be dragged
    if (!pointer.control && !pointer.shift) desk.ClearBoxSelection();
    box.selected = wasSelected ? 0 : 1;
    if (box.selected != 0) desk.RaiseBox(box);
    desk.TakeAlong();
    m_needs.document.edits.SelectionChanged();
}

// As a box. The other corner and the sides that are not dragged stay where they are.
void DeskGestures::PressFrame(const FrameHit& hit, DeskPoint at, const PointerState& pointer) {
    COpDesk& desk = m_needs.desk;
    desk.ClearSelectedButton();
    desk.ClearSelectedConnects();
    const bool wasSelected = desk.m_selectedFrames.contains(hit.number);
    if (!wasSelected || pointer.control) {
        if (!pointer.control && !pointer.shift) desk.ClearBoxSelection();
        if (wasSelected) {
            desk.m_selectedFrames.erase(hit.number);
        } else {
            desk.m_selectedFrames.insert(hit.number);
        }
        m_needs.document.edits.SelectionChanged();
    }
    desk.TakeAlong();
    m_gesture = hit.corner ? Kind::kResizing : Kind::kMoving;
    if (!hit.corner) return;
    m_resized = hit;
    const DeskPoint corner = FrameRect(m_needs.document.frames.at(hit.number)).Corners()[*hit.corner];
    m_cornerFromHand = {corner.x - at.x, corner.y - at.y};
}

std::optional<FrameHit> DeskGestures::FrameAt(DeskPoint at) const {
    if (m_needs.document.frames.empty() || m_needs.desk.HasPending()) return std::nullopt;
    const auto hit = HitFrame(m_needs.document.frames, at, m_needs.view.Zoom());
    const bool isHidden = hit && (HitBox(m_needs.document, at) != nullptr || LineAt(at) != nullptr);
    return isHidden ? std::nullopt : hit;
}

void DeskGestures::PressLine(COpButton& input, const PointerState& pointer) {
    COpDesk& desk = m_needs.desk;
    const bool anyBox = desk.AnySelected();
    desk.ClearBoxSelection();
    desk.ClearSelectedButton();
    if (!pointer.control && !pointer.shift) desk.ClearSelectedConnects();
    auto& lines = desk.m_selectedConnects;
    const auto place = std::find(lines.begin(), lines.end(), &input);
    if (place == lines.end()) {
        lines.push_back(&input);
    } else if (pointer.control) {
        lines.erase(place);
    }
    if (anyBox) m_needs.document.edits.SelectionChanged();
}

void DeskGestures::PressEmptyDesk(DeskPoint at, const PointerState& pointer) {
    COpDesk& desk = m_needs.desk;
    m_bandAnchor = at;
    desk.ClearSelectedButton();
    desk.ClearSelectedConnects();
    m_gesture = pointer.control ? Kind::kBandToggle : Kind::kBandAdd;
    if (pointer.control || pointer.shift || !desk.AnySelected()) return;
    desk.ClearBoxSelection();
    m_needs.document.edits.SelectionChanged();
}

void DeskGestures::Move(const PointerState& event) {
    PointerState pointer = event;
    DeskViewport& view = m_needs.view;
    DeskPoint at = view.ToDesk(pointer.at);
    if (!pointer.left) Cancel();  // the release went elsewhere
    if (m_ignoreNextMove) {
        m_ignoreNextMove = false;
        Remember(pointer, at);
        return;
    }
    FollowAutoScroll(at, pointer.left);
    if (!view.Visible().Contains(at)) {
        pointer.at = {std::clamp(pointer.at.x, 0.0F, std::max(view.Width() - 1, 0.0F)),
                      std::clamp(pointer.at.y, 0.0F, std::max(view.Height() - 1, 0.0F))};
        at = view.ToDesk(pointer.at);
    }
    const bool pans = pointer.middle || (pointer.right && pointer.shift);
    if (pans && view.Pan(pointer.at.x - m_mousePoint.x, pointer.at.y - m_mousePoint.y)) {
        m_needs.windows.UpdateScrollBars();
        m_needs.windows.Repaint();
        m_hover = {};
        Remember(pointer, at);
        return;
    }
    COpBox* box = HitBox(m_needs.document, at);
    COpButton* button = box == nullptr ? nullptr : HitButton(*box, at);
    FollowButton(box, button, at);
    m_pointerInside = true;
    FollowHover(box, button, at);
    const DeskPoint delta{at.x - Mouse().x, at.y - Mouse().y};
    if (pointer.left && m_gesture == Kind::kWiring) PullWire();
    if (pointer.left && m_gesture == Kind::kMoving) MoveBoxes(delta);
    if (pointer.left && m_gesture == Kind::kResizing) ResizeFrame(at);
    if (pointer.left && m_gesture != Kind::kIdle) m_needs.windows.Repaint();
    DragPending(at, delta);
    if (m_gesture != Kind::kMoving && m_gesture != Kind::kResizing) ShowHelp();
    Remember(pointer, at);
}

void DeskGestures::FollowAutoScroll(DeskPoint at, bool leftDown) {
    const DeskRect visible = m_needs.view.Visible();
    m_autoScroll = leftDown && !visible.Contains(at);
    if (!m_autoScroll) return;
    const auto step = [](float position, float low, float high) {
        return position < low ? -kAutoScrollStep : position >= high ? kAutoScrollStep : 0;
    };
    m_autoScrollDelta = {step(at.x, visible.left, visible.Right()),
                         step(at.y, visible.bottom, visible.Top())};
}

// Takes up what is under the pointer. While the arrows are up, the button that they belong to stays until the
// pointer is on another one and on neither arrow.
void DeskGestures::FollowButton(COpBox* box, COpButton* button, DeskPoint at) {
    COpDesk& desk = m_needs.desk;
    const bool differs = button != desk.m_mouseButton;
    if (m_growArrowsShown) {
        m_needs.windows.Repaint();
        if (!differs || IsInGrowArrow(at, true) || IsInGrowArrow(at, false)) return;
        m_growArrowsShown = false;
    } else if (differs && desk.m_selectedButton != nullptr) {
        m_needs.windows.Repaint();
    }
    desk.m_mouseButton = button;
    desk.m_mouseBox = box;
}

void DeskGestures::DragPending(DeskPoint at, DeskPoint delta) {
    COpDesk& desk = m_needs.desk;
    for (const auto& box : desk.m_pendingBoxes) {
        if (desk.m_pendingPlaced) {
            desk.MoveBox(*box, delta.x, delta.y);
        } else {
            desk.MoveBox(*box, at.x, at.y - box->layout.bodyHeight * 0.5F);
        }
    }
    if (desk.m_pendingBoxes.empty()) desk.MovePendingFrames(delta);
    if (desk.HasPending()) m_needs.windows.Repaint();
    desk.m_pendingPlaced = true;
}

void DeskGestures::ShowHelp() {
    const COpBox* box = m_needs.desk.m_mouseBox;
    const COpButton* button = m_needs.desk.m_mouseButton;
    m_help = {HelpUnderPointer(), box, box == nullptr ? 0 : box->Serial(), button,
              button == nullptr ? 0 : button->Serial()};
    m_needs.showStatus(m_help.text);
}

std::string DeskGestures::HelpUnderPointer() const {
    const COpDesk& desk = m_needs.desk;
    const COpButton* button = desk.m_mouseButton;
    const COpButton* selected = desk.m_selectedButton;
    if (button == nullptr)
        return desk.m_mouseBox != nullptr ? HelpOf(*desk.m_mouseBox, m_needs.marks) : kDeskHint;
    const bool warns = selected != nullptr && selected->CanConnect(*button) && selected->WouldLoop(*button);
    return warns ? kLoopHelp : button->HelpText();
}

std::optional<std::string> DeskGestures::TakeStaleHelp() {
    if (!HasGone(m_help.box, m_help.boxSerial) && !HasGone(m_help.button, m_help.buttonSerial)) return {};
    return std::exchange(m_help, {}).text;
}

void DeskGestures::LeftUp(const PointerState& pointer) {
    m_autoScroll = false;
    m_needs.windows.Repaint();
    const DeskPoint at = m_needs.view.ToDesk(pointer.at);
    if (m_gesture == Kind::kMoving && m_hasMoved) {
        const EditScope move(m_needs.document, kMove);  // one act with the drag
        m_needs.desk.DropOnWire();
    }
    const bool hasDrawn = m_gesture == Kind::kWiring && m_hasDrawn;
    Finish(at);
    if (hasDrawn) DropWire(at);
}

void DeskGestures::Finish(DeskPoint at) {
    const EditScope wire(m_needs.document, {});  // growing an input and wiring it are one act
    COpButton* grown = nullptr;
    if (m_growArrowsShown) {
        const bool above = IsInGrowArrow(at, true);
        if (above || IsInGrowArrow(at, false)) grown = m_needs.desk.GrowVinput(above);
        m_growArrowsShown = false;
    }
    COpButton* pulled = m_needs.desk.m_pulledInput;
    if (m_gesture == Kind::kWiring && pulled != nullptr) {
        FinishPull(*pulled, grown, at);
    } else if (m_gesture == Kind::kWiring) {
        FinishWire(grown);
    }
    if (m_gesture == Kind::kBandAdd || m_gesture == Kind::kBandToggle) FinishBand();
    EndGesture();
}

// A wire that is in hand still goes back to its input.
void DeskGestures::EndGesture() {
    if (m_needs.desk.m_pulledInput != nullptr) m_needs.desk.ClearSelectedButton();
    m_gesture = Kind::kIdle;
    m_hasMoved = m_hasDrawn = false;
    m_drag.reset();
}

void DeskGestures::MoveBoxes(DeskPoint delta) {
    if (!m_drag) m_drag.emplace(m_needs.document, kMove);
    m_hasMoved = m_hasMoved || delta.x != 0 || delta.y != 0;
    m_needs.desk.MoveSelectedBoxes(delta.x, delta.y);
}

std::optional<size_t> DeskGestures::HotCorner() const {
    if (m_gesture == Kind::kResizing) return m_resized.corner;
    if (m_gesture != Kind::kIdle) return std::nullopt;
    const auto hit = FrameAt(Mouse());
    return hit ? hit->corner : std::nullopt;
}

void DeskGestures::ResizeFrame(DeskPoint at) {
    if (!m_drag) m_drag.emplace(m_needs.document, kResize);
    m_needs.desk.ResizeFrame(m_resized.number, *m_resized.corner,
                             {at.x + m_cornerFromHand.x, at.y + m_cornerFromHand.y});
}

void DeskGestures::Cancel() {
    if (m_gesture == Kind::kIdle) return;
    EndGesture();
    m_autoScroll = false;
    m_growArrowsShown = false;
    m_needs.windows.Repaint();
}

void DeskGestures::FinishBand() {
    const DeskRect band = Band();
    bool changed = false;
    for (const auto& box : m_needs.document.m_boxes) {
        if (!band.Encloses(BoxRect(*box))) continue;
        const int selected = m_gesture == Kind::kBandAdd || box->selected == 0 ? 1 : 0;
        changed = changed || box->selected != selected;
        box->selected = selected;
    }
    std::set<int>& frames = m_needs.desk.m_selectedFrames;
    for (const auto& [number, frame] : m_needs.document.frames) {
        if (!band.Encloses(FrameRect(frame))) continue;
        const bool wasSelected = frames.erase(number) != 0;
        if (m_gesture == Kind::kBandAdd || !wasSelected) frames.insert(number);
        changed = changed || m_gesture == Kind::kBandToggle || !wasSelected;
    }
    if (changed) m_needs.document.edits.SelectionChanged();
}

void DeskGestures::Tick() {
    if (!m_autoScroll || m_gesture == Kind::kIdle) return;
    const DeskPoint pixels = m_autoScrollDelta;
    const float zoom = m_needs.view.Zoom();
    const DeskPoint delta{pixels.x / zoom, pixels.y / zoom};
    if (m_gesture == Kind::kMoving) MoveBoxes(delta);
    m_needs.view.ScrollBy(pixels);
    m_needs.desk.m_mouseDesk[0] += delta.x;
    m_needs.desk.m_mouseDesk[1] += delta.y;
    if (m_gesture == Kind::kResizing) ResizeFrame(Mouse());
    m_needs.windows.Repaint();
    m_needs.windows.UpdateScrollBars();
}

void DeskGestures::UpdateGrowArrows() {
    m_growArrowsShown = m_gesture == Kind::kWiring && IsVinput(m_needs.desk.m_mouseButton);
    m_growArrowUpHot = m_growArrowsShown && IsInGrowArrow(Mouse(), true);
    m_growArrowDownHot = m_growArrowsShown && IsInGrowArrow(Mouse(), false);
}

bool DeskGestures::IsInGrowArrow(DeskPoint at, bool above) const {
    const COpButton* button = m_needs.desk.m_mouseButton;
    return button != nullptr && GrowArrowRect(ButtonPlace::Of(*button), above).Contains(at);
}

void DeskGestures::Remember(const PointerState& pointer, DeskPoint at) {
    m_mousePoint = pointer.at;
    m_needs.desk.m_mouseDesk[0] = at.x;
    m_needs.desk.m_mouseDesk[1] = at.y;
}

}  // namespace tavrin
