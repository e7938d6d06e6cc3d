// SPDX-License-Identifier: Apache-2.0
// File > Examples: a network is chosen by its picture, and opens as a document of the user's own.
#include <QLabel>
#include <QPushButton>

#include "ui/library/ExampleTiles.h"
#include "ui/library/ExamplesDialog.h"
#include "ui/support/DocumentsTest.h"
#include "ui/support/Hands.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::BoxesShown;
using test::PressWhenBoxComes;
using test::WaitUntil;
using testing::HasSubstr;
using testing::IsEmpty;

class Examples : public test::DocumentsTest {
  protected:
    static constexpr const char* kGallery = "tavrin/tiny/gallery/";

    // The library has "a" of one box and "b" of two.
    void StartWithExamples() {
        AddToSite("examples gallery\n");
        WriteExample("a", 1);
        WriteExample("b", 2);
        StartWithDocs();
    }
    std::string WriteExample(const std::string& name, int boxes) {
        std::string text = "tavrn-renderer tiny\nopdesk {\n";
        for (int wid = 1; wid <= boxes; ++wid)
            text += "opbox { filename Constant wid " + std::to_string(wid) + " }\n";
        return directory.Write(kGallery + name + ".tvn", text + "}\n");
    }
    std::string ExamplePath(const std::string& name) { return directory / (kGallery + name + ".tvn"); }
    void WritePicture(const std::string& name, const QColor& colour) {
        QImage picture(448, 336, QImage::Format_RGB32);
        picture.fill(colour);
        ASSERT_TRUE(picture.save(Shown(directory / (kGallery + name))));
    }

    static QListView& ListOf(QDialog& dialog) { return *dialog.findChild<QListView*>("list"); }
    static QPoint PlaceOf(const QListView& list, int row) {
        return list.visualRect(list.model()->index(row, 0)).center();
    }
    // A dialog that has been seen and holds so many tiles.
    void WhenExamplesCome(int count, std::function<void(QDialog&, QListView&)> answer) {
        test::WhenDialogComes([this, count, answer = std::move(answer)](QDialog& dialog) {
            ++m_dialogs;
            EXPECT_EQ(Bytes(dialog.windowTitle()), "Examples");
            EXPECT_EQ(ListOf(dialog).model()->rowCount(), count);
            answer(dialog, ListOf(dialog));
            if (dialog.isVisible()) dialog.reject();
        });
    }
    void ClickExample(int row) {
        WhenExamplesCome(2, [row](QDialog&, QListView& list) {
            QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, PlaceOf(list, row));
        });
    }
    // By the menu, as a user does; the dialog was there so many times by then.
    void Choose(int dialogs = 1) {
        test::ChooseInMenu(Frame(), "File", Action(CommandId::kExamples));
        Settle();
        EXPECT_EQ(m_dialogs, dialogs);
    }

    int m_dialogs = 0;
};

TEST_F(Examples, AClickOpensOneAsADocumentWithoutAFile) {
    StartWithExamples();
    ClickExample(1);
    Choose();
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_EQ(Document().Path(), "");
    EXPECT_EQ(Bytes(Frame().windowTitle()), "b.tvn[*]");
    EXPECT_FALSE(Document().IsModified());
    EXPECT_THAT(RecentFilesShown(), IsEmpty());
    EXPECT_THAT(Log(), HasSubstr("opened a copy of " + ExamplePath("b")));
    EXPECT_EQ(DocDir(), directory / "docs/");
}

TEST_F(Examples, SavingAsksForANameAndLeavesTheExampleAsItIs) {
    StartWithExamples();
    const std::string before = test::ReadFile(ExamplePath("b"));
    ClickExample(1);
    Choose();
    AddBoxes(1);
    const std::string own = directory / "docs/own.tvn";
    test::SeenDialog offered;
    test::AnswerFileDialog(offered, own);
    test::ChooseInMenu(Frame(), "File", Action(CommandId::kSave));
    Settle();
    EXPECT_EQ(offered.title, "Save As");
    EXPECT_EQ(offered.name, "b.tvn");
    EXPECT_EQ(offered.directory, directory / "docs/");
    EXPECT_EQ(BoxesIn(own), 3U);
    EXPECT_EQ(test::ReadFile(ExamplePath("b")), before);
    EXPECT_EQ(Document().Path(), own);
}

TEST_F(Examples, TheArrowKeysAndEnterChooseOne) {
    StartWithExamples();
    WhenExamplesCome(2, [](QDialog&, QListView& list) {
        test::GiveFocus(list);
        test::PressKeys("Right");
        test::PressKeys("Return");
    });
    Choose();
    EXPECT_EQ(Bytes(Frame().windowTitle()), "b.tvn[*]");
}

TEST_F(Examples, TheListHasTheKeysAsSoonAsItIsThere) {
    StartWithExamples();
    WhenExamplesCome(2, [](QDialog& dialog, QListView& list) {
        test::WaitUntilSeen(dialog);
        EXPECT_TRUE(test::HasFocus(list));
        EXPECT_EQ(list.currentIndex().row(), 0);
        test::PressKeys("Return");
    });
    Choose();
    EXPECT_EQ(Bytes(Frame().windowTitle()), "a.tvn[*]");
}

