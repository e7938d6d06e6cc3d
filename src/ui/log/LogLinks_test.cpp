// SPDX-License-Identifier: Apache-2.0
// Names of boxes in the log lead to them.
#include "ui/log/LogLinks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <QTest>
#include <set>

#include "ui/log/LogEdit.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LogLinksTest : public testing::Test {
  protected:
    LogLinksTest() {
        edit.SetLinks(Needs());
        edit.resize(500, 200);
    }
    LogLinks::Needs Needs() {
        return {[this](const std::string& box) { return standing.contains(box); },
                [this](const std::string& box) { visited.push_back(box); }};
    }
    std::vector<std::string> In(const QString& row) {
        std::vector<std::string> found;
        for (const auto& link : LogLinks(Needs()).In(row)) {
            found.push_back(row.mid(link.start, link.length).toStdString() + "=" + link.box);
        }
        return found;
    }
    void Show(const std::string& text) {
        edit.Apply({false, false, text});
        test::ShowActive(edit);
    }
    // The middle of a character of the first row.
    QPoint PlaceOf(int position) {
        QTextCursor cursor(edit.document()->firstBlock());
        cursor.setPosition(position);
        const QRect left = edit.cursorRect(cursor);
        cursor.movePosition(QTextCursor::NextCharacter);
        return {(left.left() + edit.cursorRect(cursor).left()) / 2, left.center().y()};
    }
    void Click(int position) { QTest::mouseClick(edit.viewport(), Qt::LeftButton, {}, PlaceOf(position)); }

    std::set<std::string> standing{"Noise_3", "My.Op_12", "Mix_1", "Clear Coat_12"};
    std::vector<std::string> visited;
    LogEdit edit{nullptr, 100'000};
};

TEST_F(LogLinksTest, NamesOfBoxesThatStandAreLinksWhateverStandsAroundThem) {
    EXPECT_THAT(In("marble: line 12 (box Noise_3): 'x' : undeclared"), ElementsAre("Noise_3=Noise_3"));
    EXPECT_THAT(In("Noise_3, Mix_1; \"My.Op_12\"."),
                ElementsAre("Noise_3=Noise_3", "Mix_1=Mix_1", "My.Op_12=My.Op_12"));
    EXPECT_THAT(In("see Noise_3."), ElementsAre("Noise_3=Noise_3"));
    EXPECT_THAT(In("Noise_4 Noise_ Noise _3 3 Noise_33 xNoise_3 Noise_3_out Noise_3000000000000"), IsEmpty());
    EXPECT_THAT(In("line 4 (box Clear Coat_12, operator Clear Coat)"),
                ElementsAre("Clear Coat_12=Clear Coat_12"));
    EXPECT_THAT(In("Coat_12 Clear  Coat_12 (Coat_12 xClear Coat_12"), IsEmpty());
    EXPECT_THAT(In(""), IsEmpty());
}

TEST_F(LogLinksTest, AClickOnANameGoesThere) {
    Show("error in Noise_3 here\n");
    Click(9);
    Click(15);
    EXPECT_THAT(visited, ElementsAre("Noise_3", "Noise_3"));
}

TEST_F(LogLinksTest, AClickBesideANameGoesNowhere) {
    Show("error in Noise_3 here\n");
    Click(8);
    Click(16);
    QTest::mouseClick(edit.viewport(), Qt::LeftButton, {}, QPoint(400, PlaceOf(9).y()));
    QTest::mouseClick(edit.viewport(), Qt::LeftButton, {}, QPoint(PlaceOf(12).x(), 150));
    EXPECT_THAT(visited, IsEmpty());
}

TEST_F(LogLinksTest, ANameWhoseBoxHasGoneLeadsNowhere) {
    Show("error in Noise_3 here\n");
    standing.clear();
    Click(12);
    EXPECT_THAT(visited, IsEmpty());
}

TEST_F(LogLinksTest, WhoSelectsTextGoesNowhere) {
    Show("error in Noise_3 here\n");
    QTest::mousePress(edit.viewport(), Qt::LeftButton, {}, PlaceOf(2));
    QTest::mouseMove(edit.viewport(), PlaceOf(12));
    QTest::mouseRelease(edit.viewport(), Qt::LeftButton, {}, PlaceOf(12));
    EXPECT_TRUE(edit.textCursor().hasSelection());
    EXPECT_THAT(visited, IsEmpty());
}

TEST_F(LogLinksTest, TheHandShowsOverANameAlone) {
    Show("error in Noise_3 here\n");
    QTest::mouseMove(edit.viewport(), PlaceOf(12));
    const auto shows = [this](Qt::CursorShape shape) {
        return test::WaitUntil([this, shape] { return edit.viewport()->cursor().shape() == shape; });
    };
    EXPECT_TRUE(shows(Qt::PointingHandCursor));
    QTest::mouseMove(edit.viewport(), PlaceOf(2));
    EXPECT_TRUE(shows(Qt::IBeamCursor));
}

TEST_F(LogLinksTest, ANameIsUnderlinedWhileItsBoxStands) {
    Show("error in Noise_3 here\n");
    const QImage with = edit.viewport()->grab().toImage();
    standing.clear();
    const QImage without = edit.viewport()->grab().toImage();
    ASSERT_EQ(with.size(), without.size());
    const qreal ratio = with.devicePixelRatio();
    const int left = static_cast<int>(PlaceOf(9).x() * ratio);
    const int right = static_cast<int>(PlaceOf(15).x() * ratio);
    int inside = 0;
    int outside = 0;
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x) {
            if (with.pixel(x, y) == without.pixel(x, y)) continue;
            const int slack = right - left;
            (x > left - slack && x < right + slack ? inside : outside) += 1;
        }
    }
    EXPECT_GE(inside, right - left);
    EXPECT_EQ(outside, 0);
}

}  // namespace
}  // namespace tavrin
