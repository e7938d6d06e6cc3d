// SPDX-License-Identifier: Apache-2.0
// What is told to differ between two states of a network, and which boxes of them are the same.
#include "render/NetworkCompare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::Wire;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kNoise =
    "input scale { float { 4 0 10 0 %g } xyz { 1 2 3 0 1 0 \"%g %g %g\" } }\n"
    "input name { string { value oak } } input code { generic { value abc } }\n"
    "output result { float out }";
constexpr const char* kMix =
    "vinput layer { vinstances 2 float { 0.5 0 1 0 %g } }\n"
    "input tint { rgba { 0.1 0.2 0.3 1 \"%g %g %g %g\" } rgb { 1 1 1 \"%g %g %g\" } }\n"
    "output all { rgb out } output cover { float out }";

class NetworkCompareTest : public test::DocumentTest {
  protected:
    NetworkCompareTest() {
        noise = &Add(test::MakeBox("Noise", kNoise, 3));
        mix = &Add(test::MakeBox("Mix", kMix, 5));
        Wire(*noise, 0, *mix, 0);
        Begin();
    }

    // What differs from here on counts.
    void Begin() { older = CaptureNetwork(document); }
    std::vector<Difference> Compare() { return CompareNetworks(older, CaptureNetwork(document)); }
    std::vector<std::string> Texts() {
        std::vector<std::string> texts;
        for (const Difference& difference : Compare()) texts.push_back(difference.text);
        return texts;
    }
    template <typename Value>
    static Value& ValueOf(COpBox& box, size_t input, size_t cast = 0) {
        return dynamic_cast<Value&>(*box.inputs.at(input)->values.at(cast));
    }
    COpValueFloat& Scale() const { return ValueOf<COpValueFloat>(*noise, 0); }
    std::unique_ptr<COpBox> TakeOut(const COpBox& box) {
        const auto place = std::find_if(document.m_boxes.begin(), document.m_boxes.end(),
                                        [&box](const auto& other) { return other.get() == &box; });
        std::unique_ptr<COpBox> taken = std::move(*place);
        document.m_boxes.erase(place);
        taken->Park();
        return taken;
    }

    COpBox* noise = nullptr;
    COpBox* mix = nullptr;
    NetworkPicture older;
};

TEST_F(NetworkCompareTest, AnUntouchedNetworkDiffersInNothing) { EXPECT_THAT(Compare(), IsEmpty()); }

TEST_F(NetworkCompareTest, AValueIsToldAsAPanelShowsIt) {
    Scale().value = 6.5F;
    const auto found = Compare();
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].text, "Noise_3 scale: 4 -> 6.5");
    EXPECT_EQ(found[0].kind, Difference::Kind::kValue);
    EXPECT_EQ(found[0].box, "Noise_3");
    EXPECT_EQ(found[0].button, "scale");
    EXPECT_EQ(found[0].what, "Noise_3 scale");
    EXPECT_EQ(found[0].older, "4");
    EXPECT_EQ(found[0].newer, "6.5");
}

TEST_F(NetworkCompareTest, AValueOfEachTypeIsFound) {
    ValueOf<COpValueXyz>(*noise, 0, 1).z = -1;
    ValueOf<COpValueString>(*noise, 1).value = "elm";
    ValueOf<COpValueGeneric>(*noise, 2).value = "";
    ValueOf<COpValueRgba>(*mix, 2).a = 0.25F;
    ValueOf<COpValueRgb>(*mix, 2, 1).g = 0;
    EXPECT_THAT(Texts(),
                ElementsAre("Noise_3 scale (xyz): 1 2 3 -> 1 2 -1", "Noise_3 name: \"oak\" -> \"elm\"",
                            "Noise_3 code: \"abc\" -> \"\"", "Mix_5 tint: 0.1 0.2 0.3 1 -> 0.1 0.2 0.3 0.25",
                            "Mix_5 tint (rgb): 1 1 1 -> 1 0 1"));
}

TEST_F(NetworkCompareTest, TheCurrentCastIsToldAlsoOfOutputs) {
    noise->inputs[0]->currentcast = 1;
    EXPECT_THAT(Texts(), ElementsAre("Noise_3 scale cast: float -> xyz"));
    EXPECT_EQ(Compare()[0].property, Difference::Property::kCast);
}

