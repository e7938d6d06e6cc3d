// SPDX-License-Identifier: Apache-2.0
// The text of a whole shader: what the site's template and the boxes of the network come to.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/OpDesk.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kStars(72, '*');

constexpr const char* kConstant =
    "input value { float { 0.25 0 1 0 %g } } output result { float out }\n"
    "codegen.main-body append\nresult = value;\n<<EOT>>\n";
constexpr const char* kPaint =
    "input shade { float { 0.5 0 1 0 %g } }\ncodegen.main-body append\nCi = color(shade);\n<<EOT>>\n";

// A small shading language, and a constant that is wired to a paint.
class GeneratedCodeTest : public test::DocumentTest {
  protected:
    GeneratedCodeTest() {
        document.customshaderhelp.clear();
        document.SetPath("/documents/demo.tvn");
        host.GetSite().types.SetDataType("float", {"float ", ";"});
        siteCodeGen.m_lineComment = "//";
        siteCodeGen.AddLine("main-open", "append", "surface _SHADERNAME_");
        siteCodeGen.AddLine("main-args", "append", "()");
        siteCodeGen.AddLine("main-header", "append", "{");
        siteCodeGen.AddLine("main-close", "append", "}");
    }
    void AddExample() {
        COpBox& constant = Add(test::MakeBox("Constant", kConstant, 1));
        paint = &Add(test::MakeBox("Paint", kPaint, 2));
        test::Wire(constant, 0, *paint, 0);
    }
    std::vector<std::string> Code() { return session.Generate().code; }
    // The code of the example with this for the last statement.
    static std::vector<std::string> ExampleWith(const std::string& statement) {
        return {"surface demo",
                "()",
                "{",
                "    float Constant_1_result;",
                "    ",
                "    // Constant_1",
                "    Constant_1_result = 0.25;",
                "    ",
                "    // Paint_2",
                "    " + statement,
                "}"};
    }

    CCodeGen siteCodeGen;
    RenderSession session{document, host.GetSite(), siteCodeGen};
    COpBox* paint = nullptr;
};

