// SPDX-License-Identifier: Apache-2.0
// Documents of the user's own.
#include <gtest/gtest.h>

#include "app/TvApp.h"
#include "support/SmallApp.h"

namespace tavrin {
namespace {

class TvAppTrustTest : public test::SmallAppTest {
  protected:
    void Load() {
        MakeApp();
        app->LoadSiteDefaults();
    }
};

TEST_F(TvAppTrustTest, ADocumentThatThisProgramSavesIsKnownInTheNextRun) {
    Load();
    CTvDoc document(*app);
    std::string error;
    ASSERT_TRUE(document.Save(directory / "own.tvn", error)) << error;
    Load();
    CTvDoc again(*app);
    ASSERT_TRUE(again.Open(directory / "own.tvn"));
    EXPECT_FALSE(again.IsForeign());
    directory.Write("own.tvn", test::ReadFile(directory / "own.tvn") + "#\n");
    ASSERT_TRUE(again.Open(directory / "own.tvn"));
    EXPECT_TRUE(again.IsForeign());
}

}  // namespace
}  // namespace tavrin
