// SPDX-License-Identifier: Apache-2.0
// How steps are undone and redone: one operation, which exchanges what the step holds with what stands.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "document/EditHistory.h"
#include "document/TvDoc.h"

namespace tavrin {

const std::string& EditHistory::Name(size_t step) const { return m_steps.at(step).act; }

bool EditHistory::CanUndo() const { return m_place > 0 && !m_document.edits.IsOpen(); }

bool EditHistory::CanRedo() const { return m_place < m_steps.size() && !m_document.edits.IsOpen(); }

bool EditHistory::IsAtSaved() const {
    if (!m_saved) return false;
    const auto [from, to] = std::minmax(*m_saved, m_place);
    for (size_t step = from; step < to; ++step) {
        if (m_steps[step].marks) return false;
    }
    return true;
}

void EditHistory::Undo() {
    if (!CanUndo()) return;
    --m_place;
    Tell(Swap(m_steps[m_place]));
}

void EditHistory::Redo() {
    if (!CanRedo()) return;
    ++m_place;
    Tell(Swap(m_steps[m_place - 1]));
}

void EditHistory::GoTo(size_t place) {
    while (m_place > place && CanUndo()) Undo();
    while (m_place < place && CanRedo()) Redo();
}

void EditHistory::Tell(const Change& change) {
    m_runGoesOn = false;
    m_document.HistoryMoved(IsAtSaved());
    m_document.edits.TellSwapped(change);
}

// The shadow is what stands. States are exchanged with it, and then put into the objects.
Change EditHistory::Swap(Step& step) {
    Change change;
    change.act = step.act;
    change.swapped = true;
    change.marks = step.marks;
    SwapMembership(step, change);
    for (InputsChange& inputs : step.inputs) SwapInputs(inputs, change);
    SwapStates(step, change);
    SwapOptions(step, change);
    SwapFrames(step, change);
    return change;
}

void EditHistory::SwapMembership(Step& step, Change& change) {
    if (step.present.empty() && step.absent.empty()) return;
    std::vector<ParkedBox> leaving = TakeOut(step.present, change);
    step.present = BringBack(step.absent, change);
    step.absent = std::move(leaving);
    m_stack = Stack();
    change.wires = true;
}

std::vector<EditHistory::ParkedBox> EditHistory::TakeOut(const std::vector<COpBox*>& boxes, Change& change) {
    const std::unordered_set<const COpBox*> leaving(boxes.begin(), boxes.end());
    std::vector<ParkedBox> taken;
    COpBox* above = nullptr;
    m_document.m_boxes.remove_if([&](auto& box) {
        if (!leaving.contains(box.get())) {
            above = box.get();
            return false;
        }
        change.went.push_back({box->Serial(), box->BoxTitleWid()});
        auto shadow = m_shadows.extract(box.get());
        taken.push_back({std::move(box), std::move(shadow.mapped()), above});
        return true;
    });
    for (const ParkedBox& parked : taken) parked.box->Park();
    return taken;
}

// From the lowest on, so that those that lay below one another do so again.
std::vector<COpBox*> EditHistory::BringBack(std::vector<ParkedBox>& boxes, Change& change) {
    if (boxes.empty()) return {};
    auto& stack = m_document.m_boxes;
    std::unordered_map<const COpBox*, CTvDoc::BoxList::iterator> places;
    for (auto place = stack.begin(); place != stack.end(); ++place) places[place->get()] = place;
    std::vector<COpBox*> back;
    for (auto parked = boxes.rbegin(); parked != boxes.rend(); ++parked) {
        COpBox* box = parked->box.get();
        box->Unpark();
        const auto above = places.find(parked->above);
        stack.insert(above == places.end() ? stack.begin() : std::next(above->second),
                     std::move(parked->box));
        m_shadows.emplace(box, std::move(parked->shadow));
        back.push_back(box);
    }
    // Wires among them can stand only now that all are there.
    for (COpBox* box : back) {
        const BoxShadow& shadow = m_shadows.at(box);
        PutState(shadow.state, *box);
        for (const auto* side : {&shadow.inputs, &shadow.outputs}) {
            for (const ButtonShadow& button : *side) {
                PutState(button.state, *button.button);
                button.button->SetWires(button.wires);
            }
        }
    }
    change.came = back;
    change.dropped = back;
    return back;
}

void EditHistory::SwapInputs(InputsChange& inputs, Change& change) {
    COpBox& box = *inputs.box;
    BoxShadow& shadow = m_shadows.at(&box);
    std::unordered_map<const COpButton*, ParkedButton> all;
    std::vector<COpButton*> order;
    for (size_t i = 0; i < box.inputs.size(); ++i) {
        COpButton* button = box.inputs[i].get();
        order.push_back(button);
        all[button] = {std::move(box.inputs[i]), std::move(shadow.inputs[i])};
    }
    for (ParkedButton& parked : inputs.absent) {
        COpButton* button = parked.button.get();
        button->Unpark();
        PutState(parked.shadow.state, *button);
        button->SetWires(parked.shadow.wires);
        all[button] = std::move(parked);
    }
    box.inputs.clear();
    shadow.inputs.clear();
    inputs.absent.clear();
    for (COpButton* button : inputs.order) {
        ParkedButton& place = all.at(button);
        box.inputs.push_back(std::move(place.button));
        shadow.inputs.push_back(std::move(place.shadow));
    }
    for (COpButton* button : order) {
        ParkedButton& left = all.at(button);
        if (left.button == nullptr) continue;
        left.button->Park();
        inputs.absent.push_back(std::move(left));
    }
    inputs.order = std::move(order);
    change.touched.push_back(&box);
    change.wires = true;
}

void EditHistory::SwapStates(Step& step, Change& change) {
    std::unordered_set<const COpBox*> touched(change.touched.begin(), change.touched.end());
    const auto touch = [&](COpBox& box) {
        if (touched.insert(&box).second) change.touched.push_back(&box);
    };
    for (auto& [box, state] : step.boxes) {
        std::swap(state, m_shadows.at(box).state);
        change.wires = change.wires || state.muted != m_shadows.at(box).state.muted;  // what they carry
        PutState(m_shadows.at(box).state, *box);
        touch(*box);
    }
    for (auto& [button, state] : step.buttons) {
        ButtonShadow& shadow = *FindShadow(*button);
        std::swap(state, shadow.state);
        PutState(shadow.state, *button);
        if (!state.DiffersInTunedOnly(shadow.state)) touch(*button->owner);
    }
    for (const auto& [button, state] : step.buttons) {
        if (!touched.contains(button->owner)) change.tuned.push_back(button);
    }
    for (auto& [button, wires] : step.wires) {
        ButtonShadow& shadow = *FindShadow(*button);
        std::swap(wires, shadow.wires);
        button->SetWires(shadow.wires);
        change.wires = true;
    }
}

void EditHistory::SwapOptions(Step& step, Change& change) {
    for (auto& [name, value] : step.options) {
        std::optional<std::string> now;
        if (const auto found = m_options.find(name); found != m_options.end()) now = found->second;
        if (value) {
            m_options[name] = *value;
        } else {
            m_options.erase(name);
        }
        value = std::move(now);
        change.options = true;
    }
    if (change.options) m_document.m_renderOptions = m_options;
    if (step.settings) {
        std::swap(*step.settings, m_settings);
        PutSettings(m_settings, m_document);
        change.settings = true;
    }
}

void EditHistory::SwapFrames(Step& step, Change& change) {
    for (auto& [number, frame] : step.frames) {
        std::optional<DeskFrame> now;
        if (const auto found = m_frames.find(number); found != m_frames.end()) now = found->second;
        if (frame) {
            m_frames[number] = std::move(*frame);
        } else {
            m_frames.erase(number);
        }
        frame = std::move(now);
        change.frames = true;
    }
    if (change.frames) m_document.frames = m_frames;
}

}  // namespace tavrin
