// SPDX-License-Identifier: Apache-2.0
// Keeping renders in the frame: by the menu, by the Render History, and at the end of the program.
#include <QAbstractButton>
#include <QMessageBox>
#include <QWindow>

#include "ui/commands/KeepWork.h"
#include "ui/frame/StatusBox.h"
#include "ui/support/DocumentsTest.h"
#include "ui/support/Hands.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::AnswerFileDialog;
using test::BoxesShown;
using test::DocumentsTest;
using test::PressWhenBoxComes;
using test::ReadFile;
using test::SeenDialog;
using test::WaitUntil;
using test::WhenDialogComes;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// Leaves a picture as the library's own script does.
constexpr const char* kRenderIt = R"(#!/usr/bin/perl
use strict;
use warnings;
my ($name, $number) = @ARGV;
my $directory = "$ENV{TAVRN_WORKDIR}/$number";
mkdir $directory;
open my $picture, '>', "$directory/$name.ppm" or die "$directory/$name.ppm: $!\n";
print $picture "P6\n2 2\n255\n", "\xC8\x1E\x28" x 4;
close $picture;
)";

class KeptRendersTest : public DocumentsTest {
  protected:
    KeptRendersTest() {
        fs::permissions(directory.Write("tavrin/tiny/bin/renderit", kRenderIt), fs::perms::owner_all);
    }
    // "docs/marble.tvn" is open and has one box.
    void StartWithMarble() {
        StartWithDocs();
        marble = WriteDocument("docs/marble");
        Open(marble);
    }
    void Render() {
        Do(CommandId::kRenderIt);
        ASSERT_TRUE(WaitUntil([this] { return !App().GetSite().commands.AnyProcessLeft(); }));
        Settle();
    }
    // One with a box more than the last.
    void RenderChanged() {
        AddBoxes(1);
        Render();
    }
    QListView& List() { return *Frame().Windows().Of(CommandId::kRenderHistory).findChild<QListView*>(); }
    QPoint RowAt(int row) { return List().visualRect(List().model()->index(row, 0)).center(); }
    void ClickRow(int row) {
        if (!Frame().Windows().Of(CommandId::kRenderHistory).isVisible()) Do(CommandId::kRenderHistory);
        Settle();
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, RowAt(row));
        Settle();
    }
    void KeepByMenu() {
        test::ChooseInMenu(Frame(), "Render", Action(CommandId::kKeepRender));
        Settle();
    }
    bool CanKeep() { return IsEnabled(CommandId::kKeepRender); }
    std::string Docs(const std::string& name) const { return directory / ("docs/" + name); }
    std::vector<std::string> Made() {
        std::vector<std::string> names = test::NamesIn(directory / "docs");
        std::erase(names, "marble.tvn");
        std::sort(names.begin(), names.end());
        return names;
    }

    std::string marble;
};

// The command

TEST_F(KeptRendersTest, TheMenuKeepsTheNewestRenderBesideItsDocument) {
    StartWithMarble();
    Render();
    RenderChanged();
    KeepByMenu();
    EXPECT_THAT(Made(), ElementsAre("marble-2.ppm", "marble-2.tvn"));
    EXPECT_EQ(BoxesIn(Docs("marble-2.tvn")), 2U);
    EXPECT_THAT(Log(), HasSubstr("kept render 2 as " + Docs("marble-2.tvn") + " with its picture\n"));
    EXPECT_EQ(Bytes(Frame().StatusBox().Status()), "Kept render 2 as " + Docs("marble-2.tvn"));
    EXPECT_EQ(Document().Path(), marble);
    EXPECT_TRUE(Document().IsModified());
}

