// SPDX-License-Identifier: Apache-2.0
#include "site/Site.h"

#include <gtest/gtest.h>

#include "support/TestSite.h"

namespace tavrin {
namespace {

TEST(Site, FilesOfTheLibraryAreResolvedAgainstIt) {
    test::TestSite test;
    test.site.directories.libDir = "/opt/lib";
    EXPECT_EQ(test.site.LibraryPath("bin\\codefilter"), "/opt/lib/bin/codefilter");
    EXPECT_EQ(test.site.LibraryPath("tavrn.def"), "/opt/lib/tavrn.def");
    EXPECT_EQ(test.site.LibraryPath("/usr/bin/filter"), "/usr/bin/filter");
    EXPECT_EQ(test.site.LibraryPath("./here"), "./here");
    EXPECT_EQ(test.site.LibraryPath(""), ".");
}

TEST(Site, WorkFilesStandInTheWorkDirectory) {
    test::TestSite test;
    test.site.directories.workDir = "/tmp/tavrn.1";
    EXPECT_EQ(test.site.WorkPath("codegenfile"), "/tmp/tavrn.1/codegenfile");
}

TEST(Site, StartsWithTheDefaultExtensions) {
    test::TestSite test;
    EXPECT_EQ(test.site.extShaderIface, ".cus");
    EXPECT_EQ(test.site.docExt, ".tvn");
    EXPECT_EQ(test.site.extShaderSource + test.site.extCompiledShader + test.site.extRenderIface, "");
}

TEST(Site, ScriptsHaveLimitsAlsoWhereTheSiteSaysNothing) {
    test::TestSite test;
    test.site.ReadLimits();
    EXPECT_EQ(test.site.renderLimits.time, std::chrono::seconds(1800));
    EXPECT_EQ(test.site.compileLimits.time, std::chrono::seconds(60));
    EXPECT_EQ(test.site.renderLimits.memory, 4096ULL << 20);
    EXPECT_EQ(test.site.commands.OutputLimit(), 64ULL << 20);
}

TEST(Site, TheLimitsOfScriptsAreThoseOfTheSite) {
    test::TestSite test;
    test.site.settings.Store("limit.rendertime", "90");
    test.site.settings.Store("limit.compiletime", "0 # none");
    test.site.settings.Store("limit.memory", "100");
    test.site.settings.Store("limit.output", "0");
    test.site.ReadLimits();
    EXPECT_EQ(test.site.renderLimits.time, std::chrono::seconds(90));
    EXPECT_EQ(test.site.renderLimits.timeSetBy, "limit.rendertime in the site definitions");
    EXPECT_EQ(test.site.compileLimits.time, std::chrono::seconds(0));
    EXPECT_EQ(test.site.compileLimits.memory, 100ULL << 20);
    EXPECT_EQ(test.site.compileLimits.memorySetBy, "limit.memory in the site definitions");
    EXPECT_EQ(test.site.commands.OutputLimit(), Commands::kAnyOutput);
    test.site.settings.Store("limit.rendertime", "-1");
    test.site.ReadLimits();
    EXPECT_EQ(test.site.renderLimits.time, std::chrono::seconds(1800)) << "a number that means nothing";
}

}  // namespace
}  // namespace tavrin
