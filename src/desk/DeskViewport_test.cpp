// SPDX-License-Identifier: Apache-2.0
// How the window's view of the desk moves and zooms, and what the scroll bars show of it.
#include "desk/DeskViewport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeLink;

class DeskViewport : public test::DocumentTest {
  protected:
    DeskViewport() {
        view.SetSize(800, 600);
        document.SetModified(false);
    }
    // A box of 100 by 48.
    COpBox& AddBox(float left, float bottom) {
        COpBox& box = Add(MakeLink("b", ++m_lastWid));
        box.layout = {left, bottom, 16, 100, 32, 30, 40};
        return box;
    }
    void SetView(float x, float y, float zoom) {
        document.offset[0] = x;
        document.offset[1] = y;
        document.zoomFactor = zoom;
    }
    DeskPoint Middle() { return view.Visible().Middle(); }

    tavrin::DeskViewport view{document, {0.1F, 10}};

  private:
    int m_lastWid = 0;
};

TEST_F(DeskViewport, DeskUnitsRunUpwardFromTheOffset) {
    SetView(100, 50, 2);
    EXPECT_EQ(view.ToDesk({100, 550}), (DeskPoint{0, 0}));
    EXPECT_EQ(view.ToDesk({120, 530}), (DeskPoint{10, 10}));
    const WindowPoint window = view.ToWindow({10, 10});
    EXPECT_EQ(window.x, 120);
    EXPECT_EQ(window.y, 530);
    EXPECT_EQ(view.Visible(), (DeskRect{-50, -25, 400, 300}));
}

TEST_F(DeskViewport, CentringPutsAPointIntoTheMiddleOfTheWindow) {
    document.zoomFactor = 2;
    view.CentreView({30, -40});
    EXPECT_EQ(document.offset[0], 340);
    EXPECT_EQ(document.offset[1], 380);
    EXPECT_EQ(Middle(), (DeskPoint{30, -40}));
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskViewport, ABoxIsFoundByItsTitleAndNumber) {
    AddBox(0, 0);
    AddBox(1000, 500);
    EXPECT_FALSE(view.CentreOnBox("b_3"));
    EXPECT_FALSE(document.IsModified());
    EXPECT_TRUE(view.CentreOnBox("b_2"));
    EXPECT_EQ(Middle(), (DeskPoint{1050, 524}));
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskViewport, ZoomingIsByOneStepAboutTheMiddle) {
    AddBox(0, 0);
    SetView(100, 50, 2);
    const DeskPoint middle = Middle();
    EXPECT_TRUE(view.ZoomIn());
    EXPECT_FLOAT_EQ(document.zoomFactor, 2.2F);
    EXPECT_FLOAT_EQ(Middle().x, middle.x);
    EXPECT_FLOAT_EQ(Middle().y, middle.y);
    EXPECT_TRUE(document.IsModified());
    EXPECT_TRUE(view.ZoomOut());
    EXPECT_FLOAT_EQ(document.zoomFactor, 2);
    EXPECT_TRUE(view.Wheel(1));
    EXPECT_FLOAT_EQ(document.zoomFactor, 2.2F);
    EXPECT_TRUE(view.Wheel(-1));
    EXPECT_FALSE(view.Wheel(0));
    EXPECT_FLOAT_EQ(document.zoomFactor, 2);
}

TEST_F(DeskViewport, AStepBeyondALimitIsRefusedAndNotShortened) {
    AddBox(0, 0);
    document.zoomFactor = 9.5F;
    EXPECT_FALSE(view.ZoomIn());
    EXPECT_EQ(document.zoomFactor, 9.5F);
    document.zoomFactor = 0.105F;
    EXPECT_FALSE(view.ZoomOut());
    EXPECT_EQ(document.zoomFactor, 0.105F);
    EXPECT_FALSE(document.IsModified());
    tavrin::DeskViewport free(document, {0, 100});
    document.zoomFactor = 9.5F;
    EXPECT_TRUE(free.ZoomIn());
}

