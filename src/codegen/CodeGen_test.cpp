// SPDX-License-Identifier: Apache-2.0
#include "codegen/CodeGen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codegen/CodeGenTest.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::TextsOf;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<LineKind> KindsOf(const CCodeGen& codegen, CCodeGen::BlockId id) {
    std::vector<LineKind> kinds;
    for (size_t i = 0; i < codegen.Block(id).Size(); ++i) kinds.push_back(codegen.Block(id).Line(i).kind);
    return kinds;
}

constexpr auto kBody = CCodeGen::kMainBody;

// Adding lines

TEST(CodeGen, ModesAreComparedExactly) {
    EXPECT_EQ(CCodeGen::ModeCode("append"), 0);
    EXPECT_EQ(CCodeGen::ModeCode("insert"), 1);
    EXPECT_EQ(CCodeGen::ModeCode("unique"), 2);
    EXPECT_EQ(CCodeGen::ModeCode("append@x"), 3);
    EXPECT_EQ(CCodeGen::ModeCode("insert@"), 4);
    EXPECT_EQ(CCodeGen::ModeCode("unique@a@b"), 5);
    for (const char* mode : {"", "Append", "append ", "appendx", "insert.", "@append"}) {
        EXPECT_EQ(CCodeGen::ModeCode(mode), 6) << mode;
    }
}

TEST(CodeGen, CodesOfBothFormsAddAlike) {
    CCodeGen codegen;
    codegen.AddLineCoded("main-body", 0, "a");
    codegen.AddLineCoded("main-body", 3, "b");
    codegen.AddLineCoded("main-body", 1, "c");
    codegen.AddLineCoded("main-body", 4, "d");
    codegen.AddLineCoded("main-body", 2, "e");
    codegen.AddLineCoded("main-body", 5, "e");
    codegen.AddLineCoded("main-body", 5, "f");
    EXPECT_THAT(TextsOf(codegen, kBody), ElementsAre("d", "c", "a", "b", "e", "f"));
    EXPECT_THAT(KindsOf(codegen, kBody),
                ElementsAre(LineKind::kInsert, LineKind::kInsert, LineKind::kAppend, LineKind::kAppend,
                            LineKind::kUnique, LineKind::kUnique));
}

TEST(CodeGen, UnknownCodesAndBlocksDoNothing) {
    CCodeGen codegen;
    codegen.AddLineCoded("main-body", 6, "x");
    codegen.AddLineCoded("main-body", -1, "x");
    codegen.AddLineCoded("Main-body", 0, "x");
    codegen.AddLine("main-bodies", "append", "x");
    codegen.AddLine("main-body", "add", "x");
    for (int id = 0; id < CCodeGen::kBlockCount; ++id) {
        EXPECT_EQ(codegen.Block(static_cast<CCodeGen::BlockId>(id)).Size(), 0U);
    }
}

TEST(CodeGen, LinesAreAddedByTheWordsOfTheirMode) {
    CCodeGen codegen;
    codegen.AddLine("main-body", "append", "a");
    codegen.AddLine("main-body", "insert@file", "b");
    codegen.AddLine("main-body", "unique", "a");
    EXPECT_THAT(TextsOf(codegen, kBody), ElementsAre("b", "a"));
}

TEST(CodeGen, AUniqueLineIsComparedWithLinesOfEveryKind) {
    CCodeGen codegen;
    codegen.AddLine("main-body", "unique", "u");
    codegen.AddLine("main-body", "append", "a");
    codegen.AddLine("main-body", "insert", "i");
    for (const char* text : {"a", "i", "u", "U", " u"}) codegen.AddLine("main-body", "unique", text);
    EXPECT_THAT(TextsOf(codegen, kBody), ElementsAre("i", "u", "a", "U", " u"));
}

TEST(CodeGen, LinesOfOtherModesMayRepeatAUniqueOne) {
    CCodeGen codegen;
    for (const char* mode : {"unique", "append", "insert", "append"}) codegen.AddLine("main-body", mode, "x");
    EXPECT_THAT(TextsOf(codegen, kBody), ElementsAre("x", "x", "x", "x"));
}

TEST(CodeGen, UniqueIsPerBlock) {
    CCodeGen codegen;
    codegen.AddLine("main-body", "unique", "x");
    codegen.AddLine("main-header", "unique", "x");
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainHeader), ElementsAre("x"));
}

TEST(CodeGen, ASecondEmptyUniqueLineIsDropped) {
    CCodeGen codegen;
    for (const char* text : {"a", "", "b", ""}) codegen.AddLine("main-body", "unique", text);
    EXPECT_THAT(TextsOf(codegen, kBody), ElementsAre("a", "", "b"));
}

