// SPDX-License-Identifier: Apache-2.0
// Placeholders and stray buttons are no part of what is generated.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codegen/CodeGen.h"
#include "document/DocumentReader.h"
#include "render/ArgInfo.h"
#include "render/NetworkCheck.h"
#include "render/ShaderText.h"
#include "support/TestHost.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

using test::BoxAt;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kSource =
    "input value { float { 0.25 0 1 0 \"%g\" } }\noutput out { float out }\n"
    "codegen.main-body append\nout = value;\n<<EOT>>\n";
constexpr const char* kSink =
    "input shade { float { 0.5 0 1 0 \"%g\" } }\ncodegen.main-body append\nshow(shade, "
    "TAVRN_IsConnect_shade);\n"
    "<<EOT>>\n";

std::string Button(const std::string& head, const std::string& values = "") {
    return "opbutton." + head + " { x { currentcast float wwms { " + values + " } } }\n";
}

class PlaceholderCode : public test::DocumentTest {
  protected:
    PlaceholderCode() {
        host.startsProcesses = false;
        host.AddOperator("Source", kSource);
        host.AddOperator("Sink", kSink);
        host.GetSite().settings.Store("document.placeholders", "1");
    }
    void LoadDesk(const std::string& desk) {
        ASSERT_TRUE(Load("opdesk {\n" + desk + "\n}"));
        host.Sink().alerts.clear();
        host.Sink().log.clear();
    }
    std::string comment;  // what begins one in the code
    std::vector<std::string> Code() {
        CCodeGen codeGen;
        codeGen.m_lineComment = comment;
        ShaderText text = GenerateShader(document, "x", host.GetSite(), codeGen);
        document.preparedVariables = std::move(text.variables);
        std::vector<std::string> lines;
        for (const std::string& line : text.code) {
            if (!Trim(line).empty()) lines.emplace_back(Trim(line));
        }
        return lines;
    }
};

TEST_F(PlaceholderCode, NothingIsGeneratedForItAndEachIsNamedWithTheReason) {
    LoadDesk("opbox { filename Gone wid 1\n" + Button("input a a", "arg 1 float 1 0 1 0") +
             Button("output o o") + "}\nopbox { filename Lost wid 2 }\nopbox { filename Source wid 3 }\n");
    EXPECT_THAT(Code(), Contains("Source_3_out = 0.25;"));
    EXPECT_EQ(
        host.Sink().log,
        "WARNING: Gone_1 is a placeholder, so no code is generated for it: Gone: unknown operator name\r\n"
        "WARNING: Lost_2 is a placeholder, so no code is generated for it: Lost: unknown operator name\r\n");
    comment = "//";
    EXPECT_THAT(Code(), Contains("// Source_3"));
    for (const std::string& line : Code())
        EXPECT_THAT(line, Not(AnyOf(HasSubstr("Gone"), HasSubstr("Lost"))));
}

TEST_F(PlaceholderCode, AnInputThatItFeedsTakesItsOwnValueAsIfNothingDid) {
    LoadDesk("opbox { filename Gone wid 1\n" + Button("output o o") + "}\nopbox { filename Sink wid 2\n" +
             Button("input shade shade", "arg 1 argname \"kept\" float 0.75 0 1 0") +
             "}\nopconnects { opbox:G,1,o,0 -> opbox:S,2,s,0 }\n");
    EXPECT_THAT(Code(), ElementsAre("show(kept, default/arg);"));
    EXPECT_THAT(document.CollectUnconnectedInputs(), ElementsAre(BoxAt(document, 1).inputs[0].get()));
    EXPECT_THAT(WriteArgInfo(document, host.GetSite().report), HasSubstr("ArgName kept\n"));
    BoxAt(document, 1).inputs[0]->arg = 0;
    EXPECT_THAT(Code(), ElementsAre("show(0.75, defaultnoarg);"));
}

TEST_F(PlaceholderCode, ItsOwnInputsAreNoArguments) {
    LoadDesk("opbox { filename Gone wid 1\n" + Button("input a a", "arg 1 float 1 0 1 0") + "}\n");
    EXPECT_THAT(document.CollectUnconnectedInputs(), IsEmpty());
    EXPECT_THAT(WriteArgInfo(document, host.GetSite().report), Not(HasSubstr("ArgName")));
}

