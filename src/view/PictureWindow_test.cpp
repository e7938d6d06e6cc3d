// SPDX-License-Identifier: Apache-2.0
#include "view/PictureWindow.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QSettings>
#include <QSplitter>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <filesystem>

#include "ui/support/Windows.h"
#include "view/PictureStrip.h"
#include "view/SaveCopy.h"
#include "view/StatusLine.h"
#include "view/ViewTest.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using EntryState = PictureEntry::State;
using Mode = PictureCanvas::Mode;
using test::Encoded;
using test::Noise;
using test::Plain;
using test::ReadFile;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PictureWindowTest : public testing::Test {
  protected:
    PictureWindowTest() {
        window.DeskCame("/desk");
        window.resize(500, 700);
        test::ShowActive(window);
    }
    ~PictureWindowTest() override {
        window.hide();
        test::HandleEvents();
    }

    static PictureMessage Render(int number, const std::string& state = "done") {
        return PictureMessage("render")
            .Set("desk", "/desk")
            .Set("number", number)
            .Set("name", "ball")
            .Set("state", state)
            .Set("started", int64_t{60000} * number);
    }
    static PictureMessage Live(int id, const std::string& file) {
        return PictureMessage("live").Set("desk", "/desk").Set("id", id).Set("file", file).Set("final", 1);
    }
    std::string Write(const std::string& name, const QImage& image) {
        return directory.Write(name, Encoded(image));
    }
    // A picture of its own colour, which is whole once this returns.
    PictureEntry* Add(int number, QSize size = {60, 40}) {
        const std::string file =
            Write(std::to_string(number) + ".png", Plain(size.width(), size.height(), Colour(number)));
        window.Take(Render(number).Set("file", file));
        EXPECT_TRUE(WaitUntil(
            [&] { return Entry(number)->picture != nullptr && Entry(number)->reading == nullptr; }));
        return Entry(number);
    }
    static QRgb Colour(int number) { return qRgb(number, 2 * number, 100); }
    PictureEntry* Entry(int number) { return window.Book().Find("/desk", number); }
    QWidget& Strip() { return *window.findChild<PictureStrip*>()->viewport(); }
    QPoint PlaceOf(const PictureEntry* entry) {
        const auto* strip = window.findChild<PictureStrip*>();
        const auto& all = window.Book().Entries();
        for (size_t row = 0; row < all.size(); ++row)
            if (all[row].get() == entry)
                return strip->visualRect(strip->model()->index(int(row), 0)).center();
        ADD_FAILURE() << "no such row";
        return {};
    }
    void Click(const PictureEntry* entry, Qt::KeyboardModifiers keys = {}) {
        QTest::mouseClick(&Strip(), Qt::LeftButton, keys, PlaceOf(entry));
    }
    QAction& Action(const QString& name) {
        for (QAction* action : window.actions())
            if (action->text() == name) return *action;
        ADD_FAILURE() << name.toStdString();
        static QAction none;
        return none;
    }
    // By the mouse, on its button.
    void Press(const QString& name) {
        auto* button =
            qobject_cast<QToolButton*>(window.findChild<QToolBar*>("bar")->widgetForAction(&Action(name)));
        ASSERT_NE(button, nullptr);
        QTest::mouseClick(button, Qt::LeftButton);
    }
    QRgb SeenAt(QPoint pixel) {
        test::HandleEvents();
        QImage seen = window.Canvas().grab().toImage();
        seen.setDevicePixelRatio(1);
        const QPointF at = window.Canvas().Place().ToCanvas(QPointF(pixel) + QPointF(0.5, 0.5));
        return seen.pixel(static_cast<int>(at.x()), static_cast<int>(at.y())) | 0xff000000;
    }
    std::string Label(const char* name) { return window.findChild<QLabel*>(name)->text().toStdString(); }
    std::vector<std::string> Told() { return std::exchange(told, {}); }

    test::TempDir directory;
    QSettings settings{QString::fromStdString(directory / "it.ini"), QSettings::IniFormat};
    std::vector<std::string> told;
    PictureWindow window{settings, [this](const std::string& desk, const PictureMessage& message) {
                             told.push_back(desk + " " + message.Line().substr(0, message.Line().size() - 1));
                         }};
};

