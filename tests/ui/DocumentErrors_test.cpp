// SPDX-License-Identifier: Apache-2.0
// Files with errors in them, and saves that fail.
#include "ui/support/DocumentsTest.h"

namespace tavrin {
namespace {

using test::DocumentsTest;
using test::FileSizeLimit;
using test::kTimeOfDay;
namespace fs = std::filesystem;

using test::AnswerFileDialog;
using test::BoxesShown;
using test::EnterName;
using test::PressWhenBoxComes;
using test::ReadFile;
using test::SeenDialog;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// Errors in files

class BrokenDocumentTest : public DocumentsTest {
  protected:
    // Opened as far as it goes, with two of its three boxes.
    void OpenBroken() {
        StartWithDocs();
        path = WriteBrokenDocument("docs/broken.tvn");
        text = ReadFile(path);
        PressWhenBoxComes("OK");
        Open(path);
        ExpectBox("Alert: " + path + " near line 5: unexpected input");
    }
    std::string path;
    std::string text;
};

TEST_F(BrokenDocumentTest, OpensAsFarAsItGoesAndIsShownInTheEditor) {
    OpenBroken();
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_EQ(Document().Path(), path);
    EXPECT_TRUE(test::WaitUntil([this] { return !EditedFiles().empty(); }));
    EXPECT_THAT(EditedFiles(), ElementsAre(path));
    EXPECT_THAT(Log(), HasSubstr("ALERT: " + path + " near line 5: unexpected input"));
    EXPECT_THAT(RecentFilesShown(), ElementsAre(path));
}

// What opens files by their own type opens a document in this program, which would open it again, and so on.
TEST_F(BrokenDocumentTest, WithoutAnEditorOfTheUsersOpensInTheDesktopsForPlainTexts) {
    for (const char* name : {"TAVRN_EDITORCMD", "VISUAL", "EDITOR", "XDG_CURRENT_DESKTOP"})
        environment.Unset(name);
    environment.Set("PATH", directory / "programs:" + environment.Get("PATH").value_or(""));
    environment.Set("XDG_CONFIG_HOME", directory / "config");
    environment.Set("XDG_CONFIG_DIRS", directory / "config");
    environment.Set("XDG_DATA_HOME", directory / "data");
    environment.Set("XDG_DATA_DIRS", directory / "data");
    const auto install = [this](const std::string& name, const std::string& mimeType) {
        const std::string program = directory.Write(
            "programs/" + name, "#!/bin/sh\nprintf '" + name + " %s\\n' \"$@\" >>\"$TAVRN_DIR/../edited\"\n");
        fs::permissions(program, fs::perms::owner_all);
        directory.Write("data/applications/" + name + ".desktop",
                        "[Desktop Entry]\nType=Application\nExec=" + name + " %u\n");
        return mimeType + "=" + name + ".desktop\n";
    };
    install("xdg-open", "");
    directory.Write("config/mimeapps.list", "[Default Applications]\n" +
                                                install("tavrin", "application/x-tavrin-document") +
                                                install("pad", "text/plain"));
    StartWithDocs();
    path = WriteBrokenDocument("docs/my \"broken\" one.tvn");
    PressWhenBoxComes("OK");
    Open(path);
    ExpectBox("Alert: " + path + " near line 5: unexpected input");
    EXPECT_TRUE(test::WaitUntil([this] { return !EditedFiles().empty(); }));
    EXPECT_THAT(EditedFiles(), ElementsAre("pad " + path));
}

TEST_F(BrokenDocumentTest, AsksBeforeItsFileIsSavedOver) {
    OpenBroken();
    Change();
    PressWhenBoxComes("No");
    Do(CommandId::kSave);
    ExpectBox("Warning: " + path +
              " was not read to its end because of an error in it.  Saving replaces the file and loses what "
              "was not read.  Save anyway?");
    EXPECT_EQ(ReadFile(path), text);
    EXPECT_TRUE(Document().IsModified());
    PressWhenBoxComes("Yes");
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(path), 2U);
    EXPECT_NE(ReadFile(path), text);
    EXPECT_FALSE(Document().IsModified());
    Change();
    Do(CommandId::kSave);  // nothing of the file is missing any more
    EXPECT_EQ(BoxesShown().size(), 3);
}

TEST_F(BrokenDocumentTest, ANoToSavingOverItStaysWithTheDocument) {
    OpenBroken();
    Change();
    PressWhenBoxComes("Save");
    PressWhenBoxComes("No");
    Do(CommandId::kNew);
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_EQ(ReadFile(path), text);
}

TEST_F(BrokenDocumentTest, IsSavedUnderAnotherNameWithoutAQuestion) {
    OpenBroken();
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "docs/whole.tvn");
    Do(CommandId::kSaveAs);
    EXPECT_EQ(BoxesIn(directory / "docs/whole.tvn"), 2U);
    EXPECT_EQ(ReadFile(path), text);
}

