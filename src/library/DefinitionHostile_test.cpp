// SPDX-License-Identifier: Apache-2.0
// Definitions that are cut, broken, huge or no definitions at all: reading ends, and either succeeds or
// says why not.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

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
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::string_view kWhole = R"def(# an operator with one of everything
iconimg "mix.sgi" size 64 48
color 0.5 0.5 0.8
icontext mix
boxhelp {
    Mixes two.

    >} and more
}
input a {
    help {
        the first
    }
    wwms.argname first wwms.argflag 1
    float { 0.5 0 1 0 "%g" }
    rgb { 1 0 0 "color(%g,%g,%g)" }
    macro.fixedtext P # raw
}
vinput layer {
    vargseparator ", " vinstances 3
    xyz { 0 0 0 -1 1 0 "(%g,%g,%g)" }
    rgba { 0 0 0 1 "%g %g %g %g" }
    string { value "a \"b\"" format "%s" quoteflag 1 fileflag 0 noedit options { a b } }
    generic:matrix { value "1 0 0 1" options { I } }
}
output fixedvalue="f(a)" fixed { float out }
output tieback=layer2 through { help {
   passes it on
}
xyz out generic:matrix out }
output result { float out rgb out }
defs { maxinstances 2 castlock.add a result castlock.clear }
codegen.setvariable depth 3
codegen.main-header append
own result;
<<EOT>>
codegen.main-body append
result = a + layer; # ${TAVRN_BoxTitleWid}
<<EOT>>
codegen.global-open unique

shared
<<EOT>>
)def";

struct Reading {
    explicit Reading(std::string_view text) {
        report.SetSink(&sink);
        CArchive archive = ArchiveOf(text, "box");
        ok = box.ReadDefinition(archive, "/nowhere", report);
    }
    CollectingSink sink;
    Report report;
    COpBox box;
    bool ok = false;
};

// What holds for every text: a failure has its one alert, unless the file ends where help should open;
// a success has none, unless the file ends within help, and its inputs are whole.
void ExpectSound(const Reading& reading, std::string_view text) {
    if (reading.ok) {
        if (!reading.sink.alerts.empty()) {
            EXPECT_THAT(reading.sink.alerts, ElementsAre(HasSubstr("is not closed"))) << text;
        }
        for (const auto& input : reading.box.inputs) EXPECT_FALSE(input->values.empty()) << text;
    } else if (reading.sink.alerts.empty()) {
        EXPECT_THAT(std::string(text), HasSubstr("help")) << text;
    } else {
        EXPECT_EQ(reading.sink.alerts.size(), 1U) << text;
        EXPECT_THAT(reading.sink.alerts[0], testing::StartsWith("box near line ")) << text;
    }
}

// The lines that a box gives as code, whatever it holds.
std::vector<std::string> CodeOf(COpBox& box, Report& report) {
    box.filename = "Mix";
    box.wid = 1;
    TypeTables types;
    CCodeGen shader;
    PreparedVariables prepared;
    prepared.Prepare(box, types);
    BoxMerge merge(shader);
    box.GenerateCode(merge, types, {prepared, &report});
    std::vector<std::string> lines;
    shader.WriteCode(lines);
    shader.WriteHints(lines);
    return lines;
}

// Everything that a definition can set, as one text.
std::string Describe(const COpBox& box) {
    std::string text = box.iconimg + "|" + box.icontext + "|" + box.boxhelp + "|" +
                       std::to_string(box.maxinstances) + "|" + std::to_string(box.size[0]) + "x" +
                       std::to_string(box.size[1]) + "|" + std::to_string(box.color[2]) + "\n";
    for (const auto& [first, second] : box.castlock) text += "lock " + first + " " + second + "\n";
    for (const auto* side : {&box.inputs, &box.outputs}) {
        for (const auto& button : *side) {
            text += std::string(button->KindText()) + " " + button->DisplayName() + "|" + button->help + "|" +
                    button->argname + "|" + std::to_string(button->arg) + "|" + button->fixedtext + "|" +
                    button->vargseparator + "|" + button->fixedvalue + "|" + button->tieback;
            for (const auto& value : button->values) {
                text += "|" + value->type + " " + value->format + " " + ValueText(*value);
            }
            text += "\n";
        }
    }
    for (int id = 0; id < CCodeGen::kBlockCount; ++id) {
        const CodeBlock& block = box.codegen.Block(static_cast<CCodeGen::BlockId>(id));
        for (size_t i = 0; i < block.Size(); ++i)
            text += std::to_string(id) + ":" + block.Line(i).text + "\n";
    }
    return text;
}

TEST(DefinitionHostile, ADefinitionCutAtAnyByteEndsWithAWordOrSucceeds) {
    ASSERT_TRUE(Reading(kWhole).ok);
    int failures = 0;
    for (size_t length = 0; length < kWhole.size(); ++length) {
        const std::string_view text = kWhole.substr(0, length);
        Reading reading(text);
        ExpectSound(reading, text);
        EXPECT_LE(reading.box.inputs.size(), 4U);
        if (!reading.ok) ++failures;
        CodeOf(reading.box, reading.report);
    }
    EXPECT_GT(failures, 400) << "a cut inside of most clauses is noticed";
}

