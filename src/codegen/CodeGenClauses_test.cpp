// SPDX-License-Identifier: Apache-2.0
// Template clauses, as site files and box definitions hold them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "codegen/CodeGenTest.h"
#include "support/TestSite.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::TempDir;
using test::TextsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

size_t LineCount(const CCodeGen& codegen) {
    size_t count = 0;
    for (int id = 0; id < CCodeGen::kBlockCount; ++id)
        count += codegen.Block(static_cast<CCodeGen::BlockId>(id)).Size();
    return count;
}

class CodeGenClauses : public testing::Test {
  protected:
    // Reads `text` as the clauses that follow "codegen.KEYWORD".
    bool Parse(const std::string& keyword, std::string_view text) {
        archive = ArchiveOf(text);
        error.clear();
        return codegen.ParseClause(archive, keyword, library.Path(), error);
    }
    std::string Expanded(std::string_view text) {
        std::string result;
        codegen.ExpandString(text, result);
        return result;
    }

    TempDir library;
    CCodeGen codegen;
    CArchive archive = ArchiveOf("");
    std::string error;
};

// Settings

TEST_F(CodeGenClauses, SetVariableTakesNameAndValue) {
    ASSERT_TRUE(Parse("setvariable", " name \"a value\"\nnext"));
    EXPECT_EQ(Expanded("<name>"), "<a value>");
    EXPECT_EQ(archive.Rest(), "\nnext");
}

TEST_F(CodeGenClauses, ASecondSetVariableOfTheNameHasNoEffect) {
    ASSERT_TRUE(Parse("setvariable", "name first"));
    ASSERT_TRUE(Parse("setvariable", "name second"));
    EXPECT_EQ(Expanded("name"), "first");
}

TEST_F(CodeGenClauses, AVariableMayBeEmpty) {
    ASSERT_TRUE(Parse("setvariable", "name \"\""));
    EXPECT_EQ(Expanded("<name>"), "<>");
}

TEST_F(CodeGenClauses, SetVariableWithoutOperandsSaysWhichIsMissing) {
    EXPECT_FALSE(Parse("setvariable", " # nothing"));
    EXPECT_EQ(error, "'setvariable' missing <varname> argument");
    EXPECT_FALSE(Parse("setvariable", " name\n"));
    EXPECT_EQ(error, "'setvariable' missing <varvalue> argument");
    EXPECT_EQ(Expanded("name"), "name");
}

TEST_F(CodeGenClauses, ClearAllVariablesDropsTheEarlierOnes) {
    ASSERT_TRUE(Parse("setvariable", "a 1"));
    ASSERT_TRUE(Parse("clearallvariables", "\nnext"));
    EXPECT_EQ(archive.Rest(), "\nnext");
    ASSERT_TRUE(Parse("setvariable", "b 2"));
    EXPECT_EQ(Expanded("a b"), "a 2");
}

TEST_F(CodeGenClauses, CommentMarksAreTokens) {
    ASSERT_TRUE(Parse("linecomment", " //\n"));
    ASSERT_TRUE(Parse("opencomment", " \"/*\"\n"));
    ASSERT_TRUE(Parse("closecomment", " */\n"));
    ASSERT_TRUE(Parse("vararg.sep", " \" + \"\n"));
    EXPECT_EQ(codegen.m_lineComment, "//");
    EXPECT_EQ(codegen.m_openComment, "/*");
    EXPECT_EQ(codegen.m_closeComment, "*/");
    EXPECT_EQ(codegen.m_varargSep, " + ");
}

TEST_F(CodeGenClauses, AHashMarkMustBeQuoted) {
    ASSERT_TRUE(Parse("linecomment", " \"#\"\n"));
    EXPECT_EQ(codegen.m_lineComment, "#");
}

TEST_F(CodeGenClauses, CommentMarksDoNotArmTheScanner) {
    ASSERT_TRUE(Parse("linecomment", "//"));
    ASSERT_TRUE(Parse("setvariable", "x v"));
    EXPECT_EQ(Expanded("// x"), "// v");
}

TEST_F(CodeGenClauses, AMissingMarkSaysSoAndChangesNothing) {
    codegen.m_lineComment = "//";
    EXPECT_FALSE(Parse("linecomment", "\n"));
    EXPECT_EQ(error, "'linecomment': missing <comment> argument");
    EXPECT_EQ(codegen.m_lineComment, "//");
    EXPECT_FALSE(Parse("opencomment", ""));
    EXPECT_EQ(error, "'opencomment': missing <comment> argument");
    EXPECT_FALSE(Parse("closecomment", ""));
    EXPECT_EQ(error, "'closecomment': missing <comment> argument");
    EXPECT_FALSE(Parse("vararg.sep", ""));
    EXPECT_EQ(error, "'vararg.sep': missing <quoted arg separator> argument");
    EXPECT_EQ(codegen.m_varargSep, ", ");
}

