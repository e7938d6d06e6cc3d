// SPDX-License-Identifier: Apache-2.0
#include "library/OperatorSearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/SavedNetwork.h"
#include "support/SmallLibrary.h"

namespace tavrin {
namespace {

using test::SmallLibrary;
using testing::ElementsAre;
using testing::IsEmpty;

// The text with the pieces in brackets.
std::string Lit(const SearchFinding& finding) {
    std::string text = finding.text;
    for (size_t i = finding.pieces.size(); i-- > 0;)
        text.insert(finding.pieces[i].end, "]").insert(finding.pieces[i].begin, "[");
    return text;
}

class OperatorSearchTest : public testing::Test {
  protected:
    void Add(const std::string& name, std::string_view text = {}) const { library.Add(name, text); }
    void AddHelp(const std::string& name, const std::string& help) const {
        Add(name, "boxhelp {\n" + help + "\n}\n");
    }
    std::vector<std::string> NamesOf(const std::vector<OperatorHit>& hits) const {
        std::vector<std::string> names;
        for (const OperatorHit& hit : hits) names.push_back(library.index->Operators()[hit.place].name);
        return names;
    }
    std::vector<std::string> Find(const std::string& text, const OpenEnd* end = nullptr) {
        return NamesOf(search.Find(text, end));
    }
    std::vector<std::string> FindingsOf(const OperatorHit& hit) const {
        std::vector<std::string> texts;
        for (const SearchFinding& finding : search.FindingsOf(hit)) texts.push_back(Lit(finding));
        return texts;
    }
    // Of the first hit.
    std::vector<std::string> Findings(const std::string& text) {
        const auto& hits = search.Find(text);
        return hits.empty() ? std::vector<std::string>() : FindingsOf(hits.front());
    }

