// SPDX-License-Identifier: Apache-2.0
// Defining a box from a library on disk, with the preprocessor's processes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "base/Files.h"
#include "library/OpBox.h"
#include "library/OpRegistry.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::TestSite;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// Writes its last argument's file to the second argument's, as the real pair of scripts does.
constexpr const char* kCopies = R"(my ($in, $out, $err, $spp, $def) = @ARGV;
open(my $o, '>', $out); open(my $d, '<', $def); local $/; print $o scalar <$d>;
open(my $e, '>', $err);
)";

class BoxDefinition : public testing::Test {
  protected:
    BoxDefinition() : registry(own.report) {}

    std::string LibDir() const { return own.directory / "lib"; }
    std::string Work(std::string_view name) const { return own.site.WorkPath(std::string(name)); }

    // A library with one operator and a redirect script of its own.
    void MakeLibrary(std::string_view script, std::string_view definition,
                     const std::string& name = "0100.Noise") {
        own.site.directories.libDir = LibDir();
        own.directory.Write("lib/bin/redirect.pl", script);
        own.directory.Write("lib/menu/" + name, definition);
        registry.Clear();
        registry.AddDirectory(LibDir() + "/menu");
    }
    bool Define(const std::string& name) { return box.Define(name, registry, own.site); }
    std::string CommandLine() const {
        return "perl " + LibDir() + "/bin/redirect.pl - " + Work("boxdef.tmp") + " " + Work("errors.txt") +
               " " + LibDir() + "/bin/spp " + LibDir() + "/menu/0100.Noise";
    }

    TestSite own;
    COpRegistry registry;
    COpBox box;
};

TEST_F(BoxDefinition, AnUnknownOperatorIsAlertedAndNothingIsRun) {
    MakeLibrary(kCopies, "");
    const std::string stale = own.directory.Write("work/boxdef.tmp", "icontext stale");
    EXPECT_FALSE(Define("Nosie"));
    EXPECT_THAT(own.sink.alerts, ElementsAre("Nosie: unknown operator name"));
    EXPECT_TRUE(PathExists(stale));
    EXPECT_EQ(box.filename, "");
}

TEST_F(BoxDefinition, APercentSignInAnUnknownNameIsText) {
    EXPECT_FALSE(Define("100%s%n"));
    EXPECT_EQ(own.sink.LastAlert(), "100%s%n: unknown operator name");
}

TEST_F(BoxDefinition, TheDefinitionIsReadAsThePreprocessorWroteIt) {
    MakeLibrary(kCopies, "icontext hello\nsize 3 4\n");
    EXPECT_TRUE(Define("Noise"));
    EXPECT_EQ(box.icontext, "hello");
    EXPECT_EQ(box.size[1], 4);
    EXPECT_EQ(box.filename, "Noise");
    EXPECT_THAT(own.sink.alerts, IsEmpty());
}

TEST_F(BoxDefinition, TheRedirectScriptGetsTheFivePathsInTheirOrder) {
    MakeLibrary("open(my $e, '>', $ARGV[2]); print $e join('|', @ARGV); open(my $o, '>', $ARGV[1]);", "");
    EXPECT_TRUE(Define("Noise"));
    EXPECT_EQ(own.sink.log, "-|" + Work("boxdef.tmp") + "|" + Work("errors.txt") + "|" + LibDir() +
                                "/bin/spp|" + LibDir() + "/menu/0100.Noise\r\n");
}

TEST_F(BoxDefinition, TheTitleIsTheFileNameInItsCaseOnDisk) {
    MakeLibrary(kCopies, "", "0100.MixIt");
    EXPECT_TRUE(Define("MIXIT"));
    EXPECT_EQ(box.filename, "MixIt");
}

TEST_F(BoxDefinition, TheTitleKeepsFurtherDots) {
    MakeLibrary(kCopies, "", "0100.a.b");
    EXPECT_TRUE(Define("a.b"));
    EXPECT_EQ(box.filename, "a.b");
}

