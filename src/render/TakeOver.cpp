// SPDX-License-Identifier: Apache-2.0
#include "render/TakeOver.h"

#include <algorithm>

#include "document/TvDoc.h"
#include "render/DifferenceTexts.h"
#include "sliders/ArgumentEdits.h"

namespace tavrin {

namespace {

using Property = Difference::Property;

}  // namespace

bool CanBeGiven(const Difference& difference, const Difference::Place& from) {
    switch (difference.kind) {
        case Difference::Kind::kValue:
        case Difference::Kind::kArgument:
            return from.button != NetworkPicture::kNone;
        case Difference::Kind::kOption:
            return true;
        default:
            return false;
    }
}

TakeOver::TakeOver(CTvDoc& document, const NetworkPicture& picture, SetOption setOption)
    : m_document(document), m_picture(picture), m_setOption(std::move(setOption)) {
    for (const auto& box : document.m_boxes) m_boxes.try_emplace(box->BoxTitleWid(), box.get());
}

bool TakeOver::Give(const Difference& difference, const Difference::Place& from, const std::string& title) {
    if (!CanBeGiven(difference, from)) return false;
    if (difference.kind == Difference::Kind::kOption) return GiveOption(difference.button);
    const auto box = m_boxes.find(title);
    if (box == m_boxes.end()) return false;
    COpButton* button = box->second->FindButton(difference.button);
    return button != nullptr && !button->IsUnknown() && GiveToButton(difference, from, *button);
}

bool TakeOver::GiveOption(const std::string& name) {
    const auto option = m_picture.options.find(name);
    if (option == m_picture.options.end()) return false;
    m_setOption(name, option->second);
    return true;
}

bool TakeOver::GiveToButton(const Difference& difference, const Difference::Place& from, COpButton& button) {
    const NetworkPicture::Button& was = m_picture.buttons[from.button];
    switch (difference.property) {
        case Property::kArg:
            if (button.disableargflag != 0) return false;
            SetArgument(m_document, button, was.arg != 0);
            return true;
        case Property::kArgname:
            SetArgumentName(m_document, button, was.argname);
            return true;
        case Property::kComments:
            SetComment(m_document, button, was.comments);
            return true;
        case Property::kCast: {
            const std::vector<std::string>& types = m_picture.ShapeOf(was).types;
            const int cast = was.currentCast < types.size() ? button.FindCast(types[was.currentCast]) : -1;
            if (cast < 0) return false;
            m_document.edits.BoxTouched(*button.owner);  // other buttons may follow
            button.SetCast(static_cast<size_t>(cast));
            return true;
        }
        default:
            return GiveValue(difference.property, from, button);
    }
}

bool TakeOver::GiveValue(Property property, const Difference::Place& from, COpButton& button) {
    if (from.value == NetworkPicture::kNone) return false;
    const NetworkPicture::Button& was = m_picture.buttons[from.button];
    COpValue* value = button.FindValue(m_picture.ShapeOf(was).types[from.value - was.firstValue]);
    if (value == nullptr) return false;
    const ValueState& state = m_picture.values[from.value];
    m_document.edits.ButtonTuned(button);
    const ValueState now = StateOf(*value);
    PutState(property == Property::kRange ? WithRangeOf(value->type, now, state)
                                          : WithRangeOf(value->type, state, now),
             *value);
    return true;
}

}  // namespace tavrin
