// SPDX-License-Identifier: Apache-2.0
// The buttons of a box in a document as they are read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using testing::ElementsAre;
using testing::IsEmpty;

class ButtonSection : public test::DocumentTest {
  protected:
    // Loads a desk with one box of this definition. The buttons begin in line 2.
    bool LoadBox(const std::string& definition, const std::string& buttons) {
        host.AddOperator("op" + std::to_string(++m_count), definition);
        document.DeleteContents();
        host.Sink().alerts.clear();
        return Load("opdesk { opbox { filename op" + std::to_string(m_count) + " wid 1\n" + buttons +
                    "\n} }");
    }
    void ExpectStop(const std::string& definition, const std::string& buttons, int line,
                    const std::string& message = "unexpected input") {
        EXPECT_FALSE(LoadBox(definition, buttons)) << buttons;
        EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line " + std::to_string(line) + ": " + message))
            << buttons;
    }
    // A block of a button; the body stands in the line below its beginning.
    static std::string Button(const std::string& head, const std::string& cast,
                              const std::string& body = "") {
        return "opbutton." + head + " { opbuttondefs { currentcast " + cast + " wwms {\n" + body +
               "\n} } }\n";
    }
    COpBox& Box() { return BoxAt(document, 0); }
    COpButton& In(size_t place) { return *Box().inputs.at(place); }
    template <typename Value>
    Value& ValueOf(const std::string& type) {
        return *static_cast<Value*>(In(0).FindValue(type));
    }
    std::vector<std::string> InputNames() {
        std::vector<std::string> names;
        for (const auto& input : Box().inputs) names.push_back(input->DisplayName());
        return names;
    }
    std::string Text(size_t place) {
        return static_cast<COpValueString*>(In(place).FindValue("string"))->value;
    }

  private:
    int m_count = 0;
};

const char* const kFloat = "input i { float { 0.5 0 1 0 %g } }";
const char* const kVinput = "vinput v { string { value start } vinstances 2 } input w { string { value w } }";

