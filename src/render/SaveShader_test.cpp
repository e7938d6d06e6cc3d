// SPDX-License-Identifier: Apache-2.0
// SaveShader: the work files, the filter script and what it reports.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <sstream>

#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

// Notes its arguments, then runs the command with its streams as told.
constexpr const char* kRedirect =
    "open my $note, '>', \"$ENV{TAVRN_WORKDIR}/redirect.args\"; print $note map { \"<$_>\" } @ARGV; close "
    "$note;\n"
    "my ($in, $out, $err, @command) = @ARGV;\n"
    "open STDIN, '<', $in; open STDERR, '>', $err; exec $^X, @command;\n";
// Notes its arguments, its input and where it is told that the library lies.
constexpr const char* kFilter =
    "open my $note, '>', \"$ENV{TAVRN_WORKDIR}/filter.seen\"; print $note map({ \"<$_>\" } @ARGV), <STDIN>;\n"
    "open $note, '>', \"$ENV{TAVRN_WORKDIR}/filter.env\"; print $note $ENV{TAVRN_LIB};\n";

class SaveShaderTest : public test::DocumentTest {
  protected:
    SaveShaderTest() {
        site.environment.Set("TAVRN_LIB", site.directories.libDir);
        Script("redirect.pl", kRedirect);
        Script("codefilter", kFilter);
        document.customshaderhelp = "A plastic.";
        document.SetPath("/my documents/plastic.tvn");
        siteCodeGen.AddLine("main-open", "append", "surface _SHADERNAME_");
        siteCodeGen.AddLine("hinttext", "append", "hints of _SHADERNAME_");
    }
    // A script of the library's bin directory.
    std::string Script(const std::string& name, const std::string& text) const {
        return host.Directory().Write("installation/mini/bin/" + name, text);
    }
    std::string InWork(const std::string& name) const { return site.WorkPath(name); }
    std::string Read(const std::string& name) const { return test::ReadFile(InWork(name)); }
    // Puts a directory in the place of a work file.
    void Block(const std::string& name) const { fs::create_directories(InWork(name)); }
    std::string& Log() { return host.Sink().log; }
    std::string Command() const {
        const std::string bin = site.directories.libDir + "/bin/";
        return "perl " + bin + "redirect.pl " + InWork("codegenfile") + " - " + InWork("errors.txt") + " " +
               bin + "codefilter plastic " + InWork("plastic");
    }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
    RenderSession session{document, site, siteCodeGen};
};

TEST_F(SaveShaderTest, TheFilterGetsTheCodeOnItsInputAndTheNameAndPathOfTheShader) {
    EXPECT_TRUE(session.SaveShader());
    EXPECT_EQ(Read("redirect.args"), "<" + InWork("codegenfile") + "><-><" + InWork("errors.txt") + "><" +
                                         site.directories.libDir + "/bin/codefilter><plastic><" +
                                         InWork("plastic") + ">");
    EXPECT_EQ(Read("filter.seen"), "<plastic><" + InWork("plastic") + ">" + Read("codegenfile"));
    EXPECT_EQ(Read("filter.env"), site.directories.libDir);
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(Log(), "");
}

// There is no memory for the line that tells of a circle.
class PoorSink : public test::CollectingSink {
  public:
    void OnLog(std::string_view) override { throw std::bad_alloc(); }
};

TEST_F(SaveShaderTest, GeneratingThatRunsOutOfMemoryIsAlertedAndRunsNoFilter) {
    PoorSink poor;
    site.report.SetSink(&poor);
    COpBox& box = Add(test::MakeLink("Link", 1));
    test::Wire(box, 0, box, 0);
    EXPECT_FALSE(session.SaveShader());
    EXPECT_THAT(poor.alerts, ElementsAre("not enough memory for generating the shader plastic"));
    EXPECT_FALSE(fs::exists(InWork("redirect.args")));
    site.report.SetSink(&host.Sink());
    EXPECT_TRUE(session.SaveShader());
}

