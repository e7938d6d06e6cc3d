// Documents as the frame opens, saves, merges and replaces them, with every question on the way.
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QTest>
#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>

#include "base/Paths.h"
#include "ui/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/support/SeenDialog.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;

using test::AnswerFileDialog;
using test::BoxesShown;
using test::EnterName;
using test::PressWhenBoxComes;
using test::ReadFile;
using test::SeenDialog;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kTimeOfDay = " at [01][0-9]:[0-5][0-9] [AP]M";
constexpr const char* kFrozenText = "Warning: Freezing slider desk to prevent mass slider creation";

// What a site knows of shader types.
constexpr const char* kShaderTypeForm = R"(
roe {
    frame {
        chooser {
            envname TAVRN_SHADER_TYPE
            value surface
            choosercontents {
                surface
                metal
            }
        }
    }
}
)";
constexpr const char* kMetalOption = "renderoptions {\n    setenv TAVRN_SHADER_TYPE metal\n}\n";

// Files cannot grow beyond this while it lives, as on a disk that is full.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit m_before{};
    void (*m_handler)(int);
};

class DocumentsTest : public test::FrameTest {
  protected:
    DocumentsTest() { fs::create_directories(directory / "docs"); }

    void AddToSite(const std::string& lines) {
        const std::string path = "tavrin/tiny/tavrn.def";
        directory.Write(path, ReadFile(directory / path) + lines);
    }

    // A frame whose document dialogs open in "docs".
    void StartWithDocs() {
        Start();
        DocDir() = directory / "docs/";
    }
    std::string& DocDir() { return App().GetSite().directories.docBrowserDir; }

    void Open(const std::string& path) {
        ASSERT_TRUE(Frame().OpenDocumentFile(path));
        Settle();
    }
    void Change() {
        Do(CommandId::kShowVarnames);
        Settle();
        ASSERT_TRUE(Document().IsModified());
    }
    // Handles what has come, a box with a message included: the last box says this then.
    void ExpectBox(const std::string& text) {
        Settle();
        ASSERT_FALSE(BoxesShown().isEmpty()) << "no box came to say: " << text;
        EXPECT_EQ(Bytes(BoxesShown().last()), text);
    }

    size_t Boxes() { return Document().m_boxes.size(); }
    // How many boxes a file holds.
    size_t BoxesIn(const std::string& path) {
        std::string error;
        auto archive = CArchive::Open(path, error);
        CTvDoc scratch(App());
        return archive && scratch.ReadDeskOnly(*archive) ? scratch.m_boxes.size() : 0;
    }
    // A document with an error behind its first two boxes; one more follows.
    std::string WriteBrokenDocument(const std::string& name) {
        return directory.Write(name,
                               "tavrn-renderer tiny\nopdesk {\n"
                               "opbox { filename Constant wid 1 }\n"
                               "opbox { filename Constant wid 2 }\n"
                               "nonsense\n"
                               "opbox { filename Constant wid 3 }\n}\n");
    }
    // A file that nobody can open for reading, root included.
    std::string MakeUnreadableFile(const std::string& name) {
        const std::string path = directory / name;
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        EXPECT_LT(path.size(), sizeof(address.sun_path));
        std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        ::close(socket);
        return path;
    }

