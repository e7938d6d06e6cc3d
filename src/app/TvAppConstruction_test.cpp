// SPDX-License-Identifier: Apache-2.0
// What the application takes from the environment when it is made, and its libraries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "app/TvApp.h"
#include "base/Paths.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An application of this environment and no other.
class TvAppConstructionTest : public testing::Test {
  protected:
    TvAppConstructionTest() { report.SetSink(&sink); }

    CTvApp& Make() {
        app = std::make_unique<CTvApp>(report, queue, environment, "/opt/tavrin/bin/tavrin-batch");
        return *app;
    }
    const Directories& Made() { return Make().GetSite().directories; }

    test::CollectingSink sink;
    Report report;
    PlainQueue queue;
    Environment environment;
    std::unique_ptr<CTvApp> app;
};

TEST_F(TvAppConstructionTest, AnEmptyEnvironmentGivesTheDefaults) {
    const Directories& directories = Made();
    EXPECT_EQ(directories.tavrnDir, "/opt/tavrin/share/tavrin");
    EXPECT_EQ(directories.libName, "mray");
    EXPECT_EQ(directories.libDir, "/opt/tavrin/share/tavrin/mray");
    EXPECT_EQ(directories.editorCmd, "xdg-open");
    EXPECT_EQ(directories.workDir, "");
    const Site& site = app->GetSite();
    EXPECT_EQ(site.extShaderIface, ".cus");
    EXPECT_EQ(site.docExt, ".tvn");
    EXPECT_FALSE(site.debugMode);
    EXPECT_FALSE(site.quietMode);
    EXPECT_EQ(site.environment.Get("TAVRN_LIB"), "/opt/tavrin/share/tavrin/mray");
    EXPECT_THAT(sink.alerts, IsEmpty());
    EXPECT_EQ(sink.log, "");
}

TEST_F(TvAppConstructionTest, TheEditorOfTheSystemsOwnVariableWins) {
    environment.Set("EDITOR", "vi");
    EXPECT_EQ(Made().editorCmd, "vi");
    environment.Set("TAVRN_EDITORCMD", "gedit -w");
    EXPECT_EQ(Made().editorCmd, "gedit -w");
    environment.Unset("EDITOR");
    EXPECT_EQ(Made().editorCmd, "gedit -w");
}

TEST_F(TvAppConstructionTest, TheEditorWithAWindowComesBeforeTheOther) {
    environment.Set("EDITOR", "ed");
    environment.Set("VISUAL", "emacs -q");
    EXPECT_EQ(Made().editorCmd, "emacs -q");
    environment.Set("TAVRN_EDITORCMD", "gedit -w");
    EXPECT_EQ(Made().editorCmd, "gedit -w");
}

TEST_F(TvAppConstructionTest, EmptyVariablesCountAsNotSet) {
    environment.Set("EDITOR", "vi");
    environment.Set("TAVRN_EDITORCMD", "");
    environment.Set("TAVRN_DIR", "");
    EXPECT_EQ(Made().editorCmd, "vi");
    EXPECT_EQ(app->GetSite().directories.tavrnDir, "/opt/tavrin/share/tavrin");
    environment.Set("EDITOR", "");
    EXPECT_EQ(Made().editorCmd, "xdg-open");
}

TEST_F(TvAppConstructionTest, TheInstallationIsTheOneOfTheEnvironment) {
    environment.Set("TAVRN_DIR", "/site/tavrin");
    EXPECT_EQ(Made().tavrnDir, "/site/tavrin");
    EXPECT_EQ(app->GetSite().directories.libDir, "/site/tavrin/mray");
}

TEST_F(TvAppConstructionTest, OnlyTheLastComponentOfTheLibraryPathCounts) {
    environment.Set("TAVRN_DIR", "/site/tavrin");
    environment.Set("TAVRN_LIB", "/somewhere/else/glass");
    EXPECT_EQ(Made().libName, "glass");
    EXPECT_EQ(app->GetSite().directories.libDir, "/site/tavrin/glass");
    EXPECT_EQ(app->GetSite().environment.Get("TAVRN_LIB"), "/site/tavrin/glass");
}

TEST_F(TvAppConstructionTest, ABackslashSeparatesWhereThereIsNoSlash) {
    environment.Set("TAVRN_LIB", "C:\\Tavrin\\glass");
    EXPECT_EQ(Made().libName, "glass");
    environment.Set("TAVRN_LIB", "C:\\Tavrin/glass");
    EXPECT_EQ(Made().libName, "glass");
}

