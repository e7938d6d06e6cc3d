// SPDX-License-Identifier: Apache-2.0
// What fails in a run of the program, how it is told, and what is left.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/Process.h"
#include "batch/BatchTest.h"
#include "support/Terminal.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::kDocument;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class BatchStatusTest : public test::BatchTest {};

TEST_F(BatchStatusTest, AMissingDocumentStopsBeforeTheFirstStep) {
    EXPECT_EQ(Run({In("missing.tvn"), "--save", In("new.tvn"), "--list-operators"}), 1);
    EXPECT_EQ(log,
              "ALERT: unable to open " + In("missing.tvn") + " for reading: No such file or directory\n");
    EXPECT_EQ(data, "");
    EXPECT_FALSE(fs::exists(In("new.tvn")));
    EXPECT_TRUE(NothingIsLeft());
    EXPECT_EQ(Run({In("tmp")}), 1);
    EXPECT_EQ(log, "ALERT: unable to open " + In("tmp") + " for reading: Is a directory\n");
}

TEST_F(BatchStatusTest, EveryAlertIsPrintedAsItIsRaised) {
    EXPECT_EQ(Run({"--describe", "One", "--render", "--describe", "Two"}), 1);
    EXPECT_EQ(log,
              "ALERT: One: unknown operator name\nALERT: desk is empty\nALERT: Two: unknown operator name\n");
}

TEST_F(BatchStatusTest, AFileThatSomebodyElseHasChangedMeanwhileIsNotReplacedUnlessForced) {
    const std::string document = Write("doc.tvn", kDocument);
    environment.Set("TEST_DOCUMENT", document);
    Script("renderit", "open my $f, '>', $ENV{TEST_DOCUMENT} or die; print $f \"newer\\n\"; close $f;\n");
    EXPECT_EQ(Run({document, "--render", "--save", document, "--quiet"}), 1);
    EXPECT_EQ(log, "ALERT: " + document +
                       " has changed since it was last read or saved; save under another name, or use "
                       "--force\n");
    EXPECT_EQ(Read("doc.tvn"), "newer\n");
    Write("doc.tvn", kDocument);
    EXPECT_EQ(Run({document, "--render", "--save", In("copy.tvn"), "--save", In("copy.tvn")}), 0) << log;
    EXPECT_EQ(Read("doc.tvn"), "newer\n");
    Write("doc.tvn", kDocument);
    EXPECT_EQ(Run({document, "--render", "--save", document, "--force"}), 0) << log;
    EXPECT_THAT(Read("doc.tvn"), HasSubstr("filename Link"));
}

TEST_F(BatchStatusTest, AFileThatSomebodyElseHasRemovedMeanwhileIsNotMadeAgainUnlessForced) {
    const std::string document = Write("doc.tvn", kDocument);
    environment.Set("TEST_DOCUMENT", document);
    Script("renderit", "unlink $ENV{TEST_DOCUMENT} or die;\n");
    EXPECT_EQ(Run({document, "--render", "--save", document, "--quiet"}), 1);
    EXPECT_EQ(log, "ALERT: " + document +
                       " is gone, which was there when it was last read or saved; save under another name, "
                       "or use --force\n");
    EXPECT_FALSE(fs::exists(document));
    Write("doc.tvn", kDocument);
    EXPECT_EQ(Run({document, "--render", "--save", document, "--force"}), 0) << log;
    EXPECT_THAT(Read("doc.tvn"), HasSubstr("filename Link"));
}

TEST_F(BatchStatusTest, AnExportOverTheOwnFileDoesNotReplaceWhatSomebodyElseWroteThereUnlessForced) {
    const std::string document =
        Write("doc.tvn", std::string(kDocument) + "exportoptions\n{\n    tavrndir 1 " + In("") + "\n}\n");
    const std::string text = Read("doc.tvn");
    environment.Set("TEST_DOCUMENT", document);
    Script("renderit", "open my $f, '>', $ENV{TEST_DOCUMENT} or die; print $f \"newer\\n\"; close $f;\n");
    Script("exportall", "");
    EXPECT_EQ(Run({document, "--render", "--export-all", "--trust-exports", "--quiet"}), 1);
    EXPECT_THAT(log, HasSubstr("has changed since it was last read or saved; export to another directory"));
    EXPECT_EQ(Read("doc.tvn"), "newer\n");
    Write("doc.tvn", text);
    EXPECT_EQ(Run({document, "--render", "--export-all", "--trust-exports", "--force"}), 0) << log;
    EXPECT_THAT(Read("doc.tvn"), HasSubstr("filename Link"));
}