TEST_F(KeptRendersTest, TheSelectedRowOfTheHistoryIsKeptInPlaceOfTheNewest) {
    StartWithMarble();
    Render();
    RenderChanged();
    ClickRow(1);
    KeepByMenu();
    EXPECT_THAT(Made(), ElementsAre("marble-1.ppm", "marble-1.tvn"));
    EXPECT_EQ(BoxesIn(Docs("marble-1.tvn")), 1U);
    EXPECT_FALSE(CanKeep()) << "that row was kept";
    Do(CommandId::kRenderHistory);
    Settle();
    EXPECT_TRUE(CanKeep()) << "the window is hidden, so the newest counts";
}

TEST_F(KeptRendersTest, TheMenuOfARowKeepsItsRender) {
    StartWithMarble();
    Render();
    RenderChanged();
    Do(CommandId::kRenderHistory);
    Settle();
    QContextMenuEvent event(QContextMenuEvent::Mouse, RowAt(1), List().viewport()->mapToGlobal(RowAt(1)));
    QApplication::sendEvent(List().viewport(), &event);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    const qsizetype place = MenuTexts(menu).indexOf("Keep Render");
    ASSERT_GE(place, 0);
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions()[place]).center());
    Settle();
    EXPECT_THAT(Made(), ElementsAre("marble-1.ppm", "marble-1.tvn"));
}

TEST_F(KeptRendersTest, ARenderThatRunsOrWasKeptOrIsNotInTheHistoryCannotBeKept) {
    StartWithMarble();
    EXPECT_FALSE(CanKeep());
    fs::permissions(directory.Write("tavrin/tiny/bin/renderit",
                                    "#!/bin/sh\nwhile [ -e \"$TAVRN_DIR/../hold\" ]; do sleep 0.01; done\n"),
                    fs::perms::owner_all);
    HoldScripts();
    Do(CommandId::kRenderIt);
    Settle();
    EXPECT_FALSE(CanKeep());
    Do(CommandId::kKeepRender);
    EXPECT_EQ(Bytes(Frame().StatusBox().Status()), "Render 1 is still running");
    EXPECT_THAT(Made(), IsEmpty());
    ReleaseScripts();
    ASSERT_TRUE(WaitUntil([this] { return Action(CommandId::kKeepRender).isEnabled(); }))
        << "the end of a render is no act of the user";
    KeepByMenu();
    EXPECT_FALSE(CanKeep());
    EXPECT_THAT(Made(), ElementsAre("marble-1.tvn"));
    Do(CommandId::kKeepHistory);
    Render();
    EXPECT_FALSE(CanKeep());
}

