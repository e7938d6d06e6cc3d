// SPDX-License-Identifier: Apache-2.0
#include "ui/log/LogEdit.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QScrollBar>
#include <QTest>

#include "ui/base/Text.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

constexpr int kPlenty = 100'000;

class LogEditTest : public testing::Test {
  protected:
    void Add(const std::string& text) { edit.Apply({false, false, text}); }
    void AddLines(int from, int to) {
        std::string text;
        for (int i = from; i < to; ++i) text += "line " + std::to_string(i) + '\n';
        Add(text);
    }
    QString FirstInView() const {
        return edit.cursorForPosition(QPoint(2, edit.fontMetrics().height() / 2)).block().text();
    }
    bool ShowsEnd() const { return bar.value() == bar.maximum(); }
    void Show() {
        edit.resize(400, 300);
        test::ShowActive(edit);
    }

    LogEdit edit{nullptr, kPlenty};
    QScrollBar& bar = *edit.verticalScrollBar();
};

TEST_F(LogEditTest, StepsAreDoneInTheirOrder) {
    Add("one\ntwo");
    edit.Apply({false, true, "three"});
    EXPECT_EQ(edit.Text(), "one\nthree");
    edit.Apply({true, true, "four"});
    EXPECT_EQ(edit.Text(), "four");
}

TEST_F(LogEditTest, RoomIsMadeByTheOldestWholeLinesOfAtLeastTheNewTextsLength) {
    LogEdit small(nullptr, 24);
    small.Apply({false, false, "aaaa\nbbbb\ncccc\ndddd\neee"});  // 23 characters
    small.Apply({false, false, "f"});
    EXPECT_EQ(small.Text(), "aaaa\nbbbb\ncccc\ndddd\neeef");  // 24: just fits
    small.Apply({false, false, "gggggg"});
    EXPECT_EQ(small.Text(), "cccc\ndddd\neeefgggggg");
}

TEST_F(LogEditTest, AllOfTheTextGoesIfNoLineBeginsBehindTheNewTextsLength) {
    LogEdit small(nullptr, 10);
    small.Apply({false, false, "a\nbbbbbb"});
    small.Apply({false, false, "ccc"});
    EXPECT_EQ(small.Text(), "ccc");
}

TEST_F(LogEditTest, TheViewFollowsTheEnd) {
    for (const bool wrap : {false, true}) {
        edit.SetWordWrap(wrap);
        Show();
        AddLines(0, 200);
        EXPECT_TRUE(ShowsEnd());
        Add(std::string(500, 'w') + "\nmore\n");
        EXPECT_TRUE(ShowsEnd());
        EXPECT_GT(bar.value(), 100);
        edit.resize(400, 150);
        EXPECT_TRUE(test::WaitUntil([&] { return ShowsEnd(); }));
    }
}

TEST_F(LogEditTest, AViewThatTheUserScrolledUpStaysWhereItIs) {
    Show();
    AddLines(0, 200);
    QTest::keyClick(&edit, Qt::Key_Home, Qt::ControlModifier);
    bar.setValue(50);
    EXPECT_EQ(FirstInView(), "line 50");
    AddLines(200, 400);
    EXPECT_EQ(FirstInView(), "line 50");
    edit.Apply({false, true, "end"});
    EXPECT_EQ(FirstInView(), "line 50");
    bar.setValue(bar.maximum());
    AddLines(400, 410);
    EXPECT_TRUE(ShowsEnd());
}

TEST_F(LogEditTest, AViewThatTheUserScrolledUpShowsTheSameLinesWhileOlderOnesGo) {
    LogEdit small(nullptr, 1850);
    small.resize(400, 200);
    test::ShowActive(small);
    std::string lines;
    for (int i = 100; i < 300; ++i) lines += "line " + std::to_string(i) + '\n';
    small.Apply({false, false, lines});
    small.verticalScrollBar()->setValue(80);
    const auto first = [&] { return small.cursorForPosition(QPoint(2, 5)).block().text(); };
    const QString before = first();
    small.Apply({false, false, std::string(100, 'x') + '\n'});
    EXPECT_FALSE(small.Text().startsWith("line 100\n"));
    EXPECT_EQ(first(), before);
}

TEST_F(LogEditTest, ASelectionStaysWhileTheTextGrowsAndHoldsTheView) {
    Show();
    AddLines(0, 5);
    edit.SetEditable(false);
    QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
    const QString selected = edit.textCursor().selectedText();
    EXPECT_EQ(selected.size(), 5 * 7);
    AddLines(5, 300);
    EXPECT_EQ(edit.textCursor().selectedText(), selected);
    EXPECT_EQ(FirstInView(), "line 0");
}

