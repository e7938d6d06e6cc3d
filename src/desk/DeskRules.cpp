// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskRules.h"

#include <algorithm>

#include "site/Settings.h"

namespace tavrin {

namespace {

constexpr float kMostSlack = 100;  // pixels

}  // namespace

DeskRules DeskRules::Read(const Settings& settings) {
    const auto isOn = [&settings](const char* key) {
        int value = 0;
        return settings.GetSettingInt(key, value) && value != 0;
    };
    std::optional<float> lineSlack;
    if (float pixels = 0; settings.GetSettingFloat("desk.connectslack", pixels) && pixels >= 0) {
        lineSlack = std::min(pixels, kMostSlack);
    }
    return {.copyTemplates = isOn("desk.copytemplates"),
            .plainAnchors = isOn("desk.plainanchors"),
            .pullWires = isOn("desk.pullwires"),
            .dropWires = isOn("desk.dropwires"),
            .escapeWires = isOn("desk.escapewires"),
            .insertBoxes = isOn("desk.insertboxes"),
            .hover = isOn("desk.hover"),
            .lineSlack = lineSlack,
            .copiesInSight = isOn("desk.copiesinsight"),
            .search = isOn("desk.search"),
            .keepFlow = isOn("desk.keepflow")};
}

}  // namespace tavrin
