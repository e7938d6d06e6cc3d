// SPDX-License-Identifier: Apache-2.0
// What lights up under the pointer before a click, and how far beside a wire a click still hits it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/DeskGestures.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::Wire;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Hover = tavrin::DeskGestures::Hover;

// A window of 800 by 600 whose lower left corner shows the desk's origin. Boxes are 100 by 48 with a body of
// 32; inputs are 30 wide and outputs 40. A wire runs on level 16 from 100 to 300.
class Hovering : public test::DocumentTest {
  protected:
    explicit Hovering(const std::map<std::string, std::string>& settings = {{"desk.hover", "1"},
                                                                            {"desk.connectslack", "4"}}) {
        for (const auto& [key, value] : settings) host.GetSite().settings.Store(key, value);
        desk.emplace(document, host, windows);
        gestures.emplace(tavrin::DeskGestures::Needs{document, *desk, view, windows, host.GetSite().report, 3,
                                                     [](const std::string&) {}});
        view.SetSize(800, 600);
        from = &PutLink(0, 0);
        to = &PutLink(300, 0);
        Wire(*from, 0, *to, 0);
    }
    COpBox& PutLink(float left, float bottom) {
        auto box = MakeLink("b", ++m_lastWid);
        box->layout = {left, bottom, 16, 100, 32, 30, 40};
        return Add(std::move(box));
    }
    PointerState At(float x, float y, bool left) {
        PointerState pointer;
        pointer.at = view.ToWindow({x, y});
        pointer.left = left;
        return pointer;
    }
    // What lights up there.
    const Hover& Over(float x, float y) {
        windows.calls.clear();
        gestures->Move(At(x, y, false));
        return gestures->Hovered();
    }
    void Press(float x, float y) {
        gestures->Move(At(x, y, false));
        gestures->LeftDown(At(x, y, true));
    }
    COpButton* Line() { return to->inputs.at(0).get(); }

    test::RecordingView windows{document};
    std::optional<test::SeenDesk> desk;
    DeskViewport view{document, {0.1F, 10}};
    std::optional<tavrin::DeskGestures> gestures;
    COpBox* from = nullptr;
    COpBox* to = nullptr;

  private:
    int m_lastWid = 0;
};

struct NoHovering : Hovering {
    NoHovering() : Hovering(std::map<std::string, std::string>()) {}
};

TEST_F(Hovering, BoxesButtonsAndWiresLightUp) {
    EXPECT_EQ(Over(50, 40), (Hover{from, nullptr, nullptr}));
    EXPECT_EQ(Over(5, 5), (Hover{from, from->inputs.at(0).get(), nullptr}));
    EXPECT_EQ(Over(200, 16), (Hover{nullptr, nullptr, Line()}));
    EXPECT_EQ(Over(200, 200), Hover());
}

TEST_F(Hovering, OnlyAChangeIsPaintedAnew) {
    Over(200, 16);
    EXPECT_THAT(windows.calls, ElementsAre("repaint"));
    Over(201, 17);
    EXPECT_THAT(windows.calls, IsEmpty());
    Over(200, 200);
    EXPECT_THAT(windows.calls, ElementsAre("repaint"));
    Over(210, 200);
    EXPECT_THAT(windows.calls, IsEmpty());
}

TEST_F(Hovering, NothingLightsUpWhileAGestureRuns) {
    Press(50, 40);
    EXPECT_EQ(gestures->Hovered(), Hover());
    gestures->Move(At(55, 40, true));
    EXPECT_EQ(gestures->Hovered(), Hover());
    gestures->LeftUp(At(55, 40, false));
    EXPECT_EQ(Over(55, 40).box, from);
}

TEST_F(Hovering, NothingButCandidatesLightsUpWhileAButtonIsPicked) {
    desk->m_selectedButton = from->outputs.at(0).get();
    EXPECT_EQ(Over(5, 5), Hover());
    EXPECT_EQ(Over(200, 16), Hover());
    desk->ClearSelectedButton();
    EXPECT_EQ(Over(200, 17).line, Line());
}

TEST_F(Hovering, NothingLightsUpWhileBoxesWait) {
    desk->m_pendingBoxes.push_back(MakeLink("b", 9));
    EXPECT_EQ(Over(50, 40), Hover());
}

TEST_F(Hovering, TheLightGoesWithThePointer) {
    Over(50, 40);
    windows.calls.clear();
    gestures->PointerLeft();
    EXPECT_EQ(gestures->Hovered(), Hover());
    EXPECT_THAT(windows.calls, ElementsAre("repaint"));
    gestures->LookAgain();
    EXPECT_EQ(gestures->Hovered(), Hover());
}

TEST_F(Hovering, TheLightFollowsAViewThatMovesUnderThePointer) {
    Over(50, 40);
    view.ScrollBy({300, 0});  // the other box comes under it
    gestures->LookAgain();
    EXPECT_EQ(gestures->Hovered().box, to);
}

TEST_F(NoHovering, NothingLightsUpInALibraryThatSaysNothing) {
    EXPECT_EQ(Over(50, 40), Hover());
    EXPECT_EQ(Over(200, 16), Hover());
    gestures->LookAgain();
    EXPECT_EQ(gestures->Hovered(), Hover());
    Over(200, 200);
    EXPECT_THAT(windows.calls, IsEmpty());
}

TEST_F(Hovering, AHandThatIsFourPixelsBesideAWireStillHitsIt) {
    Press(200, 16 + 5.4F);  // half of its width, and four
    EXPECT_THAT(desk->m_selectedConnects, ElementsAre(Line()));
    gestures->LeftUp(At(200, 21.4F, false));
    Press(200, 16 + 5.6F);
    EXPECT_THAT(desk->m_selectedConnects, IsEmpty());
}

TEST_F(Hovering, TheSlackIsPixelsAtEveryZoom) {
    document.zoomFactor = 0.5F;
    Press(200, 16 + 10.8F);
    EXPECT_THAT(desk->m_selectedConnects, ElementsAre(Line()));
    gestures->LeftUp(At(200, 26.8F, false));
    document.zoomFactor = 4;
    Press(150, 16 + 1.5F);
    EXPECT_THAT(desk->m_selectedConnects, IsEmpty());
}

TEST_F(Hovering, OfSeveralWiresInReachTheNearestIsHit) {
    COpBox& above = PutLink(300, 6);  // its wire rises from level 16 to 22
    Wire(*from, 0, above, 0);
    EXPECT_EQ(Over(280, 21).line, above.inputs.at(0).get());
    EXPECT_EQ(Over(280, 17).line, Line());
}

TEST_F(NoHovering, AWireIsHitAsFarFromItsMiddleAsItIsWide) {
    Press(200, 16 + 2.9F);
    EXPECT_THAT(desk->m_selectedConnects, ElementsAre(Line()));
    gestures->LeftUp(At(200, 18.9F, false));
    Press(200, 16 + 3.1F);
    EXPECT_THAT(desk->m_selectedConnects, IsEmpty());
}

}  // namespace
}  // namespace tavrin
