// SPDX-License-Identifier: Apache-2.0
// Where what is new comes to lie: operators that were searched for, and copies.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/OpDesk.h"
#include "document/EditHistory.h"
#include "library/KnownOperator.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeLink;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Boxes are 100 wide and 50 high, with their anchors in the middle.
class Window : public DeskView {
  public:
    void LayoutBox(COpBox& box) override {
        box.layout = {box.xypos[0] - 50, box.xypos[1] - 25, 16, 100, 34, 30, 30};
    }
    std::optional<DeskRect> Sight() const override { return sight; }
    std::optional<DeskPoint> CursorOnDesk() const override { return cursor; }

    std::optional<DeskRect> sight = DeskRect{0, 0, 800, 600};
    std::optional<DeskPoint> cursor;
};

class DeskPlacing : public test::DocumentTest {
  protected:
    DeskPlacing() {
        host.startsProcesses = false;
        host.AddOperator("Link", "input in { float { 0 0 1 0 %g } }\noutput out { float out }\n");
        document.KeepHistory();
    }
    COpDesk& Desk() {
        if (!m_desk) m_desk = std::make_unique<test::SeenDesk>(document, host, window);
        return *m_desk;
    }
    void Want(const char* key) { host.GetSite().settings.Store(key, "1"); }
    COpBox& Stand(float x, float y, int selected = 0) {
        auto made = MakeLink("b", 0);
        made->xypos[0] = x;
        made->xypos[1] = y;
        COpBox& box = Add(Desk(), std::move(made));
        box.selected = selected;
        return box;
    }
    COpBox& Newest() { return *document.m_boxes.front(); }
    static DeskPoint Middle(const COpBox& box) { return BoxRect(box).Middle(); }

    Window window;

  private:
    std::unique_ptr<COpDesk> m_desk;
};

TEST_F(DeskPlacing, AnOperatorComesToTheNetworkAtOnceSelectedWithItsTitleAtThePlace) {
    Stand(100, 100, 1);
    ASSERT_TRUE(Desk().PutOperator("Link", {400, 300}));
    EXPECT_TRUE(Desk().m_pendingBoxes.empty());
    ASSERT_EQ(document.m_boxes.size(), 2U);
    EXPECT_EQ(TitleRect(Newest()).Middle(), (DeskPoint{400, 300}));
    EXPECT_EQ(Newest().selected, 1);
    EXPECT_EQ(test::BoxAt(document, 1).selected, 0);
}

TEST_F(DeskPlacing, ItStaysThereAtTheNextLayoutWhateverTheZoomIs) {
    document.zoomFactor = 3;
    Desk().PutOperator("Link", {400, 300});
    const DeskRect put = BoxRect(Newest());
    window.LayoutBox(Newest());
    EXPECT_EQ(BoxRect(Newest()), put);
}

TEST_F(DeskPlacing, WhatWouldBeBeyondTheEdgeIsMovedByAsLittleAsBringsItIntoSight) {
    Desk().PutOperator("Link", {798, 2});
    EXPECT_EQ(BoxRect(Newest()), (DeskRect{692, 8, 100, 50}));
    window.sight = {};
    Desk().PutOperator("Link", {798, 2});
    EXPECT_EQ(TitleRect(Newest()).Middle(), (DeskPoint{798, 2})) << "nobody looks on";
}

TEST_F(DeskPlacing, WhatIsLargerThanTheWindowHasItsMiddleThere) {
    window.sight = DeskRect{0, 0, 60, 40};
    Desk().PutOperator("Link", {10, 10});
    EXPECT_EQ(Middle(Newest()), (DeskPoint{30, 20}));
}

TEST_F(DeskPlacing, WhatWaitedUnderTheMouseIsThrownAway) {
    Desk().AddOperator("Link");
    ASSERT_EQ(Desk().m_pendingBoxes.size(), 1U);
    Desk().PutOperator("Link", {400, 300});
    EXPECT_TRUE(Desk().m_pendingBoxes.empty());
    EXPECT_EQ(document.m_boxes.size(), 1U);
}

