// SPDX-License-Identifier: Apache-2.0
// Files of the render history read for comparing: what is had of them, what is said of those that are broken,
// and that nothing of the desk feels it.
#include "render/HistoryDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "render/NetworkCompare.h"
#include "site/Site.h"
#include "support/NetworkPrint.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kNoise =
    "input scale { float { 4 0 10 0 %g } }\noutput result { float out }\n"
    "codegen.main-body append\nnoise(scale);\n<<EOT>>\n";

class HistoryDocumentTest : public test::DocumentTest {
  protected:
    HistoryDocumentTest() {
        host.AddOperator("Noise", kNoise);
        host.appVariables = {{"SIZE", "320,240"}, {"FRAME", "1"}};
        document.m_renderOptions = host.appVariables;
        site.types.SetDataType("float", {"float ", ";"});
        AddNoise(1);
        AddNoise(2);
        test::Wire(test::BoxAt(document, 0), 0, test::BoxAt(document, 1), 0);
    }
    COpBox& AddNoise(int wid) {
        auto box = std::make_unique<COpBox>();
        EXPECT_TRUE(host.DefineBox(*box, "Noise"));
        box->wid = wid;
        return Add(std::move(box));
    }
    std::string Keep() { return host.Directory().Write("work/1/marble.tvn", document.Snapshot()); }
    HistoryDocument Read() { return reader.Read(Keep(), "marble"); }
    std::vector<std::string> DiffersFromDesk(const HistoryDocument& read) {
        std::vector<std::string> texts;
        for (const Difference& found : CompareNetworks(read.network, reader.PictureOf(document)))
            texts.push_back(found.text);
        return texts;
    }

    Site& site = host.GetSite();
    CCodeGen siteCodeGen;
    HistoryReader reader{host, siteCodeGen};
};

