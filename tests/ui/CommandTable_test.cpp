// SPDX-License-Identifier: Apache-2.0
// The commands as they stand in menus, on the toolbar and on keys of a frame.
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QToolBar>
#include <map>
#include <set>

#include "ui/base/Text.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::FrameTest;

struct Listed {
    int id;
    const char* text;  // '&' left out, behind a tab the key that a menu shows without owning it
    const char* keys;  // that the command owns
};

constexpr Listed kListed[] = {
    {57600, "New", "Ctrl+N"},
    {57601, "Open...", "Ctrl+O"},
    {32771, "Merge...", ""},
    {32964, "Examples...", ""},
    {57603, "Save", "Ctrl+S"},
    {57604, "Save As...", ""},
    {32898, "Export Options...", ""},
    {32901, "Shader Source (.src)", ""},
    {32902, "Compiled Shader (.cmp)", ""},
    {32903, "Render Interface (.rif)", ""},
    {32904, "Shader Interface (.cus)", ""},
    {32900, "Export All\tF7", ""},
    {32915, "Run Script...", ""},
    {32917, "Halt Script", ""},
    {57665, "Exit", "Ctrl+Q"},
    {57643, "Undo", "Ctrl+Z"},
    {57644, "Redo", "Ctrl+Shift+Z Ctrl+Y"},
    {32941, "Undo History", ""},
    {32906, "Render History\tF6", ""},
    {57635, "Cut", "Ctrl+X Shift+Del"},
    {57634, "Copy", "Ctrl+C"},
    {57637, "Paste", "Ctrl+V Shift+Ins"},
    {32774, "Delete", "Del"},
    {32947, "Delete and Join", ""},
    {32948, "Mute Boxes", "Ctrl+Shift+M"},
    {32949, "Tidy", "Ctrl+Shift+T"},
    {32950, "Align Left", ""},
    {32951, "Align Centre", ""},
    {32952, "Align Right", ""},
    {32953, "Align Top", ""},
    {32954, "Align Middle", ""},
    {32955, "Align Bottom", ""},
    {32956, "Distribute Across", ""},
    {32957, "Distribute Down", ""},
    {32961, "Frame Selected Boxes", ""},
    {32962, "Add Note", ""},
    {32844, "Stow All Sliders", ""},
    {32845, "Unstow All Sliders", ""},
    {32846, "Pin All Sliders", ""},
    {32847, "Unpin All Sliders", ""},
    {32848, "Lock All Sliders", ""},
    {32849, "Unlock All Sliders", ""},
    {32775, "Select All Boxes", "Ctrl+A"},
    {32776, "Unselect All Boxes", ""},
    {32907, "Box Finder", "Ctrl+B"},
    {32908, "Menu Finder", "Ctrl+M"},
    {32946, "Search...", ""},
    {32777, "Fit to Window", "Ctrl+F"},
    {32778, "Zoom Reset", "Esc"},
    {32779, "Zoom In", "Up"},
    {32780, "Zoom Out", "Down"},
    {32960, "Minimap", ""},
    {32864, "Freeze Sliders\tF3", ""},
    {32787, "Display Icons", ""},
    {32788, "Straight Trace Lines", "Ctrl+T"},
    {32789, "Lines Draw Over Boxes", ""},
    {32790, "Show Varnames", ""},
    {32800, "Lock Desk", "Ctrl+L"},
    {32795, "Status Bar", ""},
    {32861, "Scroll Bars", ""},
    {32850, "Slider Desk", ""},
    {32910, "Render History", ""},
    {32909, "Sound Effects", ""},
    {32860, "Debug Mode", ""},
    {32781, "Render Options\tF2", ""},
    {32782, "Argument Editor\tF5", ""},
    {32878, "Show Wallpaper", ""},
    {32877, "Tile Wallpaper", ""},
    {32879, "Set Wallpaper...", ""},
    {32940, "Reload Operators", ""},
    {32792, "Render It\tF1", ""},
    {32793, "Stop Render\tF4", ""},
    {32943, "Picture Window", ""},
    {32944, "Keep Render", ""},
    {32942, "Live", ""},
    {32945, "Compare Renders", ""},
    {32958, "Check", ""},
    {32959, "Source", ""},
    {32889, "Display Log\tF8", ""},
    {32892, "Clear Log", "Ctrl+Del"},
    {32794, "View Shader Source (.src)", "F9"},
    {32896, "View Render Interface (.rif)", "F10"},
    {32897, "View Shader Interface (.cus)", "F11"},
    {32938, "Allow Multiple Simultaneous Renders", ""},
    {32797, "Shader Help", ""},
    {32918, "Online Documentation", ""},
    {57664, "About Tavrin", ""},
    {36864, "Customize...", ""},
};

