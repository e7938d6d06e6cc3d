// SPDX-License-Identifier: Apache-2.0
// When an output stands for the picture, when it does no more, and what the renders make of it.
#include <stdexcept>

#include "base/Files.h"
#include "desk/BoxUpdate.h"
#include "document/EditHistory.h"
#include "render/ProbeTest.h"
#include "render/RenderSession.h"
#include "render/ShaderExport.h"

namespace tavrin {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ProbeLife : public test::ProbeTest {
  protected:
    ProbeLife() {
        LoadChain();
        document.KeepHistory();
    }
    int told = 0;
    Listeners<>::Subscription listener = probe.afterChange.Add([this] { ++told; });
    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
};

TEST_F(ProbeLife, ShowingAndEndingIsTold) {
    EXPECT_EQ(probe.Name(), "");
    EXPECT_TRUE(probe.Show(Output(1)));
    EXPECT_EQ(probe.Output(), &Output(1));
    EXPECT_EQ(probe.Name(), "Source_1 out");
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(probe.Show(Output(2)));
    EXPECT_EQ(told, 2);
    probe.End();
    EXPECT_EQ(probe.Output(), nullptr);
    EXPECT_EQ(told, 3);
    probe.End();
    EXPECT_EQ(told, 3);
}

TEST_F(ProbeLife, TheSameOutputOnceMoreEndsIt) {
    probe.Toggle(Output(1));
    probe.Toggle(Output(2));
    EXPECT_EQ(probe.Name(), "Pass_2 o");
    probe.Toggle(Output(2));
    EXPECT_EQ(probe.Output(), nullptr);
}

TEST_F(ProbeLife, ItEndsWithItsBoxAndAnUndoDoesNotBringItBack) {
    probe.Show(Output(2));
    desk.DeleteBox(Box(2));
    EXPECT_EQ(probe.Output(), nullptr);
    EXPECT_EQ(told, 2);
    desk.Undo();
    ASSERT_EQ(Box(2).outputs.size(), 2U);
    EXPECT_EQ(probe.Output(), nullptr);
    EXPECT_EQ(probe.Name(), "");
    EXPECT_THAT(Code(), ElementsAre("nothing"));
    EXPECT_EQ(told, 2);
    EXPECT_TRUE(probe.Show(Output(2)));
    desk.Redo();
    EXPECT_EQ(probe.Output(), nullptr);
}

TEST_F(ProbeLife, OtherBoxesMayGoAndComeWires) {
    probe.Show(Output(2));
    desk.DeleteBox(Box(1));
    EXPECT_EQ(probe.Name(), "Pass_2 o");
    EXPECT_THAT(Code(), Contains("Pass_2_o = 0.25; Pass_2_p = -0.25;"));
    desk.Undo();
    EXPECT_THAT(Code(), Contains("Pass_2_o = Source_1_out; Pass_2_p = -Source_1_out;"));
}

TEST_F(ProbeLife, AnotherDocumentEndsIt) {
    probe.Show(Output(1));
    const std::string path = host.Directory().Write("b.tvn", "opdesk { opbox { filename Source wid 1 } }");
    ASSERT_TRUE(document.Open(path));
    EXPECT_EQ(probe.Output(), nullptr) << "before anybody is told of the document";
    document.edits.Replaced();
    EXPECT_EQ(told, 2);
    EXPECT_THAT(Code(), ElementsAre("nothing"));
}

TEST_F(ProbeLife, ABoxThatWasBroughtUpToDateStandsForTheOneBefore) {
    host.startsProcesses = true;
    const std::string path =
        host.AddOperator("Grain", "output out { float out }\noutput more { float out }\n");
    auto box = std::make_unique<COpBox>();
    ASSERT_TRUE(host.DefineBox(*box, "Grain"));
    COpBox& old = Add(desk, std::move(box));
    const auto output = [this](size_t place) {
        for (const auto& own : document.m_boxes) {
            if (own->filename == "Grain") return own->outputs.at(place).get();
        }
        throw std::logic_error("no box");
    };
    ASSERT_TRUE(probe.Show(*old.outputs[1]));
    std::string error;
    ASSERT_TRUE(WriteWholeFile(path, "output more { float out }\noutput out { float out }\n", error));
    ASSERT_EQ(BoxUpdate(document, desk, host).Run({"Grain"}).boxes, 1U);
    EXPECT_EQ(probe.Output(), output(0)) << "which is called so now";
    desk.Undo();
    EXPECT_EQ(probe.Output(), output(1));
    desk.Redo();
    ASSERT_TRUE(WriteWholeFile(path, "output out { float out }\n", error));
    ASSERT_EQ(BoxUpdate(document, desk, host).Run({"Grain"}).boxes, 1U);
    EXPECT_EQ(probe.Output(), nullptr) << "an output that is gone";
}

TEST_F(ProbeLife, ACastThatCannotBeShownEndsItWithTheReason) {
    probe.Show(Output(1));
    MakeString(Output(1));
    EXPECT_THAT(Code(), ElementsAre("nothing"));
    EXPECT_THAT(Alerts(),
                ElementsAre("Source_1 out cannot be shown: a string has no picture; choose an output "
                            "of another type"));
    EXPECT_EQ(probe.Output(), nullptr);
    EXPECT_EQ(told, 2);
    Code();
    EXPECT_EQ(Alerts().size(), 1U);
}

TEST_F(ProbeLife, WhoShowsItHearsThatOperatorsWereReloaded) {
    probe.OperatorsReloaded();
    EXPECT_EQ(told, 0);
    probe.Show(Output(1));
    probe.OperatorsReloaded();
    EXPECT_EQ(told, 2);
}

TEST_F(ProbeLife, ALockedDeskIsShownAsAnyOther) {
    document.lock = 1;
    EXPECT_THAT(CodeOf(Output(1)), Contains("Source_1_out = 0.25;"));
}

// Renders.

class ProbeRenders : public ProbeLife {
  protected:
    ProbeRenders() {
        document.SetPath("/documents/demo.tvn");
        document.m_renderOptions["SIZE"] = "1";
        session.SetProbe(probe);
    }
    std::string InWork(const std::string& name) const { return test::ReadFile(site.WorkPath(name)); }

