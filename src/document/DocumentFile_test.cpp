// SPDX-License-Identifier: Apache-2.0
// What the program knows of the file that a document is saved to.
#include "document/DocumentFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "document/EditHistory.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;

class DocumentFileTest : public test::DocumentTest {
  protected:
    std::string Write(const std::string& name, const std::string& text) {
        return host.Directory().Write(name, text);
    }
    bool HoldsOther() const { return document.Origin().file->HoldsOther(); }
    DocumentFile::Now Look() const { return document.Origin().file->Look(); }
    bool Save(const std::string& to) { return document.Save(to, error); }

    std::string path = host.Directory() / "doc.tvn";
    std::string error;
};

TEST_F(DocumentFileTest, WhatIsThereAndWasNeverReadIsAnother) {
    document.SetPath(path);
    EXPECT_FALSE(HoldsOther());
    EXPECT_EQ(Look(), DocumentFile::Now::kAsKnown) << "nothing is where nothing was";
    Write("doc.tvn", "");
    EXPECT_TRUE(HoldsOther());
    EXPECT_EQ(Look(), DocumentFile::Now::kUnknown);
    document.SetPath("");
    EXPECT_FALSE(HoldsOther());
}

TEST_F(DocumentFileTest, WhatWasReadIsKnownUntilSomebodyChangesIt) {
    ASSERT_TRUE(document.Open(Write("doc.tvn", "toolbar { }\n")));
    EXPECT_FALSE(HoldsOther());
    fs::last_write_time(path, fs::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_FALSE(HoldsOther()) << "it holds the same";
    Write("doc.tvn", "toolbar {  }\n");
    EXPECT_TRUE(HoldsOther());
    EXPECT_EQ(Look(), DocumentFile::Now::kChanged);
    fs::remove(path);
    EXPECT_FALSE(HoldsOther()) << "nothing is left to be lost";
    EXPECT_EQ(Look(), DocumentFile::Now::kGone);
    fs::create_directory(path);
    EXPECT_EQ(Look(), DocumentFile::Now::kAsKnown);
    EXPECT_FALSE(HoldsOther()) << "a directory is not replaced";
}

TEST_F(DocumentFileTest, EveryWayToTheOwnFileTellsWhatBecameOfIt) {
    ASSERT_TRUE(document.Open(Write("doc.tvn", "toolbar { }\n")));
    fs::create_symlink("doc.tvn", host.Directory() / "link.tvn");
    Write("copy.tvn", "somebody else's");
    Write("doc.tvn", "toolbar {  }\n");
    for (const char* way : {"doc.tvn", "link.tvn", "none/../doc.tvn"}) {
        fs::create_directory(host.Directory() / "none");
        EXPECT_EQ(document.LookAt(host.Directory() / way), DocumentFile::Now::kChanged) << way;
    }
    EXPECT_EQ(document.LookAt(host.Directory() / "copy.tvn"), DocumentFile::Now::kAsKnown);
    fs::remove(path);
    EXPECT_EQ(document.LookAt(path), DocumentFile::Now::kGone);
    EXPECT_EQ(document.LookAt(host.Directory() / "none/../doc.tvn"), DocumentFile::Now::kGone);
}

TEST_F(DocumentFileTest, WhatWasWrittenIsKnownUntilSomebodyChangesIt) {
    ASSERT_TRUE(Save(path));
    EXPECT_FALSE(HoldsOther());
    document.toolbar = {"new"};
    EXPECT_FALSE(HoldsOther());
    ASSERT_TRUE(Save(path));
    EXPECT_FALSE(HoldsOther());
    Write("doc.tvn", "somebody else's");
    EXPECT_TRUE(HoldsOther());
}

TEST_F(DocumentFileTest, ACopyThatGoesToTheDocumentsOwnFileIsKnownAsWell) {
    ASSERT_TRUE(Save(path));
    fs::create_symlink("doc.tvn", host.Directory() / "link.tvn");
    document.toolbar = {"new"};
    document.SetModified();
    document.SetDiffersFromFile();
    ASSERT_TRUE(document.SaveCopy(host.Directory() / "elsewhere.tvn", error));
    EXPECT_TRUE(document.DiffersFromFile());
    ASSERT_TRUE(document.SaveCopy(host.Directory() / "link.tvn", error));
    EXPECT_FALSE(HoldsOther());
    EXPECT_FALSE(document.DiffersFromFile());
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.Path(), path);
    EXPECT_EQ(ReadFile(path), document.Store());
}

TEST_F(DocumentFileTest, AnEarlierVersionKnowsWhatTheDocumentHasWrittenSince) {
    ASSERT_TRUE(document.Open(Write("doc.tvn", "toolbar { }\n")));
    const DocumentOrigin earlier = document.Origin();
    ASSERT_TRUE(Save(path));
    EXPECT_FALSE(earlier.file->HoldsOther());
    ASSERT_TRUE(document.Open(Write("other.tvn", "# nothing\n")));
    ASSERT_TRUE(document.Open(path));
    ASSERT_TRUE(Save(path));
    EXPECT_FALSE(earlier.file->HoldsOther()) << "opened again, it is still the document's file";
}

TEST_F(DocumentFileTest, AnotherDocumentThatTakesThePlaceIsAnother) {
    ASSERT_TRUE(document.Open(Write("doc.tvn", "toolbar { }\n")));
    const DocumentOrigin earlier = document.Origin();
    ASSERT_TRUE(document.Open(Write("other.tvn", "# nothing\n")));
    ASSERT_TRUE(Save(path));
    EXPECT_FALSE(HoldsOther());
    EXPECT_TRUE(earlier.file->HoldsOther());
}

