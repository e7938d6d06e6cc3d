// SPDX-License-Identifier: Apache-2.0
// Two texts side by side in a real window: that both scroll together, where the keys lead, what is painted.
#include "ui/render/SourceColumns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QTest>
#include <string>

#include "ui/support/Windows.h"

namespace tavrin {
namespace {

class SourceColumnsTest : public testing::Test {
  protected:
    SourceColumnsTest() {
        for (int i = 0; i < 300; ++i) {
            const std::string line = "float v" + std::to_string(i) + " = 0.5;\n";
            left += line;
            if (i == 150) right += "// added\n";
            right += i == 50 || i == 250 ? "float v" + std::to_string(i) + " = 0.75;\n" : line;
        }
        columns.resize(700, 300);
    }
    void Show() {
        difference = CompareLines(left, right);
        columns.Show(&difference);
        test::ShowActive(columns);
        test::GiveFocus(columns);
    }
    bool IsInView(int row) {
        return row >= columns.FirstRowInView() && row < columns.FirstRowInView() + columns.RowsInView();
    }
    QImage Seen() { return columns.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32); }
    // Of one column in a row of those in view.
    QImage Half(int row, bool isLeft) {
        const QImage seen = Seen();
        const qreal ratio = columns.devicePixelRatioF();
        const int height = columns.fontMetrics().lineSpacing();
        const int middle = columns.viewport()->width() / 2;
        const QRect place(isLeft ? 0 : middle + 1, row * height, middle - 1, height);
        return seen.copy(QRectF(QPointF(place.topLeft()) * ratio, QSizeF(place.size()) * ratio).toRect());
    }
    static bool HasTint(const QImage& picture, const QPalette& palette) {
        const QRgb ground = palette.color(QPalette::Base).rgb();
        return picture.pixel(picture.width() - 2, 1) != ground;
    }

    std::string left;
    std::string right;
    LineDifference difference;
    SourceColumns columns{nullptr};
};

TEST_F(SourceColumnsTest, KeysLeadFromChangeToChange) {
    Show();
    ASSERT_EQ(columns.ChangeCount(), 3U);
    EXPECT_EQ(columns.CurrentChange(), -1);
    for (const int row : {50, 150, 251}) {
        QTest::keyClick(columns.viewport(), Qt::Key_N);
        EXPECT_TRUE(IsInView(row)) << columns.FirstRowInView();
    }
    QTest::keyClick(columns.viewport(), Qt::Key_N);
    EXPECT_EQ(columns.CurrentChange(), 2) << "beyond the last there is none";
    QTest::keyClick(columns.viewport(), Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(columns.CurrentChange(), 1);
    EXPECT_TRUE(IsInView(150));
    QTest::keyClick(columns.viewport(), Qt::Key_P);
    QTest::keyClick(columns.viewport(), Qt::Key_P);
    EXPECT_EQ(columns.CurrentChange(), 0);
}

TEST_F(SourceColumnsTest, TheFirstChangeIsSoughtFromWhatIsInView) {
    Show();
    columns.verticalScrollBar()->setValue(100);
    QTest::keyClick(columns.viewport(), Qt::Key_N);
    EXPECT_EQ(columns.CurrentChange(), 1);
}

TEST_F(SourceColumnsTest, ArrowsAndPagesScrollBothColumnsByRows) {
    Show();
    QTest::keyClick(columns.viewport(), Qt::Key_Down);
    EXPECT_EQ(columns.FirstRowInView(), 1);
    QTest::keyClick(columns.viewport(), Qt::Key_PageDown);
    EXPECT_EQ(columns.FirstRowInView(), 1 + columns.RowsInView());
    QTest::keyClick(columns.viewport(), Qt::Key_End);
    EXPECT_TRUE(IsInView(300));
    QTest::keyClick(columns.viewport(), Qt::Key_Home);
    EXPECT_EQ(columns.FirstRowInView(), 0);
}

TEST_F(SourceColumnsTest, TheSameLinesLookTheSameOnBothSides) {
    Show();
    columns.verticalScrollBar()->setValue(48);
    EXPECT_EQ(Half(0, true), Half(0, false));
    EXPECT_FALSE(HasTint(Half(0, true), columns.palette()));
    EXPECT_NE(Half(2, true), Half(2, false)) << "line 51 was changed";
    EXPECT_TRUE(HasTint(Half(2, true), columns.palette()));
    EXPECT_TRUE(HasTint(Half(2, false), columns.palette()));
    // Behind a line that was added the same lines still stand beside each other, under other numbers.
    columns.verticalScrollBar()->setValue(149);
    EXPECT_NE(Half(1, true), Half(1, false));
    EXPECT_FALSE(HasTint(Half(2, true), columns.palette()));
    EXPECT_FALSE(HasTint(Half(2, false), columns.palette()));
}

TEST_F(SourceColumnsTest, EachKindOfRowHasASignOfItsOwn) {
    const LineDifference found = CompareLines("a\nb\nc\nd\n", "x\nb\nd\ne\n");
    std::string signs;
    for (const LineRow& row : found.rows) signs += SourceColumns::SignOf(row).toLatin1();
    EXPECT_EQ(signs, "~ - +");
}

TEST_F(SourceColumnsTest, LongLinesScrollAcrossInBothColumns) {
    left = std::string(500, 'a') + "\n";
    right = left;
    Show();
    const QImage before = Half(0, true);
    ASSERT_GT(columns.horizontalScrollBar()->maximum(), 0);
    columns.horizontalScrollBar()->setValue(columns.horizontalScrollBar()->maximum());
    EXPECT_NE(Half(0, true), before);
    EXPECT_EQ(Half(0, true), Half(0, false));
}

TEST_F(SourceColumnsTest, WhatIsShownAnewStaysWhereItWas) {
    Show();
    columns.verticalScrollBar()->setValue(120);
    columns.Show(nullptr);
    EXPECT_EQ(columns.ChangeCount(), 0U);
    right += "float more;\n";
    Show();
    EXPECT_EQ(columns.FirstRowInView(), 120);
    EXPECT_EQ(columns.ChangeCount(), 4U);
}

TEST_F(SourceColumnsTest, HostileTextsArePainted) {
    left = std::string(10'000'000, '\t') + "\n\x1b[31m\xff\xfe\n";
    right = std::string("\0\0", 2) + "\n";
    for (int i = 0; i < 200'000; ++i) right += "\n";
    Show();
    EXPECT_FALSE(Seen().isNull());
    QTest::keyClick(columns.viewport(), Qt::Key_End);
    EXPECT_TRUE(IsInView(200'000));
    EXPECT_FALSE(Seen().isNull());
}

TEST_F(SourceColumnsTest, NothingIsPaintedOfNothing) {
    columns.Show(nullptr);
    test::ShowActive(columns);
    QTest::keyClick(columns.viewport(), Qt::Key_N);
    EXPECT_EQ(columns.CurrentChange(), -1);
    EXPECT_EQ(columns.ChangeCount(), 0U);
}

}  // namespace
}  // namespace tavrin