TEST_F(PlaceholderCode, AStrayButtonIsNoPartOfItsBox) {
    LoadDesk(
        "opbox { filename Source wid 1 }\nopbox { filename Sink wid 2\n" +
        Button("input lost lost", "arg 1 float 9 0 1 0") + Button("input shade shade", "float 0.5 0 1 0") +
        Button("output extra extra") + "}\nopbox { filename Sink wid 3\n" + Button("input shade shade") +
        "}\nopconnects { opbox:S,1,out,0 -> opbox:S,2,lost,0\nopbox:S,2,extra,0 -> opbox:S,3,shade,0 }\n");
    EXPECT_THAT(Code(), ElementsAre("float Source_1_out", "Source_1_out = 0.25;", "show(0.5, defaultnoarg);",
                                    "show(0.5, defaultnoarg);"));
    for (const COpButton* input : document.CollectUnconnectedInputs()) EXPECT_NE(input->name, "lost");
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(PlaceholderCode, TemplatesDoNotKnowAStrayButton) {
    host.AddOperator("Say", "codegen.main-body append\nsay(lost, extra, TAVRN_Cast_lost);\n<<EOT>>\n");
    LoadDesk("opbox { filename Say wid 1\n" + Button("input lost lost", "float 9 0 1 0") +
             Button("output extra extra") + "}\n");
    EXPECT_THAT(Code(), ElementsAre("say(lost, extra, TAVRN_Cast_lost);"));
}

TEST_F(PlaceholderCode, ATiebackBehindItStandsForTheInputsOwnValue) {
    host.AddOperator("Relay", "input i { float { 0.125 0 1 0 \"%g\" } } output tieback=i o { float out }");
    LoadDesk("opbox { filename Gone wid 1\n" + Button("output o o") +
             "}\nopbox { filename Relay wid 2 } opbox { filename Sink wid 3 }\n"
             "opconnects { opbox:G,1,o,0 -> opbox:R,2,i,0\nopbox:R,2,o,0 -> opbox:S,3,s,0 }\n");
    EXPECT_THAT(Code(), ElementsAre("show(0.125, connectednoarg);"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(PlaceholderCode, TheOrderOfTheRestIsAsItWas) {
    host.AddOperator("Pass", "input i { float { 0 0 1 0 %g } } output o { float out }");
    const std::string desk =
        "opbox { filename NAME wid 2\n" + Button("input i i") + Button("output o o") +
        "}\nopbox { filename Pass wid 1\n" + Button("input i i") + Button("output o o") +
        "}\nopbox { filename Source wid 3 } opbox { filename Source wid 4 } opbox { filename Sink wid 5 }\n"
        "opconnects { opbox:S,4,o,0 -> opbox:x,2,i,0 opbox:x,2,o,0 -> opbox:P,1,i,0 opbox:P,1,o,0 -> "
        "opbox:S,5,s,0 }";
    const auto order = [&](const std::string& name) {
        document.DeleteContents();
        std::string text = desk;
        text.replace(text.find("NAME"), 4, name);
        LoadDesk(text);
        std::vector<int> wids;
        for (const COpBox* box : document.OrderBoxes()) wids.push_back(box->wid);
        return wids;
    };
    const auto asPlaceholder = order("Passe");
    host.AddOperator("Passe", "input i { float { 0 0 1 0 %g } } output o { float out }");
    EXPECT_EQ(asPlaceholder, order("Passe"));
}

TEST_F(PlaceholderCode, TheCheckListsThemAsWarnings) {
    LoadDesk("opbox { filename Gone wid 1\n" + Button("input a a") + "}\nopbox { filename Sink wid 2\n" +
             Button("input lost lost") + Button("input shade shade") +
             "}\nopbox { filename Source wid 3 }\nopconnects { opbox:S,3,out,0 -> opbox:S,2,shade,1 }\n");
    std::vector<std::string> texts;
    for (const Finding& finding : CheckNetwork(document, host.GetSite())) texts.push_back(finding.Text());
    EXPECT_THAT(
        texts,
        ElementsAre("warning: Gone_1: is a placeholder, so no code is generated for it: Gone: unknown "
                    "operator name",
                    "warning: Sink_2 lost: is no button of its operator; it is kept, and no code is made "
                    "of it"));
    const DocumentForm form = ReadDocument(
        test::ArchiveOf("opdesk { opbox { filename Gone } opbox { filename Never } }", "doc.tvn"));
    const auto findings = CheckDocumentForm(form, document, host.Registry());
    ASSERT_EQ(findings.size(), 1U) << "the network's own findings tell of the other";
    EXPECT_EQ(findings[0].Text(), "error: the library has no operator Never");
}

TEST_F(PlaceholderCode, AFormerNameIsNoMissingOperator) {
    host.AddOperator("New", "alias Old\noutput o { float out }");
    const DocumentForm form = ReadDocument(test::ArchiveOf("opdesk { opbox { filename Old } }", "doc.tvn"));
    EXPECT_THAT(CheckDocumentForm(form, document, host.Registry()), IsEmpty());
}

}  // namespace
}  // namespace tavrin
