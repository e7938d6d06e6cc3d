// SPDX-License-Identifier: Apache-2.0
// The context menus as the user meets them: opened and clicked through with real events in a real window.
#include "ui/desk/DeskContextMenu.h"

#include <QContextMenuEvent>
#include <QCursor>
#include <QFontMetricsF>
#include <QMenu>
#include <QScreen>
#include <QStyle>
#include <QWindow>

#include "desk/HitTest.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskHelpText.h"
#include "ui/desk/DeskPaneTest.h"

namespace tavrin {
namespace {

using test::HandleEvents;
using test::MakeBox;
using test::MakeLink;
using test::WaitUntil;
using test::Wire;
using testing::ElementsAre;
using testing::IsEmpty;

QMenu* OpenMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

class DeskContextMenu : public test::DeskPaneTest {
  protected:
    ~DeskContextMenu() override { CloseMenus(); }

    void RightPress(QPoint at, Qt::KeyboardModifiers keys = {}) {
        QTest::mousePress(pane->windowHandle(), Qt::RightButton, keys, pane->Desk().mapTo(pane.get(), at));
    }
    void RightRelease(QPoint at, Qt::KeyboardModifiers keys = {}) {
        QTest::mouseRelease(pane->windowHandle(), Qt::RightButton, keys, pane->Desk().mapTo(pane.get(), at));
    }
    void RightClick(QPoint at, Qt::KeyboardModifiers keys = {}) {
        MoveTo(at);
        RightPress(at, keys);
        RightRelease(at, keys);
    }
    void RightDrag(QPoint from, QPoint to, Qt::KeyboardModifiers keys) {
        MoveTo(from);
        RightPress(from, keys);
        MoveTo(to, Qt::RightButton, keys);
        RightRelease(to, keys);
    }
    QMenu* Open(QPoint at) {
        RightClick(at);
        EXPECT_NE(OpenMenu(), nullptr) << "no menu opens";
        return OpenMenu();
    }
    QMenu* Open(const COpButton& button) { return Open(At(ButtonRect(ButtonPlace::Of(button)).Middle())); }

    static QStringList TextsOf(const QMenu& menu) {
        QStringList texts;
        for (const QAction* item : menu.actions()) texts << (item->isSeparator() ? "---" : item->text());
        return texts;
    }
    static QAction* Item(const QMenu& menu, const QString& text) {
        for (QAction* item : menu.actions()) {
            if (item->text() == text) return item;
        }
        ADD_FAILURE() << "the menu does not offer " << Bytes(text);
        return nullptr;
    }
    // Clicks an item of the menu, and on through its submenus.
    void ClickThrough(QMenu* menu, const QStringList& way) {
        for (const QString& text : way) {
            ASSERT_NE(menu, nullptr);
            QAction* item = Item(*menu, text);
            ASSERT_NE(item, nullptr);
            QMenu* next = item->menu();
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
            if (next != nullptr) {
                ASSERT_TRUE(WaitUntil([&] { return next->isVisible(); })) << Bytes(text);
            }
            menu = next;
        }
        HandleEvents();
    }
    // The help text that this way leads to.
    DeskHelpText* Help(QPoint at, const QString& about) {
        QMenu* menu = Open(at);
        if (menu == nullptr) return nullptr;
        ClickThrough(menu, {"Help", about});
        QMenu* help = Item(*Item(*menu, "Help")->menu(), about)->menu();
        EXPECT_TRUE(help->isVisible());
        auto* text = help->findChild<DeskHelpText*>();
        EXPECT_NE(text, nullptr);
        return text;
    }
    static void CloseMenus() {
        while (QWidget* menu = QApplication::activePopupWidget()) {
            menu->close();
            HandleEvents();
        }
    }

