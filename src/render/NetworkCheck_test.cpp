// SPDX-License-Identifier: Apache-2.0
// What a user is told of a network before it is rendered.
#include "render/NetworkCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "document/DocumentReader.h"
#include "site/Site.h"
#include "site/TypeTables.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSource = "output out { float out }";
constexpr const char* kTemplate = "\ncodegen.main-body append\nx;\n<<EOT>>\n";
constexpr const char* kSurface = "input shade { float { 0.5 0 1 0 %g } }";

std::vector<std::string> TextsOf(const std::vector<Finding>& findings) {
    std::vector<std::string> texts;
    for (const Finding& finding : findings) texts.push_back(finding.Text());
    return texts;
}

class NetworkCheckTest : public test::DocumentTest {
  protected:
    std::vector<std::string> Findings() { return TextsOf(CheckNetwork(document, host.GetSite())); }
    COpBox& Box(const std::string& name, const std::string& definition, int wid) {
        return Add(test::MakeBox(name, definition + kTemplate, wid));
    }
    COpBox& Surface(int wid = 9) { return Box("Surface", kSurface, wid); }
    // A box with such an input that feeds a surface, so that nothing but the input can be found.
    COpBox& Feeding(const std::string& input, int wid = 1) {
        COpBox& box = Box("Box", input + " output out { float out }", wid);
        test::Wire(box, 0, Surface(wid + 10), 0);
        return box;
    }
};

TEST_F(NetworkCheckTest, AnEmptyDeskHasNothingToTell) { EXPECT_THAT(Findings(), IsEmpty()); }

