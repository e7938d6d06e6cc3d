// SPDX-License-Identifier: Apache-2.0
// What buttons are called in generated code, and the macro variables of a box.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/CodeNames.h"
#include "library/OpBox.h"
#include "library/TiebackEnds.h"
#include "site/TypeTables.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::CollectingSink;
using testing::ElementsAre;
using testing::IsEmpty;

// A box of its own with a title and a number, read from the text of a definition.
struct Box : COpBox {
    Box(std::string_view text, const std::string& title, int number) {
        Report report;
        CArchive archive = ArchiveOf(text, "box");
        EXPECT_TRUE(ReadDefinition(archive, "/nowhere", report)) << report.TakePending()->text;
        filename = title;
        wid = number;
    }
    COpButton& In(size_t index = 0) { return *inputs.at(index); }
    COpButton& Out(size_t index = 0) { return *outputs.at(index); }
};

class BoxVariables : public testing::Test {
  protected:
    BoxVariables() { report.SetSink(&sink); }

    CollectingSink sink;
    Report report;
    TypeTables types;
    PreparedVariables prepared;
    const NameSource names{prepared, &report};
};

constexpr const char* kThrough =
    "input a { float { 0.5 0 1 0 %g } }\noutput tieback=a out { float out }\noutput tieback=a twin { float "
    "out }\n";
constexpr const char* kPlain = "input a { float { 0.5 0 1 0 %g } }\noutput out { float out }\n";

// Variable names

TEST_F(BoxVariables, AVariableIsNamedByTitleNumberAndButton) {
    Box box("vinput layer { vinstances 2 float { 0 0 1 0 %g } } output out { float out }", "Mix", 3);
    EXPECT_EQ(box.Out().VariableName(names), "Mix_3_out");
    EXPECT_EQ(box.In(1).VariableName(names), "Mix_3_layer2");
    box.wid = 12;
    EXPECT_EQ(box.Out().VariableName(names), "Mix_12_out") << "a new number gives new names";
}

TEST_F(BoxVariables, AFixedValueIsExpandedWithTheVariablesOfTheLastPreparation) {
    Box box("input a { float { 0 0 1 0 %g } } output fixedvalue=\"f(a, ${TAVRN_BoxWid})\" out { float out }",
            "F", 2);
    EXPECT_EQ(box.Out().VariableName(names), "f(a, ${TAVRN_BoxWid})");
    prepared.Prepare(box, types);
    EXPECT_EQ(box.Out().VariableName(names), "f(a, 2)");
    box.wid = 7;
    EXPECT_EQ(box.Out().VariableName(names), "f(a, 2)");
    prepared.Prepare(box, types);
    EXPECT_EQ(box.Out().VariableName(names), "f(a, 7)");
}

TEST_F(BoxVariables, ATiebackBeatsAFixedValue) {
    Box box(kThrough, "T", 1);
    box.Out().fixedvalue = "P";
    EXPECT_EQ(box.Out().VariableName(names), "0.5");
}

// Argument names

TEST_F(BoxVariables, OnlyAnArgumentHasAnArgumentName) {
    Box box(kPlain, "Mix", 1);
    EXPECT_EQ(box.In().ArgumentName(names), "");
    box.In().argname = "roughness";
    EXPECT_EQ(box.In().ArgumentName(names), "");
    box.In().arg = 1;
    EXPECT_EQ(box.In().ArgumentName(names), "roughness");
    box.In().argname = "";
    EXPECT_EQ(box.In().ArgumentName(names), "Mix_1_a");
}

// What an input stands for

TEST_F(BoxVariables, AnInputStandsForItsLiteralUnlessSomethingComesBefore) {
    Box source(kPlain, "Noise", 1);
    Box box(kPlain, "Mix", 2);
    COpButton& input = box.In();
    EXPECT_EQ(input.MacroValue(names), "0.5");
    input.arg = 1;
    EXPECT_EQ(input.MacroValue(names), "Mix_2_a");
    input.fixedtext = "P";
    EXPECT_EQ(input.MacroValue(names), "P") << "the fixed text beats the argument";
    input.Connect(source.Out());
    EXPECT_EQ(input.MacroValue(names), "Noise_1_out") << "a wire beats both";
    input.Disconnect();
    EXPECT_EQ(input.MacroValue(names), "P");
    input.fixedtext = "";
    EXPECT_EQ(input.MacroValue(names), "Mix_2_a") << "the flag counts again when the wire is cut";
}

