// SPDX-License-Identifier: Apache-2.0
// What a run does and does not for documents from elsewhere.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "batch/BatchTest.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::kDocument;
using testing::HasSubstr;
using testing::StartsWith;

// What documents want exported

class BatchTrustTest : public test::BatchTest {
  protected:
    BatchTrustTest() {
        Script("exportall", "print \"exported <$ARGV[1]> <$ARGV[5]>\\n\";\n");
        Write("out/keep", "");
        wishes = "exportoptions { shadersourcedir 1 " + In("out") + "\npostsavescript 1 touch it\n}\n";
        foreign = Write("foreign.tvn", kDocument + wishes);
    }
    std::string Refusal(const std::string& document) const {
        return "ALERT: " + document + " was not saved by you on this machine, and asks to write " +
               In("out/" + fs::path(document).stem().string()) +
               "; run touch it; use --trust-exports if that may be done\n";
    }

    std::string wishes;
    std::string foreign;
};

TEST_F(BatchTrustTest, OfADocumentFromElsewhereTheyAreRefusedUnlessTheyAreTrusted) {
    EXPECT_EQ(Run({foreign, "--export-all", "--list-operators"}), 1);
    EXPECT_EQ(log, Refusal(foreign));
    EXPECT_THAT(data, StartsWith("Link\t"));
    EXPECT_EQ(Run({foreign, "--script", Write("all.tvx", "form export all\n")}), 1);
    EXPECT_EQ(log, Refusal(foreign));
    EXPECT_EQ(Run({foreign, "--script", Write("one.tvx", "form export compiledShader\n")}), 1);
    EXPECT_THAT(log, HasSubstr("asks to write " + fs::current_path().string()));
    EXPECT_EQ(Run({foreign, "--export-all", "--trust-exports"}), 0);
    EXPECT_EQ(log, "exported <" + In("out/foreign") + "> <touch it>\n");
    EXPECT_EQ(Run({foreign, "--export-all"}), 1) << "that was for one run";
}

TEST_F(BatchTrustTest, APathOfTheCommandLineNeedsNoTrust) {
    EXPECT_EQ(Run({foreign, "--export", "shaderSource=" + In("out/mine")}), 0);
    EXPECT_EQ(log, "exported <" + In("out/mine") + "> <->\n");
}

TEST_F(BatchTrustTest, ADocumentThatWasSavedHereNeedsNoTrustWhereverItIsMoved) {
    Write("site/small/tavrn.def", wishes);
    EXPECT_EQ(Run({"--add", "Link", "--save", In("own.tvn")}), 0);
    fs::copy(In("own.tvn"), In("copied.tvn"));
    for (const char* name : {"own", "copied"}) {
        EXPECT_EQ(Run({In(std::string(name) + ".tvn"), "--export-all"}), 0);
        EXPECT_EQ(log, "exported <" + In("out/") + name + "> <touch it>\n");
    }
    Write("copied.tvn", Read("own.tvn") + "# touched\n");
    EXPECT_EQ(Run({In("copied.tvn"), "--export-all"}), 1);
    environment.Set("XDG_STATE_HOME", In("other user"));
    EXPECT_EQ(Run({In("own.tvn"), "--export-all"}), 1);
    EXPECT_EQ(log, Refusal(In("own.tvn")));
}

TEST_F(BatchTrustTest, SavingADocumentFromElsewhereGivesItNoTrust) {
    EXPECT_EQ(Run({foreign, "--save", In("own.tvn"), "--export-all"}), 1);
    EXPECT_EQ(log, Refusal(In("own.tvn")));
    EXPECT_EQ(Run({In("own.tvn"), "--export-all"}), 1);
}

}  // namespace
}  // namespace tavrin
