// SPDX-License-Identifier: Apache-2.0
// Unsaved work of an earlier process becomes the document again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "app/DocumentCommands.h"
#include "app/Recovery.h"
#include "base/Files.h"
#include "support/SmallApp.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

// The text of a document but for the time of writing, which stands in the first line and in the last.
std::string WithoutTime(const std::string& text) {
    const size_t begin = text.find('\n');
    return text.substr(begin, text.rfind("# Tavrn file written at") - begin);
}

namespace fs = std::filesystem;
using test::ReadFile;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class RecoveryRestore : public test::SmallAppTest {
  protected:
    RecoveryRestore() {
        MakeApp();
        document = std::make_unique<CTvDoc>(*app);
        desk = std::make_unique<COpDesk>(*document, *app);
        app->SetDocument(document.get());
        commands =
            std::make_unique<DocumentCommands>(*app, *document, *desk, DocumentCommands::Announce::kYes);
    }

    // What a process of this toolbar leaves behind when it dies.
    void LeaveBehind(const std::string& operatorName) {
        Recovery dying(state, report, queue);
        document->toolbar = {operatorName};
        document->SetPath("/there/doc.tvn");
        document->SetModified();
        ASSERT_TRUE(dying.Update(*document));
        document->DeleteContents();
    }
    std::vector<std::string> Copies() const {
        std::vector<std::string> copies;
        for (const auto& entry : fs::directory_iterator(state + "/recovery")) {
            if (entry.path().extension() == ".tvn") copies.push_back(entry.path().string());
        }
        return copies;
    }
    // A start of the program that tries to bring the one leftover back; nothing if none is offered.
    std::optional<bool> Start() {
        Recovery recovery(state, report, queue);
        const auto leftovers = recovery.FindLeftovers();
        if (leftovers.empty()) return std::nullopt;
        const bool restored = recovery.Restore(leftovers.at(0), *commands, *document);
        document->SetModified(false);
        recovery.Update(*document);
        return restored;
    }

    std::unique_ptr<CTvDoc> document;
    std::unique_ptr<COpDesk> desk;
    std::unique_ptr<DocumentCommands> commands;
    std::string state = directory / "state";
};

TEST_F(RecoveryRestore, TheWorkIsTheDocumentAgainAndIsWrittenAsideBeforeTheOldCopyGoes) {
    LeaveBehind("Grain");
    const std::string old = Copies().at(0);
    Recovery recovery(state, report, queue);
    const auto leftovers = recovery.FindLeftovers();
    ASSERT_THAT(leftovers, SizeIs(1));
    EXPECT_TRUE(recovery.Restore(leftovers[0], *commands, *document));
    EXPECT_THAT(document->toolbar, testing::ElementsAre("Grain"));
    EXPECT_EQ(document->Path(), "/there/doc.tvn");
    EXPECT_TRUE(document->IsModified());
    EXPECT_EQ(sink.log, "recovered doc.tvn\r\n");
    ASSERT_THAT(Copies(), SizeIs(1));
    EXPECT_NE(Copies()[0], old);
    EXPECT_EQ(WithoutTime(ReadFile(Copies()[0])), WithoutTime(document->Store()));
    recovery.Discard();
    EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(RecoveryRestore, TheOldCopyStaysWhileTheWorkCannotBeWrittenAside) {
    LeaveBehind("Grain");
    const std::string old = Copies().at(0);
    Recovery recovery(state, report, queue);
    const auto leftovers = recovery.FindLeftovers();
    ASSERT_THAT(leftovers, SizeIs(1));
    const std::string moved = state + "/moved";
    fs::rename(state + "/recovery", moved);  // all that follows finds a directory that is not its own
    fs::create_directory_symlink(moved, state + "/recovery");
    EXPECT_TRUE(recovery.Restore(leftovers[0], *commands, *document));
    fs::remove(state + "/recovery");
    fs::rename(moved, state + "/recovery");
    EXPECT_TRUE(fs::exists(old));
    EXPECT_THAT(sink.log, HasSubstr("WARNING: unsaved work cannot be written aside"));
}

TEST_F(RecoveryRestore, WorkOnAFileThatWasCutShortStaysProtectedThroughEveryCrash) {
    document->SetCutShort();
    LeaveBehind("Grain");
    std::vector<Recovery::Found> leftovers;
    for (int crash = 0; crash < 2; ++crash) {
        Recovery recovery(state, report, queue);
        leftovers = recovery.FindLeftovers();
        ASSERT_THAT(leftovers, SizeIs(1));
        EXPECT_TRUE(leftovers[0].wasCutShort);
        EXPECT_TRUE(recovery.Restore(leftovers[0], *commands, *document));
        EXPECT_TRUE(document->WasCutShort());
    }
}

TEST_F(RecoveryRestore, TheWorkIsSavedUnaskedOverTheFileThatItCameFromAndNoOther) {
    for (const bool isChanged : {false, true}) {
        const std::string path = directory.Write("own.tvn", "toolbar { }\n");
        ASSERT_TRUE(document->Open(path));
        document->SetModified();
        {
            Recovery dying(state, report, queue);
            ASSERT_TRUE(dying.Update(*document));
            document->DeleteContents();
        }
        if (isChanged) directory.Write("own.tvn", "somebody else's");
        Recovery recovery(state, report, queue);
        const auto leftovers = recovery.FindLeftovers();
        ASSERT_THAT(leftovers, SizeIs(1));
        ASSERT_TRUE(recovery.Restore(leftovers[0], *commands, *document));
        EXPECT_EQ(document->Path(), path);
        EXPECT_EQ(document->Origin().file->HoldsOther(), isChanged);
        recovery.Discard();
    }
}

TEST_F(RecoveryRestore, ACopyThatCannotBeReadIsKeptAndOfferedNoMoreThanThreeTimes) {
    LeaveBehind("Grain");
    const std::string copy = Copies().at(0);
    std::ofstream(copy) << "toolbar { button 0=Grain oops }";
    for (int attempt = 0; attempt < Recovery::kFailuresAllowed; ++attempt) {
        EXPECT_EQ(Start(), false);
        EXPECT_EQ(sink.LastAlert(), copy + " near line 1: unexpected input");
    }
    EXPECT_EQ(Start(), std::nullopt);
    EXPECT_EQ(ReadFile(copy), "toolbar { button 0=Grain oops }");
    EXPECT_THAT(sink.log,
                HasSubstr("WARNING: " + copy + " could not be read 3 times and is offered no more"));
}

TEST_F(RecoveryRestore, ACopyThatWasMendedInTimeIsReadAndGoes) {
    LeaveBehind("Grain");
    const std::string copy = Copies().at(0);
    const std::string text = ReadFile(copy);
    std::ofstream(copy, std::ios::binary) << "toolbar";
    EXPECT_EQ(Start(), false);
    std::ofstream(copy, std::ios::binary) << text;
    EXPECT_EQ(Start(), true);
    EXPECT_EQ(document->Path(), "/there/doc.tvn");
    EXPECT_THAT(Copies(), IsEmpty());
}

TEST_F(RecoveryRestore, OnlyWhatWasFoundIsRestored) {
    Recovery::Found forged;
    forged.copyPath = directory.Write("other.tvn", "tavrn-version 1");
    Recovery recovery(state, report, queue);
    EXPECT_FALSE(recovery.Restore(forged, *commands, *document));
    EXPECT_EQ(sink.log, "");
    EXPECT_TRUE(PathExists(forged.copyPath));
}

}  // namespace
}  // namespace tavrin