TEST_F(GeneratedCodeTest, EachBlockFollowsTheOther) {
    AddExample();
    EXPECT_EQ(Code(), ExampleWith("Ci = color(Constant_1_result);"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(GeneratedCodeTest, WithoutItsWireAnInputIsItsOwnLiteral) {
    AddExample();
    paint->inputs[0]->Disconnect();
    EXPECT_EQ(Code(), ExampleWith("Ci = color(0.5);"));
}

TEST_F(GeneratedCodeTest, WithoutItsWireAnArgumentIsItsName) {
    AddExample();
    COpButton& shade = *paint->inputs[0];
    shade.arg = 1;
    EXPECT_EQ(Code(), ExampleWith("Ci = color(Constant_1_result);"));
    shade.Disconnect();
    EXPECT_EQ(Code(), ExampleWith("Ci = color(Paint_2_shade);"));
    shade.argname = "tone";
    EXPECT_EQ(Code(), ExampleWith("Ci = color(tone);"));
    shade.fixedtext = "N";
    EXPECT_EQ(Code(), ExampleWith("Ci = color(N);"));
}

TEST_F(GeneratedCodeTest, TheTemplateOfTheSiteIsNotChanged) {
    AddExample();
    const auto first = Code();
    EXPECT_EQ(siteCodeGen.Block(CCodeGen::kMainBody).Size(), 0U);
    EXPECT_EQ(Code(), first);
}

TEST_F(GeneratedCodeTest, ADocumentWithoutAPathIsUntitled) {
    document.SetPath("");
    EXPECT_EQ(Code().front(), "surface Untitled");
    document.SetPath("/some.where/my.plastic.tvn");
    EXPECT_EQ(Code().front(), "surface my.plastic");
}

TEST_F(GeneratedCodeTest, AnIslandIsPartOfTheShader) {
    AddExample();
    Add(test::MakeBox("Alone", "codegen.main-body append\nalone();\n<<EOT>>\n", 9));
    const auto code = Code();
    EXPECT_THAT(code, testing::Contains("    alone();"));
}

TEST_F(GeneratedCodeTest, FeedersStandBeforeWhatTheyFeedWhateverTheirNames) {
    COpBox& last = Add(test::MakeBox("Aim", kPaint, 1));
    COpBox& first = Add(test::MakeBox("Zinc", kConstant, 2));
    test::Wire(first, 0, last, 0);
    EXPECT_THAT(Code(), ElementsAre("surface demo", "()", "{", "    float Zinc_2_result;", "    ",
                                    "    // Zinc_2", "    Zinc_2_result = 0.25;", "    ", "    // Aim_1",
                                    "    Ci = color(Zinc_2_result);", "}"));
}

TEST_F(GeneratedCodeTest, WordsUnknownToABoxMeetTheSitesVariables) {
    siteCodeGen.SetVariable("PI", "3.14");
    Add(test::MakeBox("Box", "codegen.main-body append\nx = PI * TAVRN_BoxWid; // _SHADERNAME_\n<<EOT>>\n",
                      4));
    EXPECT_THAT(Code(), testing::Contains("    x = 3.14 * 4; // demo"));
}

TEST_F(GeneratedCodeTest, TheVariableOfAFixedValueIsReadFromABoxThatComesLater) {
    // Passes on its neighbour's fixed text, which names a variable of that neighbour.
    COpBox& fixed = Add(test::MakeBox("Zed", "output \"fixedvalue=box TAVRN_BoxWid\" out { float out }", 5));
    COpBox& user = Add(test::MakeBox("Aim", kPaint, 1));
    test::Wire(fixed, 0, user, 0);
    EXPECT_THAT(Code(), testing::Contains("    Ci = color(box 5);"));
}

TEST_F(GeneratedCodeTest, GenerationChangesNothingOfTheDocument) {
    AddExample();
    COpBox& fixed = Add(test::MakeBox(
        "Fixed", "output \"fixedvalue=f(TAVRN_BoxWid)\" out { float out }\ncodegen.setvariable own 1\n", 3));
    COpBox& user = Add(test::MakeBox("Aim", kPaint, 4));
    test::Wire(fixed, 0, user, 0);
    const std::string before = document.Snapshot();
    const CTvDoc& constant = document;
    const ShaderText text = GenerateShader(constant, "demo", host.GetSite(), siteCodeGen);
    EXPECT_THAT(text.code, testing::Contains("    Ci = color(f(3));"));
    EXPECT_EQ(document.Snapshot(), before);
    EXPECT_FALSE(document.IsModified());
    for (const auto& box : document.m_boxes) {
        const size_t own = box.get() == &fixed ? 1 : 0;
        EXPECT_EQ(box->codegen.Mex().Variables().Size(), own)
            << box->BoxTitleWid() << " has its definition's";
    }
    EXPECT_EQ(fixed.outputs[0]->VariableName({document.preparedVariables}), "f(TAVRN_BoxWid)")
        << "nor does the document keep what was prepared";
    EXPECT_EQ(session.Generate().code, text.code);
}

TEST_F(GeneratedCodeTest, NamesAreShownAsTheLastGenerationLeftThem) {
    COpBox& fixed = Add(test::MakeBox("Fixed", "output \"fixedvalue=f(TAVRN_BoxWid)\" out { float out }", 3));
    const auto shown = [&] { return fixed.outputs[0]->VariableName({document.preparedVariables}); };
    EXPECT_EQ(shown(), "f(TAVRN_BoxWid)") << "nothing has been generated";
    Code();
    EXPECT_EQ(shown(), "f(3)");
    fixed.wid = 8;
    EXPECT_EQ(shown(), "f(3)");
    Code();
    EXPECT_EQ(shown(), "f(8)");
}

TEST_F(GeneratedCodeTest, TheHelpStandsAtTheHeadBetweenStars) {
    siteCodeGen.m_openComment = "/*";
    siteCodeGen.m_closeComment = "*/";
    siteCodeGen.AddLine("global-open", "append", "#version 1");
    document.customshaderhelp = "A plastic.\r\n\r\nBy Anna";
    EXPECT_THAT(Code(), ElementsAre("#version 1", "/*", kStars, "A plastic.", "", "By Anna", kStars, "*/",
                                    "surface demo", "()", "{", "}"));
}

TEST_F(GeneratedCodeTest, ALanguageWithoutBothMarksGetsNoHelp) {
    document.customshaderhelp = "A plastic.";
    const std::vector<std::string> plain = {"surface demo", "()", "{", "}"};
    EXPECT_EQ(Code(), plain);
    siteCodeGen.m_openComment = "/*";
    EXPECT_EQ(Code(), plain);
    siteCodeGen.m_openComment.clear();
    siteCodeGen.m_closeComment = "*/";
    EXPECT_EQ(Code(), plain);
}

TEST_F(GeneratedCodeTest, AnEmptyHelpAddsNoComment) {
    siteCodeGen.m_openComment = "/*";
    siteCodeGen.m_closeComment = "*/";
    EXPECT_THAT(Code(), ElementsAre("surface demo", "()", "{", "}"));
}

TEST_F(GeneratedCodeTest, ACopyWithoutTemplatesMakesNoCodeAndIsNamed) {
    AddExample();
    COpDesk desk(document, host);
    desk.DuplicateBox(test::BoxAt(document, 0));
    test::BoxAt(document, 0).wid = 7;
    Add(std::make_unique<COpBox>(*test::MakeLink("Relay", 9)));  // which has none by its definition
    EXPECT_THAT(Code(), testing::Not(testing::Contains("    Constant_7_result = 0.25;")));
    EXPECT_EQ(host.Sink().log,
              "WARNING: Constant_7 is a copy without templates, so it makes no code until the document is "
              "saved and "
              "opened again\r\n");
}

TEST_F(GeneratedCodeTest, ACopyWithTemplatesMakesTheCodeOfItsOriginal) {
    AddExample();
    host.GetSite().settings.Store("desk.copytemplates", "1");
    COpDesk desk(document, host);
    desk.DuplicateBox(test::BoxAt(document, 0));
    test::BoxAt(document, 0).wid = 7;
    EXPECT_THAT(Code(), testing::Contains("    Constant_7_result = 0.25;"));
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(GeneratedCodeTest, HintsAreATextOfTheirOwn) {
    siteCodeGen.AddLine("hinttext", "append", "shader _SHADERNAME_");
    Add(test::MakeBox("Box", "codegen.hinttext append\nuses TAVRN_BoxTitleWid\n<<EOT>>\n", 4));
    const ShaderText generated = session.Generate();
    EXPECT_THAT(generated.hints, ElementsAre("shader demo", "uses Box_4"));
    EXPECT_THAT(generated.code, testing::Not(testing::Contains(testing::HasSubstr("uses"))));
}

TEST_F(GeneratedCodeTest, AMissingTiebackTargetIsAlertedAndLeavesItsNameOut) {
    COpBox& relay = Add(
        test::MakeBox("Relay", "input in { float { 0 0 1 0 %g } } output tieback=in out { float out }", 1));
    COpBox& user = Add(test::MakeBox("Paint", kPaint, 2));
    test::Wire(relay, 0, user, 0);
    relay.inputs.clear();
    EXPECT_THAT(Code(), testing::Contains("    Ci = color();"));
    EXPECT_THAT(Alerts(), ElementsAre("Relay_1 out: can't find tieback button in (did you delete it?)"));
}

}  // namespace
}  // namespace tavrin
