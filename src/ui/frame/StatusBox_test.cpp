// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/StatusBox.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPlainTextEdit>

#include "ui/support/Windows.h"

namespace tavrin {
namespace {

constexpr float kGrey[3] = {0.76F, 0.76F, 0.76F};

class StatusBoxTest : public testing::Test {
  protected:
    // In the window that a box without a frame is; its manager has a word in the size.
    void ShowOfWidth(int width) {
        box.resize(width, 80);
        test::ShowActive(box);
        box.resize(width, 80);
        ASSERT_TRUE(test::WaitUntil([&] { return box.width() == width; }));
    }
    const QPlainTextEdit& Field() { return *box.findChild<QPlainTextEdit*>("status"); }
    QString Text() { return Field().toPlainText(); }
    double Lines() { return Field().document()->size().height(); }
    const QLabel& HintLabel() { return *box.findChild<QLabel*>("hint"); }

    long now = 1000;
    CStatusBox box{nullptr, kGrey, [this] { return now; }};
};

TEST_F(StatusBoxTest, ATextWithAHoldIsNotOverwrittenBeforeItsTimeIsOver) {
    box.SetStatus("held", 5);
    now += 2;
    box.SetStatus("too early");
    EXPECT_EQ(box.Status(), "held");
    now += 2;
    box.ClearStatus();
    EXPECT_EQ(box.Status(), "held");
    now += 1;
    box.SetStatus("in time");
    EXPECT_EQ(box.Status(), "in time");
}

TEST_F(StatusBoxTest, ATextWithoutAHoldGivesWayAtOnce) {
    box.SetStatus("one");
    box.SetStatus("two");
    EXPECT_EQ(box.Status(), "two");
    box.ClearStatus();
    EXPECT_EQ(box.Status(), "");
}

TEST_F(StatusBoxTest, AHoldEndsWithTheTextThatFollowsIt) {
    box.SetStatus("held", 5);
    now += 5;
    box.SetStatus("next");
    now += 1;
    box.SetStatus("and next");
    EXPECT_EQ(box.Status(), "and next");
}

TEST_F(StatusBoxTest, ShowsThreeLinesWholeAndTakesNoInput) {
    box.show();
    box.SetStatus(">>>\r\n>>> HEY!!!\r\n>>>");
    const auto* text = box.findChild<QPlainTextEdit*>("status");
    EXPECT_EQ(text->blockCount(), 3);
    EXPECT_GE(text->viewport()->height(), 3 * QFontMetrics(text->font()).lineSpacing());
    EXPECT_FALSE(text->isEnabled());
}

TEST_F(StatusBoxTest, ATextThatDoesNotFitEndsInAnEllipsisUntilThereIsRoom) {
    ShowOfWidth(400);
    QString help;
    for (int word = 0; word < 60; ++word) help += QString("word%1 ").arg(word);
    box.SetStatus(help.toStdString());
    const QString narrow = Text();
    EXPECT_EQ(Lines(), 3);
    EXPECT_TRUE(narrow.endsWith(QString::fromUtf8(" \u2026"))) << narrow.toStdString();
    EXPECT_TRUE(help.startsWith(narrow.chopped(2)));
    EXPECT_EQ(box.Status(), help);
    box.resize(600, 80);
    EXPECT_TRUE(test::WaitUntil([&] { return Text().size() > narrow.size(); }));
    EXPECT_EQ(Lines(), 3);
    box.resize(1900, 80);
    EXPECT_TRUE(test::WaitUntil([&] { return Text() == help; })) << Text().toStdString();
    box.resize(400, 80);
    EXPECT_TRUE(test::WaitUntil([&] { return Text() == narrow; })) << Text().toStdString();
}

TEST_F(StatusBoxTest, LinesThatAreTooManyAreCutAsWell) {
    ShowOfWidth(600);
    box.SetStatus("one\r\n\r\nthree\r\nfour");
    EXPECT_EQ(Text(), QString::fromUtf8("one\n\nthree \u2026"));
    EXPECT_EQ(box.Status(), "one\n\nthree\nfour");
}

TEST_F(StatusBoxTest, AHintStandsWholeBeforeTheTextWhateverTheActivity) {
    ShowOfWidth(1200);
    EXPECT_FALSE(HintLabel().isVisible());
    box.SetStatus(std::string(300, 'y'));
    box.SetActivity("Rendering");
    const int start = Field().x();
    box.SetHint("Click to drop");
    EXPECT_TRUE(test::WaitUntil([&] { return Field().x() > start; }));
    EXPECT_EQ(HintLabel().x(), start);
    EXPECT_GE(Field().x(), HintLabel().geometry().right());
    EXPECT_EQ(HintLabel().text(), "Click to drop");
    EXPECT_GE(HintLabel().width(), HintLabel().fontMetrics().horizontalAdvance("Click to drop"));
    EXPECT_EQ(box.findChild<QLabel*>("activity")->text(), "Rendering");
    box.SetHint({});
    EXPECT_TRUE(test::WaitUntil([&] { return Field().x() == start; }));
    EXPECT_FALSE(HintLabel().isVisible());
}

TEST_F(StatusBoxTest, InANarrowBoxAHintIsBrokenIntoLinesAndHasRoomForThem) {
    ShowOfWidth(420);
    const int height = box.sizeHint().height();
    box.SetStatus("help");
    box.SetHint("Click a button to wire it, the desk to let go");
    EXPECT_TRUE(test::WaitUntil([&] { return Field().x() > HintLabel().x(); }));
    EXPECT_LE(HintLabel().width(), 150);
    EXPECT_LE(HintLabel().heightForWidth(HintLabel().width()), HintLabel().height());
    EXPECT_EQ(box.sizeHint().height(), height);
    EXPECT_EQ(Text(), "help");
}

TEST_F(StatusBoxTest, ATextIsOnlySetWhereItDiffersWhateverItsLineEnds) {
    const std::string help = "two\r\nlines of \xff";
    const auto* text = box.findChild<QPlainTextEdit*>("status");
    int changes = 0;
    QObject::connect(text, &QPlainTextEdit::textChanged, [&changes] { ++changes; });
    box.SetStatus(help);
    EXPECT_EQ(changes, 1);
    box.SetStatus(help);
    EXPECT_EQ(changes, 1);
    box.ClearStatus();
    box.SetStatus(help);
    EXPECT_EQ(changes, 3);
}

TEST_F(StatusBoxTest, ItsTextIsDarkOnALightGroundAndLightOnADarkOne) {
    const float dark[3] = {0.1F, 0.1F, 0.2F};
    const CStatusBox other(nullptr, dark);
    EXPECT_LT(qGray(box.palette().color(QPalette::Disabled, QPalette::Text).rgb()), 50);
    EXPECT_GT(qGray(other.palette().color(QPalette::Disabled, QPalette::Text).rgb()), 200);
}

TEST_F(StatusBoxTest, ActivityStandsBesideTheText) {
    box.SetStatus("help", 100);
    box.SetActivity("Rendering marble: 1.0 s");
    EXPECT_EQ(box.Status(), "help");
    EXPECT_EQ(box.Activity(), "Rendering marble: 1.0 s");
    box.SetActivity({});
    EXPECT_EQ(box.Activity(), "");
}

TEST_F(StatusBoxTest, WhatGoesOnBesideIsShownWhileTheProgramIsBusyWithNothing) {
    ShowOfWidth(1200);
    const auto shown = [this] { return box.findChild<QLabel*>("activity")->text(); };
    box.SetAside("Live: 14 ms");
    EXPECT_EQ(shown(), "Live: 14 ms");
    EXPECT_EQ(box.Activity(), "");
    box.SetActivity("Rendering");
    EXPECT_EQ(shown(), "Rendering");
    box.SetAside("Live: 15 ms");
    EXPECT_EQ(shown(), "Rendering");
    box.SetActivity({});
    EXPECT_EQ(shown(), "Live: 15 ms");
    box.SetAside({});
    EXPECT_EQ(shown(), "");
}

TEST_F(StatusBoxTest, ALongNameNeitherWidensTheBoxNorPushesTheTextAway) {
    ShowOfWidth(800);
    const int before = box.minimumSizeHint().width();
    const QString name(500, 'x');
    box.SetActivity("Rendering " + name);
    test::HandleEvents();
    EXPECT_EQ(box.Activity(), "Rendering " + name);
    EXPECT_LE(box.minimumSizeHint().width(), before + 420);
    EXPECT_EQ(box.width(), 800);
    EXPECT_GE(Field().width(), 350);
    box.SetHint("Click a button to wire it, the desk to let go");
    test::HandleEvents();
    EXPECT_LE(box.minimumSizeHint().width(), 700);
    EXPECT_EQ(box.width(), 800);
    EXPECT_GE(Field().width(), 200);
    box.SetStatus(std::string(300, 'y'));
    EXPECT_EQ(Field().horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
}

}  // namespace
}  // namespace tavrin
