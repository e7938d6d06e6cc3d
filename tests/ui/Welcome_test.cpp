// SPDX-License-Identifier: Apache-2.0
// What a desk with nothing on it says, and that it is in nobody's way.
#include <QDialog>
#include <QTest>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/desk/WelcomeHint.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::IsEmpty;
using testing::SizeIs;

class Welcome : public test::FrameTest {
  protected:
    void AddToSite(const std::string& lines) {
        const std::string path = "tavrin/tiny/tavrn.def";
        directory.Write(path, test::ReadFile(directory / path) + lines);
    }
    void StartWelcome(const std::string& more = "examples gallery\n") {
        directory.Write("tavrin/tiny/gallery/a.tvn", "opdesk {\nopbox { filename Constant wid 1 }\n}\n");
        AddToSite("desk.welcome 1\n" + more);
        Start();
        Settle();
    }
    QWidget& Pane() { return Frame().Desk().Desk(); }
    // Null where the library wants none.
    WelcomeHint* Hint() { return dynamic_cast<WelcomeHint*>(Pane().findChild<QWidget*>("welcome")); }
    bool Comes() {
        return WaitUntil([this] { return Hint()->isVisible(); });
    }
    bool Goes() {
        return WaitUntil([this] { return !Hint()->isVisible(); });
    }
    std::string Lines() { return Bytes(Hint()->Lines().join('|')); }
    // Through the window, as the platform would.
    void Click(const QPoint& at) {
        QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, {}, Pane().mapTo(&Frame(), at));
        Settle();
    }
    int m_opened = 0;
    void ExpectExamples() {
        test::WhenDialogComes([this](QDialog& dialog) {
            ++m_opened;
            EXPECT_EQ(Bytes(dialog.windowTitle()), "Examples");
            dialog.reject();
        });
    }
};

TEST_F(Welcome, ALibraryThatSaysNothingHasABareDesk) {
    Start();
    EXPECT_EQ(Hint(), nullptr);
    AddToSite("desk.welcome 0\n");
    Start();
    EXPECT_EQ(Hint(), nullptr);
}

TEST_F(Welcome, ItStandsOnAnEmptyDeskAndGoesWithTheFirstBox) {
    StartWelcome();
    EXPECT_TRUE(Comes());
    Desk().AddOperator("Constant");
    EXPECT_TRUE(Goes()) << "while a box waits at the mouse";
    Desk().DropPending();
    Settle();
    EXPECT_FALSE(Hint()->isVisible());
    test::PressWhenBoxComes("Discard");
    Do(CommandId::kNew);
    EXPECT_TRUE(Comes());
    Desk().AddOperator("Constant");
    EXPECT_TRUE(Goes());
    Do(CommandId::kDelete);  // throws away what waits
    EXPECT_TRUE(Comes());
}

TEST_F(Welcome, ALockedDeskInvitesNobody) {
    StartWelcome();
    ASSERT_TRUE(Comes());
    Do(CommandId::kLockDesk);
    EXPECT_TRUE(Goes());
    Do(CommandId::kLockDesk);
    EXPECT_TRUE(Comes());
}

TEST_F(Welcome, ItSaysOnlyWhatTheLibraryHas) {
    StartWelcome("");
    EXPECT_EQ(Lines(), "Choose operators from the menus");
    EXPECT_TRUE(Hint()->LinkRect().isEmpty());
    EXPECT_EQ(Bytes(Hint()->accessibleName()), "Choose operators from the menus");
    AddToSite("examples gallery\n");
    Start();
    EXPECT_EQ(Lines(), "or choose operators from the menus");
    EXPECT_FALSE(Hint()->LinkRect().isEmpty());
    AddToSite("desk.search 1\ncheck.outputboxes Add Constant\n");
    Start();
    EXPECT_EQ(Lines(),
              "or press Tab, or type, to search for an operator|"
              "A network ends in a Add box; F1 renders it");
    EXPECT_EQ(Bytes(Hint()->accessibleName().section('\n', 0, 0)), "Open an example");
}

TEST_F(Welcome, AClickOnItsLinkOpensTheExamples) {
    StartWelcome();
    ASSERT_TRUE(Comes());
    ExpectExamples();
    Click(Hint()->LinkRect().center());
    EXPECT_TRUE(WaitUntil([this] { return m_opened == 1; }));
}