constexpr const char* kHotKeys[] = {"F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8"};

class CommandTableTest : public FrameTest {
  protected:
    CommandTableTest() {
        std::string site = test::ReadFile(directory / "tavrin/tiny/tavrn.def");
        site += "ext.shadersource .src\next.compiledshader .cmp\next.renderiface .rif\n";
        directory.Write("tavrin/tiny/tavrn.def", site);
    }

    QAction& ActionOf(int id) { return Action(static_cast<CommandId>(id)); }
    static QString Keys(const QAction& action) {
        QStringList keys;
        for (const QKeySequence& key : action.shortcuts()) keys << key.toString();
        return keys.join(' ');
    }
    // The texts of a menu's items: separators as "-", a submenu as "TITLE >", keys left out.
    QStringList Items(const QString& title) {
        QMenu* menu = Menu(title);
        menu->aboutToShow();  // the recent files come then
        QStringList items;
        for (const QAction* item : menu->actions()) {
            const QString text = item->text().remove('&').section('\t', 0, 0);
            items << (item->isSeparator() ? "-" : item->menu() != nullptr ? text + " >" : text);
        }
        return items;
    }
    QStringList HotKeysOfFrame() {
        QStringList keys;
        // Windows of the frame have some of their own.
        for (const QShortcut* hotKey : Frame().findChildren<QShortcut*>(Qt::FindDirectChildrenOnly))
            keys << hotKey->key().toString();
        return keys;
    }
};

TEST_F(CommandTableTest, EachCommandHasItsTextAndItsKeys) {
    Start();
    for (const Listed& listed : kListed) {
        const QAction& action = ActionOf(listed.id);
        EXPECT_EQ(Bytes(action.text().remove('&')), listed.text);
        EXPECT_EQ(Bytes(Keys(action)), listed.keys) << listed.text;
        EXPECT_EQ(action.objectName(), QString::number(listed.id)) << listed.text;
    }
}

TEST_F(CommandTableTest, NoCommandIsMissingInThisTest) {
    std::set<int> listed;
    for (const Listed& each : kListed) listed.insert(each.id);
    for (const CommandSpec& spec : CommandTable()) {
        EXPECT_EQ(listed.erase(static_cast<int>(spec.id)), 1U) << spec.text;
    }
    EXPECT_TRUE(listed.empty());
}

TEST_F(CommandTableTest, WithoutExtensionsTheTextsShowNone) {
    directory.Write("tavrin/tiny/tavrn.def", test::ReadFile(test::SourcePath("tests/tiny/tavrn.def")));
    Start();
    EXPECT_EQ(ActionOf(32901).text(), "Shader &Source ()");
    EXPECT_EQ(ActionOf(32902).text(), "&Compiled Shader ()");
    EXPECT_EQ(ActionOf(32903).text(), "&Render Interface ()");
    EXPECT_EQ(ActionOf(32794).text(), "&View Shader Source ()");
    EXPECT_EQ(ActionOf(32896).text(), "View Render &Interface ()");
}

TEST_F(CommandTableTest, EachCommandTellsWhatItDoes) {
    Start();
    std::map<QString, const char*> tips;
    for (const Listed& listed : kListed) {
        const QAction& action = ActionOf(listed.id);
        EXPECT_FALSE(action.statusTip().isEmpty()) << listed.text;
        EXPECT_TRUE(tips.emplace(action.statusTip(), listed.text).second)
            << listed.text << " tells the same as " << tips[action.statusTip()];
        // The tool tip: the text as it reads, and the first key.
        QString text = Shown(listed.text);
        const QString hotKey = text.section('\t', 1, 1);
        const QString key = hotKey.isEmpty() ? Shown(listed.keys).section(' ', 0, 0) : hotKey;
        text = text.section('\t', 0, 0).remove("...");
        const QString tip = key.isEmpty() ? text : text + " (" + key + ")";
        EXPECT_EQ(Bytes(action.toolTip().replace("(Delete)", "(Del)").replace("+Delete", "+Del")),
                  Bytes(tip));
    }
}

