// SPDX-License-Identifier: Apache-2.0
// The Edit commands on the desk, by keys and the mouse in the whole frame.
#include <QCursor>
#include <QTest>
#include <QWindow>

#include "document/EditHistory.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::FocusOn;
using test::FrameTest;
using test::PressKeys;
using test::WaitUntil;

class DeskClipboardKeys : public FrameTest {
  protected:
    void StartWithBoxes(int count) {
        Start();
        AddBoxes(count);
        Desk().UnselectAllBoxes();
        Document().SetModified(false);
        FocusOn(Frame().Desk());
        PutCursor(OutsideDesk());
    }
    DeskWidget& Widget() { return Frame().Desk().Desk(); }
    QPoint Middle() { return Widget().mapTo(&Frame(), Widget().rect().center()); }
    QPoint OutsideDesk() { return {5, Frame().height() - 5}; }
    // Also tells the frame's window of it, as a pointer that moves there would.
    void PutCursor(QPoint inFrame) {
        const QPoint global = Frame().mapToGlobal(inFrame);
        QCursor::setPos(global);
        ASSERT_TRUE(WaitUntil([&] { return QCursor::pos() == global; }));
        QTest::mouseMove(Frame().windowHandle(), inFrame);
        Settle();
    }
    void Press(const QString& keys) {
        Settle();  // the rules follow
        PressKeys(keys);
        Settle();
    }
    DeskPoint DeskAt(QPoint inFrame) {
        const QPoint at = Widget().mapFrom(&Frame(), inFrame);
        return Frame().Desk().View().ToDesk({static_cast<float>(at.x()), static_cast<float>(at.y())});
    }
    size_t Pending() { return Desk().m_pendingBoxes.size(); }
    size_t Boxes() { return Document().m_boxes.size(); }
};

TEST_F(DeskClipboardKeys, APastedGroupHangsByItsFirstAnchorUnderTheCursorAndDropsAtAClick) {
    StartWithBoxes(2);
    Press("Ctrl+A");
    Press("Ctrl+C");
    EXPECT_FALSE(Document().IsModified());
    PutCursor(Middle());
    Press("Ctrl+V");
    ASSERT_EQ(Pending(), 2U);
    EXPECT_TRUE(Desk().m_pendingPlaced);
    EXPECT_FLOAT_EQ(Desk().m_pendingBoxes.at(0)->xypos[0], DeskAt(Middle()).x);
    EXPECT_FLOAT_EQ(Desk().m_pendingBoxes.at(0)->xypos[1], DeskAt(Middle()).y);
    QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, {}, Middle());
    EXPECT_EQ(Pending(), 0U);
    EXPECT_EQ(Boxes(), 4U);
    EXPECT_EQ(Document().m_boxes.front()->BoxTitleWid(), "Constant_4");
}

// Where the library wants it.
TEST_F(DeskClipboardKeys, WhatIsPastedWithThePointerElsewhereIsSeenAtOnceAndGoesAlongWhenThatComes) {
    const std::string site = "tavrin/tiny/tavrn.def";
    directory.Write(site, test::ReadFile(directory / site) + "desk.copiesinsight 1\ndesk.plainanchors 1\n");
    StartWithBoxes(1);
    Desk().MoveBox(*Document().m_boxes.front(), 9000, 5000);
    Press("Ctrl+A");
    Press("Ctrl+C");
    const QImage before = Widget().grabFramebuffer();
    Press("Ctrl+V");
    ASSERT_EQ(Pending(), 1U);
    const COpBox& copy = *Desk().m_pendingBoxes.front();
    EXPECT_TRUE(Frame().Desk().View().Visible().Encloses(BoxRect(copy)));
    EXPECT_NE(Widget().grabFramebuffer(), before) << "it is painted";
    const QPoint place = Middle() + QPoint(60, 40);
    PutCursor(place);
    const DeskPoint middle = BoxRect(copy).Middle();
    EXPECT_NEAR(middle.x, DeskAt(place).x, 1);
    EXPECT_NEAR(middle.y, DeskAt(place).y, 1);
    QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, {}, place);
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_EQ(Document().History()->Name(Document().History()->Place() - 1), "Paste");
}

TEST_F(DeskClipboardKeys, PastedFromOutsideTheGroupJumpsUnderThePointerWhenThatComes) {
    StartWithBoxes(1);
    Press("Ctrl+A");
    Press("Ctrl+X");
    EXPECT_EQ(Boxes(), 0U);
    Press("Ctrl+V");
    ASSERT_EQ(Pending(), 1U);
    EXPECT_FALSE(Desk().m_pendingPlaced);
    PutCursor(Middle());
    EXPECT_TRUE(Desk().m_pendingPlaced);
    const COpBox& box = *Desk().m_pendingBoxes.front();
    EXPECT_FLOAT_EQ(box.xypos[0], DeskAt(Middle()).x);
}

TEST_F(DeskClipboardKeys, TheDeleteKeyDropsWhatWaitsUnderTheMouse) {
    StartWithBoxes(1);
    Press("Ctrl+A");
    Press("Ctrl+C");
    Press("Ctrl+V");
    ASSERT_EQ(Pending(), 1U);
    Press("Delete");
    EXPECT_EQ(Pending(), 0U);
    EXPECT_EQ(Boxes(), 1U);
    EXPECT_FALSE(IsEnabled(CommandId::kDelete));
}

TEST_F(DeskClipboardKeys, CopyWithNothingSelectedIsNotReachedAndTheClipboardStays) {
    StartWithBoxes(1);
    Press("Ctrl+A");
    Press("Ctrl+C");
    Desk().UnselectAllBoxes();
    Press("Ctrl+C");
    EXPECT_TRUE(IsEnabled(CommandId::kPaste));
}

TEST_F(DeskClipboardKeys, BoxesAreCopiedFromOneDocumentToTheNext) {
    StartWithBoxes(2);
    Press("Ctrl+A");
    Press("Ctrl+C");
    ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("next", 1)));
    PutCursor(Middle());
    FocusOn(Frame().Desk());
    Press("Ctrl+V");
    QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, {}, Middle());
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_TRUE(Document().IsModified());
}

}  // namespace
}  // namespace tavrin
