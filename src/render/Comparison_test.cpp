// SPDX-License-Identifier: Apache-2.0
// A render and the desk beside each other: what is found out when, and what is taken over.
#include "render/Comparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "document/EditHistory.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "sliders/ArgumentEdits.h"
#include "support/NetworkPrint.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int kDesk = Comparison::kDesk;
constexpr const char* kNoise =
    "input scale { float { 4 0 10 0 %g } xyz { 1 2 3 0 1 0 \"%g %g %g\" } }\n"
    "input seed { float { 1 0 10 0 %g } wwms.disableargflag 1 }\n"
    "output result { float out }\ndefs { castlock.add scale seed }\n"
    "codegen.main-body append\nnoise(scale);\n<<EOT>>\n";

class ComparisonTest : public test::DocumentTest {
  protected:
    ComparisonTest() {
        host.AddOperator("Noise", kNoise);
        host.appVariables = {{"SIZE", "320,240"}};
        document.m_renderOptions = host.appVariables;
        document.SetPath("/documents/marble.tvn");
        auto box = std::make_unique<COpBox>();
        EXPECT_TRUE(host.DefineBox(*box, "Noise"));
        box->wid = 1;
        noise = &Add(std::move(box));
        document.KeepHistory();
    }

    // As a render leaves it.
    void Keep(int number, const std::string& name = "marble") {
        host.Directory().Write("work/" + std::to_string(number) + "/" + name + ".tvn", document.Snapshot());
        RenderRecord record;
        record.number = number;
        record.name = name;
        session.records.Begin(record, true, number);
    }
    void Tune(float number) {
        const EditScope edit(document, "Tune");
        document.edits.ButtonTuned(*noise->inputs[0]);
        Scale().value = number;
        comparison.DeskChanged();
    }
    COpValueFloat& Scale() const { return dynamic_cast<COpValueFloat&>(*noise->inputs[0]->values[0]); }
    std::vector<std::string> Texts() {
        std::vector<std::string> texts;
        for (const Difference& found : comparison.Differences()) texts.push_back(found.text);
        return texts;
    }
    size_t ChangedLines() {
        const std::vector<LineRow>& rows = comparison.Source().rows;
        return static_cast<size_t>(std::count_if(
            rows.begin(), rows.end(), [](const LineRow& row) { return row.kind != LineRow::Kind::kSame; }));
    }
    // Of all that differs.
    size_t GiveAll() {
        std::vector<size_t> places;
        for (size_t place = 0; place < comparison.Differences().size(); ++place) places.push_back(place);
        const size_t given =
            comparison.Give(places, [this](const std::string& name, const std::string& value) {
                const EditScope edit(document, "Render Option");
                document.edits.OptionsChanged();
                document.m_renderOptions[name] = value;
            });
        comparison.DeskChanged();
        return given;
    }

    COpBox* noise = nullptr;
    CCodeGen siteCodeGen;
    RenderSession session{document, host.GetSite(), siteCodeGen};
    Comparison comparison{{document, host, session, siteCodeGen}};
};

TEST_F(ComparisonTest, TheDeskDiffersFromItselfInNothing) {
    EXPECT_THAT(Texts(), IsEmpty());
    EXPECT_EQ(ChangedLines(), 0U);
    EXPECT_EQ(comparison.NameOf(kDesk), "The desk");
}

TEST_F(ComparisonTest, ARenderIsComparedWithTheDesk) {
    Keep(1);
    Tune(9);
    comparison.Choose(1, kDesk);
    EXPECT_THAT(Texts(), ElementsAre("Noise_1 scale: 4 -> 9"));
    EXPECT_EQ(ChangedLines(), 1U);
    EXPECT_EQ(comparison.NameOf(1), RenderHistory::EntryText(1, "marble"));
    comparison.Choose(kDesk, 1);
    EXPECT_THAT(Texts(), ElementsAre("Noise_1 scale: 9 -> 4"));
}

TEST_F(ComparisonTest, TwoRendersAreCompared) {
    Keep(1);
    Tune(9);
    Keep(2);
    Tune(5);
    comparison.Choose(1, 2);
    EXPECT_FALSE(comparison.HasDesk());
    EXPECT_THAT(Texts(), ElementsAre("Noise_1 scale: 4 -> 9"));
}

TEST_F(ComparisonTest, TheDeskIsLookedAtAgainOnlyWhenItHasChanged) {
    Keep(1);
    comparison.Choose(1, kDesk);
    EXPECT_THAT(Texts(), IsEmpty());
    EXPECT_EQ(ChangedLines(), 0U);
    Scale().value = 7;
    EXPECT_THAT(Texts(), IsEmpty());
    comparison.DeskChanged();
    EXPECT_THAT(Texts(), ElementsAre("Noise_1 scale: 4 -> 7"));
    EXPECT_EQ(ChangedLines(), 1U);
}

TEST_F(ComparisonTest, ARenderThatWasReadStaysThoughItLeavesTheHistory) {
    Keep(1);
    comparison.Choose(1, kDesk);
    EXPECT_THAT(Texts(), IsEmpty());
    session.records.Forget(1);
    std::filesystem::remove_all(host.GetSite().WorkPath("1"));
    Tune(9);
    EXPECT_THAT(Texts(), ElementsAre("Noise_1 scale: 4 -> 9"));
    comparison.Choose(kDesk, 1);
    EXPECT_THAT(Texts(), ElementsAre("Noise_1 scale: 9 -> 4"));
    EXPECT_EQ(comparison.NameOf(1), RenderHistory::EntryText(1, "marble"));
    EXPECT_THAT(comparison.Notes(), IsEmpty());
}

