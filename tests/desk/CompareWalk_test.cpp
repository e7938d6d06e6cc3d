// SPDX-License-Identifier: Apache-2.0
// Networks that anything was done to: what is told to differ is what was done, and a file differs from what
// it was written of in nothing.
#include <functional>
#include <map>
#include <random>
#include <set>

#include "render/HistoryDocument.h"
#include "render/NetworkCompare.h"
#include "support/DeskWalkTest.h"
#include "text/Numbers.h"

namespace tavrin {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAreArray;

std::vector<std::string> TextsOf(const std::vector<Difference>& differences) {
    std::vector<std::string> texts;
    for (const Difference& difference : differences) texts.push_back(difference.text);
    return texts;
}

// A random network and random edits of it, each of which adds the words for itself.
class KnownEdits : public test::DocumentTest, public testing::WithParamInterface<uint32_t> {
  protected:
    KnownEdits() {
        for (int i = 0; i < kBoxes; ++i) Add(NewBox(Below(3)));
        for (const auto& box : document.m_boxes) WireFromEarlier(*box);
        document.m_renderOptions = {{"A", "1"}, {"B", "2"}};
    }

    size_t Below(size_t count) { return random() % count; }

    std::unique_ptr<COpBox> NewBox(size_t kind) {
        constexpr const char* kNames[] = {"Noise", "Mix", "Paint"};
        constexpr const char* kDefinitions[] = {
            "input scale { float { 1 0 10 0 %g } xyz { 1 2 3 0 1 0 \"%g %g %g\" } }\n"
            "output result { float out }",
            "vinput layer { vinstances 3 float { 0.5 0 1 0 %g } }\noutput all { float out } "
            "output cover { float out }",
            "input tint { rgb { 1 1 1 \"%g %g %g\" } } input word { string { value oak } }\n"
            "output result { rgb out }"};
        auto box = test::MakeBox(kNames[kind], kDefinitions[kind], ++lastWid);
        // No two of them are alike: one that went is not one that came.
        box->inputs[0]->argname = "n" + std::to_string(lastWid);
        box->xypos[0] = 100.0F * static_cast<float>(lastWid);
        return box;
    }
    void WireFromEarlier(COpBox& box) {
        for (const auto& input : box.inputs) {
            COpBox& source = test::BoxAt(document, Below(document.m_boxes.size()));
            if (source.wid < box.wid && Below(2) == 0)
                input->Connect(*source.outputs[Below(source.outputs.size())]);
        }
    }

    static std::string NameOf(const COpButton& button) {
        return button.owner->BoxTitleWid() + " " + button.DisplayName();
    }
    // A box, or an input, that nothing was done to yet; null if there is none left.
    COpBox* FreshBox() {
        for (int tries = 0; tries < 50; ++tries) {
            COpBox& box = test::BoxAt(document, Below(document.m_boxes.size()));
            if (touched.insert(&box).second) return &box;
        }
        return nullptr;
    }
    COpButton* FreshInput() {
        COpBox* box = FreshBox();
        return box == nullptr ? nullptr : box->inputs[Below(box->inputs.size())].get();
    }

