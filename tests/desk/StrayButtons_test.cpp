// SPDX-License-Identifier: Apache-2.0
// Buttons of a document that the definition of their operator does not have.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/OpDesk.h"
#include "document/DocumentReader.h"
#include "document/DocumentWriter.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::CrLfText;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string Input(const std::string& name, const std::string& value = "") {
    return "opbutton.input " + name + " " + name + " { x { currentcast float wwms { " + value + " } } }\n";
}
std::string Output(const std::string& name, const std::string& kind = "output") {
    return "opbutton." + kind + " " + name + " " + name + " { x { currentcast float wwms { } } }\n";
}

std::vector<std::string> NamesOf(const std::vector<std::unique_ptr<COpButton>>& buttons) {
    std::vector<std::string> names;
    for (const auto& button : buttons)
        names.push_back((button->stray != nullptr ? "stray " : "") + button->DisplayName());
    return names;
}

class StrayButtons : public test::DocumentTest {
  protected:
    StrayButtons() {
        host.startsProcesses = false;
        host.AddOperator(
            "Mix",
            "input a { float { 0 0 1 0 %g } } input b { float { 0 0 1 0 %g } } input c { float { 0 0 1 "
            "0 %g } } vinput v { float { 0 0 1 0 %g } } output o { float out } output p { float out }");
        host.AddOperator("Source", "output o { float out }");
        host.GetSite().settings.Store("document.placeholders", "1");
    }
    static std::string Box(const std::string& buttons, int wid = 1) {
        return "opbox { filename Mix wid " + std::to_string(wid) + "\n" + buttons + "}\n";
    }
    const COpBox& LoadBox(const std::string& buttons, const std::string& behind = "") {
        document.DeleteContents();
        EXPECT_TRUE(Load("opdesk {\n" + Box(buttons) + "opbox { filename Source wid 2 }\n" + behind + "\n}"));
        return BoxAt(document, 0);
    }
    static float ValueOf(const COpButton& button) {
        return static_cast<const COpValueFloat&>(*button.values.at(0)).value;
    }
};

TEST_F(StrayButtons, AnUnknownInputStandsWhereTheFileHasIt) {
    const COpBox& box =
        LoadBox(Input("a") + Input("lost", "float 0.5 0 1 0") + Input("b", "float 0.25 0 1 0"));
    EXPECT_THAT(NamesOf(box.inputs), ElementsAre("a", "stray lost", "b", "c"));
    EXPECT_EQ(ValueOf(*box.inputs[1]), 0.5F);
    EXPECT_EQ(ValueOf(*box.inputs[2]), 0.25F);
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 4: undefined input lost specified"));
    EXPECT_THAT(host.Sink().log,
                HasSubstr("WARNING: doc.tvn: 1 button is unknown to its operator; all is saved as it came"));
    EXPECT_FALSE(box.IsPlaceholder());
}

TEST_F(StrayButtons, OneAtTheFrontLeavesTheOthersFindable) {
    EXPECT_THAT(NamesOf(LoadBox(Input("x") + Input("y") + Input("a") + Input("z")).inputs),
                ElementsAre("stray x", "stray y", "a", "stray z", "b", "c"));
}

