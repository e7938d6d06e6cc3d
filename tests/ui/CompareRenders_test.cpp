// SPDX-License-Identifier: Apache-2.0
// The window "Compare Renders" in the whole program: what it lists, how it follows the desk, where a double
// click leads, what is taken over.
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QWindow>
#include <filesystem>

#include "desk/OpDesk.h"
#include "document/EditHistory.h"
#include "sliders/ArgumentEdits.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/render/CompareWindow.h"
#include "ui/render/DifferenceList.h"
#include "ui/render/SourceColumns.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::BoxesShown;
using test::WaitUntil;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr int kDesk = Comparison::kDesk;
constexpr const char* kKnobs = R"text(size 64 48
input amount { float { 0.5 0 1 0 "%g" } rgb { 1 0 0 "vec3(%g, %g, %g)" } }
input place { xyz { 1 2 3 0 10 0 "vec3(%g, %g, %g)" } }
output result { float out }
codegen.main-body append
result = amount + place;
<<EOT>>
)text";

class CompareRenders : public test::FrameTest {
  protected:
    CompareRenders() { directory.Write("tavrin/tiny/menu/0500.Knobs", kKnobs); }

    void AddToSite(const std::string& lines) {
        const std::string path = "tavrin/tiny/tavrn.def";
        directory.Write(path, test::ReadFile(directory / path) + lines);
    }
    void StartWithKnobs(int boxes = 2) {
        Start();
        AddBoxes(boxes, "Knobs");
    }
    void Render() {
        Do(CommandId::kRenderIt);
        ASSERT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
    }
    void Open() {
        Do(CommandId::kCompareRenders);
        ASSERT_TRUE(WaitUntil([this] { return Window().Refreshes() > 0; }));
    }
    COpBox& BoxOf(int wid) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == wid) return *box;
        }
        throw std::out_of_range("no box of that number");
    }
    void Tune(int wid, float number) {
        COpButton& button = *BoxOf(wid).inputs[0];
        const EditScope edit(Document(), "Tune");
        Document().edits.ButtonTuned(button);
        dynamic_cast<COpValueFloat&>(*button.values[0]).value = number;
    }
    float Amount(int wid) { return dynamic_cast<COpValueFloat&>(*BoxOf(wid).inputs[0]->values[0]).value; }

    CompareWindow& Window() { return Frame().Windows().Get<CompareWindow>(); }
    template <class Child>
    Child& Get(const QString& name = {}) {
        for (QWidget* widget : Window().findChildren<QWidget*>()) {
            auto* child = dynamic_cast<Child*>(widget);
            if (child != nullptr && (name.isEmpty() || child->accessibleName() == name)) return *child;
        }
        throw std::out_of_range("no such child");
    }
    QPushButton& Button(const QString& text) {
        for (auto* button : Window().findChildren<QPushButton*>()) {
            if (button->text().remove('&') == text) return *button;
        }
        throw std::out_of_range("no such button");
    }
    DifferenceList& List() { return Get<DifferenceList>(); }
    SourceColumns& Source() { return Get<SourceColumns>(); }
    QComboBox& Chooser(const char* name) { return Get<QComboBox>(name); }
    std::vector<std::string> Choices(const char* name) {
        std::vector<std::string> texts;
        for (int row = 0; row < Chooser(name).count(); ++row)
            texts.push_back(Bytes(Chooser(name).itemText(row)));
        return texts;
    }
    std::string Chosen(const char* name) { return Bytes(Chooser(name).currentText()); }
    std::string Notes() {
        for (const QLabel* label : Window().findChildren<QLabel*>()) {
            if (label->wordWrap() && label->parentWidget() == &Window()) return Bytes(label->text());
        }
        return {};
    }

    // "GROUP", "  WHAT | OLDER | NEWER".
    std::vector<std::string> Rows() {
        std::vector<std::string> rows;
        for (int i = 0; i < List().topLevelItemCount(); ++i) {
            const QTreeWidgetItem& group = *List().topLevelItem(i);
            rows.push_back(Bytes(group.text(0)));
            for (int j = 0; j < group.childCount(); ++j) {
                const QTreeWidgetItem& row = *group.child(j);
                rows.push_back(Bytes("  " + row.text(0) + " | " + row.text(1) + " | " + row.text(2)));
            }
        }
        return rows;
    }
    bool RowsComeTo(const std::vector<std::string>& rows) {
        return WaitUntil([&] { return Rows() == rows; });
    }
    QTreeWidgetItem& Row(const QString& what) {
        const auto found = List().findItems(what, Qt::MatchExactly | Qt::MatchRecursive);
        if (found.isEmpty()) throw std::out_of_range("no such row");
        return *found.first();
    }
    QPoint PlaceOf(const QString& what) {
        List().scrollToItem(&Row(what));
        const QRect place = List().visualItemRect(&Row(what));
        return {place.left() + 10, place.center().y()};
    }
    void Click(const QString& what, Qt::KeyboardModifiers keys = {}) {
        QTest::mouseClick(List().viewport(), Qt::LeftButton, keys, PlaceOf(what));
    }
    void DoubleClick(const QString& what) {
        Click(what);
        QTest::mouseDClick(List().viewport(), Qt::LeftButton, {}, PlaceOf(what));
        QTest::mouseRelease(List().viewport(), Qt::LeftButton, {}, PlaceOf(what));  // that leaves it down
        Settle();
    }
    void Press(const QString& button) {
        ASSERT_TRUE(Button(button).isEnabled()) << Bytes(button);
        QTest::mouseClick(&Button(button), Qt::LeftButton);
        Settle();
    }
    void GoToPart(int part) {
        QTabBar& bar = *Get<QTabWidget>().tabBar();
        QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(part).center());
        ASSERT_EQ(Get<QTabWidget>().currentIndex(), part);
        Settle();
    }
    std::vector<std::string> Selected() {
        std::vector<std::string> names;
        for (const auto& box : Document().m_boxes) {
            if (box->selected != 0) names.push_back(box->BoxTitleWid());
        }
        return names;
    }
};

