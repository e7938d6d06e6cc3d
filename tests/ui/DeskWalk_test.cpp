// SPDX-License-Identifier: Apache-2.0
// A user who does anything anywhere on the desk of a real frame, with events of real windows.
#include "support/DeskWalk.h"

#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>
#include <array>
#include <optional>

#include "render/RenderSession.h"
#include "support/DeskInvariants.h"
#include "support/HistoryPrints.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/log/LogWindow.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::WalkEdit;
using test::WalkFlow;
using test::WalkMenu;
using testing::HasSubstr;
using testing::Not;
using Id = CommandId;

constexpr int kEdits = 200;  // by the pointer, of one walk

// Every second seed is a walk in a library that helps the hand.
constexpr bool IsHelped(uint32_t seed) { return seed % 2 == 0; }

class FrameWalk : public test::FrameTest,
                  public testing::WithParamInterface<uint32_t>,
                  public test::DeskHands {
  protected:
    FrameWalk() {
        environment.Set("SOURCE_DATE_EPOCH", "1000000000");
        if (IsHelped(GetParam())) {
            const std::string site = "tavrin/tiny/tavrn.def";
            directory.Write(site, test::ReadFile(directory / site) +
                                      "desk.pullwires 1\ndesk.dropwires 1\ndesk.escapewires 1\n"
                                      "desk.insertboxes 1\ndesk.keepflow 1\ndesk.minimap 1\n");
        }
        const auto add = [this](const std::string& name, const std::string& text) {
            directory.Write(
                "tavrin/tiny/menu/0300.Patterns/00" + std::to_string(50 + operators.size()) + "." + name,
                text);
            operators.push_back(name);
        };
        operators = {"Constant", "Paint"};
        add("Layers",
            "input base { float { 0 0 1 0 \"%g\" } }\nvinput layer { vinstances 2 vargseparator \", \"\n"
            "float { 0 0 1 0 \"%g\" } string { \"a\" } }\noutput top { float out } output cover { float out "
            "}\n"
            "codegen.main-body append\ntop = f(layer, base); cover = 1;\n<<EOT>>\n");
        add("Twins",
            "input left { float { 0 0 1 0 \"%g\" } string { \"a\" } }\n"
            "input how { string { \"a\" } wwms.disableconnectflag 1 wwms.disableargflag 1 }\n"
            "output result { float out string out }\n"
            "defs\n{\nmaxinstances 3\ncastlock.add left result\n}\n"
            "codegen.main-body append\nresult = left + how;\n<<EOT>>\n");
    }

    void Send(const PointerState& pointer, QEvent::Type type, Qt::MouseButton button);
    void Move(const PointerState& pointer) override { Send(pointer, QEvent::MouseMove, Qt::NoButton); }
    void LeftDown(const PointerState& pointer) override {
        Send(pointer, QEvent::MouseButtonPress, Qt::LeftButton);
    }
    void LeftUp(const PointerState& pointer) override {
        Send(pointer, QEvent::MouseButtonRelease, Qt::LeftButton);
    }
    void Wheel(bool forward) override;
    // What the desk refuses is not of interest here.
    void SettleQuietly() {
        App().GetSite().report.TakePending();
        Settle();
    }
    void Tick() override { SettleQuietly(); }
    void Edit(WalkEdit edit) override;
    void Flow(WalkFlow flow, uint32_t which) override;
    void Menu(const PointerState& pointer, const WalkMenu& menu) override;
    static DeskMenuEntries ItemsOf(const QMenu& menu);
    void ChooseItem(QMenu& menu, QAction& item);
    bool OneIn(uint32_t count) { return m_random() % count == 0; }
    void AddOperator(const std::string& name) override { Desk().AddOperator(name); }
    void Scroll(bool across, ScrollAction action, int thumb) override;
    void Lock(bool locked) override;
    void SaveAndOpenAgain() override;
    void Paint() override { SettleQuietly(); }
    QWidget& Pane() { return Frame().Desk().Desk(); }

    std::vector<std::string> operators;
    void Look() { EXPECT_EQ(invariants->Look(walk->Selected()), ""); }
    void Begin();
    void Travel();
    size_t Below(size_t count) { return m_random() % count; }

    std::optional<test::DeskInvariants> invariants;
    std::optional<test::DeskWalk> walk;
    std::optional<test::HistoryPrints> prints;  // of a walk that goes back
    int travels = 0;

  private:
    std::mt19937 m_random{GetParam()};
    std::string m_whenLocked;
};

void FrameWalk::Send(const PointerState& pointer, QEvent::Type type, Qt::MouseButton button) {
    const QPointF at(static_cast<double>(pointer.at.x), static_cast<double>(pointer.at.y));
    Qt::MouseButtons held;
    held.setFlag(Qt::LeftButton, pointer.left);
    held.setFlag(Qt::MiddleButton, pointer.middle);
    held.setFlag(Qt::RightButton, pointer.right);
    Qt::KeyboardModifiers keys;
    keys.setFlag(Qt::ShiftModifier, pointer.shift);
    keys.setFlag(Qt::ControlModifier, pointer.control);
    QMouseEvent event(type, at, Pane().mapToGlobal(at), button, held, keys);
    QApplication::sendEvent(&Pane(), &event);
}

