// SPDX-License-Identifier: Apache-2.0
// An operator that is edited while its boxes stand: the offer to bring them up to date, and what follows it.
#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <filesystem>

#include "document/EditHistory.h"
#include "sliders/SliderDesk.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/library/BoxFinder.h"
#include "ui/library/TestLibrary.h"
#include "ui/sliders/ArgumentEditor.h"
#include "ui/sliders/ColorPicker.h"
#include "ui/sliders/SliderFrame.h"
#include "ui/sliders/SliderPane.h"
#include "ui/sliders/ValueSlider.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::BoxesShown;
using test::PressWhenBoxComes;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kSecond =
    "icontext second\ninput value { float { 0.25 0 1 0 \"%g\" } }\ninput more { float { 1 0 1 0 \"%g\" } }\n"
    "output result { float out }\n";
constexpr const char* kThird =
    "icontext third\ninput value { float { 0.25 0 1 0 \"%g\" } }\noutput result { float out }\n";
constexpr const char* kTint = "input tint { rgb { 1 0 0 \"%g %g %g\" } }\noutput result { rgb out }\n";

class OperatorUpdate : public test::FrameTest {
  protected:
    void StartWithBoxes(int boxes) {
        Start();
        AddBoxes(boxes);
        Document().SetModified(false);
    }
    void Edit(const std::string& text, const std::string& name = "0100.Constant") {
        directory.Write("tavrin/tiny/menu/" + name, text);
    }
    // Leaves the program and comes back to it, as to an editor and from there.
    void ComeBack() {
        Frame().showMinimized();
        ASSERT_TRUE(WaitUntil([] { return QApplication::applicationState() != Qt::ApplicationActive; }));
        Frame().showNormal();
        test::ShowActive(Frame());
        Settle();
    }
    void ComeBackAnd(const QString& answer) {
        const auto before = BoxesShown().size();
        PressWhenBoxComes(answer);
        ComeBack();
        ASSERT_TRUE(WaitUntil([&] { return BoxesShown().size() > before; }))
            << "state " << QApplication::applicationState() << ", buttons " << QApplication::mouseButtons()
            << ", popup " << (QApplication::activePopupWidget() != nullptr) << ", modal "
            << (QApplication::activeModalWidget() != nullptr) << ", visible " << Frame().isVisible();
        Settle();
    }
    std::vector<std::string> Texts() {
        std::vector<std::string> texts;
        for (const auto& box : Document().m_boxes) texts.push_back(box->icontext);
        return texts;
    }
    static CColorPicker* Picker() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* picker = dynamic_cast<CColorPicker*>(window)) return picker;
        }
        return nullptr;
    }
    COpBox& Box() { return *Document().m_boxes.front(); }
    std::string Status() { return Bytes(Frame().StatusBox().Status()); }
};

TEST_F(OperatorUpdate, WhoComesBackIsOfferedToBringBoxesUpToDateAndCanUndoIt) {
    StartWithBoxes(2);
    Edit(kSecond);
    ComeBackAnd("Update");
    EXPECT_THAT(BoxesShown(),
                ElementsAre(testing::ResultOf(
                    Bytes, testing::AllOf(testing::StartsWith("Operators Changed: "),
                                          HasSubstr("The definition of an operator has changed:"),
                                          HasSubstr("Constant (2 boxes)")))));
    EXPECT_THAT(Texts(), ElementsAre("second", "second"));
    EXPECT_THAT(Status(), HasSubstr("Updated: 2 boxes"));
    Frame().Commands().Update();
    EXPECT_EQ(Action(CommandId::kUndo).text().remove('&'), "Undo Update Boxes");
    Do(CommandId::kUndo);
    EXPECT_THAT(Texts(), ElementsAre("", ""));
    ComeBack();  // asked once
    EXPECT_THAT(BoxesShown(), testing::SizeIs(1));
}

TEST_F(OperatorUpdate, ANoIsRememberedUntilTheFileChangesAgain) {
    StartWithBoxes(1);
    Edit(kSecond);
    ComeBackAnd("Keep");
    EXPECT_THAT(Texts(), ElementsAre(""));
    EXPECT_FALSE(Document().IsModified());
    ComeBack();  // a box that comes up now fails the test
    EXPECT_THAT(BoxesShown(), testing::SizeIs(1));
    Edit(kThird);
    ComeBackAnd("Update");
    EXPECT_THAT(Texts(), ElementsAre("third"));
}

