// SPDX-License-Identifier: Apache-2.0
// LoadSiteDefaults: what the site files, the work directory and the children's environment come to.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "app/TvApp.h"
#include "forms/FormFrame.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

class TvAppSiteTest : public testing::Test {
  protected:
    TvAppSiteTest() {
        report.SetSink(&sink);
        fs::create_directories(directory / "site/mray");
        environment.Set("TAVRN_DIR", directory / "site");
        environment.Set("TAVRN_TMPDIR", directory / "tmp");
        environment.Set("PATH", "/usr/bin:/bin");
    }

    CTvApp& Load(const std::string& siteFile = {}) {
        directory.Write("site/mray/tavrn.def", siteFile);
        app = std::make_unique<CTvApp>(report, queue, environment, "/opt/tavrin/bin/tavrin");
        app->LoadSiteDefaults();
        return *app;
    }
    Site& LoadedSite(const std::string& siteFile = {}) { return Load(siteFile).GetSite(); }
    // Below the root, with a part that differs each time.
    static auto IsOurWorkDir(const std::string& root) {
        return MatchesRegex(root + "/tavrn\\." + std::to_string(::getpid()) + "\\.[A-Za-z0-9]{8}");
    }

    test::TempDir directory;
    test::CollectingSink sink;
    Report report;
    PlainQueue queue;
    Environment environment;
    std::unique_ptr<CTvApp> app;
};

TEST_F(TvAppSiteTest, TheOperatorMenusBeginWithTheLibrarysOwn) {
    EXPECT_THAT(LoadedSite("menudir.add ours\nmenudir.add theirs\n").menuDirs,
                ElementsAre("menu", "ours", "theirs"));
}

TEST_F(TvAppSiteTest, TheSiteFileAddsToTheBuiltInDataTypes) {
    const Site& site = LoadedSite("datatype.add {\nname float\ndeclarehead \"varying float \"\n}\n");
    EXPECT_EQ(site.types.GetDeclaration("float").head, "varying float ");
    EXPECT_EQ(site.types.GetDeclaration("rgb").head, "color ");
}

TEST_F(TvAppSiteTest, TheSiteOverridesEditorAndDirectories) {
    environment.Set("TAVRN_EDITORCMD", "vi");
    const Site& site = LoadedSite(
        "editorcmd \"gedit --wait\" # ours\ntavrnbrowser_dir documents # ours\nscriptbrowser_dir scripts\n");
    EXPECT_EQ(site.directories.editorCmd, "gedit --wait");
    EXPECT_EQ(site.directories.docBrowserDir, directory / "site/mray/documents");
    EXPECT_EQ(site.directories.scriptBrowserDir, "scripts");
}

TEST_F(TvAppSiteTest, WithoutTheSettingsTheDefaultsStand) {
    environment.Set("TAVRN_EDITORCMD", "vi");
    const Site& site = LoadedSite();
    EXPECT_EQ(site.directories.editorCmd, "vi");
    EXPECT_EQ(site.directories.docBrowserDir, ".");
    EXPECT_EQ(site.directories.scriptBrowserDir, "");
    EXPECT_EQ(site.extShaderSource, "");
    EXPECT_EQ(site.extCompiledShader, "");
    EXPECT_EQ(site.extRenderIface, "");
    EXPECT_EQ(site.extShaderIface, ".cus");
}

TEST_F(TvAppSiteTest, ExtensionsComeFromTheSite) {
    const Site& site =
        LoadedSite("ext.shadersource .sl # source\next.compiledshader \".slo\"\next.renderiface .rif\n");
    EXPECT_EQ(site.extShaderSource, ".sl");
    EXPECT_EQ(site.extCompiledShader, ".slo");
    EXPECT_EQ(site.extRenderIface, ".rif");
    EXPECT_EQ(site.docExt, ".tvn");
}

TEST_F(TvAppSiteTest, TheFormGivesTheOptionsTheirDefaults) {
    CTvApp& made = Load(
        "roe {\nxfield {\nenvname DEPTH\nvalue 2\n}\nxfield {\nenvname SECRET\nvalue 3\nnotavrnsave\n}\n}\n"
        "maxhistory 5\n");
    EXPECT_EQ(made.GetAppVariable("DEPTH"), "2");
    EXPECT_EQ(made.GetAppVariable("SECRET"), "3");
    EXPECT_EQ(made.RenderOptionsForm().children.size(), 2U);
    EXPECT_TRUE(made.IsUnsavedOption("SECRET"));
    EXPECT_FALSE(made.IsUnsavedOption("DEPTH"));
    int history = 0;
    EXPECT_TRUE(made.GetSite().settings.GetSettingInt("maxhistory", history));
}

TEST_F(TvAppSiteTest, AFaultyFormIsReportedAndWhatItGaveStays) {
    CTvApp& made = Load("roe {\nxfield {\nenvname DEPTH\nvalue 2\n}\nnonsense {\n}\n}\nmenudir.add ours\n");
    EXPECT_EQ(sink.alerts.size(), 1U);
    EXPECT_THAT(sink.LastAlert(), testing::StartsWith(directory / "site/mray/tavrn.def" + " near line "));
    EXPECT_EQ(made.GetAppVariable("DEPTH"), "2");
    EXPECT_THAT(made.GetSite().menuDirs, testing::Contains("ours"));
}