    // Whether the frame takes files that are dragged over it.
    bool TakesDrag(const QList<QUrl>& files) {
        QMimeData data;
        data.setUrls(files);
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(&Frame(), &enter);
        return enter.isAccepted();
    }
    void Drop(const std::string& path) {
        ASSERT_TRUE(TakesDrag({QUrl::fromLocalFile(Shown(path))}));
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(Shown(path))});
        QDropEvent drop(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&Frame(), &drop);
        Settle();
    }

    // The recent files as the File menu shows them, without numbers.
    std::vector<std::string> RecentFilesShown() {
        std::vector<std::string> files;
        for (const QAction* item : RecentItems()) files.push_back(Bytes(PathOf(*item)));
        return files;
    }
    void ChooseRecentFile(const std::string& path) {
        for (QAction* item : RecentItems()) {
            if (Bytes(PathOf(*item)) != path) continue;
            item->trigger();
            Settle();
            return;
        }
        ADD_FAILURE() << "the menu does not show " << path;
    }

    // "docs" gets "a.tvn" with a box, which is open and has three more that are not saved; "b.tvn" has two.
    void StartModified() {
        StartWithDocs();
        m_b = WriteDocument("docs/b", 2);
        m_a = WriteDocument("docs/a", 1);
        Open(m_b);
        Open(m_a);
        Do(CommandId::kRenderIt);
        ASSERT_TRUE(test::WaitUntil([this] { return !ChildRuns(); }));
        AddBoxes(3);
        ASSERT_TRUE(Document().IsModified());
    }
    std::string m_a;
    std::string m_b;

  private:
    QList<QAction*> RecentItems() {
        QMenu* menu = Menu("File");
        menu->popup(Frame().mapToGlobal(QPoint(0, 0)));
        QList<QAction*> items;
        for (QAction* item : menu->actions()) {
            if (item->text().size() > 3 && item->text()[0] == '&' && item->text()[1].isDigit()) items << item;
        }
        menu->hide();
        return items;
    }
    static QString PathOf(const QAction& item) { return item.text().mid(3); }
};

// New, Save, Save As

TEST_F(DocumentsTest, NewIsSavedAsUntitledAmongTheDocumentsWithoutAsking) {
    StartWithDocs();
    Do(CommandId::kNew);
    Settle();
    EXPECT_EQ(FullPath(Document().Path()), directory / "docs/untitled.tvn");
    EXPECT_EQ(Bytes(Frame().windowTitle()), "untitled.tvn[*]");
    EXPECT_TRUE(Document().m_boxes.empty());
    AddBoxes(2);
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(directory / "docs/untitled.tvn"), 2U);
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(DocumentsTest, ANewDocumentAsksBeforeItTakesThePlaceOfAnEarlierUntitledOne) {
    StartWithDocs();
    directory.Write("docs/untitled.tvn", "earlier work");
    Do(CommandId::kNew);
    AddBoxes(1);
    PressWhenBoxComes("No");
    Do(CommandId::kSave);
    EXPECT_EQ(test::ReadFile(directory / "docs/untitled.tvn"), "earlier work");
    EXPECT_TRUE(Document().IsModified());
    PressWhenBoxComes("Yes");
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(directory / "docs/untitled.tvn"), 1U);
    EXPECT_EQ(test::BoxesShown().last(),
              "Warning: " + Shown(Document().Path()) + " is there already.  Replace it?");
    AddBoxes(1);
    Do(CommandId::kSave);  // its own file now
    EXPECT_EQ(BoxesIn(directory / "docs/untitled.tvn"), 2U);
}

TEST_F(DocumentsTest, TheDocumentOfTheStartAsksWhereItIsToBeSaved) {
    StartWithDocs();
    AddBoxes(1);
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "docs/first.tvn");
    Do(CommandId::kSave);
    EXPECT_EQ(seen.title, "Save As");
    EXPECT_EQ(seen.directory, directory / "docs/");
    EXPECT_EQ(seen.name, "Untitled.tvn");
    EXPECT_EQ(BoxesIn(directory / "docs/first.tvn"), 1U);
    EXPECT_EQ(Bytes(Frame().windowTitle()), "first.tvn[*]");
}

TEST_F(DocumentsTest, SaveAsTakesTheDocumentsNameAndDirectoryWithIt) {
    StartWithDocs();
    Open(WriteDocument("docs/a", 1));
    AddBoxes(1);
    fs::create_directories(directory / "other");
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "other/b");  // the extension comes by itself
    Do(CommandId::kSaveAs);
    EXPECT_EQ(seen.directory, directory / "docs/");
    EXPECT_EQ(seen.name, "a.tvn");
    EXPECT_EQ(Document().Path(), directory / "other/b.tvn");
    EXPECT_EQ(DocDir(), directory / "other/");
    EXPECT_EQ(Bytes(Frame().windowTitle()), "b.tvn[*]");
    EXPECT_FALSE(Frame().isWindowModified());
    EXPECT_EQ(BoxesIn(directory / "other/b.tvn"), 2U);
    EXPECT_EQ(BoxesIn(directory / "docs/a.tvn"), 1U);
    EXPECT_THAT(Log(), ContainsRegex("saved " + directory.Path() + "/other/b.tvn" + kTimeOfDay));
    AddBoxes(1);
    Do(CommandId::kSave);
    EXPECT_EQ(BoxesIn(directory / "other/b.tvn"), 3U);
}

