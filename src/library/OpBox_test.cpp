// SPDX-License-Identifier: Apache-2.0
// Boxes: copies, and the buttons that the user adds and removes.
#include "library/OpBox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using testing::ElementsAre;
using testing::IsEmpty;

void Read(COpBox& box, std::string_view text) {
    Report report;
    CArchive archive = ArchiveOf(text, "box");
    ASSERT_TRUE(box.ReadDefinition(archive, "/nowhere", report)) << report.TakePending()->text;
}

constexpr const char* kLayers =
    "input base { float { 0 0 1 0 %g } }\n"
    "vinput layer { vinstances 3 float { 0.5 0 1 0 %g } rgb { 1 0 0 %g } }\n"
    "output out { float out }\noutput base { float out }\n";

std::vector<std::string> InputNames(const COpBox& box) {
    std::vector<std::string> names;
    for (const auto& button : box.inputs) names.push_back(button->DisplayName());
    return names;
}

TEST(OpBox, TheTitleAndTheNumberMakeTheName) {
    COpBox box;
    EXPECT_EQ(box.BoxTitleWid(), "_0");
    box.filename = "Noise";
    box.wid = 12;
    EXPECT_EQ(box.BoxTitleWid(), "Noise_12");
}

// Copies

TEST(OpBox, ACopyHasTheLooksAndTheButtonsButNoTemplatesAndNoCastlocks) {
    COpBox box;
    Read(box, std::string("iconimg i.sgi size 3 4 color 1 2 3 icontext t boxhelp {\nhelps\n}\n") + kLayers +
                  "defs { maxinstances 5 castlock.add base out }\ncodegen.main-body append\nx\n<<EOT>>\n"
                  "codegen.linecomment // codegen.setvariable v 1");
    box.filename = "Mix";
    box.wid = 9;
    box.selected = 1;
    box.xypos[0] = 10;
    box.xypos[1] = -20;
    const COpBox copy(box);
    EXPECT_EQ(copy.filename + " " + copy.iconimg + " " + copy.icontext + " " + copy.boxhelp,
              "Mix i.sgi t helps");
    EXPECT_THAT(copy.size, ElementsAre(3, 4));
    EXPECT_THAT(copy.color, ElementsAre(1, 2, 3));
    EXPECT_THAT(copy.xypos, ElementsAre(10, -20));
    EXPECT_EQ(copy.maxinstances, 5);
    EXPECT_EQ(copy.wid, 0);
    EXPECT_EQ(copy.selected, 0);
    EXPECT_THAT(InputNames(copy), ElementsAre("base", "layer1", "layer2", "layer3"));
    EXPECT_EQ(copy.outputs.size(), 2U);
    EXPECT_THAT(copy.castlock, IsEmpty());
    EXPECT_EQ(copy.codegen.Block(CCodeGen::kMainBody).Size(), 0U);
    EXPECT_EQ(copy.codegen.m_lineComment, "");
}

TEST(OpBox, ACopyOwnsItsButtonsAndValuesAndHasNoConnections) {
    COpBox box;
    Read(box, kLayers);
    COpBox other;
    Read(other, kLayers);
    box.inputs[1]->Connect(*other.outputs[0]);
    box.inputs[2]->SetCast(1);
    COpBox copy(box);
    for (const auto* side : {&copy.inputs, &copy.outputs}) {
        for (const auto& button : *side) {
            EXPECT_EQ(button->owner, &copy);
            EXPECT_TRUE(button->connections.Empty());
        }
    }
    EXPECT_EQ(other.outputs[0]->connections.Size(), 1U);
    EXPECT_EQ(copy.inputs[2]->CurrentType(), "rgb");
    static_cast<COpValueFloat&>(*copy.inputs[1]->values[0]).value = 0.75F;
    EXPECT_EQ(box.inputs[1]->ValueText(), "0.5");
    EXPECT_EQ(copy.inputs[1]->ValueText(), "0.75");
}

TEST(OpBox, ABoxIsLiveFromItsMakingToItsEnd) {
    const size_t before = COpBox::LiveCount();
    auto box = std::make_unique<COpBox>();
    auto copy = std::make_unique<COpBox>(*box);
    const COpBox* gone = box.get();
    EXPECT_TRUE(COpBox::IsLive(gone));
    EXPECT_TRUE(COpBox::IsLive(copy.get()));
    EXPECT_GT(copy->Serial(), box->Serial());
    box.reset();
    EXPECT_FALSE(COpBox::IsLive(gone));
    EXPECT_EQ(COpBox::LiveCount(), before + 1);
}

// Finding

TEST(OpBox, AButtonIsFoundByTheNameThatIsShownInputsFirst) {
    COpBox box;
    Read(box, kLayers);
    EXPECT_EQ(box.FindButton("layer2"), box.inputs[2].get());
    EXPECT_EQ(box.FindButton("base"), box.inputs[0].get());
    EXPECT_EQ(box.FindButton("out"), box.outputs[0].get());
    for (const char* name : {"layer", "layer4", "Base", "", "bas"})
        EXPECT_EQ(box.FindButton(name), nullptr) << name;
}

TEST(OpBox, OfTwoInputsWithOneNameTheFirstIsFound) {
    COpBox box;
    Read(box, "input a { float { 0 0 1 0 %g } } input a { float { 0 0 1 0 %g } }");
    box.RenumberInputs();
    EXPECT_EQ(box.inputs[1]->instance, 2);
    EXPECT_THAT(InputNames(box), ElementsAre("a", "a"));
    EXPECT_EQ(box.FindButton("a"), box.inputs[0].get());
    EXPECT_EQ(box.CountInputsNamed("a"), 2);
}

