// SPDX-License-Identifier: Apache-2.0
// What fails in a run of the program, how it is told, and what is left.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "base/FileDescriptor.h"
#include "base/Process.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kDocument =
    "opdesk\n{\n    opbox\n    {\n        filename Link\n        wid 1\n    }\n}\n";
constexpr const char* kPerl = "#!/usr/bin/perl\n";

// An installation with the library "small": one operator, and scripts that a test may replace.
class BatchStatusTest : public testing::Test {
  protected:
    BatchStatusTest() {
        for (const char* directory : {"tmp", "site/bin", "site/small/bin"})
            fs::create_directories(In(directory));
        fs::copy(test::SourcePath("installation/bin/PerlExec"), In("site/bin"));
        fs::copy(test::SourcePath("installation/mray/bin/redirect.pl"), In("site/small/bin"));
        fs::copy(test::SourcePath("installation/mray/bin/spp"), In("site/small/bin"));
        Write("site/small/menu/0010.Link", "input in { float { 0 0 1 0 %g } }\noutput out { float out }\n");
        Script("codefilter", "");
        Script("renderit", "print \"rendered @ARGV\\n\";\n");
        Write("doc.tvn", kDocument);
        for (const char* name : {"TEMP", "homeDrive", "homePath"}) environment.Unset(name);
        environment.Set("HOME", In("home"));
        environment.Set("TAVRN_DIR", In("site"));
        environment.Set("TAVRN_LIB", "/small");
        environment.Set("TAVRN_TMPDIR", In("tmp"));
        environment.Set("TEST_GONE", In("gone"));
    }

    std::string In(const std::string& name) const { return m_directory / name; }
    std::string Write(const std::string& name, const std::string& text) const {
        return m_directory.Write(name, text);
    }
    std::string Read(const std::string& name) const { return test::ReadFile(In(name)); }
    void Script(const std::string& name, const std::string& text) const {
        fs::permissions(Write("site/small/bin/" + name, kPerl + text), fs::perms::owner_all);
    }

    // Runs the program with its streams redirected by a shell; its status.
    int Run(const std::vector<std::string>& words, const std::string& redirections = {}) {
        return RunShell("exec \"$0\" \"$@\" " + redirections, words);
    }
    // Runs a command of the shell, to which "$0" "$@" are the program and its words; its status.
    int RunShell(const std::string& command, const std::vector<std::string>& words) {
        std::vector<std::string> all = {"/bin/sh", "-c", command, test::BuildPath("bin/tavrin-batch")};
        all.insert(all.end(), words.begin(), words.end());
        const auto open = [this](const char* name) {
            return FileDescriptor(::open(In(name).c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        };
        const FileDescriptor output = open("data");
        const FileDescriptor errors = open("log");
        std::string error;
        const pid_t process = Spawn({all, environment.ToList(), -1, output.Get(), errors.Get()}, error);
        EXPECT_GE(process, 0) << error;
        const int status = WaitForEnd(process);
        data = Read("data");
        log = Read("log");
        return status;
    }
    bool NothingIsLeft() const { return fs::is_empty(In("tmp")); }

    Environment environment = Environment::FromProcess();
    std::string data;  // standard output of the last run
    std::string log;   // its standard error

  private:
    test::TempDir m_directory;
};

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
    EXPECT_EQ(Run({document, "--render", "--export-all", "--quiet"}), 1);
    EXPECT_THAT(log, HasSubstr("has changed since it was last read or saved; export to another directory"));
    EXPECT_EQ(Read("doc.tvn"), "newer\n");
    Write("doc.tvn", text);
    EXPECT_EQ(Run({document, "--render", "--export-all", "--force"}), 0) << log;
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
    EXPECT_EQ(Run({document, "--export-all"}), 1);
    EXPECT_THAT(log, testing::EndsWith(refused));
    EXPECT_EQ(Read("cut.tvn"), cut);
    // Nor by a script, nor once it has been saved elsewhere under its name.
    EXPECT_EQ(Run({document, "--script", Write("export.tvx", "form export all\n")}), 1);
    EXPECT_THAT(log, testing::EndsWith(refused));
    EXPECT_EQ(Read("cut.tvn"), cut);
    EXPECT_EQ(Run({document, "--save", In("tmp/cut.tvn"), "--export-all"}), 1);
    EXPECT_THAT(log, testing::EndsWith(refused));
    EXPECT_EQ(Read("cut.tvn"), cut);
    fs::remove(In("tmp/cut.tvn"));
    EXPECT_EQ(Run({document, "--export-all", "--force"}), 1);
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
    EXPECT_EQ(Run({In("doc.tvn"), "--render", "--quiet"}), 1);
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
