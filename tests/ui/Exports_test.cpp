// SPDX-License-Identifier: Apache-2.0
// Exports as the frame does them, and the desk's wallpaper.
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <filesystem>

#include "images/SgiTestFile.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/render/ExportDlg.h"
#include "ui/support/PaintWatcher.h"
#include "ui/support/SeenDialog.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;

using test::AnswerFileDialog;
using test::BoxesShown;
using test::PaintWatcher;
using test::PressWhenBoxComes;
using test::ReadFile;
using test::SeenDialog;
using test::SgiTestFile;
using test::WaitUntil;
using testing::Contains;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

constexpr const char* kExtensions = "ext.shadersource .mi\next.compiledshader .so\next.renderiface .ri\n";
constexpr const char* kShaderTypes = R"(ext.shaderiface metal .mtl
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

class ExportsTest : public test::FrameTest {
  protected:
    ExportsTest() {
        AddToSite(kExtensions);
        fs::create_directories(directory / "out");
    }
    void AddToSite(const std::string& lines) {
        const std::string path = "tavrin/tiny/tavrn.def";
        directory.Write(path, ReadFile(directory / path) + lines);
    }
    // "marble.tvn" with a box is open, and its export options lead to "out".
    void StartWithMarble() {
        Start();
        ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("marble", 1)));
        Document().SetForeign(false);
        CExportOptions& options = Options();
        for (std::string* path : {&options.tavrnPath, &options.sourcePath, &options.compiledPath,
                                  &options.shaderIfacePath, &options.renderIfacePath}) {
            *path = directory / "out/";
        }
        Frame().Windows().Get<CExportDlg>().UpdateExportPaths();
        Settle();
    }
    CExportOptions& Options() { return Document().exportOptions; }
    std::string Out(const std::string& name) { return directory / ("out/" + name); }

    // What the export script was given when it ended.
    std::string Exported() {
        EXPECT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
        Settle();
        const std::string log = Log();
        const auto begin = log.rfind("exportall marble");
        return begin == std::string::npos ? "" : log.substr(begin, log.find('\n', begin) - begin);
    }
    std::string LastBox() { return BoxesShown().isEmpty() ? "" : Bytes(BoxesShown().last()); }
    std::string Activity() { return Bytes(Frame().StatusBox().Activity()); }

    std::string PathShown(const char* row) {
        for (const auto* field : Frame().Windows().Get<CExportDlg>().findChildren<QLineEdit*>()) {
            if (field->accessibleName() == QString(row) + " Path") return Bytes(field->text());
        }
        return "no such row";
    }
};

// Export All

TEST_F(ExportsTest, WithAllFlagsOffEverythingIsSavedAndNothingAskedFor) {
    StartWithMarble();
    const PaintWatcher status(Frame().StatusBox());
    QTest::keyClick(&Frame(), Qt::Key_F7);
    EXPECT_EQ(Exported(), "exportall marble - - - - -");
    EXPECT_THAT(ReadFile(WorkDir() + "/marble"), HasSubstr("surface marble"));
    EXPECT_FALSE(fs::exists(Out("marble.tvn")));
    EXPECT_TRUE(WaitUntil([&] { return status.HasTold("Exported marble in "); }));
}

TEST_F(ExportsTest, WithAllFlagsOnEachTargetHasItsPlaceInTheCommand) {
    StartWithMarble();
    CExportOptions& options = Options();
    options.saveTavrn = options.saveSource = options.saveCompiled = 1;
    options.saveShaderIface = options.saveRenderIface = options.runPostSave = 1;
    options.postSaveScript = "tell me";
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exported(), "exportall marble " + Out("marble.mi") + " " + Out("marble.so") + " " +
                              Out("marble.cus") + " " + Out("marble.ri") + " tell me");
    EXPECT_THAT(ReadFile(Out("marble.tvn")),
                testing::AllOf(HasSubstr("filename Constant"), HasSubstr("postsavescript 1 tell me")));
    EXPECT_EQ(Document().Path(), directory / "marble.tvn");
}

struct Target {
    const char* name;
    int CExportOptions::*flag;
    const char* command;  // "%" stands for the directory
};

class ExportTargetTest : public ExportsTest, public testing::WithParamInterface<Target> {};

