// SPDX-License-Identifier: Apache-2.0
// What the library does not know, as it is seen, against references.
#include <gtest/gtest.h>

#include "library/Placeholder.h"
#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::Wire;

class DeskPicturePlaceholders : public test::DeskPictureTest {
  protected:
    COpBox& PutGone(const std::string& name, float x, float y) {
        COpBox& box = Put(MakeBox(name,
                                  "input in { float { 0 0 1 0 %g } }\ninput size { float { 0 0 1 0 %g } }\n"
                                  "output out { float out }"),
                          x, y);
        box.placeholder = std::make_shared<const Placeholder>();
        box.icontext = "missing";
        for (float& component : box.color) component = 0.8F;
        return box;
    }
};

TEST_F(DeskPicturePlaceholders, APlaceholderLiesFlatUnderAVeilWithADashedEdge) {
    COpBox& gone = PutGone("gone", 100, 60);
    Wire(Put(MakeLink("link", 1), 60, 130), 0, gone, 0);
    Open(200, 160);
    ExpectPicture();
    ExpectPictureAt(0.5F, {100, 80}, "small");
    ExpectPictureAt(4, {60, 70}, "large");
}

TEST_F(DeskPicturePlaceholders, ASelectedOneHasTheEdgeOfAllSelectedBoxes) {
    PutGone("gone", 100, 60).selected = 1;
    Open(200, 120);
    ExpectPicture();
}

TEST_F(DeskPicturePlaceholders, StrayButtonsAreDimmedHolesInTheirBox) {
    COpBox& box =
        Put(MakeBox("mix",
                    "input a { float { 0 0 1 0 %g } }\ninput lost { float { 0 0 1 0 %g } }\n"
                    "input c { float { 0 0 1 0 %g } }\noutput out { float out }\noutput old { float out }"),
            100, 60);
    for (float& component : box.color) component = 0.85F;
    box.inputs.at(1)->stray = std::make_shared<const std::string>();
    box.outputs.at(1)->stray = box.inputs.at(1)->stray;
    Open(200, 120);
    ExpectPicture();
}

TEST_F(DeskPicturePlaceholders, ALongNameIsCutWhereTheLibraryDoesNotVouchForIt) {
    COpBox& gone = PutGone(std::string(300, 'n'), 400, 60);
    gone.inputs.at(0)->name = std::string(200, 'i');
    Open(800, 120);
    EXPECT_LT(gone.layout.width, 900.0F);
    ExpectPicture();
}

}  // namespace
}  // namespace tavrin
