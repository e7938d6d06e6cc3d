#include "library/SavedNetwork.h"

#include <gtest/gtest.h>

#include "support/TestSite.h"

namespace tavrin {
namespace {

TEST(SavedNetwork, IsKnownByItsFirstWord) {
    const test::TempDir directory;
    EXPECT_TRUE(IsSavedNetwork(directory.Write("a", "# saved\r\n\r\ntavrn-version 1")));
    EXPECT_TRUE(IsSavedNetwork(test::SourcePath("examples/marble.tvn")));
    EXPECT_FALSE(IsSavedNetwork(directory.Write("c", "output o { float out } tavrn-version")));
    EXPECT_FALSE(IsSavedNetwork(directory.Write("d", "# tavrn-version\n")));
    EXPECT_FALSE(IsSavedNetwork(directory / "missing"));
}

}  // namespace
}  // namespace tavrin