TEST_F(PictureWindowTest, ARenderThatComesIsShown) {
    EXPECT_EQ(window.windowTitle(), "Pictures");
    Add(1);
    EXPECT_EQ(window.Shown(), Entry(1));
    EXPECT_EQ(SeenAt({30, 20}), Colour(1));
    Add(2);
    EXPECT_EQ(window.Shown(), Entry(2));
    EXPECT_EQ(SeenAt({30, 20}), Colour(2));
    window.Take(Render(1).Set("differs", "told again"));
    EXPECT_EQ(window.Shown(), Entry(2)) << "an older one that is told of is no new one";
}

TEST_F(PictureWindowTest, UntilARenderHasRowsTheOneBeforeIsSeen) {
    Add(1);
    window.Take(Render(2, "running").Set("file", directory / "2.png"));
    EXPECT_EQ(window.Shown(), Entry(2));
    EXPECT_EQ(SeenAt({30, 20}), Colour(1));
    window.Take(Render(2, "failed").Set("text", "status 1"));
    EXPECT_NE(SeenAt({30, 20}), Colour(1)) << "but not for one that has failed";
    EXPECT_EQ(SecondLineOf(*Entry(2)), "failed: status 1");
}

TEST_F(PictureWindowTest, AClickShowsARenderAndTellsTheDesk) {
    Add(1);
    Add(2);
    Click(Entry(1));
    EXPECT_EQ(window.Shown(), Entry(1));
    EXPECT_EQ(SeenAt({30, 20}), Colour(1));
    EXPECT_THAT(Told(), ElementsAre("/desk select number=1"));
    QTest::keyClick(window.findChild<PictureStrip*>(), Qt::Key_Up);
    EXPECT_EQ(window.Shown(), Entry(2));
    EXPECT_THAT(Told(), ElementsAre("/desk select number=2"));
    QTest::keyClick(window.findChild<PictureStrip*>(), Qt::Key_Up);
    EXPECT_THAT(Told(), IsEmpty()) << "there is none above";
}

TEST_F(PictureWindowTest, ADoubleClickRestores) {
    Add(1);
    Add(2);
    QTest::mouseDClick(&Strip(), Qt::LeftButton, {}, PlaceOf(Entry(1)));
    EXPECT_THAT(Told(), ElementsAre("/desk restore number=1"));
}

TEST_F(PictureWindowTest, KeepIsForRendersWhoseDeskIsThere) {
    Add(1);
    EXPECT_TRUE(Action("Keep with the document").isEnabled());
    Press("Keep with the document");
    EXPECT_THAT(Told(), ElementsAre("/desk keep number=1"));
    window.DeskWent("/desk");
    EXPECT_FALSE(Action("Keep with the document").isEnabled());
    EXPECT_EQ(SeenAt({30, 20}), Colour(1)) << "its picture stays";
    Click(Entry(1));
    QTest::mouseDClick(&Strip(), Qt::LeftButton, {}, PlaceOf(Entry(1)));
    EXPECT_THAT(Told(), IsEmpty());
    window.DeskCame("/desk");
    EXPECT_TRUE(Action("Keep with the document").isEnabled());
    window.Take(Render(2, "failed"));
    EXPECT_EQ(window.Shown(), Entry(2));
    EXPECT_FALSE(Action("Keep with the document").isEnabled()) << "a failed one is not kept";
}

TEST_F(PictureWindowTest, AClickWithControlComparesByTheWipe) {
    Add(1);
    Add(2);
    Add(3);
    Click(Entry(1), Qt::ControlModifier);
    EXPECT_EQ(window.Compared(), Entry(1));
    EXPECT_EQ(window.Canvas().ModeShown(), Mode::kWipe);
    EXPECT_THAT(Told(), IsEmpty());
    window.Canvas().SetWipe(0);
    EXPECT_EQ(SeenAt({30, 35}), Colour(1));
    window.Canvas().SetWipe(1);
    EXPECT_EQ(SeenAt({30, 35}), Colour(3));
    Click(Entry(2));
    EXPECT_EQ(window.Shown(), Entry(2));
    EXPECT_EQ(window.Compared(), Entry(1));
    Click(Entry(1), Qt::ControlModifier);
    EXPECT_EQ(window.Compared(), nullptr) << "once more ends it";
    EXPECT_EQ(window.Canvas().ModeShown(), Mode::kSingle);
    Click(Entry(2), Qt::ControlModifier);
    EXPECT_EQ(window.Compared(), nullptr) << "not with itself";
}

