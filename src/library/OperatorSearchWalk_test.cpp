// SPDX-License-Identifier: Apache-2.0
// Random texts, typed letter by letter, over random libraries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "library/OperatorSearch.h"
#include "support/SmallLibrary.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

using test::SmallLibrary;

class Walk {
  public:
    explicit Walk(unsigned seed) : m_random(seed) {
        for (int i = 0; i < kOperators; ++i) AddOperator(i);
        m_library.Scan();
    }

    void Run(int steps) {
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            SCOPED_TRACE("\"" + m_text + "\" in step " + std::to_string(i));
            Change();
            Check();
        }
    }
    size_t Seen() const { return m_seen; }

  private:
    static constexpr int kOperators = 40;

    size_t Below(size_t count) { return m_random() % count; }
    std::string Letters(size_t most) {
        static constexpr std::string_view kLetters = "abcabcabcABC12_";
        std::string text(Below(most) + 1, ' ');
        for (char& c : text) c = kLetters[Below(kLetters.size())];
        return text;
    }
    std::string Help() {
        std::string text = Letters(6);
        for (size_t i = Below(6); i > 0; --i) text += (Below(3) == 0 ? "\n" : " ") + Letters(6);
        return text;
    }
    void AddOperator(int number) {
        std::string text;
        for (size_t i = Below(3); i > 0; --i) text += "alias " + Letters(8) + "\n";
        text += "boxhelp {\n" + Help() + "\n}\n";
        for (size_t i = Below(3); i > 0; --i)
            text += "input " + Letters(5) + " { help {\n" + Help() + "\n}\nstring { options { " + Letters(4) +
                    " " + Letters(4) + " } } }\n";
        const std::string menu = Below(4) == 0 ? "" : "0100." + Letters(4) + "/";
        m_library.Add(menu + std::to_string(1000 + number) + "." + Letters(9), text);
    }

    // One key, or what else happens while somebody types.
    void Change() {
        switch (Below(12)) {
            case 0:
                m_text.clear();
                break;
            case 1:
            case 2:
                if (!m_text.empty()) m_text.pop_back();
                break;
            case 3:
                m_text += ' ';
                break;
            case 4:
                m_library.index->Step(std::chrono::microseconds(0));
                break;
            case 5:
                m_search.Use(m_library.index->Operators()[Below(m_library.index->Operators().size())].name);
                break;
            case 6:
                if (Below(10) == 0) m_library.Scan();
                break;
            default:
                m_text += Letters(1);
        }
    }

    void Check() {
        const std::vector<OperatorHit>& hits = m_search.Find(m_text);
        OperatorSearch fresh(*m_library.index);
        fresh.SetRecent(m_search.Recent());
        ASSERT_EQ(hits, fresh.Find(m_text)) << "typed on is not what it is typed at once";
        std::vector<std::string> words;
        std::istringstream text(ToLower(m_text));
        for (std::string word; text >> word;) words.push_back(word);
        std::vector<bool> isHit(m_library.index->Operators().size());
        for (const OperatorHit& hit : hits) {
            ASSERT_FALSE(isHit[hit.place]) << "an operator comes twice";
            isHit[hit.place] = true;
            CheckFindings(hit, words);
        }
        for (size_t i = 0; i < isHit.size(); ++i)
            ASSERT_TRUE(isHit[i] || !HasAll(m_library.index->Operators()[i], words)) << "left out";
        for (size_t i = 1; i < hits.size(); ++i) ASSERT_LE(hits[i - 1].rank, hits[i].rank);
        m_seen += words.empty() ? 0 : hits.size();
    }

    static std::string AllTexts(const KnownOperator& known) {
        std::string all = known.name + "\n" + known.menu + "\n" + known.help;
        for (const std::string& alias : known.aliases) all += "\n" + alias;
        for (const KnownButton& button : known.buttons) {
            all += "\n" + button.name + "\n" + button.help;
            for (const std::string& option : button.options) all += "\n" + option;
        }
        return ToLower(all);
    }
    static bool HasAll(const KnownOperator& known, const std::vector<std::string>& words) {
        const std::string all = AllTexts(known);
        return std::all_of(words.begin(), words.end(),
                           [&](const std::string& word) { return all.find(word) != std::string::npos; });
    }

    // What is lit is there, in its order; and all words are lit but for slips.
    void CheckFindings(const OperatorHit& hit, const std::vector<std::string>& words) const {
        const KnownOperator& known = m_library.index->Operators()[hit.place];
        const auto findings = m_search.FindingsOf(hit);
        ASSERT_FALSE(findings.empty());
        ASSERT_EQ(findings[0].text, known.name);
        std::string lit;
        for (const SearchFinding& finding : findings) {
            ASSERT_NE(AllTexts(known).find(ToLower(finding.text)), std::string::npos);
            size_t end = 0;
            for (const TextSpan& piece : finding.pieces) {
                ASSERT_TRUE(piece.begin < piece.end && (end == 0 || end < piece.begin));
                end = piece.end;
                ASSERT_LE(end, finding.text.size());
                lit += ToLower(finding.text.substr(piece.begin, piece.end - piece.begin));
            }
            lit += "\n";
        }
        if (hit.rank == SearchRank::kSlip) return;
        ASSERT_TRUE(words.empty() || lit.find_first_not_of('\n') != std::string::npos);
        // A further line of a help is not shown, so a word of several may be out of sight.
        ASSERT_TRUE(words.size() != 1 || lit.find(words[0]) != std::string::npos) << lit;
    }

    std::mt19937 m_random;
    SmallLibrary m_library;
    OperatorSearch m_search{*m_library.index};
    std::string m_text;
    size_t m_seen = 0;
};

TEST(OperatorSearchWalk, TypingOnFindsWhatASearchAtOnceFindsAndAllHitsHoldWhatTheySay) {
    size_t seen = 0;
    for (unsigned seed = 1; seed <= 5 && !testing::Test::HasFailure(); ++seed) {
        Walk walk(seed);
        walk.Run(300);
        seen += walk.Seen();
    }
    EXPECT_GT(seen, 1000U) << "the texts find too little";
}

}  // namespace
}  // namespace tavrin
