// SPDX-License-Identifier: Apache-2.0
#include "ui/library/CustomizeDialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMenu>
#include <QPushButton>

#include "ui/library/TestLibrary.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::ClickRow;
using test::RowsOf;
using test::SelectedIn;
using test::TestLibrary;
using testing::ElementsAre;

// The dialog in the hands of a user, shown without a loop of its own.
class CustomizeDialogTest : public testing::Test {
  protected:
    void Open(std::vector<std::string> names) {
        dialog = std::make_unique<CustomizeDialog>(nullptr, library.registry, std::move(names),
                                                   [this] { ++beeps; });
        test::WhenDialogComes([](QDialog&) {});  // the test itself answers it, step by step
        test::ShowActive(*dialog);
    }
    QPushButton* Button(const char* role) { return dialog->findChild<QPushButton*>(role); }
    void Click(const char* role) { QTest::mouseClick(Button(role), Qt::LeftButton); }
    // Chooses the item at a place of the root popup.
    void Add(int place) {
        Click("add");
        QMenu& menu = *dialog->findChild<QMenu*>("operators");
        ASSERT_TRUE(test::WaitUntil([&] { return menu.isVisible(); }));
        const QRect row = menu.actionGeometry(menu.actions()[place]);
        QTest::mouseClick(&menu, Qt::LeftButton, {}, row.center());
    }
    std::string EnabledButtons() {
        std::string enabled;
        for (const char* role : {"add", "delete", "raise", "lower", "sort"})
            if (Button(role)->isEnabled()) enabled.append(enabled.empty() ? "" : " ").append(role);
        return enabled;
    }

    TestLibrary library{"0100.Noise", "0200.Mix", "0300.add", "0400.More/0100.Wood"};
    int beeps = 0;
    std::unique_ptr<CustomizeDialog> dialog;
};

TEST_F(CustomizeDialogTest, ShowsTheKnownOperatorsAndAnEmptyRowAtTheEnd) {
    Open({"Mix", "Gone", "Noise"});
    EXPECT_EQ(dialog->windowTitle(), "Customize Operator Toolbar");
    EXPECT_TRUE(dialog->isModal());
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Mix", "Noise", ""}));
    EXPECT_TRUE(SelectedIn(*dialog).isNull());
}

TEST_F(CustomizeDialogTest, OkDropsTheNamesThatTheLibraryLacksForGood) {
    Open({"Mix", "Gone", "Noise"});
    Click("ok");
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_THAT(dialog->Result(), ElementsAre("Mix", "Noise"));
}

TEST_F(CustomizeDialogTest, CancelChangesNothing) {
    Open({"Mix", "Gone", "Noise"});
    ClickRow(*dialog, "Mix");
    Click("delete");
    Click("cancel");
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_THAT(dialog->Result(), ElementsAre("Mix", "Gone", "Noise"));
}

