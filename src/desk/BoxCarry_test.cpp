// SPDX-License-Identifier: Apache-2.0
// What a box hands on to the one that takes its place, and what it loses.
#include "desk/BoxCarry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using testing::ElementsAre;
using testing::IsEmpty;

class BoxCarry : public testing::Test {
  protected:
    void Old(const std::string& definition) { old = MakeBox("Mix", definition, 4); }
    void Fresh(const std::string& definition) { fresh = MakeBox("Mix", definition); }
    void Carry() { CarryOver(*old, *fresh, successors, losses); }
    static COpButton& In(COpBox& box, const std::string& name) { return *box.FindButton(name); }
    template <typename Value>
    static Value& ValueOf(COpButton& button, size_t place = 0) {
        return dynamic_cast<Value&>(*button.values.at(place));
    }
    std::vector<std::string> Inputs() const {
        std::vector<std::string> names;
        for (const auto& input : fresh->inputs) names.push_back(input->DisplayName());
        return names;
    }

    std::unique_ptr<COpBox> old;
    std::unique_ptr<COpBox> fresh;
    ButtonSuccessors successors;
    std::vector<std::string> losses;
};

constexpr const char* kFloat = "{ float { 0 0 1 0 %g } } ";

TEST_F(BoxCarry, TakesPlaceNumberAndSelectionAlong) {
    Old("");
    Fresh("size 3 4 defs { maxinstances 5 }");
    old->xypos[0] = 0.1F;
    old->xypos[1] = -7;
    old->selected = 1;
    Carry();
    EXPECT_EQ(fresh->wid, 4);
    EXPECT_THAT(fresh->xypos, ElementsAre(0.1F, -7));
    EXPECT_EQ(fresh->selected, 1);
    EXPECT_EQ(fresh->maxinstances, 5);  // the definition's
    EXPECT_THAT(losses, IsEmpty());
}

TEST_F(BoxCarry, AButtonThatWasRenamedIsFoundByItsFormerName) {
    Old(std::string("input level ") + kFloat + "vinput layer { float { 0 0 1 0 %g } vinstances 3 }");
    Fresh(std::string("input amount { alias level float { 0 0 1 0 %g } } input other ") + kFloat +
          "vinput sheet { alias layer float { 0 0 1 0 %g } vinstances 1 }");
    ValueOf<COpValueFloat>(In(*old, "level")).value = 0.7F;
    ValueOf<COpValueFloat>(In(*old, "layer3")).value = 0.3F;
    Carry();
    EXPECT_EQ(ValueOf<COpValueFloat>(In(*fresh, "amount")).value, 0.7F);
    EXPECT_THAT(Inputs(), ElementsAre("amount", "other", "sheet1", "sheet2", "sheet3"));
    EXPECT_EQ(ValueOf<COpValueFloat>(In(*fresh, "sheet3")).value, 0.3F);
    EXPECT_THAT(losses, IsEmpty());
}

TEST_F(BoxCarry, AFormerNameCountsOnlyWhereNoButtonHasItNow) {
    Old(std::string("input level ") + kFloat);
    Fresh(std::string("input amount { alias level float { 0 0 1 0 %g } } input level ") + kFloat);
    ValueOf<COpValueFloat>(In(*old, "level")).value = 0.7F;
    Carry();
    EXPECT_EQ(ValueOf<COpValueFloat>(In(*fresh, "level")).value, 0.7F);
    EXPECT_EQ(ValueOf<COpValueFloat>(In(*fresh, "amount")).value, 0);
}

TEST_F(BoxCarry, AButtonThatOnlyTheDocumentKnowsStaysUntilADefinitionHasIt) {
    Old(std::string("input a ") + kFloat + "input lost " + kFloat);
    COpButton& lost = In(*old, "lost");
    lost.stray = std::make_shared<const std::string>("opbutton.input lost lost {}");
    ValueOf<COpValueFloat>(lost).value = 0.7F;
    Fresh(std::string("input b ") + kFloat + "input a " + kFloat);
    Carry();
    EXPECT_THAT(Inputs(), ElementsAre("b", "a", "lost"));
    COpButton& kept = *fresh->inputs.back();
    EXPECT_EQ(kept.stray, lost.stray);
    EXPECT_EQ(kept.owner, fresh.get());
    EXPECT_EQ(ValueOf<COpValueFloat>(kept).value, 0.7F);
    EXPECT_EQ(successors[&lost], &kept);
    EXPECT_THAT(losses, IsEmpty());
    Fresh(std::string("input lost ") + kFloat);
    Carry();
    EXPECT_EQ(ValueOf<COpValueFloat>(In(*fresh, "lost")).value, 0.7F);
}

