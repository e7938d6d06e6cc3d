// SPDX-License-Identifier: Apache-2.0
// What the tests of documents in the frame build on: a site with shader types, a full disk, drops and
// dialogs.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QTest>
#include <algorithm>
#include <cstring>
#include <filesystem>

#include "base/Paths.h"
#include "document/DocumentReader.h"
#include "support/Disk.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/support/SeenDialog.h"
#include "ui/support/TestFrame.h"

namespace tavrin::test {

namespace fs = std::filesystem;

inline constexpr const char* kTimeOfDay = " at [01][0-9]:[0-5][0-9] [AP]M";
inline constexpr const char* kFrozenText = "Warning: Freezing slider desk to prevent mass slider creation";

// What a site knows of shader types.
inline constexpr const char* kShaderTypeForm = R"(
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
inline constexpr const char* kMetalOption = "renderoptions {\n    setenv TAVRN_SHADER_TYPE metal\n}\n";

class DocumentsTest : public FrameTest {
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
        return archive && scratch.LoadDesk(ReadDesk(std::move(*archive))) ? scratch.m_boxes.size() : 0;
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

}  // namespace tavrin::test
