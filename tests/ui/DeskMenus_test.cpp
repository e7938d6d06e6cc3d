// SPDX-License-Identifier: Apache-2.0
// The desk's context menus in the whole frame: what their commands reach beyond the desk, and what they fail
// with.
#include <QApplication>
#include <QCheckBox>
#include <QMenu>
#include <QTest>
#include <QWindow>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/library/BoxFinder.h"
#include "ui/sliders/ArgumentEditor.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::BoxesShown;
using test::FrameTest;
using test::PressWhenBoxComes;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;

class DeskMenusTest : public FrameTest {
  protected:
    // The frame with one box in the middle of the desk, all saved.
    void StartWithBox() {
        Start();
        AddBoxes(1);
        Frame().Desk().CentreOnBox("Constant_1");
        Document().SetModified(false);
        Settle();
    }
    COpBox& Box() { return *Document().m_boxes.front(); }
    QPoint InWindow(DeskPoint point) {
        const WindowPoint at = Frame().Desk().View().ToWindow(point);
        return Frame().Desk().Desk().mapTo(&Frame(), QPoint(static_cast<int>(at.x), static_cast<int>(at.y)));
    }
    QMenu* OpenAt(QPoint at) {
        QWindow* window = Frame().windowHandle();
        QTest::mouseMove(window, at);
        QTest::mousePress(window, Qt::RightButton, {}, at);
        QTest::mouseRelease(window, Qt::RightButton, {}, at);
        Settle();
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }
    QMenu* OpenOnTitle() { return OpenAt(InWindow(TitleRect(Box()).Middle())); }
    QMenu* OpenOn(const COpButton& button) {
        return OpenAt(InWindow(ButtonRect(ButtonPlace::Of(button)).Middle()));
    }
    // Clicks an item of the menu, and on through its submenus.
    void Choose(QMenu* menu, const QStringList& way) {
        for (const QString& text : way) {
            ASSERT_NE(menu, nullptr) << "no menu is open";
            const qsizetype place = MenuTexts(menu).indexOf(text);
            ASSERT_GE(place, 0) << Bytes(text);
            QAction* item = menu->actions().at(place);
            QMenu* next = item->menu();
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
            if (next != nullptr) {
                ASSERT_TRUE(WaitUntil([&] { return next->isVisible(); }));
            }
            menu = next;
        }
        Settle();
    }
    std::string OperatorPath() { return App().Registry().FindByName("Constant")->path; }
};

TEST_F(DeskMenusTest, ACopyMarksTheDocumentAndCanBeDeletedFromItsOwnMenu) {
    StartWithBox();
    Choose(OpenOnTitle(), {"Copy"});
    ASSERT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_TRUE(Frame().isWindowModified());
    EXPECT_TRUE(IsEnabled(CommandId::kCut));  // the copy is selected
    Choose(OpenOnTitle(), {"Delete", "This Box"});
    ASSERT_EQ(Document().m_boxes.size(), 1U);
    EXPECT_EQ(Box().BoxTitleWid(), "Constant_1");
    EXPECT_FALSE(IsEnabled(CommandId::kCut));
}

TEST_F(DeskMenusTest, AnArgumentShowsInItsEditorAtOnce) {
    StartWithBox();
    Do(CommandId::kArgumentEditor);
    Settle();
    const auto* flag = Frame().Windows().Get<CArgumentEditor>().findChild<QCheckBox*>();
    ASSERT_NE(flag, nullptr);
    EXPECT_FALSE(flag->isChecked());
    Choose(OpenOn(*Box().inputs.at(0)), {"Argument"});
    EXPECT_TRUE(flag->isChecked());
    EXPECT_TRUE(Frame().isWindowModified());
}

