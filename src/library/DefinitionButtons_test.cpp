// SPDX-License-Identifier: Apache-2.0
// The button clauses of a definition.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/OpBox.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::CollectingSink;
using testing::ElementsAre;
using testing::IsEmpty;

struct Reading {
    explicit Reading(std::string_view text) {
        report.SetSink(&sink);
        CArchive archive = ArchiveOf(text, "box");
        ok = box.ReadDefinition(archive, "/nowhere", report);
    }
    COpButton& Input(size_t index = 0) { return *box.inputs.at(index); }
    COpButton& Output(size_t index = 0) { return *box.outputs.at(index); }

    CollectingSink sink;
    Report report;
    COpBox box;
    bool ok = false;
};

std::vector<std::string> NamesOf(const std::vector<std::unique_ptr<COpButton>>& buttons) {
    std::vector<std::string> names;
    for (const auto& button : buttons) names.push_back(button->DisplayName());
    return names;
}

std::vector<std::string> TypesOf(const COpButton& button) {
    std::vector<std::string> types;
    for (const auto& value : button.values) types.push_back(value->type);
    return types;
}

void ExpectError(std::string_view text, const std::string& message) {
    const Reading reading(text);
    EXPECT_FALSE(reading.ok) << text;
    EXPECT_THAT(reading.sink.alerts, ElementsAre("box near line " + message)) << text;
}

// Inputs

TEST(DefinitionButtons, AnInputStartsWithItsDefaults) {
    Reading reading("input shade { float { 0.5 0 1 0 \"%g\" } }");
    ASSERT_TRUE(reading.ok);
    const COpButton& input = reading.Input();
    EXPECT_EQ(input.owner, &reading.box);
    EXPECT_EQ(input.name, "shade");
    EXPECT_EQ(input.kind, ButtonKind::kInput);
    EXPECT_EQ(input.currentcast, 0U);
    EXPECT_EQ(input.instance, 1);
    EXPECT_EQ(input.vinstances, 0);
    EXPECT_THAT((std::vector{input.disableargflag, input.disableconnectflag, input.arg, input.pin, input.lock,
                             input.stow}),
                testing::Each(0));
    EXPECT_EQ(input.fixedvalue + input.tieback + input.vargseparator + input.fixedtext + input.help +
                  input.argname + input.comments,
              "");
    EXPECT_TRUE(input.connections.Empty());
}

TEST(DefinitionButtons, EachPropertyFillsItsField) {
    Reading reading(
        "vinput layer {\n help {\n  one\n  two\n }\n wwms.argname \"its name\" wwms.argflag 1\n"
        " wwms.disableargflag 2 wwms.disableconnectflag 3 vargseparator \", \" vinstances 1\n float { 0 0 1 "
        "0 %g }\n}");
    ASSERT_TRUE(reading.ok);
    const COpButton& input = reading.Input();
    EXPECT_EQ(input.kind, ButtonKind::kVinput);
    EXPECT_EQ(input.help, "one\r\ntwo");
    EXPECT_EQ(input.argname, "its name");
    EXPECT_EQ(input.arg, 1);
    EXPECT_EQ(input.disableargflag, 2);
    EXPECT_EQ(input.disableconnectflag, 3);
    EXPECT_EQ(input.vargseparator, ", ");
    EXPECT_EQ(input.vinstances, 1);
}

TEST(DefinitionButtons, AFlagThatIsNoNumberIsZero) {
    Reading reading("input a { wwms.argflag yes wwms.disableargflag -1 float { 0 0 1 0 %g } }");
    ASSERT_TRUE(reading.ok);
    EXPECT_EQ(reading.Input().arg, 0);
    EXPECT_EQ(reading.Input().disableargflag, -1);
}

TEST(DefinitionButtons, FixedTextIsTheRestOfItsLine) {
    Reading reading(
        "input a { macro.fixedtext  \"P\" # } really \t\n float { 0 0 1 0 %g } }\ninput b {\n"
        "macro.fixedtext\nfloat { 0 0 1 0 %g } }");
    ASSERT_TRUE(reading.ok) << "the brace on the line is text";
    EXPECT_EQ(reading.Input().fixedtext, "\"P\" # } really");
    EXPECT_EQ(reading.Input(1).fixedtext, "") << "nothing is left on its line";
    EXPECT_THAT(TypesOf(reading.Input(1)), ElementsAre("float"));
}