TEST_F(DocumentFileTest, AFileThatSomebodyChangedBeforeItWasOpenedAgainIsAnother) {
    ASSERT_TRUE(document.Open(Write("doc.tvn", "toolbar { }\n")));
    const DocumentOrigin earlier = document.Origin();
    ASSERT_TRUE(document.Open(Write("doc.tvn", "# nothing\n")));
    EXPECT_TRUE(earlier.file->HoldsOther());
    EXPECT_FALSE(HoldsOther());
}

TEST_F(DocumentFileTest, ASaveThatFailsChangesNothing) {
    ASSERT_TRUE(document.Open(Write("doc.tvn", "toolbar")));
    const DocumentOrigin before = document.Origin();
    document.SetDiffersFromFile();
    EXPECT_FALSE(Save(host.Directory() / "none/doc.tvn"));
    EXPECT_EQ(document.Origin().file, before.file);
    EXPECT_TRUE(document.WasCutShort());
    EXPECT_TRUE(document.DiffersFromFile());
}

TEST_F(DocumentFileTest, WhatWasNotReadWouldBeLostByEveryWayToTheFile) {
    ASSERT_TRUE(document.Open(Write("doc.tvn", "toolbar")));
    fs::create_symlink("doc.tvn", host.Directory() / "link.tvn");
    EXPECT_TRUE(document.WouldLoseUnread(path));
    EXPECT_TRUE(document.WouldLoseUnread(host.Directory() / "link.tvn"));
    EXPECT_FALSE(document.WouldLoseUnread(host.Directory() / "copy.tvn"));
    ASSERT_TRUE(Save(host.Directory() / "copy.tvn"));
    EXPECT_FALSE(document.WasCutShort());
    EXPECT_TRUE(document.WouldLoseUnread(path)) << "the document elsewhere still lacks it";
    EXPECT_FALSE(document.WouldLoseUnread(host.Directory() / "copy.tvn"));
    ASSERT_TRUE(document.SaveCopy(path, error));
    EXPECT_FALSE(document.WouldLoseUnread(path)) << "it is gone";
}

TEST_F(DocumentFileTest, AnEarlierVersionOfACutDocumentIsProtectedUntilTheFileIsReplaced) {
    ASSERT_TRUE(document.Open(Write("doc.tvn", "toolbar")));
    const DocumentOrigin earlier = document.Origin();
    ASSERT_TRUE(document.Open(Write("other.tvn", "# nothing\n")));
    document.SetOrigin(earlier);
    EXPECT_TRUE(document.WasCutShort());
    EXPECT_TRUE(document.WouldLoseUnread(path));
    ASSERT_TRUE(Save(path));
    document.SetOrigin(earlier);
    EXPECT_FALSE(document.WasCutShort());
    EXPECT_FALSE(document.WouldLoseUnread(path));
}

TEST_F(DocumentFileTest, AnotherPathForACutDocumentKeepsItsProtection) {
    ASSERT_TRUE(document.Open(Write("copy.tvn", "toolbar")));
    document.SetPath(Write("doc.tvn", "whole"));
    EXPECT_TRUE(document.WasCutShort());
    EXPECT_TRUE(document.WouldLoseUnread(path));
}

TEST_F(DocumentFileTest, ASaveTellsWhichFileTheDocumentHadBefore) {
    std::vector<std::string> told;
    const auto saves = document.afterSave.Add([&](const DocumentFile& before) {
        told.push_back(before.path + " " + document.Path());
        EXPECT_FALSE(document.IsModified());
    });
    ASSERT_TRUE(Save(path));
    ASSERT_TRUE(Save(path));
    EXPECT_FALSE(Save(host.Directory() / "none/doc.tvn"));
    ASSERT_TRUE(document.SaveCopy(host.Directory() / "copy.tvn", error));
    EXPECT_THAT(told, testing::ElementsAre(" " + path, path + " " + path));
}

TEST_F(DocumentFileTest, TheNetworkIsSavedWhileItIsWhatTheFileHoldsWhateverWasSeenOfIt) {
    document.KeepHistory();
    EXPECT_FALSE(document.IsNetworkSaved()) << "there is no file";
    ASSERT_TRUE(Save(path));
    EXPECT_TRUE(document.IsNetworkSaved());
    document.ViewMoved();
    EXPECT_TRUE(document.IsModified());
    EXPECT_TRUE(document.IsNetworkSaved());
    {
        EditScope edit(document, "Option");
        document.edits.OptionsChanged();
        document.m_renderOptions["DEPTH"] = "2";
    }
    EXPECT_FALSE(document.IsNetworkSaved());
    document.History()->Undo();
    EXPECT_TRUE(document.IsNetworkSaved());
    document.SetDiffersFromFile();
    EXPECT_FALSE(document.IsNetworkSaved()) << "an earlier version of what the file holds";
    ASSERT_TRUE(Save(path));
    EXPECT_TRUE(document.IsNetworkSaved());
}

TEST_F(DocumentFileTest, WithoutAHistoryAnyChangeIsOneOfTheNetwork) {
    ASSERT_TRUE(Save(path));
    EXPECT_TRUE(document.IsNetworkSaved());
    document.SetModified();
    EXPECT_FALSE(document.IsNetworkSaved());
}

}  // namespace
}  // namespace tavrin
