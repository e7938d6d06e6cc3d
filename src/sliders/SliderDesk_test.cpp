// SPDX-License-Identifier: Apache-2.0
#include "sliders/SliderDesk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "library/Placeholder.h"
#include "support/TestHost.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::Wire;
using testing::ElementsAre;
using testing::IsEmpty;

// Remembers each call; looks at each frame that it is to place, as a window would.
class RecordingColumn : public SliderView {
  public:
    explicit RecordingColumn(const CSliderDesk& desk) : m_desk(desk) {}
    void PlaceFrames() override {
        calls.emplace_back("place");
        for (const SliderFrame& frame : m_desk.Frames()) EXPECT_NE(frame.button.Get(), nullptr);
    }
    void RefreshFrame(COpButton& button) override {
        calls.push_back("refresh " + button.owner->BoxTitleWid() + "." + button.DisplayName());
    }
    std::vector<std::string> calls;

  private:
    const CSliderDesk& m_desk;
};

class SliderDesk : public test::DocumentTest {
  protected:
    SliderDesk() { sliders.SetView(&column); }
    ~SliderDesk() override { sliders.SetView(nullptr); }

    void Select(COpBox& box, bool selected = true) {
        box.selected = selected ? 1 : 0;
        document.edits.SelectionChanged();
    }
    std::vector<std::string> Shown() const {
        std::vector<std::string> names;
        for (const SliderFrame& frame : sliders.Frames()) {
            const COpButton* button = frame.button.Get();
            names.push_back(button == nullptr ? "gone"
                                              : button->owner->BoxTitleWid() + "." + button->DisplayName());
        }
        return names;
    }
    bool IsDisabled(const COpButton& button) const {
        return sliders.Frames().at(static_cast<size_t>(sliders.PlaceOf(button))).isDisabled;
    }
    std::vector<std::string> TakeCalls() { return std::exchange(column.calls, {}); }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
    CSliderDesk sliders{document};
    RecordingColumn column{sliders};
};

constexpr const char* kMany = R"(
input amount { float { 0.5 0 1 0 "%g" } }
vinput layer { vinstances 2 float { 1 0 1 0 "%g" } rgb { 0 0 0 "%g %g %g" } }
input fixed { macro.fixedtext 7
 float { 0 0 1 0 "%g" } }
output result { float out }
)";

TEST_F(SliderDesk, WithNothingSelectedAndNothingPinnedItIsEmpty) {
    Add(MakeLink("a", 1));
    sliders.Update();
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_THAT(TakeCalls(), ElementsAre("place"));
}