TEST_F(CommandTableTest, NoKeyIsBoundTwice) {
    Start();
    std::map<QString, std::string> owners;
    for (const QString& key : HotKeysOfFrame()) {
        EXPECT_TRUE(owners.emplace(key, "a hot key").second) << Bytes(key);
    }
    for (const QAction* action : Frame().findChildren<QAction*>()) {
        if (action->parent() != &Frame()) continue;
        for (const QKeySequence& key : action->shortcuts()) {
            const auto [place, isNew] = owners.emplace(key.toString(), Bytes(action->text()));
            EXPECT_TRUE(isNew) << Bytes(action->text()) << " and " << place->second << ": "
                               << Bytes(key.toString());
        }
    }
    EXPECT_EQ(owners.size(), 32U + 3U + 2U - 1U)
        << "all accelerators, those of Undo and Redo, of Mute and Tidy, but not that for printing, which "
           "nothing does";
}

TEST_F(CommandTableTest, TheHotKeysAreF1ToF8InTheOrderOfTheirCommands) {
    Start();
    EXPECT_EQ(HotKeysOfFrame().join(' '), "F1 F2 F3 F4 F5 F6 F7 F8");
    QStringList order;
    for (const char* key : kHotKeys) {
        for (const Listed& listed : kListed) {
            if (ActionOf(listed.id).text().section('\t', 1, 1) == key) order << QString::number(listed.id);
        }
    }
    EXPECT_EQ(order.join(' '), "32792 32781 32864 32793 32782 32906 32900 32889");
}

TEST_F(CommandTableTest, TheMenuBarHasItsMenusInOrder) {
    Start();
    QStringList titles;
    for (const QAction* item : Frame().menuBar()->actions()) titles << item->text();
    EXPECT_EQ(titles.mid(0, 7).join(' '), "&File &Edit F&ind &View &Options &Render &Help");
}

TEST_F(CommandTableTest, TheMenusHoldTheirItemsInOrder) {
    Start();
    EXPECT_EQ(Bytes(Items("File").join('|')),
              "New|Open...|Merge...|Examples...|-|Save|Save As...|-|Export Options...|Export >|Export All|-|"
              "Run Script...|Halt Script|-|Recent Files|-|-|Exit");
    EXPECT_EQ(Bytes(Items("Edit").join('|')),
              "Undo|Redo|Undo History|-|Render History|-|Cut|Copy|Paste|Delete|Delete and Join|Mute "
              "Boxes|-|Arrange >|Frame Selected Boxes|Add Note|-|Select All Boxes|Unselect All Boxes|-|"
              "Stow All Sliders|Unstow All Sliders|-|Pin All Sliders|Unpin All Sliders|-|"
              "Lock All Sliders|Unlock All Sliders");
    EXPECT_EQ(Bytes(Items("Find").join('|')), "Box Finder|Menu Finder|Search...");
    EXPECT_EQ(Bytes(Items("View").join('|')),
              "Fit to Window|Zoom Reset|Zoom In|Zoom Out|Minimap|-|Stow All Sliders|Unstow All Sliders|-|"
              "Pin All Sliders|Unpin All Sliders|-|Lock All Sliders|Unlock All Sliders");
    EXPECT_EQ(Bytes(Items("Options").join('|')),
              "Freeze Sliders|-|Display Icons|Straight Trace Lines|Lines Draw Over Boxes|Show Varnames|"
              "Lock Desk|-|Status Bar|Scroll Bars|-|Render History|Sound Effects|Debug Mode|-|"
              "Render Options|Argument Editor|-|Show Wallpaper|Tile Wallpaper|Set Wallpaper...|-|"
              "Reload Operators");
    EXPECT_EQ(Bytes(Items("Render").join('|')),
              "Render It|Stop Render|Live|Render History|Picture Window|Keep Render|Compare "
              "Renders|Check|-|Display Log|Clear Log|-|View Shader Source (.src)|Source|"
              "View Render Interface (.rif)|View Shader Interface (.cus)");
    EXPECT_EQ(Bytes(Items("Help").join('|')), "Shader Help|-|Online Documentation|About Tavrin");
}