TEST_F(SaveShaderTest, TheCodeFileHoldsTheArgumentsThenTheSource) {
    COpBox& box = Add(test::MakeBox(
        "Paint", "input Ks { float { 0.5 0 1 0 %g } }\ncodegen.main-body append\nCi = Ks;\n<<EOT>>\n", 2));
    box.inputs[0]->arg = 1;
    EXPECT_TRUE(session.SaveShader());
    EXPECT_EQ(
        Read("codegenfile"),
        "Help\n{\n>A plastic.\n}\n\n"
        "ArgName Paint_2_Ks\n{\n"
        "    Stow        0\n    Lock        0\n    Pin         0\n    BoxTitle    Paint\n"
        "    ButtonTitle Ks\n    Comments    \n    float       0.5\n    MinMax      0.000000 1.000000\n}\n\n"
        "EndArginfo\n"
        "surface plastic\n\nCi = Paint_2_Ks;\n");
}

TEST_F(SaveShaderTest, AMapBesideTheCodeFileTellsWhoseItsLinesAre) {
    COpBox& box = Add(test::MakeBox(
        "Clear Coat", "input Ks { float { 0.5 0 1 0 %g } }\ncodegen.main-body append\nCi = Ks;\n<<EOT>>\n",
        2));
    box.inputs[0]->arg = 1;
    box.inputs[0]->comments = "in two\nlines";
    EXPECT_TRUE(session.SaveShader());
    std::string error;
    const auto map = LineMap::Read(Read("linemap"), error);
    ASSERT_TRUE(map) << error;
    std::istringstream code(Read("codegenfile"));
    size_t number = 0;
    size_t ofArgument = 0;
    std::string coded;
    for (std::string line; std::getline(code, line);) {
        const LinePlace place = map->Find(++number).value_or(LinePlace{});
        if (place.button == "Ks" && place.clause.empty()) ++ofArgument;
        if (line.starts_with("Ci =")) coded = place.box + " " + place.clause;
        if (line.starts_with("ArgName")) {
            EXPECT_EQ(place.box, "Clear Coat_2");
        }
        if (line.starts_with("surface")) {
            EXPECT_EQ(place.box, "");
        }
    }
    EXPECT_EQ(ofArgument, 12U) << "from ArgName to the brace";
    EXPECT_EQ(coded, "Clear Coat_2 main-body");
    EXPECT_EQ(map->LineCount(), number) << "no line more, none less";
}

TEST_F(SaveShaderTest, AMapThatCannotBeWrittenStopsTheRun) {
    Block("linemap");
    EXPECT_FALSE(session.SaveShader());
    EXPECT_THAT(Alerts(), ElementsAre(InWork("linemap") + ": Is a directory"));
    EXPECT_FALSE(fs::exists(InWork("redirect.args")));
}

TEST_F(SaveShaderTest, ANewRunTakesTheMarksOfTheLastOneAway) {
    session.marks.Hear("box Paint_2: bad\n");
    document.SetPath("/x/my plastic.tvn");
    EXPECT_FALSE(session.SaveShader());
    EXPECT_NE(session.marks.Find("Paint_2"), nullptr) << "that was no run";
    document.SetPath("/x/plastic.tvn");
    EXPECT_TRUE(session.SaveShader());
    EXPECT_TRUE(session.marks.IsEmpty());
}

TEST_F(SaveShaderTest, MarksAreOfTheDocumentThatTheyCameWith) {
    session.marks.Hear("box Paint_2: bad\n");
    document.edits.Replaced();
    EXPECT_TRUE(session.marks.IsEmpty());
}

TEST_F(SaveShaderTest, TheHintsHaveAFileOfTheirOwn) {
    EXPECT_TRUE(session.SaveShader());
    EXPECT_EQ(Read("hintfile"), "hints of plastic\n");
}