TEST_F(DocumentsTest, SaveAsOverAFileAsksAndMayBeCancelled) {
    StartWithDocs();
    const std::string before = ReadFile(WriteDocument("docs/b", 2));
    AddBoxes(1);
    test::WhenDialogComes([&](QDialog& dialog) {
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        EnterName(*name, "b.tvn");
        PressWhenBoxComes("No");
        QTest::keyClick(name, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        dialog.reject();
    });
    Do(CommandId::kSaveAs);
    EXPECT_EQ(ReadFile(directory / "docs/b.tvn"), before);
    EXPECT_EQ(Document().Path(), "");
    EXPECT_TRUE(Document().IsModified());
    EXPECT_EQ(DocDir(), directory / "docs/");
}

TEST_F(DocumentsTest, SaveIsOfferedForAModifiedDocumentAlone) {
    StartWithDocs();
    Open(WriteDocument("docs/a", 1));
    EXPECT_FALSE(Action(CommandId::kSave).isEnabled());
    EXPECT_FALSE(Frame().isWindowModified());
    Change();
    EXPECT_TRUE(Action(CommandId::kSave).isEnabled());
    EXPECT_TRUE(Frame().isWindowModified());
    Do(CommandId::kSave);
    Settle();
    EXPECT_FALSE(Action(CommandId::kSave).isEnabled());
    EXPECT_FALSE(Frame().isWindowModified());
}

TEST_F(DocumentsTest, TheLogTellsWhatWasOpenedAndSavedAndWhen) {
    StartWithDocs();
    const std::string path = WriteDocument("docs/a", 1);
    Open(path);
    EXPECT_THAT(Log(), ContainsRegex("opened " + path + kTimeOfDay));
    EXPECT_THAT(Log(), Not(HasSubstr("saved")));
    Change();
    Do(CommandId::kSave);
    EXPECT_THAT(Log(), ContainsRegex("saved " + path + kTimeOfDay));
}

TEST_F(DocumentsTest, TheTitleTellsTheShadersType) {
    AddToSite(kShaderTypeForm);
    StartWithDocs();
    Open(directory.Write("docs/typed.tvn", kMetalOption));
    EXPECT_EQ(Bytes(Frame().windowTitle()), "typed.tvn [metal][*]");
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "docs/again.tvn");
    Do(CommandId::kSaveAs);
    EXPECT_EQ(Bytes(Frame().windowTitle()), "again.tvn [metal][*]");
    Do(CommandId::kNew);
    EXPECT_EQ(Bytes(Frame().windowTitle()), "untitled.tvn [surface][*]");
    auto* chooser = Frame().OperatorBar().findChild<QComboBox*>();
    EXPECT_EQ(Bytes(chooser->currentText()), "surface");
    chooser->setFocus();
    QTest::keyClick(chooser, Qt::Key_Home);
    Settle();
    EXPECT_EQ(Bytes(Frame().windowTitle()), "untitled.tvn [metal][*]");
}

TEST_F(DocumentsTest, ADocumentWithoutOptionsGetsTheDefaultsAndNotThoseBefore) {
    AddToSite(kShaderTypeForm);
    StartWithDocs();
    Open(directory.Write("docs/typed.tvn", kMetalOption));
    Open(directory.Write("docs/plain.tvn", "opdesk { }\n"));
    EXPECT_EQ(Bytes(Frame().windowTitle()), "plain.tvn [surface][*]");
}

// Open

TEST_F(DocumentsTest, TheOpenDialogKeepsItsDirectoryAndItsFilter) {
    StartWithDocs();
    fs::create_directories(directory / "more");
    const std::string more = WriteDocument("more/c", 3);
    SeenDialog first;
    AnswerFileDialog(first, more, "All Files (*)");
    Do(CommandId::kOpen);
    Settle();
    EXPECT_EQ(first.title, "Open");
    EXPECT_EQ(first.directory, directory / "docs/");
    EXPECT_EQ(first.filters, QStringList({"Tavrin Documents (*.tvn)", "All Files (*)"}));
    EXPECT_EQ(first.filter, "Tavrin Documents (*.tvn)");
    EXPECT_EQ(Document().Path(), more);
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_EQ(DocDir(), directory / "more/");

    SeenDialog second;
    AnswerFileDialog(second, "");
    Do(CommandId::kOpen);
    EXPECT_EQ(second.directory, directory / "more/");
    EXPECT_EQ(second.filter, "All Files (*)");
    EXPECT_EQ(Document().Path(), more);
}

