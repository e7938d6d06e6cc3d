// SPDX-License-Identifier: Apache-2.0
// The boxes, connections and desk state of a document as they are read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::WidsOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;

// Operators: "src" with the outputs a and b, "dst" with the inputs p and q, "one", of which a desk holds one.
class DeskSection : public test::DocumentTest {
  protected:
    DeskSection() {
        host.AddOperator("src", "output a { float out } output b { float out }");
        host.AddOperator("dst", "input p { float { 0 0 1 0 %g } } input q { float { 0 0 1 0 %g } }");
        host.AddOperator("one", "defs { maxinstances 1 }");
    }
    bool LoadDesk(const std::string& body) { return Load("opdesk {\n" + body + "\n}\n"); }
    // The desk with this body, which begins in line 2, stops the reading at the line.
    void ExpectStop(const std::string& body, int line, const std::string& message = "unexpected input") {
        host.Sink().alerts.clear();
        document.DeleteContents();
        EXPECT_FALSE(Load("opdesk {\n" + body)) << body;
        EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line " + std::to_string(line) + ": " + message))
            << body;
    }
    static std::string Box(const std::string& name, int wid) {
        return "opbox { filename " + name + " wid " + std::to_string(wid) + " }\n";
    }
    // A source with the number 1, a target with the number 2, and connections from line 5 on.
    static std::string Wired(const std::string& lines) {
        return Box("src", 1) + Box("dst", 2) + "opconnects {\n" + lines;
    }
    const COpButton* SourceOf(size_t box, size_t input) {
        return BoxAt(document, box).inputs.at(input)->connections.First();
    }
};

TEST_F(DeskSection, TheStateOfTheDeskIsRead) {
    EXPECT_TRUE(
        LoadDesk("drawlinesoverboxes 1\nshowvarnames 1\nlock 1\nshowiconimages 1\nlinetype trace\n"
                 "offsetxy -3.5 40\nzoomxyf 1 0.25 2.5"));
    EXPECT_THAT((std::vector<int>{document.drawlinesoverboxes, document.showvarnames, document.lock,
                                  document.showiconimages, document.linetype}),
                testing::Each(1));
    EXPECT_THAT(document.offset, ElementsAre(-3.5F, 40.0F));
    EXPECT_THAT(document.zoom, ElementsAre(1.0F, 0.25F));
    EXPECT_EQ(document.zoomFactor, 2.5F);
    EXPECT_TRUE(LoadDesk("drawlinesoverboxes 0 showvarnames 0 lock 0 showiconimages 0 linetype direct"));
    EXPECT_THAT((std::vector<int>{document.drawlinesoverboxes, document.showvarnames, document.lock,
                                  document.showiconimages, document.linetype}),
                testing::Each(0));
}

TEST_F(DeskSection, TheFileWinsOverTheSitesLineType) {
    host.GetSite().settings.Store("desk.linetype", "trace");
    document.DeleteContents();
    ASSERT_EQ(document.linetype, 1);
    EXPECT_TRUE(LoadDesk("linetype direct"));
    EXPECT_EQ(document.linetype, 0);
}

TEST_F(DeskSection, AFlagIsOneDigitAndALineTypeOneOfTwoWords) {
    for (const char* key : {"drawlinesoverboxes", "showvarnames", "lock", "showiconimages"}) {
        ExpectStop("\n" + std::string(key) + " 2\n}", 3);
        ExpectStop(std::string(key) + " true\n}", 2);
        ExpectStop(std::string(key), 2);
    }
    ExpectStop("linetype\n\ncurved", 4);
    ExpectStop("linetype 1", 2);
    ExpectStop("linetype", 2);
    EXPECT_EQ(document.linetype, 0);
}

TEST_F(DeskSection, AMissingNumberOfTheViewIsUnexpected) {
    ExpectStop("offsetxy 1", 2);
    EXPECT_EQ(document.offset[0], 1.0F);
    ExpectStop("offsetxy", 2);
    ExpectStop("zoomxyf 1 2", 2);
    ExpectStop("zoomxyf 1", 2);
    ExpectStop("zoomxyf", 2);
}

TEST_F(DeskSection, WhatIsNoNumberReadsAsNought) {
    EXPECT_TRUE(LoadDesk("offsetxy left 2x\nzoomxyf a b c"));
    EXPECT_THAT(document.offset, ElementsAre(0.0F, 2.0F));
    EXPECT_EQ(document.zoomFactor, 0.0F);
}

