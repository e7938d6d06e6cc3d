// SPDX-License-Identifier: Apache-2.0
// Every row of the table of tool windows: its command, its check mark, its place.
#include <QWindow>
#include <map>
#include <set>

#include "ui/base/Text.h"
#include "ui/support/Hands.h"
#include "ui/support/Stacking.h"
#include "ui/support/TestFrame.h"
#include "ui/windows/ToolWindow.h"

namespace tavrin {

// How a failure names it.
void PrintTo(const WindowRow& row, std::ostream* out) { *out << row.place; }

namespace {

using test::FrameTest;
using test::WaitUntil;

// The menu that has the command, '&' left out; empty if none has it.
QString MenuWith(CommandId id) {
    for (const MenuSpec& menu : MenuBarLayout()) {
        for (const Slot& slot : menu.slots) {
            if (slot.kind == Slot::Kind::kCommand && slot.id == id) return QString(menu.title).remove('&');
        }
    }
    return {};
}

class ToolWindows : public FrameTest, public testing::WithParamInterface<WindowRow> {
  protected:
    const WindowRow& Row() const { return GetParam(); }
    bool Toggles() const { return Row().way == WindowRow::Way::kToggles; }
    ToolWindow& Window() { return Frame().Windows().Of(Row().command); }
    QAction& Command() { return Action(Row().command); }

    // As a user does it.
    void ChooseCommand() {
        const QString menu = MenuWith(Row().command);
        ASSERT_FALSE(menu.isEmpty()) << "no menu shows " << Row().place;
        test::ChooseInMenu(Frame(), menu, Command());
    }
    // With the mark that tells it, where the command has one. One that is up is on the screen: a window
    // manager may lose one that goes before it has come.
    void ExpectUp(bool isUp) {
        EXPECT_TRUE(WaitUntil([&] { return Window().IsUp() == isUp; })) << Row().place;
        if (isUp) {
            ASSERT_TRUE(test::WaitUntilSeen(Window())) << Row().place;
        } else if (Window().internalWinId() != 0) {
            test::WaitUntilLetGo(Window());
        }
        EXPECT_TRUE(WaitUntil([&] { return Command().isChecked() == (isUp && Toggles()); })) << Row().place;
        for (ToolWindow* other : Frame().Windows().All()) {
            EXPECT_TRUE(other == &Window() || !other->isVisible()) << Bytes(other->windowTitle());
        }
    }
    bool StandsAt(const QRect& place) {
        return WaitUntil([&] {
            const bool isThere = Window().isVisible() && Window().windowHandle()->isExposed();
            return isThere && QRect(Window().pos(), Window().size()) == place;
        });
    }
};

TEST_P(ToolWindows, ComeAndGoByTheirCommandWithItsMark) {
    Start();
    EXPECT_EQ(Command().isCheckable(), Toggles());
    ExpectUp(false);
    ChooseCommand();
    ExpectUp(true);
    ChooseCommand();
    ExpectUp(!Toggles());
    if (Toggles()) ChooseCommand();
    ExpectUp(true);
    Window().windowHandle()->close();
    ExpectUp(false);
    ChooseCommand();
    ExpectUp(true);
}

TEST_P(ToolWindows, ComeBackWhereTheyWere) {
    Start();
    ChooseCommand();
    ExpectUp(true);
    const QSize own = Window().size();
    const QRect place(313, 207, 613, 467);
    Window().resize(place.size());
    Window().move(place.topLeft());
    ASSERT_TRUE(StandsAt(place));
    ASSERT_TRUE(Frame().close());
    Start();
    EXPECT_TRUE(StandsAt({place.topLeft(), Row().keepsSize ? place.size() : own}));
    ExpectUp(true);
}

INSTANTIATE_TEST_SUITE_P(Rows, ToolWindows, testing::ValuesIn(WindowTable()),
                         [](const auto& row) { return std::string(row.param.place); });

TEST(ToolWindowTable, EachRowHasACommandAndAPlaceOfItsOwn) {
    std::set<CommandId> commands;
    std::set<std::string> places = {"MainWindow"};
    for (const WindowRow& row : WindowTable()) {
        EXPECT_TRUE(commands.insert(row.command).second) << row.place;
        EXPECT_TRUE(places.insert(row.place).second) << row.place;
        EXPECT_STRNE(row.place, "");
    }
}

// The profiles of users have them.
TEST(ToolWindowTable, PlacesAreStoredUnderNamesThatStay) {
    const std::map<std::string, bool> kept = {
        {"RenderHistory", true},
        {"BoxFinder", true},
        {"MenuFinder", true},
        {"ArgumentEditor", true},
        {"RenderOptionsEditor", false},
        {"ExportOptionsEditor", false},
        {"HelpEditor", true},
        {"Log", true},
        {"UndoHistory", true},
        {"CompareRenders", true},
        {"Source", true},
        {"Check", true},
    };
    std::map<std::string, bool> found;
    for (const WindowRow& row : WindowTable()) found[row.place] = row.keepsSize;
    EXPECT_EQ(found, kept);
}

}  // namespace
}  // namespace tavrin
