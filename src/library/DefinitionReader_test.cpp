// SPDX-License-Identifier: Apache-2.0
// The clauses of a definition outside of its buttons.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/OpBox.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::CollectingSink;
using test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

// A box read from the text of a definition.
struct Reading {
    explicit Reading(std::string_view text, const std::string& libraryDir = "/nowhere") {
        report.SetSink(&sink);
        CArchive archive = ArchiveOf(text, "box");
        ok = box.ReadDefinition(archive, libraryDir, report);
    }
    CollectingSink sink;
    Report report;
    COpBox box;
    bool ok = false;
};

std::vector<std::string> LinesOf(const COpBox& box, CCodeGen::BlockId block) {
    std::vector<std::string> lines;
    for (size_t i = 0; i < box.codegen.Block(block).Size(); ++i)
        lines.push_back(box.codegen.Block(block).Line(i).text);
    return lines;
}

void ExpectError(std::string_view text, const std::string& message) {
    const Reading reading(text);
    EXPECT_FALSE(reading.ok) << text;
    EXPECT_THAT(reading.sink.alerts, ElementsAre("box near line " + message)) << text;
}

TEST(DefinitionReader, AnEmptyDefinitionIsABoxWithNothing) {
    for (const char* text : {"", "\n\n", "# only a comment", "  \t\r\n"}) {
        const Reading reading(text);
        EXPECT_TRUE(reading.ok);
        EXPECT_THAT(reading.sink.alerts, IsEmpty());
        EXPECT_THAT(reading.box.inputs, IsEmpty());
    }
}

TEST(DefinitionReader, EachClauseFillsItsField) {
    const Reading reading(
        "iconimg \"my icon.sgi\" size 64 48\ncolor 0.5 .25 1e-1 icontext mix\n"
        "boxhelp {\n  first\n\n  second\n}\ndefs { maxinstances 1 }\n");
    EXPECT_TRUE(reading.ok);
    EXPECT_EQ(reading.box.iconimg, "my icon.sgi");
    EXPECT_THAT(reading.box.size, ElementsAre(64, 48));
    EXPECT_THAT(reading.box.color, ElementsAre(0.5F, 0.25F, 0.1F));
    EXPECT_EQ(reading.box.icontext, "mix");
    EXPECT_EQ(reading.box.boxhelp, "first\r\n\r\nsecond");
    EXPECT_EQ(reading.box.maxinstances, 1);
}

TEST(DefinitionReader, WithoutClausesTheDefaultsStand) {
    const Reading reading("icontext x");
    EXPECT_THAT(reading.box.size, ElementsAre(0, 0)) << "the box takes the size of its texts";
    EXPECT_THAT(reading.box.color, ElementsAre(0.0F, 0.0F, 0.0F));
    EXPECT_EQ(reading.box.maxinstances, 0);
    EXPECT_EQ(reading.box.wid, 0);
    EXPECT_EQ(reading.box.filename, "") << "the title comes from the file's name";
}

TEST(DefinitionReader, ARepeatedClauseReplacesTheFirst) {
    const Reading reading("size 1 2 icontext a boxhelp {\nlong\n}\nicontext b size 3 4 boxhelp {\nnew\n}\n");
    EXPECT_EQ(reading.box.icontext, "b");
    EXPECT_THAT(reading.box.size, ElementsAre(3, 4));
    EXPECT_EQ(reading.box.boxhelp, "new");
}

TEST(DefinitionReader, RepeatedButtonsAndTemplatesAdd) {
    const Reading reading(
        "input a { float { 0 0 1 0 %g } }\noutput out { float out }\ninput b { float { 0 0 1 0 %g } }\n"
        "codegen.main-body append\none\n<<EOT>>\ncodegen.main-body append\ntwo\n<<EOT>>\n");
    ASSERT_TRUE(reading.ok) << "an input behind an output is fine";
    ASSERT_EQ(reading.box.inputs.size(), 2U);
    EXPECT_EQ(reading.box.inputs[1]->name, "b");
    EXPECT_EQ(reading.box.outputs.size(), 1U);
    EXPECT_THAT(LinesOf(reading.box, CCodeGen::kMainBody), ElementsAre("one", "two"));
}

TEST(DefinitionReader, WordsThatAreNoNumbersAreZero) {
    const Reading reading("size many 7x color red 0.5.5 -");
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(reading.box.size, ElementsAre(0, 7));
    EXPECT_THAT(reading.box.color, ElementsAre(0.0F, 0.5F, 0.0F));
}

TEST(DefinitionReader, AnythingElseIsUnexpectedInput) {
    for (const char* text :
         {"bogus", "{", "}", "Size 1 2", "ICONTEXT x", "float { }", "codegen", "Codegen.main-body append",
          "\"\"", "tavrn-version 1", "maxinstances 1", "castlock.add a b"}) {
        ExpectError(text, "1: unexpected input");
    }
}