TEST_F(TvAppConstructionTest, ALibraryWithoutASeparatorIsRefused) {
    environment.Set("TAVRN_LIB", "mray");
    EXPECT_EQ(Made().libName, "");
    EXPECT_EQ(app->GetSite().directories.libDir, "");
    EXPECT_EQ(sink.log, "invalid TAVRN_LIB value: mray\r\n");
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(TvAppConstructionTest, ALibraryThatIsNoPlainNameIsRefused) {
    for (const char* value : {"/x/", "/x/.", "/x/..", "/x/a\\b"}) {
        sink.log.clear();
        environment.Set("TAVRN_LIB", value);
        EXPECT_EQ(Made().libDir, "") << value;
        EXPECT_EQ(sink.log, std::string("invalid TAVRN_LIB value: ") + value + "\r\n");
    }
}

TEST_F(TvAppConstructionTest, ModesAreOnUnlessTheirVariableBeginsWithAZero) {
    const auto modes = [this](const char* value) {
        environment.Set("TAVRN_DEBUG", value);
        environment.Set("TAVRN_QUIET", "0");
        const bool debug = Make().GetSite().debugMode;
        EXPECT_FALSE(app->GetSite().quietMode);
        environment.Set("TAVRN_DEBUG", "0");
        environment.Set("TAVRN_QUIET", value);
        EXPECT_EQ(Make().GetSite().quietMode, debug);
        EXPECT_FALSE(app->GetSite().debugMode);
        return debug;
    };
    EXPECT_TRUE(modes("1"));
    EXPECT_TRUE(modes("no"));
    EXPECT_TRUE(modes(" 0"));
    EXPECT_TRUE(modes(""));
    EXPECT_FALSE(modes("0"));
    EXPECT_FALSE(modes("00"));
    EXPECT_FALSE(modes("0yes"));
}

TEST_F(TvAppConstructionTest, DocumentsCarryTheVersionOfThreeComponents) {
    EXPECT_EQ(Make().ProductVersion(), "1.3.32.0");
    EXPECT_EQ(app->DocumentVersion(), "1.3.32");
}

TEST_F(TvAppConstructionTest, SelectingALibraryTellsTheChildren) {
    environment.Set("TAVRN_DIR", "/site/tavrin");
    EXPECT_TRUE(Make().SelectLibrary("glass"));
    const Site& site = app->GetSite();
    EXPECT_EQ(site.directories.libName, "glass");
    EXPECT_EQ(site.directories.libDir, "/site/tavrin/glass");
    EXPECT_EQ(site.environment.Get("TAVRN_LIB"), "/site/tavrin/glass");
}

TEST_F(TvAppConstructionTest, SelectingTheSelectedLibraryDoesNothing) {
    Make().GetSite().environment.Set("TAVRN_LIB", "as it was");
    EXPECT_TRUE(app->SelectLibrary("mray"));
    EXPECT_EQ(app->GetSite().environment.Get("TAVRN_LIB"), "as it was");
}

TEST_F(TvAppConstructionTest, ALibraryOutsideTheInstallationIsNotSelected) {
    Make();
    for (const char* name : {"", ".", "..", "../x", "a/b", "a\\b", "/tmp"}) {
        EXPECT_FALSE(app->SelectLibrary(name)) << name;
        EXPECT_FALSE(app->UseLibrary(name)) << name;
    }
    EXPECT_EQ(app->GetSite().directories.libName, "mray");
    EXPECT_EQ(app->GetSite().environment.Get("TAVRN_LIB"), "/opt/tavrin/share/tavrin/mray");
}

// An installation with two libraries.
class TvAppLibrariesTest : public TvAppConstructionTest {
  protected:
    TvAppLibrariesTest() {
        directory.Write("site/mray/menu/0010.Noise", "");
        directory.Write("site/mray/menu/0020.Maths/0010.Add", "");
        directory.Write("site/mray/extra/0010.Mix", "");
        directory.Write("site/glass/menu/0010.Lens", "");
        directory.Write("site/mray/tavrn.def",
                        "menudir.add extra\nmenudir.add " + directory / "shared" + "\n");
        directory.Write("shared/0010.Ours", "");
        std::filesystem::create_directories(directory / "elsewhere");
        environment.Set("TAVRN_DIR", directory / "site");
        environment.Set("TAVRN_TMPDIR", directory / "tmp");
        environment.Set("HOME", directory / "elsewhere");
        Make().LoadSiteDefaults();
    }
    std::vector<std::string> Operators() { return app->Registry().Names(); }

    test::TempDir directory;
};

TEST_F(TvAppLibrariesTest, OperatorsComeFromTheMenuAndFromTheSitesDirectories) {
    EXPECT_THAT(Operators(), ElementsAre("Noise", "Add", "Mix", "Ours"));
}

TEST_F(TvAppLibrariesTest, ReloadingFindsWhatHasComeAndForgetsWhatHasGone) {
    directory.Write("site/mray/menu/0030.New", "");
    std::filesystem::remove(directory / "site/mray/menu/0010.Noise");
    app->ReloadOperators();
    EXPECT_THAT(Operators(), ElementsAre("Add", "New", "Mix", "Ours"));
}

TEST_F(TvAppLibrariesTest, TheOperatorsOfALibraryInUseAreItsOwn) {
    EXPECT_TRUE(app->UseLibrary("glass"));
    EXPECT_EQ(app->GetSite().directories.libDir, directory / "site/glass");
    EXPECT_THAT(Operators(), ElementsAre("Lens", "Ours"));
    EXPECT_EQ(sink.log, "");
}

TEST_F(TvAppLibrariesTest, ALibraryThatIsNotThereIsUsedWithAWarning) {
    EXPECT_TRUE(app->UseLibrary("clay"));
    EXPECT_EQ(app->GetSite().directories.libName, "clay");
    EXPECT_EQ(sink.log, "WARNING: there is no library clay in " + directory / "site" + "\r\n");
    EXPECT_THAT(Operators(), ElementsAre("Ours"));
}

TEST_F(TvAppLibrariesTest, ARefusedLibraryLeavesTheOperators) {
    EXPECT_FALSE(app->UseLibrary("../glass"));
    EXPECT_EQ(app->GetSite().directories.libName, "mray");
    EXPECT_THAT(Operators(), ElementsAre("Noise", "Add", "Mix", "Ours"));
}

}  // namespace
}  // namespace tavrin
