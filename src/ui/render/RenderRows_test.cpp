// SPDX-License-Identifier: Apache-2.0
// What the rows of the Render History show beside their text, and what can be done with one.
#include "ui/render/RenderRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QListView>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <filesystem>
#include <set>

#include "render/RenderHistory.h"
#include "site/Commands.h"
#include "support/TestSite.h"
#include "ui/base/Text.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/render/RenderThumbnails.h"
#include "ui/support/Pictures.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::WaitUntil;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const QColor kRed(200, 30, 40);
const QColor kGreen(30, 160, 60);

class RenderRowsTest : public testing::Test {
  protected:
    RenderRowsTest() { list = window.findChild<QListView*>(); }

    // A render with its line.
    void Begin(int number, const std::string& name = "plastic") {
        RenderRecord record;
        record.number = number;
        record.name = name;
        record.started = std::chrono::system_clock::from_time_t(1'000'000'000);
        record.differs = differs;
        entries.push_front(RenderHistory::EntryText(number, record.name));
        records.Begin(record, true, number);
    }
    void End(int number, int exitCode = 0, bool wasStopped = false) {
        records.End({number, exitCode, wasStopped, false});
    }
    std::string PicturePath(int number) {
        fs::create_directories(site.site.WorkPath(std::to_string(number)));
        return site.site.WorkPath(std::to_string(number) + "/plastic.png");
    }
    void WritePicture(int number, const QColor& colour, QSize size = {640, 480}) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(colour);
        ASSERT_TRUE(picture.save(Shown(PicturePath(number)), "png"));
    }
    void Render(int number, const QColor& colour) {
        Begin(number);
        WritePicture(number, colour);
        End(number);
    }

    QModelIndex Row(int row) const { return list->model()->index(row, 0); }
    QImage Picture(int row) { return list->viewport()->grab(list->visualRect(Row(row))).toImage(); }
    // Where the picture in small stands in that.
    static QRect Cell(const QImage& row) {
        const QSize size = RenderThumbnails::kSize * row.devicePixelRatio();
        return {QPoint(int(3 * row.devicePixelRatio()), (row.height() - size.height()) / 2), size};
    }
    QImage CellOf(int row) {
        const QImage picture = Picture(row);
        return picture.copy(Cell(picture));
    }
    QColor MiddleOf(int row) {
        const QImage cell = CellOf(row);
        return cell.pixelColor(cell.rect().center());
    }
    bool Shows(int row, const QColor& colour) {
        return WaitUntil([&] { return MiddleOf(row) == colour; });
    }
    std::string TipOf(int row) {
        const QPoint at = list->visualRect(Row(row)).center();
        QHelpEvent event(QEvent::ToolTip, at, list->viewport()->mapToGlobal(at));
        QApplication::sendEvent(list->viewport(), &event);
        const std::string text = Bytes(QToolTip::text());
        QToolTip::hideText();
        return text;
    }
    QMenu* OpenMenu(int row, QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse) {
        const QPoint at = list->visualRect(Row(row)).center();
        QContextMenuEvent event(reason, at, list->viewport()->mapToGlobal(at));
        QApplication::sendEvent(reason == QContextMenuEvent::Mouse ? list->viewport() : window.focusWidget(),
                                &event);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }
    static QAction* Item(QMenu* menu, const QString& text) {
        if (menu == nullptr) return nullptr;
        for (QAction* action : menu->actions()) {
            if (action->text().remove('&') == text) return action;
        }
        return nullptr;
    }
    void Choose(QMenu* menu, const QString& text) {
        QAction* item = Item(menu, text);
        ASSERT_NE(item, nullptr) << Bytes(text);
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
        test::HandleEvents();
    }

    std::deque<std::string> entries;
    std::vector<std::string> opened;
    std::vector<int> kept;
    std::vector<int> compared;
    std::set<int> keepable{1, 2, 3};
    std::string differs;
    test::TestSite site;
    RenderRecords records{site.site};
    CRenderHistoryDlg window{nullptr,
                             {.entries = [this]() -> const std::deque<std::string>& { return entries; },
                              .open = [this](const std::string& entry) { opened.push_back(entry); },
                              .records = records,
                              .canKeep = [this](int number) { return keepable.contains(number); },
                              .keep = [this](int number) { kept.push_back(number); },
                              .compare = [this](int number) { compared.push_back(number); }}};
    QListView* list;
};