TEST_F(BoxVariables, TheLiteralIsThatOfTheCurrentCast) {
    Box box("input a { float { 0.5 0 1 0 %g } string { value x quoteflag 1 format %s } string { value y } }",
            "B", 1);
    box.In().currentcast = 1;
    EXPECT_EQ(box.In().MacroValue(names), "\"x\"");
    box.In().currentcast = 2;
    EXPECT_EQ(box.In().MacroValue(names), "") << "a string without a format";
}

TEST_F(BoxVariables, ADeclarationHasTheTextsOfTheCurrentCastAroundTheName) {
    types.SetDataType("float", {"float ", ";"});
    types.SetDataType("light", {"Light* ", " = 0;"});
    types.SetDataType("rgb", {"", ";"});
    types.SetWord("float", "never");
    Box box("output out { float out generic:light out rgb out generic:x out } output none { }", "B", 1);
    EXPECT_EQ(box.Out().Declaration(types, names), "float B_1_out;");
    box.Out().SetCast(1);
    EXPECT_EQ(box.Out().Declaration(types, names), "Light* B_1_out = 0;");
    box.Out().SetCast(2);
    EXPECT_EQ(box.Out().Declaration(types, names), "B_1_out;");
    box.Out().SetCast(3);
    EXPECT_EQ(box.Out().Declaration(types, names), "B_1_out") << "a type that was never declared";
    EXPECT_EQ(box.Out(1).Declaration(types, names), "B_1_none");
}

// Tiebacks

