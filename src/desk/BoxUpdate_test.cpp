// SPDX-License-Identifier: Apache-2.0
// Boxes that are brought up to date with the definitions of their operators.
#include "desk/BoxUpdate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Files.h"
#include "document/EditHistory.h"
#include "support/ChangeAuditor.h"
#include "support/NetworkPrint.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::PrintNetwork;
using test::WidsOf;
using test::Wire;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kOne = "input in { float { 0 0 1 0 %g } } output out { float out }\n";
constexpr const char* kTwo =
    "icontext new\ninput more { float { 7 0 9 0 %g } } input in { float { 0 0 1 0 %g } }\noutput out { float "
    "out }\n";

class BoxUpdate : public test::DocumentTest {
  protected:
    BoxUpdate() {
        grain = host.AddOperator("Grain", kOne);
        other = host.AddOperator("Other", kOne);
    }
    COpBox& AddBox(const std::string& name) {
        auto box = std::make_unique<COpBox>();
        EXPECT_TRUE(host.DefineBox(*box, name)) << host.Sink().LastAlert();
        COpBox& added = Add(desk, std::move(box));
        added.selected = 0;
        return added;
    }
    // Two of Grain with one of Other between them, each fed by the one before; with a history.
    void AddChain() {
        for (const char* name : {"Grain", "Other", "Grain"}) AddBox(name);
        for (size_t i = 1; i < 3; ++i) Wire(BoxAt(document, i - 1), 0, BoxAt(document, i), 0);
        document.KeepHistory();
        view.calls.clear();
    }
    void Edit(const std::string& path, const std::string& text) {
        std::string error;
        ASSERT_TRUE(WriteWholeFile(path, text, error)) << error;
    }
    BoxUpdateResult Update(const std::vector<std::string>& names = {"Grain"}) {
        return tavrin::BoxUpdate(document, desk, host).Run(names);
    }
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const auto& box : document.m_boxes) texts.push_back(box->icontext);
        return texts;
    }
    std::string Log() { return host.Sink().log; }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
    std::string grain;
    std::string other;
};

TEST_F(BoxUpdate, PutsAFreshBoxInThePlaceOfEach) {
    AddChain();
    BoxAt(document, 2).selected = 1;
    BoxAt(document, 2).xypos[0] = 12;
    Edit(grain, kTwo);
    const BoxUpdateResult result = Update();
    EXPECT_EQ(result.boxes, 2U);
    EXPECT_EQ(result.losses, 0U);
    EXPECT_THAT(Texts(), ElementsAre("new", "", "new"));
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2, 3));
    EXPECT_EQ(BoxAt(document, 2).selected, 1);
    EXPECT_EQ(BoxAt(document, 2).xypos[0], 12);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(desk.NextWid(), 4);
    EXPECT_THAT(
        view.calls,
        ElementsAre("layout Grain_1", "layout Grain_3",
                    "Update Boxes: came Grain_1 Grain_3 dropped Grain_1 Grain_3 went Grain_1 Grain_3 wires"));
    EXPECT_THAT(host.Sink().alerts, IsEmpty());
}

TEST_F(BoxUpdate, KeepsTheWiresByTheNamesOfButtons) {
    AddChain();
    Edit(grain, kTwo);
    Edit(other, kTwo);
    Update({"Grain", "Other"});
    for (size_t i = 1; i < 3; ++i) {
        COpButton& in = *BoxAt(document, i).FindButton("in");
        COpButton& out = *BoxAt(document, i - 1).FindButton("out");
        EXPECT_EQ(in.connections.First(), &out);
        EXPECT_TRUE(out.connections.Contains(in));
        EXPECT_TRUE(BoxAt(document, i).FindButton("more")->connections.Empty());
    }
}

TEST_F(BoxUpdate, KeepsAllWiresOfAnOutputAndOneThatWasOneSided) {
    AddChain();
    COpBox& last = AddBox("Other");
    Wire(BoxAt(document, 0), 0, last, 0);
    BoxAt(document, 0).outputs[0]->Connect(*last.inputs[0]);  // again: the output forgets it
    ASSERT_FALSE(BoxAt(document, 0).outputs[0]->connections.Contains(*last.inputs[0]));
    Edit(grain, kTwo);
    Update();
    COpButton& out = *BoxAt(document, 0).outputs[0];
    EXPECT_EQ(out.connections.Size(), 2U);
    EXPECT_EQ(last.inputs[0]->connections.First(), &out);
}

