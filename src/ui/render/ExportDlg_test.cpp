// SPDX-License-Identifier: Apache-2.0
#include "ui/render/ExportDlg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "base/Paths.h"
#include "render/ShaderExport.h"
#include "support/TestHost.h"
#include "ui/base/Text.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using testing::ElementsAre;

const std::vector<QString> kRowNames = {"Tavrin File",      "Shader Source",    "Compiled Shader",
                                        "Shader Interface", "Render Interface", "Post Save Script"};

class ExportDlg : public test::DocumentTest {
  protected:
    ExportDlg() {
        Site& site = host.GetSite();
        site.extShaderSource = ".sl";
        site.extCompiledShader = ".slo";
        site.extRenderIface = ".ri";
        document.SetPath("/d/wood.tvn");
        UpdateExportPaths(document, site);
        document.SetModified(false);
        dialog.Refresh();
    }

    template <class Widget>
    Widget& Named(const QString& name) {
        for (auto* widget : dialog.findChildren<Widget*>()) {
            if (widget->accessibleName() == name) return *widget;
        }
        throw std::runtime_error("no widget is called " + Bytes(name));
    }
    QLineEdit& Path(int row) { return Named<QLineEdit>(kRowNames[size_t(row)] + " Path"); }
    std::string PathShown(int row) { return Bytes(Path(row).text()); }
    QCheckBox& Flag(int row) { return Named<QCheckBox>(kRowNames[size_t(row)]); }
    void Press(const QString& button) { QTest::mouseClick(&Named<QPushButton>(button), Qt::LeftButton); }

    std::vector<int> Flags() const {
        const CExportOptions& o = document.exportOptions;
        return {o.saveTavrn,       o.saveSource,      o.saveCompiled,
                o.saveShaderIface, o.saveRenderIface, o.runPostSave};
    }
    std::vector<std::string> Paths() const {
        const CExportOptions& o = document.exportOptions;
        return {o.tavrnPath,       o.sourcePath,      o.compiledPath,
                o.shaderIfacePath, o.renderIfacePath, o.postSaveScript};
    }
    std::vector<std::string> PathsShown() {
        std::vector<std::string> paths;
        for (int row = 0; row < 6; ++row) paths.push_back(PathShown(row));
        return paths;
    }

    CTvDoc* shownDocument = &document;
    int changes = 0;
    Edits::Subscription listener = document.edits.Observe([this](const Change&) { ++changes; });
    CExportDlg dialog{nullptr,
                      {.document = [this] { return shownDocument; },
                       .defaults = [this]() -> const CExportOptions& { return host.exportDefaults; },
                       .updateExportPaths = [this] { UpdateExportPaths(document, host.GetSite()); }}};
};

TEST_F(ExportDlg, ShowsTheDocumentsValuesAndChangesNothingByThat) {
    EXPECT_EQ(dialog.windowTitle(), "Export Options");
    document.exportOptions.saveCompiled = 1;
    document.exportOptions.runPostSave = 1;
    document.exportOptions.postSaveScript = "notify.sh --now";
    dialog.Refresh();
    EXPECT_THAT(PathsShown(), ElementsAre("./wood.tvn", "./wood.sl", "./wood.slo", "./wood.cus", "./wood.ri",
                                          "notify.sh --now"));
    std::vector<bool> checked;
    for (int row = 0; row < 6; ++row) checked.push_back(Flag(row).isChecked());
    EXPECT_THAT(checked, ElementsAre(false, false, true, false, false, true));
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(changes, 0);
}

TEST_F(ExportDlg, EachCheckBoxIsTheFlagOfItsRow) {
    test::ShowActive(dialog);
    for (int row = 0; row < 6; ++row) {
        document.SetModified(false);
        QTest::mouseClick(&Flag(row), Qt::LeftButton);
        std::vector<int> expected(6, 0);
        expected[size_t(row)] = 1;
        EXPECT_EQ(Flags(), expected) << Bytes(kRowNames[size_t(row)]);
        EXPECT_TRUE(document.IsModified());
        EXPECT_EQ(changes, 2 * row + 1);
        QTest::mouseClick(&Flag(row), Qt::LeftButton);
    }
    EXPECT_EQ(Flags(), std::vector<int>(6, 0));
}

TEST_F(ExportDlg, ALabelsKeyReachesTheCheckBoxOfItsRow) {
    test::ShowActive(dialog);
    const char keys[] = {'t', 's', 'c', 'i', 'r', 'p'};
    for (size_t row = 0; row < 6; ++row) {
        QTest::keyClick(&dialog, keys[row], Qt::AltModifier);
        EXPECT_TRUE(test::WaitUntil([&] { return Flags()[row] == 1; })) << keys[row];
    }
    std::vector<QString> labels;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) labels.push_back(label->text().remove('&'));
    EXPECT_EQ(labels, kRowNames);
}

