// SPDX-License-Identifier: Apache-2.0
// Which buttons may be wired, how wires are made and cut, and what happens when an end goes away.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "library/OpBox.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A box with two inputs and two outputs.
struct Box : COpBox {
    Box() {
        for (int i = 0; i < 2; ++i) {
            inputs.push_back(std::make_unique<COpButton>(this, ButtonKind::kInput));
            outputs.push_back(std::make_unique<COpButton>(this, ButtonKind::kOutput));
        }
    }
    COpButton& In(size_t index = 0) { return *inputs[index]; }
    COpButton& Out(size_t index = 0) { return *outputs[index]; }
};

std::vector<const COpButton*> PeersOf(const COpButton& button) {
    return {button.connections.begin(), button.connections.end()};
}

// Rules

TEST(ButtonConnections, AnOutputConnectsWithInputsAndVinputsAndNothingElse) {
    Box a;
    Box b;
    COpButton vinput(&b, ButtonKind::kVinput);
    EXPECT_TRUE(a.Out().CanConnect(b.In()));
    EXPECT_TRUE(b.In().CanConnect(a.Out()));
    EXPECT_TRUE(a.Out().CanConnect(vinput));
    EXPECT_TRUE(vinput.CanConnect(a.Out()));
    EXPECT_FALSE(a.Out().CanConnect(b.Out()));
    EXPECT_FALSE(a.In().CanConnect(b.In()));
    EXPECT_FALSE(a.In().CanConnect(vinput));
    EXPECT_FALSE(a.Out().CanConnect(a.Out()));
}

TEST(ButtonConnections, AButtonThatIsDisabledConnectsInNeitherRole) {
    Box a;
    Box b;
    a.Out().disableconnectflag = 1;
    EXPECT_FALSE(a.Out().CanConnect(b.In()));
    EXPECT_FALSE(b.In().CanConnect(a.Out()));
    b.In(1).disableconnectflag = 1;
    EXPECT_FALSE(b.In(1).CanConnect(a.Out(1)));
    EXPECT_TRUE(b.In().CanConnect(a.Out(1)));
}

TEST(ButtonConnections, TheButtonsOfOneBoxMayConnectButWouldLoop) {
    Box a;
    EXPECT_TRUE(a.Out().CanConnect(a.In()));
    EXPECT_TRUE(a.Out().WouldLoop(a.In()));
    EXPECT_TRUE(a.In().WouldLoop(a.Out()));
}

TEST(ButtonConnections, WiringBackAlongAChainWouldLoop) {
    Box a;
    Box b;
    Box c;
    a.Out().Connect(b.In());
    b.Out(1).Connect(c.In());
    EXPECT_TRUE(c.Out().WouldLoop(a.In()));
    EXPECT_TRUE(a.In(1).WouldLoop(c.Out(1))) << "any pair of the boxes' buttons";
    EXPECT_TRUE(b.Out().WouldLoop(a.In(1)));
    EXPECT_FALSE(b.Out().WouldLoop(c.In(1))) << "a second wire downstream is no cycle";
    EXPECT_FALSE(a.Out().WouldLoop(c.In(1)));
    EXPECT_FALSE(c.In(1).WouldLoop(a.Out()));
    b.In().Disconnect();
    EXPECT_FALSE(c.Out().WouldLoop(a.In())) << "the chain is cut";
}

TEST(ButtonConnections, BoxesBesideEachOtherDoNotLoop) {
    Box source;
    Box left;
    Box right;
    source.Out().Connect(left.In());
    source.Out().Connect(right.In());
    EXPECT_FALSE(left.Out().WouldLoop(right.In(1)));
    EXPECT_FALSE(COpButton::ReachesForward(left, right));
    EXPECT_TRUE(COpButton::ReachesForward(right, source));
    EXPECT_FALSE(COpButton::ReachesForward(source, right)) << "the walk goes downstream";
}