// The picture in small

TEST_F(RenderRowsTest, ThePictureStandsInItsRowWhenTheRenderHasEnded) {
    test::ShowActive(window);
    Begin(1);
    EXPECT_NE(MiddleOf(0), kRed);
    WritePicture(1, kRed);
    End(1);
    EXPECT_TRUE(Shows(0, kRed));
    Render(2, kGreen);
    EXPECT_TRUE(Shows(0, kGreen));
    EXPECT_EQ(MiddleOf(1), kRed);
}

TEST_F(RenderRowsTest, APictureIsShownWholeInItsOwnShape) {
    test::ShowActive(window);
    Begin(1);
    WritePicture(1, kRed, {300, 900});
    End(1);
    ASSERT_TRUE(Shows(0, kRed));
    const QImage cell = CellOf(0);
    const QColor ground = cell.pixelColor(2, cell.height() / 2);
    EXPECT_NE(ground, kRed);
    EXPECT_EQ(cell.pixelColor(cell.width() / 2, 3), kRed);
    EXPECT_EQ(cell.pixelColor(cell.width() - 3, cell.height() / 2), ground);
}

TEST_F(RenderRowsTest, WhatIsNoPictureShowsNoneAndSaysNothing) {
    test::ShowActive(window);
    Begin(1);
    End(1);
    const QImage none = CellOf(0);
    Begin(2);
    site.directory.Write(fs::relative(PicturePath(2), site.directory.Path()).string(), "no picture");
    End(2);
    Begin(3);
    WritePicture(3, kRed);
    fs::resize_file(PicturePath(3), fs::file_size(PicturePath(3)) / 2);
    End(3);
    Begin(4);
    WritePicture(4, kRed);
    End(4);
    fs::remove(PicturePath(4));
    test::HandleEvents();
    Render(5, kGreen);
    ASSERT_TRUE(Shows(0, kGreen)) << "they are read in turn";
    for (int row = 1; row <= 3; ++row) EXPECT_EQ(CellOf(row), none) << row;
    EXPECT_EQ(site.sink.log, "");
    EXPECT_THAT(site.sink.alerts, IsEmpty());
}

TEST_F(RenderRowsTest, APictureThatIsAnotherMeanwhileIsReadAgainWhenTheWindowComesUp) {
    test::ShowActive(window);
    Render(1, kRed);
    Render(2, kRed);
    ASSERT_TRUE(Shows(0, kRed));
    ASSERT_TRUE(Shows(1, kRed));
    window.hide();
    WritePicture(1, kGreen, {320, 240});
    fs::remove(PicturePath(2));
    test::ShowActive(window);
    EXPECT_TRUE(Shows(1, kGreen));
    EXPECT_NE(MiddleOf(0), kRed);
}

// The state

TEST_F(RenderRowsTest, EachStateLooksItAlsoWithoutColour) {
    test::ShowActive(window);
    std::vector<std::pair<std::string, QImage>> looks;
    const auto look = [&](const std::string& name) {
        looks.emplace_back(name, CellOf(0).convertToFormat(QImage::Format_Grayscale8));
    };
    Begin(1);
    look("running");
    End(1);
    look("done");
    Begin(2);
    End(2, 3);
    look("failed");
    Begin(3);
    End(3, 9, true);
    look("stopped");
    for (size_t i = 0; i < looks.size(); ++i) {
        for (size_t k = 0; k < i; ++k) {
            const int apart =
                test::CountDifferences(looks[i].second.convertToFormat(QImage::Format_RGB32),
                                       looks[k].second.convertToFormat(QImage::Format_RGB32), 30);
            EXPECT_GT(apart, 20) << looks[i].first << " and " << looks[k].first;
        }
    }
}