TEST_F(ExportDlg, OnlyThePostSaveScriptCanBeTypedAndIsTakenAtOnce) {
    test::ShowActive(dialog);
    for (int row = 0; row < 6; ++row) {
        Path(row).setFocus();
        QTest::keyClicks(&Path(row), "x");
    }
    EXPECT_THAT(Paths(),
                ElementsAre("./wood.tvn", "./wood.sl", "./wood.slo", "./wood.cus", "./wood.ri", "x"));
    EXPECT_TRUE(document.IsModified());
    QTest::keyClicks(&Path(5), " -v");
    EXPECT_EQ(document.exportOptions.postSaveScript, "x -v");
}

TEST_F(ExportDlg, TypingGoesOnWhereItWasWhenTheWindowIsRefreshed) {
    document.exportOptions.postSaveScript = "run it";
    dialog.Refresh();
    test::ShowActive(dialog);
    Path(5).setFocus();
    QTest::keyClick(&Path(5), Qt::Key_Home);
    QTest::keyClick(&Path(5), 'p');
    dialog.UpdateExportPaths();
    QTest::keyClick(&Path(5), 'e');
    EXPECT_EQ(document.exportOptions.postSaveScript, "perun it");
}

TEST_F(ExportDlg, APastedScriptIsOneLine) {
    test::ShowActive(dialog);
    QApplication::clipboard()->setText("run\nit");
    Path(5).setFocus();
    QTest::keySequence(&Path(5), QKeySequence::Paste);
    EXPECT_EQ(document.exportOptions.postSaveScript, "run it");
}

TEST_F(ExportDlg, RenamingTheDocumentMovesAllPathsAndKeepsTheirDirectories) {
    document.exportOptions.sourcePath = "/src/wood.sl";
    document.exportOptions.compiledPath = "wood.slo";
    document.SetPath("/e/marble.tvn");
    dialog.UpdateExportPaths();
    EXPECT_THAT(PathsShown(), ElementsAre("./marble.tvn", "/src/marble.sl", "marble.slo", "./marble.cus",
                                          "./marble.ri", ""));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ExportDlg, ResetDefaultsTakesTheSitesOptionsUnderTheDocumentsName) {
    document.exportOptions.saveTavrn = 1;
    host.exportDefaults.saveSource = 1;
    host.exportDefaults.sourcePath = "/site/";
    host.exportDefaults.postSaveScript = "tell";
    dialog.Refresh();
    test::ShowActive(dialog);
    Press("Reset Defaults");
    EXPECT_THAT(Flags(), ElementsAre(0, 1, 0, 0, 0, 0));
    EXPECT_THAT(Paths(),
                ElementsAre("./wood.tvn", "/site/wood.sl", "./wood.slo", "./wood.cus", "./wood.ri", "tell"));
    EXPECT_EQ(PathsShown(), Paths());
    EXPECT_TRUE(Flag(1).isChecked());
    EXPECT_FALSE(Flag(0).isChecked());
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(changes, 1);
}

TEST_F(ExportDlg, FileOfAPathRowMovesThatPathToTheDirectoryChosen) {
    const std::string directory = host.Directory().Path();
    const auto pathOfRow = [this](int row) { return Paths()[size_t(row)]; };
    test::ShowActive(dialog);
    for (int row = 0; row < 5; ++row) {
        document.SetModified(false);
        const std::string before = pathOfRow(row);
        test::ChooseFileWhenDialogComes(directory + before.substr(1));
        Press(kRowNames[size_t(row)] + " File");
        EXPECT_EQ(pathOfRow(row), directory + before.substr(1));
        EXPECT_EQ(PathsShown(), Paths());
        EXPECT_TRUE(document.IsModified());
    }
    EXPECT_EQ(changes, 5);
}

TEST_F(ExportDlg, FileWithoutAChoiceChangesNothing) {
    const std::vector<std::string> before = Paths();
    test::ShowActive(dialog);
    for (const QString& row : kRowNames) {
        test::WhenDialogComes([&row](QDialog& shown) {
            EXPECT_EQ(shown.windowTitle(), row == "Post Save Script" ? "Select File" : "Select Location");
            shown.reject();
        });
        Press(row + " File");
    }
    EXPECT_EQ(Paths(), before);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ExportDlg, FileOfThePostSaveScriptMarksTheDocumentOnlyForANewPath) {
    const std::string script = host.Directory().Write("tell.sh", "");
    document.exportOptions.postSaveScript = script;
    dialog.Refresh();
    test::ShowActive(dialog);
    test::ChooseFileWhenDialogComes(script);
    Press("Post Save Script File");
    EXPECT_FALSE(document.IsModified());
    test::ChooseFileWhenDialogComes(host.Directory() / "other.sh");
    Press("Post Save Script File");
    EXPECT_EQ(document.exportOptions.postSaveScript, host.Directory() / "other.sh");
    EXPECT_EQ(PathShown(5), host.Directory() / "other.sh");
    EXPECT_TRUE(document.IsModified());
}