INSTANTIATE_TEST_SUITE_P(
    Targets, ExportTargetTest,
    testing::Values(
        Target{"Source", &CExportOptions::saveSource, "exportall marble %marble.mi - - - -"},
        Target{"Compiled", &CExportOptions::saveCompiled, "exportall marble - %marble.so - - -"},
        Target{"ShaderInterface", &CExportOptions::saveShaderIface, "exportall marble - - %marble.cus - -"},
        Target{"RenderInterface", &CExportOptions::saveRenderIface, "exportall marble - - - %marble.ri -"},
        Target{"PostSaveScript", &CExportOptions::runPostSave, "exportall marble - - - - /bin/true"}),
    [](const auto& target) { return std::string(target.param.name); });

TEST_P(ExportTargetTest, OneFlagExportsThatFileAlone) {
    StartWithMarble();
    Options().postSaveScript = "/bin/true";
    Options().*GetParam().flag = 1;
    Do(CommandId::kExportAll);
    std::string expected = GetParam().command;
    if (const auto place = expected.find('%'); place != std::string::npos)
        expected.replace(place, 1, directory / "out/");
    EXPECT_EQ(Exported(), expected);
    EXPECT_FALSE(fs::exists(Out("marble.tvn")));
}

TEST_F(ExportsTest, ADocumentCopyThatCannotBeWrittenEndsTheExport) {
    StartWithMarble();
    Options().saveTavrn = 1;
    fs::remove(directory / "out");
    PressWhenBoxComes("OK");
    Do(CommandId::kExportAll);
    Settle();
    EXPECT_EQ(LastBox(), "Alert: unable to write shader file " + Out("marble.tvn"));
    EXPECT_THAT(Log(), Not(HasSubstr("exportall")));
}

TEST_F(ExportsTest, APathWithABlankEndsTheExport) {
    StartWithMarble();
    Options().saveSource = 1;
    Options().sourcePath = directory / "out of/marble.mi";
    PressWhenBoxComes("OK");
    Do(CommandId::kExportAll);
    Settle();
    EXPECT_EQ(LastBox(),
              "Alert: export file path \"" + (directory / "out of/marble.mi") + "\" contains whitespace");
    EXPECT_THAT(Log(), Not(HasSubstr("exportall")));
}

TEST_F(ExportsTest, ExportsAreNotOfferedWhileOneRunsAndTheStatusBoxTellsOfIt) {
    StartWithMarble();
    const auto offered = [this] {
        int count = 0;
        for (const auto id :
             {CommandId::kExportAll, CommandId::kExportShaderSource, CommandId::kExportCompiledShader,
              CommandId::kExportRenderInterface, CommandId::kExportShaderInterface}) {
            if (Action(id).isEnabled()) ++count;
        }
        return count;
    };
    EXPECT_EQ(offered(), 5);
    HoldScripts();
    Do(CommandId::kExportAll);
    ASSERT_TRUE(WaitUntil([this] { return Log().find("exportall marble") != std::string::npos; }));
    Settle();
    EXPECT_EQ(offered(), 0);
    EXPECT_THAT(Activity(), MatchesRegex("Exporting marble: .* s"));
    ReleaseScripts();
    ASSERT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
    EXPECT_TRUE(WaitUntil([&] { return offered() == 5; }));
}

// One kind of file

TEST_F(ExportsTest, AKindOfFileIsExportedToThePathThatIsChosenAndThatIsNotStored) {
    StartWithMarble();
    const struct {
        CommandId id;
        const char* offered;
        const char* chosen;
        const char* command;
    } kinds[] = {
        {CommandId::kExportShaderSource, "marble.mi", "source", "exportall marble % - - - -"},
        {CommandId::kExportCompiledShader, "marble.so", "compiled", "exportall marble - % - - -"},
        {CommandId::kExportShaderInterface, "marble.cus", "shaderface", "exportall marble - - % - -"},
        {CommandId::kExportRenderInterface, "marble.ri", "renderface", "exportall marble - - - % -"},
    };
    const PaintWatcher status(Frame().StatusBox());
    Options().runPostSave = Options().saveTavrn = 1;  // which only Export All heeds
    Options().postSaveScript = "/bin/true";
    for (const auto& kind : kinds) {
        const CExportOptions before = Options();
        SeenDialog seen;
        AnswerFileDialog(seen, directory / kind.chosen);
        Do(kind.id);
        EXPECT_EQ(seen.title, "Select File");
        EXPECT_EQ(seen.directory, directory / "out/");
        EXPECT_EQ(seen.name, kind.offered);
        const std::string command = kind.command;
        EXPECT_EQ(Exported(), std::string(command).replace(command.find('%'), 1, directory / kind.chosen));
        const std::string told = std::string("Exported ") + kind.chosen + " in ";
        EXPECT_TRUE(WaitUntil([&] { return status.HasTold(told); })) << told;
        EXPECT_EQ(Options().sourcePath, before.sourcePath);
        EXPECT_EQ(Options().compiledPath, before.compiledPath);
        EXPECT_EQ(Options().shaderIfacePath, before.shaderIfacePath);
        EXPECT_EQ(Options().renderIfacePath, before.renderIfacePath);
        EXPECT_EQ(Options().saveSource + Options().saveCompiled + Options().saveShaderIface, 0);
        EXPECT_FALSE(Document().IsModified());
        EXPECT_FALSE(fs::exists(Out("marble.tvn")));
    }
}

