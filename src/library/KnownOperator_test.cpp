// SPDX-License-Identifier: Apache-2.0
#include "library/KnownOperator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/OpBox.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Types = WireFit::Types;

KnownOperator Learned(const std::string& text) {
    KnownOperator known;
    known.name = "Mix";
    known.path = "/lib/menu/0100.Mix";
    LearnDefinition(known, text, {});
    return known;
}

std::vector<std::string> NamesOf(const std::vector<KnownButton>& buttons) {
    std::vector<std::string> names;
    for (const KnownButton& button : buttons) names.push_back(button.name);
    return names;
}

OpenEnd End(bool isOutput, std::vector<std::string> types, size_t current = 0) {
    OpenEnd end;
    end.isOutput = isOutput;
    end.types = std::move(types);
    end.currentcast = current;
    return end;
}

// Definitions

TEST(KnownOperator, ADefinitionGivesKeywordsIconAndColour) {
    const KnownOperator known = Learned(
        "iconimg \"lib/icons/Cells.sgi\"\ncolor 0.25 0.5 1\nkeywords {\nvoronoi \"dried mud\"\ncracks\n}\n");
    EXPECT_THAT(known.keywords, ElementsAre("voronoi", "dried mud", "cracks"));
    EXPECT_EQ(known.icon, "lib/icons/Cells.sgi");
    EXPECT_THAT(known.color, ElementsAre(0.25F, 0.5F, 1.0F));
    EXPECT_EQ(known.problem, "");
}

TEST(KnownOperator, WhatIsLearntOfANetworkLeavesNothingOfADefinition) {
    KnownOperator known = Learned("iconimg a.sgi\ncolor 1 1 1\nkeywords { a }\noutput o { float out }\n");
    known.id = 7;
    known.revision = 9;
    const std::string name = known.name;
    LearnNetwork(known, "# A network.\n");
    EXPECT_THAT(known.keywords, IsEmpty());
    EXPECT_EQ(known.icon, "");
    EXPECT_THAT(known.color, ElementsAre(0, 0, 0));
    EXPECT_THAT(known.buttons, IsEmpty());
    EXPECT_EQ(known.name, name);
    EXPECT_EQ(known.id, 7U);
    EXPECT_EQ(known.revision, 9U);
    EXPECT_EQ(known.help, "A network.");
}

TEST(KnownOperator, ADefinitionGivesAliasesHelpAndButtonsWithAllTheirCasts) {
    const KnownOperator known = Learned(
        "alias Blend\nboxhelp {\nMixes two.\nBy a third.\n}\n"
        "input a { help {\nThe first.\n}\nrgb { 0 0 0 \"%g\" } float { 0 0 1 0 \"%g\" } }\n"
        "input hidden { wwms.disableconnectflag 1 float { 0 0 1 0 \"%g\" } }\n"
        "output result { help {\nThe mixture.\n}\nfloat out generic:vec2 out }\n");
    EXPECT_THAT(known.aliases, ElementsAre("Blend"));
    EXPECT_EQ(known.help, "Mixes two.\r\nBy a third.");
    ASSERT_THAT(NamesOf(known.buttons), ElementsAre("a", "hidden", "result"));
    EXPECT_THAT(known.buttons[0].types, ElementsAre("rgb", "float"));
    EXPECT_EQ(known.buttons[0].help, "The first.");
    EXPECT_TRUE(known.buttons[0].takesWires);
    EXPECT_FALSE(known.buttons[0].isOutput);
    EXPECT_FALSE(known.buttons[1].takesWires);
    EXPECT_TRUE(known.buttons[2].isOutput);
    EXPECT_THAT(known.buttons[2].types, ElementsAre("float", "generic:vec2"));
    EXPECT_EQ(known.problem, "");
}

TEST(KnownOperator, WhatMayBeChosenForAValueIsKnown) {
    const KnownOperator known = Learned(
        "input mode { string { options { Add \"Soft light\" } } generic:vec2 { options { left right } } }\n");
    ASSERT_EQ(known.buttons.size(), 1U);
    EXPECT_THAT(known.buttons[0].options, ElementsAre("Add", "Soft light", "left", "right"));
}

TEST(KnownOperator, AVinputIsKnownOnceByItsFirstInstance) {
    const KnownOperator known = Learned("vinput layer { vinstances 3 float { 0 0 1 0 \"%g\" } }\n");
    EXPECT_THAT(NamesOf(known.buttons), ElementsAre("layer1"));
}

TEST(KnownOperator, WhatStandsBeforeAnErrorStaysButNoButtonIsOffered) {
    const KnownOperator known =
        Learned("boxhelp {\nMixes.\n}\ninput a { float { 0 0 1 0 \"%g\" } }\nwhatever\n");
    EXPECT_EQ(known.help, "Mixes.");
    EXPECT_THAT(known.buttons, IsEmpty());
    EXPECT_THAT(known.problem, HasSubstr("/lib/menu/0100.Mix near line 5: unexpected input"));
}

TEST(KnownOperator, ADefinitionThatEndsTooEarlySaysSo) {
    EXPECT_EQ(Learned("input a { help").problem, "/lib/menu/0100.Mix ends too early");
}

TEST(KnownOperator, LearningAgainLeavesNothingOfWhatWasKnown) {
    KnownOperator known = Learned("alias Blend\nboxhelp {\nold\n}\ninput a { float { 0 0 1 0 \"%g\" } }\n");
    LearnDefinition(known, "whatever", {});
    EXPECT_NE(known.problem, "");
    LearnDefinition(known, "icontext mix\n", {});
    EXPECT_EQ(known.problem, "");
    EXPECT_EQ(known.help, "");
    EXPECT_THAT(known.aliases, IsEmpty());
    EXPECT_THAT(known.buttons, IsEmpty());
}

