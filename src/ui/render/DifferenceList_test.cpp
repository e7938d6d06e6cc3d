// SPDX-License-Identifier: Apache-2.0
// The table of differences: its groups, what stays where it was, and that it is bounded.
#include "ui/render/DifferenceList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTest>

#include "render/DifferenceTexts.h"
#include "ui/base/Text.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = Difference::Kind;

class DifferenceListTest : public testing::Test {
  protected:
    void Add(Kind kind, const std::string& what) {
        Difference& added = differences.emplace_back(MakeDifference(kind, what, "1", "2"));
        added.box = "Noise_1";
        added.button = what;
    }
    void Show() {
        list.Show(differences, [](const Difference&) { return true; });
        test::ShowActive(list);
    }
    std::vector<std::string> Groups() {
        std::vector<std::string> titles;
        for (int i = 0; i < list.topLevelItemCount(); ++i)
            titles.push_back(Bytes(list.topLevelItem(i)->text(0)));
        return titles;
    }

    std::vector<Difference> differences;
    std::vector<size_t> went;
    DifferenceList list{nullptr, [this](size_t place) { went.push_back(place); }};
};

TEST_F(DifferenceListTest, GroupsStandInTheOrderOfTheirWeight) {
    for (const Kind kind : {Kind::kHelp, Kind::kOption, Kind::kValue, Kind::kArgument, Kind::kWire,
                            Kind::kInput, Kind::kBox, Kind::kValue})
        Add(kind, "it");
    Show();
    EXPECT_THAT(Groups(), ElementsAre("Boxes (1)", "Inputs (1)", "Wires (1)", "Values (2)", "Arguments (1)",
                                      "Render Options (1)", "Shader Help (1)"));
}

TEST_F(DifferenceListTest, ADoubleClickTellsThePlaceAmongTheDifferences) {
    Add(Kind::kOption, "SIZE");
    Add(Kind::kValue, "Noise_1 scale");
    Show();
    list.resize(700, 200);
    const QTreeWidgetItem* row = list.topLevelItem(0)->child(0);
    ASSERT_EQ(row->text(0), "Noise_1 scale");
    const QPoint at = list.visualItemRect(row).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, at);
    EXPECT_THAT(went, IsEmpty()) << "a single click only selects";
    EXPECT_THAT(list.Selected(), ElementsAre(1U));
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, at);
    EXPECT_THAT(went, ElementsAre(1U));
    // A group is nowhere to go to.
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {},
                       list.visualItemRect(list.topLevelItem(0)).center());
    EXPECT_EQ(went.size(), 1U);
}

TEST_F(DifferenceListTest, WhatWasSelectedFoldedAndScrolledStaysSo) {
    for (int i = 0; i < 100; ++i) Add(Kind::kValue, "Noise_" + std::to_string(i) + " scale");
    Add(Kind::kOption, "SIZE");
    list.resize(400, 200);
    Show();
    list.topLevelItem(0)->child(40)->setSelected(true);
    list.topLevelItem(1)->setExpanded(false);
    list.verticalScrollBar()->setValue(30);
    differences.erase(differences.begin());
    Show();
    EXPECT_THAT(list.Selected(), ElementsAre(39U));
    EXPECT_TRUE(list.topLevelItem(0)->isExpanded());
    EXPECT_FALSE(list.topLevelItem(1)->isExpanded());
    EXPECT_EQ(list.verticalScrollBar()->value(), 30);
}

TEST_F(DifferenceListTest, ThousandsAreBoundedAndCounted) {
    for (size_t i = 0; i < DifferenceList::kMostRows + 500; ++i)
        Add(Kind::kValue, "Noise_" + std::to_string(i) + " scale");
    Add(Kind::kOption, "SIZE");
    Show();
    EXPECT_THAT(Groups(), ElementsAre("Values (2500)", "Render Options (1)"));
    const QTreeWidgetItem& values = *list.topLevelItem(0);
    EXPECT_EQ(values.childCount(), static_cast<int>(DifferenceList::kMostRows) + 1);
    EXPECT_EQ(values.child(values.childCount() - 1)->text(0), "and 500 more");
    EXPECT_EQ(list.topLevelItem(1)->child(0)->text(0), "and 1 more");
}

TEST_F(DifferenceListTest, NamesFromFilesAreNeverReadAsMarkup) {
    Add(Kind::kValue, "<b>Noise</b>_1 scale");
    Show();
    EXPECT_EQ(list.topLevelItem(0)->child(0)->text(0), "<b>Noise</b>_1 scale");
    EXPECT_THAT(Bytes(list.topLevelItem(0)->child(0)->toolTip(0)), testing::HasSubstr("&lt;b&gt;Noise"));
}

}  // namespace
}  // namespace tavrin
