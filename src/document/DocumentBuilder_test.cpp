// SPDX-License-Identifier: Apache-2.0
// What the text says and what the library makes of it come together in the order of the text.
#include "document/DocumentBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "document/DocumentReader.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using testing::ElementsAre;
using testing::IsEmpty;

class DocumentBuilder : public test::DocumentTest {
  protected:
    DocumentBuilder() {
        host.startsProcesses = false;
        host.AddOperator("Link", "input in { float { 0 0 1 0 %g } } output out { float out }");
    }
    // A box of that operator, up to the names of its button.
    static std::string BoxUpTo(const std::string& button) {
        return "opdesk { opbox { filename Link wid 4\nopbutton.input " + button;
    }
};

TEST_F(DocumentBuilder, AlertsOfTheTextAndOfTheLibraryComeInTheOrderOfTheText) {
    EXPECT_FALSE(
        Load("exportoptions {\nbogus 1\ntavrn-renderer ../x\nexportoptions {\nother 1\ntoolbar {\nno"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 3: unknown export option: bogus",
                                      "doc.tvn near line 3: the library name \"../x\" leads out of the "
                                      "installation; reading on with mini",
                                      "doc.tvn near line 6: unknown export option: other",
                                      "doc.tvn near line 7: unexpected input"));
}

TEST_F(DocumentBuilder, NothingIsToldOfWhatStandsBehindTheFirstStop) {
    EXPECT_FALSE(Load("opdesk { opbox { filename Gone }\nbogus } exportoptions {\nbogus 1\n"));
    EXPECT_THAT(Alerts(), ElementsAre("Gone: unknown operator name"));
    host.Sink().alerts.clear();
    EXPECT_FALSE(Load(BoxUpTo("other other {\nbogus")));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 2: undefined input other specified"));
}

TEST_F(DocumentBuilder, AWarningStandsBeforeTheStopBehindIt) {
    EXPECT_FALSE(
        Load("opdesk { opbox { filename Link wid 4\nopbutton.vinput in in { currentcast float {\nbogus"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 2: input in not of type vinput",
                                      "doc.tvn near line 3: unexpected input \"bogus\""));
}

TEST_F(DocumentBuilder, WhatStandsBeforeAStopWithinAButtonIsKept) {
    EXPECT_FALSE(Load(BoxUpTo("in in { opbuttondefs { currentcast gone wwms { pin 1 float 0.25 2")));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 2: unexpected input"))
        << "the cast is not looked for";
    const COpBox& box = BoxAt(document, 0);
    EXPECT_EQ(box.wid, 4);
    EXPECT_EQ(box.inputs.at(0)->pin, 1);
    const auto& value = static_cast<const COpValueFloat&>(*box.inputs.at(0)->values.at(0));
    EXPECT_EQ(value.value, 0.25F);
    EXPECT_EQ(value.min, 2.0F);
    EXPECT_EQ(value.max, 1.0F) << "of the definition";
}

TEST_F(DocumentBuilder, ABoxHasItsSettingsWhereTheyStand) {
    const std::string button = "in in { opbuttondefs { currentcast gone wwms { } } }\n";
    EXPECT_TRUE(Load("opdesk { opbox { filename Link opbutton.input " + button + " wid 4 xypos 1 2 } }"));
    ASSERT_EQ(Alerts().size(), 1U);
    EXPECT_TRUE(Alerts()[0].starts_with("doc.tvn near line 1: illegal cast gone for button Link_0:in."))
        << Alerts()[0];
    EXPECT_EQ(BoxAt(document, 0).wid, 4);
    EXPECT_EQ(BoxAt(document, 0).xypos[1], 2.0F);
    document.DeleteContents();
    EXPECT_FALSE(Load("opdesk { opbox { filename Link xypos 1 2 opbutton.input other other { } xypos 3 4"));
    EXPECT_EQ(BoxAt(document, 0).xypos[0], 1.0F) << "what stands behind the stop is not taken";
}

TEST_F(DocumentBuilder, TheDeskIsTheFirstAndAFormWithoutOneHasNone) {
    const DocumentForm form = ReadDocument(
        test::ArchiveOf("renderoptions { } opdesk { opbox { filename Link wid 1 } } opdesk { lock 1 }"));
    EXPECT_TRUE(document.LoadDesk(form));
    EXPECT_EQ(document.m_boxes.size(), 1U);
    EXPECT_EQ(document.lock, 0);
    EXPECT_FALSE(document.LoadDesk(ReadDocument(test::ArchiveOf("renderoptions { }"))));
    EXPECT_THAT(Alerts(), IsEmpty());
}

}  // namespace
}  // namespace tavrin