TEST_F(ButtonSection, TheSettingsOfAButtonAreRead) {
    EXPECT_TRUE(LoadBox(kFloat, Button("input i i", "float", R"(pin 1 stow 2 lock 3 arg 4
        argname "a \"b\"" comments "c \\ # d")")));
    EXPECT_EQ(In(0).pin, 1);
    EXPECT_EQ(In(0).stow, 2);
    EXPECT_EQ(In(0).lock, 3);
    EXPECT_EQ(In(0).arg, 4);
    EXPECT_EQ(In(0).argname, "a \"b\"");
    EXPECT_EQ(In(0).comments, "c \\ # d");
}

TEST_F(ButtonSection, AnEmptyArgumentNameReadsBackEmpty) {
    EXPECT_TRUE(LoadBox("input i { wwms.argname old float { 0 0 1 0 %g } }",
                        Button("input i i", "float", "argname \"\"")));
    EXPECT_EQ(In(0).argname, "");
}

TEST_F(ButtonSection, EveryKindOfValueIsRead) {
    EXPECT_TRUE(
        LoadBox("input i { float { 0 0 0 0 %g } xyz { 0 0 0 0 0 0 %g } rgb { 0 0 0 %g } rgba { 0 0 0 0 %g } "
                "string { value x } generic { value x } generic:m { value x } }",
                Button("input i i", "rgb",
                       "float 1 2 3 1 xyz 4 5 6 7 8 1 rgb .1 .2 .3 rgba 1 2 3 4\n"
                       "string \"s \\\" t\"\ngeneric \"g h\"\ngeneric m \"1 0\"")));
    EXPECT_THAT(Alerts(), IsEmpty());
    const auto& number = ValueOf<COpValueFloat>("float");
    EXPECT_THAT((std::vector<float>{number.value, number.min, number.max}), ElementsAre(1, 2, 3));
    EXPECT_EQ(number.integer, 1);
    const auto& xyz = ValueOf<COpValueXyz>("xyz");
    EXPECT_THAT((std::vector<float>{xyz.x, xyz.y, xyz.z, xyz.min, xyz.max}), ElementsAre(4, 5, 6, 7, 8));
    EXPECT_EQ(xyz.integer, 1);
    const auto& rgb = ValueOf<COpValueRgb>("rgb");
    EXPECT_THAT((std::vector<float>{rgb.r, rgb.g, rgb.b}), ElementsAre(.1F, .2F, .3F));
    const auto& rgba = ValueOf<COpValueRgba>("rgba");
    EXPECT_THAT((std::vector<float>{rgba.r, rgba.g, rgba.b, rgba.a}), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(ValueOf<COpValueString>("string").value, "s \" t");
    EXPECT_EQ(ValueOf<COpValueGeneric>("generic").value, "g h");
    EXPECT_EQ(ValueOf<COpValueGeneric>("generic:m").value, "1 0");
    EXPECT_EQ(In(0).CurrentType(), "rgb");
}

TEST_F(ButtonSection, ValuesOfATypeThatTheButtonLacksAreDropped) {
    EXPECT_TRUE(LoadBox("input i { string { value kept } }",
                        Button("input i i", "string",
                               "float 1 2 3 1 xyz 4 5 6 7 8 1 rgb 1 2 3 rgba 1 2 3 4\n"
                               "generic \"g\"\ngeneric m \"1\"\npin 1")));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(In(0).pin, 1);
    EXPECT_EQ(In(0).values.size(), 1U);
    EXPECT_TRUE(LoadBox(kFloat, Button("input i i", "float", "string lost arg 1")));
    EXPECT_EQ(In(0).arg, 1);
}

TEST_F(ButtonSection, AGenericValueIsTheRestOfItsLineWithBackslashesAsTheyAre) {
    const std::pair<std::string, std::string> kPlain[] = {
        {R"(generic "a \"b\" \\ # c"  )", R"(a \"b\" \\ # c)"},
        {R"(generic "")", ""},
        {R"(generic	"one" "two")", R"(one" "two)"},
        {R"(generic:ignored "x")", "x"},
    };
    for (const auto& [line, value] : kPlain) {
        EXPECT_TRUE(LoadBox("input i { generic { value old } }", Button("input i i", "generic", line)))
            << line;
        EXPECT_EQ(ValueOf<COpValueGeneric>("generic").value, value) << line;
    }
    const std::pair<std::string, std::string> kNamed[] = {
        {R"(generic m "1 0 \")", "1 0 \\"},
        {R"(generic m "a\"b")", "a\\"},
        {R"(generic m "")", ""},
        {R"(generic m   "x" "y" more)", "x"},
        {"generic m", ""},
        {"generic m plain", ""},
        {R"(genericm m "open)", "open"},
    };
    for (const auto& [line, value] : kNamed) {
        EXPECT_TRUE(LoadBox("input i { generic:m { value old } }", Button("input i i", "generic:m", line)))
            << line;
        EXPECT_EQ(ValueOf<COpValueGeneric>("generic:m").value, value) << line;
    }
}

TEST_F(ButtonSection, AnOddGenericTypeIsTheKeywordOfItsLine) {
    const std::string definition =
        "input i { generic { value g } generic: { value e } genericlight { value l } }";
    EXPECT_TRUE(
        LoadBox(definition, Button("input i i", "genericlight",
                                   "generic \"1\"\ngeneric: \"2\"\ngenericlight \"3\"\ngenericother \"4\"")));
    EXPECT_EQ(ValueOf<COpValueGeneric>("generic").value, "4")
        << "a type that the button lacks is \"generic\"";
    EXPECT_EQ(ValueOf<COpValueGeneric>("generic:").value, "2");
    EXPECT_EQ(ValueOf<COpValueGeneric>("genericlight").value, "3");
}

TEST_F(ButtonSection, AGenericLineWithoutAnyWordIsUnexpected) {
    ExpectStop("input i { generic { value old } }", Button("input i i", "generic", "generic  "), 4);
    EXPECT_FALSE(Load("opdesk { opbox { filename op1\nopbutton.input i i currentcast generic { generic"));
    EXPECT_EQ(host.Sink().LastAlert(), "doc.tvn near line 2: unexpected input");
}

TEST_F(ButtonSection, AGenericValueWithAQuoteGrowsABackslashWithEachSave) {
    EXPECT_TRUE(LoadBox("input i { generic { value old } }", ""));
    ValueOf<COpValueGeneric>("generic").value = "say \"x\"";
    for (const char* expected : {R"(say \"x\")", R"(say \\\"x\\\")"}) {
        const std::string text = document.Store();
        document.DeleteContents();
        ASSERT_TRUE(Load(text));
        EXPECT_EQ(ValueOf<COpValueGeneric>("generic").value, expected);
    }
}

TEST_F(ButtonSection, FlagsOfTheDefinitionArePassedOverWithTheirLine) {
    EXPECT_TRUE(
        LoadBox(kFloat, Button("input i i", "float", "disableargflag 1 oops }\ndisableconnectflag\narg 1")));
    EXPECT_EQ(In(0).disableargflag, 0);
    EXPECT_EQ(In(0).arg, 1);
}

TEST_F(ButtonSection, AnUnknownSettingIsNamedAndStopsTheReading) {
    ExpectStop(kFloat, Button("input i i", "float", "pin 1\ncolour 2"), 4, "unexpected input \"colour\"");
    EXPECT_EQ(In(0).pin, 1);
    ExpectStop(kFloat, Button("input i i", "float", "{"), 3, "unexpected input \"{\"");
    ExpectStop(kFloat, Button("input i i", "float", "\"\""), 3, "unexpected input \"\"");
    ExpectStop(kFloat, Button("input i i", "float", "floats 1"), 3, "unexpected input \"floats\"");
}

TEST_F(ButtonSection, AMissingTokenAnywhereIsUnexpected) {
    host.AddOperator(
        "all",
        "input i { float { 0 0 0 0 %g } xyz { 0 0 0 0 0 0 %g } rgb { 0 0 0 %g } rgba { 0 0 0 0 %g } "
        "string { value x } }");
    const std::string head = "opdesk { opbox { filename all\nopbutton.input i i ";
    for (const char* rest : {"",
                             "{ opbuttondefs {",
                             "{ currentcast",
                             "currentcast float",
                             "currentcast float wwms",
                             "currentcast float {",
                             "currentcast float { pin",
                             "currentcast float { stow",
                             "currentcast float { lock",
                             "currentcast float { arg",
                             "currentcast float { argname",
                             "currentcast float { comments",
                             "currentcast float { float 1 2 3",
                             "currentcast float { xyz 1 2 3 4 5",
                             "currentcast float { rgb 1 2",
                             "currentcast float { rgba 1 2 3",
                             "currentcast float { string",
                             "currentcast float { pin 1",
                             "currentcast float { }",
                             "currentcast float { } }",
                             "currentcast float { } } x",
                             "currentcast float { } x }"}) {
        host.Sink().alerts.clear();
        document.DeleteContents();
        EXPECT_FALSE(Load(head + rest)) << rest;
        EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 2: unexpected input")) << rest;
    }
}

TEST_F(ButtonSection, NeitherTheBracesBeforeTheCastNorTheWordBehindItAreChecked) {
    EXPECT_TRUE(LoadBox(kFloat, "opbutton.input i i any words currentcast float more words { arg 1 } } }"));
    EXPECT_EQ(In(0).arg, 1);
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ButtonSection, AButtonNeedsANameAndAnId) {
    host.AddOperator("op", kFloat);
    EXPECT_FALSE(Load("opdesk { opbox { filename op\nopbutton.input"));
    EXPECT_FALSE(Load("opdesk { opbox { filename op\nopbutton.output o # no more"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 2: expected button name",
                                      "doc.tvn near line 2: expected button id"));
}

TEST_F(ButtonSection, AnInputThatTheDefinitionHasNotStopsTheReading) {
    ExpectStop(kFloat, Button("input j j", "float"), 2, "undefined input j specified");
    ExpectStop(kVinput, Button("vinput layer layer1", "string"), 2, "undefined input layer specified");
    EXPECT_EQ(document.m_boxes.size(), 1U);
    ExpectStop("", Button("vinput v v1", "string"), 2, "undefined input v specified");
}

TEST_F(ButtonSection, InputsAreFoundInTheDefinitionsOrderAlone) {
    const char* const definition =
        "input a { string { value x } } input b { string { value x } } input c { string { value x } }";
    EXPECT_TRUE(LoadBox(
        definition, Button("input a a", "string", "string 1") + Button("input c c", "string", "string 3")));
    EXPECT_EQ(Text(0) + Text(1) + Text(2), "1x3");
    ExpectStop(definition, Button("input b b", "string") + Button("input a a", "string"), 5,
               "undefined input a specified");
}

TEST_F(ButtonSection, AnInputOfTheOtherKindIsReportedAndReadAllTheSame) {
    EXPECT_TRUE(LoadBox(kFloat, Button("vinput i i1", "float", "arg 1")));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 2: input i not of type vinput"));
    EXPECT_EQ(In(0).arg, 1);
    EXPECT_EQ(In(0).kind, ButtonKind::kInput);
}

TEST_F(ButtonSection, OutputsAreMatchedByPositionAlone) {
    const char* const definition = "output a { float out rgb out } output b { float out }";
    EXPECT_TRUE(LoadBox(definition, Button("output renamed renamed", "rgb", "pin 1") +
                                        Button("output a a", "float", "pin 2")));
    EXPECT_EQ(Box().outputs.at(0)->pin, 1);
    EXPECT_EQ(Box().outputs.at(0)->name, "a");
    EXPECT_EQ(Box().outputs.at(0)->CurrentType(), "rgb");
    EXPECT_EQ(Box().outputs.at(1)->pin, 2);
    ExpectStop("output a { }", Button("output a a", "\"\"") + Button("output c c", "\"\""), 5,
               "undefined output c specified");
    ExpectStop(kFloat, Button("output o o", "float"), 2, "undefined output o specified");
}

TEST_F(ButtonSection, AnUnknownKindOfButtonStopsTheReading) {
    ExpectStop("output o { float out }", Button("outputs o o", "float"), 2, "button o not of type outputs");
    ExpectStop("output o { float out }", Button(" o o", "float"), 2, "button o not of type ");
    ExpectStop(kFloat, Button("Input i i", "float"), 2, "undefined output i specified");
}

TEST_F(ButtonSection, TheCastIsChosenByItsName) {
    const char* const definition =
        "input i { float { 0 0 0 0 %g } generic:m { value x } generic:n { value x } }";
    for (const char* cast : {"float", "generic:m", "generic:n"}) {
        EXPECT_TRUE(LoadBox(definition, Button("input i i", cast)));
        EXPECT_EQ(In(0).CurrentType(), cast);
    }
    EXPECT_TRUE(LoadBox(definition, Button("input i i", "generic")));
    EXPECT_EQ(In(0).CurrentType(), "generic:m");
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ButtonSection, ACastThatTheButtonLacksIsReportedWithThoseThatItHas) {
    EXPECT_TRUE(LoadBox("input i { rgb { 0 0 0 %g } generic:m { value x } }",
                        Button("input i i", "matrix", "arg 1")));
    EXPECT_THAT(
        Alerts(),
        ElementsAre("doc.tvn near line 4: illegal cast matrix for button op1_1:i.\n\nAvailable casts:\n"
                    "\n        rgb\n        generic:m"));
    EXPECT_EQ(In(0).CurrentType(), "rgb");
    EXPECT_EQ(In(0).arg, 1);
    EXPECT_TRUE(LoadBox("vinput v { rgb { 0 0 0 %g } }",
                        Button("vinput v v1", "rgb") + Button("vinput v v2", "generic")));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 7: illegal cast generic for button op2_1:v2.\n\n"
                                      "Available casts:\n\n        rgb"));
}

TEST_F(ButtonSection, TheEmptyCastOfAnOutputWithoutAnyTypeIsTakenInSilence) {
    EXPECT_TRUE(LoadBox("output o { }", Button("output o o", "\"\"", "pin 1")));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(Box().outputs.at(0)->pin, 1);
    EXPECT_TRUE(LoadBox("output o { float out }", Button("output o o", "\"\"")));
    EXPECT_EQ(Alerts().size(), 1U);
}

TEST_F(ButtonSection, ReadingDoesNotSpreadACastAlongItsLocks) {
    const char* const definition =
        "input i { float { 0 0 0 0 %g } rgb { 0 0 0 %g } } output o { float out rgb out } "
        "defs { castlock.add i o }";
    EXPECT_TRUE(LoadBox(definition, Button("input i i", "rgb") + Button("output o o", "float")));
    EXPECT_EQ(In(0).CurrentType() + Box().outputs.at(0)->CurrentType(), "rgbfloat");
    EXPECT_TRUE(LoadBox(definition, Button("output o o", "float") + Button("input i i", "rgb")));
    EXPECT_EQ(In(0).CurrentType() + Box().outputs.at(0)->CurrentType(), "rgbfloat");
}

TEST_F(ButtonSection, TheFileDecidesHowManyCopiesOfAVinputThereAre) {
    EXPECT_TRUE(LoadBox(kVinput, Button("vinput v v1", "string", "string 1")));
    EXPECT_THAT(InputNames(), ElementsAre("v1", "w"));
    EXPECT_TRUE(LoadBox(
        kVinput, Button("vinput v v1", "string", "string 1") + Button("vinput v v2", "string", "string 2") +
                     Button("vinput v v3", "string", "arg 1") + Button("input w w", "string", "string 4")));
    EXPECT_THAT(InputNames(), ElementsAre("v1", "v2", "v3", "w"));
    EXPECT_EQ(Text(0) + Text(1) + Text(2) + Text(3), "1224");  // a copy begins as the one before it
    EXPECT_EQ(In(1).arg, 0);
    EXPECT_EQ(In(2).arg, 1);
    EXPECT_EQ(In(2).owner, &Box());
}

TEST_F(ButtonSection, AVinputThatTheFileDoesNotNameIsGone) {
    EXPECT_TRUE(LoadBox(kVinput, Button("input w w", "string")));
    EXPECT_THAT(InputNames(), ElementsAre("w"));
    EXPECT_TRUE(LoadBox(kVinput, ""));
    EXPECT_THAT(InputNames(), ElementsAre("w"));
}

TEST_F(ButtonSection, AVinputWhoseFirstCopyIsMissingGetsAFurtherOne) {
    EXPECT_TRUE(LoadBox(kVinput, Button("vinput v v7", "string", "string 7")));
    EXPECT_THAT(InputNames(), ElementsAre("v1", "v2", "w"));
    EXPECT_EQ(Text(0) + Text(1), "start7");
}

TEST_F(ButtonSection, VinputsOfOneNameThatComeToStandTogetherAreNumberedOn) {
    const std::string a = "vinput a { string { value x } } ";
    const std::string b = "vinput b { string { value x } } ";
    EXPECT_TRUE(
        LoadBox(a + a, Button("vinput a a1", "string") + Button("vinput a a2", "string", "string 2")));
    EXPECT_THAT(InputNames(), ElementsAre("a1", "a2", "a3"));
    EXPECT_EQ(Text(0) + Text(1) + Text(2), "x2x");
    EXPECT_TRUE(LoadBox(a + b + a, Button("vinput a a1", "string")));
    EXPECT_THAT(InputNames(), ElementsAre("a1", "a2"));
}

TEST_F(ButtonSection, WhatOneBoxNamesDoesNotDecideOverTheNext) {
    host.AddOperator("twin", kVinput);
    EXPECT_TRUE(Load("opdesk { opbox { filename twin wid 1\n" + Button("vinput v v1", "string") + "}\n" +
                     "opbox { filename twin wid 2 } }"));
    EXPECT_EQ(BoxAt(document, 0).inputs.size(), 2U);
    EXPECT_EQ(BoxAt(document, 1).inputs.size(), 1U);
}

TEST_F(ButtonSection, AVinputMayBeCalledByItsBareName) {
    EXPECT_TRUE(LoadBox(kVinput, Button("vinput v v", "string", "string 1")));
    EXPECT_THAT(InputNames(), ElementsAre("v1", "w"));
    EXPECT_EQ(Text(0), "1");
}

TEST_F(ButtonSection, CopiesOfSeveralVinputsAreNumberedApart) {
    const char* const definition =
        "vinput a { string { value x } } vinput b { string { value x } } vinput a1 { string { value x } }";
    std::string buttons;
    for (const char* head :
         {"vinput a a1", "vinput a a2", "vinput b b1", "vinput b b2", "vinput b b3", "vinput a1 a11"}) {
        buttons += Button(head, "string");
    }
    EXPECT_TRUE(LoadBox(definition, buttons));
    EXPECT_THAT(InputNames(), ElementsAre("a1", "a2", "b1", "b2", "b3", "a11"));
}

}  // namespace
}  // namespace tavrin