TEST_F(BatchStatusTest, WhatKilledSavesHaveLeftGoesWhenTheDocumentIsOpenedOrSaved) {
    const std::string document = Write("docs/doc.tvn", kDocument);
    Write("docs/.tavrin-save-abcdefgh", "half");
    EXPECT_EQ(Run({document}), 0) << log;
    EXPECT_FALSE(fs::exists(In("docs/.tavrin-save-abcdefgh")));
    Write("other/.tavrin-save-abcdefgh", "half");
    EXPECT_EQ(Run({document, "--save", In("other/doc.tvn")}), 0) << log;
    EXPECT_FALSE(fs::exists(In("other/.tavrin-save-abcdefgh")));
}

TEST_F(BatchStatusTest, ADocumentWithTwoNamesKeepsThemWhenItIsSavedAndNoCopyIsLeft) {
    const std::string document = Write("doc.tvn", kDocument);
    fs::create_hard_link(document, In("other.tvn"));
    EXPECT_EQ(Run({document, "--save", document}), 0) << log;
    EXPECT_TRUE(fs::equivalent(document, In("other.tvn")));
    EXPECT_THAT(Read("other.tvn"), StartsWith("# Tavrn file written at"));
    EXPECT_TRUE(fs::is_empty(In("home/.local/state/tavrin/recovery")));
    environment.Unset("HOME");
    environment.Unset("XDG_STATE_HOME");
    EXPECT_EQ(Run({document, "--save", document}), 1);
    EXPECT_THAT(log, AllOf(HasSubstr("unable to save " + document), HasSubstr("no home directory")));
}

TEST_F(BatchStatusTest, ADocumentThatWasCutShortIsNotSavedOverItselfUnlessForced) {
    const std::string cut = std::string(kDocument) + "toolbar { nonsense }\nrenderoptions { }\n";
    const std::string document = Write("cut.tvn", cut);
    EXPECT_EQ(Run({document, "--save", document}), 1);
    EXPECT_EQ(log,
              "ALERT: " + document + " near line 9: unexpected input\nALERT: " + document +
                  " was not read to its end, and saving would lose the rest; save under another name, or use "
                  "--force\n");
    EXPECT_EQ(Read("cut.tvn"), cut);
    EXPECT_EQ(Run({document, "--save", In("copy.tvn")}), 1);
    EXPECT_THAT(Read("copy.tvn"), HasSubstr("filename Link"));
    EXPECT_EQ(Read("cut.tvn"), cut);
    EXPECT_EQ(Run({document, "--save", document, "--force"}), 1);
    // But for the time of writing, which stands in the first line and in the last.
    const auto withoutTime = [](const std::string& text) {
        const size_t begin = text.find('\n');
        return text.substr(begin, text.rfind("# Tavrn file written at") - begin);
    };
    EXPECT_EQ(withoutTime(Read("cut.tvn")), withoutTime(Read("copy.tvn")));
}

TEST_F(BatchStatusTest, NoOtherWayLeadsToTheDocumentThatWasCutShort) {
    const std::string cut = std::string(kDocument) + "toolbar { nonsense }\n";
    const std::string document = Write("cut.tvn", cut);
    fs::create_symlink(document, In("link.tvn"));
    EXPECT_EQ(Run({document, "--save", In("link.tvn")}), 1);
    EXPECT_EQ(Read("cut.tvn"), cut);
    EXPECT_EQ(Run({document, "--save", In("tmp/../cut.tvn")}), 1);
    EXPECT_EQ(Read("cut.tvn"), cut);
    EXPECT_EQ(Run({document, "--save", In("copy.tvn"), "--save", document}), 1);
    EXPECT_EQ(Read("cut.tvn"), cut);
}

