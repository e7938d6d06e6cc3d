// SPDX-License-Identifier: Apache-2.0
// What must end the program after its start, and what its end leaves behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "app/TvApp.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::chrono::milliseconds kNoGrace{0};

class TvAppEndsTest : public testing::Test {
  protected:
    TvAppEndsTest() {
        report.SetSink(&sink);
        environment.Set("TAVRN_DIR", directory / "site");
        environment.Set("TAVRN_TMPDIR", directory / "tmp");
        environment.Set("PATH", "/usr/bin:/bin");
        fs::create_directories(directory / "site/mray");
    }

    CTvApp& Load() {
        app = std::make_unique<CTvApp>(report, queue, environment, "/opt/tavrin/bin/tavrin");
        app->LoadSiteDefaults();
        return *app;
    }
    // What must stop the program, with the title of its box where it is fatal; empty if nothing does.
    std::string Problem() {
        const auto problem = Load().StartUpProblem();
        if (!problem) return {};
        return (problem->isFatalError ? "Fatal Error: " : "") + problem->text;
    }
    const std::string& WorkDir() { return app->GetSite().directories.workDir; }

    test::TempDir directory;
    test::CollectingSink sink;
    Report report;
    PlainQueue queue;
    Environment environment;
    std::unique_ptr<CTvApp> app;
};

TEST_F(TvAppEndsTest, AnInstallationThatIsThereIsNoProblem) { EXPECT_EQ(Problem(), ""); }

TEST_F(TvAppEndsTest, ABlankInTheInstallationsPathIsFatal) {
    fs::create_directories(directory / "my site/mray");
    environment.Set("TAVRN_DIR", directory / "my site");
    EXPECT_EQ(Problem(),
              "Fatal Error: Tavrin directory path \"" + directory / "my site" + "\" includes whitespace");
}

TEST_F(TvAppEndsTest, ABlankInTheTemporaryRootIsFatal) {
    environment.Set("TAVRN_TMPDIR", directory / "my tmp");
    EXPECT_EQ(Problem(),
              "Fatal Error: Temporary directory path \"" + directory / "my tmp" + "\" includes whitespace");
    environment.Unset("TAVRN_TMPDIR");
    environment.Set("TEMP", directory / "my temp");
    EXPECT_EQ(Problem(),
              "Fatal Error: Temporary directory path \"" + directory / "my temp" + "\" includes whitespace");
}

TEST_F(TvAppEndsTest, AMissingInstallationIsFatal) {
    environment.Set("TAVRN_DIR", directory / "nowhere");
    EXPECT_EQ(Problem(), "Fatal Error: Tavrin directory \"" + directory / "nowhere" + "\" does not exist");
}

TEST_F(TvAppEndsTest, ATabPassesForNoBlank) {
    fs::create_directories(directory / "my\tsite/mray");
    environment.Set("TAVRN_DIR", directory / "my\tsite");
    environment.Set("TAVRN_TMPDIR", directory / "my\ttmp");
    EXPECT_EQ(Problem(), "");
}

TEST_F(TvAppEndsTest, NoLibraryIsAnAlert) {
    environment.Set("TAVRN_LIB", "mray");
    EXPECT_EQ(Problem(), "environment variable TAVRN_LIB not defined");
}

TEST_F(TvAppEndsTest, TheFirstOfSeveralProblemsIsTold) {
    environment.Set("TAVRN_LIB", "mray");
    environment.Set("TAVRN_DIR", directory / "no where");
    environment.Set("TAVRN_TMPDIR", directory / "my tmp");
    EXPECT_THAT(Problem(), testing::HasSubstr("no where\" includes whitespace"));
    environment.Set("TAVRN_DIR", directory / "nowhere");
    EXPECT_THAT(Problem(), testing::HasSubstr("my tmp\" includes whitespace"));
    environment.Set("TAVRN_TMPDIR", directory / "tmp");
    EXPECT_THAT(Problem(), testing::HasSubstr("does not exist"));
}

