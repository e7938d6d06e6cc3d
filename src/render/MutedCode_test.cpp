// SPDX-License-Identifier: Apache-2.0
// What a muted box leaves in the text of a shader: nothing of its own, and for each output an input of its
// type.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "render/NetworkCheck.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::Wire;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kSource =
    "output f { float out } output c { rgb out }\ncodegen.main-body append\nf, c = source(TAVRN_BoxWid);\n"
    "<<EOT>>\n";
// The second input is the first of its type.
constexpr const char* kMix =
    "input amount { float { 0.5 0 1 0 %g } } input first { rgb { 1 0 0 \"v(%g %g %g)\" } }\n"
    "input second { rgb { 0 0 1 \"v(%g %g %g)\" } } output result { rgb out } output weight { float out }\n"
    "codegen.main-body append\nresult = mix(first, second, amount);\n<<EOT>>\n";
constexpr const char* kSink =
    "input f { float { 0.25 0 1 0 %g } } input c { rgb { 1 1 1 \"v(%g %g %g)\" } }\n"
    "codegen.main-body append\nshow(f, c, TAVRN_IsConnect_c);\n<<EOT>>\n";

class MutedCode : public test::DocumentTest {
  protected:
    MutedCode() {
        document.customshaderhelp.clear();
        host.GetSite().types.SetDataType("float", {"float ", ";"});
        host.GetSite().types.SetDataType("rgb", {"color ", ";"});
        siteCodeGen.m_lineComment = "//";
    }
    COpBox& Put(const std::string& name, const char* definition, int muted = 0) {
        COpBox& box = Add(MakeBox(name, definition, ++m_lastWid));
        box.muted = muted;
        return box;
    }
    // The statements, without the blanks before them.
    std::vector<std::string> Statements() {
        std::vector<std::string> statements;
        for (const std::string& line : session.Generate().code) {
            const size_t begin = line.find_first_not_of(' ');
            if (begin != std::string::npos) statements.push_back(line.substr(begin));
        }
        return statements;
    }
    std::string Shown() {
        for (const std::string& line : Statements()) {
            if (line.starts_with("show(")) return line;
        }
        return {};
    }
    std::vector<std::string> Findings() {
        std::vector<std::string> texts;
        for (const Finding& finding : CheckNetwork(document, host.GetSite())) texts.push_back(finding.Text());
        return texts;
    }

    CCodeGen siteCodeGen;
    RenderSession session{document, host.GetSite(), siteCodeGen};

  private:
    int m_lastWid = 0;
};

