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
    box.resize(400, 80);
    box.show();
    test::HandleEvents();
    QString help;
    for (int word = 0; word < 60; ++word) help += QString("word%1 ").arg(word);
    box.SetStatus(help.toStdString());
    const auto* text = box.findChild<QPlainTextEdit*>("status");
    const auto lines = [&] { return text->document()->size().height(); };
    const QString narrow = text->toPlainText();
    EXPECT_EQ(lines(), 3);
    EXPECT_TRUE(narrow.endsWith(QString::fromUtf8(" \u2026"))) << narrow.toStdString();
    EXPECT_TRUE(help.startsWith(narrow.chopped(2)));
    EXPECT_EQ(box.Status(), help);
    box.resize(600, 80);
    test::HandleEvents();
    EXPECT_EQ(lines(), 3);
    EXPECT_GT(text->toPlainText().size(), narrow.size());
    box.resize(3000, 80);
    test::HandleEvents();
    EXPECT_EQ(text->toPlainText(), help);
    box.resize(400, 80);
    test::HandleEvents();
    EXPECT_EQ(text->toPlainText(), narrow);
}

TEST_F(StatusBoxTest, LinesThatAreTooManyAreCutAsWell) {
    box.resize(600, 80);
    box.show();
    test::HandleEvents();
    box.SetStatus("one\r\n\r\nthree\r\nfour");
    const auto* text = box.findChild<QPlainTextEdit*>("status");
    EXPECT_EQ(text->toPlainText(), QString::fromUtf8("one\n\nthree \u2026"));
    EXPECT_EQ(box.Status(), "one\n\nthree\nfour");
}

TEST_F(StatusBoxTest, AHintIsShownWhileThereIsNoActivity) {
    const auto* label = box.findChild<QLabel*>("activity");
    box.SetHint("Click to drop");
    EXPECT_EQ(label->text(), "Click to drop");
    box.SetActivity("Rendering");
    EXPECT_EQ(label->text(), "Rendering");
    box.SetActivity({});
    EXPECT_EQ(label->text(), "Click to drop");
    box.SetHint({});
    EXPECT_EQ(label->text(), "");
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

TEST_F(StatusBoxTest, ALongNameNeitherWidensTheBoxNorPushesTheTextAway) {
    box.resize(800, 60);
    box.show();
    const int before = box.minimumSizeHint().width();
    const QString name(500, 'x');
    box.SetActivity("Rendering " + name);
    test::HandleEvents();
    EXPECT_EQ(box.Activity(), "Rendering " + name);
    EXPECT_LE(box.minimumSizeHint().width(), before + 420);
    EXPECT_EQ(box.width(), 800);
    EXPECT_GE(box.findChild<QPlainTextEdit*>("status")->width(), 350);
    box.SetStatus(std::string(300, 'y'));
    EXPECT_EQ(box.findChild<QPlainTextEdit*>("status")->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
}

}  // namespace
}  // namespace tavrin