TEST_F(DocumentsTest, ACancelledOpenDialogForgetsItsDirectoryAndFilterAndAsksNothing) {
    StartModified();
    SeenDialog seen;
    test::WhenDialogComes([&](QDialog& dialog) {
        qobject_cast<QFileDialog*>(&dialog)->setDirectory(Shown(directory.Path()));
        dialog.findChild<QComboBox*>("fileTypeCombo")->setCurrentIndex(1);
        dialog.reject();
    });
    Do(CommandId::kOpen);
    EXPECT_EQ(Boxes(), 4U);
    EXPECT_EQ(DocDir(), directory / "docs/");
    AnswerFileDialog(seen, "");
    Do(CommandId::kOpen);
    EXPECT_EQ(seen.directory, directory / "docs/");
    EXPECT_EQ(seen.filter, "Tavrin Documents (*.tvn)");
}

TEST_F(DocumentsTest, WhatCannotBeOpenedLeavesTheDocumentAsItWas) {
    StartModified();
    fs::create_directories(directory / "docs/folder.tvn");
    const std::vector<std::pair<std::string, std::string>> cases = {
        {directory / "docs/folder.tvn", "Is a directory"},
        {directory / "docs/gone.tvn", "No such file or directory"},
        {MakeUnreadableFile("docs/deaf.tvn"), "No such device or address"},
    };
    for (const auto& [path, reason] : cases) {
        PressWhenBoxComes("Discard");
        PressWhenBoxComes("OK");
        EXPECT_FALSE(Frame().OpenDocumentFile(path));
        ExpectBox("Alert: unable to open " + path + " for reading: " + reason);
        EXPECT_EQ(Boxes(), 4U);
        EXPECT_EQ(Document().Path(), m_a);
        EXPECT_TRUE(Document().IsModified());
        EXPECT_THAT(Log(), Not(HasSubstr("opened " + path)));
        EXPECT_THAT(Log(), HasSubstr("ALERT: unable to open " + path));
    }
    EXPECT_THAT(RecentFilesShown(), ElementsAre(m_a, m_b));
}

TEST_F(DocumentsTest, ADocumentOfAnotherLibraryBringsItsMenus) {
    fs::copy(directory / "tavrin/tiny", directory / "tavrin/other", fs::copy_options::recursive);
    fs::remove_all(directory / "tavrin/other/menu/0300.Patterns");
    fs::rename(directory / "tavrin/other/menu/0200.Paint", directory / "tavrin/other/menu/0200.Lacquer");
    StartWithDocs();
    const auto titles = [this] {
        QStringList texts;
        for (const QAction* item : Frame().menuBar()->actions()) texts << item->text().remove('&');
        return Bytes(texts.join(' '));
    };
    const std::string own = WriteDocument("docs/a", 1);
    Open(
        directory.Write("docs/o.tvn", "tavrn-renderer other\nopdesk { opbox { filename Lacquer wid 1 } }\n"));
    EXPECT_EQ(titles(), "File Edit Find View Options Render Help Constant Lacquer Shapes");
    EXPECT_EQ(Boxes(), 1U);
    Open(own);
    EXPECT_EQ(titles(), "File Edit Find View Options Render Help Constant Paint Patterns Shapes");
}

TEST_F(DocumentsTest, TheSiteMayLockTheDeskFromTheStart) {
    AddToSite("desk.lock 1\n");
    StartWithDocs();
    EXPECT_EQ(Document().lock, 1);
    EXPECT_TRUE(IsChecked(CommandId::kLockDesk));
    EXPECT_FALSE(Frame().Desk().isEnabled());
    EXPECT_FALSE(Frame().isWindowModified());
    Do(CommandId::kLockDesk);
    EXPECT_TRUE(Frame().Desk().isEnabled());
    PressWhenBoxComes("Discard");
    Do(CommandId::kNew);
    EXPECT_FALSE(Frame().Desk().isEnabled());
}