TEST_F(LogEditTest, ASelectionMadeBackwardsFromTheEndStays) {
    Add("one\ntwo");
    QTextCursor cursor = edit.textCursor();
    cursor.movePosition(QTextCursor::End);
    cursor.movePosition(QTextCursor::StartOfLine, QTextCursor::KeepAnchor);
    edit.setTextCursor(cursor);
    Add("three");
    EXPECT_EQ(edit.textCursor().selectedText(), "two");
    EXPECT_LT(edit.textCursor().position(), edit.textCursor().anchor());
}

TEST_F(LogEditTest, AVeryLongLineIsLaidOutInRowsAndIsOneLineToAllWhoAskForText) {
    std::string line;
    while (line.size() < 9000) line += "0123456789";
    Add("first\n");
    for (size_t at = 0; at < line.size(); at += 700) Add(line.substr(at, 700));
    EXPECT_GT(edit.document()->blockCount(), 4);
    for (QTextBlock row = edit.document()->begin(); row.isValid(); row = row.next()) {
        EXPECT_LE(row.length(), 2001);
    }
    EXPECT_EQ(edit.Text(), "first\n" + Shown(line));
    Add("\nlast");
    EXPECT_EQ(edit.Text(), "first\n" + Shown(line) + "\nlast");
    edit.selectAll();
    edit.copy();
    EXPECT_EQ(QApplication::clipboard()->text(), edit.Text());
    Add(line);
    edit.Apply({false, true, "new"});
    EXPECT_EQ(edit.Text(), "first\n" + Shown(line) + "\nnew");
}

TEST_F(LogEditTest, AVeryLongLineGoesWhole) {
    LogEdit small(nullptr, 10'000);
    small.Apply({false, false, std::string(9000, 'x') + "\nshort\n"});
    small.Apply({false, false, std::string(1000, 'y')});
    EXPECT_EQ(small.Text(), "short\n" + QString(1000, 'y'));
}

TEST_F(LogEditTest, NoRowDividesACharacterBeyondTheFirstPlane) {
    const std::string line = std::string(1999, 'x') + "\xF0\x9F\x98\x80\xF0\x9F\x98\x80";
    Add(line);
    EXPECT_EQ(edit.document()->blockCount(), 2);
    EXPECT_EQ(edit.document()->begin().text().size(), 2001);
    EXPECT_EQ(Bytes(edit.Text()), line);
}

TEST_F(LogEditTest, BytesThatAreNoTextAreShownAsSuch) {
    Add(std::string("a\xFF z\0", 5) + "\xE2\x80\xA9" + "\xEF\xB7\x90" + "e");
    EXPECT_EQ(edit.Text(), QString("a%1 z%1%1%1e").arg(QChar(QChar::ReplacementCharacter)));
    EXPECT_EQ(edit.document()->blockCount(), 1);
}

TEST_F(LogEditTest, IsBlackWithWhiteTextAndASeenSelectionWhateverThePalette) {
    const QPalette before = QApplication::palette();
    for (const QColor& base : {QColor(Qt::white), QColor(40, 40, 40)}) {
        QPalette palette = before;
        palette.setColor(QPalette::Base, base);
        palette.setColor(QPalette::Text, base.lightness() > 128 ? Qt::black : Qt::lightGray);
        palette.setColor(QPalette::Inactive, QPalette::Highlight, Qt::black);
        QApplication::setPalette(palette);
        LogEdit made(nullptr, kPlenty);
        made.Apply({false, false, "MMMMMMMM"});
        made.resize(400, 200);
        QImage picture = made.viewport()->grab().toImage();
        EXPECT_EQ(picture.pixelColor(picture.width() / 2, picture.height() - 3), QColor(Qt::black));
        const auto has = [&](const QColor& colour) {
            for (int y = 0; y < made.fontMetrics().height(); ++y) {
                for (int x = 0; x < picture.width(); ++x) {
                    if (picture.pixelColor(x, y) == colour) return true;
                }
            }
            return false;
        };
        EXPECT_TRUE(has(Qt::white));
        const QColor highlight = made.palette().color(QPalette::Inactive, QPalette::Highlight);
        EXPECT_GT(highlight.lightness(), 60);
        EXPECT_FALSE(has(highlight));
        made.selectAll();
        picture = made.viewport()->grab().toImage();
        EXPECT_TRUE(has(highlight));
    }
    QApplication::setPalette(before);
}

TEST_F(LogEditTest, KeepsNoUndo) {
    edit.SetEditable(true);
    Add("one");
    EXPECT_FALSE(edit.document()->isUndoAvailable());
    edit.clear();
    Add("two");
    EXPECT_FALSE(edit.document()->isUndoAvailable());
}

}  // namespace
}  // namespace tavrin
