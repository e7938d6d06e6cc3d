// SPDX-License-Identifier: Apache-2.0
// Who listens to the window's document hears of each act of its user once, and of those of scripts in the
// same way.
#include <QApplication>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>

#include "support/TestHost.h"
#include "ui/desk/DeskPane.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using testing::ElementsAre;

class ChangesTest : public test::FrameTest {
  protected:
    void Listen() {
        Start();
        listener = Document().edits.Observe([this](const Change& change) {
            if (!change.selection) heard.push_back(test::TextOf(change));
        });
    }

    std::vector<std::string> heard;
    Edits::Subscription listener;
};

TEST_F(ChangesTest, AnOperatorComesAndIsDroppedByAClick) {
    Listen();
    Desk().AddOperator("Constant");
    QTest::mouseClick(&Frame().Desk().Desk(), Qt::LeftButton, {}, {200, 200});
    EXPECT_THAT(heard, ElementsAre("Add Operator: came Constant_1", "Add Constant: dropped Constant_1"));
}

TEST_F(ChangesTest, ADragIsOneActAndItsSelectionNone) {
    Listen();
    Desk().AddOperator("Constant");
    DeskWidget& desk = Frame().Desk().Desk();
    QTest::mouseClick(&desk, Qt::LeftButton, {}, {200, 200});
    heard.clear();
    const BoxLayout& box = Document().m_boxes.front()->layout;
    const WindowPoint title = Frame().Desk().View().ToWindow(
        {box.left + box.width * 0.5F, box.bottom + box.bodyHeight + box.titleHeight * 0.5F});
    const QPoint at(static_cast<int>(title.x), static_cast<int>(title.y));
    QTest::mousePress(&desk, Qt::LeftButton, {}, at);
    for (int step = 1; step <= 3; ++step) {
        QMouseEvent move(QEvent::MouseMove, at + QPoint(10 * step, 0),
                         desk.mapToGlobal(at + QPoint(10 * step, 0)), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(&desk, &move);
    }
    EXPECT_THAT(heard, testing::IsEmpty());
    QTest::mouseRelease(&desk, Qt::LeftButton, {}, at + QPoint(30, 0));
    EXPECT_THAT(heard, ElementsAre("Move: touched Constant_1"));
}

TEST_F(ChangesTest, TheToolbarFollowsWhoeverChangesItsOperators) {
    Listen();
    const auto buttons = [this] {
        QStringList texts;
        for (const auto* button : Frame().OperatorBar().findChildren<QPushButton*>("operator"))
            texts << button->text();
        return texts;
    };
    ASSERT_NE(buttons(), QStringList{"Constant"});
    {
        const EditScope edit(Document(), "Test");
        Document().edits.SettingsChanged();
        Document().toolbar = {"Constant"};
    }
    EXPECT_EQ(buttons(), QStringList{"Constant"});
}

TEST_F(ChangesTest, ASwitchOfTheMenuAndAScriptsOptionAreToldLikeAnyEdit) {
    Listen();
    Do(CommandId::kShowVarnames);
    EXPECT_THAT(heard, ElementsAre("Show Varnames: settings"));
    heard.clear();
    App().SetVariable("TAVRN_SHADER_TYPE", "another", true);
    EXPECT_THAT(heard, ElementsAre("Render Option: options"));
}

}  // namespace
}  // namespace tavrin
