// SPDX-License-Identifier: Apache-2.0
#include "ui/render/RenderHistoryDlg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QListView>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include "render/RenderHistory.h"
#include "support/TestSite.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using testing::ElementsAre;

class RenderHistoryDlg : public testing::Test {
  protected:
    RenderHistoryDlg() { list = window.findChild<QListView*>(); }

    void Add(int number, const std::string& name) {
        entries.push_front(RenderHistory::EntryText(number, name));
        window.Refresh();
    }
    std::vector<std::string> Rows() const {
        std::vector<std::string> rows;
        for (int row = 0; row < list->model()->rowCount(); ++row) rows.push_back(TextAt(Row(row)));
        return rows;
    }
    std::string CurrentRow() const {
        return list->currentIndex().isValid() ? TextAt(list->currentIndex()) : "none";
    }
    QModelIndex Row(int row) const { return list->model()->index(row, 0); }
    static std::string TextAt(const QModelIndex& index) { return index.data().toString().toStdString(); }
    QPoint At(int row) const { return list->visualRect(Row(row)).center(); }
    void Click(int row) { QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, At(row)); }
    void DoubleClick(QPoint place) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
    }
    void Turn(int eighths) {
        const QPointF place(5, 5);
        QWheelEvent event(place, list->viewport()->mapToGlobal(place), {}, {0, eighths}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(list->viewport(), &event);
    }

    std::deque<std::string> entries;
    std::vector<std::string> opened;
    std::vector<int> kept;
    bool canKeep = true;
    test::TestSite site;
    RenderRecords records{site.site};
    CRenderHistoryDlg window{nullptr,
                             {.entries = [this]() -> const std::deque<std::string>& { return entries; },
                              .open = [this](const std::string& entry) { opened.push_back(entry); },
                              .records = records,
                              .canKeep = [this](int) { return canKeep; },
                              .keep = [this](int number) { kept.push_back(number); }}};
    QListView* list;
};

TEST_F(RenderHistoryDlg, ShowsTheEntriesNewestFirst) {
    EXPECT_EQ(window.windowTitle(), "Render History [F6]");
    Add(7, "plastic");
    Add(123, "plastic");
    EXPECT_THAT(Rows(), ElementsAre("123 plastic", "07 plastic"));
}

TEST_F(RenderHistoryDlg, ADoubleClickOpensTheEntryUnderIt) {
    Add(7, "plastic");
    Add(123, "marble");
    test::ShowActive(window);
    DoubleClick(At(1));
    EXPECT_THAT(opened, ElementsAre("07 plastic"));
    DoubleClick(At(0));
    EXPECT_THAT(opened, ElementsAre("07 plastic", "123 marble"));
}

TEST_F(RenderHistoryDlg, ADoubleClickBesideTheEntriesOpensNothing) {
    test::ShowActive(window);
    DoubleClick(list->viewport()->rect().center());
    Add(1, "plastic");
    DoubleClick(list->viewport()->rect().center());
    EXPECT_THAT(opened, ElementsAre());
}

TEST_F(RenderHistoryDlg, EnterOpensTheCurrentRowAndNothingBeforeOneWasChosen) {
    Add(1, "plastic");
    Add(2, "marble");
    test::ShowActive(window);
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_THAT(opened, ElementsAre());
    QTest::keyClick(list, Qt::Key_End);
    QTest::keyClick(list, Qt::Key_Return);
    QTest::keyClick(list, Qt::Key_Up);
    QTest::keyClick(list, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_THAT(opened, ElementsAre("01 plastic", "02 marble"));
}

TEST_F(RenderHistoryDlg, ANameIsHandedOnWithItsBytes) {
    Add(1, "caf\xE9");
    test::ShowActive(window);
    DoubleClick(At(0));
    EXPECT_THAT(opened, ElementsAre("01 caf\xE9"));
}

TEST_F(RenderHistoryDlg, TheCurrentRowStaysOnItsEntry) {
    for (int number = 1; number <= 3; ++number) Add(number, "plastic");
    test::ShowActive(window);
    Click(1);
    Add(4, "plastic");
    EXPECT_EQ(CurrentRow(), "02 plastic");
    EXPECT_TRUE(list->selectionModel()->isSelected(list->currentIndex()));
    entries.pop_back();
    window.Refresh();
    EXPECT_THAT(Rows(), ElementsAre("04 plastic", "03 plastic", "02 plastic"));
    EXPECT_EQ(CurrentRow(), "02 plastic");
}

TEST_F(RenderHistoryDlg, NoRowIsCurrentWhenItsEntryLeftTheHistory) {
    Add(1, "plastic");
    Add(2, "plastic");
    test::ShowActive(window);
    Click(1);
    entries.pop_back();
    Add(3, "plastic");
    EXPECT_THAT(Rows(), ElementsAre("03 plastic", "02 plastic"));
    EXPECT_EQ(CurrentRow(), "none");
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_THAT(opened, ElementsAre());
    entries = {"09 marble", "08 marble"};  // none of those shown
    window.Refresh();
    EXPECT_THAT(Rows(), ElementsAre("09 marble", "08 marble"));
    entries.clear();
    window.Refresh();
    EXPECT_THAT(Rows(), ElementsAre());
}

TEST_F(RenderHistoryDlg, ANotchOfTheWheelScrollsALine) {
    for (int number = 1; number <= 100; ++number) Add(number, "plastic");
    test::ShowActive(window);
    const QScrollBar& bar = *list->verticalScrollBar();
    Turn(-120);
    EXPECT_EQ(bar.value(), 1);
    EXPECT_EQ(TextAt(list->indexAt(QPoint(2, 2))), "99 plastic");
    Turn(-120);
    EXPECT_EQ(bar.value(), 2);
    Turn(120);
    EXPECT_EQ(bar.value(), 1);
    for (int part = 0; part < 4; ++part) Turn(-30);
    EXPECT_EQ(bar.value(), 2);
}

TEST_F(RenderHistoryDlg, TheListFillsTheWindowInItsOwnColours) {
    window.resize(321, 234);
    test::ShowActive(window);
    EXPECT_EQ(list->geometry(), window.rect());
    QPalette dark(QColor(30, 30, 30));
    dark.setColor(QPalette::Base, Qt::black);
    window.setPalette(dark);
    test::HandleEvents();
    EXPECT_EQ(list->grab().toImage().pixelColor(160, 200), QColor(190, 190, 210));
    EXPECT_EQ(list->palette().color(QPalette::Text), QColor(0, 20, 0));
}

}  // namespace
}  // namespace tavrin
