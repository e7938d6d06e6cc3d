// SPDX-License-Identifier: Apache-2.0
#include "forms/FormGrid.h"

#include <gtest/gtest.h>

#include <limits>

#include "forms/FormFrame.h"

namespace tavrin {

namespace {

constexpr FormOrientation kVertical = FormOrientation::kVertical;
constexpr FormOrientation kHorizontal = FormOrientation::kHorizontal;

void ExpectAt(const FormGrid& grid, const std::vector<FormPoint>& points) {
    ASSERT_EQ(grid.positions.size(), points.size());
    for (size_t i = 0; i < points.size(); ++i) {
        EXPECT_EQ(grid.positions[i].x, points[i].x) << i;
        EXPECT_EQ(grid.positions[i].y, points[i].y) << i;
    }
}

std::vector<FormSize> Equal(size_t count, int width = 10, int height = 20) {
    return std::vector<FormSize>(count, FormSize{width, height});
}

}  // namespace

TEST(FormGrid, OneChildIsCentredInItsPaddedCell) {
    const FormGrid grid = LayoutGrid(kVertical, 1, 6, 6, {{100, 20}});
    ExpectAt(grid, {{9, 9}});
    EXPECT_EQ(grid.contentWidth, 6 + 106 + 6);
    EXPECT_EQ(grid.contentHeight, 6 + 26 + 6);
}

TEST(FormGrid, VerticalFillsColumnsFromTopToBottom) {
    const FormGrid grid = LayoutGrid(kVertical, 2, 5, 8, Equal(4));
    ExpectAt(grid, {{9, 9}, {9, 37}, {27, 9}, {27, 37}});
    EXPECT_EQ(grid.contentWidth, 5 + 18 + 18 + 5);
    EXPECT_EQ(grid.contentHeight, 5 + 28 + 28 + 5);
}

TEST(FormGrid, HorizontalFillsRowsFromLeftToRight) {
    const FormGrid grid = LayoutGrid(kHorizontal, 2, 5, 8, Equal(4));
    ExpectAt(grid, {{9, 9}, {27, 9}, {9, 37}, {27, 37}});
    EXPECT_EQ(grid.contentWidth, 5 + 18 + 18 + 5);
    EXPECT_EQ(grid.contentHeight, 5 + 28 + 28 + 5);
}

TEST(FormGrid, HorizontalMeasuresRowsByHeightAndCellsByWidth) {
    const FormGrid grid = LayoutGrid(kHorizontal, 1, 0, 0, {{10, 40}, {30, 20}});
    ExpectAt(grid, {{0, 0}, {10, 10}});
    EXPECT_EQ(grid.contentWidth, 40);
    EXPECT_EQ(grid.contentHeight, 40);
}

TEST(FormGrid, FiveChildrenInThreeColumnsStandTwoTwoOne) {
    const FormGrid grid = LayoutGrid(kVertical, 3, 0, 0, Equal(5));
    ExpectAt(grid, {{0, 0}, {0, 20}, {10, 0}, {10, 20}, {20, 0}});
    EXPECT_EQ(grid.contentWidth, 30);
    EXPECT_EQ(grid.contentHeight, 40);
}

TEST(FormGrid, FourChildrenInThreeColumnsLeaveTheThirdEmpty) {
    const FormGrid grid = LayoutGrid(kVertical, 3, 6, 0, Equal(4));
    ExpectAt(grid, {{6, 6}, {6, 26}, {16, 6}, {16, 26}});
    EXPECT_EQ(grid.contentWidth, 6 + 10 + 10 + 0 + 6);
    EXPECT_EQ(grid.contentHeight, 6 + 20 + 20 + 6);
}

TEST(FormGrid, ALaterChildWithinTheSpacingDoesNotWidenTheColumn) {
    EXPECT_EQ(LayoutGrid(kVertical, 1, 0, 6, {{100, 1}, {106, 1}}).contentWidth, 106);
    EXPECT_EQ(LayoutGrid(kVertical, 1, 0, 6, {{100, 1}, {107, 1}}).contentWidth, 113);
    EXPECT_EQ(LayoutGrid(kHorizontal, 1, 0, 6, {{1, 100}, {1, 106}}).contentHeight, 106);
}

TEST(FormGrid, CentringShiftsRightByOneBit) {
    // The cell is 6 wide, fixed by a child of 6 - 3 = 3; half of 3 is 1, and half of -1 is -1.
    ExpectAt(LayoutGrid(kVertical, 1, 0, 3, {{3, 10}}), {{1, 1}});
    ExpectAt(LayoutGrid(kVertical, 1, 0, -1, {{3, 10}}), {{-1, -1}});
}

TEST(FormGrid, ACountBelowOneIsOneGroup) {
    for (const int count : {0, -1, -7, std::numeric_limits<int>::min()}) {
        const FormGrid grid = LayoutGrid(kVertical, count, 0, 0, Equal(3));
        ExpectAt(grid, {{0, 0}, {0, 20}, {0, 40}});
        EXPECT_EQ(grid.contentWidth, 10) << count;
    }
}

TEST(FormGrid, AHugeCountCostsNothing) {
    const FormGrid grid = LayoutGrid(kVertical, std::numeric_limits<int>::max(), 1, 0, Equal(2));
    ExpectAt(grid, {{1, 1}, {11, 1}});
    EXPECT_EQ(grid.contentWidth, 22);
}

TEST(FormGrid, HoldsAnyNumberOfChildren) {
    const FormGrid rows = LayoutGrid(kVertical, 1, 0, 0, Equal(100000));
    EXPECT_EQ(rows.positions.back().y, 20 * 99999);
    const FormGrid columns = LayoutGrid(kVertical, 100000, 0, 0, Equal(100000));
    EXPECT_EQ(columns.positions.back().x, 10 * 99999);
}

TEST(FormGrid, SumsBeyondAnIntAreHeldAtItsEnd) {
    const int most = std::numeric_limits<int>::max();
    const FormGrid grid = LayoutGrid(kVertical, 2, 6, 6, {{most, most}, {most, -most}});
    EXPECT_EQ(grid.contentWidth, most);
    EXPECT_EQ(grid.contentHeight, most);
    EXPECT_EQ(grid.positions[0].x, 9);
    EXPECT_EQ(grid.positions[1].x, most);
}

TEST(FormGrid, NoChildrenGiveAnEmptyGrid) {
    const FormGrid grid = LayoutGrid(kVertical, 3, 6, 6, {});
    EXPECT_TRUE(grid.positions.empty());
    EXPECT_EQ(grid.contentWidth, 0);
    EXPECT_EQ(grid.contentHeight, 0);
}

TEST(FormFrameGrid, PlaceUsesTheFramesFieldsAndKeepsTheExtent) {
    CFormFrame frame;
    frame.orientation = kHorizontal;
    frame.count = 2;
    const auto points = frame.Place(Equal(2));
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points[1].y, 6 + 26 + 3);
    EXPECT_EQ(frame.contentWidth, 6 + 16 + 6);
    EXPECT_EQ(frame.contentHeight, 6 + 26 + 26 + 6);

    EXPECT_TRUE(frame.Place({}).empty());
    EXPECT_EQ(frame.contentWidth, 6 + 16 + 6) << "a frame without children does nothing";
}

TEST(FormFrameGrid, DefaultsOfFrameAndRoot) {
    const CFormFrame frame;
    EXPECT_EQ(frame.orientation, kVertical);
    EXPECT_EQ(frame.count, 1);
    EXPECT_EQ(frame.margin, 6);
    EXPECT_EQ(frame.spacing, 6);
    EXPECT_EQ(frame.contentWidth, 0);
    EXPECT_EQ(frame.contentHeight, 0);
    EXPECT_EQ(CFormFrame::kTemplateSize.width, 356);
    EXPECT_EQ(CFormFrame::kTemplateSize.height, 272);
    const CRenderOptionsEditor root;
    EXPECT_EQ(root.count, 1);
    EXPECT_EQ(root.margin, 5);
    EXPECT_EQ(root.spacing, 8);
    EXPECT_EQ(CRenderOptionsEditor::kTemplateSize.width, 187);
    EXPECT_EQ(CRenderOptionsEditor::kTemplateSize.height, 98);
}

}  // namespace tavrin
