// SPDX-License-Identifier: Apache-2.0
// The way from an error back to its box: links in the log, marks on the desk, the help of a marked box.
#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QWindow>
#include <filesystem>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/log/LogEdit.h"
#include "ui/log/LogWindow.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;

using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kMessage =
    "Untitled: line 4 (box Constant_2, operator Constant, menu/Constant line 9): no good";

class ErrorMarks : public test::FrameTest {
  protected:
    void Filter(const std::string& text) {
        fs::permissions(directory.Write("tavrin/tiny/bin/codefilter", "#!/usr/bin/perl\n" + text),
                        fs::perms::owner_all);
    }
    void FilterFails() { Filter("print STDERR \"" + std::string(kMessage) + "\\n\";\nexit 1;\n"); }
    void StartWithBoxes(int count = 3) {
        Start();
        AddBoxes(count);
        for (int wid = 2; wid <= count; ++wid)
            Desk().MoveBox(BoxOf(wid), static_cast<float>(wid - 1) * 130, 0);
        Settle();
    }
    void Render() {
        QTest::keyClick(&Frame(), Qt::Key_F1);
        ASSERT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
    }
    COpBox& BoxOf(int wid) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == wid) return *box;
        }
        throw std::out_of_range("no box of that number");
    }
    std::vector<int> Selected() {
        std::vector<int> selected;
        for (const auto& box : Document().m_boxes) {
            if (box->selected != 0) selected.push_back(box->wid);
        }
        return selected;
    }
    LogWindow& LogShown() {
        auto& log = Frame().Windows().Get<LogWindow>();
        if (!log.isVisible()) Do(CommandId::kDisplayLog);
        EXPECT_TRUE(
            WaitUntil([&log] { return log.windowHandle() != nullptr && log.windowHandle()->isExposed(); }));
        log.Flush();
        return log;
    }
    // Clicks the middle of a text in the log, as a hand does.
    void ClickInLog(const QString& text) {
        LogEdit& edit = LogShown().Edit();
        const QTextCursor found = edit.document()->find(text);
        ASSERT_FALSE(found.isNull()) << Bytes(text);
        QTextCursor at = found;
        at.setPosition(found.selectionStart() + static_cast<int>(text.size()) / 2);
        edit.ensureCursorVisible();
        QTest::mouseClick(edit.viewport(), Qt::LeftButton, {}, edit.cursorRect(at).center());
        Settle();
    }
    QPoint InDesk(DeskPoint point) {
        const WindowPoint at = Frame().Desk().View().ToWindow(point);
        return {static_cast<int>(at.x), static_cast<int>(at.y)};
    }
    // Whether the badge of a mark is on the corner of the box.
    bool IsMarked(int wid) {
        const DeskRect rect = BoxRect(BoxOf(wid));
        const QImage seen = Frame().Desk().Desk().grabFramebuffer();
        const QPoint at = InDesk({rect.left - 6, rect.Top()}) * seen.devicePixelRatio();
        if (!seen.rect().contains(at)) return false;
        const QColor color = seen.pixelColor(at);
        return color.red() > 150 && color.green() < 80 && color.blue() < 80;
    }
    std::string StatusOver(DeskPoint point) {
        const QPoint at = Frame().Desk().Desk().mapTo(&Frame(), InDesk(point));
        QTest::mouseMove(Frame().windowHandle(), at - QPoint(3, 3));
        QTest::mouseMove(Frame().windowHandle(), at);
        Settle();
        return Bytes(Frame().StatusBox().Status());
    }
};

TEST_F(ErrorMarks, AClickOnABoxThatAnErrorNamesLeadsToItAndLightsIt) {
    FilterFails();
    StartWithBoxes();
    Render();
    Document().zoomFactor = 4;
    Frame().Desk().CentreOnBox("Constant_1");
    Desk().MoveBox(BoxOf(2), 5000, 3000);
    Settle();
    ClickInLog("Constant_2");
    EXPECT_THAT(Selected(), ElementsAre(2));
    EXPECT_TRUE(Frame().Desk().View().Visible().Contains(BoxRect(BoxOf(2)).Middle()));
    EXPECT_EQ(Frame().Desk().LitBox(), "Constant_2");
    EXPECT_TRUE(WaitUntil([this] { return Frame().Desk().LitBox().empty(); })) << "for a while";
}