TEST(DefinitionButtons, TypesAreAlternativesInTheOrderOfTheDefinition) {
    Reading reading(
        "input a { rgb { 1 1 1 %g } generic:matrix { value m } float { 0 0 1 0 %g } string { } generic { }\n"
        "rgba { 1 1 1 1 %g } xyz { 0 0 0 0 1 0 %g } genericlight { } float { 1 0 1 0 %g } }");
    ASSERT_TRUE(reading.ok);
    EXPECT_THAT(TypesOf(reading.Input()), ElementsAre("rgb", "generic:matrix", "float", "string", "generic",
                                                      "rgba", "xyz", "genericlight", "float"));
    EXPECT_EQ(reading.Input().CurrentType(), "rgb");
}

TEST(DefinitionButtons, AnInputWithoutATypeIsAnError) {
    ExpectError("input a { }", "1: no type for button");
    ExpectError("input a {\nwwms.argflag 1\n}\nicontext x", "3: no type for button");
    ExpectError("vinput a { vinstances 3 }", "1: no type for button");
    ExpectError("input a {", "1: no type for button");
}

TEST(DefinitionButtons, AFailedInputLeavesItsPartInTheBox) {
    Reading reading("input a { wwms.argflag 1 bogus");
    EXPECT_FALSE(reading.ok);
    EXPECT_EQ(reading.Input().arg, 1);
    Reading vinput("vinput a { vinstances 5 }");
    EXPECT_EQ(vinput.box.inputs.size(), 1U) << "further instances are made when the clause is whole";
}

TEST(DefinitionButtons, TheEndOfTheFileClosesAnInput) {
    Reading reading("vinput a { vinstances 2 float { 0 0 1 0 %g }");
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(NamesOf(reading.box.inputs), ElementsAre("a1", "a2"));
}

TEST(DefinitionButtons, WrongInputsAreUnexpectedInput) {
    for (const char* text : {"input a",
                             "input a float",
                             "input a }",
                             "input {",
                             "vinput a",  // no brace behind the name
                             "input a { bogus }",
                             "input a { {",
                             "input a { Float { 0 0 1 0 %g } }",  // no property
                             "input a { int { 0 } }",
                             "input a { output",
                             "input a { out }",
                             "input a { help }",
                             "input a { help text",
                             "input a { vargseparator , }",
                             "input a { vinstances 2 }",
                             "input a { wwms.argname",
                             "input a { wwms.argflag",
                             "input a { wwms.disableargflag",
                             "input a { wwms.disableconnectflag",
                             "input a { macro.fixedtext",
                             "vinput a { vargseparator",
                             "vinput a { vinstances",
                             "vinput a { wwms.pin 1 }",
                             "input a { comments x }"}) {
        ExpectError(text, "1: unexpected input");
    }
}

TEST(DefinitionButtons, ANameThatDocumentsCannotHoldIsAnError) {
    const std::string rule = "use a name without blanks, line breaks, double quotes, backslashes and #";
    for (const char* clause : {"input", "vinput", "output", "output fixedvalue=1"}) {
        for (const char* name :
             {"\"two words\"", "\"\"", "\"a#b\"", "a\\\"b", "a\\\\b", "\"tab\t\"", "\"line\nend\""}) {
            SCOPED_TRACE(std::string(clause) + " " + name);
            Reading reading(std::string(clause) + " " + name + " { float out float { 0 0 1 0 %g } }");
            EXPECT_FALSE(reading.ok);
            ASSERT_EQ(reading.sink.alerts.size(), 1U);
            EXPECT_THAT(reading.sink.LastAlert(),
                        testing::MatchesRegex("box near line [12]: the button name \"[^\n]*\" "
                                              "cannot be kept in a document: " +
                                              rule));
        }
    }
    ExpectError("input \"two words\" { }",
                "1: the button name \"two words\" cannot be kept in a document: " + rule);
}

TEST(DefinitionButtons, ATypeThatDocumentsCannotHoldIsAnError) {
    const std::string rule =
        " cannot be kept in a document: use a name without blanks, line breaks, double quotes, backslashes "
        "and #";
    ExpectError("input a { \"generic:two words\" { } }", "1: the type \"generic:two words\"" + rule);
    ExpectError("input a {\n\"generic#\" { } }", "2: the type \"generic#\"" + rule);
    ExpectError("output a { \"generic:\nm\" out }", "2: the type \"generic: m\"" + rule);
}

TEST(DefinitionButtons, AMessageNamesTheOperatorOfWhichTheFileIsWritten) {
    COpBox box;
    box.filename = "Mix";
    CollectingSink sink;
    Report report;
    report.SetSink(&sink);
    CArchive archive =
        ArchiveOf("vinput v { vinstances 20000 float { 0 0 1 0 %g } }\noutput \"o o\" { }", "boxdef.tmp");
    EXPECT_FALSE(box.ReadDefinition(archive, "", report));
    EXPECT_THAT(sink.alerts, ElementsAre(testing::HasSubstr("vinput v of operator Mix asks"),
                                         testing::HasSubstr("button name \"o o\" of operator Mix cannot")));
}

