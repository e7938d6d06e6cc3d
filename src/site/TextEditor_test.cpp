// SPDX-License-Identifier: Apache-2.0
// The words that open a text in the user's editor: the one that is named, or the desktop's choice.
#include "site/TextEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kPath = "/some where/a \"b\".tvn";

class TextEditorTest : public testing::Test {
  protected:
    TextEditorTest() {
        environment.Set("PATH", directory / "bin");
        environment.Set("HOME", directory / "home");
        environment.Set("XDG_CONFIG_DIRS", directory / "etc");
        environment.Set("XDG_DATA_DIRS", directory / "local" + ":" + directory / "share");
    }
    std::string Program(const std::string& name) {
        const std::string path = directory.Write("bin/" + name, "#!/bin/sh\n");
        fs::permissions(path, fs::perms::owner_all);
        return path;
    }
    // An entry of the desktop, below that directory.
    void Entry(const std::string& name, const std::string& keys, const std::string& where = "share") {
        directory.Write(where + "/applications/" + name, "[Desktop Entry]\nType=Application\n" + keys);
    }
    // The entries that the desktop found for a type, in the order of chance.
    void Cache(const std::string& ids) {
        directory.Write("share/applications/mimeinfo.cache", "[MIME Cache]\ntext/plain=" + ids + "\n");
    }
    std::vector<std::string> Words(const std::string& editor) {
        start = StartOfEditor(editor, kPath, environment);
        EXPECT_EQ(start.words.empty(), !start.problem.empty());
        return start.words;
    }
    std::vector<std::string> DesktopsWords() { return Words(kDesktopsEditor); }

    test::TempDir directory;
    Environment environment;
    EditorStart start;
};

// Editors that are named

TEST_F(TextEditorTest, AnEntryThatPutsTheFileIntoATextForAShellIsPassedOver) {
    Program("sh");
    Program("pad");
    Entry("shell.desktop", "Exec=sh -c \"pad %f\"\n");
    Entry("pad.desktop", "Exec=pad \"%f\"\n");
    Cache("shell.desktop;pad.desktop;");
    EXPECT_THAT(DesktopsWords(), ElementsAre("pad", kPath));
}

TEST_F(TextEditorTest, TheNameIsSplitOnceAndThePathIsOneWord) {
    EXPECT_THAT(Words("edit -w \"my rc\""), ElementsAre("edit", "-w", "my rc", kPath));
    EXPECT_TRUE(start.isAsNamed);
    EXPECT_THAT(Words("\"/opt/my editor/edit\""), ElementsAre("/opt/my editor/edit", kPath));
}

TEST_F(TextEditorTest, AnEditorOfTerminalsGetsOne) {
    Program("vim");
    Program("xterm");
    EXPECT_THAT(Words("vim -n"), ElementsAre("xterm", "-e", "vim", "-n", kPath));
    EXPECT_FALSE(start.isAsNamed);
    Program("gnome-terminal");
    EXPECT_THAT(Words(directory / "bin/vim"),
                ElementsAre("gnome-terminal", "--", directory / "bin/vim", kPath));
    Program("xdg-terminal-exec");
    EXPECT_THAT(Words("vim"), ElementsAre("xdg-terminal-exec", "vim", kPath));
}

TEST_F(TextEditorTest, TheUsersTerminalComesFirst) {
    Program("nano");
    Program("xterm");
    environment.Set("TERMINAL", "konsole --hold");
    EXPECT_THAT(Words("nano"), ElementsAre("xterm", "-e", "nano", kPath)) << "it is not there";
    Program("konsole");
    EXPECT_THAT(Words("nano"), ElementsAre("konsole", "--hold", "-e", "nano", kPath));
    environment.Set("TERMINAL", Program("our-term"));
    EXPECT_THAT(Words("nano"), ElementsAre(directory / "bin/our-term", "-e", "nano", kPath));
}

TEST_F(TextEditorTest, WithoutATerminalAnEditorOfTerminalsIsRefused) {
    Program("vi");
    EXPECT_THAT(Words("vi"), IsEmpty());
    EXPECT_EQ(
        start.problem,
        "the text editor vi needs a terminal, and none is found: name one in TERMINAL, or a text editor "
        "with a window in TAVRN_EDITORCMD");
}

