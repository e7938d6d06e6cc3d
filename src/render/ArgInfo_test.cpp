// SPDX-License-Identifier: Apache-2.0
// The section that tells the scripts of a shader's help and arguments.
#include "render/ArgInfo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kNoHelp = "Help\n{\n}\n\n";

class ArgInfoTest : public test::DocumentTest {
  protected:
    ArgInfoTest() { document.customshaderhelp.clear(); }

    // A box whose inputs are all arguments.
    COpBox& AddArguments(const std::string& filename, const std::string& definition, int wid = 1) {
        COpBox& box = Add(test::MakeBox(filename, definition, wid));
        for (auto& input : box.inputs) input->arg = 1;
        return box;
    }
    std::string ArgInfo() {
        Report report;
        return WriteArgInfo(document, report);
    }
    // The names of the arguments in their order, a blank behind each.
    std::string Names() {
        std::string names;
        const std::string text = ArgInfo();
        constexpr std::string_view kKey = "ArgName ";
        for (size_t at = text.find(kKey); at != std::string::npos; at = text.find(kKey, at + 1)) {
            const size_t start = at + kKey.size();
            names += text.substr(start, text.find('\n', start) - start) + " ";
        }
        return names;
    }
};

TEST_F(ArgInfoTest, AnArgumentIsWrittenWithAllThatIsKnownOfIt) {
    document.customshaderhelp = "A simple plastic.";
    COpButton& button = *AddArguments("plastic", "input Ks { float { 0.5 0 1 0 %g } }").inputs.front();
    button.argname = "Ks";
    button.pin = 1;
    button.comments = "specular weight";
    EXPECT_EQ(ArgInfo(),
              "Help\n"
              "{\n"
              ">A simple plastic.\n"
              "}\n"
              "\n"
              "ArgName Ks\n"
              "{\n"
              "    Stow        0\n"
              "    Lock        0\n"
              "    Pin         1\n"
              "    BoxTitle    plastic\n"
              "    ButtonTitle Ks\n"
              "    Comments    specular weight\n"
              "    float       0.5\n"
              "    MinMax      0.000000 1.000000\n"
              "}\n"
              "\n"
              "EndArginfo\n");
}

TEST_F(ArgInfoTest, AnEmptyCommentLeavesTheColumnsOfItsKey) {
    AddArguments("plastic", "input Ks { float { 0.5 0 1 0 %g } }");
    EXPECT_THAT(ArgInfo(), HasSubstr("\n    Comments    \n"));
}

TEST_F(ArgInfoTest, ThreeFlagsAreWrittenEachByItself) {
    COpButton& button = *AddArguments("plastic", "input Ks { float { 0.5 0 1 0 %g } }").inputs.front();
    button.stow = 1;
    EXPECT_THAT(ArgInfo(), HasSubstr("    Stow        1\n    Lock        0\n    Pin         0\n"));
    button.stow = 0;
    button.lock = 1;
    EXPECT_THAT(ArgInfo(), HasSubstr("    Stow        0\n    Lock        1\n    Pin         0\n"));
}

TEST_F(ArgInfoTest, ANetworkWithoutArgumentsGivesTheHelpAlone) {
    Add(test::MakeBox("plastic", "input Ks { float { 0.5 0 1 0 %g } }", 1));
    EXPECT_EQ(ArgInfo(), std::string(kNoHelp) + "EndArginfo\n");
}

TEST_F(ArgInfoTest, EachLineOfTheHelpGetsAMarkAndEmptyOnesToo) {
    document.customshaderhelp = "first\r\n\r\n  third }";
    EXPECT_EQ(ArgInfo(), "Help\n{\n>first\n>\n>  third }\n}\n\nEndArginfo\n");
    document.customshaderhelp = "one\n";
    EXPECT_EQ(ArgInfo(), "Help\n{\n>one\n>\n}\n\nEndArginfo\n");
}

TEST_F(ArgInfoTest, AnArgumentWithoutANameOfItsOwnIsCalledByItsBoxAndButton) {
    AddArguments("plastic", "input Ks { float { 0.5 0 1 0 %g } }", 7);
    EXPECT_EQ(Names(), "plastic_7_Ks ");
}

