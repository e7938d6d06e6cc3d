// SPDX-License-Identifier: Apache-2.0
#include "ui/program/CommandLine.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

TEST(ProgramCommandLine, TakesOneDocument) {
    EXPECT_EQ(ParseProgramOptions({"wood.tvn"}).documentPath, "wood.tvn");
    EXPECT_EQ(ParseProgramOptions({}).documentPath, "");
    EXPECT_EQ(ParseProgramOptions({"a.tvn", "b.tvn"}).error,
              "one document at most can be opened: b.tvn is one too many");
}

TEST(ProgramCommandLine, KnowsHelpAndVersion) {
    EXPECT_TRUE(ParseProgramOptions({"--help"}).help);
    EXPECT_TRUE(ParseProgramOptions({"-h"}).help);
    EXPECT_TRUE(ParseProgramOptions({"--version"}).version);
}

TEST(ProgramCommandLine, RefusesAnUnknownOptionByName) {
    EXPECT_EQ(ParseProgramOptions({"--colour"}).error, "unknown option --colour; see tavrin --help");
}

TEST(ProgramCommandLine, ADocumentBehindTwoDashesMayBeginWithADash) {
    const ProgramOptions options = ParseProgramOptions({"--", "-odd.tvn"});
    EXPECT_EQ(options.error, "");
    EXPECT_EQ(options.documentPath, "-odd.tvn");
}

}  // namespace
}  // namespace tavrin
