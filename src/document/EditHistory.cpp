// SPDX-License-Identifier: Apache-2.0
// How acts become steps. How steps are kept stands in EditHistorySteps.cpp, how they are undone and redone in
// EditHistorySwap.cpp.
#include "document/EditHistory.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "document/TvDoc.h"

namespace tavrin {

EditHistory::EditHistory(CTvDoc& document, HistoryLimits limits) : m_document(document), m_limits(limits) {
    DocumentReplaced();
}

EditHistory::~EditHistory() { Forget(); }

// Younger steps name what older ones hold, so they go first.
void EditHistory::Forget() {
    while (!m_steps.empty()) m_steps.pop_back();
    m_place = 0;
    m_bytes = 0;
    m_shadows.clear();
    m_stack.clear();
    m_leavingBoxes.clear();
    m_leavingButtons.clear();
    m_runGoesOn = false;
}

void EditHistory::DocumentReplaced() {
    Forget();
    m_shadows.reserve(m_document.m_boxes.size());
    for (const auto& box : m_document.m_boxes) m_shadows.emplace(box.get(), ShadowOf(*box));
    m_stack = Stack();
    m_options = m_document.m_renderOptions;
    m_settings = SettingsOf(m_document);
    m_frames = m_document.frames;
    m_saved.reset();
    if (!m_document.IsModified()) m_saved = 0;
}

EditHistory::ButtonShadow EditHistory::ShadowOf(COpButton& button) {
    return {&button, StateOf(button), button.Wires()};
}

EditHistory::BoxShadow EditHistory::ShadowOf(const COpBox& box) {
    BoxShadow shadow;
    shadow.state = StateOf(box);
    shadow.inputs.reserve(box.inputs.size());
    shadow.outputs.reserve(box.outputs.size());
    for (const auto& button : box.inputs) shadow.inputs.push_back(ShadowOf(*button));
    for (const auto& button : box.outputs) shadow.outputs.push_back(ShadowOf(*button));
    return shadow;
}

EditHistory::BoxShadow* EditHistory::FindShadow(const COpBox& box) {
    const auto found = m_shadows.find(&box);
    return found == m_shadows.end() ? nullptr : &found->second;
}

EditHistory::ButtonShadow* EditHistory::FindShadow(const COpButton& button) {
    BoxShadow* box = FindShadow(*button.owner);
    if (box == nullptr) return nullptr;
    auto& side = button.IsOutput() ? box->outputs : box->inputs;
    const auto found = std::find_if(side.begin(), side.end(),
                                    [&](const ButtonShadow& shadow) { return shadow.button == &button; });
    return found == side.end() ? nullptr : &*found;
}

std::vector<COpBox*> EditHistory::Stack() const {
    std::vector<COpBox*> stack;
    stack.reserve(m_document.m_boxes.size());
    for (const auto& box : m_document.m_boxes) stack.push_back(box.get());
    return stack;
}

void EditHistory::Park(std::unique_ptr<COpBox> box) {
    box->Park();
    const COpBox* key = box.get();
    m_leavingBoxes[key] = std::move(box);
}

void EditHistory::Park(std::unique_ptr<COpButton> button) {
    button->Park();
    const COpButton* key = button.get();
    m_leavingButtons[key] = std::move(button);
}

void EditHistory::Commit(const Change& change) {
    Step step;
    step.act = change.act;
    step.joins = change.joins;
    step.marks = change.marks;
    RecordMembership(change, step);
    for (COpBox* box : change.touched) RecordBox(*box, change.reshaped, step);
    for (const auto* buttons : {&change.buttons, &change.tuned}) {
        for (COpButton* button : *buttons) {
            if (ButtonShadow* shadow = FindShadow(*button)) RecordButton(*shadow, step);
        }
    }
    if (change.wires || !step.present.empty() || !step.absent.empty() || !step.inputs.empty())
        RecordWires(step);
    if (change.options) RecordOptions(step);
    if (change.settings) RecordSettings(step);
    if (change.frames) RecordFrames(step);
    m_leavingBoxes.clear();  // those that came and went within the act
    m_leavingButtons.clear();
    if (!step.IsEmpty()) Keep(std::move(step));
}

void EditHistory::RecordMembership(const Change& change, Step& step) {
    std::unordered_set<const COpBox*> gone;
    for (const auto& [box, owned] : m_leavingBoxes) {
        if (m_shadows.contains(box)) gone.insert(box);
    }
    COpBox* above = nullptr;
    for (COpBox* box : m_stack) {
        if (gone.empty()) break;
        if (!gone.contains(box)) {
            above = box;
            continue;
        }
        auto shadow = m_shadows.extract(box);
        step.absent.push_back({std::move(m_leavingBoxes[box]), std::move(shadow.mapped()), above});
    }
    for (COpBox* box : change.dropped) {
        if (m_shadows.emplace(box, ShadowOf(*box)).second) step.present.push_back(box);
    }
    if (!step.absent.empty() || !step.present.empty()) m_stack = Stack();
}

void EditHistory::RecordBox(COpBox& box, bool isReshaped, Step& step) {
    BoxShadow* shadow = FindShadow(box);
    if (shadow == nullptr) return;  // it waits under the mouse
    const BoxState state = StateOf(box);
    if (!(state == shadow->state)) step.boxes.push_back({&box, std::exchange(shadow->state, state)});
    if (!isReshaped) return;
    RecordInputs(box, *shadow, step);
    for (auto* side : {&shadow->inputs, &shadow->outputs}) {
        for (ButtonShadow& button : *side) RecordButton(button, step);
    }
}

void EditHistory::RecordInputs(COpBox& box, BoxShadow& shadow, Step& step) {
    const bool isSame =
        std::equal(box.inputs.begin(), box.inputs.end(), shadow.inputs.begin(), shadow.inputs.end(),
                   [](const auto& own, const ButtonShadow& known) { return own.get() == known.button; });
    if (isSame) return;
    InputsChange change{&box, {}, {}};
    std::unordered_map<const COpButton*, ButtonShadow> known;
    for (ButtonShadow& input : shadow.inputs) {
        change.order.push_back(input.button);
        const auto left = m_leavingButtons.find(input.button);
        if (left == m_leavingButtons.end()) {
            known.emplace(input.button, std::move(input));
        } else {
            change.absent.push_back({std::move(left->second), std::move(input)});
        }
    }
    shadow.inputs.clear();
    for (const auto& input : box.inputs) {
        const auto former = known.find(input.get());
        shadow.inputs.push_back(former == known.end() ? ShadowOf(*input) : std::move(former->second));
    }
    step.inputs.push_back(std::move(change));
}

void EditHistory::RecordButton(ButtonShadow& shadow, Step& step) {
    if (IsStateOf(shadow.state, *shadow.button)) return;
    step.buttons.push_back({shadow.button, std::exchange(shadow.state, StateOf(*shadow.button))});
}

// Which wires an act has changed nobody names, so all are compared.
void EditHistory::RecordWires(Step& step) {
    for (auto& [box, shadow] : m_shadows) {
        for (auto* side : {&shadow.inputs, &shadow.outputs}) {
            for (ButtonShadow& button : *side) {
                const COpButton& now = *button.button;
                if (now.connections == button.wires.connections && now.NamedBy() == button.wires.namedBy)
                    continue;
                step.wires.push_back({button.button, std::exchange(button.wires, now.Wires())});
            }
        }
    }
}

void EditHistory::RecordOptions(Step& step) {
    const OptionsState& now = m_document.m_renderOptions;
    for (const auto& [name, value] : m_options) {
        const auto found = now.find(name);
        if (found == now.end() || found->second != value) step.options.push_back({name, value});
    }
    for (const auto& [name, value] : now) {
        if (!m_options.contains(name)) step.options.push_back({name, std::nullopt});
    }
    if (!step.options.empty()) m_options = now;
}

void EditHistory::RecordSettings(Step& step) {
    SettingsState now = SettingsOf(m_document);
    if (!(now == m_settings)) step.settings = std::exchange(m_settings, std::move(now));
}

void EditHistory::RecordFrames(Step& step) {
    const DeskFrames& now = m_document.frames;
    for (const auto& [number, frame] : m_frames) {
        const auto found = now.find(number);
        if (found == now.end() || !(found->second == frame)) step.frames.push_back({number, frame});
    }
    for (const auto& [number, frame] : now) {
        if (!m_frames.contains(number)) step.frames.push_back({number, std::nullopt});
    }
    if (!step.frames.empty()) m_frames = now;
}

}  // namespace tavrin