TEST_F(PictureWindowTest, ComparingTakesTheRenderBeforeUnlessAnotherWasChosen) {
    Add(1);
    Add(2);
    Add(3);
    Click(Entry(2));
    Press("Compare: difference");
    EXPECT_EQ(window.Compared(), Entry(1));
    EXPECT_EQ(window.Canvas().ModeShown(), Mode::kDifference);
    EXPECT_EQ(SeenAt({30, 35}), qRgb(1, 2, 0));
    EXPECT_EQ(Label("figures2"), "max 2  mean 1.000");
    auto* gain = window.findChild<QComboBox*>("gain");
    EXPECT_TRUE(gain->isVisible());
    gain->setCurrentIndex(gain->findData(16));
    EXPECT_EQ(SeenAt({30, 35}), qRgb(16, 32, 0));
    EXPECT_EQ(Label("figures2"), "max 2  mean 1.000") << "told without the gain";
    Press("Compare: wipe");
    EXPECT_EQ(window.Canvas().ModeShown(), Mode::kWipe);
    EXPECT_TRUE(WaitUntil([&] { return !gain->isVisible(); }));
    Press("One picture");
    EXPECT_EQ(window.Canvas().ModeShown(), Mode::kSingle);
}

TEST_F(PictureWindowTest, TheToggleIsAKeyAndAButton) {
    Add(1);
    Add(2);
    test::GiveFocus(window.Canvas());
    QTest::keyClick(&window.Canvas(), Qt::Key_Space);
    EXPECT_EQ(window.Canvas().ModeShown(), Mode::kToggle);
    EXPECT_EQ(SeenAt({30, 35}), Colour(1)) << "the other one at once";
    QTest::keyClick(&window.Canvas(), Qt::Key_Space);
    EXPECT_EQ(SeenAt({30, 35}), Colour(2));
    Press("Compare: one, then the other");
    EXPECT_EQ(SeenAt({30, 35}), Colour(1));
    Press("Compare: one, then the other");
    EXPECT_EQ(SeenAt({30, 35}), Colour(2));
}

TEST_F(PictureWindowTest, DifferentSizesAreTold) {
    Add(1, {30, 20});
    Add(2, {60, 40});
    Press("Compare: wipe");
    EXPECT_EQ(Label("values2"), "A is 60 x 40, B is 30 x 20: compared from the top left corner");
    EXPECT_EQ(window.Shown(), Entry(2));
}

TEST_F(PictureWindowTest, TheStatusLineTellsThePixelTheSizeAndTheZoom) {
    Add(1);
    EXPECT_THAT(Label("figures1"), HasSubstr("60 x 40"));
    EXPECT_THAT(Label("figures1"), HasSubstr(" %"));
    const QPointF at = window.Canvas().Place().ToCanvas({12.5, 7.5}) / window.devicePixelRatioF();
    ASSERT_TRUE(test::HoverUntil(window.Canvas(), at.toPoint(),
                                 [&] { return window.Canvas().UnderPointer().has_value(); }));
    EXPECT_EQ(Label("values1"), "12, 7    R 1  G 2  B 100   0.004 0.008 0.392");
}

TEST(PictureTexts, PixelsAreToldAsNumbersOf255AndOfOne) {
    EXPECT_EQ(PixelText(qRgb(0, 128, 255)), "R 0  G 128  B 255   0.000 0.502 1.000");
    EXPECT_EQ(PixelText(qRgba(10, 20, 30, 51)), "R 10  G 20  B 30  A 51   0.039 0.078 0.118 0.200");
    EXPECT_EQ(ZoomText(1), "100 %");
    EXPECT_EQ(ZoomText(0.0625), "6.3 %");
    EXPECT_EQ(MissingText({5, 5}, {5, 5}), "");
}

TEST_F(PictureWindowTest, TheDeskAsksToCompareTwo) {
    Add(1);
    Add(2);
    Add(3);
    window.Take(PictureMessage("compare").Set("desk", "/desk").Set("first", 1).Set("second", 2));
    EXPECT_EQ(window.Shown(), Entry(1));
    EXPECT_EQ(window.Compared(), Entry(2));
    EXPECT_EQ(window.Canvas().ModeShown(), Mode::kWipe);
    for (const auto& [first, second] : {std::pair(1, 1), std::pair(1, 9), std::pair(0, 2), std::pair(-1, 2)})
        window.Take(PictureMessage("compare").Set("desk", "/desk").Set("first", first).Set("second", second));
    EXPECT_EQ(window.Compared(), Entry(2)) << "two that are there";
}