TEST_F(BatchStatusTest, ADocumentThatWasCutShortIsNotExportedOverItselfUnlessForced) {
    Script("exportall", "print \"exported\\n\";\n");
    const std::string cut =
        "exportoptions { tavrndir 1 " + In("") + "\n}\n" + std::string(kDocument) + "toolbar { nonsense }\n";
    const std::string document = Write("cut.tvn", cut);
    const std::string refused = "ALERT: " + document +
                                " was not read to its end, and exporting would lose the rest; export to "
                                "another directory, or use --force\n";
    EXPECT_EQ(Run({document, "--trust-exports", "--export-all"}), 1);
    EXPECT_THAT(log, testing::EndsWith(refused));
    EXPECT_EQ(Read("cut.tvn"), cut);
    // Nor by a script, nor once it has been saved elsewhere under its name.
    EXPECT_EQ(Run({document, "--trust-exports", "--script", Write("export.tvx", "form export all\n")}), 1);
    EXPECT_THAT(log, testing::EndsWith(refused));
    EXPECT_EQ(Read("cut.tvn"), cut);
    EXPECT_EQ(Run({document, "--save", In("tmp/cut.tvn"), "--trust-exports", "--export-all"}), 1);
    EXPECT_THAT(log, testing::EndsWith(refused));
    EXPECT_EQ(Read("cut.tvn"), cut);
    fs::remove(In("tmp/cut.tvn"));
    EXPECT_EQ(Run({document, "--export-all", "--force", "--trust-exports"}), 1);
    EXPECT_THAT(log, testing::EndsWith("exported\n"));
    EXPECT_THAT(Read("cut.tvn"), AllOf(HasSubstr("filename Link"), testing::Not(HasSubstr("nonsense"))));
}

TEST_F(BatchStatusTest, ADocumentThatEndsTooEarlyHasFailedToo) {
    const std::string document = Write("cut.tvn", std::string(kDocument) + "customshaderhelp\n{\n>half of\n");
    EXPECT_EQ(Run({document, "--save", document}), 1);
    EXPECT_THAT(log, StartsWith("ALERT: " + document + " was not read to its end\n"));
    EXPECT_THAT(Read("cut.tvn"), HasSubstr(">half of"));
}

TEST_F(BatchStatusTest, ADocumentIsNotSavedWhereThereIsNoDirectory) {
    EXPECT_EQ(Run({In("doc.tvn"), "--save", In("no/where.tvn")}), 1);
    EXPECT_EQ(log, "ALERT: unable to save " + In("no/where.tvn") + ": No such file or directory\n");
}

TEST_F(BatchStatusTest, WhatStopsTheProgramAtItsStartIsToldAndLeavesNothing) {
    const auto alertWith = [this](const std::string& name, const std::string& value) {
        const std::string before = environment.Get(name).value_or("");
        environment.Set(name, value);
        EXPECT_EQ(Run({In("doc.tvn"), "--list-operators"}), 1);
        EXPECT_EQ(data, "");
        environment.Set(name, before);
        return log;
    };
    fs::create_directories(In("my site"));
    EXPECT_EQ(alertWith("TAVRN_DIR", In("my site")),
              "ALERT: Fatal Error: Tavrin directory path \"" + In("my site") + "\" includes whitespace\n");
    EXPECT_EQ(alertWith("TAVRN_DIR", In("nowhere")),
              "ALERT: Fatal Error: Tavrin directory \"" + In("nowhere") + "\" does not exist\n");
    EXPECT_EQ(alertWith("TAVRN_LIB", "small"),
              "invalid TAVRN_LIB value: small\nALERT: environment variable TAVRN_LIB not defined\n");
    EXPECT_EQ(alertWith("TAVRN_LIB", "/large"), "ALERT: there is no library large in " + In("site") + "\n");
    EXPECT_TRUE(NothingIsLeft());
    EXPECT_EQ(alertWith("TAVRN_TMPDIR", In("my tmp")),
              "ALERT: Fatal Error: Temporary directory path \"" + In("my tmp") + "\" includes whitespace\n");
    EXPECT_TRUE(fs::is_empty(In("my tmp")));
}

