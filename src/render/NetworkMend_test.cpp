// SPDX-License-Identifier: Apache-2.0
// What a check finds is mended by one edit, where it is clear how.
#include "render/NetworkMend.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::IsEmpty;

constexpr const char* kNoise = "output out { float out }\ncodegen.main-body append\nx;\n<<EOT>>\n";
constexpr const char* kSurface = "input shade { float { 0.5 0 1 0 %g } rgb { 0 0 0 %g } }\n";

class NetworkMendTest : public test::DocumentTest {
  protected:
    NetworkMendTest() { document.KeepHistory(); }
    COpBox& Box(const std::string& name, const std::string& definition) {
        return Add(desk, test::MakeBox(name, definition));
    }
    // The one thing that is found; what is to be offered for it is as told.
    Finding Only(const std::string& offered) {
        const std::vector<Finding> findings = CheckNetwork(document, host.GetSite());
        EXPECT_EQ(findings.size(), 1U);
        if (findings.empty()) return {};
        EXPECT_EQ(MendText(findings.front()), offered);
        return findings.front();
    }
    // The edit mends, is one step back, and does nothing where there is nothing to mend any more.
    void MendsOnce(const Finding& finding) {
        const std::string before = document.Snapshot();
        EXPECT_TRUE(MendNetwork(finding, document, desk));
        EXPECT_THAT(CheckNetwork(document, host.GetSite()), testing::Not(testing::Contains(finding)));
        desk.Undo();
        EXPECT_EQ(document.Snapshot(), before);
        desk.Redo();
        const std::string mended = document.Snapshot();
        EXPECT_FALSE(MendNetwork(finding, document, desk));
        EXPECT_EQ(document.Snapshot(), mended);
    }

    COpDesk desk{document, host};
};

TEST_F(NetworkMendTest, ABoxThatFeedsNothingIsDeleted) {
    Box("Noise", kNoise);
    MendsOnce(Only("Delete Noise_1"));
    EXPECT_THAT(document.m_boxes, IsEmpty());
}

TEST_F(NetworkMendTest, ABoxThatFeedsSomethingByNowStays) {
    COpBox& noise = Box("Noise", kNoise);
    const Finding finding = Only("Delete Noise_1");
    desk.Connect(*noise.outputs[0], *Box("Surface", kSurface).inputs[0]);
    EXPECT_FALSE(MendNetwork(finding, document, desk));
    EXPECT_EQ(document.m_boxes.size(), 2U);
}

TEST_F(NetworkMendTest, AWireBetweenTypesIsCut) {
    COpBox& noise = Box("Noise", kNoise);
    COpButton& shade = *Box("Surface", kSurface).inputs[0];
    desk.Connect(*noise.outputs[0], shade);
    {
        const EditScope edit(document, "Cast");
        document.edits.BoxTouched(*shade.owner);
        shade.SetCast(static_cast<size_t>(shade.FindCast("rgb")));
    }
    desk.m_selectedConnects = {&shade};
    const Finding finding = Only("Cut the Wire to Surface_2 shade");
    EXPECT_TRUE(MendNetwork(finding, document, desk));
    EXPECT_TRUE(shade.connections.Empty());
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_FALSE(MendNetwork(finding, document, desk));
    desk.Undo();
    EXPECT_EQ(shade.Feeder(), noise.outputs[0].get());
}

TEST_F(NetworkMendTest, AnArgumentThatAWireSilencesIsNoneAnyMore) {
    COpBox& noise = Box("Noise", kNoise);
    COpButton& shade = *Box("Surface", kSurface).inputs[0];
    desk.Connect(*noise.outputs[0], shade);
    {
        const EditScope edit(document, "Argument");
        document.edits.ButtonTouched(shade);
        shade.arg = 1;
    }
    MendsOnce(Only("Make Surface_2 shade No Argument"));
    EXPECT_EQ(shade.arg, 0);
}

TEST_F(NetworkMendTest, TheBoxThatMakesThePictureComesUnderTheMouse) {
    host.AddOperator("Paint", kSurface);
    host.GetSite().settings.Store(kOutputBoxesKey, "Paint");
    desk.Connect(*Box("Noise", kNoise).outputs[0], *Box("Surface", kSurface).inputs[0]);
    EXPECT_TRUE(MendNetwork(Only("Add Paint"), document, desk));
    ASSERT_EQ(desk.m_pendingBoxes.size(), 1U);
    EXPECT_EQ(desk.m_pendingBoxes.front()->filename, "Paint");
}

TEST_F(NetworkMendTest, ABoxThatCannotBeHadIsAlerted) {
    host.GetSite().settings.Store(kOutputBoxesKey, "Gone");
    desk.Connect(*Box("Noise", kNoise).outputs[0], *Box("Surface", kSurface).inputs[0]);
    EXPECT_FALSE(MendNetwork(Only("Add Gone"), document, desk));
    EXPECT_FALSE(Alerts().empty());
}

TEST_F(NetworkMendTest, ALockedDeskStaysAsItIs) {
    Box("Noise", kNoise);
    const Finding finding = Only("Delete Noise_1");
    document.lock = 1;
    EXPECT_FALSE(MendNetwork(finding, document, desk));
    document.lock = 0;
    {
        const HeldEdit drag(document, "Move");
        EXPECT_FALSE(MendNetwork(finding, document, desk));
    }
    EXPECT_TRUE(MendNetwork(finding, document, desk));
}

TEST_F(NetworkMendTest, WhereNothingIsClearNothingIsOffered) {
    Box("Surface", kSurface);
    EXPECT_FALSE(MendNetwork(Only(""), document, desk));
    EXPECT_EQ(document.m_boxes.size(), 1U);
}

}  // namespace
}  // namespace tavrin
