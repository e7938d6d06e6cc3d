// SPDX-License-Identifier: Apache-2.0
// Frames and notes by real events in a real window: dragged, resized, named where they stand, and painted.
#include <QMenu>
#include <QPlainTextEdit>

#include "desk/FrameGeometry.h"
#include "document/EditHistory.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPaneTest.h"

namespace tavrin {
namespace {

using test::HandleEvents;
using test::IsColor;
using test::WaitUntil;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class DeskFrames : public test::DeskPaneTest {
  protected:
    DeskFrames() { document.KeepHistory(); }

    int Put(DeskRect rect, const std::string& text = "Title",
            DeskFrame::Kind kind = DeskFrame::Kind::kFrame) {
        AddFrame(document.frames, {.kind = kind,
                                   .color = 2,
                                   .left = rect.left,
                                   .bottom = rect.bottom,
                                   .width = rect.width,
                                   .height = rect.height,
                                   .text = text});
        return document.frames.rbegin()->first;
    }
    int PutNote(DeskRect rect, const std::string& text) { return Put(rect, text, DeskFrame::Kind::kNote); }
    DeskFrame& Frame(int number) { return document.frames.at(number); }
    QPlainTextEdit& Editor() { return *pane->findChild<QPlainTextEdit*>(); }
    bool IsEditing() {
        const auto* editor = pane->findChild<QPlainTextEdit*>();
        return editor != nullptr && editor->isVisible();
    }
    void DoubleClick(QPoint at) {
        Click(at);
        QTest::mouseDClick(&pane->Desk(), Qt::LeftButton, {}, at);
        HandleEvents();
    }
    std::vector<std::string> Steps() {
        std::vector<std::string> steps;
        for (size_t i = 0; i < document.History()->Count(); ++i) steps.push_back(document.History()->Name(i));
        return steps;
    }
    // A place of the bar that is no corner.
    QPoint Bar(int number) { return At(FrameHandle(Frame(number), 1).Middle()); }
};

TEST_F(DeskFrames, AFrameIsDraggedByItsBarAndTakesItsBoxesAlong) {
    COpBox& box = PutLink(250, 200);
    const int frame = Put({100, 100, 300, 200});
    Show();
    const DeskRect before = BoxRect(box);
    Press(Bar(frame));
    Drag(Bar(frame) + QPoint(20, 0));
    const QPoint end = Bar(frame) + QPoint(30, -40);
    Drag(end);
    Release(end);
    EXPECT_EQ(Frame(frame).left, 150);
    EXPECT_EQ(Frame(frame).bottom, 140);
    EXPECT_EQ(BoxRect(box).left, before.left + 50);
    EXPECT_THAT(Steps(), ElementsAre("Move"));
}

TEST_F(DeskFrames, ACornerIsDraggedAndThePointerTellsSo) {
    const int frame = Put({100, 100, 300, 200});
    Show();
    const QPoint corner = At(FrameCorner(Frame(frame), 1, 1).Middle());
    MoveTo(corner);
    EXPECT_EQ(pane->Desk().cursor().shape(), Qt::SizeFDiagCursor);
    Press(corner);
    Drag(corner + QPoint(40, 30));
    Release(corner + QPoint(40, 30));
    EXPECT_EQ(FrameRect(Frame(frame)), (DeskRect{100, 70, 340, 230}));
    MoveTo(At({250, 200}));
    EXPECT_EQ(pane->Desk().cursor().shape(), Qt::ArrowCursor);
    EXPECT_THAT(Steps(), ElementsAre("Resize"));
}

TEST_F(DeskFrames, ADoubleClickOnTheBarEditsTheTitleUntilEnter) {
    const int frame = Put({100, 100, 300, 200});
    Show();
    DoubleClick(Bar(frame));
    ASSERT_TRUE(IsEditing());
    EXPECT_TRUE(Editor().hasFocus());
    EXPECT_EQ(Editor().toPlainText(), "Title");
    QTest::keyClicks(&Editor(), "Metal #1");
    EXPECT_EQ(Frame(frame).text, "Metal #1") << "what is typed takes the place of the whole text";
    QTest::keyClick(&Editor(), Qt::Key_Return);
    EXPECT_FALSE(IsEditing());
    EXPECT_TRUE(pane->hasFocus());
    EXPECT_EQ(Frame(frame).text, "Metal #1");
    EXPECT_THAT(Steps(), ElementsAre("Rename Frame")) << "one step for all keys";
    EXPECT_EQ(Frame(frame).left, 100) << "nothing was dragged";
}

TEST_F(DeskFrames, ANoteTakesLinesAndEscapeEndsIt) {
    const int note = PutNote({100, 100, 200, 100}, "old");
    Show();
    DoubleClick(At({200, 150}));
    ASSERT_TRUE(IsEditing());
    QTest::keyClicks(&Editor(), "one");
    QTest::keyClick(&Editor(), Qt::Key_Return);
    QTest::keyClicks(&Editor(), "two");
    QTest::keyClick(&Editor(), Qt::Key_Escape);
    EXPECT_FALSE(IsEditing());
    EXPECT_EQ(Frame(note).text, "one\ntwo");
    EXPECT_THAT(Steps(), ElementsAre("Edit Note"));
    desk.Undo();
    EXPECT_EQ(Frame(note).text, "old");
}

TEST_F(DeskFrames, ANoteGrowsDownwardWithItsTextUpToAPageAsTheSameStep) {
    const int note = PutNote({100, 300, 160, 60}, "n");
    Show();
    pane->EditFrame(note);
    QTest::keyClicks(&Editor(), "short");
    EXPECT_EQ(Frame(note).height, 60);
    for (int line = 0; line < 8; ++line) QTest::keyClick(&Editor(), Qt::Key_Return);
    EXPECT_GT(Frame(note).height, 100);
    EXPECT_NEAR(Frame(note).bottom + Frame(note).height, 360, 0.01F) << "its top stays";
    EXPECT_EQ(Frame(note).left, 100);
    Editor().insertPlainText(QString(10000, u'\n'));
    EXPECT_LE(Frame(note).height, 400);
    QTest::keyClick(&Editor(), Qt::Key_Escape);
    EXPECT_THAT(Steps(), ElementsAre("Edit Note"));
    desk.Undo();
    EXPECT_EQ(FrameRect(Frame(note)), (DeskRect{100, 300, 160, 60}));
}

TEST_F(DeskFrames, EachOpeningIsAStepOfItsOwn) {
    const int note = PutNote({100, 100, 200, 100}, "");
    Show();
    for (const char* text : {"a", "b"}) {
        pane->EditFrame(note);
        QTest::keyClicks(&Editor(), text);
        QTest::keyClick(&Editor(), Qt::Key_Return, Qt::ControlModifier);
        EXPECT_FALSE(IsEditing());
    }
    EXPECT_THAT(Steps(), ElementsAre("Edit Note", "Edit Note"));
}

TEST_F(DeskFrames, AClickOnTheDeskEndsTheTyping) {
    const int note = PutNote({100, 100, 200, 100}, "");
    Show();
    pane->EditFrame(note);
    QTest::keyClicks(&Editor(), "kept");
    const QPoint beside = pane->Desk().mapTo(pane.get(), At({500, 400}));
    QTest::mouseClick(pane->windowHandle(), Qt::LeftButton, {}, beside);
    EXPECT_TRUE(WaitUntil([&] { return !IsEditing(); }));
    EXPECT_EQ(Frame(note).text, "kept");
}

TEST_F(DeskFrames, TheFieldStandsWhereTheFrameIsAndFollowsTheView) {
    const int note = PutNote({100, 100, 300, 200}, "n");
    Show();
    pane->EditFrame(note);
    EXPECT_EQ(Editor().geometry().topLeft(), At({100, 300}));
    EXPECT_EQ(Editor().width(), 300);
    desk.ResizeFrame(note, 2, {420, 320});
    EXPECT_EQ(Editor().width(), 320);
    pane->ZoomOut();
    EXPECT_LT(Editor().width(), 320);
    document.offset[0] = -5000;
    pane->Repaint();
    EXPECT_TRUE(pane->Desk().rect().contains(Editor().geometry())) << "it stays in sight";
}

TEST_F(DeskFrames, TheFieldEndsWithItsFrameAndWithTheLock) {
    const int note = PutNote({100, 100, 300, 200}, "n");
    Show();
    pane->EditFrame(note);
    desk.DeleteFrame(note);
    EXPECT_FALSE(IsEditing());
    desk.Undo();
    pane->EditFrame(note);
    EXPECT_TRUE(IsEditing());
    Lock(true);
    pane->Repaint();
    EXPECT_FALSE(IsEditing());
    pane->EditFrame(note);
    EXPECT_FALSE(IsEditing()) << "nothing changes on a locked desk";
    pane->EditFrame(99);
    EXPECT_FALSE(IsEditing());
}

TEST_F(DeskFrames, AnUndoIsSeenInTheField) {
    const int note = PutNote({100, 100, 300, 200}, "before");
    Show();
    pane->EditFrame(note);
    QTest::keyClicks(&Editor(), "after");
    desk.Undo();
    EXPECT_EQ(Editor().toPlainText(), "before");
    EXPECT_EQ(Frame(note).text, "before");
}

TEST_F(DeskFrames, ATitleStaysOnOneLineAndBytesThatAreNoUtf8Stay) {
    const int frame = Put({100, 100, 300, 200}, "Gr\xFC\xDF");
    Show();
    pane->EditFrame(frame);
    Editor().moveCursor(QTextCursor::End);
    Editor().insertPlainText("\nx");
    EXPECT_EQ(Frame(frame).text, "Gr\xFC\xDF x");
}

TEST_F(DeskFrames, TheContextMenuColoursAndRenames) {
    const int frame = Put({100, 100, 300, 200});
    Show();
    MoveTo(Bar(frame));
    QTest::mousePress(&pane->Desk(), Qt::RightButton, {}, Bar(frame));
    QTest::mouseRelease(&pane->Desk(), Qt::RightButton, {}, Bar(frame));
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QStringList texts;
    for (const QAction* item : menu->actions()) texts << (item->isSeparator() ? "---" : item->text());
    EXPECT_EQ(Bytes(texts.join('|')), "Rename Frame|Color|---|Delete Frame");
    menu->actions().at(1)->menu()->actions().at(4)->trigger();
    EXPECT_EQ(Frame(frame).color, 4);
    menu->actions().at(0)->trigger();
    menu->close();
    EXPECT_TRUE(WaitUntil([&] { return IsEditing(); }));
}

TEST_F(DeskFrames, AreSeenBehindBoxesAndWires) {
    COpBox& box = PutLink(250, 180);
    const int frame = Put({100, 100, 300, 200});
    PutNote({450, 100, 120, 100}, "note");
    Show();
    Look();
    const Rgb& color = FrameColor(2);
    EXPECT_THAT(Seen(FrameHandle(Frame(frame), 1).Middle()), IsColor(color)) << "the bar";
    EXPECT_THAT(Seen({130, 130}), Not(IsColor(test::kBackground))) << "the frame is filled";
    EXPECT_THAT(Seen({130, 130}), Not(IsColor(color))) << "and paler than its bar";
    EXPECT_THAT(Seen(TitleRect(box).Middle()), Not(IsColor(color)));
    EXPECT_GT(Count(BoxRect(box), test::kGreen), 50) << "the box lies on it";
    EXPECT_THAT(Seen({500, 120}), Not(IsColor(test::kBackground)));
    EXPECT_GT(Count(FrameHandle(Frame(frame), 1), test::kInk), 10) << "the title can be read";
    EXPECT_GT(Count({450, 150, 120, 50}, test::kInk), 10);
    EXPECT_EQ(Count({80, 80, 340, 240}, test::kOutline), 0);
    desk.m_selectedFrames = {frame};
    Look();
    EXPECT_GT(Count({90, 90, 320, 220}, test::kOutline), 800) << "a selected one has an outline";
}

TEST_F(DeskFrames, AHugeOneIsSeenWhereverTheViewIsAndAWildTextIsPainted) {
    const int frame = Put({-1e6F, -1e6F, 1e6F, 1e6F}, std::string(1 << 20, 'w'));
    Frame(frame).left = -500000;
    Frame(frame).bottom = -500000;
    std::string wild(1 << 20, '\n');
    for (size_t i = 0; i < wild.size(); i += 2) wild[i] = static_cast<char>(i * 37);
    PutNote({200, 100, 200, 100}, wild);
    Show();
    for (const float zoom : {0.1F, 1.0F, 8.0F}) {
        document.zoomFactor = zoom;
        Look();
        EXPECT_THAT(Seen({20 / zoom, 20 / zoom}), Not(IsColor(test::kBackground))) << zoom;
    }
}

TEST_F(DeskFrames, ATitleStaysInSightWithItsBar) {
    Put({-2000, 100, 2400, 200}, "far away");
    Show();
    Look();
    EXPECT_GT(Count({0, 276, 120, 24}, test::kInk), 10);
}

TEST_F(DeskFrames, ATextThatDoesNotFitStaysInItsNote) {
    std::string text;
    for (int i = 0; i < 200; ++i) text += "words and words and ";
    PutNote({200, 200, 120, 60}, text);
    Show();
    Look();
    EXPECT_GT(Count({200, 200, 120, 60}, test::kInk), 50);
    EXPECT_EQ(Count({100, 100, 440, 98}, test::kInk), 0);
    EXPECT_EQ(Count({100, 264, 440, 100}, test::kInk), 0);
    EXPECT_EQ(Count({324, 100, 300, 300}, test::kInk), 0);
}

TEST_F(DeskFrames, ThoseThatWaitAreSeenUnderThePointer) {
    desk.m_selectedFrames = {PutNote({100, 100, 120, 80}, "n")};
    Show();
    desk.m_selectedFrames = {document.frames.begin()->first};
    desk.CopySelection();
    desk.PasteBoxes(DeskPoint{400, 300});
    Look();
    EXPECT_THAT(Seen({400, 280}), Not(IsColor(test::kBackground)));
    MoveTo(At({450, 350}));
    Click(At({450, 350}));
    EXPECT_EQ(document.frames.size(), 2U);
}

TEST_F(DeskFrames, OnALockedDeskNothingOfThemChanges) {
    const int frame = Put({100, 100, 300, 200});
    Show();
    const auto before = document.frames;
    Lock(true);
    const QPoint bar = pane->Desk().mapTo(pane.get(), Bar(frame));
    QTest::mousePress(pane->windowHandle(), Qt::LeftButton, {}, bar);
    QTest::mouseMove(pane->windowHandle(), bar + QPoint(50, 50));
    QTest::mouseRelease(pane->windowHandle(), Qt::LeftButton, {}, bar + QPoint(50, 50));
    QTest::mouseDClick(pane->windowHandle(), Qt::LeftButton, {}, bar);
    HandleEvents();
    EXPECT_EQ(document.frames, before);
    EXPECT_FALSE(IsEditing());
    EXPECT_THAT(Steps(), IsEmpty());
}

}  // namespace
}  // namespace tavrin
