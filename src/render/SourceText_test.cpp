// SPDX-License-Identifier: Apache-2.0
#include "render/SourceText.h"

#include <gmock/gmock.h>

#include <random>

#include "text/Archive.h"
#include "text/Report.h"

namespace tavrin {

void PrintTo(const SourceSpan& span, std::ostream* out) {
    *out << span.begin << "-" << span.end << ":" << static_cast<int>(span.kind);
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kList = R"(linecomment "//"
linecomment "///!"
blockcomment "/*" "*/"
string "\"" "\"" "\\"
string "'" "'" ""
directive "#"
numbers 1
class keyword { if return }
class type { float vec3 }
)";

SourceWords WordsOf(const std::string& list) {
    Report report;
    CArchive archive = CArchive::FromText("list", list);
    return SourceWords::Read(archive, report).value();
}

// The parts of a line that are more than plain, each as "c:TEXT" with the first letter of its class.
std::vector<std::string> Parts(SourceText& source, size_t line) {
    constexpr std::string_view kLetters = "pktfvcdnsC";
    std::vector<std::string> parts;
    for (const SourceSpan& span : source.SpansOf(line)) {
        const std::string_view text = source.Line(line).substr(span.begin, span.end - span.begin);
        parts.push_back(std::string(1, kLetters[static_cast<size_t>(span.kind)]) + ":" + std::string(text));
    }
    return parts;
}
std::vector<std::string> PartsOf(const std::string& line, const std::string& list = kList) {
    SourceText source(line, WordsOf(list));
    return Parts(source, 0);
}

TEST(SourceText, IsTakenApartByTheListOfWords) {
    EXPECT_THAT(PartsOf("  float x = mix(vec3(1.0), iffy, 0x1Fu); // if"),
                ElementsAre("t:float", "t:vec3", "n:1.0", "n:0x1Fu", "C:// if"));
    EXPECT_THAT(PartsOf("if(return.x)"), ElementsAre("k:if", "k:return"));
    EXPECT_THAT(PartsOf("\n"), IsEmpty());
}

TEST(SourceText, WithoutAListAllIsPlain) {
    SourceText source("float x = 1.0; // if \"s\"", {});
    EXPECT_THAT(source.SpansOf(0), IsEmpty());
}

TEST(SourceText, NumbersHaveExponentsAndSuffixesAndMayBeginWithAPoint) {
    EXPECT_THAT(PartsOf("1e-3 .5f 2.E+10 0x1e-1 x1 1.5-2"),
                ElementsAre("n:1e-3", "n:.5f", "n:2.E+10", "n:0x1e", "n:1", "n:1.5", "n:2"));
    EXPECT_THAT(PartsOf("v.x a.xyz"), IsEmpty());
    EXPECT_THAT(PartsOf("1.0 if", "class keyword { if }"), ElementsAre("k:if")) << "a language without";
}

TEST(SourceText, ADirectiveIsItsMarkAndWordAtTheBeginningOfALine) {
    EXPECT_THAT(PartsOf("  #  define if 3"), ElementsAre("d:#  define", "k:if", "n:3"));
    EXPECT_THAT(PartsOf("x # define"), IsEmpty());
}

TEST(SourceText, StringsEndAtTheirMarkOrWithTheLine) {
    EXPECT_THAT(PartsOf(R"(f("a\"if" 'b\' if 'open if)"),
                ElementsAre(R"(s:"a\"if")", R"(s:'b\')", "k:if", "s:'open if"));
    EXPECT_THAT(PartsOf("\"x\\"), ElementsAre("s:\"x\\"));
    SourceText source("'open\nif", WordsOf(kList));
    EXPECT_THAT(Parts(source, 1), ElementsAre("k:if"));
}

TEST(SourceText, AMarkWithinAnotherIsPartOfIt) {
    EXPECT_THAT(PartsOf("\"//\" /* // */ if // /*"),
                ElementsAre("s:\"//\"", "C:/* // */", "k:if", "C:// /*"));
    EXPECT_THAT(PartsOf("///! \"if\""), ElementsAre("C:///! \"if\""));
}

TEST(SourceText, ACommentGoesOnOverLinesWhicheverIsLookedAtFirst) {
    SourceText source("if /* a\n# if \"\nb */ if /*/ x\n*/ if\r\nfloat\n", WordsOf(kList));
    ASSERT_EQ(source.LineCount(), 5U);
    EXPECT_THAT(Parts(source, 4), ElementsAre("t:float"));
    EXPECT_THAT(Parts(source, 3), ElementsAre("C:*/", "k:if"));
    EXPECT_EQ(source.Line(3), "*/ if") << "without its line end";
    EXPECT_THAT(Parts(source, 2), ElementsAre("C:b */", "k:if", "C:/*/ x"));
    EXPECT_THAT(Parts(source, 1), ElementsAre("C:# if \""));
    EXPECT_THAT(Parts(source, 0), ElementsAre("k:if", "C:/* a"));
}

// A comment that never ends, marks at the end of lines, letters of any value.
TEST(SourceText, PartsAreInOrderAndWithinTheLineWhateverItHolds) {
    const SourceWords words = WordsOf(kList);
    std::mt19937 random(17);
    constexpr std::string_view kBytes("/*/*\"'\\#.0e+x_ \t\xC3\xBC\x00\xFF", 20);
    std::string text;
    for (int i = 0; i < 20'000; ++i) text += random() % 40 == 0 ? '\n' : kBytes[random() % kBytes.size()];
    SourceText source(text, words);
    ASSERT_GT(source.LineCount(), 100U);
    for (size_t line = 0; line < source.LineCount(); ++line) {
        size_t behind = 0;
        for (const SourceSpan& span : source.SpansOf(line)) {
            ASSERT_GE(span.begin, behind);
            ASSERT_LT(span.begin, span.end);
            ASSERT_LE(span.end, source.Line(line).size());
            behind = span.end;
        }
    }
}

TEST(SourceText, LinesAreCountedAsAnEditorCounts) {
    EXPECT_EQ(SourceText("", {}).LineCount(), 0U);
    EXPECT_EQ(SourceText("a", {}).LineCount(), 1U);
    EXPECT_EQ(SourceText("a\n", {}).LineCount(), 1U);
    EXPECT_EQ(SourceText("a\n\nb", {}).LineCount(), 3U);
    EXPECT_EQ(SourceText("a\nlonger\nb", {}).Longest(), 6U);
}

TEST(SourceText, PlacesAreFoundAgainInTheNextText) {
    const SourceText before("a\nb\nc\nd\n", {});
    const SourceText more("a\nx\ny\nb\nc\nd\n", {});
    EXPECT_EQ(more.PlaceOf(0, before), 0U);
    EXPECT_EQ(more.PlaceOf(1, before), 3U);
    EXPECT_EQ(more.PlaceOf(3, before), 5U);
    EXPECT_EQ(before.PlaceOf(5, more), 3U);
    EXPECT_EQ(before.PlaceOf(2, more), 2U) << "what has gone leaves its number";
    EXPECT_EQ(SourceText("a\n", {}).PlaceOf(3, before), 0U);
    EXPECT_EQ(SourceText("", {}).PlaceOf(3, before), 0U);
    EXPECT_EQ(before.PlaceOf(0, SourceText("", {})), 0U);
}

}  // namespace
}  // namespace tavrin
