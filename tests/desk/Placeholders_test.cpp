// SPDX-License-Identifier: Apache-2.0
// Boxes whose operators cannot be had stand in a document as its file has them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Files.h"
#include "desk/OpDesk.h"
#include "document/DocumentReader.h"
#include "document/DocumentSnapshot.h"
#include "document/DocumentWriter.h"
#include "library/Placeholder.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::CrLfText;
using test::WidsOf;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kLink = "input in { float { 0 0 1 0 %g } } output out { float out }";

std::string ButtonBlock(const std::string& head, const std::string& cast, const std::string& values) {
    return "\n        opbutton." + head +
           "\n        {\n            opbuttondefs\n            {\n                currentcast " + cast +
           "\n                wwms\n                {\n                    pin 0\n                    stow "
           "0\n"
           "                    lock 0\n                    arg 1\n                    argname \"depth\"\n"
           "                    comments \"\"\n" +
           values + "                }\n            }\n        }\n";
}
std::string BoxHead(const std::string& name, int wid, const std::string& place = "100.000000 200.000000") {
    return "\n    # " + name + "_" + std::to_string(wid) + "\n    opbox\n    {\n        filename " + name +
           "\n        wid " + std::to_string(wid) + "\n        xypos " + place +
           "\n\n        opboxdefs\n        {\n            maxinstances 3\n        }\n";
}

class Placeholders : public test::DocumentTest {
  protected:
    Placeholders() {
        host.startsProcesses = false;
        host.AddOperator("Link", kLink);
        host.GetSite().settings.Store("document.placeholders", "1");
    }
    // The text between these two comments of a stored document.
    std::string StoredBoxes() {
        const std::string text = document.Store();
        const size_t begin = text.find("# BOXES\r\n") + 9;
        return text.substr(begin, text.find("    # DESK STATE") - begin);
    }
    // Opens a file with these boxes and connections, which is written as documents are.
    void Open(const std::string& boxes) {
        const std::string path = host.Directory().Write("doc.tvn", CrLfText("opdesk\n{\n" + boxes + "}\n"));
        EXPECT_TRUE(document.Open(path));
    }
    std::vector<std::string> LogLines() {
        std::vector<std::string> lines;
        std::string_view rest = host.Sink().log;
        while (!rest.empty()) {
            const size_t end = rest.find("\r\n");
            lines.emplace_back(rest.substr(0, end));
            rest.remove_prefix(end + 2);
        }
        return lines;
    }
};

TEST_F(Placeholders, WithoutTheSettingReadingStopsAsItAlwaysDid) {
    host.GetSite().settings.Store("document.placeholders", "0");
    EXPECT_FALSE(Load("opdesk { opbox { filename Link wid 1 } opbox { filename Gone wid 2 } }"));
    EXPECT_THAT(WidsOf(document), ElementsAre(1));
    EXPECT_THAT(Alerts(), ElementsAre("Gone: unknown operator name"));
}

