// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/ToolWindow.h"

#include <gtest/gtest.h>

#include "ui/support/Windows.h"

namespace tavrin {
namespace {

TEST(ToolWindow, TogglesBetweenShownAndHidden) {
    ToolWindow window("A tool", nullptr);
    window.Toggle();
    EXPECT_TRUE(test::WaitUntil([&] { return window.IsUp(); }));
    window.Toggle();
    EXPECT_FALSE(window.isVisible());
}

TEST(ToolWindow, AMinimizedWindowIsNotUpAndIsRestored) {
    ToolWindow window("A tool", nullptr);
    window.showMinimized();
    EXPECT_FALSE(window.IsUp());
    window.Toggle();
    EXPECT_TRUE(test::WaitUntil([&] { return window.IsUp(); }));
}

TEST(ToolWindow, IsHiddenAndNotDestroyedWhenItIsClosed) {
    class Watched : public ToolWindow {
      public:
        Watched() : ToolWindow("A tool", nullptr) {}
        int closings = 0;

      protected:
        void Closing() override { ++closings; }
    } window;
    int changes = 0;
    window.OnShownOrHidden([&] { ++changes; });
    window.show();
    window.close();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(window.closings, 1);
    EXPECT_EQ(changes, 2);
    window.ComeUp();
    EXPECT_TRUE(window.IsUp());
}

}  // namespace
}  // namespace tavrin