TEST_F(ErrorMarks, TheBoxIsShownBesideTheLogThatLiesOverTheDesk) {
    FilterFails();
    StartWithBoxes();
    Render();
    LogWindow& log = LogShown();
    const QRect desk(Frame().Desk().Desk().mapToGlobal(QPoint(0, 0)), Frame().Desk().Desk().size());
    for (const bool isLeft : {true, false}) {
        const int third = desk.width() / 3;
        log.resize(2 * third, desk.height() - 100);
        log.move(isLeft ? desk.left() : desk.left() + third - 20, desk.top() + 20);
        Settle();
        ASSERT_TRUE(WaitUntil([&log, isLeft, &desk, third] {
            return std::abs(log.x() - (isLeft ? desk.left() : desk.left() + third - 20)) < 40;
        }));
        test::FocusOn(log.Edit());
        ClickInLog("Constant_2");
        const DeskRect box = BoxRect(BoxOf(2));
        for (const DeskPoint corner : box.Corners()) {
            const QPoint at = Frame().Desk().Desk().mapToGlobal(InDesk(corner));
            EXPECT_TRUE(desk.contains(at));
            EXPECT_FALSE(log.frameGeometry().contains(at)) << isLeft;
        }
    }
}

TEST_F(ErrorMarks, ABoxThatIsGoneIsNoLinkAndComesBackAsOne) {
    FilterFails();
    StartWithBoxes();
    Render();
    Desk().SelectBox("Constant_2");
    Desk().CutBoxes();
    Desk().SelectBox("Constant_3");
    Settle();
    ClickInLog("Constant_2");
    EXPECT_THAT(Selected(), ElementsAre(3));
    Do(CommandId::kUndo);
    Do(CommandId::kUndo);
    Settle();
    ClickInLog("Constant_2");
    EXPECT_THAT(Selected(), ElementsAre(2));
}

TEST_F(ErrorMarks, ALockedDeskIsShownTheBoxAndSelectsNone) {
    FilterFails();
    StartWithBoxes();
    Render();
    Desk().SelectBox("Constant_3");
    Do(CommandId::kLockDesk);
    Settle();
    ClickInLog("Constant_2");
    EXPECT_THAT(Selected(), ElementsAre(3));
    EXPECT_EQ(Frame().Desk().LitBox(), "Constant_2");
}

TEST_F(ErrorMarks, ABoxWithAnErrorBearsAMarkUntilTheNextRun) {
    StartWithBoxes();
    Frame().Desk().CentreOnBox("Constant_2");
    Settle();
    EXPECT_FALSE(IsMarked(2));
    const std::string before = test::ReadFile(directory / "tavrin/tiny/bin/codefilter");
    FilterFails();
    Render();
    EXPECT_TRUE(IsMarked(2));
    EXPECT_FALSE(IsMarked(1));
    EXPECT_FALSE(IsMarked(3));
    Filter(before);
    Render();
    EXPECT_FALSE(IsMarked(2)) << "the next run has no error";
}

TEST_F(ErrorMarks, WhatARenderSaysMarksBoxesAsWell) {
    StartWithBoxes();
    Frame().Desk().CentreOnBox("Constant_2");
    fs::permissions(directory.Write("tavrin/tiny/bin/renderit",
                                    "#!/usr/bin/perl\nprint STDERR \"x: warning: box Constant_3: odd\\n" +
                                        std::string(kMessage) + "\\n\";\nexit 1;\n"),
                    fs::perms::owner_all);
    Render();
    EXPECT_TRUE(IsMarked(2));
    EXPECT_FALSE(IsMarked(3)) << "a warning is no error";
}

TEST_F(ErrorMarks, AnotherDocumentHasNone) {
    FilterFails();
    StartWithBoxes();
    Render();
    EXPECT_FALSE(Frame().Work().session.marks.IsEmpty());
    Document().SetModified(false);
    ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("other", 3)));
    Settle();
    EXPECT_TRUE(Frame().Work().session.marks.IsEmpty());
}

TEST_F(ErrorMarks, TheHelpOfAMarkedBoxBeginsWithTheMessage) {
    FilterFails();
    StartWithBoxes();
    Frame().Desk().CentreOnBox("Constant_2");
    Settle();
    const auto title = [this](int wid) { return TitleRect(BoxOf(wid)).Middle(); };
    const std::string help = StatusOver(title(2));
    EXPECT_THAT(help, Not(HasSubstr("no good")));
    StatusOver(title(1));
    Render();
    EXPECT_THAT(StatusOver(title(2)), StartsWith(std::string(kMessage)));
    EXPECT_THAT(StatusOver(title(2)), HasSubstr(help));
    EXPECT_THAT(StatusOver(title(1)), Not(HasSubstr("no good")));
}

}  // namespace
}  // namespace tavrin