TEST_F(ExportsTest, ACancelledExportDoesNothing) {
    StartWithMarble();
    test::CancelWhenDialogComes();
    Do(CommandId::kExportShaderSource);
    Settle();
    EXPECT_FALSE(ChildRuns());
    EXPECT_FALSE(fs::exists(WorkDir() + "/marble"));
    EXPECT_THAT(Log(), Not(HasSubstr("exportall")));
}

TEST_F(ExportsTest, AnEmptyDeskIsNotExported) {
    Start();
    PressWhenBoxComes("OK");
    QTest::keyClick(&Frame(), Qt::Key_F7);
    Settle();
    EXPECT_EQ(LastBox(), "Alert: desk is empty");
    EXPECT_THAT(Log(), Not(HasSubstr("exportall")));
}

// The window of the options

TEST_F(ExportsTest, TheOptionsFollowTheDocumentsNameAndItsShadersType) {
    AddToSite(kShaderTypes);
    StartWithMarble();
    Do(CommandId::kExportOptions);
    Settle();
    EXPECT_TRUE(IsChecked(CommandId::kExportOptions));
    EXPECT_EQ(PathShown("Tavrin File"), Out("marble.tvn"));
    EXPECT_EQ(PathShown("Shader Interface"), Out("marble.cus"));
    SeenDialog seen;
    AnswerFileDialog(seen, directory / "granite.tvn");
    Do(CommandId::kSaveAs);
    EXPECT_EQ(PathShown("Tavrin File"), Out("granite.tvn"));
    EXPECT_EQ(PathShown("Shader Source"), Out("granite.mi"));
    EXPECT_EQ(PathShown("Compiled Shader"), Out("granite.so"));
    EXPECT_EQ(PathShown("Render Interface"), Out("granite.ri"));
    auto* chooser = Frame().findChild<QComboBox*>();
    chooser->setFocus();
    QTest::keyClicks(chooser, "m");
    ASSERT_EQ(Bytes(chooser->currentText()), "metal");
    Settle();
    EXPECT_EQ(PathShown("Shader Interface"), Out("granite.mtl"));
    EXPECT_EQ(Options().shaderIfacePath, Out("granite.mtl"));
    Do(CommandId::kSave);
    Do(CommandId::kNew);
    EXPECT_EQ(PathShown("Shader Interface"), "./untitled.cus");
}

TEST_F(ExportsTest, AFlagThatIsClickedIsExportedAndSaved) {
    StartWithMarble();
    Do(CommandId::kExportOptions);
    for (auto* flag : Frame().Windows().Get<CExportDlg>().findChildren<QCheckBox*>()) {
        if (flag->accessibleName() == "Shader Source") QTest::keyClick(flag, Qt::Key_Space);
    }
    Settle();
    EXPECT_TRUE(Frame().isWindowModified());
    EXPECT_TRUE(Action(CommandId::kSave).isEnabled());
    Do(CommandId::kExportAll);
    EXPECT_EQ(Exported(), "exportall marble " + Out("marble.mi") + " - - - -");
    Do(CommandId::kSave);
    Do(CommandId::kNew);
    EXPECT_EQ(Options().saveSource, 0);
    ASSERT_TRUE(Frame().OpenDocumentFile(directory / "marble.tvn"));
    EXPECT_EQ(Options().saveSource, 1);
    EXPECT_EQ(PathShown("Shader Source"), Out("marble.mi"));
}

