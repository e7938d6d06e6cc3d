// SPDX-License-Identifier: Apache-2.0
// Documents with names of former times open, and are saved with those of now.
#include "library/Aliases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/OpDesk.h"
#include "library/OpRegistry.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char* kButtons = "input in { float { 0 0 1 0 %g } } output out { float out }\n";

class Aliases : public test::DocumentTest {
  protected:
    std::string Warnings() { return std::exchange(host.Sink().log, {}); }
    bool LoadBoxOf(const std::string& name, const std::string& buttons = "") {
        document.DeleteContents();
        return Load("opdesk {\nopbox { filename " + name + " wid 1\n" + buttons + "} }");
    }
};

TEST_F(Aliases, ADocumentWithTheFormerNameOfAnOperatorOpensAndIsSavedWithTheOneOfNow) {
    host.AddOperator("Fractal", std::string(kButtons) + "alias Turbulence\nalias \"Brown\"\n");
    for (const char* name : {"Turbulence", "tURBULENCE", "Brown"}) {
        EXPECT_TRUE(LoadBoxOf(name)) << name;
        EXPECT_EQ(BoxAt(document, 0).filename, "Fractal");
        EXPECT_THAT(document.Store(), HasSubstr("filename Fractal\r\n"));
    }
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(Warnings(), "");
}

TEST_F(Aliases, ThePreprocessedDefinitionDecides) {
    host.AddOperator("Fractal", std::string(kButtons) + "boxhelp {\nalias Turbulence of old\n}\n");
    EXPECT_FALSE(LoadBoxOf("Turbulence"));
    EXPECT_THAT(Alerts(), ElementsAre("Turbulence: unknown operator name"));
}

TEST_F(Aliases, TheFormerNameOfAButtonIsNoneOfItsOperator) {
    host.AddOperator("Fractal", "input in { alias\tTurbulence\nfloat { 0 0 1 0 %g } }\nalias\n Old\n");
    EXPECT_FALSE(LoadBoxOf("Turbulence"));
}

TEST_F(Aliases, WhatFailsOnTheWayToAnAliasIsNoAlertButAWarning) {
    host.AddOperator("Broken",
                     "icontext broken input left { float { 0 0 1 0 %g } }\nbogus\nalias Turbulence\n");
    host.AddOperator("Fractal", std::string(kButtons) + "alias Turbulence\n");
    EXPECT_TRUE(LoadBoxOf("Turbulence"));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_THAT(Warnings(), HasSubstr("unexpected input"));
    EXPECT_EQ(BoxAt(document, 0).filename, "Fractal");
    EXPECT_THAT(BoxAt(document, 0).inputs, SizeIs(1)) << "nothing of the other";
    EXPECT_EQ(BoxAt(document, 0).icontext, "");
}

TEST_F(Aliases, AnOperatorThatIsThereWins) {
    const std::string path = host.AddOperator("Fractal", std::string(kButtons) + "alias Noise\n");
    host.AddOperator("Noise", kButtons);
    EXPECT_TRUE(LoadBoxOf("Noise"));
    EXPECT_EQ(BoxAt(document, 0).filename, "Noise");
    EXPECT_TRUE(LoadBoxOf("Fractal"));
    EXPECT_TRUE(LoadBoxOf("Fractal"));
    EXPECT_EQ(Warnings(),
              "WARNING: alias Noise in " + path +
                  " is not heeded: it names an operator that is there, which stays what is meant by "
                  "it\r\n")
        << "once";
}

TEST_F(Aliases, OneThatNamesItselfIsTold) {
    const std::string path = host.AddOperator(
        "Fractal",
        "alias FRACTAL\ninput in { alias in float { 0 0 1 0 %g } } output o { alias o float out }");
    EXPECT_TRUE(LoadBoxOf("Fractal"));
    const std::string warnings = Warnings();
    EXPECT_THAT(warnings,
                HasSubstr("alias FRACTAL in " + path + " is not heeded: it names the operator itself"));
    EXPECT_THAT(warnings, HasSubstr("alias in in " + path + " is not heeded: it names the button itself"));
    EXPECT_THAT(warnings, HasSubstr("alias o in " + path + " is not heeded: it names the button itself"));
}

TEST_F(Aliases, OfTwoThatClaimAnOperatorsNameTheFirstOfTheScanWins) {
    const std::string first = host.AddOperator("First", std::string(kButtons) + "alias Old\n");
    const std::string second = host.AddOperator("Second", std::string(kButtons) + "alias old\n");
    EXPECT_TRUE(LoadBoxOf("Old"));
    EXPECT_TRUE(LoadBoxOf("OLD"));
    EXPECT_EQ(BoxAt(document, 0).filename, "First");
    EXPECT_EQ(Warnings(), "WARNING: alias Old in " + second + " is not heeded: it is claimed by " + first +
                              " before\r\n");
}

