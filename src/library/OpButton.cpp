// SPDX-License-Identifier: Apache-2.0
#include "library/OpButton.h"

#include <algorithm>

#include "library/OpBox.h"
#include "site/TypeTables.h"

namespace tavrin {

COpButton::COpButton(const COpButton& other)
    : LiveObject(),
      owner(other.owner),
      kind(other.kind),
      arg(other.arg),
      currentcast(other.currentcast),
      name(other.name),
      tieback(other.tieback),
      fixedvalue(other.fixedvalue),
      fixedtext(other.fixedtext),
      vargseparator(other.vargseparator),
      instance(other.instance),
      vinstances(other.vinstances),
      help(other.help),
      aliases(other.aliases),
      disableargflag(other.disableargflag),
      disableconnectflag(other.disableconnectflag),
      argname(other.argname),
      comments(other.comments),
      pin(other.pin),
      lock(other.lock),
      stow(other.stow),
      stray(other.stray) {
    values.reserve(other.values.size());
    for (const auto& value : other.values) values.push_back(CloneValue(*value));
}

bool COpButton::IsUnknown() const { return stray != nullptr || owner->IsPlaceholder(); }

std::string COpButton::DisplayName() const {
    return kind == ButtonKind::kVinput ? name + std::to_string(instance) : name;
}

const std::string& COpButton::HelpText() const { return owner->IsPlaceholder() ? owner->boxhelp : help; }

std::string_view COpButton::KindText() const {
    switch (kind) {
        case ButtonKind::kInput:
            return "input";
        case ButtonKind::kVinput:
            return "vinput";
        case ButtonKind::kOutput:
            return "output";
    }
    return "unknown";
}

COpValue* COpButton::FindValue(std::string_view type) {
    for (const auto& value : values) {
        if (value->type == type) return value.get();
    }
    return nullptr;
}

int COpButton::FindCast(std::string_view type) const {
    const bool anyGeneric = type == type_words::kGeneric;
    for (size_t i = 0; i < values.size(); ++i) {
        const std::string& own = values[i]->type;
        if (own == type || (anyGeneric && IsGenericType(own))) return static_cast<int>(i);
    }
    return -1;
}

const std::string& COpButton::CurrentType() const {
    static const std::string kNoType;
    return currentcast < values.size() ? values[currentcast]->type : kNoType;
}

std::string COpButton::ValueText() const {
    return currentcast < values.size() ? tavrin::ValueText(*values[currentcast]) : std::string();
}

std::string COpButton::DisplayCastName(size_t index, const TypeTables& types) const {
    return types.TranslateType(values[index]->type);
}

void COpButton::SetCast(size_t index) {
    if (index >= values.size()) return;
    currentcast = index;
    const std::string type = values[index]->type;
    const auto spread = [&](COpButton& button) {
        for (const auto& [first, second] : owner->castlock) {
            const bool tied =
                (first == name && second == button.name) || (second == name && first == button.name);
            if (!tied) continue;
            const int cast = button.FindCast(type);
            if (cast >= 0) button.currentcast = static_cast<size_t>(cast);
        }
    };
    for (const auto& input : owner->inputs) spread(*input);
    for (const auto& output : owner->outputs) spread(*output);
}

}  // namespace tavrin
