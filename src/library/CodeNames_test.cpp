// SPDX-License-Identifier: Apache-2.0
#include "library/CodeNames.h"

#include <gtest/gtest.h>

#include <memory>

#include "library/OpBox.h"
#include "site/TypeTables.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

constexpr const char* kFixed =
    "output \"fixedvalue=TAVRN_BoxWid own\" out { float out }\ncodegen.setvariable own definition\n";

std::unique_ptr<COpBox> MakeFixed(int wid) { return test::MakeBox("Fixed", kFixed, wid); }

std::string NameOf(const COpBox& box, const PreparedVariables& prepared) {
    return box.outputs[0]->VariableName({prepared});
}

TEST(PreparedVariables, ABoxThatWasNotPreparedHasTheVariablesOfItsDefinition) {
    const auto box = MakeFixed(1);
    const auto other = MakeFixed(2);
    PreparedVariables prepared;
    prepared.Prepare(*other, TypeTables());
    EXPECT_EQ(NameOf(*box, prepared), "TAVRN_BoxWid definition");
    EXPECT_EQ(NameOf(*other, prepared), "2 own") << "those of the definition have gone";
}

TEST(PreparedVariables, PreparingAgainReplaces) {
    const auto box = MakeFixed(1);
    PreparedVariables prepared;
    prepared.Prepare(*box, TypeTables());
    box->wid = 7;
    EXPECT_EQ(NameOf(*box, prepared), "1 own");
    prepared.Prepare(*box, TypeTables());
    EXPECT_EQ(NameOf(*box, prepared), "7 own");
}

TEST(PreparedVariables, ALaterGenerationCountsAndLeavesTheRest) {
    const auto box = MakeFixed(1);
    const auto leftOut = MakeFixed(2);
    const auto added = MakeFixed(3);
    PreparedVariables prepared;
    prepared.Prepare(*box, TypeTables());
    prepared.Prepare(*leftOut, TypeTables());
    box->wid = leftOut->wid = 7;
    PreparedVariables later;
    later.Prepare(*box, TypeTables());
    later.Prepare(*added, TypeTables());
    prepared.Update(std::move(later));
    EXPECT_EQ(NameOf(*box, prepared), "7 own");
    EXPECT_EQ(NameOf(*leftOut, prepared), "2 own");
    EXPECT_EQ(NameOf(*added, prepared), "3 own");
}

TEST(PreparedVariables, ABoxThatIsGoneIsForgotten) {
    auto box = MakeFixed(1);
    PreparedVariables prepared;
    prepared.Prepare(*box, TypeTables());
    EXPECT_EQ(prepared.Size(), 1U);
    box.reset();
    const auto next = MakeFixed(2);  // may lie where the first one did
    prepared.Update({});
    EXPECT_EQ(prepared.Size(), 0U);
    EXPECT_EQ(NameOf(*next, prepared), "TAVRN_BoxWid definition");
}

TEST(PreparedVariables, ACopyOfABoxHasNothingPrepared) {
    const auto box = MakeFixed(1);
    PreparedVariables prepared;
    prepared.Prepare(*box, TypeTables());
    const COpBox copy(*box);
    EXPECT_EQ(NameOf(copy, prepared), "TAVRN_BoxWid own");
}

}  // namespace
}  // namespace tavrin
