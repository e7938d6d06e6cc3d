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

}  // namespace
}  // namespace tavrin