void FrameWalk::Wheel(bool forward) {
    const QPointF at = Pane().rect().center();
    QWheelEvent wheel(at, Pane().mapToGlobal(at), QPoint(), QPoint(0, forward ? 120 : -120), Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel);  // as from the platform: others are not passed on to parents
    qApp->notify(&Pane(), &wheel);
}

void FrameWalk::Edit(WalkEdit edit) {
    static const std::map<WalkEdit, Id> kCommands{
        {WalkEdit::kCut, Id::kCut},
        {WalkEdit::kCopy, Id::kCopy},
        {WalkEdit::kPaste, Id::kPaste},
        {WalkEdit::kDelete, Id::kDelete},
        {WalkEdit::kSelectAll, Id::kSelectAllBoxes},
        {WalkEdit::kUnselectAll, Id::kUnselectAllBoxes},
        {WalkEdit::kFitToWindow, Id::kFitToWindow},
        {WalkEdit::kZoomReset, Id::kZoomReset},
        {WalkEdit::kZoomIn, Id::kZoomIn},
        {WalkEdit::kZoomOut, Id::kZoomOut},
    };
    const Id id = kCommands.at(edit);
    if (Document().lock == 0 && IsEnabled(id)) Action(id).trigger();
}

void FrameWalk::Flow(WalkFlow flow, uint32_t which) {
    static constexpr std::array kAligns{Id::kAlignLeft, Id::kAlignCentre, Id::kAlignRight,
                                        Id::kAlignTop,  Id::kAlignMiddle, Id::kAlignBottom};
    static constexpr std::array kDistributes{Id::kDistributeAcross, Id::kDistributeDown};
    const auto run = [this](Id id) {
        if (Document().lock == 0 && IsEnabled(id)) Action(id).trigger();
    };
    switch (flow) {
        case WalkFlow::kAlign:
            return run(kAligns.at(which % kAligns.size()));
        case WalkFlow::kDistribute:
            return run(kDistributes.at(which % kDistributes.size()));
        case WalkFlow::kTidyAll:
            run(Id::kUnselectAllBoxes);
            return run(Id::kTidy);
        case WalkFlow::kTidySelected:
            return run(Id::kTidy);
        case WalkFlow::kDeleteKeepingFlow:
            return run(Id::kDeleteKeepingFlow);
        case WalkFlow::kMute:
            return run(Id::kMuteBoxes);
        case WalkFlow::kEscape:
            return test::PressKeys("Esc");
        case WalkFlow::kCount:
            return;
    }
}

DeskMenuEntries FrameWalk::ItemsOf(const QMenu& menu) {
    using Kind = DeskMenuEntry::Kind;
    DeskMenuEntries items;
    for (const QAction* action : menu.actions()) {
        const Kind kind = action->isSeparator()       ? Kind::kSeparator
                          : action->menu() != nullptr ? Kind::kSubmenu
                          : action->text().isEmpty()  ? Kind::kHelp
                                                      : Kind::kCommand;
        items.push_back({.kind = kind, .text = Bytes(action->text()), .enabled = action->isEnabled()});
    }
    return items;
}

// By the mouse, or by keys.
void FrameWalk::ChooseItem(QMenu& menu, QAction& item) {
    if (OneIn(2)) {
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(&item).center());
        return;
    }
    for (qsizetype left = menu.actions().size(); menu.activeAction() != &item && left > 0; --left)
        QTest::keyClick(&menu, Qt::Key_Down);
    ASSERT_EQ(menu.activeAction(), &item) << Bytes(item.text()) << " is not reached by keys";
    QTest::keyClick(&menu, item.menu() == nullptr ? Qt::Key_Return : Qt::Key_Right);
}

void FrameWalk::Menu(const PointerState& pointer, const WalkMenu& wish) {
    PointerState right = pointer;
    Send(pointer, QEvent::MouseMove, Qt::NoButton);
    right.right = true;
    Send(right, QEvent::MouseButtonPress, Qt::RightButton);
    Send(pointer, QEvent::MouseButtonRelease, Qt::RightButton);
    QPointer<QMenu> menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    bool isChosen = false;
    while (menu != nullptr && !isChosen) {
        ASSERT_TRUE(test::WaitUntil([&] { return menu->isVisible(); }));
        const auto place = wish.next(ItemsOf(*menu));
        if (!place) break;
        const QPointer<QAction> item = menu->actions().at(static_cast<qsizetype>(*place));
        isChosen = item->menu() == nullptr;
        if (isChosen) {
            wish.meanwhile();
            Look();  // at this edit by itself: choosing is another
        }
        if (menu == nullptr || item == nullptr) break;  // what came meanwhile has closed it
        QMenu* next = item->menu();
        ChooseItem(*menu, *item);
        menu = next;
    }
    if (menu != nullptr && !isChosen) wish.meanwhile();
    for (int level = 0; level < 4 && QApplication::activePopupWidget() != nullptr; ++level) {
        EXPECT_FALSE(isChosen) << "the menu stays open";
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        SettleQuietly();
    }
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << "the menu stays open";
}