TEST_F(SaveShaderTest, AnUnsavedDocumentIsUntitled) {
    document.SetPath("");
    EXPECT_EQ(session.ShaderName(), "Untitled");
    EXPECT_TRUE(session.SaveShader());
    EXPECT_THAT(Read("filter.seen"), testing::StartsWith("<Untitled><" + InWork("Untitled") + ">"));
}

TEST_F(SaveShaderTest, WhiteSpaceInTheNameStopsBeforeAnyFileIsWritten) {
    for (const char* name : {"/x/my plastic.tvn", "/x/my\tplastic.tvn", "/x/plastic\n.tvn"}) {
        host.Sink().alerts.clear();
        document.SetPath(name);
        EXPECT_FALSE(session.SaveShader()) << name;
        EXPECT_THAT(Alerts(), ElementsAre("shader name contains whitespace characters"));
    }
    EXPECT_TRUE(fs::is_empty(site.directories.workDir));
}

TEST_F(SaveShaderTest, ANameThatTheWorkDirectoryHasForAFileOfItsOwnIsRefused) {
    for (const char* name : {"codegenfile", "linemap", "hintfile", "render_options", "errors.txt", "arginfo",
                             "boxdef.tmp", "boxdef.3.errors", "kill.3", "12", ""}) {
        host.Sink().alerts.clear();
        document.SetPath("/x/" + std::string(name) + ".tvn");
        EXPECT_FALSE(session.SaveShader()) << name;
        EXPECT_THAT(Alerts(), ElementsAre("shader name " + std::string(name) +
                                          " is that of a work file; save the document under another name"));
    }
    EXPECT_TRUE(fs::is_empty(site.directories.workDir));
    for (const char* name : {"codegenfile2", "kill", "boxdef", "12a"}) {
        document.SetPath("/x/" + std::string(name) + ".tvn");
        EXPECT_TRUE(session.SaveShader()) << name;
    }
}

