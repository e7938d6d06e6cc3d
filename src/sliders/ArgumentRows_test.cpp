// SPDX-License-Identifier: Apache-2.0
#include "sliders/ArgumentRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using Field = ArgumentField;
using testing::ElementsAre;

constexpr int kRow = 20;

// A box of as many free inputs as a test wants.
class ArgumentRowsTest : public testing::Test {
  protected:
    void Fill(size_t count) {
        std::string definition;
        for (size_t i = 0; i < count; ++i)
            definition += "input i" + std::to_string(i) + " { float { 0 0 1 0 %g } }\n";
        box = test::MakeBox("a", definition, 1);
        rows.SetButtons(Buttons());
    }
    std::vector<COpButton*> Buttons() {
        std::vector<COpButton*> buttons;
        for (const auto& input : box->inputs) buttons.push_back(input.get());
        return buttons;
    }
    COpButton& Input(size_t at) { return *box->inputs.at(at); }
    std::string SpanText(size_t beside) {
        const ArgumentRows::Span span = rows.InView(beside);
        return std::to_string(span.begin) + " to " + std::to_string(span.end);
    }

    std::unique_ptr<COpBox> box;
    ArgumentRows rows;
};

class ArgumentScrolling : public ArgumentRowsTest {
  protected:
    ArgumentScrolling() {
        rows.SetRowHeight(kRow);
        rows.SetClientHeight(5 * kRow);
    }
};

TEST_F(ArgumentScrolling, WithoutRowsTheRangeIsEmptyAndNothingMoves) {
    EXPECT_EQ(rows.TotalHeight(), 0);
    EXPECT_EQ(rows.LastScrollTop(), 0);
    rows.SetScrollTop(kRow);
    EXPECT_EQ(rows.ScrollTop(), 0);
    EXPECT_EQ(SpanText(3), "0 to 0");
    EXPECT_EQ(rows.Next({}, true), std::nullopt);
    EXPECT_EQ(rows.Next({}, false), std::nullopt);
}

TEST_F(ArgumentScrolling, RowsThatAllHaveRoomDoNotMove) {
    Fill(5);
    EXPECT_EQ(rows.TotalHeight(), 5 * kRow);
    rows.SetScrollTop(1);
    EXPECT_EQ(rows.ScrollTop(), 0);
    EXPECT_EQ(SpanText(0), "0 to 5");
}

TEST_F(ArgumentScrolling, AnOffsetIsHeldInItsRange) {
    Fill(12);
    rows.SetScrollTop(-1);
    EXPECT_EQ(rows.ScrollTop(), 0);
    rows.SetScrollTop(7 * kRow);
    EXPECT_EQ(rows.ScrollTop(), 7 * kRow);
    EXPECT_EQ(rows.TopOf(11), 4 * kRow) << "the bottom row stands at the bottom";
    rows.SetScrollTop(7 * kRow + 1);
    EXPECT_EQ(rows.ScrollTop(), 7 * kRow);
}

TEST_F(ArgumentScrolling, ALowClientAreaStillReachesTheBottomRow) {
    Fill(12);
    rows.SetClientHeight(kRow + 3);
    rows.SetScrollTop(1000);
    EXPECT_EQ(rows.TopOf(11), 3);
    rows.SetClientHeight(kRow / 2);
    rows.SetScrollTop(1000);
    EXPECT_EQ(rows.TopOf(11), 0);
    rows.SetClientHeight(0);
    EXPECT_EQ(rows.TopOf(11), 0);
    EXPECT_EQ(SpanText(0), "11 to 11");
}

TEST_F(ArgumentScrolling, AClientAreaThatGrowsBackTakesTheOffsetWithIt) {
    Fill(12);
    rows.SetScrollTop(1000);
    rows.SetClientHeight(8 * kRow);
    EXPECT_EQ(rows.ScrollTop(), 4 * kRow);
    rows.SetClientHeight(20 * kRow);
    EXPECT_EQ(rows.ScrollTop(), 0);
}