TEST_F(TvAppSiteTest, TheSitesTemplateAndExportDefaultsAreTheApplications) {
    CTvApp& made = Load("codegen.linecomment \"--\"\nexportoptions {\n    tavrndir 1 /out\n}\n");
    EXPECT_EQ(made.CodeGen().m_lineComment, "--");
    EXPECT_EQ(made.ExportDefaults().tavrnPath, "/out/");
}

TEST_F(TvAppSiteTest, TheWorkDirectoryIsMadeBelowTheTemporaryRootWhichIsMadeToo) {
    EXPECT_THAT(LoadedSite().directories.workDir, IsOurWorkDir(directory / "tmp"));
    EXPECT_TRUE(fs::is_directory(app->GetSite().directories.workDir));
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(TvAppSiteTest, TheTemporaryRootOfTheSystemIsUsedWhereTheEnvironmentNamesNoOther) {
    environment.Set("TEMP", directory / "temp");
    EXPECT_THAT(LoadedSite().directories.workDir, IsOurWorkDir(directory / "tmp"));
    environment.Unset("TAVRN_TMPDIR");
    EXPECT_THAT(LoadedSite().directories.workDir, IsOurWorkDir(directory / "temp"));
    EXPECT_EQ(app->GetSite().environment.Get("TAVRN_TMPDIR"), directory / "temp");
    environment.Set("TAVRN_TMPDIR", "");
    EXPECT_THAT(LoadedSite().directories.workDir, IsOurWorkDir(directory / "temp"));
    environment.Unset("TEMP");
    const std::string inSystems = LoadedSite().directories.workDir;
    EXPECT_THAT(inSystems, IsOurWorkDir("/tmp"));
    EXPECT_TRUE(app->CloseDown(std::chrono::milliseconds(0)));
    EXPECT_FALSE(fs::exists(inSystems));
}

TEST_F(TvAppSiteTest, AWorkDirectoryThatCannotBeMadeIsAlertedAndTheProgramGoesOn) {
    environment.Set("TAVRN_TMPDIR", directory / "not/there");
    CTvApp& made = Load();
    const std::string path = made.GetSite().directories.workDir;
    EXPECT_THAT(path, IsOurWorkDir(directory / "not/there"));
    EXPECT_THAT(sink.alerts, ElementsAre("unable to create work directory " + path + "\n"));
    EXPECT_EQ(made.GetSite().environment.Get("TAVRN_WORKDIR"), path);
    EXPECT_FALSE(made.StartUpProblem());
    EXPECT_TRUE(made.CloseDown(std::chrono::milliseconds(0)));
}

// Whoever sees the alert or the process could put something there, and a link in it.
TEST_F(TvAppSiteTest, WhereAWorkDirectoryCouldNotBeMadeNothingIsWrittenLater) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a directory to another";
    environment.Set("TAVRN_TMPDIR", directory / "not/there");
    Site& site = LoadedSite();
    const std::string precious = directory.Write("precious", "as it was");
    fs::create_directories(site.directories.workDir);
    fs::create_symlink(precious, site.WorkPath("codegenfile"));
    ASSERT_EQ(::chown(site.directories.workDir.c_str(), 65534, 65534), 0);
    std::string error;
    EXPECT_FALSE(site.WriteWorkFile("codegenfile", "overwritten", error));
    EXPECT_FALSE(site.WriteWorkFile("hintfile", "overwritten", error));
    EXPECT_EQ(test::ReadFile(precious), "as it was");
    EXPECT_FALSE(fs::exists(site.WorkPath("hintfile")));
    EXPECT_TRUE(app->CloseDown(std::chrono::milliseconds(0)));
    EXPECT_TRUE(fs::is_symlink(site.WorkPath("codegenfile")));
}

