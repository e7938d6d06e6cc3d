// SPDX-License-Identifier: Apache-2.0
#include "document/PlaceholderBox.h"

#include <algorithm>

#include "document/BoxBuilder.h"
#include "library/OpBox.h"
#include "library/Placeholder.h"
#include "site/TypeTables.h"
#include "text/Numbers.h"

namespace tavrin {

namespace {

constexpr size_t kMostMadeUp = 256;        // buttons of a side that only wires speak of
constexpr float kPlaceholderShade = 0.8F;  // of a box whose own colour nobody knows

ButtonKind KindOf(std::string_view word) {
    if (word == "input") return ButtonKind::kInput;
    return word == "vinput" ? ButtonKind::kVinput : ButtonKind::kOutput;
}

// As a document words it.
std::string TypeOf(const ValueRecord& value) {
    if (!value.name.empty()) return std::string(kGenericPrefix) + std::string(value.name);
    const bool isNamed = value.type.starts_with(kGenericPrefix) && value.type.size() > kGenericPrefix.size();
    return std::string(isNamed ? type_words::kGeneric : value.type);
}

// What stands behind the name of a further copy of a vinput.
int InstanceOf(const ButtonRecord& record) {
    if (!record.fullName.starts_with(record.name)) return 1;
    const std::string_view number = record.fullName.substr(record.name.size());
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const bool isNumber =
        !number.empty() && number.size() < 7 && std::all_of(number.begin(), number.end(), isDigit);
    return isNumber ? ParseInt(number) : 1;
}

// The status box shows few lines: the reason comes first.
std::string HelpOf(const std::string& reason) {
    return "PLACEHOLDER: " + reason +
           "\r\nThe box is saved as it came, and no code is generated for it. Once the operator is there "
           "again, "
           "\"Reload\r\nOperators\" puts a real box in its place, with all its wires.";
}

void TakeSettings(COpBox& box, Placeholder& placeholder, const BoxRecord& record) {
    if (const BoxSettingRecord* wid = record.LastSetting("wid")) {
        box.wid = placeholder.wid = wid->integer;
        placeholder.widPlace = {wid->operands - record.begin, wid->end - record.begin};
    }
    if (const BoxSettingRecord* place = record.LastSetting("xypos")) {
        std::copy_n(place->numbers.begin(), 2, placeholder.xypos);
        std::copy_n(place->numbers.begin(), 2, box.xypos);
        placeholder.xyPlace = {place->operands - record.begin, place->end - record.begin};
    }
    if (const BoxSettingRecord* most = record.LastSetting("opboxdefs")) box.maxinstances = most->integer;
}

}  // namespace

std::unique_ptr<COpBox> MakePlaceholder(const BoxRecord& record, const DocumentForm& form,
                                        const std::string& reason, const std::string& label) {
    auto box = std::make_unique<COpBox>();
    auto placeholder = std::make_shared<Placeholder>();
    placeholder->block = form.TextOf(record);
    placeholder->reason = reason;
    placeholder->nameEnd = record.nameEnd - record.begin;
    TakeSettings(*box, *placeholder, record);
    box->filename = record.operatorName;
    box->icontext = label;
    box->boxhelp = HelpOf(reason);
    std::fill_n(box->color, 3, kPlaceholderShade);
    for (const ButtonRecord& button : record.buttons) {
        auto made = MakeUnknownButton(*box, button);
        auto& side = made->IsOutput() ? box->outputs : box->inputs;
        side.push_back(std::move(made));
    }
    box->placeholder = std::move(placeholder);
    return box;
}

std::unique_ptr<COpButton> MakeUnknownButton(COpBox& box, const ButtonRecord& record) {
    auto button = std::make_unique<COpButton>(&box, KindOf(record.kind));
    button->name = record.name;
    button->instance = InstanceOf(record);
    button->disableargflag = 1;
    const auto addCast = [&](const std::string& type) {
        if (button->FindValue(type) != nullptr) return;
        if (auto value = MakeValue(type)) button->values.push_back(std::move(value));
    };
    for (const ValueRecord& value : record.values) addCast(TypeOf(value));
    if (button->FindCast(record.cast) < 0) addCast(std::string(record.cast));
    TakeButtonRecord(*button, record);
    const int cast = button->FindCast(record.cast);
    if (cast >= 0) button->currentcast = static_cast<size_t>(cast);
    return button;
}

std::unique_ptr<COpButton> MakeStrayButton(COpBox& box, const ButtonRecord& record,
                                           const DocumentForm& form) {
    auto button = MakeUnknownButton(box, record);
    button->stray = std::make_shared<const std::string>(form.TextOf(record));
    button->help =
        "The operator " + box.filename +
        " has no such button any more.\r\n\r\nIt is saved as it came, and generation passes over it.";
    return button;
}

COpButton* MakeUpButton(COpBox& placeholder, const ConnectionRecord::End& end, bool isOutput) {
    auto& side = isOutput ? placeholder.outputs : placeholder.inputs;
    const auto place = static_cast<size_t>(end.position);
    if (place >= side.size() + kMostMadeUp) return nullptr;
    while (side.size() <= place) {
        const auto kind = isOutput ? ButtonKind::kOutput : ButtonKind::kInput;
        side.push_back(std::make_unique<COpButton>(&placeholder, kind));
        side.back()->disableargflag = 1;
    }
    COpButton& button = *side[place];
    if (button.name.empty()) button.name = end.button;
    return &button;
}

}  // namespace tavrin
