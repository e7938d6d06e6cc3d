// SPDX-License-Identifier: Apache-2.0
#include "ui/render/SelectLocation.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

#include "support/TestSite.h"
#include "ui/base/Text.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

// What a user sees of the dialog, and does in it.
struct Location {
    explicit Location(QDialog& shown)
        : dialog(dynamic_cast<QFileDialog&>(shown)),
          field(*dialog.findChild<QLineEdit*>("fileNameEdit")),
          list(*dialog.findChild<QTreeView*>("treeView")) {}

    QPushButton& Ok() {
        return *dialog.findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok);
    }
    void PressOk() { QTest::mouseClick(&Ok(), Qt::LeftButton); }
    void Enter(const std::string& text) {
        field.setFocus();
        EXPECT_TRUE(test::WaitUntil([this] { return field.hasFocus(); }));
        field.selectAll();
        QTest::keyClicks(&field, Shown(text));
        CloseCompletions();
        QTest::keyClick(&field, Qt::Key_Return);
    }
    // Whatever the name field offers while it is typed in would get the next click.
    void CloseCompletions() {
        if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
    }
    std::string Field() const { return Bytes(field.text()); }
    std::string Directory() const { return Bytes(dialog.directory().absolutePath()); }
    // The row of a name in the directory shown, once it is there.
    QModelIndex Row(const QString& name) {
        QModelIndex found;
        EXPECT_TRUE(test::WaitUntil([&] {
            for (int row = 0; row < list.model()->rowCount(list.rootIndex()); ++row) {
                const QModelIndex index = list.model()->index(row, 0, list.rootIndex());
                if (index.data().toString() == name && list.visualRect(index).isValid()) found = index;
            }
            return found.isValid();
        }));
        return found;
    }
    void Click(const QString& name) {
        const QPoint place = list.visualRect(Row(name)).center();
        CloseCompletions();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
    }
    void DoubleClick(const QString& name) {
        const QPoint place = list.visualRect(Row(name)).center();
        CloseCompletions();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, place);
    }

    QFileDialog& dialog;
    QLineEdit& field;
    QTreeView& list;
};

class SelectLocationDialog : public testing::Test {
  protected:
    SelectLocationDialog() {
        directory.Write("from/wood.sl", "");
        directory.Write("from/below/other.sl", "");
        directory.Write("to/notes.txt", "");
    }
    // Runs the dialog on from/wood.sl; the path afterwards.
    std::string Run(const std::function<void(Location&)>& user, bool isTaken) {
        test::WhenDialogComes([&user](QDialog& dialog) {
            Location location(dialog);
            user(location);
            if (dialog.isVisible()) dialog.reject();
        });
        EXPECT_EQ(SelectLocation(path, nullptr), isTaken);
        return path;
    }

    test::TempDir directory;
    std::string path = directory / "from/wood.sl";
};

TEST_F(SelectLocationDialog, ShowsThePathAndHidesTheFileTypes) {
    Run(
        [&](Location& location) {
            EXPECT_EQ(location.dialog.windowTitle(), "Select Location");
            EXPECT_EQ(location.dialog.labelText(QFileDialog::FileName), "Location:");
            EXPECT_EQ(location.Ok().text(), "OK");
            EXPECT_EQ(location.Directory(), directory / "from");
            EXPECT_EQ(location.Field(), "wood.sl");
            for (const char* control : {"fileTypeLabel", "fileTypeCombo"}) {
                EXPECT_FALSE(location.dialog.findChild<QWidget*>(control)->isVisible()) << control;
            }
        },
        false);
}

TEST_F(SelectLocationDialog, CancelLeavesThePath) {
    EXPECT_EQ(Run([](Location& location) { QTest::keyClick(&location.dialog, Qt::Key_Escape); }, false),
              directory / "from/wood.sl");
}

TEST_F(SelectLocationDialog, OkTakesThePathAsItStandsAndAsksNothingAboutTheFileThere) {
    EXPECT_EQ(Run([](Location& location) { location.PressOk(); }, true), directory / "from/wood.sl");
}

TEST_F(SelectLocationDialog, ATypedDirectoryIsGoneTo) {
    const auto user = [&](Location& location) {
        location.Enter(directory / "to");
        ASSERT_TRUE(location.dialog.isVisible());
        EXPECT_EQ(location.Directory(), directory / "to");
        EXPECT_EQ(location.Field(), directory / "to/wood.sl");
        EXPECT_EQ(location.Ok().text(), "OK");
        location.Enter("..");
        EXPECT_EQ(location.Field(), directory / "wood.sl");
        location.Enter("to/");
        EXPECT_EQ(location.Field(), directory / "to/wood.sl");
        location.PressOk();
    };
    EXPECT_EQ(Run(user, true), directory / "to/wood.sl");
}

TEST_F(SelectLocationDialog, OkOnADirectoryOfTheListGoesThere) {
    const auto user = [&](Location& location) {
        location.Click("below");
        EXPECT_EQ(location.Ok().text(), "OK");
        location.PressOk();
        ASSERT_TRUE(location.dialog.isVisible());
        EXPECT_EQ(location.Field(), directory / "from/below/wood.sl");
        location.PressOk();
    };
    EXPECT_EQ(Run(user, true), directory / "from/below/wood.sl");
}