TEST(ButtonConnections, TheWalkEndsOnANetworkThatHoldsACycle) {
    Box a;
    Box b;
    Box apart;
    a.Out().Connect(b.In());
    b.Out().Connect(a.In());
    EXPECT_FALSE(apart.Out().WouldLoop(a.In(1)));
    EXPECT_TRUE(a.Out().WouldLoop(b.In(1)));
    EXPECT_FALSE(COpButton::ReachesForward(apart, b));
}

TEST(ButtonConnections, ManyPathsBetweenTwoBoxesAreWalkedOnce) {
    // Two wires from each box to the next make 2^200 paths.
    std::vector<std::unique_ptr<Box>> boxes;
    for (size_t i = 0; i < 200; ++i) {
        boxes.push_back(std::make_unique<Box>());
        for (size_t wire = 0; i > 0 && wire < 2; ++wire) boxes[i - 1]->Out(wire).Connect(boxes[i]->In(wire));
    }
    Box apart;
    EXPECT_FALSE(COpButton::ReachesForward(apart, *boxes.front()));
    EXPECT_TRUE(COpButton::ReachesForward(*boxes.back(), *boxes.front()));
}

TEST(ButtonConnections, AChainOfAHundredThousandBoxesIsWalkedToItsEnd) {
    constexpr size_t kCount = 100000;
    std::vector<std::unique_ptr<COpBox>> boxes;
    for (size_t i = 0; i < kCount; ++i) {
        boxes.push_back(std::make_unique<COpBox>());
        COpBox& box = *boxes.back();
        box.inputs.push_back(std::make_unique<COpButton>(&box, ButtonKind::kInput));
        box.outputs.push_back(std::make_unique<COpButton>(&box, ButtonKind::kOutput));
        if (i > 0) boxes[i - 1]->outputs[0]->Connect(*box.inputs[0]);
    }
    EXPECT_TRUE(boxes.back()->outputs[0]->WouldLoop(*boxes.front()->inputs[0]));
    EXPECT_FALSE(COpButton::ReachesForward(*boxes.front(), *boxes[1]));
}

// Wiring

TEST(ButtonConnections, AWireIsKnownAtBothEndsFromWhicheverItWasMade) {
    Box a;
    Box b;
    a.Out().Connect(b.In());
    b.In(1).Connect(a.Out(1));
    EXPECT_THAT(PeersOf(a.Out()), ElementsAre(&b.In()));
    EXPECT_THAT(PeersOf(b.In()), ElementsAre(&a.Out()));
    EXPECT_THAT(PeersOf(a.Out(1)), ElementsAre(&b.In(1)));
    EXPECT_THAT(PeersOf(b.In(1)), ElementsAre(&a.Out(1)));
}

TEST(ButtonConnections, AnInputGivesUpItsFormerSource) {
    Box a;
    Box b;
    Box target;
    a.Out().Connect(target.In());
    b.Out().Connect(target.In());
    EXPECT_THAT(PeersOf(target.In()), ElementsAre(&b.Out()));
    EXPECT_TRUE(a.Out().connections.Empty());
    target.In().Connect(a.Out());
    EXPECT_THAT(PeersOf(target.In()), ElementsAre(&a.Out()));
    EXPECT_TRUE(b.Out().connections.Empty());
    EXPECT_THAT(PeersOf(a.Out()), ElementsAre(&target.In()));
}

