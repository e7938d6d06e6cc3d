// SPDX-License-Identifier: Apache-2.0
// Which boxes are muted, as documents, copies and the history keep it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/BoxCarry.h"
#include "desk/OpDesk.h"
#include "document/DocumentFormWriter.h"
#include "document/DocumentReader.h"
#include "document/DocumentSnapshot.h"
#include "document/EditHistory.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::MakeLink;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kLink = "input in { float { 0 0 1 0 %g } } output out { float out }";

class MutedBoxes : public test::DocumentTest {
  protected:
    MutedBoxes() {
        host.startsProcesses = false;
        host.AddOperator("Link", kLink);
        for (int wid = 1; wid <= 3; ++wid) {
            auto box = std::make_unique<COpBox>();
            EXPECT_TRUE(host.DefineBox(*box, "Link"));
            box->wid = wid;
            Add(std::move(box));
        }
    }
    static std::vector<int> MutedOf(const CTvDoc& of) {
        std::vector<int> wids;
        for (const auto& box : of.m_boxes) {
            if (box->muted != 0) wids.push_back(box->wid);
        }
        return wids;
    }
    void Mute(size_t place) { BoxAt(document, place).muted = 1; }
    // The three boxes' document with this instead of its line of muted boxes.
    std::string TextWith(const std::string& line) {
        Mute(1);
        std::string text = document.Store();
        const std::string own = "tavrn-muted \"2\"\r\n\r\n";
        EXPECT_NE(text.find(own), std::string::npos);
        return text.replace(text.find(own), own.size(), line);
    }

    test::RecordingView view{document};
};

TEST_F(MutedBoxes, ADocumentWithoutAnySaysNothingOfThem) {
    EXPECT_THAT(document.Store(), Not(HasSubstr("muted")));
}

