// SPDX-License-Identifier: Apache-2.0
#include "sliders/SliderDesk.h"

#include <algorithm>
#include <string>
#include <utility>

#include "text/Tokens.h"

namespace tavrin {

namespace {

bool IsTunable(const COpButton& button) { return button.fixedtext.empty() && button.Feeder() == nullptr; }

bool HasFrame(const COpBox& box, const COpButton& button) {
    return (box.selected != 0 || button.pin != 0) && IsTunable(button) && !button.IsUnknown();
}

// Those of which something stands in the column: of a large network that is a small part, and only that is
// put in order.
std::vector<const COpBox*> BoxesWithFrames(const CTvDoc& document) {
    std::vector<std::pair<std::string, const COpBox*>> keyed;
    for (const auto& box : document.m_boxes) {
        const bool any = std::any_of(box->inputs.begin(), box->inputs.end(),
                                     [&](const auto& input) { return HasFrame(*box, *input); });
        if (any) keyed.emplace_back(ToLower(box->BoxTitleWid()), box.get());
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::vector<const COpBox*> boxes;
    boxes.reserve(keyed.size());
    for (const auto& [key, box] : keyed) boxes.push_back(box);
    return boxes;
}

}  // namespace

CSliderDesk::CSliderDesk(CTvDoc& document)
    : m_document(document),
      m_beforeDelete(document.beforeDelete.Add([this] { Clear(); })),
      m_changes(document.edits.Observe([this](const Change& change) { OnChange(change); })) {}

int CSliderDesk::PlaceOf(const COpButton& button) const {
    const auto found = m_places.find(button.Serial());
    return found == m_places.end() ? -1 : static_cast<int>(found->second);
}

// Switches of the desk and options leave the column as it is; what was tuned concerns one frame each.
void CSliderDesk::OnChange(const Change& change) {
    if (change.HasBoxes() || change.wires || change.selection) Update();
    for (COpBox* box : change.touched) {
        for (const auto& input : box->inputs) Refresh(*input);
    }
    for (COpButton* button : change.buttons) Refresh(*button);
    for (COpButton* button : change.tuned) Refresh(*button);
}

void CSliderDesk::Refresh(COpButton& button) {
    if (PlaceOf(button) >= 0) m_view->RefreshFrame(button);
}

void CSliderDesk::Clear() {
    m_frames.clear();
    m_places.clear();
    m_view->PlaceFrames();
}

void CSliderDesk::Update() {
    SyncFrames();
    m_view->PlaceFrames();
}

void CSliderDesk::SyncFrames() {
    if (m_frozen) {
        DropDead();
        return;
    }
    std::vector<SliderFrame> frames;
    for (const COpBox* box : BoxesWithFrames(m_document)) {
        for (const auto& input : box->inputs) {
            if (!HasFrame(*box, *input)) continue;
            const int place = PlaceOf(*input);
            frames.push_back(place >= 0 ? m_frames[static_cast<size_t>(place)]
                                        : SliderFrame{LiveRef<COpButton>(*input)});
        }
    }
    m_frames = std::move(frames);
    Index();
}

void CSliderDesk::DropDead() {
    const auto gone =
        std::erase_if(m_frames, [](const SliderFrame& frame) { return frame.button.Get() == nullptr; });
    if (gone != 0) Index();
}

void CSliderDesk::Index() {
    m_places.clear();
    for (size_t place = 0; place < m_frames.size(); ++place)
        m_places[m_frames[place].button.Serial()] = place;
}

void CSliderDesk::SetFrozen(bool frozen) {
    if (frozen == m_frozen) return;
    m_frozen = frozen;
    if (!frozen) Update();
}

void CSliderDesk::SetFlag(COpButton& button, int COpButton::*flag, bool value, const char* act) {
    if ((button.*flag != 0) == value) return;
    const EditScope edit(m_document, act);
    m_document.edits.ButtonTuned(button);
    button.*flag = value ? 1 : 0;
}

void CSliderDesk::SetStow(COpButton& button, bool stow) { SetFlag(button, &COpButton::stow, stow, "Stow"); }

void CSliderDesk::SetPin(COpButton& button, bool pin) { SetFlag(button, &COpButton::pin, pin, "Pin"); }

void CSliderDesk::SetLock(COpButton& button, bool lock) {
    if ((button.lock != 0) == lock) return;
    const int place = PlaceOf(button);
    if (place >= 0) m_frames[static_cast<size_t>(place)].isDisabled = lock;
    SetFlag(button, &COpButton::lock, lock, "Lock");
}

template <typename Setter>
void CSliderDesk::ForAll(const char* act, Setter set) {
    const EditScope edit(m_document, act);
    for (const SliderFrame& frame : m_frames) {
        if (COpButton* button = frame.button.Get()) set(*button);
    }
}

void CSliderDesk::StowAll(bool stow) {
    ForAll(stow ? "Stow All Sliders" : "Unstow All Sliders",
           [&](COpButton& button) { SetStow(button, stow); });
    Update();
}

// Pinning hides nothing, so frames stay as they are.
void CSliderDesk::PinAll(bool pin) {
    ForAll(pin ? "Pin All Sliders" : "Unpin All Sliders", [&](COpButton& button) { SetPin(button, pin); });
    if (!pin) Update();
}

void CSliderDesk::LockAll(bool lock) {
    ForAll(lock ? "Lock All Sliders" : "Unlock All Sliders",
           [&](COpButton& button) { SetLock(button, lock); });
}

}  // namespace tavrin
