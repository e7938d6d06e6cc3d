// SPDX-License-Identifier: Apache-2.0
// The fixture of the commands' tests: what they set up and look at.
#pragma once

#include <QFileDialog>
#include <QOpenGLWidget>
#include <QScrollBar>
#include <QSplitter>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <filesystem>
#include <set>

#include "images/SgiTestFile.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"
#include "ui/windows/ToolWindow.h"

namespace tavrin::test {

namespace fs = std::filesystem;

// The fixture as the rows of the table see it.
class Bench : public FrameTest {
  public:
    using FrameTest::AddBoxes;
    using FrameTest::App;
    using FrameTest::ChildRuns;
    using FrameTest::Desk;
    using FrameTest::directory;
    using FrameTest::Do;
    using FrameTest::Document;
    using FrameTest::EditedFiles;
    using FrameTest::environment;
    using FrameTest::Frame;
    using FrameTest::HoldScripts;
    using FrameTest::IsChecked;
    using FrameTest::Log;
    using FrameTest::Settle;
    using FrameTest::Start;
    using FrameTest::WorkDir;
    using FrameTest::WriteDocument;

    // By how its title begins.
    bool IsUp(const QString& title) {
        for (const ToolWindow* window : Frame().Windows().All()) {
            if (window->windowTitle().startsWith(title)) return window->IsUp();
        }
        ADD_FAILURE() << "there is no window " << Bytes(title);
        return false;
    }
    int BoxCount() { return static_cast<int>(Document().m_boxes.size()); }
    int Selected() {
        int selected = 0;
        for (const auto& box : Document().m_boxes) selected += box->selected != 0 ? 1 : 0;
        return selected;
    }
    void AddSelectedBoxes(int count) {
        AddBoxes(count);
        Desk().SelectAllBoxes();
        Settle();
    }
    bool LogComesTo(const std::string& text) {
        return WaitUntil([&] { return Log().find(text) != std::string::npos; });
    }
    // The text of the file of that name that the editor is given.
    std::string Edited(const std::string& name) {
        EXPECT_TRUE(WaitUntil([&] { return !EditedFiles().empty(); }));
        EXPECT_THAT(EditedFiles(), testing::ElementsAre(WorkDir() + "/" + name));
        return ReadFile(WorkDir() + "/" + name);
    }
    QImage DeskPicture() { return Frame().Desk().Desk().grabFramebuffer(); }
    void SetRedWallpaper() {
        const auto file = SgiTestFile::Plain(60, 40, 3, {255, 0, 0, 255});
        ChooseFileWhenDialogComes(directory.Write("red.sgi", file.Bytes()));
        Do(CommandId::kSetWallpaper);
        Settle();
    }
    // How many pixels of the desk are pure red.
    int RedPixels() {
        const QImage picture = DeskPicture();
        int count = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                count += (picture.pixel(x, y) & RGB_MASK) == (qRgb(255, 0, 0) & RGB_MASK) ? 1 : 0;
        return count;
    }
};

}  // namespace tavrin::test
