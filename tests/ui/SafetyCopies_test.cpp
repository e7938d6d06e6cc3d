// SPDX-License-Identifier: Apache-2.0
// Copies of unsaved work that the frame has made while the user goes on.
#include "ui/frame/SafetyCopies.h"

#include "ui/frame/StatusBox.h"
#include "ui/support/DocumentsTest.h"

namespace tavrin {
namespace {

using test::DocumentsTest;
using test::WaitUntil;
namespace fs = std::filesystem;

class SafetyCopiesTest : public DocumentsTest {
  protected:
    SafetyCopiesTest() { AddToSite("autosave.interval 1\n"); }

    std::vector<std::string> Copies() {
        std::vector<std::string> copies;
        std::error_code missing;
        for (const auto& file : fs::directory_iterator(directory / "state/tavrin/recovery", missing)) {
            if (file.path().extension() == ".tvn") copies.push_back(file.path());
        }
        return copies;
    }
    bool CopyComesToHold(size_t boxes) {
        return WaitUntil([&] { return Copies().size() == 1 && BoxesIn(Copies()[0]) == boxes; });
    }
    int Warnings() {
        int count = 0;
        const std::string log = Log();
        for (size_t at = log.find(kWarning); at != std::string::npos; at = log.find(kWarning, at + 1))
            ++count;
        return count;
    }
    bool IsTold() { return Bytes(Frame().StatusBox().Status()).find(kWarning) != std::string::npos; }

    static constexpr const char* kWarning = "WARNING: unsaved work cannot be written aside";
};

TEST_F(SafetyCopiesTest, AnEditIsInSafetyAfterAWhileWithoutAnotherAct) {
    StartWithDocs();
    AddBoxes(2);
    EXPECT_TRUE(CopyComesToHold(2));
    AddBoxes(1);
    EXPECT_TRUE(CopyComesToHold(3));
    EXPECT_TRUE(Document().IsModified());
    EXPECT_EQ(Warnings(), 0);
}

TEST_F(SafetyCopiesTest, ASaveTakesTheCopyAway) {
    StartWithDocs();
    Open(WriteDocument("docs/a", 1));
    AddBoxes(1);
    EXPECT_TRUE(CopyComesToHold(2));
    Do(CommandId::kSave);
    EXPECT_TRUE(Copies().empty());
}

TEST_F(SafetyCopiesTest, WhereNoneCanBeWrittenThatIsToldOnceAndAgainWhenTheReasonChanges) {
    const std::string state = directory.Write("state", "no directory");
    StartWithDocs();
    AddBoxes(1);
    EXPECT_TRUE(WaitUntil([&] { return IsTold(); }));
    EXPECT_EQ(Warnings(), 1);
    fs::remove(state);
    directory.Write("state/tavrin/recovery", "no directory either");
    EXPECT_TRUE(WaitUntil([&] { return Warnings() == 2; })) << "it is tried again, with no edit in between";
    fs::remove(directory / "state/tavrin/recovery");
    EXPECT_TRUE(CopyComesToHold(1));
    EXPECT_EQ(Warnings(), 2);
    EXPECT_TRUE(test::BoxesShown().isEmpty());
}

TEST_F(SafetyCopiesTest, AFullDiskIsToldAndItWorksAgainOnceThereIsRoom) {
    StartWithDocs();
    AddBoxes(1);
    ASSERT_TRUE(CopyComesToHold(1));
    const std::string before = test::ReadFile(Copies()[0]);
    {
        const test::FileSizeLimit full(100);
        Change();
        EXPECT_TRUE(WaitUntil([&] { return IsTold(); }));
        EXPECT_NE(Log().find("File too large"), std::string::npos);
        EXPECT_EQ(test::ReadFile(Copies()[0]), before) << "an older copy stays";
    }
    EXPECT_TRUE(WaitUntil([&] { return test::ReadFile(Copies()[0]) != before; }));
}

// Not even root makes a directory there.
TEST_F(SafetyCopiesTest, AReadOnlyStateDirectoryIsToldAndTheDocumentCanBeSaved) {
    environment.Set("XDG_STATE_HOME", "/sys");
    StartWithDocs();
    const std::string path = WriteDocument("docs/a", 1);
    Open(path);
    AddBoxes(1);
    EXPECT_TRUE(WaitUntil([&] { return IsTold(); }));
    EXPECT_NE(Log().find("/sys/tavrin"), std::string::npos) << Log();
    EXPECT_TRUE(Document().IsModified());
    Do(CommandId::kSave);
    EXPECT_FALSE(Document().IsModified());
    EXPECT_EQ(BoxesIn(path), 2U);
    EXPECT_EQ(Warnings(), 1);
}

}  // namespace
}  // namespace tavrin