TEST_F(Welcome, APressThatIsLetGoElsewhereOpensNothing) {
    StartWelcome();
    ASSERT_TRUE(Comes());
    const QPoint link = Pane().mapTo(&Frame(), Hint()->LinkRect().center());
    QTest::mousePress(Frame().windowHandle(), Qt::LeftButton, {}, link);
    QTest::mouseMove(Frame().windowHandle(), link + QPoint(0, 150));
    QTest::mouseRelease(Frame().windowHandle(), Qt::LeftButton, {}, link + QPoint(0, 150));
    Settle();
    EXPECT_EQ(Frame().Desk().Gestures().Current(), DeskGestures::Kind::kIdle);
    QTest::mouseClick(Frame().windowHandle(), Qt::RightButton, {}, link);
    Settle();
    EXPECT_EQ(m_opened, 0);
}

TEST_F(Welcome, EverythingBesideTheLinkBelongsToTheDesk) {
    StartWelcome();
    ASSERT_TRUE(Comes());
    const QPoint beside = Pane().mapTo(&Frame(), Hint()->LinkRect().center() + QPoint(0, 40));
    QTest::mousePress(Frame().windowHandle(), Qt::LeftButton, {}, beside);
    QTest::mouseMove(Frame().windowHandle(), beside + QPoint(20, 20));
    EXPECT_NE(Frame().Desk().Gestures().Current(), DeskGestures::Kind::kIdle);
    QTest::mouseRelease(Frame().windowHandle(), Qt::LeftButton, {}, beside + QPoint(20, 20));
}

// Before the desk has been painted again.
TEST_F(Welcome, ABoxThatWaitsAtTheMouseIsDroppedWhereTheLinkWas) {
    StartWelcome();
    ASSERT_TRUE(Comes());
    const QPoint link = Hint()->LinkRect().center();
    Desk().AddOperator("Constant");
    ASSERT_THAT(Desk().m_pendingBoxes, SizeIs(1));
    Click(link);
    EXPECT_THAT(Desk().m_pendingBoxes, IsEmpty());
    EXPECT_THAT(Document().m_boxes, SizeIs(1));
    Click(link + QPoint(250, 150));  // nothing is left of it
    EXPECT_EQ(m_opened, 0);
}

TEST_F(Welcome, ThePointerShowsTheLinkAndOnlyThat) {
    StartWelcome();
    ASSERT_TRUE(Comes());
    const QPoint link = Hint()->LinkRect().center();
    EXPECT_TRUE(
        test::HoverUntil(Pane(), link, [this] { return Pane().cursor().shape() == Qt::PointingHandCursor; }));
    EXPECT_TRUE(test::HoverUntil(Pane(), link + QPoint(0, 120),
                                 [this] { return Pane().cursor().shape() != Qt::PointingHandCursor; }));
    EXPECT_TRUE(
        test::HoverUntil(Pane(), link, [this] { return Pane().cursor().shape() == Qt::PointingHandCursor; }));
    Desk().AddOperator("Constant");
    EXPECT_TRUE(WaitUntil([this] { return Pane().cursor().shape() != Qt::PointingHandCursor; }));
}

TEST_F(Welcome, ItStaysInTheMiddleOfADeskThatGrowsAndIsNeverCutOff) {
    StartWelcome();
    ASSERT_TRUE(Comes());
    Frame().resize(1300, 800);
    EXPECT_TRUE(WaitUntil([this] { return Hint()->size() == Pane().size(); }));
    EXPECT_NEAR(Hint()->LinkRect().center().x(), Pane().width() / 2, 2);
    EXPECT_TRUE(Pane().rect().contains(Hint()->LinkRect()));
}

// How far the darkest and the lightest pixel of the link lie apart on the screen.
TEST_F(Welcome, ItCanBeReadOnDarkAndOnLightDesks) {
    for (const char* ground : {"0.1 0.1 0.1", "0.34 0.36 0.38", "0.6 0.7 0.7", "1 1 1"}) {
        StartWelcome(std::string("examples gallery\ndesk.backgroundcolor ") + ground + "\n");
        ASSERT_TRUE(Comes());
        const auto contrast = [this] {
            const QImage seen = test::SeenOnScreen(Pane());
            const qreal ratio = Pane().devicePixelRatioF();
            const QRect link = Hint()->LinkRect();
            int least = 255;
            int most = 0;
            for (int y = int(link.top() * ratio); y < int(link.bottom() * ratio); ++y) {
                for (int x = int(link.left() * ratio); x < int(link.right() * ratio); ++x) {
                    least = std::min(least, qGray(seen.pixel(x, y)));
                    most = std::max(most, qGray(seen.pixel(x, y)));
                }
            }
            return most - least;
        };
        EXPECT_TRUE(WaitUntil([&] { return contrast() > 90; })) << ground << ": " << contrast();
    }
}

}  // namespace
}  // namespace tavrin