TEST_F(DeskPlacing, ThePickedButtonIsWiredToTheOneThatFitsInOneStep) {
    COpBox& source = Stand(100, 100);
    Desk().m_selectedButton = source.outputs.at(0).get();
    const size_t steps = document.History()->Place();
    const WireFit fit{WireFit::Types::kSame, "in", {}};
    ASSERT_TRUE(Desk().PutOperator("Link", {400, 300}, &fit));
    const COpButton& input = *Newest().inputs.at(0);
    EXPECT_EQ(input.connections.First(), source.outputs.at(0).get());
    EXPECT_EQ(ButtonAnchor(ButtonPlace::Of(input)), (DeskPoint{400, 300}));
    EXPECT_EQ(document.History()->Place(), steps + 1);
    EXPECT_EQ(document.History()->Name(steps), "Add Link");
    Desk().Undo();
    EXPECT_EQ(document.m_boxes.size(), 1U);
    EXPECT_TRUE(source.outputs.at(0)->NamedBy().Empty());
}

TEST_F(DeskPlacing, TheNewButtonIsCastToWhatTheWireNeeds) {
    host.AddOperator("Both", "input in { float { 0 0 1 0 %g } rgb { 0 0 0 %g } }\n");
    COpBox& source = Add(Desk(), test::MakeBox("colour", "output c { rgb out }"));
    Desk().m_selectedButton = source.outputs.at(0).get();
    const WireFit fit{WireFit::Types::kCast, "in", "rgb"};
    Desk().PutOperator("Both", {400, 300}, &fit);
    EXPECT_EQ(Newest().inputs.at(0)->CurrentType(), "rgb");
    EXPECT_EQ(Newest().inputs.at(0)->connections.First(), source.outputs.at(0).get());
}

TEST_F(DeskPlacing, AButtonThatTheDefinitionHasNoMoreGivesWayToAnotherOrToNone) {
    COpBox& source = Stand(100, 100);
    const WireFit fit{WireFit::Types::kSame, "gone", {}};
    Desk().m_selectedButton = source.outputs.at(0).get();
    Desk().PutOperator("Link", {400, 300}, &fit);
    EXPECT_EQ(Newest().inputs.at(0)->connections.First(), source.outputs.at(0).get());
    host.AddOperator("None", "output out { float out }\n");
    Desk().m_selectedButton = source.outputs.at(0).get();
    EXPECT_TRUE(Desk().PutOperator("None", {400, 300}, &fit));
    EXPECT_EQ(Newest().filename, "None");
}

TEST_F(DeskPlacing, AnInputAndAnOutputOfOneNameAreToldApart) {
    host.AddOperator("Through", "input v { float { 0 0 1 0 %g } }\noutput v { float out }\n");
    const WireFit fit{WireFit::Types::kSame, "v", {}};
    COpBox& target = Stand(100, 100);
    Desk().m_selectedButton = target.inputs.at(0).get();
    Desk().PutOperator("Through", {400, 300}, &fit);
    EXPECT_EQ(target.inputs.at(0)->connections.First(), Newest().outputs.at(0).get());
}

TEST_F(DeskPlacing, WithoutAPickedButtonAFitIsNoMoreThanAPlace) {
    const WireFit fit{WireFit::Types::kSame, "in", {}};
    ASSERT_TRUE(Desk().PutOperator("Link", {400, 300}, &fit));
    EXPECT_EQ(TitleRect(Newest()).Middle(), (DeskPoint{400, 300}));
}

TEST_F(DeskPlacing, AnOperatorThatCannotBeHadAlertsAndIsNoStep) {
    EXPECT_FALSE(Desk().PutOperator("Nothing", {400, 300}));
    EXPECT_THAT(Alerts(), ElementsAre(HasSubstr("Nothing: unknown operator name")));
    EXPECT_EQ(document.History()->Place(), 0U);
    EXPECT_TRUE(document.m_boxes.empty());
}

TEST_F(DeskPlacing, ABoxOnAWireGoesBetweenWhereTheLibraryWantsThat) {
    Want("desk.insertboxes");
    COpBox& from = Stand(100, 300);
    COpBox& to = Stand(700, 300);
    test::Wire(from, 0, to, 0);
    Desk().PutOperator("Link", {400, 300});
    EXPECT_EQ(to.inputs.at(0)->connections.First(), Newest().outputs.at(0).get());
    EXPECT_EQ(Newest().inputs.at(0)->connections.First(), from.outputs.at(0).get());
}

// Copies