TEST_F(DeskSection, TheSectionMustOpenAndHoldNothingUnknown) {
    EXPECT_FALSE(Load("opdesk\n\n}"));
    EXPECT_FALSE(Load("opdesk"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 3: unexpected input",
                                      "doc.tvn near line 1: unexpected input"));
    ExpectStop("gridsize 5\n}", 2);
    ExpectStop("{\n}", 2);
}

TEST_F(DeskSection, TheEndOfTheFileEndsTheSectionWellAndIsToldAsTheCutThatItIs) {
    EXPECT_TRUE(Load("opdesk {\nlock 1\n"));
    EXPECT_TRUE(Load("opdesk {"));
    EXPECT_TRUE(Load("opdesk { opbox { filename src wid 3\n"));
    EXPECT_TRUE(Load("opdesk { " + Wired("opbox:src,1,a,0 -> opbox:dst,2,p,0")));
    EXPECT_THAT(Alerts(), SizeIs(4));
    EXPECT_THAT(Alerts(), Each(EndsWith(": the file ends inside the section \"opdesk\"")));
    EXPECT_EQ(document.m_boxes.size(), 3U);
}

TEST_F(DeskSection, ABoxTakesItsNumberAnchorAndLimitFromTheFile) {
    EXPECT_TRUE(LoadDesk("opbox {\nfilename one\nwid 12\nxypos -1.5 2e3\nopboxdefs { maxinstances 7 }\n}"));
    const COpBox& box = BoxAt(document, 0);
    EXPECT_EQ(box.filename, "one");
    EXPECT_EQ(box.wid, 12);
    EXPECT_THAT(box.xypos, ElementsAre(-1.5F, 2000.0F));
    EXPECT_EQ(box.maxinstances, 7);
}

TEST_F(DeskSection, TheLimitOfADefinitionStaysWhereTheFileHasNoneAndIsNotApplied) {
    EXPECT_TRUE(LoadDesk(Box("one", 1) + Box("one", 2) + Box("one", 3)));
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2, 3));
    EXPECT_EQ(BoxAt(document, 0).maxinstances, 1);
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(DeskSection, ABoxIsNamedByItsOperatorsFileWhateverTheCaseInTheDocument) {
    EXPECT_TRUE(LoadDesk(Box("SRC", 1)));
    EXPECT_EQ(BoxAt(document, 0).filename, "src");
}

TEST_F(DeskSection, ABoxBeginsWithItsBraceAndItsFile) {
    ExpectStop("opbox\nwid 1", 3);
    ExpectStop("opbox {\nwid 1\nfilename src }", 3);
    ExpectStop("opbox {\nfilename", 3);
    ExpectStop("opbox {", 2);
    ExpectStop("opbox", 2);
    EXPECT_TRUE(document.m_boxes.empty());
}

TEST_F(DeskSection, ABoxWhoseOperatorIsUnknownStopsTheReadingWithThatMessageAlone) {
    EXPECT_FALSE(LoadDesk(Box("src", 1) + Box("gone", 2) + Box("src", 3)));
    EXPECT_THAT(Alerts(), ElementsAre("gone: unknown operator name"));
    EXPECT_THAT(WidsOf(document), ElementsAre(1));
}

TEST_F(DeskSection, ABoxWhoseDefinitionIsBrokenIsNotKept) {
    host.AddOperator("broken", "iconimg x\nnonsense\n");
    const size_t live = COpBox::LiveCount();
    EXPECT_FALSE(LoadDesk(Box("broken", 1)));
    ASSERT_EQ(Alerts().size(), 1U);
    EXPECT_THAT(Alerts()[0],
                testing::HasSubstr("boxdef.tmp near line 2: unexpected input (operator broken of "));
    EXPECT_EQ(COpBox::LiveCount(), live);
}

TEST_F(DeskSection, AnErrorInABoxKeepsTheBoxAsFarAsItGot) {
    ExpectStop("opbox { filename src wid 4 }\nopbox { filename src wid 5\ncolour 3 xypos 1 2 }", 4);
    EXPECT_THAT(WidsOf(document), ElementsAre(4, 5));
    ExpectStop("opbox { filename src\nwid", 3);
    ExpectStop("opbox { filename src\nxypos 1", 3);
    EXPECT_EQ(BoxAt(document, 0).xypos[0], 1.0F);
    ExpectStop("opbox { filename src\nxypos", 3);
}