TEST_F(TvAppEndsTest, TheEndRemovesTheWorkDirectoryWithAllThatIsInIt) {
    Load();
    fs::create_directories(WorkDir() + "/1/deeper");
    directory.Write("precious", "x");
    fs::create_symlink(directory / "precious", WorkDir() + "/1/link");
    EXPECT_TRUE(app->CanRemoveWorkDirectory());
    EXPECT_TRUE(fs::exists(WorkDir() + "/1/deeper"));
    EXPECT_TRUE(app->CloseDown(kNoGrace));
    EXPECT_FALSE(fs::exists(WorkDir()));
    EXPECT_TRUE(fs::exists(directory / "precious"));
    EXPECT_TRUE(fs::exists(directory / "tmp"));
    EXPECT_EQ(sink.log, "");
}

TEST_F(TvAppEndsTest, WhatCannotBeRemovedStaysAndIsNamedInTheLog) {
    Load();
    fs::create_directories(WorkDir() + "/1/.kept");
    fs::create_directories(WorkDir() + "/2");
    EXPECT_FALSE(app->CanRemoveWorkDirectory());
    EXPECT_TRUE(fs::exists(WorkDir() + "/2"));
    EXPECT_FALSE(app->CloseDown(kNoGrace));
    EXPECT_EQ(sink.log, "unable to remove " + WorkDir() + "/1\r\nunable to remove " + WorkDir() + "\r\n");
    EXPECT_TRUE(fs::exists(WorkDir() + "/1/.kept"));
    EXPECT_FALSE(fs::exists(WorkDir() + "/2"));
}

TEST_F(TvAppEndsTest, APathWithPercentSignsIsLoggedAsItIs) {
    environment.Set("TAVRN_TMPDIR", directory / "%s%n");
    Load();
    fs::create_directories(WorkDir() + "/.kept");
    EXPECT_FALSE(app->CloseDown(kNoGrace));
    EXPECT_EQ(sink.log, "unable to remove " + WorkDir() + "\r\n");
}

TEST_F(TvAppEndsTest, AWorkDirectoryThatIsGoneIsNoTrouble) {
    Load();
    fs::remove_all(WorkDir());
    EXPECT_TRUE(app->CloseDown(kNoGrace));
    EXPECT_EQ(sink.log, "");
}

TEST_F(TvAppEndsTest, AnApplicationThatNeverLoadedItsSiteEndsQuietly) {
    app = std::make_unique<CTvApp>(report, queue, environment, "/opt/tavrin/bin/tavrin");
    EXPECT_TRUE(app->CloseDown(kNoGrace));
    EXPECT_THAT(sink.alerts, IsEmpty());
}

TEST_F(TvAppEndsTest, TheEndWaitsForChildrenThatHeedTheirKillFile) {
    const std::string perlExec = directory.Write("site/bin/PerlExec", "#!/bin/sh\nexec perl \"$@\"\n");
    fs::permissions(perlExec, fs::perms::owner_all);
    const std::string script = directory.Write("child.pl",
                                               "$| = 1; print 'started '; select undef, undef, undef, 0.01 "
                                               "until -e $ENV{TAVRN_KILLFILE}; print 'stopped';");
    Load().GetSite().commands.RunScript({script}, "");
    for (int tries = 0; sink.log.empty() && tries < 3000; ++tries)
        queue.RunPending(std::chrono::milliseconds(10));
    EXPECT_TRUE(app->CloseDown(test::kPatience));
    queue.RunPending();
    EXPECT_EQ(sink.log, "started stopped");
    EXPECT_FALSE(fs::exists(WorkDir()));
}

TEST_F(TvAppEndsTest, OfTwoAlertsTheSecondIsPending) {
    Load();
    report.Alert("first");
    report.Alert("second");
    EXPECT_EQ(report.TakePending()->text, "second");
    EXPECT_FALSE(report.TakePending());
}

TEST_F(TvAppEndsTest, AWorkDirectoryThatWasRemovedCanBeMadeAgain) {
    Load();
    ASSERT_TRUE(app->RemoveWorkDirectory());
    EXPECT_FALSE(fs::exists(WorkDir()));
    EXPECT_TRUE(app->CanRemoveWorkDirectory());
    app->RestoreWorkDirectory();
    EXPECT_TRUE(fs::is_directory(WorkDir()));
    EXPECT_TRUE(app->CloseDown(kNoGrace));
    EXPECT_FALSE(fs::exists(WorkDir()));
}

}  // namespace
}  // namespace tavrin
