// SPDX-License-Identifier: Apache-2.0
// The search's own window: its rows, and the hands on it.
#include "ui/search/SearchPopup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMainWindow>
#include <QPainter>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include "images/SgiTestFile.h"
#include "support/SmallLibrary.h"
#include "ui/base/Text.h"
#include "ui/search/SearchRows.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::WaitUntil;
using testing::ElementsAre;
using testing::IsEmpty;

class SearchPopupTest : public testing::Test {
  protected:
    void Load() { ASSERT_TRUE(library.Load()); }
    void Show(const SearchPopup::Wanted& wanted = {QPoint(300, 200)}) {
        test::ShowActive(frame);
        popup.Open(wanted);
        ASSERT_TRUE(test::WaitUntilSeen(popup));
    }
    QLineEdit& Line() { return *popup.findChild<QLineEdit*>("text"); }
    QListView& List() { return *popup.findChild<QListView*>("list"); }
    QString Help() { return popup.findChild<QLabel*>("help")->text(); }
    QString Nothing() {
        const QLabel& nothing = *popup.findChild<QLabel*>("nothing");
        return nothing.isVisible() ? nothing.text() : QString();
    }
    std::vector<std::string> Rows() {
        std::vector<std::string> rows;
        for (int row = 0; row < Model().rowCount(); ++row) rows.push_back(Bytes(Model().RowAt(row).name));
        return rows;
    }
    const SearchModel& Model() { return static_cast<SearchModel&>(*List().model()); }
    std::string Current() { return Bytes(List().currentIndex().data().toString()); }
    // Through the window, as from the platform.
    void Press(Qt::Key key) { QTest::keyClick(frame.windowHandle(), key); }
    void Type(const char* text) {
        for (; *text != 0; ++text) QTest::keyClick(frame.windowHandle(), *text);
    }
    QPoint PlaceOf(int row) { return List().visualRect(List().model()->index(row, 0)).center(); }
    void AddMany(int count) {
        for (int i = 100; i < 100 + count; ++i)
            library.Add("0100.Many/0" + std::to_string(i) + ".Op" + std::to_string(i), "");
    }

    test::SmallLibrary library;
    OperatorSearch search{*library.index};
    std::string icons = library.own.directory.Path();
    std::vector<std::string> chosen;
    int dismissed = 0;
    QMainWindow frame;
    SearchPopup popup{&frame,
                      {*library.index, search, icons,
                       [this](const std::string& name, const std::optional<WireFit>& fit) {
                           EXPECT_FALSE(popup.isVisible());
                           chosen.push_back(name + (fit ? " " + fit->button : ""));
                       },
                       [this] { ++dismissed; }}};
};

TEST_F(SearchPopupTest, ItComesUpAtThePlaceWithTheTextBehindTheCursor) {
    library.Add("0100.Plain/0010.Noise", "");
    Load();
    Show({QPoint(300, 200), "no"});
    EXPECT_TRUE(popup.geometry().contains(300, 200));
    EXPECT_TRUE(QRect(Line().mapToGlobal(QPoint()), Line().size()).contains(300, 200))
        << "the pointer is on no row that it could choose";
    Type("i");
    EXPECT_EQ(Line().text(), "noi");
    EXPECT_THAT(Rows(), ElementsAre("Noise"));
}

TEST_F(SearchPopupTest, BeyondTheEdgesItStaysOnTheScreen) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    for (const QPoint corner : {screen.topLeft(), screen.bottomRight(), QPoint(-500, 9000)}) {
        Show({corner});
        EXPECT_TRUE(screen.contains(popup.geometry())) << corner.x() << ", " << corner.y();
        popup.hide();
    }
}

TEST_F(SearchPopupTest, KeysMoveThroughTheRowsAndStopAtTheEnds) {
    AddMany(40);
    Load();
    Show();
    EXPECT_EQ(Current(), "Op100");
    Press(Qt::Key_Up);
    EXPECT_EQ(Current(), "Op100");
    Press(Qt::Key_Down);
    Press(Qt::Key_Tab);
    EXPECT_EQ(Current(), "Op102");
    Press(Qt::Key_Backtab);
    EXPECT_EQ(Current(), "Op101");
    Press(Qt::Key_PageDown);
    const std::string page = Current();
    EXPECT_GT(page, "Op105");
    EXPECT_TRUE(List().viewport()->rect().contains(PlaceOf(List().currentIndex().row())));
    Press(Qt::Key_PageUp);
    EXPECT_EQ(Current(), "Op101");
    for (int i = 0; i < 9; ++i) Press(Qt::Key_PageDown);
    EXPECT_EQ(Current(), "Op139");
    Press(Qt::Key_Enter);
    EXPECT_THAT(chosen, ElementsAre("Op139"));
    EXPECT_EQ(dismissed, 0);
}

TEST_F(SearchPopupTest, TypingOnGoesBackToTheBestRow) {
    AddMany(5);
    Load();
    Show();
    Press(Qt::Key_Down);
    Press(Qt::Key_Down);
    Type("o");
    EXPECT_EQ(Current(), "Op100");
}

