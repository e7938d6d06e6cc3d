// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskStyle.h"

#include "site/Settings.h"
#include "text/Numbers.h"

namespace tavrin {

namespace {

void ReadColor(const Settings& settings, const char* key, Rgb& color) {
    float numbers[3];
    if (settings.GetSettingRgb(key, numbers)) color = {numbers[0], numbers[1], numbers[2]};
}

// The first number counts even if no second follows.
void ReadLimits(const Settings& settings, ZoomLimits& limits) {
    std::string text;
    if (!settings.GetSettingRaw("desk.zoomminmax", text)) return;
    FieldScanner scanner(text);
    const auto least = scanner.Float();
    if (!least) return;
    limits.least = *least;
    limits.most = scanner.Float().value_or(limits.most);
}

}  // namespace

DeskStyle DeskStyle::Read(const Settings& settings) {
    DeskStyle style;
    ReadColor(settings, "desk.backgroundcolor", style.background);
    ReadColor(settings, "desk.rubberbandcolor", style.rubberBand);
    ReadColor(settings, "desk.connectcolor", style.connect);
    style.stippleLine = style.connect;
    ReadColor(settings, "desk.stipplelinecolor", style.stippleLine);
    ReadColor(settings, "desk.selectedconnectcolor", style.selectedConnect);
    ReadColor(settings, "desk.boxtint", style.boxTint);
    ReadColor(settings, "box.selectedcolor", style.selectedBox);
    settings.GetSettingFloat("box.selectedlinewidth", style.selectedBoxWidth);
    ReadColor(settings, "box.hilightedcolor", style.highlightedBox);
    ReadColor(settings, "box.selectedbuttoncolor", style.selectedButton);
    ReadColor(settings, "desk.probecolor", style.probe);
    settings.GetSettingFloat("box.connectlinewidth", style.connectWidth);
    ReadColor(settings, "desk.hovercolor", style.hover);
    const auto isOn = [&settings](const char* key) {
        int value = 0;
        return settings.GetSettingInt(key, value) && value != 0;
    };
    style.smoothText = isOn("desk.smoothtext");
    settings.GetSettingFloat("desk.hidelabels", style.leastLetters);
    style.smoothLines = isOn("desk.smoothlines");
    style.typeMarks = isOn("desk.typemarks");
    style.typeLines = isOn("desk.typewires");
    settings.GetSettingToken("desk.font", style.font);
    ReadLimits(settings, style.zoom);
    settings.GetSettingToken("desk.setbgimage", style.wallpaper);
    return style;
}

}  // namespace tavrin
