// SPDX-License-Identifier: Apache-2.0
// "Show This" in the whole program: the menu of an output, what is seen while it is shown, and what ends it.
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QOpenGLWidget>
#include <QTest>
#include <optional>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::BoxesShown;
using test::DeskPointer;
using test::PressKeys;
using test::PressWhenBoxComes;
using test::WaitUntil;
using testing::HasSubstr;
using testing::Not;

constexpr QRgb kMark = qRgb(255, 0, 255);

class ProbeUse : public test::FrameTest {
  protected:
    ProbeUse() {
        environment.Set("SOURCE_DATE_EPOCH", "1000000000");
        const std::string site = "tavrin/tiny/tavrn.def";
        directory.Write(site,
                        test::ReadFile(directory / site) + "desk.probecolor 1 0 1\nprobe probe/float.tvn\n");
        directory.Write("tavrin/tiny/probe/float.tvn", "opdesk { opbox { filename Paint wid 1 } }\n");
        directory.Write("tavrin/tiny/menu/0300.Patterns/0050.Word", "output text { string out }\n");
    }
    // Boxes in the middle of the desk, saved.
    void StartWithBoxes(int count = 1, const std::string& name = "Constant") {
        Start();
        AddBoxes(count, name);
        float at = -120;
        for (const auto& box : Document().m_boxes) {
            box->selected = 0;
            box->xypos[0] = at += 120;
        }
        Frame().Desk().LayoutAll();
        Do(CommandId::kFitToWindow);
        Document().SetModified(false);
        Settle();
        pointer.emplace(Frame());
        test::FocusOn(Frame().Desk());
    }
    COpBox& Box() { return *Document().m_boxes.front(); }
    COpButton& Output() { return *Box().outputs.at(0); }
    Probe& Probed() { return Frame().Work().probe; }
    void ShowThis() {
        pointer->ChooseAt(pointer->Of(Output()), {"Show This"});
        Settle();
    }
    // Whether the item of the menu on the output is checked.
    bool IsMenuChecked() {
        QMenu* menu = pointer->OpenMenu(pointer->Of(Output()));
        bool isChecked = false;
        for (const QAction* item : menu->actions())
            isChecked = isChecked || (item->text() == "Show This" && item->isChecked());
        menu->close();
        Settle();
        return isChecked;
    }
    int Marked() {
        const QImage picture = Frame().Desk().Desk().grabFramebuffer();
        int count = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) count += (picture.pixel(x, y) | 0xFF000000U) == kMark;
        }
        return count;
    }
    std::string Hint() { return Bytes(Frame().StatusBox().Hint()); }

    std::optional<DeskPointer> pointer;
};

TEST_F(ProbeUse, TheMenuOfAnOutputShowsItAndChosenAgainEndsIt) {
    StartWithBoxes();
    EXPECT_FALSE(IsMenuChecked());
    EXPECT_EQ(Marked(), 0);
    ShowThis();
    EXPECT_EQ(Probed().Output(), &Output());
    EXPECT_EQ(Hint(), "Showing Constant_1 result, Esc ends it");
    EXPECT_GT(Marked(), 40);
    EXPECT_TRUE(IsMenuChecked());
    ShowThis();
    EXPECT_EQ(Probed().Output(), nullptr);
    EXPECT_EQ(Hint(), "");
    EXPECT_EQ(Marked(), 0);
    EXPECT_FALSE(IsMenuChecked());
}

TEST_F(ProbeUse, AnInputIsNotOffered) {
    StartWithBoxes();
    QMenu* menu = pointer->OpenMenu(pointer->Of(*Box().inputs.at(0)));
    ASSERT_NE(menu, nullptr);
    EXPECT_FALSE(MenuTexts(menu).contains("Show This"));
    menu->close();
}