TEST(ButtonConnections, AnOutputFeedsManyInputsInTheOrderOfTheirMaking) {
    Box source;
    std::vector<std::unique_ptr<Box>> targets;
    for (int i = 0; i < 4; ++i) targets.push_back(std::make_unique<Box>());
    for (const size_t i : {2U, 0U, 3U, 1U}) source.Out().Connect(targets[i]->In());
    EXPECT_THAT(PeersOf(source.Out()),
                ElementsAre(&targets[0]->In(), &targets[1]->In(), &targets[2]->In(), &targets[3]->In()));
    EXPECT_EQ(source.Out().connections.First(), &targets[0]->In());
    EXPECT_EQ(source.Out().connections.Last(), &targets[3]->In());
    targets[1]->In().Disconnect();
    EXPECT_THAT(PeersOf(source.Out()), ElementsAre(&targets[0]->In(), &targets[2]->In(), &targets[3]->In()));
    EXPECT_FALSE(source.Out().connections.Contains(targets[1]->In()));
    EXPECT_TRUE(source.Out().connections.Contains(targets[2]->In()));
}

TEST(ButtonConnections, AnOutputThatLostItsWiresMayGetNewOnes) {
    Box source;
    Box target;
    Box other;
    for (int round = 0; round < 3; ++round) {
        source.Out().Connect(other.In());
        source.Out().Connect(target.In(1));
        source.Out().Connect(target.In());
        EXPECT_THAT(PeersOf(source.Out()), ElementsAre(&target.In(), &target.In(1), &other.In()));
        target.In().Disconnect();
        other.In().Disconnect();
        EXPECT_THAT(PeersOf(source.Out()), ElementsAre(&target.In(1)));
        EXPECT_FALSE(source.Out().connections.Contains(target.In()));
        EXPECT_TRUE(source.Out().connections.Contains(target.In(1)));
        source.Out().Connect(target.In());
        EXPECT_THAT(PeersOf(source.Out()), ElementsAre(&target.In(), &target.In(1)));
        source.Out().Disconnect();
        EXPECT_TRUE(source.Out().connections.Empty());
        EXPECT_EQ(source.Out().connections.First(), nullptr);
        EXPECT_EQ(source.Out().connections.Size(), 0U);
    }
}

TEST(ButtonConnections, WiringAPairAgainFromTheInputRemakesIt) {
    Box a;
    Box b;
    a.Out().Connect(b.In());
    b.In().Connect(a.Out());
    EXPECT_THAT(PeersOf(a.Out()), ElementsAre(&b.In()));
    EXPECT_THAT(PeersOf(b.In()), ElementsAre(&a.Out()));
}

TEST(ButtonConnections, DisconnectingAnOutputCutsAllItsWires) {
    Box a;
    Box b;
    a.Out().Connect(b.In());
    a.Out().Connect(b.In(1));
    a.Out(1).Disconnect();
    EXPECT_EQ(a.Out().connections.Size(), 2U);
    a.Out().Disconnect();
    EXPECT_TRUE(a.Out().connections.Empty());
    EXPECT_TRUE(b.In().connections.Empty());
    EXPECT_TRUE(b.In(1).connections.Empty());
}

// The one-sided state

struct OneSided {
    OneSided() : source(std::make_unique<Box>()), target(std::make_unique<Box>()) {
        source->Out().Connect(target->In());
        source->Out().Connect(target->In());
    }
    std::unique_ptr<Box> source;
    std::unique_ptr<Box> target;
};

TEST(OneSidedConnection, WiringAPairAgainFromTheOutputLeavesOnlyTheInputsSide) {
    const OneSided pair;
    EXPECT_THAT(PeersOf(pair.source->Out()), IsEmpty());
    EXPECT_THAT(PeersOf(pair.target->In()), ElementsAre(&pair.source->Out()));
    EXPECT_FALSE(COpButton::ReachesForward(*pair.target, *pair.source)) << "the walk does not see it";
    EXPECT_FALSE(pair.target->Out().WouldLoop(pair.source->In()));
}

TEST(OneSidedConnection, WiringOnceMoreFromTheOutputChangesNothing) {
    const OneSided pair;
    pair.source->Out().Connect(pair.target->In());
    EXPECT_THAT(PeersOf(pair.source->Out()), IsEmpty());
    EXPECT_THAT(PeersOf(pair.target->In()), ElementsAre(&pair.source->Out()));
}

