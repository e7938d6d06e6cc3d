// SPDX-License-Identifier: Apache-2.0
// Files that are no documents, and documents that are cut.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "document/DocumentReader.h"
#include "document/EditHistory.h"
#include "support/NetworkPrint.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class NoDocument : public test::DocumentTest {
  protected:
    NoDocument() { host.startsProcesses = false; }
    std::string Write(const std::string& text) { return host.Directory().Write("file.tvn", text); }
};

TEST_F(NoDocument, PicturesNoiseAndEmptyFilesAreRefusedAndNothingChanges) {
    host.AddOperator("b", "input in { float { 0 0 1 0 %g } }");
    ASSERT_TRUE(
        document.Open(host.Directory().Write("kept.tvn", "opdesk { opbox { filename b wid 3 } lock 1 }")));
    document.KeepHistory();
    {
        const EditScope edit(document, "Comment");
        document.edits.ButtonTuned(*test::BoxAt(document, 0).inputs[0]);
        test::BoxAt(document, 0).inputs[0]->comments = "c";
    }
    const std::string network = test::PrintNetwork(document);
    const std::string path = document.Path();
    bool isEmptied = false;
    const auto subscription = document.beforeDelete.Add([&] { isEmptied = true; });
    std::mt19937 random(3);
    std::string noise;
    for (int i = 0; i < 5000; ++i) noise += static_cast<char>(random() % 256);
    for (const std::string& text :
         {noise, std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16), std::string("\x01\xda\x01\x01\0\x02", 6),
          std::string("#?RADIANCE\nFORMAT=32-bit\n"), std::string("x"), std::string("{ tool bar }"),
          std::string("opdeskk"), std::string(100, '\0')}) {
        host.Sink().alerts.clear();
        EXPECT_FALSE(document.Open(Write(text)));
        EXPECT_THAT(
            host.Sink().alerts,
            ElementsAre(host.Directory() / "file.tvn" +
                        " is no Tavrin document: it holds none of the words that a document is made of; it "
                        "was not opened, and what is on the desk stays"));
    }
    for (const char* text : {"", " ", "\r\n\t\r\n"}) {
        host.Sink().alerts.clear();
        EXPECT_FALSE(document.Open(Write(text)));
        EXPECT_THAT(host.Sink().LastAlert(), HasSubstr("is no Tavrin document: it is empty; "));
    }
    EXPECT_FALSE(isEmptied);
    EXPECT_EQ(test::PrintNetwork(document), network);
    EXPECT_EQ(document.Path(), path);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.lock, 1);
    EXPECT_FALSE(document.WasCutShort());
    EXPECT_TRUE(document.History()->CanUndo());
}

TEST_F(NoDocument, OneWordOfTheFormatOrCommentsAloneMakeADocument) {
    for (const char* text : {"# nothing here\n", "  # nothing", "tavrn-version 1",
                             "junk customshaderhelp { } junk", "toolbar oops", "exportoptions"}) {
        EXPECT_TRUE(document.Open(Write(text))) << text;
        EXPECT_THAT(document.m_boxes, IsEmpty());
    }
}

TEST_F(NoDocument, AFileThatEndsInsideItsDeskIsToldAndGuarded) {
    for (const char* text :
         {"opdesk", "opdesk {", "opdesk { lock 1", "opdesk { opbox { filename b", "opdesk { opconnects {"}) {
        SCOPED_TRACE(text);
        host.AddOperator("b", "");
        host.Sink().alerts.clear();
        ASSERT_TRUE(document.Open(Write(text)));
        ASSERT_EQ(host.Sink().alerts.size(), 1U);
        EXPECT_THAT(host.Sink().LastAlert(),
                    testing::AnyOf(EndsWith("near line 1: unexpected input"),
                                   EndsWith("near line 1: the file ends inside the section \"opdesk\"")));
        EXPECT_TRUE(document.WasCutShort());
        EXPECT_TRUE(document.WouldLoseUnread(document.Path()));
    }
}

TEST_F(NoDocument, SoIsOneThatEndsInsideItsExportOptions) {
    for (const char* text :
         {"exportoptions", "exportoptions {", "exportoptions {\ntavrndir 1 /x/", "exportoptions }"}) {
        SCOPED_TRACE(text);
        host.Sink().alerts.clear();
        ASSERT_TRUE(document.Open(Write(text)));
        EXPECT_THAT(host.Sink().LastAlert(),
                    EndsWith(": the file ends inside the section \"exportoptions\""));
        EXPECT_TRUE(document.WasCutShort());
    }
}

TEST_F(NoDocument, OneThatEndsInsideItsHelpIsGuardedWithoutAWord) {
    ASSERT_TRUE(document.Open(Write("customshaderhelp\n{\n>x\n")));
    EXPECT_THAT(host.Sink().alerts, IsEmpty());
    EXPECT_TRUE(document.WasCutShort());
}

TEST_F(NoDocument, OneThatIsCutBehindItsLastSectionIsWhole) {
    std::string text = document.Store();
    text.resize(text.rfind("# Tavrn"));
    ASSERT_TRUE(document.Open(Write(text)));
    EXPECT_THAT(host.Sink().alerts, IsEmpty());
    EXPECT_FALSE(document.WasCutShort());
}

TEST_F(NoDocument, WhatIsReadOfACutDeskIsInOrderAndUnmodified) {
    host.AddOperator("b", "");
    document.SetModified();
    EXPECT_TRUE(Load("opdesk { opbox { filename b wid 9 } opbox { filename b wid 3 }"));
    EXPECT_THAT(test::WidsOf(document), ElementsAre(3, 9));
    EXPECT_FALSE(document.IsModified());
}

}  // namespace
}  // namespace tavrin