TEST_F(OperatorUpdate, NothingIsAskedWhereNothingHasChanged) {
    StartWithBoxes(1);
    ComeBack();
    Do(CommandId::kReloadOperators);
    Settle();
    EXPECT_THAT(BoxesShown(), testing::IsEmpty());
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(OperatorUpdate, ReloadingTheOperatorsAsksAlsoForWhatWasDeclined) {
    StartWithBoxes(1);
    Edit(kSecond);
    for (const char* answer : {"Keep", "Keep", "Update"}) {
        const auto before = BoxesShown().size();
        PressWhenBoxComes(answer);
        test::ChooseInMenu(Frame(), "Options", Action(CommandId::kReloadOperators));
        ASSERT_TRUE(WaitUntil([&] { return BoxesShown().size() > before; }));
        Settle();
    }
    EXPECT_THAT(Texts(), ElementsAre("second"));
}

TEST_F(OperatorUpdate, ABoxThatHangsOnTheMouseIsDroppedBeforeAnythingIsAsked) {
    StartWithBoxes(1);
    Edit(kSecond);
    Desk().AddOperator("Paint");
    ComeBack();
    EXPECT_THAT(Desk().m_pendingBoxes, testing::SizeIs(1));
    EXPECT_THAT(BoxesShown(), testing::IsEmpty());
    PressWhenBoxComes("Update");
    test::DeskPointer pointer(Frame());
    pointer.MoveTo({300, 300});
    pointer.Click({300, 300});
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    Settle();
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_EQ(Document().m_boxes.back()->icontext, "second");
}

TEST_F(OperatorUpdate, AnOpenMenuIsLeftAloneAndItsTargetToo) {
    StartWithBoxes(1);
    Frame().Desk().CentreOnBox("Constant_1");
    Settle();
    test::DeskPointer pointer(Frame());
    QMenu* menu = pointer.OpenMenu(pointer.TitleOf(Box()));
    ASSERT_NE(menu, nullptr);
    const COpBox* box = &Box();
    Edit(kSecond);
    Do(CommandId::kReloadOperators);
    Settle();
    EXPECT_EQ(&Box(), box);
    EXPECT_TRUE(menu->isVisible());
    PressWhenBoxComes("Update");
    pointer.Choose(menu, {"Copy"});
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    Settle();
    EXPECT_THAT(Texts(), ElementsAre("second", "second"));  // the copy as well
}

TEST_F(OperatorUpdate, AMenuOverABoxThatWasReplacedDoesNothing) {
    StartWithBoxes(1);
    Frame().Desk().CentreOnBox("Constant_1");
    Settle();
    test::DeskPointer pointer(Frame());
    QMenu* menu = pointer.OpenMenu(pointer.TitleOf(Box()));
    ASSERT_NE(menu, nullptr);
    Desk().ReplaceBoxes([this] {
        BoxReplacements fresh;
        fresh[&Box()] = std::make_unique<COpBox>(Box());
        fresh[&Box()]->wid = 1;
        return fresh;
    }());
    pointer.Choose(menu, {"Delete", "This Box"});
    EXPECT_EQ(Document().m_boxes.size(), 1U);
}

TEST_F(OperatorUpdate, ALockedDeskIsNotTouchedUntilItIsUnlocked) {
    StartWithBoxes(1);
    Do(CommandId::kLockDesk);
    Edit(kSecond);
    ComeBack();
    EXPECT_THAT(Texts(), ElementsAre(""));
    PressWhenBoxComes("Update");
    Do(CommandId::kLockDesk);
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    Settle();
    EXPECT_THAT(Texts(), ElementsAre("second"));
}

TEST_F(OperatorUpdate, AScriptRunsToItsEndFirst) {
    StartWithBoxes(1);
    HoldScripts();
    bool waited = false;
    QTimer::singleShot(0, &Frame(), [&] {
        EXPECT_TRUE(WaitUntil([&] { return Log().find("renderit ") != std::string::npos; }));
        Edit(kSecond);
        Do(CommandId::kReloadOperators);
        Settle();
        waited = Texts() == std::vector<std::string>{""} && BoxesShown().isEmpty();
        PressWhenBoxComes("Update");
        ReleaseScripts();
    });
    EXPECT_TRUE(Frame().ActionDispatch().RunScriptFile(directory.Write("s.tvx", "form render render\n")));
    EXPECT_TRUE(waited);
    Frame().Commands().Run(
        CommandId::kZoomReset);  // as the command that a script is started by does at its end
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    Settle();
    EXPECT_THAT(Texts(), ElementsAre("second"));
}

TEST_F(OperatorUpdate, ARenderGoesOnBesideIt) {
    StartWithBoxes(1);
    HoldScripts();
    Do(CommandId::kRenderIt);
    ASSERT_TRUE(WaitUntil([&] { return Log().find("renderit ") != std::string::npos; }));
    Edit(kSecond);
    ComeBackAnd("Update");
    EXPECT_THAT(Texts(), ElementsAre("second"));
    EXPECT_TRUE(ChildRuns());
    ReleaseScripts();
    EXPECT_TRUE(WaitUntil([&] { return Log().find("renderit done") != std::string::npos; }));
}

TEST_F(OperatorUpdate, ADragIsFinishedFirst) {
    StartWithBoxes(1);
    Frame().Desk().CentreOnBox("Constant_1");
    Settle();
    test::DeskPointer pointer(Frame());
    const QPoint at = pointer.TitleOf(Box());
    pointer.Press(at);
    pointer.MoveTo(at + QPoint(20, 0), Qt::LeftButton);
    const float moved = Box().xypos[0];
    Edit(kSecond);
    Do(CommandId::kReloadOperators);
    Settle();
    EXPECT_THAT(Texts(), ElementsAre(""));
    PressWhenBoxComes("Update");
    pointer.Release(at + QPoint(20, 0));
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    Settle();
    EXPECT_THAT(Texts(), ElementsAre("second"));
    EXPECT_EQ(Box().xypos[0], moved);
    EXPECT_EQ(Document().History()->Name(Document().History()->Count() - 2), "Move");
}

TEST_F(OperatorUpdate, ADefinitionThatCannotBeReadIsToldAndChangesNothing) {
    StartWithBoxes(1);
    Edit("icontext second\nbad\n");
    ComeBack();
    EXPECT_TRUE(WaitUntil([this] { return Status().find("WARNING") == 0; })) << Status();
    EXPECT_THAT(Log(),
                HasSubstr("WARNING: operator Constant cannot be read, so its boxes stay as they are: "));
    EXPECT_THAT(Log(), HasSubstr("near line 2: unexpected input (operator Constant: line 2 of " +
                                 (directory / "tavrin") + "/tiny/menu/0100.Constant)"));
    EXPECT_THAT(Texts(), ElementsAre(""));
    EXPECT_THAT(BoxesShown(), testing::IsEmpty());
    PressWhenBoxComes("OK");
    Do(CommandId::kReloadOperators);
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    EXPECT_THAT(Bytes(BoxesShown().front()), HasSubstr("operator Constant cannot be read"));
    fs::remove(directory / "tavrin/tiny/menu/0100.Constant");
    ComeBack();
    EXPECT_TRUE(WaitUntil([this] { return Log().find("0100.Constant is not there") != std::string::npos; }));
    Do(CommandId::kReloadOperators);
    EXPECT_TRUE(WaitUntil([this] {
        return Log().find("WARNING: the library has no operator Constant any more") != std::string::npos;
    }));
    EXPECT_THAT(Texts(), ElementsAre(""));
}

TEST_F(OperatorUpdate, WhatChangesWhileTheOfferStandsIsWhatIsRead) {
    StartWithBoxes(1);
    Edit(kSecond);
    test::WhenDialogComes([this](QDialog& dialog) {
        Edit(kThird);
        auto& box = dynamic_cast<QMessageBox&>(dialog);
        QTest::mouseClick(box.button(QMessageBox::Yes), Qt::LeftButton);
    });
    ComeBack();
    ASSERT_TRUE(WaitUntil([this] { return Texts() == std::vector<std::string>{"third"}; }));
    // And one that cannot be read by then leaves the box.
    Edit(kSecond);
    test::WhenDialogComes([this](QDialog& dialog) {
        Edit("bad\n");
        PressWhenBoxComes("OK");
        auto& box = dynamic_cast<QMessageBox&>(dialog);
        QTest::mouseClick(box.button(QMessageBox::Yes), Qt::LeftButton);
    });
    ComeBack();
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    EXPECT_THAT(Bytes(BoxesShown().front()),
                HasSubstr("near line 1: unexpected input (operator Constant: line 1 of "));
    EXPECT_THAT(Texts(), ElementsAre("third"));
}

TEST_F(OperatorUpdate, TheWindowsThatShowABoxShowTheFreshOne) {
    Edit(kTint, "0500.Tint");
    Start();
    AddBoxes(1, "Tint");
    Do(CommandId::kArgumentEditor);
    Do(CommandId::kBoxFinder);
    Settle();
    const COpButton* former = Box().inputs.front().get();
    ASSERT_NE(Frame().Sliders().BringIntoView(*former), nullptr);
    Edit(std::string(kTint) + "icontext second\ninput more { float { 1 0 1 0 \"%g\" } }\n", "0500.Tint");
    PressWhenBoxComes("Update");
    Do(CommandId::kReloadOperators);
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    Settle();
    ASSERT_EQ(Box().inputs.size(), 2U);
    EXPECT_EQ(Box().selected, 1);
    for (const auto& input : Box().inputs) EXPECT_NE(Frame().Sliders().BringIntoView(*input), nullptr);
    EXPECT_THAT(Frame().Windows().Get<CArgumentEditor>().RowWindows(), testing::SizeIs(2));
    EXPECT_THAT(Frame().SliderDesk().Frames(), testing::SizeIs(2));
    EXPECT_EQ(test::RowsOf(Frame().Windows().Get<BoxFinder>()).join(' '), "Tint_1");
    Do(CommandId::kUndo);
    Settle();
    EXPECT_EQ(Box().inputs.front().get(), former);
    EXPECT_NE(Frame().Sliders().BringIntoView(*former), nullptr);
}

TEST_F(OperatorUpdate, AnOpenColorPickerGoesWithTheFormerBoxAndTheFreshOneHasItsColor) {
    Edit(kTint, "0500.Tint");
    Start();
    AddBoxes(1, "Tint");
    CSliderFrame* frame = Frame().Sliders().BringIntoView(*Box().inputs.front());
    ASSERT_NE(frame, nullptr);
    for (auto* button : frame->findChildren<QPushButton*>()) {
        if (button->text() == "HSV") QTest::mouseClick(button, Qt::LeftButton);
    }
    ASSERT_TRUE(WaitUntil([] { return Picker() != nullptr && Picker()->IsOpen(); }));
    Picker()->SetColor(0, 0.5F, 0.25F, true);
    Edit(std::string(kTint) + "icontext second\n", "0500.Tint");
    PressWhenBoxComes("Update");
    Do(CommandId::kReloadOperators);
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    ASSERT_TRUE(WaitUntil([this] { return Texts() == std::vector<std::string>{"second"}; }));
    EXPECT_TRUE(WaitUntil([] { return Picker() == nullptr; }));
    EXPECT_EQ(Box().inputs.front()->ValueText(), "0 0.5 0.25");
}

TEST_F(OperatorUpdate, AValueThatIsBeingDraggedIsLetGoFirst) {
    StartWithBoxes(1);
    Desk().SelectAllBoxes();
    Settle();
    CSliderFrame* frame = Frame().Sliders().BringIntoView(*Box().inputs.front());
    ASSERT_NE(frame, nullptr);
    ValueSlider* slider = nullptr;
    for (QWidget* widget : frame->findChildren<QWidget*>()) {
        if (slider == nullptr) slider = dynamic_cast<ValueSlider*>(widget);
    }
    ASSERT_NE(slider, nullptr);
    const QPoint at = slider->mapTo(&Frame(), slider->rect().center());
    QTest::mousePress(Frame().windowHandle(), Qt::LeftButton, {}, at);
    Edit(kSecond);
    Do(CommandId::kReloadOperators);
    Settle();
    EXPECT_THAT(Texts(), ElementsAre(""));
    PressWhenBoxComes("Update");
    QTest::mouseRelease(Frame().windowHandle(), Qt::LeftButton, {}, at);
    ASSERT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    ASSERT_TRUE(WaitUntil([this] { return Texts() == std::vector<std::string>{"second"}; }));
}

TEST_F(OperatorUpdate, ADraggedBoxStaysUnderThePointerWhereAnchorsArePlain) {
    const std::string site = directory / "tavrin/tiny/tavrn.def";
    directory.Write("tavrin/tiny/tavrn.def", test::ReadFile(site) + "desk.plainanchors 1\n");
    StartWithBoxes(1);
    for (int step = 0; step < 4; ++step) Do(CommandId::kZoomOut);
    Frame().Desk().CentreOnBox("Constant_1");
    Settle();
    test::DeskPointer pointer(Frame());
    const QPoint from = pointer.TitleOf(Box());
    pointer.Press(from);
    for (int step = 1; step <= 4; ++step) pointer.MoveTo(from + QPoint(20, 15) * step, Qt::LeftButton);
    pointer.Release(from + QPoint(80, 60));
    Frame().Desk().LayoutAll();
    const QPoint to = pointer.TitleOf(Box());
    EXPECT_NEAR(to.x(), from.x() + 80, 1);
    EXPECT_NEAR(to.y(), from.y() + 60, 1);
}

}  // namespace
}  // namespace tavrin
