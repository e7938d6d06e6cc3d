// SPDX-License-Identifier: Apache-2.0
// Ten thousand edits by the pointer of a user who does anything anywhere, after each of which the desk is
// whole.
#include "support/DeskWalkTest.h"

namespace tavrin {
namespace {

constexpr int kEdits = 2000;  // by the pointer, of one walk
constexpr int kLookCloser = 100;

class DeskWalk : public test::DeskWalkTest {};

TEST_P(DeskWalk, LeavesTheDeskWholeAfterEveryEdit) {
    walk.emplace(test::DeskWalk::Ground{document, desk, viewport, *this, operators}, GetParam());
    int wired = 0;
    for (int step = 1; walk->PointerEdits() < kEdits && !HasFailure(); ++step) {
        walk->Step();
        Look();
        if (invariants.HidesACycle()) CutOneSidedWires();
        if (step % kLookCloser == 0) LookCloser();
        EXPECT_EQ(host.Sink().log.find("WARNING: m_"), std::string::npos) << host.Sink().log;
        wired = std::max(wired, static_cast<int>(invariants.Wired().size()));
        if (HasFailure()) ADD_FAILURE() << "seed " << GetParam() << ", step " << step << ": " << walk->Name();
    }
    EXPECT_GT(wired, 10) << "the walk came nowhere";
    EXPECT_GT(walk->MenusOpened(), kEdits / 10);
    EXPECT_GT(walk->ItemsChosen(), kEdits / 20);
}

INSTANTIATE_TEST_SUITE_P(Seeds, DeskWalk, testing::Values(1U, 2U, 3U, 4U, 5U));

}  // namespace
}  // namespace tavrin