TEST_F(NetworkCheckTest, ACleanNetworkHasNothingToTell) {
    Feeding("input in { float { 0 0 1 0 %g } }").inputs[0]->arg = 1;
    EXPECT_THAT(Findings(), IsEmpty());
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(NetworkCheckTest, ABoxThatFeedsNothingIsAWarning) {
    Box("Noise", kSource, 3);
    EXPECT_THAT(Findings(),
                ElementsAre("warning: Noise_3: feeds nothing; its code is generated all the same"));
}

TEST_F(NetworkCheckTest, OneWireIsEnoughToFeed) {
    COpBox& box = Box("Noise", "output a { float out } output b { float out }", 3);
    test::Wire(box, 1, Surface(), 0);
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, ASurfaceThatNothingFeedsIsAWarning) {
    Surface(4);
    EXPECT_THAT(Findings(), ElementsAre("warning: Surface_4: nothing is wired to it"));
}

TEST_F(NetworkCheckTest, ABoxWithoutAnyButtonIsLeftInPeace) {
    Box("Note", "boxhelp\n{\nA note.\n}\n", 1);
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, AnInputWithoutAnyValueIsAnError) {
    Feeding("input in { string { \"\" } }");
    EXPECT_THAT(Findings(), ElementsAre("error: Box_1 in: nothing is wired to it, and it has no value"));
}

TEST_F(NetworkCheckTest, AFixedTextIsAValue) {
    Feeding("input in { string { \"\" } }").inputs[0]->fixedtext = "P";
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, AnArgumentNeedsNoValue) {
    Feeding("input in { string { \"\" } }").inputs[0]->arg = 1;
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, CastsThatDifferAlongAWireAreAWarning) {
    COpBox& source = Box("Noise", kSource, 1);
    COpBox& surface = Box("Surface", "input shade { rgb { 0 0 0 %g } float { 0 0 1 0 %g } }", 2);
    test::Wire(source, 0, surface, 0);
    surface.inputs[0]->SetCast(static_cast<size_t>(surface.inputs[0]->FindCast("rgb")));
    EXPECT_THAT(Findings(),
                ElementsAre("warning: Surface_2 shade: takes rgb and is fed float by Noise_1 out"));
    surface.inputs[0]->SetCast(static_cast<size_t>(surface.inputs[0]->FindCast("float")));
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, AnOutputWithoutATypeFitsEveryInput) {
    COpBox& source = Box("Noise", kSource, 1);
    source.outputs[0]->values.clear();
    test::Wire(source, 0, Surface(), 0);
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, TwoArgumentsOfOneNameAreAWarning) {
    for (const int wid : {1, 2}) {
        COpButton& input = *Feeding("input in { float { 0 0 1 0 %g } }", wid).inputs[0];
        input.arg = 1;
        input.argname = "Ks";
    }
    EXPECT_THAT(Findings(), ElementsAre("warning: Box_2 in: is the argument Ks, as is Box_1 in"));
}

TEST_F(NetworkCheckTest, TwoArgumentsOfOneNameAndTwoTypesAreAnError) {
    for (const int wid : {1, 2}) {
        COpButton& input =
            *Feeding(wid == 1 ? "input in { float { 0 0 1 0 %g } }" : "input in { string { a } }", wid)
                 .inputs[0];
        input.arg = 1;
        input.argname = "Ks";
    }
    EXPECT_THAT(Findings(), ElementsAre("error: Box_2 in: is the argument Ks of another type than Box_1 in"));
}

TEST_F(NetworkCheckTest, AnArgumentWithAFixedTextIsNoArgumentOfTheShader) {
    for (const int wid : {1, 2}) {
        COpButton& input = *Feeding("input in { float { 0 0 1 0 %g } }", wid).inputs[0];
        input.arg = 1;
        input.argname = "Ks";
        if (wid == 2) input.fixedtext = "1";
    }
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, AWiredArgumentIsNoArgumentOfTheShader) {
    COpBox& source = Feeding("input in { float { 0 0 1 0 %g } }", 1);
    COpBox& other = Feeding("input in { float { 0 0 1 0 %g } }", 2);
    for (COpBox* box : {&source, &other}) {
        box->inputs[0]->arg = 1;
        box->inputs[0]->argname = "Ks";
    }
    test::Wire(source, 0, other, 0);
    EXPECT_THAT(Findings(), ElementsAre("warning: Box_2 in: is an argument, which counts for nothing while "
                                        "Box_1 out is wired to it"))
        << "and nothing of two that share a name";
}

TEST_F(NetworkCheckTest, ATiebackThatLeadsNowhereIsAnError) {
    COpBox& box = Feeding("input in { float { 0 0 1 0 %g } }");
    box.outputs[0]->tieback = "in";
    EXPECT_THAT(Findings(), IsEmpty());
    box.outputs[0]->tieback = "gone";
    EXPECT_THAT(Findings(),
                ElementsAre("error: Box_1 out: passes through gone, which is not there any more"));
}

TEST_F(NetworkCheckTest, EachBoxOfACircleIsAnError) {
    COpBox& one = Add(test::MakeLink("One", 1));
    COpBox& other = Add(test::MakeLink("Other", 2));
    test::Wire(one, 0, other, 0);
    test::Wire(other, 0, one, 0);
    EXPECT_THAT(
        Findings(),
        ElementsAre("error: One_1: is part of a circle of wires, so no code is generated for it",
                    "warning: One_1: its operator has no templates, so nothing writes its outputs",
                    "error: Other_2: is part of a circle of wires, so no code is generated for it",
                    "warning: Other_2: its operator has no templates, so nothing writes its outputs"));
}

TEST_F(NetworkCheckTest, MoreBoxesOfAnOperatorThanItAllowsAreOneWarning) {
    for (const int wid : {1, 2, 3, 4}) Box("Only", "defs { maxinstances 2 }", wid);
    EXPECT_THAT(Findings(),
                ElementsAre("warning: Only_3: is one more than the 2 that Only allows on a desk"));
    document.m_boxes.pop_back();
    document.m_boxes.pop_back();
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, BoxesAreLookedAtInTheOrderOfTheirNumbers) {
    Box("A", kSource, 10);
    Box("B", kSource, 9);
    Box("C", "input in { string { \"\" } } output out { float out }", 2);
    EXPECT_THAT(Findings(), ElementsAre("warning: C_2: feeds nothing; its code is generated all the same",
                                        "error: C_2 in: nothing is wired to it, and it has no value",
                                        "warning: B_9: feeds nothing; its code is generated all the same",
                                        "warning: A_10: feeds nothing; its code is generated all the same"));
}

TEST(Finding, ATextNamesWhatItIsAbout) {
    using Severity = Finding::Severity;
    EXPECT_EQ((Finding{Severity::kError, "A_1", "in", "is wrong"}).Text(), "error: A_1 in: is wrong");
    EXPECT_EQ((Finding{Severity::kWarning, "A_1", {}, "is odd"}).Text(), "warning: A_1: is odd");
    EXPECT_EQ((Finding{Severity::kWarning, {}, {}, "all is odd"}).Text(), "warning: all is odd");
}

TEST_F(NetworkCheckTest, TypesThatAreOneWordOfTheTargetAreNoDifference) {
    COpBox& source = Box("Noise", "output out { xyz out }", 1);
    COpBox& surface = Box("Surface", "input shade { rgb { 0 0 0 %g } }", 2);
    test::Wire(source, 0, surface, 0);
    const std::string alarm = "warning: Surface_2 shade: takes rgb and is fed xyz by Noise_1 out";
    EXPECT_THAT(Findings(), ElementsAre(alarm));
    host.GetSite().types.SetWord("rgb", "vec3");
    EXPECT_THAT(Findings(), ElementsAre(alarm));
    host.GetSite().types.SetWord("xyz", "vec3");
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, AnArgumentThatAWireSilencesIsAWarning) {
    COpBox& source = Box("Noise", kSource, 1);
    COpBox& surface = Surface(2);
    test::Wire(source, 0, surface, 0);
    surface.inputs[0]->arg = 1;
    const std::vector<Finding> findings = CheckNetwork(document, host.GetSite());
    EXPECT_THAT(TextsOf(findings),
                ElementsAre("warning: Surface_2 shade: is an argument, which counts for nothing "
                            "while Noise_1 out is wired to it"));
    EXPECT_EQ(findings.front().mend, Finding::Mend::kTakeNoArgument);
    surface.inputs[0]->Disconnect();
    surface.inputs[0]->fixedtext = "P";
    test::Wire(source, 0, surface, 0);
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, ABoxWithoutTemplatesWritesNoOutput) {
    COpBox& bare = Add(test::MakeBox("Bare", kSource, 1));
    test::Wire(bare, 0, Surface(), 0);
    EXPECT_THAT(Findings(),
                ElementsAre("warning: Bare_1: its operator has no templates, so nothing writes its outputs"));
    bare.lacksTemplates = true;
    EXPECT_THAT(Findings(),
                ElementsAre("warning: Bare_1: is a copy without templates, so it makes no code until "
                            "the document is saved and opened again"));
}

TEST_F(NetworkCheckTest, AnOutputThatNothingHasToWriteNeedsNoTemplates) {
    COpBox& relay = Add(test::MakeBox("Relay",
                                      "input in { float { 0 0 1 0 %g } } output tieback=in a { float out } "
                                      "output fixedvalue=1 b { float out }",
                                      1));
    COpBox& surface = Box("Surface", "input a { float { 0 0 1 0 %g } } input b { float { 0 0 1 0 %g } }", 2);
    test::Wire(relay, 0, surface, 0);
    test::Wire(relay, 1, surface, 1);
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, ANetworkWithoutABoxForThePictureIsBlackWhereTheLibrarySaysSo) {
    Box("Sink", kSurface, 1);
    const std::string unwired = "warning: Sink_1: nothing is wired to it";
    EXPECT_THAT(Findings(), ElementsAre(unwired));
    host.GetSite().settings.Store(kOutputBoxesKey, " Surface  Light Volume ");
    EXPECT_THAT(Findings(),
                ElementsAre("warning: no box feeds the output: the picture will be black; add a Surface, "
                            "Light or Volume box and wire the network to it",
                            unwired));
    const Finding first = CheckNetwork(document, host.GetSite()).front();
    EXPECT_EQ(first.mend, Finding::Mend::kAddOutputBox);
    EXPECT_EQ(first.operatorName, "Surface");
    host.GetSite().settings.Store(kOutputBoxesKey, "Light Sink");
    EXPECT_THAT(Findings(), ElementsAre(unwired));
    document.m_boxes.clear();
    EXPECT_THAT(Findings(), IsEmpty());
}

TEST_F(NetworkCheckTest, ANetworkOfAnotherLibraryThanTheSettingsAreOfIsAnError) {
    Feeding("input in { float { 0 0 1 0 %g } }");
    host.GetSite().settingsLibrary = "mini";
    EXPECT_THAT(Findings(), IsEmpty());
    host.GetSite().settingsLibrary = "other";
    EXPECT_THAT(
        Findings(),
        ElementsAre(
            "error: the network is of the library mini, but the settings in force are those of other: "
            "start the program with TAVRN_LIB=mini"));
}

class DocumentFormCheckTest : public test::DocumentTest {
  protected:
    DocumentFormCheckTest() {
        host.AddOperator("Link", "input in { float { 0 0 1 0 %g } } output out { float out }");
        document.m_renderOptions["DEPTH"] = "2";
    }
    std::vector<std::string> Findings(const std::string& text) {
        const DocumentForm form = ReadDocument(test::ArchiveOf(text, "doc.tvn"));
        return TextsOf(CheckDocumentForm(form, document, host.Registry()));
    }
};

TEST_F(DocumentFormCheckTest, AFileWithKnownNamesHasNothingToTell) {
    EXPECT_THAT(Findings(""), IsEmpty());
    EXPECT_THAT(Findings("opdesk { opbox { filename Link wid 1 } }\nrenderoptions { setenv DEPTH 3 }"),
                IsEmpty());
}

TEST_F(DocumentFormCheckTest, WhatADocumentStoresOfItselfIsClean) {
    Add(test::MakeLink("Link", 1)).inputs[0]->comments = "opbox { filename Gone";
    document.m_renderOptions["DEPTH"] = "filename";
    document.customshaderhelp = "The filename is in opbox { filename Gone }\r\nsetenv X 1\r\n}\r\nsetenv Y 2";
    EXPECT_THAT(Findings(document.Store()), IsEmpty());
}

TEST_F(DocumentFormCheckTest, EachOperatorThatTheLibraryLacksIsOneError) {
    EXPECT_THAT(
        Findings("opdesk { opbox { filename Gone wid 1 } opbox { filename Link wid 2 }\n"
                 "opbox { filename \"My Box\" wid 3 } opbox { filename Gone wid 4 } }"),
        ElementsAre("error: the library has no operator Gone", "error: the library has no operator My Box"));
}

TEST_F(DocumentFormCheckTest, EachRenderOptionThatTheFormLacksIsOneWarning) {
    EXPECT_THAT(Findings("renderoptions { setenv GONE 1 setenv DEPTH 2 setenv LOST \"a b\" setenv GONE 2 }"),
                ElementsAre("warning: the form has no render option GONE",
                            "warning: the form has no render option LOST"));
}

TEST_F(DocumentFormCheckTest, TheValueOfAnOptionIsNoKeyword) {
    EXPECT_THAT(Findings("renderoptions { setenv DEPTH setenv setenv DEPTH filename setenv LOST 1 }"),
                ElementsAre("warning: the form has no render option LOST"));
}

TEST_F(DocumentFormCheckTest, AFileThatIsCutShortIsLookedAtAsFarAsItGoes) {
    EXPECT_THAT(Findings("opdesk { opbox { filename Gone wid 1 } opbox { filename"),
                ElementsAre("error: the library has no operator Gone"));
    EXPECT_THAT(Findings("renderoptions { setenv LOST 1 setenv"),
                ElementsAre("warning: the form has no render option LOST"));
    EXPECT_THAT(Findings("customshaderhelp\n{\nfilename"), IsEmpty());
}

TEST_F(DocumentFormCheckTest, ALookIntoAFileLeavesEverythingAsItIs) {
    const std::string before = document.Store();
    EXPECT_THAT(
        Findings("tavrn-renderer other\nopdesk { opbox { filename Link wid 1 } opbox { filename Gone } }\n"
                 "renderoptions { setenv DEPTH 3 setenv LOST 1 }\ntoolbar { an error"),
        ElementsAre("error: the library has no operator Gone",
                    "warning: the form has no render option LOST"));
    EXPECT_TRUE(std::filesystem::is_empty(host.GetSite().directories.workDir)) << "no definition was read";
    EXPECT_THAT(host.usedLibraries, IsEmpty());
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(host.Sink().log, "");
    EXPECT_EQ(document.Store(), before);
}

}  // namespace
}  // namespace tavrin
