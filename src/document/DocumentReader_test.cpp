// SPDX-License-Identifier: Apache-2.0
// The top level of a document and its smaller sections as they are read.
#include "document/DocumentReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::CrLfText;
using test::WidsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class DocumentReader : public test::DocumentTest {
  protected:
    // The reading stops at this line, and nothing else is said.
    void ExpectStop(const std::string& text, int line, const std::string& message = "unexpected input") {
        host.Sink().alerts.clear();
        document.DeleteContents();
        EXPECT_FALSE(Load(text)) << text;
        EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line " + std::to_string(line) + ": " + message))
            << text;
    }
    std::string HelpFrom(const std::string& block) {
        document.DeleteContents();
        EXPECT_TRUE(Load("customshaderhelp\n" + block)) << block;
        return document.customshaderhelp;
    }
};

TEST_F(DocumentReader, AFileOfCommentsAloneIsAnEmptyUnmodifiedDocument) {
    document.SetModified();
    EXPECT_TRUE(Load("# nothing\r\n\r\n   # here\r\n"));
    EXPECT_TRUE(document.m_boxes.empty());
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_TRUE(Load(""));
}

TEST_F(DocumentReader, TheVersionIsReadAndDropped) {
    EXPECT_TRUE(Load("tavrn-version opdesk\ntavrn-renderer mini\n"));
    EXPECT_THAT(Alerts(), IsEmpty());
    ExpectStop("# c\n\ntavrn-version", 3);
}

TEST_F(DocumentReader, TheRendererIsSelectedBeforeTheBoxesBehindItAreRead) {
    host.AddOperator("there", "output o { float out }", "other");
    EXPECT_TRUE(Load("tavrn-renderer other\nopdesk { opbox { filename there wid 1 } }\n"));
    EXPECT_THAT(host.usedLibraries, ElementsAre("other"));
    EXPECT_EQ(host.GetSite().directories.libName, "other");
    EXPECT_EQ(document.m_boxes.size(), 1U);
    EXPECT_FALSE(Load(
        "opdesk { opbox { filename there } }\ntavrn-renderer mini\nopdesk { opbox { filename there } }"));
    EXPECT_EQ(host.Sink().LastAlert(), "there: unknown operator name");
    ExpectStop("tavrn-renderer # none\n", 2);
}

TEST_F(DocumentReader, ALibraryThatLeadsOutOfTheInstallationIsRefusedAndReadingGoesOn) {
    EXPECT_TRUE(Load("\ntavrn-renderer ../../evil\ntoolbar { button 0=x }\n"));
    EXPECT_EQ(host.GetSite().directories.libName, "mini");
    EXPECT_THAT(Alerts(), ElementsAre(testing::AllOf(StartsWith("doc.tvn near line 2: "),
                                                     HasSubstr("\"../../evil\""))));
    EXPECT_THAT(document.toolbar, ElementsAre("x"));
}