TEST_F(BoxCarry, TakesTheValuesOfEachTypeAlongToTheBit) {
    const char* definition =
        "input a { float { 0 0 1 0 %g } rgb { 1 1 1 \"%g %g %g\" } xyz { 0 0 0 0 1 0 \"%g %g %g\" } "
        "rgba { 0 0 0 0 \"%g %g %g %g\" } string { value s format %s } generic:mat { value m } }";
    Old(definition);
    Fresh(std::string("input other ") + kFloat + definition);
    COpButton& a = In(*old, "a");
    ValueOf<COpValueFloat>(a, 0).value = 0.1F;
    ValueOf<COpValueFloat>(a, 0).max = 9;
    ValueOf<COpValueFloat>(a, 0).integer = 1;
    ValueOf<COpValueRgb>(a, 1).b = 0.3F;
    ValueOf<COpValueXyz>(a, 2).z = 1e-7F;
    ValueOf<COpValueRgba>(a, 3).a = 0.7F;
    ValueOf<COpValueString>(a, 4).value = "edited \"x\"";
    ValueOf<COpValueGeneric>(a, 5).value = "mat4(1)";
    a.currentcast = 3;
    Carry();
    COpButton& now = In(*fresh, "a");
    EXPECT_EQ(ValueOf<COpValueFloat>(now, 0).value, 0.1F);
    EXPECT_EQ(ValueOf<COpValueFloat>(now, 0).max, 9);
    EXPECT_EQ(ValueOf<COpValueFloat>(now, 0).integer, 1);
    EXPECT_EQ(ValueOf<COpValueRgb>(now, 1).b, 0.3F);
    EXPECT_EQ(ValueOf<COpValueXyz>(now, 2).z, 1e-7F);
    EXPECT_EQ(ValueOf<COpValueRgba>(now, 3).a, 0.7F);
    EXPECT_EQ(ValueOf<COpValueString>(now, 4).value, "edited \"x\"");
    EXPECT_EQ(ValueOf<COpValueGeneric>(now, 5).value, "mat4(1)");
    EXPECT_EQ(now.currentcast, 3U);
    EXPECT_THAT(losses, IsEmpty());
}

TEST_F(BoxCarry, FindsValuesAndCastsByTheirTypesWhereTheirOrderIsAnother) {
    Old("input a { float { 0 0 1 0 %g } rgb { 1 1 1 \"%g %g %g\" } } output o { float out rgb out }");
    Fresh(
        "input a { string { } rgb { 0 0 0 \"%g,%g,%g\" } float { 5 0 1 0 %g } } output o { rgb out float out "
        "}");
    In(*old, "a").currentcast = 1;
    In(*old, "o").currentcast = 1;
    Carry();
    EXPECT_EQ(In(*fresh, "a").CurrentType(), "rgb");
    EXPECT_EQ(In(*fresh, "a").ValueText(), "1,1,1");  // in the form of the definition
    EXPECT_EQ(ValueOf<COpValueFloat>(In(*fresh, "a"), 2).value, 0);
    EXPECT_EQ(In(*fresh, "o").CurrentType(), "rgb");
    EXPECT_THAT(losses, IsEmpty());
}

TEST_F(BoxCarry, DoesNotSpreadCastsByPairs) {
    Old("input a { float { 0 0 1 0 %g } rgb { 1 1 1 %g } } output o { float out rgb out }");
    Fresh(
        "input a { float { 0 0 1 0 %g } rgb { 1 1 1 %g } } output o { float out rgb out } defs { "
        "castlock.add a o }");
    In(*old, "a").currentcast = 1;
    Carry();
    EXPECT_EQ(In(*fresh, "a").CurrentType(), "rgb");
    EXPECT_EQ(In(*fresh, "o").CurrentType(), "float");
}

TEST_F(BoxCarry, TakesArgumentsAlong) {
    Old(std::string("input a ") + kFloat);
    Fresh(std::string("input a ") + kFloat);
    COpButton& a = In(*old, "a");
    a.arg = a.pin = a.stow = 1;
    a.lock = 2;
    a.argname = "amount";
    a.comments = "how much";
    Carry();
    const COpButton& now = In(*fresh, "a");
    EXPECT_EQ(now.arg + now.pin + now.stow, 3);
    EXPECT_EQ(now.lock, 2);
    EXPECT_EQ(now.argname, "amount");
    EXPECT_EQ(now.comments, "how much");
}

TEST_F(BoxCarry, LeavesArgumentsToADefinitionThatRulesThemOut) {
    Old(std::string("input a ") + kFloat + "input b " + kFloat);
    Fresh(
        "input a { wwms.disableargflag 1 float { 0 0 1 0 %g } } "
        "input b { wwms.argflag 1 wwms.disableargflag 1 float { 0 0 1 0 %g } }");
    In(*old, "a").arg = 1;
    Carry();
    EXPECT_EQ(In(*fresh, "a").arg, 0);
    EXPECT_EQ(In(*fresh, "b").arg, 1);
    EXPECT_THAT(losses, ElementsAre("Mix_4 a: it is no argument any more, which the definition rules out"));
}