TEST_F(CompareRenders, BeforeTheFirstRenderTheWindowSaysWhatItIsFor) {
    StartWithKnobs();
    Open();
    EXPECT_THAT(Notes(), HasSubstr("Nothing has been rendered yet"));
    EXPECT_THAT(Rows(), ElementsAre("Nothing differs"));
    EXPECT_THAT(Choices("Older"), ElementsAre("The desk"));
    EXPECT_FALSE(Button("Take Over").isEnabled());
    EXPECT_FALSE(Button("Go to Box").isEnabled());
    EXPECT_FALSE(Button("Compare Pictures").isEnabled());
}

TEST_F(CompareRenders, TheNewestRenderIsComparedWithTheDeskWhichIsFollowed) {
    StartWithKnobs();
    Render();
    Open();
    EXPECT_EQ(Chosen("Older"), "01 Untitled");
    EXPECT_EQ(Chosen("Newer"), "The desk");
    EXPECT_THAT(Rows(), ElementsAre("Nothing differs"));
    Tune(2, 0.75F);
    SetArgumentName(Document(), *BoxOf(1).inputs[1], "where");
    EXPECT_TRUE(RowsComeTo({"Values (1)", "  Knobs_2 amount | 0.5 | 0.75", "Arguments (1)",
                            "  Knobs_1 place argument name |  | where"}));
    Render();
    EXPECT_EQ(Chosen("Older"), "02 Untitled");
    EXPECT_TRUE(RowsComeTo({"Nothing differs"}));
    EXPECT_EQ(Notes(), "");
}

TEST_F(CompareRenders, ManyEditsAtOnceAreFollowedOnce) {
    StartWithKnobs();
    Render();
    Open();
    const int before = Window().Refreshes();
    for (int i = 1; i <= 200; ++i) Tune(1, 0.5F + 0.001F * static_cast<float>(i));
    EXPECT_TRUE(RowsComeTo({"Values (1)", "  Knobs_1 amount | 0.5 | 0.7"}));
    EXPECT_EQ(Window().Refreshes(), before + 1);
}

