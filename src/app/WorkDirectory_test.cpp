// SPDX-License-Identifier: Apache-2.0
// The work directory below a root that everybody may write.
#include "app/WorkDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "base/Paths.h"
#include "support/Processes.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

constexpr uid_t kNobody = 65534;

void Ignore(const std::string&) {}

// Another process that has a work directory with something in it, and lives until it is killed.
class OtherProgram {
  public:
    OtherProgram(const std::string& root, const std::string& linked, uid_t user) {
        int ready[2];
        EXPECT_EQ(::pipe(ready), 0);
        if (m_process.Fork()) {
            WorkDirectory work;
            const bool isUser = user == ::geteuid() || ::setresuid(user, user, user) == 0;
            if (isUser && work.Make(root)) {
                fs::create_directory(work.Path() + "/1");
                fs::create_symlink(linked, work.Path() + "/1/link");
            }
            const std::string name = PathFile(work.Path());
            if (::write(ready[1], name.data(), name.size()) > 0) {
                for (;;) ::pause();
            }
            ::_exit(1);
        }
        ::close(ready[1]);
        char name[256];
        const ssize_t size = ::read(ready[0], name, sizeof name);
        m_name.assign(name, size > 0 ? static_cast<size_t>(size) : 0);
        ::close(ready[0]);
    }
    const std::string& Name() const { return m_name; }
    void Kill() { m_process.Kill(); }

  private:
    test::ForkedChild m_process;
    std::string m_name;
};

class WorkDirectoryTest : public testing::Test {
  protected:
    WorkDirectoryTest() {
        ::chmod(directory.Path().c_str(), 0755);
        fs::create_directory(root);
        ::chmod(root.c_str(), 01777);
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(root)) names.push_back(entry.path().filename());
        return names;
    }
    OtherProgram Other(uid_t user = ::geteuid()) { return OtherProgram(root, precious, user); }

    test::TempDir directory;
    std::string root = directory / "tmp";
    std::string precious = directory.Write("precious", "as it was");
    WorkDirectory work;
};