    RenderSession session{document, site, codeGen};
};

TEST_F(ProbeRenders, TheWorkFilesAreThoseOfTheOutputWhereThatIsMeant) {
    const std::string network = session.MakeWorkFiles(Rendered::kProbe).code;
    EXPECT_EQ(session.MakeWorkFiles().code, network) << "nothing is shown";
    probe.Show(Output(1));
    const WorkFiles files = session.MakeWorkFiles(Rendered::kProbe);
    EXPECT_THAT(files.code, AllOf(testing::StartsWith("Help\n{\n>A plastic.\n"), HasSubstr("EndArginfo\n"),
                                  HasSubstr("show(Source_1_out"), Not(HasSubstr("sink("))));
    EXPECT_EQ(files.options, "setenv SIZE \"1\"\r\n");
    EXPECT_EQ(session.MakeWorkFiles(Rendered::kNetwork).code, network);
    EXPECT_EQ(session.MakeWorkFiles().code, network);
    probe.End();
    EXPECT_EQ(session.MakeWorkFiles(Rendered::kProbe).code, network);
}

TEST_F(ProbeRenders, OneThatCannotBeShownAnyMoreGivesTheNetworkAndIsAlerted) {
    probe.Show(Output(1));
    MakeString(Output(1));
    EXPECT_THAT(session.MakeWorkFiles(Rendered::kProbe).code, HasSubstr("sink("));
    EXPECT_EQ(Alerts().size(), 1U);
    EXPECT_EQ(probe.Output(), nullptr);
}

TEST_F(ProbeRenders, WhatIsSavedIsWhatTheSessionShows) {
    probe.Show(Output(1));
    host.Directory().Write("installation/mini/bin/redirect.pl", "");
    EXPECT_TRUE(session.SaveShader());
    EXPECT_THAT(InWork("codegenfile"), HasSubstr("sink("));
    session.m_shown = Rendered::kProbe;
    EXPECT_TRUE(session.SaveShader());
    EXPECT_THAT(InWork("codegenfile"), AllOf(HasSubstr("show("), Not(HasSubstr("sink("))));
}

TEST_F(ProbeRenders, TheInterfaceHasTheArgumentsOfWhatIsShown) {
    Box(1).inputs[0]->arg = Box(2).inputs[0]->arg = 1;
    Box(1).inputs[0]->argname = "depth";
    Box(3).inputs[0]->Disconnect();
    Box(3).inputs[0]->arg = 1;
    Box(3).inputs[0]->argname = "shade";
    probe.Show(Output(1));
    EXPECT_THAT(session.ArgInfo(), AllOf(HasSubstr("ArgName depth\n"), HasSubstr("ArgName shade\n")));
    session.m_shown = Rendered::kProbe;
    EXPECT_THAT(session.ArgInfo(), AllOf(HasSubstr("ArgName depth\n"), Not(HasSubstr("ArgName shade\n"))));
}

TEST_F(ProbeRenders, AnExportOfItIsRefused) {
    ShaderExport exporter(document, site, session);
    probe.Show(Output(1));
    session.m_shown = Rendered::kProbe;
    CExportOptions options;
    options.saveTavrn = 1;
    options.tavrnPath = host.Directory() / "out.tvn";
    EXPECT_FALSE(exporter.Export(options));
    EXPECT_FALSE(exporter.ExportAll());
    EXPECT_FALSE(exporter.ExportAsDocumentSays(ExportKind::kShaderSource));
    EXPECT_THAT(Alerts(),
                testing::Each("an output that is probed is not exported; export without the probe"));
    EXPECT_EQ(Alerts().size(), 3U);
    EXPECT_FALSE(PathExists(options.tavrnPath));
}

}  // namespace
}  // namespace tavrin