TEST_F(MutedCode, TheFirstInputOfItsTypeStandsForAnOutput) {
    COpBox& source = Put("Source", kSource);
    COpBox& mix = Put("Mix", kMix);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 0, mix, 0);
    Wire(source, 1, mix, 1);
    Wire(mix, 0, sink, 1);
    Wire(mix, 1, sink, 0);
    EXPECT_EQ(Shown(), "show(Mix_2_weight, Mix_2_result, connectednoarg);");
    mix.muted = 1;
    EXPECT_THAT(Statements(), ElementsAre("float Source_1_f;", "color Source_1_c;", "// Source_1",
                                          "Source_1_f, Source_1_c = source(1);", "// Sink_3",
                                          "show(Source_1_f, Source_1_c, connectednoarg);"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(MutedCode, AnInputThatNothingFeedsStandsForItWithItsOwnValue) {
    COpBox& mix = Put("Mix", kMix, 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(mix, 0, sink, 1);
    EXPECT_EQ(Shown(), "show(0.25, v(1 0 0), connectednoarg);");
    mix.inputs[1]->fixedtext = "N";
    EXPECT_EQ(Shown(), "show(0.25, N, connectednoarg);");
    mix.inputs[1]->fixedtext.clear();
    mix.inputs[1]->arg = 1;
    EXPECT_EQ(Shown(), "show(0.25, Mix_1_first, connectednoarg);");
    mix.inputs[1]->argname = "tint";
    EXPECT_EQ(Shown(), "show(0.25, tint, connectednoarg);");
}

TEST_F(MutedCode, TheTypeIsThatOfTheCasts) {
    COpBox& source = Put("Source", kSource);
    COpBox& either = Put("Either",
                         "input a { float { 0 0 1 0 %g } rgb { 1 1 1 \"v(%g %g %g)\" } }\n"
                         "input b { rgb { 0 1 0 \"v(%g %g %g)\" } } output o { float out rgb out }\n",
                         1);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 0, either, 0);
    Wire(either, 0, sink, 1);
    EXPECT_EQ(Shown(), "show(0.25, Source_1_f, connectednoarg);");
    either.outputs[0]->SetCast(1);
    EXPECT_EQ(Shown(), "show(0.25, v(0 1 0), connectednoarg);") << "b is the first rgb now";
    either.inputs[0]->SetCast(1);
    EXPECT_EQ(Shown(), "show(0.25, Source_1_f, connectednoarg);");
}

TEST_F(MutedCode, AnOutputWithoutATypeTakesTheFirstInput) {
    COpBox& source = Put("Source", kSource);
    COpBox& plain = Put("Plain", "input a { float { 0 0 1 0 %g } } output o { }\n", 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 0, plain, 0);
    Wire(plain, 0, sink, 0);
    EXPECT_THAT(Shown(), HasSubstr("show(Source_1_f, "));
}

TEST_F(MutedCode, WithoutAnInputOfItsTypeWhatItFeedsTakesItsOwnValue) {
    COpBox& source = Put("Source", kSource, 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 0, sink, 0);
    Wire(source, 1, sink, 1);
    EXPECT_EQ(Shown(), "show(0.25, v(1 1 1), defaultnoarg);");
    sink.inputs[0]->arg = 1;
    EXPECT_EQ(Shown(), "show(Sink_2_f, v(1 1 1), defaultnoarg);");
    EXPECT_THAT(document.CollectUnconnectedInputs(), Contains(sink.inputs[0].get()));
}

TEST_F(MutedCode, AVinputStandsForAnOutputByItsFirstInstance) {
    COpBox& source = Put("Source", kSource);
    COpBox& layers =
        Put("Layers", "vinput l { vinstances 2 float { 0.75 0 1 0 %g } } output o { float out }\n", 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 0, layers, 1);
    Wire(layers, 0, sink, 0);
    EXPECT_THAT(Shown(), HasSubstr("show(0.75, "));
    Wire(source, 0, layers, 0);
    EXPECT_THAT(Shown(), HasSubstr("show(Source_1_f, "));
}

TEST_F(MutedCode, AVinputThatIsFedByMutedBoxesJoinsWhatStandsForThem) {
    COpBox& source = Put("Source", kSource);
    COpBox& muted = Put("Mix", kMix, 1);
    COpBox& layers = Put("Layers",
                         "vinput l { vinstances 2 vargseparator \", \" rgb { 0 0 0 \"v(%g %g %g)\" } }\n"
                         "codegen.main-body append\nall(l);\n<<EOT>>\n");
    Wire(source, 1, muted, 1);
    Wire(muted, 0, layers, 0);
    Wire(muted, 1, layers, 1);
    EXPECT_THAT(Statements(), Contains("all(Source_1_c, 0.5);"));
}

TEST_F(MutedCode, ATiebackStaysWhatItIsAndComesBeforeTheType) {
    COpBox& source = Put("Source", kSource);
    COpBox& relay = Put("Relay",
                        "input a { rgb { 0 0 0 \"v(%g %g %g)\" } } input b { float { 0.125 0 1 0 %g } }\n"
                        "output tieback=b o { rgb out }\n",
                        1);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 1, relay, 0);
    Wire(relay, 0, sink, 1);
    EXPECT_EQ(Shown(), "show(0.25, 0.125, connectednoarg);");
    Wire(source, 0, relay, 1);
    EXPECT_EQ(Shown(), "show(0.25, Source_1_f, connectednoarg);");
}

TEST_F(MutedCode, AFixedValueGivesPlaceToAnInput) {
    COpBox& source = Put("Source", kSource);
    COpBox& fixed =
        Put("Fixed",
            "input a { float { 0 0 1 0 %g } } output fixedvalue=\"g(TAVRN_BoxWid)\" o { float out }\n"
            "output fixedvalue=\"N\" n { rgb out }\n");
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 0, fixed, 0);
    Wire(fixed, 0, sink, 0);
    Wire(fixed, 1, sink, 1);
    EXPECT_EQ(Shown(), "show(g(2), N, connectednoarg);");
    fixed.muted = 1;
    EXPECT_EQ(Shown(), "show(Source_1_f, v(1 1 1), defaultnoarg);") << "nothing of it is an rgb input";
}

TEST_F(MutedCode, AChainOfMutedBoxesIsPassedFromEndToEnd) {
    COpBox* last = &Put("Source", kSource);
    for (int i = 0; i < 3000; ++i) {
        COpBox& box = Put("Link", "input a { float { 0 0 1 0 %g } } output o { float out }\n", 1);
        Wire(*last, 0, box, 0);
        last = &box;
    }
    COpBox& sink = Put("Sink", kSink);
    Wire(*last, 0, sink, 0);
    EXPECT_THAT(Shown(), HasSubstr("show(Source_1_f, "));
    last->inputs[0]->Disconnect();
    EXPECT_THAT(Shown(), HasSubstr("show(0, ")) << "the literal of the last one";
}

