// SPDX-License-Identifier: Apache-2.0
// The window "Check" in the whole frame: what it lists, where its rows lead, and what it mends.
#include "ui/render/CheckWindow.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kFeedsNothing = "feeds nothing; its code is generated all the same";

class CheckWindowTest : public test::FrameTest {
  protected:
    CheckWindowTest() {
        directory.Write("tavrin/tiny/menu/0600.Link",
                        "input in { float { 0.5 0 1 0 %g } }\noutput out { float out }\n"
                        "codegen.main-body append\nout = in;\n<<EOT>>\n");
    }
    void StartWithLinks(int boxes) {
        Start();
        AddBoxes(boxes, "Link");
        Settle();
    }
    void Open() {
        test::ChooseInMenu(Frame(), "Render", Action(CommandId::kCheck));
        ASSERT_TRUE(WaitUntil(
            [this] { return Window().windowHandle() != nullptr && Window().windowHandle()->isExposed(); }));
        Settle();
    }
    CheckWindow& Window() { return Frame().Windows().Get<CheckWindow>(); }
    QTreeWidget& List() { return *Window().findChild<QTreeWidget*>(); }
    // "WHERE: WHAT" of each row.
    std::vector<std::string> Rows() {
        std::vector<std::string> rows;
        for (int i = 0; i < List().topLevelItemCount(); ++i) {
            const QTreeWidgetItem& item = *List().topLevelItem(i);
            rows.push_back(Bytes(item.text(0)) + ": " + Bytes(item.text(1)));
        }
        return rows;
    }
    std::string Sum() { return Bytes(Window().findChild<QLabel*>()->text()); }
    bool WaitForRows(size_t count) {
        return WaitUntil([&] { return static_cast<size_t>(List().topLevelItemCount()) == count; });
    }
    QPushButton& Button(int which) { return *Window().findChildren<QPushButton*>().at(which); }
    QPushButton& GoTo() { return Button(0); }
    QPushButton& Mend() { return Button(1); }
    void ClickRow(int row) {
        const QRect at = List().visualItemRect(List().topLevelItem(row));
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, at.center());
        Settle();
    }
    void Press(QPushButton& button) {
        ASSERT_TRUE(button.isEnabled());
        QTest::mouseClick(&button, Qt::LeftButton);
        Settle();
    }
    COpBox& BoxOf(int wid) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == wid) return *box;
        }
        throw std::out_of_range("no box of that number");
    }
    void Wire(int from, int to) {
        const EditScope edit(Document(), "Wire");
        Document().edits.WiresChanged();
        BoxOf(from).outputs[0]->Connect(*BoxOf(to).inputs[0]);
    }
    std::vector<int> Selected() {
        std::vector<int> selected;
        for (const auto& box : Document().m_boxes) {
            if (box->selected != 0) selected.push_back(box->wid);
        }
        return selected;
    }
};

TEST_F(CheckWindowTest, AnEmptyDeskHasNothingToCheck) {
    Start();
    Open();
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_EQ(Sum(), "The desk is empty: there is nothing to check.");
    EXPECT_FALSE(GoTo().isEnabled());
    EXPECT_FALSE(Mend().isEnabled());
}

TEST_F(CheckWindowTest, TheListFollowsTheNetwork) {
    StartWithLinks(2);
    Open();
    EXPECT_THAT(Rows(), ElementsAre(std::string("Link_1: ") + kFeedsNothing,
                                    std::string("Link_2: ") + kFeedsNothing));
    EXPECT_EQ(Sum(), "0 errors, 2 warnings");
    Wire(1, 2);
    EXPECT_TRUE(WaitForRows(1));
    EXPECT_THAT(Rows(), ElementsAre(std::string("Link_2: ") + kFeedsNothing));
    EXPECT_EQ(Sum(), "0 errors, 1 warning");
    Do(CommandId::kUndo);
    EXPECT_TRUE(WaitForRows(2));
}

TEST_F(CheckWindowTest, ANetworkWithoutFindingsIsFine) {
    directory.Write("tavrin/tiny/menu/0700.Sink", "input in { float { 0.5 0 1 0 %g } }\n");
    StartWithLinks(1);
    AddBoxes(1, "Sink");
    Wire(1, 2);
    Open();
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_EQ(Sum(), "Nothing to tell: the network is fine.");
    EXPECT_FALSE(GoTo().isEnabled());
}

TEST_F(CheckWindowTest, WhileItIsHiddenNothingIsFoundOutAndShownItKnowsAll) {
    StartWithLinks(1);
    Open();
    ASSERT_THAT(Window().Findings(), SizeIs(1));
    Window().close();
    AddBoxes(1, "Link");
    Settle();
    EXPECT_THAT(Window().Findings(), SizeIs(1));
    Open();
    EXPECT_THAT(Rows(), SizeIs(2));
}

TEST_F(CheckWindowTest, ADoubleClickAndTheEnterKeyLeadToTheBox) {
    StartWithLinks(3);
    Desk().MoveBox(BoxOf(2), 9000, 5000);
    Desk().SelectBox("Link_1");
    Open();
    ClickRow(1);
    QTest::mouseDClick(List().viewport(), Qt::LeftButton, {},
                       List().visualItemRect(List().topLevelItem(1)).center());
    Settle();
    EXPECT_THAT(Selected(), ElementsAre(2));
    EXPECT_TRUE(Frame().Desk().View().Visible().Contains(BoxRect(BoxOf(2)).Middle()));
    EXPECT_EQ(Frame().Desk().LitBox(), "Link_2");
    ClickRow(2);
    test::FocusOn(List());
    test::PressKeys("Return");
    Settle();
    EXPECT_THAT(Selected(), ElementsAre(3));
    ClickRow(0);
    Press(GoTo());
    EXPECT_THAT(Selected(), ElementsAre(1));
}

