// SPDX-License-Identifier: Apache-2.0
// The desk with all looks that a library may want, against references.
#include <gtest/gtest.h>

#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::Wire;

// What is laid over something by parts of it is rounded in either way of painting, letters that touch twice.
constexpr test::PictureTolerance kRounded{2, 4};
constexpr const char* kMany =
    "input first { float { 0 0 1 0 %g } }\ninput second { rgb { 0 0 0 %g } }\ninput third { xyz { 0 0 0 0 1 "
    "0 %g } }\n"
    "input fourth { generic:vec2 { value v } }\noutput x { float out }\noutput y { rgb out }";

class DeskPictureLooks : public test::DeskPictureTest {
  protected:
    DeskPictureLooks() {
        Settings& settings = host.GetSite().settings;
        for (const char* key : {"smoothtext", "smoothlines", "typemarks", "typewires"})
            settings.Store(std::string("desk.") + key, "1");
        settings.Store("desk.hidelabels", "7");
        TypeTables& types = host.GetSite().types;
        types.SetMark("float", {{{0.8F, 0.85F, 0.9F}}, TypeShape::kCircle});
        types.SetMark("rgb", {{{0.95F, 0.8F, 0.3F}}, TypeShape::kSquare});
        types.SetMark("xyz", {{{0.6F, 0.65F, 1.0F}}, TypeShape::kTriangle});
        types.SetMark("vec2", {{{0.5F, 0.85F, 0.55F}}, TypeShape::kDiamond});
    }
    COpBox& PutMany(float x, float y) { return Put(MakeBox("Ramp", kMany), x, y); }
    // Of wires of two types, a stippled one and free buttons, an argument and one that cannot be wired.
    void PutScene() {
        COpBox& from = PutMany(70, 130);
        COpBox& to = PutMany(230, 70);
        to.inputs.at(3)->disableconnectflag = 1;
        to.inputs.at(2)->arg = 1;
        Wire(from, 0, to, 0);
        Wire(from, 1, to, 1);
        COpBox& last = PutMany(230, 180);
        Wire(from, 1, last, 0);
    }
};

TEST_F(DeskPictureLooks, TypesAndLabelsAreTheirBestAtFullSize) {
    PutScene();
    Open(310, 230);
    ExpectPicture("", kRounded, kRounded);
}

TEST_F(DeskPictureLooks, LabelsShrinkNoFurtherThanTheyCanBeRead) {
    PutScene();
    Open(310, 230);
    ExpectPictureAt(0.5F, {155, 115}, "half", kRounded, kRounded);
    ExpectPictureAt(0.3F, {155, 115}, "small", kRounded, kRounded);
    ExpectPictureAt(2, {155, 115}, "large", kRounded, kRounded);
}

TEST_F(DeskPictureLooks, AMutedBoxIsFaintWithWhatGoesThroughIt) {
    PutScene();
    document.m_boxes.front()->muted = 1;
    Open(310, 230);
    ExpectPicture("", kRounded, kRounded);
}

}  // namespace
}  // namespace tavrin
