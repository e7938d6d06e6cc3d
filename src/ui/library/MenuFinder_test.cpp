// SPDX-License-Identifier: Apache-2.0
#include "ui/library/MenuFinder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QPalette>

#include "ui/library/TestLibrary.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::ClickRow;
using test::DoubleClickRow;
using test::ListOf;
using test::RowsOf;
using test::SelectedIn;
using test::TestLibrary;
using testing::ElementsAre;
using testing::IsEmpty;

class MenuFinderTest : public testing::Test {
  protected:
    MenuFinderTest() : finder(nullptr, library.registry, [this](uint32_t id) { chosen.push_back(id); }) {
        finder.Refresh();
    }
    bool HasChosen() {
        return test::WaitUntil([&] { return !chosen.empty(); });
    }

    TestLibrary library{"0100.Patterns/0100.Noise", "0200.mix", "0300.Multiply", "0400.add", "0500.2Tone"};
    std::vector<uint32_t> chosen;
    MenuFinder finder;
};

const QString kHeadingA = "------------ A -------------------------------";
const QString kHeadingM = "------------ M -------------------------------";

TEST_F(MenuFinderTest, ListsAllOperatorsUnderTheirLettersWithoutRegardToCase) {
    EXPECT_EQ(finder.windowTitle(), "Menu Finder");
    EXPECT_EQ(RowsOf(finder), (QStringList{"------------ 2 -------------------------------", "2Tone",
                                           kHeadingA, "add", kHeadingM, "mix", "Multiply",
                                           "------------ N -------------------------------", "Noise"}));
}

TEST_F(MenuFinderTest, ALetterOfSeveralBytesIsWholeInItsHeading) {
    library.Add({"0600.\xC3\xA9tage"});
    finder.Refresh();
    EXPECT_EQ(RowsOf(finder).mid(9),
              (QStringList{QString::fromUtf8("------------ \xC3\xA9 -------------------------------"),
                           QString::fromUtf8("\xC3\xA9tage")}));
}

TEST_F(MenuFinderTest, ADoubleClickChoosesTheOperatorOnce) {
    test::ShowUp(finder);
    DoubleClickRow(finder, "Multiply");
    ASSERT_TRUE(HasChosen());
    test::HandleEvents();
    EXPECT_THAT(chosen, ElementsAre(library.IdOf("Multiply")));
}

TEST_F(MenuFinderTest, OneClickOrAnotherButtonChoosesNothing) {
    test::ShowUp(finder);
    ClickRow(finder, "Multiply");
    DoubleClickRow(finder, "Noise", Qt::RightButton);
    test::HandleEvents();
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(MenuFinderTest, EnterChoosesTheSelectedOperator) {
    test::ShowUp(finder);
    ClickRow(finder, "mix");
    QTest::keyClick(&ListOf(finder), Qt::Key_Return);
    ASSERT_TRUE(HasChosen());
    QTest::keyClick(&ListOf(finder), Qt::Key_Enter);
    ASSERT_TRUE(test::WaitUntil([&] { return chosen.size() == 2; }));
    EXPECT_THAT(chosen, ElementsAre(library.IdOf("mix"), library.IdOf("mix")));
}

TEST_F(MenuFinderTest, AHeadingCanBeSelectedAndDoesNothing) {
    test::ShowUp(finder);
    DoubleClickRow(finder, kHeadingM);
    EXPECT_EQ(SelectedIn(finder), kHeadingM);
    QTest::keyClick(&ListOf(finder), Qt::Key_Return);
    test::HandleEvents();
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(MenuFinderTest, EnterWithNothingSelectedDoesNothing) {
    test::ShowUp(finder);
    test::MakeCurrentUnselected(finder, 1);
    QTest::keyClick(&ListOf(finder), Qt::Key_Return);
    test::HandleEvents();
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(MenuFinderTest, TheNameIsLookedUpWhenItIsChosen) {
    test::ShowUp(finder);
    const uint32_t before = library.IdOf("mix");
    library.Add({"0100.First"});
    ASSERT_NE(library.IdOf("mix"), before);
    DoubleClickRow(finder, "mix");
    ASSERT_TRUE(HasChosen());
    EXPECT_THAT(chosen, ElementsAre(library.IdOf("mix")));
    library.registry.Clear();
    DoubleClickRow(finder, "mix");
    test::HandleEvents();
    EXPECT_EQ(chosen.size(), 1U) << "a name that the library has no more does nothing";
}

TEST_F(MenuFinderTest, RefreshShowsTheReloadedLibrary) {
    library.registry.Clear();
    finder.Refresh();
    EXPECT_THAT(RowsOf(finder), IsEmpty());
    library.Add({"0600.nest"});
    finder.Refresh();
    EXPECT_EQ(RowsOf(finder).mid(7),
              (QStringList{"------------ N -------------------------------", "nest", "Noise"}));
}

TEST_F(MenuFinderTest, TypingFindsOperatorsAndNoHeadings) {
    library.Add({"0600.---"});
    finder.Refresh();
    test::ShowUp(finder);
    QTest::keyClicks(&ListOf(finder), "mu");
    EXPECT_EQ(SelectedIn(finder), "Multiply");
    ListOf(finder).keyboardSearch(QString());  // begins anew
    QTest::keyClicks(&ListOf(finder), "--");
    EXPECT_EQ(SelectedIn(finder), "---");
}

TEST_F(MenuFinderTest, ALockedFinderChoosesNothing) {
    test::ShowUp(finder);
    finder.SetLocked(true);
    EXPECT_FALSE(finder.isEnabled());
    DoubleClickRow(finder, "mix");
    test::HandleEvents();
    EXPECT_THAT(chosen, IsEmpty());
    finder.SetLocked(false);
    DoubleClickRow(finder, "mix");
    EXPECT_TRUE(HasChosen());
}

TEST_F(MenuFinderTest, IsBlackOnItsOwnBackgroundInADarkPalette) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(QPalette(Qt::white, QColor(40, 40, 40), Qt::gray, Qt::black, Qt::gray, Qt::white,
                                      QColor(30, 30, 30)));
    test::ShowUp(finder);
    const QListView& list = ListOf(finder);
    const QImage picture = finder.grab().toImage();
    EXPECT_EQ(picture.pixelColor(picture.width() - 3, picture.height() - 3), QColor(250, 240, 240));
    EXPECT_EQ(list.palette().color(QPalette::Active, QPalette::Text), QColor(Qt::black));
    EXPECT_EQ(list.palette().color(QPalette::Inactive, QPalette::Text), QColor(Qt::black));
    QApplication::setPalette(before);
}

TEST_F(MenuFinderTest, ASelectionShowsWhileAnotherWindowIsActive) {
    test::ShowUp(finder);
    ClickRow(finder, "mix");
    QWidget other;
    test::ShowActive(other);
    const QPoint place(finder.width() / 2, test::PlaceOf(finder, "mix").y());
    const QImage picture = finder.grab().toImage();
    const QColor colour = picture.pixelColor(place * picture.devicePixelRatio());
    EXPECT_LT(colour.lightness(), 128) << colour.name().toStdString();
}

}  // namespace
}  // namespace tavrin
