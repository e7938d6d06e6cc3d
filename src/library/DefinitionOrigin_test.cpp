// SPDX-License-Identifier: Apache-2.0
// Messages about a definition name its operator, and the line of the file that the author has written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/DefinitionSource.h"
#include "library/OpBox.h"
#include "library/OpRegistry.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::TestSite;
using testing::ElementsAre;
using testing::IsEmpty;

// With the preprocessor that comes with the program.
class DefinitionOrigin : public testing::Test {
  protected:
    DefinitionOrigin() : registry(own.report) {
        own.site.directories.libDir = test::SourcePath("installation/mray");
    }

    bool Define(const std::string& text) {
        path = own.directory.Write("menu/0100.Noise", text);
        registry.Clear();
        registry.AddDirectory(own.directory / "menu");
        return box.Define("Noise", registry, own.site);
    }
    std::string Include(const std::string& name, const std::string& text) {
        return own.directory.Write("menu/" + name, text);
    }
    void ExpectAlert(const std::string& message) {
        EXPECT_THAT(own.sink.alerts, ElementsAre(own.site.WorkPath("boxdef.tmp") + " near line " + message));
        EXPECT_THAT(own.sink.files, ElementsAre(own.site.WorkPath("boxdef.tmp")));
    }

    TestSite own;
    COpRegistry registry;
    COpBox box;
    std::string path;
};

TEST_F(DefinitionOrigin, IsTheLineThatTheAuthorHasWritten) {
    EXPECT_FALSE(Define("#define A 1\n#ifdef B\nsize 1\n#endif\nsize 1 2\ncolour 1 2 3\n"));
    ExpectAlert("2: unexpected input (operator Noise: line 6 of " + path + ")");
}

TEST_F(DefinitionOrigin, IsTheLineOfTheFileThatIsIncluded) {
    const std::string included = Include("common.inc", "\nsize 1 2\n#define X\nbad\n");
    EXPECT_FALSE(Define("icontext x\n#include \"common.inc\"\nicontext y\n"));
    ExpectAlert("4: unexpected input (operator Noise of " + path + ": line 4 of " + included + ")");
}

TEST_F(DefinitionOrigin, IsKnownBehindAnIncludeAndBehindBlocksWithDirectivesInThem) {
    Include("lines.inc", "one\ntwo\n");
    EXPECT_FALSE(
        Define("boxhelp {\n#include \"lines.inc\"\n#define Y\nthree\n}\ncodegen.main-body append\n#define z\n"
               "<<EOT>>\nbad\n"));
    ExpectAlert("9: unexpected input (operator Noise: line 9 of " + path + ")");
    EXPECT_EQ(box.boxhelp, "one\r\ntwo\r\nthree");
    ASSERT_EQ(box.codegen.Block(CCodeGen::kMainBody).Size(), 1U);
    EXPECT_EQ(box.codegen.Block(CCodeGen::kMainBody).Line(0).text, "#define z");
}

TEST_F(DefinitionOrigin, IsToldWithWhateverIsWrongInADefinition) {
    const std::string head = "#define X\n";
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"input a { }", "1: no type for button"},
        {"output tieback=b c { float out }", "1: tieback names unknown button b"},
        {"codegen.main-body sideways\nx\n<<EOT>>", "2: ERROR: unknown codegen type 'main-body'"},
        {"codegen.setvariable a", "2: 'setvariable' missing <varvalue> argument"},
        {"input a { float { 1 2 3 yes %g } }", "1: unexpected input"},
        {"defs { castlock.add a", "2: unexpected input"},
        {"input \"a b\" { }",
         "1: the button name \"a b\" cannot be kept in a document: use a name without blanks, line breaks, "
         "double "
         "quotes, backslashes and #"},
    };
    for (const auto& [text, message] : cases) {
        own.sink.alerts.clear();
        own.sink.files.clear();
        EXPECT_FALSE(Define(head + text)) << text;
        ASSERT_EQ(own.sink.alerts.size(), 1U) << text;
        EXPECT_THAT(own.sink.LastAlert(), testing::HasSubstr(std::string("near line ") + message)) << text;
        EXPECT_THAT(own.sink.LastAlert(),
                    testing::ContainsRegex(" \\(operator Noise: line [23] of .*0100.Noise\\)$"));
    }
}

TEST_F(DefinitionOrigin, AnOpenBlockTakesTheRestOfTheDefinitionAndNotTheTableBehindIt) {
    EXPECT_TRUE(Define("#define X\nboxhelp {\nall\nof it\n"));
    ExpectAlert(
        "1: the block \"boxhelp\" is not closed: its last line has to be a \"}\" alone (operator Noise: line "
        "2 of " +
        path + ")");
    EXPECT_EQ(box.boxhelp, "all\r\nof it");
}

TEST_F(DefinitionOrigin, AnOpenQuoteTakesTheRestOfTheDefinitionAndNotTheTableBehindIt) {
    EXPECT_TRUE(Define("icontext \"open\n"));
    EXPECT_EQ(box.icontext, "open\n");
}

TEST_F(DefinitionOrigin, IsTheOperatorAloneWhereThePreprocessorTellsNoLines) {
    own.directory.Write(
        "plain/bin/redirect.pl",
        "open my $o, '>', $ARGV[1]; open my $d, '<', $ARGV[4]; local $/; print $o scalar <$d>;");
    own.site.directories.libDir = own.directory / "plain";
    EXPECT_FALSE(Define("\nbad\n"));
    ExpectAlert("2: unexpected input (operator Noise of " + path + ")");
}

TEST_F(DefinitionOrigin, StandsBeforeTheLineFeedThatEndsAMessage) {
    own.directory.Write(
        "plain/bin/redirect.pl",
        "open my $o, '>', $ARGV[1]; open my $d, '<', $ARGV[4]; local $/; print $o scalar <$d>;");
    own.site.directories.libDir = own.directory / "plain";
    EXPECT_FALSE(Define("codegen.main-body append\nx\n"));
    ExpectAlert("3: Unexpected EOF while searching for <<EOT>> (operator Noise of " + path + ")\n");
}

TEST_F(DefinitionOrigin, TheFilesThatABoxWasReadFromAreKnown) {
    const std::string included = Include("values.inc", "#define A 1\n");
    EXPECT_TRUE(Define("#include \"values.inc\"\nsize @A@ 1\n"));
    ASSERT_NE(box.source, nullptr);
    ASSERT_EQ(box.source->files.size(), 2U);
    EXPECT_EQ(box.source->files[0], StampOf(path));
    EXPECT_EQ(box.source->files[1], StampOf(included));
    EXPECT_EQ(COpBox(box).source, box.source);
    const auto hash = box.source->textHash;
    COpBox other;
    Include("values.inc", "#define A 1\n#define B\n");
    EXPECT_TRUE(other.Define("Noise", registry, own.site));
    EXPECT_EQ(other.source->textHash, hash);  // the same definition
    Include("values.inc", "#define A 2\n");
    EXPECT_TRUE(COpBox().Define("Noise", registry, own.site));
    COpBox third;
    EXPECT_TRUE(third.Define("Noise", registry, own.site));
    EXPECT_NE(third.source->textHash, hash);
    EXPECT_THAT(own.sink.alerts, IsEmpty());
}

}  // namespace
}  // namespace tavrin