TEST(CodeGen, BlockNamesAndIdentifiersGoBothWays) {
    for (int id = 0; id < CCodeGen::kBlockCount; ++id) {
        const auto block = static_cast<CCodeGen::BlockId>(id);
        EXPECT_EQ(CCodeGen::FindBlock(CCodeGen::BlockName(block)), block);
    }
    EXPECT_EQ(CCodeGen::FindBlock("all"), CCodeGen::kNoBlock);
    EXPECT_EQ(CCodeGen::FindBlock(""), CCodeGen::kNoBlock);
}

// Comments

TEST(CodeGen, ACommentTakesTheLineMarkBeforeThePair) {
    CCodeGen codegen;
    codegen.m_lineComment = "//";
    codegen.m_openComment = "/*";
    codegen.m_closeComment = "*/";
    std::string result = "stale";
    EXPECT_TRUE(codegen.MakeComment("box 1", result));
    EXPECT_EQ(result, "// box 1");
    codegen.m_lineComment.clear();
    EXPECT_TRUE(codegen.MakeComment("box 1", result));
    EXPECT_EQ(result, "/* box 1 */");
    EXPECT_TRUE(codegen.MakeComment("", result));
    EXPECT_EQ(result, "/*  */");
}

TEST(CodeGen, ACommentWithoutACloseMarkEndsInABlank) {
    CCodeGen codegen;
    codegen.m_openComment = ";";
    std::string result;
    EXPECT_TRUE(codegen.MakeComment("note", result));
    EXPECT_EQ(result, "; note ");
}

TEST(CodeGen, WithoutMarksThereIsNoComment) {
    CCodeGen codegen;
    codegen.m_closeComment = "*/";
    std::string result = "stale";
    EXPECT_FALSE(codegen.MakeComment("note", result));
    EXPECT_EQ(result, "");
}

// Writing

std::vector<std::string> Written(CCodeGen& codegen) {
    std::vector<std::string> lines;
    codegen.WriteCode(lines);
    return lines;
}

std::vector<std::string> WrittenBody(std::initializer_list<const char*> body) {
    CCodeGen codegen;
    for (const char* text : body) codegen.AddLine("main-body", "append", text);
    return Written(codegen);
}

TEST(WriteCode, BlocksComeInTheirOrderAndHintsAreLeftOut) {
    CCodeGen codegen;
    for (int id = CCodeGen::kBlockCount - 1; id >= 0; --id) {
        const auto block = static_cast<CCodeGen::BlockId>(id);
        codegen.AddLine(block, LineKind::kAppend, "line_" + std::to_string(id));
    }
    EXPECT_THAT(Written(codegen), ElementsAre("line_0", "line_1", "line_2", "line_3", "line_4", "line_5",
                                              "line_6", "line_7", "line_8"));
}

TEST(WriteCode, LinesOfBracesAloneMoveTheDepth) {
    EXPECT_THAT(WrittenBody({"a", "{", "b", "{", "c", "}", "d", "}", "e"}),
                ElementsAre("a", "{", "    b", "    {", "        c", "    }", "    d", "}", "e"));
}

TEST(WriteCode, TheIndentationOfATemplateIsLost) {
    EXPECT_THAT(WrittenBody({"\t  a  \t", "  {  ", "  b  ;  ", "\t}"}),
                ElementsAre("a", "{", "    b  ;", "}"));
}

TEST(WriteCode, ABraceBesideOtherTextMovesNothing) {
    EXPECT_THAT(WrittenBody({"if (x) {", "a", "{ }", "b", "{ // note", "c"}),
                ElementsAre("if (x) {", "a", "{ }", "b", "{ // note", "c"));
    EXPECT_THAT(
        WrittenBody({"{", "a", "};", "b", "} else {", "c", "} // note", "d", "}"}),
        ElementsAre("{", "    a", "    };", "    b", "    } else {", "    c", "    } // note", "    d", "}"));
}

TEST(WriteCode, AnEmptyLineIsIndentedToo) {
    EXPECT_THAT(WrittenBody({"", "{", "  ", "}"}), ElementsAre("", "{", "    ", "}"));
}

TEST(WriteCode, AClosingBraceWithoutAPartnerDrivesTheDepthBelowZero) {
    EXPECT_THAT(WrittenBody({"}", "{", "a", "{", "b", "}", "}", "c"}),
                ElementsAre("}", "{", "a", "{", "    b", "}", "}", "c"));
    EXPECT_THAT(WrittenBody({"}", "}", "{", "a", "{", "b", "{", "c"}),
                ElementsAre("}", "}", "{", "a", "{", "b", "{", "    c"));
}

TEST(WriteCode, TheDepthRunsThroughAllBlocks) {
    CCodeGen codegen;
    codegen.AddLine("main-args-close", "append", "{");
    codegen.AddLine("main-body", "append", "a");
    codegen.AddLine("main-close", "append", "}");
    EXPECT_THAT(Written(codegen), ElementsAre("{", "    a", "}"));
}

