// SPDX-License-Identifier: Apache-2.0
// Which buttons go between the ends of a wire, which wire lies under a box, and what is joined past boxes.
#include "desk/DeskFlow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "desk/OpDesk.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::Wire;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class Flow : public test::DocumentTest {
  protected:
    COpBox& Put(std::unique_ptr<COpBox> box, float left = 0, float bottom = 0) {
        box->wid = ++m_lastWid;
        box->layout = {left, bottom, 16, 100, 32, 30, 40};
        return Add(std::move(box));
    }
    COpBox& Box(const std::string& definition) { return Put(MakeBox("b", definition)); }
    COpBox& Link(float left = 0, float bottom = 0) { return Put(MakeLink("b", 0), left, bottom); }

  private:
    int m_lastWid = 0;
};

// Fitting.

class Fitting : public Flow {
  protected:
    Fitting()
        : source(Box("output f { float out } output c { rgb out }")),
          target(Box("input f { float { 0 0 1 0 %g } } input c { rgb { 0 0 0 %g } }")) {}
    // The names of the buttons by which the box goes between; empty if it does not fit.
    std::string Fit(const COpBox& box, size_t output = 0, size_t input = 0) {
        const auto fit = FitBetween(*source.outputs.at(output), *target.inputs.at(input), box);
        return fit ? fit->input->name + " " + fit->output->name : "";
    }

    COpBox& source;
    COpBox& target;
};

TEST_F(Fitting, TheFirstButtonsOfTheTypesAreTaken) {
    const COpBox& box =
        Box("input a { rgb { 0 0 0 %g } } input b { float { 0 0 1 0 %g } } input c { float { 0 0 1 0 %g } }\n"
            "output x { rgb out } output y { float out } output z { float out }");
    EXPECT_EQ(Fit(box), "b y");
    EXPECT_EQ(Fit(box, 1, 1), "a x");
    EXPECT_EQ(Fit(box, 1, 0), "a y");
}

TEST_F(Fitting, ButtonsThatAreWiredAreNotFree) {
    COpBox& box =
        Box("input b { float { 0 0 1 0 %g } } input c { float { 0 0 1 0 %g } }\n"
            "output y { float out } output z { float out }");
    COpBox& before = Link();
    COpBox& behind = Link();
    Wire(before, 0, box, 0);
    EXPECT_EQ(Fit(box), "c y");
    Wire(box, 0, behind, 0);
    EXPECT_EQ(Fit(box), "c z");
    Wire(before, 0, box, 1);
    EXPECT_EQ(Fit(box), "");
}

TEST_F(Fitting, AnOutputWhoseWireIsOneSidedIsNotFree) {
    COpBox& box = Link();
    COpBox& behind = Link();
    Wire(box, 0, behind, 0);
    box.outputs[0]->Connect(*behind.inputs[0]);  // again: it forgets it
    ASSERT_TRUE(box.outputs[0]->connections.Empty());
    EXPECT_EQ(Fit(box), "");
}

TEST_F(Fitting, ACastForTheTypeServesWhereNoButtonHasTheType) {
    EXPECT_EQ(Fit(Box("input a { rgb { 0 0 0 %g } float { 0 0 1 0 %g } }\noutput x { rgb out float out }")),
              "a x");
    EXPECT_EQ(Fit(Box("input a { rgb { 0 0 0 %g } float { 0 0 1 0 %g } } input b { float { 0 0 1 0 %g } }\n"
                      "output x { rgb out float out } output y { float out }")),
              "b y");
}

TEST_F(Fitting, ABoxWithNothingOfTheTypeDoesNotFit) {
    EXPECT_EQ(Fit(Box("input a { string { \"x\" } } output x { float out }")), "");
    EXPECT_EQ(Fit(Box("input a { float { 0 0 1 0 %g } } output x { rgb out }")), "");
    EXPECT_EQ(Fit(Box("input a { float { 0 0 1 0 %g } }")), "");
    EXPECT_EQ(Fit(Box("output x { float out }")), "");
}

