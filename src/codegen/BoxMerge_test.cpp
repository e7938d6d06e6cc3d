// SPDX-License-Identifier: Apache-2.0
// Boxes are expanded and merged at once, without a copy of them.
#include "codegen/BoxMerge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "codegen/CodeGenTest.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::Everything;
using test::TestSite;
using test::TextsOf;
using testing::ElementsAre;

constexpr auto kBody = CCodeGen::kMainBody;

// What the steps one by one give: a copy with the declarations is expanded and then merged.
void MergeStepByStep(CCodeGen& shader, const CCodeGen& box, const CMex& expander,
                     const std::vector<BoxMerge::Declaration>& declarations) {
    TestSite site;
    CCodeGen copy = box;
    copy.Mex() = expander;
    for (const BoxMerge::Declaration& line : declarations) copy.AddLine("main-header", "append", line.text);
    copy.ExpandAll("all", site.report);
    shader.Merge(copy);
}

TEST(BoxMerge, DeclarationsFollowTheBoxsHeader) {
    CCodeGen box;
    box.AddLine("main-header", "append", "in header");
    box.AddLine("main-header", "insert", "in first");
    box.AddLine("main-body", "append", "in body");
    box.AddLine("main-close", "append", "in close");
    CCodeGen shader;
    shader.AddLine("main-header", "append", "in shader");
    BoxMerge merge(shader);
    merge.Start(box).SetVariable("in", "v");
    merge.Merge({{"float in;", 1}, {"color out;", 2}});
    EXPECT_THAT(Everything(shader),
                ElementsAre("5/1/v first", "5/0/in shader", "5/0/v header", "5/0/float v;", "5/0/color out;",
                            "6/0/v body", "7/0/in close"));
}

TEST(BoxMerge, OnlyTheVariablesOfTheExpanderCount) {
    CCodeGen box;
    box.SetVariable("a", "the definition's");
    box.AddLine("main-body", "append", "a b");
    CCodeGen shader;
    shader.SetVariable("a", "the shader's");
    BoxMerge merge(shader);
    merge.Start(box).SetVariable("b", "added");
    merge.Merge({});
    EXPECT_THAT(TextsOf(shader, kBody), ElementsAre("a added"));
}

TEST(BoxMerge, NoVariableOfABoxReachesTheNextBoxOrTheShader) {
    CCodeGen box;
    box.AddLine("main-body", "append", "x");
    CCodeGen shader;
    BoxMerge merge(shader);
    merge.Start(box).SetVariable("x", "first");
    merge.Merge({});
    merge.Start(box);
    merge.Merge({});
    EXPECT_THAT(TextsOf(shader, kBody), ElementsAre("first", "x"));
    for (CCodeGen* codegen : {&shader, &box}) {
        std::string result;
        codegen->ExpandString("x", result);
        EXPECT_EQ(result, "x");
    }
}

TEST(BoxMerge, LeavesTheBoxAsItWas) {
    CCodeGen box;
    box.AddLine("main-body", "append", "x");
    CCodeGen shader;
    BoxMerge merge(shader);
    CMex& expander = merge.Start(box);
    expander.SetVariable("x", "v");
    expander.m_state = CMex::kAfterStrayClose;
    merge.Merge({});
    EXPECT_THAT(TextsOf(box, kBody), ElementsAre("x"));
    EXPECT_THAT(TextsOf(shader, kBody), ElementsAre("v"));
}

class BoxMergeEquals : public testing::TestWithParam<bool> {};

TEST_P(BoxMergeEquals, ExpandingACopyAndMergingIt) {
    std::mt19937 random(5);
    const std::vector<std::string> texts = {
        "x",       "${y} = x;", "/* x", "x */ y", "",   "\"x", "y\" x", "x \\", "xy",       "${xy}", "// x y",
        "#incl x", "${none}",   "{",    "  x  ",  "*/", "u",   "u",     "v",    "${x}${y}", "y x"};
    const auto text = [&] { return texts[random() % texts.size()]; };
    const auto fill = [&](CCodeGen& codegen, size_t lines) {
        for (size_t i = 0; i < lines; ++i) {
            const auto block = static_cast<CCodeGen::BlockId>(random() % CCodeGen::kBlockCount);
            codegen.AddLine(block, static_cast<LineKind>(random() % 3), text());
        }
    };
    for (int round = 0; round < 300; ++round) {
        CCodeGen first;
        fill(first, random() % 20);
        CCodeGen second = first;
        BoxMerge merge(first);
        for (size_t box = random() % 4 + 1; box > 0; --box) {
            CCodeGen codegen;
            fill(codegen, random() % 60);
            if (GetParam()) {
                codegen.Mex().Tokens() = {{"/*"}, {"*/"}, {"//"}, {'\\'}, {'"'}, random() % 2 == 0};
            }
            CMex& expander = merge.Start(codegen);
            expander.SetVariable("x", std::to_string(box));
            expander.SetVariable("x", "later");
            expander.SetVariable("y", text());
            std::vector<BoxMerge::Declaration> declarations;
            for (size_t i = random() % 4; i > 0; --i) declarations.push_back({text(), i});
            MergeStepByStep(second, codegen, expander, declarations);
            merge.Merge(declarations);
        }
        ASSERT_EQ(Everything(first), Everything(second)) << "round " << round;
    }
}

INSTANTIATE_TEST_SUITE_P(WithTheScanner, BoxMergeEquals, testing::Values(false, true),
                         [](const auto& parameter) { return parameter.param ? "Armed" : "Bare"; });

}  // namespace
}  // namespace tavrin
