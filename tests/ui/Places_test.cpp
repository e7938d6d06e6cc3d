// SPDX-License-Identifier: Apache-2.0
// Where the windows stand after a restart, with a window manager between us and the screen.
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include "ui/library/BoxFinder.h"
#include "ui/library/MenuFinder.h"
#include "ui/log/LogWindow.h"
#include "ui/support/Stacking.h"
#include "ui/support/TestFrame.h"
#include "ui/windows/ToolWindow.h"

namespace tavrin {
namespace {

using test::FrameTest;
using test::WaitUntil;

struct Place {
    const char* name;
    QWidget* window;
    bool restoresSize;
};

std::string Text(const QRect& rect) {
    return std::to_string(rect.width()) + "x" + std::to_string(rect.height()) + "+" +
           std::to_string(rect.x()) + "+" + std::to_string(rect.y());
}

class PlacesTest : public FrameTest {
  protected:
    // The tool windows with the names under which their places are stored.
    std::vector<Place> Tools() {
        std::vector<Place> tools;
        for (const WindowRow& row : WindowTable()) {
            tools.push_back({row.place, &Frame().Windows().Of(row.command), row.keepsSize});
        }
        return tools;
    }
    void Store(const std::string& name, const QRect& place, bool visible) {
        profile.SetInt(name + ".x", place.x());
        profile.SetInt(name + ".y", place.y());
        profile.SetInt(name + ".width", place.width());
        profile.SetInt(name + ".height", place.height());
        profile.SetInt(name + ".visible", visible ? 1 : 0);
    }
    QRect Stored(const std::string& name) {
        return {profile.GetInt(name + ".x", -1), profile.GetInt(name + ".y", -1),
                profile.GetInt(name + ".width", -1), profile.GetInt(name + ".height", -1)};
    }
    static QRect PlaceOf(const QWidget& window) { return {window.pos(), window.size()}; }
    // Once the window manager has had its say.
    void ExpectPlace(const QWidget& window, const QRect& place, const std::string& name) {
        const bool stands = WaitUntil([&] {
            return PlaceOf(window) == place && (!window.isVisible() || window.windowHandle()->isExposed());
        });
        EXPECT_TRUE(stands) << name << ": " << Text(PlaceOf(window)) << " instead of " << Text(place);
    }
    void CloseFrame() {
        Frame().close();
        ASSERT_TRUE(Frame().IsClosed());
        End();
    }
    static QRect NthPlace(int n) { return {90 + 31 * n, 70 + 23 * n, 700 + 11 * n, 420 + 7 * n}; }