TEST_F(ArgInfoTest, ConnectedAndUnmarkedInputsAreLeftOut) {
    COpBox& source = Add(test::MakeLink("Source", 1));
    COpBox& box = AddArguments("Mix",
                               "input a { float { 0 0 1 0 %g } } input b { float { 0 0 1 0 %g } } "
                               "input c { float { 0 0 1 0 %g } } output out { float out }",
                               2);
    test::Wire(source, 0, box, 0);
    box.inputs[1]->arg = 0;
    box.outputs[0]->arg = 1;
    EXPECT_EQ(Names(), "Mix_2_c ");
    box.inputs[0]->Disconnect();
    EXPECT_EQ(Names(), "Mix_2_a Mix_2_c ");
}

TEST_F(ArgInfoTest, OnlyNumbersAndPointsHaveLimits) {
    const auto blockOf = [this](const std::string& value) {
        document.m_boxes.clear();
        AddArguments("Box", "input in { " + value + " }");
        const std::string text = ArgInfo();
        const size_t start = text.find("Comments    \n") + 13;
        return text.substr(start, text.find('}', start) - start);
    };
    EXPECT_EQ(blockOf("float { 1.5 -2.25 1e6 0 %g }"),
              "    float       1.5\n    MinMax      -2.250000 1000000.000000\n");
    EXPECT_EQ(blockOf("xyz { 1 2 3 -1 1 0 \"(%g, %g, %g)\" }"),
              "    xyz         (1, 2, 3)\n    MinMax      -1.000000 1.000000\n");
    EXPECT_EQ(blockOf("rgb { 1 0.5 0 \"%g %g %g\" }"), "    rgb         1 0.5 0\n");
    EXPECT_EQ(blockOf("rgba { 1 0.5 0 1 \"%g %g %g %g\" }"), "    rgba        1 0.5 0 1\n");
    EXPECT_EQ(blockOf("string { value \"a b\" format %s quoteflag 1 }"), "    string      \"a b\"\n");
    EXPECT_EQ(blockOf("generic { value \"vec2(1, 1)\" }"), "    generic     vec2(1, 1)\n");
    EXPECT_EQ(blockOf("generic:vec2 { value \"vec2(1, 1)\" }"), "    generic     vec2(1, 1)\n");
}

TEST_F(ArgInfoTest, TheCurrentCastIsWritten) {
    COpBox& box = AddArguments("Box", "input in { float { 1 0 1 0 %g } rgb { 1 0 0 \"%g %g %g\" } }");
    EXPECT_THAT(ArgInfo(), HasSubstr("    float       1\n    MinMax "));
    box.inputs[0]->SetCast(1);
    EXPECT_THAT(ArgInfo(), HasSubstr("    rgb         1 0 0\n}\n"));
    EXPECT_THAT(ArgInfo(), Not(HasSubstr("MinMax")));
}

TEST_F(ArgInfoTest, AMultipliedInputCarriesItsNumber) {
    AddArguments("Sum", "vinput layer { float { 0 0 1 0 %g } vinstances 2 }", 3);
    EXPECT_EQ(Names(), "Sum_3_layer1 Sum_3_layer2 ");
    EXPECT_THAT(ArgInfo(), HasSubstr("    ButtonTitle layer2\n"));
    EXPECT_THAT(ArgInfo(), HasSubstr("    BoxTitle    Sum\n"));
}

TEST_F(ArgInfoTest, BoxesComeByTitleWithoutRegardToCaseAndNotInTheOrderOfGeneration) {
    constexpr const char* kTwo =
        "input b { float { 0 0 1 0 %g } } input a { float { 0 0 1 0 %g } } "
        "output out { float out }";
    COpBox& noise2 = AddArguments("noise", kTwo, 2);
    COpBox& zebra = AddArguments("Zebra", kTwo, 1);
    AddArguments("Noise", kTwo, 10);
    AddArguments("apple", kTwo, 3);
    test::Wire(zebra, 0, noise2, 1);
    EXPECT_EQ(Names(), "apple_3_b apple_3_a Noise_10_b Noise_10_a noise_2_b Zebra_1_b Zebra_1_a ");
}

TEST_F(ArgInfoTest, AnArgumentWithAFixedTextIsListedAllTheSame) {
    AddArguments("Box", "input in { float { 0 0 1 0 %g } macro.fixedtext uv\n}");
    EXPECT_EQ(Names(), "Box_1_in ");
}

TEST_F(ArgInfoTest, AButtonWithoutAnyTypeIsPassedOver) {
    COpBox& box = AddArguments("Box", "input in { float { 0 0 1 0 %g } }");
    box.inputs[0]->values.clear();
    EXPECT_THAT(Names(), IsEmpty());
}

}  // namespace
}  // namespace tavrin