    COpBox& PutVinputs() {
        return Put(MakeBox("v",
                           "vinput in { float { 0 0 1 0 \"%g\" } rgb { 0 0 0 \"%g\" } vinstances 2 }\n"
                           "output out { float out rgb out } defs { castlock.add in out }"),
                   200, 300);
    }
};

// How they come up.

TEST_F(DeskContextMenu, TheMenuOfABoxComesWhenTheRightButtonGoesUp) {
    const COpBox& box = PutLink(200, 300);
    Show();
    const QPoint at = TitleOf(box);
    MoveTo(at);
    RightPress(at);
    EXPECT_EQ(OpenMenu(), nullptr);
    RightRelease(at);
    ASSERT_NE(OpenMenu(), nullptr);
    EXPECT_EQ(OpenMenu()->pos(), pane->Desk().mapToGlobal(at));
    EXPECT_EQ(TextsOf(*OpenMenu()),
              (QStringList{"box_1", "---", "Help", "---", "Copy", "Delete", "---", "Edit File..."}));
    EXPECT_EQ(TextsOf(*Item(*OpenMenu(), "Help")->menu()),
              (QStringList{"On box box_1", "---", "On input in", "---", "On output out"}));
    EXPECT_EQ(desk.m_mouseBox, &box);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskContextMenu, TheMenuOfAButtonIsOfThatButton) {
    const COpBox& box = PutVinputs();
    Show();
    const QMenu* menu = Open(*box.inputs.at(1));
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(TextsOf(*menu),
              (QStringList{"v_1: Button in2", "---", "Help", "Casts", "Argument", "---", "Copy Button Above",
                           "Copy Button Below", "Delete", "---", "Edit File..."}));
    EXPECT_TRUE(Item(*Item(*menu, "Casts")->menu(), "float")->isChecked());
    EXPECT_FALSE(Item(*Item(*menu, "Casts")->menu(), "rgb")->isChecked());
    const QMenu& deletion = *Item(*menu, "Delete")->menu();
    EXPECT_TRUE(Item(deletion, "Delete Button")->isEnabled());
    EXPECT_FALSE(Item(deletion, "Delete Connections")->isEnabled());
}

TEST_F(DeskContextMenu, NoMenuComesForTheEmptyDeskAndNoneForALine) {
    COpBox& from = PutLink(150, 300);
    COpBox& to = PutLink(450, 300);
    Wire(from, 0, to, 0);
    Show();
    RightClick(At({300, 300}));
    EXPECT_EQ(OpenMenu(), nullptr);
    RightClick({20, 20});
    EXPECT_EQ(OpenMenu(), nullptr);
}

TEST_F(DeskContextMenu, ADragWithShiftPansAndShowsNoMenu) {
    const COpBox& box = PutLink(200, 300);
    Show();
    const QPoint at = TitleOf(box);
    RightDrag(at, at + QPoint(40, 0), Qt::ShiftModifier);
    EXPECT_EQ(OpenMenu(), nullptr);
    EXPECT_EQ(document.offset[0], 40);
    // Nor one that comes back to where it began.
    MoveTo(TitleOf(box));
    RightPress(TitleOf(box), Qt::ShiftModifier);
    MoveTo(TitleOf(box) + QPoint(40, 0), Qt::RightButton, Qt::ShiftModifier);
    MoveTo(TitleOf(box) - QPoint(40, 0), Qt::RightButton, Qt::ShiftModifier);
    RightRelease(TitleOf(box), Qt::ShiftModifier);
    EXPECT_EQ(OpenMenu(), nullptr);
}

TEST_F(DeskContextMenu, AClickWithShiftShowsTheMenuAlsoFromAnUnsteadyHand) {
    const COpBox& box = PutLink(200, 300);
    Show();
    RightClick(TitleOf(box), Qt::ShiftModifier);
    EXPECT_NE(OpenMenu(), nullptr);
    CloseMenus();
    MoveTo(TitleOf(box));
    RightDrag(TitleOf(box), TitleOf(box) + QPoint(1, 1), Qt::ShiftModifier);
    EXPECT_NE(OpenMenu(), nullptr);
}

TEST_F(DeskContextMenu, WithoutShiftTheMenuIsOfWhereTheButtonGoesUp) {
    COpBox& from = PutLink(150, 300);
    COpBox& to = PutLink(450, 300);
    Show();
    RightDrag(TitleOf(from), TitleOf(to), {});
    ASSERT_NE(OpenMenu(), nullptr);
    EXPECT_EQ(OpenMenu()->actions().at(0)->text(), "box_2");
    CloseMenus();
    EXPECT_EQ(document.offset[0], 0);
}

TEST_F(DeskContextMenu, NoMenuComesWhereTheButtonGoesUpOutsideTheDesk) {
    const COpBox& box = PutLink(150, 300);
    const COpBox& beyond = PutLink(620, 300);
    Show();
    const QPoint outside(pane->Desk().width() + 2, TitleOf(beyond).y());  // over the scroll bar
    ASSERT_LT(outside.x(), pane->width());
    ASSERT_EQ(HitBox(document,
                     pane->View().ToDesk({static_cast<float>(outside.x()), static_cast<float>(outside.y())})),
              &beyond);
    RightDrag(TitleOf(box), outside, {});
    EXPECT_EQ(OpenMenu(), nullptr);
}

TEST_F(DeskContextMenu, NoMenuComesInTheMidstOfAGestureWhichGoesOn) {
    COpBox& box = PutLink(200, 300);
    Show();
    const QPoint grip = TitleOf(box);
    Press(grip);
    QTest::mousePress(&pane->Desk(), Qt::RightButton, {}, grip);
    QTest::mouseRelease(&pane->Desk(), Qt::RightButton, {}, grip);
    EXPECT_EQ(OpenMenu(), nullptr);
    Drag(grip + QPoint(30, 0));
    EXPECT_EQ(box.xypos[0], 230);
    Release(grip + QPoint(30, 0));
}

TEST_F(DeskContextMenu, ALockedDeskHasNone) {
    const COpBox& box = PutLink(200, 300);
    Show();
    Lock(true);
    RightClick(TitleOf(box));
    EXPECT_EQ(OpenMenu(), nullptr);
    Lock(false);
    RightClick(TitleOf(box));
    EXPECT_NE(OpenMenu(), nullptr);
}

TEST_F(DeskContextMenu, TheMenuKeyOpensTheMenuOfWhatTheCursorIsOn) {
    const COpBox& box = PutLink(200, 300);
    Show();
    Click({20, 20});  // gives it the focus
    ASSERT_TRUE(test::HasFocus(*pane));
    for (const QPoint& at : {QPoint(20, 20), TitleOf(box)}) {
        const QPoint global = pane->Desk().mapToGlobal(at);
        QCursor::setPos(global);
        ASSERT_TRUE(WaitUntil([&] { return QCursor::pos() == global; }));
        HandleEvents();
        QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(5, 5), pane->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&test::FocusWidget(), &key);
        EXPECT_EQ(OpenMenu() != nullptr, at == TitleOf(box));
    }
    ASSERT_NE(OpenMenu(), nullptr);
    EXPECT_EQ(OpenMenu()->pos(), pane->Desk().mapToGlobal(TitleOf(box)));
}

TEST_F(DeskContextMenu, TheMoveThatEndsAMenuDragsNothing) {
    COpBox& box = PutLink(200, 300);
    Show();
    host.AddOperator("noise", "output o { float out }");
    desk.AddOperator("noise");
    MoveTo(TitleOf(box));
    const float x = desk.m_pendingBoxes.at(0)->xypos[0];
    ASSERT_NE(Open(TitleOf(box)), nullptr);
    CloseMenus();
    MoveTo(TitleOf(box) + QPoint(100, 0));
    EXPECT_EQ(desk.m_pendingBoxes.at(0)->xypos[0], x);
    MoveTo(TitleOf(box) + QPoint(110, 0));
    EXPECT_EQ(desk.m_pendingBoxes.at(0)->xypos[0], x + 10);
}

// What they do.

TEST_F(DeskContextMenu, TheTitleClosesTheMenuAndDoesNothing) {
    const COpBox& box = PutLink(200, 300);
    Show();
    ClickThrough(Open(TitleOf(box)), {"box_1"});
    EXPECT_EQ(OpenMenu(), nullptr);
    EXPECT_EQ(document.m_boxes.size(), 1U);
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(changes, 0);
}

TEST_F(DeskContextMenu, ABoxIsCopiedBesideItself) {
    const COpBox& box = PutLink(200, 300);
    Show();
    ClickThrough(Open(TitleOf(box)), {"Copy"});
    ASSERT_EQ(document.m_boxes.size(), 2U);
    const COpBox& copy = *document.m_boxes.front();
    EXPECT_EQ(copy.BoxTitleWid(), "box_2");
    EXPECT_THAT(copy.xypos, ElementsAre(216.0F, 284.0F));
    EXPECT_EQ(copy.selected, 1);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(changes, 1);
}

TEST_F(DeskContextMenu, ABoxIsDeletedWithoutBeingSelected) {
    const COpBox& box = PutLink(200, 300);
    COpBox& other = PutLink(450, 300);
    other.selected = 1;
    Show();
    ClickThrough(Open(TitleOf(box)), {"Delete", "This Box"});
    ASSERT_EQ(document.m_boxes.size(), 1U);
    EXPECT_EQ(document.m_boxes.front().get(), &other);
    EXPECT_EQ(changes, 1);
}

TEST_F(DeskContextMenu, AButtonIsCopiedAboveAndBelowItself) {
    const COpBox& box = PutVinputs();
    Show();
    const COpButton* first = box.inputs.at(0).get();
    ClickThrough(Open(*first), {"Copy Button Above"});
    ASSERT_EQ(box.inputs.size(), 3U);
    EXPECT_EQ(box.inputs.at(1).get(), first);
    ClickThrough(Open(*first), {"Copy Button Below"});
    ASSERT_EQ(box.inputs.size(), 4U);
    EXPECT_EQ(box.inputs.at(1).get(), first);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskContextMenu, AButtonIsDeleted) {
    const COpBox& box = PutVinputs();
    Show();
    const COpButton* second = box.inputs.at(1).get();
    ClickThrough(Open(*box.inputs.at(0)), {"Delete", "Delete Button"});
    ASSERT_EQ(box.inputs.size(), 1U);
    EXPECT_EQ(box.inputs.at(0).get(), second);
    EXPECT_EQ(second->DisplayName(), "in1");
}

TEST_F(DeskContextMenu, WhatIsGreyIsNotDone) {
    const COpBox& box = PutLink(200, 300);
    Show();
    ClickThrough(Open(*box.inputs.at(0)), {"Delete", "Delete Button"});
    EXPECT_NE(OpenMenu(), nullptr);
    EXPECT_EQ(box.inputs.size(), 1U);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskContextMenu, AButtonsConnectionsAreCut) {
    COpBox& from = PutLink(150, 300);
    COpBox& to = PutLink(450, 300);
    Wire(from, 0, to, 0);
    Show();
    ClickThrough(Open(*from.outputs.at(0)), {"Delete", "Delete Connections"});
    EXPECT_TRUE(to.inputs.at(0)->connections.Empty());
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskContextMenu, AnArgumentIsMadeAndUnmade) {
    const COpBox& box = PutLink(200, 300);
    Show();
    COpButton& button = *box.inputs.at(0);
    ClickThrough(Open(button), {"Argument"});
    EXPECT_EQ(button.arg, 1);
    QMenu* menu = Open(button);
    EXPECT_TRUE(Item(*menu, "Argument")->isChecked());
    ClickThrough(menu, {"Argument"});
    EXPECT_EQ(button.arg, 0);
}

TEST_F(DeskContextMenu, AChosenCastIsTheOneForTheButtonsTiedToItToo) {
    const COpBox& box = PutVinputs();
    Show();
    ClickThrough(Open(*box.inputs.at(0)), {"Casts", "rgb"});
    EXPECT_EQ(box.inputs.at(0)->CurrentType(), "rgb");
    EXPECT_EQ(box.outputs.at(0)->CurrentType(), "rgb");
    const QMenu* menu = Open(*box.outputs.at(0));
    EXPECT_TRUE(Item(*Item(*menu, "Casts")->menu(), "rgb")->isChecked());
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskContextMenu, TheOperatorsFileIsEdited) {
    const COpBox& box = PutLink(200, 300);
    Show();
    ClickThrough(Open(TitleOf(box)), {"Edit File..."});
    EXPECT_THAT(edited, ElementsAre("box"));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskContextMenu, ItemsAreChosenWithTheRightButtonToo) {
    const COpBox& box = PutLink(200, 300);
    Show();
    QMenu* menu = Open(TitleOf(box));
    const QPoint copy = menu->actionGeometry(Item(*menu, "Copy")).center();
    QTest::mouseMove(menu, copy);
    QTest::mouseClick(menu, Qt::RightButton, {}, copy);
    EXPECT_EQ(document.m_boxes.size(), 2U);
}

TEST_F(DeskContextMenu, ItemsAreChosenByTheKeyboard) {
    const COpBox& box = PutLink(200, 300);
    Show();
    QMenu* menu = Open(TitleOf(box));
    for (int item = 0; item < 4; ++item) QTest::keyClick(menu, Qt::Key_Down);  // title, Help, Copy, Delete
    QTest::keyClick(menu, Qt::Key_Right);
    QMenu* deletion = Item(*menu, "Delete")->menu();
    ASSERT_TRUE(WaitUntil([&] { return deletion->isVisible(); }));
    QTest::keyClick(deletion, Qt::Key_Return);
    EXPECT_THAT(document.m_boxes, IsEmpty());
}

TEST_F(DeskContextMenu, EscapeClosesTheMenuAndNothingIsDone) {
    const COpBox& box = PutLink(200, 300);
    Show();
    QMenu* menu = Open(TitleOf(box));
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Escape);
    EXPECT_EQ(OpenMenu(), nullptr);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskContextMenu, NothingIsDoneForABoxThatGoesWhileItsMenuIsOpen) {
    COpBox& box = PutLink(200, 300);
    PutLink(450, 300);
    Show();
    QMenu* menu = Open(TitleOf(box));
    desk.DeleteBox(box);
    ClickThrough(menu, {"Copy"});
    EXPECT_EQ(document.m_boxes.size(), 1U);
}