TEST_F(PictureWindowTest, APictureToCompareWithIsTheSecond) {
    Add(1);
    window.Take(PictureMessage("render")
                    .Set("desk", "/desk")
                    .Set("number", 0)
                    .Set("name", "photo.png")
                    .Set("state", "done")
                    .Set("file", Write("photo.png", Plain(60, 40, qRgb(9, 9, 9)))));
    EXPECT_EQ(window.Shown(), Entry(1));
    ASSERT_NE(window.Compared(), nullptr);
    EXPECT_EQ(window.Compared()->Title(), "photo.png");
    EXPECT_EQ(window.Canvas().ModeShown(), Mode::kSingle) << "until the user compares";
    ASSERT_TRUE(WaitUntil([&] { return window.Compared()->picture != nullptr; }));
    Press("Compare: wipe");
    window.Canvas().SetWipe(0);
    EXPECT_EQ(SeenAt({30, 35}), qRgb(9, 9, 9));
}

TEST_F(PictureWindowTest, TheLivePictureIsShownAsItChangesAndTold) {
    Add(1);
    window.Take(Live(7, Write("l7.png", Plain(60, 40, qRgb(70, 0, 0)))));
    EXPECT_EQ(window.Shown()->Title(), "Live");
    ASSERT_TRUE(WaitUntil([&] { return !told.empty(); }));
    EXPECT_THAT(Told(), ElementsAre("/desk shown id=7"));
    EXPECT_EQ(SeenAt({30, 20}), qRgb(70, 0, 0));
    window.Take(Live(8, Write("l8.png", Plain(60, 40, qRgb(80, 0, 0)))));
    ASSERT_TRUE(WaitUntil([&] { return !told.empty(); }));
    EXPECT_THAT(Told(), ElementsAre("/desk shown id=8"));
    EXPECT_EQ(SeenAt({30, 20}), qRgb(80, 0, 0));
    window.Take(PictureMessage("trouble").Set("desk", "/desk").Set("text", "it hangs"));
    EXPECT_EQ(Label("trouble"), "it hangs");
    EXPECT_EQ(SeenAt({30, 5}), qRgb(80, 0, 0)) << "the last good one stays";
    window.Take(PictureMessage("endlive").Set("desk", "/desk"));
    EXPECT_EQ(window.Shown(), Entry(1));
}

TEST_F(PictureWindowTest, ARenderIsShownOverLiveUntilTheNextLivePicture) {
    window.Take(Live(1, Write("l1.png", Plain(60, 40, qRgb(70, 0, 0)))));
    ASSERT_TRUE(WaitUntil([&] { return !told.empty(); }));
    Add(1);
    EXPECT_EQ(window.Shown(), Entry(1));
    window.Take(Live(2, Write("l2.png", Plain(60, 40, qRgb(80, 0, 0)))));
    ASSERT_TRUE(WaitUntil([&] { return window.Shown()->Title() == "Live"; }));
    Add(2);
    Click(Entry(1));
    window.Take(Live(3, Write("l3.png", Plain(60, 40, qRgb(90, 0, 0)))));
    ASSERT_TRUE(WaitUntil([&] { return window.Book().FindLive("/desk")->id == 3; }));
    EXPECT_EQ(window.Shown(), Entry(1)) << "who has chosen one looks at that";
}

TEST_F(PictureWindowTest, ACopyIsTheFileByteForByte) {
    const PictureEntry* entry = Add(1);
    std::string error;
    EXPECT_TRUE(SaveCopy(*entry, directory / "copy.PNG", error)) << error;
    EXPECT_EQ(ReadFile(directory / "copy.PNG"), ReadFile(entry->file));
    EXPECT_TRUE(SaveCopy(*entry, directory / "copy.jpg", error)) << error;
    EXPECT_EQ(QImage(QString::fromStdString(directory / "copy.jpg.png")).pixel(3, 3), Colour(1));
    EXPECT_FALSE(fs::exists(directory / "copy.jpg")) << "no file has the name of another kind";
    fs::remove(entry->file);
    EXPECT_TRUE(SaveCopy(*entry, directory / "later.png", error)) << error;
    EXPECT_EQ(QImage(QString::fromStdString(directory / "later.png")).pixel(3, 3), Colour(1));
    EXPECT_FALSE(SaveCopy(*entry, directory / "none/later.png", error));
    EXPECT_NE(error, "");
    PictureEntry gone;
    gone.file = directory / "gone.png";
    EXPECT_FALSE(SaveCopy(gone, directory / "it.png", error));
    EXPECT_THAT(error, HasSubstr("gone.png"));
    EXPECT_EQ(CopyName(*entry), "ball-1.png");
    gone.name = "../odd";
    gone.kind = PictureEntry::Kind::kReference;
    EXPECT_EQ(CopyName(gone), "odd.png");
    gone.file.clear();
    gone.name.clear();
    EXPECT_EQ(CopyName(gone), "picture.png");
}