TEST_F(CustomizeDialogTest, EnterIsOkAndEscapeIsCancel) {
    Open({"Mix", "Noise"});
    ClickRow(*dialog, "Mix");
    Click("lower");
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_THAT(dialog->Result(), ElementsAre("Noise", "Mix"));
    Open({"Mix", "Noise"});
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(CustomizeDialogTest, TheMnemonicsPressTheButtons) {
    Open({"Noise", "Mix"});
    const auto becomes = [this](const QStringList& rows) {  // a press by the keyboard shows for a moment
        return test::WaitUntil([&] { return RowsOf(*dialog) == rows; });
    };
    QTest::keyClick(dialog.get(), Qt::Key_S, Qt::AltModifier);
    EXPECT_TRUE(becomes({"Mix", "Noise", ""}));
    ClickRow(*dialog, "Noise");
    QTest::keyClick(dialog.get(), Qt::Key_R, Qt::AltModifier);
    EXPECT_TRUE(becomes({"Noise", "Mix", ""}));
    QTest::keyClick(dialog.get(), Qt::Key_L, Qt::AltModifier);
    EXPECT_TRUE(becomes({"Mix", "Noise", ""}));
    QTest::keyClick(dialog.get(), Qt::Key_D, Qt::AltModifier);
    EXPECT_TRUE(becomes({"Mix", ""}));
    QTest::keyClick(dialog.get(), Qt::Key_A, Qt::AltModifier);
    QMenu& menu = *dialog->findChild<QMenu*>("operators");
    ASSERT_TRUE(test::WaitUntil([&] { return menu.isVisible(); }));
    menu.close();
}

// What is seen of a row where it has no text.
QColor GroundOf(const CustomizeDialog& dialog, int row) {
    QListView& list = test::ListOf(dialog);
    const QRect place = list.visualRect(list.model()->index(row, 0));
    const QImage picture = list.viewport()->grab(place).toImage();
    return picture.pixelColor(picture.width() - 4, picture.height() / 2);
}

TEST_F(CustomizeDialogTest, WhatLooksSelectedIsSelected) {
    Open({"Mix", "Noise"});
    QListView& list = test::ListOf(*dialog);
    const auto marked = [&] {
        QStringList rows;
        for (int row = 0; row < list.model()->rowCount(); ++row) {
            if (GroundOf(*dialog, row) != list.palette().color(QPalette::Base)) rows << QString::number(row);
        }
        return rows.join(' ');
    };
    Button("add")->setFocus();
    list.setFocus();
    ASSERT_TRUE(test::WaitUntil([&] { return list.hasFocus(); }));
    EXPECT_TRUE(SelectedIn(*dialog).isNull());
    EXPECT_EQ(marked(), "");
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_EQ(SelectedIn(*dialog), "Mix") << "the first key comes to the first row";
    EXPECT_EQ(marked(), "0");
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier,
                      list.visualRect(list.model()->index(0, 0)).center());
    EXPECT_TRUE(SelectedIn(*dialog).isNull());
    EXPECT_EQ(marked(), "") << "a row that was given up";
}

TEST_F(CustomizeDialogTest, SortingLeavesNoMarkOnARowThatIsNotSelected) {
    Open({"Noise", "Mix"});
    QListView& list = test::ListOf(*dialog);
    list.setFocus();
    Click("sort");
    list.setFocus();
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(GroundOf(*dialog, row), list.palette().color(QPalette::Base)) << row;
    }
}

// Add

TEST_F(CustomizeDialogTest, TheOperatorsOpenAtTheRightTopCornerOfTheButton) {
    Open({});
    dialog->move(300, 200);
    ASSERT_TRUE(test::WaitUntil([&] { return dialog->pos() == QPoint(300, 200); }));
    Click("add");
    QMenu& menu = *dialog->findChild<QMenu*>("operators");
    ASSERT_TRUE(test::WaitUntil([&] { return menu.isVisible(); }));
    EXPECT_EQ(menu.pos(), Button("add")->mapToGlobal(Button("add")->rect().topRight()));
    EXPECT_EQ(menu.actions().size(), 4);
    menu.close();
}

TEST_F(CustomizeDialogTest, WithNothingSelectedNamesComeAtTheEnd) {
    Open({"Mix"});
    Add(0);
    Add(2);
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Mix", "Noise", "add", ""}));
}

TEST_F(CustomizeDialogTest, ANewNamePushesTheSelectedRowDown) {
    Open({"Mix", "Noise"});
    ClickRow(*dialog, "Noise");
    Add(2);
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Mix", "add", "Noise", ""}));
    EXPECT_EQ(SelectedIn(*dialog), "Noise");
}

TEST_F(CustomizeDialogTest, ANameAddedAtTheEndMarkerStandsBeforeIt) {
    Open({"Mix"});
    ClickRow(*dialog, "");
    Add(0);
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Mix", "Noise", ""}));
}

TEST_F(CustomizeDialogTest, AnOperatorOfASubmenuCanBeAdded) {
    Open({});
    Click("add");
    QMenu& menu = *dialog->findChild<QMenu*>("operators");
    ASSERT_TRUE(test::WaitUntil([&] { return menu.isVisible(); }));
    QTest::keyClick(&menu, Qt::Key_Up);
    QTest::keyClick(&menu, Qt::Key_Right);
    QMenu* more = menu.actions()[3]->menu();
    ASSERT_TRUE(test::WaitUntil([&] { return more->isVisible(); }));
    QTest::keyClick(more, Qt::Key_Return);
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Wood", ""}));
}