TEST_F(BoxDefinition, WithoutPerlTheCommandIsAlerted) {
    MakeLibrary(kCopies, "icontext x");
    own.site.environment.Set("PATH", own.directory.Path());
    EXPECT_FALSE(Define("Noise"));
    EXPECT_THAT(own.sink.alerts, ElementsAre("command failed: " + CommandLine()));
    EXPECT_EQ(box.filename, "");
}

TEST_F(BoxDefinition, AFailingPreprocessorIsAlertedWithItsCodeAndItsErrorsAreLogged) {
    MakeLibrary("open(my $e, '>', $ARGV[2]); print $e \"line one\\nline two\\n\"; exit 3;", "icontext x");
    EXPECT_FALSE(Define("Noise"));
    EXPECT_THAT(own.sink.alerts, ElementsAre("\"" + CommandLine() + "\" returned 3"));
    EXPECT_EQ(own.sink.log, "line one\r\nline two\r\n");
    EXPECT_EQ(box.icontext, "");
}

TEST_F(BoxDefinition, APreprocessorThatIsKilledCountsAsFailed) {
    MakeLibrary("open(my $o, '>', $ARGV[1]); kill 'KILL', $$; sleep 5;", "");
    EXPECT_FALSE(Define("Noise"));
    EXPECT_EQ(own.sink.LastAlert(), "\"" + CommandLine() + "\" returned 137");
}

TEST_F(BoxDefinition, WarningsOfASuccessfulPreprocessorReachTheLog) {
    MakeLibrary(std::string(kCopies) + "print $e \"old syntax in line 1\\n\"; exit 0;", "icontext x");
    EXPECT_TRUE(Define("Noise"));
    EXPECT_EQ(own.sink.log, "old syntax in line 1\r\n");
    EXPECT_THAT(own.sink.alerts, IsEmpty());
}

TEST_F(BoxDefinition, MissingOutputIsAlertedAndStaleOutputIsNotReadInItsPlace) {
    MakeLibrary("exit 0;", "");
    own.directory.Write("work/boxdef.tmp", "icontext stale");
    EXPECT_FALSE(Define("Noise"));
    EXPECT_THAT(own.sink.alerts, ElementsAre("unable to open " + Work("boxdef.tmp") + " for reading"));
    EXPECT_EQ(box.icontext, "");
}

TEST_F(BoxDefinition, OutputThatIsNoFileIsAlerted) {
    MakeLibrary("mkdir $ARGV[1];", "");
    EXPECT_FALSE(Define("Noise"));
    EXPECT_THAT(own.sink.alerts, ElementsAre("unable to open " + Work("boxdef.tmp") + " for reading"));
}

TEST_F(BoxDefinition, StaleErrorsAreNotLoggedAgain) {
    MakeLibrary("open(my $o, '>', $ARGV[1]);", "");
    own.directory.Write("work/errors.txt", "of the last box\n");
    EXPECT_TRUE(Define("Noise"));
    EXPECT_EQ(own.sink.log, "");
}

TEST_F(BoxDefinition, TheWorkFilesStay) {
    MakeLibrary(kCopies, "icontext x\n");
    EXPECT_TRUE(Define("Noise"));
    EXPECT_EQ(test::ReadFile(Work("boxdef.tmp")), "icontext x\n");
    EXPECT_TRUE(PathExists(Work("errors.txt")));
}

TEST_F(BoxDefinition, AParseErrorNamesThePreprocessedFileAndItsLine) {
    MakeLibrary(kCopies, "icontext x\nsize 3 4\nbogus\n");
    EXPECT_FALSE(Define("Noise"));
    EXPECT_THAT(own.sink.alerts,
                ElementsAre(Work("boxdef.tmp") + " near line 3: unexpected input (operator Noise of " +
                            LibDir() + "/menu/0100.Noise)"));
    EXPECT_THAT(own.sink.files, ElementsAre(Work("boxdef.tmp")));
    EXPECT_EQ(box.size[0], 3) << "what was read stays in force";
}