// The program that is missing is what the user is to be told.
TEST_F(TextEditorTest, AnEditorThatIsNotThereGetsNoTerminal) {
    Program("xterm");
    EXPECT_THAT(Words("vi"), ElementsAre("vi", kPath));
}

TEST_F(TextEditorTest, NamesThatStandForOtherProgramsAreFollowed) {
    Program("xterm");
    fs::create_symlink(Program("vim.basic"), directory / "bin/editor");
    EXPECT_THAT(Words("editor"), ElementsAre("xterm", "-e", "editor", kPath));
    fs::create_symlink(Program("emacs-gtk"), directory / "bin/emacs");
    EXPECT_THAT(Words("emacs"), ElementsAre("emacs", kPath));
    EXPECT_THAT(Words("emacs -nw"), ElementsAre("xterm", "-e", "emacs", "-nw", kPath));
    fs::remove(directory / "bin/emacs");
    fs::create_symlink(Program("emacs-nox"), directory / "bin/emacs");
    EXPECT_THAT(Words("emacs"), ElementsAre("xterm", "-e", "emacs", kPath));
}

TEST_F(TextEditorTest, TheOpenerOfAnyTypeIsNeverStartedForAText) {
    for (const char* name : {"xdg-open", "gio", "tavrin"}) Program(name);
    Program("pad");
    Entry("pad.desktop", "Exec=pad\n");
    Cache("pad.desktop;");
    for (const char* name :
         {"", "xdg-open", "/usr/bin/xdg-open", "\"xdg-open\"", "\"\"", "gio open", "tavrin"})
        EXPECT_THAT(Words(name), ElementsAre("pad", kPath)) << name;
}

// The desktop's choice

TEST_F(TextEditorTest, WithoutAnyEditorTheUserIsToldHowToNameOne) {
    EXPECT_THAT(DesktopsWords(), IsEmpty());
    EXPECT_THAT(start.problem, HasSubstr(kPath));
    EXPECT_THAT(start.problem, HasSubstr("name one in TAVRN_EDITORCMD, VISUAL or EDITOR"));
}

TEST_F(TextEditorTest, TheUsersChoiceComesBeforeTheDesktopsAndThatBeforeTheRest) {
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        Program(name);
        Entry(std::string(name) + ".desktop", "Exec=" + std::string(name) + "\n");
    }
    Cache("a.desktop;");
    EXPECT_THAT(DesktopsWords(), ElementsAre("a", kPath));
    directory.Write("etc/mimeapps.list", "[Added Associations]\ntext/plain=b.desktop;\n");
    EXPECT_THAT(DesktopsWords(), ElementsAre("b", kPath));
    directory.Write("share/applications/mimeapps.list", "[Default Applications]\ntext/plain=c.desktop\n");
    EXPECT_THAT(DesktopsWords(), ElementsAre("c", kPath));
    directory.Write("etc/our-mimeapps.list", "[Default Applications]\ntext/plain=gone.desktop;d.desktop\n");
    EXPECT_THAT(DesktopsWords(), ElementsAre("c", kPath));
    environment.Set("XDG_CURRENT_DESKTOP", "Other:OUR");
    EXPECT_THAT(DesktopsWords(), ElementsAre("d", kPath));
    directory.Write("home/.config/mimeapps.list",
                    "# ours\n[Default Applications]\ntext/html=a.desktop\ntext/plain = e.desktop;b.desktop;\n"
                    "[Other]\ntext/plain=a.desktop\n");
    EXPECT_THAT(DesktopsWords(), ElementsAre("e", kPath));
}

TEST_F(TextEditorTest, AmongTheRestTextEditorsComeFirst) {
    for (const char* name : {"office", "pad", "other"}) Program(name);
    Entry("office.desktop", "Exec=office\nCategories=Office;\n");
    Entry("pad.desktop", "Exec=pad\nCategories=Utility;TextEditor;\n");
    Entry("other.desktop", "Exec=other\nCategories=TextEditor;\n");
    Cache("office.desktop;pad.desktop;other.desktop");
    EXPECT_THAT(DesktopsWords(), ElementsAre("pad", kPath));
    directory.Write("home/.config/mimeapps.list", "[Removed Associations]\ntext/plain=pad.desktop;\n");
    EXPECT_THAT(DesktopsWords(), ElementsAre("other", kPath));
    fs::remove(directory / "bin/other");
    EXPECT_THAT(DesktopsWords(), ElementsAre("office", kPath));
}