TEST_F(DocumentReader, SectionsMayComeInAnyOrder) {
    host.AddOperator("b", "");
    host.appVariables = {{"KEY", "old"}};
    document.DeleteContents();
    EXPECT_TRUE(Load(
        "customshaderhelp\n{\n>help\n}\nexportoptions {\ntavrndir 1 /x/\n}\n"
        "renderoptions { setenv KEY new }\nopdesk { opbox { filename b wid 4 } }\ntoolbar { button 0=b }\n"));
    EXPECT_EQ(document.customshaderhelp, "help");
    EXPECT_EQ(document.exportOptions.tavrnPath, "/x/");
    EXPECT_EQ(document.m_renderOptions["KEY"], "new");
    EXPECT_THAT(WidsOf(document), ElementsAre(4));
    EXPECT_THAT(document.toolbar, ElementsAre("b"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(DocumentReader, WhatTheFileLacksKeepsItsDefault) {
    host.GetSite().toolButtons = {"one", "two"};
    host.appVariables = {{"KEY", "default"}};
    host.exportDefaults.tavrnPath = "/site/";
    host.GetSite().settings.Store("desk.linetype", "trace");
    document.DeleteContents();
    const std::string help = document.customshaderhelp;
    EXPECT_TRUE(Load("tavrn-version 1.3.32\n"));
    EXPECT_THAT(document.toolbar, ElementsAre("one", "two"));
    EXPECT_EQ(document.m_renderOptions["KEY"], "default");
    EXPECT_EQ(document.exportOptions.tavrnPath, "/site/");
    EXPECT_EQ(document.linetype, 1);
    EXPECT_EQ(document.customshaderhelp, help);
    EXPECT_THAT(host.usedLibraries, IsEmpty());
}

TEST_F(DocumentReader, UnknownWordsAndTheirBlocksArePassedOver) {
    EXPECT_TRUE(Load("newsection 2\n{\n    depth \"a b\"\n    { more }\n}\ntoolbar { button 0=x }\nlast"));
    EXPECT_THAT(document.toolbar, ElementsAre("x"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(DocumentReader, AKeywordInsideAnUnknownBlockIsObeyed) {
    EXPECT_TRUE(Load("newsection\n{\n    toolbar { button 0=inner }\n}\n"));
    EXPECT_THAT(document.toolbar, ElementsAre("inner"));
    ExpectStop("newsection\n{\n    toolbar\n}\n", 4);
}

TEST_F(DocumentReader, ANulIsACharacterLikeAnyOther) {
    EXPECT_TRUE(Load(std::string("a\0b toolbar { button 0=x\0y }", 28)));
    EXPECT_THAT(document.toolbar, ElementsAre(std::string("x\0y", 3)));
}

TEST_F(DocumentReader, TheModifiedFlagIsClearedOnSuccessAlone) {
    document.SetModified();
    EXPECT_FALSE(Load("toolbar }"));
    EXPECT_TRUE(document.IsModified());
    EXPECT_TRUE(Load("toolbar { }"));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DocumentReader, BoxesAreSortedOnSuccessAlone) {
    host.AddOperator("b", "");
    const std::string boxes = "opdesk { opbox { filename b wid 9 } opbox { filename b wid 3 } }\n";
    EXPECT_FALSE(Load(boxes + "toolbar"));
    EXPECT_THAT(WidsOf(document), ElementsAre(9, 3));
    document.DeleteContents();
    EXPECT_TRUE(Load(boxes));
    EXPECT_THAT(WidsOf(document), ElementsAre(3, 9));
}

TEST_F(DocumentReader, AnErrorStopsTheReadingAndKeepsWhatWasRead) {
    EXPECT_FALSE(Load("toolbar { button 0=x }\ntoolbar { oops }\ncustomshaderhelp\n{\n>never\n}\n"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 2: unexpected input"));
    EXPECT_THAT(document.customshaderhelp, StartsWith("    T I T L E"));
}

TEST_F(DocumentReader, TheToolbarIsReplacedAndItsNumbersAreNotUsed) {
    document.toolbar = {"old"};
    EXPECT_TRUE(Load("toolbar\n{\n    button 7=Noise\n    button 0=Mix\n    button 0=Mix\n}\n"));
    EXPECT_THAT(document.toolbar, ElementsAre("Noise", "Mix", "Mix"));
    EXPECT_TRUE(Load("toolbar { }"));
    EXPECT_THAT(document.toolbar, IsEmpty());
}

TEST_F(DocumentReader, AToolbarButtonWithoutANameAddsNothing) {
    EXPECT_TRUE(Load("toolbar { button 1= button x=Noise button Mix button 5 button -2=kept }"));
    EXPECT_THAT(document.toolbar, ElementsAre("kept"));
}

TEST_F(DocumentReader, ABrokenToolbarStopsTheReading) {
    ExpectStop("toolbar\n\nbutton", 3);
    ExpectStop("toolbar", 1);
    ExpectStop("toolbar {\nbutton 0=x\nbuton 1=y }", 3);
    EXPECT_THAT(document.toolbar, ElementsAre("x"));
    ExpectStop("toolbar {\nbutton", 2);
    ExpectStop("toolbar {\nbutton 0=x\n", 3);
    ExpectStop("toolbar {\n{\n}", 2);
}

TEST_F(DocumentReader, OnlyKnownRenderOptionsAreTaken) {
    host.appVariables = {{"A", "1"}, {"B", "2"}};
    document.DeleteContents();
    EXPECT_TRUE(
        Load("renderoptions\n{\n    setenv A \"a \\\"b\\\" \\\\c\"\n    setenv GONE \"x\"\n    setenv B "
             "\"\"\n}\n"));
    EXPECT_EQ(document.m_renderOptions,
              (std::map<std::string, std::string>{{"A", "a \"b\" \\c"}, {"B", ""}}));
    EXPECT_EQ(host.Sink().log, "discarding unknown render option GONE\r\n");
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(DocumentReader, TheNamesOfRenderOptionsAreComparedExactly) {
    host.appVariables = {{"Key", "old"}};
    document.DeleteContents();
    EXPECT_TRUE(Load("renderoptions { setenv KEY new }"));
    EXPECT_EQ(document.m_renderOptions["Key"], "old");
}

TEST_F(DocumentReader, BrokenRenderOptionsStopTheReading) {
    host.appVariables = {{"A", "1"}};
    ExpectStop("renderoptions\nsetenv A b", 2);
    ExpectStop("renderoptions {\nA b\n}", 2);
    ExpectStop("renderoptions {\nsetenv A b\nsetenv", 3);
    EXPECT_EQ(document.m_renderOptions["A"], "b");
    ExpectStop("renderoptions {\nsetenv A", 2);
    ExpectStop("renderoptions {\nsetenv A b", 2);
    ExpectStop("renderoptions {\nsetenv A b\n\n", 4);
}

TEST_F(DocumentReader, AnUnknownExportOptionEndsItsSectionAloneAndTheLoadGoesOn) {
    EXPECT_TRUE(
        Load("exportoptions\n{\n    tavrndir 1 /a/\n    newdir 1 toolbar\n    shadersourcedir 1 /c/\n}\n"
             "toolbar { button 0=x }\n"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 5: unknown export option: newdir"));
    EXPECT_EQ(document.exportOptions.tavrnPath, "/a/");
    EXPECT_EQ(document.exportOptions.saveSource, 0);
    EXPECT_THAT(document.toolbar, ElementsAre("x"));
}

TEST_F(DocumentReader, TheHelpLosesItsMarksAndNothingElse) {
    EXPECT_EQ(HelpFrom("{\n>x\n}\n"), "x");
    EXPECT_EQ(HelpFrom("{\r\n>    indented\r\n>\r\n>}\r\n>>\r\n}\r\n"), "    indented\r\n\r\n}\r\n>");
    EXPECT_EQ(HelpFrom("{\n   >marked\n   plain\n\n> # no comment\n\t}\n"),
              "marked\r\nplain\r\n\r\n # no comment");
}

TEST_F(DocumentReader, EmptyLinesBeforeTheHelpAreDroppedUnlessMarked) {
    EXPECT_EQ(HelpFrom("{\n\n  \n>x\n\n}\n"), "x\r\n");
    EXPECT_EQ(HelpFrom("{\n>\n>x\n}\n"), "\r\nx");
    EXPECT_EQ(HelpFrom("{\n\n}\n"), "");
}

TEST_F(DocumentReader, TheRestOfTheLineBehindTheBraceOfTheHelpIsDropped) {
    EXPECT_EQ(HelpFrom("{ >not this }\n>this\n}\n"), "this");
}

TEST_F(DocumentReader, AHelpThatDoesNotOpenIsUnexpected) {
    ExpectStop("customshaderhelp\n>x\n}", 2);
    ExpectStop("customshaderhelp\n", 2);
}

TEST_F(DocumentReader, AHelpThatDoesNotEndStopsTheReadingWithoutAWord) {
    document.SetModified();
    EXPECT_FALSE(Load("customshaderhelp\n{\n>x\n>} toolbar { }\n"));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DocumentReader, AFileThatIsCutOffAfterItsHelpIsWhole) {
    std::string text = document.Store();
    text.resize(text.rfind("# Tavrn"));
    EXPECT_TRUE(Load(text));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(DocumentReader, AlertsOfSectionsOpenTheFile) {
    EXPECT_FALSE(Load("toolbar"));
    EXPECT_THAT(host.Sink().files, ElementsAre("doc.tvn"));
}

TEST_F(DocumentReader, TheDeskAloneIsReadForAMerge) {
    host.AddOperator("b", "");
    host.appVariables = {{"A", "1"}};
    host.exportDefaults.tavrnPath = "/site/";
    document.DeleteContents();
    const std::string help = document.customshaderhelp;
    document.SetModified();
    EXPECT_TRUE(LoadDeskOnly(
        "tavrn-version 9 tavrn-renderer other toolbar { button 0=x } renderoptions { setenv A 2 }\n"
        "exportoptions {\ntavrndir 1 /x/\n}\ncustomshaderhelp\n{\n>h\n}\n"
        "opdesk { opbox { filename b wid 8 } opbox { filename b wid 2 } }\ntoolbar oops"));
    EXPECT_THAT(host.usedLibraries, IsEmpty());
    EXPECT_THAT(document.toolbar, IsEmpty());
    EXPECT_EQ(document.m_renderOptions["A"], "1");
    EXPECT_EQ(document.exportOptions.tavrnPath, "/site/");
    EXPECT_EQ(document.customshaderhelp, help);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(WidsOf(document), ElementsAre(8, 2));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(DocumentReader, AFileWithoutADeskIsNoMerge) {
    EXPECT_FALSE(LoadDeskOnly("tavrn-version 1 toolbar { }"));
    EXPECT_FALSE(LoadDeskOnly(""));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_FALSE(LoadDeskOnly("opdesk\noops"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 2: unexpected input"));
}

TEST_F(DocumentReader, BothLineEndsReadAlike) {
    host.AddOperator("b", "input i { generic { value x } string { value s } }");
    host.appVariables = {{"A", "1"}};
    document.DeleteContents();
    const std::string text =
        "tavrn-version 1\ntavrn-renderer mini\ntoolbar\n{\n    button 0=b\n}\n"
        "opdesk\n{\n    opbox\n    {\n        filename b\n        wid 1\n        xypos 1 2\n"
        "        opbutton.input i i\n        {\n            opbuttondefs\n            {\n"
        "                currentcast string\n                wwms\n                {\n"
        "                    disableargflag 1\n                    generic \"a b\"\n"
        "                    string \"c\"\n                }\n            }\n        }\n    }\n}\n"
        "renderoptions\n{\n    setenv A \"2\"\n}\nexportoptions\n{\n    tavrndir 1 /x y/\n    postsavescript "
        "0 go \n}\n"
        "customshaderhelp\n{\n>a\n>\n>b\n}\n";
    ASSERT_TRUE(Load(text));
    const std::string withLf = document.Store();
    document.DeleteContents();
    ASSERT_TRUE(Load(CrLfText(text)));
    EXPECT_EQ(document.Store(), withLf);
    EXPECT_EQ(document.customshaderhelp, "a\r\n\r\nb");
    EXPECT_EQ(document.exportOptions.postSaveScript, "go");
}

}  // namespace
}  // namespace tavrin