TEST_F(Examples, EscapeAndCancelLeaveTheDeskAsItIs) {
    StartWithExamples();
    AddBoxes(3);
    WhenExamplesCome(2, [](QDialog&, QListView& list) {
        test::GiveFocus(list);
        test::PressKeys("Esc");
    });
    Choose();
    WhenExamplesCome(2, [](QDialog& dialog, QListView&) {
        for (auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->text().remove('&') == "Cancel") QTest::mouseClick(button, Qt::LeftButton);
        }
        EXPECT_FALSE(dialog.isVisible());
    });
    Choose(2);
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(Examples, ChangesAreAskedAboutBeforeOneOpens) {
    StartWithExamples();
    AddBoxes(3);
    ClickExample(0);
    PressWhenBoxComes("Cancel");
    Choose();
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_TRUE(Document().IsModified());
    ClickExample(0);
    PressWhenBoxComes("Discard");
    Choose(2);
    EXPECT_EQ(Boxes(), 1U);
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(Examples, OneThatIsBrokenShowsWhatCouldBeReadAndSaysSo) {
    StartWithExamples();
    const std::string broken = WriteBrokenDocument(kGallery + std::string("broken.tvn"));
    const std::string before = test::ReadFile(broken);
    WhenExamplesCome(3, [](QDialog&, QListView& list) {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, PlaceOf(list, 2));
    });
    PressWhenBoxComes("OK");
    Choose();
    ExpectBox("Alert: " + broken + " near line 5: unexpected input");
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_EQ(Document().Path(), "");
    EXPECT_TRUE(Document().WouldLoseUnread(broken));
    EXPECT_EQ(test::ReadFile(broken), before);
}

TEST_F(Examples, OneThatCannotBeReadLeavesTheDeskAsItIsAndSaysSo) {
    StartWithExamples();
    Open(WriteDocument("docs/mine", 3));
    const std::string path = MakeUnreadableFile(kGallery + std::string("c.tvn"));
    WhenExamplesCome(3, [](QDialog&, QListView& list) {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, PlaceOf(list, 2));
    });
    PressWhenBoxComes("OK");
    Choose();
    ASSERT_FALSE(BoxesShown().isEmpty());
    EXPECT_THAT(Bytes(BoxesShown().last()), HasSubstr("Alert: unable to open " + path));
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_EQ(Document().Path(), directory / "docs/mine.tvn");
}

TEST_F(Examples, ADirectoryThatIsNotThereIsNamed) {
    AddToSite("examples nowhere\n");
    StartWithDocs();
    std::string told;
    for (int round = 0; round < 2; ++round) {  // one that is there and empty is told of in the same way
        test::WhenDialogComes([&](QDialog& dialog) {
            ++m_dialogs;
            told = Bytes(dialog.findChild<QLabel*>()->text());
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        Choose(round + 1);
        EXPECT_THAT(told, HasSubstr("no examples in " + directory / "tavrin/tiny/nowhere"));
        fs::create_directories(directory / "tavrin/tiny/nowhere");
    }
}

TEST_F(Examples, ALibraryWithoutAnyHasTheCommandGrey) {
    Start();
    EXPECT_FALSE(IsEnabled(CommandId::kExamples));
    AddToSite("examples gallery\n");
    Start();
    EXPECT_TRUE(IsEnabled(CommandId::kExamples));
}

TEST_F(Examples, PicturesAreShownAndASignStandsForThoseThatCannotBe) {
    StartWithExamples();
    WriteExample("c", 1);
    WritePicture("a.png", Qt::red);
    WritePicture("b.jpg", Qt::blue);
    directory.Write(kGallery + std::string("c.png"), "no picture");
    WhenExamplesCome(3, [](QDialog& dialog, QListView& list) {
        ASSERT_TRUE(test::WaitUntilSeen(dialog));
        const auto near = [&list](int row, const QColor& colour) {
            const QRect tile = list.visualRect(list.model()->index(row, 0));
            const QImage seen = list.viewport()->grab(tile).toImage();
            const QColor there = seen.pixelColor(seen.width() / 2, seen.height() / 5);
            return std::abs(there.red() - colour.red()) + std::abs(there.green() - colour.green()) +
                       std::abs(there.blue() - colour.blue()) <
                   20;
        };
        EXPECT_TRUE(WaitUntil([&] { return near(0, Qt::red) && near(1, Qt::blue); }));
        EXPECT_TRUE(near(2, list.palette().color(QPalette::Base)));
    });
    Choose();
}

TEST_F(Examples, TilesTellWhatTheExampleIs) {
    AddToSite("examples gallery\n");
    directory.Write(
        kGallery + std::string("a.tvn"),
        "opdesk {\n}\ncustomshaderhelp\n{\n>  R E D   L E A D\n>\n>DESCRIPTION\n>  Old & <b>red</b>. "
        "It rubs off.\n}\n");
    StartWithDocs();
    WhenExamplesCome(1, [](QDialog&, QListView& list) {
        const QModelIndex tile = list.model()->index(0, 0);
        EXPECT_EQ(Bytes(tile.data().toString()), "Red Lead");
        EXPECT_EQ(Bytes(tile.data(ExampleTiles::kSummary).toString()), "Old & <b>red</b>.");
        EXPECT_EQ(tile.data(Qt::AccessibleDescriptionRole), tile.data(ExampleTiles::kSummary));
        EXPECT_THAT(Bytes(tile.data(Qt::ToolTipRole).toString()), HasSubstr("&lt;b&gt;red"));
    });
    Choose();
}

// A render of one that nobody has changed can be had again.
TEST_F(Examples, AnExampleThatWasOnlyLookedAtAndRenderedIsNotAskedAboutAtTheEnd) {
    AddToSite("history.askatend 1\n");
    StartWithExamples();
    ClickExample(0);
    Choose();
    EXPECT_TRUE(Document().IsNetworkSaved());
    AddBoxes(1);
    EXPECT_FALSE(Document().IsNetworkSaved());
    Desk().Undo();
    EXPECT_TRUE(Document().IsNetworkSaved());
}

}  // namespace
}  // namespace tavrin
