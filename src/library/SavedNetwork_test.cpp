// SPDX-License-Identifier: Apache-2.0
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

TEST(SavedNetwork, AnOperatorsTextIsLeftForItsReader) {
    for (const char* text : {"# saved\ntavrn-version 1", "\nsize 1 2"}) {
        CArchive archive = test::ArchiveOf(text);
        EXPECT_EQ(KindOf(archive),
                  archive.Text().starts_with('#') ? OperatorText::kNetwork : OperatorText::kDefinition);
        EXPECT_EQ(archive.Position(), 0U) << text;
    }
    CArchive archive = test::ArchiveOf("# nothing\n# more\n");
    EXPECT_EQ(KindOf(archive), OperatorText::kEmpty);
    EXPECT_EQ(archive.LineNumber(), 3) << "where the message about it says that something is missing";
}

}  // namespace
}  // namespace tavrin