TEST_F(PictureWindowTest, SaveAsksWhereTo) {
    Add(1);
    test::ChooseFileWhenDialogComes(directory / "saved.png");
    Press("Save a copy");
    EXPECT_EQ(ReadFile(directory / "saved.png"), ReadFile(Entry(1)->file));
    test::ChooseFileWhenDialogComes(directory / "1.png/saved.png");
    test::PressWhenBoxComes("OK");
    Press("Save a copy");
    ASSERT_EQ(test::BoxesShown().size(), 1);
    EXPECT_THAT(test::BoxesShown()[0].toStdString(), HasSubstr("cannot save "));
}

TEST_F(PictureWindowTest, CopyPutsThePictureOnTheClipboard) {
    EXPECT_FALSE(Action("Copy").isEnabled());
    Add(1);
    Press("Copy");
    EXPECT_EQ(QApplication::clipboard()->image().pixel(5, 5), Colour(1));
    QApplication::clipboard()->clear();
}

TEST_F(PictureWindowTest, TheMenuOfALineHasItsCommands) {
    Add(1);
    Add(2);
    QStringList items;
    QTimer::singleShot(0, &window, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions())
            items << action->text().remove('&') + (action->isEnabled() ? "" : " -");
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions()[1]).center());
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, PlaceOf(Entry(1)),
                            Strip().mapToGlobal(PlaceOf(Entry(1))));
    QApplication::sendEvent(&Strip(), &event);
    EXPECT_EQ(items.join('|').toStdString(), "Compare with This|Restore|Keep|Save a Copy...");
    EXPECT_THAT(Told(), ElementsAre("/desk restore number=1"));
}

TEST_F(PictureWindowTest, AnEntryTellsWhatIsKnownOfIt) {
    PictureEntry* entry = Add(12);
    window.Take(Render(12).Set("differs", "Noise_3 scale 2 -> <b>5").Set("duration", 65000));
    EXPECT_EQ(SecondLineOf(*entry), "Noise_3 scale 2 -> <b>5");
    const std::string tip = TipOf(*entry).toStdString();
    EXPECT_THAT(tip, HasSubstr("12 ball\n"));
    EXPECT_THAT(tip, HasSubstr("1:05 min"));
    EXPECT_THAT(tip, HasSubstr("60 x 40"));
    EXPECT_THAT(tip, HasSubstr("Noise_3"));
    const auto* model = window.findChild<PictureStrip*>()->model();
    EXPECT_THAT(model->data(model->index(0, 0), Qt::ToolTipRole).toString().toStdString(),
                HasSubstr("&lt;b&gt;"));
    window.Take(Render(13, "running"));
    EXPECT_EQ(SecondLineOf(*Entry(13)), "rendering");
    window.Take(Render(13, "stopped"));
    EXPECT_EQ(SecondLineOf(*Entry(13)), "stopped");
}

TEST_F(PictureWindowTest, AFailedLineLooksFailed) {
    const auto redPixels = [&](const PictureEntry* entry) {
        test::HandleEvents();
        const QImage seen = Strip().grab().toImage();
        const double ratio = seen.devicePixelRatio();
        int red = 0;
        const QPoint middle = PlaceOf(entry) * ratio;
        for (int y = middle.y() - 25; y < middle.y() + 25; ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                const QColor colour(seen.pixel(x, y));
                red += colour.red() > colour.green() + 90 && colour.red() > colour.blue() + 90 ? 1 : 0;
            }
        }
        return red;
    };
    Add(1);
    window.Take(Render(2, "failed").Set("text", "status 1"));
    Click(Entry(1));
    EXPECT_GT(redPixels(Entry(2)), 40);
    EXPECT_EQ(redPixels(Entry(1)), 0);
}