// Saved networks

TEST(KnownOperator, OfASavedNetworkTheCommentsAtItsBeginningAreItsHelp) {
    KnownOperator known;
    LearnNetwork(known,
                 "\n# Worn paint:\r\n#   flaked off\n\n## here and there.\ntavrn-version 1\n# later\n");
    EXPECT_EQ(known.help, "Worn paint:\r\nflaked off\r\nhere and there.");
    EXPECT_EQ(known.source, KnownOperator::Source::kNetwork);
}

TEST(KnownOperator, ASavedNetworkWithoutCommentsHasNoHelp) {
    KnownOperator known;
    known.help = "old";
    LearnNetwork(known, "tavrn-version 1\n# later\n");
    EXPECT_EQ(known.help, "");
}

// Where a wire fits

constexpr const char* kMix =
    "input amount { float { 0 0 1 0 \"%g\" } }\n"
    "input a { rgb { 0 0 0 \"%g\" } float { 0 0 1 0 \"%g\" } }\n"
    "input b { rgb { 0 0 0 \"%g\" } float { 0 0 1 0 \"%g\" } }\n"
    "output result { rgb out float out }\n";

struct FitCase {
    const char* title;
    OpenEnd end;
    const char* button;
    Types types;
    const char* castType;
};

TEST(WireFit, TheFirstButtonWithTheBestTypesIsChosen) {
    const FitCase cases[] = {
        {"the current types are one", End(true, {"float"}), "amount", Types::kSame, ""},
        {"a later button is better", End(true, {"rgb"}), "a", Types::kSame, ""},
        {"the current cast of the open end counts", End(true, {"float", "rgb"}, 1), "a", Types::kSame, ""},
        {"an input looks for an output", End(false, {"rgb"}), "result", Types::kSame, ""},
        {"another cast of the new button", End(false, {"float"}), "result", Types::kCast, "float"},
        {"another cast of the open end", End(true, {"xyz", "float"}), "amount", Types::kOther, ""},
        {"any wire may be drawn", End(true, {"generic:vec2"}), "amount", Types::kForeign, ""},
        {"an end without a type", End(true, {}), "amount", Types::kForeign, ""},
    };
    const KnownOperator mix = Learned(kMix);
    for (const FitCase& each : cases) {
        const auto fit = FindFit(each.end, mix);
        ASSERT_TRUE(fit.has_value()) << each.title;
        EXPECT_EQ(fit->button, each.button) << each.title;
        EXPECT_EQ(fit->types, each.types) << each.title;
        EXPECT_EQ(fit->castType, each.castType) << each.title;
    }
}

TEST(WireFit, AnOperatorWithoutAButtonOfTheOtherKindFitsNothing) {
    EXPECT_FALSE(FindFit(End(true, {"float"}), Learned("output o { float out }\n")).has_value());
    EXPECT_FALSE(
        FindFit(End(false, {"float"}), Learned("input a { float { 0 0 1 0 \"%g\" } }\n")).has_value());
}

TEST(WireFit, AButtonThatTakesNoWiresIsPassedOverAtEitherEnd) {
    const KnownOperator known = Learned(
        "input shut { wwms.disableconnectflag 1 float { 0 0 1 0 \"%g\" } }\n"
        "input open { rgb { 0 0 0 \"%g\" } }\n");
    OpenEnd end = End(true, {"float"});
    ASSERT_TRUE(FindFit(end, known).has_value());
    EXPECT_EQ(FindFit(end, known)->button, "open");
    end.takesWires = false;
    EXPECT_FALSE(FindFit(end, known).has_value());
}

// The rule is told twice, for buttons that are there and for such that would be: both have to say the same.
TEST(WireFit, SaysWhatTheRuleOfButtonsSays) {
    COpBox box;
    Report silent;
    CArchive archive = test::ArchiveOf(std::string(kMix) +
                                       "input shut { wwms.disableconnectflag 1 float { 0 0 1 0 \"%g\" } }\n");
    ASSERT_TRUE(box.ReadDefinition(archive, {}, silent));
    std::vector<const COpButton*> buttons;
    for (const auto& input : box.inputs) buttons.push_back(input.get());
    for (const auto& output : box.outputs) buttons.push_back(output.get());
    for (const COpButton* open : buttons) {
        for (const COpButton* other : buttons) {
            KnownOperator known;
            const OpenEnd end = OpenEnd::Of(*other);
            known.buttons.push_back(
                {other->name, end.isOutput, end.takesWires, end.types, end.currentcast, {}, {}});
            EXPECT_EQ(FindFit(OpenEnd::Of(*open), known).has_value(), open->CanConnect(*other))
                << open->name << " to " << other->name;
        }
    }
}

TEST(WireFit, AnOpenEndKnowsTheCastOfItsButton) {
    COpBox box;
    Report silent;
    CArchive archive = test::ArchiveOf(kMix);
    ASSERT_TRUE(box.ReadDefinition(archive, {}, silent));
    box.outputs[0]->SetCast(1);
    const OpenEnd end = OpenEnd::Of(*box.outputs[0]);
    EXPECT_EQ(end, End(true, {"rgb", "float"}, 1));
}

}  // namespace
}  // namespace tavrin
