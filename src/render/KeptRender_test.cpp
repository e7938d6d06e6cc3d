// SPDX-License-Identifier: Apache-2.0
// Renders that are kept beside the user's own document, and those that would be missed at the end.
#include "render/KeptRender.h"

#include <sys/stat.h>

#include "render/RendersGround.h"
#include "support/Disk.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::NamesIn;
using test::ReadFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class KeptRenderTest : public test::RendersTest {
  protected:
    KeptRenderTest() {
        Launcher(kPicture);
        fs::create_directory(docs);
        Save("plastic");
        host.ownTexts.clear();
    }
    void Save(const std::string& name) {
        std::string error;
        ASSERT_TRUE(document.Save(docs + "/" + name + ".tvn", error)) << error;
    }
    std::string InDocs(const std::string& name) const { return docs + "/" + name; }
    // What was there before is left out.
    std::vector<std::string> Made() const {
        std::vector<std::string> names = NamesIn(docs);
        std::erase(names, "plastic.tvn");
        return names;
    }
    std::string Keep(int number) { return Keeper().Keep(number, docs).value_or("nothing"); }
    RenderKeeper Keeper() { return {*session, host}; }

    std::string docs = host.Directory() / "docs";
};

TEST_F(KeptRenderTest, DocumentAndPictureStandBesideTheDocumentUnderNameAndNumber) {
    SetOption("DEPTH", "2");
    ASSERT_TRUE(Render());
    SetOption("DEPTH", "4");
    EXPECT_EQ(Keeper().DirectoryOf(1), docs + "/");
    EXPECT_EQ(Keeper().StemOf(1), "plastic-1");
    EXPECT_EQ(Keep(1), InDocs("plastic-1.tvn"));
    EXPECT_THAT(Made(), UnorderedElementsAre("plastic-1.tvn", "plastic-1.png"));
    EXPECT_EQ(ReadFile(InDocs("plastic-1.tvn")), ReadFile(site.WorkPath("1/plastic.tvn")));
    EXPECT_EQ(ReadFile(InDocs("plastic-1.png")), "picture");
    EXPECT_THAT(host.Sink().log,
                HasSubstr("kept render 1 as " + InDocs("plastic-1.tvn") + " with its picture"));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_TRUE(document.IsModified()) << "the document is none of it";
}

TEST_F(KeptRenderTest, WhatWasKeptIsNotedAndTold) {
    ASSERT_TRUE(Render());
    std::vector<std::string> told;
    const auto tellings =
        session->records.afterRecord.Add([&](const RenderRecord& record) { told.push_back(record.kept); });
    Keep(1);
    EXPECT_THAT(told, ElementsAre(InDocs("plastic-1.tvn")));
    EXPECT_EQ(session->records.Find(1)->kept, InDocs("plastic-1.tvn"));
}

TEST_F(KeptRenderTest, NothingIsReplacedAndTheTwoFilesKeepOneName) {
    const auto write = [this](const std::string& name) { host.Directory().Write("docs/" + name, "mine"); };
    write("plastic-1.tvn");
    write("plastic-1-2.png");
    fs::create_symlink("nowhere", InDocs("plastic-1-3.tvn"));
    fs::create_directory(InDocs("plastic-1-4.tvn"));
    ASSERT_TRUE(Render());
    EXPECT_EQ(Keep(1), InDocs("plastic-1-5.tvn"));
    EXPECT_EQ(ReadFile(InDocs("plastic-1-5.png")), "picture");
    for (const char* name : {"plastic-1.tvn", "plastic-1-2.png"}) EXPECT_EQ(ReadFile(InDocs(name)), "mine");
    EXPECT_FALSE(fs::exists(InDocs("nowhere")));
    EXPECT_THAT(Made(), SizeIs(6));
}

TEST_F(KeptRenderTest, ARenderWithoutPictureIsKeptAllTheSame) {
    Launcher("exit 1\n");
    ASSERT_TRUE(Render());
    EXPECT_TRUE(Keeper().CanKeep(1));
    EXPECT_EQ(Keep(1), InDocs("plastic-1.tvn"));
    EXPECT_THAT(Made(), ElementsAre("plastic-1.tvn"));
    EXPECT_THAT(host.Sink().log, HasSubstr("plastic-1.tvn, which has no picture"));
}

TEST_F(KeptRenderTest, ThePictureKeepsItsKind) {
    Launcher("printf picture > $2.jpeg\n");
    ASSERT_TRUE(Render());
    Keep(1);
    EXPECT_THAT(Made(), UnorderedElementsAre("plastic-1.tvn", "plastic-1.jpeg"));
}

