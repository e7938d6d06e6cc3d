// SPDX-License-Identifier: Apache-2.0
#include "document/BoxBuilder.h"

#include <algorithm>

#include "document/PlaceholderBox.h"
#include "library/Aliases.h"
#include "library/OpBox.h"
#include "library/ValueVisitor.h"
#include "site/TypeTables.h"
#include "text/Report.h"

namespace tavrin {

namespace {

template <typename Value>
void Assign(Value& to, const auto& from) {
    if (from) to = *from;
}

// A type that is neither "generic" nor "generic:NAME" is its line's keyword.
std::string GenericTypeOf(COpButton& button, const ValueRecord& record) {
    if (!record.name.empty()) return std::string(kGenericPrefix) + std::string(record.name);
    const bool mayBeType =
        !record.type.starts_with(kGenericPrefix) || record.type.size() == kGenericPrefix.size();
    const bool isType = mayBeType && button.FindValue(record.type) != nullptr;
    return std::string(isType ? record.type : type_words::kGeneric);
}

// A value of a type that the button does not have is dropped; of numbers that the text breaks off in, the
// first count.
void SetValue(COpButton& button, const ValueRecord& record) {
    COpValue* value = button.FindValue(IsGenericType(record.type) ? GenericTypeOf(button, record)
                                                                  : std::string(record.type));
    if (value == nullptr) return;
    const auto set = [&record](std::initializer_list<float*> numbers) {
        size_t place = 0;
        for (float* number : numbers) {
            if (place < record.numberCount) *number = record.numbers[place];
            ++place;
        }
    };
    VisitValue(*value, ValueCalls{
                           [&](COpValueFloat& own) {
                               set({&own.value, &own.min, &own.max});
                               Assign(own.integer, record.integer);
                           },
                           [&](COpValueXyz& own) {
                               set({&own.x, &own.y, &own.z, &own.min, &own.max});
                               Assign(own.integer, record.integer);
                           },
                           [&](COpValueRgb& own) {
                               set({&own.r, &own.g, &own.b});
                           },
                           [&](COpValueRgba& own) {
                               set({&own.r, &own.g, &own.b, &own.a});
                           },
                           [&](COpValueString& own) { own.value = record.text; },
                           [&](COpValueGeneric& own) { own.value = record.text; },
                       });
}

}  // namespace

void TakeButtonRecord(COpButton& button, const ButtonRecord& record) {
    Assign(button.pin, record.pin);
    Assign(button.stow, record.stow);
    Assign(button.lock, record.lock);
    Assign(button.arg, record.arg);
    Assign(button.argname, record.argname);
    Assign(button.comments, record.comments);
    for (const ValueRecord& value : record.values) SetValue(button, value);
}

void BoxBuilder::Alert(size_t place, const std::string& message) {
    m_report.AlertAt(m_form.Path(), m_form.LineAt(place), message);
}

bool BoxBuilder::Build(const BoxRecord& record) {
    // A definition may come with copies of a vinput; the file decides how many there are.
    std::erase_if(m_box.inputs, [](const auto& input) { return input->instance != 1; });
    auto setting = record.settings.begin();
    const auto takeSettingsUpTo = [&](size_t place) {
        for (; setting != record.settings.end() && setting->begin < place; ++setting) Take(*setting);
    };
    for (const ButtonRecord& button : record.buttons) {
        takeSettingsUpTo(button.begin);
        if (!Build(button)) return false;
    }
    takeSettingsUpTo(m_form.Text().size());
    if (!record.IsWhole()) return true;
    std::erase_if(m_box.inputs, [this](const auto& input) {
        return input->kind == ButtonKind::kVinput && input->stray == nullptr &&
               !m_namesSeen.contains(input->name);
    });
    m_box.RenumberInputs();
    return true;
}

void BoxBuilder::Take(const BoxSettingRecord& setting) {
    if (setting.keyword == "wid") {
        m_box.wid = setting.integer;
    } else if (setting.keyword == "xypos") {
        std::copy_n(setting.numbers.begin(), setting.numberCount, m_box.xypos);
    } else {
        m_box.maxinstances = setting.integer;
    }
}

bool BoxBuilder::Build(const ButtonRecord& record) {
    const bool isInput = record.kind == "input" || record.kind == "vinput";
    COpButton* button = isInput ? FindInput(record) : NextOutput(record);
    // Of a record that is not whole, the stop that comes next is told.
    if (button == nullptr) return m_tellUnknown && !record.IsWhole();
    if (m_tellUnknown) (isInput ? m_inputs : m_outputs).push_back(button);
    if (button->stray != nullptr) return true;
    TakeButtonRecord(*button, record);
    if (!record.IsWhole()) return true;
    ChooseCast(*button, record);
    m_namesSeen.insert(button->name);
    return true;
}

COpButton* BoxBuilder::FindInput(const ButtonRecord& record) {
    auto& inputs = m_box.inputs;
    const size_t place = PlaceOfInput(record.name);
    if (place == inputs.size()) {
        const std::string message = "undefined input " + std::string(record.name) + " specified";
        if (m_tellUnknown) return AddStray(record, m_strayPlace, message);
        Alert(record.namesEnd, message);
        return nullptr;
    }
    m_inputCursor = place;
    if (record.kind == "input" && inputs[m_inputCursor].get() == m_inputBuilt) PassToTwin();
    COpButton& found = *inputs[m_inputCursor];
    m_inputBuilt = &found;
    if (m_tellUnknown || !found.aliases.empty()) m_built.insert(&found);
    m_strayPlace = m_inputCursor + 1;
    if (found.KindText() != record.kind) {
        Alert(record.namesEnd,
              "input " + std::string(record.name) + " not of type " + std::string(record.kind));
    }
    const bool isFirst =
        record.fullName.starts_with(record.name) &&
        (record.fullName.size() == record.name.size() || record.fullName.substr(record.name.size()) == "1");
    if (isFirst) return &found;
    // A further copy of a vinput. It is numbered at once, since messages name it.
    auto copy = std::make_unique<COpButton>(found);
    copy->instance = found.instance + 1;
    ++m_inputCursor;
    ++m_strayPlace;
    return inputs.insert(inputs.begin() + static_cast<std::ptrdiff_t>(m_inputCursor), std::move(copy))->get();
}

// The end of the inputs if there is none. What a button is called wins over what another one was called.
size_t BoxBuilder::PlaceOfInput(std::string_view name) {
    auto& inputs = m_box.inputs;
    const auto begin = inputs.begin();
    const auto from = begin + static_cast<std::ptrdiff_t>(m_inputCursor);
    const auto isNamed = [&](const auto& input) { return input->stray == nullptr && input->name == name; };
    // What a block with the name of now has said of the button, one with a former name does not undo.
    const auto wasNamed = [&](const auto& input) {
        const bool isTaken = input->kind == ButtonKind::kInput && m_built.contains(input.get());
        return input->stray == nullptr && !isTaken && WasCalled(*input, name);
    };
    const auto isLeft = [&](const auto& input) {
        return (isNamed(input) || wasNamed(input)) && !m_built.contains(input.get());
    };
    auto found = std::find_if(from, inputs.end(), isNamed);
    if (found == inputs.end() && IsOrWasAnInput(name)) {
        if (std::none_of(begin, from, isNamed)) found = std::find_if(from, inputs.end(), wasNamed);
        if (found == inputs.end() && m_tellUnknown) {
            found = std::find_if(begin, from, isLeft);
            if (found == from) found = inputs.end();
        }
    }
    return static_cast<size_t>(found - begin);
}

// Asked of what the search forward has not found: of thousands of unknown names, each costs little.
bool BoxBuilder::IsOrWasAnInput(std::string_view name) {
    if (!m_names) {
        m_names.emplace();
        for (const auto& input : m_box.inputs) {
            if (input->stray != nullptr) continue;
            m_names->insert(input->name);
            m_names->insert(input->aliases.begin(), input->aliases.end());
        }
    }
    return m_names->contains(name);
}

// The buttons that follow in the file stand behind it.
COpButton* BoxBuilder::AddStray(const ButtonRecord& record, size_t place, const std::string& message) {
    if (!record.IsWhole()) return nullptr;
    m_tellUnknown(record.namesEnd, message);
    auto stray = MakeStrayButton(m_box, record, m_form);
    auto& side = stray->IsOutput() ? m_box.outputs : m_box.inputs;
    if (!stray->IsOutput()) m_strayPlace = place + 1;
    return side.insert(side.begin() + static_cast<std::ptrdiff_t>(place), std::move(stray))->get();
}

// A definition may have several inputs of one name, and the file then has a block for each.
void BoxBuilder::PassToTwin() {
    for (size_t next = m_inputCursor + 1; next < m_box.inputs.size(); ++next) {
        const COpButton& input = *m_box.inputs[next];
        if (input.kind != ButtonKind::kInput || input.name != m_inputBuilt->name) continue;
        m_inputCursor = next;
        return;
    }
}

COpButton* BoxBuilder::NextOutput(const ButtonRecord& record) {
    const std::string name(record.name);
    const bool isThere = m_outputCursor < m_box.outputs.size();
    COpButton* button = isThere ? m_box.outputs[m_outputCursor].get() : nullptr;
    if (isThere && button->KindText() == record.kind) {
        ++m_outputCursor;
        return button;
    }
    const std::string message = isThere ? "button " + name + " not of type " + std::string(record.kind)
                                        : "undefined output " + name + " specified";
    if (m_tellUnknown) return AddStray(record, m_outputCursor++, message);
    Alert(record.namesEnd, message);
    return nullptr;
}

// The cast is assigned plainly: castlock pairs do not spread it while building.
void BoxBuilder::ChooseCast(COpButton& button, const ButtonRecord& record) {
    const int cast = button.FindCast(record.cast);
    if (cast >= 0) {
        button.currentcast = static_cast<size_t>(cast);
        return;
    }
    if (record.cast.empty() && button.values.empty()) return;  // an output without any type
    std::string message = "illegal cast " + std::string(record.cast) + " for button " +
                          button.owner->BoxTitleWid() + ":" + button.DisplayName() +
                          ".\n\nAvailable casts:\n";
    for (const auto& value : button.values) message += "\n        " + value->type;
    Alert(record.end, message);
}

}  // namespace tavrin