TEST_F(DeskContextMenu, AMenuThatIsOpenGoesWithTheDesk) {
    const COpBox& box = PutLink(200, 300);
    Show();
    ASSERT_NE(Open(TitleOf(box)), nullptr);
    pane.reset();
    EXPECT_EQ(OpenMenu(), nullptr);
}

// What is seen.

TEST_F(DeskContextMenu, NamesAreShownAsTheyAre) {
    auto made = MakeBox("Salt & Pepper", "input i { float { 0 0 1 0 \"%g\" } }");
    made->inputs.at(0)->name = "a & b\tc";
    COpBox& box = Put(std::move(made), 200, 300);
    Show();
    EXPECT_EQ(Open(TitleOf(box))->actions().at(0)->text(), "Salt && Pepper_1");
    CloseMenus();
    EXPECT_EQ(Open(*box.inputs.at(0))->actions().at(0)->text(), "Salt && Pepper_1: Button a && b c");
}

TEST_F(DeskContextMenu, ANameThatIsTooLongIsCutInTheMiddle) {
    COpBox& box = Put(MakeBox(std::string(10000, 'x'), ""), 200, 300);
    box.layout = {};
    Show();
    QMenu* menu = Open(At({BoxRect(box).Middle().x, TitleRect(box).Middle().y}));
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->actions().at(0)->text().endsWith("xx_1"));
    EXPECT_LT(menu->width(), menu->screen()->availableSize().width());
}