TEST_F(BatchStatusTest, TheLibraryOfTheCommandLineIsUsedIfItIsOneOfTheInstallation) {
    fs::rename(In("site/small"), In("site/other"));
    EXPECT_EQ(Run({"--library", "other", "--list-operators"}), 0);
    EXPECT_THAT(data, StartsWith("Link\t\t" + In("site/other/menu")));
    EXPECT_EQ(Run({"--library", "../site/other", "--list-operators"}), 1);
    EXPECT_EQ(log,
              "ALERT: --library ../site/other: expected the plain name of a directory of the installation\n");
    EXPECT_EQ(data, "");
    EXPECT_TRUE(NothingIsLeft());
}

TEST_F(BatchStatusTest, AFilterThatFailsIsToldInTheLogAndNothingIsRendered) {
    Script("codefilter", "print STDERR \"no such type\\n\"; exit 3;\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--render"}), 1);
    EXPECT_EQ(log, "no such type\nsave shader command returned 3\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--save-shader", "--list-operators"}), 1);
    EXPECT_THAT(data, StartsWith("Link\t"));
}

TEST_F(BatchStatusTest, ARenderThatFailsIsToldInTheLog) {
    Script("renderit", "print \"half \"; exit 4;\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--render"}), 1);
    EXPECT_EQ(log, "half \nscript ended with status 4\n");
}

TEST_F(BatchStatusTest, AQuietRunSaysWhyItHasFailed) {
    Script("renderit", "print \"half\\n\"; print STDERR \"no lamp\\n\"; exit 4;\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--save-shader", "--quiet", "--render"}), 1);
    EXPECT_THAT(log, AllOf(HasSubstr("no lamp\n"), testing::EndsWith("script ended with status 4\n")));
    Script("codefilter", "print STDERR \"no such type\\n\"; exit 3;\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--quiet", "--save-shader"}), 1);
    EXPECT_EQ(log, "no such type\nsave shader command returned 3\n");
    Script("codefilter", "print STDERR \"a remark\\n\";\n");
    Script("exportall", "print STDERR \"no disk\\n\"; exit 5;\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--quiet", "--save-shader", "--export", "shaderSource=" + In("x")}), 1);
    EXPECT_EQ(log, "a remark\nno disk\nscript ended with status 5\n");
    Script("guiprefilter", "print STDERR \"no form\\n\"; exit 6;\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--quiet", "--view", "shaderiface"}), 1);
    EXPECT_THAT(log, AllOf(HasSubstr("ALERT: "), HasSubstr("\na remark\nno form\n")));
    EXPECT_EQ(Run({"--quiet", "--script", Write("odd.tvx", "form sing\n")}), 1);
    EXPECT_EQ(log, "unknown action: form sing \n");
    Script("spp", "print STDERR \"no include\\n\"; exit 7;\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--quiet", "--list-operators"}), 1);
    EXPECT_THAT(log, AllOf(StartsWith("ALERT: "), HasSubstr("\nno include\n")));
    EXPECT_THAT(data, StartsWith("Link\t"));
}

TEST_F(BatchStatusTest, AQuietRunThatSucceedsSaysNothing) {
    Script("codefilter", "print STDERR \"a remark\\n\";\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--quiet", "--render", "--check"}), 0);
    EXPECT_EQ(log, "");
}

