// SPDX-License-Identifier: Apache-2.0
// The orders in which a document's boxes are walked.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::WidsOf;
using test::Wire;
using testing::ElementsAre;
using testing::IsEmpty;

std::string InputList(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "input i" + std::to_string(i) + " { float { 0 0 0 0 %g } } ";
    return text;
}

class BoxOrder : public test::DocumentTest {
  protected:
    COpBox& AddLink(const std::string& name, int wid) { return Add(MakeLink(name, wid)); }
    // A box with two inputs and two outputs.
    COpBox& AddMix(const std::string& name, int wid) {
        return Add(MakeBox(name, InputList(2) + "output a { float out } output b { float out }", wid));
    }
    std::vector<std::string> Order() {
        std::vector<std::string> names;
        for (const COpBox* box : document.OrderBoxes()) names.push_back(box->BoxTitleWid());
        return names;
    }
};

TEST_F(BoxOrder, ABoxStandsAfterEverythingThatFeedsIt) {
    COpBox& sink = AddLink("A", 1);
    COpBox& middle = AddLink("B", 2);
    COpBox& source = AddLink("C", 3);
    Wire(source, 0, middle, 0);
    Wire(middle, 0, sink, 0);
    EXPECT_THAT(Order(), ElementsAre("C_3", "B_2", "A_1"));
}

TEST_F(BoxOrder, RootsComeByTheirNamesAsTextWithoutRegardToCase) {
    for (const int wid : {2, 10, 1}) AddLink("Noise", wid);
    AddLink("mix", 3);
    AddLink("Zoo", 4);
    AddLink("ball", 5);
    EXPECT_THAT(Order(), ElementsAre("ball_5", "mix_3", "Noise_1", "Noise_10", "Noise_2", "Zoo_4"));
}

TEST_F(BoxOrder, TheOrderOfTheListPlaysNoPart) {
    AddLink("b", 1);
    AddLink("a", 2);
    document.m_boxes.reverse();
    EXPECT_THAT(Order(), ElementsAre("a_2", "b_1"));
}

TEST_F(BoxOrder, InputsAreFollowedFromTheTop) {
    COpBox& sink = AddMix("s", 1);
    COpBox& early = AddLink("a", 2);
    COpBox& late = AddLink("z", 3);
    Wire(late, 0, sink, 0);
    Wire(early, 0, sink, 1);
    EXPECT_THAT(Order(), ElementsAre("z_3", "a_2", "s_1"));
}

TEST_F(BoxOrder, ABoxReachedAlongSeveralWaysStandsOnce) {
    COpBox& top = AddMix("top", 1);
    COpBox& left = AddLink("left", 2);
    COpBox& right = AddLink("right", 3);
    COpBox& bottom = AddMix("bottom", 4);
    Wire(top, 0, left, 0);
    Wire(top, 1, right, 0);
    Wire(left, 0, bottom, 0);
    Wire(right, 0, bottom, 1);
    EXPECT_THAT(Order(), ElementsAre("top_1", "left_2", "right_3", "bottom_4"));
}

TEST_F(BoxOrder, AFeederDeepInOneBranchStandsBeforeAllOfItsUsers) {
    // The sink's upper input is fed directly by what also feeds its lower one from further away.
    COpBox& source = AddLink("source", 1);
    COpBox& far = AddLink("far", 2);
    COpBox& sink = AddMix("sink", 3);
    Wire(source, 0, far, 0);
    Wire(far, 0, sink, 0);
    Wire(source, 0, sink, 1);
    EXPECT_THAT(Order(), ElementsAre("source_1", "far_2", "sink_3"));
}

TEST_F(BoxOrder, AnIslandIsARootEvenWithoutAnyOutput) {
    Add(MakeBox("alone", "", 1));
    AddLink("also", 2);
    EXPECT_THAT(Order(), ElementsAre("alone_1", "also_2"));
}

TEST_F(BoxOrder, ABoxFeedsSomethingIfAnyOfItsOutputsDoes) {
    // Were "a" a root itself, it would stand first.
    COpBox& source = AddMix("a", 1);
    COpBox& sink = AddLink("c", 2);
    Wire(source, 1, sink, 0);
    AddLink("b", 3);
    EXPECT_THAT(Order(), ElementsAre("b_3", "a_1", "c_2"));
}

TEST_F(BoxOrder, BoxesOfACycleThatFeedsNothingAreLeftOut) {
    COpBox& first = AddLink("a", 1);
    COpBox& second = AddMix("b", 2);
    COpBox& feeder = AddLink("c", 3);
    AddLink("d", 4);
    Wire(first, 0, second, 0);
    Wire(second, 0, first, 0);
    Wire(feeder, 0, second, 1);
    EXPECT_THAT(Order(), ElementsAre("d_4"));
}

TEST_F(BoxOrder, AWalkThroughACycleEnds) {
    COpBox& first = AddMix("a", 1);
    COpBox& second = AddMix("b", 2);
    COpBox& sink = AddLink("s", 3);
    Wire(first, 0, second, 0);
    Wire(second, 0, first, 0);
    Wire(second, 1, second, 1);
    Wire(second, 0, sink, 0);
    EXPECT_THAT(Order(), ElementsAre("a_1", "b_2", "s_3"));
}

