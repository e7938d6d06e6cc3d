// SPDX-License-Identifier: Apache-2.0
// What a library may want to be seen of the desk: lights under the pointer, marks and colours of types,
// smooth labels; and how muted boxes, pulled wires and boxes over wires look.
#include <gtest/gtest.h>

#include <set>

#include "desk/TypeLook.h"
#include "ui/desk/DeskPaneTest.h"

namespace tavrin {
namespace {

using namespace test;

constexpr Rgb kHover{0, 1, 1};
constexpr Rgb kFloatColor{1, 1, 0};
constexpr Rgb kRgbColor{1, 0, 0.5F};

class DeskLooks : public DeskPaneTest {
  protected:
    void Want(const std::string& key, const std::string& value = "1") {
        host.GetSite().settings.Store("desk." + key, value);
    }
    void WantHover() {
        Want("hover");
        Want("hovercolor", "0 1 1");
        Renew();
    }
    void WantTypes() {
        host.GetSite().types.SetMark("float", {{{1, 1, 0}}, TypeShape::kCircle});
        host.GetSite().types.SetMark("rgb", {{{1, 0, 0.5F}}, TypeShape::kSquare});
    }
    // The desk reads its rules when it is made.
    void Renew() { renewed = std::make_unique<COpDesk>(document, host); }
    void ShowRenewed() {
        pane = std::make_unique<tavrin::DeskPane>(
            nullptr, document, *renewed, host.GetSite(),
            tavrin::DeskPane::Needs{[this] { return highlighted; },
                                    [this](const std::string& text) { status = text; },
                                    [](const std::string& text, int) { ADD_FAILURE() << text; }});
        pane->resize(640, 480);
        pane->move(0, 0);
        renewed->OnInitialUpdate();
        ShowActive(*pane);
    }
    void TearDown() override {
        if (pane) Release({0, 0});
        pane.reset();
        renewed.reset();
        DeskPaneTest::TearDown();
    }
    DeskRect Around(DeskPoint point, float by) { return DeskRect{point.x, point.y, 0, 0}.GrownBy(by); }
    DeskPoint Between(const COpBox& from, const COpBox& to) {
        const DeskPoint start = ButtonAnchor({&from, true, 0});
        const DeskPoint end = ButtonAnchor({&to, false, 0});
        return {(start.x + end.x) / 2, (start.y + end.y) / 2};
    }
    int CountAll(const Rgb& color) { return Count(pane->View().Visible(), color); }

