// SPDX-License-Identifier: Apache-2.0
// The search for an operator on the desk, by a user's hands: keys on the desk, dropped wires, and what comes
// of a choice.
#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QScreen>
#include <QTest>
#include <QWindow>
#include <filesystem>

#include "document/EditHistory.h"
#include "ui/base/Text.h"
#include "ui/commands/SearchWork.h"
#include "ui/desk/DeskPane.h"
#include "ui/search/SearchPopup.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using Id = CommandId;
using test::BoxesShown;
using test::DeskPointer;
using test::FrameTest;
using test::PressKeys;
using test::PressWhenBoxComes;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kWanted = "desk.search 1\ndesk.plainanchors 1\n";

class SearchAtPointer : public FrameTest {
  protected:
    void Start(const std::string& settings = kWanted) {
        const std::string site = "tavrin/tiny/tavrn.def";
        directory.Write(site, test::ReadFile(directory / site) + settings);
        FrameTest::Start();
        test::GiveFocus(Frame().Desk());
        PointAt({300, 200});
    }
    void AddFile(const std::string& path, const std::string& text) {
        directory.Write("tavrin/tiny/menu/" + path, text);
    }
    QWidget& Pane() { return Frame().Desk().Desk(); }
    void PointAt(QPoint at) {
        QCursor::setPos(Pane().mapToGlobal(at));
        EXPECT_TRUE(WaitUntil([&] { return QCursor::pos() == Pane().mapToGlobal(at); }));
    }
    SearchPopup* Popup() { return Frame().Search().Popup(); }
    bool IsOpen() { return Popup() != nullptr && Popup()->isVisible(); }
    QLineEdit& Line() { return *Popup()->findChild<QLineEdit*>("text"); }
    QListView& List() { return *Popup()->findChild<QListView*>("list"); }
    QStringList Rows() {
        QStringList rows;
        const QAbstractItemModel& model = *List().model();
        for (int row = 0; row < model.rowCount(); ++row) rows << model.index(row, 0).data().toString();
        return rows;
    }
    QString Chosen() { return List().currentIndex().data().toString(); }
    void Type(const QString& text) {
        for (const QChar letter : text) QTest::keyClick(Frame().windowHandle(), letter.toLatin1());
    }
    bool IsRead() {
        return WaitUntil(
            [&] { return Frame().Search().Index() != nullptr && Frame().Search().Index()->Unread() == 0; });
    }
    std::vector<std::string> Network() {
        std::vector<std::string> names;
        for (const auto& box : Document().m_boxes) names.push_back(box->filename);
        return names;
    }
    QPoint SeenTitle(const COpBox& box) { return DeskPointer(Frame()).TitleOf(box); }
    const std::string& LastStep() {
        const EditHistory& history = *Document().History();
        return history.Name(history.Place() - 1);
    }
    // A Constant with a wire drawn from its output to the empty desk.
    COpBox& DropWire(QPoint at) {
        AddBoxes(1);
        COpBox& box = *Document().m_boxes.front();
        Desk().MoveBox(box, 200, 200);
        Settle();
        DeskPointer pointer(Frame());
        pointer.WireByDrag(pointer.Of(box, "result"), at);
        return box;
    }
};

