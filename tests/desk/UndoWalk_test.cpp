// SPDX-License-Identifier: Apache-2.0
// A user who does anything anywhere, and takes it back: every place to which an undo or a redo leads is the
// network that stood there, to the bit.
#include <optional>

#include "desk/FrameGeometry.h"
#include "sliders/ArgumentEdits.h"
#include "support/DeskWalkTest.h"
#include "support/HistoryPrints.h"

namespace tavrin {
namespace {

constexpr int kEdits = 2000;  // by the pointer, of one walk
constexpr int kBetweenTravels = 15;
constexpr const char* kTune = "Tune";

class UndoWalk : public test::DeskWalkTest {
  protected:
    UndoWalk() : m_random(GetParam()) { document.KeepHistory(); }

    EditHistory& History() { return *document.History(); }
    void SaveAndOpenAgain() override {
        DeskWalkTest::SaveAndOpenAgain();
        prints.Forget();
    }

    void Travel() {
        const size_t place = Below(History().Count() + 1);
        desk.GoToStep(place);
        ASSERT_EQ(History().Place(), place);
        if (!prints.ExpectWhatStoodHere()) return;
        ++travels;
        branches += place < History().Count() ? 1 : 0;
    }
    // Edits that no pointer makes: values, names, options, settings.
    void Tune() {
        if (document.m_boxes.empty()) return;
        auto box = document.m_boxes.begin();
        std::advance(box, Below(document.m_boxes.size()));
        auto& inputs = (*box)->inputs;
        if (inputs.empty()) return;
        COpButton& button = *inputs[Below(inputs.size())];
        const EditScope edit(document, kTune);
        switch (Below(7)) {
            case 0:
                SetArgumentName(document, button, "name" + std::to_string(Below(100)));
                break;
            case 1:
                SetComment(document, button, "comment" + std::to_string(Below(100)));
                break;
            case 2:
                document.edits.OptionsChanged();
                document.m_renderOptions["option" + std::to_string(Below(3))] = std::to_string(Below(3));
                if (Below(4) == 0) document.m_renderOptions.erase("option1");
                break;
            case 3:
                document.edits.SettingsChanged();
                document.customshaderhelp = std::to_string(Below(3));
                document.exportOptions.saveSource = static_cast<int>(Below(2));
                document.exportOptions.tavrnPath = Below(2) == 0 ? "/a/walk.tvn" : "/b/walk.tvn";
                document.toolbar = {std::to_string(Below(3))};
                document.showvarnames = static_cast<int>(Below(2));
                break;
            case 4:
                TuneFrames();
                break;
            default:
                document.edits.ButtonTuned(button);
                TuneValue(button);
                button.pin = static_cast<int>(Below(2));
                break;
        }
    }
    size_t Below(size_t count) { return m_random() % count; }

    test::HistoryPrints prints{document, kTune};
    int travels = 0;
    int branches = 0;

  private:
    void TuneFrames() {
        const auto any = [this] { return static_cast<float>(Below(800)); };
        const int number = static_cast<int>(Below(6)) + 1;
        switch (Below(7)) {
            case 0:
                desk.FrameSelected({any(), any()});
                break;
            case 1:
                desk.AddNote({any(), any()});
                break;
            case 2:
                desk.SetFrameText(number, std::string(Below(4), 'x'));
                break;
            case 3:
                desk.SetFrameColor(number, static_cast<int>(Below(DeskFrame::kColors)));
                break;
            case 4:
                desk.ResizeFrame(number, Below(kFrameCorners), {any(), any()});
                break;
            case 5:
                desk.DeleteFrame(number);
                break;
            default:
                desk.TakeAlong();
                desk.MoveSelectedBoxes(any() - 400, any() - 400);
                break;
        }
    }
    void TuneValue(COpButton& button) {
        for (const auto& value : button.values) {
            if (auto* number = dynamic_cast<COpValueFloat*>(value.get())) {
                number->value = static_cast<float>(Below(1000)) / 7;
                number->integer = static_cast<int>(Below(2));
            } else if (auto* colour = dynamic_cast<COpValueRgb*>(value.get())) {
                colour->g = -static_cast<float>(Below(2)) * 0.0F;  // the sign of zero is state as well
            } else if (auto* text = dynamic_cast<COpValueString*>(value.get())) {
                text->value = std::string(Below(3), 'x');
            }
        }
    }

    std::mt19937 m_random;
};

TEST_P(UndoWalk, EveryPlaceIsTheNetworkThatStoodThere) {
    walk.emplace(test::DeskWalk::Ground{document, desk, viewport, *this, operators}, GetParam());
    desk.OnInitialUpdate();
    prints.Note(0);
    for (int step = 1; walk->PointerEdits() < kEdits && !HasFailure(); ++step) {
        const size_t before = History().Place();
        walk->Step();
        if (document.lock == 0 && step % 3 == 0) Tune();
        Look();
        if (invariants.HidesACycle()) CutOneSidedWires();
        prints.Note(before);
        if (step % kBetweenTravels == 0 && document.lock == 0) {
            Travel();
            invariants.TakeAsItIs();
            Look();
            ExpectLaidOut();
            ExpectListed();
        }
        if (HasFailure()) ADD_FAILURE() << "seed " << GetParam() << ", step " << step << ": " << walk->Name();
    }
    RecordProperty("travels", travels);
    RecordProperty("branches", branches);
    EXPECT_GT(travels, 100);
    EXPECT_GT(branches, 50);
    const size_t boxes = document.m_boxes.size() + desk.m_pendingBoxes.size() + desk.m_clipboardBoxes.size();
    EXPECT_EQ(COpBox::LiveCount(), boxes) << "a parked box counts as live";
}

INSTANTIATE_TEST_SUITE_P(Seeds, UndoWalk, testing::Values(11U, 12U, 13U, 14U, 15U));

}  // namespace
}  // namespace tavrin