TEST_F(CompareRenders, AHandThatHoldsAButtonIsWaitedFor) {
    StartWithKnobs();
    Render();
    Open();
    QWindow& frame = *Frame().windowHandle();
    const QPoint at = Frame().StatusBox().mapTo(&Frame(), QPoint(5, 5));
    QTest::mousePress(&frame, Qt::LeftButton, {}, at);
    Tune(1, 0.75F);
    ASSERT_TRUE(WaitUntil([this] { return Window().Delays() > 1; }));
    EXPECT_THAT(Rows(), ElementsAre("Nothing differs"));
    QTest::mouseRelease(&frame, Qt::LeftButton, {}, at);
    EXPECT_TRUE(RowsComeTo({"Values (1)", "  Knobs_1 amount | 0.5 | 0.75"}));
}

TEST_F(CompareRenders, AHiddenWindowFindsNothingOut) {
    StartWithKnobs();
    Render();
    Tune(1, 0.75F);
    Settle();
    EXPECT_EQ(Window().Refreshes(), 0);
    Open();
    EXPECT_TRUE(RowsComeTo({"Values (1)", "  Knobs_1 amount | 0.5 | 0.75"}));
}

TEST_F(CompareRenders, ADoubleClickGoesToTheBoxAndSelectsItAlone) {
    StartWithKnobs(3);
    Desk().SelectAllBoxes();
    Render();
    Tune(2, 0.75F);
    {
        const EditScope edit(Document(), "Move");
        Document().edits.BoxMoved(BoxOf(2));
        BoxOf(2).xypos[0] = 5000;
    }
    Open();
    const float before = Document().offset[0];
    DoubleClick("Knobs_2 amount");
    EXPECT_THAT(Selected(), ElementsAre("Knobs_2"));
    EXPECT_NE(Document().offset[0], before) << "the box is far away";
}

TEST_F(CompareRenders, EnterAndTheButtonGoToTheBoxAsWell) {
    StartWithKnobs(2);
    Render();
    Tune(1, 0.75F);
    Tune(2, 0.75F);
    Open();
    Click("Knobs_1 amount");
    QTest::keyClick(&List(), Qt::Key_Return);
    EXPECT_THAT(Selected(), ElementsAre("Knobs_1"));
    Click("Knobs_2 amount");
    Press("Go to Box");
    EXPECT_THAT(Selected(), ElementsAre("Knobs_2"));
}

TEST_F(CompareRenders, ABoxThatIsNotOnTheDeskIsPaleAndCannotBeGoneTo) {
    StartWithKnobs(2);
    Render();
    Desk().DeleteBox(BoxOf(2));
    Open();
    ASSERT_TRUE(
        RowsComeTo({"Boxes (1)", QString("  Knobs_2 | Knobs_2 | %1").arg(QChar(0x2013)).toStdString()}));
    EXPECT_EQ(Row("Knobs_2").foreground(0).color(),
              List().palette().color(QPalette::Disabled, QPalette::Text));
    EXPECT_THAT(Bytes(Row("Knobs_2").toolTip(0)), HasSubstr("not on the desk"));
    const float before = Document().offset[0];
    DoubleClick("Knobs_2");
    EXPECT_EQ(Document().offset[0], before);
    EXPECT_FALSE(Button("Go to Box").isEnabled());
    Do(CommandId::kUndo);
    EXPECT_TRUE(RowsComeTo({"Nothing differs"}));
}