TEST(OneSidedConnection, WiringFromTheInputMakesItWhole) {
    const OneSided pair;
    pair.target->In().Connect(pair.source->Out());
    EXPECT_THAT(PeersOf(pair.source->Out()), ElementsAre(&pair.target->In()));
    EXPECT_THAT(PeersOf(pair.target->In()), ElementsAre(&pair.source->Out()));
}

TEST(OneSidedConnection, TheInputCanCutItAndTheOutputCannot) {
    const OneSided pair;
    pair.source->Out().Disconnect();
    EXPECT_EQ(pair.target->In().connections.Size(), 1U);
    pair.target->In().Disconnect();
    EXPECT_TRUE(pair.target->In().connections.Empty());
}

TEST(OneSidedConnection, OtherWiresOfTheOutputStay) {
    const OneSided pair;
    Box third;
    pair.source->Out().Connect(third.In());
    pair.source->Out().Connect(pair.target->In());
    EXPECT_THAT(PeersOf(pair.source->Out()), ElementsAre(&third.In()));
}

TEST(OneSidedConnection, DestroyingTheOutputCutsIt) {
    OneSided pair;
    pair.source.reset();
    EXPECT_TRUE(pair.target->In().connections.Empty());
}

TEST(OneSidedConnection, DestroyingTheInputLeavesTheOutputUsable) {
    OneSided pair;
    pair.target.reset();
    Box next;
    pair.source->Out().Connect(next.In());
    EXPECT_THAT(PeersOf(pair.source->Out()), ElementsAre(&next.In()));
}

TEST(OneSidedConnection, ANewSourceTakesItsPlace) {
    OneSided pair;
    Box other;
    other.Out().Connect(pair.target->In());
    EXPECT_THAT(PeersOf(pair.target->In()), ElementsAre(&other.Out()));
    pair.source.reset();
    EXPECT_THAT(PeersOf(pair.target->In()), ElementsAre(&other.Out()));
}

// Ends that go away

TEST(ButtonConnections, DestroyingABoxCutsItsWiresOnBothSides) {
    Box source;
    Box target;
    auto middle = std::make_unique<Box>();
    source.Out().Connect(middle->In());
    middle->Out().Connect(target.In());
    middle->Out(1).Connect(target.In(1));
    middle.reset();
    EXPECT_TRUE(source.Out().connections.Empty());
    EXPECT_TRUE(target.In().connections.Empty());
    EXPECT_TRUE(target.In(1).connections.Empty());
}

TEST(ButtonConnections, ANetworkMayBeDestroyedInAnyOrder) {
    std::vector<size_t> order{0, 1, 2, 3};
    const size_t before = COpButton::LiveCount();
    do {
        std::vector<std::unique_ptr<Box>> boxes;
        for (int i = 0; i < 4; ++i) boxes.push_back(std::make_unique<Box>());
        boxes[0]->Out().Connect(boxes[1]->In());
        boxes[0]->Out().Connect(boxes[2]->In());
        boxes[1]->Out().Connect(boxes[2]->In(1));
        boxes[2]->Out().Connect(boxes[3]->In());
        boxes[2]->Out().Connect(boxes[3]->In());
        boxes[3]->Out().Connect(boxes[0]->In());
        boxes[3]->Out().Connect(boxes[3]->In(1));
        for (const size_t gone : order) {
            boxes[gone].reset();
            for (const auto& box : boxes) {
                for (size_t i = 0; box && i < 2; ++i) {
                    for (const COpButton* peer : box->In(i).connections) EXPECT_TRUE(COpButton::IsLive(peer));
                    for (const COpButton* peer : box->Out(i).connections)
                        EXPECT_TRUE(COpButton::IsLive(peer));
                }
            }
        }
    } while (std::next_permutation(order.begin(), order.end()));
    EXPECT_EQ(COpButton::LiveCount(), before);
}

}  // namespace
}  // namespace tavrin