    SmallLibrary library;
    OperatorSearch search{*library.index};
};

// The order

TEST_F(OperatorSearchTest, KeywordsCountAsMuchAsFormerNames) {
    Add("0100.Plain/0010.Cells", "keywords { voronoi \"dried mud\" }\n");
    Add("0100.Plain/0020.Noise", "boxhelp {\nA voronoi is another thing.\n}\n");
    Add("0100.Plain/0030.Other", "alias Voronoi2\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("voronoi"), ElementsAre("Cells", "Other", "Noise"));
    EXPECT_EQ(search.Find("voronoi").front().rank, SearchRank::kWholeAlias);
    EXPECT_THAT(Find("dried mud"), ElementsAre("Cells"));
    EXPECT_THAT(Findings("mud"), ElementsAre("Cells", "dried [mud]"));
    EXPECT_THAT(Find("voronio"), ElementsAre("Cells", "Other")) << "a slip of the hand";
    EXPECT_THAT(Find("dm"), ElementsAre("Cells")) << "its initials";
}

TEST_F(OperatorSearchTest, KeywordsStayKnownOverAReload) {
    Add("0100.Plain/0010.Cells", "keywords { voronoi }\n");
    ASSERT_TRUE(library.Load());
    library.Scan();
    EXPECT_THAT(Find("voronoi"), ElementsAre("Cells"));
}

TEST_F(OperatorSearchTest, HitsStandInTheOrderOfTheirRanks) {
    AddHelp("0100.Plain/0002.Twelfth", "It has a sandpaint in it.");
    AddHelp("0100.Plain/0004.Eleventh", "Good for paint.");
    Add("0100.Plain/0010.Tenth", "input sandpaint { float { 0 0 1 0 \"%g\" } }\n");
    Add("0100.Plain/0020.Ninth", "input paint_colour { float { 0 0 1 0 \"%g\" } }\n");
    Add("0200.Sandpaint/0010.Eighth");
    Add("0300.Wall Paint/0010.Seventh");
    Add("0100.Plain/0030.Sixth", "alias Sandpaint\n");
    Add("0100.Plain/0040.Fifth", "alias WallPaint\n");
    Add("0100.Plain/0050.Fourth", "alias Paintwork\n");
    Add("0100.Plain/0070.Carpainter");
    Add("0100.Plain/0080.WornPaint");
    Add("0100.Plain/0090.PaintBrush");
    Add("0100.Plain/0100.PAINT");
    Add("0100.Plain/0110.Piant");
    Add("0100.Plain/0120.Other");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("paint"),
                ElementsAre("PAINT", "PaintBrush", "WornPaint", "Carpainter", "Fourth", "Fifth", "Sixth",
                            "Seventh", "Eighth", "Ninth", "Tenth", "Eleventh", "Twelfth", "Piant"));
    std::vector<SearchRank> ranks;
    for (const OperatorHit& hit : search.Find("paint")) ranks.push_back(hit.rank);
    EXPECT_THAT(ranks, ElementsAre(SearchRank::kWholeName, SearchRank::kNameBeginning, SearchRank::kNameWords,
                                   SearchRank::kInName, SearchRank::kAliasBeginning, SearchRank::kAliasWords,
                                   SearchRank::kInAlias, SearchRank::kMenuWord, SearchRank::kInMenu,
                                   SearchRank::kButtonWord, SearchRank::kInButton, SearchRank::kHelpWord,
                                   SearchRank::kInHelp, SearchRank::kSlip));
}

TEST_F(OperatorSearchTest, AnAliasIsBetterTheMoreOfItIsTyped) {
    Add("0100.Third", "alias OldPaint\n");
    Add("0200.Second", "alias Paintwork\n");
    Add("0300.First", "alias Paint\n");
    Add("0400.Fourth", "alias Oldpaint2\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("paint"), ElementsAre("First", "Second", "Third", "Fourth"));
    EXPECT_EQ(search.Find("paint")[0].rank, SearchRank::kWholeAlias);
    EXPECT_THAT(Findings("op"), ElementsAre("Third", "[O]ld[P]aint"));
}

TEST_F(OperatorSearchTest, AmongEqualsNamesStandInTheirOrderWithoutCase) {
    for (const char* name : {"0100.noiseC", "0200.NoiseB", "0300.noiseA", "0400.Noise1"}) Add(name);
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("noise"), ElementsAre("Noise1", "noiseA", "NoiseB", "noiseC"));
}

TEST_F(OperatorSearchTest, ATextWithoutWordsFindsAllOperators) {
    for (const char* name : {"0100.Mix", "0200.Add", "0300.cells"}) Add(name);
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find(""), ElementsAre("Add", "cells", "Mix"));
    EXPECT_THAT(Find(" \t\r\n "), ElementsAre("Add", "cells", "Mix"));
    EXPECT_THAT(Findings(""), ElementsAre("Add"));
}

TEST_F(OperatorSearchTest, InALibraryWithoutOperatorsNothingIsFound) {
    EXPECT_THAT(Find("mix"), IsEmpty());
    EXPECT_THAT(Find(""), IsEmpty());
    library.Scan();
    EXPECT_THAT(Find("mix"), IsEmpty());
}

TEST_F(OperatorSearchTest, WordsOfANameAreFoundByTheirBeginnings) {
    Add("0100.WornPaint");
    Add("0200.SpawnPoint");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("wp"), ElementsAre("WornPaint"));
    EXPECT_THAT(Findings("wp"), ElementsAre("[W]orn[P]aint"));
    EXPECT_THAT(Findings("worn p"), ElementsAre("[WornP]aint"));
    EXPECT_THAT(Findings("wopa"), ElementsAre("[Wo]rn[Pa]int"));
    EXPECT_THAT(Find("WOPA"), ElementsAre("WornPaint"));
}

// Several words

TEST_F(OperatorSearchTest, EachWordHasToBeFoundSomewhere) {
    AddHelp("0100.Patterns/0010.Noise", "Soft clouds.");
    AddHelp("0100.Patterns/0020.Cells", "Hard stones.");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("patt soft"), ElementsAre("Noise"));
    EXPECT_THAT(Find("noise patt soft"), ElementsAre("Noise"));
    EXPECT_THAT(Find("noise hard"), IsEmpty());
    EXPECT_THAT(Findings("soft patt"), ElementsAre("Noise", "[Patt]erns", "[Soft] clouds."));
}

TEST_F(OperatorSearchTest, TheWorstWordDecidesAndThenTheOthers) {
    Add("0100.Colour/0010.Noise");
    AddHelp("0100.Plain/0020.ColourNoise", "");
    AddHelp("0100.Plain/0030.Noise2", "In any colour.");
    AddHelp("0100.Colour/0040.Wood", "Some noise.");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("noise colour"), ElementsAre("ColourNoise", "Noise", "Noise2", "Wood"));
}