TEST_F(SelectLocationDialog, ADirectoryEnteredByADoubleClickIsTheOneTaken) {
    const auto user = [&](Location& location) {
        location.Enter(directory / "");
        location.DoubleClick("to");
        EXPECT_EQ(location.Field(), directory / "to/wood.sl");
        location.PressOk();
    };
    EXPECT_EQ(Run(user, true), directory / "to/wood.sl");
}

TEST_F(SelectLocationDialog, AnotherFileNameIsPutBackAndTheDialogStays) {
    const auto user = [&](Location& location) {
        location.Enter("marble.sl");
        ASSERT_TRUE(location.dialog.isVisible());
        EXPECT_EQ(location.Field(), directory / "from/wood.sl");
        location.Enter(directory / "to/marble.sl");
        ASSERT_TRUE(location.dialog.isVisible());
        EXPECT_EQ(location.Directory(), directory / "from");
        EXPECT_EQ(location.Field(), directory / "from/wood.sl");
    };
    EXPECT_EQ(Run(user, false), directory / "from/wood.sl");
}

TEST_F(SelectLocationDialog, AnotherFileOfTheListIsPutBackToo) {
    const auto user = [&](Location& location) {
        location.Enter("below");
        for (int time = 0; time < 2; ++time) {
            location.Click("other.sl");
            EXPECT_EQ(location.Field(), "other.sl");
            location.PressOk();
            ASSERT_TRUE(location.dialog.isVisible());
            EXPECT_EQ(location.Field(), directory / "from/below/wood.sl");
        }
        location.DoubleClick("other.sl");
        ASSERT_TRUE(location.dialog.isVisible());
        EXPECT_EQ(location.Field(), directory / "from/below/wood.sl");
    };
    EXPECT_EQ(Run(user, false), directory / "from/wood.sl");
}

TEST_F(SelectLocationDialog, TheFileNameMayDifferInCaseAndIsTheRememberedOne) {
    EXPECT_EQ(Run([&](Location& location) { location.Enter(directory / "to/WOOD.SL"); }, true),
              directory / "to/wood.sl");
}

TEST_F(SelectLocationDialog, ADirectoryThatIsNotThereIsRefused) {
    const auto user = [&](Location& location) {
        location.Enter(directory / "nowhere/wood.sl");
        ASSERT_TRUE(location.dialog.isVisible());
        EXPECT_EQ(location.Field(), directory / "from/wood.sl");
    };
    Run(user, false);
}

TEST_F(SelectLocationDialog, APathWhoseDirectoryIsGoneStartsInTheNearestAboveIt) {
    path = directory / "to/gone/deeper/wood.sl";
    Run([&](Location& location) { EXPECT_EQ(location.Directory(), directory / "to"); }, false);
}

TEST_F(SelectLocationDialog, APathWithoutAFileNameGetsAnotherDirectory) {
    path = directory / "from/";
    const auto user = [&](Location& location) {
        location.Enter(directory / "to");
        ASSERT_TRUE(location.dialog.isVisible());
        location.PressOk();
    };
    EXPECT_EQ(Run(user, true), directory / "to/");
}

class SelectFileDialog : public SelectLocationDialog {};

TEST_F(SelectFileDialog, TakesAFileThatIsThereAndOneThatIsNot) {
    for (const char* name : {"to/notes.txt", "to/new"}) {
        test::ChooseFileWhenDialogComes(directory / name);
        ASSERT_TRUE(SelectFile(path, nullptr, FilePurpose::kRead));
        EXPECT_EQ(path, directory / name);
    }
}

TEST_F(SelectFileDialog, OffersThePathAndShowsAllFiles) {
    test::WhenDialogComes([&](QDialog& shown) {
        Location location(shown);
        EXPECT_EQ(shown.windowTitle(), "Select File");
        EXPECT_EQ(location.Directory(), directory / "from");
        EXPECT_EQ(location.Field(), "wood.sl");
        EXPECT_TRUE(location.Row("below").isValid());
        shown.reject();
    });
    EXPECT_FALSE(SelectFile(path, nullptr, FilePurpose::kWrite));
    EXPECT_EQ(path, directory / "from/wood.sl");
}

TEST_F(SelectFileDialog, AFileToBeOverwrittenIsAskedAbout) {
    test::WhenDialogComes([&](QDialog& shown) {
        Location location(shown);
        test::PressWhenBoxComes("No");
        QTest::keyClick(&location.field, Qt::Key_Return);
        EXPECT_TRUE(shown.isVisible());
        test::PressWhenBoxComes("Yes");
        QTest::keyClick(&location.field, Qt::Key_Return);
    });
    EXPECT_TRUE(SelectFile(path, nullptr, FilePurpose::kWrite));
    EXPECT_EQ(test::BoxesShown().size(), 2);
}

TEST_F(SelectFileDialog, ANewFileToBeWrittenIsNotAskedAbout) {
    test::ChooseFileWhenDialogComes(directory / "to/new.sl");
    EXPECT_TRUE(SelectFile(path, nullptr, FilePurpose::kWrite));
    EXPECT_EQ(path, directory / "to/new.sl");
}

}  // namespace
}  // namespace tavrin
