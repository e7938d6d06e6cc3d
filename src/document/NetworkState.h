// SPDX-License-Identifier: Apache-2.0
// What may change of a network, as plain values that are compared and put back: to the bit, and never through
// a text.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "document/ExportOptions.h"
#include "library/OpButton.h"

namespace tavrin {

class COpBox;
class CTvDoc;

// What is edited of a value. The numbers are those of its class in their order; two that print alike may
// differ.
struct ValueState {
    std::array<float, 5> numbers{};
    int integer = 0;
    std::string text;

    bool operator==(const ValueState& other) const;
};
ValueState StateOf(const COpValue& value);
// `state` was taken of a value of this type.
void PutState(const ValueState& state, COpValue& value);

// What is edited of a button, but for its wires.
struct ButtonState {
    int arg = 0;
    int pin = 0;
    int lock = 0;
    int stow = 0;
    int instance = 1;
    size_t currentcast = 0;
    std::string argname;
    std::string comments;
    std::vector<ValueState> values;

    bool operator==(const ButtonState&) const = default;
    // Of which nothing is seen on the desk.
    bool DiffersInTunedOnly(const ButtonState& other) const;
};
ButtonState StateOf(const COpButton& button);
// The same as comparing with StateOf, for less.
bool IsStateOf(const ButtonState& state, const COpButton& button);
// `state` was taken of this button.
void PutState(const ButtonState& state, COpButton& button);

// What is edited of a box itself. Its inputs in their order are state as well, and stand in the shadow.
struct BoxState {
    int wid = 0;
    int maxinstances = 0;
    int muted = 0;
    std::array<float, 2> place{};  // desk units

    bool operator==(const BoxState& other) const;
};
BoxState StateOf(const COpBox& box);
void PutState(const BoxState& state, COpBox& box);

// What is edited of a document beside its boxes and render options. The lock of the desk is none of it: it
// guards what an undo would change.
struct SettingsState {
    std::vector<std::string> toolbar;
    int showiconimages = 0;
    int linetype = 0;
    int drawlinesoverboxes = 0;
    int showvarnames = 0;
    CExportOptions exportOptions;  // of its paths the directories; the names follow the document's own
    std::string customshaderhelp;

    bool operator==(const SettingsState&) const = default;
};
SettingsState SettingsOf(const CTvDoc& document);
void PutSettings(const SettingsState& state, CTvDoc& document);

using OptionsState = std::map<std::string, std::string>;

}  // namespace tavrin