TEST_F(BoxUpdate, TellsEachWireThatIsLostAndWhy) {
    AddChain();
    Edit(grain, "input other { float { 0 0 1 0 %g } } output out { float out }\n");
    Edit(other, "input in { wwms.disableconnectflag 1 float { 0 0 1 0 %g } } output out { float out }\n");
    const BoxUpdateResult result = Update({"Grain", "Other"});
    EXPECT_EQ(result.losses, 4U);
    EXPECT_THAT(
        Log(),
        HasSubstr("WARNING: Other_2 in: its wire from Grain_1 out is lost; the two may not be wired any "
                  "more\r\n"));
    EXPECT_THAT(Log(),
                HasSubstr("WARNING: Grain_3 in: its wire from Other_2 out is lost; Grain_3 in is gone\r\n"));
    EXPECT_THAT(Log(), HasSubstr("WARNING: Grain_1 in: the button is gone, and with it its value 0\r\n"));
    for (const auto& box : document.m_boxes) EXPECT_TRUE(box->outputs[0]->connections.Empty());
}

TEST_F(BoxUpdate, IsOneStepThatBringsTheFormerBoxesBack) {
    AddChain();
    const std::string before = PrintNetwork(document);
    const COpBox* former = &BoxAt(document, 0);
    Edit(grain, "output out { float out }\n");
    Update();
    const std::string after = PrintNetwork(document);
    const COpBox* fresh = &BoxAt(document, 0);
    ASSERT_EQ(document.History()->Count(), 1U);
    EXPECT_EQ(document.History()->Name(0), "Update Boxes");
    EXPECT_FALSE(COpBox::IsLive(former));
    for (int time = 0; time < 2; ++time) {
        desk.Undo();
        EXPECT_EQ(PrintNetwork(document), before);
        EXPECT_EQ(&BoxAt(document, 0), former);
        EXPECT_THAT(WidsOf(document), ElementsAre(1, 2, 3));
        EXPECT_FALSE(document.IsModified());
        desk.Redo();
        EXPECT_EQ(PrintNetwork(document), after);
        EXPECT_EQ(&BoxAt(document, 0), fresh);
        EXPECT_THAT(WidsOf(document), ElementsAre(1, 2, 3));
    }
}

TEST_F(BoxUpdate, TellsAllThatItChanges) {
    AddChain();
    test::ChangeAuditor auditor(document, desk);
    Edit(grain, kTwo);
    Update();
    EXPECT_EQ(auditor.Look(), "");
    EXPECT_EQ(document.edits.StrayEdits(), 0);
}

TEST_F(BoxUpdate, LeavesNothingBehindWithoutAHistory) {
    AddChain();
    const size_t live = COpBox::LiveCount();
    const size_t buttons = COpButton::LiveCount();
    CTvDoc plain(host);
    COpDesk plainDesk(plain, host);
    plain.m_boxes.push_back(std::make_unique<COpBox>(BoxAt(document, 0)));
    Edit(grain, "output out { float out }\n");
    EXPECT_EQ(tavrin::BoxUpdate(plain, plainDesk, host).Run({"Grain"}).boxes, 1U);
    EXPECT_EQ(COpBox::LiveCount(), live + 1);
    EXPECT_EQ(COpButton::LiveCount(), buttons + 1);
}

TEST_F(BoxUpdate, KeepsWhatIsPickedOnTheDesk) {
    AddChain();
    COpBox& last = AddBox("Grain");
    desk.m_selectedButton = last.outputs[0].get();
    desk.m_selectedConnects = {BoxAt(document, 2).inputs[0].get()};
    desk.m_mouseBox = &last;
    desk.m_mouseButton = last.inputs[0].get();
    Edit(grain, kTwo);
    Update();
    EXPECT_EQ(desk.m_selectedButton, BoxAt(document, 3).outputs[0].get());
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(BoxAt(document, 2).FindButton("in")));
    EXPECT_EQ(desk.m_mouseBox, nullptr);
    EXPECT_EQ(desk.m_mouseButton, nullptr);
    Edit(grain, "icontext bare\n");
    Update();
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
}

