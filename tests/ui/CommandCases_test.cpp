// SPDX-License-Identifier: Apache-2.0
// What commands do beyond one row for each way.
#include "ui/support/CommandBench.h"

namespace tavrin {
namespace {

using test::Bench;
using Id = CommandId;
using test::BoxesShown;
using test::ChooseFileWhenDialogComes;
using test::PressWhenBoxComes;
using test::WaitUntil;
using testing::HasSubstr;
using testing::Not;

// What the table of effects has no row for.
class OtherCommandEffects : public Bench {
  protected:
    OtherCommandEffects() { Start(); }
    int SliderColumnWidth() { return Frame().findChild<QSplitter*>()->widget(0)->width(); }
};

TEST_F(OtherCommandEffects, HaltScriptEndsTheScriptAndWhatItStarted) {
    AddBoxes(1);
    HoldScripts();
    ChooseFileWhenDialogComes(directory.Write("long.tvx", "form render render\nsing loud\n"));
    QTimer look;
    look.callOnTimeout([&] {
        if (Log().find("renderit ") == std::string::npos) return;
        look.stop();
        EXPECT_TRUE(Frame().ActionDispatch().ScriptRunning());
        Settle();
        test::ChooseInMenu(Frame(), "File", Action(Id::kHaltScript));
        EXPECT_FALSE(Frame().ActionDispatch().ScriptRunning());
    });
    look.start(5);
    test::ChooseInMenu(Frame(), "File", Action(Id::kRunScript));
    EXPECT_TRUE(LogComesTo("renderit killed"));
    EXPECT_THAT(Log(), Not(HasSubstr("unknown action")));
    EXPECT_FALSE(look.isActive());
}

TEST_F(OtherCommandEffects, TheSliderColumnGoesAndComesBackAsWideAsItWas) {
    const int width = SliderColumnWidth();
    EXPECT_GT(width, 0);
    Do(Id::kSliderDesk);
    Settle();
    EXPECT_EQ(SliderColumnWidth(), 0);
    Do(Id::kSliderDesk);
    Settle();
    EXPECT_EQ(SliderColumnWidth(), width);
}

TEST_F(OtherCommandEffects, WithoutMultipleRendersASecondOneIsRefused) {
    AddBoxes(1);
    HoldScripts();
    Do(Id::kRenderIt);
    ASSERT_TRUE(ChildRuns());
    Do(Id::kRenderIt);
    EXPECT_EQ(Frame().Work().session.m_nextRender, 3);
    Do(Id::kMultipleRenders);
    Settle();
    EXPECT_FALSE(Action(Id::kRenderIt).isEnabled());
    Do(Id::kMultipleRenders);
    Settle();
    EXPECT_TRUE(Action(Id::kRenderIt).isEnabled());
}

TEST_F(OtherCommandEffects, AWallpaperThatCannotBeReadKeepsTheOldOne) {
    SetRedWallpaper();
    EXPECT_EQ(RedPixels(), 60 * 40);
    ChooseFileWhenDialogComes(directory.Write("broken.sgi", "no picture"));
    PressWhenBoxComes("OK");
    test::ChooseInMenu(Frame(), "Options", Action(Id::kSetWallpaper));
    ASSERT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_THAT(Bytes(BoxesShown()[0]), testing::StartsWith("Alert: WARNING: " + directory / "broken.sgi"));
    EXPECT_EQ(RedPixels(), 60 * 40);
}

TEST_F(OtherCommandEffects, SetWallpaperStartsWhereTheLastOneWasChosen) {
    const auto file = test::SgiTestFile::Plain(6, 4, 3, {255, 0, 0, 255});
    ChooseFileWhenDialogComes(directory.Write("walls/red.sgi", file.Bytes()));
    Do(Id::kSetWallpaper);
    QString title;
    QString start;
    QStringList filters;
    test::WhenDialogComes([&](QDialog& dialog) {
        auto& files = dynamic_cast<QFileDialog&>(dialog);
        title = files.windowTitle();
        start = files.directory().path();
        filters = files.nameFilters();
        dialog.reject();
    });
    Do(Id::kSetWallpaper);
    EXPECT_EQ(title, "Select");
    EXPECT_EQ(Bytes(start), directory / "walls");
    EXPECT_EQ(filters.join('|'), "SGI Images (*.sgi)");
}

TEST_F(OtherCommandEffects, DocumentationThatIsNotThereIsAlerted) {
    PressWhenBoxComes("OK");
    test::ChooseInMenu(Frame(), "Help", Action(Id::kOnlineDocumentation));
    ASSERT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_EQ(Bytes(BoxesShown()[0]), "Alert: unable to open " + directory / "tavrin/Readme.url");
}

TEST_F(OtherCommandEffects, AMinimizedToolWindowIsRestoredByItsCommand) {
    for (const Id id :
         {Id::kRenderOptions, Id::kArgumentEditor, Id::kExportOptions, Id::kShaderHelp, Id::kDisplayLog}) {
        Do(id);
        ToolWindow* window = nullptr;
        for (ToolWindow* each : Frame().Windows().All()) window = each->isVisible() ? each : window;
        ASSERT_NE(window, nullptr);
        ASSERT_TRUE(test::WaitUntilSeen(*window));
        window->showMinimized();
        ASSERT_TRUE(WaitUntil([&] { return window->isMinimized(); }));
        EXPECT_FALSE(window->IsUp());
        test::ShowActive(Frame());
        Do(id);
        EXPECT_TRUE(WaitUntil([&] { return window->IsUp(); })) << Bytes(window->windowTitle());
        window->hide();
        Settle();
    }
}

}  // namespace
}  // namespace tavrin