TEST_F(SearchPopupTest, EscapeAndAClickElsewhereDismissIt) {
    Show();
    Press(Qt::Key_Escape);
    EXPECT_FALSE(popup.isVisible());
    EXPECT_EQ(dismissed, 1);
    Show();
    QTest::mouseClick(&popup, Qt::LeftButton, {}, QPoint(-20, -20));
    EXPECT_FALSE(popup.isVisible());
    EXPECT_EQ(dismissed, 2);
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(SearchPopupTest, ThePointerChoosesTheRowThatItMovesTo) {
    AddMany(5);
    Load();
    Show();
    ASSERT_TRUE(test::HoverUntil(*List().viewport(), PlaceOf(3), [&] { return Current() == "Op103"; }));
    QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, PlaceOf(3));
    EXPECT_THAT(chosen, ElementsAre("Op103"));
}

TEST_F(SearchPopupTest, WithNothingFoundEnterDoesNothing) {
    Load();
    Show({QPoint(300, 200), "zzz"});
    EXPECT_EQ(Nothing(), "No operator is found.");
    Press(Qt::Key_Return);
    EXPECT_TRUE(popup.isVisible());
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(SearchPopupTest, WhatIsStillToBeReadIsToldAndComesToTheListAsItIsRead) {
    library.Add("0100.Plain/0010.Cells", "boxhelp {\nMakes dried mud.\n}\n");
    library.Add("0100.Plain/0020.Mudd", "");
    library.Scan();
    Show({QPoint(300, 200), "dried"});
    EXPECT_EQ(Nothing(), "No operator is found.\n2 are still to be read.");
    ASSERT_TRUE(library.Fill());
    popup.FindAgain();
    EXPECT_THAT(Rows(), ElementsAre("Cells"));
    EXPECT_EQ(Nothing(), QString());
}

TEST_F(SearchPopupTest, TheRowThatTheHandHasGoneToStaysWhenTheListGrows) {
    library.Add("0100.Plain/0010.Mudbrick", "");
    library.Add("0100.Plain/0020.Mudslide", "");
    Load();
    Show({QPoint(300, 200), "mud"});
    Press(Qt::Key_Down);
    ASSERT_EQ(Current(), "Mudslide");
    library.Add("0100.Plain/0030.Mud", "");
    library.Scan();
    popup.FindAgain();
    EXPECT_THAT(Rows(), ElementsAre("Mud", "Mudbrick", "Mudslide"));
    EXPECT_EQ(Current(), "Mudslide");
    Type("s");
    library.Scan();
    popup.FindAgain();
    EXPECT_EQ(Current(), "Mudslide");
}

TEST_F(SearchPopupTest, AHandThatHasGoneNowhereStaysWithTheBest) {
    library.Add("0100.Plain/0010.Mudbrick", "");
    Load();
    Show({QPoint(300, 200), "mud"});
    library.Add("0100.Plain/0030.Mud", "");
    library.Scan();
    popup.FindAgain();
    EXPECT_EQ(Current(), "Mud");
}

TEST_F(SearchPopupTest, RowsOfAnIndexThatWasMadeAnewAreEmptyAndChooseNothing) {
    AddMany(3);
    Load();
    Show();
    library.Scan();
    EXPECT_EQ(Model().RowAt(0).name, QString());
    Press(Qt::Key_Return);
    EXPECT_THAT(chosen, IsEmpty());
    List().viewport()->grab();
    popup.FindAgain();
    Press(Qt::Key_Return);
    EXPECT_THAT(chosen, ElementsAre("Op100"));
}

TEST_F(SearchPopupTest, ARowTellsWhereTheWordsStand) {
    library.Add("0100.Patterns/0010.Cells",
                "keywords { voronoi }\nalias Crackle\nboxhelp {\nCells: space divided.\n\nA long line that "
                "ends with the giraffe.\n}\n"
                "input scatter { help {\nHow irregular.\n}\nfloat { 0 0 1 0 \"%g\" } }\n"
                "input mode { string { value soft options { soft hard } } }\n"
                "output edge { generic:vec2 out }\n");
    Load();
    const auto row = [&](const char* text) {
        Show({QPoint(300, 200), text});
        SearchRow first = Model().RowAt(0);
        popup.hide();
        return first;
    };
    EXPECT_EQ(row("cel").found, QString());
    ASSERT_EQ(row("cel").lit.size(), 1U);
    EXPECT_EQ(row("cel").lit[0].begin, 0);
    EXPECT_EQ(row("cel").lit[0].length, 3);
    EXPECT_EQ(row("cel").type, "vec2");
    EXPECT_EQ(row("cel").menu, "Patterns");
    EXPECT_EQ(row("cel").help, "Cells: space divided.");
    EXPECT_EQ(row("voro").found, "voronoi");
    EXPECT_EQ(row("crackl").found, "formerly Crackle");
    EXPECT_EQ(row("scatt").found, "has scatter");
    EXPECT_EQ(row("hard").found, "mode: hard");
    EXPECT_EQ(row("irregular").found, "scatter: How irregular.");
    EXPECT_EQ(row("giraffe").found, QString::fromUtf8("\u2026 with the giraffe."));
    EXPECT_EQ(row("pattern").found, QString());
}

TEST_F(SearchPopupTest, LettersOfSeveralBytesAreLitWhole) {
    library.Add("0100.Plain/0010.Caf\xC3\xA9Noise", "");
    Load();
    Show({QPoint(300, 200), "noise"});
    const SearchRow row = Model().RowAt(0);
    ASSERT_EQ(row.lit.size(), 1U);
    EXPECT_EQ(row.lit[0].begin, 4);
    EXPECT_EQ(row.lit[0].length, 5);
}

TEST_F(SearchPopupTest, ForAWireARowTellsTheButtonAndItsCast) {
    library.Add("0100.Plain/0010.Same", "input a { rgb { 0 0 0 \"%g\" } }\n");
    library.Add("0100.Plain/0020.Cast", "input b { float { 0 0 1 0 \"%g\" } rgb { 0 0 0 \"%g\" } }\n");
    library.Add("0100.Plain/0030.Other", "input c { float { 0 0 1 0 \"%g\" } }\n");
    library.Add("0100.Plain/0040.None", "output c { rgb out }\n");
    Load();
    OpenEnd end;
    end.isOutput = true;
    end.types = {"rgb"};
    Show({QPoint(300, 200), {}, end, "What takes it"});
    EXPECT_EQ(Line().placeholderText(), "What takes it");
    ASSERT_THAT(Rows(), ElementsAre("Same", "Cast", "Other"));
    EXPECT_EQ(Model().RowAt(0).type, "a");
    EXPECT_EQ(Model().RowAt(1).type, "b as rgb");
    EXPECT_EQ(Model().RowAt(2).type, "c (converted)");
    Press(Qt::Key_Down);
    Press(Qt::Key_Return);
    EXPECT_THAT(chosen, ElementsAre("Cast b"));
    Show({QPoint(300, 200), "zzz", end});
    EXPECT_EQ(Nothing(), "No operator is found that fits the wire.");
}

TEST_F(SearchPopupTest, ADefinitionThatCannotBeReadTellsWhy) {
    library.SetPreprocessor("print STDERR qq{Wrong:3: nonsense\n}; exit 1;\n");
    library.Add("0100.Plain/0010.Wrong", "input a { nonsense\n");
    Load();
    Show();
    ASSERT_THAT(Rows(), ElementsAre("Wrong"));
    EXPECT_TRUE(Model().RowAt(0).isBroken);
    EXPECT_THAT(Bytes(Help()), testing::StartsWith("Cannot be read: "));
    Press(Qt::Key_Return);
    EXPECT_THAT(chosen, ElementsAre("Wrong")) << "who puts it on the desk tells all of it";
}

TEST_F(SearchPopupTest, AMegabyteFindsNothing) {
    AddMany(3);
    Load();
    Show();
    Line().setText(QString(1 << 20, 'o'));
    EXPECT_THAT(Rows(), IsEmpty());
    EXPECT_NE(Nothing(), QString());
}

TEST_F(SearchPopupTest, TextsOfAnySizeAndKindKeepTheWindowAsItIs) {
    library.Add("0100.Plain/0010.Long", "boxhelp {\n" + std::string(20000, 'x') + "\n\xFF\xFE <b>&amp;\n}\n");
    library.Add("0100." + std::string(200, 'm') + "/0010." + std::string(200, 'n'), "");
    Load();
    Show();
    const QSize size = popup.size();
    Press(Qt::Key_Down);
    popup.grab();
    EXPECT_EQ(popup.size(), size);
    EXPECT_LE(Help().size(), 200);
    EXPECT_LE(List().sizeHintForColumn(0), List().viewport()->width());
}

// The icon lies over the colour of the box.
TEST_F(SearchPopupTest, ARowShowsTheIconOfItsOperator) {
    const auto red = test::SgiTestFile::Plain(8, 8, 3, {255, 0, 0, 255});
    library.own.directory.Write("red.sgi", red.Bytes());
    library.Add("0100.Plain/0010.A", "iconimg red.sgi\n");
    library.Add("0100.Plain/0020.B", "color 0 0 1\n");
    library.Add("0100.Plain/0030.C", "iconimg gone.sgi\ncolor 0 1 0\n");
    Load();
    Show();
    const QImage picture = List().viewport()->grab().toImage();
    const auto seen = [&](int row) {
        const QRect place = List().visualRect(List().model()->index(row, 0));
        return picture.pixel(QPoint(place.left() + 20, place.center().y()) * picture.devicePixelRatio());
    };
    EXPECT_EQ(seen(0) & RGB_MASK, qRgb(255, 0, 0) & RGB_MASK);
    EXPECT_EQ(seen(1) & RGB_MASK, qRgb(0, 0, 255) & RGB_MASK);
    EXPECT_EQ(seen(2) & RGB_MASK, qRgb(0, 255, 0) & RGB_MASK);
}

}  // namespace
}  // namespace tavrin