TEST_F(Aliases, AButtonIsFoundByItsFormerName) {
    host.AddOperator(
        "Mix",
        "input amount { alias strength float { 0 0 1 0 %g } }\nvinput layer { alias sheet string { "
        "value x } } output out { alias result float out }");
    EXPECT_TRUE(
        LoadBoxOf("Mix",
                  "opbutton.input strength strength { x { currentcast float wwms { float 0.5 0 1 0 } } }\n"
                  "opbutton.vinput sheet sheet1 { x { currentcast string wwms { string \"a\" } } }\n"
                  "opbutton.vinput sheet sheet2 { x { currentcast string wwms { string \"b\" } } }\n"));
    EXPECT_THAT(Alerts(), IsEmpty());
    const COpBox& box = BoxAt(document, 0);
    ASSERT_THAT(box.inputs, SizeIs(3));
    EXPECT_EQ(static_cast<const COpValueFloat&>(*box.inputs[0]->values[0]).value, 0.5F);
    EXPECT_EQ(box.inputs[2]->DisplayName(), "layer2");
    EXPECT_EQ(static_cast<const COpValueString&>(*box.inputs[2]->values[0]).value, "b");
    EXPECT_THAT(document.Store(), HasSubstr("opbutton.input amount amount"));
    EXPECT_TRUE(WasCalled(*box.outputs[0], "result"));
}

TEST_F(Aliases, ABlockWithAFormerNameUndoesNothingOfTheOneWithTheNameOfNow) {
    host.AddOperator("Mix", "input amount { alias strength float { 0 0 1 0 %g } }");
    const auto block = [](const std::string& name, const char* value) {
        return "opbutton.input " + name + " " + name + " { x { currentcast float wwms { float " + value +
               " 0 1 0 } } }\n";
    };
    const std::string both = block("amount", "0.25") + block("strength", "0.5");
    EXPECT_FALSE(LoadBoxOf("Mix", both));
    EXPECT_THAT(Alerts(), ElementsAre(HasSubstr("undefined input strength specified")));
    host.GetSite().settings.Store("document.placeholders", "1");
    EXPECT_TRUE(LoadBoxOf("Mix", both));
    const COpBox& box = BoxAt(document, 0);
    EXPECT_EQ(static_cast<const COpValueFloat&>(*box.inputs[0]->values[0]).value, 0.25F);
    ASSERT_THAT(box.inputs, SizeIs(2));
    EXPECT_NE(box.inputs[1]->stray, nullptr);
}

TEST_F(Aliases, AButtonThatIsThereWinsOverOneThatWasCalledSo) {
    const std::string path = host.AddOperator(
        "Mix",
        "input a { alias b alias old float { 0 0 1 0 %g } } input b { alias old float { 0 0 1 0 %g } }");
    EXPECT_TRUE(
        LoadBoxOf("Mix", "opbutton.input b b { x { currentcast float wwms { float 0.5 0 1 0 } } }\n"));
    EXPECT_EQ(static_cast<const COpValueFloat&>(*BoxAt(document, 0).inputs[1]->values[0]).value, 0.5F);
    const std::string warnings = Warnings();
    EXPECT_THAT(warnings,
                HasSubstr("alias b in " + path + " is not heeded: it names a button that is there"));
    EXPECT_THAT(warnings, HasSubstr("alias old in " + path +
                                    " is not heeded: it is claimed by another button before b\r\n"));
}

TEST_F(Aliases, TheToolbarAndTheDeskKnowFormerNames) {
    host.AddOperator("Fractal", std::string(kButtons) + "alias Turbulence\n");
    EXPECT_TRUE(Load("toolbar { button 0=Turbulence button 1=Nobody }"));
    EXPECT_THAT(document.toolbar, ElementsAre("Fractal", "Nobody"));
    COpDesk desk(document, host);
    desk.AddOperator("Turbulence");
    ASSERT_THAT(desk.m_pendingBoxes, SizeIs(1));
    EXPECT_EQ(desk.m_pendingBoxes[0]->filename, "Fractal");
    desk.AddOperator("Nobody");
    EXPECT_THAT(Alerts(), ElementsAre("Nobody: unknown operator name"));
}

TEST_F(Aliases, ASavedNetworkOfFormerTimesIsInserted) {
    host.AddOperator("Fractal", std::string(kButtons) + "alias Turbulence\n");
    host.AddOperator("Net", "tavrn-version 1\nopdesk { opbox { filename Turbulence wid 1 } }\n");
    COpDesk desk(document, host);
    desk.AddOperator("Net");
    EXPECT_THAT(Alerts(), IsEmpty());
    ASSERT_THAT(desk.m_pendingBoxes, SizeIs(1));
    EXPECT_EQ(desk.m_pendingBoxes[0]->BoxTitleWid(), "Fractal_1");
}

TEST_F(Aliases, FilesAreLookedThroughAgainAfterTheNextScan) {
    host.AddOperator("Fractal", kButtons);
    EXPECT_THAT(host.Registry().MayHaveBeenCalled("Old"), IsEmpty());
    host.AddOperator("Second", "   alias Old # once\n");
    ASSERT_THAT(host.Registry().MayHaveBeenCalled("old"), SizeIs(1));
    EXPECT_EQ(host.Registry().MayHaveBeenCalled("old")[0]->name, "Second");
    EXPECT_THAT(host.Registry().MayHaveBeenCalled("once"), IsEmpty());
}

TEST_F(Aliases, AnAliasWithoutANameIsUnexpectedInput) {
    host.AddOperator("Fractal", "alias");
    EXPECT_FALSE(LoadBoxOf("Fractal"));
    EXPECT_THAT(Alerts(), ElementsAre(HasSubstr("unexpected input")));
}

}  // namespace
}  // namespace tavrin