TEST_F(SearchAtPointer, TypingOnTheDeskBeginsASearch) {
    Start();
    Type("dis");
    ASSERT_TRUE(IsOpen());
    EXPECT_EQ(Line().text(), "dis");
    EXPECT_EQ(Rows(), QStringList{"Disc"});
    EXPECT_TRUE(Popup()->geometry().contains(QCursor::pos()));
    PressKeys("Esc");
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(Network(), testing::IsEmpty());
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(SearchAtPointer, TabOnTheDeskOpensItWithAllOperators) {
    Start();
    PressKeys("Tab");
    ASSERT_TRUE(IsOpen());
    EXPECT_EQ(Line().text(), "");
    EXPECT_EQ(Rows(), (QStringList{"Checks", "Constant", "Disc", "Paint"}));
}

TEST_F(SearchAtPointer, EnterPutsTheBoxUnderThePointerAsOneStep) {
    Start();
    Type("disc");
    PressKeys("Return");
    EXPECT_FALSE(IsOpen());
    ASSERT_THAT(Network(), ElementsAre("Disc"));
    EXPECT_TRUE(Desk().m_pendingBoxes.empty());
    const COpBox& box = *Document().m_boxes.front();
    EXPECT_NE(box.selected, 0);
    EXPECT_LE((SeenTitle(box) - QPoint(300, 200)).manhattanLength(), 3);
    EXPECT_EQ(LastStep(), "Add Disc");
    Settle();
    PressKeys("Ctrl+Z");
    EXPECT_THAT(Network(), testing::IsEmpty());
    EXPECT_EQ(Document().History()->Place(), 0U);
}

TEST_F(SearchAtPointer, ASavedNetworkComesWholeAndAtOnce) {
    Start();
    WriteDocument("two", 2);
    AddFile("0300.Patterns/0020.Pair", test::ReadFile(directory / "two.tvn"));
    Do(Id::kReloadOperators);
    Type("pair");
    PressKeys("Return");
    EXPECT_THAT(Network(), ElementsAre("Constant", "Constant"));
    EXPECT_EQ(LastStep(), "Add Pair");
    EXPECT_EQ(Document().History()->Place(), 1U);
}

TEST_F(SearchAtPointer, ALibraryThatDoesNotWantItHasItByTheCommandAlone) {
    Start("desk.plainanchors 1\n");
    Type("disc");
    EXPECT_FALSE(IsOpen());
    PressKeys("Tab");
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(Frame().Search().Index(), nullptr) << "nothing is read for a search that nobody opens";
    test::ChooseInMenu(Frame(), "Find", Action(Id::kSearch));
    EXPECT_TRUE(WaitUntil([&] { return IsOpen(); }));
}

TEST_F(SearchAtPointer, OnALockedDeskNothingOpens) {
    Start();
    Do(Id::kLockDesk);
    EXPECT_FALSE(IsEnabled(Id::kSearch));
    Type("d");
    PressKeys("Tab");
    Do(Id::kSearch);
    Settle();
    EXPECT_FALSE(IsOpen());
}

TEST_F(SearchAtPointer, KeysThatMeanSomethingElseStillDo) {
    Start();
    AddBoxes(2);
    PressKeys("Up");
    EXPECT_GT(Document().zoomFactor, 1.0F);
    PressKeys("Esc");
    EXPECT_EQ(Document().zoomFactor, 1.0F);
    PressKeys("Ctrl+A");
    PressKeys("Delete");
    EXPECT_THAT(Network(), testing::IsEmpty());
    PressKeys("Space");
    EXPECT_FALSE(IsOpen()) << "no text begins with a blank";
}

TEST_F(SearchAtPointer, AnOpenSearchHasTheArrowsAndEscapeForItself) {
    Start();
    AddBoxes(1);
    Document().zoomFactor = 2;
    PressKeys("Tab");
    ASSERT_EQ(Chosen(), "Checks");
    PressKeys("Down");
    PressKeys("Down");
    EXPECT_EQ(Chosen(), "Disc");
    PressKeys("Up");
    EXPECT_EQ(Chosen(), "Constant");
    PressKeys("Esc");
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(Document().zoomFactor, 2.0F);
}

TEST_F(SearchAtPointer, WhileAGestureRunsNoKeyOpensIt) {
    Start();
    DeskPointer pointer(Frame());
    pointer.Press({100, 100});
    Type("d");
    EXPECT_FALSE(IsOpen());
    pointer.Release({100, 100});
    Type("d");
    EXPECT_TRUE(IsOpen());
}

TEST_F(SearchAtPointer, AClickElsewhereClosesItAndDoesNothingMore) {
    Start();
    AddBoxes(1);
    PressKeys("Tab");
    ASSERT_TRUE(IsOpen());
    const int selected = Document().m_boxes.front()->selected;
    ASSERT_NE(selected, 0);
    QTest::mouseClick(Popup(), Qt::LeftButton, {}, QPoint(-30, -30));
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(Document().m_boxes.front()->selected, selected);
}

TEST_F(SearchAtPointer, AClickOnARowChoosesIt) {
    Start();
    PressKeys("Tab");
    const QModelIndex row = List().model()->index(2, 0);
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, List().visualRect(row).center());
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(Network(), ElementsAre("Disc"));
}

TEST_F(SearchAtPointer, WhatWasUsedLastComesFirstAlsoInTheNextRunOfTheProgram) {
    Start();
    for (const char* text : {"paint", "disc"}) {
        Type(text);
        PressKeys("Return");
    }
    PressKeys("Tab");
    EXPECT_EQ(Rows(), (QStringList{"Disc", "Paint", "Checks", "Constant"}));
    PressKeys("Esc");
    Document().SetModified(false);
    Start("");
    PressKeys("Tab");
    EXPECT_EQ(Rows(), (QStringList{"Disc", "Paint", "Checks", "Constant"}));
}