TEST_F(ArgumentScrolling, FewerRowsTakeTheOffsetWithThem) {
    Fill(12);
    rows.SetScrollTop(6 * kRow);
    auto buttons = Buttons();
    buttons.pop_back();
    rows.SetButtons(buttons);
    EXPECT_EQ(rows.ScrollTop(), 6 * kRow);
    buttons.resize(7);
    rows.SetButtons(buttons);
    EXPECT_EQ(rows.ScrollTop(), 2 * kRow);
}

TEST_F(ArgumentScrolling, OtherRowHeightsKeepTheOffsetInTheRange) {
    Fill(12);
    rows.SetScrollTop(1000);
    rows.SetRowHeight(kRow / 2);
    EXPECT_EQ(rows.ScrollTop(), kRow);
    rows.SetRowHeight(0);
    EXPECT_EQ(rows.RowHeight(), 1);
}

TEST_F(ArgumentScrolling, RowsInViewAreThoseOfWhichAPixelIsSeen) {
    Fill(12);
    EXPECT_EQ(SpanText(0), "0 to 5");
    rows.SetScrollTop(1);
    EXPECT_EQ(SpanText(0), "0 to 6");
    rows.SetScrollTop(kRow);
    EXPECT_EQ(SpanText(0), "1 to 6");
    EXPECT_EQ(SpanText(1), "0 to 7");
    EXPECT_EQ(SpanText(4), "0 to 10");
    EXPECT_EQ(SpanText(100), "0 to 12");
}

TEST_F(ArgumentScrolling, ARowComesIntoViewByAsLittleAsItTakes) {
    Fill(12);
    rows.BringIntoView(4);
    EXPECT_EQ(rows.ScrollTop(), 0);
    rows.BringIntoView(5);
    EXPECT_EQ(rows.ScrollTop(), kRow);
    rows.SetScrollTop(3 * kRow + 7);
    rows.BringIntoView(3);
    EXPECT_EQ(rows.ScrollTop(), 3 * kRow);
    rows.BringIntoView(11);
    EXPECT_EQ(rows.ScrollTop(), 7 * kRow);
    rows.SetClientHeight(kRow / 2);
    rows.BringIntoView(8);
    EXPECT_EQ(rows.TopOf(8), 0) << "where there is no room for a row, its top is seen";
}

TEST_F(ArgumentScrolling, WhateverComesTheRangeHolds) {
    std::mt19937 random(7);
    const auto below = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    Fill(40);
    int client = 5 * kRow;
    for (int step = 0; step < 5000; ++step) {
        auto buttons = Buttons();
        switch (below(5)) {
            case 0:
                buttons.resize(static_cast<size_t>(below(41)));
                rows.SetButtons(buttons);
                break;
            case 1:
                rows.SetClientHeight(client = below(900));
                break;
            case 2:
                rows.SetRowHeight(below(40));
                break;
            case 3:
                if (rows.Count() > 0) rows.BringIntoView(random() % rows.Count());
                break;
            default:
                rows.SetScrollTop(below(2000) - 500);
        }
        ASSERT_GE(rows.ScrollTop(), 0);
        ASSERT_LE(rows.ScrollTop(), rows.LastScrollTop());
        const ArgumentRows::Span span = rows.InView(0);
        ASSERT_LE(span.end, rows.Count());
        for (size_t row = 0; row < rows.Count(); ++row) {
            const int top = rows.TopOf(row);
            ASSERT_EQ(span.Contains(row), top + rows.RowHeight() > 0 && top < client) << "row " << row;
        }
    }
}

TEST_F(ArgumentRowsTest, AButtonThatHasGoneLeavesItsRowEmpty) {
    Fill(3);
    const COpButton* second = &Input(1);
    const COpButton* last = &Input(2);
    EXPECT_EQ(rows.ButtonAt(1), second);
    box->inputs.erase(box->inputs.begin());
    EXPECT_EQ(rows.Count(), 3U);
    EXPECT_EQ(rows.ButtonAt(0), nullptr);
    EXPECT_EQ(rows.ButtonAt(1), second);
    EXPECT_EQ(rows.ButtonAt(2), last);
}