TEST_F(BatchStatusTest, AViewShowsOnATerminalWhatWouldSteerIt) {
    Script("guiprefilter", "open my $out, '>', $ARGV[1]; print $out \"a\\e[2J\\r\\xe2\\x80\\xaeb\\n\";\n");
    test::Terminal terminal;
    std::string error;
    const pid_t process =
        Spawn({{test::BuildPath("bin/tavrin-batch"), In("doc.tvn"), "--view", "shaderiface"},
               environment.ToList(),
               -1,
               terminal.Side(),
               terminal.Side()},
              error);
    ASSERT_GE(process, 0) << error;
    EXPECT_EQ(WaitForEnd(process), 0);
    EXPECT_EQ(terminal.Seen(), "a\\x1b[2J\\r\\u{202e}b\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--view", "shaderiface"}), 0);
    EXPECT_EQ(data,
              "a\x1b[2J\r\xe2\x80\xae"
              "b\n")
        << "data for another program is as it is";
}

TEST_F(BatchStatusTest, AnOptionThatNoFormKnowsIsAnErrorThatNamesTheNearest) {
    Write("site/small/tavrn.def",
          "roe {\nxfield {\nenvname SIZE_X\nvalue 4\n}\nxfield {\nenvname SIZE_Y\nvalue 4\n}\n}\n");
    EXPECT_EQ(Run({"--set", "SIZE=1", "--set", "SIZE_X=2", "--save", In("new.tvn")}), 1);
    EXPECT_EQ(log,
              "ALERT: --set SIZE: the library's form has no such render option; there is SIZE_X or SIZE_Y\n");
    EXPECT_THAT(Read("new.tvn"), AllOf(HasSubstr("setenv SIZE_X \"2\""), testing::Not(HasSubstr("SIZE \""))));
    EXPECT_EQ(Run({"--set", "COLOUR=1"}), 1);
    EXPECT_EQ(log, "ALERT: --set COLOUR: the library's form has no such render option\n");
}

TEST_F(BatchStatusTest, AFileBeyondTheSitesLimitIsRefused) {
    Write("site/small/tavrn.def", "maxfilesize 0.001\n");
    const std::string large = Write("large.tvn", kDocument + std::string(2000, ' '));
    const std::string limit = "larger than the 1048 bytes that are read of a file (setting maxfilesize)";
    EXPECT_EQ(Run({large, "--list-operators"}), 1);
    EXPECT_EQ(log, "ALERT: unable to open " + large + " for reading: " + limit + "\n");
    EXPECT_EQ(Run({"--merge", large}), 1);
    EXPECT_THAT(log, HasSubstr("ALERT: unable to open " + large + " for reading: " + limit + "\n"));
    EXPECT_EQ(Run({"--script", large}), 1);
    EXPECT_EQ(log, "ALERT: " + large + ": " + limit + "\n");
    Write("site/small/menu/0020.Large", "# " + std::string(2000, 'x') + "\noutput out { float out }\n");
    EXPECT_EQ(Run({"--add", "Large"}), 1);
    EXPECT_THAT(log, HasSubstr("0020.Large for reading: " + limit + "\n"));
    EXPECT_EQ(Run({Write("uses.tvn", "opdesk { opbox { filename Large wid 1 } }\n")}), 1);
    EXPECT_THAT(log, HasSubstr(limit));
    EXPECT_EQ(Run({In("doc.tvn")}), 0);
    EXPECT_EQ(log, "");
}

TEST_F(BatchStatusTest, ALauncherThatIsMissingIsAFailure) {
    fs::remove(In("site/bin/PerlExec"));
    EXPECT_EQ(Run({In("doc.tvn"), "--render"}), 1);
    EXPECT_THAT(log, StartsWith("CreateProcess failed: \"PerlExec " + In("site/small/bin/renderit") +
                                " \"doc\" 1\""));
}

TEST_F(BatchStatusTest, WhatScriptsPrintGoesToStandardError) {
    Script("codefilter", "print \"from the filter\\n\";\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--render", "--list-operators"}), 0);
    EXPECT_EQ(log, "from the filter\nrendered doc 1\n");
    EXPECT_THAT(data, StartsWith("Link\t"));
}