TEST_F(SaveShaderTest, ANameOfAnyWordsAndSignsIsOneWordOfTheCommand) {
    // A path of words that would be arguments, had anybody split it.
    document.SetPath("/my documents/x\" -c \"y/-c'$(id)`;\".tvn");
    EXPECT_TRUE(session.SaveShader());
    const std::string name = "-c'$(id)`;\"";
    EXPECT_THAT(Read("filter.seen"), testing::StartsWith("<" + name + "><" + InWork(name) + ">"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(SaveShaderTest, ControlCharactersInTheNameAreRefused) {
    for (const char* name : {"/x/a\rb.tvn", "/x/a\x1b[2Jb.tvn", "/x/a\x7f.tvn", "/x/a\vb.tvn"}) {
        host.Sink().alerts.clear();
        document.SetPath(name);
        EXPECT_FALSE(session.SaveShader());
        EXPECT_THAT(
            Alerts(),
            ElementsAre("shader name contains control characters; save the document under another name"));
    }
    EXPECT_TRUE(fs::is_empty(site.directories.workDir));
}

TEST_F(SaveShaderTest, AFilterThatTakesTooLongIsStoppedAndTold) {
    Script("codefilter", "$SIG{TERM} = 'IGNORE'; sleep 1 while 1;\n");
    site.compileLimits = {std::chrono::seconds(1), 0, "limit.compiletime", ""};
    EXPECT_FALSE(session.SaveShader());
    EXPECT_THAT(
        Alerts(),
        ElementsAre("codefilter was stopped: it took more than 1 second, the limit of limit.compiletime"));
    EXPECT_EQ(Log(), "save shader command returned 137\r\n");
}

TEST_F(SaveShaderTest, OfWhatAFilterComplainsWithoutEndTheTwoEndsAreLogged) {
    Script("codefilter", "print STDERR \"line $_\\n\" for 1 .. 100000;\n");
    site.commands.SetOutputLimit(1000);
    EXPECT_TRUE(session.SaveShader());
    EXPECT_THAT(Log(), testing::StartsWith("line 1\r\nline 2\r\n"));
    EXPECT_THAT(Log(), testing::HasSubstr(" bytes of output are left out here"));
    EXPECT_THAT(Log(), testing::EndsWith("line 100000\r\n"));
    EXPECT_LT(Log().size(), 8000U);
}

TEST_F(SaveShaderTest, OnlyBlanksTabsAndLineFeedsAreWhiteSpace) {
    EXPECT_TRUE(HasWhitespace("a b"));
    EXPECT_TRUE(HasWhitespace("a\t"));
    EXPECT_TRUE(HasWhitespace("\n"));
    EXPECT_FALSE(HasWhitespace("a\r\v\f-_."));
    EXPECT_FALSE(HasWhitespace(""));
}

TEST_F(SaveShaderTest, RenderOptionsAreCommandsInTheOrderOfTheirNames) {
    document.m_renderOptions = {{"SIZE", "320,240"}, {"DEPTH", ""}, {"TITLE", "a \"b\" \\c"}};
    EXPECT_TRUE(session.SaveShader());
    EXPECT_EQ(Read("render_options"),
              "setenv DEPTH \"\"\r\nsetenv SIZE \"320,240\"\r\nsetenv TITLE \"a \\\"b\\\" \\\\c\"\r\n");
}

TEST_F(SaveShaderTest, RenderOptionsGoWhereTheChildrenAreToldThatTheyAre) {
    site.environment.Set("TAVRN_RENOPTS", InWork("elsewhere"));
    document.m_renderOptions = {{"DEPTH", "2"}};
    EXPECT_TRUE(session.SaveShader());
    EXPECT_EQ(Read("elsewhere"), "setenv DEPTH \"2\"\r\n");
    EXPECT_FALSE(fs::exists(InWork("render_options")));
}

TEST_F(SaveShaderTest, ACodeFileThatCannotBeWrittenStopsTheRun) {
    Block("codegenfile");
    EXPECT_FALSE(session.SaveShader());
    EXPECT_THAT(Alerts(), ElementsAre(InWork("codegenfile") + ": Is a directory"));
    EXPECT_FALSE(fs::exists(InWork("render_options")));
    EXPECT_FALSE(fs::exists(InWork("redirect.args")));
}

TEST_F(SaveShaderTest, RenderOptionsThatCannotBeWrittenAreAlertedAndTheRunGoesOn) {
    Block("render_options");
    EXPECT_TRUE(session.SaveShader());
    EXPECT_THAT(Alerts(), ElementsAre(InWork("render_options") + ": unable to open for writing"));
    EXPECT_TRUE(fs::exists(InWork("hintfile")));
    EXPECT_TRUE(fs::exists(InWork("filter.seen")));
}

TEST_F(SaveShaderTest, AHintFileThatCannotBeWrittenStopsTheRun) {
    Block("hintfile");
    EXPECT_FALSE(session.SaveShader());
    EXPECT_THAT(Alerts(), ElementsAre(InWork("hintfile") + ": Is a directory"));
    EXPECT_TRUE(fs::exists(InWork("codegenfile")));
    EXPECT_TRUE(fs::exists(InWork("render_options")));
    EXPECT_FALSE(fs::exists(InWork("redirect.args")));
}

TEST_F(SaveShaderTest, AMissingWorkDirectoryIsToldInThePlatformsWords) {
    fs::remove_all(site.directories.workDir);
    EXPECT_FALSE(session.SaveShader());
    EXPECT_THAT(Alerts(), ElementsAre(InWork("codegenfile") + ": No such file or directory"));
}

TEST_F(SaveShaderTest, AFilterThatFailsHasItsErrorsInTheLogAndThenItsCode) {
    Script("codefilter", "print STDERR \"line 3: 100%s wrong\\nline 4: too\\n\"; exit 3;\n");
    EXPECT_FALSE(session.SaveShader());
    EXPECT_EQ(Log(), "line 3: 100%s wrong\r\nline 4: too\r\nsave shader command returned 3\r\n");
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(SaveShaderTest, AFilterThatWarnsAndEndsWellHasItsWarningsInTheLog) {
    Script("codefilter", "print STDERR \"warning\\n\";\n");
    EXPECT_TRUE(session.SaveShader());
    EXPECT_EQ(Log(), "warning\r\n");
}

TEST_F(SaveShaderTest, AnErrorWithoutALineEndIsCompletedBeforeTheCode) {
    Script("codefilter", "print STDERR 'no end'; exit 3;\n");
    EXPECT_FALSE(session.SaveShader());
    EXPECT_EQ(Log(), "no end\r\nsave shader command returned 3\r\n");
}

TEST_F(SaveShaderTest, AFilterThatASignalEndsHasFailed) {
    Script("codefilter", "kill 9, $$;\n");
    EXPECT_FALSE(session.SaveShader());
    EXPECT_EQ(Log(), "save shader command returned 137\r\n");
}

TEST_F(SaveShaderTest, ErrorsOfAnEarlierRunAreNotShownAgain) {
    Script("redirect.pl", "exit 0;\n");
    host.Directory().Write("work/errors.txt", "old\n");
    ASSERT_EQ(Read("errors.txt"), "old\n");
    EXPECT_TRUE(session.SaveShader());
    EXPECT_EQ(Log(), "");
    EXPECT_FALSE(fs::exists(InWork("errors.txt")));
}

TEST_F(SaveShaderTest, TheSiteMayNameAnotherFilterOfTheLibrary) {
    Script("ours.pl", kFilter);
    site.settings.Store("sourcecodeprefilter", "\"bin/ours.pl\" # ours");
    EXPECT_TRUE(session.SaveShader());
    EXPECT_THAT(Read("redirect.args"),
                testing::HasSubstr("><" + site.directories.libDir + "/bin/ours.pl><plastic>"));
    EXPECT_THAT(Read("filter.seen"), testing::StartsWith("<plastic>"));
}

TEST_F(SaveShaderTest, AnAbsoluteFilterIsUsedAsItStands) {
    site.settings.Store("sourcecodeprefilter", host.Directory().Write("ours.pl", kFilter));
    EXPECT_TRUE(session.SaveShader());
    EXPECT_THAT(Read("redirect.args"),
                testing::HasSubstr("><" + host.Directory() / "ours.pl" + "><plastic>"));
    site.settings.Store("sourcecodeprefilter", "C:/tools/filter");
    session.SaveShader();
    EXPECT_THAT(Read("redirect.args"), testing::HasSubstr("><C:/tools/filter><plastic>"));
}

TEST_F(SaveShaderTest, APerlThatCannotStartIsAlertedWithTheWholeCommand) {
    site.environment.Set("PATH", host.Directory() / "nowhere");
    EXPECT_FALSE(session.SaveShader());
    EXPECT_THAT(Alerts(), ElementsAre("command failed: " + Command()));
    EXPECT_EQ(Log(), "");
}

TEST_F(SaveShaderTest, TheNextRunReplacesTheFilesOfTheLast) {
    document.m_renderOptions = {{"LONG_NAME", "long value"}};
    document.customshaderhelp = "A help text that is long.\r\nOf two lines.";
    EXPECT_TRUE(session.SaveShader());
    document.m_renderOptions = {{"A", "1"}};
    document.customshaderhelp.clear();
    EXPECT_TRUE(session.SaveShader());
    EXPECT_EQ(Read("render_options"), "setenv A \"1\"\r\n");
    EXPECT_EQ(Read("codegenfile"), "Help\n{\n}\n\nEndArginfo\nsurface plastic\n");
}

}  // namespace
}  // namespace tavrin