TEST_F(KeptRenderTest, OnlyWhatIsOverAndInTheHistoryCanBeKept) {
    Launcher(kUntilStopped);
    ASSERT_TRUE(session->RenderIt());
    EXPECT_EQ(Keeper().Hindrance(1), "is still running");
    session->StopRender();
    ASSERT_TRUE(WaitForEnd());
    EXPECT_TRUE(Keeper().CanKeep(1));
    session->m_keepHistory = false;
    Launcher(kPicture);
    ASSERT_TRUE(Render());
    EXPECT_EQ(Keeper().Hindrance(2), "is not in the render history") << "nothing was kept of its network";
    EXPECT_FALSE(Keeper().CanKeep(3));
    EXPECT_EQ(Keep(2), "nothing");
    EXPECT_THAT(Alerts(), ElementsAre("render 2 is not in the render history"));
    fs::remove(site.WorkPath("1/plastic.tvn"));
    EXPECT_EQ(Keeper().Hindrance(1), "has lost its document");
    EXPECT_EQ(Keep(1), "nothing");
    EXPECT_EQ(Alerts().back(),
              "unable to keep render 1: " + site.WorkPath("1/plastic.tvn") + ": No such file or directory");
    EXPECT_THAT(Made(), IsEmpty());
}

TEST_F(KeptRenderTest, WhatWasKeptCanBeKeptAgainOnceItsCopyHasGone) {
    ASSERT_TRUE(Render());
    Keep(1);
    EXPECT_EQ(Keeper().Hindrance(1), "was kept as " + InDocs("plastic-1.tvn"));
    fs::remove(InDocs("plastic-1.tvn"));
    EXPECT_TRUE(Keeper().CanKeep(1));
}

TEST_F(KeptRenderTest, AFullDiskLeavesNeitherOfTheTwo) {
    Launcher("head -c 9000 /dev/zero > $2.png\n");
    ASSERT_TRUE(Render());
    {
        const test::FileSizeLimit limit(8000);  // the picture is too large
        EXPECT_EQ(Keep(1), "nothing");
    }
    EXPECT_THAT(Made(), IsEmpty());
    EXPECT_THAT(Alerts(),
                ElementsAre("unable to keep render 1 as " + InDocs("plastic-1.tvn") + ": File too large"));
    EXPECT_EQ(session->records.Find(1)->kept, "");
    document.customshaderhelp.assign(20000, 'x');
    Launcher(kPicture);
    ASSERT_TRUE(Render());
    {
        const test::FileSizeLimit limit(8000);  // the document is
        EXPECT_EQ(Keep(2), "nothing");
    }
    EXPECT_THAT(Made(), IsEmpty());
    EXPECT_EQ(Keep(1), InDocs("plastic-1.tvn"));
}

TEST_F(KeptRenderTest, ADirectoryThatTakesNothingIsTold) {
    ASSERT_TRUE(Render());
    EXPECT_EQ(Keeper().Keep(1, InDocs("none")), std::nullopt);
    EXPECT_THAT(Alerts(), ElementsAre("unable to keep render 1 as " + InDocs("none/plastic-1.tvn") +
                                      ": No such file or directory"));
}

// Where the user says

TEST_F(KeptRenderTest, ADocumentThatWasNeverSavedHasNoDirectory) {
    document.SetPath("");
    ASSERT_TRUE(Render());
    EXPECT_EQ(Keeper().DirectoryOf(1), "");
    document.SetPath(InDocs("untitled.tvn"));  // where it would be saved
    ASSERT_TRUE(Render());
    EXPECT_EQ(Keeper().DirectoryOf(2), "");
    EXPECT_EQ(Keeper().DirectoryOf(3), "");
}

TEST_F(KeptRenderTest, UnderANameThatTheUserHasChosenItTakesThePlaceOfWhatIsThere) {
    ASSERT_TRUE(Render());
    host.Directory().Write("docs/best.tvn", "old");
    host.Directory().Write("docs/best.png", "old");
    EXPECT_EQ(Keeper().PictureBeside(1, InDocs("best.tvn")), InDocs("best.png"));
    EXPECT_THAT(Keeper().KeepAs(1, InDocs("best.tvn")), Optional(InDocs("best.tvn")));
    EXPECT_EQ(ReadFile(InDocs("best.tvn")), ReadFile(site.WorkPath("1/plastic.tvn")));
    EXPECT_EQ(ReadFile(InDocs("best.png")), "picture");
    EXPECT_EQ(session->records.Find(1)->kept, InDocs("best.tvn"));
}