TEST_F(DeskContextMenu, AnOutputWithoutATypeHasItsCastsGrey) {
    const COpBox& box = Put(MakeBox("a", "output o { }"), 200, 300);
    Show();
    const QMenu* menu = Open(*box.outputs.at(0));
    ASSERT_NE(menu, nullptr);
    EXPECT_FALSE(Item(*menu, "Casts")->isEnabled());
}

class DeskHelpItem : public DeskContextMenu {
  protected:
    // On the one box that there is.
    DeskHelpText* HelpOf(const std::string& help) {
        COpBox& box = PutLink(200, 300);
        box.boxhelp = help;
        Show();
        return Help(TitleOf(box), "On box box_1");
    }
    static int InkIn(const QImage& picture, const QRect& area) {
        int ink = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                if (picture.valid(x, y) && qGray(picture.pixel(x, y)) < 100) ++ink;
            }
        }
        return ink;
    }
    static int Inset(const DeskHelpText& help) {
        return help.style()->pixelMetric(QStyle::PM_IndicatorWidth);
    }
    static QImage Picture(DeskHelpText& help) { return help.grab().toImage(); }
};

TEST_F(DeskHelpItem, ItsLinesStandOnPaleYellowInAWhiteFrame) {
    DeskHelpText* help = HelpOf("First line\r\nii\r\n");
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->Lines(), (std::vector<QString>{"First line", "ii"}));
    EXPECT_EQ(
        help->sizeHint(),
        QSize(Inset(*help) + 12 +
                  static_cast<int>(std::ceil(QFontMetricsF(help->font()).horizontalAdvance("First line"))),
              2 * 17 + 12));
    EXPECT_EQ(help->size().height(), 46);
    const QImage picture = Picture(*help);
    const int ratio = static_cast<int>(picture.devicePixelRatio());
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(picture.pixelColor(picture.width() - 1, picture.height() / 2), QColor(Qt::white));
    EXPECT_EQ(picture.pixelColor(3 * ratio, 3 * ratio), QColor(255, 255, 230));
    const auto ink = [&](int x, int y, int width, int height) {
        return InkIn(picture, {x * ratio, y * ratio, width * ratio, height * ratio});
    };
    const int inset = Inset(*help);
    EXPECT_EQ(ink(0, 0, inset, 46), 0);
    EXPECT_EQ(ink(0, 0, 1000, 6), 0);
    EXPECT_GT(ink(inset, 6, 1000, 17), 20);
    EXPECT_GT(ink(inset, 23, 1000, 17), 4);
    EXPECT_EQ(ink(inset + 20, 23, 1000, 23), 0);  // the second line is short
}

