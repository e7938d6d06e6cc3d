// SPDX-License-Identifier: Apache-2.0
// From definitions to the text of the shader: boxes read, wired and generated into a site's templates.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "codegen/BoxMerge.h"
#include "library/CodeNames.h"
#include "library/OpBox.h"
#include "site/TypeTables.h"
#include "support/TestSite.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::CollectingSink;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// The clauses of a site file that are templates.
constexpr const char* kSite = R"site(codegen.linecomment //
codegen.main-open append
surface _SHADERNAME_
<<EOT>>
codegen.main-args append
()
<<EOT>>
codegen.main-header append
{
<<EOT>>
codegen.main-close append
}
<<EOT>>
)site";

constexpr const char* kConstant = R"def(input value {
    float { 0.25 0 1 0 "%g" }
}
output result {
    float out
}
codegen.main-body append
result = value;
<<EOT>>
)def";

constexpr const char* kPaint = R"def(input shade {
    float { 0.5 0 1 0 "%g" }
}
codegen.main-body append
Ci = color(shade);
<<EOT>>
)def";

class ShaderText : public testing::Test {
  protected:
    ShaderText() {
        report.SetSink(&sink);
        types.SetDataType("float", {"float ", ";"});
        ReadTemplates(site, kSite);
    }

    static void ReadTemplates(CCodeGen& codegen, std::string_view text) {
        CArchive archive = ArchiveOf(text, "site");
        std::string keyword;
        std::string error;
        while (ReadToken(archive, keyword)) {
            ASSERT_TRUE(
                codegen.ParseClause(archive, keyword.substr(sizeof "codegen." - 1), "/nowhere", error))
                << error;
        }
    }

    COpBox& Add(std::string_view definition, const std::string& title) {
        COpBox& box = *boxes.emplace_back(std::make_unique<COpBox>());
        CArchive archive = ArchiveOf(definition, title);
        EXPECT_TRUE(box.ReadDefinition(archive, "/nowhere", report)) << sink.LastAlert();
        box.filename = title;
        box.wid = static_cast<int>(boxes.size());
        return box;
    }

    // The code file of all boxes, in the order in which they were added.
    std::vector<std::string> Generate() {
        CCodeGen shader = site;
        shader.SetVariable("_SHADERNAME_", "demo");
        PreparedVariables prepared;
        for (const auto& box : boxes) prepared.Prepare(*box, types);
        BoxMerge merge(shader);
        for (const auto& box : boxes) box->GenerateCode(merge, types, {prepared, &report});
        std::vector<std::string> lines;
        shader.WriteCode(lines);
        hints.clear();
        shader.WriteHints(hints);
        return lines;
    }

    CollectingSink sink;
    Report report;
    TypeTables types;
    CCodeGen site;
    std::vector<std::unique_ptr<COpBox>> boxes;
    std::vector<std::string> hints;
};