TEST_F(BoxUpdate, LeavesBoxesAloneWhoseDefinitionIsWhatItWas) {
    AddChain();
    const COpBox* first = &BoxAt(document, 0);
    Edit(other, kTwo);
    EXPECT_EQ(Update({"Grain", "Other"}).boxes, 1U);
    EXPECT_EQ(&BoxAt(document, 0), first);
    EXPECT_THAT(Texts(), ElementsAre("", "new", ""));
}

TEST_F(BoxUpdate, ADefinitionThatCannotBeReadLeavesAllBoxesOfItsOperator) {
    AddChain();
    const COpBox* first = &BoxAt(document, 0);
    const std::string before = PrintNetwork(document);
    Edit(grain, "icontext new\nbad\n");
    BoxUpdateResult result = Update();
    EXPECT_EQ(result.boxes, 0U);
    EXPECT_THAT(result.failed, ElementsAre("Grain"));
    EXPECT_EQ(PrintNetwork(document), before);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(host.Sink().alerts, ElementsAre(AllOf(HasSubstr("near line 2: unexpected input"),
                                                      HasSubstr("(operator Grain of " + grain))));
    Edit(other, kTwo);
    result = Update({"Grain", "Other"});
    EXPECT_THAT(result.failed, ElementsAre("Grain"));
    EXPECT_EQ(&BoxAt(document, 0), first);
    EXPECT_THAT(Texts(), ElementsAre("", "new", ""));
}

TEST_F(BoxUpdate, AFileThatHasGoneOrIsRefusedLeavesTheBoxes) {
    AddChain();
    ASSERT_EQ(::unlink(grain.c_str()), 0);
    EXPECT_THAT(Update().failed, ElementsAre("Grain"));
    Edit(grain, "tavrn-version 1.3.32\nopdesk\n{\n}\n");  // a document
    EXPECT_THAT(Update().failed, ElementsAre("Grain"));
    EXPECT_THAT(Texts(), ElementsAre("", "", ""));
}

TEST_F(BoxUpdate, DoesNothingOnALockedDeskNorWithinAnEdit) {
    AddChain();
    Edit(grain, kTwo);
    document.lock = 1;
    EXPECT_EQ(Update().boxes, 0U);
    document.lock = 0;
    {
        const HeldEdit drag(document, "Move");
        EXPECT_EQ(Update().boxes, 0U);
    }
    EXPECT_EQ(Update().boxes, 2U);
}

TEST_F(BoxUpdate, RunsAPurePreprocessorOnce) {
    AddChain();
    host.GetSite().settingsLibrary = "mini";
    host.GetSite().settings.Store("preprocess.pure", "1");
    host.Directory().Write(
        "installation/mini/bin/redirect.pl",
        "open my $r, '>>', \"$ENV{TAVRN_WORKDIR}/runs\"; syswrite $r, '.'; open my $o, '>', $ARGV[1]; "
        "print $o \"icontext new\\n\";");
    host.GetSite().environment.Set("TAVRN_WORKDIR", host.GetSite().directories.workDir);
    EXPECT_EQ(Update().boxes, 2U);
    EXPECT_EQ(test::ReadFile(host.GetSite().WorkPath("runs")), ".");
}

TEST_F(BoxUpdate, ThousandsOfBoxesAreUpdatedWithTheirWires) {
    host.GetSite().settingsLibrary = "mini";
    host.GetSite().settings.Store("preprocess.pure", "1");
    AddBox("Grain");
    constexpr int kBoxes = 3000;
    COpBox& hub = BoxAt(document, 0);
    for (int i = 0; i < kBoxes; ++i) {
        COpBox& box = Add(desk, std::make_unique<COpBox>(hub));
        Wire(hub, 0, box, 0);
    }
    document.KeepHistory();
    const std::string before = PrintNetwork(document);
    Edit(grain, kTwo);
    EXPECT_EQ(Update().boxes, kBoxes + 1U);
    EXPECT_EQ(BoxAt(document, 0).outputs[0]->connections.Size(), size_t{kBoxes});
    EXPECT_THAT(Log(), Not(HasSubstr("WARNING")));
    desk.Undo();
    EXPECT_EQ(PrintNetwork(document), before);
}

}  // namespace
}  // namespace tavrin