TEST_F(DeskHelpItem, ItLooksTheSameInADarkPalette) {
    DeskHelpText* help = HelpOf("One\r\nTwo");
    ASSERT_NE(help, nullptr);
    const QImage light = Picture(*help);
    QPalette dark(QColor(40, 40, 40));
    help->setPalette(dark);
    EXPECT_EQ(Picture(*help), light);
}

TEST_F(DeskHelpItem, TabsLeadToCommonColumns) {
    DeskHelpText* help = HelpOf("a\tX\r\nlong\tX\r\nX");
    ASSERT_NE(help, nullptr);
    const QImage picture = Picture(*help);
    const int ratio = static_cast<int>(picture.devicePixelRatio());
    const int tab = 8 * help->fontMetrics().averageCharWidth();
    const auto column = [&](int line, int from) {
        for (int x = from; x < picture.width(); ++x) {
            if (InkIn(picture, {x, (6 + 17 * line) * ratio, 1, 17 * ratio}) > 0) return x;
        }
        return -1;
    };
    const int start = Inset(*help) * ratio;
    const int plain = column(2, start);
    EXPECT_EQ(column(0, start + (tab - 2) * ratio), plain + tab * ratio);
    EXPECT_EQ(column(1, start + (tab - 2) * ratio), plain + tab * ratio);
    EXPECT_GE(help->width(), Inset(*help) + tab + help->fontMetrics().horizontalAdvance('X') + 12);
}