TEST(DefinitionButtons, AnInputNamedByABraceNeedsItsOwn) {
    Reading reading("input { { float { 0 0 1 0 %g } }");
    EXPECT_TRUE(reading.ok);
    EXPECT_EQ(reading.Input().name, "{");
}

TEST(DefinitionButtons, TheEndOfTheFileBehindHelpFailsWithoutAMessage) {
    for (const char* text : {"input a { help", "output a { help", "vinput a { help # {"}) {
        const Reading reading(text);
        EXPECT_FALSE(reading.ok) << text;
        EXPECT_THAT(reading.sink.alerts, IsEmpty()) << text;
    }
}

TEST(DefinitionButtons, HelpThatIsNeverClosedIsToldWhereItBeginsAndEndsTheInput) {
    const std::string told = "the block \"help\" is not closed: its last line has to be a \"}\" alone";
    ExpectError("\ninput a { help {\ntext\n", "2: " + told);
    Reading reading("input a {\nfloat { 0 0 1 0 %g }\nhelp {\ntext\n} }\ninput b\n");
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(reading.sink.alerts, ElementsAre("box near line 3: " + told));
    EXPECT_EQ(reading.Input().help, "text\r\n} }\r\ninput b");
    Reading output("output o { help\n{\ntext");
    EXPECT_TRUE(output.ok);
    EXPECT_THAT(output.sink.alerts, ElementsAre("box near line 2: " + told));
}

// Variable inputs

TEST(DefinitionButtons, AVinputStartsWithAsManyInstancesAsItAsksFor) {
    Reading reading(
        "input layer { float { 0 0 1 0 %g } }\n"
        "vinput layer { vargseparator + vinstances 3 wwms.argflag 1 float { 0.5 0 1 0 %g } help "
        "{\nhelps\n}\n}\n"
        "input last { float { 0 0 1 0 %g } }");
    ASSERT_TRUE(reading.ok);
    EXPECT_THAT(NamesOf(reading.box.inputs), ElementsAre("layer", "layer1", "layer2", "layer3", "last"));
    const COpButton& third = reading.Input(3);
    EXPECT_EQ(third.owner, &reading.box);
    EXPECT_EQ(third.vargseparator, "+");
    EXPECT_EQ(third.help, "helps");
    EXPECT_EQ(third.arg, 1);
    EXPECT_EQ(third.ValueText(), "0.5");
    EXPECT_NE(third.values[0], reading.Input(1).values[0]);
}

TEST(DefinitionButtons, AVinputThatAsksForNoneHasOneInstance) {
    for (const char* count : {"", "vinstances 0", "vinstances 1", "vinstances -3", "vinstances x"}) {
        Reading reading("vinput a { " + std::string(count) + " float { 0 0 1 0 %g } }");
        EXPECT_TRUE(reading.ok);
        EXPECT_THAT(NamesOf(reading.box.inputs), ElementsAre("a1")) << count;
    }
}

TEST(DefinitionButtons, ARepeatedCountReplacesTheFirst) {
    Reading reading("vinput a { vinstances 5 vinstances 2 float { 0 0 1 0 %g } }");
    EXPECT_EQ(reading.box.inputs.size(), 2U);
}

TEST(DefinitionButtons, ACountBeyondAllReasonIsBoundedAndTold) {
    Reading most("vinput a { vinstances 10000 float { 0 0 1 0 %g } }");
    EXPECT_EQ(most.box.inputs.size(), 10000U);
    EXPECT_THAT(most.sink.alerts, IsEmpty());
    Reading reading(
        "vinput a { vinstances 1000000000 float { 0 0 1 0 %g }\n}\ninput b { float { 0 0 1 0 %g } }");
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(
        reading.sink.alerts,
        ElementsAre("box near line 2: vinput a asks for 1000000000 instances and gets 10000, the most that "
                    "there can be"));
    EXPECT_EQ(reading.box.inputs.size(), 10001U);
    EXPECT_EQ(reading.Input(9999).DisplayName(), "a10000");
    EXPECT_EQ(reading.Input(10000).DisplayName(), "b");
}

// Outputs

