// SPDX-License-Identifier: Apache-2.0
#include "desk/BoxCarry.h"

#include <algorithm>
#include <string_view>

#include "document/NetworkState.h"
#include "library/OpBox.h"
#include "library/ValueVisitor.h"
#include "text/StoredText.h"

namespace tavrin {

namespace {

using Buttons = std::vector<std::unique_ptr<COpButton>>;
using Losses = std::vector<std::string>;

// What former buttons are called now: as they were, unless only a former name tells which one it is.
class NamesNow {
  public:
    explicit NamesNow(const Buttons& fresh) {
        for (const auto& button : fresh) m_now[button->name] = button->name;
        for (const auto& button : fresh) {
            for (const std::string& alias : button->aliases) m_now.try_emplace(alias, button->name);
        }
    }
    const std::string& Of(const std::string& former) const {
        const auto now = m_now.find(former);
        return now == m_now.end() ? former : now->second;
    }

  private:
    std::unordered_map<std::string, std::string> m_now;
};

std::unordered_map<std::string, size_t> CountNames(const Buttons& buttons, const NamesNow& names) {
    std::unordered_map<std::string, size_t> counts;
    for (const auto& button : buttons) ++counts[names.Of(button->name)];
    return counts;
}

// A vinput that the old definition did not have comes as the new one has it.
void CarryInstances(const COpBox& old, COpBox& fresh) {
    const NamesNow names(fresh.inputs);
    auto wanted = CountNames(old.inputs, names);
    for (const std::string& name : old.vinputNames) wanted.try_emplace(names.Of(name), 0);
    Buttons inputs;
    auto left = CountNames(fresh.inputs, names);
    std::unordered_map<std::string, size_t> made;
    for (auto& input : fresh.inputs) {
        const std::string name = input->name;
        const auto want = wanted.find(name);
        if (input->kind != ButtonKind::kVinput || want == wanted.end()) {
            inputs.push_back(std::move(input));
            continue;
        }
        const bool isLast = --left[name] == 0;
        if (made[name] == want->second) continue;
        ++made[name];
        const COpButton& kept = *inputs.emplace_back(std::move(input));
        for (; isLast && made[name] < want->second; ++made[name])
            inputs.push_back(std::make_unique<COpButton>(kept));
    }
    fresh.inputs = std::move(inputs);
    fresh.RenumberInputs();
}

std::string Shown(const COpValue& value) {
    const std::string text = OneLine(ValueText(value));
    return text.empty() ? "" : " " + text;
}

// What is picked from a list that does not offer it any more is kept, but the templates need not know it.
template <typename Value>
bool IsOffered(const Value& value) {
    return value.noedit == 0 || value.options.empty() ||
           std::find(value.options.begin(), value.options.end(), value.value) != value.options.end();
}

bool IsOfferedStill(const COpValue& value) {
    return VisitValue(value, ValueCalls{
                                 [](const COpValueString& own) { return IsOffered(own); },
                                 [](const COpValueGeneric& own) { return IsOffered(own); },
                                 [](const auto&) { return true; },
                             });
}

// Of one button to the one that is the same.
class ButtonCarry {
  public:
    ButtonCarry(const COpButton& old, COpButton& fresh, Losses& losses)
        : m_old(old), m_fresh(fresh), m_losses(losses), m_was(StateOf(old)), m_state(StateOf(fresh)) {}

    void Carry() {
        m_state.argname = m_was.argname;
        m_state.comments = m_was.comments;
        m_state.pin = m_was.pin;
        m_state.stow = m_was.stow;
        m_state.lock = m_was.lock;
        CarryArgument();
        for (size_t i = 0; i < m_old.values.size(); ++i) CarryValue(i);
        CarryCast();
        PutState(m_state, m_fresh);
        if (m_fresh.IsOutput()) return;
        for (const auto& value : m_fresh.values) {
            if (!IsOfferedStill(*value))
                Tell("its value" + Shown(*value) + " is kept, but is none that the definition offers");
        }
    }