TEST_F(DeskHelpItem, WithoutATextItIsTwelveByTwelve) {
    DeskHelpText* help = HelpOf("");
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->sizeHint(), QSize(12, 12));
}

TEST_F(DeskHelpItem, AHugeTextStaysOnTheScreenAndIsReadByScrolling) {
    std::string text;
    for (int line = 0; line < 300; ++line) text += "word " + std::string(9990, 'w') + "\r\n";
    DeskHelpText* help = HelpOf(text + "THE END");
    ASSERT_NE(help, nullptr);
    const QRect screen = help->screen()->availableGeometry();
    EXPECT_TRUE(screen.contains(help->window()->geometry()));
    size_t characters = 0;
    for (const QString& line : help->Lines()) {
        characters += static_cast<size_t>(line.size());
        EXPECT_LE(help->fontMetrics().horizontalAdvance(line), help->viewport()->width());
    }
    EXPECT_EQ(characters, 300U * 9995 + 7);
    QScrollBar& bar = *help->verticalScrollBar();
    const QImage top = Picture(*help);
    QTest::keyClick(help->window(), Qt::Key_PageDown);
    EXPECT_EQ(bar.value(), help->viewport()->height());
    QTest::keyClick(help->window(), Qt::Key_End);
    EXPECT_EQ(bar.value() + help->viewport()->height(), static_cast<int>(help->Lines().size()) * 17 + 12);
    EXPECT_NE(Picture(*help), top);
    QTest::keyClick(help->window(), Qt::Key_Escape);
    EXPECT_NE(OpenMenu(), help->window());
}

TEST_F(DeskHelpItem, AClickOnItClosesTheMenus) {
    DeskHelpText* help = HelpOf("One line");
    ASSERT_NE(help, nullptr);
    QTest::mouseClick(help->viewport(), Qt::LeftButton, {}, {10, 10});
    HandleEvents();
    EXPECT_EQ(OpenMenu(), nullptr);
    EXPECT_FALSE(document.IsModified());
}

}  // namespace
}  // namespace tavrin