TEST(WriteCode, TheStepOfIndentationCanBeSet) {
    CCodeGen codegen;
    codegen.m_indent = "\t";
    for (const char* text : {"{", "{", "a"}) codegen.AddLine("main-body", "append", text);
    EXPECT_THAT(Written(codegen), ElementsAre("{", "\t{", "\t\ta"));
}

TEST(WriteCode, TheFinalTextIsExpandedAfterItsIndentation) {
    CCodeGen codegen;
    codegen.SetVariable("_SHADERNAME_", "  wood  ");
    codegen.SetVariable("brace", "{");
    codegen.AddLine("main-open", "append", "surface _SHADERNAME_ ");
    codegen.AddLine("main-open", "append", "brace");
    codegen.AddLine("main-open", "append", "a");
    EXPECT_THAT(Written(codegen), ElementsAre("surface   wood  ", "{", "a"));
}

TEST(WriteCode, TheIndentationItselfIsPartOfTheExpandedText) {
    CCodeGen codegen;
    codegen.m_indent = "x";
    codegen.SetVariable("xa", "both");
    for (const char* text : {"{", "a"}) codegen.AddLine("main-body", "append", text);
    EXPECT_THAT(Written(codegen), ElementsAre("{", "both"));
}

TEST(WriteCode, WritingTwiceGivesTheSameAndAppends) {
    CCodeGen codegen;
    codegen.AddLine("main-body", "append", "a");
    codegen.AddLine("hinttext", "append", "h");
    std::vector<std::string> lines;
    codegen.WriteCode(lines);
    codegen.WriteHints(lines);
    codegen.WriteCode(lines);
    EXPECT_THAT(lines, ElementsAre("a", "h", "a"));
}

TEST(WriteHints, HintLinesStandAsTheyAreAndAreExpanded) {
    CCodeGen codegen;
    codegen.SetVariable("name", "wood");
    codegen.AddLine("main-body", "append", "code");
    for (const char* text : {"  {", "  name  ", "", "}"}) codegen.AddLine("hinttext", "append", text);
    std::vector<std::string> lines;
    codegen.WriteHints(lines);
    EXPECT_THAT(lines, ElementsAre("  {", "  wood  ", "", "}"));
}

// The object as a whole

TEST(CodeGen, ACopyIsDeep) {
    CCodeGen codegen;
    codegen.AddLine("main-body", "unique", "a");
    codegen.SetVariable("x", "v");
    codegen.m_lineComment = "//";
    codegen.m_indent = "\t";
    codegen.m_varargSep = ";";
    CCodeGen copy = codegen;
    codegen.Reset();
    copy.AddLine("main-body", "unique", "a");
    copy.AddLine("main-body", "unique", "b");
    EXPECT_THAT(TextsOf(copy, kBody), ElementsAre("a", "b"));
    EXPECT_THAT(TextsOf(codegen, kBody), IsEmpty());
    std::string result;
    copy.ExpandString("x", result);
    EXPECT_EQ(result, "v");
    EXPECT_EQ(copy.m_lineComment + copy.m_indent + copy.m_varargSep, "//\t;");
}

TEST(CodeGen, AnAssignedCopyKnowsItsOwnUniqueLines) {
    CCodeGen codegen;
    codegen.AddLine("main-body", "unique", "a");
    CCodeGen other;
    other.AddLine("main-body", "unique", "b");
    other = codegen;
    other.AddLine("main-body", "unique", "b");
    other.AddLine("main-body", "unique", "a");
    EXPECT_THAT(TextsOf(other, kBody), ElementsAre("a", "b"));
}

TEST(CodeGen, ResettingPutsBackTheDefaults) {
    CCodeGen codegen;
    codegen.AddLine("hinttext", "append", "a");
    codegen.SetVariable("x", "v");
    codegen.m_lineComment = codegen.m_openComment = codegen.m_closeComment = codegen.m_varargSep =
        codegen.m_indent = "?";
    codegen.Mex().m_state = CMex::kInComment;
    codegen.Reset();
    EXPECT_EQ(codegen.Block(CCodeGen::kHintText).Size(), 0U);
    std::string result;
    codegen.ExpandString("x", result);
    EXPECT_EQ(result, "x");
    EXPECT_EQ(codegen.m_lineComment + codegen.m_openComment + codegen.m_closeComment, "");
    EXPECT_EQ(codegen.m_varargSep, ", ");
    EXPECT_EQ(codegen.m_indent, "    ");
}

TEST(CodeGen, AppendedVariablesGrowByTheirSeparator) {
    CCodeGen codegen;
    EXPECT_FALSE(codegen.AppendVariable("in", "a", " + "));
    EXPECT_TRUE(codegen.AppendVariable("in", "b", " + "));
    std::string result;
    codegen.ExpandString("${in}", result);
    EXPECT_EQ(result, "a + b");
    codegen.ClearVariables();
    codegen.ExpandString("${in}", result);
    EXPECT_EQ(result, "${in}");
}

}  // namespace
}  // namespace tavrin
