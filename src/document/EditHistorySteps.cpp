// SPDX-License-Identifier: Apache-2.0
// How steps are kept: branches that are given up, runs that become one step, limits.
#include <algorithm>
#include <utility>

#include "document/EditHistory.h"
#include "document/TvDoc.h"

namespace tavrin {

bool EditHistory::Step::HasNetwork() const {
    return !present.empty() || !absent.empty() || !inputs.empty() || !wires.empty();
}

bool EditHistory::Step::IsEmpty() const {
    return !HasNetwork() && boxes.empty() && buttons.empty() && options.empty() && frames.empty() &&
           !settings;
}

void EditHistory::Keep(Step step) {
    CutBranch();
    if (Joins(step)) {
        Join(step);
    } else {
        step.bytes = step.CountBytes();
        m_bytes += step.bytes;
        m_runGoesOn = step.joins;
        m_steps.push_back(std::move(step));
        ++m_place;
    }
    KeepLimits();
}

// What was undone is given up by a new edit.
void EditHistory::CutBranch() {
    while (m_steps.size() > m_place) {
        m_bytes -= m_steps.back().bytes;
        m_steps.pop_back();
    }
    if (m_saved && *m_saved > m_place) m_saved.reset();
}

// A run goes on where the same act changes nothing but what it has changed before.
bool EditHistory::Joins(const Step& step) const {
    if (!m_runGoesOn || !step.joins || m_place == 0 || m_saved == m_place) return false;
    const Step& last = m_steps.back();
    if (!last.joins || last.act != step.act || last.HasNetwork() || step.HasNetwork()) return false;
    const auto holds = [](const auto& all, const auto& some, auto name) {
        return std::all_of(some.begin(), some.end(), [&](const auto& one) {
            return std::any_of(all.begin(), all.end(),
                               [&](const auto& other) { return name(other) == name(one); });
        });
    };
    const auto object = [](const auto& change) { return change.object; };
    return holds(last.boxes, step.boxes, object) && holds(last.buttons, step.buttons, object) &&
           holds(last.options, step.options, [](const OptionChange& option) { return option.name; }) &&
           holds(last.frames, step.frames, [](const FrameChange& frame) { return frame.number; }) &&
           last.settings.has_value() >= step.settings.has_value();
}

// The former states of the run's first act stand. A run that ends where it began is none.
void EditHistory::Join(Step& step) {
    Step& last = m_steps.back();
    last.marks = last.marks || step.marks;
    DropWhatIsTheSame(last);
    m_bytes -= last.bytes;
    last.bytes = last.CountBytes();
    m_bytes += last.bytes;
    if (!last.IsEmpty()) return;
    m_bytes -= last.bytes;
    m_steps.pop_back();
    --m_place;
    m_runGoesOn = false;
}

void EditHistory::DropWhatIsTheSame(Step& step) {
    std::erase_if(step.boxes,
                  [this](const auto& box) { return FindShadow(*box.object)->state == box.state; });
    std::erase_if(step.buttons,
                  [this](const auto& button) { return FindShadow(*button.object)->state == button.state; });
    std::erase_if(step.options, [this](const OptionChange& option) {
        const auto now = m_options.find(option.name);
        return now == m_options.end() ? !option.value : option.value == now->second;
    });
    std::erase_if(step.frames, [this](const FrameChange& frame) {
        const auto now = m_frames.find(frame.number);
        return now == m_frames.end() ? !frame.frame : frame.frame == now->second;
    });
    if (step.settings == m_settings) step.settings.reset();
}

void EditHistory::KeepLimits() {
    size_t excess = 0;
    size_t bytes = m_bytes;
    while (m_steps.size() - excess > 1 &&
           (m_steps.size() - excess > m_limits.steps || bytes > m_limits.bytes)) {
        bytes -= m_steps[excess].bytes;
        ++excess;
    }
    if (excess == 0) return;
    m_steps.erase(m_steps.begin(), m_steps.begin() + static_cast<std::ptrdiff_t>(excess));
    m_bytes = bytes;
    m_place -= excess;
    if (m_saved) m_saved = *m_saved < excess ? std::nullopt : std::optional(*m_saved - excess);
}

size_t EditHistory::Step::CountBytes() const {
    constexpr size_t kBox = sizeof(COpBox) + 1000;  // with the texts of its definition
    constexpr size_t kButton = sizeof(COpButton) + sizeof(ButtonShadow) + 500;
    const auto ofState = [](const ButtonState& state) {
        size_t texts = state.argname.size() + state.comments.size();
        for (const ValueState& value : state.values) texts += sizeof(value) + value.text.size();
        return texts;
    };
    size_t total = sizeof(*this) + act.size() + present.size() * sizeof(COpBox*);
    for (const ParkedBox& parked : absent)
        total += kBox + (parked.shadow.inputs.size() + parked.shadow.outputs.size()) * kButton;
    for (const InputsChange& change : inputs)
        total += sizeof(change) + change.order.size() * sizeof(COpButton*) + change.absent.size() * kButton;
    total += boxes.size() * sizeof(boxes[0]);
    for (const auto& button : buttons) total += sizeof(button) + ofState(button.state);
    for (const auto& wire : wires)
        total +=
            sizeof(wire) + (wire.state.connections.Size() + wire.state.namedBy.Size()) * sizeof(COpButton*);
    for (const OptionChange& option : options)
        total += sizeof(option) + option.name.size() + option.value.value_or("").size();
    for (const FrameChange& frame : frames)
        total += sizeof(frame) + (frame.frame ? frame.frame->text.size() : 0);
    if (settings)
        total += sizeof(*settings) + settings->customshaderhelp.size() +
                 settings->exportOptions.postSaveScript.size();
    return total;
}

}  // namespace tavrin