TEST_F(Placeholders, AnUnknownOperatorStandsWithItsNumberPlaceLimitAndButtons) {
    Open(BoxHead("Gone", 4, "10.500000 -20.000000") +
         ButtonBlock("input amount amount", "rgb", "float 0.5 0 1 0\nrgb 1 0.5 0.25\n") +
         ButtonBlock("vinput layer layer1", "generic:matrix", "generic matrix \"m\"\n") +
         ButtonBlock("vinput layer layer2", "string", "string \"s\"\n") +
         ButtonBlock("output result result", "xyz", "") + "    }\n");
    ASSERT_THAT(document.m_boxes, SizeIs(1));
    const COpBox& box = BoxAt(document, 0);
    EXPECT_TRUE(box.IsPlaceholder());
    EXPECT_EQ(box.BoxTitleWid(), "Gone_4");
    EXPECT_THAT(box.xypos, ElementsAre(10.5F, -20.0F));
    EXPECT_EQ(box.maxinstances, 3);
    EXPECT_EQ(box.icontext, "missing");
    ASSERT_THAT(box.inputs, SizeIs(3));
    EXPECT_EQ(box.inputs[0]->CurrentType(), "rgb");
    EXPECT_THAT(box.inputs[0]->values, SizeIs(2));
    EXPECT_EQ(box.inputs[1]->CurrentType(), "generic:matrix");
    EXPECT_EQ(box.inputs[1]->DisplayName(), "layer1");
    EXPECT_EQ(box.inputs[2]->DisplayName(), "layer2");
    ASSERT_THAT(box.outputs, SizeIs(1));
    EXPECT_EQ(box.outputs[0]->CurrentType(), "xyz");
    EXPECT_TRUE(box.outputs[0]->IsUnknown());
    EXPECT_THAT(box.boxhelp, HasSubstr("Gone: unknown operator name"));
    EXPECT_EQ(box.inputs[0]->HelpText(), box.boxhelp);
    EXPECT_FALSE(document.WasCutShort());
    EXPECT_FALSE(document.IsModified());
}

TEST_F(Placeholders, WhatIsReadAfterItIsReadAsEver) {
    Open(BoxHead("Gone", 1) + "    }\n" + BoxHead("Link", 2) + "    }\n" +
         "    opconnects { opbox:Link,2,out,0 -> opbox:Link,2,in,0 }\n    lock 1\n");
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2));
    EXPECT_FALSE(BoxAt(document, 1).IsPlaceholder());
    EXPECT_FALSE(BoxAt(document, 1).inputs[0]->connections.Empty());
    EXPECT_EQ(document.lock, 1);
}

TEST_F(Placeholders, AnUntouchedDocumentComesBackToTheByte) {
    const std::string boxes = BoxHead("Gone", 1) +
                              ButtonBlock("input a a", "float", "                    float 0.5 0 1 0\n") +
                              ButtonBlock("output b b", "newtype", "") + "    }\n" + BoxHead("Other", 2) +
                              ButtonBlock("output c c", "float", "") + "    }\n";
    const std::string wires =
        "\n    opconnects\n    {\n        opbox:Gone,1,b,0 -> opbox:Gone,1,a,0\n    }\n\n";
    Open(boxes + wires);
    EXPECT_EQ(StoredBoxes(), CrLfText(boxes + wires));
}

TEST_F(Placeholders, ABlockKeepsALayoutThatNoWriterWouldGiveIt) {
    const std::string block =
        "opbox\t{ filename \"Go\\ne\" # why\n xypos 1 2.50 wid 07\n opbutton.input \"a b\" \"a b\" { x "
        "currentcast "
        "\"odd cast\" wwms { float 1e0 0 1 0 } } } xypos 3   4.0\n }";
    Open(block + "\n");
    EXPECT_EQ(BoxAt(document, 0).filename, "Gone");
    EXPECT_EQ(BoxAt(document, 0).wid, 7);
    EXPECT_THAT(StoredBoxes(), HasSubstr("\r\n    # Gone_7\r\n    " + CrLfText(block) + "\r\n"));
}

TEST_F(Placeholders, OnlyOperandsThatAreOthersAreWrittenAnew) {
    const std::string block = "opbox { filename Gone wid 3 # number\n wid 0004\nxypos 1.0 2.0 }";
    Open(block + "\n");
    COpBox& box = BoxAt(document, 0);
    box.wid = 5;
    EXPECT_THAT(WriteBox(box), HasSubstr("wid 3 # number\r\n wid 5\r\nxypos 1.0 2.0 }"));
    box.wid = 4;
    box.xypos[1] = 7.5F;
    EXPECT_THAT(WriteBox(box), HasSubstr("wid 0004\r\nxypos 1.000000 7.500000 }"));
    box.xypos[1] = 2;
    EXPECT_THAT(WriteBox(box), HasSubstr("wid 0004\r\nxypos 1.0 2.0 }")) << "moved there and back";
}