void FrameWalk::Scroll(bool across, ScrollAction action, int thumb) {
    static const std::map<ScrollAction, QAbstractSlider::SliderAction> kActions{
        {ScrollAction::kLineUp, QAbstractSlider::SliderSingleStepSub},
        {ScrollAction::kLineDown, QAbstractSlider::SliderSingleStepAdd},
        {ScrollAction::kPageUp, QAbstractSlider::SliderPageStepSub},
        {ScrollAction::kPageDown, QAbstractSlider::SliderPageStepAdd},
        {ScrollAction::kTop, QAbstractSlider::SliderToMinimum},
        {ScrollAction::kBottom, QAbstractSlider::SliderToMaximum},
    };
    for (QScrollBar* bar : Frame().Desk().findChildren<QScrollBar*>()) {
        if ((bar->orientation() == Qt::Horizontal) != across) continue;
        if (action == ScrollAction::kThumb) {
            bar->setSliderPosition(thumb);
        } else {
            bar->triggerAction(kActions.at(action));
        }
    }
}

// Whatever is tried while the desk is locked changes nothing.
void FrameWalk::Lock(bool locked) {
    if (!locked) {
        EXPECT_EQ(Document().Snapshot(), m_whenLocked) << "a locked desk was changed";
    }
    Action(Id::kLockDesk).trigger();
    SettleQuietly();
    EXPECT_EQ(Document().lock, locked ? 1 : 0);
    m_whenLocked = Document().Snapshot();
}

void FrameWalk::SaveAndOpenAgain() {
    std::string error;
    ASSERT_TRUE(Document().Save(directory / "walk.tvn", error)) << error;
    ASSERT_TRUE(Frame().OpenDocumentFile(directory / "walk.tvn"));
    SettleQuietly();
    invariants->TakeAsItIs();
    if (prints) prints->Forget();
}

// Some steps back or forth, by the commands.
void FrameWalk::Travel() {
    const Id command = Below(2) == 0 ? Id::kUndo : Id::kRedo;
    for (size_t step = Below(6); step > 0 && Action(command).isEnabled(); --step) Action(command).trigger();
    SettleQuietly();
    travels += prints->ExpectWhatStoodHere() ? 1 : 0;
    invariants->TakeAsItIs();
    Look();
}

void FrameWalk::Begin() {
    Start();
    Frame().resize(Frame().minimumSizeHint().expandedTo({700, 500}));
    SettleQuietly();
    invariants.emplace(Document(), Desk());
    walk.emplace(test::DeskWalk::Ground{Document(), Desk(), Frame().Desk().View(), *this, operators},
                 GetParam());
}

TEST_P(FrameWalk, LeavesTheDeskWholeAfterEveryEdit) {
    Begin();
    size_t wired = 0;
    for (int step = 1; walk->PointerEdits() < kEdits && !HasFailure(); ++step) {
        walk->Step();
        Look();
        EXPECT_THAT(Log(), Not(HasSubstr("WARNING: m_")));
        wired = std::max(wired, invariants->Wired().size());
        if (HasFailure()) ADD_FAILURE() << "seed " << GetParam() << ", step " << step << ": " << walk->Name();
    }
    EXPECT_GT(wired, 1U) << "the walk came nowhere";
    EXPECT_GT(walk->MenusOpened(), kEdits / 20);
    EXPECT_GT(walk->ItemsChosen(), kEdits / 40);
    Document().SetModified(false);
}

TEST_P(FrameWalk, EveryPlaceIsTheNetworkThatStoodThere) {
    constexpr int kBetweenTravels = 7;
    Begin();
    prints.emplace(Document());
    prints->Note(0);
    size_t noted = 0;
    for (int step = 1; walk->PointerEdits() < kEdits && !HasFailure(); ++step) {
        walk->Step();
        Look();
        if (invariants->HidesACycle()) break;
        if (Document().edits.IsOpen()) continue;  // a drag, which becomes a step where it ends
        prints->Note(noted);
        if (step % kBetweenTravels == 0 && Document().lock == 0) Travel();
        noted = Document().History()->Place();
        if (HasFailure()) ADD_FAILURE() << "seed " << GetParam() << ", step " << step << ": " << walk->Name();
    }
    EXPECT_GT(travels, 5) << "the walk went nowhere";
    Document().SetModified(false);
}

INSTANTIATE_TEST_SUITE_P(Seeds, FrameWalk, testing::Values(1U, 3U, 4U));

}  // namespace
}  // namespace tavrin