TEST_F(DeskSection, TheOptionsOfABoxHaveOneForm) {
    ExpectStop("opbox { filename src opboxdefs\nmaxinstances 1 }", 3);
    ExpectStop("opbox { filename src opboxdefs {\nmininstances 1 }", 3);
    ExpectStop("opbox { filename src opboxdefs { maxinstances\n", 3);
    ExpectStop("opbox { filename src opboxdefs { maxinstances 1\nwid 3", 3);
    ExpectStop("opbox { filename src opboxdefs { maxinstances 1", 2);
    ExpectStop("opbox { filename src opboxdefs { }", 2);
    ExpectStop("opbox { filename src opboxdefs", 2);
}

TEST_F(DeskSection, ConnectionsAreMadeByNumberAndPosition) {
    EXPECT_TRUE(LoadDesk(
        Wired("opbox:src,1,a,0 -> opbox:dst,2,q,1\nopbox:wrong,1,names,1 -> opbox:do,2,no-harm,0\n}")));
    EXPECT_EQ(SourceOf(1, 1), BoxAt(document, 0).outputs.at(0).get());
    EXPECT_EQ(SourceOf(1, 0), BoxAt(document, 0).outputs.at(1).get());
    EXPECT_TRUE(BoxAt(document, 0).outputs.at(0)->connections.Contains(*BoxAt(document, 1).inputs.at(1)));
}

TEST_F(DeskSection, OfTwoConnectionsIntoOneInputTheLaterOneWins) {
    EXPECT_TRUE(LoadDesk(Wired("opbox:src,1,a,0 -> opbox:dst,2,p,0 opbox:src,1,b,1 -> opbox:dst,2,p,0 }")));
    EXPECT_EQ(SourceOf(1, 0), BoxAt(document, 0).outputs.at(1).get());
    EXPECT_TRUE(BoxAt(document, 0).outputs.at(0)->connections.Empty());
    EXPECT_EQ(BoxAt(document, 1).inputs.at(0)->connections.Size(), 1U);
}

TEST_F(DeskSection, AConnectionThatIsNamedTwiceStaysWhole) {
    EXPECT_TRUE(LoadDesk(Wired("opbox:src,1,a,0 -> opbox:dst,2,p,0 opbox:src,1,a,0 -> opbox:dst,2,p,0 }")));
    EXPECT_EQ(SourceOf(1, 0), BoxAt(document, 0).outputs.at(0).get());
    EXPECT_TRUE(BoxAt(document, 0).outputs.at(0)->connections.Contains(*BoxAt(document, 1).inputs.at(0)));
}

TEST_F(DeskSection, ACycleLoadsWithoutAWordAndWalksOverItEnd) {
    host.AddOperator("link", "input in { float { 0 0 1 0 %g } } output out { float out }");
    EXPECT_TRUE(LoadDesk(Box("link", 1) + Box("link", 2) + Box("dst", 3) +
                         "opconnects { opbox:l,1,o,0 -> opbox:l,2,i,0\nopbox:l,2,o,0 -> opbox:l,1,i,0 }"));
    EXPECT_THAT(Alerts(), IsEmpty());
    const COpBox& first = BoxAt(document, 0);
    const COpBox& outside = BoxAt(document, 2);
    EXPECT_TRUE(first.outputs.at(0)->WouldLoop(*BoxAt(document, 1).inputs.at(0)));
    EXPECT_FALSE(COpButton::ReachesForward(outside, first));
    EXPECT_THAT(document.OrderBoxes(), ElementsAre(&outside));
}

TEST_F(DeskSection, ABrokenConnectionStopsTheReading) {
    for (const char* text : {"opbox:src,1,a", "opbox:src,one,a,0", "opbox:,1,a,0", "box:src,1,a,0",
                             "opbox:src,1,,0", "opbox:src", "opdesk:src,1,a,0", "opbox:src,1,a,b", "{"}) {
        ExpectStop(Wired(std::string(text) + "\n-> opbox:dst,2,p,0 }"), 5);
        ExpectStop(Wired("opbox:src,1,a,0\n->\n" + std::string(text) + "\n}"), 7);
    }
    ExpectStop(Wired("opbox:src,1,a,0 to\nopbox:dst,2,p,0 }"), 5);
    ExpectStop(Wired("opbox:src,1,a,0"), 5);
    ExpectStop(Wired("opbox:src,1,a,0 ->\n\n"), 7);
    ExpectStop("opconnects\nopbox:src,1,a,0", 3);
    ExpectStop("opconnects", 2);
}