TEST_F(DeskViewport, AnEmptyDeskIsNotZoomedFittedOrPannedButReset) {
    SetView(10, 20, 2);
    EXPECT_FALSE(view.ZoomIn());
    EXPECT_FALSE(view.ZoomOut());
    EXPECT_FALSE(view.FitToWindow());
    EXPECT_FALSE(view.Pan(5, 5));
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(document.offset[0], 10);
    const DeskPoint middle = Middle();
    EXPECT_TRUE(view.ZoomReset());
    EXPECT_EQ(document.zoomFactor, 1);
    EXPECT_EQ(Middle(), middle);
    EXPECT_TRUE(document.IsModified());
    document.SetModified(false);
    EXPECT_FALSE(view.ZoomReset());
    EXPECT_FALSE(document.IsModified());
    view.ScrollHorizontally(ScrollAction::kLineDown);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskViewport, FittingShowsTheWholeNetworkButNeverEnlarges) {
    AddBox(0, 0);
    document.zoomFactor = 3;
    EXPECT_TRUE(view.FitToWindow());
    EXPECT_EQ(document.zoomFactor, 1);
    EXPECT_EQ(Middle(), (DeskPoint{50, 24}));
    AddBox(880, 0);  // 1000 wide with its margin, beyond 800 and two steps of a tenth
    document.zoomFactor = 1;
    EXPECT_TRUE(view.FitToWindow());
    EXPECT_FLOAT_EQ(document.zoomFactor, 1 / 1.1F / 1.1F / 1.1F);
    EXPECT_FLOAT_EQ(Middle().x, 490);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskViewport, TheZoomLimitsDoNotBindFitting) {
    AddBox(0, 0);
    AddBox(100000, 0);
    EXPECT_TRUE(view.FitToWindow());
    EXPECT_LT(document.zoomFactor, 0.1F);
    EXPECT_FALSE(view.ZoomOut());
    EXPECT_TRUE(view.ZoomIn());
}

TEST_F(DeskViewport, FittingIntoNoWindowOrOfBoxesThatLieNowhereEnds) {
    COpBox& box = AddBox(0, 0);
    view.SetSize(0, 0);
    EXPECT_FALSE(view.FitToWindow());
    view.SetSize(800, 600);
    box.layout.width = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(view.FitToWindow());
    EXPECT_GT(document.zoomFactor, 0);
}

TEST_F(DeskViewport, AZoomThatNothingCanBeDrawnWithCountsAsOne) {
    for (const float zoom : {0.0F, -2.0F, 1e-30F, std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity()}) {
        document.zoomFactor = zoom;
        EXPECT_EQ(view.Zoom(), 1) << zoom;
        EXPECT_EQ(view.Visible().width, 800) << zoom;
    }
    EXPECT_TRUE(view.ZoomReset());
    EXPECT_EQ(document.zoomFactor, 1);
}

TEST_F(DeskViewport, PanningFollowsThePointer) {
    AddBox(0, 0);
    const DeskPoint grabbed = view.ToDesk({300, 200});
    EXPECT_TRUE(view.Pan(30, 20));
    EXPECT_EQ(document.offset[0], 30);
    EXPECT_EQ(document.offset[1], -20);
    EXPECT_EQ(view.ToDesk({330, 220}), grabbed);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskViewport, ScrollBarsSpanTheWindowAndTheNetwork) {
    AddBox(-300, -90);
    AddBox(1000, 700);
    SetView(0, 0, 1);
    const ScrollRange across = view.Ranges().across;
    EXPECT_EQ(across.minimum, -310);
    EXPECT_EQ(across.maximum, 1110);
    EXPECT_EQ(across.page, 800);
    EXPECT_EQ(across.position, 0);
    EXPECT_TRUE(across.canScroll);
    const ScrollRange down = view.Ranges().down;  // flipped
    EXPECT_EQ(down.minimum, -758);
    EXPECT_EQ(down.maximum, 100);
    EXPECT_EQ(down.page, 600);
    EXPECT_EQ(down.position, -600);
    EXPECT_TRUE(down.canScroll);
}