TEST_F(DeskPlacing, PastedBoxesHaveTheirMiddleAtThePointerAllOfThemInSight) {
    Want("desk.copiesinsight");
    Stand(-3000, 40, 1);
    Stand(-2700, 240, 1);
    Desk().CopySelection();
    Desk().PasteBoxes(DeskPoint{400, 300});
    ASSERT_EQ(Desk().m_pendingBoxes.size(), 2U);
    EXPECT_TRUE(Desk().m_pendingPlaced);
    DeskRect all = BoxRect(*Desk().m_pendingBoxes[0]).UnitedWith(BoxRect(*Desk().m_pendingBoxes[1]));
    EXPECT_EQ(all, (DeskRect{200, 175, 400, 250}));
    Desk().PasteBoxes(DeskPoint{790, 10});
    all = BoxRect(*Desk().m_pendingBoxes[0]).UnitedWith(BoxRect(*Desk().m_pendingBoxes[1]));
    EXPECT_EQ(all, (DeskRect{392, 8, 400, 250}));
}

TEST_F(DeskPlacing, WithThePointerElsewhereTheyWaitInTheMiddleOfTheView) {
    Want("desk.copiesinsight");
    Stand(-3000, 40, 1);
    Desk().CopySelection();
    Desk().PasteBoxes(std::nullopt);
    EXPECT_TRUE(Desk().m_pendingPlaced) << "they are seen";
    EXPECT_EQ(Middle(*Desk().m_pendingBoxes.front()), (DeskPoint{400, 300}));
}

TEST_F(DeskPlacing, ALibraryThatSaysNothingHasTheFirstAnchorAtThePointerAndElseNothingInSight) {
    Stand(-3000, 40, 1);
    Stand(-2700, 240, 1);
    Desk().CopySelection();
    Desk().PasteBoxes(DeskPoint{790, 10});
    const COpBox& first = *Desk().m_pendingBoxes.front();
    EXPECT_EQ((DeskPoint{first.xypos[0], first.xypos[1]}), (DeskPoint{790, 10}));
    Desk().PasteBoxes(std::nullopt);
    EXPECT_FALSE(Desk().m_pendingPlaced);
}

TEST_F(DeskPlacing, MergedBoxesComeIntoSightAsWell) {
    Want("desk.copiesinsight");
    const auto merge = [&] {
        CTvDoc other(host);
        other.m_boxes.push_back(MakeLink("m", 0));
        Desk().MergeBoxes(other.m_boxes);
        return Middle(*Desk().m_pendingBoxes.front());
    };
    EXPECT_EQ(merge(), (DeskPoint{400, 300}));
    window.cursor = DeskPoint{500, 200};
    EXPECT_EQ(merge(), (DeskPoint{500, 200}));
    EXPECT_TRUE(Desk().m_pendingPlaced);
}

TEST_F(DeskPlacing, TwoCopiesOfABoxLieBesideEachOther) {
    Want("desk.copiesinsight");
    COpBox& box = Stand(400, 300);
    Desk().DuplicateBox(box);
    EXPECT_EQ(Middle(Newest()), (DeskPoint{416, 284}));
    Desk().DuplicateBox(box);
    EXPECT_EQ(Middle(Newest()), (DeskPoint{432, 268}));
}

TEST_F(DeskPlacing, ACopyOfABoxAtTheEdgeIsInSight) {
    Want("desk.copiesinsight");
    COpBox& box = Stand(760, 10);
    Desk().DuplicateBox(box);
    EXPECT_EQ(BoxRect(Newest()), (DeskRect{692, 8, 100, 50}));
}

TEST_F(DeskPlacing, FarOutACopyIsFurtherFromItsOriginal) {
    Want("desk.copiesinsight");
    Want("desk.plainanchors");
    document.zoomFactor = 0.25F;
    window.sight = DeskRect{0, 0, 3200, 2400};
    COpBox& box = Stand(400, 300);
    Desk().DuplicateBox(box);
    EXPECT_EQ(Middle(Newest()), (DeskPoint{464, 236}));
}

TEST_F(DeskPlacing, ALibraryThatSaysNothingPutsEachCopyAtTheSamePlace) {
    COpBox& box = Stand(790, 10);
    Desk().DuplicateBox(box);
    Desk().DuplicateBox(box);
    EXPECT_EQ(Middle(Newest()), (DeskPoint{806, -6}));
    EXPECT_EQ(Middle(test::BoxAt(document, 1)), (DeskPoint{806, -6}));
}

}  // namespace
}  // namespace tavrin
