// SPDX-License-Identifier: Apache-2.0
// From the templates of boxes to the working copy of a shader: expansion and merging.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codegen/CodeGenTest.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::Everything;
using test::TestSite;
using test::TextsOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kBody = CCodeGen::kMainBody;

// One line "x" in each block, with a variable for it.
CCodeGen OneLineEach() {
    CCodeGen codegen;
    codegen.SetVariable("x", "v");
    for (int id = 0; id < CCodeGen::kBlockCount; ++id) {
        codegen.AddLine(static_cast<CCodeGen::BlockId>(id), LineKind::kUnique, "x");
    }
    return codegen;
}

TEST(ExpandAll, ExpandsTheFiveBlocksOfABox) {
    TestSite site;
    CCodeGen codegen = OneLineEach();
    codegen.ExpandAll("all", site.report);
    EXPECT_THAT(Everything(codegen), ElementsAre("0/2/v", "1/2/x", "2/2/x", "3/2/x", "4/2/x", "5/2/v",
                                                 "6/2/v", "7/2/x", "8/2/v", "9/2/v"));
    EXPECT_THAT(site.sink.alerts, IsEmpty());
}

TEST(ExpandAll, ExpandsOneBlockByItsName) {
    for (const char* name : {"global-open", "main-header", "main-body", "global-close", "hinttext"}) {
        TestSite site;
        CCodeGen codegen = OneLineEach();
        codegen.ExpandAll(name, site.report);
        for (int id = 0; id < CCodeGen::kBlockCount; ++id) {
            const auto block = static_cast<CCodeGen::BlockId>(id);
            EXPECT_THAT(TextsOf(codegen, block), ElementsAre(CCodeGen::BlockName(block) == name ? "v" : "x"))
                << name;
        }
        EXPECT_THAT(site.sink.alerts, IsEmpty());
    }
}

TEST(ExpandAll, OtherBlocksAreAlerted) {
    for (const std::string name :
         {"global-header", "main-open", "main-args", "main-args-close", "main-close", "", "All"}) {
        TestSite site;
        CCodeGen codegen = OneLineEach();
        codegen.ExpandAll(name, site.report);
        EXPECT_THAT(site.sink.alerts,
                    ElementsAre("CCodeGen::ExpandAll(): blockname '" + name + "' not yet supported!"));
        EXPECT_THAT(TextsOf(codegen, kBody), ElementsAre("x"));
    }
}

TEST(ExpandAll, BeginsInThePlainState) {
    TestSite site;
    CCodeGen codegen = OneLineEach();
    codegen.Mex().m_state = CMex::kAfterStrayClose;
    codegen.ExpandAll("main-body", site.report);
    EXPECT_THAT(TextsOf(codegen, kBody), ElementsAre("v"));
}

TEST(ExpandAll, InsertedLinesAreExpandedInTheOrderInWhichTheyStand) {
    TestSite site;
    CCodeGen codegen;
    codegen.SetVariable("x", "v");
    codegen.Mex().Tokens().openComments = {"/*"};
    codegen.Mex().Tokens().closeComments = {"*/"};
    codegen.Mex().Tokens().keepComments = true;
    for (const char* text : {"x */ x", "x /* x"}) codegen.AddLine("main-body", "insert", text);
    codegen.AddLine("main-body", "append", "x");
    codegen.ExpandAll("all", site.report);
    EXPECT_THAT(TextsOf(codegen, kBody), ElementsAre("v /* x", "x */ v", "v"));
}

// Merging

TEST(Merge, InsertedLinesReadInTheOrderWrittenBeforeEverythingElse) {
    CCodeGen shader;
    shader.AddLine("main-body", "append", "shader");
    CCodeGen box;
    for (const char* text : {"one", "two", "three"}) box.AddLine("main-body", "insert", text);
    EXPECT_THAT(TextsOf(box, kBody), ElementsAre("three", "two", "one"));
    shader.Merge(box);
    EXPECT_THAT(TextsOf(shader, kBody), ElementsAre("one", "two", "three", "shader"));
}

TEST(Merge, ALaterBoxsInsertedLinesComeFirst) {
    CCodeGen shader;
    for (const char* name : {"first", "second"}) {
        CCodeGen box;
        box.AddLine("main-body", "insert", std::string(name) + " a");
        box.AddLine("main-body", "insert", std::string(name) + " b");
        box.AddLine("main-body", "append", std::string(name) + " c");
        shader.Merge(box);
    }
    EXPECT_THAT(TextsOf(shader, kBody),
                ElementsAre("second a", "second b", "first a", "first b", "first c", "second c"));
}

TEST(Merge, TheShadersOwnInsertedLinesStayReversed) {
    CCodeGen site;
    for (const char* text : {"one", "two"}) site.AddLine("main-body", "insert", text);
    CCodeGen working = site;
    working.Merge(CCodeGen());
    EXPECT_THAT(TextsOf(working, kBody), ElementsAre("two", "one"));
}

TEST(Merge, UniqueLinesOfManyBoxesStandOnce) {
    CCodeGen shader;
    shader.AddLine("global-header", "append", "#include <noise>");
    for (int box = 0; box < 3; ++box) {
        CCodeGen codegen;
        codegen.AddLine("global-header", "unique", "#include <noise>");
        codegen.AddLine("global-header", "unique", "#include <math>");
        codegen.AddLine("global-header", "append", "box");
        shader.Merge(codegen);
    }
    EXPECT_THAT(TextsOf(shader, CCodeGen::kGlobalHeader),
                ElementsAre("#include <noise>", "#include <math>", "box", "box", "box"));
}

TEST(Merge, UniqueComparesAfterABoxsExpansion) {
    TestSite site;
    CCodeGen shader;
    for (const char* wid : {"1", "2", "1"}) {
        CCodeGen box;
        box.AddLine("main-body", "unique", "use(${wid})");
        box.SetVariable("wid", wid);
        box.ExpandAll("all", site.report);
        shader.Merge(box);
    }
    EXPECT_THAT(TextsOf(shader, kBody), ElementsAre("use(1)", "use(2)"));
}

TEST(Merge, KindsGoAlong) {
    CCodeGen box;
    box.AddLine("main-body", "append", "a");
    box.AddLine("main-body", "insert", "b");
    box.AddLine("main-body", "unique", "c");
    CCodeGen shader;
    shader.Merge(box);
    CCodeGen again;
    again.AddLine("main-body", "append", "x");
    again.Merge(shader);
    again.Merge(shader);
    EXPECT_THAT(Everything(again), ElementsAre("6/1/b", "6/1/b", "6/0/x", "6/0/a", "6/2/c", "6/0/a"));
}

TEST(Merge, VariablesAndMarksStayBehind) {
    CCodeGen box;
    box.SetVariable("x", "v");
    box.m_lineComment = "//";
    box.m_indent = "\t";
    CCodeGen shader;
    shader.Merge(box);
    std::string result;
    shader.ExpandString("x", result);
    EXPECT_EQ(result, "x");
    EXPECT_EQ(shader.m_lineComment, "");
    EXPECT_EQ(shader.m_indent, "    ");
}

}  // namespace
}  // namespace tavrin