TEST_F(SearchAtPointer, ADroppedWireOffersWhatFitsAndIsWiredInOneStep) {
    Start();
    COpBox& source = DropWire({500, 300});
    ASSERT_TRUE(IsOpen());
    ASSERT_TRUE(IsRead());
    ASSERT_TRUE(WaitUntil([&] { return Rows().size() == 4; }));
    EXPECT_THAT(Bytes(Line().placeholderText()), HasSubstr("result of Constant_1"));
    const size_t steps = Document().History()->Place();
    Type("paint");
    PressKeys("Return");
    ASSERT_THAT(Network(), ElementsAre("Paint", "Constant"));
    const COpButton& shade = *Document().m_boxes.front()->inputs.at(0);
    EXPECT_EQ(shade.connections.First(), source.outputs.at(0).get());
    EXPECT_EQ(Document().History()->Place(), steps + 1);
    EXPECT_EQ(Desk().m_selectedButton, nullptr);
    const WindowPoint end = Frame().Desk().View().ToWindow(ButtonAnchor(ButtonPlace::Of(shade)));
    EXPECT_LE((QPoint(int(end.x), int(end.y)) - QPoint(500, 300)).manhattanLength(), 3)
        << "the input is where the wire was let go of";
    Desk().Undo();
    EXPECT_THAT(Network(), ElementsAre("Constant"));
}

TEST_F(SearchAtPointer, AWireFromAnInputOffersWhatHasAnOutput) {
    Start();
    AddBoxes(1, "Paint");
    COpBox& box = *Document().m_boxes.front();
    Desk().MoveBox(box, 400, 200);
    Settle();
    DeskPointer pointer(Frame());
    pointer.WireByDrag(pointer.Of(box, "shade"), {100, 100});
    ASSERT_TRUE(IsOpen());
    ASSERT_TRUE(WaitUntil([&] { return Rows().size() == 3; }));
    EXPECT_FALSE(Rows().contains("Paint")) << "it has no output";
    Type("con");
    PressKeys("Return");
    EXPECT_NE(box.inputs.at(0)->connections.First(), nullptr);
}

TEST_F(SearchAtPointer, ADroppedWireIsSeenWhileItsOtherEndIsSearchedFor) {
    Start();
    const COpBox& box = DropWire({500, 300});
    ASSERT_TRUE(IsOpen());
    const WindowPoint from =
        Frame().Desk().View().ToWindow(ButtonAnchor(ButtonPlace::Of(*box.outputs.at(0))));
    const QPoint middle = (QPoint(int(from.x), int(from.y)) + QPoint(500, 300)) / 2;
    const auto seen = [&] { return Frame().Desk().Desk().grabFramebuffer().pixel(middle); };
    const QRgb wire = seen();
    PressKeys("Esc");
    EXPECT_NE(seen(), wire);
}

TEST_F(SearchAtPointer, EscapeLetsADroppedWireGo) {
    Start();
    DropWire({500, 300});
    ASSERT_TRUE(IsOpen());
    EXPECT_NE(Desk().m_selectedButton, nullptr);
    PressKeys("Esc");
    EXPECT_FALSE(IsOpen());
    EXPECT_EQ(Desk().m_selectedButton, nullptr);
    EXPECT_THAT(Network(), ElementsAre("Constant"));
}

TEST_F(SearchAtPointer, AWireWhoseButtonHasGoneMeanwhileIsNotMissed) {
    Start();
    DropWire({500, 300});
    ASSERT_TRUE(IsOpen());
    ASSERT_TRUE(WaitUntil([&] { return Rows().size() == 4; }));
    Desk().DeleteBox(*Document().m_boxes.front());
    PressKeys("Return");
    EXPECT_THAT(Network(), ElementsAre("Checks"));
}

TEST_F(SearchAtPointer, WithoutTheSearchADroppedWireStaysInHand) {
    Start("desk.plainanchors 1\n");
    DropWire({500, 300});
    EXPECT_FALSE(IsOpen());
    EXPECT_NE(Desk().m_selectedButton, nullptr);
}

TEST_F(SearchAtPointer, AMegabyteThatIsPastedFindsNothingAndLosesNothing) {
    Start();
    QApplication::clipboard()->setText(QString(1 << 20, 'd'));
    PressKeys("Tab");
    PressKeys("Ctrl+V");
    EXPECT_TRUE(Rows().isEmpty());
    EXPECT_TRUE(Popup()->findChild<QLabel*>("nothing")->isVisible());
    PressKeys("Return");
    EXPECT_TRUE(IsOpen()) << "there is nothing to choose";
    PressKeys("Ctrl+A");
    Type("disc");
    EXPECT_EQ(Rows(), QStringList{"Disc"});
}

