// SPDX-License-Identifier: Apache-2.0
// Outputs that are probed while a user does anything anywhere: of the document nothing changes by it.
#include <random>

#include "render/Probe.h"
#include "support/DeskWalkTest.h"
#include "support/NetworkPrint.h"

namespace tavrin {
namespace {

constexpr int kSteps = 600;
constexpr int kLeastShown = 100;

class ProbeWalk : public test::DeskWalkTest {
  protected:
    ProbeWalk() : random(GetParam()) {
        Site& site = host.GetSite();
        host.AddOperator("Viewer",
                         "input seen { float { 0 0 1 0 %g } rgb { 0 0 0 %g } }\n"
                         "codegen.main-body append\nseen(seen);\n<<EOT>>\n");
        site.settingsLibrary = site.directories.libName;
        site.probes = {host.Directory().Write("any.tvn", "opdesk { opbox { filename Viewer wid 1 } }")};
    }
    COpButton* AnyOutput() {
        std::vector<COpButton*> outputs;
        for (const auto& box : document.m_boxes) {
            for (const auto& output : box->outputs) outputs.push_back(output.get());
        }
        if (outputs.empty()) return nullptr;
        return outputs[std::uniform_int_distribution<size_t>(0, outputs.size() - 1)(random)];
    }
    std::string Everything() {
        return test::PrintNetwork(document) + document.Snapshot() + (document.IsModified() ? "modified" : "");
    }
    // Whether the output could be shown. The probe goes at once: the walk counts all boxes that there are.
    bool Show(COpButton& output) {
        const std::string before = Everything();
        bool isShown = false;
        {
            Probe probe(document, host);
            isShown = probe.Show(output) && probe.Generate("walk", siteCodeGen).has_value();
        }
        EXPECT_EQ(Everything(), before) << output.owner->BoxTitleWid() << " " << output.DisplayName();
        return isShown;
    }

    std::mt19937 random;
};

TEST_P(ProbeWalk, ChangesNothingOfTheDocument) {
    walk.emplace(test::DeskWalk::Ground{document, desk, viewport, *this, operators}, GetParam());
    int shown = 0;
    for (int step = 1; step <= kSteps && !HasFailure(); ++step) {
        walk->Step();
        Look();
        if (invariants.HidesACycle()) CutOneSidedWires();
        COpButton* output = AnyOutput();
        if (output != nullptr && Show(*output)) ++shown;
        if (HasFailure()) ADD_FAILURE() << "seed " << GetParam() << ", step " << step << ": " << walk->Name();
    }
    EXPECT_GT(shown, kLeastShown) << "the walk came nowhere";
}

INSTANTIATE_TEST_SUITE_P(Seeds, ProbeWalk, testing::Values(1U, 2U, 3U));

}  // namespace
}  // namespace tavrin