TEST_F(ShaderText, AConstantWiredToAPaintReadsAsItShould) {
    COpBox& constant = Add(kConstant, "Constant");
    COpBox& paint = Add(kPaint, "Paint");
    constant.outputs[0]->Connect(*paint.inputs[0]);
    EXPECT_THAT(Generate(), ElementsAre("surface demo",                        //
                                        "()",                                  //
                                        "{",                                   //
                                        "    float Constant_1_result;",        //
                                        "    ",                                //
                                        "    // Constant_1",                   //
                                        "    Constant_1_result = 0.25;",       //
                                        "    ",                                //
                                        "    // Paint_2",                      //
                                        "    Ci = color(Constant_1_result);",  //
                                        "}"));
    EXPECT_THAT(hints, IsEmpty());
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(ShaderText, WithoutTheWireThePaintHasItsOwnLiteral) {
    COpBox& constant = Add(kConstant, "Constant");
    COpBox& paint = Add(kPaint, "Paint");
    constant.outputs[0]->Connect(*paint.inputs[0]);
    paint.inputs[0]->Disconnect();
    EXPECT_THAT(Generate(), Contains("    Ci = color(0.5);"));
    paint.inputs[0]->arg = 1;
    EXPECT_THAT(Generate(), Contains("    Ci = color(Paint_2_shade);"));
    paint.inputs[0]->argname = "lightness";
    EXPECT_THAT(Generate(), Contains("    Ci = color(lightness);"));
}

TEST_F(ShaderText, GeneratingAgainGivesTheSameTextAndLeavesTheSiteAlone) {
    COpBox& constant = Add(kConstant, "Constant");
    COpBox& paint = Add(kPaint, "Paint");
    constant.outputs[0]->Connect(*paint.inputs[0]);
    const auto once = Generate();
    EXPECT_EQ(Generate(), once);
    EXPECT_EQ(site.Block(CCodeGen::kMainBody).Size(), 0U);
}

TEST_F(ShaderText, SiteVariablesReachTheTemplatesOfBoxesInTheLastPass) {
    ReadTemplates(site, "codegen.setvariable PRECISION mediump\n");
    Add("output result { float out }\n"
        "codegen.main-body append\nresult = PRECISION _SHADERNAME_ ${unknown};\n<<EOT>>\n"
        "codegen.main-args append\nresult PRECISION\n<<EOT>>\n",
        "Box");
    const auto lines = Generate();
    EXPECT_THAT(lines, Contains("    Box_1_result = mediump demo ${unknown};"));
    EXPECT_THAT(lines, Contains("result mediump")) << "this block never sees the names of boxes";
}

TEST_F(ShaderText, AMacroInAValueIsExpandedInTheLastPass) {
    Add("input a { string { value \"x_${_SHADERNAME_}\" format %s } }\ncodegen.main-body "
        "append\na;\n<<EOT>>\n",
        "Box");
    EXPECT_THAT(Generate(), Contains("    x_demo;"));
}

TEST_F(ShaderText, AFixedValueGivesItsFullResultOnlyInItsOwnBox) {
    COpBox& source =
        Add("input a { float { 0.5 0 1 0 %g } }\noutput fixedvalue=\"warp(a, TAVRN_BoxWid)\" moved { float "
            "out }\n"
            "codegen.main-body append\nown = moved;\n<<EOT>>\n",
            "Warp");
    COpBox& paint = Add(kPaint, "Paint");
    source.outputs[0]->Connect(*paint.inputs[0]);
    const auto lines = Generate();
    EXPECT_THAT(lines, Contains("    own = warp(0.5, 1);"));
    EXPECT_THAT(lines, Contains("    Ci = color(warp(a, 1));"));
    EXPECT_THAT(lines, Not(Contains("    float Warp_1_moved;")));
}

TEST_F(ShaderText, AFixedValueIsPreparedBeforeAnyBoxIsGenerated) {
    // The box that uses the value stands before the one that gives it.
    COpBox& paint = Add(kPaint, "Paint");
    COpBox& source = Add("output fixedvalue=\"P${TAVRN_BoxWid}\" out { float out }\n", "Src");
    source.outputs[0]->Connect(*paint.inputs[0]);
    EXPECT_THAT(Generate(), Contains("    Ci = color(P2);"));
}

TEST_F(ShaderText, OutputsTiedBackPassOnWhatFeedsTheirInput) {
    COpBox& constant = Add(kConstant, "Constant");
    COpBox& relay =
        Add("input in { float { 0.125 0 1 0 %g } }\noutput tieback=in one { float out }\n"
            "output tieback=in two { float out }\n",
            "Relay");
    COpBox& first = Add(kPaint, "Paint");
    COpBox& second = Add(kPaint, "Paint");
    relay.outputs[0]->Connect(*first.inputs[0]);
    relay.outputs[1]->Connect(*second.inputs[0]);
    auto lines = Generate();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "    Ci = color(0.125);"), 2);
    constant.outputs[0]->Connect(*relay.inputs[0]);
    lines = Generate();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "    Ci = color(Constant_1_result);"), 2);
    EXPECT_THAT(lines, Not(Contains("    float Relay_2_one;")));
}