TEST_F(WorkDirectoryTest, IsTheUsersAloneWhateverTheMask) {
    const mode_t mask = ::umask(0);
    const bool made = work.Make(directory / "fresh");
    ::umask(mask);
    ASSERT_TRUE(made);
    struct stat status {};
    ASSERT_EQ(::stat(work.Path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    ASSERT_EQ(::stat((directory / "fresh").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 01777U) << "nobody can rename what others have there";
    EXPECT_TRUE(work.Remove(Ignore));
    EXPECT_FALSE(fs::exists(work.Path()));
}

TEST_F(WorkDirectoryTest, HasANameThatNobodyForesees) {
    ASSERT_TRUE(work.Make(root));
    WorkDirectory second;
    ASSERT_TRUE(second.Make(root));
    const std::string pattern = "tavrn\\." + std::to_string(::getpid()) + "\\.[A-Za-z0-9]{8}";
    EXPECT_THAT(PathFile(work.Path()), MatchesRegex(pattern));
    EXPECT_NE(work.Path(), second.Path());
}

// As whoever planted it would know the process.
TEST_F(WorkDirectoryTest, WhatIsThereAlreadyIsNotUsed) {
    const std::string planted = root + "/tavrn." + std::to_string(::getpid());
    fs::create_directory_symlink(directory.Path(), planted);
    ASSERT_TRUE(work.Make(root));
    EXPECT_NE(work.Path(), planted);
    EXPECT_TRUE(work.Remove(Ignore));
    EXPECT_TRUE(fs::is_symlink(planted));
    EXPECT_EQ(ReadFile(precious), "as it was");
}

TEST_F(WorkDirectoryTest, WhereNoneCanBeMadeItsNameIsKnownAndNothingElseIsTouched) {
    EXPECT_FALSE(work.Make(directory / "not/there"));
    EXPECT_THAT(work.Path(), MatchesRegex(directory / "not/there/tavrn\\.[0-9]+\\.[A-Za-z0-9]{8}"));
    EXPECT_FALSE(work.IsOurs());
    EXPECT_TRUE(work.CanRemove());
    fs::create_directories(work.Path());
    work.Restore();
    EXPECT_TRUE(work.Remove(Ignore));
    EXPECT_TRUE(fs::exists(work.Path())) << "somebody else's";
}

TEST_F(WorkDirectoryTest, IsMadeAgainWhereItWasClearedAway) {
    ASSERT_TRUE(work.Make(root));
    work.Restore();
    fs::remove_all(work.Path());
    work.Restore();
    EXPECT_TRUE(fs::is_directory(work.Path()));
    WorkDirectory::ClearAbandoned(root);
    EXPECT_TRUE(fs::is_directory(work.Path())) << "it is locked anew";
}

TEST_F(WorkDirectoryTest, SomebodyElsesInItsPlaceIsNotRemoved) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can give a directory to another";
    ASSERT_TRUE(work.Make(root));
    fs::rename(work.Path(), root + "/moved");
    fs::create_directory(work.Path());
    fs::create_directory(work.Path() + "/1");
    ASSERT_EQ(::chown(work.Path().c_str(), kNobody, kNobody), 0);
    work.Restore();
    EXPECT_TRUE(work.Remove(Ignore));
    EXPECT_TRUE(fs::exists(work.Path() + "/1"));
}

TEST_F(WorkDirectoryTest, OfAProgramThatIsGoneIsClearedAwayAndThatOfOneThatLivesIsNot) {
    OtherProgram living = Other();
    OtherProgram killed = Other();
    ASSERT_THAT(Names(), testing::UnorderedElementsAre(living.Name(), killed.Name()));
    WorkDirectory::ClearAbandoned(root);
    EXPECT_EQ(Names().size(), 2U);
    killed.Kill();
    WorkDirectory::ClearAbandoned(root);
    EXPECT_THAT(Names(), ElementsAre(living.Name()));
    EXPECT_EQ(ReadFile(precious), "as it was");
    living.Kill();
    WorkDirectory::ClearAbandoned(root);
    EXPECT_THAT(Names(), IsEmpty());
}

// Its name is one of those that RemoveTree leaves.
TEST_F(WorkDirectoryTest, WhatLiveHasLeftGoesWithIt) {
    WorkDirectory own;
    ASSERT_TRUE(own.Make(root));
    fs::create_directories(own.Path() + "/.live/7");
    directory.Write("tmp/" + PathFile(own.Path()) + "/.live/7/codegenfile", "text");
    EXPECT_TRUE(own.CanRemove());
    fs::create_directories(own.Path() + "/.other");
    EXPECT_FALSE(own.CanRemove());
    fs::remove(own.Path() + "/.other");
    EXPECT_TRUE(own.Remove([](const std::string& line) { ADD_FAILURE() << line; }));
    EXPECT_FALSE(fs::exists(own.Path()));
    OtherProgram killed = Other();
    fs::create_directories(root + "/" + killed.Name() + "/.live/1");
    killed.Kill();
    WorkDirectory::ClearAbandoned(root);
    EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(WorkDirectoryTest, OfAnotherUserIsTheirs) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can become another user";
    OtherProgram theirs = Other(kNobody);
    theirs.Kill();
    WorkDirectory::ClearAbandoned(root);
    EXPECT_THAT(Names(), ElementsAre(theirs.Name()));
}

TEST_F(WorkDirectoryTest, NothingElseIsTakenForOne) {
    for (const char* name :
         {"tavrn.12", "tavrn.12.", "tavrn..abcdefgh", "tavrn.1x.abcdefgh", "tavrn.12.abcdefg",
          "tavrn.12.abcdefg-", "tavrn.12.abcdefghi", "tavrin.12.abcdefgh"})
        fs::create_directory(JoinPath(root, name));
    directory.Write("tmp/tavrn.13.abcdefgh", "a file");
    fs::create_directory_symlink(directory.Path(), root + "/tavrn.14.abcdefgh");
    const auto before = Names();
    WorkDirectory::ClearAbandoned(root);
    EXPECT_THAT(Names(), testing::UnorderedElementsAreArray(before));
    WorkDirectory::ClearAbandoned(directory / "missing");
}

}  // namespace
}  // namespace tavrin