TEST_F(CommandTableTest, TheExportPopupHoldsTheFourKindsOfFile) {
    Start();
    QList<QMenu*> popups;
    for (const QAction* item : Menu("File")->actions()) {
        if (item->menu() != nullptr) popups << item->menu();
    }
    ASSERT_EQ(popups.size(), 1);
    EXPECT_EQ(MenuTexts(popups[0]).join('|'),
              "Shader Source (.src)|Compiled Shader (.cmp)|Render Interface (.rif)|Shader Interface (.cus)");
}

TEST_F(CommandTableTest, TheArrangePopupHoldsTheWaysToPutBoxesInOrder) {
    Start();
    EXPECT_EQ(MenuTexts(Menu("Edit")->findChild<QMenu*>()).join('|'),
              "Tidy||Align Left|Align Centre|Align Right|Align Top|Align Middle|Align Bottom||Distribute "
              "Across|Distribute Down");
}

// Of the two commands of the same title, Options has the switch and the others have the window.
TEST_F(CommandTableTest, RenderHistoryOfOptionsIsACommandOfItsOwn) {
    Start();
    EXPECT_TRUE(Menu("Options")->actions().contains(&ActionOf(32910)));
    EXPECT_FALSE(Menu("Options")->actions().contains(&ActionOf(32906)));
    EXPECT_TRUE(Menu("Edit")->actions().contains(&ActionOf(32906)));
    EXPECT_TRUE(Menu("Render")->actions().contains(&ActionOf(32906)));
}

TEST_F(CommandTableTest, EachLetterChoosesOneItemOfItsMenu) {
    Start();
    const QList<QAction*> bar = Frame().menuBar()->actions();
    QList<QList<QAction*>> levels = {bar.mid(0, 7)};
    for (const QAction* title : bar.mid(0, 7)) {
        levels << title->menu()->actions();
        for (const QMenu* submenu : title->menu()->findChildren<QMenu*>()) levels << submenu->actions();
    }
    for (const auto& level : levels) {
        std::map<QString, std::string> letters;
        for (const QAction* item : level) {
            const qsizetype mark = item->text().indexOf('&');
            if (mark < 0) continue;
            const QString letter = item->text().mid(mark + 1, 1).toUpper();
            const auto [place, isNew] = letters.emplace(letter, Bytes(item->text()));
            EXPECT_TRUE(isNew) << Bytes(item->text()) << " and " << place->second;
        }
    }
}

TEST_F(CommandTableTest, TheToolbarHasItsButtonsInOrder) {
    Start();
    QStringList places;
    for (const QAction* item : Frame().findChild<QToolBar*>("MainToolBar")->actions()) {
        places << (item->isSeparator() ? "-" : item->objectName());
        EXPECT_EQ(item->icon().isNull(), item->isSeparator()) << Bytes(item->text());
    }
    EXPECT_EQ(
        Bytes(places.join(' ')),
        "57600 57601 57603 - 32898 32900 - 57643 57644 - 57635 57634 57637 - 32775 32776 - 32844 32845 - "
        "32846 32847 - 32848 32849 - 32908 32907 - 32777 32778 32779 32780 - "
        "32864 32787 32788 32789 32790 32800 - 32792 32793 32942 - 32781 32782 32906 32794 - "
        "32889 32892 - 32797 57664");
}

TEST_F(CommandTableTest, TheToolbarOfAFreshFrameShowsAllItsButtons) {
    Start();
    const auto* bar = Frame().findChild<QToolBar*>("MainToolBar");
    for (QAction* item : bar->actions()) {
        EXPECT_TRUE(bar->widgetForAction(item)->isVisible()) << Bytes(item->text());
    }
}

}  // namespace
}  // namespace tavrin