TEST_F(CompareRenders, TwoRendersAreChosenByHandAndStay) {
    StartWithKnobs();
    Render();
    Tune(1, 0.75F);
    Render();
    Tune(1, 0.25F);
    Open();
    EXPECT_THAT(Choices("Newer"), ElementsAre("The desk", "02 Untitled", "01 Untitled"));
    test::GiveFocus(Chooser("Older"));
    QTest::keyClick(&Chooser("Older"), Qt::Key_Down);
    test::GiveFocus(Chooser("Newer"));
    QTest::keyClick(&Chooser("Newer"), Qt::Key_Down);
    EXPECT_EQ(Chosen("Older"), "01 Untitled");
    EXPECT_EQ(Chosen("Newer"), "02 Untitled");
    EXPECT_TRUE(RowsComeTo({"Values (1)", "  Knobs_1 amount | 0.5 | 0.75"}));
    Render();
    EXPECT_EQ(Chosen("Older"), "01 Untitled") << "what was chosen by hand stays";
    EXPECT_EQ(Chosen("Newer"), "02 Untitled");
}

TEST_F(CompareRenders, ARenderThatIsPrunedStaysAndSaysSo) {
    AddToSite("maxhistory 2\n");
    StartWithKnobs();
    Render();
    Tune(1, 0.75F);
    Open();
    Window().Compare(1, kDesk);
    Render();
    Render();
    ASSERT_FALSE(fs::exists(WorkDir() + "/1"));
    EXPECT_EQ(Chosen("Older"), "01 Untitled (no longer in the history)");
    EXPECT_THAT(Choices("Older"), Contains("02 Untitled"));
    Tune(1, 0.25F);
    EXPECT_TRUE(RowsComeTo({"Values (1)", "  Knobs_1 amount | 0.5 | 0.25"}));
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(CompareRenders, AFileThatWasRemovedIsToldInTheWindow) {
    StartWithKnobs();
    Render();
    fs::remove_all(WorkDir() + "/1");
    Open();
    EXPECT_THAT(Notes(), HasSubstr("01 Untitled: unable to open "));
    EXPECT_THAT(Rows(), ElementsAre("Nothing differs"));
    EXPECT_THAT(Log(), HasSubstr("nothing is compared with"));
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(CompareRenders, AnotherDocumentOnTheDeskIsFollowed) {
    StartWithKnobs(1);
    Render();
    Open();
    test::PressWhenBoxComes("Discard");
    ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("other", 1)));
    EXPECT_TRUE(WaitUntil([this] { return Rows().front() == "Boxes (1)"; }));
    EXPECT_THAT(Rows(), Contains("  box 1 | Knobs_1 | Constant_1"));
}

TEST_F(CompareRenders, TheRenderHistoryLeadsHere) {
    StartWithKnobs();
    Render();
    Tune(1, 0.75F);
    Render();
    Do(CommandId::kRenderHistory);
    auto& list = *Frame().Windows().Of(CommandId::kRenderHistory).findChild<QListView*>();
    ASSERT_TRUE(WaitUntil([&list] { return list.isVisible(); }));
    const QPoint at = list.visualRect(list.model()->index(1, 0)).center();
    QContextMenuEvent asked(QContextMenuEvent::Mouse, at, list.viewport()->mapToGlobal(at));
    QApplication::sendEvent(list.viewport(), &asked);
    auto* menu = list.findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    for (QAction* item : menu->actions()) {
        if (item->text().remove('&') == "Compare with Desk")
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
    }
    EXPECT_TRUE(WaitUntil([this] { return Window().IsUp(); }));
    EXPECT_EQ(Chosen("Older"), "01 Untitled");
    EXPECT_EQ(Chosen("Newer"), "The desk");
    EXPECT_TRUE(RowsComeTo({"Values (1)", "  Knobs_1 amount | 0.5 | 0.75"}));
}

// Source

TEST_F(CompareRenders, BothSourcesStandSideBySideAndFollow) {
    StartWithKnobs();
    Render();
    Open();
    GoToPart(1);
    EXPECT_EQ(Source().ChangeCount(), 0U);
    Tune(2, 0.75F);
    EXPECT_TRUE(WaitUntil([this] { return Source().ChangeCount() == 1; }));
    Press("Next Change");
    EXPECT_EQ(Source().CurrentChange(), 0);
    EXPECT_FALSE(Button("Next Change").isEnabled());
}

// Take Over