TEST_F(HistoryDocumentTest, AFileHoldsItsNetworkAndGeneratesItsSource) {
    std::vector<std::string> notes;
    const HistoryDocument read = Read();
    EXPECT_TRUE(read.isRead);
    EXPECT_THAT(read.notes, IsEmpty());
    EXPECT_THAT(DiffersFromDesk(read), IsEmpty());
    EXPECT_THAT(read.source, HasSubstr("noise(4);\n"));
    EXPECT_EQ(read.source, reader.SourceOf(document, "marble", notes));
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(HistoryDocumentTest, WhatTheDeskHasBecomeIsToldAgainstTheFile) {
    const std::string path = Keep();
    dynamic_cast<COpValueFloat&>(*test::BoxAt(document, 0).inputs[0]->values[0]).value = 9;
    document.m_renderOptions["SIZE"] = "640,480";
    const HistoryDocument read = reader.Read(path, "marble");
    EXPECT_THAT(DiffersFromDesk(read),
                ElementsAre("Noise_1 scale: 4 -> 9", "option SIZE: 320,240 -> 640,480"));
}

TEST_F(HistoryDocumentTest, NothingOfTheDeskFeelsIt) {
    document.KeepHistory();
    document.SetPath("/documents/marble.tvn");
    document.SetModified();
    const std::string path = Keep();
    const std::string before = test::PrintNetwork(document);
    const size_t live = COpBox::LiveCount();
    const std::string library = site.directories.libName;
    const COpEntry* entry = host.Registry().FindByName("Noise");
    host.Sink().log.clear();
    int changes = 0;
    const auto told = document.edits.Observe([&changes](const Change&) { ++changes; });
    std::vector<std::string> notes;
    reader.Read(path, "marble");
    reader.PictureOf(document);
    reader.SourceOf(document, "marble", notes);
    EXPECT_EQ(test::PrintNetwork(document), before);
    EXPECT_EQ(document.Path(), "/documents/marble.tvn");
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(document.edits.StrayEdits(), 0);
    EXPECT_EQ(COpBox::LiveCount(), live) << "boxes were left behind";
    EXPECT_EQ(site.directories.libName, library);
    EXPECT_EQ(host.Registry().FindByName("Noise"), entry) << "the operators were scanned again";
    EXPECT_THAT(host.usedLibraries, IsEmpty());
    EXPECT_THAT(host.ownTexts, IsEmpty());
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(HistoryDocumentTest, AFileThatHasGoneIsToldInANoteAndTheLog) {
    const HistoryDocument read = reader.Read(host.Directory() / "work/7/marble.tvn", "marble");
    EXPECT_FALSE(read.isRead);
    ASSERT_THAT(read.notes, SizeIs(1));
    EXPECT_THAT(read.notes[0], testing::StartsWith("unable to open "));
    EXPECT_THAT(host.Sink().log, HasSubstr("WARNING: nothing is compared with "));
    EXPECT_THAT(host.Sink().log, HasSubstr("work/7/marble.tvn"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(HistoryDocumentTest, AFileThatIsNoDocumentIsNotCompared) {
    const std::string path = host.Directory().Write("work/1/marble.tvn", "\x89PNG\r\n");
    const HistoryDocument read = reader.Read(path, "marble");
    EXPECT_FALSE(read.isRead);
    EXPECT_THAT(read.notes, SizeIs(1));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(HistoryDocumentTest, WhatStandsBeforeAnErrorIsCompared) {
    std::string text = document.Snapshot();
    const std::string path = host.Directory().Write(
        "work/1/marble.tvn", "opdesk {\nopbox { filename Noise wid 1 }\nnonsense\n}\n" + text);
    const HistoryDocument read = reader.Read(path, "marble");
    EXPECT_TRUE(read.isRead);
    EXPECT_THAT(read.notes, Contains(HasSubstr("marble.tvn near line 3")));
    EXPECT_THAT(DiffersFromDesk(read), Contains("Noise_2 came"));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(HistoryDocumentTest, AnOperatorThatTheLibraryHasNoMoreLeavesAPlaceholder) {
    const std::string path = host.Directory().Write(
        "work/1/marble.tvn", "opdesk {\nopbox { filename Noise wid 1 }\nopbox { filename Gone wid 5 }\n}\n");
    const HistoryDocument read = reader.Read(path, "marble");
    EXPECT_TRUE(read.isRead);
    EXPECT_THAT(read.notes, Contains(HasSubstr("Gone")));
    EXPECT_THAT(DiffersFromDesk(read), Contains("Gone_5 went"));
    EXPECT_THAT(read.source, HasSubstr("noise(4);"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(HistoryDocumentTest, AFileOfAnotherLibraryIsComparedByWhatItSays) {
    const std::string path = Keep();
    host.AddOperator("Other", kNoise, "big");
    ASSERT_TRUE(host.UseLibrary("big"));
    host.usedLibraries.clear();
    const HistoryDocument read = reader.Read(path, "marble");
    EXPECT_TRUE(read.isRead);
    ASSERT_THAT(read.notes, SizeIs(1));
    EXPECT_THAT(read.notes[0], HasSubstr("the library mini"));
    EXPECT_EQ(read.source, "");
    EXPECT_THAT(host.usedLibraries, IsEmpty());
    dynamic_cast<COpValueFloat&>(*test::BoxAt(document, 0).inputs[0]->values[0]).value = 9;
    EXPECT_THAT(DiffersFromDesk(read), ElementsAre("Noise_1 scale: 4 -> 9"));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(HistoryDocumentTest, OptionsThatDocumentsDoNotHoldAreNotCompared) {
    host.unsavedOptions = {"FRAME"};
    const std::string path = Keep();
    document.m_renderOptions["FRAME"] = "17";
    EXPECT_THAT(DiffersFromDesk(reader.Read(path, "marble")), IsEmpty());
}

TEST_F(HistoryDocumentTest, OptionsThatTheLibraryDoesNotKnowAre) {
    document.m_renderOptions["SCRIPTED"] = "yes";
    const std::string path = Keep();
    EXPECT_THAT(DiffersFromDesk(reader.Read(path, "marble")), IsEmpty());
    document.m_renderOptions["SCRIPTED"] = "no";
    EXPECT_THAT(DiffersFromDesk(reader.Read(path, "marble")), ElementsAre("option SCRIPTED: yes -> no"));
}

TEST_F(HistoryDocumentTest, WhatGenerationSaysGoesToTheNotes) {
    document.m_boxes.front()->lacksTemplates = true;
    std::vector<std::string> notes;
    host.Sink().log.clear();
    reader.SourceOf(document, "marble", notes);
    EXPECT_THAT(notes, ElementsAre(HasSubstr("Noise_1 is a copy without templates")));
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(HistoryDocumentTest, ArgumentsStandBehindTheSourceWithTheirValuesAndRanges) {
    std::vector<std::string> notes;
    COpButton& scale = *test::BoxAt(document, 0).inputs[0];
    scale.arg = 1;
    scale.argname = "roughness";
    const std::string before = reader.SourceOf(document, "marble", notes);
    EXPECT_THAT(before, HasSubstr("noise(roughness);\n"));
    EXPECT_THAT(before,
                testing::EndsWith("\nArgName roughness\n{\n    BoxTitle    Noise\n    ButtonTitle scale\n"
                                  "    Comments    \n    float       4\n    MinMax      0.000000 "
                                  "10.000000\n}\n\n"));
    scale.pin = scale.lock = scale.stow = 1;
    EXPECT_EQ(reader.SourceOf(document, "marble", notes), before) << "how sliders stand is no matter";
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(HistoryDocumentTest, ManyNotesAreBounded) {
    std::string text = "opdesk {\n";
    for (int i = 1; i <= 100; ++i)
        text += "opbox { filename Gone" + std::to_string(i) + " wid " + std::to_string(i) + " }\n";
    const HistoryDocument read =
        reader.Read(host.Directory().Write("work/1/marble.tvn", text + "}\n"), "marble");
    EXPECT_EQ(read.network.boxes.size(), 100U);
    EXPECT_THAT(read.notes, SizeIs(testing::Le(21U)));
}

}  // namespace
}  // namespace tavrin