TEST_F(RenderRowsTest, APictureOfARenderThatFailedCarriesTheSign) {
    test::ShowActive(window);
    Render(1, kRed);
    Begin(2);
    WritePicture(2, kRed);
    End(2, 3);
    Begin(3);
    WritePicture(3, kRed);
    End(3, 9, true);
    for (int row = 0; row < 3; ++row) ASSERT_TRUE(Shows(row, kRed));
    EXPECT_GT(test::CountDifferences(CellOf(1), CellOf(2), 30), 20) << "failed and done";
    EXPECT_GT(test::CountDifferences(CellOf(0), CellOf(2), 30), 20) << "stopped and done";
    EXPECT_GT(test::CountDifferences(CellOf(0), CellOf(1), 30), 20) << "stopped and failed";
}

TEST_F(RenderRowsTest, TheTextOfARowStaysTheLineOfTheHistory) {
    test::ShowActive(window);
    Render(1, kRed);
    EXPECT_EQ(Bytes(Row(0).data().toString()), "01 plastic");
    Begin(12);
    End(12, 1);
    list->setFocus();
    QTest::keyClicks(list, "01");
    EXPECT_EQ(list->currentIndex(), Row(1));
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_THAT(opened, ElementsAre("01 plastic"));
}

TEST_F(RenderRowsTest, WordOfOneRenderDisturbsNoOtherRow) {
    test::ShowActive(window);
    Begin(1);
    Begin(2);
    const QPersistentModelIndex row = Row(1);
    End(2);
    EXPECT_TRUE(row.isValid());
    End(1);
    EXPECT_TRUE(row.isValid());
    Begin(3);
    EXPECT_THAT(Bytes(Row(2).data().toString()), "01 plastic");
}

TEST_F(RenderRowsTest, AHundredRowsAreAllReached) {
    for (int number = 1; number <= 100; ++number) Render(number, number == 1 ? kGreen : kRed);
    test::ShowActive(window);
    ASSERT_TRUE(Shows(0, kRed));
    list->setFocus();
    QTest::keyClick(list, Qt::Key_End);
    test::HandleEvents();
    EXPECT_TRUE(list->viewport()->rect().contains(list->visualRect(Row(99))));
    list->clearSelection();
    EXPECT_TRUE(Shows(99, kGreen));
    for (int row = 0; row < 100; ++row) {
        EXPECT_EQ(list->visualRect(Row(row)).height(), list->visualRect(Row(0)).height());
        EXPECT_EQ(list->visualRect(Row(row)).width(), list->viewport()->width());
    }
}

TEST_F(RenderRowsTest, ASelectedRowShowsItInAllPalettes) {
    test::ShowActive(window);
    Begin(1);
    End(1, 3);
    Begin(2);
    End(2, 3);
    const QImage plain = Picture(0);
    list->setCurrentIndex(Row(0));
    EXPECT_LT(Picture(0).pixelColor(plain.width() - 2, 2).lightness(), 100);
    EXPECT_EQ(Picture(1).pixelColor(plain.width() - 2, 2), QColor(190, 190, 210));
    QPalette dark(QColor(30, 30, 30));
    dark.setColor(QPalette::Base, Qt::black);
    window.setPalette(dark);
    test::HandleEvents();
    EXPECT_EQ(Picture(1).pixelColor(plain.width() - 2, 2), QColor(190, 190, 210));
}

// The tool tip

TEST_F(RenderRowsTest, TheToolTipTellsAllThatIsKnown) {
    test::ShowActive(window);
    differs = "Noise_3 scale 4 -> 6.5, +2";
    Begin(1);
    EXPECT_THAT(TipOf(0), AllOf(HasSubstr("Render 1 of plastic\nStarted at "), HasSubstr(", is running"),
                                HasSubstr("\nDiffers from the one before: Noise_3 scale 4 -> 6.5, +2"),
                                Not(HasSubstr("Picture"))));
    WritePicture(1, kRed);
    End(1);
    EXPECT_THAT(TipOf(0), AllOf(HasSubstr(", took 0.0 s"), HasSubstr("\nPicture: " + PicturePath(1)),
                                Not(HasSubstr("Kept"))));
    records.NoteKept(1, "/home/me/plastic-1.tvn");
    EXPECT_THAT(TipOf(0), HasSubstr("\nKept as /home/me/plastic-1.tvn"));
    differs.clear();
    Begin(2);
    End(2, 3);
    EXPECT_THAT(TipOf(0), AllOf(HasSubstr(", failed after 0.0 s (status 3)"), Not(HasSubstr("Differs"))));
    Begin(3);
    End(3, 9, true);
    EXPECT_THAT(TipOf(0), HasSubstr(", was stopped after 0.0 s"));
}

