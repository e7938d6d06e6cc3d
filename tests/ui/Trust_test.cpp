// SPDX-License-Identifier: Apache-2.0
// What the window asks before it does what files from elsewhere want: the commands of the current directory's
// site file, and the exports of documents that somebody else has written.
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "ui/base/Text.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::BoxesShown;
using test::FrameTest;
using test::PressWhenBoxComes;
using test::WaitUntil;
using test::WhenDialogComes;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class TrustTest : public FrameTest {
  protected:
    // Looks at the next question and presses Return on it, which gives its default.
    void TakeDefaultOfQuestion() {
        WhenDialogComes([this](QDialog& dialog) {
            auto* box = qobject_cast<QMessageBox*>(&dialog);
            ASSERT_NE(box, nullptr);
            question = Bytes(box->text());
            EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::No));
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
    }
    void WaitForQuestion() {
        EXPECT_TRUE(WaitUntil([this] { return !question.empty(); }));
        Settle();
    }

    std::string question;
};

// The site file of the current directory

class SiteCommandsTest : public TrustTest {
  protected:
    SiteCommandsTest() {
        fs::create_directories(directory / "here");
        directory.Write("odd", test::ReadFile(directory / "editor"));
        fs::permissions(directory / "odd", fs::perms::owner_all);
        WriteHere(
            "editorcmd \"" + (directory / "odd") +
            " --odd\"\nroe {\nbutton {\nbuttonlabel Publish\nactionto form\nactionmsg system\nactionarg "
            "touch " +
            (directory / "published") + "\n}\n}\n");
        fs::current_path(directory / "here");
    }
    ~SiteCommandsTest() override {
        End();
        fs::current_path(m_before);
    }
    void WriteHere(const std::string& text) const {
        const std::string path = directory.Write("here/tavrn.def", text);
        for (const std::string& own : {path, directory / "here"})
            fs::permissions(own, fs::perms::group_write | fs::perms::others_write, fs::perm_options::remove);
    }
    std::string Editor() { return App().GetSite().directories.editorCmd; }
    void PressPublish() {
        QWidget& form = Frame().Windows().Of(CommandId::kRenderOptions);
        for (auto* button : form.findChildren<QPushButton*>()) {
            if (button->text() == "Publish") button->click();
        }
        Settle();
    }

  private:
    fs::path m_before = fs::current_path();
};

TEST_F(SiteCommandsTest, TheUserIsShownThemAndNoIsTheDefaultAndHoldsForTheSession) {
    TakeDefaultOfQuestion();
    Start();
    WaitForQuestion();
    EXPECT_THAT(question, AllOf(HasSubstr(directory / "here/tavrn.def"), HasSubstr("\n  editorcmd \""),
                                HasSubstr("\n  button Publish: touch " + (directory / "published"))));
    EXPECT_EQ(Editor(), directory / "editor");
    PressWhenBoxComes("OK");
    PressPublish();
    EXPECT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_THAT(Bytes(BoxesShown().last()), HasSubstr(" is not run: "));
    EXPECT_FALSE(fs::exists(directory / "published"));
    question.clear();
    TakeDefaultOfQuestion();
    Start();
    WaitForQuestion();
}

TEST_F(SiteCommandsTest, YesIsRememberedUntilTheFileChanges) {
    PressWhenBoxComes("Yes");
    Start();
    EXPECT_TRUE(WaitUntil([] { return BoxesShown().size() == 1; }));
    EXPECT_EQ(Editor(), (directory / "odd") + " --odd");
    PressPublish();
    EXPECT_TRUE(fs::exists(directory / "published"));
    Start();
    EXPECT_EQ(Editor(), (directory / "odd") + " --odd");
    EXPECT_EQ(BoxesShown().size(), 1);
    WriteHere("editorcmd other\n");
    TakeDefaultOfQuestion();
    Start();
    WaitForQuestion();
    EXPECT_EQ(Editor(), directory / "editor");
}