TEST_F(NetworkCompareTest, WhatIsSaidOfAnArgumentIsTold) {
    COpButton& scale = *noise->inputs[0];
    scale.arg = 1;
    scale.argname = "roughness";
    scale.comments = "how rough";
    Scale().max = 20;
    Scale().integer = 1;
    EXPECT_THAT(Texts(),
                ElementsAre("Noise_3 scale range: 0 10 -> 0 20 whole", "Noise_3 scale argument: no -> yes",
                            "Noise_3 scale argument name: \"\" -> roughness",
                            "Noise_3 scale comment: \"\" -> how rough"));
    for (const Difference& found : Compare()) EXPECT_EQ(found.kind, Difference::Kind::kArgument);
}

TEST_F(NetworkCompareTest, HowSlidersStandAndWhereBoxesLieIsNoDifference) {
    COpButton& scale = *noise->inputs[0];
    scale.pin = scale.lock = scale.stow = 1;
    noise->xypos[0] = 1000;
    noise->selected = 1;
    document.m_boxes.reverse();
    document.exportOptions.saveSource = 1;
    document.zoomFactor = 2;
    EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(NetworkCompareTest, NumbersThatShowTheSameAreTheSame) {
    Scale().value = 4.000001F;
    EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(NetworkCompareTest, LineBreaksThatAFileDoesNotKeepAreNoDifference) {
    noise->inputs[0]->comments = "one two";
    Begin();
    noise->inputs[0]->comments = "one\ntwo";
    EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(NetworkCompareTest, WiresComeGoAndAreLedElsewhere) {
    COpBox& other = Add(test::MakeBox("Noise", kNoise, 4));
    Begin();
    Wire(other, 0, *mix, 2);
    EXPECT_THAT(Texts(), ElementsAre("wire Noise_4 result -> Mix_5 tint came"));
    mix->inputs[2]->Disconnect();
    mix->inputs[0]->Disconnect();
    EXPECT_THAT(Texts(), ElementsAre("wire Noise_3 result -> Mix_5 layer1 went"));
    Wire(other, 0, *mix, 0);
    EXPECT_THAT(Texts(), ElementsAre("wire Noise_3 result -> Mix_5 layer1: now from Noise_4 result"));
    EXPECT_EQ(Compare()[0].box, "Mix_5");
    EXPECT_EQ(Compare()[0].button, "layer1");
}

TEST_F(NetworkCompareTest, AnotherOutputOfTheSameBoxIsAnotherWire) {
    COpBox& last = Add(test::MakeBox("Mix", kMix, 9));
    Wire(*mix, 0, last, 0);
    Begin();
    last.inputs[0]->Disconnect();
    Wire(*mix, 1, last, 0);
    EXPECT_THAT(Texts(), ElementsAre("wire Mix_5 all -> Mix_9 layer1: now from Mix_5 cover"));
}

TEST_F(NetworkCompareTest, ABoxThatCameIsToldOnceWithWhatItFeeds) {
    COpBox& other = Add(test::MakeBox("Noise", kNoise, 4));
    Wire(other, 0, *mix, 1);
    Wire(*mix, 1, Add(test::MakeBox("Noise", kNoise, 7)), 0);
    EXPECT_THAT(Texts(),
                ElementsAre("Noise_4 came", "wire Noise_4 result -> Mix_5 layer2 came", "Noise_7 came"));
}

TEST_F(NetworkCompareTest, ABoxThatWentIsToldWhereItsNumberWas) {
    Scale().value = 1;
    Add(test::MakeBox("Noise", kNoise, 1));
    Begin();
    const auto gone = TakeOut(*noise);
    ValueOf<COpValueRgba>(*mix, 2).r = 1;
    EXPECT_THAT(Texts(), ElementsAre("Noise_3 went", "wire Noise_3 result -> Mix_5 layer1 went",
                                     "Mix_5 tint: 0.1 0.2 0.3 1 -> 1 0.2 0.3 1"));
}

TEST_F(NetworkCompareTest, ABoxOfAnotherOperatorWithTheSameNumberHasTakenItsPlace) {
    const auto gone = TakeOut(*noise);
    COpBox& marble = Add(test::MakeBox("Marble", kNoise, 3));
    Wire(marble, 0, *mix, 0);
    EXPECT_THAT(Texts(), ElementsAre("box 3: Noise_3 -> Marble_3",
                                     "wire Noise_3 result -> Mix_5 layer1: now from Marble_3 result"));
    EXPECT_EQ(Compare()[0].box, "Marble_3");
}

TEST_F(NetworkCompareTest, InstancesComeAndGo) {
    mix->CopyButton(*mix->inputs[1], false);
    EXPECT_THAT(Texts(), ElementsAre("Mix_5 layer3 came"));
    EXPECT_EQ(Compare()[0].kind, Difference::Kind::kInput);
    Begin();
    mix->DeleteButton(*mix->inputs[2]);
    mix->DeleteButton(*mix->inputs[1]);
    EXPECT_THAT(Texts(), ElementsAre("Mix_5 layer2 went", "Mix_5 layer3 went"));
}

TEST_F(NetworkCompareTest, AnInputBehindOneThatCameIsStillTheSame) {
    mix->CopyButton(*mix->inputs[1], false);
    ValueOf<COpValueRgba>(*mix, 3).r = 0.5F;
    EXPECT_THAT(Texts(), ElementsAre("Mix_5 layer3 came", "Mix_5 tint: 0.1 0.2 0.3 1 -> 0.5 0.2 0.3 1"));
}

TEST_F(NetworkCompareTest, OptionsOfTheRenderAreCompared) {
    document.m_renderOptions = {{"A", "1"}, {"B", "2"}, {"D", "4"}};
    Begin();
    document.m_renderOptions = {{"A", "1"}, {"B", "640,480"}, {"C", "3"}};
    EXPECT_THAT(Texts(), ElementsAre("option B: 2 -> 640,480", "option C: \"\" -> 3", "option D: 4 -> \"\""));
    EXPECT_EQ(Compare()[0].button, "B");
    EXPECT_EQ(Compare()[0].kind, Difference::Kind::kOption);
}

TEST_F(NetworkCompareTest, TheFirstLineOfTheHelpThatDiffersStandsForAll) {
    document.customshaderhelp = "Marble\r\nby me";
    Begin();
    document.customshaderhelp = "Marble\nby me  ";
    EXPECT_THAT(Texts(), IsEmpty()) << "a file keeps neither line ends nor blanks before them";
    document.customshaderhelp = "Marble\r\nby you\r\nand me";
    EXPECT_THAT(Texts(), ElementsAre("shader help: by me -> by you"));
}

TEST_F(NetworkCompareTest, LongTextsAreCutWhereTheyDiffer) {
    auto& name = ValueOf<COpValueString>(*noise, 1).value;
    name = std::string(1000, 'x') + "old" + std::string(1000, 'y');
    Begin();
    name = std::string(1000, 'x') + "new" + std::string(1000, 'y');
    const auto found = Compare();
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_THAT(found[0].older, testing::StartsWith("\"..." + std::string(20, 'x') + "oldyyy"));
    EXPECT_THAT(found[0].newer, testing::StartsWith("\"..." + std::string(20, 'x') + "newyyy"));
    EXPECT_LT(found[0].text.size(), 200U);
}

TEST_F(NetworkCompareTest, TextsAreCutBetweenCharacters) {
    auto& name = ValueOf<COpValueString>(*noise, 1).value;
    std::string many;
    for (int i = 0; i < 100; ++i) many += "\u20ac";
    for (const char* before : {"", "a", "ab"}) {
        name = before + many + "1";
        Begin();
        name = before + many + "2";
        const auto found = Compare();
        ASSERT_THAT(found, SizeIs(1));
        std::string rest = found[0].older;
        for (size_t at = 0; (at = rest.find("\u20ac")) != std::string::npos;) rest.erase(at, 3);
        EXPECT_EQ(rest, "\"...1\"") << before;
    }
}

TEST_F(NetworkCompareTest, WhatWouldSteerATerminalIsShownAsText) {
    noise->inputs[0]->argname = "a\x1b[31m\nb";
    EXPECT_THAT(Texts(), ElementsAre("Noise_3 scale argument name: \"\" -> a\\x1b[31m\\nb"));
}

// Which boxes are the same

TEST_F(NetworkCompareTest, ARenumberedBoxIsKnownByWhatItHolds) {
    COpBox& other = Add(test::MakeBox("Noise", kNoise, 8));
    ValueOf<COpValueFloat>(other, 0).value = 9;
    Begin();
    noise->wid = 11;
    other.wid = 12;
    noise->xypos[0] = 300;
    EXPECT_THAT(Texts(), IsEmpty()) << "wherever it lies now";
    noise->xypos[0] = 0;
    other.wid = 3;
    EXPECT_THAT(Texts(), ElementsAre("Noise_3 scale: 4 -> 9",
                                     "wire Noise_3 result -> Mix_5 layer1: now from Noise_11 result",
                                     "Noise_11 scale: 9 -> 4"))
        << "a number that is there still speaks first";
}

TEST_F(NetworkCompareTest, ARenumberedBoxWithAnotherValueIsKnownByItsPlace) {
    noise->xypos[0] = 100.25F;
    Begin();
    noise->wid = 11;
    noise->xypos[0] = 100.25001F;
    Scale().value = 5;
    EXPECT_THAT(Texts(), ElementsAre("Noise_11 scale: 4 -> 5"));
}

TEST_F(NetworkCompareTest, ABoxThatWasDeletedAndUndoneIsTheSame) {
    document.KeepHistory();
    test::RecordingView view(document);
    test::SeenDesk desk(document, host, view);
    desk.OnInitialUpdate();
    desk.DeleteBox(*noise);
    EXPECT_THAT(Texts(), ElementsAre("Noise_3 went", "wire Noise_3 result -> Mix_5 layer1 went"));
    desk.Undo();
    EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(NetworkCompareTest, TwoBoxesOfOneNumberAreTheSameInTheirOrder) {
    Add(test::MakeBox("Noise", kNoise, 3));
    Begin();
    ValueOf<COpValueFloat>(*document.m_boxes.back(), 0).value = 7;
    EXPECT_THAT(Texts(), ElementsAre("Noise_3 scale: 4 -> 7"));
}

TEST_F(NetworkCompareTest, ADefinitionWithOtherButtonsIsComparedByTheirNames) {
    const auto gone = TakeOut(*noise);
    COpBox& now = Add(test::MakeBox("Noise",
                                    "input seed { float { 0 0 1 0 %g } } input scale { xyz { 0 0 0 0 1 0 "
                                    "\"%g %g %g\" } float { 6 0 10 0 %g } } output result { float out }",
                                    3));
    Wire(now, 0, *mix, 0);
    EXPECT_THAT(Texts(), ElementsAre("Noise_3 seed came", "Noise_3 scale cast: float -> xyz",
                                     "Noise_3 scale: 1 2 3 -> 0 0 0", "Noise_3 scale (float): 4 -> 6",
                                     "Noise_3 name went", "Noise_3 code went"));
}

TEST_F(NetworkCompareTest, AnEmptyNetworkIsComparedWithAny) {
    const NetworkPicture empty;
    EXPECT_THAT(CompareNetworks(empty, empty), IsEmpty());
    EXPECT_THAT(CompareNetworks(empty, older), SizeIs(3)) << "two boxes and the help";
    EXPECT_THAT(CompareNetworks(older, empty), SizeIs(3));
}

// What it costs

TEST_F(NetworkCompareTest, TheCostIsLinearThoughNothingKeepsItsNumber) {
    const auto looksFor = [this](int count) {
        document.m_boxes.clear();
        for (int i = 0; i < count; ++i) Add(test::MakeLink("Link", i + 1));
        Begin();
        for (const auto& box : document.m_boxes) box->wid += count;
        for (const auto& box : document.m_boxes) {
            if (box->wid % 2 == 0) box->inputs[0]->argname = "n" + std::to_string(box->wid);
        }
        size_t looks = 0;
        EXPECT_FALSE(CompareNetworks(older, CaptureNetwork(document), &looks).empty());
        return looks;
    };
    const size_t few = looksFor(500);
    EXPECT_LE(looksFor(4000), few * 9);
}

// Summary

TEST_F(NetworkCompareTest, TheSummaryNamesTheFirstAndCountsTheRest) {
    EXPECT_EQ(Summary({}, 2), "");
    Scale().value = 6.5F;
    EXPECT_EQ(Summary(Compare(), 1), "Noise_3 scale 4 -> 6.5");
    mix->inputs[0]->Disconnect();
    document.m_renderOptions["SIZE"] = "1";
    EXPECT_EQ(Summary(Compare(), 1), "Noise_3 scale 4 -> 6.5, +2");
    EXPECT_EQ(Summary(Compare(), 2), "Noise_3 scale 4 -> 6.5, wire Noise_3 result -> Mix_5 layer1 went, +1");
    EXPECT_EQ(Summary(Compare(), 0), "+3");
}

}  // namespace
}  // namespace tavrin