TEST_F(TvAppSiteTest, WhatAProgramThatWasKilledLeftIsClearedAwayAtTheStart) {
    const std::string left = directory.Write("tmp/tavrn.1.abcdefgh/codegenfile", "old");
    directory.Write("tmp/tavrn.2/codegenfile", "of another kind");
    Load();
    EXPECT_FALSE(fs::exists(fs::path(left).parent_path()));
    EXPECT_TRUE(fs::exists(directory / "tmp/tavrn.2/codegenfile"));
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(TvAppSiteTest, ChildrenAreToldOfEveryDirectory) {
    environment.Set("TAVRN_EDITORCMD", "vi");
    environment.Set("TAVRN_DEBUG", "1");
    const Site& site = LoadedSite("editorcmd \"gedit -w\"\n");
    const std::string& work = site.directories.workDir;
    EXPECT_THAT(
        site.environment.ToList(),
        ElementsAre("COMSPEC=/bin/sh",
                    "PATH=" + directory / "site/bin" + ":/opt/tavrin/libexec/tavrin:/usr/bin:/bin",
                    "TAVRN_DEBUG=0", "TAVRN_DIR=" + directory / "site", "TAVRN_EDITORCMD=\"gedit -w\"",
                    "TAVRN_LIB=" + directory / "site/mray", "TAVRN_RENOPTS=" + work + "/render_options",
                    "TAVRN_TMPDIR=" + directory / "tmp", "TAVRN_WORKDIR=" + work));
    EXPECT_TRUE(site.debugMode);
}

TEST_F(TvAppSiteTest, ChildrenInheritTheQuietModeAsItIs) {
    environment.Set("TAVRN_QUIET", "yes");
    EXPECT_EQ(LoadedSite().environment.Get("TAVRN_QUIET"), "yes");
    environment.Unset("TAVRN_QUIET");
    EXPECT_EQ(LoadedSite().environment.Get("TAVRN_QUIET"), std::nullopt);
}

TEST_F(TvAppSiteTest, WithoutASearchPathChildrenGetThePlatforms) {
    environment.Unset("PATH");
    EXPECT_EQ(LoadedSite().environment.Get("PATH"),
              directory / "site/bin" + ":/opt/tavrin/libexec/tavrin:/usr/bin:/bin");
}

TEST_F(TvAppSiteTest, ACommandSeesTheChildrensEnvironment) {
    Site& site = LoadedSite();
    const std::string script = directory.Write(
        "show.sh", "printf '%s %s' \"$TAVRN_WORKDIR\" \"$COMSPEC\" > \"$TAVRN_WORKDIR/shown\"\n");
    ASSERT_TRUE(site.commands.RunCommand("sh " + script, true));
    EXPECT_EQ(test::ReadFile(site.WorkPath("shown")), site.directories.workDir + " /bin/sh");
}

TEST_F(TvAppSiteTest, KillFilesLieInTheWorkDirectory) {
    Site& site = LoadedSite();
    const std::string perlExec =
        directory.Write("site/bin/PerlExec", "#!/bin/sh\nprintf %s \"$TAVRN_KILLFILE\"\n");
    fs::permissions(perlExec, fs::perms::owner_all);
    site.commands.RunScript({"script"}, "");
    for (int tries = 0; site.commands.AnyProcessLeft() && tries < 3000; ++tries) {
        queue.RunPending(std::chrono::milliseconds(10));
    }
    queue.RunPending();
    EXPECT_EQ(sink.log, site.WorkPath("kill.1"));
}

TEST_F(TvAppSiteTest, ALibraryCallsItsPreprocessorPureForItselfAlone) {
    CTvApp& loaded = Load("preprocess.pure 1\n");
    const Site& site = loaded.GetSite();
    EXPECT_TRUE(site.PreprocessIsPure());
    loaded.UseLibrary("other");
    EXPECT_FALSE(site.PreprocessIsPure());
    loaded.UseLibrary("mray");
    EXPECT_TRUE(site.PreprocessIsPure());
    for (const char* line : {"", "preprocess.pure 0\n", "preprocess.pure yes\n", "preprocess.pure\n"}) {
        app.reset();
        EXPECT_FALSE(LoadedSite(line).PreprocessIsPure()) << line;
    }
}

TEST_F(TvAppSiteTest, TheSuppliedLibraryCallsItsPreprocessorPure) {
    environment.Set("TAVRN_DIR", test::SourcePath("installation"));
    app = std::make_unique<CTvApp>(report, queue, environment, "/opt/tavrin/bin/tavrin");
    app->LoadSiteDefaults();
    EXPECT_TRUE(app->GetSite().PreprocessIsPure());
}

TEST_F(TvAppSiteTest, TheProcessEnvironmentIsNotWritten) {
    const auto before = Environment::FromProcess().ToList();
    Load();
    app->UseLibrary("other");
    app->CloseDown(std::chrono::milliseconds(0));
    EXPECT_EQ(Environment::FromProcess().ToList(), before);
}

TEST_F(TvAppSiteTest, AnOperatorIsEditedByThePathOfItsFileInQuotesWhereThatHasBlanks) {
    for (const char* name : {"plain", "with blanks"}) {
        const std::string root = directory / name;
        const bool plain = root.find(' ') == std::string::npos;
        fs::create_directories(root + "/mray/menu");
        directory.Write(std::string(name) + "/mray/menu/0100.Noise", "");
        environment.Set("TAVRN_DIR", root);
        CTvApp& loaded = Load();
        loaded.GetSite().directories.editorCmd = "/no/such/editor -x";
        sink.alerts.clear();
        loaded.EditOperator("Noise");
        const std::string path = root + "/mray/menu/0100.Noise";
        EXPECT_THAT(sink.alerts,
                    ElementsAre("command failed: /no/such/editor -x " + (plain ? path : '"' + path + '"')));
        app.reset();
    }
}

TEST_F(TvAppSiteTest, AnOperatorThatIsNotInTheLibraryIsNotEdited) {
    CTvApp& loaded = Load();
    loaded.GetSite().directories.editorCmd = "/no/such/editor";
    sink.alerts.clear();
    loaded.EditOperator("Noise");
    EXPECT_THAT(sink.alerts, ElementsAre("Noise: unknown operator name"));
}

}  // namespace
}  // namespace tavrin