TEST_F(MutedBoxes, AreSavedByTheirNumbersAndOpenedAgain) {
    Mute(2);
    Mute(0);
    const std::string text = document.Store();
    EXPECT_THAT(text, HasSubstr("tavrn-renderer mini\r\n\r\ntavrn-muted \"1 3\"\r\n\r\ntoolbar\r\n"));
    CTvDoc other(host);
    ASSERT_TRUE(other.Load(ReadDocument(test::ArchiveOf(text, "doc.tvn"))));
    EXPECT_THAT(MutedOf(other), ElementsAre(1, 3));
    EXPECT_EQ(other.Store(), text);
    EXPECT_FALSE(other.IsModified());
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(MutedBoxes, TheWordsArePassedOverByAProgramThatDoesNotKnowThem) {
    // Any other word is to this reader what that one is to an older one.
    const std::string text = TextWith("tavrn-later \"2\"\r\n\r\n");
    document.DeleteContents();
    ASSERT_TRUE(Load(text));
    EXPECT_EQ(document.m_boxes.size(), 3U);
    EXPECT_THAT(MutedOf(document), IsEmpty());
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(MutedBoxes, TheLineMayStandAnywhereBetweenSections) {
    const std::string text = TextWith("");
    CTvDoc other(host);
    ASSERT_TRUE(
        other.Load(ReadDocument(test::ArchiveOf(text + "\ntavrn-muted 3 tavrn-muted 2\n", "doc.tvn"))));
    EXPECT_THAT(MutedOf(other), ElementsAre(2, 3));
}

TEST_F(MutedBoxes, NumbersOfNoBoxAndWhatIsNoNumberMuteNothing) {
    for (const char* line : {"\"\"", "\"99 -1 0\"", "\"x 1\"", "\"1x 3\"", "{", "99999999999999999999"}) {
        CTvDoc other(host);
        const std::string text = TextWith(std::string("tavrn-muted ") + line + "\r\n\r\n");
        ASSERT_TRUE(other.Load(ReadDocument(test::ArchiveOf(text, "doc.tvn")))) << line;
        EXPECT_EQ(other.m_boxes.size(), 3U) << line;
        const std::vector<int> expected =
            std::string(line) == "\"1x 3\"" ? std::vector<int>{1} : std::vector<int>{};
        EXPECT_EQ(MutedOf(other), expected) << line;
    }
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(MutedBoxes, AFileThatEndsBehindTheWordIsToldAsCut) {
    const std::string text = TextWith("");
    CTvDoc other(host);
    EXPECT_FALSE(other.Load(ReadDocument(test::ArchiveOf(text + "tavrn-muted", "doc.tvn"))));
    EXPECT_THAT(Alerts(), testing::Contains(HasSubstr("unexpected input")));
    EXPECT_EQ(other.m_boxes.size(), 3U) << "what came before it counts";
}

TEST_F(MutedBoxes, AFileThatStopsLaterHasThemMutedAllTheSame) {
    std::string text = TextWith("tavrn-muted 1\r\n");
    text.replace(text.find("exportoptions"), 13, "renderoptions { what");
    CTvDoc other(host);
    EXPECT_FALSE(other.Load(ReadDocument(test::ArchiveOf(text, "doc.tvn"))));
    EXPECT_THAT(MutedOf(other), ElementsAre(1));
}

TEST_F(MutedBoxes, AMergeBringsThem) {
    Mute(1);
    const std::string text = document.Store();
    document.DeleteContents();
    ASSERT_TRUE(LoadDeskOnly(text));
    EXPECT_THAT(MutedOf(document), ElementsAre(2));
}

TEST_F(MutedBoxes, TheFormIsWrittenBackToTheByte) {
    Mute(0);
    Mute(1);
    const std::string text = document.Store();
    EXPECT_EQ(WriteForm(ReadDocument(test::ArchiveOf(text, "doc.tvn"))), text);
}

TEST_F(MutedBoxes, TheSnapshotFollows) {
    test::SeenDesk desk{document, host, view};
    DocumentSnapshot snapshot(document, host);
    EXPECT_EQ(TextOf(snapshot.Take()), document.Snapshot());
    BoxAt(document, 1).selected = 1;
    desk.MuteSelected();
    EXPECT_FALSE(snapshot.IsUpToDate());
    EXPECT_EQ(TextOf(snapshot.Take()), document.Snapshot());
    EXPECT_THAT(document.Snapshot(), HasSubstr("tavrn-muted \"2\""));
}

TEST_F(MutedBoxes, ClonesAreMutedAsTheirOriginalsAre) {
    Mute(0);
    EXPECT_EQ(COpBox(BoxAt(document, 0)).muted, 1);
    EXPECT_EQ(COpBox(BoxAt(document, 1)).muted, 0);
    test::SeenDesk desk{document, host, view};
    BoxAt(document, 0).selected = BoxAt(document, 1).selected = 1;
    desk.CopySelection();
    desk.PasteBoxes(DeskPoint{});
    desk.DropPending();
    EXPECT_EQ(MutedOf(document).size(), 2U);
}

TEST_F(MutedBoxes, AFreshBoxOfTheOperatorIsMutedAsTheOldOneWas) {
    Mute(0);
    auto fresh = MakeLink("Link", 0);
    ButtonSuccessors successors;
    std::vector<std::string> losses;
    CarryOver(BoxAt(document, 0), *fresh, successors, losses);
    EXPECT_EQ(fresh->muted, 1);
}

TEST_F(MutedBoxes, APlaceholderKeepsItForTheBoxThatComesBack) {
    host.GetSite().settings.Store("document.placeholders", "1");
    Mute(0);
    std::string text = document.Store();
    for (size_t at = 0; (at = text.find("filename Link", at)) != std::string::npos; ++at)
        text.replace(at, 13, "filename Lost");
    document.DeleteContents();
    ASSERT_TRUE(Load(text));
    ASSERT_TRUE(BoxAt(document, 0).IsPlaceholder());
    EXPECT_THAT(document.Store(), HasSubstr("tavrn-muted \"1\""));
    test::SeenDesk desk{document, host, view};
    desk.OnInitialUpdate();
    host.AddOperator("Lost", kLink);
    EXPECT_EQ(desk.RevivePlaceholders(), 3U);
    EXPECT_FALSE(BoxAt(document, 0).IsPlaceholder());
    EXPECT_THAT(MutedOf(document), ElementsAre(1));
}

TEST_F(MutedBoxes, UndoAndRedoGoThereAndBackAndTellOfTheWires) {
    document.KeepHistory();
    test::SeenDesk desk{document, host, view};
    desk.OnInitialUpdate();
    BoxAt(document, 0).selected = BoxAt(document, 2).selected = 1;
    desk.MuteSelected();
    EXPECT_THAT(MutedOf(document), ElementsAre(1, 3));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.History()->Name(0), "Mute");
    view.calls.clear();
    desk.Undo();
    EXPECT_THAT(MutedOf(document), IsEmpty());
    EXPECT_THAT(view.calls, testing::Contains(HasSubstr("wires"))) << "what they carry is another";
    desk.Redo();
    EXPECT_THAT(MutedOf(document), ElementsAre(1, 3));
}

}  // namespace
}  // namespace tavrin