TEST_F(CustomizeDialogTest, ANameTwiceIsRefusedWithABeepAndNoMessage) {
    Open({"noise", "Mix"});
    ClickRow(*dialog, "Mix");
    Add(0);
    EXPECT_EQ(beeps, 1);
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Noise", "Mix", ""}));
    EXPECT_EQ(SelectedIn(*dialog), "Mix");
    test::HandleEvents();  // a box that came up would fail the test
    Add(2);
    EXPECT_EQ(beeps, 1);
}

// Delete, Raise, Lower

TEST_F(CustomizeDialogTest, DeleteTakesTheSelectedRowAndGoesOnDownwards) {
    Open({"Mix", "Noise", "add"});
    ClickRow(*dialog, "Noise");
    Click("delete");
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Mix", "add", ""}));
    EXPECT_EQ(SelectedIn(*dialog), "add");
    Click("delete");
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Mix", ""}));
    EXPECT_EQ(EnabledButtons(), "add") << "the end marker is selected";
}

TEST_F(CustomizeDialogTest, RaiseAndLowerMoveTheSelectedRowAndKeepItSelected) {
    Open({"Mix", "Noise", "add"});
    ClickRow(*dialog, "add");
    Click("raise");
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Mix", "add", "Noise", ""}));
    EXPECT_EQ(SelectedIn(*dialog), "add");
    Click("raise");
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"add", "Mix", "Noise", ""}));
    Click("lower");
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Mix", "add", "Noise", ""}));
    EXPECT_EQ(SelectedIn(*dialog), "add");
}

TEST_F(CustomizeDialogTest, WhatCanDoNothingForTheSelectedRowIsDisabled) {
    Open({"Mix", "Noise", "add"});
    EXPECT_EQ(EnabledButtons(), "add sort") << "nothing is selected";
    ClickRow(*dialog, "Mix");
    EXPECT_EQ(EnabledButtons(), "add delete lower sort") << "the first row";
    ClickRow(*dialog, "Noise");
    EXPECT_EQ(EnabledButtons(), "add delete raise lower sort");
    ClickRow(*dialog, "add");
    EXPECT_EQ(EnabledButtons(), "add delete raise sort") << "the last real row";
    ClickRow(*dialog, "");
    EXPECT_EQ(EnabledButtons(), "add sort") << "the end marker";
    library.registry.Clear();
    Open({});
    EXPECT_EQ(EnabledButtons(), "");
}

TEST_F(CustomizeDialogTest, ByTheKeyboardARowIsRaisedToTheTopAndTheNextKeyDoesNothing) {
    Open({"Mix", "Noise", "add"});
    ClickRow(*dialog, "add");
    Button("raise")->setFocus();
    for (int press = 0; press < 3; ++press) QTest::keyClick(dialog->focusWidget(), Qt::Key_Space);
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"add", "Mix", "Noise", ""}));
    EXPECT_EQ(SelectedIn(*dialog), "add");
    EXPECT_EQ(dialog->focusWidget(), &test::ListOf(*dialog));
    EXPECT_TRUE(dialog->isVisible());
}

// Sort

TEST_F(CustomizeDialogTest, SortIgnoresCaseAndLeavesTheEndMarkerLast) {
    Open({"Noise", "Wood", "add", "Mix"});
    ClickRow(*dialog, "Wood");
    Click("sort");
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"add", "Mix", "Noise", "Wood", ""}));
    EXPECT_EQ(SelectedIn(*dialog), "Wood");
    Click("ok");
    EXPECT_THAT(dialog->Result(), ElementsAre("add", "Mix", "Noise", "Wood"));
}

TEST_F(CustomizeDialogTest, SortSelectsNothingThatWasNotSelected) {
    Open({"Noise", "Mix"});
    Click("sort");
    EXPECT_TRUE(SelectedIn(*dialog).isNull());
    Add(2);
    EXPECT_EQ(RowsOf(*dialog), (QStringList{"Mix", "Noise", "add", ""}));
}

}  // namespace
}  // namespace tavrin
