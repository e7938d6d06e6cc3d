// SPDX-License-Identifier: Apache-2.0
// Which site definitions files are read, and in which order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "app/SiteFileReader.h"
#include "codegen/CodeGen.h"
#include "document/ExportOptions.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

// Works in a directory of its own; each site file of a test names itself in the settings.
class SiteFilesTest : public testing::Test {
  protected:
    SiteFilesTest() {
        site.directories.libDir = test.directory / "lib";
        for (const char* name : {"homeDrive", "homePath", "HOME"}) site.environment.Unset(name);
        fs::create_directories(test.directory / "here");
        fs::current_path(test.directory / "here");
    }
    ~SiteFilesTest() override { fs::current_path(m_before); }

    // A site file below the test's directory, with a setting and a menu directory that name it.
    void Write(const std::string& directory, const std::string& more = {}) {
        test.directory.Write(directory + "/tavrn.def",
                             "last.file " + directory + "\nmenudir.add " + directory + "\n" + more);
    }
    void ReadAll() { ReadSiteFiles(targets); }
    std::string LastFile() {
        std::string text = "(none)";
        site.settings.GetSettingRaw("last.file", text);
        return text;
    }

    test::TestSite test;
    Site& site = test.site;
    CCodeGen codeGen;
    CExportOptions exportDefaults;
    SiteTargets targets{site, codeGen, exportDefaults, [](CArchive&) {}};

  private:
    fs::path m_before = fs::current_path();
};

TEST_F(SiteFilesTest, TheLibrarysFileComesFirstThenTheUsersThenTheOneHere) {
    Write("lib");
    Write("home");
    Write("here");
    site.environment.Set("HOME", test.directory / "home");
    ReadAll();
    EXPECT_THAT(site.menuDirs, ElementsAre("lib", "home", "here"));
    EXPECT_EQ(LastFile(), "here");
}

TEST_F(SiteFilesTest, FilesThatAreNotThereArePassedOverWithoutAWord) {
    site.environment.Set("HOME", test.directory / "nowhere");
    ReadAll();
    EXPECT_THAT(site.menuDirs, IsEmpty());
    EXPECT_THAT(test.sink.alerts, IsEmpty());
    EXPECT_EQ(test.sink.log, "");
}

TEST_F(SiteFilesTest, TheUsersFileLiesWhereHomeDriveAndHomePathSay) {
    Write("home");
    Write("drive/users/anna");
    site.environment.Set("HOME", test.directory / "home");
    site.environment.Set("homeDrive", test.directory / "drive");
    site.environment.Set("homePath", "users/anna");
    ReadAll();
    EXPECT_THAT(site.menuDirs, ElementsAre("drive/users/anna"));
}

TEST_F(SiteFilesTest, ADoubledSeparatorInTheUsersPathIsHarmless) {
    Write("drive");
    site.environment.Set("homeDrive", test.directory / "drive");
    site.environment.Set("homePath", "/");
    ReadAll();
    EXPECT_EQ(LastFile(), "drive");
}

TEST_F(SiteFilesTest, OneOfTheTwoVariablesAloneDoesNotCount) {
    Write("home");
    Write("drive");
    site.environment.Set("HOME", test.directory / "home");
    site.environment.Set("homeDrive", test.directory / "drive");
    ReadAll();
    EXPECT_THAT(site.menuDirs, ElementsAre("home"));
    site.environment.Unset("homeDrive");
    site.environment.Set("homePath", test.directory / "drive");
    site.menuDirs.clear();
    ReadAll();
    EXPECT_THAT(site.menuDirs, ElementsAre("home"));
}

TEST_F(SiteFilesTest, VariablesSpeltInAnotherCaseDoNotCount) {
    Write("home");
    Write("drive/x");
    site.environment.Set("HOME", test.directory / "home");
    site.environment.Set("HOMEDRIVE", test.directory / "drive");
    site.environment.Set("HOMEPATH", "x");
    ReadAll();
    EXPECT_EQ(LastFile(), "home");
}

TEST_F(SiteFilesTest, WithoutAHomeTheOtherTwoAreRead) {
    Write("lib");
    Write("here");
    ReadAll();
    EXPECT_THAT(site.menuDirs, ElementsAre("lib", "here"));
}

TEST_F(SiteFilesTest, AnErrorInOneFileDoesNotKeepTheNextFromBeingRead) {
    Write("lib", "ext.shaderiface\nmenudir.add never\n");
    Write("here");
    ReadAll();
    EXPECT_THAT(test.sink.alerts, ElementsAre(test.directory / "lib/tavrn.def" +
                                              " near line 4: invalid shaderiface extension spec: "));
    EXPECT_THAT(test.sink.files, ElementsAre(test.directory / "lib/tavrn.def"));
    EXPECT_THAT(site.menuDirs, ElementsAre("lib", "here"));
}

TEST_F(SiteFilesTest, ALaterFileReplacesTheToolbarAndOneWithoutLeavesIt) {
    Write("lib", "toolbutton 1=Noise\ntoolbutton 2=Mix\n");
    site.environment.Set("HOME", test.directory / "home");
    Write("home");
    ReadAll();
    EXPECT_THAT(site.toolButtons, ElementsAre("Noise", "Mix"));
    Write("here", "toolbutton 1=Ramp\n");
    ReadAll();
    EXPECT_THAT(site.toolButtons, ElementsAre("Ramp"));
}

TEST_F(SiteFilesTest, ADirectoryInPlaceOfAFileIsNamedInTheLog) {
    fs::create_directories(test.directory / "lib/tavrn.def");
    Write("here");
    ReadAll();
    EXPECT_EQ(test.sink.log,
              "WARNING: site file " + test.directory / "lib/tavrn.def" + " is not read: Is a directory\r\n");
    EXPECT_THAT(test.sink.alerts, IsEmpty());
    EXPECT_THAT(site.menuDirs, ElementsAre("here"));
}

}  // namespace
}  // namespace tavrin
