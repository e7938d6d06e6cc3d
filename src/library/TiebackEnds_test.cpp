// SPDX-License-Identifier: Apache-2.0
// The ends of tiebacks, remembered: what is asked of many outputs with one memory is what each says alone.
#include "library/TiebackEnds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "codegen/BoxMerge.h"
#include "library/CodeNames.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::Wire;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kRelay =
    "input a { float { 0.5 0 1 0 %g } } vinput b { vinstances 2 float { 0.25 0 1 0 %g } }\n"
    "output tieback=a first { float out } output tieback=b2 second { float out } output out { float out }\n"
    "codegen.main-body append\n// ${a} ${b}\n<<EOT>>\n";

class TiebackEndsTest : public testing::Test {
  protected:
    TiebackEndsTest() { report.SetSink(&sink); }

    // Boxes wired at random, forwards and backwards, some of them without the input that an output is tied
    // to.
    void Scatter(unsigned seed) {
        std::mt19937 random(seed);
        const auto below = [&](size_t count) { return static_cast<size_t>(random() % count); };
        boxes.clear();
        for (int wid = 1; wid <= 40; ++wid) boxes.push_back(MakeBox("R", kRelay, wid));
        for (const auto& box : boxes) {
            for (size_t i = 0; i < box->inputs.size(); ++i) {
                if (below(4) != 0) Wire(*boxes[below(boxes.size())], below(3), *box, i);
                box->inputs[i]->arg = below(4) == 0 ? 1 : 0;
                if (below(8) == 0) box->inputs[i]->argname = "named";
            }
            if (below(12) == 0) box->DeleteButton(*box->inputs.back());
        }
    }
    // What every output and input says, and what is alerted; asked in the order of the boxes or against it.
    std::vector<std::string> Asked(TiebackEnds* ends, bool backwards) {
        sink.alerts.clear();
        const NameSource names{prepared, &report, ends};
        std::vector<std::string> texts;
        for (size_t i = 0; i < boxes.size(); ++i) {
            COpBox& box = *boxes[backwards ? boxes.size() - 1 - i : i];
            for (const auto& output : box.outputs) texts.push_back(output->VariableName(names));
            for (const auto& input : box.inputs) texts.push_back(input->MacroValue(names));
        }
        texts.insert(texts.end(), sink.alerts.begin(), sink.alerts.end());
        return texts;
    }

    test::CollectingSink sink;
    Report report;
    TypeTables types;
    PreparedVariables prepared;
    std::vector<std::unique_ptr<COpBox>> boxes;
};

TEST_F(TiebackEndsTest, AnyNetworkSaysTheSameWithAndWithoutMemory) {
    bool sawCircle = false;
    bool sawMissing = false;
    for (unsigned seed = 1; seed <= 50; ++seed) {
        Scatter(seed);
        for (const bool backwards : {false, true}) {
            const auto alone = Asked(nullptr, backwards);
            TiebackEnds ends;
            EXPECT_EQ(Asked(&ends, backwards), alone) << "network " << seed;
            EXPECT_EQ(Asked(&ends, backwards), alone) << "network " << seed << ", all known";
            for (const std::string& alert : sink.alerts) {
                sawCircle = sawCircle || alert.find("leads back to itself") != std::string::npos;
                sawMissing = sawMissing || alert.find("can't find tieback button") != std::string::npos;
            }
        }
    }
    EXPECT_TRUE(sawCircle && sawMissing) << "the networks hold what they are to hold";
}

TEST_F(TiebackEndsTest, ACodeOfAnyNetworkIsTheSameWithAndWithoutMemory) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        Scatter(seed);
        const auto generate = [&](TiebackEnds* ends) {
            CCodeGen shader;
            BoxMerge merge(shader);
            for (const auto& box : boxes) box->GenerateCode(merge, types, {prepared, &report, ends});
            std::vector<std::string> lines;
            shader.WriteCode(lines);
            return lines;
        };
        TiebackEnds ends;
        EXPECT_EQ(generate(&ends), generate(nullptr)) << "network " << seed;
    }
}

TEST_F(TiebackEndsTest, EachOutputOnTheWayToACircleIsNamedInAnAlertOfItsOwn) {
    for (int wid = 1; wid <= 3; ++wid) boxes.push_back(MakeBox("R", kRelay, wid));
    Wire(*boxes[0], 0, *boxes[1], 0);
    Wire(*boxes[1], 0, *boxes[0], 0);
    Wire(*boxes[1], 0, *boxes[2], 0);
    TiebackEnds ends;
    for (const auto& box : boxes) EXPECT_EQ(box->outputs[0]->VariableName({prepared, &report, &ends}), "");
    EXPECT_THAT(sink.alerts,
                ElementsAre(HasSubstr("R_1 first: the tieback to a leads back"),
                            HasSubstr("R_2 first: the tieback"), HasSubstr("R_3 first: the tieback")));
}

TEST_F(TiebackEndsTest, TheEndIsTheButtonThatStandsForAll) {
    for (int wid = 1; wid <= 3; ++wid) boxes.push_back(MakeBox("R", kRelay, wid));
    Wire(*boxes[0], 0, *boxes[1], 0);
    Wire(*boxes[1], 0, *boxes[2], 0);
    TiebackEnds ends;
    const TiebackEnds::End end = ends.Of(*boxes[2]->outputs[0]);
    EXPECT_EQ(end.kind, TiebackEnds::Kind::kInput);
    EXPECT_EQ(end.button, boxes[0]->inputs[0].get());
    EXPECT_EQ(ends.Of(*boxes[1]->outputs[0]).button, end.button);
    EXPECT_EQ(ends.Of(*boxes[1]->outputs[2]).kind, TiebackEnds::Kind::kOutput);
    EXPECT_EQ(ends.Of(*boxes[1]->outputs[2]).button, boxes[1]->outputs[2].get());
    // What is known is not looked for again: the network is not to change meanwhile.
    boxes[1]->inputs[0]->Disconnect();
    EXPECT_EQ(ends.Of(*boxes[2]->outputs[0]).button, end.button);
    EXPECT_EQ(TiebackEnds().Of(*boxes[2]->outputs[0]).button, boxes[1]->inputs[0].get());
}

}  // namespace
}  // namespace tavrin
