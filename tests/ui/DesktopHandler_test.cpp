// SPDX-License-Identifier: Apache-2.0
// With the program registered as the desktop's handler of its documents, nothing that it opens as a text
// leads back to it, nor to the handler of what a name says.
#include <QProcess>
#include <QProcessEnvironment>
#include <filesystem>

#include "site/DesktopEntries.h"
#include "ui/base/Text.h"
#include "ui/support/RunningProgram.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::FrameTest;
using test::PressWhenBoxComes;
using test::RunningProgram;
using test::WaitUntil;
using testing::ElementsAre;

constexpr const char* kDocumentType = "application/x-tavrin-document";
constexpr const char* kOpener =
    "#!/usr/bin/perl\nopen my $mark, '>>', \"$ENV{TAVRN_DIR}/../opened\"; print $mark \"$0\\n\";\n";

// The packaging's files lie where a user's data lies, and the user has chosen every handler as badly as can
// be.
class DesktopHandlerTest : public FrameTest {
  protected:
    DesktopHandlerTest() {
        for (const char* name : {"tavrin", "browser", "xdg-open"}) MakeProgram(name, kOpener);
        MakeProgram("pad", test::ReadFile(directory / "editor"));
        environment.Set("PATH", directory / "bin" + ":" + environment.Get("PATH").value_or(""));
        for (const char* name : {"TAVRN_EDITORCMD", "VISUAL", "EDITOR", "XDG_CURRENT_DESKTOP"})
            environment.Unset(name);
        environment.Set("XDG_DATA_HOME", directory / "data");
        environment.Set("XDG_DATA_DIRS", directory / "no data");
        environment.Set("XDG_CONFIG_HOME", directory / "config");
        environment.Set("XDG_CONFIG_DIRS", directory / "no config");
        Register();
    }
    void MakeProgram(const std::string& name, const std::string& text) {
        fs::permissions(directory.Write("bin/" + name, text), fs::perms::owner_all);
    }
    void Register() {
        const auto entry = [this](const std::string& name, const std::string& types) {
            directory.Write(
                "data/applications/" + name + ".desktop",
                "[Desktop Entry]\nType=Application\nExec=" + name + " %f\nMimeType=" + types + "\n");
        };
        directory.Write("data/applications/tavrin.desktop",
                        test::ReadFile(test::SourcePath("packaging/tavrin.desktop")));
        directory.Write("data/mime/packages/tavrin.xml",
                        test::ReadFile(test::SourcePath("packaging/tavrin.xml")));
        entry("browser", "text/html;text/plain;");
        entry("xdg-open", "text/plain;");
        entry("pad", "text/plain;");
        directory.Write(
            "data/applications/mimeinfo.cache",
            std::string("[MIME Cache]\n") + kDocumentType +
                "=tavrin.desktop;\ntext/html=browser.desktop;\ntext/plain=pad.desktop;browser.desktop;\n");
        directory.Write(
            "config/mimeapps.list",
            std::string("[Default Applications]\n") + kDocumentType +
                "=tavrin.desktop\ntext/html=browser.desktop\ntext/plain=tavrin.desktop;xdg-open.desktop\n");
    }
    // The handler that the desktop itself would take.
    std::string HandlerOf(const std::string& type) {
        const auto any = [](const std::string&) { return true; };
        const auto command = FindDesktopCommand(environment, type, "", "file", any);
        return command ? command->words.front() : "";
    }
    std::string Opened() const {
        return fs::exists(directory / "opened") ? test::ReadFile(directory / "opened") : std::string();
    }
    void ExpectOnlyInThePad(const std::string& path) {
        EXPECT_TRUE(WaitUntil([this] { return !EditedFiles().empty(); }));
        EXPECT_THAT(EditedFiles(), ElementsAre(path));
        EXPECT_EQ(Opened(), "");
        fs::remove(directory / "edited");
    }
};

TEST_F(DesktopHandlerTest, TheProgramIsTheHandlerOfItsDocuments) {
    EXPECT_EQ(HandlerOf(kDocumentType), "tavrin");
    EXPECT_EQ(HandlerOf("text/html"), "browser");
    EXPECT_EQ(HandlerOf("text/plain"), "tavrin");
    if (!fs::exists("/usr/bin/update-mime-database")) GTEST_SKIP() << "the desktop's own tools are not there";
    QProcess tool;
    tool.start("update-mime-database", {Shown(directory / "data/mime")});
    ASSERT_TRUE(tool.waitForFinished(-1));
    EXPECT_EQ(tool.exitCode(), 0);
    EXPECT_THAT(test::ReadFile(directory / "data/mime/globs2"),
                testing::HasSubstr(std::string(kDocumentType) + ":*.tvn"));
}

TEST_F(DesktopHandlerTest, ABrokenDocumentOpensInATextEditorWhateverItsName) {
    Start();
    for (const char* name : {"bad.tvn", "x.html.tvn", "page.html"}) {
        const std::string path = directory.Write(name, "<script>alert(1)</script>\nopdesk { nonsense");
        PressWhenBoxComes("OK");
        ASSERT_TRUE(Frame().OpenDocumentFile(path));
        Settle();
        ExpectOnlyInThePad(path);
    }
}

TEST_F(DesktopHandlerTest, AViewOfADocumentWithTheNameOfAPageOpensInATextEditor) {
    Start();
    ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("x.html")));
    for (const auto& [view, file] : {std::pair(CommandId::kViewShaderSource, "/x.html"),
                                     std::pair(CommandId::kViewRenderInterface, "/x.html.tmp"),
                                     std::pair(CommandId::kViewShaderInterface, "/x.html.tmp")}) {
        Do(view);
        ExpectOnlyInThePad(WorkDir() + file);
    }
}

// As a double click starts it.
TEST_F(DesktopHandlerTest, TheProgramStartedWithABrokenDocumentStartsNoSecondOne) {
    const std::string path = directory.Write("bad.tvn", "opdesk { nonsense");
    environment.Set("HOME", directory / "home");
    RunningProgram run(environment, {Shown(path)});
    run.Press("^Alert$", "Return");
    ExpectOnlyInThePad(path);
    run.Press("^bad.tvn$", "alt+F4");
    EXPECT_EQ(run.Status(), 0);
    EXPECT_EQ(Opened(), "");
}

}  // namespace
}  // namespace tavrin
