// SPDX-License-Identifier: Apache-2.0
#include "batch/Describe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/OpRegistry.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::HasSubstr;

TEST(DescribeTest, OperatorsAreListedWithTheirMenusAndFiles) {
    test::TempDir directory;
    directory.Write("menu/0010.Noise", "");
    directory.Write("menu/0020.Maths/0010.Simple/0010.Add", "");
    directory.Write("menu/0020.Maths/0020.SineWave", "");
    Report report;
    COpRegistry registry(report);
    EXPECT_EQ(OperatorList(registry), "");
    registry.AddDirectory(directory / "menu");
    EXPECT_EQ(OperatorList(registry),
              "Noise\t\t" + directory / "menu/0010.Noise" + "\n" + "Add\tMaths > Simple\t" +
                  directory / "menu/0020.Maths/0010.Simple/0010.Add" + "\n" + "SineWave\tMaths\t" +
                  directory / "menu/0020.Maths/0020.SineWave" + "\n");
}

std::string Described(const std::string& definition) {
    return OperatorDescription(*test::MakeBox("Box", definition, 1));
}

TEST(DescribeTest, ABoxWithoutAnythingIsItsName) { EXPECT_EQ(Described(""), "Box\n"); }

TEST(DescribeTest, TheHelpIsIndentedAndEachButtonHasItsOwn) {
    EXPECT_EQ(Described("boxhelp {\n    Adds.\n\n>  Twice.\n}\n"
                        "input a {\n help {\n First.\n Line.\n}\n float { 0 0 1 0 %g }\n}\n"
                        "output out {\n help {\nThe sum.\n}\n float out xyz out }\n"),
              "Box\n"
              "    Adds.\n"
              "    \n"
              "      Twice.\n"
              "\n"
              "input a\n"
              "    First.\n"
              "    Line.\n"
              "    float: 0, from 0 to 1\n"
              "\n"
              "output out\n"
              "    The sum.\n"
              "    float\n"
              "    xyz\n");
}

TEST(DescribeTest, EveryTypeShowsItsDefault) {
    EXPECT_EQ(Described("input a {\n"
                        "float { 0.5 -1 2 0 %.3f }\n"
                        "float { 3 1 9 1 %g }\n"
                        "xyz { 1 2.5 3 -1 1 0 \"%g %g %g\" }\n"
                        "rgb { 1 0.5 0 \"%g %g %g\" }\n"
                        "rgba { 1 0.5 0 0.25 \"%g %g %g %g\" }\n"
                        "string { value \"a \\\"b\\\"\" format %s options { one two } }\n"
                        "generic { value N }\n"
                        "generic:vec2 { value \"vec2(1, 2)\" options { \"vec2(0, 0)\" } }\n"
                        "}\n"),
              "Box\n\n"
              "input a\n"
              "    float: 0.5, from -1 to 2\n"
              "    float: 3, from 1 to 9, whole numbers\n"
              "    xyz: 1 2.5 3, from -1 to 1\n"
              "    rgb: 1 0.5 0\n"
              "    rgba: 1 0.5 0 0.25\n"
              "    string: \"a \\\"b\\\"\", one of one two\n"
              "    generic: \"N\"\n"
              "    generic:vec2: \"vec2(1, 2)\", one of vec2(0, 0)\n");
}

TEST(DescribeTest, WhatStandsForAButtonIsTold) {
    const std::string text = Described(
        "input a { float { 0 0 1 0 %g } macro.fixedtext uv.x\n}\n"
        "vinput layer { float { 0 0 1 0 %g } vinstances 2 }\n"
        "output tieback=a same { float out }\n"
        "output fixedvalue=3.14 pi { float out }\n");
    EXPECT_THAT(text, HasSubstr("\ninput a\n    float: 0, from 0 to 1\n    unconnected: uv.x\n"));
    EXPECT_THAT(text, HasSubstr("\nvinput layer1\n"));
    EXPECT_THAT(text, HasSubstr("\nvinput layer2\n"));
    EXPECT_THAT(text, HasSubstr("\noutput same\n    float\n    passes through: a\n"));
    EXPECT_THAT(text, HasSubstr("\noutput pi\n    float\n    stands for: 3.14\n"));
}

}  // namespace
}  // namespace tavrin
