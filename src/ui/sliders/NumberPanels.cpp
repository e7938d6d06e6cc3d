// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/NumberPanels.h"

#include <QCheckBox>
#include <QLabel>
#include <cmath>

#include "sliders/NumberText.h"
#include "ui/base/Text.h"
#include "ui/sliders/NumberField.h"
#include "ui/sliders/ValueSlider.h"

namespace tavrin {

namespace {

constexpr const char* kNoNumber = "Enter a number, such as 0.5 or -2";

}  // namespace

void NumberPanel::MakeControls(const std::vector<Places>& places, const UnitRect& integer) {
    m_min = MakeField(kMinLabel, kMinField, "Min",
                      [this](double steps) { StepEnd(*m_min, &Numbers::min, steps); });
    m_max = MakeField(kMaxLabel, kMaxField, "Max",
                      [this](double steps) { StepEnd(*m_max, &Numbers::max, steps); });
    for (size_t part = 0; part < places.size(); ++part) {
        const Places& place = places[part];
        NumberField* field = MakeField(place.label, place.field, place.name,
                                       [this, part](double steps) { StepValue(part, steps); });
        m_parts.push_back({field, nullptr});
        if (m_integer == nullptr) {
            m_integer = new QCheckBox("Int", this);
            m_integer->setGeometry(Units().Pixels(integer));
            connect(m_integer, &QCheckBox::clicked, this, [this] { Read(); });
        }
        m_parts.back().slider = MakeSlider(place.slider, place.name, part);
    }
}

NumberField* NumberPanel::MakeField(const UnitRect& label, const UnitRect& field, const char* name,
                                    std::function<void(double)> stepped) {
    auto* text = new QLabel(name, this);
    text->setGeometry(Units().Pixels(label));
    const size_t place = Fields().size();
    auto* made = new NumberField(
        this, name, {[this, place] { Typed(*Fields()[place]); }, [this] { Left(); }, std::move(stepped)});
    made->setGeometry(Units().Pixels(field));
    text->setBuddy(made);
    return made;
}

ValueSlider* NumberPanel::MakeSlider(const UnitRect& place, const char* name, size_t part) {
    const auto stepsFrom = [this, part] {
        const Numbers numbers = Find();
        return numbers.values.empty() ? 0 : SteppingPosition(*numbers.values[part], RangeOf(numbers));
    };
    auto* slider = new ValueSlider(this, name,
                                   {[this, part](int position, bool) { Slide(part, position); },
                                    [this](bool begins) { HoldEdit(begins); }, stepsFrom});
    slider->setGeometry(Units().Pixels(place));
    return slider;
}

// In the order in which they are made.
std::vector<NumberField*> NumberPanel::Fields() const {
    std::vector<NumberField*> fields;
    for (NumberField* field : {m_min, m_max}) {
        if (field != nullptr) fields.push_back(field);
    }
    for (const Part& part : m_parts) fields.push_back(part.field);
    return fields;
}

bool NumberPanel::IsIntegerChecked() const { return m_integer->isChecked(); }

ValueRange NumberPanel::RangeOf(const Numbers& numbers) const {
    return {*numbers.min, *numbers.max, CutsToWhole(numbers)};
}

void NumberPanel::Refresh() {
    const Numbers numbers = Find();
    if (numbers.values.empty()) return;
    m_min->ShowNumber(*numbers.min);
    m_max->ShowNumber(*numbers.max);
    m_integer->setChecked(*numbers.integer != 0);  // `clicked` is not told of that
    for (size_t part = 0; part < m_parts.size(); ++part)
        m_parts[part].field->ShowNumber(*numbers.values[part]);
    ShowSliders();
}

void NumberPanel::ShowSliders() {
    const Numbers numbers = Find();
    if (numbers.values.empty()) return;
    for (size_t part = 0; part < m_parts.size(); ++part)
        m_parts[part].slider->ShowPosition(SliderPosition(*numbers.values[part], RangeOf(numbers)));
}

// All fields are read, whichever was typed in: what they do not show of a number is cut off.
bool NumberPanel::Read() {
    const Numbers numbers = Find();
    if (numbers.values.empty()) return false;
    std::vector<float> read;
    for (NumberField* field : Fields()) {
        const auto number = field->Number();
        field->SetRefused(number ? QString() : kNoNumber);
        if (number) read.push_back(*number);
    }
    if (read.size() != Fields().size()) return false;
    Edit([&] {
        *numbers.min = read[0];
        *numbers.max = read[1];
        for (size_t part = 0; part < m_parts.size(); ++part) *numbers.values[part] = read[part + 2];
        *numbers.integer = m_integer->isChecked() ? 1 : 0;
    });
    ShowSliders();
    return true;
}

void NumberPanel::Typed(const NumberField& field) {
    if (IsBeginOfNumber(field.Text())) return;
    if (!Read()) ShowRefusal(kNoNumber);
}

void NumberPanel::Left() {
    const Numbers numbers = Find();
    if (numbers.values.empty()) return;
    for (float* value : numbers.values) {
        const float clamped = ClampedToRange(*value, RangeOf(numbers));
        if (clamped != *value) Edit([&] { *value = clamped; });
    }
    Refresh();
}

void NumberPanel::Slide(size_t part, int position) {
    const Numbers numbers = Find();
    if (numbers.values.empty()) return;
    Edit([&] { *numbers.values[part] = SliderValue(position, RangeOf(numbers)); });
    Refresh();
}

void NumberPanel::StepValue(size_t part, double steps) {
    const Numbers numbers = Find();
    if (numbers.values.empty()) return;
    const float stepped = SteppedValue(*numbers.values[part], steps, RangeOf(numbers));
    m_parts[part].field->Type(Shown(NumberText(stepped)));
}

// An end of the range has none itself.
void NumberPanel::StepEnd(NumberField& field, float* Numbers::*end, double steps) {
    const Numbers numbers = Find();
    if (numbers.values.empty()) return;
    const float length = std::abs(*numbers.max - *numbers.min);
    const float step = length == 0 || !std::isfinite(length) ? 1 : length / kSliderSteps;
    const float stepped = *(numbers.*end) + static_cast<float>(steps) * step;
    field.Type(Shown(NumberText(stepped)));
}

CFloatPanel::CFloatPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs)
    : NumberPanel(frame, button, needs) {
    MakeControls({{"Value", {1, 14, 18, 12}, {20, 14, 26, 12}, {1, 28, 88, 11}}}, {63, 14, 26, 12});
    Refresh();
}

NumberPanel::Numbers CFloatPanel::Find() const {
    auto* value = FindValue<COpValueFloat>(type_words::kFloat);
    if (value == nullptr) return {};
    return {&value->min, &value->max, &value->integer, {&value->value}};
}

CXyzPanel::CXyzPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs)
    : NumberPanel(frame, button, needs) {
    MakeControls({{"X", {1, 14, 18, 12}, {20, 14, 26, 12}, {1, 27, 88, 9}},
                  {"Y", {1, 37, 18, 12}, {20, 37, 26, 12}, {1, 50, 88, 9}},
                  {"Z", {1, 60, 18, 12}, {20, 60, 26, 12}, {1, 73, 88, 9}}},
                 {63, 14, 26, 12});
    Refresh();
}

NumberPanel::Numbers CXyzPanel::Find() const {
    auto* value = FindValue<COpValueXyz>(type_words::kXyz);
    if (value == nullptr) return {};
    return {&value->min, &value->max, &value->integer, {&value->x, &value->y, &value->z}};
}

}  // namespace tavrin