TEST_F(CompareRenders, SelectedRowsAreTakenOverAsOneEdit) {
    StartWithKnobs(3);
    App().SetVariable("SIZE", "320,240", true);
    Render();
    for (const int wid : {1, 2, 3}) Tune(wid, 0.75F);
    App().SetVariable("SIZE", "640,480", true);
    Open();
    ASSERT_TRUE(WaitUntil([this] { return Rows().size() == 6; }));
    EXPECT_FALSE(Button("Take Over").isEnabled());
    Click("Knobs_1 amount");
    Click("Knobs_3 amount", Qt::ControlModifier);
    Click("SIZE", Qt::ControlModifier);
    Press("Take Over");
    EXPECT_EQ(Amount(1), 0.5F);
    EXPECT_EQ(Amount(2), 0.75F);
    EXPECT_EQ(Amount(3), 0.5F);
    EXPECT_EQ(Document().m_renderOptions["SIZE"], "320,240");
    EXPECT_TRUE(RowsComeTo({"Values (1)", "  Knobs_2 amount | 0.5 | 0.75"}));
    Do(CommandId::kUndo);
    EXPECT_EQ(Amount(1), 0.75F);
    EXPECT_EQ(Amount(3), 0.75F);
    EXPECT_EQ(Document().m_renderOptions["SIZE"], "640,480");
}

TEST_F(CompareRenders, ALockedDeskTakesNothingOver) {
    StartWithKnobs(1);
    Render();
    Tune(1, 0.75F);
    Do(CommandId::kLockDesk);
    Open();
    Click("Knobs_1 amount");
    EXPECT_FALSE(Button("Take Over").isEnabled());
    Do(CommandId::kLockDesk);
    Click("Knobs_1 amount");
    EXPECT_TRUE(Button("Take Over").isEnabled());
}

TEST_F(CompareRenders, BetweenTwoRendersThereIsNothingToTakeOver) {
    StartWithKnobs(1);
    Render();
    Tune(1, 0.75F);
    Render();
    Window().Compare(1, 2);
    ASSERT_TRUE(RowsComeTo({"Values (1)", "  Knobs_1 amount | 0.5 | 0.75"}));
    Click("Knobs_1 amount");
    EXPECT_FALSE(Button("Take Over").isEnabled());
    EXPECT_TRUE(Button("Go to Box").isEnabled());
}

// Pictures

TEST_F(CompareRenders, PicturesOfTwoRendersAreHandedToThePictureWindow) {
    StartWithKnobs(1);
    Render();
    Render();
    std::vector<std::pair<int, int>> compared;
    Workspace& work = Frame().Work();
    CompareWindow window(
        nullptr, {.comparison = {work.document, work.app, work.session, work.app.CodeGen()},
                  .goToBox = [](const std::string&) {},
                  .setOption = [](const std::string&, const std::string&) {},
                  .comparePictures = [&](int first, int second) { compared.emplace_back(first, second); }});
    const auto button = [&window]() -> QPushButton& {
        for (auto* found : window.findChildren<QPushButton*>()) {
            if (found->text().remove('&') == "Compare Pictures") return *found;
        }
        throw std::out_of_range("no such button");
    };
    window.Compare(1, 2);
    EXPECT_FALSE(button().isEnabled()) << "they have left none";
    for (const char* number : {"1", "2"})
        directory.Write(fs::relative(WorkDir(), directory.Path()).string() + "/" + number + "/Untitled.png",
                        "P");
    window.Compare(1, 2);
    ASSERT_TRUE(button().isEnabled());
    window.findChild<QTabWidget*>()->setCurrentIndex(2);
    QTest::mouseClick(&button(), Qt::LeftButton);
    EXPECT_THAT(compared, ElementsAre(std::pair(1, 2)));
    window.Compare(1, kDesk);
    EXPECT_FALSE(button().isEnabled()) << "the desk has none";
    window.Compare(1, 1);
    EXPECT_FALSE(button().isEnabled());
}

}  // namespace
}  // namespace tavrin