// The question before a modified document goes

// Each way in which a modified document gives place to another.
class QuestionTest : public DocumentsTest, public testing::WithParamInterface<const char*> {
  protected:
    // Answers the question on the way with a button, "" for Escape, and a box after it, if one comes.
    void Go(const QString& answer, const QString& next = {}) {
        const std::string way = GetParam();
        SeenDialog seen;
        if (way == "Open") AnswerFileDialog(seen, m_b);
        if (answer.isEmpty()) {
            test::WhenDialogComes([](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); });
        } else {
            PressWhenBoxComes(answer);
        }
        if (!next.isEmpty()) PressWhenBoxComes(next);
        if (way == "New") Do(CommandId::kNew);
        if (way == "Open") Do(CommandId::kOpen);
        if (way == "History") DoubleClickOldestEntry();
        if (way == "Recent") ChooseRecentFile(m_b);
        if (way == "Drop") Drop(m_b);
        Settle();
    }
    void ExpectReplaced() {
        const std::string way = GetParam();
        EXPECT_EQ(Boxes(), way == "New" ? 0U : way == "History" ? 1U : 2U);
        // An older version is not what the document's file holds.
        EXPECT_EQ(Document().IsModified(), way == "History");
        EXPECT_EQ(FullPath(Document().Path()), way == "New"       ? directory / "docs/untitled.tvn"
                                               : way == "History" ? m_a
                                                                  : m_b);
    }
    void ExpectKept() {
        EXPECT_EQ(Boxes(), 4U);
        EXPECT_TRUE(Document().IsModified());
        EXPECT_TRUE(Frame().isWindowModified());
        EXPECT_EQ(Document().Path(), m_a);
        EXPECT_EQ(Bytes(Frame().windowTitle()), "a.tvn[*]");
    }

  private:
    void DoubleClickOldestEntry() {
        Do(CommandId::kRenderHistory);
        Settle();
        auto* list = Frame().Windows().renderHistory->findChild<QListWidget*>();
        const QPoint at = list->visualItemRect(list->item(list->count() - 1)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
    }
};

INSTANTIATE_TEST_SUITE_P(Ways, QuestionTest, testing::Values("New", "Open", "History", "Recent", "Drop"),
                         [](const auto& way) { return std::string(way.param); });

TEST_P(QuestionTest, SaveSavesAndGoesOn) {
    StartModified();
    Go("Save");
    EXPECT_EQ(Bytes(BoxesShown().last()), "Tavrin: Save changes to a.tvn?");
    ExpectReplaced();
    EXPECT_EQ(BoxesIn(m_a), 4U);
    EXPECT_THAT(Log(), ContainsRegex("saved " + m_a + kTimeOfDay));
}

TEST_P(QuestionTest, DiscardGoesOnAndLeavesTheFileAlone) {
    StartModified();
    Go("Discard");
    ExpectReplaced();
    EXPECT_EQ(BoxesIn(m_a), 1U);
}

TEST_P(QuestionTest, CancelStaysWithTheDocument) {
    StartModified();
    Go("Cancel");
    ExpectKept();
    Go("");
    ExpectKept();
    EXPECT_EQ(BoxesIn(m_a), 1U);
}

TEST_P(QuestionTest, ASaveThatFailsStaysWithTheDocument) {
    StartModified();
    fs::remove(m_a);
    fs::create_directory(m_a);
    Go("Save", "OK");
    EXPECT_THAT(Bytes(BoxesShown().last()), HasSubstr("Alert: unable to save " + m_a + ": "));
    ExpectKept();
}