TEST_F(ArgumentRowsTest, NameAndCommentBelongToArgumentsAndTheFlagToWhatMayBeOne) {
    Fill(1);
    COpButton& button = Input(0);
    const auto editable = [&button] {
        return std::vector{IsEditable(button, Field::kFlag), IsEditable(button, Field::kName),
                           IsEditable(button, Field::kComment)};
    };
    EXPECT_THAT(editable(), ElementsAre(true, false, false));
    button.arg = 1;
    EXPECT_THAT(editable(), ElementsAre(true, true, true));
    button.disableargflag = 1;
    EXPECT_THAT(editable(), ElementsAre(false, true, true));
    button.arg = 0;
    EXPECT_THAT(editable(), ElementsAre(false, false, false));
}

class ArgumentOrder : public ArgumentRowsTest {
  protected:
    // Where the key leads from one field after another, until it is back at the first one.
    std::string Way(bool forward) {
        std::string way;
        const auto first = rows.Next({}, forward);
        for (auto at = first; at; at = rows.Next(at, forward)) {
            const std::string text =
                std::to_string(at->row) + "fnc"[static_cast<size_t>(at->field)] + std::string(" ");
            if (at == first && !way.empty()) break;
            way += text;
        }
        return way;
    }
};

TEST_F(ArgumentOrder, GoesThroughFlagNameAndCommentToTheNextRow) {
    Fill(3);
    Input(1).arg = 1;
    EXPECT_EQ(Way(true), "0f 1f 1n 1c 2f ");
    EXPECT_EQ(Way(false), "2f 1c 1n 1f 0f ");
}

TEST_F(ArgumentOrder, PassesOverWhatCannotBeUsed) {
    Fill(4);
    Input(0).disableargflag = 1;
    Input(1).disableargflag = Input(1).arg = 1;
    Input(3).disableargflag = 1;
    EXPECT_EQ(Way(true), "1n 1c 2f ");
    EXPECT_EQ(Way(false), "2f 1c 1n ");
}

TEST_F(ArgumentOrder, BeginsWithTheFirstRowInView) {
    rows.SetRowHeight(kRow);
    rows.SetClientHeight(kRow);
    Fill(4);
    rows.SetScrollTop(2 * kRow);
    EXPECT_EQ(rows.Next({}, true), (ArgumentPlace{2, Field::kFlag}));
    EXPECT_EQ(rows.Next({}, false), (ArgumentPlace{1, Field::kFlag}));
}

TEST_F(ArgumentOrder, StaysWhereThereIsNothingElseAndEndsWhereThereIsNothing) {
    Fill(2);
    Input(0).disableargflag = 1;
    const ArgumentPlace only{1, Field::kFlag};
    EXPECT_EQ(rows.Next(only, true), only);
    EXPECT_EQ(rows.Next(only, false), only);
    Input(1).disableargflag = 1;
    EXPECT_EQ(rows.Next(only, true), std::nullopt);
    EXPECT_EQ(rows.Next({}, false), std::nullopt);
}

TEST_F(ArgumentOrder, GoesDownAndUpAColumnAsFarAsItCanBeUsed) {
    Fill(5);
    Input(1).arg = Input(3).arg = 1;
    EXPECT_EQ(rows.Beyond({0, Field::kName}, true), (ArgumentPlace{1, Field::kName}));
    EXPECT_EQ(rows.Beyond({1, Field::kComment}, true), (ArgumentPlace{3, Field::kComment}));
    EXPECT_EQ(rows.Beyond({3, Field::kComment}, false), (ArgumentPlace{1, Field::kComment}));
    EXPECT_EQ(rows.Beyond({3, Field::kFlag}, true), (ArgumentPlace{4, Field::kFlag}));
    EXPECT_EQ(rows.Beyond({3, Field::kName}, true), std::nullopt);
    EXPECT_EQ(rows.Beyond({1, Field::kName}, false), std::nullopt);
    EXPECT_EQ(rows.Beyond({0, Field::kFlag}, false), std::nullopt);
}

TEST_F(ArgumentOrder, PassesOverRowsWhoseButtonsHaveGone) {
    Fill(3);
    box->inputs.erase(box->inputs.begin() + 1);
    EXPECT_EQ(Way(true), "0f 2f ");
}

}  // namespace
}  // namespace tavrin
