// SPDX-License-Identifier: Apache-2.0
// Documents whose operators are missing, and files that are no documents, in a frame.
#include "ui/frame/StatusBox.h"
#include "ui/support/DocumentsTest.h"

namespace tavrin {
namespace {

using test::BoxesShown;
using test::DocumentsTest;
using test::PressWhenBoxComes;
using test::ReadFile;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
namespace fs = std::filesystem;

class PlaceholdersTest : public DocumentsTest {
  protected:
    PlaceholdersTest() { AddToSite("document.placeholders 1\n"); }

    // A document with a box of an operator that is missing, which feeds a box of one that is there.
    void OpenWithOneMissing() {
        StartWithDocs();
        path = directory.Write(
            "docs/old.tvn",
            "opdesk {\nopbox { filename Constant wid 1 }\nopbox { filename Blend wid 2\n"
            "opbutton.input value value { x { currentcast float wwms { float 0.5 0 1 0 } } } }\n"
            "opconnects { opbox:Constant,1,result,0 -> opbox:Blend,2,value,0 } }\n");
        PressWhenBoxComes("OK");
        Open(path);
        ExpectBox("Alert: Blend: unknown operator name");
    }
    const COpBox& Box(int wid) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == wid) return *box;
        }
        throw std::out_of_range("no box of that number");
    }
    std::string path;
};

TEST_F(PlaceholdersTest, ADocumentWithAMissingOperatorOpensWholeAndIsSavedUnasked) {
    OpenWithOneMissing();
    EXPECT_EQ(Boxes(), 2U);
    EXPECT_TRUE(Box(2).IsPlaceholder());
    EXPECT_THAT(Log(), HasSubstr("near line 3: Blend: unknown operator name"));
    Change();
    const auto shown = BoxesShown().size();
    Do(CommandId::kSave);
    Settle();
    EXPECT_EQ(BoxesShown().size(), shown) << "nothing is asked";
    EXPECT_THAT(ReadFile(path), HasSubstr("opbox { filename Blend wid 2\n"));
}

TEST_F(PlaceholdersTest, ReloadingOperatorsBringsTheRealBoxAndUndoTakesItAway) {
    OpenWithOneMissing();
    directory.Write("tavrin/tiny/menu/0500.Blend",
                    "input value { float { 0 0 1 0 \"%g\" } } output result { float out }");
    Do(CommandId::kReloadOperators);
    Settle();
    EXPECT_FALSE(Box(2).IsPlaceholder());
    EXPECT_EQ(Box(2).inputs.at(0)->connections.First(), Box(1).outputs.at(0).get());
    EXPECT_THAT(Log(), HasSubstr("Blend_2 is a real box again"));
    EXPECT_THAT(Bytes(Frame().StatusBox().Status()), HasSubstr("placeholders that are real boxes again: 1"));
    EXPECT_TRUE(Document().IsModified());
    Do(CommandId::kUndo);
    Settle();
    EXPECT_TRUE(Box(2).IsPlaceholder());
    EXPECT_FALSE(Document().IsModified());
    Do(CommandId::kRedo);
    Settle();
    EXPECT_FALSE(Box(2).IsPlaceholder());
}

TEST_F(PlaceholdersTest, AFileThatIsNoDocumentLeavesTheDeskAsItIs) {
    OpenWithOneMissing();
    AddBoxes(1);
    Settle();
    const std::string picture = directory.Write("docs/picture.tvn", std::string("\x89PNG\r\n\x1a\n", 8));
    PressWhenBoxComes("Discard");
    EXPECT_FALSE(Frame().OpenDocumentFile(picture));
    PressWhenBoxComes("OK");
    ExpectBox("Alert: " + picture +
              " is no Tavrin document: it holds none of the words that a document is made of; it was not "
              "opened, and "
              "what is on the desk stays");
    EXPECT_EQ(Boxes(), 3U);
    EXPECT_EQ(Document().Path(), path);
    EXPECT_TRUE(Document().IsModified());
    EXPECT_TRUE(IsEnabled(CommandId::kUndo));
}

}  // namespace
}  // namespace tavrin
