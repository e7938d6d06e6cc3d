// SPDX-License-Identifier: Apache-2.0
#include "library/OpBox.h"

#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

template <typename Buttons>
auto PlaceOf(Buttons& buttons, const COpButton& button) {
    return std::find_if(buttons.begin(), buttons.end(),
                        [&](const auto& own) { return own.get() == &button; });
}

}  // namespace

COpBox::COpBox(const COpBox& other)
    : LiveObject(),
      filename(other.filename),
      iconimg(other.iconimg),
      xypos{other.xypos[0], other.xypos[1]},
      size{other.size[0], other.size[1]},
      color{other.color[0], other.color[1], other.color[2]},
      icontext(other.icontext),
      boxhelp(other.boxhelp),
      maxinstances(other.maxinstances),
      muted(other.muted),
      lacksTemplates(other.lacksTemplates || other.codegen.HasLines()),
      vinputNames(other.vinputNames),
      source(other.source),
      placeholder(other.placeholder) {
    const auto clone = [this](const auto& from, auto& to) {
        for (const auto& button : from) {
            to.push_back(std::make_unique<COpButton>(*button));
            to.back()->owner = this;
        }
    };
    clone(other.inputs, inputs);
    clone(other.outputs, outputs);
}

void COpBox::TakeTemplates(const COpBox& original) {
    castlock = original.castlock;
    codegen = original.codegen;
    lacksTemplates = original.lacksTemplates;
}

std::string COpBox::BoxTitleWid() const {
    std::string text;
    const std::string number = std::to_string(wid);
    text.reserve(filename.size() + 1 + number.size());
    return text.append(filename).append("_").append(number);
}

const COpButton* COpBox::FindButton(std::string_view displayName) const {
    for (const auto* side : {&inputs, &outputs}) {
        for (const auto& button : *side) {
            if (button->stray == nullptr && button->DisplayName() == displayName) return button.get();
        }
    }
    return nullptr;
}

COpButton* COpBox::FindButton(std::string_view displayName) {
    return const_cast<COpButton*>(std::as_const(*this).FindButton(displayName));
}

COpButton* COpBox::CopyButton(COpButton& button, bool above) {
    auto place = PlaceOf(inputs, button);
    if (place == inputs.end()) return nullptr;
    if (!above) ++place;
    COpButton* clone = inputs.insert(place, std::make_unique<COpButton>(button))->get();
    RenumberInputs();
    return clone;
}

std::unique_ptr<COpButton> COpBox::TakeButton(COpButton& button) {
    const auto place = PlaceOf(inputs, button);
    if (place == inputs.end()) return nullptr;
    auto taken = std::move(*place);
    inputs.erase(place);
    RenumberInputs();
    return taken;
}

void COpBox::Park() {
    for (const auto* side : {&inputs, &outputs}) {
        for (const auto& button : *side) button->Park();
    }
    Retire();
}

void COpBox::Unpark() {
    for (const auto* side : {&inputs, &outputs}) {
        for (const auto& button : *side) button->Unpark();
    }
    Revive();
}

void COpBox::RenumberInputs() {
    const COpButton* previous = nullptr;
    for (const auto& button : inputs) {
        const bool follows = previous != nullptr && previous->name == button->name;
        button->instance = follows ? previous->instance + 1 : 1;
        previous = button.get();
    }
}

size_t COpBox::IndexOfButton(const COpButton& button) const {
    const auto& side = button.IsOutput() ? outputs : inputs;
    return static_cast<size_t>(PlaceOf(side, button) - side.begin());
}

int COpBox::CountInputsNamed(std::string_view name) const {
    return static_cast<int>(std::count_if(inputs.begin(), inputs.end(), [&](const auto& button) {
        return button->name == name && button->stray == nullptr;
    }));
}

void COpBox::ClearButtons() {
    inputs.clear();
    outputs.clear();
}

}  // namespace tavrin
