// SPDX-License-Identifier: Apache-2.0
// How a box turns its templates into lines of the shader.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codegen/BoxMerge.h"
#include "library/CodeNames.h"
#include "library/OpBox.h"
#include "site/TypeTables.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::CollectingSink;
using testing::ElementsAre;
using testing::IsEmpty;

struct Box : COpBox {
    Box(std::string_view text, const std::string& title, int number) {
        Report report;
        CArchive archive = ArchiveOf(text, "box");
        EXPECT_TRUE(ReadDefinition(archive, "/nowhere", report)) << report.TakePending()->text;
        filename = title;
        wid = number;
    }
    COpButton& In(size_t index = 0) { return *inputs.at(index); }
    COpButton& Out(size_t index = 0) { return *outputs.at(index); }
};

std::string Block(const std::string& blockAndMode, const std::string& lines) {
    return "\ncodegen." + blockAndMode + "\n" + lines + "\n<<EOT>>\n";
}
std::string Body(const std::string& lines) { return Block("main-body append", lines); }

class BoxCode : public testing::Test {
  protected:
    BoxCode() { report.SetSink(&sink); }

    // Both passes over the boxes, in their order.
    void Generate(std::initializer_list<const COpBox*> boxes) {
        for (const COpBox* box : boxes) prepared.Prepare(*box, types);
        Merge(boxes);
    }
    void Merge(std::initializer_list<const COpBox*> boxes) {
        BoxMerge merge(shader);
        for (const COpBox* box : boxes) box->GenerateCode(merge, types, {prepared, &report});
    }
    std::vector<std::string> Lines(CCodeGen::BlockId block) const {
        std::vector<std::string> lines;
        for (size_t i = 0; i < shader.Block(block).Size(); ++i)
            lines.push_back(shader.Block(block).Line(i).text);
        return lines;
    }
    std::vector<std::string> BodyLines() const { return Lines(CCodeGen::kMainBody); }

    CollectingSink sink;
    Report report;
    TypeTables types;
    PreparedVariables prepared;
    CCodeGen shader;
};

const std::string kInput = "input a { float { 0.5 0 1 0 %g } }\n";
const std::string kOutput = "output out { float out }\n";

// The label

TEST_F(BoxCode, EachBoxStartsWithAnEmptyLineAndItsName) {
    shader.m_lineComment = "//";
    Box first(Body("one;"), "Noise", 1);
    Box second(Body("two;"), "Mix", 2);
    Generate({&first, &second});
    EXPECT_THAT(BodyLines(), ElementsAre("", "// Noise_1", "one;", "", "// Mix_2", "two;"));
}

TEST_F(BoxCode, TheLabelIsWrittenWithTheMarksOfTheShaderAndNotOfTheBox) {
    shader.m_openComment = "/*";
    shader.m_closeComment = "*/";
    Box box("codegen.linecomment ;; " + Body("one;"), "Noise", 1);
    Generate({&box});
    EXPECT_THAT(BodyLines(), ElementsAre("", "/* Noise_1 */", "one;"));
}

TEST_F(BoxCode, WithoutCommentMarksOnlyTheEmptyLineIsLeft) {
    Box box(Body("one;"), "Noise", 1);
    Generate({&box});
    EXPECT_THAT(BodyLines(), ElementsAre("", "one;"));
}

// Inputs and outputs in templates

TEST_F(BoxCode, ButtonsAreReplacedByWhatTheyStandFor) {
    types.SetDataType("float", {"float ", ";"});
    Box source(kOutput + Body("out = 1;"), "Src", 1);
    Box box(kInput + "input b { float { 0.25 0 1 0 %g } }\n" + kOutput +
                Body("out = a * b; // about ${TAVRN_BoxTitleWid} ${a}1 a1 ${none}"),
            "Mix", 2);
    box.In().Connect(source.Out());
    Generate({&source, &box});
    EXPECT_THAT(Lines(CCodeGen::kMainHeader), ElementsAre("float Src_1_out;", "float Mix_2_out;"));
    EXPECT_THAT(BodyLines(),
                ElementsAre("", "Src_1_out = 1;", "",
                            "Mix_2_out = Src_1_out * 0.25; // about Mix_2 Src_1_out1 a1 ${none}"));
}