TEST_F(BrokenDocumentTest, ACopyOfUnsavedWorkThatIsBrokenIsShownAsFarAsItGoes) {
    const std::string copies = "state/tavrin/recovery/unsaved-abcdef";
    const std::string copy = WriteBrokenDocument(copies + ".tvn");
    directory.Write(copies + ".origin", "tavrin-recovery 1\ndocument \"" + directory / "docs/own.tvn" +
                                            "\"\nsaved 1000000000\ncutshort 0\nfailures 0\n");
    PressWhenBoxComes("Recover");
    PressWhenBoxComes("OK");
    StartWithDocs();
    ExpectBox("Alert: " + copy + " near line 5: unexpected input");
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_EQ(Bytes(Frame().windowTitle()), "own.tvn[*]");
    EXPECT_TRUE(Frame().isWindowModified());
}

// Saves that fail

class FailingSaveTest : public DocumentsTest {
  protected:
    void StartWithChanges() {
        StartWithDocs();
        path = WriteDocument("docs/a", 1);
        Open(path);
        AddBoxes(2);
    }
    void ExpectFailure(const std::string& reason) {
        PressWhenBoxComes("OK");
        Do(CommandId::kSave);
        ExpectBox("Alert: unable to save " + path + ": " + reason);
        EXPECT_EQ(Boxes(), 3U);
        EXPECT_TRUE(Document().IsModified());
        EXPECT_EQ(Document().Path(), path);
        EXPECT_THAT(Log(), Not(HasSubstr("saved")));
    }
    void ExpectSavedElsewhere() {
        SeenDialog seen;
        AnswerFileDialog(seen, directory / "rescue.tvn");
        Do(CommandId::kSaveAs);
        EXPECT_EQ(BoxesIn(directory / "rescue.tvn"), 3U);
        EXPECT_FALSE(Document().IsModified());
    }
    std::string path;
};

TEST_F(FailingSaveTest, WhereADirectoryHasTheNameNothingIsLost) {
    StartWithChanges();
    fs::remove(path);
    fs::create_directory(path);
    ExpectFailure("Is a directory");
    ExpectSavedElsewhere();
}

TEST_F(FailingSaveTest, WhereTheDirectoryIsGoneNothingIsLost) {
    StartWithChanges();
    fs::remove_all(directory / "docs");
    PressWhenBoxComes("Yes");  // it is gone, and to be saved again
    ExpectFailure("No such file or directory");
    ExpectSavedElsewhere();
}

TEST_F(FailingSaveTest, OnAFullDiskTheOldFileStaysWhole) {
    StartWithChanges();
    const std::string before = ReadFile(path);
    {
        const FileSizeLimit limit(64);
        PressWhenBoxComes("OK");
        Do(CommandId::kSave);
        Settle();
    }
    ExpectBox("Alert: unable to save " + path + ": File too large");
    EXPECT_EQ(ReadFile(path), before);
    EXPECT_TRUE(Document().IsModified());
    size_t files = 0;
    for ([[maybe_unused]] const auto& file : fs::directory_iterator(directory / "docs")) ++files;
    EXPECT_EQ(files, 1U) << "something was left beside the file";
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(path), 3U);
}

TEST_F(FailingSaveTest, ASaveAsThatFailsKeepsNameAndDirectory) {
    StartWithChanges();
    fs::create_directories(directory / "more");
    test::WhenDialogComes([&](QDialog& dialog) {
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        EnterName(*name, directory / "more/b.tvn");
        fs::remove(directory / "more");  // while the dialog was open
        QTest::keyClick(name, Qt::Key_Return);
    });
    PressWhenBoxComes("OK");
    Do(CommandId::kSaveAs);
    ExpectBox("Alert: unable to save " + (directory / "more/b.tvn") + ": No such file or directory");
    EXPECT_EQ(Document().Path(), path);
    EXPECT_EQ(DocDir(), directory / "docs/");
    EXPECT_EQ(Bytes(Frame().windowTitle()), "a.tvn[*]");
    EXPECT_TRUE(Document().IsModified());
    EXPECT_THAT(RecentFilesShown(), ElementsAre(path));
}

}  // namespace
}  // namespace tavrin