TEST_F(Placeholders, WhatABlockDoesNotSayIsAddedToIt) {
    Open("opbox { filename Gone # nothing else\n}\n");
    COpBox& box = BoxAt(document, 0);
    EXPECT_THAT(WriteBox(box), HasSubstr("opbox { filename Gone # nothing else\r\n}"));
    box.wid = 8;
    box.xypos[0] = 1;
    const std::string text = WriteBox(box);
    EXPECT_THAT(text,
                HasSubstr("filename Gone\r\n        wid 8\r\n        xypos 1.000000 0.000000 # nothing"));
    document.DeleteContents();
    EXPECT_TRUE(Load("opdesk {" + text + "}"));
    EXPECT_EQ(BoxAt(document, 0).wid, 8);
    EXPECT_EQ(BoxAt(document, 0).xypos[0], 1.0F);
}

TEST_F(Placeholders, WiresStandAndAreSaved) {
    Open(BoxHead("Link", 1) + "    }\n" + BoxHead("Gone", 2) + ButtonBlock("input a a", "float", "") +
         ButtonBlock("input b b", "float", "") + ButtonBlock("output c c", "float", "") + "    }\n" +
         "opconnects { opbox:Link,1,out,0 -> opbox:Gone,2,b,1\nopbox:Gone,2,c,0 -> opbox:Link,1,in,0 }\n");
    const COpBox& link = BoxAt(document, 0);
    const COpBox& gone = BoxAt(document, 1);
    EXPECT_EQ(gone.inputs[1]->connections.First(), link.outputs[0].get());
    EXPECT_EQ(link.inputs[0]->connections.First(), gone.outputs[0].get());
    EXPECT_THAT(document.Store(), AllOf(HasSubstr("opbox:Link,1,out,0 -> opbox:Gone,2,b,1"),
                                        HasSubstr("opbox:Gone,2,c,0 -> opbox:Link,1,in,0")));
}

TEST_F(Placeholders, AWireToAButtonThatTheBlockDoesNotListStandsToo) {
    Open(
        "opbox { filename Link wid 1 } opbox { filename Gone wid 2 }\n"
        "opconnects { opbox:Link,1,out,0 -> opbox:Gone,2,third,2 }\n");
    const COpBox& gone = BoxAt(document, 1);
    ASSERT_THAT(gone.inputs, SizeIs(3));
    EXPECT_EQ(gone.inputs[2]->name, "third");
    EXPECT_THAT(document.Store(), HasSubstr("opbox:Link,1,out,0 -> opbox:Gone,2,third,2"));
    EXPECT_THAT(document.Store(), HasSubstr("opbox { filename Gone wid 2 }")) << "the block is what it was";
}

TEST_F(Placeholders, AWireToAnAbsurdPositionStopsTheReadingAsEver) {
    EXPECT_FALSE(
        Load("opdesk { opbox { filename Gone wid 2 }\n"
             "opconnects { opbox:Gone,2,out,0 -> opbox:Gone,2,in,2000000000 } }"));
    EXPECT_EQ(host.Sink().LastAlert(), "doc.tvn near line 2: box Gone_2 has no input 2000000000");
    EXPECT_THAT(LogLines().back(), HasSubstr("1 box is a placeholder")) << "what came before counts";
    const auto wireTo = [this](const char* position) {
        document.DeleteContents();
        return Load(
            std::string("opdesk { opbox { filename Gone wid 2 } opconnects { opbox:G,2,o,0 -> opbox:G,2,i,") +
            position + " } }");
    };
    EXPECT_TRUE(wireTo("255"));
    EXPECT_FALSE(wireTo("256")) << "of those that no block lists";
    EXPECT_FALSE(Load(
        "opdesk { opbox { filename Gone wid 2 }\nopconnects { opbox:Gone,2,out,-1 -> opbox:Gone,2,i,0 } }"));
    EXPECT_EQ(host.Sink().LastAlert(), "doc.tvn near line 2: box 2 has no output -1");
}

