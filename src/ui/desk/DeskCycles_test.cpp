// SPDX-License-Identifier: Apache-2.0
// Networks that lead back to themselves, as a file can bring them, in a real window: they are drawn, dragged
// and looked along like others, and a circle that is cut open is a network like any other.
#include <gtest/gtest.h>

#include "ui/desk/DeskPaneTest.h"

namespace tavrin {
namespace {

using test::kLine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// Four boxes in a ring, a fifth that feeds itself, and a sixth apart.
class DeskCycles : public test::DeskPaneTest {
  protected:
    void ShowRing() {
        std::string text = "tavrn-version 1\ntavrn-renderer mini\nopdesk\n{\n";
        const auto box = [&](int wid, int x, int y) {
            text += "opbox { filename link wid " + std::to_string(wid) + " xypos " + std::to_string(x) + " " +
                    std::to_string(y) + " opboxdefs { maxinstances 0 } }\n";
        };
        host.startsProcesses = false;
        host.AddOperator(
            "link", "input in {\nfloat { 0 0 1 0 %g }\nhelp {\nthe input\n}\n}\noutput out { float out }\n");
        box(1, 100, 100);
        box(2, 300, 100);
        box(3, 500, 250);
        box(4, 100, 250);
        box(5, 400, 380);
        box(6, 150, 380);
        text += "opconnects\n{\n";
        for (const auto& [from, to] : {std::pair{1, 2}, {2, 3}, {3, 4}, {4, 1}, {5, 5}}) {
            text += "opbox:link," + std::to_string(from) + ",out,0 -> opbox:link," + std::to_string(to) +
                    ",in,0\n";
        }
        ASSERT_TRUE(Load(text + "}\n}\n")) << Alerts().back();
        ASSERT_THAT(document.m_boxes, SizeIs(6));
        ASSERT_THAT(document.OrderBoxes(), SizeIs(1));
        Show();
    }
    COpBox& Box(int wid) {
        for (const auto& box : document.m_boxes) {
            if (box->wid == wid) return *box;
        }
        throw std::logic_error("no such box");
    }
    QPoint InputOf(int wid) { return At(ButtonRect(ButtonPlace::Of(*Box(wid).inputs.at(0))).Middle()); }
    QPoint OutputOf(int wid) { return At(ButtonRect(ButtonPlace::Of(*Box(wid).outputs.at(0))).Middle()); }
    DeskPoint MiddleOfWireTo(int wid) {
        const COpButton& input = *Box(wid).inputs.at(0);
        const Polyline line = ConnectionPolyline(ButtonPlace::Of(*input.connections.First()),
                                                 ButtonPlace::Of(input), document.linetype == 1);
        const DeskPoint from = line.points[line.count / 2 - 1];
        const DeskPoint to = line.points[line.count / 2];
        return {(from.x + to.x) / 2, (from.y + to.y) / 2};
    }
};

TEST_F(DeskCycles, AreDrawnInBothKindsOfLines) {
    ShowRing();
    document.drawlinesoverboxes = 1;  // the box that feeds itself lies on its own line
    for (const int type : {0, 1}) {
        document.linetype = type;
        Look();
        for (const int wid : {1, 2, 3, 4, 5}) {
            const DeskPoint at = MiddleOfWireTo(wid);
            EXPECT_GT(Count(DeskRect{at.x, at.y, 0, 0}.GrownBy(4), kLine), 0) << type << " to " << wid;
        }
    }
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(DeskCycles, ABoxOfTheRingIsDragged) {
    ShowRing();
    const float left = BoxRect(Box(2)).left;
    const QPoint title = TitleOf(Box(2));
    Press(title);
    Drag(title + QPoint(40, 10));
    Release(title + QPoint(40, 10));
    EXPECT_EQ(BoxRect(Box(2)).left, left + 40);
    Look();
}

TEST_F(DeskCycles, AButtonIsLookedAtFromOutsideAndFromInside) {
    ShowRing();
    Press(OutputOf(6));
    Drag(InputOf(2));
    EXPECT_EQ(status, "the input");
    Look();
    Drag(At({600, 20}));
    Release(At({600, 20}));
    Click(At({600, 20}));  // nothing is picked any more
    Press(OutputOf(2));
    Drag(InputOf(1));
    EXPECT_THAT(status, HasSubstr("endless loop"));
    Look();
    Drag(InputOf(6));
    Release(InputOf(6));
    EXPECT_TRUE(Box(6).inputs.at(0)->connections.Contains(*Box(2).outputs.at(0)));
}

TEST_F(DeskCycles, ALineIsClickedAndDeletedAndTheRestIsOpen) {
    ShowRing();
    Click(At(MiddleOfWireTo(3)));
    ASSERT_THAT(desk.m_selectedConnects, ElementsAre(Box(3).inputs.at(0).get()));
    desk.DeleteSelection();
    EXPECT_THAT(document.OrderBoxes(), SizeIs(5));
    Look();
}

TEST_F(DeskCycles, RewiringAnInputOpensTheRingAndTheBoxThatFeedsItself) {
    ShowRing();
    Press(OutputOf(6));
    Drag(InputOf(1));
    Release(InputOf(1));
    EXPECT_THAT(document.OrderBoxes(), SizeIs(5));
    Click(OutputOf(6));
    Click(InputOf(5));
    EXPECT_THAT(document.OrderBoxes(), SizeIs(6));
    EXPECT_THAT(Alerts(), IsEmpty());
}

}  // namespace
}  // namespace tavrin