TEST_F(ProbeUse, TheDocumentIsNotChangedAndNothingIsThereToUndo) {
    StartWithBoxes(2);
    const std::string before = Document().Snapshot();
    ShowThis();
    EXPECT_FALSE(Document().IsModified());
    EXPECT_FALSE(Frame().isWindowModified());
    EXPECT_EQ(Document().Snapshot(), before);
    PressKeys("Esc");
    EXPECT_EQ(Document().Snapshot(), before);
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(ProbeUse, EscEndsItAndNothingElseAndOnlyThenResetsTheZoom) {
    StartWithBoxes();
    Do(CommandId::kZoomIn);
    Settle();
    const float zoom = Document().zoomFactor;
    ASSERT_NE(zoom, 1);
    ShowThis();
    PressKeys("Esc");
    Settle();
    EXPECT_EQ(Probed().Output(), nullptr);
    EXPECT_EQ(Document().zoomFactor, zoom);
    PressKeys("Esc");
    Settle();
    EXPECT_EQ(Document().zoomFactor, 1);
    ShowThis();
    PressKeys("Esc");
    EXPECT_EQ(Probed().Output(), nullptr) << "also where there is no zoom to reset";
}

TEST_F(ProbeUse, TheMenuItemOfZoomResetResetsTheZoomMeanwhile) {
    StartWithBoxes();
    Do(CommandId::kZoomIn);
    ShowThis();
    ASSERT_TRUE(IsEnabled(CommandId::kZoomReset));
    Action(CommandId::kZoomReset).trigger();
    Settle();
    EXPECT_EQ(Document().zoomFactor, 1);
    EXPECT_EQ(Probed().Output(), &Output());
    EXPECT_TRUE(Action(CommandId::kZoomReset).shortcuts().isEmpty()) << "the key does something else now";
    PressKeys("Esc");
    EXPECT_EQ(Action(CommandId::kZoomReset).shortcut(), QKeySequence(Qt::Key_Escape));
}

TEST_F(ProbeUse, ALockedDeskKeepsItAndEscEndsItThere) {
    StartWithBoxes();
    ShowThis();
    Do(CommandId::kLockDesk);
    Settle();
    EXPECT_EQ(Probed().Output(), &Output());
    EXPECT_GT(Marked(), 20);
    Frame().setFocus();
    PressKeys("Esc");
    Settle();
    EXPECT_EQ(Probed().Output(), nullptr);
    EXPECT_EQ(Marked(), 0);
}

TEST_F(ProbeUse, DeletingItsBoxEndsItAndUndoDoesNotBringItBack) {
    StartWithBoxes(2);
    ShowThis();
    pointer->ChooseAt(pointer->TitleOf(Box()), {"Delete", "This Box"});
    Settle();
    EXPECT_EQ(Probed().Output(), nullptr);
    EXPECT_EQ(Hint(), "");
    EXPECT_EQ(Marked(), 0);
    PressKeys("Ctrl+Z");
    Settle();
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_EQ(Probed().Output(), nullptr);
    EXPECT_EQ(Marked(), 0);
    EXPECT_EQ(Action(CommandId::kZoomReset).shortcut(), QKeySequence(Qt::Key_Escape));
}

TEST_F(ProbeUse, AnotherBoxThatGoesLeavesIt) {
    StartWithBoxes(2);
    ShowThis();
    COpBox& other = *Document().m_boxes.back();
    pointer->ChooseAt(pointer->TitleOf(other), {"Delete", "This Box"});
    Settle();
    EXPECT_EQ(Probed().Output(), &Output());
    EXPECT_GT(Marked(), 20);
}

TEST_F(ProbeUse, AnotherDocumentEndsIt) {
    StartWithBoxes();
    ShowThis();
    ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("other", 2)));
    Settle();
    EXPECT_EQ(Probed().Output(), nullptr);
    EXPECT_EQ(Hint(), "");
    EXPECT_EQ(Marked(), 0);
}

TEST_F(ProbeUse, AnotherOutputTakesItsPlace) {
    StartWithBoxes(2);
    ShowThis();
    COpButton& other = *Document().m_boxes.back()->outputs.at(0);
    pointer->ChooseAt(pointer->Of(other), {"Show This"});
    Settle();
    EXPECT_EQ(Probed().Output(), &other);
    EXPECT_THAT(Hint(), HasSubstr("Showing Constant_" + std::to_string(other.owner->wid) + " result"));
}

TEST_F(ProbeUse, WhatCannotBeShownIsAlertedAndWhatWasShownStays) {
    StartWithBoxes();
    ShowThis();
    AddBoxes(1, "Word");
    Frame().Desk().LayoutAll();
    COpBox& word = Box();
    ASSERT_EQ(word.filename, "Word");
    word.selected = 0;
    word.xypos[1] = -150;
    Frame().Desk().LayoutAll();
    Do(CommandId::kFitToWindow);
    Settle();
    PressWhenBoxComes("OK");
    pointer->ChooseAt(pointer->Of(*word.outputs.at(0)), {"Show This"});
    EXPECT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_EQ(Bytes(BoxesShown().join('|')),
              "Alert: Word_2 text cannot be shown: its operator gives it no type that could be seen; choose "
              "another "
              "output");
    EXPECT_EQ(Probed().Name(), "Constant_1 result");
}

TEST_F(ProbeUse, AHintOfWhatIsInHandComesFirst) {
    StartWithBoxes();
    ShowThis();
    pointer->Click(pointer->Of(Output()));
    Settle();
    EXPECT_EQ(Hint(), "Click a button to wire it, the desk to let go");
    pointer->Click(pointer->TitleOf(Box()) - QPoint(0, 80));
    Settle();
    EXPECT_THAT(Hint(), HasSubstr("Showing Constant_1 result"));
}

TEST_F(ProbeUse, ARenderIsStillThatOfTheNetwork) {
    StartWithBoxes();
    ShowThis();
    Do(CommandId::kRenderIt);
    EXPECT_TRUE(WaitUntil([this] { return Log().find("renderit done") != std::string::npos; }));
    const std::string code = test::ReadFile(WorkDir() + "/codegenfile");
    EXPECT_THAT(code, HasSubstr("Constant_1_result = 0.25;"));
    EXPECT_THAT(code, Not(HasSubstr("Ci = ")));
    const std::string probed = Frame().Work().session.MakeWorkFiles(Rendered::kProbe).code;
    EXPECT_THAT(probed, HasSubstr("Ci = color(Constant_1_result);"));
}

TEST_F(ProbeUse, TheFrameMayCloseWhileItIsShown) {
    StartWithBoxes();
    ShowThis();
    End();
}

}  // namespace
}  // namespace tavrin