TEST(DefinitionButtons, AnOutputHasItsTypesWithoutData) {
    Reading reading(
        "output result { help {\nhelps\n}\n float out rgb out generic:matrix out xyz out rgba out }");
    ASSERT_TRUE(reading.ok);
    const COpButton& output = reading.Output();
    EXPECT_EQ(output.owner, &reading.box);
    EXPECT_EQ(output.kind, ButtonKind::kOutput);
    EXPECT_EQ(output.name, "result");
    EXPECT_EQ(output.help, "helps");
    EXPECT_THAT(TypesOf(output), ElementsAre("float", "rgb", "generic:matrix", "xyz", "rgba"));
    EXPECT_EQ(output.values[0]->format, "");
    EXPECT_THAT(reading.box.inputs, IsEmpty());
}

TEST(DefinitionButtons, AnOutputWithoutATypeIsAccepted) {
    for (const char* text : {"output a { }", "output a {", "output a { string out }"}) {
        Reading reading(text);
        EXPECT_TRUE(reading.ok) << text;
        EXPECT_THAT(reading.Output().values, IsEmpty());
        EXPECT_EQ(reading.Output().CurrentType(), "");
    }
}

TEST(DefinitionButtons, AnOutputPassesOverWhatItDoesNotKnow) {
    Reading reading("output a { string out wwms.argflag 1 { Float out float out } icontext x");
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(TypesOf(reading.Output()), ElementsAre("float"));
    EXPECT_EQ(reading.Output().arg, 0);
    EXPECT_EQ(reading.box.icontext, "x");
}

TEST(DefinitionButtons, WrongOutputsAreUnexpectedInput) {
    for (const char* text :
         {"output a", "output a float", "output fixedvalue=P", "output fixedvalue=P a", "output {",
          "output a { float }", "output a { rgb in }", "output a { xyz", "output a { rgba { }",
          "output a { generic }", "output a { generic:x in", "output a { help text"}) {
        ExpectError(text, "1: unexpected input");
    }
}

TEST(DefinitionButtons, AFixedValueIsKeptAsItStands) {
    Reading reading(
        "output fixedvalue=\"f(a, ${b})\" result { float out }\noutput \"fixedvalue=N x\" normal { }");
    ASSERT_TRUE(reading.ok);
    EXPECT_EQ(reading.Output().fixedvalue, "f(a, ${b})");
    EXPECT_EQ(reading.Output().name, "result");
    EXPECT_EQ(reading.Output(1).fixedvalue, "N x");
}

TEST(DefinitionButtons, BehindAPrefixTheNextWordIsTheNameWhateverItLooksLike) {
    Reading reading(
        "input a { float { 0 0 1 0 %g } } output fixedvalue=P tieback=nobody { } "
        "output tieback=a fixedvalue=x { }");
    ASSERT_TRUE(reading.ok);
    EXPECT_EQ(reading.Output().name, "tieback=nobody");
    EXPECT_EQ(reading.Output().tieback, "");
    EXPECT_EQ(reading.Output(1).name, "fixedvalue=x");
    EXPECT_EQ(reading.Output(1).fixedvalue, "");
}

TEST(DefinitionButtons, PrefixesAreComparedExactly) {
    Reading reading("output FixedValue=P { }");
    EXPECT_TRUE(reading.ok);
    EXPECT_EQ(reading.Output().name, "FixedValue=P");
}

TEST(DefinitionButtons, ATiebackNamesAnInputThatStandsBeforeIt) {
    Reading reading("input a { float { 0 0 1 0 %g } } output tieback=a through { float out }");
    ASSERT_TRUE(reading.ok);
    EXPECT_EQ(reading.Output().tieback, "a");
    EXPECT_EQ(reading.Output().name, "through");
    ExpectError("output tieback=a through { float out }\ninput a { float { 0 0 1 0 %g } }",
                "1: tieback names unknown button a");
}

TEST(DefinitionButtons, ATiebackToAVinputNeedsTheNumber) {
    const std::string vinput = "vinput layer { vinstances 2 float { 0 0 1 0 %g } } ";
    Reading reading(vinput + "output tieback=layer2 a { }");
    EXPECT_TRUE(reading.ok);
    ExpectError(vinput + "output tieback=layer a { }", "1: tieback names unknown button layer");
    ExpectError(vinput + "output tieback=layer3 a { }", "1: tieback names unknown button layer3");
}

TEST(DefinitionButtons, ATiebackToAnOutputOrToNothingIsAnError) {
    ExpectError("output a { } output tieback=a b { }", "1: tieback names unknown button a");
    ExpectError("output tieback= b { }", "1: tieback names unknown button ");
    ExpectError("output tieback=%s%n b { }", "1: tieback names unknown button %s%n");
    ExpectError("input A { float { 0 0 1 0 %g } } output tieback=a b { }",
                "1: tieback names unknown button a");
    ExpectError("input a { float { 0 0 1 0 %g } } output tieback=a", "1: unexpected input");
}

}  // namespace
}  // namespace tavrin