TEST(OpBox, PositionsAreCountedOnEachSide) {
    COpBox box;
    Read(box, kLayers);
    EXPECT_EQ(box.IndexOfButton(*box.inputs[3]), 3U);
    EXPECT_EQ(box.IndexOfButton(*box.outputs[1]), 1U);
    EXPECT_EQ(box.CountInputsNamed("layer"), 3);
    EXPECT_EQ(box.CountInputsNamed("layer1"), 0);
    EXPECT_EQ(box.CountInputsNamed("out"), 0) << "outputs do not count";
}

// Adding and removing

TEST(OpBox, ACopyAboveTakesTheNumberOfItsOriginal) {
    COpBox box;
    Read(box, kLayers);
    COpButton& original = *box.inputs[2];
    COpButton* copy = box.CopyButton(original, true);
    EXPECT_EQ(copy, box.inputs[2].get());
    EXPECT_EQ(copy->DisplayName(), "layer2");
    EXPECT_EQ(original.DisplayName(), "layer3");
    EXPECT_THAT(InputNames(box), ElementsAre("base", "layer1", "layer2", "layer3", "layer4"));
}

TEST(OpBox, ACopyBelowFollowsItsOriginal) {
    COpBox box;
    Read(box, kLayers);
    COpButton& original = *box.inputs[3];
    COpButton* copy = box.CopyButton(original, false);
    EXPECT_EQ(copy, box.inputs[4].get());
    EXPECT_EQ(copy->DisplayName(), "layer4");
    EXPECT_EQ(original.DisplayName(), "layer3");
}

TEST(OpBox, ACopiedButtonHasTheValuesAndTheCastButNoConnection) {
    COpBox box;
    Read(box, kLayers);
    COpBox other;
    Read(other, kLayers);
    COpButton& original = *box.inputs[1];
    static_cast<COpValueFloat&>(*original.values[0]).value = 0.125F;
    original.Connect(*other.outputs[0]);
    const COpButton* copy = box.CopyButton(original, false);
    EXPECT_TRUE(copy->connections.Empty());
    EXPECT_EQ(copy->owner, &box);
    EXPECT_EQ(copy->ValueText(), "0.125");
    EXPECT_TRUE(original.connections.Contains(*other.outputs[0]));
    original.SetCast(1);
    EXPECT_EQ(box.CopyButton(original, true)->CurrentType(), "rgb");
}

TEST(OpBox, DeletingAnInstanceRenumbersTheRest) {
    COpBox box;
    Read(box, kLayers);
    COpButton& third = *box.inputs[3];
    box.DeleteButton(*box.inputs[2]);
    EXPECT_THAT(InputNames(box), ElementsAre("base", "layer1", "layer2"));
    EXPECT_EQ(third.DisplayName(), "layer2");
}

TEST(OpBox, DeletingAButtonCutsItsConnection) {
    COpBox box;
    Read(box, kLayers);
    COpBox other;
    Read(other, kLayers);
    box.inputs[2]->Connect(*other.outputs[0]);
    box.DeleteButton(*box.inputs[2]);
    EXPECT_TRUE(other.outputs[0]->connections.Empty());
}

TEST(OpBox, TheLastInstanceMayBeDeleted) {
    COpBox box;
    Read(box, "vinput layer { float { 0 0 1 0 %g } }");
    box.DeleteButton(*box.inputs[0]);
    EXPECT_THAT(box.inputs, IsEmpty());
}

TEST(OpBox, AButtonOfAnotherBoxIsNeitherCopiedNorDeleted) {
    COpBox box;
    Read(box, kLayers);
    COpBox other;
    Read(other, kLayers);
    EXPECT_EQ(box.CopyButton(*other.inputs[1], true), nullptr);
    box.DeleteButton(*other.inputs[1]);
    box.DeleteButton(*box.outputs[0]);
    EXPECT_EQ(box.inputs.size() + box.outputs.size(), 6U);
    EXPECT_EQ(other.inputs.size(), 4U);
}

TEST(OpBox, NumbersStartAgainWhereTheNameChanges) {
    COpBox box;
    Read(box,
         "vinput a { vinstances 2 float { 0 0 1 0 %g } } vinput b { float { 0 0 1 0 %g } }\n"
         "vinput a { vinstances 2 float { 0 0 1 0 %g } }");
    box.RenumberInputs();
    EXPECT_THAT(InputNames(box), ElementsAre("a1", "a2", "b1", "a1", "a2"));
    box.DeleteButton(*box.inputs[2]);
    EXPECT_THAT(InputNames(box), ElementsAre("a1", "a2", "a3", "a4"));
}

TEST(OpBox, ClearingTheButtonsCutsAllConnections) {
    COpBox box;
    Read(box, kLayers);
    COpBox other;
    Read(other, kLayers);
    box.inputs[0]->Connect(*other.outputs[0]);
    other.inputs[0]->Connect(*box.outputs[0]);
    box.ClearButtons();
    EXPECT_THAT(box.inputs, IsEmpty());
    EXPECT_THAT(box.outputs, IsEmpty());
    EXPECT_TRUE(other.inputs[0]->connections.Empty());
    EXPECT_TRUE(other.outputs[0]->connections.Empty());
}

}  // namespace
}  // namespace tavrin