    const QSize screen = QGuiApplication::primaryScreen()->virtualSize();
};

TEST_F(PlacesTest, EveryWindowComesBackWhereTheUserHasPutIt) {
    Start();
    int number = 0;
    Frame().setGeometry(100, 120, 1100, 720);
    for (const Place& tool : Tools()) {
        tool.window->show();
        ASSERT_TRUE(WaitUntil([&] { return tool.window->windowHandle()->isExposed(); }));
        const QRect place = NthPlace(number++);
        tool.window->resize(place.size());
        tool.window->move(place.topLeft());
    }
    number = 0;
    std::map<std::string, QRect> before;
    for (const Place& tool : Tools()) {
        ExpectPlace(*tool.window, NthPlace(number++), tool.name);
        before[tool.name] = PlaceOf(*tool.window);
    }
    const QRect frame = PlaceOf(Frame());
    CloseFrame();

    // A second restart shows whether windows creep by the width of their borders.
    for (int restart = 0; restart < 2; ++restart) {
        Start();
        ExpectPlace(Frame(), frame, "MainWindow");
        for (const Place& tool : Tools()) {
            EXPECT_TRUE(tool.window->isVisible()) << tool.name;
            QRect place = before[tool.name];
            if (!tool.restoresSize) place.setSize(tool.window->size());
            ExpectPlace(*tool.window, place, tool.name);
        }
        CloseFrame();
    }
}

TEST_F(PlacesTest, AFormKeepsItsOwnSizeWhateverWasStored) {
    Make();
    for (const Place& tool : Tools()) Store(tool.name, {300, 200, 811, 611}, true);
    Start();
    for (const Place& tool : Tools()) {
        if (tool.restoresSize) {
            ExpectPlace(*tool.window, {300, 200, 811, 611}, tool.name);
        } else {
            EXPECT_EQ(tool.window->pos(), QPoint(300, 200)) << tool.name;
            EXPECT_NE(tool.window->size(), QSize(811, 611)) << tool.name;
        }
    }
}

TEST_F(PlacesTest, WindowsThatWereHiddenStayHiddenAndKeepTheirPlace) {
    Store("Log", NthPlace(0), false);
    Store("BoxFinder", NthPlace(1), false);
    for (int restart = 0; restart < 2; ++restart) {
        Start();
        EXPECT_FALSE(Frame().Windows().Get<LogWindow>().isVisible());
        EXPECT_FALSE(Frame().Windows().Get<BoxFinder>().isVisible());
        CloseFrame();
    }
    EXPECT_EQ(Text(Stored("Log")), Text(NthPlace(0)));
    EXPECT_EQ(Text(Stored("BoxFinder")), Text(NthPlace(1)));
    Start();
    Do(CommandId::kDisplayLog);
    Do(CommandId::kBoxFinder);
    ExpectPlace(Frame().Windows().Get<LogWindow>(), NthPlace(0), "Log");
    ExpectPlace(Frame().Windows().Get<BoxFinder>(), NthPlace(1), "BoxFinder");
}

TEST_F(PlacesTest, AWindowThatWasMovedAndThenHiddenComesBackToThatPlace) {
    Start();
    Do(CommandId::kMenuFinder);
    QWidget& finder = Frame().Windows().Get<MenuFinder>();
    ASSERT_TRUE(WaitUntil([&] { return finder.isVisible() && finder.windowHandle()->isExposed(); }));
    finder.resize(500, 480);
    finder.move(333, 222);
    ExpectPlace(finder, {333, 222, 500, 480}, "before");
    Do(CommandId::kMenuFinder);
    EXPECT_FALSE(finder.isVisible());
    CloseFrame();
    EXPECT_EQ(profile.GetInt("MenuFinder.visible", -1), 0);
    Start();
    Do(CommandId::kMenuFinder);
    ExpectPlace(Frame().Windows().Get<MenuFinder>(), {333, 222, 500, 480}, "after");
}

TEST_F(PlacesTest, WindowsBeyondTheRightAndBottomEdgesComeBackAHundredPixelsFromThem) {
    Store("Log", {5000, 4000, 600, 300}, true);
    Store("MainWindow", {5000, 90, 900, 700}, true);
    Start();
    ExpectPlace(Frame().Windows().Get<LogWindow>(), {screen.width() - 100, screen.height() - 100, 600, 300},
                "Log");
    ExpectPlace(Frame(), {screen.width() - 100, 90, 900, 700}, "MainWindow");
}

TEST_F(PlacesTest, WindowsAtNegativePositionsStayThere) {
    Store("BoxFinder", {-60, -7, 500, 400}, true);
    Store("MainWindow", {-200, 40, 1000, 700}, true);
    Start();
    ExpectPlace(Frame().Windows().Get<BoxFinder>(), {-60, -7, 500, 400}, "BoxFinder");
    ExpectPlace(Frame(), {-200, 40, 1000, 700}, "MainWindow");
}

TEST_F(PlacesTest, TheMainWindowIsShownWhateverWasStoredOfIt) {
    Store("MainWindow", {150, 60, 1000, 700}, false);
    Make();
    EXPECT_FALSE(Frame().isVisible());
    EXPECT_EQ(Text(PlaceOf(Frame())), Text({150, 60, 1000, 700}));
    Start();
    ExpectPlace(Frame(), {150, 60, 1000, 700}, "MainWindow");
    CloseFrame();
    EXPECT_EQ(profile.GetInt("MainWindow.visible", -1), 1);
}

TEST_F(PlacesTest, AtTheFirstStartNoToolWindowIsShownAndNoneGetsAPlaceThatItNeverHad) {
    Start();
    for (const Place& tool : Tools()) EXPECT_FALSE(tool.window->isVisible()) << tool.name;
    EXPECT_GE(Frame().x(), 0);
    EXPECT_GE(Frame().y(), 0);
    CloseFrame();
    for (const char* key : {".x", ".y", ".width", ".height", ".visible"})
        EXPECT_TRUE(profile.numbers.contains(std::string("MainWindow") + key)) << key;
    EXPECT_FALSE(profile.numbers.contains("Log.x"));
    Start();
    Do(CommandId::kDisplayLog);
    CloseFrame();
    for (const char* key : {".x", ".y", ".width", ".height", ".visible"})
        EXPECT_TRUE(profile.numbers.contains(std::string("Log") + key)) << key;
    EXPECT_FALSE(profile.numbers.contains("BoxFinder.x"));
}

TEST_F(PlacesTest, WindowsThatWereNeverPlacedComeUpOnTheFrameEachOnASpotOfItsOwn) {
    Start();
    CloseFrame();  // as in the second run: the profile knows of the frame alone
    Start();
    const QRect onScreen = Frame().screen()->availableGeometry();
    std::map<std::pair<int, int>, std::string> spots;
    for (const Place& tool : Tools()) {
        tool.window->show();
        ASSERT_TRUE(WaitUntil([&] { return tool.window->windowHandle()->isExposed(); })) << tool.name;
        const QRect place = tool.window->frameGeometry();
        EXPECT_TRUE(WaitUntil([&] { return onScreen.contains(tool.window->frameGeometry()); }))
            << tool.name << ": " << Text(place);
        EXPECT_TRUE(Frame().frameGeometry().intersects(place)) << tool.name << ": " << Text(place);
        EXPECT_GT(place.y(), Frame().y()) << tool.name << " covers the menus";
        const auto [spot, isNew] = spots.emplace(std::pair(place.x(), place.y()), tool.name);
        EXPECT_TRUE(isNew) << tool.name << " stands on " << spot->second;
    }
}

TEST_F(PlacesTest, AWindowThatWasHiddenAndComesUpAgainHasNotMoved) {
    Start();
    Do(CommandId::kBoxFinder);
    QWidget& finder = Frame().Windows().Get<BoxFinder>();
    ASSERT_TRUE(WaitUntil([&] { return finder.isVisible() && finder.windowHandle()->isExposed(); }));
    finder.move(444, 333);
    ExpectPlace(finder, {QPoint(444, 333), finder.size()}, "before");
    Do(CommandId::kBoxFinder);
    Frame().move(Frame().pos() + QPoint(20, 20));
    Do(CommandId::kBoxFinder);
    ExpectPlace(finder, {QPoint(444, 333), finder.size()}, "after");
}

TEST_F(PlacesTest, ToolWindowsStayOverTheFrameWhateverComesToTheTop) {
    Store("Log", NthPlace(0), true);  // comes up with the frame
    Start();
    for (const Place& tool : Tools()) {
        tool.window->show();
        EXPECT_TRUE(WaitUntil([&] { return test::IsAbove(*tool.window, Frame()); })) << tool.name;
    }
    QWidget other;
    test::ShowActive(other);
    test::ShowActive(Frame());
    EXPECT_TRUE(WaitUntil([&] { return test::IsAbove(Frame(), other); }));
    for (const Place& tool : Tools()) EXPECT_TRUE(test::IsAbove(*tool.window, Frame())) << tool.name;
}

TEST_F(PlacesTest, AMaximizedFrameComesBackMaximizedAndGoesBackToItsNormalPlace) {
    Start();
    Frame().resize(1010, 707);
    Frame().move(120, 95);
    ExpectPlace(Frame(), {120, 95, 1010, 707}, "MainWindow");
    Settle();
    Frame().showMaximized();
    const auto isMaximized = [this] { return Frame().isMaximized() && Frame().width() > 1500; };
    ASSERT_TRUE(WaitUntil(isMaximized));
    for (int restart = 0; restart < 2; ++restart) {
        CloseFrame();
        Start();
        EXPECT_TRUE(WaitUntil(isMaximized)) << Text(PlaceOf(Frame()));
    }
    Frame().showNormal();
    ExpectPlace(Frame(), {120, 95, 1010, 707}, "MainWindow");
    CloseFrame();
    Start();
    EXPECT_FALSE(Frame().isMaximized());
    ExpectPlace(Frame(), {120, 95, 1010, 707}, "MainWindow");
}

TEST_F(PlacesTest, AMinimizedToolWindowKeepsItsStoredPlace) {
    Store("Log", {120, 130, 600, 300}, true);
    Start();
    LogWindow& log = Frame().Windows().Get<LogWindow>();
    ExpectPlace(log, {120, 130, 600, 300}, "Log");
    log.move(400, 410);
    log.showMinimized();
    ASSERT_TRUE(WaitUntil([&] { return log.isMinimized(); }));
    CloseFrame();
    EXPECT_EQ(Text(Stored("Log")), Text({120, 130, 600, 300}));
}

}  // namespace
}  // namespace tavrin
