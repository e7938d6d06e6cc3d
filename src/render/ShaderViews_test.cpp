// SPDX-License-Identifier: Apache-2.0
// The three views of a shader: their commands, the file for the editor, and what is told when there is none.
#include "render/ShaderViews.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "render/ArgInfo.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

// Notes its arguments, a line a run, then runs the command with its streams as told.
constexpr const char* kRedirect =
    "open my $note, '>>', \"$ENV{TAVRN_WORKDIR}/redirect.args\"; print $note map({ \"<$_>\" } @ARGV), "
    "\"\\n\";\n"
    "close $note; my ($in, $out, $err, @command) = @ARGV;\n"
    "$in eq '-' or open STDIN, '<', $in; open STDERR, '>', $err; exec $^X, @command;\n";
// Writes what it gets on its input, and its name, to its output.
constexpr const char* kTool = "open my $out, '>', $ARGV[1]; print $out \"made for $ARGV[0]\\n\", <STDIN>;\n";

class ShaderViewsTest : public test::DocumentTest {
  protected:
    ShaderViewsTest() {
        Script("redirect.pl", kRedirect);
        Script("codefilter", "open my $out, '>', $ARGV[1]; print $out 'the source';\n");
        Script("renderiface", "open my $out, '>', $ARGV[1]; print $out \"render interface of $ARGV[0]\";\n");
        Script("guiprefilter", kTool);
        document.customshaderhelp = "A plastic.";
        document.SetPath("/documents/plastic.tvn");
        COpBox& box = Add(test::MakeBox("Paint", "input Ks { float { 0.5 0 1 0 %g } }", 2));
        box.inputs[0]->arg = 1;
    }
    void Script(const std::string& name, const std::string& text) const {
        host.Directory().Write("installation/mini/bin/" + name, text);
    }
    std::string InWork(const std::string& name) const { return site.WorkPath(name); }
    std::string Read(const std::string& name) const { return test::ReadFile(InWork(name)); }
    std::string ToolPath(const std::string& name) const { return site.directories.libDir + "/bin/" + name; }
    // What the redirect script is told for a run, as it notes it.
    std::string Note(const std::string& input, const std::string& tool, const std::string& output) const {
        return "<" + input + "><-><" + InWork("errors.txt") + "><" + ToolPath(tool) + "><plastic><" + output +
               ">\n";
    }
    std::string SaveNote() const { return Note(InWork("codegenfile"), "codefilter", InWork("plastic")); }
    std::string& Log() { return host.Sink().log; }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
    RenderSession session{document, site, siteCodeGen};
    ShaderViews views{site, session};
};

TEST_F(ShaderViewsTest, TheSourceIsWhatTheFilterScriptWrote) {
    EXPECT_EQ(views.ViewShaderSource(), InWork("plastic"));
    EXPECT_EQ(Read("plastic"), "the source");
    EXPECT_EQ(Read("redirect.args"), SaveNote());
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(Log(), "");
}