TEST_F(DeskMenusTest, TheFileOfTheOperatorOpensInTheEditor) {
    StartWithBox();
    Choose(OpenOnTitle(), {"Edit File..."});
    EXPECT_TRUE(WaitUntil([&] { return !EditedFiles().empty(); }));
    EXPECT_THAT(EditedFiles(), ElementsAre(OperatorPath()));
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(DeskMenusTest, AnEditorThatCannotStartIsAlerted) {
    StartWithBox();
    App().GetSite().directories.editorCmd = "/no/such/editor -x";
    PressWhenBoxComes("OK");
    Choose(OpenOnTitle(), {"Edit File..."});
    EXPECT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_EQ(Bytes(BoxesShown().join('|')), "Alert: command failed: /no/such/editor -x " + OperatorPath());
}

TEST_F(DeskMenusTest, AnOperatorThatTheLibraryHasNoMoreIsAlerted) {
    StartWithBox();
    Box().filename = "Vanished";
    PressWhenBoxComes("OK");
    Choose(OpenOnTitle(), {"Edit File..."});
    EXPECT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_EQ(Bytes(BoxesShown().join('|')), "Alert: Vanished: unknown operator name");
    EXPECT_THAT(EditedFiles(), testing::IsEmpty());
}

TEST_F(DeskMenusTest, ACopyBeyondTheLimitIsAlerted) {
    StartWithBox();
    Box().maxinstances = 1;
    PressWhenBoxComes("OK");
    Choose(OpenOnTitle(), {"Copy"});
    EXPECT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_EQ(Bytes(BoxesShown().join('|')),
              "Alert: WARNING: not creating \"Constant\" (only 1 allowed on desk)");
    EXPECT_EQ(Document().m_boxes.size(), 1U);
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(DeskMenusTest, KeysInTheMenuDoNotReachTheDesk) {
    StartWithBox();
    QMenu* menu = OpenOnTitle();
    ASSERT_NE(menu, nullptr);
    for (const int key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Down, Qt::Key_Down})
        QTest::keyClick(menu->windowHandle(), static_cast<Qt::Key>(key));
    EXPECT_EQ(Document().zoomFactor, 1);
    ASSERT_NE(menu->activeAction(), nullptr);
    EXPECT_EQ(Bytes(menu->activeAction()->text()), "Copy");
    QTest::keyClick(menu->windowHandle(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(Document().m_boxes.size(), 2U);
}

TEST_F(DeskMenusTest, ALockedDeskHasNoMenu) {
    StartWithBox();
    Do(CommandId::kLockDesk);
    Settle();
    EXPECT_EQ(OpenOnTitle(), nullptr);
    Do(CommandId::kLockDesk);
    Settle();
    QMenu* menu = OpenOnTitle();
    ASSERT_NE(menu, nullptr);
    menu->close();
}

// Which would be disabled with the desk, and could not be closed by hand.
TEST_F(DeskMenusTest, AMenuThatIsOpenClosesWhenTheDeskIsLocked) {
    StartWithBox();
    QMenu* menu = OpenOnTitle();
    ASSERT_NE(menu, nullptr);
    QMenu* deletion = menu->actions().at(MenuTexts(menu).indexOf("Delete"))->menu();
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(deletion->menuAction()).center());
    ASSERT_TRUE(WaitUntil([&] { return deletion->isVisible(); }));
    Do(CommandId::kLockDesk);
    Settle();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    Do(CommandId::kLockDesk);
    Settle();
    menu = OpenOnTitle();
    ASSERT_NE(menu, nullptr);
    menu->close();
}

TEST_F(DeskMenusTest, ADocumentThatOpensUnderAnOpenMenuIsLeftAlone) {
    StartWithBox();
    const std::string other = WriteDocument("other", 2);
    QMenu* menu = OpenOnTitle();
    ASSERT_NE(menu, nullptr);
    ASSERT_TRUE(Frame().OpenDocumentFile(other));
    Choose(menu, {"Delete", "This Box"});
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(DeskMenusTest, AFrameThatEndsTakesItsOpenMenuAlong) {
    StartWithBox();
    ASSERT_NE(OpenOnTitle(), nullptr);
    End();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

}  // namespace
}  // namespace tavrin