TEST_F(Fitting, WhereTheWireChangesTheTypeTheBoxMayHandOnWhatItGets) {
    EXPECT_EQ(Fit(Box("input a { float { 0 0 1 0 %g } } output x { float out }"), 0, 1), "a x");
}

TEST_F(Fitting, ButtonsThatMayNotBeWiredAreNone) {
    EXPECT_EQ(Fit(Box("input a { wwms.disableconnectflag 1 float { 0 0 1 0 %g } } output x { float out }")),
              "");
}

TEST_F(Fitting, ABoxThatWouldCloseACircleDoesNotFit) {
    COpBox& box =
        Box("input a { float { 0 0 1 0 %g } } input b { float { 0 0 1 0 %g } }\n"
            "output x { float out } output y { float out }");
    COpBox& before = Box("input a { float { 0 0 1 0 %g } } output f { float out }");
    EXPECT_TRUE(FitBetween(*before.outputs[0], *target.inputs[0], box));
    Wire(box, 0, before, 0);
    EXPECT_FALSE(FitBetween(*before.outputs[0], *target.inputs[0], box)) << "it feeds the source";
    before.inputs[0]->Disconnect();
    COpBox& behind = Box("input a { float { 0 0 1 0 %g } } output f { float out }");
    Wire(behind, 0, box, 0);
    EXPECT_FALSE(FitBetween(*source.outputs[0], *behind.inputs[0], box)) << "the target feeds it";
}

TEST_F(Fitting, APickedButtonIsWiredToTheFirstFreeOneOfItsType) {
    COpBox& box =
        Box("input a { rgb { 0 0 0 %g } } input b { rgb { 0 0 0 %g } float { 0 0 1 0 %g } }\n"
            "input c { float { 0 0 1 0 %g } } output x { rgb out } output y { float out }");
    const auto nameOf = [](const COpButton* button) { return button == nullptr ? "" : button->name; };
    EXPECT_EQ(nameOf(FitFor(*source.outputs[0], box)), "c");
    EXPECT_EQ(nameOf(FitFor(*source.outputs[1], box)), "a");
    EXPECT_EQ(nameOf(FitFor(*target.inputs[0], box)), "y");
    Wire(Link(), 0, box, 2);
    EXPECT_EQ(nameOf(FitFor(*source.outputs[0], box)), "b") << "it has a cast for it";
    Wire(Link(), 0, box, 1);
    EXPECT_EQ(nameOf(FitFor(*source.outputs[0], box)), "");
    EXPECT_EQ(nameOf(FitFor(*box.outputs[1], box)), "") << "a box does not feed itself";
}

// Looking for the wire.

TEST_F(Flow, TheWireUnderTheMiddleOfABoxIsTheOneItFitsInto) {
    COpBox& from = Link(0, 100);
    COpBox& low = Link(500, 90);
    COpBox& high = Link(500, 110);
    Wire(from, 0, low, 0);
    Wire(from, 0, high, 0);
    COpBox& box = Link(250, 78);
    ASSERT_TRUE(FindInsertion(document, box));
    EXPECT_EQ(FindInsertion(document, box)->target, low.inputs[0].get());
    box.layout.bottom = 105;
    EXPECT_EQ(FindInsertion(document, box)->target, high.inputs[0].get());
    box.layout.bottom = 300;
    EXPECT_FALSE(FindInsertion(document, box));
}

TEST_F(Flow, AWireOfAnotherTypeIsPassedOverForOneThatFits) {
    COpBox& colours = Put(MakeBox("c", "output c { rgb out }"), 0, 100);
    COpBox& takesColour = Put(MakeBox("c", "input c { rgb { 0 0 0 %g } }"), 500, 100);
    COpBox& from = Link(0, 110);
    COpBox& to = Link(500, 110);
    Wire(colours, 0, takesColour, 0);
    Wire(from, 0, to, 0);
    EXPECT_EQ(FindInsertion(document, Link(250, 92))->target, to.inputs[0].get());
}