TEST_F(KeptRendersTest, ANameThatIsTakenIsLeftAlone) {
    StartWithMarble();
    directory.Write("docs/marble-1.ppm", "mine");
    Render();
    KeepByMenu();
    EXPECT_THAT(Made(), ElementsAre("marble-1-2.ppm", "marble-1-2.tvn", "marble-1.ppm"));
    EXPECT_EQ(ReadFile(Docs("marble-1.ppm")), "mine");
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(KeptRendersTest, ADirectoryThatHasGoneIsTold) {
    StartWithMarble();
    Render();
    fs::rename(directory / "docs", directory / "away");
    PressWhenBoxComes("OK");
    KeepByMenu();
    ExpectBox("Alert: unable to keep render 1 as " + Docs("marble-1.tvn") + ": No such file or directory");
    EXPECT_TRUE(CanKeep());
    fs::rename(directory / "away", directory / "docs");
    KeepByMenu();
    EXPECT_THAT(Made(), ElementsAre("marble-1.ppm", "marble-1.tvn"));
}

TEST_F(KeptRendersTest, AFullDiskLeavesNothingHalf) {
    StartWithMarble();
    Render();
    PressWhenBoxComes("OK");
    {
        const test::FileSizeLimit limit(20);
        KeepByMenu();
    }
    ExpectBox("Alert: unable to keep render 1 as " + Docs("marble-1.tvn") + ": File too large");
    EXPECT_THAT(Made(), IsEmpty());
}

TEST_F(KeptRendersTest, AKeptRenderShowsThatInItsRow) {
    StartWithMarble();
    Render();
    ClickRow(0);
    List().clearSelection();
    const QImage before = List().viewport()->grab().toImage();
    KeepByMenu();
    EXPECT_NE(List().viewport()->grab().toImage(), before);
    EXPECT_THAT(Bytes(List().model()->index(0, 0).data(Qt::ToolTipRole).toString()),
                HasSubstr("Kept as " + Docs("marble-1.tvn")));
}

// A document without a file

TEST_F(KeptRendersTest, ForADocumentWithoutAFileTheUserIsAskedWhere) {
    StartWithDocs();
    AddBoxes(1);
    Render();
    SeenDialog seen;
    AnswerFileDialog(seen, "");
    KeepByMenu();
    EXPECT_EQ(seen.title, "Keep Render");
    EXPECT_EQ(seen.directory, directory / "docs/");
    EXPECT_EQ(seen.name, "Untitled-1.tvn");
    EXPECT_THAT(Made(), IsEmpty());
    EXPECT_TRUE(CanKeep());
    AnswerFileDialog(seen, Docs("best"));
    KeepByMenu();
    EXPECT_THAT(Made(), ElementsAre("best.ppm", "best.tvn"));
    EXPECT_EQ(Document().Path(), "") << "the document itself has none as before";
    EXPECT_FALSE(CanKeep());
}

TEST_F(KeptRendersTest, APictureInTheWayOfAChosenNameIsReplacedOnlyWhenTheUserSaysSo) {
    StartWithDocs();
    AddBoxes(1);
    Render();
    directory.Write("docs/best.ppm", "mine");
    const std::string question = "Warning: " + Docs("best.ppm") + " is there already.  Replace it?";
    SeenDialog seen;
    AnswerFileDialog(seen, Docs("best.tvn"));
    PressWhenBoxComes("No");
    KeepByMenu();
    ExpectBox(question);
    EXPECT_THAT(Made(), ElementsAre("best.ppm"));
    EXPECT_EQ(ReadFile(Docs("best.ppm")), "mine");
    AnswerFileDialog(seen, Docs("best.tvn"));
    PressWhenBoxComes("Yes");
    KeepByMenu();
    ExpectBox(question);
    EXPECT_THAT(Made(), ElementsAre("best.ppm", "best.tvn"));
    EXPECT_THAT(ReadFile(Docs("best.ppm")), HasSubstr("P6"));
}

// Whose it is

TEST_F(KeptRendersTest, AKeptRenderOfAForeignDocumentStaysForeign) {
    StartWithMarble();
    ASSERT_TRUE(Document().IsForeign()) << "nobody has saved it here";
    Render();
    KeepByMenu();
    Open(Docs("marble-1.tvn"));
    EXPECT_TRUE(Document().IsForeign());
}

TEST_F(KeptRendersTest, AKeptRenderOfTheUsersOwnDocumentIsTheUsersOwn) {
    StartWithDocs();
    AddBoxes(1);
    test::ChooseFileWhenDialogComes(Docs("own.tvn"));
    Do(CommandId::kSave);
    Settle();
    RenderChanged();
    KeepByMenu();
    PressWhenBoxComes("Discard");
    Open(Docs("own-1.tvn"));
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_FALSE(Document().IsForeign());
}

// The end of the program

class RendersAtEndTest : public KeptRendersTest {
  protected:
    RendersAtEndTest() { AddToSite("history.askatend 1\n"); }

    // The question is answered by a button.
    void Answer(const std::string& button) {
        WhenDialogComes([this, button](QDialog& dialog) {
            auto* box = qobject_cast<QMessageBox*>(&dialog);
            ASSERT_NE(box, nullptr);
            asked.push_back(Bytes(box->windowTitle() + ": " + box->text()));
            EXPECT_EQ(box->icon(), QMessageBox::Warning);
            for (QAbstractButton* candidate : box->buttons()) {
                if (Bytes(candidate->text().remove('&')) == button) return candidate->click();
            }
            ADD_FAILURE() << "no button " << button;
            box->reject();
        });
    }
    void AskToEnd() {
        Frame().windowHandle()->close();
        Settle();
    }
    static std::string Question(const std::string& beginning, const std::string& lines) {
        return "Tavrin: " + beginning + " not kept, and no file holds what was rendered:\n" + lines +
               "\n\nKeep them beside their documents?";
    }

    std::vector<std::string> asked;
    const std::string saveQuestion = "Tavrin: Save changes to marble.tvn?";
    const std::string oneQuestion = Question("A render is", "\n  01 marble");
};

TEST_F(RendersAtEndTest, RendersThatNoFileHoldsAreAskedAboutAfterTheDocument) {
    StartWithMarble();
    RenderChanged();
    RenderChanged();
    Answer("Discard");
    Answer("Discard");
    AskToEnd();
    EXPECT_THAT(asked, ElementsAre(saveQuestion, Question("2 renders are", "\n  01 marble\n  02 marble")));
    EXPECT_TRUE(Frame().IsClosed());
    EXPECT_THAT(Made(), IsEmpty());
    EXPECT_FALSE(fs::exists(WorkDir()));
}

TEST_F(RendersAtEndTest, AfterCancelAllIsAsBefore) {
    StartWithMarble();
    RenderChanged();
    const std::string before = ReadFile(marble);
    Answer("Discard");
    Answer("Cancel");
    AskToEnd();
    EXPECT_THAT(asked, ElementsAre(saveQuestion, oneQuestion));
    EXPECT_FALSE(Frame().IsClosed());
    EXPECT_TRUE(Frame().isVisible());
    EXPECT_TRUE(Document().IsModified());
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_EQ(ReadFile(marble), before);
    EXPECT_THAT(Made(), IsEmpty());
    EXPECT_TRUE(fs::exists(WorkDir() + "/1/marble.ppm"));
    Render();
    EXPECT_EQ(List().model()->rowCount(), 2);
}

TEST_F(RendersAtEndTest, KeepAllKeepsThemAndEnds) {
    StartWithMarble();
    RenderChanged();
    RenderChanged();
    Do(CommandId::kKeepRender);
    RenderChanged();
    Answer("Discard");
    Answer("Keep All");
    AskToEnd();
    EXPECT_EQ(asked.back(), Question("2 renders are", "\n  01 marble\n  03 marble"));
    EXPECT_TRUE(Frame().IsClosed());
    EXPECT_THAT(Made(), ElementsAre("marble-1.ppm", "marble-1.tvn", "marble-2.ppm", "marble-2.tvn",
                                    "marble-3.ppm", "marble-3.tvn"));
}

TEST_F(RendersAtEndTest, EscapeStaysAndReturnKeeps) {
    StartWithMarble();
    RenderChanged();
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        Answer("Discard");
        WhenDialogComes([&](QDialog& dialog) { QTest::keyClick(&dialog, key); });
        AskToEnd();
        EXPECT_EQ(Frame().IsClosed(), key == Qt::Key_Return);
    }
    EXPECT_THAT(Made(), ElementsAre("marble-1.ppm", "marble-1.tvn"));
}

