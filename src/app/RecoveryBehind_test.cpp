// SPDX-License-Identifier: Apache-2.0
// Unsaved work that another thread puts aside, and what is put aside before a file is written in place.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

#include "app/Recovery.h"
#include "app/RecoveryCopy.h"
#include "support/Patience.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::MakeLink;
using test::ReadFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class RecoveryBehind : public test::DocumentTest {
  protected:
    RecoveryBehind() {
        Add(MakeLink("a", 2));
        Add(MakeLink("b", 1));
        document.SetPath("/there/doc.tvn");
        document.SetModified();
    }
    void Edit(const std::string& toolButton) {
        const EditScope edit(document, "Edit");
        document.edits.SettingsChanged();
        document.toolbar = {toolButton};
    }
    std::vector<std::string> Copies() const {
        std::vector<std::string> copies;
        if (!fs::exists(folder)) return copies;
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() == ".tvn") copies.push_back(entry.path());
        }
        return copies;
    }
    // Waits without the main thread doing anything else: nothing runs that was posted to it.
    bool CopyComesToHold(const std::string& text) const {
        const auto end = std::chrono::steady_clock::now() + test::kPatience;
        while (std::chrono::steady_clock::now() < end) {
            const auto copies = Copies();
            if (copies.size() == 1 && ReadFile(copies[0]) == text) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }
    bool OutcomeComes() { return queue.RunPending(test::kPatience); }

    std::string state = host.Directory() / "state";
    std::string folder = state + "/recovery";
    PlainQueue queue;
    DocumentSnapshot snapshot{document, host};
    std::vector<std::string> told;
};

TEST_F(RecoveryBehind, TheCopyNeedsTheMainThreadNoMore) {
    Recovery recovery(state, host.GetSite().report, queue);
    recovery.UpdateBehind(document, snapshot);
    EXPECT_TRUE(CopyComesToHold(document.Store()));
    Edit("new");
    recovery.UpdateBehind(document, snapshot);
    EXPECT_TRUE(CopyComesToHold(document.Store()));
    Recovery other(state, host.GetSite().report, queue);
    EXPECT_THAT(other.FindLeftovers(), IsEmpty()) << "its owner lives";
}

TEST_F(RecoveryBehind, WhatWasDiscardedDoesNotComeBack) {
    Recovery recovery(state, host.GetSite().report, queue);
    for (int round = 0; round < 50; ++round) {
        Edit(std::to_string(round));
        recovery.UpdateBehind(document, snapshot);
        recovery.Discard();
        EXPECT_THAT(Copies(), IsEmpty());
    }
    queue.RunPending();
    EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(RecoveryBehind, TheLastWordIsTheLatest) {
    Recovery recovery(state, host.GetSite().report, queue);
    for (int round = 0; round < 50; ++round) {
        Edit(std::to_string(round));
        recovery.UpdateBehind(document, snapshot);
    }
    EXPECT_TRUE(CopyComesToHold(document.Store()));
    Edit("by the main thread");
    ASSERT_TRUE(recovery.Update(document));
    EXPECT_EQ(ReadFile(Copies().at(0)), document.Store());
}

TEST_F(RecoveryBehind, AFailureIsToldOnceAndAgainWhenItIsAnother) {
    host.Directory().Write("state", "no directory");
    Recovery recovery(state, host.GetSite().report, queue);
    recovery.OnFailure([this](const std::string& text) { told.push_back(text); });
    for (int round = 0; round < 3; ++round) {
        recovery.UpdateBehind(document, snapshot);
        ASSERT_TRUE(OutcomeComes());
        EXPECT_TRUE(recovery.IsFailing());
    }
    const std::string first = "unsaved work cannot be written aside to " + folder + ": Not a directory";
    EXPECT_THAT(told, ElementsAre(first));
    EXPECT_EQ(host.Sink().log, "WARNING: " + first + "\r\n");
    fs::remove(state);
    host.Directory().Write("state/recovery", "no directory either");
    recovery.UpdateBehind(document, snapshot);
    ASSERT_TRUE(OutcomeComes());
    EXPECT_THAT(told, ElementsAre(first, HasSubstr("Not a directory of the user's own")));
    fs::remove(folder);
    recovery.UpdateBehind(document, snapshot);
    ASSERT_TRUE(OutcomeComes());
    EXPECT_FALSE(recovery.IsFailing());
    EXPECT_THAT(told, SizeIs(2));
    EXPECT_THAT(Copies(), SizeIs(1));
}

TEST_F(RecoveryBehind, WhatIsPostedTooLateReachesNobody) {
    {
        Recovery recovery(state, host.GetSite().report, queue);
        recovery.UpdateBehind(document, snapshot);
        ASSERT_TRUE(CopyComesToHold(document.Store()));
    }
    OutcomeComes();
}

// What is put aside before a file is written in place.

class SafeCopyTest : public RecoveryBehind {
  protected:
    std::unique_ptr<SafeCopy> Make() { return MakeSafeCopy(state, "doc.tvn", "text", error); }
    std::string error;
};

TEST_F(SafeCopyTest, StaysForTheNextStartUnlessItWasRemoved) {
    auto copy = Make();
    ASSERT_NE(copy, nullptr) << error;
    EXPECT_EQ(ReadFile(copy->Path()), "text");
    Recovery recovery(state, host.GetSite().report, queue);
    EXPECT_THAT(recovery.FindLeftovers(), IsEmpty()) << "it is being saved";
    copy.reset();
    const auto leftovers = recovery.FindLeftovers();
    ASSERT_THAT(leftovers, SizeIs(1));
    EXPECT_EQ(leftovers[0].documentPath, fs::absolute("doc.tvn"));
    recovery.Remove(leftovers[0]);
    Make()->Remove();
    EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(SafeCopyTest, SaysWhyItCannotBeMade) {
    host.Directory().Write("state", "no directory");
    EXPECT_EQ(Make(), nullptr);
    EXPECT_EQ(error, folder + ": Not a directory");
}

}  // namespace
}  // namespace tavrin
