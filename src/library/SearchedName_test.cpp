// SPDX-License-Identifier: Apache-2.0
#include "library/SearchedName.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "text/Tokens.h"

namespace tavrin {
namespace {

// The name with a bar before each word.
std::string Words(const std::string& name) {
    const std::vector<bool> beginnings = WordBeginnings(name);
    std::string text;
    for (size_t i = 0; i < name.size(); ++i) {
        if (beginnings[i]) text += '|';
        text += name[i];
    }
    return text;
}

TEST(SearchedName, WordsBeginAtCapitalsDigitsAndBehindSeparators) {
    // Letters beyond ASCII have no case.
    for (const std::string marked :
         {"|Worn|Paint", "|worn|Paint", "|worn_|paint", "|XML|Reader", "|RGB", "|HSV|To|RGB", "|Noise|3|D",
          "|a|2|b", "|Two  |Words", "._|x", "", "|WornÖl", "|\xFF\xFE|Up"}) {
        std::string name = marked;
        std::erase(name, '|');
        EXPECT_EQ(Words(name), marked);
    }
}

// The name in lower case with the pieces in brackets; empty if there are none.
std::string Marked(const std::string& name, const std::vector<TextSpan>& pieces) {
    std::string text = ToLower(name);
    for (size_t i = pieces.size(); i-- > 0;) text.insert(pieces[i].end, "]").insert(pieces[i].begin, "[");
    return pieces.empty() ? std::string() : text;
}

std::string Initials(const std::string& typed, const std::string& name) {
    return Marked(name, FindInitials(typed, ToLower(name), WordBeginnings(name)));
}

TEST(SearchedName, BeginningsOfWordsPutTogetherAreFound) {
    EXPECT_EQ(Initials("wp", "WornPaint"), "[w]orn[p]aint");
    EXPECT_EQ(Initials("wopai", "WornPaint"), "[wo]rn[pai]nt");
    EXPECT_EQ(Initials("wornp", "WornPaint"), "[wornp]aint");
    EXPECT_EQ(Initials("paint", "WornPaint"), "worn[paint]");
    EXPECT_EQ(Initials("wr", "WornRustyPaint"), "[w]orn[r]ustypaint");
    EXPECT_EQ(Initials("wp", "WornRustyPaint"), "[w]ornrusty[p]aint") << "words may be left out";
    EXPECT_EQ(Initials("n3", "Noise3D"), "[n]oise[3]d");
    EXPECT_EQ(Initials("n3d", "Noise3D"), "[n]oise[3d]");
}

TEST(SearchedName, LettersFromTheMiddleOfWordsAreNone) {
    EXPECT_EQ(Initials("wn", "WornPaint"), "");
    EXPECT_EQ(Initials("pw", "WornPaint"), "") << "the order counts";
    EXPECT_EQ(Initials("wpp", "WornPaint"), "");
    EXPECT_EQ(Initials("aint", "WornPaint"), "");
    EXPECT_EQ(Initials("", "WornPaint"), "");
    EXPECT_EQ(Initials("wp", ""), "");
}

TEST(SearchedName, AWayIsFoundAlsoWhereTheFirstOneLeadsNowhere) {
    EXPECT_EQ(Initials("papa", "PaintPaintArt"), "[pa]int[pa]intart");
    EXPECT_EQ(Initials("paip", "PaPaintPot"), "pa[pai]nt[p]ot");
    EXPECT_EQ(Initials("parapi", "ParaPaRapid"), "para[parapi]d");
    EXPECT_EQ(Initials("papi", "PaPaint"), "");
}

// Every way is tried by recursion here.
bool IsPutTogether(std::string_view typed, std::string_view name, const std::vector<bool>& begins, size_t at,
                   bool goesOn) {
    if (typed.empty()) return true;
    for (size_t p = at; p < name.size(); ++p) {
        if (name[p] == typed[0] && (begins[p] || (goesOn && p == at)) &&
            IsPutTogether(typed.substr(1), name, begins, p + 1, true))
            return true;
    }
    return false;
}

TEST(SearchedName, OnRandomNamesInitialsAreWhatTryingEachWayFinds) {
    std::mt19937 random(17);
    const auto pick = [&](std::string_view letters, size_t most) {
        std::string text(random() % most + 1, ' ');
        for (char& c : text) c = letters[random() % letters.size()];
        return text;
    };
    size_t found = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string name = pick("aAbB1_", 12);
        const std::string lower = ToLower(name);
        const std::vector<bool> begins = WordBeginnings(name);
        const std::string typed = pick("ab1", 5);
        const std::vector<TextSpan> pieces = FindInitials(typed, lower, begins);
        ASSERT_EQ(!pieces.empty(), IsPutTogether(typed, lower, begins, 0, false)) << typed << " in " << name;
        std::string together;
        for (size_t k = 0; k < pieces.size(); ++k) {
            ASSERT_TRUE(begins[pieces[k].begin]) << typed << " in " << name;
            ASSERT_TRUE(k == 0 || pieces[k - 1].end < pieces[k].begin) << typed << " in " << name;
            together += lower.substr(pieces[k].begin, pieces[k].end - pieces[k].begin);
        }
        if (pieces.empty()) continue;
        ASSERT_EQ(together, typed) << name;
        ++found;
    }
    EXPECT_GT(found, 1000U);
}

TEST(SearchedName, OfALongNameTheBeginningIsLookedAt) {
    const std::string name = std::string(60, 'x') + "Ab" + std::string(1000, 'y') + "Cd";
    EXPECT_NE(Initials("xa", name), "");
    EXPECT_EQ(Initials("xc", name), "");
    EXPECT_EQ(Initials(std::string(5000, 'x'), name), "");
}

std::string FromBeginning(const std::vector<std::string>& typed, const std::string& name, bool expectWhole) {
    bool isWhole = false;
    const auto pieces = FindFromBeginning(typed, name, isWhole);
    EXPECT_TRUE(pieces.empty() || isWhole == expectWhole) << name;
    return Marked(name, pieces);
}

TEST(SearchedName, SeveralWordsAreTheBeginningOfANameTogether) {
    EXPECT_EQ(FromBeginning({"worn", "p"}, "wornpaint", false), "[wornp]aint");
    EXPECT_EQ(FromBeginning({"worn", "paint"}, "wornpaint", true), "[wornpaint]");
    EXPECT_EQ(FromBeginning({"worn", "paint"}, "worn paint", true), "[worn] [paint]");
    EXPECT_EQ(FromBeginning({"worn", "paint"}, "worn_-_paint2", false), "[worn]_-_[paint]2");
    EXPECT_EQ(FromBeginning({"worn", "_p"}, "worn_paint", false), "[worn_p]aint");
    EXPECT_EQ(FromBeginning({"worn", "paint"}, "wornoutpaint", false), "");
    EXPECT_EQ(FromBeginning({"paint", "worn"}, "wornpaint", false), "");
    EXPECT_EQ(FromBeginning({"worn", "paint"}, " worn paint", false), "") << "the beginning is the beginning";
}

std::string SlipIn(const std::string& typed, const std::string& name) {
    const auto slip = FindSlip(typed, ToLower(name), WordBeginnings(name), SlipsAllowed(typed.size()));
    return slip ? Marked(name, {slip->span}) + std::to_string(slip->count) : "";
}

TEST(SearchedName, SlipsOfTheHandAreForgivenByTheLengthOfWhatIsTyped) {
    EXPECT_EQ(SlipIn("nosie", "Noise"), "[noise]1") << "exchanged";
    EXPECT_EQ(SlipIn("nise", "Noise"), "[noise]1") << "left out";
    EXPECT_EQ(SlipIn("nooise", "Noise"), "[noise]1") << "too many";
    EXPECT_EQ(SlipIn("moise", "Noise"), "[noise]1") << "wrong, the first as well";
    EXPECT_EQ(SlipIn("nosi", "Noise"), "[nois]e1") << "not typed to the end";
    EXPECT_EQ(SlipIn("piant", "WornPaint"), "worn[paint]1");
    EXPECT_EQ(SlipIn("threshhlod", "Threshold"), "[threshold]2");
    EXPECT_EQ(SlipIn("nsoei", "Noise"), "") << "two in a short word";
    EXPECT_EQ(SlipIn("nos", "Noise"), "") << "short words have none";
    EXPECT_EQ(SlipIn("tresshlodd", "Threshold"), "") << "three";
    EXPECT_EQ(SlipIn(std::string(33, 'n'), std::string(32, 'n')), "");
    EXPECT_EQ(SlipIn("nois", ""), "");
}

TEST(SearchedName, TheDistanceOfSlipsNeverFallsWhenATextIsTypedOn) {
    std::mt19937 random(23);
    size_t compared = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string name(random() % 10 + 1, ' ');
        for (char& c : name) c = "aAbc"[random() % 4];
        std::string typed;
        std::optional<Slip> before = Slip{};
        while (typed.size() < 12) {
            typed += "abc"[random() % 3];
            const auto slip = FindSlip(typed, ToLower(name), WordBeginnings(name), kMostSlips);
            if (typed.size() >= kShortestWithSlip) {
                ASSERT_TRUE(before || !slip) << typed << " in " << name;
                ASSERT_TRUE(!slip || slip->count >= before->count) << typed << " in " << name;
                before = slip;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 1000U);
}

TEST(SearchedName, BytesThatOccurAreToldWithoutCase) {
    EXPECT_EQ(BytesOf("aB1"), BytesOf("Ab1"));
    EXPECT_EQ(BytesOf("ab") & ~BytesOf("abc"), 0U);
    EXPECT_NE(BytesOf("d") & ~BytesOf("abc"), 0U);
    EXPECT_NE(BytesOf("1") & ~BytesOf("abc"), 0U);
    EXPECT_NE(BytesOf("\xFF"), 0U);
}

}  // namespace
}  // namespace tavrin