    std::unique_ptr<COpDesk> renewed;
};

TEST_F(DeskLooks, WhatTheNextClickWouldHitIsLit) {
    COpBox& from = PutLink(100, 200);
    COpBox& to = PutLink(400, 200);
    Wire(from, 0, to, 0);
    WantHover();
    ShowRenewed();
    Look();
    EXPECT_EQ(CountAll(kHover), 0);
    MoveTo(TitleOf(from));
    Look();
    EXPECT_GT(Count(BoxRect(from).GrownBy(3), kHover), 2 * 100);  // an outline
    EXPECT_EQ(Count(BoxRect(to).GrownBy(3), kHover), 0);
    MoveTo(At(ButtonRect({&from, true, 0}).Middle()));
    Look();
    EXPECT_GT(Count(ButtonRect({&from, true, 0}), kHover), 50);
    EXPECT_EQ(Count(TitleRect(from), kHover), 0);
    MoveTo(At(Between(from, to)));
    Look();
    EXPECT_THAT(Seen(Between(from, to)), IsColor(kHover));
    EXPECT_EQ(Count(BoxRect(from).GrownBy(-3), kHover), 0);
    MoveTo({600, 20});
    Look();
    EXPECT_EQ(CountAll(kHover), 0);
}

TEST_F(DeskLooks, NothingIsLitOnceThePointerHasLeft) {
    COpBox& box = PutLink(100, 200);
    WantHover();
    ShowRenewed();
    MoveTo(TitleOf(box));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&pane->Desk(), &leave);
    Look();
    EXPECT_EQ(CountAll(kHover), 0);
}

TEST_F(DeskLooks, TheLightFollowsWhatAnEditLeavesUnderThePointer) {
    COpBox& box = PutLink(100, 200);
    PutLink(110, 205);
    WantHover();
    ShowRenewed();
    MoveTo(TitleOf(box));
    renewed->DeleteBox(*pane->Gestures().Hovered().box);
    Look();
    ASSERT_EQ(document.m_boxes.size(), 1U);
    EXPECT_EQ(pane->Gestures().Hovered().box, document.m_boxes.front().get());
}

TEST_F(DeskLooks, NothingIsLitWhileABoxIsDragged) {
    COpBox& box = PutLink(100, 200);
    WantHover();
    ShowRenewed();
    Press(TitleOf(box));
    Drag(TitleOf(box) + QPoint(40, 0));
    Look();
    EXPECT_EQ(CountAll(kHover), 0);
}

TEST_F(DeskLooks, ABoxThatIsPickedShowsBothOutlines) {
    COpBox& box = PutLink(100, 200);
    WantHover();
    ShowRenewed();
    box.selected = 1;
    MoveTo(TitleOf(box));
    Look();
    EXPECT_GT(Count(BoxRect(box).GrownBy(8), kHover), 100);
    EXPECT_GT(Count(BoxRect(box).GrownBy(8), kOutline), 100);
}

TEST_F(DeskLooks, ALibraryThatSaysNothingLightsNothing) {
    COpBox& box = PutLink(100, 200);
    Want("hovercolor", "0 1 1");
    Show();
    MoveTo(TitleOf(box));
    Look();
    EXPECT_EQ(CountAll(kHover), 0);
}

TEST_F(DeskLooks, TypesHaveTheirColorsAtButtonsAndInWires) {
    COpBox& from = PutLink(100, 300);
    COpBox& to = PutLink(400, 300);
    COpBox& color = Put(MakeBox("c", "input i { rgb { 0 0 0 %g } }\noutput o { rgb out }"), 250, 100);
    Wire(from, 0, to, 0);
    WantTypes();
    Want("typemarks");
    Want("typewires");
    Show();
    Look();
    EXPECT_GT(Count(Around(ButtonAnchor({&from, true, 0}), 8), kFloatColor), 15);
    EXPECT_GT(Count(Around(ButtonAnchor({&color, false, 0}), 8), kRgbColor), 8);
    EXPECT_EQ(Count(BoxRect(color).GrownBy(10), kFloatColor), 0);
    EXPECT_THAT(Seen(Between(from, to)), IsColor(kFloatColor));
}

TEST_F(DeskLooks, ButtonsWithAWireAreFilledAndOthersHollow) {
    COpBox& from = PutLink(100, 300);
    COpBox& to = PutLink(400, 300);
    Wire(from, 0, to, 0);
    WantTypes();
    Want("typemarks");
    Show();
    Look();
    const auto yellow = [&](const COpBox& box, bool output) {
        return Count(Around(ButtonAnchor({&box, output, 0}), 8), kFloatColor);
    };
    EXPECT_GT(yellow(from, true), yellow(from, false) + 5);
    EXPECT_GT(yellow(to, false), yellow(to, true) + 5);
}

TEST_F(DeskLooks, TheOutlineOfASelectedBoxCoversNoMark) {
    COpBox& from = PutLink(100, 300);
    COpBox& to = PutLink(400, 300);
    Wire(from, 0, to, 0);
    WantTypes();
    Want("typemarks");
    Show();
    Look();
    const auto yellow = [&] { return Count(Around(ButtonAnchor({&from, true, 0}), 8), kFloatColor); };
    const int before = yellow();
    ASSERT_GT(before, 15);
    from.selected = 1;
    pane->Repaint();
    Look();
    EXPECT_EQ(yellow(), before);
}

TEST_F(DeskLooks, AnArgumentKeepsItsMarkBesideThatOfItsType) {
    COpBox& box = PutLink(200, 300);
    box.inputs.at(0)->arg = 1;
    host.GetSite().types.SetMark("float", {{{1, 0, 0.5F}}, TypeShape::kSquare});
    Want("typemarks");
    Show();
    Look();
    const DeskPoint anchor = ButtonAnchor({&box, false, 0});
    EXPECT_THAT(Seen({anchor.x - 11, anchor.y}), IsColor(desk_colors::kArgumentMark));
    EXPECT_GT(Count(Around(anchor, 7), kRgbColor), 8);
}

TEST_F(DeskLooks, WhatCannotBeWiredHasNoMarkOfAType) {
    COpBox& box = PutLink(200, 300);
    box.inputs.at(0)->disableconnectflag = 1;
    WantTypes();
    Want("typemarks");
    Show();
    Look();
    EXPECT_EQ(Count(Around(ButtonAnchor({&box, false, 0}), 10), kFloatColor), 0);
}

TEST_F(DeskLooks, ALibraryThatSaysNothingShowsNoTypes) {
    COpBox& from = PutLink(100, 300);
    COpBox& to = PutLink(400, 300);
    Wire(from, 0, to, 0);
    WantTypes();
    Show();
    Look();
    EXPECT_EQ(CountAll(kFloatColor), 0);
    EXPECT_THAT(Seen(Between(from, to)), IsColor(kLine));
}

TEST_F(DeskLooks, ADeskTooSmallForMarksHasNone) {
    PutLink(100, 300);
    WantTypes();
    Want("typemarks");
    document.zoomFactor = 0.2F;
    Show();
    document.zoomFactor = 0.2F;
    Look();
    EXPECT_EQ(CountAll(kFloatColor), 0);
}

TEST_F(DeskLooks, AMutedBoxIsFaintAndShowsWhatGoesThroughIt) {
    COpBox& box = Put(MakeBox("m", "input i { float { 0 0 1 0 %g } }\noutput o { float out }"), 200, 300);
    box.size[0] = 200;
    Show();
    Look();
    const DeskPoint inPanel{PanelRect(box).Middle().x, ButtonRect({&box, false, 0}).Middle().y};
    EXPECT_EQ(Count(PanelRect(box), kLine), 0);
    EXPECT_GT(Count(BoxRect(box), kGreen), 500);
    box.muted = 1;
    Look();
    EXPECT_THAT(Seen(inPanel), IsColor(kLine));
    EXPECT_EQ(Count(BoxRect(box), kGreen), 0);
}

TEST_F(DeskLooks, AMutedBoxThatPassesNothingOnHasNoLine) {
    COpBox& box = Put(MakeBox("m", "input i { rgb { 0 0 0 %g } }\noutput o { float out }"), 200, 300);
    box.muted = 1;
    Show();
    Look();
    EXPECT_EQ(Count(BoxRect(box), kLine), 0);
}

TEST_F(DeskLooks, AWireThatIsPulledOffRunsToThePointerAndNotToItsInput) {
    COpBox& from = PutLink(100, 300);
    COpBox& to = PutLink(400, 300);
    Wire(from, 0, to, 0);
    Want("pullwires");
    Renew();
    ShowRenewed();
    Press(At(ButtonRect({&to, false, 0}).Middle()));
    const DeskPoint away{300, 150};
    Drag(At(away));
    ASSERT_EQ(renewed->m_pulledInput, to.inputs.at(0).get());
    Look();
    EXPECT_EQ(Count(Around(Between(from, to), 4), kLine), 0);
    const DeskPoint start = ButtonAnchor({&from, true, 0});
    EXPECT_GT(Count(Around({(start.x + away.x) / 2, (start.y + away.y) / 2}, 6), kLine), 10);
}

TEST_F(DeskLooks, TheWireThatABoxInHandWouldGoIntoIsLit) {
    COpBox& from = PutLink(80, 300);
    COpBox& to = PutLink(560, 300);
    COpBox& between = PutLink(300, 100);
    Wire(from, 0, to, 0);
    Want("insertboxes");
    Renew();
    ShowRenewed();
    Look();
    EXPECT_EQ(CountAll(kSelectedLine), 0);
    Press(TitleOf(between));
    Drag(At({300, 310}));
    Look();
    EXPECT_GT(CountAll(kSelectedLine), 300);
    Drag(At({300, 100}));
    Look();
    EXPECT_EQ(CountAll(kSelectedLine), 0);
}

TEST_F(DeskLooks, ABoxThatWaitsOverAWireLightsItToo) {
    COpBox& from = PutLink(80, 300);
    COpBox& to = PutLink(560, 300);
    Wire(from, 0, to, 0);
    Want("insertboxes");
    Renew();
    ShowRenewed();
    renewed->m_pendingBoxes.push_back(MakeLink("box", 9));
    pane->LayoutAll();
    MoveTo(At({300, 300}));
    Look();
    EXPECT_GT(CountAll(kSelectedLine), 300);
}

TEST_F(DeskLooks, ALibraryThatPutsNothingBetweenLightsNoWire) {
    COpBox& from = PutLink(80, 300);
    COpBox& to = PutLink(560, 300);
    COpBox& between = PutLink(300, 100);
    Wire(from, 0, to, 0);
    Show();
    Press(TitleOf(between));
    Drag(At({300, 310}));
    Look();
    EXPECT_EQ(CountAll(kSelectedLine), 0);
}

TEST_F(DeskLooks, LabelsHaveShadesWhereTheLibraryWantsThem) {
    COpBox& box = PutLink(200, 300);
    const auto shades = [&] {
        std::set<QRgb> colors;
        const DeskRect title = TitleRect(box).GrownBy(-3);
        for (float x = title.left; x < title.Right(); ++x) {
            for (float y = title.bottom; y < title.Top(); ++y) colors.insert(Seen({x, y}));
        }
        return colors.size();
    };
    Show();
    Look();
    EXPECT_EQ(shades(), 2U);
    pane.reset();
    Want("smoothtext");
    Show();
    Look();
    EXPECT_GT(shades(), 6U);
}

}  // namespace
}  // namespace tavrin
