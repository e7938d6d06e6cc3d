// SPDX-License-Identifier: Apache-2.0
#include "ui/library/BoxFinder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QScrollBar>
#include <algorithm>

#include "ui/library/TestLibrary.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::ClickRow;
using test::DoubleClickRow;
using test::ListOf;
using test::SelectedIn;
using testing::ElementsAre;
using testing::IsEmpty;

class BoxFinderTest : public testing::Test {
  protected:
    BoxFinderTest()
        : finder(nullptr,
                 {[this](const std::string& name) { centred.push_back(name); }, [this] { ++repaints; }}) {}

    void Add(std::initializer_list<const char*> names) {
        for (const char* name : names) finder.AddName(name);
    }
    QStringList Rows() {
        test::HandleEvents();
        return test::RowsOf(finder);
    }

    std::vector<std::string> centred;
    int repaints = 0;
    BoxFinder finder;
};

TEST_F(BoxFinderTest, NamesAreSortedWithoutRegardToCase) {
    EXPECT_EQ(finder.windowTitle(), "Box Finder");
    Add({"noise_1", "Mix_2", "add_1", "Noise_3", "mix_10"});
    EXPECT_EQ(Rows(), (QStringList{"add_1", "mix_10", "Mix_2", "noise_1", "Noise_3"}));
}

TEST_F(BoxFinderTest, ANameIsRemovedByItsExactTextAlone) {
    Add({"Mix_1", "mix_1", "Mix_12", "Mix_1"});
    finder.RemoveName("MIX_1");
    finder.RemoveName("Mix");
    finder.RemoveName("");
    EXPECT_EQ(Rows(), (QStringList{"Mix_1", "Mix_1", "mix_1", "Mix_12"}));
    finder.RemoveName("Mix_1");
    EXPECT_EQ(Rows(), (QStringList{"Mix_1", "mix_1", "Mix_12"}));
}

TEST_F(BoxFinderTest, TheListIsRightWhenTheWindowShows) {
    Add({"b_1", "a_1"});
    finder.show();
    EXPECT_EQ(test::RowsOf(finder), (QStringList{"a_1", "b_1"}));
}

TEST_F(BoxFinderTest, TenThousandNamesAreAllThereInOrder) {
    constexpr int kCount = 10000;
    for (int i = 0; i < kCount; ++i) finder.AddName("Box_" + std::to_string(10000 + (i * 7919) % kCount));
    EXPECT_THAT(test::RowsOf(finder), IsEmpty()) << "the list is filled once, when all are known";
    const QStringList rows = Rows();
    ASSERT_EQ(rows.size(), kCount);
    EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end()));
    EXPECT_EQ(rows.front(), "Box_10000");
}

TEST_F(BoxFinderTest, ADoubleClickCentresOnTheBoxWhichIsThenCurrent) {
    Add({"Mix_1", "Noise_2"});
    test::ShowUp(finder);
    EXPECT_EQ(finder.CurrentName(), "");
    DoubleClickRow(finder, "Noise_2");
    EXPECT_THAT(centred, ElementsAre("Noise_2"));
    EXPECT_EQ(finder.CurrentName(), "Noise_2");
}

TEST_F(BoxFinderTest, TheNameIsCurrentBeforeTheDeskIsAskedToCentre) {
    std::string during;
    BoxFinder* asked = nullptr;
    BoxFinder window(nullptr, {[&](const std::string&) { during = asked->CurrentName(); }, [] {}});
    asked = &window;
    window.AddName("Mix_1");
    test::ShowUp(window);
    DoubleClickRow(window, "Mix_1");
    EXPECT_EQ(during, "Mix_1");
}

TEST_F(BoxFinderTest, EnterChoosesTheSelectedBoxAndOneClickNone) {
    Add({"Mix_1", "Noise_2"});
    test::ShowUp(finder);
    test::MakeCurrentUnselected(finder, 0);
    QTest::keyClick(&ListOf(finder), Qt::Key_Return);
    EXPECT_THAT(centred, IsEmpty()) << "nothing is selected";
    ClickRow(finder, "Mix_1");
    EXPECT_THAT(centred, IsEmpty());
    QTest::keyClick(&ListOf(finder), Qt::Key_Return);
    QTest::keyClicks(&ListOf(finder), "noi");
    QTest::keyClick(&ListOf(finder), Qt::Key_Enter);
    EXPECT_THAT(centred, ElementsAre("Mix_1", "Noise_2"));
    EXPECT_EQ(finder.CurrentName(), "Noise_2");
}

TEST_F(BoxFinderTest, ClosingForgetsTheCurrentNameAndRepaintsTheDesk) {
    Add({"Mix_1"});
    test::ShowUp(finder);
    DoubleClickRow(finder, "Mix_1");
    finder.close();
    EXPECT_EQ(finder.CurrentName(), "");
    EXPECT_EQ(repaints, 1);
    EXPECT_FALSE(finder.isVisible());
    EXPECT_EQ(Rows(), QStringList{"Mix_1"});
}

TEST_F(BoxFinderTest, HidingByItsCommandKeepsTheCurrentName) {
    Add({"Mix_1"});
    test::ShowUp(finder);
    DoubleClickRow(finder, "Mix_1");
    finder.Toggle();
    EXPECT_EQ(finder.CurrentName(), "Mix_1");
    EXPECT_EQ(repaints, 0);
}

TEST_F(BoxFinderTest, ClearEmptiesTheListAndTheCurrentName) {
    Add({"Mix_1"});
    test::ShowUp(finder);
    DoubleClickRow(finder, "Mix_1");
    finder.Clear();
    EXPECT_EQ(finder.CurrentName(), "");
    EXPECT_THAT(Rows(), IsEmpty());
    Add({"Noise_1"});
    EXPECT_EQ(Rows(), QStringList{"Noise_1"});
}

TEST_F(BoxFinderTest, ASelectionAndTheScrolledPlaceOutliveOtherBoxes) {
    for (int i = 100; i < 300; ++i) finder.AddName("Box_" + std::to_string(i));
    test::ShowUp(finder);
    ClickRow(finder, "Box_250");
    constexpr int kScrolled = 20;  // the selected row is out of view
    ListOf(finder).verticalScrollBar()->setValue(kScrolled);
    Add({"Zoom_1"});
    finder.RemoveName("Box_299");
    EXPECT_EQ(Rows().back(), "Zoom_1");
    EXPECT_EQ(SelectedIn(finder), "Box_250");
    EXPECT_EQ(ListOf(finder).verticalScrollBar()->value(), kScrolled);
    finder.RemoveName("Box_250");
    Rows();
    EXPECT_TRUE(SelectedIn(finder).isNull());
}

TEST_F(BoxFinderTest, ALockedFinderCentresOnNothing) {
    Add({"Mix_1"});
    test::ShowUp(finder);
    finder.SetLocked(true);
    EXPECT_FALSE(finder.isEnabled());
    DoubleClickRow(finder, "Mix_1");
    EXPECT_THAT(centred, IsEmpty());
    finder.SetLocked(false);
    DoubleClickRow(finder, "Mix_1");
    EXPECT_THAT(centred, ElementsAre("Mix_1"));
}

TEST_F(BoxFinderTest, HasItsOwnColours) {
    Add({"Mix_1"});
    test::ShowUp(finder);
    const QImage picture = finder.grab().toImage();
    EXPECT_EQ(picture.pixelColor(picture.width() - 3, picture.height() - 3), QColor(190, 210, 210));
    EXPECT_EQ(ListOf(finder).palette().color(QPalette::Inactive, QPalette::Text), QColor(0, 10, 0));
}

}  // namespace
}  // namespace tavrin
