// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/TableWindow.h"

#include <gtest/gtest.h>

#include <QTreeWidget>

#include "ui/support/Windows.h"

namespace tavrin {
namespace {

class TableWindowTest : public testing::Test {
  protected:
    QStringList Shown() {
        QStringList lines;
        const auto* table = window.findChild<QTreeWidget*>();
        for (int row = 0; row < table->topLevelItemCount(); ++row) {
            lines << table->topLevelItem(row)->text(0) + "=" + table->topLevelItem(row)->text(1);
        }
        return lines;
    }

    TableWindow::Rows rows{{"SIZE", "4"}};
    int asked = 0;
    TableWindow window{"A table", nullptr, {"Option", "Value"}, [this] {
                           ++asked;
                           return rows;
                       }};
};

TEST_F(TableWindowTest, ShowsItsRowsWhenItComesUp) {
    window.Refresh();
    EXPECT_EQ(asked, 0);  // hidden
    window.ComeUp();
    EXPECT_EQ(Shown(), QStringList{"SIZE=4"});
}

TEST_F(TableWindowTest, FollowsChangesWhileItIsUp) {
    window.ComeUp();
    rows = {{"SIZE", "5"}, {"LIGHT", "key"}};
    window.Refresh();
    EXPECT_EQ(Shown(), (QStringList{"SIZE=5", "LIGHT=key"}));
    rows.clear();
    window.Refresh();
    EXPECT_EQ(Shown(), QStringList());
}

TEST_F(TableWindowTest, ARefreshWithoutAChangeKeepsTheSelection) {
    window.ComeUp();
    auto* table = window.findChild<QTreeWidget*>();
    table->setCurrentItem(table->topLevelItem(0));
    window.Refresh();
    EXPECT_NE(table->currentItem(), nullptr);
}

}  // namespace
}  // namespace tavrin
