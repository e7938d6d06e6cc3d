// SPDX-License-Identifier: Apache-2.0
// What a run does and does not for documents and site files from elsewhere.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "batch/BatchTest.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::kDocument;
using test::kPerl;
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

// The site file of the current directory

class BatchSiteCommandsTest : public test::BatchTest {
  protected:
    BatchSiteCommandsTest() {
        Write("here/tavrn.def", "sourcecodeprefilter " + In("filter") + "\nmaxhistory 5\n");
        Write("filter", kPerl + ("open my $mark, '>', '" + In("ran")) + "';\n");
        fs::permissions(In("filter"), fs::perms::owner_all);
        fs::permissions(In("here/tavrn.def"), fs::perms::others_write, fs::perm_options::remove);
    }
    int RunHere(std::vector<std::string> words) {
        fs::remove(In("ran"));
        environment.Set("HERE", In("here"));
        return RunShell("cd \"$HERE\" && exec \"$0\" \"$@\"", words);
    }
    bool HasRun() const { return fs::exists(In("ran")); }
    std::string Named(const char* how) const {
        return "site file " + In("here/tavrn.def") + " names commands, which are " + how +
               ": sourcecodeprefilter " + In("filter") + "\n";
    }
};

TEST_F(BatchSiteCommandsTest, ItsCommandsAreUsedAndNamedInTheLog) {
    EXPECT_EQ(RunHere({In("doc.tvn"), "--save-shader"}), 0);
    EXPECT_TRUE(HasRun());
    EXPECT_EQ(log, Named("used"));
}

TEST_F(BatchSiteCommandsTest, OnTheUsersWordTheyAreNotUsed) {
    EXPECT_EQ(RunHere({In("doc.tvn"), "--save-shader", "--no-site-commands"}), 0);
    EXPECT_FALSE(HasRun());
    EXPECT_EQ(log, Named("not used"));
}

TEST_F(BatchSiteCommandsTest, AFileThatOthersCanWriteIsNamedAndNotRead) {
    fs::permissions(In("here"), fs::perms::others_write, fs::perm_options::add);
    EXPECT_EQ(RunHere({In("doc.tvn"), "--save-shader"}), 0);
    EXPECT_FALSE(HasRun());
    EXPECT_EQ(log, "WARNING: site file " + In("here/tavrn.def") + " is not read: its directory " +
                       In("here") + " can be written by others\n");
}

TEST_F(BatchSiteCommandsTest, AFileOfAnotherUserIsNamedAndNotRead) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file to another user";
    ASSERT_EQ(::chown(In("here/tavrn.def").c_str(), 65534, 65534), 0);
    EXPECT_EQ(RunHere({In("doc.tvn"), "--save-shader"}), 0);
    EXPECT_FALSE(HasRun());
    EXPECT_EQ(log,
              "WARNING: site file " + In("here/tavrn.def") + " is not read: it belongs to another user\n");
}

}  // namespace
}  // namespace tavrin