TEST_F(BatchStatusTest, TheWorkFilesAreKeptWhateverHappened) {
    Script("codefilter", "exit 1;\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--save-shader", "--keep-work", In("kept/here")}), 1);
    EXPECT_TRUE(fs::exists(In("kept/here/codegenfile")));
    EXPECT_TRUE(NothingIsLeft());
    EXPECT_EQ(Run({In("missing.tvn"), "--keep-work", In("empty")}), 1);
    EXPECT_TRUE(fs::is_directory(In("empty")));
}

TEST_F(BatchStatusTest, AWorkDirectoryThatCannotBeKeptIsAlerted) {
    Write("kept", "in the way");
    EXPECT_EQ(Run({In("doc.tvn"), "--save-shader", "--keep-work", In("kept")}), 1);
    EXPECT_THAT(log, StartsWith("ALERT: unable to copy the work directory to " + In("kept") + ": "));
    EXPECT_TRUE(NothingIsLeft());
}

TEST_F(BatchStatusTest, AWorkDirectoryThatCannotBeRemovedIsAFailure) {
    Script("codefilter", "mkdir \"$ENV{TAVRN_WORKDIR}/.kept\";\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--save-shader"}), 1);
    EXPECT_THAT(log, StartsWith("unable to remove " + In("tmp/tavrn.")));
    EXPECT_FALSE(NothingIsLeft());
}

TEST_F(BatchStatusTest, NamesFromFilesCannotSteerTheTerminal) {
    Write("site/small/menu/0020.Odd\x1b[2J", "");
    EXPECT_EQ(Run({"--list-operators"}), 0);
    EXPECT_THAT(data, HasSubstr("\nOdd?[2J\t"));
}

TEST_F(BatchStatusTest, DataThatCannotBeWrittenIsAFailure) {
    EXPECT_EQ(Run({"--list-operators"}, "> /dev/full"), 1);
    EXPECT_EQ(log, "ALERT: unable to write to standard output: No space left on device\n");
    EXPECT_EQ(Run({"--version"}, "> /dev/full"), 1);
    EXPECT_EQ(Run({In("doc.tvn"), "--render", "--list-operators"}, ">&-"), 1);
    EXPECT_EQ(log, "rendered doc 1\nALERT: unable to write to standard output: Bad file descriptor\n");
    EXPECT_TRUE(NothingIsLeft());
}

TEST_F(BatchStatusTest, AReaderThatHasGoneIsAFailureThatLeavesNothing) {
    // A shell that makes a pipe may hold its other end for a moment; of a named one the reader alone has it.
    RunShell(
        "mkfifo \"$TEST_GONE\"; : < \"$TEST_GONE\" & exec 5> \"$TEST_GONE\"; wait;"
        " \"$0\" \"$@\" >&5; echo $? >&2; rm \"$TEST_GONE\"",
        {"--list-operators"});
    EXPECT_EQ(log, "ALERT: unable to write to standard output: Broken pipe\n1\n");
    EXPECT_TRUE(NothingIsLeft());
}

TEST_F(BatchStatusTest, WithoutStandardInputAllIsAsItWas) {
    Script("codefilter", "my @lines = <STDIN>; print STDERR scalar(@lines), \" lines\\n\";\n");
    EXPECT_EQ(Run({In("doc.tvn"), "--render", "--list-operators"}, "<&-"), 0);
    EXPECT_THAT(log, AllOf(HasSubstr(" lines\n"), HasSubstr("rendered doc 1\n")));
    EXPECT_THAT(data, StartsWith("Link\t"));
    EXPECT_TRUE(NothingIsLeft());
}

TEST_F(BatchStatusTest, WithoutAnyStandardStreamTheWorkIsDoneAllTheSame) {
    EXPECT_EQ(Run({In("doc.tvn"), "--render", "--save", In("saved.tvn"), "--keep-work", In("kept")},
                  "<&- >&- 2>&-"),
              0);
    EXPECT_THAT(Read("saved.tvn"), AllOf(StartsWith("# Tavrn file"), HasSubstr("filename Link")));
    EXPECT_TRUE(fs::exists(In("kept/1/doc.tvn")));
    EXPECT_TRUE(NothingIsLeft());
}

}  // namespace
}  // namespace tavrin