// The in-line form

TEST_F(CodeGenClauses, LinesStandAsTheyAreUpToTheTerminator) {
    ASSERT_TRUE(Parse("main-body", " append \n  indented  \n\n# no comment \"\\\n<<EOT>>\nbehind\n"));
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("  indented  ", "", "# no comment \"\\"));
    EXPECT_EQ(archive.Rest(), "behind\n");
}

TEST_F(CodeGenClauses, LineEndsOfOtherPlatformsReadAlike) {
    ASSERT_TRUE(Parse("main-body", " append\r\none\r\ntwo\r\n<<EOT>>\r\nbehind"));
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("one", "two"));
    EXPECT_EQ(archive.Rest(), "behind");
}

TEST_F(CodeGenClauses, AClauseReadBehindItsKeywordTokenTakesTheKeywordsLine) {
    archive = ArchiveOf("codegen.main-body append\none\n<<EOT>>\ncodegen.linecomment //\n");
    std::string token;
    ASSERT_TRUE(ReadToken(archive, token));
    ASSERT_TRUE(codegen.ParseClause(archive, "main-body", "", error)) << error;
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("one"));
    ASSERT_TRUE(ReadToken(archive, token));
    EXPECT_EQ(token, "codegen.linecomment");
}

TEST_F(CodeGenClauses, EachBlockHasAName) {
    const char* names[] = {"global-open", "global-header", "main-open",  "main-args",    "main-args-close",
                           "main-header", "main-body",     "main-close", "global-close", "hinttext"};
    for (int id = 0; id < CCodeGen::kBlockCount; ++id) {
        ASSERT_TRUE(Parse(names[id], std::string(" append\nline of ") + names[id] + "\n<<EOT>>\n"));
        EXPECT_THAT(TextsOf(codegen, static_cast<CCodeGen::BlockId>(id)),
                    ElementsAre(std::string("line of ") + names[id]));
    }
    EXPECT_EQ(LineCount(codegen), 10U);
}

TEST_F(CodeGenClauses, AnEmptyClauseAddsNothing) {
    ASSERT_TRUE(Parse("main-body", " append\n<<EOT>>\nbehind"));
    EXPECT_EQ(LineCount(codegen), 0U);
    EXPECT_EQ(archive.Rest(), "behind");
}

TEST_F(CodeGenClauses, AMisspeltBlockIsReadAndDropped) {
    ASSERT_TRUE(Parse("main-bdy", " append\nmain-body append\n<<EOT>>\nbehind"));
    EXPECT_EQ(LineCount(codegen), 0U);
    EXPECT_EQ(archive.Rest(), "behind");
    EXPECT_EQ(error, "");
}

TEST_F(CodeGenClauses, AMissingTerminatorFailsAndAddsNothing) {
    EXPECT_FALSE(Parse("main-body", " append\none\ntwo\n"));
    EXPECT_EQ(error, "Unexpected EOF while searching for <<EOT>>\n");
    EXPECT_EQ(LineCount(codegen), 0U);
}

TEST_F(CodeGenClauses, ATerminatorWithBlanksAroundItIsText) {
    EXPECT_FALSE(Parse("main-body", " append\none\n<<EOT>> \n <<EOT>>\n<<EOT>>x\n"));
    EXPECT_EQ(error, "Unexpected EOF while searching for <<EOT>>\n");
    ASSERT_TRUE(Parse("main-body", " append\n<<EOT>> \n<<EOT>>\n"));
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("<<EOT>> "));
}

TEST_F(CodeGenClauses, TheTerminatorMayBeTheLastLineOfTheFile) {
    ASSERT_TRUE(Parse("main-body", " append\none\n<<EOT>>"));
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("one"));
}

TEST_F(CodeGenClauses, InsertedLinesStandInReverseBeforeTheOthers) {
    ASSERT_TRUE(Parse("main-body", " append\na\n<<EOT>>\n"));
    ASSERT_TRUE(Parse("main-body", " insert\none\ntwo\n<<EOT>>\n"));
    ASSERT_TRUE(Parse("main-body", " insert\nthree\n<<EOT>>\n"));
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("three", "two", "one", "a"));
}

TEST_F(CodeGenClauses, UniqueLinesStandOnce) {
    ASSERT_TRUE(Parse("main-body", " insert\ni\n<<EOT>>\n"));
    ASSERT_TRUE(Parse("main-body", " append\na\n<<EOT>>\n"));
    ASSERT_TRUE(Parse("main-body", " unique\nu\na\n\ni\nu\n\nv\n<<EOT>>\n"));
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("i", "a", "u", "", "v"));
}

// Modes