TEST_F(RendersAtEndTest, WhereOneCannotBeKeptTheProgramStays) {
    StartWithMarble();
    RenderChanged();
    fs::rename(directory / "docs", directory / "away");
    Answer("Discard");
    Answer("Keep All");
    PressWhenBoxComes("OK");
    AskToEnd();
    EXPECT_FALSE(Frame().IsClosed());
    ExpectBox("Alert: unable to keep render 1 as " + Docs("marble-1.tvn") + ": No such file or directory");
}

TEST_F(RendersAtEndTest, TwentyRendersAndASaveAskNothing) {
    StartWithMarble();
    for (int render = 0; render < 20; ++render) RenderChanged();
    Do(CommandId::kSave);
    AskToEnd();
    EXPECT_TRUE(Frame().IsClosed());
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(RendersAtEndTest, SavingAtTheEndAsksNothingMore) {
    StartWithMarble();
    RenderChanged();
    RenderChanged();
    Answer("Save");
    AskToEnd();
    EXPECT_THAT(asked, ElementsAre(saveQuestion));
    EXPECT_TRUE(Frame().IsClosed());
}

TEST_F(RendersAtEndTest, RendersOfWhatWasOpenedAskNothing) {
    StartWithMarble();
    Render();
    Do(CommandId::kZoomIn);  // which is to be saved, and is none of the picture
    Settle();
    Render();
    Answer("Discard");
    AskToEnd();
    EXPECT_THAT(asked, ElementsAre(saveQuestion));
    EXPECT_TRUE(Frame().IsClosed());
}

TEST_F(RendersAtEndTest, RendersOfADocumentThatGavePlaceAreAskedAbout) {
    StartWithMarble();
    RenderChanged();
    const std::string other = WriteDocument("docs/other");
    PressWhenBoxComes("Discard");
    Open(other);
    Answer("Discard");
    AskToEnd();
    EXPECT_THAT(asked, ElementsAre(oneQuestion));
}

TEST_F(RendersAtEndTest, OfManyRendersTheFirstAreNamed) {
    StartWithMarble();
    for (int render = 0; render < 12; ++render) RenderChanged();
    Answer("Discard");
    Answer("Discard");
    AskToEnd();
    EXPECT_THAT(asked.back(), AllOf(HasSubstr("12 renders are not kept"), HasSubstr("\n  10 marble"),
                                    Not(HasSubstr("11 marble")), HasSubstr("\n  and 2 more")));
}

TEST_F(RendersAtEndTest, RendersOfADocumentWithoutAFileGoToOnePlace) {
    StartWithDocs();
    AddBoxes(1);
    Render();
    RenderChanged();
    Answer("Discard");
    Answer("Keep All");
    test::ChooseFileWhenDialogComes(Docs("best.tvn"));
    AskToEnd();
    EXPECT_TRUE(Frame().IsClosed());
    EXPECT_THAT(Made(), ElementsAre("Untitled-2.ppm", "Untitled-2.tvn", "best.ppm", "best.tvn"));
}

TEST_F(RendersAtEndTest, APlaceThatIsNotChosenKeepsTheProgram) {
    StartWithDocs();
    AddBoxes(1);
    Render();
    Answer("Discard");
    Answer("Keep All");
    test::CancelWhenDialogComes();
    AskToEnd();
    EXPECT_FALSE(Frame().IsClosed());
    EXPECT_THAT(Made(), IsEmpty());
}

TEST_F(RendersAtEndTest, AScriptThatEndsTheProgramIsNotAsked) {
    StartWithMarble();
    RenderChanged();
    Do(CommandId::kUndo);
    Settle();
    ASSERT_FALSE(Document().IsModified());
    Answer("Yes");
    EXPECT_TRUE(Frame().ActionDispatch().RunScriptFile(directory.Write("s.tvx", "form exit\n")));
    Settle();
    EXPECT_THAT(asked, ElementsAre("Warning: Running script.  Quit anyway?"));
    EXPECT_TRUE(Frame().IsClosed());
}

class RendersAtLiteralEndTest : public RendersAtEndTest {
  protected:
    RendersAtLiteralEndTest() { AddToSite("history.askatend 0\n"); }
};

TEST_F(RendersAtLiteralEndTest, WhereTheSiteDoesNotWantItNothingIsAsked) {
    StartWithMarble();
    RenderChanged();
    Answer("Discard");
    AskToEnd();
    EXPECT_THAT(asked, ElementsAre(saveQuestion));
    EXPECT_TRUE(Frame().IsClosed());
}

}  // namespace
}  // namespace tavrin