TEST_F(SliderDesk, InputsOfSelectedBoxesStandInTheirOrderButForThoseWithAFixedText) {
    COpBox& box = Add(MakeBox("a", kMany, 1));
    Select(box);
    EXPECT_THAT(Shown(), ElementsAre("a_1.amount", "a_1.layer1", "a_1.layer2"));
    EXPECT_THAT(TakeCalls(), ElementsAre("place"));
    Select(box, false);
    EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(SliderDesk, AConnectedInputHasNoneUntilItIsFreeAgain) {
    COpBox& feeder = Add(MakeLink("f", 1));
    COpBox& box =
        Add(MakeBox("a", "input x { float { 0 0 1 0 \"%g\" } }\ninput y { float { 0 0 1 0 \"%g\" } }", 2));
    Wire(feeder, 0, box, 0);
    Select(box);
    EXPECT_THAT(Shown(), ElementsAre("a_2.y"));
    desk.m_mouseButton = box.inputs.at(0).get();
    desk.DeleteConnections();
    EXPECT_THAT(Shown(), ElementsAre("a_2.x", "a_2.y"));
    desk.Connect(*feeder.outputs.at(0), *box.inputs.at(1));
    EXPECT_THAT(Shown(), ElementsAre("a_2.x"));
}

TEST_F(SliderDesk, WhatTheLibraryDoesNotKnowHasNoneAndTakesNoneAway) {
    COpBox& gone = Add(MakeLink("g", 1));
    gone.placeholder = std::make_shared<const Placeholder>();
    gone.inputs.at(0)->pin = 1;
    COpBox& box =
        Add(MakeBox("a", "input x { float { 0 0 1 0 \"%g\" } }\ninput y { float { 0 0 1 0 \"%g\" } }", 2));
    box.inputs.at(1)->stray = std::make_shared<const std::string>("opbutton.input y y { }");
    Wire(gone, 0, box, 0);
    Select(gone);
    Select(box);
    EXPECT_THAT(Shown(), ElementsAre("a_2.x"));
}

TEST_F(SliderDesk, FramesAreOrderedByTheBoxesNamesWithoutRegardToCaseWhicheverLiesOnTop) {
    COpBox& top = Add(MakeLink("B", 2));
    COpBox& below = Add(MakeLink("a", 1));
    top.selected = below.selected = 1;
    sliders.Update();
    EXPECT_THAT(Shown(), ElementsAre("a_1.in", "B_2.in"));
}

TEST_F(SliderDesk, APinnedOneStaysWhateverIsSelected) {
    COpBox& box = Add(MakeLink("a", 1));
    COpBox& other = Add(MakeLink("b", 2));
    Select(box);
    sliders.SetPin(*box.inputs.at(0), true);
    Select(box, false);
    EXPECT_THAT(Shown(), ElementsAre("a_1.in"));
    Select(other);
    EXPECT_THAT(Shown(), ElementsAre("a_1.in", "b_2.in"));
    sliders.SetPin(*box.inputs.at(0), false);
    EXPECT_THAT(Shown(), ElementsAre("a_1.in", "b_2.in"));
    sliders.Update();
    EXPECT_THAT(Shown(), ElementsAre("b_2.in"));
}

TEST_F(SliderDesk, ABoxThatWaitsUnderTheMouseShowsNothingUntilItIsDropped) {
    auto box = MakeLink("a", 0);
    CTvDoc::BoxList boxes;
    boxes.push_back(std::move(box));
    desk.MergeBoxes(boxes);
    EXPECT_THAT(Shown(), IsEmpty());
    desk.DropPending();
    EXPECT_THAT(Shown(), ElementsAre("a_1.in"));
}

// Pinning hides nothing.
TEST_F(SliderDesk, PinningAllRunsNoUpdateAndUnpinningDoes) {
    COpBox& box = Add(MakeBox("a", kMany, 1));
    Select(box);
    COpBox& late = Add(MakeLink("b", 2));
    late.selected = 1;  // nobody is told
    TakeCalls();
    sliders.PinAll(true);
    EXPECT_THAT(Shown(), ElementsAre("a_1.amount", "a_1.layer1", "a_1.layer2"));
    EXPECT_THAT(TakeCalls(), ElementsAre("refresh a_1.amount", "refresh a_1.layer1", "refresh a_1.layer2"));
    for (const auto& input : box.inputs) EXPECT_EQ(input->pin, input->name == "fixed" ? 0 : 1);
    box.selected = 0;
    sliders.PinAll(false);
    EXPECT_THAT(Shown(), ElementsAre("b_2.in"));
}

TEST_F(SliderDesk, StowingAllIsOneEditAfterWhichFramesArePlacedAnew) {
    COpBox& box = Add(MakeBox("a", kMany, 1));
    Select(box);
    document.SetModified(false);
    view.calls.clear();
    TakeCalls();
    sliders.StowAll(true);
    EXPECT_THAT(view.calls, ElementsAre("Stow All Sliders: tuned a_1.amount a_1.layer1 a_1.layer2"));
    EXPECT_EQ(TakeCalls().back(), "place");
    EXPECT_EQ(box.inputs.at(0)->stow, 1);
    EXPECT_TRUE(document.IsModified());
    document.SetModified(false);
    sliders.StowAll(true);
    EXPECT_FALSE(document.IsModified());
    sliders.StowAll(false);
    EXPECT_EQ(box.inputs.at(0)->stow, 0);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(SliderDesk, AFlagThatIsSetAlreadyIsNoEdit) {
    COpBox& box = Add(MakeLink("a", 1));
    COpButton& button = *box.inputs.at(0);
    Select(box);
    view.calls.clear();
    document.SetModified(false);
    sliders.SetStow(button, false);
    sliders.SetPin(button, false);
    sliders.SetLock(button, false);
    EXPECT_THAT(view.calls, IsEmpty());
    EXPECT_FALSE(document.IsModified());
    sliders.SetLock(button, true);
    EXPECT_THAT(view.calls, ElementsAre("Lock: tuned a_1.in"));
    EXPECT_EQ(button.lock, 1);
}

// As after a document was loaded: the lock counts from when it is next changed.
TEST_F(SliderDesk, AFrameOfAButtonThatCameLockedIsNotDisabled) {
    COpBox& box = Add(MakeLink("a", 1));
    COpButton& button = *box.inputs.at(0);
    button.lock = 1;
    Select(box);
    EXPECT_FALSE(IsDisabled(button));
    sliders.LockAll(true);
    EXPECT_FALSE(IsDisabled(button));
    sliders.LockAll(false);
    sliders.LockAll(true);
    EXPECT_TRUE(IsDisabled(button));
    sliders.Update();
    EXPECT_TRUE(IsDisabled(button));
    sliders.LockAll(false);
    EXPECT_FALSE(IsDisabled(button));
}

TEST_F(SliderDesk, WhileFrozenFramesStayButForThoseOfBoxesThatGo) {
    COpBox& box = Add(MakeLink("a", 1));
    COpBox& other = Add(MakeLink("b", 2));
    Select(box);
    sliders.SetFrozen(true);
    Select(other);
    EXPECT_THAT(Shown(), ElementsAre("a_1.in"));
    Select(box, false);
    EXPECT_THAT(Shown(), ElementsAre("a_1.in"));
    desk.DeleteBox(box);
    EXPECT_THAT(Shown(), IsEmpty());
    sliders.SetFrozen(false);
    EXPECT_THAT(Shown(), ElementsAre("b_2.in"));
}

TEST_F(SliderDesk, FreezingAgainAndThawingWhatIsNotFrozenDoesNothing) {
    sliders.SetFrozen(false);
    sliders.SetFrozen(true);
    sliders.SetFrozen(true);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    sliders.SetFrozen(false);
    EXPECT_THAT(TakeCalls(), ElementsAre("place"));
}

TEST_F(SliderDesk, ASwitchOfTheDeskAndAnOptionRebuildNothing) {
    COpBox& box = Add(MakeLink("a", 1));
    Select(box);
    TakeCalls();
    {
        const EditScope edit(document, "Display Icons");
        document.edits.SettingsChanged();
    }
    {
        const EditScope edit(document, "Option");
        document.edits.OptionsChanged();
    }
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(SliderDesk, OneChangedButtonRefreshesItsOneFrame) {
    COpBox& box = Add(MakeBox("a", kMany, 1));
    Select(box);
    TakeCalls();
    for (const bool isArgument : {true, false}) {
        {
            const EditScope edit(document, "Argument");
            if (isArgument) {
                document.edits.ButtonTouched(*box.inputs.at(1));
            } else {
                document.edits.ButtonTuned(*box.inputs.at(1));
            }
        }
        EXPECT_THAT(TakeCalls(), ElementsAre("refresh a_1.layer1"));
    }
}

TEST_F(SliderDesk, AButtonWithoutAFrameRefreshesNothing) {
    COpBox& box = Add(MakeBox("a", kMany, 1));
    {
        const EditScope edit(document, "Argument");
        document.edits.ButtonTouched(*box.inputs.at(1));
    }
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

// Another cast may have another panel.
TEST_F(SliderDesk, AnotherCastPlacesTheFramesAnewAndRefreshesThoseOfTheBox) {
    COpBox& box = Add(MakeBox("a", kMany, 1));
    Select(box);
    TakeCalls();
    desk.m_mouseButton = box.inputs.at(1).get();
    desk.ChooseCast(1);
    EXPECT_THAT(TakeCalls(),
                ElementsAre("place", "refresh a_1.amount", "refresh a_1.layer1", "refresh a_1.layer2"));
}

TEST_F(SliderDesk, OldBoxesAreLetGoBeforeAnotherDocumentIsRead) {
    COpBox& box = Add(MakeLink("a", 1));
    Select(box);
    TakeCalls();
    document.DeleteContents();
    EXPECT_THAT(Shown(), IsEmpty());
    EXPECT_THAT(TakeCalls(), ElementsAre("place"));
    Add(MakeLink("b", 1)).selected = 1;
    desk.OnInitialUpdate();
    EXPECT_THAT(Shown(), ElementsAre("b_1.in"));
}

TEST_F(SliderDesk, FrozenItLetsGoOfThemAsWell) {
    Select(Add(MakeLink("a", 1)));
    sliders.SetFrozen(true);
    document.DeleteContents();
    EXPECT_THAT(Shown(), IsEmpty());
    Add(MakeLink("b", 1)).selected = 1;
    desk.OnInitialUpdate();
    EXPECT_THAT(Shown(), IsEmpty());
    sliders.SetFrozen(false);
    EXPECT_THAT(Shown(), ElementsAre("b_1.in"));
}

// Whatever is done, the frames are those that the rule names.
TEST_F(SliderDesk, FramesFollowFiveThousandRandomEdits) {
    host.startsProcesses = false;
    std::mt19937 random(12);
    const auto pick = [&](size_t count) {
        return std::uniform_int_distribution<size_t>(0, count - 1)(random);
    };
    for (int i = 0; i < 12; ++i) Add(desk, MakeBox(i % 2 == 0 ? "Even" : "odd", kMany, 0));
    for (int step = 0; step < 5000; ++step) {
        auto place = document.m_boxes.begin();
        std::advance(place, static_cast<std::ptrdiff_t>(pick(document.m_boxes.size())));
        COpBox& box = **place;
        COpButton& input = *box.inputs.at(pick(box.inputs.size()));
        switch (pick(9)) {
            case 0:
                Select(box, box.selected == 0);
                break;
            case 1:
                sliders.SetPin(input, input.pin == 0);
                sliders.Update();
                break;
            case 2: {
                COpBox& feeder = *document.m_boxes.front();
                COpButton& output = *feeder.outputs.at(0);
                if (&feeder != &box && output.CanConnect(input) && !output.WouldLoop(input))
                    desk.Connect(output, input);
                break;
            }
            case 3:
                desk.m_mouseButton = &input;
                desk.DeleteConnections();
                break;
            case 4:
                if (document.m_boxes.size() > 6) desk.DeleteBox(box);
                break;
            case 5:
                if (document.m_boxes.size() < 20) desk.DuplicateBox(box);
                break;
            case 6:
                sliders.StowAll(pick(2) == 0);
                break;
            case 7:
                desk.m_mouseButton = &input;
                desk.m_mouseBox = &box;
                desk.DeleteButton();
                break;
            default:
                desk.m_mouseButton = &input;
                desk.m_mouseBox = &box;
                if (box.inputs.size() < 8) desk.GrowVinput(true);
                break;
        }
        std::map<std::string, std::vector<std::string>> byBox;
        for (const auto& known : document.m_boxes) {
            for (const auto& button : known->inputs) {
                const bool isFree = button->fixedtext.empty() && button->connections.Empty();
                if (isFree && (known->selected != 0 || button->pin != 0))
                    byBox[ToLower(known->BoxTitleWid())].push_back(known->BoxTitleWid() + "." +
                                                                   button->DisplayName());
            }
        }
        std::vector<std::string> names;
        for (const auto& [title, buttons] : byBox) names.insert(names.end(), buttons.begin(), buttons.end());
        ASSERT_EQ(Shown(), names) << "step " << step;
    }
}

}  // namespace
}  // namespace tavrin
