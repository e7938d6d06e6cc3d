// SPDX-License-Identifier: Apache-2.0
#include "document/NetworkState.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "base/Paths.h"
#include "document/TvDoc.h"
#include "library/ValueVisitor.h"

namespace tavrin {

namespace {

template <size_t Count>
bool SameBits(const std::array<float, Count>& one, const std::array<float, Count>& other) {
    using Bits = std::array<uint32_t, Count>;
    return std::bit_cast<Bits>(one) == std::bit_cast<Bits>(other);
}

// Without a copy of any text: almost all that are looked at are the same.
bool IsStateOf(const ValueState& state, const COpValue& value) {
    const auto isText = [&state](const std::string& text) { return state.text == text; };
    return VisitValue(value, ValueCalls{
                                 [&](const COpValueString& own) { return isText(own.value); },
                                 [&](const COpValueGeneric& own) { return isText(own.value); },
                                 [&](const auto& own) { return state == StateOf(own); },
                             });
}

// The five paths of an export, of which the directories are the user's.
constexpr std::array kExportPaths = {&CExportOptions::tavrnPath, &CExportOptions::compiledPath,
                                     &CExportOptions::sourcePath, &CExportOptions::shaderIfacePath,
                                     &CExportOptions::renderIfacePath};

}  // namespace

ValueState StateOf(const COpValue& value) {
    return VisitValue(value,
                      ValueCalls{
                          [](const COpValueFloat& own) {
                              return ValueState{{own.value, own.min, own.max}, own.integer, {}};
                          },
                          [](const COpValueXyz& own) {
                              return ValueState{{own.x, own.y, own.z, own.min, own.max}, own.integer, {}};
                          },
                          [](const COpValueRgb& own) {
                              return ValueState{{own.r, own.g, own.b}, 0, {}};
                          },
                          [](const COpValueRgba& own) {
                              return ValueState{{own.r, own.g, own.b, own.a}, 0, {}};
                          },
                          [](const COpValueString& own) {
                              return ValueState{{}, 0, own.value};
                          },
                          [](const COpValueGeneric& own) {
                              return ValueState{{}, 0, own.value};
                          },
                      });
}

void PutState(const ValueState& state, COpValue& value) {
    const auto& numbers = state.numbers;
    VisitValue(value, ValueCalls{
                          [&](COpValueFloat& own) {
                              own.value = numbers[0];
                              own.min = numbers[1];
                              own.max = numbers[2];
                              own.integer = state.integer;
                          },
                          [&](COpValueXyz& own) {
                              own.x = numbers[0];
                              own.y = numbers[1];
                              own.z = numbers[2];
                              own.min = numbers[3];
                              own.max = numbers[4];
                              own.integer = state.integer;
                          },
                          [&](COpValueRgb& own) {
                              own.r = numbers[0];
                              own.g = numbers[1];
                              own.b = numbers[2];
                          },
                          [&](COpValueRgba& own) {
                              own.r = numbers[0];
                              own.g = numbers[1];
                              own.b = numbers[2];
                              own.a = numbers[3];
                          },
                          [&](COpValueString& own) { own.value = state.text; },
                          [&](COpValueGeneric& own) { own.value = state.text; },
                      });
}

bool ValueState::operator==(const ValueState& other) const {
    return SameBits(numbers, other.numbers) && integer == other.integer && text == other.text;
}

bool ButtonState::DiffersInTunedOnly(const ButtonState& other) const {
    return arg == other.arg && currentcast == other.currentcast && instance == other.instance;
}

ButtonState StateOf(const COpButton& button) {
    ButtonState state{.arg = button.arg,
                      .pin = button.pin,
                      .lock = button.lock,
                      .stow = button.stow,
                      .instance = button.instance,
                      .currentcast = button.currentcast,
                      .argname = button.argname,
                      .comments = button.comments,
                      .values = {}};
    state.values.reserve(button.values.size());
    for (const auto& value : button.values) state.values.push_back(StateOf(*value));
    return state;
}

bool IsStateOf(const ButtonState& state, const COpButton& button) {
    return state.arg == button.arg && state.pin == button.pin && state.lock == button.lock &&
           state.stow == button.stow && state.instance == button.instance &&
           state.currentcast == button.currentcast && state.argname == button.argname &&
           state.comments == button.comments &&
           std::equal(state.values.begin(), state.values.end(), button.values.begin(), button.values.end(),
                      [](const ValueState& known, const auto& own) { return IsStateOf(known, *own); });
}

void PutState(const ButtonState& state, COpButton& button) {
    button.arg = state.arg;
    button.pin = state.pin;
    button.lock = state.lock;
    button.stow = state.stow;
    button.instance = state.instance;
    button.currentcast = state.currentcast;
    button.argname = state.argname;
    button.comments = state.comments;
    for (size_t i = 0; i < button.values.size(); ++i) PutState(state.values.at(i), *button.values[i]);
}

bool BoxState::operator==(const BoxState& other) const {
    return wid == other.wid && maxinstances == other.maxinstances && muted == other.muted &&
           SameBits(place, other.place);
}

BoxState StateOf(const COpBox& box) {
    return {.wid = box.wid,
            .maxinstances = box.maxinstances,
            .muted = box.muted,
            .place = {box.xypos[0], box.xypos[1]}};
}

void PutState(const BoxState& state, COpBox& box) {
    box.wid = state.wid;
    box.maxinstances = state.maxinstances;
    box.muted = state.muted;
    box.xypos[0] = state.place[0];
    box.xypos[1] = state.place[1];
}

SettingsState SettingsOf(const CTvDoc& document) {
    SettingsState state{.toolbar = document.toolbar,
                        .showiconimages = document.showiconimages,
                        .linetype = document.linetype,
                        .drawlinesoverboxes = document.drawlinesoverboxes,
                        .showvarnames = document.showvarnames,
                        .exportOptions = document.exportOptions,
                        .customshaderhelp = document.customshaderhelp};
    for (const auto path : kExportPaths) state.exportOptions.*path = PathDir(state.exportOptions.*path);
    return state;
}

void PutSettings(const SettingsState& state, CTvDoc& document) {
    document.toolbar = state.toolbar;
    document.showiconimages = state.showiconimages;
    document.linetype = state.linetype;
    document.drawlinesoverboxes = state.drawlinesoverboxes;
    document.showvarnames = state.showvarnames;
    document.customshaderhelp = state.customshaderhelp;
    const CExportOptions now = document.exportOptions;
    document.exportOptions = state.exportOptions;
    for (const auto path : kExportPaths) {
        // The names stay as they are.
        const std::string& whole = now.*path;
        document.exportOptions.*path += whole.substr(PathDir(whole).size());
    }
}

}  // namespace tavrin