TEST_F(DeskSection, AFileNameWithACommaDoesNotSurviveInAConnection) {
    ExpectStop(Wired("opbox:s,rc,1,a,0 -> opbox:dst,2,p,0"), 5);
}

TEST_F(DeskSection, AConnectionToABoxThatIsNotThereStopsTheReading) {
    ExpectStop(Wired("opbox:src,3,a,0 -> opbox:dst,4,p,0"), 5, "box 3 not found");
    ExpectStop(Wired("opbox:src,1,a,0 ->\nopbox:dst,-4,p,0"), 6, "box -4 not found");
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2));
    ExpectStop("opconnects { opbox:src,1,a,0 -> opbox:dst,2,p,0 }\n" + Box("src", 1) + Box("dst", 2), 2,
               "box 1 not found");
}

TEST_F(DeskSection, AConnectionToAButtonThatIsNotThereStopsTheReading) {
    ExpectStop(Wired("opbox:src,1,c,2 -> opbox:dst,2,p,0"), 5, "box 1 has no output 2");
    ExpectStop(Wired("opbox:src,1,c,-1 -> opbox:dst,2,p,0"), 5, "box 1 has no output -1");
    ExpectStop(Wired("opbox:dst,2,c,0 -> opbox:dst,2,p,0"), 5, "box 2 has no output 0");
    ExpectStop(Wired("opbox:src,1,a,0 -> opbox:x,2,r,2"), 5, "box dst_2 has no input 2");
    ExpectStop(Wired("opbox:src,1,a,0 -> opbox:x,2,r,-1"), 5, "box dst_2 has no input -1");
    ExpectStop(Wired("opbox:src,1,a,99999999999 -> opbox:x,2,r,0"), 5, "box 1 has no output 2147483647");
}

TEST_F(DeskSection, ConnectionsBeforeTheBrokenOneAreKept) {
    ExpectStop(Wired("opbox:src,1,a,0 -> opbox:dst,2,p,0\nopbox:src,1,a,9 -> opbox:dst,2,q,1"), 6,
               "box 1 has no output 9");
    EXPECT_EQ(SourceOf(1, 0), BoxAt(document, 0).outputs.at(0).get());
    EXPECT_EQ(SourceOf(1, 1), nullptr);
}

TEST_F(DeskSection, OfANumberThatTheFileHasTwiceTheLastBoxIsConnected) {
    EXPECT_TRUE(LoadDesk(Box("src", 1) + Box("src", 1) + Box("dst", 2) +
                         "opconnects { opbox:src,1,a,0 -> opbox:dst,2,p,0 }"));
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 1, 2));
    EXPECT_EQ(SourceOf(2, 0), BoxAt(document, 1).outputs.at(0).get());
    EXPECT_TRUE(BoxAt(document, 0).outputs.at(0)->connections.Empty());
}

TEST_F(DeskSection, NumbersAndAnchorsOfAnySizeAreTaken) {
    EXPECT_TRUE(LoadDesk(
        Box("src", -5) + Box("dst", 0) +
        "opbox { filename src wid 99999999999 xypos 1e38 -1e39 }\n"
        "opbox { filename src wid -99999999999 xypos 1e-300 x }\n"
        "opconnects { opbox:src,-5,a,0 -> opbox:dst,0,p,0 opbox:src,99999999999,a,0 -> opbox:dst,0,q,1 }"));
    EXPECT_THAT(WidsOf(document), ElementsAre(INT_MIN, -5, 0, INT_MAX));
    EXPECT_THAT(BoxAt(document, 0).xypos, ElementsAre(0.0F, 0.0F));
    EXPECT_EQ(SourceOf(2, 0), BoxAt(document, 1).outputs.at(0).get());
    EXPECT_EQ(SourceOf(2, 1), BoxAt(document, 3).outputs.at(0).get());
    const std::string text = document.Store();
    document.DeleteContents();
    EXPECT_TRUE(Load(text));
    EXPECT_EQ(document.Store(), text);
}

TEST_F(DeskSection, SeveralDesksAddUp) {
    EXPECT_TRUE(LoadDesk(Box("src", 1)));
    EXPECT_TRUE(LoadDesk(Box("dst", 2) + "opconnects { opbox:src,1,a,0 -> opbox:dst,2,p,0 }"));
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2));
    EXPECT_NE(SourceOf(1, 0), nullptr);
}

}  // namespace
}  // namespace tavrin