TEST_F(Placeholders, TheFirstIsAlertedEachIsLoggedOnceWithItsLineAndALastLineCounts) {
    EXPECT_TRUE(
        Load("opdesk {\nopbox { filename Gone wid 1 }\nopbox { filename Lost wid 2 }\n"
             "opbox { filename gone wid 3 }\nopbox { filename Lost wid 4 } }"));
    EXPECT_THAT(Alerts(), ElementsAre("Gone: unknown operator name"));
    EXPECT_THAT(LogLines(),
                ElementsAre("WARNING: doc.tvn near line 2: Gone: unknown operator name",
                            "WARNING: doc.tvn near line 3: Lost: unknown operator name",
                            "WARNING: doc.tvn: 4 boxes are placeholders; all is saved as it came"));
}

TEST_F(Placeholders, ADefinitionThatCannotBeReadMakesOneAndItsWordsAreTheReason) {
    host.AddOperator("Bad", "icontext ok\nbogus\n");
    Open(BoxHead("Bad", 1) + "    }\n" + BoxHead("Bad", 2) + "    }\n");
    EXPECT_THAT(Alerts(), ElementsAre(EndsWith("near line 2: unexpected input")));
    EXPECT_TRUE(BoxAt(document, 0).IsPlaceholder());
    EXPECT_TRUE(BoxAt(document, 1).IsPlaceholder());
    EXPECT_EQ(BoxAt(document, 0).icontext, "broken");
    EXPECT_THAT(BoxAt(document, 0).placeholder->reason,
                AllOf(StartsWith("Bad: "), EndsWith("near line 2: unexpected input")));
}

TEST_F(Placeholders, ADefinitionThatFailsInSilenceIsToldAsWell) {
    host.AddOperator("Short", "input i { help");
    Open(BoxHead("Short", 1) + "    }\n");
    EXPECT_THAT(Alerts(), ElementsAre(EndsWith("doc.tvn near line 5: Short: the definition ends too early")));
}

TEST_F(Placeholders, APreprocessorThatFailsRunsOnceForAllBoxesOfItsOperator) {
    host.startsProcesses = true;
    host.Directory().Write(
        "installation/mini/bin/redirect.pl",
        "open my $f, '>>', '" + (host.Directory() / "runs") + "'; print $f \"run\\n\"; exit 9;");
    Open(BoxHead("Link", 1) + "    }\n" + BoxHead("Link", 2) + "    }\n" + BoxHead("LINK", 3) + "    }\n");
    EXPECT_THAT(document.m_boxes, SizeIs(3));
    EXPECT_EQ(test::ReadFile(host.Directory() / "runs"), "run\n");
    EXPECT_THAT(Alerts(), ElementsAre(EndsWith("returned 9")));
}

TEST_F(Placeholders, TheDefinitionThatTheAlertNamesLiesThereAfterTheReading) {
    host.startsProcesses = true;
    host.AddOperator("Bad", "bogus\n");
    Open(BoxHead("Bad", 1) + "    }\n" + BoxHead("Link", 2) + "    }\n");
    ASSERT_THAT(host.Sink().files, SizeIs(1));
    EXPECT_EQ(test::ReadFile(host.Sink().files[0]), "bogus\n");
}

TEST_F(Placeholders, AlertsOfDefinitionsThatCanBeReadAreRaisedAsEver) {
    host.AddOperator("Open", "output o { float out }\nboxhelp {\nnever closed\n");
    Open(BoxHead("Open", 1) + "    }\n");
    EXPECT_THAT(Alerts(), ElementsAre(HasSubstr("the block \"boxhelp\"")));
    EXPECT_FALSE(BoxAt(document, 0).IsPlaceholder());
}

