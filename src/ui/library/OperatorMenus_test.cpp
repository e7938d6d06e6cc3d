// SPDX-License-Identifier: Apache-2.0
#include "ui/library/OperatorMenus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include "ui/library/TestLibrary.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::TestLibrary;
using testing::ElementsAre;
using testing::IsEmpty;

QStringList TextsOf(const QMenu& menu) {
    QStringList texts;
    for (const QAction* action : menu.actions()) texts << (action->isSeparator() ? "-" : action->text());
    return texts;
}

void Open(QMenu& menu) {
    menu.popup(QPoint(200, 200));
    ASSERT_TRUE(test::WaitUntilSeen(menu));
}

// A main window with one menu of operators, for a user's hands.
struct Frame {
    explicit Frame(const OpMenu& content) {
        menu = window.menuBar()->addMenu("Library");
        FillOperatorMenu(*menu, content, [this](uint32_t id) { chosen.push_back(id); });
        window.resize(400, 200);
        test::ShowActive(window);
    }
    void ClickMenuBar() {
        QMenuBar& bar = *window.menuBar();
        QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(menu->menuAction()).center());
    }

    QMainWindow window;
    QMenu* menu = nullptr;
    std::vector<uint32_t> chosen;
};

TEST(OperatorMenus, AnOperatorIsChosenByTheMouse) {
    TestLibrary library{"0100.Noise", "0200.Mix"};
    Frame frame(library.registry.Root());
    frame.ClickMenuBar();
    ASSERT_TRUE(test::WaitUntil([&] { return frame.menu->isVisible(); }));
    EXPECT_EQ(TextsOf(*frame.menu), (QStringList{"Noise", "Mix"}));
    const QRect mix = frame.menu->actionGeometry(frame.menu->actions()[1]);
    QTest::mouseClick(frame.menu, Qt::LeftButton, {}, mix.center());
    EXPECT_THAT(frame.chosen, ElementsAre(library.IdOf("Mix")));
    EXPECT_FALSE(frame.menu->isVisible());
}

TEST(OperatorMenus, AnOperatorInASubmenuIsChosenByTheKeyboard) {
    TestLibrary library{"0100.Patterns/0100.Inner/0100.Noise", "0200.Mix"};
    Frame frame(library.registry.Root());
    frame.ClickMenuBar();
    ASSERT_TRUE(test::WaitUntil([&] { return frame.menu->isVisible(); }));
    QTest::keyClick(frame.menu, Qt::Key_Down);
    QTest::keyClick(frame.menu, Qt::Key_Right);
    QMenu* patterns = frame.menu->actions()[0]->menu();
    ASSERT_TRUE(test::WaitUntil([&] { return patterns->isVisible(); }));
    QTest::keyClick(patterns, Qt::Key_Right);
    QMenu* inner = patterns->actions()[0]->menu();
    ASSERT_TRUE(test::WaitUntil([&] { return inner->isVisible(); }));
    QTest::keyClick(inner, Qt::Key_Return);
    EXPECT_THAT(frame.chosen, ElementsAre(library.IdOf("Noise")));
}

TEST(OperatorMenus, ASubmenuIsBuiltWhenItOpensForTheFirstTimeAndOnlyThen) {
    TestLibrary library{"0100.Patterns/0100.Noise", "0200.Mix"};
    QMenu menu;
    FillOperatorMenu(menu, library.registry.Root(), [](uint32_t) {});
    EXPECT_THAT(menu.actions(), IsEmpty());
    Open(menu);
    QMenu& patterns = *menu.actions()[0]->menu();
    EXPECT_THAT(patterns.actions(), IsEmpty());
    Open(patterns);
    EXPECT_EQ(TextsOf(patterns), QStringList{"Noise"});
    menu.close();
    Open(menu);
    EXPECT_EQ(TextsOf(menu), (QStringList{"Patterns", "Mix"}));
    menu.close();
}

TEST(OperatorMenus, TextFromTheLibraryMakesNoMnemonicsAndNoShortcuts) {
    TestLibrary library{"0100.Salt & Pepper\tCtrl+Q/0100.A&B"};
    QMenu menu;
    FillOperatorMenu(menu, library.registry.Root(), [](uint32_t) {});
    Open(menu);
    EXPECT_EQ(TextsOf(menu), QStringList{"Salt && Pepper Ctrl+Q"});
    QMenu& submenu = *menu.actions()[0]->menu();
    Open(submenu);
    EXPECT_EQ(TextsOf(submenu), QStringList{"A&&B"});
    menu.close();
}

TEST(OperatorMenus, SeparatorsShowWhereTheLibraryHasThem) {
    TestLibrary library{"0100._SEPARATOR_", "0200.A", "0300._separator_", "0400._SEPARATOR_", "0500.B"};
    QMenu menu;
    FillOperatorMenu(menu, library.registry.Root(), [](uint32_t) {});
    Open(menu);
    EXPECT_EQ(TextsOf(menu), (QStringList{"-", "A", "-", "-", "B"}));
    for (QAction* action : menu.actions()) EXPECT_GT(menu.actionGeometry(action).height(), 0);
    menu.close();
}

TEST(OperatorMenus, ACommandAboveTheLastReachesNobody) {
    OpMenu content;
    content.items.push_back({OpMenuItem::Kind::kOperator, "Last", COpRegistry::kLastId, nullptr});
    content.items.push_back({OpMenuItem::Kind::kOperator, "Beyond", COpRegistry::kLastId + 2, nullptr});
    Frame frame(content);
    for (const int place : {1, 0}) {
        frame.ClickMenuBar();
        ASSERT_TRUE(test::WaitUntil([&] { return frame.menu->isVisible(); }));
        const QRect row = frame.menu->actionGeometry(frame.menu->actions()[place]);
        QTest::mouseClick(frame.menu, Qt::LeftButton, {}, row.center());
    }
    EXPECT_THAT(frame.chosen, ElementsAre(COpRegistry::kLastId));
}

TEST(OperatorMenus, FilledAgainAMenuShowsTheNewLibraryAndNothingOfTheOld) {
    TestLibrary library{"0100.Patterns/0100.Noise"};
    Frame frame(library.registry.Root());
    FillOperatorMenu(*frame.menu, library.registry.Root(), [](uint32_t) {});
    Open(*frame.menu);
    frame.menu->close();
    library.directory.Write("0050.New", "");
    library.Scan();
    FillOperatorMenu(*frame.menu, library.registry.Root(), [](uint32_t) {});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_THAT(frame.menu->findChildren<QMenu*>(), IsEmpty());
    Open(*frame.menu);
    EXPECT_EQ(TextsOf(*frame.menu), (QStringList{"New", "Patterns"}));
    frame.menu->close();
}

TEST(OperatorMenus, ChoosingAnOperatorMayReloadTheLibraryOfItsMenu) {
    TestLibrary library{"0100.Patterns/0100.Noise"};
    QMenu menu;
    int chosen = 0;
    OperatorChooser choose = [&](uint32_t) {
        ++chosen;
        library.Scan();
        FillOperatorMenu(menu, library.registry.Root(), choose);
    };
    FillOperatorMenu(menu, library.registry.Root(), choose);
    for (int round = 1; round <= 2; ++round) {
        Open(menu);
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Right);
        QMenu* patterns = menu.actions()[0]->menu();
        ASSERT_TRUE(test::WaitUntil([&] { return patterns->isVisible(); }));
        QTest::keyClick(patterns, Qt::Key_Return);
        EXPECT_EQ(chosen, round);
        test::HandleEvents();
    }
}

}  // namespace
}  // namespace tavrin