TEST_F(OperatorSearchTest, WordsThatAreTheNameTogetherAreTheName) {
    Add("0100.NoiseWarp");
    Add("0200.NoiseWarper");
    Add("0300.WarpNoise");
    Add("0400.noise warp 2", std::string(kDocumentKeyword) + " 1\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("noise warp"), ElementsAre("NoiseWarp", "noise warp 2", "NoiseWarper", "WarpNoise"));
    EXPECT_EQ(search.Find("noise warp")[0].rank, SearchRank::kWholeName);
    EXPECT_THAT(Findings("noise warp"), ElementsAre("[NoiseWarp]"));
}

TEST_F(OperatorSearchTest, AWordThatIsTypedTwiceCountsOnce) {
    Add("0100.Noise");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("noise NOISE noise"), ElementsAre("Noise"));
    EXPECT_EQ(search.Find("noise noise")[0].rank, SearchRank::kWholeName);
}

// Where it was found

TEST_F(OperatorSearchTest, ButtonsAreFoundByTheirNamesAndTheirHelp) {
    Add("0100.Metal",
        "input roughness { help {\nHow dull it is.\nMirrors have none.\n}\nfloat { 0 0 1 0 \"%g\" } }\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Findings("rough"), ElementsAre("Metal", "[rough]ness"));
    EXPECT_THAT(Findings("mirror"), ElementsAre("Metal", "[Mirror]s have none."));
    const auto findings = search.FindingsOf(search.Find("mirror").front());
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[1].field, SearchField::kButtonHelp);
    EXPECT_EQ(findings[1].button, "roughness");
}

TEST_F(OperatorSearchTest, ButtonsAreFoundByWhatMayBeChosenThere) {
    AddHelp("0100.Glow", "Adds light.");
    Add("0200.Math", "input operation { string { options { add multiply } } }\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("add"), ElementsAre("Math", "Glow"));
    EXPECT_THAT(Findings("multi"), ElementsAre("Math", "[multi]ply"));
    const auto findings = search.FindingsOf(search.Find("multi").front());
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[1].field, SearchField::kOption);
    EXPECT_EQ(findings[1].button, "operation");
}

TEST_F(OperatorSearchTest, OfHelpTheLineIsShownInWhichItWasFound) {
    AddHelp("0100.Noise", "The first line.\nThe second line here.\nThe third.");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Findings("second here"), ElementsAre("Noise", "The [second] line [here]."));
    EXPECT_THAT(Findings("third first"), ElementsAre("Noise", "The [first] line."));
    EXPECT_THAT(Findings("line"), ElementsAre("Noise", "The first [line].")) << "the first of several";
    EXPECT_THAT(Findings("ine"), ElementsAre("Noise", "The first l[ine]."));
}

TEST_F(OperatorSearchTest, PiecesThatTouchOrOverlapAreOne) {
    AddHelp("0100.Noise", "");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Findings("noi oise"), ElementsAre("[Noise]"));
}

TEST_F(OperatorSearchTest, SavedNetworksAreFoundByTheirComments) {
    Add("0100.Networks/0010.WornPaint", "# Flaked off.\n" + std::string(kDocumentKeyword) + " 1\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Findings("flaked"), ElementsAre("WornPaint", "[Flaked] off."));
    EXPECT_THAT(Find("network"), ElementsAre("WornPaint"));
}

// Slips

TEST_F(OperatorSearchTest, SlipsAreForgivenInNamesAliasesAndMenus) {
    AddHelp("0100.Colour/0010.Mix", "Threshold");
    Add("0200.Plain/0010.Threshold");
    Add("0200.Plain/0020.Grain", "alias Granite\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("treshold"), ElementsAre("Threshold")) << "the help is not guessed at";
    EXPECT_THAT(Find("color"), ElementsAre("Mix"));
    EXPECT_THAT(Find("ganite"), ElementsAre("Grain"));
    EXPECT_THAT(Findings("ganite"), ElementsAre("Grain", "[Granite]"));
    EXPECT_EQ(search.Find("treshold")[0].rank, SearchRank::kSlip);
}

TEST_F(OperatorSearchTest, OfSeveralNamesTheOneWithTheFewestSlipsIsShown) {
    Add("0100.Abcdefxy", "alias Abcdefgx\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Findings("abcdefgh"), ElementsAre("Abcdefxy", "[Abcdefgx]"));
    EXPECT_THAT(Findings("abcdefyx"), ElementsAre("[Abcdefxy]"));
}

TEST_F(OperatorSearchTest, OfSeveralNamesWithTheSameSlipsTheFirstIsShown) {
    Add("0100.Marbles", "alias Marblex\n");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Findings("mabrle"), ElementsAre("[Marble]s"));
}

// Bytes

TEST_F(OperatorSearchTest, CharactersBeyondAsciiAreFoundAsTheyAreAndNeverParted) {
    Add("0100.Öl\xC3\xBCr");
    Add("0200.\xFF\xFEodd");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Findings("öL"), IsEmpty()) << "they have no case";
    EXPECT_THAT(Findings("ÖLü"), ElementsAre("[Ölü]r"));
    EXPECT_THAT(Findings("\xBC"), ElementsAre("Öl[ü]r")) << "half a character";
    EXPECT_THAT(Findings("\xC3"), ElementsAre("[Ö]lür"));
    EXPECT_THAT(Findings("ODD"), ElementsAre("\xFF\xFE[odd]"));
    EXPECT_THAT(Find("\xFE"), ElementsAre("\xFF\xFEodd"));
}

TEST_F(OperatorSearchTest, AZeroByteIsAByte) {
    Add("0100.Noise");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find(std::string("no\0", 3)), IsEmpty());
    EXPECT_THAT(Find(std::string("\0", 1)), IsEmpty());
}