TEST_F(DocumentsTest, AnUnmodifiedDocumentGoesWithoutAQuestion) {
    StartModified();
    Do(CommandId::kSave);
    Open(m_b);
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(DocumentsTest, ADocumentWithoutAFileMayBeKeptByCancellingWhereToSaveIt) {
    StartWithDocs();
    AddBoxes(3);
    PressWhenBoxComes("Save");
    test::CancelWhenDialogComes();
    Do(CommandId::kNew);
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_TRUE(Document().IsModified());
}

// Merge

class MergeTest : public DocumentsTest {
  protected:
    // `thenPress` is the button of the box that comes after the file dialog; empty if none does.
    SeenDialog Merge(const std::string& path, const QString& thenPress = {}) {
        SeenDialog seen;
        AnswerFileDialog(seen, path);
        if (!thenPress.isEmpty()) PressWhenBoxComes(thenPress);
        Do(CommandId::kMerge);
        Settle();
        return seen;
    }
    std::vector<int> Wids() {
        std::vector<int> wids;
        for (const auto& box : Document().m_boxes) wids.push_back(box->wid);
        std::sort(wids.begin(), wids.end());
        return wids;
    }
    void ClickDesk() {
        QWidget& desk = Frame().Desk().Desk();
        QMouseEvent move(QEvent::MouseMove, desk.rect().center(), desk.mapToGlobal(desk.rect().center()),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&desk, &move);
        QTest::mouseClick(&desk, Qt::LeftButton, {}, desk.rect().center());
        Settle();
    }
};

TEST_F(MergeTest, PutsTheBoxesUnderTheMouseWithNewNumbersUntilTheNextPress) {
    StartWithDocs();
    Open(WriteDocument("docs/a", 1));
    fs::create_directories(directory / "more");
    const std::string more = WriteDocument("more/b", 2);
    const SeenDialog seen = Merge(more, "OK");
    EXPECT_EQ(seen.title, "Merge");
    EXPECT_EQ(seen.directory, directory / "docs/");
    EXPECT_EQ(seen.filters, QStringList("Tavrin Documents (*.tvn)"));
    EXPECT_EQ(Boxes(), 1U);
    ClickDesk();
    EXPECT_THAT(Wids(), ElementsAre(1, 2, 3));
    EXPECT_TRUE(Document().IsModified());
    EXPECT_EQ(Document().Path(), directory / "docs/a.tvn");
    EXPECT_EQ(DocDir(), directory / "docs/");
    EXPECT_THAT(RecentFilesShown(), ElementsAre(directory / "docs/a.tvn"));
}

TEST_F(MergeTest, FreezesTheSlidersAndSaysSoOnce) {
    StartWithDocs();
    const std::string path = WriteDocument("docs/b", 2);
    Merge(path, "OK");
    EXPECT_THAT(BoxesShown(), ElementsAre(kFrozenText));
    EXPECT_TRUE(IsChecked(CommandId::kFreezeSliders));
    Merge(path);
    EXPECT_EQ(BoxesShown().size(), 1);
    Do(CommandId::kFreezeSliders);  // thawed
    Merge(path, "OK");
    EXPECT_EQ(BoxesShown().size(), 2);
    EXPECT_TRUE(IsChecked(CommandId::kFreezeSliders));
}

TEST_F(MergeTest, ASecondMergeDestroysWhatStillWaitsOfTheFirst) {
    StartWithDocs();
    Do(CommandId::kFreezeSliders);
    Merge(WriteDocument("docs/b", 2));
    Merge(WriteDocument("docs/c", 3));
    ClickDesk();
    EXPECT_EQ(Boxes(), 3U);
}

TEST_F(MergeTest, TakesBoxesAloneAndNoOptionsLibraryOrLock) {
    fs::copy(directory / "tavrin/tiny", directory / "tavrin/other", fs::copy_options::recursive);
    AddToSite(kShaderTypeForm);
    StartWithDocs();
    Do(CommandId::kFreezeSliders);
    Merge(directory.Write("docs/o.tvn",
                          "tavrn-renderer other\nopdesk { lock 1 opbox { filename Constant wid 1 } }\n" +
                              std::string(kMetalOption)));
    ClickDesk();
    EXPECT_EQ(Boxes(), 1U);
    EXPECT_EQ(Document().m_renderOptions["TAVRN_SHADER_TYPE"], "surface");
    EXPECT_EQ(Document().lock, 0);
    EXPECT_EQ(App().GetSite().directories.libName, "tiny");
}

TEST_F(MergeTest, AFileThatCannotBeReadIsToldInABoxAndInTheLog) {
    StartWithDocs();
    const std::string path = MakeUnreadableFile("docs/deaf.tvn");
    Merge(path, "OK");
    ExpectBox("Alert: unable to open " + path + " for reading");
    EXPECT_THAT(Log(), testing::StartsWith("unable to open " + path + " for reading\n"));
    EXPECT_FALSE(IsChecked(CommandId::kFreezeSliders));
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(MergeTest, AFileWithAnErrorBringsNothing) {
    StartWithDocs();
    Do(CommandId::kFreezeSliders);
    const std::string path = WriteBrokenDocument("docs/broken.tvn");
    Merge(path, "OK");
    ExpectBox("Alert: " + path + " near line 5: unexpected input");
    ClickDesk();
    EXPECT_EQ(Boxes(), 0U);
}

TEST_F(MergeTest, ACancelledMergeFreezesNothing) {
    StartWithDocs();
    Merge("");
    EXPECT_FALSE(IsChecked(CommandId::kFreezeSliders));
    EXPECT_FALSE(Document().IsModified());
}

TEST_F(MergeTest, OnALockedDeskTheBoxesWaitUntilTheLockIsLifted) {
    StartWithDocs();
    Do(CommandId::kFreezeSliders);
    Do(CommandId::kLockDesk);
    Merge(WriteDocument("docs/b", 2));
    ClickDesk();
    EXPECT_EQ(Boxes(), 0U);
    Do(CommandId::kLockDesk);
    ClickDesk();
    EXPECT_EQ(Boxes(), 2U);
}

// Drops and recent files

TEST_F(DocumentsTest, ADroppedDocumentIsOpened) {
    StartWithDocs();
    const std::string path = WriteDocument("docs/a", 2);
    fs::rename(path, directory / "docs/LOUD.TVN");
    Drop(directory / "docs/LOUD.TVN");
    EXPECT_EQ(Document().Path(), directory / "docs/LOUD.TVN");
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_THAT(RecentFilesShown(), ElementsAre(directory / "docs/LOUD.TVN"));
}

TEST_F(DocumentsTest, OtherThingsThanDocumentsAreNotTakenWhenDropped) {
    StartWithDocs();
    directory.Write("docs/a.txt", "");
    EXPECT_FALSE(TakesDrag({QUrl::fromLocalFile(Shown(directory / "docs/a.txt"))}));
    EXPECT_FALSE(TakesDrag({QUrl("http://example.org/a.tvn")}));
    EXPECT_FALSE(TakesDrag({}));
    EXPECT_TRUE(TakesDrag({QUrl::fromLocalFile(Shown(directory / "docs/a.txt")),
                           QUrl::fromLocalFile(Shown(directory / "docs/a.tvn"))}));
}

TEST_F(DocumentsTest, TheFileMenuShowsTheFourFilesThatWereUsedLast) {
    StartWithDocs();
    std::vector<std::string> paths;
    for (const char* name : {"docs/a", "docs/b", "docs/c", "docs/d", "docs/e"}) {
        paths.push_back(WriteDocument(name, 1));
        Open(paths.back());
    }
    EXPECT_THAT(RecentFilesShown(), ElementsAre(paths[4], paths[3], paths[2], paths[1]));
    ChooseRecentFile(paths[2]);
    EXPECT_EQ(Document().Path(), paths[2]);
    EXPECT_THAT(RecentFilesShown(), ElementsAre(paths[2], paths[4], paths[3], paths[1]));
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "docs/new & odd.tvn");
    Do(CommandId::kSaveAs);
    Start();
    EXPECT_EQ(RecentFilesShown().size(), 4U);
    ChooseRecentFile(directory / "docs/new && odd.tvn");
    EXPECT_EQ(Document().Path(), directory / "docs/new & odd.tvn");
}

TEST_F(DocumentsTest, ARecentFileThatIsGoneLeavesTheMenu) {
    StartWithDocs();
    const std::string gone = WriteDocument("docs/a", 1);
    const std::string there = WriteDocument("docs/b", 2);
    Open(gone);
    Open(there);
    fs::remove(gone);
    PressWhenBoxComes("OK");
    ChooseRecentFile(gone);
    ExpectBox("Alert: unable to open " + gone + " for reading: No such file or directory");
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_THAT(RecentFilesShown(), ElementsAre(there));
}

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