    void ChangeValue() {
        COpButton* input = FreshInput();
        if (input == nullptr) return;
        COpValue& value = *input->values[0];
        if (auto* number = dynamic_cast<COpValueFloat*>(&value)) {
            expected.push_back(NameOf(*input) + ": " + FormatG(static_cast<double>(number->value)) +
                               " -> 7.25");
            number->value = 7.25F;
        } else if (auto* colour = dynamic_cast<COpValueRgb*>(&value)) {
            expected.push_back(NameOf(*input) + ": 1 1 1 -> 1 0.5 1");
            colour->g = 0.5F;
        } else if (auto* text = dynamic_cast<COpValueString*>(&value)) {
            expected.push_back(NameOf(*input) + ": \"oak\" -> \"elm\"");
            text->value = "elm";
        }
    }
    void ChangeCast() {
        COpButton* input = FreshInput();
        if (input == nullptr || input->values.size() < 2) return;
        input->currentcast = 1;
        expected.push_back(NameOf(*input) + " cast: float -> xyz");
    }
    void ChangeArgument() {
        COpButton* input = FreshInput();
        if (input == nullptr) return;
        input->arg = 1;
        input->comments = "tuned";
        expected.push_back(NameOf(*input) + " argument: no -> yes");
        expected.push_back(NameOf(*input) + " comment: \"\" -> tuned");
    }
    void CutWire() {
        COpButton* input = FreshInput();
        if (input == nullptr || input->connections.Empty()) return;
        expected.push_back("wire " + NameOf(*input->connections.First()) + " -> " + NameOf(*input) + " went");
        input->Disconnect();
    }
    void AddInstance() {
        COpBox* box = FreshBox();
        if (box == nullptr || box->filename != "Mix") return;
        expected.push_back(NameOf(*box->CopyButton(*box->inputs.back(), false)) + " came");
    }
    void AddBox() {
        COpBox& box = Add(NewBox(Below(3)));
        touched.insert(&box);
        expected.push_back(box.BoxTitleWid() + " came");
    }
    void RemoveBox() {
        COpBox* box = FreshBox();
        if (box == nullptr) return;
        // What it feeds must not be touched by another edit.
        for (const auto& output : box->outputs) {
            for (const COpButton* fed : output->connections) {
                if (!touched.insert(fed->owner).second) return;
            }
        }
        expected.push_back(box->BoxTitleWid() + " went");
        for (const auto& output : box->outputs) {
            for (const COpButton* fed : output->connections)
                expected.push_back("wire " + NameOf(*output) + " -> " + NameOf(*fed) + " went");
        }
        touched.erase(box);
        document.m_boxes.remove_if([box](const auto& other) { return other.get() == box; });
    }
    void MoveBox() { test::BoxAt(document, Below(document.m_boxes.size())).xypos[0] += 10; }
    void ChangeOption() {
        auto& value = document.m_renderOptions["B"];
        if (value != "2") return;
        value = "3";
        expected.push_back("option B: 2 -> 3");
    }

    static constexpr int kBoxes = 60;
    std::mt19937 random{GetParam()};
    int lastWid = 0;
    std::set<const COpBox*> touched;
    std::vector<std::string> expected;
};

TEST_P(KnownEdits, AreExactlyWhatDiffers) {
    const NetworkPicture before = CaptureNetwork(document);
    const std::vector<std::function<void()>> edits = {
        [this] { ChangeValue(); }, [this] { ChangeCast(); },  [this] { ChangeArgument(); },
        [this] { CutWire(); },     [this] { AddInstance(); }, [this] { AddBox(); },
        [this] { RemoveBox(); },   [this] { MoveBox(); },     [this] { ChangeOption(); }};
    for (size_t count = Below(20); count > 0; --count) edits[Below(edits.size())]();
    EXPECT_THAT(TextsOf(CompareNetworks(before, CaptureNetwork(document))),
                UnorderedElementsAreArray(expected));
}

INSTANTIATE_TEST_SUITE_P(Seeds, KnownEdits, testing::Range(1U, 41U));

class CompareWalkTest : public test::DeskWalkTest {};

TEST_P(CompareWalkTest, AFileDiffersFromItsNetworkInNothing) {
    walk.emplace(test::DeskWalk::Ground{document, desk, viewport, *this, operators}, GetParam());
    HistoryReader reader(host, siteCodeGen);
    for (int step = 0; step < 120; ++step) {
        walk->Step();
        Look();
        if (step % 20 != 19) continue;
        // Only one of the two ends of a one-sided wire comes through a file.
        CutOneSidedWires();
        const std::string path = host.Directory().Write("walk.tvn", document.Snapshot());
        const HistoryDocument file = reader.Read(path, "walk");
        EXPECT_TRUE(file.isRead);
        EXPECT_THAT(file.notes, IsEmpty());
        EXPECT_THAT(TextsOf(CompareNetworks(file.network, reader.PictureOf(document))), IsEmpty())
            << walk->Name() << " at step " << step;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, CompareWalkTest, testing::Range(1U, 7U));

}  // namespace
}  // namespace tavrin