TEST_F(ExportDlg, FileOfThePostSaveScriptIsQuotedWhereItsPathHasBlanks) {
    const std::string script = host.Directory().Write("my tools/tell.sh", "");
    document.exportOptions.postSaveScript = "\"" + script + "\" --now";
    dialog.Refresh();
    test::ShowActive(dialog);
    test::ChooseFileWhenDialogComes(script);
    Press("Post Save Script File");
    EXPECT_EQ(document.exportOptions.postSaveScript, "\"" + script + "\"");
    document.SetModified(false);
    test::ChooseFileWhenDialogComes(script);
    Press("Post Save Script File");
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ExportDlg, FileOfThePostSaveScriptIsRefusedWhereItsPathHasAQuote) {
    const std::string script = host.Directory().Write("my \"tools\"/tell.sh", "");
    test::ShowActive(dialog);
    test::WhenDialogComes([&script](QDialog& shown) {
        dynamic_cast<QFileDialog&>(shown).setDirectory(Shown(PathDir(script)));
        auto* name = shown.findChild<QLineEdit*>("fileNameEdit");
        name->setText("tell.sh");
        QTest::keyClick(name, Qt::Key_Return);
    });
    test::PressWhenBoxComes("OK");
    Press("Post Save Script File");
    EXPECT_EQ(test::BoxesShown(),
              QStringList{"Alert: A post save command cannot name a file with a double quote in its path:\n" +
                          Shown(script)});
    EXPECT_EQ(document.exportOptions.postSaveScript, "");
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ExportDlg, InfoTellsWhatEachRowIsFor) {
    test::ShowActive(dialog);
    for (const QString& row : kRowNames) {
        test::PressWhenBoxComes("OK");
        Press(row + " Info");
    }
    const QString head = "The path specified here affects:\n\n  1) where 'File->Export All' saves the ";
    const QString menu = " file\n  2) the 'File->Export->";
    const QString tail = "' browser default\n";
    EXPECT_EQ(
        test::BoxesShown(),
        (QStringList{
            "Tavrin File Field: " + head + ".tvn file\n",
            "Shader Source Field: " + head + "shader source" + menu + "Shader Source" + tail,
            "Compiled Shader Field: " + head + "compiled shader" + menu + "Compiled Shader" + tail,
            "Shader Interface Field: " + head + "shader interface" + menu + "Shader Interface" + tail,
            "Render Interface Field: " + head + "render interface" + menu + "Render Interface" + tail,
            "Post Save Script Field: The path specified here is for an optional user-supplied\nprogram to "
            "execute when 'Export All' finishes generating\nall its files.  This can be used to update "
            "external programs\nto recognize your new changes."}));
}

TEST_F(ExportDlg, TheTabKeyGoesRowByRow) {
    test::ShowActive(dialog);
    Flag(0).setFocus();
    QStringList visited;
    for (int step = 0; step < 25; ++step) {
        visited << test::FocusWidget().accessibleName();
        QTest::keyClick(&test::FocusWidget(), Qt::Key_Tab);
    }
    QStringList expected;
    for (const QString& row : kRowNames) expected << row << row + " Path" << row + " File" << row + " Info";
    EXPECT_EQ(visited, expected << "Reset Defaults");
}

TEST_F(ExportDlg, WidthGoesToThePathsWhichShowTheirEnds) {
    document.exportOptions.sourcePath = "/<b>/" + std::string(300, 'm') + "/wood.sl";
    dialog.Refresh();
    test::ShowActive(dialog);
    EXPECT_EQ(Path(1).cursorPosition(), Path(1).text().size());
    EXPECT_EQ(Path(1).toolTip().count("<b>"), 0);
    EXPECT_TRUE(Path(1).toolTip().contains("/wood.sl"));
    const int width = Path(1).width();
    const int button = Named<QPushButton>("Shader Source File").width();
    dialog.resize(dialog.width() + 100, dialog.height());
    EXPECT_TRUE(test::WaitUntil([&] { return Path(1).width() == width + 100; }));
    EXPECT_EQ(Named<QPushButton>("Shader Source File").width(), button);
}

TEST_F(ExportDlg, WithoutADocumentItIsEmptyAndCannotBeUsed) {
    shownDocument = nullptr;
    dialog.UpdateExportPaths();
    EXPECT_EQ(PathsShown(), std::vector<std::string>(6));
    EXPECT_FALSE(Flag(0).isEnabled());
    shownDocument = &document;
    dialog.UpdateExportPaths();
    EXPECT_TRUE(Flag(0).isEnabled());
    EXPECT_EQ(PathShown(0), "./wood.tvn");
}

}  // namespace
}  // namespace tavrin
