// SPDX-License-Identifier: Apache-2.0
// Saving a document so that nothing is ever lost.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/Disk.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::ModeOf;
using test::NamesIn;
using test::ReadFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class TvDocSave : public test::DocumentTest {
  protected:
    TvDocSave() { fs::create_directory(folder); }

    bool Save(const std::string& to) { return document.Save(to, error); }

    std::string folder = host.Directory() / "documents";
    std::string path = folder + "/doc.tvn";
    std::string error;
};

TEST_F(TvDocSave, TheFileHoldsTheDocumentAndIsItsPath) {
    document.SetModified();
    ASSERT_TRUE(Save(path)) << error;
    EXPECT_EQ(ReadFile(path), document.Store());
    EXPECT_EQ(document.Path(), path);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(NamesIn(folder), ElementsAre("doc.tvn"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(TvDocSave, AFailureLeavesTheOldFileWhole) {
    ASSERT_TRUE(Save(path));
    const std::string old = ReadFile(path);
    document.toolbar = {"new"};
    document.SetPath("/before.tvn");
    document.SetModified();
    {
        const test::FileSizeLimit disk(100);
        EXPECT_FALSE(Save(path));
    }
    EXPECT_EQ(error, "File too large");
    EXPECT_EQ(ReadFile(path), old);
    EXPECT_THAT(NamesIn(folder), ElementsAre("doc.tvn"));
    EXPECT_EQ(document.Path(), "/before.tvn");
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(document.toolbar, ElementsAre("new"));
}

TEST_F(TvDocSave, ADirectoryThatIsNotThereIsAFailure) {
    EXPECT_FALSE(Save(folder + "/missing/doc.tvn"));
    EXPECT_EQ(error, "No such file or directory");
    EXPECT_FALSE(Save(folder));
    EXPECT_EQ(error, "Is a directory");
    EXPECT_EQ(document.Path(), "");
}

TEST_F(TvDocSave, ThePermissionsOfAnOldFileStay) {
    ASSERT_TRUE(Save(path));
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    document.toolbar = {"new"};
    ASSERT_TRUE(Save(path));
    EXPECT_EQ(ModeOf(path), 0640U);
    EXPECT_EQ(ReadFile(path), document.Store());
}

TEST_F(TvDocSave, ALinkStaysALinkAndItsFileIsReplaced) {
    const std::string target = folder + "/target.tvn";
    ASSERT_TRUE(Save(target));
    fs::create_symlink("target.tvn", path);
    document.toolbar = {"new"};
    ASSERT_TRUE(Save(path));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(ReadFile(target), document.Store());
    EXPECT_EQ(document.Path(), path);
}

TEST_F(TvDocSave, ADocumentThatWasCutShortIsWholeOnceItIsSaved) {
    host.Directory().Write("documents/broken.tvn", "toolbar");
    ASSERT_TRUE(document.Open(folder + "/broken.tvn"));
    ASSERT_TRUE(document.WasCutShort());
    {
        const test::FileSizeLimit disk(10);
        EXPECT_FALSE(Save(path));
    }
    EXPECT_TRUE(document.WasCutShort());
    ASSERT_TRUE(Save(path));
    EXPECT_FALSE(document.WasCutShort());
}

TEST_F(TvDocSave, SavingReordersTheStack) {
    for (const int wid : {3, 1, 2}) Add(test::MakeLink("a", wid));
    ASSERT_TRUE(Save(path));
    EXPECT_THAT(test::WidsOf(document), ElementsAre(1, 2, 3));
}

TEST_F(TvDocSave, WhoeverShowsTheStackIsToldThatSavingHasReorderedIt) {
    int told = 0;
    const auto listener = document.afterReorder.Add([&] {
        ++told;
        EXPECT_THAT(test::WidsOf(document), ElementsAre(1, 2, 3));
    });
    for (const int wid : {3, 1, 2}) Add(test::MakeLink("a", wid));
    document.Snapshot();
    EXPECT_EQ(told, 0);
    ASSERT_TRUE(Save(path));
    EXPECT_EQ(told, 1);
    ASSERT_TRUE(Save(path));
    EXPECT_EQ(told, 1);
}

TEST_F(TvDocSave, ASnapshotIsWhatTheFileWouldHoldAndChangesNothing) {
    std::vector<const COpBox*> stack;
    for (const int wid : {3, 1, 2, 1}) stack.push_back(&Add(test::MakeLink("a", wid)));
    document.SetPath("/before.tvn");
    document.SetModified();
    const std::string snapshot = document.Snapshot();
    std::vector<const COpBox*> after;
    for (const auto& box : document.m_boxes) after.push_back(box.get());
    EXPECT_EQ(after, stack);
    EXPECT_EQ(document.Path(), "/before.tvn");
    EXPECT_TRUE(document.IsModified());
    EXPECT_FALSE(document.WasCutShort());
    EXPECT_EQ(snapshot, document.Store());
    document.SetModified(false);
    document.Snapshot();
    EXPECT_FALSE(document.IsModified());
}

TEST_F(TvDocSave, SavingTwiceGivesTheSameFileAtTheSameTime) {
    COpBox& from = Add(test::MakeLink("a", 1));
    for (int wid = 20; wid > 1; --wid) test::Wire(from, 0, Add(test::MakeLink("b", wid)), 0);
    ASSERT_TRUE(Save(path));
    const std::string first = ReadFile(path);
    EXPECT_THAT(first, StartsWith("# Tavrn file written at " + test::kTestTime));
    ASSERT_TRUE(Save(folder + "/copy.tvn"));
    EXPECT_EQ(ReadFile(folder + "/copy.tvn"), first);
    EXPECT_EQ(ReadFile(path), first);
}

}  // namespace
}  // namespace tavrin