TEST_F(BoxCode, AVinputGivesAllItsInstancesJoined) {
    Box source(kOutput, "Src", 1);
    Box box("vinput layer { vinstances 3 vargseparator \" + \" float { 0.5 0 1 0 %g } }\n" +
                Body("x = layer; n = TAVRN_NumVinputs_layer;"),
            "Sum", 2);
    box.In(1).Connect(source.Out());
    static_cast<COpValueFloat&>(*box.In(2).values[0]).value = 0.75F;
    Generate({&source, &box});
    EXPECT_EQ(BodyLines().back(), "x = 0.5 + Src_1_out + 0.75; n = 3;");
}

TEST_F(BoxCode, AVinputWithoutASeparatorIsJoinedWithoutOne) {
    Box box("vinput v { vinstances 2 float { 1 0 1 0 \"(%g)\" } }\n" + Body("v"), "B", 1);
    Generate({&box});
    EXPECT_EQ(BodyLines().back(), "(1)(1)");
}

TEST_F(BoxCode, AFixedValueSeesTheInputsOnlyInsideItsOwnBox) {
    Box source(kInput + "output fixedvalue=\"f(a, ${TAVRN_BoxWid})\" out { float out }\n" + Body("x = out;"),
               "Src", 1);
    Box box(kInput + Body("y = a;"), "End", 2);
    box.In().Connect(source.Out());
    Generate({&source, &box});
    EXPECT_THAT(BodyLines(), ElementsAre("", "x = f(0.5, 1);", "", "y = f(a, 1);"));
    EXPECT_THAT(Lines(CCodeGen::kMainHeader), IsEmpty()) << "a fixed value is not declared";
}

TEST_F(BoxCode, AFixedValueSeesTheOutputsBeforeIt) {
    Box box("output one { }\noutput fixedvalue=\"<one two>\" three { }\noutput two { }\n" + Body("three"),
            "B", 1);
    Generate({&box});
    EXPECT_EQ(BodyLines().back(), "<B_1_one two>");
}

TEST_F(BoxCode, AnOutputTiedBackHasNoVariableAndNoDeclaration) {
    Box box(kInput + "output tieback=a out { float out }\n" + Body("out = a;"), "B", 1);
    Generate({&box});
    EXPECT_THAT(BodyLines(), ElementsAre("", "out = 0.5;"));
    EXPECT_THAT(Lines(CCodeGen::kMainHeader), IsEmpty());
}

TEST_F(BoxCode, AFixedValueBesideATiebackIsTheOneThatTemplatesSee) {
    Box box(kInput + "output tieback=a out { float out }\n" + Body("out"), "B", 1);
    box.Out().fixedvalue = "P";
    Generate({&box});
    EXPECT_EQ(BodyLines().back(), "P");
}

TEST_F(BoxCode, ATiebackWithoutItsInputIsAlertedAndTheRunGoesOn) {
    Box relay("vinput v { float { 0 0 1 0 %g } }\noutput tieback=v1 out { float out }\n", "Relay", 1);
    Box box(kInput + Body("x = a;"), "End", 2);
    box.In().Connect(relay.Out());
    relay.DeleteButton(relay.In());
    Generate({&relay, &box});
    EXPECT_EQ(sink.LastAlert(), "Relay_1 out: can't find tieback button v1 (did you delete it?)");
    EXPECT_EQ(BodyLines().back(), "x = ;");
}

TEST_F(BoxCode, DeclarationsFollowTheHeaderLinesOfTheirBoxAndAreExpandedWithThem) {
    types.SetDataType("float", {"float ", " = a;"});
    Box box(kInput + kOutput + Block("main-header append", "own out;"), "B", 1);
    Generate({&box});
    EXPECT_THAT(Lines(CCodeGen::kMainHeader), ElementsAre("own B_1_out;", "float B_1_out = 0.5;"));
}

TEST_F(BoxCode, ACastShowsTheTranslatedWordAndDeclaresByTheOther) {
    types.SetDataType("rgb", {"vec3 ", ";"});
    types.SetDataType("colour", {"never ", ";"});
    types.SetWord("rgb", "colour");
    Box box("output out { float out rgb out }\n" + Body("TAVRN_Cast_out TAVRN_DeclareHead_out."), "B", 1);
    box.Out().SetCast(1);
    Generate({&box});
    EXPECT_EQ(BodyLines().back(), "colour vec3 .");
    EXPECT_THAT(Lines(CCodeGen::kMainHeader), ElementsAre("vec3 B_1_out;"));
}