TEST_F(ComparisonTest, ARenderThatCannotBeReadIsToldAndComparedWithNothing) {
    Keep(1);
    std::filesystem::remove_all(host.GetSite().WorkPath("1"));
    comparison.Choose(1, kDesk);
    EXPECT_THAT(Texts(), IsEmpty());
    ASSERT_THAT(comparison.Notes(), SizeIs(1));
    EXPECT_THAT(comparison.Notes()[0],
                testing::StartsWith(RenderHistory::EntryText(1, "marble") + ": unable to open "));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ComparisonTest, AnotherLibraryMakesAnotherSourceOfWhatCanBeReadAgain) {
    Keep(1);
    Keep(2);
    comparison.Choose(1, 2);
    EXPECT_EQ(ChangedLines(), 0U);
    std::string text = kNoise;
    host.Directory().Write("installation/mini/menu/1000.Noise",
                           text.replace(text.find("noise("), 6, "turbulence("));
    std::filesystem::remove_all(host.GetSite().WorkPath("1"));
    comparison.LibraryChanged();
    const LineDifference& source = comparison.Source();
    EXPECT_THAT(source.left, testing::Contains("noise(4);"));
    EXPECT_THAT(source.right, testing::Contains("turbulence(4);"));
    EXPECT_THAT(comparison.Notes(), IsEmpty());
}

// Take Over

TEST_F(ComparisonTest, WhatTheRenderHadIsTakenOverAsOneEdit) {
    Keep(1);
    const std::string before = test::PrintNetwork(document);
    {
        const EditScope edit(document, "Tune");
        document.edits.BoxTouched(*noise);
        document.edits.OptionsChanged();
        Scale().value = 9;
        Scale().max = 20;
        dynamic_cast<COpValueXyz&>(*noise->inputs[0]->values[1]).y = -5;
        noise->inputs[0]->arg = 1;
        noise->inputs[0]->argname = "rough";
        noise->inputs[0]->comments = "how rough";
        noise->inputs[0]->currentcast = 1;
        document.m_renderOptions["SIZE"] = "640,480";
    }
    const std::string tuned = test::PrintNetwork(document);
    const size_t steps = document.History()->Count();
    comparison.DeskChanged();
    comparison.Choose(1, kDesk);
    ASSERT_THAT(Texts(), SizeIs(8));
    EXPECT_EQ(GiveAll(), 8U);
    EXPECT_THAT(Texts(), IsEmpty());
    EXPECT_EQ(test::PrintNetwork(document), before);
    EXPECT_EQ(document.History()->Count(), steps + 1);
    EXPECT_EQ(document.History()->Name(steps), "Take Over");
    EXPECT_EQ(document.edits.StrayEdits(), 0);
    document.History()->Undo();
    EXPECT_EQ(test::PrintNetwork(document), tuned);
}

TEST_F(ComparisonTest, TheOlderOfTheTwoMayBeTheDesk) {
    Keep(1);
    Tune(9);
    comparison.Choose(kDesk, 1);
    EXPECT_EQ(GiveAll(), 1U);
    EXPECT_EQ(Scale().value, 4);
}

TEST_F(ComparisonTest, AValueKeepsTheRangeThatItHasAndARangeItsValue) {
    Keep(1);
    Tune(9);
    Scale().max = 30;
    comparison.DeskChanged();
    comparison.Choose(1, kDesk);
    ASSERT_THAT(Texts(), ElementsAre("Noise_1 scale: 4 -> 9", "Noise_1 scale range: 0 10 -> 0 30"));
    const auto noOption = [](const std::string&, const std::string&) { FAIL(); };
    EXPECT_EQ(comparison.Give({0}, noOption), 1U);
    EXPECT_EQ(Scale().value, 4);
    EXPECT_EQ(Scale().max, 30);
    Tune(9);
    EXPECT_EQ(comparison.Give({1}, noOption), 1U);
    EXPECT_EQ(Scale().value, 9);
    EXPECT_EQ(Scale().max, 10);
}

TEST_F(ComparisonTest, WhatCannotBeTakenOverIsPassedOver) {
    Keep(1);
    Keep(2);
    Tune(9);
    comparison.Choose(1, 2);
    EXPECT_EQ(GiveAll(), 0U) << "the desk is none of the two";
    {
        const EditScope edit(document, "Delete");
        document.edits.BoxWent(*noise, Edits::Stood::kInNetwork);
        std::unique_ptr<COpBox> box = std::move(document.m_boxes.front());
        document.m_boxes.pop_front();
        document.edits.Leave(std::move(box));
    }
    comparison.DeskChanged();
    comparison.Choose(1, kDesk);
    ASSERT_THAT(Texts(), ElementsAre("Noise_1 went"));
    EXPECT_FALSE(comparison.CanGive(comparison.Differences()[0]));
    EXPECT_EQ(GiveAll(), 0U);
    document.m_renderOptions["NEW"] = "1";
    comparison.DeskChanged();
    EXPECT_EQ(GiveAll(), 0U) << "the render does not have the option";
}

TEST_F(ComparisonTest, AnInputThatMayBeNoArgumentDoesNotBecomeOne) {
    noise->inputs[1]->arg = 1;
    Keep(1);
    noise->inputs[1]->arg = 0;
    comparison.DeskChanged();
    comparison.Choose(1, kDesk);
    ASSERT_THAT(Texts(), SizeIs(1));
    EXPECT_EQ(GiveAll(), 0U);
    EXPECT_EQ(noise->inputs[1]->arg, 0);
}

}  // namespace
}  // namespace tavrin