// The broken document's own directory may have brought the site file along.
TEST_F(SiteCommandsTest, ABrokenDocumentBesideItOpensInTheUsersEditorUntilTheUserHasAgreed) {
    Make();
    directory.Write("here/bad.tvn", "opdesk { nonsense");
    ASSERT_TRUE(Frame().OpenDocumentFile(directory / "here/bad.tvn"));
    TakeDefaultOfQuestion();
    PressWhenBoxComes("OK");
    test::ShowActive(Frame());
    WaitForQuestion();
    EXPECT_TRUE(WaitUntil([] { return !BoxesShown().isEmpty(); }));
    EXPECT_TRUE(WaitUntil([this] { return !EditedFiles().empty(); }));
    EXPECT_THAT(EditedFiles(), ElementsAre(directory / "here/bad.tvn"));
    EXPECT_EQ(Editor(), directory / "editor");
}

// Exports

class ForeignExportsTest : public TrustTest {
  protected:
    // A document of a stranger that wants a file written and a command run is open.
    void StartWithForeign() {
        fs::create_directories(directory / "out");
        Start();
        foreign = WriteDocument("foreign", 1);
        std::string text = test::ReadFile(foreign);
        const auto put = [&text](const std::string& old, const std::string& wanted) {
            const size_t at = text.find(old);
            ASSERT_NE(at, std::string::npos) << old;
            text.replace(at, text.find('\n', at) - at, wanted);
        };
        put("shadersourcedir", "shadersourcedir 1 " + (directory / "out/"));
        put("postsavescript", "postsavescript 1 touch it");
        directory.Write("foreign.tvn", text);
        ASSERT_TRUE(Frame().OpenDocumentFile(foreign));
        Settle();
    }
    // How often the export script has run.
    int Exports() {
        EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
        return static_cast<int>(Shown(Log()).count("exportall foreign "));
    }

    std::string foreign;
};

TEST_F(ForeignExportsTest, WhatADocumentFromElsewhereWantsIsShownAndNotDoneUnlessTheUserAgrees) {
    StartWithForeign();
    TakeDefaultOfQuestion();
    QTest::keyClick(&Frame(), Qt::Key_F7);
    WaitForQuestion();
    EXPECT_THAT(question, AllOf(HasSubstr(foreign), HasSubstr("\n  write " + (directory / "out/foreign")),
                                HasSubstr("\n  run touch it\n")));
    EXPECT_EQ(Exports(), 0);
    PressWhenBoxComes("Yes");
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
}

TEST_F(ForeignExportsTest, WhatWasAgreedToIsNotAskedAboutAgain) {
    StartWithForeign();
    PressWhenBoxComes("Yes");
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 2);
    Start();
    ASSERT_TRUE(Frame().OpenDocumentFile(foreign));
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
    EXPECT_THAT(BoxesShown(), SizeIs(1));
}

TEST_F(ForeignExportsTest, SavingItAndTakingItFromTheHistoryLeavesItAForeignOne) {
    StartWithForeign();
    Document().SetModified();
    Do(CommandId::kSave);
    TakeDefaultOfQuestion();
    Do(CommandId::kExportAll);
    WaitForQuestion();
    Do(CommandId::kRenderIt);
    EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
    ASSERT_FALSE(Frame().Work().session.History().Entries().empty());
    ASSERT_TRUE(Frame().Work().session.LoadHistoryEntry(Frame().Work().session.History().Entries().front()));
    question.clear();
    TakeDefaultOfQuestion();
    Do(CommandId::kExportAll);
    WaitForQuestion();
    EXPECT_EQ(Exports(), 0);
}

TEST_F(ForeignExportsTest, ADocumentOfTheUsersOwnIsNeverAskedAbout) {
    StartWithForeign();
    Do(CommandId::kNew);
    AddBoxes(1);
    Document().exportOptions.saveSource = 1;
    Document().exportOptions.sourcePath = directory / "out/";
    ASSERT_TRUE(Frame().Work().commands.SaveAs(directory / "foreign.tvn"));
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
    Start();
    ASSERT_TRUE(Frame().OpenDocumentFile(foreign));
    Do(CommandId::kRenderIt);
    EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
    ASSERT_TRUE(Frame().Work().session.LoadHistoryEntry(Frame().Work().session.History().Entries().front()));
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exports(), 1);
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

}  // namespace
}  // namespace tavrin