TEST_F(BoxOrder, AnInputWhoseSourceDoesNotNameItIsFollowedAllTheSame) {
    COpBox& source = AddLink("z", 1);
    COpBox& sink = AddLink("a", 2);
    source.outputs.at(0)->Connect(*sink.inputs.at(0));
    source.outputs.at(0)->Connect(*sink.inputs.at(0));
    ASSERT_TRUE(source.outputs.at(0)->connections.Empty());
    EXPECT_THAT(Order(), ElementsAre("z_1", "a_2"));
}

TEST_F(BoxOrder, AChainOfAnyLengthIsWalked) {
    constexpr int kLength = 200000;
    COpBox* last = nullptr;
    for (int wid = 1; wid <= kLength; ++wid) {
        auto made = std::make_unique<COpBox>();
        made->filename = "x";
        made->wid = wid;
        made->inputs.push_back(std::make_unique<COpButton>(made.get(), ButtonKind::kInput));
        made->outputs.push_back(std::make_unique<COpButton>(made.get(), ButtonKind::kOutput));
        COpBox& box = Add(std::move(made));
        if (last != nullptr) Wire(*last, 0, box, 0);
        last = &box;
    }
    const auto order = document.OrderBoxes();
    ASSERT_EQ(order.size(), static_cast<size_t>(kLength));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end(),
                               [](const COpBox* a, const COpBox* b) { return a->wid < b->wid; }));
    EXPECT_TRUE(COpButton::ReachesForward(*last, *order.front()));
}

TEST_F(BoxOrder, EqualsThePlainWalkOnNetworksOfEveryShape) {
    std::mt19937 random(20250901);
    for (int round = 0; round < 200; ++round) {
        document.m_boxes.clear();
        const size_t count = 1 + random() % 12;
        std::vector<COpBox*> boxes;
        for (size_t i = 0; i < count; ++i) {
            boxes.push_back(
                &AddMix(std::string(1, static_cast<char>('a' + random() % 3)), static_cast<int>(i)));
        }
        for (size_t to = 1; to < count; ++to) {
            for (size_t input = 0; input < 2; ++input) {
                if (random() % 3 != 0) Wire(*boxes[random() % to], random() % 2, *boxes[to], input);
            }
        }
        std::vector<COpBox*> sorted = boxes;
        std::sort(sorted.begin(), sorted.end(),
                  [](const COpBox* a, const COpBox* b) { return a->BoxTitleWid() < b->BoxTitleWid(); });
        std::vector<COpBox*> expected;
        const std::function<void(COpBox*)> visit = [&](COpBox* box) {
            if (std::find(expected.begin(), expected.end(), box) != expected.end()) return;
            for (const auto& input : box->inputs) {
                for (const COpButton* peer : input->connections) visit(peer->owner);
            }
            expected.push_back(box);
        };
        for (COpBox* box : sorted) {
            if (box->outputs.at(0)->connections.Empty() && box->outputs.at(1)->connections.Empty())
                visit(box);
        }
        ASSERT_EQ(document.OrderBoxes(), expected) << "round " << round;
        ASSERT_EQ(expected.size(), count);
    }
}

TEST_F(BoxOrder, UnconnectedInputsComeByTheNamesOfTheirBoxesAndFromTheTop) {
    COpBox& noise2 = AddMix("Noise", 2);
    COpBox& noise10 = AddMix("noise", 10);
    COpBox& sink = AddMix("Sink", 1);
    COpBox& first = AddMix("a", 3);
    Wire(first, 0, noise10, 0);
    Wire(noise2, 0, sink, 1);
    EXPECT_THAT(document.CollectUnconnectedInputs(),
                ElementsAre(first.inputs.at(0).get(), first.inputs.at(1).get(), noise10.inputs.at(1).get(),
                            noise2.inputs.at(0).get(), noise2.inputs.at(1).get(), sink.inputs.at(0).get()));
}

TEST_F(BoxOrder, OfACycleTheUnconnectedInputsAreCollectedToo) {
    COpBox& box = AddMix("a", 1);
    Wire(box, 0, box, 0);
    EXPECT_THAT(Order(), IsEmpty());
    EXPECT_THAT(document.CollectUnconnectedInputs(), ElementsAre(box.inputs.at(1).get()));
}

TEST_F(BoxOrder, SortingByNumberKeepsBoxesOfOneNumberInTheirOrder) {
    for (const auto& [name, wid] :
         std::vector<std::pair<std::string, int>>{{"a", 5}, {"b", -1}, {"c", 5}, {"d", 2}, {"e", 5}}) {
        AddLink(name, wid);
    }
    document.SortBoxesByWid();
    EXPECT_THAT(WidsOf(document), ElementsAre(-1, 2, 5, 5, 5));
    std::string names;
    for (const auto& box : document.m_boxes) names += box->filename;
    EXPECT_EQ(names, "bdace");
}

}  // namespace
}  // namespace tavrin