TEST_F(Flow, TracedLinesAreMetWhereTheyRun) {
    COpBox& from = Link(0, 0);
    COpBox& to = Link(500, 300);
    Wire(from, 0, to, 0);
    COpBox& onTheStraight = Link(250, 140);
    COpBox& onTheCorner = Link(440, 5);
    EXPECT_TRUE(FindInsertion(document, onTheStraight));
    EXPECT_FALSE(FindInsertion(document, onTheCorner));
    document.linetype = 1;
    EXPECT_FALSE(FindInsertion(document, onTheStraight));
    EXPECT_TRUE(FindInsertion(document, onTheCorner));
}

TEST_F(Flow, ABoxIsNotPutIntoItsOwnWires) {
    COpBox& from = Link(0, 100);
    COpBox& box = Put(MakeBox("m",
                              "input a { float { 0 0 1 0 %g } } input b { float { 0 0 1 0 %g } }\n"
                              "output x { float out } output y { float out }"),
                      250, 100);
    COpBox& to = Link(500, 100);
    Wire(from, 0, box, 0);
    Wire(box, 0, to, 0);
    EXPECT_FALSE(FindInsertion(document, box));
}

// Past boxes.

class Past : public Flow {
  protected:
    using Named = std::vector<std::pair<std::string, std::string>>;
    // Each wire that is joined, as "number name" of both ends.
    static Named Joined(const std::vector<COpBox*>& boxes) {
        const auto name = [](const COpButton& button) {
            return std::to_string(button.owner->wid) + " " + button.name;
        };
        Named named;
        for (const FlowWire& wire : WiresPast(boxes))
            named.emplace_back(name(*wire.source), name(*wire.target));
        return named;
    }
};

TEST_F(Past, ABoxIsPassedFromItsFeederToAllThatItFed) {
    COpBox& from = Link();
    COpBox& box = Link();
    COpBox& one = Link();
    COpBox& other = Link();
    Wire(from, 0, box, 0);
    Wire(box, 0, one, 0);
    Wire(box, 0, other, 0);
    EXPECT_THAT(Joined({&box}), ElementsAre(Pair("1 out", "3 in"), Pair("1 out", "4 in")));
}

TEST_F(Past, ABoxAtAnEndLeavesNothingToJoin) {
    COpBox& from = Link();
    COpBox& to = Link();
    Wire(from, 0, to, 0);
    EXPECT_THAT(Joined({&from}), IsEmpty());
    EXPECT_THAT(Joined({&to}), IsEmpty());
    EXPECT_THAT(Joined({&from, &to}), IsEmpty());
    EXPECT_THAT(Joined({}), IsEmpty());
}

TEST_F(Past, AChainIsPassedAsAWhole) {
    std::vector<COpBox*> chain;
    for (int i = 0; i < 3000; ++i) {
        chain.push_back(&Link());
        if (i > 0) Wire(*chain[chain.size() - 2], 0, *chain.back(), 0);
    }
    const std::vector<COpBox*> inner(chain.begin() + 1, chain.end() - 1);
    EXPECT_THAT(Joined(inner), ElementsAre(Pair("1 out", "3000 in")));
    EXPECT_THAT(Joined({inner.rbegin(), inner.rend()}), ElementsAre(Pair("1 out", "3000 in")));
}