TEST_F(TextEditorTest, WhatWouldBringTheFileBackToUsIsPassedOver) {
    for (const char* name : {"tavrin", "xdg-open", "pad"}) Program(name);
    Entry("tavrin.desktop", "Exec=tavrin %f\n");
    Entry("open.desktop", "Exec=" + directory / "bin/xdg-open" + " %u\n");
    Entry("pad.desktop", "Exec=pad\n");
    directory.Write("home/.config/mimeapps.list",
                    "[Default Applications]\ntext/plain=tavrin.desktop;open.desktop;pad.desktop\n");
    EXPECT_THAT(DesktopsWords(), ElementsAre("pad", kPath));
}

TEST_F(TextEditorTest, EntriesThatCannotBeUsedArePassedOver) {
    Program("pad");
    Entry("hidden.desktop", "Exec=pad 1\nHidden=true\n");
    Entry("tried.desktop", "Exec=pad 2\nTryExec=gone\n");
    Entry("missing.desktop", "Exec=gone\n");
    Entry("empty.desktop", "Name=x\n");
    directory.Write("share/applications/noise.desktop", "\xff\xfe[Desktop Entry\nExec=pad 3\n");
    Entry("pad.desktop", "Exec=pad 4\nTryExec=pad\n[Desktop Action New]\nExec=pad 5\n");
    Cache(
        "hidden.desktop;tried.desktop;missing.desktop;empty.desktop;noise.desktop;../"
        "pad.desktop;pad.desktop");
    EXPECT_THAT(DesktopsWords(), ElementsAre("pad", "4", kPath));
}

TEST_F(TextEditorTest, TheFirstDirectoryThatHasAnEntryCounts) {
    Program("pad");
    Entry("pad.desktop", "Exec=pad of the site\n");
    Entry("pad.desktop", "Exec=pad of the user\n", "home/.local/share");
    Entry("kde/old/pad.desktop", "Exec=pad of a folder\n");
    Cache("pad.desktop");
    EXPECT_THAT(DesktopsWords(), ElementsAre("pad", "of", "the", "user", kPath));
    Cache("kde-old-pad.desktop");
    EXPECT_THAT(DesktopsWords(), ElementsAre("pad", "of", "a", "folder", kPath));
}

TEST_F(TextEditorTest, FieldCodesAndQuotesOfAnEntryAreUnderstood) {
    Program("my pad");
    Program("pad");
    Cache("pad.desktop");
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"pad %f", {"pad", kPath}},
        {"pad %U --new", {"pad", kPath, "--new"}},
        {"pad --file=%u", {"pad", std::string("--file=") + kPath}},
        {"pad %i %c %d %m 5%%", {"pad", "--icon", "pen", "My Pad", "5%", kPath}},
        {"\"my pad\" \"a \\\\\"b\\\\\" \\\\$c\"", {"my pad", "a \"b\" $c", kPath}},
        {"pad\\swith %k", {"pad", "with", directory / "share/applications/pad.desktop", kPath}},
    };
    for (const auto& [exec, words] : cases) {
        Entry("pad.desktop", "Exec=" + exec + "\nName=My Pad\nIcon=pen\n");
        EXPECT_EQ(DesktopsWords(), words) << exec;
    }
}

TEST_F(TextEditorTest, AnEntryOfTerminalsGetsOne) {
    Program("vim");
    Entry("vim.desktop", "Exec=vim %F\nTerminal=true\n");
    Cache("vim.desktop");
    EXPECT_THAT(DesktopsWords(), IsEmpty());
    EXPECT_THAT(start.problem, HasSubstr("vim needs a terminal"));
    Program("x-terminal-emulator");
    EXPECT_THAT(DesktopsWords(), ElementsAre("x-terminal-emulator", "-e", "vim", kPath));
}

}  // namespace
}  // namespace tavrin