TEST_F(KeptRenderTest, AChosenPlaceThatCannotBeWrittenIsTold) {
    ASSERT_TRUE(Render());
    EXPECT_EQ(Keeper().KeepAs(1, InDocs("none/best.tvn")), std::nullopt);
    EXPECT_THAT(Alerts(), ElementsAre("unable to keep render 1 as " + InDocs("none/best.png") +
                                      ": No such file or directory"));
    EXPECT_EQ(session->records.Find(1)->kept, "");
}

// Whose it is

TEST_F(KeptRenderTest, TheCopyOfAnOwnDocumentIsTheUsersOwn) {
    ASSERT_TRUE(Render());
    Keep(1);
    EXPECT_THAT(host.ownTexts, ElementsAre(ReadFile(InDocs("plastic-1.tvn"))));
}

TEST_F(KeptRenderTest, TheCopyOfAForeignDocumentStaysForeign) {
    document.SetForeign(true);
    ASSERT_TRUE(Render());
    document.SetForeign(false);  // the user has agreed to what it says now
    Keep(1);
    Keeper().KeepAs(1, InDocs("best.tvn"));
    EXPECT_THAT(host.ownTexts, IsEmpty());
}

TEST_F(KeptRenderTest, ACopyThatSomebodyHasChangedInTheHistoryIsNotTheUsersOwn) {
    ASSERT_TRUE(Render());
    host.Directory().Write("work/1/plastic.tvn", "exportoptions { }\n");
    Keep(1);
    EXPECT_THAT(host.ownTexts, IsEmpty());
    EXPECT_EQ(ReadFile(InDocs("plastic-1.tvn")), "exportoptions { }\n");
}

// What would be missed

TEST_F(KeptRenderTest, ARenderOfWhatTheFileHoldsIsNotMissed) {
    ASSERT_TRUE(Render());
    document.ViewMoved();
    ASSERT_TRUE(Render());
    EXPECT_THAT(Keeper().Unsaved(), IsEmpty());
}

TEST_F(KeptRenderTest, ARenderOfWhatNoFileHoldsIsMissed) {
    for (const char* depth : {"2", "4"}) {
        SetOption("DEPTH", depth);
        ASSERT_TRUE(Render());
    }
    EXPECT_THAT(Keeper().Unsaved(), ElementsAre(1, 2));
    document.History()->Undo();
    document.History()->Undo();
    EXPECT_THAT(Keeper().Unsaved(), ElementsAre(1, 2)) << "the document is as its file, the renders are not";
    Keep(1);
    EXPECT_THAT(Keeper().Unsaved(), ElementsAre(2));
}

TEST_F(KeptRenderTest, OnceTheDocumentIsSavedItsEarlierRendersAreNotMissed) {
    for (const char* depth : {"2", "4"}) {
        SetOption("DEPTH", depth);
        ASSERT_TRUE(Render());
    }
    Save("plastic");
    EXPECT_THAT(Keeper().Unsaved(), IsEmpty());
    SetOption("DEPTH", "6");
    ASSERT_TRUE(Render());
    EXPECT_THAT(Keeper().Unsaved(), ElementsAre(3));
    Save("another");
    EXPECT_THAT(Keeper().Unsaved(), IsEmpty());
}

TEST_F(KeptRenderTest, ADocumentThatHadNoFileIsSavedLikeAnyOther) {
    document.SetPath("");
    ASSERT_TRUE(Render());
    EXPECT_THAT(Keeper().Unsaved(), ElementsAre(1));
    Save("first");
    EXPECT_THAT(Keeper().Unsaved(), IsEmpty());
    EXPECT_EQ(Keeper().DirectoryOf(1), docs + "/") << "it has one now";
}

TEST_F(KeptRenderTest, SavingOneDocumentSavesNoRenderOfAnother) {
    SetOption("DEPTH", "2");
    ASSERT_TRUE(Render());
    document.SetPath(InDocs("other.tvn"));
    Save("other");
    EXPECT_THAT(Keeper().Unsaved(), ElementsAre(1));
}

TEST_F(KeptRenderTest, WithoutAPictureOrAnEntryNothingIsMissed) {
    SetOption("DEPTH", "2");
    ASSERT_TRUE(Render());
    fs::remove(site.WorkPath("1/plastic.png"));
    session->m_keepHistory = false;
    ASSERT_TRUE(Render());
    EXPECT_THAT(Keeper().Unsaved(), IsEmpty());
}

}  // namespace
}  // namespace tavrin