TEST_F(CheckWindowTest, AMendIsOneStepToUndo) {
    StartWithLinks(2);
    Open();
    EXPECT_FALSE(Mend().isEnabled()) << "nothing is chosen";
    ClickRow(0);
    EXPECT_EQ(Mend().text(), "Delete Link_1");
    Press(Mend());
    EXPECT_THAT(Document().m_boxes, SizeIs(1));
    EXPECT_TRUE(WaitForRows(1));
    Do(CommandId::kUndo);
    EXPECT_THAT(Document().m_boxes, SizeIs(2));
    EXPECT_TRUE(WaitForRows(2));
    Do(CommandId::kRedo);
    EXPECT_TRUE(WaitForRows(1));
}

TEST_F(CheckWindowTest, TheChosenRowStaysChosenWhileItIsThereAndNoOtherTakesItsPlace) {
    StartWithLinks(4);
    Open();
    ClickRow(2);
    Wire(1, 4);
    EXPECT_TRUE(WaitForRows(3));
    EXPECT_EQ(Mend().text(), "Delete Link_3");
    Wire(3, 2);
    EXPECT_TRUE(WaitForRows(2));
    EXPECT_THAT(Rows(), ElementsAre(std::string("Link_2: ") + kFeedsNothing,
                                    std::string("Link_4: ") + kFeedsNothing));
    EXPECT_FALSE(Mend().isEnabled()) << "or the next press would delete another box";
    EXPECT_FALSE(GoTo().isEnabled());
}

TEST_F(CheckWindowTest, ASilencedArgumentIsMadeNone) {
    StartWithLinks(2);
    Wire(1, 2);
    {
        const EditScope edit(Document(), "Argument");
        Document().edits.ButtonTouched(*BoxOf(2).inputs[0]);
        BoxOf(2).inputs[0]->arg = 1;
    }
    Open();
    ASSERT_THAT(Rows(), SizeIs(2));
    ASSERT_THAT(Rows()[1], HasSubstr("Link_2 in: is an argument, which counts for nothing"));
    ClickRow(1);
    Press(Mend());
    EXPECT_EQ(BoxOf(2).inputs[0]->arg, 0);
    EXPECT_TRUE(WaitForRows(1));
    Do(CommandId::kUndo);
    EXPECT_EQ(BoxOf(2).inputs[0]->arg, 1);
    EXPECT_TRUE(WaitForRows(2));
}

TEST_F(CheckWindowTest, WhatStoodMeanwhileIsNotMendedAndSaysSo) {
    StartWithLinks(2);
    Open();
    ClickRow(0);
    test::PressWhenBoxComes("OK");
    Wire(1, 2);
    QTest::mouseClick(&Mend(), Qt::LeftButton);  // before the list has followed
    EXPECT_THAT(Document().m_boxes, SizeIs(2));
    EXPECT_TRUE(WaitUntil([] { return !test::BoxesShown().isEmpty(); }));
    EXPECT_THAT(Bytes(test::BoxesShown().join("\n")), HasSubstr("Nothing was changed"));
    EXPECT_TRUE(WaitForRows(1));
}

TEST_F(CheckWindowTest, ALockedDeskIsLookedAtAndNotMended) {
    StartWithLinks(1);
    Open();
    ClickRow(0);
    EXPECT_TRUE(Mend().isEnabled());
    Do(CommandId::kLockDesk);
    Settle();
    EXPECT_FALSE(Mend().isEnabled());
    EXPECT_TRUE(GoTo().isEnabled());
    Do(CommandId::kLockDesk);
    Settle();
    EXPECT_TRUE(Mend().isEnabled());
}

TEST_F(CheckWindowTest, WhatALookTellsDoesNotComeIntoTheLog) {
    Start();
    directory.Write("tavrin/tiny/menu/0700.Tied",
                    "vinput v { float { 0 0 1 0 %g } vinstances 1 }\noutput tieback=v1 o { float out }\n");
    Do(CommandId::kReloadOperators);
    Settle();
    AddBoxes(1, "Tied");
    AddBoxes(1, "Link");
    Settle();
    Desk().Connect(*BoxOf(1).outputs[0], *BoxOf(2).inputs[0]);
    Desk().m_mouseBox = &BoxOf(1);
    Desk().m_mouseButton = BoxOf(1).inputs[0].get();
    Desk().DeleteButton();
    const std::string before = Log();
    Open();
    EXPECT_THAT(Rows(), Contains(HasSubstr("which is not there any more")));
    EXPECT_EQ(Log(), before);
}

TEST_F(CheckWindowTest, OfAFullNetworkTheFirstFindingsAreListed) {
    std::string inputs;
    for (int i = 0; i < 700; ++i) inputs += "input i" + std::to_string(i) + " { float { 0.5 0 1 0 %g } }\n";
    directory.Write("tavrin/tiny/menu/0700.Wide", inputs);
    Start();
    AddBoxes(3, "Wide");
    {
        const EditScope edit(Document(), "Arguments");
        for (const auto& box : Document().m_boxes) {
            Document().edits.BoxTouched(*box);
            for (const auto& input : box->inputs) {
                input->arg = 1;
                input->argname = "same";
            }
        }
    }
    Open();
    // Three boxes that nothing is wired to, and all arguments but the first have the name of that.
    EXPECT_THAT(Window().Findings(), SizeIs(3 + 2099));
    EXPECT_EQ(static_cast<size_t>(List().topLevelItemCount()), CheckWindow::kMostRows);
    EXPECT_THAT(Sum(), HasSubstr("2102 warnings; the first 2000 are listed"));
}

}  // namespace
}  // namespace tavrin