TEST_F(PictureWindowTest, WhatIsForgottenIsShownNoMore) {
    Add(1);
    Add(2);
    Click(Entry(1), Qt::ControlModifier);
    window.Take(PictureMessage("forget").Set("desk", "/desk").Set("number", 2));
    EXPECT_EQ(window.Shown(), Entry(1));
    window.Take(PictureMessage("forget").Set("desk", "/desk").Set("number", 1));
    EXPECT_EQ(window.Shown(), nullptr);
    EXPECT_EQ(window.Compared(), nullptr);
    SeenAt({0, 0});
    for (const char* name : {"Save a copy", "Copy", "Keep with the document"})
        EXPECT_FALSE(Action(name).isEnabled()) << name;
}

TEST_F(PictureWindowTest, KeysZoom) {
    Add(1, {2000, 1500});
    test::GiveFocus(window.Canvas());
    QTest::keyClick(&window.Canvas(), Qt::Key_1);
    EXPECT_EQ(window.Canvas().Zoom(), 1);
    QTest::keyClick(&window.Canvas(), Qt::Key_Plus);
    QTest::keyClick(&window.Canvas(), Qt::Key_Plus);
    EXPECT_EQ(window.Canvas().Zoom(), 2);
    QTest::keyClick(&window.Canvas(), Qt::Key_Minus);
    EXPECT_LT(window.Canvas().Zoom(), 2);
    QTest::keyClick(&window.Canvas(), Qt::Key_F);
    EXPECT_TRUE(window.Canvas().IsFitted());
}

TEST_F(PictureWindowTest, TheStripStandsWhereThereIsRoom) {
    const auto* splitter = window.findChild<QSplitter*>();
    EXPECT_EQ(splitter->orientation(), Qt::Vertical);
    window.resize(1000, 500);
    EXPECT_TRUE(WaitUntil([&] { return splitter->orientation() == Qt::Horizontal; }));
}

TEST_F(PictureWindowTest, AMessageOfAnybodyBreaksNothing) {
    for (const char* line :
         {"frame desk=a", "frame desk=a x=1 y=1 w=99999999999 h=-5", "compare", "compare first=x second=y",
          "odd", "render number=3 file=/dev/zero state=done desk=/desk name=%FF%00", "live file=/ desk=/desk",
          "forget", "trouble text=%FF", "trouble desk=/desk text=x"}) {
        const auto message = PictureMessage::Parse(line);
        ASSERT_TRUE(message) << line;
        window.Take(*message);
        test::HandleEvents();
    }
    EXPECT_TRUE(window.isVisible());
}

TEST_F(PictureWindowTest, ItComesUpWhereItWasMinimized) {
    window.showMinimized();
    window.Take(PictureMessage("comeup").Set("desk", "/desk"));
    EXPECT_TRUE(WaitUntil([&] { return window.isVisible() && !window.isMinimized(); }));
    window.Take(PictureMessage("close"));
    EXPECT_FALSE(window.isVisible());
}

TEST_F(PictureWindowTest, ItIsShownWhereADeskStandsOrAfterAWhile) {
    window.hide();
    bool isGivenUp = false;
    const auto giveUp = [&] { isGivenUp = true; };
    window.ShowInPlace(std::chrono::hours(1), giveUp);
    EXPECT_FALSE(window.isVisible());
    window.Take(
        PictureMessage("frame").Set("desk", "/desk").Set("x", 50).Set("y", 60).Set("w", 500).Set("h", 400));
    ASSERT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    EXPECT_TRUE(WaitUntil([&] { return window.frameGeometry().topLeft() == QPoint(550, 60); }));
    window.hide();
    window.ShowInPlace(std::chrono::milliseconds(1), giveUp);
    EXPECT_TRUE(WaitUntil([&] { return window.isVisible(); }));
    window.hide();
    window.ShowInPlace(std::chrono::hours(1), giveUp);
    EXPECT_FALSE(isGivenUp);
    window.Take(PictureMessage("close"));
    EXPECT_TRUE(isGivenUp) << "before it came";
    EXPECT_FALSE(window.isVisible());
}

TEST_F(PictureWindowTest, ItDoesNotTakeTheFocus) {
    window.hide();
    QWidget other;
    test::ShowActive(other);
    window.show();
    ASSERT_TRUE(test::WaitUntilSeen(window));
    Add(1);
    window.Take(PictureMessage("comeup").Set("desk", "/desk"));
    test::HandleEvents();
    EXPECT_TRUE(other.isActiveWindow());
    EXPECT_FALSE(window.isActiveWindow());
}

}  // namespace
}  // namespace tavrin