TEST(DefinitionReader, AMissingOperandIsUnexpectedInput) {
    for (const char* text :
         {"iconimg", "size", "size 1", "color", "color 1", "color 1 1", "icontext", "boxhelp", "input",
          "vinput", "output", "defs { castlock.add", "defs { castlock.add a", "defs maxinstances"}) {
        ExpectError(text, "1: unexpected input");
    }
}

TEST(DefinitionReader, AnErrorNamesItsLineAndReadingStopsThere) {
    const Reading reading("icontext a\n# comment\n\nbogus\nicontext b\nbogus\n");
    EXPECT_FALSE(reading.ok);
    EXPECT_THAT(reading.sink.alerts, ElementsAre("box near line 4: unexpected input"));
    EXPECT_THAT(reading.sink.files, ElementsAre("box"));
    EXPECT_EQ(reading.box.icontext, "a") << "what was read stays in force";
}

// Help

TEST(DefinitionReader, HelpWithoutItsBraceIsUnexpectedInput) {
    ExpectError("boxhelp\nHelps.\n}", "2: unexpected input");
}

TEST(DefinitionReader, AHelpLineMayBeginWithABraceBehindItsGuard) {
    const Reading reading("boxhelp {\n\n>}\n>  indented\n>>more\n\n}\nicontext x");
    EXPECT_TRUE(reading.ok);
    EXPECT_EQ(reading.box.boxhelp, "}\r\n  indented\r\n>more\r\n");
    EXPECT_EQ(reading.box.icontext, "x");
}

TEST(DefinitionReader, InHelpHashesQuotesAndBracesInsideALineAreText) {
    const Reading reading("boxhelp {\n#1 of \"all\" {braces}\n}\n");
    EXPECT_EQ(reading.box.boxhelp, "#1 of \"all\" {braces}");
}

TEST(DefinitionReader, HelpThatIsNeverClosedTakesTheRestOfTheFileAndIsToldWhereItBegins) {
    const Reading reading("# comment\nboxhelp {\nicontext x\nsize 1 2");
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(reading.sink.alerts,
                ElementsAre("box near line 2: the block \"boxhelp\" is not closed: its last line "
                            "has to be a \"}\" alone"));
    EXPECT_THAT(reading.sink.files, ElementsAre("box"));
    EXPECT_EQ(reading.box.boxhelp, "icontext x\r\nsize 1 2");
    EXPECT_EQ(reading.box.icontext, "");
}

// Options

TEST(DefinitionReader, KeywordsAreTheWordsOfTheirBlocks) {
    const Reading reading("keywords { voronoi \"dried mud\" }\nkeywords { }\nicontext x\nkeywords { b }\n");
    ASSERT_TRUE(reading.ok);
    EXPECT_THAT(reading.box.keywords, ElementsAre("voronoi", "dried mud", "b"));
    EXPECT_EQ(reading.box.icontext, "x");
    EXPECT_THAT(COpBox(reading.box).keywords, IsEmpty());
}

TEST(DefinitionReader, KeywordsWithoutTheirBracesAreUnexpectedInput) {
    ExpectError("keywords { voronoi\nicontext x\n", "3: unexpected input");
    ExpectError("keywords voronoi\n", "1: unexpected input");
    ExpectError("keywords", "1: unexpected input");
}

TEST(DefinitionReader, DefsWithoutBracesWorks) {
    const Reading reading("defs maxinstances 3 castlock.add a b }\nicontext x");
    EXPECT_TRUE(reading.ok);
    EXPECT_EQ(reading.box.maxinstances, 3);
    EXPECT_THAT(reading.box.castlock, ElementsAre(Pair("a", "b")));
    EXPECT_EQ(reading.box.icontext, "x");
}

TEST(DefinitionReader, DefsPassesOverWhatItDoesNotKnow) {
    const Reading reading("defs { { nonsense 1 2 maxinstances 4 \"\" MaxInstances 5 }");
    EXPECT_TRUE(reading.ok);
    EXPECT_EQ(reading.box.maxinstances, 4);
    EXPECT_THAT(reading.sink.alerts, IsEmpty());
}

TEST(DefinitionReader, DefsThatIsNeverClosedSwallowsAllLaterClausesInSilence) {
    const Reading reading("defs {\nmaxinstances 1\nicontext x\nsize 3 4\nbogus\n");
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(reading.sink.alerts, IsEmpty());
    EXPECT_EQ(reading.box.maxinstances, 1);
    EXPECT_EQ(reading.box.icontext, "");
}

TEST(DefinitionReader, TheFirstClosingBraceLeavesDefs) {
    ExpectError("defs { {\n}\n}", "3: unexpected input");
}

