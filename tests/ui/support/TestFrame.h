// SPDX-License-Identifier: Apache-2.0
// A whole main frame on an installation in small, for tests of commands.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/Actions.h"
#include "app/TvApp.h"
#include "base/Profile.h"
#include "support/TestSite.h"
#include "ui/base/QtQueue.h"
#include "ui/frame/MainFrame.h"
#include "ui/support/Windows.h"

class QMenu;
class QToolButton;

namespace tavrin::test {

// The library "tiny" with two submenus of operators, whose scripts do as the test says. The editor writes
// down what it was given. The frame's profile lasts over restarts within the test.
class FrameTest : public testing::Test {
  protected:
    FrameTest();
    ~FrameTest() override;

    // Ends a frame that is there and makes a new one, shown and active.
    void Start();
    // Without the frame being shown.
    void Make(bool withSplash = false);
    void End();

    MainFrame& Frame() { return *m_frame; }
    CTvDoc& Document() { return m_frame->Work().document; }
    COpDesk& Desk() { return m_frame->Work().desk; }
    CTvApp& App() { return *m_app; }
    std::string Log();

    // A document on the desk: boxes made of an operator and dropped.
    void AddBoxes(int count, const std::string& operatorName = "Constant");
    // A file "NAME.tvn" in the test's directory with that many boxes; its path.
    std::string WriteDocument(const std::string& name, int boxes = 1);

    // Runs until the event loop has nothing to do.
    void Settle();
    void Do(CommandId id) { m_frame->Command(id); }
    QAction& Action(CommandId id) { return m_frame->Commands().Get(id); }
    // After the rules were looked at anew.
    bool IsEnabled(CommandId id);
    bool IsChecked(CommandId id);

    // A script of the library waits while the file "hold" is there, and heeds its kill file.
    void HoldScripts() { directory.Write("hold", ""); }
    void ReleaseScripts();
    bool ChildRuns() { return m_app->GetSite().commands.AnyChildRunning(); }
    // One line for each file that the editor was given.
    std::vector<std::string> EditedFiles();
    std::string WorkDir() { return m_app->GetSite().directories.workDir; }

    // The menu of that title on the menu bar ('&' left out), and its texts, those of separators empty.
    QMenu* Menu(const QString& title);
    QStringList MenuTexts(QMenu* menu);

    TempDir directory;
    MemoryProfile profile;
    Environment environment;

  private:
    Report m_report;
    std::unique_ptr<QtQueue> m_queue;
    std::unique_ptr<CTvApp> m_app;
    std::unique_ptr<MainFrame> m_frame;
};

}  // namespace tavrin::test