TEST_F(StrayButtons, EachIsToldOnceForItsOperator) {
    EXPECT_TRUE(
        Load("opdesk {\n" + Box(Input("lost"), 1) + Box(Input("lost"), 2) + Box(Input("other"), 3) + "}"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 3: undefined input lost specified"));
    EXPECT_THAT(host.Sink().log,
                "WARNING: doc.tvn near line 9: Mix: undefined input other specified\r\n"
                "WARNING: doc.tvn: 3 buttons are unknown to their operators; all is saved as it came\r\n");
}

TEST_F(StrayButtons, AnOutputTooManyIsStrayAndSoIsAnUnknownKind) {
    const COpBox& box = LoadBox(Output("o") + Output("p") + Output("q"));
    EXPECT_THAT(NamesOf(box.outputs), ElementsAre("o", "p", "stray q"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 5: undefined output q specified"));
    const COpBox& odd = LoadBox(Output("w", "weird") + Output("o"));
    EXPECT_THAT(NamesOf(odd.outputs), ElementsAre("stray w", "o", "p"));
    EXPECT_THAT(document.Store(), HasSubstr("opbutton.weird w w {"));
}

TEST_F(StrayButtons, TheyAreSavedAsTheyCame) {
    const std::string block =
        "opbutton.input \"lo st\" lo\\ st {# odd\n x { currentcast \"no cast\" wwms { argname \"%s\" "
        "float 1e0 0   1 0 } } }";
    LoadBox(Input("a") + block + "\n" + Input("b"));
    const std::string text = document.Store();
    EXPECT_THAT(text, HasSubstr("\r\n        " + block + "\r\n"));
    document.DeleteContents();
    EXPECT_TRUE(Load(text));
    EXPECT_EQ(document.Store(), text);
    const COpBox& copy = *document.m_boxes.front();
    EXPECT_THAT(WriteBox(COpBox(copy)), HasSubstr(block)) << "a clone has it too";
}

TEST_F(StrayButtons, WiresBehindItEndWhereTheFileMeantThemTo) {
    const COpBox& box =
        LoadBox(Input("a") + Input("lost") + Input("b") + Input("c"),
                "opconnects { opbox:S,2,o,0 -> opbox:Mix,1,b,2\nopbox:S,2,o,0 -> opbox:Mix,1,lost,1 }");
    EXPECT_FALSE(box.inputs[2]->connections.Empty());
    EXPECT_EQ(box.inputs[2]->name, "b");
    EXPECT_FALSE(box.inputs[1]->connections.Empty());
}

TEST_F(StrayButtons, InputsInAnotherOrderAreFoundByNameAndSoAreTheirWires) {
    const COpBox& box =
        LoadBox(Input("c", "float 3 0 9 0") + Input("a", "float 1 0 9 0") + Input("b", "float 2 0 9 0"),
                "opconnects { opbox:S,2,o,0 -> opbox:Mix,1,c,0 }");
    EXPECT_THAT(NamesOf(box.inputs), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(ValueOf(*box.inputs[0]), 1.0F);
    EXPECT_EQ(ValueOf(*box.inputs[1]), 2.0F);
    EXPECT_EQ(ValueOf(*box.inputs[2]), 3.0F);
    EXPECT_TRUE(box.inputs[0]->connections.Empty());
    EXPECT_FALSE(box.inputs[2]->connections.Empty());
}

TEST_F(StrayButtons, AnInputThatTheFileDoesNotKnowShiftsNoWire) {
    // The definition has got `a` before what the document was written with.
    const COpBox& box = LoadBox(Input("b") + Input("c"), "opconnects { opbox:S,2,o,0 -> opbox:Mix,1,c,1 }");
    EXPECT_FALSE(box.inputs[2]->connections.Empty());
    EXPECT_EQ(box.inputs[2]->name, "c");
}

TEST_F(StrayButtons, AListOfSomeInputsLeavesPositionsToTheNamesBesideThem) {
    const COpBox& box = LoadBox(Input("b"),
                                "opconnects { opbox:S,2,o,0 -> opbox:Mix,1,a,0\n"
                                "opbox:S,2,o,0 -> opbox:Mix,1,c,2 }");
    EXPECT_FALSE(box.inputs[0]->connections.Empty());
    EXPECT_TRUE(box.inputs[1]->connections.Empty());
    EXPECT_FALSE(box.inputs[2]->connections.Empty());
}

TEST_F(StrayButtons, CopiesOfAVinputStayTogether) {
    const std::string copies =
        "opbutton.vinput v v1 { x { currentcast float wwms { } } }\n"
        "opbutton.vinput v v2 { x { currentcast float wwms { } } }\n";
    EXPECT_THAT(NamesOf(LoadBox(Input("lost") + copies + Input("gone")).inputs),
                ElementsAre("stray lost", "a", "b", "c", "v1", "v2", "stray gone"));
}

TEST_F(StrayButtons, ItCannotBeTunedAndIsNoArgument) {
    LoadBox(Input("lost", "arg 1 float 1 0 1 0 rgb 1 1 1"));
    COpDesk desk(document, host);
    desk.OnInitialUpdate();
    desk.m_mouseBox = document.m_boxes.front().get();
    COpButton& stray = *desk.m_mouseBox->inputs.at(0);
    desk.m_mouseButton = &stray;
    desk.ToggleArgument();
    desk.ChooseCast(1);
    EXPECT_EQ(stray.arg, 1);
    EXPECT_EQ(stray.currentcast, 0U);
    for (const COpButton* input : document.CollectUnconnectedInputs()) EXPECT_NE(input, &stray);
}

TEST_F(StrayButtons, ThousandsInOneBoxAreRead) {
    std::string buttons;
    constexpr int kCount = 5000;
    for (int i = 0; i < kCount; ++i) buttons += Input("lost" + std::to_string(i));
    EXPECT_THAT(LoadBox(buttons + Input("c")).inputs, SizeIs(kCount + 3));
}

TEST_F(StrayButtons, WithoutTheSettingTheFirstStopsTheReading) {
    host.GetSite().settings.Store("document.placeholders", "0");
    EXPECT_FALSE(Load("opdesk {\n" + Box(Input("lost")) + "}"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 3: undefined input lost specified"));
    EXPECT_FALSE(Load("opdesk {\n" + Box(Input("b") + Input("a")) + "}")) << "looking forward only";
}

TEST_F(StrayButtons, AButtonThatTheTextEndsInLeavesItsPlaceToTheStop) {
    EXPECT_FALSE(Load("opdesk {\nopbox { filename Mix wid 1\nopbutton.input lost lost { x { currentcast"));
    EXPECT_THAT(Alerts(), ElementsAre("doc.tvn near line 3: unexpected input"));
    EXPECT_THAT(NamesOf(BoxAt(document, 0).inputs), ElementsAre("a", "b", "c", "v1"));
}

}  // namespace
}  // namespace tavrin