TEST(DefinitionReader, CastlockPairsAreKeptInOrderDuplicatesToo) {
    const Reading reading("defs { castlock.add b x castlock.add a z castlock.add a y castlock.add a z }");
    EXPECT_THAT(reading.box.castlock,
                ElementsAre(Pair("a", "z"), Pair("a", "y"), Pair("a", "z"), Pair("b", "x")));
}

TEST(DefinitionReader, ClearingCastlocksLeavesThePairsInPlace) {
    const Reading reading(
        "defs { castlock.add a b castlock.add \"\" c castlock.clear } defs { castlock.clear }");
    EXPECT_THAT(reading.box.castlock, ElementsAre(Pair("a", "b"))) << "only entries without a first name go";
}

TEST(DefinitionReader, DefsMayBeRepeated) {
    const Reading reading(
        "defs { maxinstances 2 castlock.add a b } defs { maxinstances 3 castlock.add c d }");
    EXPECT_EQ(reading.box.maxinstances, 3);
    EXPECT_EQ(reading.box.castlock.size(), 2U);
}

// Templates

TEST(DefinitionReader, ATemplateIsReadAsItStandsAndTheNextClauseFollows) {
    const Reading reading("codegen.main-body append\n  a = b; # not a comment\n\n}\n<<EOT>>\nicontext x\n");
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(LinesOf(reading.box, CCodeGen::kMainBody), ElementsAre("  a = b; # not a comment", "", "}"));
    EXPECT_EQ(reading.box.icontext, "x");
}

TEST(DefinitionReader, AMisspeltBlockIsReadAndDroppedInSilence) {
    const Reading reading("codegen.main-bdoy append\nbogus\n<<EOT>>\nicontext x\n");
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(reading.sink.alerts, IsEmpty());
    EXPECT_EQ(reading.box.icontext, "x");
}

TEST(DefinitionReader, ATemplateThatIsNeverEndedFailsAndAddsNothing) {
    const Reading reading("codegen.main-body append\none\n<<EOT>> \n");
    EXPECT_FALSE(reading.ok);
    EXPECT_THAT(reading.sink.alerts,
                ElementsAre("box near line 4: Unexpected EOF while searching for <<EOT>>\n"));
    EXPECT_THAT(LinesOf(reading.box, CCodeGen::kMainBody), IsEmpty());
}

TEST(DefinitionReader, AnUnknownModeNamesTheBlock) {
    ExpectError("icontext x codegen.main-body apend\n<<EOT>>", "2: ERROR: unknown codegen type 'main-body'");
    ExpectError("codegen.main-body\nappend\n<<EOT>>", "2: ERROR: unknown codegen type 'main-body'");
}

TEST(DefinitionReader, AClauseWithoutALineForItsModeFails) {
    ExpectError("codegen.main-body", "1: expected <append|insert|unique> argument");
}

TEST(DefinitionReader, SettingsOfTheTemplatesAreRead) {
    const Reading reading(
        "codegen.setvariable size big codegen.linecomment // codegen.vararg.sep \" + \" icontext x");
    ASSERT_TRUE(reading.ok);
    ASSERT_EQ(reading.box.codegen.m_lineComment, "//");
    EXPECT_EQ(reading.box.codegen.m_varargSep, " + ");
    std::string expanded;
    COpBox box;
    CArchive archive = ArchiveOf("codegen.setvariable size big");
    Report report;
    ASSERT_TRUE(box.ReadDefinition(archive, "", report));
    box.codegen.ExpandString("a size", expanded);
    EXPECT_EQ(expanded, "a big");
}

TEST(DefinitionReader, ASettingWithoutItsOperandFailsWithItsOwnText) {
    ExpectError("codegen.setvariable", "1: 'setvariable' missing <varname> argument");
    ExpectError("codegen.setvariable a", "1: 'setvariable' missing <varvalue> argument");
    ExpectError("codegen.linecomment", "1: 'linecomment': missing <comment> argument");
}

TEST(DefinitionReader, AMissingTemplateFileIsNamedInFull) {
    const Reading reading("icontext x\ncodegen.main-body append@parts/%s%n.txt\n", "/nowhere/lib");
    EXPECT_FALSE(reading.ok);
    EXPECT_THAT(reading.sink.alerts, ElementsAre("box near line 3: codegen.main-body append@parts/%s%n.txt: "
                                                 "'/nowhere/lib/parts/%s%n.txt': No such file or directory"));
}

TEST(DefinitionReader, ATemplateFileIsReadFromTheLibraryAndHasNoTerminator) {
    TempDir library;
    library.Write("parts/body.txt", "  one  \r\n<<EOT>>\n");
    const Reading reading("codegen.main-body append@parts/body.txt\nicontext x", library.Path());
    EXPECT_TRUE(reading.ok);
    EXPECT_THAT(LinesOf(reading.box, CCodeGen::kMainBody), ElementsAre("  one", "<<EOT>>"));
    EXPECT_EQ(reading.box.icontext, "x");
}

}  // namespace
}  // namespace tavrin
