// SPDX-License-Identifier: Apache-2.0
// Buttons: names, types and casts.
#include "library/OpButton.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/OpBox.h"
#include "site/TypeTables.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;

// Fills a box from the text of a definition.
void Read(COpBox& box, std::string_view text) {
    Report report;
    CArchive archive = ArchiveOf(text, "box");
    ASSERT_TRUE(box.ReadDefinition(archive, "/nowhere", report)) << report.TakePending()->text;
}

// Clauses of an input or output with casts float, rgb, generic:m, in that order.
std::string Input(const std::string& name) {
    return "input " + name + " { float { 0.5 0 1 0 %g } rgb { 1 0 0 %g } generic:m { value M } }\n";
}
std::string Output(const std::string& name) {
    return "output " + name + " { float out rgb out generic:m out }\n";
}

// Names

TEST(OpButton, OnlyAVinputShowsItsNumber) {
    COpBox box;
    Read(box, "input layer { float { 0 0 1 0 %g } } vinput layer { float { 0 0 1 0 %g } } output layer { }");
    box.inputs[0]->instance = 7;
    box.outputs[0]->instance = 7;
    EXPECT_EQ(box.inputs[0]->DisplayName(), "layer");
    EXPECT_EQ(box.inputs[1]->DisplayName(), "layer1");
    EXPECT_EQ(box.outputs[0]->DisplayName(), "layer");
}

TEST(OpButton, EachKindHasItsWord) {
    EXPECT_EQ(COpButton(nullptr, ButtonKind::kInput).KindText(), "input");
    EXPECT_EQ(COpButton(nullptr, ButtonKind::kVinput).KindText(), "vinput");
    EXPECT_EQ(COpButton(nullptr, ButtonKind::kOutput).KindText(), "output");
    EXPECT_EQ(COpButton(nullptr, static_cast<ButtonKind>(4)).KindText(), "unknown");
}

// Types

TEST(OpButton, AValueIsFoundByItsWholeType) {
    COpBox box;
    Read(box, Input("a"));
    COpButton& button = *box.inputs[0];
    EXPECT_EQ(button.FindValue("rgb"), button.values[1].get());
    EXPECT_EQ(button.FindValue("generic:m"), button.values[2].get());
    for (const char* type : {"generic", "generic:", "rg", "rgba", "", "RGB"}) {
        EXPECT_EQ(button.FindValue(type), nullptr) << type;
    }
}

TEST(OpButton, TheWordGenericFindsTheFirstCastOfAnyGenericType) {
    COpBox box;
    Read(box, "input a { float { 0 0 1 0 %g } generic:m { } generic { } } input b { generic { } }");
    EXPECT_EQ(box.inputs[0]->FindCast("generic"), 1);
    EXPECT_EQ(box.inputs[0]->FindCast("generic:m"), 1);
    EXPECT_EQ(box.inputs[0]->FindCast("float"), 0);
    EXPECT_EQ(box.inputs[0]->FindCast("generic:x"), -1);
    EXPECT_EQ(box.inputs[0]->FindCast("generi"), -1);
    EXPECT_EQ(box.inputs[1]->FindCast("generic:m"), -1) << "not the other way round";
    EXPECT_EQ(box.inputs[1]->FindValue("generic"), box.inputs[1]->values[0].get());
}

TEST(OpButton, AButtonWithOneValueHasOneCast) {
    COpBox box;
    Read(box, "input a { rgb { 0 0 0 %g } }");
    EXPECT_EQ(box.inputs[0]->values.size(), 1U);
    EXPECT_EQ(box.inputs[0]->FindCast("rgb"), 0);
    EXPECT_EQ(box.inputs[0]->FindCast("float"), -1);
}

TEST(OpButton, AnOutputWithoutATypeHasTheEmptyTextForOne) {
    COpBox box;
    Read(box, "output a { }");
    EXPECT_EQ(box.outputs[0]->CurrentType(), "");
    EXPECT_EQ(box.outputs[0]->ValueText(), "");
    EXPECT_EQ(box.outputs[0]->FindCast(""), -1);
    box.outputs[0]->SetCast(0);
    EXPECT_EQ(box.outputs[0]->currentcast, 0U);
}