TEST_F(ShaderViewsTest, TheRenderInterfaceIsMadeFromTheSavedShaderWithoutInput) {
    EXPECT_EQ(views.ViewRenderInterface(), InWork("plastic.tmp"));
    EXPECT_EQ(Read("plastic.tmp"), "render interface of plastic");
    EXPECT_EQ(Read("redirect.args"), SaveNote() + Note("-", "renderiface", InWork("plastic.tmp")));
    EXPECT_FALSE(fs::exists(InWork("arginfo")));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ShaderViewsTest, TheShaderInterfaceIsMadeFromTheArguments) {
    EXPECT_EQ(views.ViewShaderInterface(), InWork("plastic.tmp"));
    EXPECT_EQ(Read("redirect.args"),
              SaveNote() + Note(InWork("arginfo"), "guiprefilter", InWork("plastic.tmp")));
    EXPECT_EQ(Read("arginfo"), WriteArgInfo(document, site.report));
    EXPECT_THAT(Read("arginfo"), testing::HasSubstr("ArgName Paint_2_Ks\n"));
    EXPECT_EQ(Read("plastic.tmp"), "made for plastic\n" + Read("arginfo"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ShaderViewsTest, ANetworkWithoutArgumentsHasAnInterfaceOfItsHelpAlone) {
    document.m_boxes.clear();
    EXPECT_TRUE(views.ViewShaderInterface());
    EXPECT_EQ(Read("arginfo"), "Help\n{\n>A plastic.\n}\n\nEndArginfo\n");
}

TEST_F(ShaderViewsTest, TheTwoInterfacesShareOneFile) {
    const auto first = views.ViewRenderInterface();
    EXPECT_EQ(views.ViewShaderInterface(), first);
    EXPECT_THAT(Read("plastic.tmp"), testing::StartsWith("made for plastic\n"));
}

TEST_F(ShaderViewsTest, AnUnsavedDocumentIsViewedAsUntitled) {
    document.SetPath("");
    EXPECT_EQ(views.ViewShaderSource(), InWork("Untitled"));
    EXPECT_EQ(views.ViewRenderInterface(), InWork("Untitled.tmp"));
    EXPECT_EQ(Read("Untitled.tmp"), "render interface of Untitled");
}

TEST_F(ShaderViewsTest, ARenderInterfaceThatFailsIsAlertedWithItsCodeAfterItsErrors) {
    Script("renderiface", "print STDERR \"no lights\\n\"; exit 3;\n");
    EXPECT_EQ(views.ViewRenderInterface(), std::nullopt);
    EXPECT_THAT(Alerts(), ElementsAre("renderiface command returned 3"));
    EXPECT_EQ(Log(), "no lights\r\n");
}

TEST_F(ShaderViewsTest, AShaderInterfaceThatFailsIsAlertedWithItsToolAndItsCode) {
    Script("guiprefilter", "print STDERR 'no colours'; exit 255;\n");
    EXPECT_EQ(views.ViewShaderInterface(), std::nullopt);
    EXPECT_THAT(Alerts(), ElementsAre(ToolPath("guiprefilter") + " returned 255"));
    EXPECT_EQ(Log(), "no colours\r\n");
}

TEST_F(ShaderViewsTest, AToolThatASignalEndsHasFailed) {
    Script("renderiface", "kill 9, $$;\n");
    EXPECT_EQ(views.ViewRenderInterface(), std::nullopt);
    EXPECT_THAT(Alerts(), ElementsAre("renderiface command returned 137"));
}

TEST_F(ShaderViewsTest, AToolThatWarnsAndEndsWellHasItsWarningsInTheLog) {
    Script("renderiface", "print STDERR \"100%s sure\\n\";\n");
    EXPECT_EQ(views.ViewRenderInterface(), InWork("plastic.tmp"));
    EXPECT_EQ(Log(), "100%s sure\r\n");
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ShaderViewsTest, TheWarningsOfTheFilterAreNotShownAgainForTheTool) {
    Script("codefilter", "print STDERR \"filter\\n\";\n");
    EXPECT_TRUE(views.ViewRenderInterface());
    EXPECT_EQ(Log(), "filter\r\n");
    EXPECT_EQ(Read("errors.txt"), "");
}

TEST_F(ShaderViewsTest, ErrorsOfTheFilterAreNotShownAgainWhereTheToolLeavesNoFile) {
    // Opens an error file for the filter alone.
    Script("redirect.pl",
           "my ($in, $out, $err, @command) = @ARGV; exit 0 if $in eq '-'; open STDERR, '>', $err; exec $^X, "
           "@command;\n");
    Script("codefilter", "print STDERR \"filter\\n\";\n");
    EXPECT_TRUE(views.ViewRenderInterface());
    EXPECT_EQ(Log(), "filter\r\n");
    EXPECT_FALSE(fs::exists(InWork("errors.txt")));
}

TEST_F(ShaderViewsTest, AFilterThatFailsStopsEveryViewBeforeItsTool) {
    Script("codefilter", "exit 4;\n");
    EXPECT_EQ(views.ViewShaderSource(), std::nullopt);
    EXPECT_EQ(views.ViewRenderInterface(), std::nullopt);
    EXPECT_EQ(views.ViewShaderInterface(), std::nullopt);
    EXPECT_EQ(Read("redirect.args"), SaveNote() + SaveNote() + SaveNote());
    EXPECT_FALSE(fs::exists(InWork("arginfo")));
    EXPECT_EQ(Log(),
              "save shader command returned 4\r\nsave shader command returned 4\r\n"
              "save shader command returned 4\r\n");
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ShaderViewsTest, ANameWithABlankHasNoViews) {
    document.SetPath("/documents/my plastic.tvn");
    EXPECT_EQ(views.ViewShaderSource(), std::nullopt);
    EXPECT_EQ(views.ViewRenderInterface(), std::nullopt);
    EXPECT_EQ(views.ViewShaderInterface(), std::nullopt);
    const std::string alert = "shader name contains whitespace characters";
    EXPECT_THAT(Alerts(), ElementsAre(alert, alert, alert));
    EXPECT_FALSE(fs::exists(InWork("redirect.args")));
}

TEST_F(ShaderViewsTest, ArgumentsThatCannotBeWrittenStopTheViewBeforeItsTool) {
    fs::create_directories(InWork("arginfo"));
    EXPECT_EQ(views.ViewShaderInterface(), std::nullopt);
    EXPECT_THAT(Alerts(), ElementsAre("unable to open " + InWork("arginfo") + " for writing"));
    EXPECT_EQ(Read("redirect.args"), SaveNote());
}

TEST_F(ShaderViewsTest, AToolThatCannotBeStartedIsAlertedOnceWithTheCommand) {
    // The launcher goes away behind the filter.
    host.Directory().Write("bin/perl", "#!/bin/sh\nrm \"$0\"\nexec /usr/bin/perl \"$@\"\n");
    fs::permissions(host.Directory() / "bin/perl", fs::perms::owner_all);
    site.environment.Set("PATH", host.Directory() / "bin");
    host.Directory().Write("bin/rm", "#!/bin/sh\nexec /bin/rm \"$@\"\n");
    fs::permissions(host.Directory() / "bin/rm", fs::perms::owner_all);
    EXPECT_EQ(views.ViewRenderInterface(), std::nullopt);
    EXPECT_THAT(Alerts(), ElementsAre("command failed: perl " + ToolPath("redirect.pl") + " - - " +
                                      InWork("errors.txt") + " " + ToolPath("renderiface") + " plastic " +
                                      InWork("plastic.tmp")));
}

}  // namespace
}  // namespace tavrin