TEST_F(DeskViewport, ScrollBarsCountWholeUnitsTowardsNought) {
    SetView(1, -1, 2);  // the window shows -0.5 to 399.5 and 0.5 to 300.5
    const ScrollRange across = view.Ranges().across;
    EXPECT_EQ(across.minimum, 0);
    EXPECT_EQ(across.maximum, 399);
    const ScrollRange down = view.Ranges().down;
    EXPECT_EQ(down.minimum, -300);
    EXPECT_EQ(down.maximum, 0);
}

TEST_F(DeskViewport, WhatIsWhollyInViewLeavesNothingToScroll) {
    SetView(0.3F, 0.7F, 1.7F);
    EXPECT_FALSE(view.Ranges().across.canScroll);
    EXPECT_FALSE(view.Ranges().down.canScroll);
    SetView(0, 0, 1);
    AddBox(100, 100);
    EXPECT_FALSE(view.Ranges().across.canScroll);
    AddBox(691, 100);  // its margin ends a unit outside
    EXPECT_TRUE(view.Ranges().across.canScroll);
    EXPECT_FALSE(view.Ranges().down.canScroll);
}

TEST_F(DeskViewport, AScrollBarOfHugeOrBrokenPlacesHoldsWholeNumbers) {
    AddBox(1e30F, std::numeric_limits<float>::quiet_NaN());
    const ScrollRange across = view.Ranges().across;
    EXPECT_EQ(across.maximum, 1000000000);
    view.ScrollHorizontally(ScrollAction::kBottom);
    view.ScrollVertically(ScrollAction::kPageDown);
    EXPECT_EQ(document.offset[0], -1e9F);
}

TEST_F(DeskViewport, ScrollingMovesByLinesPagesAndToTheEnds) {
    AddBox(-1990, -990);
    AddBox(1890, 942);
    SetView(0, 600, 2);  // 400 by 300 units; the bars run from -2000 to 2000 and from -1000 to 1000
    const auto across = [&](ScrollAction action, int thumb = 0) {
        document.offset[0] = 0;
        view.ScrollHorizontally(action, thumb);
        return -document.offset[0] / 2;
    };
    document.SetModified(false);
    EXPECT_EQ(across(ScrollAction::kLineUp), -1);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(across(ScrollAction::kLineDown), 1);
    EXPECT_EQ(across(ScrollAction::kPageUp), -400);
    EXPECT_EQ(across(ScrollAction::kPageDown), 400);
    EXPECT_EQ(across(ScrollAction::kThumb, 77), 77);
    EXPECT_EQ(across(ScrollAction::kThumb, -5000), -1995);
    EXPECT_EQ(across(ScrollAction::kTop), -1995);
    EXPECT_EQ(across(ScrollAction::kBottom), 1995);
    const auto down = [&](ScrollAction action, int thumb = 0) {
        document.offset[1] = 600;
        document.SetModified(false);
        view.ScrollVertically(action, thumb);
        EXPECT_TRUE(document.IsModified());
        return -view.Visible().Top();
    };
    EXPECT_EQ(down(ScrollAction::kLineUp), -1);
    EXPECT_EQ(down(ScrollAction::kLineDown), 1);
    EXPECT_EQ(down(ScrollAction::kPageUp), -300);
    EXPECT_EQ(down(ScrollAction::kPageDown), 300);
    EXPECT_EQ(down(ScrollAction::kThumb, 5), 5);
    EXPECT_EQ(down(ScrollAction::kTop), -995);
    EXPECT_EQ(down(ScrollAction::kBottom), 995);
}

}  // namespace
}  // namespace tavrin