TEST_F(MutedCode, AChainPastABoxWithNothingOfTheTypeEndsInTheLiteralBehindIt) {
    COpBox& source = Put("Source", kSource, 1);
    COpBox& mix = Put("Mix", kMix, 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 1, mix, 1);
    Wire(mix, 0, sink, 1);
    EXPECT_EQ(Shown(), "show(0.25, v(1 0 0), connectednoarg);");
}

TEST_F(MutedCode, ACircleOfMutedBoxesThatAFileHasBroughtIsTold) {
    const char* link = "input a { float { 0 0 1 0 %g } } output o { float out }\n";
    COpBox& first = Put("First", link, 1);
    COpBox& second = Put("Second", link, 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(first, 0, second, 0);
    Wire(second, 0, first, 0);
    Wire(second, 0, sink, 0);
    EXPECT_EQ(Shown(), "show(, v(1 1 1), defaultnoarg);");
    EXPECT_THAT(Findings(),
                Contains("error: Sink_3 f: is fed by muted boxes that feed one another: cut a wire "
                         "between them"));
    EXPECT_THAT(Alerts(),
                Contains("Second_2 o: the way through muted boxes leads back to itself; cut one of the "
                         "connections between"));
}

TEST_F(MutedCode, TheArgumentsOfAMutedBoxStayThoseOfTheShader) {
    COpBox& mix = Put("Mix", kMix);
    mix.inputs[0]->arg = mix.inputs[1]->arg = 1;
    const auto before = document.CollectUnconnectedInputs();
    mix.muted = 1;
    EXPECT_EQ(document.CollectUnconnectedInputs(), before);
}

TEST_F(MutedCode, AMutedBoxThatFeedsNothingIsLeftOut) {
    COpBox& source = Put("Source", kSource);
    COpBox& sink = Put("Sink", kSink, 1);
    Wire(source, 0, sink, 0);
    EXPECT_EQ(Shown(), "");
    EXPECT_THAT(Statements(), Contains("Source_1_f, Source_1_c = source(1);"));
}

TEST_F(MutedCode, TheLinesKnowTheirBoxesStill) {
    COpBox& source = Put("Source", kSource);
    COpBox& mix = Put("Mix", kMix, 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 1, mix, 1);
    Wire(mix, 0, sink, 1);
    const auto text = session.Generate();
    for (size_t line = 0; line < text.code.size(); ++line) {
        if (text.code[line].find("show(") == std::string::npos) continue;
        EXPECT_EQ(text.lines.Find(line + 1).value_or(LinePlace{}).box, "Sink_3");
        return;
    }
    FAIL() << "the sink's line is missing";
}

// The check.

TEST_F(MutedCode, TheCheckNamesMutedBoxesAndTakesTypesPastThem) {
    COpBox& source = Put("Source", kSource);
    COpBox& either = Put("Either", "input a { rgb { 1 1 1 \"v(%g %g %g)\" } } output o { rgb out }\n", 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 0, either, 0);
    Wire(either, 0, sink, 1);
    EXPECT_THAT(Findings(), Contains("warning: Either_2: is muted, so no code is generated for it"));
    EXPECT_THAT(Findings(), Contains("warning: Sink_3 c: takes rgb and is fed float by Source_1 f"));
    either.muted = 0;
    EXPECT_THAT(Findings(), Not(Contains(HasSubstr("is muted"))));
    EXPECT_THAT(Findings(), Not(Contains(HasSubstr("Sink_3 c: takes rgb"))));
}

TEST_F(MutedCode, TheCheckTellsOfAWireThatCarriesNothing) {
    COpBox& source = Put("Source", kSource, 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(source, 0, sink, 0);
    EXPECT_THAT(Findings(),
                Contains("warning: Sink_2 f: takes its own value, since Source_1 f is muted and no input of "
                         "its box has its type"));
}

TEST_F(MutedCode, TheCheckPassesOverInputsOfAMutedBoxThatStandForNothing) {
    COpBox& mix = Put("Mix", kMix, 1);
    COpBox& sink = Put("Sink", kSink);
    Wire(mix, 0, sink, 1);
    mix.inputs[2]->values.clear();  // which no output is like
    EXPECT_THAT(Findings(), Not(Contains(HasSubstr("Mix_1 second"))));
    mix.muted = 0;
    EXPECT_THAT(Findings(), Contains(HasSubstr("Mix_1 second")));
}

}  // namespace
}  // namespace tavrin