TEST_F(ShaderText, AVinputJoinsAVariableAndLiterals) {
    COpBox& constant = Add(kConstant, "Constant");
    COpBox& sum =
        Add("vinput layer { vinstances 3 vargseparator \" + \" float { 0.5 0 1 0 %g } }\n"
            "codegen.main-body append\nCi = layer; // ${TAVRN_NumVinputs_layer}\n<<EOT>>\n",
            "Sum");
    constant.outputs[0]->Connect(*sum.inputs[1]);
    EXPECT_THAT(Generate(), Contains("    Ci = 0.5 + Constant_1_result + 0.5; // 3"));
    sum.DeleteButton(*sum.inputs[0]);
    EXPECT_THAT(Generate(), Contains("    Ci = Constant_1_result + 0.5; // 2"));
    sum.CopyButton(*sum.inputs[0], true);
    EXPECT_THAT(Generate(), Contains("    Ci = 0.5 + Constant_1_result + 0.5; // 3"));
}

TEST_F(ShaderText, BracesOnLinesOfTheirOwnIndentWhatIsBetween) {
    Add("codegen.main-body append\nfor (;;)\n   {\nif (x) {\n}\n\t}\n<<EOT>>\n", "Loop");
    EXPECT_THAT(Generate(), ElementsAre("surface demo", "()", "{", "    ", "    // Loop_1", "    for (;;)",
                                        "    {", "        if (x) {", "    }", "}", "}"))
        << "a brace behind other text does not count, and the depth is not held at 0";
}

TEST_F(ShaderText, SharedLinesOfTenBoxesStandOnceBeforeEverything) {
    for (int i = 0; i < 10; ++i) {
        Add("codegen.global-open unique\nfloat noise();\n<<EOT>>\n"
            "codegen.global-header insert\n#define A\n#define B\n<<EOT>>\n",
            "Noise");
    }
    const auto lines = Generate();
    EXPECT_EQ(lines[0], "float noise();");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "float noise();"), 1);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "#define A"), 10);
    EXPECT_EQ(lines[1], "#define A") << "inserted lines read in the order written";
    EXPECT_EQ(lines[2], "#define B");
}

TEST_F(ShaderText, HintsAreExpandedAndKeptApart) {
    Add("input a { float { 0.5 0 1 0 %g } }\n"
        "codegen.hinttext append\n  a of ${TAVRN_BoxTitle} in _SHADERNAME_\n<<EOT>>\n",
        "Box");
    const auto lines = Generate();
    EXPECT_THAT(hints, ElementsAre("  0.5 of Box in demo"));
    EXPECT_THAT(lines, Not(Contains(testing::HasSubstr("of Box"))));
}

TEST_F(ShaderText, ACopiedBoxHasOnlyItsLabelAndItsDeclaration) {
    COpBox& constant = Add(kConstant, "Constant");
    boxes.push_back(std::make_unique<COpBox>(constant));
    boxes.back()->wid = 2;
    const auto lines = Generate();
    EXPECT_THAT(lines, Contains("    float Constant_2_result;"));
    EXPECT_THAT(lines, Contains("    // Constant_2"));
    EXPECT_THAT(lines, Not(Contains("    Constant_2_result = 0.25;")));
}

TEST_F(ShaderText, ANewNumberOfABoxGivesNewNamesEverywhere) {
    COpBox& constant = Add(kConstant, "Constant");
    COpBox& paint = Add(kPaint, "Paint");
    constant.outputs[0]->Connect(*paint.inputs[0]);
    constant.wid = 31;
    const auto lines = Generate();
    EXPECT_THAT(lines, Contains("    float Constant_31_result;"));
    EXPECT_THAT(lines, Contains("    Ci = color(Constant_31_result);"));
    EXPECT_THAT(lines, Not(Contains(testing::HasSubstr("Constant_1_"))));
}

}  // namespace
}  // namespace tavrin
