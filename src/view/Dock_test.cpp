// SPDX-License-Identifier: Apache-2.0
#include "view/Dock.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

using Side = Dock::Side;

constexpr QRect kDesk(400, 100, 800, 600);
constexpr QSize kWindow(300, 200);

std::optional<Dock> At(int x, int y) { return Dock::Of(QRect(QPoint(x, y), kWindow), kDesk); }

TEST(Dock, AnEdgeWithinReachOfTheOthersOuterEdgeSnaps) {
    EXPECT_EQ(At(1200 + 24, 300), (Dock{Side::kRight, 200}));
    EXPECT_EQ(At(1200 - 24, 300), (Dock{Side::kRight, 200}));
    EXPECT_EQ(At(400 - 300 - 24, 300), (Dock{Side::kLeft, 200}));
    EXPECT_EQ(At(600, 700 + 24), (Dock{Side::kBottom, 200}));
    EXPECT_EQ(At(600, 100 - 200 + 24), (Dock{Side::kTop, 200}));
}

TEST(Dock, BeyondReachItDoesNot) {
    EXPECT_FALSE(At(1200 + 25, 300));
    EXPECT_FALSE(At(1200 - 25, 300));
    EXPECT_FALSE(At(400 - 300 - 25, 300));
    EXPECT_FALSE(At(600, 700 + 25));
    EXPECT_FALSE(At(600, 100 - 200 - 25));
    EXPECT_FALSE(At(600, 300)) << "in the middle of it";
}

TEST(Dock, AnEdgeThatIsNowhereBesideTheOtherIsNone) {
    EXPECT_FALSE(At(1200, 700 + 25));
    EXPECT_FALSE(At(1200, 100 - 200 - 25));
    EXPECT_TRUE(At(1200, 650));
}

TEST(Dock, EndsThatNearlyMeetSnapAsWell) {
    EXPECT_EQ(At(1190, 100 + 24), (Dock{Side::kRight, 0}));
    EXPECT_EQ(At(1190, 500 - 24), (Dock{Side::kRight, 400}));
    EXPECT_EQ(At(1190, 100 + 25), (Dock{Side::kRight, 25}));
}

TEST(Dock, ADockedWindowStandsAtTheEdgeWhereverTheOtherGoes) {
    const QRect moved(50, 60, 500, 400);
    EXPECT_EQ((Dock{Side::kRight, 30}).Place(kWindow, moved), QPoint(550, 90));
    EXPECT_EQ((Dock{Side::kLeft, 30}).Place(kWindow, moved), QPoint(-250, 90));
    EXPECT_EQ((Dock{Side::kBottom, 30}).Place(kWindow, moved), QPoint(80, 460));
    EXPECT_EQ((Dock{Side::kTop, 30}).Place(kWindow, moved), QPoint(80, -140));
    for (const Side side : {Side::kLeft, Side::kRight, Side::kTop, Side::kBottom}) {
        const Dock dock{side, 40};
        EXPECT_EQ(Dock::Of(QRect(dock.Place(kWindow, moved), kWindow), moved), dock);
    }
}

TEST(Dock, TheFirstPlaceIsAtTheRightElseAtTheLeftElseNone) {
    EXPECT_EQ(Dock::First(kWindow, kDesk, QRect(0, 0, 1500, 900)), (Dock{Side::kRight, 0}));
    EXPECT_EQ(Dock::First(kWindow, kDesk, QRect(0, 0, 1499, 900)), (Dock{Side::kLeft, 0}));
    EXPECT_EQ(Dock::First(kWindow, kDesk, QRect(101, 0, 1300, 900)), std::nullopt);
}

}  // namespace
}  // namespace tavrin