  private:
    void Tell(const std::string& what) {
        m_losses.push_back(m_old.owner->BoxTitleWid() + " " + m_old.DisplayName() + ": " + what);
    }

    // Where the user is given no say, the definition has it.
    void CarryArgument() {
        if (m_fresh.disableargflag == 0) m_state.arg = m_was.arg;
        if (m_was.arg != 0 && m_state.arg == 0)
            Tell("it is no argument any more, which the definition rules out");
    }

    void CarryValue(size_t place) {
        const COpValue& value = *m_old.values[place];
        const auto same = std::find_if(m_fresh.values.begin(), m_fresh.values.end(),
                                       [&](const auto& own) { return own->type == value.type; });
        if (same != m_fresh.values.end()) {
            m_state.values[static_cast<size_t>(same - m_fresh.values.begin())] = m_was.values[place];
        } else if (!m_old.IsOutput()) {
            Tell("its value" + Shown(value) + " of type " + value.type +
                 " is lost; the definition has that type no more");
        }
    }

    // As a document's reader does it: castlock pairs do not spread it.
    void CarryCast() {
        const std::string& type = m_old.CurrentType();
        if (type.empty()) return;
        const int cast = m_fresh.FindCast(type);
        if (cast >= 0) {
            m_state.currentcast = static_cast<size_t>(cast);
        } else {
            const std::string& now = m_fresh.CurrentType();
            Tell("its cast " + type + " is gone; it is " + (now.empty() ? "of no type" : now) + " now");
        }
    }

    const COpButton& m_old;
    COpButton& m_fresh;
    Losses& m_losses;
    const ButtonState m_was;
    ButtonState m_state;
};

void TellGone(const COpButton& button, Losses& losses) {
    if (button.IsOutput()) return;  // what was wired to it is told with the wires
    std::string what = button.owner->BoxTitleWid() + " " + button.DisplayName() + ": the button is gone";
    if (button.currentcast < button.values.size())
        what += ", and with it its value" + Shown(*button.values[button.currentcast]);
    if (button.arg != 0)
        what += button.argname.empty() ? " and the argument" : " and the argument " + button.argname;
    losses.push_back(what);
}

// What neither definition knows, and only the document has, stays with the box.
COpButton* KeepStray(const COpButton& stray, COpBox& box) {
    auto& side = stray.IsOutput() ? box.outputs : box.inputs;
    COpButton& kept = *side.emplace_back(std::make_unique<COpButton>(stray));
    kept.owner = &box;
    return &kept;
}

void CarryButtons(const Buttons& old, COpBox& box, Buttons& fresh, ButtonSuccessors& successors,
                  Losses& losses) {
    std::unordered_map<std::string_view, std::vector<COpButton*>> byName;
    for (const auto& button : fresh) byName[button->name].push_back(button.get());
    const NamesNow names(fresh);
    std::unordered_map<std::string_view, size_t> taken;
    for (const auto& button : old) {
        const std::string& name = names.Of(button->name);
        const auto same = byName.find(name);
        const size_t place = taken[name]++;
        if (same == byName.end() || place >= same->second.size()) {
            if (button->stray) {
                successors[button.get()] = KeepStray(*button, box);
            } else {
                TellGone(*button, losses);
            }
            continue;
        }
        successors[button.get()] = same->second[place];
        ButtonCarry(*button, *same->second[place], losses).Carry();
    }
}

}  // namespace

void CarryOver(const COpBox& old, COpBox& fresh, ButtonSuccessors& successors, Losses& losses) {
    fresh.wid = old.wid;
    std::copy(std::begin(old.xypos), std::end(old.xypos), fresh.xypos);
    fresh.selected = old.selected;
    fresh.muted = old.muted;
    CarryInstances(old, fresh);
    CarryButtons(old.inputs, fresh, fresh.inputs, successors, losses);
    CarryButtons(old.outputs, fresh, fresh.outputs, successors, losses);
}

}  // namespace tavrin
