// SPDX-License-Identifier: Apache-2.0
// The text of a document that is kept up with its edits. Random walks over the desk compare it as well.
#include "document/DocumentSnapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeLink;

class DocumentSnapshotTest : public test::DocumentTest {
  protected:
    DocumentSnapshotTest() {
        for (int wid = kBoxes; wid > 0; --wid) Add(MakeLink("Link", wid));
        for (size_t place = 0; place + 1 < kBoxes; ++place)
            test::Wire(test::BoxAt(document, place + 1), 0, test::BoxAt(document, place), 0);
    }
    void ExpectWhole() { EXPECT_EQ(TextOf(snapshot.Take()), document.Snapshot()); }

    static constexpr int kBoxes = 5;
    DocumentSnapshot snapshot{document, host};
};

TEST_F(DocumentSnapshotTest, IsTheTextThatASaveWouldWrite) {
    ExpectWhole();
    EXPECT_EQ(test::WidsOf(document).front(), kBoxes) << "the stack stays as it is";
    EXPECT_EQ(TextOf(snapshot.Take()), document.Store());
}

TEST_F(DocumentSnapshotTest, AnUntouchedBoxIsNotWrittenAgain) {
    const auto before = snapshot.Take();
    {
        const EditScope edit(document, "Tune");
        auto& box = *document.m_boxes.front();
        box.inputs[0]->argname = "tuned";
        document.edits.ButtonTuned(*box.inputs[0]);
    }
    const auto after = snapshot.Take();
    ASSERT_EQ(before.size(), after.size());
    size_t same = 0;
    for (size_t i = 0; i < before.size(); ++i) same += before[i] == after[i] ? 1 : 0;
    EXPECT_EQ(same, before.size() - 4) << "all but the box and what stands round boxes and wires";
    EXPECT_THAT(TextOf(after), testing::HasSubstr("tuned"));
    ExpectWhole();
}

TEST_F(DocumentSnapshotTest, AnActThatGoesOnIsInIt) {
    ExpectWhole();
    const HeldEdit drag(document, "Drag");
    for (const float place : {10.0F, 20.0F}) {
        const EditScope edit(document, "Drag");
        document.m_boxes.front()->xypos[0] = place;
        document.edits.BoxTouched(*document.m_boxes.front());
        EXPECT_FALSE(snapshot.IsUpToDate());
        ExpectWhole();
    }
}

TEST_F(DocumentSnapshotTest, CanBeMadeInSlicesWithEditsInBetween) {
    int slices = 0;
    while (!snapshot.Advance(std::chrono::microseconds(0))) {
        if (++slices != 3) continue;
        const EditScope edit(document, "Delete");
        document.edits.WiresChanged();
        document.m_boxes.front()->inputs[0]->Disconnect();
        document.edits.BoxWent(*document.m_boxes.front(), Edits::Stood::kInNetwork);
        document.m_boxes.pop_front();
    }
    EXPECT_GE(slices, kBoxes);
    EXPECT_TRUE(snapshot.Advance(std::chrono::microseconds(0))) << "nothing is left";
    ExpectWhole();
}

TEST_F(DocumentSnapshotTest, KnowsWhenItIsOutOfDate) {
    EXPECT_FALSE(snapshot.IsUpToDate());
    snapshot.Take();
    EXPECT_TRUE(snapshot.IsUpToDate());
    document.edits.SelectionChanged();
    EXPECT_TRUE(snapshot.IsUpToDate()) << "which is no edit";
    document.offset[0] += 1;
    document.ViewMoved();
    EXPECT_FALSE(snapshot.IsUpToDate());
    snapshot.Take();
    {
        const EditScope edit(document, "Option");
        document.m_renderOptions["SIZE"] = "4";
        document.edits.OptionsChanged();
    }
    EXPECT_FALSE(snapshot.IsUpToDate());
    ExpectWhole();
    document.DeleteContents();
    document.edits.Replaced();
    EXPECT_FALSE(snapshot.IsUpToDate());
    ExpectWhole();
}

// The save itself tells; a copy every few moments would fill the log.
TEST_F(DocumentSnapshotTest, SaysNothingOfWhatCannotBeSaved) {
    document.m_renderOptions["two words"] = "4";
    snapshot.Take();
    EXPECT_EQ(host.Sink().log, "");
    document.Store();
    EXPECT_THAT(host.Sink().log, testing::HasSubstr("two words"));
}

}  // namespace
}  // namespace tavrin