TEST(OpButton, CastsAreShownInTheTargetsWords) {
    COpBox box;
    Read(box, Input("a"));
    TypeTables types;
    types.SetWord("rgb", "vec3");
    types.SetWord("m", "never");
    types.SetWord("generic:m", "never");
    EXPECT_EQ(box.inputs[0]->DisplayCastName(0, types), "float");
    EXPECT_EQ(box.inputs[0]->DisplayCastName(1, types), "vec3");
    EXPECT_EQ(box.inputs[0]->DisplayCastName(2, types), "m");
    types.SetWord("rgb", "color");
    EXPECT_EQ(box.inputs[0]->DisplayCastName(1, types), "color") << "the later word stands";
}

TEST(OpButton, EachCastKeepsItsNumbers) {
    COpBox box;
    Read(box, Input("a"));
    COpButton& button = *box.inputs[0];
    static_cast<COpValueFloat&>(*button.values[0]).value = 0.75F;
    button.SetCast(2);
    EXPECT_EQ(button.CurrentType(), "generic:m");
    EXPECT_EQ(button.ValueText(), "M");
    button.SetCast(0);
    EXPECT_EQ(button.ValueText(), "0.75");
}

// Casts that move together

TEST(OpButton, AChoiceOfCastMovesTheTiedButtonBothWays) {
    COpBox box;
    Read(box, Input("a") + Input("free") + Output("out") + "defs { castlock.add a out }");
    box.inputs[0]->SetCast(1);
    EXPECT_EQ(box.inputs[0]->CurrentType(), "rgb");
    EXPECT_EQ(box.outputs[0]->CurrentType(), "rgb");
    EXPECT_EQ(box.inputs[1]->CurrentType(), "float");
    box.outputs[0]->SetCast(2);
    EXPECT_EQ(box.inputs[0]->CurrentType(), "generic:m");
    EXPECT_EQ(box.inputs[1]->CurrentType(), "float");
}

TEST(OpButton, CastsAreTiedByTypeAndNotByPosition) {
    COpBox box;
    Read(box,
         "input a { float { 0 0 1 0 %g } rgb { 0 0 0 %g } }\noutput out { rgb out xyz out float out }\n"
         "defs { castlock.add out a }");
    box.inputs[0]->SetCast(0);
    EXPECT_EQ(box.outputs[0]->currentcast, 2U);
    box.inputs[0]->SetCast(1);
    EXPECT_EQ(box.outputs[0]->currentcast, 0U);
}

TEST(OpButton, ATiedButtonThatLacksTheTypeStaysAsItIs) {
    COpBox box;
    Read(box, Input("a") + "output out { rgb out float out } defs { castlock.add a out }");
    box.outputs[0]->SetCast(1);
    box.inputs[0]->SetCast(2);
    EXPECT_EQ(box.inputs[0]->CurrentType(), "generic:m");
    EXPECT_EQ(box.outputs[0]->CurrentType(), "float");
}

TEST(OpButton, AChainOfPairsIsNotFollowed) {
    COpBox box;
    Read(box, Input("a") + Input("b") + Input("c") + "defs { castlock.add a b castlock.add b c }");
    box.inputs[0]->SetCast(1);
    EXPECT_EQ(box.inputs[1]->CurrentType(), "rgb");
    EXPECT_EQ(box.inputs[2]->CurrentType(), "float");
}

TEST(OpButton, APairThatNamesAVinputTiesAllItsInstances) {
    COpBox box;
    Read(box, "vinput layer { vinstances 3 float { 0 0 1 0 %g } rgb { 0 0 0 %g } }\n" + Output("out") +
                  "defs { castlock.add layer out castlock.add layer1 free }");
    box.outputs[0]->SetCast(1);
    for (const auto& input : box.inputs) EXPECT_EQ(input->CurrentType(), "rgb") << input->DisplayName();
    box.inputs[1]->SetCast(0);
    EXPECT_EQ(box.outputs[0]->CurrentType(), "float");
    EXPECT_EQ(box.inputs[0]->CurrentType(), "rgb") << "instances are not tied to each other";
}

TEST(OpButton, APairOfOneVinputWithItselfTiesItsInstances) {
    COpBox box;
    Read(box,
         "vinput layer { vinstances 3 float { 0 0 1 0 %g } rgb { 0 0 0 %g } } defs { castlock.add layer "
         "layer }");
    box.inputs[1]->SetCast(1);
    for (const auto& input : box.inputs) EXPECT_EQ(input->CurrentType(), "rgb") << input->DisplayName();
}