TEST_F(BoxVariables, AnOutputTiedBackStandsForWhateverItsInputStandsFor) {
    Box source(kPlain, "Noise", 1);
    Box box(kThrough, "Relay", 2);
    EXPECT_EQ(box.Out().VariableName(names), "0.5");
    EXPECT_EQ(box.Out(1).VariableName(names), "0.5") << "two outputs may be tied to one input";
    box.In().arg = 1;
    EXPECT_EQ(box.Out().VariableName(names), "Relay_2_a");
    box.In().fixedtext = "P";
    EXPECT_EQ(box.Out().VariableName(names), "P");
    box.In().Connect(source.Out());
    EXPECT_EQ(box.Out().VariableName(names), "Noise_1_out");
    EXPECT_EQ(box.Out(1).VariableName(names), "Noise_1_out");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(BoxVariables, TiebacksAreFollowedFromBoxToBox) {
    Box first(kThrough, "Relay", 1);
    Box second(kThrough, "Relay", 2);
    Box end(kPlain, "End", 3);
    second.In().Connect(first.Out(1));
    end.In().Connect(second.Out());
    EXPECT_EQ(end.In().MacroValue(names), "0.5");
    static_cast<COpValueFloat&>(*first.In().values[0]).value = 0.25F;
    EXPECT_EQ(end.In().MacroValue(names), "0.25");
    Box source("output fixedvalue=\"${TAVRN_BoxTitle}()\" out { float out }", "Src", 4);
    prepared.Prepare(source, types);
    first.In().Connect(source.Out());
    EXPECT_EQ(end.In().MacroValue(names), "Src()");
}

TEST_F(BoxVariables, ATiebackToAVinputNamesOneInstance) {
    Box box("vinput layer { vinstances 2 float { 0.5 0 1 0 %g } } output tieback=layer2 out { float out }",
            "B", 1);
    static_cast<COpValueFloat&>(*box.In(1).values[0]).value = 0.75F;
    EXPECT_EQ(box.Out().VariableName(names), "0.75");
}

TEST_F(BoxVariables, ATiebackWhoseInputWasDeletedIsAlertedAndGivesNothing) {
    Box box("vinput layer { vinstances 2 float { 0.5 0 1 0 %g } } output tieback=layer2 out { float out }",
            "Mix", 4);
    box.DeleteButton(box.In(1));
    EXPECT_EQ(box.Out().VariableName(names), "");
    EXPECT_THAT(sink.alerts, ElementsAre("Mix_4 out: can't find tieback button layer2 (did you delete it?)"));
    Box end(kPlain, "End", 5);
    end.In().Connect(box.Out());
    EXPECT_EQ(end.In().MacroValue(names), "") << "the connection still beats the literal";
}

TEST_F(BoxVariables, ATiebackThatLeadsRoundInACircleEndsWithAnAlert) {
    Box first(kThrough, "Relay", 1);
    Box second(kThrough, "Relay", 2);
    second.In().Connect(first.Out());
    first.In().Connect(second.Out());
    EXPECT_EQ(first.Out().VariableName(names), "");
    ASSERT_THAT(sink.alerts,
                ElementsAre("Relay_1 out: the tieback to a leads back to itself; cut one of the connections "
                            "between"));
    EXPECT_EQ(second.In().MacroValue(names), "");
    EXPECT_EQ(sink.alerts.size(), 2U);
}

TEST_F(BoxVariables, WhereNobodyIsToBeToldANameThatCannotBeFormedIsEmpty) {
    const NameSource quiet{prepared};
    Box cut(kThrough, "Cut", 1);
    cut.inputs.clear();
    Box first(kThrough, "Relay", 2);
    Box second(kThrough, "Relay", 3);
    second.In().Connect(first.Out());
    first.In().Connect(second.Out());
    TiebackEnds ends;
    for (const COpButton* output : {&cut.Out(), &first.Out(), &second.Out(1)}) {
        EXPECT_EQ(output->VariableName(quiet), "");
        EXPECT_EQ(output->VariableName({prepared, nullptr, &ends}), "");
    }
    EXPECT_EQ(second.In().MacroValue(quiet), "");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(BoxVariables, ATiebackThatFindsItsOwnOutputEnds) {
    Box box("vinput layer { float { 0 0 1 0 %g } } output tieback=layer1 layer1 { float out }", "B", 1);
    box.DeleteButton(box.In());
    for (const int arg : {0, 1}) {
        box.Out().arg = arg;
        EXPECT_EQ(box.Out().VariableName(names), "");
    }
}

TEST_F(BoxVariables, AChainOfManyTiebacksIsFollowedToItsEnd) {
    constexpr int kCount = 20000;
    std::vector<std::unique_ptr<Box>> boxes;
    for (int i = 0; i < kCount; ++i) {
        boxes.push_back(std::make_unique<Box>(kThrough, "R", i));
        if (i > 0) boxes.back()->In().Connect(boxes[static_cast<size_t>(i) - 1]->Out());
    }
    EXPECT_EQ(boxes.back()->Out().VariableName(names), "0.5");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

// The variables of a box

// All variables as "NAME=VALUE", in order.
std::vector<std::string> VariablesOf(const CMex& expander) {
    std::vector<std::string> texts;
    const VariableList& list = expander.Variables();
    for (size_t i = 0; i < list.Size(); ++i) {
        texts.push_back(std::string(list.Name(i)).substr(6) + "=" + std::string(list.Value(i)));
        EXPECT_EQ(list.Name(i).substr(0, 6), "TAVRN_");
    }
    return texts;
}

TEST_F(BoxVariables, PreparationSetsEveryVariableInItsOrder) {
    types.SetDataType("float", {"float ", ";"});
    types.SetDataType("m", {"mat ", "!"});
    types.SetWord("float", "scalar");
    Box box(
        "input a { wwms.argflag 1 float { 0 0 1 0 %g } }\n"
        "vinput v { vinstances 2 generic:m { } }\n"
        "output out { float out }\noutput tieback=a through { rgb out }\n",
        "Mix", 3);
    Box source(kPlain, "Src", 1);
    box.In(2).Connect(source.Out());
    prepared.Prepare(box, types);
    EXPECT_THAT(VariablesOf(prepared.Of(box)),
                ElementsAre("DeclareHead_a=float ", "DeclareTail_a=;",                         //
                            "NumVinputs_v=2", "DeclareHead_v=mat ", "DeclareTail_v=!",         //
                            "IsConnect_a=default/arg", "Cast_a=scalar",                        //
                            "IsConnect_v=defaultnoarg", "Cast_v=m",                            //
                            "IsConnect_v=connectednoarg", "Cast_v=m",                          //
                            "BoxWid=3", "BoxTitle=Mix", "BoxTitleWid=Mix_3",                   //
                            "DeclareHead_out=float ", "DeclareTail_out=;", "Cast_out=scalar",  //
                            "DeclareHead_through=color ", "DeclareTail_through=", "Cast_through=rgb"));
}

TEST_F(BoxVariables, TheStateIsOneOfFourTexts) {
    Box source(kPlain, "Src", 1);
    Box box(kPlain, "B", 2);
    const auto state = [&] {
        prepared.Prepare(box, types);
        return prepared.Of(box).Expanded("TAVRN_IsConnect_a");
    };
    EXPECT_EQ(state(), "defaultnoarg");
    box.In().arg = 1;
    EXPECT_EQ(state(), "default/arg");
    box.In().Connect(source.Out());
    EXPECT_EQ(state(), "connected/arg");
    box.In().arg = 0;
    EXPECT_EQ(state(), "connectednoarg");
}

TEST_F(BoxVariables, ARunOfVinputsIsDeclaredOnceByItsFirst) {
    Box box(
        "vinput v { vinstances 2 float { 0 0 1 0 %g } rgb { 0 0 0 %g } }\nvinput w { float { 0 0 1 0 %g } }\n"
        "vinput v { float { 0 0 1 0 %g } }\n",
        "B", 1);
    box.In(0).currentcast = 1;
    prepared.Prepare(box, types);
    const auto variables = VariablesOf(prepared.Of(box));
    EXPECT_EQ(std::count(variables.begin(), variables.end(), "NumVinputs_v=3"), 2)
        << "all of the name, at each run";
    EXPECT_EQ(std::count(variables.begin(), variables.end(), "DeclareHead_v=color "), 1);
    EXPECT_EQ(std::count(variables.begin(), variables.end(), "DeclareHead_v=float "), 1);
    EXPECT_EQ(prepared.Of(box).Expanded("TAVRN_Cast_v TAVRN_DeclareHead_v"), "rgb color ")
        << "the first entry counts";
}

TEST_F(BoxVariables, AnInputBetweenTwoVinputsOfOneNameDoesNotPartThem) {
    Box box(
        "vinput v { float { 0 0 1 0 %g } }\ninput a { float { 0 0 1 0 %g } }\nvinput v { float { 0 0 1 0 %g "
        "} }\n",
        "B", 1);
    prepared.Prepare(box, types);
    const auto variables = VariablesOf(prepared.Of(box));
    EXPECT_EQ(std::count(variables.begin(), variables.end(), "NumVinputs_v=2"), 1);
}

TEST_F(BoxVariables, PreparationDropsWhatTheDefinitionSetAndWhatStoodThere) {
    Box box("codegen.setvariable size big\n", "B", 1);
    prepared.Prepare(box, types);
    prepared.Prepare(box, types);
    EXPECT_THAT(VariablesOf(prepared.Of(box)), ElementsAre("BoxWid=1", "BoxTitle=B", "BoxTitleWid=B_1"));
}

TEST_F(BoxVariables, AButtonWithoutATypeHasEmptyTexts) {
    Box box("output out { }", "B", 1);
    prepared.Prepare(box, types);
    EXPECT_THAT(VariablesOf(prepared.Of(box)),
                ElementsAre("BoxWid=1", "BoxTitle=B", "BoxTitleWid=B_1",
                            "DeclareHead_out=", "DeclareTail_out=", "Cast_out="));
}

}  // namespace
}  // namespace tavrin