TEST_F(RenderRowsTest, WhatAScreenReaderSaysIsTheSame) {
    Begin(1);
    End(1, 3);
    EXPECT_THAT(Bytes(Row(0).data(Qt::AccessibleDescriptionRole).toString()), HasSubstr("failed after"));
    EXPECT_EQ(Bytes(Row(0).data(Qt::AccessibleTextRole).toString()), "");
}

TEST_F(RenderRowsTest, MarksInANameAreShownAsTheyAre) {
    test::ShowActive(window);
    Begin(1, "<b>bold</b>");
    EXPECT_THAT(TipOf(0), AllOf(HasSubstr("&lt;b&gt;bold&lt;/b&gt;"), Not(HasSubstr("<b>"))));
}

// What can be done with a row

TEST_F(RenderRowsTest, TheMenuOpensKeepsAndComparesTheRenderUnderTheMouse) {
    test::ShowActive(window);
    for (int number = 1; number <= 2; ++number) Render(number, kRed);
    Choose(OpenMenu(1), "Keep Render");
    EXPECT_THAT(kept, ElementsAre(1));
    EXPECT_EQ(list->currentIndex(), Row(1)) << "it is the selected one now";
    Choose(OpenMenu(0), "Open");
    EXPECT_THAT(opened, ElementsAre("02 plastic"));
    Choose(OpenMenu(0), "Compare with Desk");
    EXPECT_THAT(compared, ElementsAre(2));
}

TEST_F(RenderRowsTest, WhatCannotBeKeptIsNotOffered) {
    test::ShowActive(window);
    Render(7, kRed);
    QMenu* menu = OpenMenu(0);
    ASSERT_NE(Item(menu, "Keep Render"), nullptr);
    EXPECT_FALSE(Item(menu, "Keep Render")->isEnabled());
    Choose(menu, "Keep Render");
    EXPECT_THAT(kept, IsEmpty());
    menu->close();
}

TEST_F(RenderRowsTest, TheMenuKeyOpensTheMenuOfTheSelectedRow) {
    test::ShowActive(window);
    for (int number = 1; number <= 3; ++number) Render(number, kRed);
    list->setFocus();
    list->clearSelection();
    EXPECT_EQ(OpenMenu(0, QContextMenuEvent::Keyboard), nullptr) << "no row is selected";
    list->setCurrentIndex(Row(1));
    Choose(OpenMenu(0, QContextMenuEvent::Keyboard), "Keep Render");
    EXPECT_THAT(kept, ElementsAre(2));
}

TEST_F(RenderRowsTest, BesideTheRowsThereIsNoMenu) {
    test::ShowActive(window);
    Render(1, kRed);
    const QPoint at = list->viewport()->rect().bottomRight() - QPoint(2, 2);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, list->viewport()->mapToGlobal(at));
    QApplication::sendEvent(list->viewport(), &event);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

// Selecting by number

TEST_F(RenderRowsTest, ARenderIsSelectedByItsNumberAndBroughtIntoView) {
    for (int number = 1; number <= 50; ++number) Begin(number);
    test::ShowActive(window);
    EXPECT_EQ(window.CurrentRender(), std::nullopt);
    window.SelectRender(2);
    EXPECT_EQ(window.CurrentRender(), 2);
    EXPECT_TRUE(list->viewport()->rect().contains(list->visualRect(Row(48))));
    window.SelectRender(77);
    EXPECT_EQ(window.CurrentRender(), 2);
    window.hide();
    EXPECT_EQ(window.CurrentRender(), std::nullopt) << "nobody sees it";
}

}  // namespace
}  // namespace tavrin