TEST_F(OperatorSearchTest, ATextBeyondAllBoundsFindsNothingAndTheNextSearchWorks) {
    Add("0100.aaaa");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find(std::string(1 << 20, 'a')), IsEmpty());
    std::string words;
    while (words.size() < 1 << 20) words += "a ";
    EXPECT_THAT(Find(words), IsEmpty());
    EXPECT_THAT(Find(std::string(OperatorSearch::kLongestText, ' ')), ElementsAre("aaaa"));
    EXPECT_THAT(Find("aa"), ElementsAre("aaaa"));
}

TEST_F(OperatorSearchTest, ALongTextOfManyWordsIsSearched) {
    std::string help;
    std::string text;
    for (int i = 0; text.size() < OperatorSearch::kLongestText - 10; ++i) {
        text += "w" + std::to_string(i) + " ";
        help += "w" + std::to_string(i) + "\n";
    }
    AddHelp("0100.Noise", help);
    AddHelp("0200.Cells", "w1");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find(text), ElementsAre("Noise"));
}

// Used before

TEST_F(OperatorSearchTest, AmongEqualsThoseComeFirstThatWereUsedLast) {
    for (const char* name : {"0100.NoiseA", "0200.NoiseB", "0300.NoiseC", "0400.Noise"}) Add(name);
    ASSERT_TRUE(library.Load());
    search.Use("NoiseC");
    search.Use("NOISEB");
    EXPECT_THAT(Find("noise"), ElementsAre("Noise", "NoiseB", "NoiseC", "NoiseA"));
    EXPECT_THAT(Find(""), ElementsAre("NoiseB", "NoiseC", "Noise", "NoiseA"));
    search.Use("NoiseC");
    EXPECT_THAT(Find("noise"), ElementsAre("Noise", "NoiseC", "NoiseB", "NoiseA"));
    EXPECT_THAT(search.Recent(), ElementsAre("noisec", "noiseb"));
}

TEST_F(OperatorSearchTest, WhatWasUsedIsKeptThroughAReloadAndHasABound) {
    Add("0100.NoiseA");
    Add("0200.NoiseB");
    std::vector<std::string> names{"NoiseB", "gone", "noiseb"};
    for (size_t i = 0; i < 2 * OperatorSearch::kMostRecent; ++i) names.push_back("x" + std::to_string(i));
    search.SetRecent(names);
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("noise"), ElementsAre("NoiseB", "NoiseA"));
    EXPECT_EQ(search.Recent().size(), OperatorSearch::kMostRecent);
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("noise"), ElementsAre("NoiseB", "NoiseA"));
    search.SetRecent({});
    EXPECT_THAT(Find("noise"), ElementsAre("NoiseA", "NoiseB"));
}

// What fits a wire

class WireSearchTest : public OperatorSearchTest {
  protected:
    WireSearchTest() {
        Add("0100.Amount", "input value { float { 0 0 1 0 \"%g\" } }\noutput result { float out }\n");
        Add("0200.Blend", "input a { rgb { 0 0 0 \"%g\" } }\noutput result { rgb out float out }\n");
        Add("0300.Constant", "output number { float out }\n");
        Add("0400.Sink", "input colour { rgb { 0 0 0 \"%g\" } float { 0 0 1 0 \"%g\" } }\n");
        Add("0500.Network", std::string(kDocumentKeyword) + " 1\n");
        Add("0600.Broken", "input value { float { 0 0 1 0 \"%g\" } }\nwhatever\n");
    }
    static OpenEnd End(bool isOutput, const std::string& type) {
        OpenEnd end;
        end.isOutput = isOutput;
        end.types = {type};
        return end;
    }
};