TEST_F(BoxDefinition, AnEditedDefinitionTakesEffectForTheNextBox) {
    MakeLibrary(kCopies, "icontext before");
    EXPECT_TRUE(Define("Noise"));
    own.directory.Write("lib/menu/0100.Noise", "icontext after");
    COpBox next;
    EXPECT_TRUE(next.Define("Noise", registry, own.site));
    EXPECT_EQ(box.icontext, "before");
    EXPECT_EQ(next.icontext, "after");
}

TEST_F(BoxDefinition, AnOperatorWhoseFileIsGoneFailsWithThePreprocessorsWords) {
    MakeLibrary("open(STDERR, '>', $ARGV[2]); open(my $d, '<', $ARGV[4]) or die \"gone\\n\";", "");
    std::remove((LibDir() + "/menu/0100.Noise").c_str());
    EXPECT_FALSE(Define("Noise"));
    EXPECT_EQ(own.sink.log, "gone\r\n");
    EXPECT_THAT(own.sink.LastAlert(), StartsWith("\"perl "));
}

TEST_F(BoxDefinition, TemplatesFromFilesAreFoundInTheLibrary) {
    MakeLibrary(kCopies, "codegen.main-body append@parts/body.txt\n");
    own.directory.Write("lib/parts/body.txt", "one;\ntwo;\n");
    EXPECT_TRUE(Define("Noise"));
    ASSERT_EQ(box.codegen.Block(CCodeGen::kMainBody).Size(), 2U);
    EXPECT_EQ(box.codegen.Block(CCodeGen::kMainBody).Line(1).text, "two;");
}

TEST_F(BoxDefinition, AProgramThatIsEndingStartsNothingAndAlertsNothing) {
    MakeLibrary(kCopies, "icontext x");
    own.site.commands.InterruptCommand(SIGTERM);
    EXPECT_FALSE(Define("Noise"));
    EXPECT_THAT(own.sink.alerts, IsEmpty());
    EXPECT_EQ(box.filename, "");
}

// With the scripts of the library that is supplied

class SuppliedScripts : public BoxDefinition {
  protected:
    void MakeOperator(std::string_view definition) {
        own.directory.Write("menu/0100.Noise", definition);
        registry.AddDirectory(own.directory / "menu");
    }
};

TEST_F(SuppliedScripts, ADefinitionWithDirectivesBecomesABox) {
    own.directory.Write("menu/values.inc", "#define SHADE 0.25\n");
    MakeOperator(
        "#include \"values.inc\"\n# a comment\ninput shade {\n    float { @SHADE@ 0 1 0 \"%g\" }\n}\n"
        "codegen.main-body append\n#if this is code\n<<EOT>>\n");
    EXPECT_TRUE(Define("noise"));
    EXPECT_THAT(own.sink.alerts, IsEmpty());
    EXPECT_EQ(own.sink.log, "");
    EXPECT_EQ(box.filename, "Noise");
    ASSERT_EQ(box.inputs.size(), 1U);
    EXPECT_EQ(box.inputs[0]->ValueText(), "0.25");
    EXPECT_EQ(box.codegen.Block(CCodeGen::kMainBody).Line(0).text, "#if this is code");
}

TEST_F(SuppliedScripts, APreprocessorErrorNamesTheFileAndLineOfTheLibraryInTheLog) {
    MakeOperator("icontext x\n#error not for this library\n");
    EXPECT_FALSE(Define("Noise"));
    EXPECT_THAT(own.sink.log, HasSubstr(own.directory / "menu/0100.Noise:2: #error not for this library"));
    EXPECT_THAT(own.sink.LastAlert(), HasSubstr("\" returned 1"));
}

TEST_F(SuppliedScripts, ABinaryFileIsRefused) {
    MakeOperator(std::string_view("icontext x\n\0\x01\x02", 14));
    EXPECT_FALSE(Define("Noise"));
    EXPECT_THAT(own.sink.log, HasSubstr("0100.Noise:2: "));
}

}  // namespace
}  // namespace tavrin