TEST_F(CodeGenClauses, AnUnknownModeNamesTheBlock) {
    for (const char* text : {" prepend\nx\n<<EOT>>\n", " Append\n", " append more\n", " append # note\n",
                             "\n", " appendage@x\n", " @x\n"}) {
        EXPECT_FALSE(Parse("main-body", text)) << text;
        EXPECT_EQ(error, "ERROR: unknown codegen type 'main-body'") << text;
    }
    EXPECT_EQ(LineCount(codegen), 0U);
}

TEST_F(CodeGenClauses, AMisspeltBlockDoesNotExcuseAnUnknownMode) {
    EXPECT_FALSE(Parse("nonsense", " prepend\n"));
    EXPECT_EQ(error, "ERROR: unknown codegen type 'nonsense'");
}

TEST_F(CodeGenClauses, TheEndOfTheFileInPlaceOfTheModeSaysWhatWasExpected) {
    EXPECT_FALSE(Parse("main-body", ""));
    EXPECT_EQ(error, "expected <append|insert|unique> argument");
}

// The file form

TEST_F(CodeGenClauses, AFileIsReadFromTheLibrary) {
    library.Write("code/body.txt", "  one  \t\r\n\n<<EOT>>\nlast");
    ASSERT_TRUE(Parse("main-body", " append@code/body.txt \nbehind\n<<EOT>>\n")) << error;
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("  one", "", "<<EOT>>", "last"));
    EXPECT_EQ(archive.Rest(), "behind\n<<EOT>>\n");
}

TEST_F(CodeGenClauses, AFileNameMayHoldBlanksAndMoreSigns) {
    library.Write("my code@home.txt", "one");
    ASSERT_TRUE(Parse("main-body", " append@my code@home.txt\n")) << error;
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("one"));
}

TEST_F(CodeGenClauses, EitherSeparatorReachesTheLibrary) {
    library.Write("code/body.txt", "one");
    ASSERT_TRUE(Parse("main-body", " append@code\\body.txt\n")) << error;
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("one"));
}

TEST_F(CodeGenClauses, AnAbsoluteFileIsNotLookedForInTheLibrary) {
    const TempDir elsewhere;
    const std::string path = elsewhere.Write("body.txt", "one");
    ASSERT_TRUE(Parse("main-body", " append@" + path + "\n")) << error;
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("one"));
}

TEST_F(CodeGenClauses, AFileThatBeginsWithADotIsLookedForInTheWorkingDirectory) {
    const TempDir here;
    here.Write("body.txt", "from here");
    library.Write("body.txt", "from the library");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(here.Path());
    const bool dotted = Parse("main-body", " append@./body.txt\n");
    const bool plain = Parse("main-body", " append@body.txt\n");
    std::filesystem::current_path(before);
    EXPECT_TRUE(dotted && plain) << error;
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("from here", "from the library"));
}

TEST_F(CodeGenClauses, LongLinesOfAFileStayWhole) {
    library.Write("body.txt", std::string(10000, 'x') + "\n");
    ASSERT_TRUE(Parse("main-body", " append@body.txt\n")) << error;
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre(std::string(10000, 'x')));
}

TEST_F(CodeGenClauses, InsertAndUniqueTakeFilesToo) {
    library.Write("body.txt", "one\ntwo\none\n");
    ASSERT_TRUE(Parse("main-body", " unique@body.txt\n")) << error;
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("one", "two"));
    ASSERT_TRUE(Parse("main-body", " insert@body.txt\n")) << error;
    EXPECT_THAT(TextsOf(codegen, CCodeGen::kMainBody), ElementsAre("one", "two", "one", "one", "two"));
}

TEST_F(CodeGenClauses, AMissingFileIsNamedWithItsReason) {
    EXPECT_FALSE(Parse("main-body", " insert@code/absent.txt \n"));
    EXPECT_EQ(error, "codegen.main-body insert@code/absent.txt: '" + library.Path() +
                         "/code/absent.txt': No such file or directory");
    EXPECT_EQ(LineCount(codegen), 0U);
}

TEST_F(CodeGenClauses, ADirectoryInPlaceOfAFileIsNamedWithItsReason) {
    EXPECT_FALSE(Parse("hinttext", " append@\n"));
    EXPECT_EQ(error, "codegen.hinttext append@: '" + library.Path() + "/': Is a directory");
}

TEST_F(CodeGenClauses, AMisspeltBlockStillReadsItsFile) {
    EXPECT_FALSE(Parse("nonsense", " append@absent.txt\n"));
    EXPECT_THAT(error, HasSubstr("No such file or directory"));
    library.Write("body.txt", "one");
    EXPECT_TRUE(Parse("nonsense", " append@body.txt\n"));
    EXPECT_EQ(LineCount(codegen), 0U);
}

}  // namespace
}  // namespace tavrin