TEST_F(SearchAtPointer, WordsOfTheHelpAreFoundOnceTheyAreRead) {
    Start();
    Type("grey");
    ASSERT_TRUE(IsOpen());
    ASSERT_TRUE(WaitUntil([&] { return !Rows().isEmpty(); }));
    EXPECT_EQ(Rows(), QStringList{"Paint"});
    EXPECT_EQ(Popup()->findChild<QLabel*>("help")->text(), "Paints the surface in a shade of grey.");
}

TEST_F(SearchAtPointer, AnOpenListFollowsTheLibrary) {
    Start();
    Type("disc");
    ASSERT_EQ(Rows(), QStringList{"Disc"});
    fs::remove(directory / "tavrin/tiny/menu/0400.Shapes/0010.Disc");
    Do(Id::kReloadOperators);
    EXPECT_TRUE(IsOpen());
    EXPECT_TRUE(Rows().isEmpty());
    AddFile("0400.Shapes/0020.DiscTwo", test::ReadFile(directory / "tavrin/tiny/menu/0100.Constant"));
    Do(Id::kReloadOperators);
    EXPECT_EQ(Rows(), QStringList{"DiscTwo"});
}

TEST_F(SearchAtPointer, AnOperatorWhoseFileHasGoneAlerts) {
    Start();
    Type("disc");
    fs::remove(directory / "tavrin/tiny/menu/0400.Shapes/0010.Disc");
    PressWhenBoxComes("OK");
    PressKeys("Return");
    EXPECT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_THAT(Bytes(BoxesShown().join('|')), HasSubstr("0010.Disc"));
    EXPECT_THAT(Network(), testing::IsEmpty());
    EXPECT_EQ(Document().History()->Place(), 0U);
}

TEST_F(SearchAtPointer, ADefinitionThatCannotBeReadIsFoundByItsNameAndAlerts) {
    AddFile("0400.Shapes/0020.Wrong", "input a { nonsense\n");
    Start();
    Type("wrong");
    ASSERT_EQ(Rows(), QStringList{"Wrong"});
    PressWhenBoxComes("OK");
    PressKeys("Return");
    EXPECT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_THAT(Network(), testing::IsEmpty());
    EXPECT_EQ(Document().History()->Place(), 0U);
}

TEST_F(SearchAtPointer, AtTheEdgeTheSearchIsOnTheScreenAndTheBoxInSight) {
    Start();
    const QPoint corner(Pane().width() - 2, Pane().height() - 2);
    PointAt(corner);
    Type("disc");
    ASSERT_TRUE(IsOpen());
    EXPECT_TRUE(Popup()->screen()->geometry().contains(Popup()->geometry()));
    PressKeys("Return");
    ASSERT_THAT(Network(), ElementsAre("Disc"));
    EXPECT_TRUE(Frame().Desk().View().Visible().Encloses(BoxRect(*Document().m_boxes.front())));
}

TEST_F(SearchAtPointer, WithThePointerElsewhereTheBoxComesToTheMiddle) {
    Start();
    QCursor::setPos(Frame().mapToGlobal(QPoint(5, 5)));
    ASSERT_TRUE(WaitUntil([&] { return !Frame().Desk().CursorOnDesk(); }));
    Type("disc");
    PressKeys("Return");
    ASSERT_THAT(Network(), ElementsAre("Disc"));
    EXPECT_LE((SeenTitle(*Document().m_boxes.front()) - Pane().rect().center()).manhattanLength(), 4);
}

TEST_F(SearchAtPointer, AtAnotherZoomTheBoxIsUnderThePointerAsWell) {
    Start();
    Document().zoomFactor = 0.5F;
    Type("disc");
    PressKeys("Return");
    ASSERT_THAT(Network(), ElementsAre("Disc"));
    Frame().Desk().LayoutAll();
    EXPECT_LE((SeenTitle(*Document().m_boxes.front()) - QPoint(300, 200)).manhattanLength(), 3);
}

TEST_F(SearchAtPointer, ProgramsThatEndWhileItIsOpenEnd) {
    Start();
    PressKeys("Tab");
    ASSERT_TRUE(IsOpen());
    EXPECT_TRUE(Frame().close());
    EXPECT_EQ(Popup(), nullptr);
}

}  // namespace
}  // namespace tavrin