TEST_F(Placeholders, OneLibraryMayHaveWhatTheOneBeforeHasNot) {
    host.AddOperator("Gone", kLink, "other");
    EXPECT_TRUE(
        Load("opdesk { opbox { filename Gone wid 1 } }\ntavrn-renderer other\n"
             "opdesk { opbox { filename Gone wid 2 } }"));
    EXPECT_TRUE(BoxAt(document, 0).IsPlaceholder());
    EXPECT_FALSE(BoxAt(document, 1).IsPlaceholder());
}

TEST_F(Placeholders, ABlockThatTheFileEndsInIsNoneAndTheFileIsGuarded) {
    const std::string path = host.Directory().Write("cut.tvn", "opdesk {\nopbox { filename Gone wid 1 ");
    EXPECT_TRUE(document.Open(path));
    EXPECT_THAT(document.m_boxes, IsEmpty());
    EXPECT_TRUE(document.WasCutShort());
    EXPECT_THAT(Alerts(), ElementsAre("Gone: unknown operator name",
                                      EndsWith("near line 2: the file ends inside the section \"opdesk\"")));
}

TEST_F(Placeholders, ClonesCarryTheBlockAndGetNumbersOfTheirOwn) {
    Open(BoxHead("Gone", 1) + ButtonBlock("input a a", "float", "") + ButtonBlock("output b b", "float", "") +
         "    }\n" + BoxHead("Gone", 2) + ButtonBlock("input a a", "float", "") + "    }\n" +
         "opconnects { opbox:Gone,1,b,0 -> opbox:Gone,2,a,0 }\n");
    COpDesk desk(document, host);
    desk.OnInitialUpdate();
    desk.SelectAllBoxes();
    desk.CutBoxes();
    EXPECT_THAT(document.m_boxes, IsEmpty());
    desk.PasteBoxes(DeskPoint{0, 0});
    desk.PasteBoxes(DeskPoint{0, 0});
    desk.DropPending();
    ASSERT_THAT(document.m_boxes, SizeIs(2));
    const std::string text = document.Store();
    EXPECT_THAT(text,
                AllOf(HasSubstr("filename Gone\r\n        wid 1\r\n        xypos 0.000000 0.000000\r\n"),
                      HasSubstr("opbox:Gone,1,b,0 -> opbox:Gone,2,a,0")));
    document.DeleteContents();
    EXPECT_TRUE(Load(text));
    EXPECT_EQ(document.Store(), text);
}

TEST_F(Placeholders, MergeAndSnapshotCarryThem) {
    const std::string boxes = BoxHead("Gone", 6) + ButtonBlock("output b b", "float", "") + "    }\n";
    COpDesk desk(document, host);
    CTvDoc scratch(host);
    ASSERT_TRUE(scratch.LoadDesk(ReadDesk(test::ArchiveOf("opdesk {" + boxes + "}", "m.tvn"))));
    desk.MergeBoxes(scratch.m_boxes);
    desk.DropPending();
    DocumentSnapshot snapshot(document, host);
    EXPECT_EQ(TextOf(snapshot.Take()), document.Snapshot());
    EXPECT_THAT(document.Snapshot(),
                HasSubstr("filename Gone\n        wid 1\n        xypos 0.000000 0.000000\n"));
}

TEST_F(Placeholders, ASavedNetworkBringsThem) {
    host.AddOperator(
        "Net", "tavrn-version 1\nopdesk { opbox { filename Gone wid 4 } opbox { filename Link wid 5 } }\n");
    COpDesk desk(document, host);
    desk.AddOperator("Net");
    EXPECT_THAT(Alerts(), ElementsAre("Gone: unknown operator name"));
    desk.DropPending();
    ASSERT_THAT(document.m_boxes, SizeIs(2));
    EXPECT_THAT(document.Store(), HasSubstr("opbox { filename Gone wid 1"));
}

