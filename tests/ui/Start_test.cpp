// SPDX-License-Identifier: Apache-2.0
#include <QMenuBar>

#include "ui/base/Text.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::FrameTest;

class StartTest : public FrameTest {};

TEST_F(StartTest, TheFrameStandsWithAnUntitledDocument) {
    Start();
    EXPECT_EQ(Bytes(Frame().windowTitle()), "Untitled.tvn[*]");
    EXPECT_FALSE(Frame().isWindowModified());
    EXPECT_EQ(Document().Path(), "");
    EXPECT_TRUE(Document().m_boxes.empty());
}

TEST_F(StartTest, TheMenuBarHasTheOperatorsBehindTheFramesOwnMenus) {
    Start();
    QStringList titles;
    for (const QAction* item : Frame().menuBar()->actions()) titles << item->text().remove('&');
    EXPECT_EQ(titles.join(' '), "File Edit Find View Options Render Help Constant Paint Patterns Shapes");
}

}  // namespace
}  // namespace tavrin
