// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskStyle.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "site/Settings.h"

namespace tavrin {
namespace {

TEST(DeskStyle, StandsWithoutAnySetting) {
    const DeskStyle style = DeskStyle::Read(Settings());
    EXPECT_EQ(style.background, (Rgb{0.6F, 0.7F, 0.7F}));
    EXPECT_EQ(style.rubberBand, (Rgb{1.0F, 0.5F, 0.5F}));
    EXPECT_EQ(style.connect, (Rgb{0.6F, 0.2F, 0.2F}));
    EXPECT_EQ(style.stippleLine, (Rgb{0.6F, 0.2F, 0.2F}));
    EXPECT_EQ(style.selectedConnect, (Rgb{1.0F, 0.8F, 0.5F}));
    EXPECT_EQ(style.boxTint, Rgb());
    EXPECT_EQ(style.selectedBox, Rgb());
    EXPECT_EQ(style.selectedBoxWidth, 3);
    EXPECT_EQ(style.highlightedBox, (Rgb{1, 1, 1}));
    EXPECT_EQ(style.selectedButton, (Rgb{1.0F, 1.0F, 0.7F}));
    EXPECT_EQ(style.probe, (Rgb{0.1F, 0.55F, 0.95F}));
    EXPECT_EQ(style.connectWidth, 3);
    EXPECT_EQ(style.hover, (Rgb{1, 1, 1}));
    EXPECT_FALSE(style.smoothText);
    EXPECT_EQ(style.leastLetters, 0);
    EXPECT_FALSE(style.smoothLines);
    EXPECT_FALSE(style.typeMarks);
    EXPECT_FALSE(style.typeLines);
    EXPECT_EQ(style.zoom.least, 0.1F);
    EXPECT_EQ(style.zoom.most, 10);
    EXPECT_EQ(style.font, "Arial");
    EXPECT_EQ(style.wallpaper, "");
}

TEST(DeskStyle, TakesEachKeyOfTheSite) {
    Settings settings;
    settings.Store("desk.backgroundcolor", "0.1 0 0");
    settings.Store("desk.rubberbandcolor", "0.2 0 0");
    settings.Store("desk.connectcolor", "0.3 0 0");
    settings.Store("desk.stipplelinecolor", "0.4 0 0");
    settings.Store("desk.selectedconnectcolor", "0.5 0 0");
    settings.Store("desk.boxtint", "0.6 0 0");
    settings.Store("box.selectedcolor", "0.7 0 0");
    settings.Store("box.selectedlinewidth", "4.5");
    settings.Store("box.hilightedcolor", "0.8 0 0");
    settings.Store("box.selectedbuttoncolor", "0.9 0 0");
    settings.Store("desk.probecolor", "0.95 0 0");
    settings.Store("box.connectlinewidth", "2");
    settings.Store("desk.font", "\"DejaVu Sans\" 12");
    settings.Store("desk.hovercolor", "0.96 0 0");
    settings.Store("desk.hidelabels", "7");
    settings.Store("desk.zoomminmax", "0.25 8");
    settings.Store("desk.setbgimage", "icons/paper.rgb");
    const DeskStyle style = DeskStyle::Read(settings);
    EXPECT_EQ(style.background.r, 0.1F);
    EXPECT_EQ(style.rubberBand.r, 0.2F);
    EXPECT_EQ(style.connect.r, 0.3F);
    EXPECT_EQ(style.stippleLine.r, 0.4F);
    EXPECT_EQ(style.selectedConnect.r, 0.5F);
    EXPECT_EQ(style.boxTint.r, 0.6F);
    EXPECT_EQ(style.selectedBox.r, 0.7F);
    EXPECT_EQ(style.selectedBoxWidth, 4.5F);
    EXPECT_EQ(style.highlightedBox.r, 0.8F);
    EXPECT_EQ(style.selectedButton.r, 0.9F);
    EXPECT_EQ(style.probe.r, 0.95F);
    EXPECT_EQ(style.connectWidth, 2);
    EXPECT_EQ(style.hover.r, 0.96F);
    EXPECT_EQ(style.leastLetters, 7);
    EXPECT_EQ(style.font, "DejaVu Sans");
    EXPECT_EQ(style.zoom.least, 0.25F);
    EXPECT_EQ(style.zoom.most, 8);
    EXPECT_EQ(style.wallpaper, "icons/paper.rgb");
}

TEST(DeskStyle, EachLookIsChosenForItself) {
    const std::vector<std::pair<std::string, bool DeskStyle::*>> looks = {
        {"desk.smoothtext", &DeskStyle::smoothText},
        {"desk.smoothlines", &DeskStyle::smoothLines},
        {"desk.typemarks", &DeskStyle::typeMarks},
        {"desk.typewires", &DeskStyle::typeLines},
    };
    for (const auto& [chosen, ignored] : looks) {
        Settings settings;
        settings.Store(chosen, "1");
        for (const auto& [name, look] : looks)
            EXPECT_EQ(DeskStyle::Read(settings).*look, name == chosen) << chosen << ", " << name;
        settings.Store(chosen, "0");
        EXPECT_FALSE(DeskStyle::Read(settings).*ignored) << chosen;
    }
}

TEST(DeskStyle, TheColorOfLinesIsAlsoThatOfStippledOnesUnlessTheyHaveTheirOwn) {
    Settings settings;
    settings.Store("desk.connectcolor", "0 0 1");
    EXPECT_EQ(DeskStyle::Read(settings).stippleLine, (Rgb{0, 0, 1}));
    settings.Store("desk.stipplelinecolor", "none");
    EXPECT_EQ(DeskStyle::Read(settings).stippleLine, (Rgb{0, 0, 1}));
    settings.Store("desk.stipplelinecolor", "0 1 0");
    EXPECT_EQ(DeskStyle::Read(settings).stippleLine, (Rgb{0, 1, 0}));
    EXPECT_EQ(DeskStyle::Read(settings).connect, (Rgb{0, 0, 1}));
}

TEST(DeskStyle, AnUnreadableValueLeavesTheDefault) {
    Settings settings;
    settings.Store("desk.backgroundcolor", "0.1 0.2");
    settings.Store("box.connectlinewidth", "wide");
    settings.Store("desk.zoomminmax", "all");
    DeskStyle style = DeskStyle::Read(settings);
    EXPECT_EQ(style.background, (Rgb{0.6F, 0.7F, 0.7F}));
    EXPECT_EQ(style.connectWidth, 3);
    EXPECT_EQ(style.zoom.least, 0.1F);
    settings.Store("desk.zoomminmax", "0.5");
    style = DeskStyle::Read(settings);
    EXPECT_EQ(style.zoom.least, 0.5F);
    EXPECT_EQ(style.zoom.most, 10);
}

}  // namespace
}  // namespace tavrin
