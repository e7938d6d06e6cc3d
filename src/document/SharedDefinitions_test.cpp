// SPDX-License-Identifier: Apache-2.0
// One run of the preprocessor for all boxes of an operator, where the library allows it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <thread>

#include "base/Files.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::ReadFile;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// Writes the operator to "runs", then its file to the output and its warnings to the errors. A definition
// that begins with "refused" fails, one that begins with "silent" has no output, and one that begins with
// "stuck" never ends.
constexpr const char* kRedirect = R"(my ($in, $out, $err, $spp, $def) = @ARGV;
(my $name = $def) =~ s/.*\d\.//;
open my $runs, '>>', "$ENV{TAVRN_WORKDIR}/runs"; syswrite $runs, "$name\n";
open STDERR, '>', $err;
open my $d, '<', $def; local $/; my $text = <$d>;
print STDERR "$name is refused\n" and exit 3 if $text =~ /^refused/;
print STDERR "$name is old" if $text =~ /^icontext old/;
exit 0 if $text =~ /^silent/;
sleep 1 while $text =~ /^stuck/;
open my $o, '>', $out; print $o $text;
)";

class SharedDefinitions : public test::DocumentTest {
  protected:
    SharedDefinitions() {
        AddScript("mini");
        AddOperator("One", "icontext one\n");
        AddOperator("Two", "icontext two\n");
        Site().settingsLibrary = "mini";
        SetPure(true);
    }

