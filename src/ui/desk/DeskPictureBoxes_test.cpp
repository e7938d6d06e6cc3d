// SPDX-License-Identifier: Apache-2.0
// Boxes as they are seen, against references.
#include <gtest/gtest.h>

#include "images/SgiTestFile.h"
#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::Rgba;
using test::SgiTestFile;

constexpr const char* kTwoInputs =
    "input in { float { 0 0 1 0 %g } }\ninput size { float { 0 0 1 0 %g } }\noutput out { float out }";

class DeskPictureBoxes : public test::DeskPictureTest {
  protected:
    COpBox& PutNoise(float x, float y) {
        COpBox& box = Put(MakeBox("noise", kTwoInputs), x, y);
        box.icontext = "Noise";
        return box;
    }
    // No two of its edges and corners are alike; a third of it is half clear, a third wholly.
    COpBox& PutIcon(float x, float y) {
        constexpr int kWidth = 31;
        constexpr int kHeight = 19;
        std::vector<Rgba> pixels;
        for (int row = 0; row < kHeight; ++row) {
            for (int column = 0; column < kWidth; ++column) {
                const auto red = static_cast<uint8_t>(column * 8);
                const auto green = static_cast<uint8_t>(row * 13);
                const auto alpha = static_cast<uint8_t>(row < 6 ? 0 : row < 12 ? 128 : 255);
                pixels.push_back({red, green, static_cast<uint8_t>(row % 3 == 0 ? 255 : 0), alpha});
            }
        }
        host.Directory().Write("installation/icon.sgi", SgiTestFile::Picture(kWidth, 4, pixels).Bytes());
        COpBox& box = PutNoise(x, y);
        box.iconimg = "icon.sgi";
        document.showiconimages = 1;
        return box;
    }
    static void SetColor(COpBox& box, const Rgb& color) {
        box.color[0] = color.r;
        box.color[1] = color.g;
        box.color[2] = color.b;
    }
};

TEST_F(DeskPictureBoxes, ABoxHasATitleItsTextAndARowForEachButton) {
    PutNoise(100, 60);
    Open(200, 120);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, RowsShareTheHeightOfTheirColumn) {
    COpBox& box =
        Put(MakeBox("rows",
                    "input a { float { 0 0 1 0 %g } }\ninput b { float { 0 0 1 0 %g } }\n"
                    "input longer { float { 0 0 1 0 %g } }\noutput x { float out }\noutput y { rgb out }"),
            100, 75);
    box.size[0] = 160;
    box.size[1] = 110;
    Open(200, 150);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, AColumnWithoutButtonsIsDark) {
    Put(MakeBox("none", ""), 50, 90);
    Put(MakeBox("source", "output o { float out }"), 140, 90);
    Put(MakeBox("sink", "input i { float { 0 0 1 0 %g } }"), 100, 30);
    Open(200, 120);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, AnIconStandsInTheMiddleOverTheColorOfItsBox) {
    PutIcon(60, 50);
    Open(120, 100);
    ExpectPicture();
    ExpectPictureAt(2, {60, 50}, "zoom-2");
    // At half the size each pixel's middle falls between two of the icon's: rounding takes the one or the
    // other, which is a quarter of those along its edges.
    constexpr test::PictureTolerance kTies{2, 80};
    ExpectPictureAt(0.5F, {60, 50}, "zoom-0.5", kTies, kTies);
}

TEST_F(DeskPictureBoxes, AHighlightedIconLiesOverTheHighlight) {
    PutIcon(60, 50);
    highlighted = "noise_1";
    Open(120, 100);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, ABoxWhoseIconIsMissingShowsItsText) {
    PutIcon(60, 50).iconimg = "none.sgi";
    Open(120, 100);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, MarksStandLeftOfTheRowsOfTheirButtons) {
    COpBox& box = PutNoise(100, 60);
    box.inputs.at(0)->disableconnectflag = 1;
    box.inputs.at(1)->arg = 1;
    box.outputs.at(0)->arg = box.outputs.at(0)->disableconnectflag = 1;
    Open(200, 120);
    ExpectPicture();
    ExpectPictureAt(3, {50, 55}, "zoom-3");
    ExpectPictureAt(0.5F, {100, 60}, "zoom-0.5");
}

TEST_F(DeskPictureBoxes, ASelectedBoxIsOutlinedByAsManyPixelsAtEachZoom) {
    PutNoise(100, 60).selected = 1;
    Open(200, 120);
    ExpectPicture();
    ExpectPictureAt(3, {60, 80}, "zoom-3");
    ExpectPictureAt(0.5F, {100, 60}, "zoom-0.5");
}

TEST_F(DeskPictureBoxes, TheSiteSetsTheOutline) {
    host.GetSite().settings.Store("box.selectedlinewidth", "7");
    host.GetSite().settings.Store("box.selectedcolor", "0 0.3 1");
    PutNoise(100, 60).selected = 1;
    Open(200, 120);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, TheBoxFindersBoxIsHighlightedAndTheOthersAreNot) {
    PutNoise(60, 90);
    PutNoise(130, 30);
    highlighted = "noise_2";
    Open(200, 120);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, TheTintOfTheSiteIsAddedToEachBox) {
    host.GetSite().settings.Store("desk.boxtint", "0.2 -0.1 0.6");
    SetColor(PutNoise(60, 90), {0.9F, 0.05F, 0.5F});  // beyond 1 and below 0
    PutNoise(130, 30);
    Open(200, 120);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, TheFirstBoxLiesOnTopWhateverIsSelected) {
    SetColor(PutNoise(80, 50), {0.8F, 0.2F, 0.2F});
    COpBox& middle = PutNoise(105, 70);
    middle.selected = 1;
    SetColor(PutNoise(130, 50), {0.2F, 0.3F, 0.9F});
    Open(200, 120);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, BoxesAreCutByEachEdgeOfTheWindow) {
    PutNoise(0, 75).selected = 1;
    PutNoise(200, 75).selected = 1;
    PutNoise(100, 150).selected = 1;
    PutNoise(100, 0).selected = 1;
    Open(200, 150);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, WhatStandsOutOfABoxBesideTheWindowIsSeen) {
    // The boxes themselves are outside: only an outline and marks reach in.
    COpBox& below = PutNoise(100, 0);
    COpBox& right = PutNoise(0, 75);
    below.selected = 1;
    right.inputs.at(0)->disableconnectflag = 1;
    right.inputs.at(1)->arg = 1;
    Open(200, 150);
    LookEveryWay();  // lays out; what follows stays
    desk.MoveBox(below, 0, -1 - BoxRect(below).Top());
    desk.MoveBox(right, 206 - BoxRect(right).left, 0);
    ExpectPicture();
}

TEST_F(DeskPictureBoxes, LettersOfAnyScriptAreShown) {
    COpBox& box = PutNoise(100, 60);
    box.filename = "Größe ñ";
    box.icontext = "Ωßжµ";
    Open(200, 120);
    ExpectPicture();
}

}  // namespace
}  // namespace tavrin
