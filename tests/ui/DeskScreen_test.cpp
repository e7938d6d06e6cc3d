// SPDX-License-Identifier: Apache-2.0
// The desk on the screen itself: what is painted without anybody asking for a picture.
#include <QAction>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "support/TestHost.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Pictures.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::BoxesShown;
using test::PressWhenBoxComes;
using test::WaitUntil;

class DeskScreenTest : public test::FrameTest {
  protected:
    QImage Screen() { return test::SeenOnScreen(Frame().Desk().Desk()); }
    QImage FreshPicture() { return Frame().Desk().Desk().grabFramebuffer(); }
    static bool AreAlike(const QImage& one, const QImage& other) {
        return test::CountDifferences(one, other, 2) == 0;
    }
    bool ScreenShows(const QImage& picture) {
        return WaitUntil([&] { return AreAlike(Screen(), picture); });
    }
    // The first box, a red one, lies below the second, a green one, which hides it.
    void StartWithHiddenBox() {
        Start();
        AddBoxes(2);
        for (const auto& box : Document().m_boxes) {
            box->xypos[0] = box->xypos[1] = 0;
            box->selected = 0;
            box->color[box->wid == 1 ? 0 : 1] = 1;
        }
        Frame().Desk().LayoutAll();
        Frame().Desk().CentreOnBox("Constant_2");
        m_path = directory / "work.tvn";
        Document().SetPath(m_path);
        ASSERT_TRUE(ScreenShows(FreshPicture()));
    }
    std::string m_path;
};

struct Storing {
    const char* name;
    CommandId command;
};

class StoringOnScreen : public DeskScreenTest, public testing::WithParamInterface<Storing> {};

// Storing puts the boxes into the order of their numbers, the first one on top.
TEST_P(StoringOnScreen, TheBoxThatIsSeenIsTheOneThatAClickMeets) {
    StartWithHiddenBox();
    const QImage before = Screen();
    Document().SetForeign(false);
    Document().exportOptions.saveTavrn = 1;
    Document().exportOptions.tavrnPath = directory / "export.tvn";
    Do(GetParam().command);
    ASSERT_EQ(test::WidsOf(Document()), (std::vector<int>{1, 2}));
    ASSERT_TRUE(WaitUntil([&] { return !AreAlike(Screen(), before); }));
    const QImage seen = Screen();
    EXPECT_TRUE(AreAlike(FreshPicture(), seen));

    test::DeskPointer pointer(Frame());
    QMenu* menu = pointer.OpenMenu(pointer.TitleOf(*Document().m_boxes.front()));
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(Bytes(menu->actions().front()->text()), "Constant_1");
    pointer.Choose(menu, {"Delete", "This Box"});
    EXPECT_EQ(test::WidsOf(Document()), std::vector<int>{2});
    EXPECT_TRUE(ScreenShows(before));
    EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
    Document().SetModified(false);
}

INSTANTIATE_TEST_SUITE_P(Commands, StoringOnScreen,
                         testing::Values(Storing{"Save", CommandId::kSave},
                                         Storing{"RenderIt", CommandId::kRenderIt},
                                         Storing{"ExportAll", CommandId::kExportAll}),
                         [](const auto& storing) { return std::string(storing.param.name); });

// A button of the toolbar for an operator that comes to nothing.
class RefusedOnScreen : public DeskScreenTest, public testing::WithParamInterface<const char*> {
  protected:
    RefusedOnScreen() {
        const std::string site = "tavrin/tiny/tavrn.def";
        directory.Write(site, test::ReadFile(directory / site) + "toolbutton 1=" + GetParam() + "\n");
        directory.Write("tavrin/tiny/menu/0300.Patterns/0020.Limited", "defs { maxinstances -1 }\n");
        directory.Write("tavrin/tiny/menu/0300.Patterns/0030.Broken", "nonsense\n");
        directory.Write("tavrin/tiny/menu/0300.Patterns/0040.Gone", "output o { float out }\n");
    }
    void ClickOperator() {
        auto* button = Frame().OperatorBar().findChild<QPushButton*>("operator");
        ASSERT_NE(button, nullptr);
        const qsizetype boxes = BoxesShown().size();
        PressWhenBoxComes("OK");
        QTest::mouseClick(button, Qt::LeftButton);
        ASSERT_TRUE(WaitUntil([&] { return BoxesShown().size() > boxes; }));
    }
};

TEST_P(RefusedOnScreen, LeavesNoGhostsOfBoxesThatWaitedAndNoOutlines) {
    Start();
    std::filesystem::remove(directory / "tavrin/tiny/menu/0300.Patterns/0040.Gone");
    AddBoxes(1);
    Frame().Desk().CentreOnBox("Constant_1");
    Desk().UnselectAllBoxes();
    const QImage bare = FreshPicture();
    ASSERT_TRUE(ScreenShows(bare));

    Desk().AddOperator("Constant");
    test::DeskPointer(Frame()).MoveTo({40, 60});
    ASSERT_TRUE(WaitUntil([&] { return !AreAlike(Screen(), bare); }));
    ClickOperator();
    EXPECT_TRUE(ScreenShows(bare)) << "what waited is still seen";

    Desk().SelectAllBoxes();
    ASSERT_TRUE(WaitUntil([&] { return !AreAlike(Screen(), bare); }));
    ClickOperator();
    EXPECT_TRUE(ScreenShows(bare)) << "the outline is still seen";
    Document().SetModified(false);
}

INSTANTIATE_TEST_SUITE_P(Ways, RefusedOnScreen, testing::Values("Limited", "Broken", "Gone"),
                         [](const auto& way) { return std::string(way.param); });

}  // namespace
}  // namespace tavrin