TEST_F(BoxCarry, TellsValuesAndCastsOfTypesThatAreGone) {
    Old("input a { float { 0.5 0 1 0 %g } rgb { 1 0.5 0 \"%g %g %g\" } } output o { rgb out float out }");
    Fresh("input a { float { 0 0 1 0 %g } } output o { float out }");
    In(*old, "a").currentcast = 1;
    Carry();
    EXPECT_THAT(
        losses,
        ElementsAre("Mix_4 a: its value 1 0.5 0 of type rgb is lost; the definition has that type no more",
                    "Mix_4 a: its cast rgb is gone; it is float now",
                    "Mix_4 o: its cast rgb is gone; it is float now"));
    EXPECT_EQ(In(*fresh, "a").ValueText(), "0.5");
}

TEST_F(BoxCarry, TellsButtonsThatAreGone) {
    Old(std::string("input a ") + kFloat +
        "input b { string { value \"x\\\ny\" format %s } } output o { float out }");
    Fresh("");
    In(*old, "a").arg = 1;
    In(*old, "a").argname = "amount";
    ValueOf<COpValueString>(In(*old, "b")).value = "x\ny";
    Carry();
    EXPECT_THAT(losses,
                ElementsAre("Mix_4 a: the button is gone, and with it its value 0 and the argument amount",
                            "Mix_4 b: the button is gone, and with it its value x y"));
    EXPECT_THAT(successors, IsEmpty());
}

TEST_F(BoxCarry, KeepsAChoiceThatIsOfferedNoMoreAndTellsIt) {
    Old("input a { string { value add format %s noedit options { add mul } } }");
    Fresh("input a { string { value mul format %s noedit options { mul } } }");
    Carry();
    EXPECT_EQ(In(*fresh, "a").ValueText(), "add");
    EXPECT_THAT(losses,
                ElementsAre("Mix_4 a: its value add is kept, but is none that the definition offers"));
}

TEST_F(BoxCarry, KeepsAsManyInstancesOfAVinputAsThereWere) {
    const std::string layer = "vinput layer { vinstances 2 float { 0 0 1 0 %g } }";
    Old(layer);
    COpButton* third = old->CopyButton(*old->inputs.back(), false);
    ValueOf<COpValueFloat>(*third).value = 0.25F;
    Fresh(std::string("input x ") + kFloat + layer + " input y " + kFloat);
    Carry();
    EXPECT_THAT(Inputs(), ElementsAre("x", "layer1", "layer2", "layer3", "y"));
    EXPECT_EQ(ValueOf<COpValueFloat>(In(*fresh, "layer3")).value, 0.25F);
    EXPECT_EQ(successors.at(third), &In(*fresh, "layer3"));
    EXPECT_EQ(In(*fresh, "layer3").owner, fresh.get());
    EXPECT_THAT(losses, IsEmpty());
}

TEST_F(BoxCarry, KeepsFewerInstancesAsWellAndNoneWhereAllWereDeleted) {
    const std::string definition =
        "vinput a { vinstances 3 float { 0 0 1 0 %g } } vinput b { vinstances 2 float { 0 0 1 0 %g } }";
    Old(definition);
    old->DeleteButton(In(*old, "a2"));
    old->DeleteButton(In(*old, "b1"));
    old->DeleteButton(In(*old, "b1"));
    Fresh(definition);
    Carry();
    EXPECT_THAT(Inputs(), ElementsAre("a1", "a2"));
}

TEST_F(BoxCarry, HasANewVinputAsTheDefinitionHasIt) {
    Old("");
    Fresh("vinput a { vinstances 3 float { 0 0 1 0 %g } }");
    Carry();
    EXPECT_THAT(Inputs(), ElementsAre("a1", "a2", "a3"));
}

TEST_F(BoxCarry, GoesFromAnInputToAVinputAndBack) {
    Old(std::string("input a ") + kFloat);
    ValueOf<COpValueFloat>(In(*old, "a")).value = 3;
    Fresh("vinput a { vinstances 2 float { 0 0 1 0 %g } }");
    Carry();
    EXPECT_THAT(Inputs(), ElementsAre("a1"));
    EXPECT_EQ(ValueOf<COpValueFloat>(In(*fresh, "a1")).value, 3);
    old = std::move(fresh);
    old->CopyButton(*old->inputs.front(), false);
    Fresh(std::string("input a ") + kFloat);
    Carry();
    EXPECT_EQ(ValueOf<COpValueFloat>(In(*fresh, "a")).value, 3);
    EXPECT_THAT(losses, ElementsAre("Mix_4 a2: the button is gone, and with it its value 3"));
}

TEST_F(BoxCarry, TellsInputsOfOneNameByTheirOrder) {
    const std::string twins = std::string("input a ") + kFloat + "input b " + kFloat + "input a " + kFloat;
    Old(twins);
    ValueOf<COpValueFloat>(*old->inputs[2]).value = 2;
    Fresh(twins);
    Carry();
    EXPECT_EQ(ValueOf<COpValueFloat>(*fresh->inputs[0]).value, 0);
    EXPECT_EQ(ValueOf<COpValueFloat>(*fresh->inputs[2]).value, 2);
}

}  // namespace
}  // namespace tavrin