TEST_F(WireSearchTest, ThoseAreOfferedThatHaveAButtonForItTheBestTypesFirst) {
    ASSERT_TRUE(library.Load());
    const OpenEnd output = End(true, "float");
    EXPECT_THAT(Find("", &output), ElementsAre("Amount", "Sink", "Blend"));
    const OpenEnd input = End(false, "float");
    EXPECT_THAT(Find("", &input), ElementsAre("Amount", "Constant", "Blend"));
    const auto& hits = search.Find("", &input);
    ASSERT_TRUE(hits[2].fit.has_value());
    EXPECT_EQ(hits[2].fit->button, "result");
    EXPECT_EQ(hits[2].fit->castType, "float");
}

TEST_F(WireSearchTest, WhatWasTypedCountsBeforeTheTypesAndTheTypesBeforeTheLastUse) {
    Add("0700.Bland", "input value { float { 0 0 1 0 \"%g\" } }\n");
    ASSERT_TRUE(library.Load());
    const OpenEnd end = End(true, "float");
    search.Use("Blend");
    EXPECT_THAT(Find("bl", &end), ElementsAre("Bland", "Blend"));
    EXPECT_THAT(Find("blend", &end), ElementsAre("Blend", "Bland"));
}

TEST_F(WireSearchTest, AnotherEndIsAnotherSearchAndNoneFindsAll) {
    ASSERT_TRUE(library.Load());
    const OpenEnd output = End(true, "float");
    const OpenEnd colour = End(true, "rgb");
    EXPECT_THAT(Find("", &output), ElementsAre("Amount", "Sink", "Blend"));
    EXPECT_THAT(Find("", &colour), ElementsAre("Blend", "Sink", "Amount"));
    EXPECT_THAT(Find(""), ElementsAre("Amount", "Blend", "Broken", "Constant", "Network", "Sink"));
    OpenEnd shut = output;
    shut.takesWires = false;
    EXPECT_THAT(Find("", &shut), IsEmpty());
}

TEST_F(WireSearchTest, WhatIsReadMeanwhileIsOfferedByTheNextSearch) {
    library.Scan();
    const OpenEnd end = End(true, "float");
    EXPECT_EQ(Find("").size(), 6U) << "names are there";
    EXPECT_THAT(Find("", &end), IsEmpty()) << "but no definition has been read";
    ASSERT_TRUE(library.Fill());
    EXPECT_THAT(Find("", &end), ElementsAre("Amount", "Sink", "Blend"));
}

// What changes between two searches

TEST_F(OperatorSearchTest, AWordThatIsTypedOnIsFoundInWhatWasReadMeanwhile) {
    AddHelp("0100.Noise", "Soft clouds.");
    library.Scan();
    EXPECT_THAT(Find("clo"), IsEmpty());
    ASSERT_TRUE(library.Fill());
    EXPECT_THAT(Find("clou"), ElementsAre("Noise"));
}

TEST_F(OperatorSearchTest, HitsOfAnIndexThatWasMadeAnewHaveNoFindings) {
    AddHelp("0100.Noise", "Soft clouds.");
    ASSERT_TRUE(library.Load());
    const std::vector<OperatorHit> hits = search.Find("clouds");
    ASSERT_EQ(hits.size(), 1U);
    AddHelp("0100.Noise", "Hard.");
    library.Scan();
    EXPECT_THAT(search.FindingsOf(hits[0]), IsEmpty());
    search.Find("noise");
    ASSERT_TRUE(library.Fill());
    EXPECT_THAT(FindingsOf(hits[0]), ElementsAre("Noise")) << "it was read since";
    EXPECT_THAT(Findings("noise"), ElementsAre("[Noise]"));
    EXPECT_THAT(Find("clouds"), IsEmpty());
}

TEST_F(OperatorSearchTest, AWordThatIsShortenedOrPutBeforeAnotherIsSearchedAnew) {
    Add("0100.Noise");
    Add("0200.Node");
    Add("0300.Mix");
    ASSERT_TRUE(library.Load());
    EXPECT_THAT(Find("nois"), ElementsAre("Noise"));
    EXPECT_THAT(Find("no"), ElementsAre("Node", "Noise"));
    EXPECT_THAT(Find("m no"), IsEmpty());
    EXPECT_THAT(Find("m"), ElementsAre("Mix"));
    EXPECT_THAT(Find("no"), ElementsAre("Node", "Noise"));
}

}  // namespace
}  // namespace tavrin