TEST(DefinitionHostile, LineEndsOfEitherKindGiveEqualBoxes) {
    std::string crlf;
    for (const char c : kWhole) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    Reading unixEnds(kWhole);
    Reading windowsEnds(crlf);
    ASSERT_TRUE(windowsEnds.ok);
    EXPECT_EQ(Describe(windowsEnds.box), Describe(unixEnds.box));
    EXPECT_EQ(CodeOf(windowsEnds.box, windowsEnds.report), CodeOf(unixEnds.box, unixEnds.report));
    EXPECT_THAT(Describe(unixEnds.box), HasSubstr("vinput layer3||"));
    EXPECT_EQ(unixEnds.box.boxhelp, "Mixes two.\r\n\r\n} and more");
}

TEST(DefinitionHostile, AnErrorHasTheSameLineWithEitherKindOfLineEnd) {
    for (const char* text : {"icontext x\nsize 1 2\nbogus", "icontext x\r\nsize 1 2\r\nbogus"}) {
        EXPECT_THAT(Reading(text).sink.alerts, ElementsAre("box near line 3: unexpected input"));
    }
}

TEST(DefinitionHostile, BytesChangedAtRandomAreNoticedOrRead) {
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        std::string text(kWhole);
        for (int change = 0; change < 3; ++change) {
            const size_t place = random() % text.size();
            switch (random() % 4) {
                case 0:
                    text[place] = static_cast<char>(random());
                    break;
                case 1:
                    text.erase(place, random() % 20);
                    break;
                case 2:
                    text.insert(place, 1, "{}\"\\#\n \0"[random() % 8]);
                    break;
                default:
                    text.insert(place, text.substr(random() % text.size(), random() % 60));
                    break;
            }
        }
        Reading reading(text);
        ExpectSound(reading, text);
        CodeOf(reading.box, reading.report);
    }
}

TEST(DefinitionHostile, BinaryNoiseIsUnexpectedInput) {
    std::mt19937 random(2);
    for (int round = 0; round < 200; ++round) {
        std::string text = "\x01";
        for (int i = 0; i < 500; ++i) text += static_cast<char>(random());
        const Reading reading(text);
        EXPECT_FALSE(reading.ok);
        EXPECT_THAT(reading.sink.alerts, ElementsAre(HasSubstr("unexpected input")));
    }
}

TEST(DefinitionHostile, ZeroBytesAreBytesOfATokenAndOfNoKeyword) {
    const Reading reading(std::string_view("icontext a\0b", 12));
    EXPECT_TRUE(reading.ok);
    EXPECT_EQ(reading.box.icontext, std::string("a\0b", 3));
    for (const std::string_view text : {std::string_view("icontext\0 x", 11), std::string_view("\0", 1)}) {
        EXPECT_THAT(Reading(text).sink.alerts, ElementsAre("box near line 1: unexpected input"));
    }
}

TEST(DefinitionHostile, HugeNumbersAreHeldAtTheEndsOfTheirRange) {
    const Reading reading(
        "size 99999999999999999999 -99999999999999999999 color 1e999 -1e999 1e-999\n"
        "defs { maxinstances 2147483648 }\ninput a { wwms.argflag 4294967296 float { 1e39 0 1 0 %g } }");
    ASSERT_TRUE(reading.ok);
    EXPECT_THAT(reading.box.size, ElementsAre(2147483647, -2147483647 - 1));
    EXPECT_EQ(reading.box.maxinstances, 2147483647);
    EXPECT_EQ(reading.box.inputs[0]->arg, 2147483647) << "a flag that is set stays set";
    EXPECT_GT(reading.box.color[0], 3e38F);
    EXPECT_LT(reading.box.color[1], -3e38F);
    EXPECT_EQ(reading.box.color[2], 0.0F);
}

TEST(DefinitionHostile, DeepNonsenseEndsAtItsFirstWord) {
    const std::string braces(100000, '{');
    EXPECT_THAT(Reading(braces).sink.alerts, ElementsAre("box near line 1: unexpected input"));
    std::string apart;
    for (int i = 0; i < 100000; ++i) apart += "{\n";
    EXPECT_THAT(Reading(apart).sink.alerts, ElementsAre("box near line 1: unexpected input"));
    EXPECT_THAT(Reading("defs " + apart + "} icontext x").sink.alerts, IsEmpty())
        << "no braces are counted in there";
    EXPECT_THAT(Reading("input a { string " + apart + "}}").sink.alerts, IsEmpty());
}

TEST(DefinitionHostile, ATokenOfAMegabyteIsATokenToo) {
    const std::string text(1 << 20, 'x');
    const Reading reading("icontext " + text + " iconimg \"" + text + "\nstill in quotes");
    ASSERT_TRUE(reading.ok) << "an unclosed quote runs to the end of the file";
    EXPECT_EQ(reading.box.icontext, text);
    EXPECT_EQ(reading.box.iconimg, text + "\nstill in quotes");
    EXPECT_THAT(Reading(text).sink.alerts, ElementsAre("box near line 1: unexpected input"));
}

TEST(DefinitionHostile, MacrosThatNameThemselvesAreReplacedOnce) {
    Reading reading(
        "input a { string { value \"a a a\" format %s } }\n"
        "output fixedvalue=\"out out ${out}\" out { }\ncodegen.main-body append\na out ${${a}}\n<<EOT>>\n");
    ASSERT_TRUE(reading.ok);
    EXPECT_EQ(CodeOf(reading.box, reading.report).back(), "a a a out out ${out} ${a a a}");
}

}  // namespace
}  // namespace tavrin