TEST_F(Placeholders, ItsButtonsCannotBeTunedButWired) {
    Open(BoxHead("Gone", 1) + ButtonBlock("vinput v v1", "float", "float 1 0 1 0\nrgb 1 1 1\n") + "    }\n" +
         BoxHead("Link", 2) + "    }\n");
    COpDesk desk(document, host);
    desk.OnInitialUpdate();
    COpBox& gone = BoxAt(document, 0);
    COpButton& input = *gone.inputs[0];
    const std::string before = WriteBox(gone);
    desk.m_mouseBox = &gone;
    desk.m_mouseButton = &input;
    desk.ToggleArgument();
    desk.ChooseCast(1);
    EXPECT_EQ(desk.GrowVinput(true), nullptr);
    desk.DeleteButton();
    ASSERT_THAT(gone.inputs, SizeIs(1));
    EXPECT_EQ(input.arg, 1);
    EXPECT_EQ(input.currentcast, 0U);
    EXPECT_FALSE(document.IsModified());
    EXPECT_TRUE(input.CanConnect(*BoxAt(document, 1).outputs[0]));
    desk.Connect(input, *BoxAt(document, 1).outputs[0]);
    EXPECT_THAT(document.Store(), HasSubstr("opbox:Link,2,out,0 -> opbox:Gone,1,v,0"));
    desk.DeleteConnections();
    EXPECT_TRUE(input.connections.Empty());
    EXPECT_EQ(WriteBox(gone), before);
}

TEST_F(Placeholders, HostileTextsComeBack) {
    const std::string kNames[] = {"\"\"",
                                  "\"a\nb\"",
                                  "\"%s%n\"",
                                  "a\\\"b",
                                  "\"# no comment\"",
                                  "\"}\"",
                                  "\x01\x7f\xff",
                                  std::string(100000, 'n')};
    for (const std::string& name : kNames) {
        host.Sink().alerts.clear();
        document.DeleteContents();
        const std::string button = "opbutton.vinput " + name + " " + name + " { x { currentcast " + name +
                                   " wwms { argname " + name + " } } }\n";
        const std::string block = "opbox { filename " + name + " wid 3 xypos 1 2\n" + button +
                                  "opbutton.output " + name + " " + name +
                                  " { x { currentcast float wwms { } } }\n}";
        ASSERT_TRUE(Load("opdesk { " + block + " opconnects { opbox:x,3,x,0 -> opbox:x,3,x,0 } }")) << name;
        EXPECT_THAT(Alerts(), SizeIs(1)) << name;
        const std::string text = document.Store();
        EXPECT_THAT(text, HasSubstr(block)) << name;
        document.DeleteContents();
        ASSERT_TRUE(Load(text)) << name;
        ASSERT_THAT(document.m_boxes, SizeIs(1));
        EXPECT_FALSE(BoxAt(document, 0).inputs.at(0)->connections.Empty());
        EXPECT_EQ(document.Store(), text) << name;
    }
    for (const std::string& line : LogLines())
        EXPECT_THAT(line, StartsWith("WARNING: ")) << "in one line each";
}

TEST_F(Placeholders, TenThousandAreOpenedStoredAndToldInOneLineEach) {
    std::string text = "opdesk {\n";
    constexpr int kCount = 10000;
    for (int wid = 1; wid <= kCount; ++wid) {
        text += "opbox { filename Gone" + std::to_string(wid) + " wid " + std::to_string(wid) +
                " opbutton.output o o { x { currentcast float wwms { } } } }\n";
    }
    EXPECT_TRUE(Load(text + "}"));
    EXPECT_THAT(document.m_boxes, SizeIs(kCount));
    EXPECT_THAT(Alerts(), SizeIs(1));
    EXPECT_THAT(LogLines(), SizeIs(kCount + 1));
    const std::string stored = document.Store();
    document.DeleteContents();
    EXPECT_TRUE(Load(stored));
    EXPECT_EQ(document.Store(), stored);
}

}  // namespace
}  // namespace tavrin
