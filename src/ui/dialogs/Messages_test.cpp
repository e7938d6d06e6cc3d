// SPDX-License-Identifier: Apache-2.0
#include "ui/dialogs/Messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QMessageBox>
#include <QTest>

#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::BoxesShown;
using test::PressWhenBoxComes;
using test::WhenDialogComes;

TEST(Messages, AWarningIsAnsweredWithNoByReturnAndByEscape) {
    for (const int key : {Qt::Key_Return, Qt::Key_Escape}) {
        WhenDialogComes([key](QDialog& box) { QTest::keyClick(&box, Qt::Key(key)); });
        EXPECT_FALSE(AskWarning(nullptr, "Quit anyway?"));
    }
    PressWhenBoxComes("Yes");
    EXPECT_TRUE(AskWarning(nullptr, "Quit anyway?"));
    EXPECT_EQ(BoxesShown(), QStringList{"Warning: Quit anyway?"});
}

TEST(Messages, TextFromAFileIsNotReadAsMarkup) {
    WhenDialogComes([](QDialog& dialog) {
        auto& box = dynamic_cast<QMessageBox&>(dialog);
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        box.accept();
    });
    ShowStop(nullptr, "Alert", "<h1>large</h1>");
}

TEST(Messages, SavingHasThreeAnswersAndEscapeCancels) {
    PressWhenBoxComes("Save");
    EXPECT_EQ(AskSaveChanges(nullptr, "a.tvn"), SaveAnswer::kSave);
    PressWhenBoxComes("Discard");
    EXPECT_EQ(AskSaveChanges(nullptr, "a.tvn"), SaveAnswer::kDiscard);
    WhenDialogComes([](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    EXPECT_EQ(AskSaveChanges(nullptr, "a.tvn"), SaveAnswer::kCancel);
}

TEST(Messages, TheAnswersToSavingHaveLettersToPress) {
    const auto pressed = [](Qt::Key key) {
        WhenDialogComes([key](QDialog& box) {
            QStringList texts;
            for (const QAbstractButton* button : dynamic_cast<QMessageBox&>(box).buttons())
                texts << button->text();
            EXPECT_THAT(texts, testing::UnorderedElementsAre("&Save", "&Discard", "&Cancel"));
            QTest::keyClick(&box, key);
        });
        return AskSaveChanges(nullptr, "a.tvn");
    };
    EXPECT_EQ(pressed(Qt::Key_S), SaveAnswer::kSave);
    EXPECT_EQ(pressed(Qt::Key_D), SaveAnswer::kDiscard);
    EXPECT_EQ(pressed(Qt::Key_C), SaveAnswer::kCancel);
}

TEST(Messages, AQuestionIsAnsweredWithTheFirstByReturnAndWithTheSecondByEscape) {
    const auto answer = [](Qt::Key key) {
        WhenDialogComes([key](QDialog& box) { QTest::keyClick(&box, key); });
        return AskQuestion(nullptr, "Boxes", "<b>?", "&Take", "&Leave");
    };
    EXPECT_TRUE(answer(Qt::Key_Return));
    EXPECT_FALSE(answer(Qt::Key_Escape));
    EXPECT_TRUE(answer(Qt::Key_T));
    EXPECT_FALSE(answer(Qt::Key_L));
    PressWhenBoxComes("Leave");
    EXPECT_FALSE(AskQuestion(nullptr, "Boxes", "<b>?", "&Take", "&Leave"));
    EXPECT_EQ(BoxesShown(), QStringList{"Boxes: <b>?"});
}

}  // namespace
}  // namespace tavrin