    tavrin::Site& Site() { return host.GetSite(); }
    void SetPure(bool isPure) { Site().settings.Store("preprocess.pure", isPure ? "1" : "0"); }
    void AddScript(const std::string& library) {
        host.Directory().Write("installation/" + library + "/bin/redirect.pl", kRedirect);
    }
    std::string AddOperator(const std::string& name, const std::string& text,
                            const std::string& library = "mini") {
        const std::string path = host.AddOperator(name, text, library);
        AddScript(library);
        return path;
    }
    static std::string Boxes(const std::vector<std::string>& names) {
        std::string text = "opdesk\n{\n";
        int wid = 0;
        for (const std::string& name : names)
            text += "opbox\n{\nfilename " + name + "\nwid " + std::to_string(++wid) + "\n}\n";
        return text + "}\n";
    }
    // The operators for which the preprocessor was run since this was last asked, sorted.
    std::vector<std::string> Runs() {
        std::vector<std::string> runs;
        std::istringstream text(ReadFile(Site().WorkPath("runs")));
        for (std::string name; std::getline(text, name);) runs.push_back(name);
        std::remove(Site().WorkPath("runs").c_str());
        std::sort(runs.begin(), runs.end());
        return runs;
    }
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const auto& box : document.m_boxes) texts.push_back(box->icontext);
        return texts;
    }
    std::vector<std::string> WorkFiles() {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Site().directories.workDir))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(SharedDefinitions, ThePreprocessorRunsOnceForEachOperatorOfADocument) {
    EXPECT_TRUE(Load(Boxes({"One", "Two", "One", "one", "Two"})));
    EXPECT_THAT(Runs(), ElementsAre("One", "Two"));
    EXPECT_THAT(Texts(), ElementsAre("one", "two", "one", "one", "two"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(SharedDefinitions, WithoutTheLibrarysWordItRunsOnceForEachBox) {
    SetPure(false);
    EXPECT_TRUE(Load(Boxes({"One", "Two", "One"})));
    EXPECT_THAT(Runs(), ElementsAre("One", "One", "Two"));
    Site().settings = Settings();
    EXPECT_TRUE(Load(Boxes({"One", "One"})));
    EXPECT_THAT(Runs(), ElementsAre("One", "One"));
}

TEST_F(SharedDefinitions, EachBoxOwnsWhatItHasRead) {
    AddOperator("Both", "icontext both\ninput a { float { 1 0 1 0 %g } }\n");
    EXPECT_TRUE(Load(Boxes({"Both", "Both"})));
    static_cast<COpValueFloat&>(*test::BoxAt(document, 0).inputs.at(0)->values.at(0)).value = 7;
    EXPECT_EQ(test::BoxAt(document, 1).inputs.at(0)->ValueText(), "1");
}

TEST_F(SharedDefinitions, AnEditIsSeenByTheNextOpening) {
    const std::string path = AddOperator("Live", "icontext before\n");
    EXPECT_TRUE(Load(Boxes({"Live", "Live"})));
    host.Directory().Write(path.substr(host.Directory().Path().size() + 1), "icontext after\n");
    document.DeleteContents();
    EXPECT_TRUE(Load(Boxes({"Live", "Live"})));
    EXPECT_THAT(Texts(), ElementsAre("after", "after"));
    EXPECT_THAT(Runs(), ElementsAre("Live", "Live"));
}

TEST_F(SharedDefinitions, AMergeAndASavedNetworkRunItOnceToo) {
    EXPECT_TRUE(LoadDeskOnly(Boxes({"One", "One", "Two", "Two"})));
    EXPECT_THAT(Runs(), ElementsAre("One", "Two"));
    host.AddOperator("Network", "tavrn-version 1\n" + Boxes({"Two", "Two", "One", "Two"}));
    AddScript("mini");
    test::RecordingView view{document};
    test::SeenDesk desk(document, host, view);
    desk.AddOperator("Network");
    EXPECT_EQ(desk.m_pendingBoxes.size(), 4U);
    EXPECT_THAT(Runs(), ElementsAre("One", "Two"));
}

TEST_F(SharedDefinitions, ALoneBoxHasItsRunEachTime) {
    test::RecordingView view{document};
    test::SeenDesk desk(document, host, view);
    desk.AddOperator("One");
    desk.AddOperator("One");
    EXPECT_THAT(Runs(), ElementsAre("One", "One"));
}

TEST_F(SharedDefinitions, TheBoxIsDefinedWhereverItsNameStands) {
    EXPECT_TRUE(
        Load("opdesk { opbox { # the name is far away\n filename \"One\" wid 1 }\n"
             "opbox\r\n{\r\n\tfilename\tTwo\twid 2 } opbox { filename One wid 3 } }"));
    EXPECT_THAT(Texts(), ElementsAre("one", "two", "one"));
    EXPECT_THAT(Runs(), ElementsAre("One", "Two"));
}

TEST_F(SharedDefinitions, UnknownOperatorsStartNothing) {
    EXPECT_FALSE(Load(Boxes({"One", "Three", "../One", "Two"})));
    EXPECT_THAT(Alerts(), ElementsAre("Three: unknown operator name"));
    for (const std::string& run : Runs()) EXPECT_TRUE(run == "One" || run == "Two") << run;
    EXPECT_THAT(Texts(), ElementsAre("one"));
}

TEST_F(SharedDefinitions, WarningsComeIntoTheLogForEachBoxAsTheyAlwaysDid) {
    AddOperator("Old", "icontext old\n");
    EXPECT_TRUE(Load(Boxes({"Old", "One", "Old"})));
    EXPECT_EQ(host.Sink().log, "Old is old\r\nOld is old\r\n");
}

TEST_F(SharedDefinitions, ARefusalIsToldAtItsBoxAsInARunOfItsOwn) {
    const std::string path = AddOperator("Bad", "refused");
    const std::string text = Boxes({"One", "Bad", "Two", "Bad"});
    EXPECT_FALSE(Load(text));
    EXPECT_THAT(Texts(), ElementsAre("one"));
    EXPECT_EQ(host.Sink().log, "Bad is refused\r\n");
    EXPECT_THAT(Alerts(), ElementsAre("\"perl " + Site().LibraryPath("bin/redirect.pl") + " - " +
                                      Site().WorkPath("boxdef.tmp") + " " + Site().WorkPath("errors.txt") +
                                      " " + Site().LibraryPath("bin/spp") + " " + path + "\" returned 3"));
}

TEST_F(SharedDefinitions, APreprocessorThatSaysNothingIsToldAtItsBox) {
    AddOperator("Mute", "silent");
    EXPECT_FALSE(Load(Boxes({"One", "Mute", "One"})));
    EXPECT_THAT(Alerts(), ElementsAre("unable to open " + Site().WorkPath("boxdef.tmp") + " for reading"));
}

TEST_F(SharedDefinitions, AParseErrorNamesAFileThatHoldsTheText) {
    const std::string path = AddOperator("Wrong", "icontext x\nbogus\n");
    EXPECT_FALSE(Load(Boxes({"Two", "Wrong", "One"})));
    const std::string file = Site().WorkPath("boxdef.tmp");
    EXPECT_THAT(Alerts(),
                ElementsAre(file + " near line 2: unexpected input (operator Wrong of " + path + ")"));
    EXPECT_THAT(host.Sink().files, ElementsAre(file));
    EXPECT_EQ(ReadFile(file), "icontext x\nbogus\n");
}

TEST_F(SharedDefinitions, SoDoesTheErrorOfALaterBoxOfItsOperator) {
    AddOperator("Odd", "icontext odd\ncodegen.main-body append@part.txt\n");
    AddOperator("Old", "icontext old\n");
    // At the warning of the box between, the template's file goes.
    struct Removing : test::CollectingSink {
        void OnLog(std::string_view) override { std::remove(part.c_str()); }
        std::string part;
    } sink;
    sink.part = host.Directory().Write("installation/mini/part.txt", "a part\n");
    Site().report.SetSink(&sink);
    EXPECT_FALSE(Load(Boxes({"Odd", "Old", "Odd"})));
    Site().report.SetSink(&host.Sink());
    const std::string file = Site().WorkPath("boxdef.tmp");
    EXPECT_THAT(sink.alerts, ElementsAre(StartsWith(file + " near line 3: codegen.main-body")));
    EXPECT_THAT(Texts(), ElementsAre("odd", "old"));
    EXPECT_EQ(ReadFile(file), "icontext odd\ncodegen.main-body append@part.txt\n");
}

TEST_F(SharedDefinitions, NoWorkFileStaysButThoseOfTheLastDefinition) {
    AddOperator("Bad", "refused");
    Load(Boxes({"One", "Bad", "Two"}));
    EXPECT_TRUE(Load(Boxes({"One", "Two", "One"})));
    Runs();
    EXPECT_THAT(WorkFiles(), ElementsAre("boxdef.tmp", "errors.txt"));
    EXPECT_EQ(ReadFile(Site().WorkPath("boxdef.tmp")), "icontext two\n");
}

TEST_F(SharedDefinitions, WhatAReadingThatStopsHasNotWaitedForIsEnded) {
    AddOperator("Endless", "stuck");
    EXPECT_FALSE(Load(Boxes({"One", "Missing", "Endless"})));
    EXPECT_THAT(Alerts(), ElementsAre("Missing: unknown operator name"));
    Runs();
    EXPECT_THAT(WorkFiles(), Each(testing::AnyOf("boxdef.tmp", "errors.txt")));
}

TEST_F(SharedDefinitions, NothingIsStartedForBoxesBehindAnErrorOfTheText) {
    EXPECT_FALSE(Load("opdesk { opbox { filename One wid 1 } bogus opbox { filename Two } }"));
    EXPECT_THAT(Alerts(), ElementsAre(HasSubstr("unexpected input")));
    EXPECT_THAT(Runs(), ElementsAre("One"));
}

TEST_F(SharedDefinitions, AnInterruptEndsTheReadingWithoutAWord) {
    AddOperator("Endless", "stuck");
    std::thread other([this] {
        while (ReadFile(Site().WorkPath("runs")).find("Endless") == std::string::npos)
            std::this_thread::yield();
        Site().commands.InterruptCommand(SIGTERM);
    });
    EXPECT_FALSE(Load(Boxes({"One", "Endless", "Two"})));
    other.join();
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_FALSE(Load(Boxes({"One"})));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(SharedDefinitions, AfterAnInterruptNoBoxIsReadThoughItsTextIsThere) {
    // Interrupts at the warning of the first box.
    struct Interrupting : ReportSink {
        explicit Interrupting(Commands& own) : commands(own) {}
        void OnAlert(const std::string& text, const std::string&) override { ADD_FAILURE() << text; }
        void OnLog(std::string_view text) override {
            if (!text.empty()) commands.InterruptCommand(SIGTERM);
        }
        Commands& commands;
    } sink(Site().commands);
    AddOperator("Old", "icontext old\n");
    Site().report.SetSink(&sink);
    EXPECT_FALSE(Load(Boxes({"Old", "Old"})));
    Site().report.SetSink(&host.Sink());
    EXPECT_THAT(Texts(), ElementsAre("old"));
}

TEST_F(SharedDefinitions, TheWordOfOneLibraryIsNotThatOfAnother) {
    AddOperator("One", "icontext other\n", "other");
    EXPECT_TRUE(Load("tavrn-renderer other\n" + Boxes({"One", "One"})));
    EXPECT_THAT(Texts(), ElementsAre("other", "other"));
    EXPECT_THAT(Runs(), ElementsAre("One", "One"));
}

TEST_F(SharedDefinitions, OperatorsOfALibraryThatIsNamedLaterWaitForIt) {
    AddOperator("Two", "icontext other\n", "other");
    EXPECT_TRUE(Load(Boxes({"One"}) + "tavrn-renderer other\n" + Boxes({"Two"})));
    EXPECT_THAT(Texts(), ElementsAre("one", "other"));
    EXPECT_THAT(Runs(), ElementsAre("One", "Two")) << "none in the library before it";
}

TEST_F(SharedDefinitions, ALibraryNamedBetweenTheBoxesIsTheirsFromThereOn) {
    AddOperator("One", "icontext other\n", "other");
    EXPECT_TRUE(Load(Boxes({"One", "One"}) + "tavrn-renderer other\n" + Boxes({"One"}) +
                     "tavrn-renderer mini\n" + Boxes({"One", "One"})));
    EXPECT_THAT(Texts(), ElementsAre("one", "other", "one", "one", "one")) << "by number";
    EXPECT_THAT(Runs(), ElementsAre("One", "One", "One"));
}

// A file may hold the word and nothing that it means, as often as it likes.
TEST_F(SharedDefinitions, TextsFullOfNamesAreReadAsEver) {
    std::string text = Boxes({"One"}) + "customshaderhelp\n{\n";
    for (int i = 0; i < 100000; ++i) text += "{filename";
    EXPECT_FALSE(Load(text)) << "the help has no end";
    EXPECT_THAT(Texts(), ElementsAre("one"));
    EXPECT_THAT(Runs(), ElementsAre("One"));
}

}  // namespace
}  // namespace tavrin