TEST_F(Past, InputsAndOutputsOfATypeMatchInTheirOrder) {
    COpBox& from =
        Box("output f { float out } output c { rgb out } output g { float out } output d { rgb out }");
    COpBox& box =
        Box("input a { rgb { 0 0 0 %g } } input b { float { 0 0 1 0 %g } } input c { rgb { 0 0 0 %g } }\n"
            "input d { float { 0 0 1 0 %g } }\n"
            "output x { float out } output y { float out } output z { rgb out } output w { rgb out }");
    COpBox& to =
        Box("input x { float { 0 0 1 0 %g } } input y { float { 0 0 1 0 %g } } input z { rgb { 0 0 0 %g } }\n"
            "input w { rgb { 0 0 0 %g } }");
    Wire(from, 1, box, 0);
    Wire(from, 0, box, 1);
    Wire(from, 3, box, 2);
    Wire(from, 2, box, 3);
    for (size_t i = 0; i < 4; ++i) Wire(box, i, to, i);
    EXPECT_THAT(Joined({&box}),
                ElementsAre(Pair("1 f", "3 x"), Pair("1 g", "3 y"), Pair("1 c", "3 z"), Pair("1 d", "3 w")));
    box.inputs[3]->Disconnect();
    EXPECT_EQ(Joined({&box})[1], std::pair(std::string("1 f"), std::string("3 y")))
        << "the first that is wired serves where the counterpart is not";
    box.inputs[1]->Disconnect();
    EXPECT_THAT(Joined({&box}), ElementsAre(Pair("1 c", "3 z"), Pair("1 d", "3 w")));
}

TEST_F(Past, NothingIsJoinedFromOneTypeToAnother) {
    COpBox& from = Box("output f { float out }");
    COpBox& box = Box("input a { float { 0 0 1 0 %g } } output x { rgb out }");
    COpBox& to = Box("input c { rgb { 0 0 0 %g } }");
    Wire(from, 0, box, 0);
    Wire(box, 0, to, 0);
    EXPECT_THAT(Joined({&box}), IsEmpty());
}

TEST_F(Past, AOneSidedWireCountsAsTheDeskShowsIt) {
    COpBox& from = Link();
    COpBox& box = Link();
    COpBox& to = Link();
    Wire(from, 0, box, 0);
    Wire(box, 0, to, 0);
    box.outputs[0]->Connect(*to.inputs[0]);
    EXPECT_THAT(Joined({&box}), ElementsAre(Pair("1 out", "3 in")));
}

TEST_F(Past, ACircleThatAFileHasBroughtHandsOnNothing) {
    COpBox& one = Box("input a { float { 0 0 1 0 %g } } output x { float out }");
    COpBox& other = Box("input a { float { 0 0 1 0 %g } } output x { float out }");
    COpBox& to = Link();
    Wire(one, 0, other, 0);
    Wire(other, 0, one, 0);
    Wire(other, 0, to, 0);
    EXPECT_THAT(Joined({&one, &other}), IsEmpty());
}

// Whatever the network is: what is joined was reached before, and stands afterwards.
TEST_F(Past, OnlyWhatWasReachedIsJoined) {
    std::mt19937 random(5);
    std::vector<COpBox*> boxes;
    for (size_t i = 0; i < 300; ++i) {
        boxes.push_back(
            &Box("input a { float { 0 0 1 0 %g } } input b { rgb { 0 0 0 %g } }\n"
                 "output x { float out } output y { rgb out }"));
        for (size_t input = 0; i > 0 && input < 2; ++input) {
            if (random() % 4 != 0) Wire(*boxes[random() % i], random() % 2, *boxes[i], input);
        }
    }
    std::vector<COpBox*> going;
    for (COpBox* box : boxes) {
        box->selected = random() % 3 == 0 ? 1 : 0;
        if (box->selected != 0) going.push_back(box);
    }
    const auto wires = WiresPast(going);
    EXPECT_GT(wires.size(), 20U);
    for (const FlowWire& wire : wires) {
        EXPECT_EQ(wire.source->owner->selected + wire.target->owner->selected, 0);
        EXPECT_EQ(wire.target->connections.First()->owner->selected, 1) << "it loses what fed it";
        EXPECT_TRUE(COpButton::ReachesForward(*wire.target->owner, *wire.source->owner));
    }
}

}  // namespace
}  // namespace tavrin