TEST(OpButton, TheWordGenericSpreadsToTheFirstGenericCastOfATiedButton) {
    COpBox box;
    Read(box,
         "input a { float { 0 0 1 0 %g } generic { } }\noutput out { float out generic:m out generic out }\n"
         "defs { castlock.add a out }");
    box.inputs[0]->SetCast(1);
    EXPECT_EQ(box.outputs[0]->CurrentType(), "generic:m");
    box.inputs[0]->SetCast(0);
    box.outputs[0]->SetCast(1);
    EXPECT_EQ(box.inputs[0]->CurrentType(), "float") << "a named generic type does not find the plain one";
}

TEST(OpButton, ACastThatIsNoneDoesNothing) {
    COpBox box;
    Read(box, Input("a") + Output("out") + "defs { castlock.add a out }");
    box.inputs[0]->SetCast(1);
    box.inputs[0]->SetCast(3);
    box.inputs[0]->SetCast(static_cast<size_t>(-1));
    EXPECT_EQ(box.inputs[0]->currentcast, 1U);
    EXPECT_EQ(box.outputs[0]->currentcast, 1U);
}

TEST(OpButton, WiringDifferentTypesChangesNoCast) {
    COpBox box;
    Read(box, Output("out"));
    COpBox other;
    Read(other, "input a { rgb { 0 0 0 %g } float { 0 0 1 0 %g } }");
    ASSERT_TRUE(box.outputs[0]->CanConnect(*other.inputs[0]));
    box.outputs[0]->Connect(*other.inputs[0]);
    EXPECT_EQ(box.outputs[0]->CurrentType(), "float");
    EXPECT_EQ(other.inputs[0]->CurrentType(), "rgb");
}

// Copies and the registry of live buttons

TEST(OpButton, ACopyHasEverythingButTheConnections) {
    COpBox box;
    Read(box,
         "input a { wwms.argname n wwms.argflag 1 wwms.disableargflag 2 wwms.disableconnectflag 0\n"
         "macro.fixedtext text\nhelp {\nhelps\n}\nfloat { 0.5 0 1 0 %g } string { value x options { p q } } "
         "}");
    COpBox source;
    Read(source, Output("out"));
    COpButton& button = *box.inputs[0];
    button.Connect(*source.outputs[0]);
    button.currentcast = 1;
    button.fixedvalue = "fixed", button.tieback = "tie", button.vargseparator = "+", button.vinstances = 4;
    button.instance = 3, button.disableconnectflag = 5, button.comments = "remark";
    button.pin = 6, button.lock = 7, button.stow = 8;
    const COpButton copy(button);
    EXPECT_TRUE(copy.connections.Empty());
    EXPECT_EQ(source.outputs[0]->connections.Size(), 1U);
    EXPECT_EQ(copy.owner, &box);
    EXPECT_EQ(copy.kind, ButtonKind::kInput);
    EXPECT_EQ(copy.name + copy.fixedvalue + copy.tieback + copy.vargseparator + copy.fixedtext + copy.help +
                  copy.argname + copy.comments,
              "afixedtie+texthelpsnremark");
    EXPECT_THAT((std::vector{copy.vinstances, copy.instance, copy.disableargflag, copy.disableconnectflag,
                             copy.arg, copy.pin, copy.lock, copy.stow}),
                testing::ElementsAre(4, 3, 2, 5, 1, 6, 7, 8));
    EXPECT_EQ(copy.currentcast, 1U);
    ASSERT_EQ(copy.values.size(), 2U);
    EXPECT_THAT(static_cast<const COpValueString&>(*copy.values[1]).options, testing::ElementsAre("p", "q"));
    static_cast<COpValueString&>(*button.values[1]).value = "changed";
    EXPECT_EQ(static_cast<const COpValueString&>(*copy.values[1]).value, "x");
}

TEST(OpButton, AButtonIsLiveFromItsMakingToItsEnd) {
    const size_t before = COpButton::LiveCount();
    auto button = std::make_unique<COpButton>(nullptr, ButtonKind::kInput);
    auto copy = std::make_unique<COpButton>(*button);
    const COpButton* gone = button.get();
    EXPECT_TRUE(COpButton::IsLive(gone));
    EXPECT_TRUE(COpButton::IsLive(copy.get()));
    EXPECT_EQ(COpButton::LiveCount(), before + 2);
    EXPECT_GT(copy->Serial(), button->Serial());
    button.reset();
    EXPECT_FALSE(COpButton::IsLive(gone));
    EXPECT_FALSE(COpButton::IsLive(nullptr));
    copy.reset();
    EXPECT_EQ(COpButton::LiveCount(), before);
}

}  // namespace
}  // namespace tavrin
