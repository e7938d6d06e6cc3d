// SPDX-License-Identifier: Apache-2.0
#include "ui/support/TestFrame.h"

#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <algorithm>
#include <filesystem>
#include <sstream>

#include "library/DefinitionTexts.h"
#include "ui/base/Text.h"
#include "ui/log/LogWindow.h"

namespace tavrin::test {

namespace fs = std::filesystem;

namespace {

constexpr const char* kScript = R"(#!/usr/bin/perl
# Says what it was given, waits while it is held, and heeds the kill file.
use strict;
use warnings;
$| = 1;
my ($self) = $0 =~ m{([^/]+)$};
print join(' ', $self, @ARGV), "\n";
while (-e "$ENV{TAVRN_DIR}/../hold") {
    if (-e $ENV{TAVRN_KILLFILE}) { print "$self killed\n"; exit 9; }
    select undef, undef, undef, 0.01;
}
print "$self done\n";
)";

// What makes an interface from what it reads: it copies it to its last argument.
constexpr const char* kTool = R"(#!/usr/bin/perl
use strict;
use warnings;
open my $out, '>', $ARGV[-1] or die "$ARGV[-1]: $!\n";
print $out "made by $0\n", -t STDIN ? () : <STDIN>;
)";

constexpr const char* kEditor = R"(#!/usr/bin/perl
open my $list, '>>', "$ENV{TAVRN_DIR}/../edited" or die;
print $list "$ARGV[-1]\n";
)";

void MakeExecutable(const std::string& path) { fs::permissions(path, fs::perms::owner_all); }

}  // namespace

FrameTest::FrameTest() {
    const std::string installation = directory / "tavrin";
    fs::create_directories(installation + "/bin");
    fs::copy(SourcePath("installation/bin"), installation + "/bin", fs::copy_options::recursive);
    fs::copy(SourcePath("tests/tiny"), installation + "/tiny", fs::copy_options::recursive);
    fs::create_directories(installation + "/tiny/menu/0300.Patterns");
    fs::create_directories(installation + "/tiny/menu/0400.Shapes");
    for (const char* script : {"redirect.pl", "spp"}) {
        fs::copy_file(SourcePath("installation/mray/bin/") + script, installation + "/tiny/bin/" + script,
                      fs::copy_options::overwrite_existing);
    }
    const auto install = [&](const std::string& name, const char* text) {
        MakeExecutable(directory.Write("tavrin/tiny/bin/" + name, text));
    };
    install("renderit", kScript);
    install("exportall", kScript);
    install("renderiface", kTool);
    install("guiprefilter", kTool);
    const std::string constant = ReadFile(SourcePath("tests/tiny/menu/0100.Constant"));
    directory.Write("tavrin/tiny/menu/0300.Patterns/0010.Checks", constant);
    directory.Write("tavrin/tiny/menu/0400.Shapes/0010.Disc", constant);
    MakeExecutable(directory.Write("editor", kEditor));
    // Unsaved work is put aside when a test says so, not when it happens to take long.
    directory.Write("tavrin/tiny/tavrn.def",
                    ReadFile(installation + "/tiny/tavrn.def") + "autosave.interval 0\n");

    environment = Environment::FromProcess();
    environment.Set("TAVRN_DIR", installation);
    environment.Set("TAVRN_LIB", installation + "/tiny");
    environment.Set("TAVRN_TMPDIR", directory / "tmp");
    environment.Set("TAVRN_EDITORCMD", directory / "editor");
    environment.Set("HOME", directory / "home");
    environment.Set("XDG_STATE_HOME", directory / "state");
}

FrameTest::~FrameTest() { End(); }

void FrameTest::Make(bool withSplash) {
    End();
    m_queue = std::make_unique<QtQueue>();
    m_app = std::make_unique<CTvApp>(m_report, *m_queue, environment, BuildPath("bin/tavrin"));
    m_frame = std::make_unique<MainFrame>(MainFrame::Needs{*m_app, *m_queue, profile}, withSplash);
}

void FrameTest::Start() {
    Make();
    ShowActive(*m_frame);
    Settle();
}

void FrameTest::End() {
    if (m_frame == nullptr) return;
    ReleaseScripts();
    EXPECT_EQ(Document().edits.StrayEdits(), 0) << "an edit outside a scope";
    m_frame.reset();
    m_app->CloseDown(std::chrono::milliseconds(500));
    m_app.reset();
    m_queue.reset();
    HandleEvents();
}

std::string FrameTest::Log() { return Bytes(m_frame->Windows().Get<LogWindow>().Text()); }

void FrameTest::AddBoxes(int count, const std::string& operatorName) {
    for (int box = 0; box < count; ++box) {
        Desk().AddOperator(operatorName);
        Desk().DropPending();
    }
    Settle();
}

std::string FrameTest::WriteDocument(const std::string& name, int boxes) {
    CTvDoc document(*m_app);
    DefinitionTexts texts(m_app->Registry(), m_app->GetSite());
    for (int box = 0; box < boxes; ++box) {
        auto made = std::make_unique<COpBox>();
        EXPECT_TRUE(made->Define("Constant", m_app->Registry(), m_app->GetSite(), &texts));
        made->wid = box + 1;
        document.m_boxes.push_back(std::move(made));
    }
    return directory.Write(name + ".tvn", document.Store());
}

void FrameTest::Settle() {
    for (int round = 0; round < 5; ++round) QCoreApplication::processEvents();
}

bool FrameTest::IsEnabled(CommandId id) {
    m_frame->Commands().Update();
    return Action(id).isEnabled();
}

bool FrameTest::IsChecked(CommandId id) {
    m_frame->Commands().Update();
    return Action(id).isCheckable() && Action(id).isChecked();
}

void FrameTest::ReleaseScripts() { fs::remove(directory / "hold"); }

std::vector<std::string> FrameTest::EditedFiles() {
    std::vector<std::string> files;
    if (!fs::exists(directory / "edited")) return files;
    std::istringstream list(ReadFile(directory / "edited"));
    for (std::string line; std::getline(list, line);) files.push_back(line);
    return files;
}

QMenu* FrameTest::Menu(const QString& title) {
    for (QAction* item : m_frame->menuBar()->actions()) {
        if (item->text().remove('&') == title) return item->menu();
    }
    ADD_FAILURE() << "there is no menu " << Bytes(title);
    return nullptr;
}

QStringList FrameTest::MenuTexts(QMenu* menu) {
    QStringList texts;
    for (const QAction* item : menu->actions()) texts << item->text().remove('&');
    return texts;
}

}  // namespace tavrin::test
