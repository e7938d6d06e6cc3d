// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskRules.h"

#include "site/Settings.h"

namespace tavrin {

DeskRules DeskRules::Read(const Settings& settings) {
    const auto isOn = [&settings](const char* key) {
        int value = 0;
        return settings.GetSettingInt(key, value) && value != 0;
    };
    return {.copyTemplates = isOn("desk.copytemplates"),
            .plainAnchors = isOn("desk.plainanchors"),
            .pullWires = isOn("desk.pullwires"),
            .dropWires = isOn("desk.dropwires"),
            .escapeWires = isOn("desk.escapewires"),
            .insertBoxes = isOn("desk.insertboxes")};
}

}  // namespace tavrin