// The wallpaper

constexpr test::Rgba kRedPixel{255, 0, 0, 255};
constexpr test::Rgba kBluePixel{0, 0, 255, 255};

class WallpaperTest : public test::FrameTest {
  protected:
    WallpaperTest() {
        red = directory.Write("papers/red.sgi", SgiTestFile::Plain(64, 64, 3, kRedPixel).Bytes());
        blue = directory.Write("papers/blue.sgi", SgiTestFile::Plain(64, 64, 3, kBluePixel).Bytes());
        const std::string site = "tavrin/tiny/tavrn.def";
        directory.Write(site, ReadFile(directory / site) + "imagebrowser_dir backs\n");
        fs::create_directories(directory / "tavrin/tiny/backs");
    }
    SeenDialog Choose(const std::string& path) {
        SeenDialog seen;
        AnswerFileDialog(seen, path);
        Do(CommandId::kSetWallpaper);
        Settle();
        return seen;
    }
    // How many device pixels of the desk's picture have the colour.
    int Count(Qt::GlobalColor color) {
        const QImage picture = Frame().Desk().Desk().grabFramebuffer();
        const QRgb wanted = QColor(color).rgb();
        int count = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if ((picture.pixel(x, y) | 0xFF000000) == wanted) ++count;
            }
        }
        return count;
    }
    int DeskPixels() {
        const QImage picture = Frame().Desk().Desk().grabFramebuffer();
        return picture.width() * picture.height();
    }
    std::string red;
    std::string blue;
};

TEST_F(WallpaperTest, IsSetShownAndTiledByCommands) {
    Start();
    const SeenDialog seen = Choose(red);
    EXPECT_EQ(seen.title, "Select");
    EXPECT_EQ(seen.filters, QStringList("SGI Images (*.sgi)"));
    EXPECT_EQ(seen.directory, directory / "tavrin/tiny/backs/");
    const int once = Count(Qt::red);
    EXPECT_GT(once, 0);
    EXPECT_TRUE(IsChecked(CommandId::kShowWallpaper));
    EXPECT_FALSE(IsChecked(CommandId::kTileWallpaper));
    EXPECT_FALSE(Document().IsModified());

    Do(CommandId::kTileWallpaper);
    EXPECT_TRUE(IsChecked(CommandId::kTileWallpaper));
    EXPECT_GT(Count(Qt::red), DeskPixels() * 9 / 10);
    Do(CommandId::kShowWallpaper);
    EXPECT_FALSE(IsChecked(CommandId::kShowWallpaper));
    EXPECT_EQ(Count(Qt::red), 0);
    Do(CommandId::kShowWallpaper);
    Do(CommandId::kTileWallpaper);
    EXPECT_EQ(Count(Qt::red), once);
}

TEST_F(WallpaperTest, AnotherTakesItsPlaceAndTheDirectoryIsKept) {
    Start();
    Choose(red);
    const int once = Count(Qt::red);
    EXPECT_EQ(Choose(blue).directory, directory / "papers/");
    EXPECT_EQ(Count(Qt::red), 0);
    EXPECT_EQ(Count(Qt::blue), once);
    EXPECT_EQ(Choose("").directory, directory / "papers/");
    EXPECT_EQ(Count(Qt::blue), once);
}

TEST_F(WallpaperTest, AFileThatIsNoPictureSaysSoAndKeepsTheOldOne) {
    Start();
    Choose(red);
    const int once = Count(Qt::red);
    SgiTestFile raw = SgiTestFile::Plain(64, 64, 3, kBluePixel);
    raw.storage = 0;
    const std::string broken = directory.Write("broken/raw.sgi", raw.Bytes());
    SeenDialog seen;
    AnswerFileDialog(seen, broken);
    PressWhenBoxComes("OK");
    Do(CommandId::kSetWallpaper);
    Settle();
    ASSERT_FALSE(BoxesShown().isEmpty());
    EXPECT_EQ(Bytes(BoxesShown().last()), "Alert: WARNING: " + broken + ": expecting compressed data");
    EXPECT_THAT(Log(), HasSubstr("WARNING: " + broken + ": expecting compressed data"));
    EXPECT_EQ(Count(Qt::red), once);
    EXPECT_EQ(Choose("").directory, directory / "broken/");
}

}  // namespace
}  // namespace tavrin