TEST_F(BoxCode, ValuesAreNotExpandedAgain) {
    Box box(
        "input a { string { value b format %s } }\ninput b { string { value a format %s } }\n" + Body("a b"),
        "B", 1);
    Generate({&box});
    EXPECT_EQ(BodyLines().back(), "b a");
}

// Blocks

TEST_F(BoxCode, FiveBlocksTakeTheBoxsVariablesAndFiveDoNot) {
    std::string text = kInput;
    for (const char* block : {"global-open", "global-header", "main-open", "main-args", "main-args-close",
                              "main-header", "main-body", "main-close", "global-close", "hinttext"}) {
        text += Block(std::string(block) + " append", "a");
    }
    Box box(text, "B", 1);
    Generate({&box});
    std::string result;
    for (int block = 0; block < CCodeGen::kBlockCount; ++block) {
        result += Lines(static_cast<CCodeGen::BlockId>(block)).back() + " ";
    }
    EXPECT_EQ(result, "0.5 a a a a 0.5 0.5 a 0.5 0.5 ");
}

TEST_F(BoxCode, ABoxsVariablesDoNotReachTheNextBox) {
    Box first(kInput + Body("a"), "A", 1);
    Box second(Body("a TAVRN_BoxWid"), "B", 2);
    Generate({&first, &second});
    EXPECT_EQ(BodyLines().back(), "a 2");
}

TEST_F(BoxCode, AnInsertedLineComesBeforeEverythingAlreadyThere) {
    shader.AddLine("main-body", "append", "site");
    Box first(Block("main-body insert", "one\ntwo"), "A", 1);
    Box second(Block("main-body insert", "three\nfour"), "B", 2);
    Generate({&first, &second});
    EXPECT_THAT(BodyLines(), ElementsAre("three", "four", "one", "two", "site", "", ""));
}

TEST_F(BoxCode, AUniqueLineIsComparedAsItReadsAfterExpansion) {
    const std::string block = Block("global-open unique", "shared();\nown(${TAVRN_BoxWid});\n");
    Box first(block, "A", 1);
    Box second(block, "A", 2);
    Generate({&first, &second});
    EXPECT_THAT(Lines(CCodeGen::kGlobalOpen), ElementsAre("shared();", "own(1);", "", "own(2);"))
        << "an empty unique line stands once too";
}

TEST_F(BoxCode, AUniqueLineOfABlockThatIsNotExpandedStandsOnce) {
    const std::string block = Block("global-header unique", "own(TAVRN_BoxWid);");
    Box first(block, "A", 1);
    Box second(block, "A", 2);
    Generate({&first, &second});
    EXPECT_THAT(Lines(CCodeGen::kGlobalHeader), ElementsAre("own(TAVRN_BoxWid);"));
}

TEST_F(BoxCode, AnIslandGeneratesItsCode) {
    Box box(kInput + kOutput + Body("out = a;"), "Lone", 5);
    Generate({&box});
    EXPECT_THAT(BodyLines(), ElementsAre("", "Lone_5_out = 0.5;"));
}

TEST_F(BoxCode, ACopyHasItsLabelAndItsDeclarationButNoStatements) {
    shader.m_lineComment = "//";
    Box box(kInput + kOutput + Body("out = a;"), "Mix", 1);
    COpBox copy(box);
    copy.wid = 2;
    Generate({&copy});
    EXPECT_THAT(BodyLines(), ElementsAre("", "// Mix_2"));
    EXPECT_THAT(Lines(CCodeGen::kMainHeader), ElementsAre("float Mix_2_out"));
}

TEST_F(BoxCode, GeneratingTwiceGivesTheSameText) {
    Box box(
        "vinput v { vinstances 2 vargseparator , float { 0.5 0 1 0 %g } }\n" + kOutput + Body("out = f(v);"),
        "B", 1);
    Generate({&box});
    const auto once = BodyLines();
    shader.Reset();
    Merge({&box});
    EXPECT_EQ(BodyLines(), once) << "without preparing again";
    shader.Reset();
    Generate({&box});
    EXPECT_EQ(BodyLines(), once);
    EXPECT_THAT(once, ElementsAre("", "B_1_out = f(0.5,0.5);"));
}

}  // namespace
}  // namespace tavrin
