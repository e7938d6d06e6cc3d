// SPDX-License-Identifier: Apache-2.0
// Undo and redo of a document.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "document/Change.h"
#include "document/DeskFrame.h"
#include "document/NetworkState.h"

namespace tavrin {

class CTvDoc;

// The oldest steps beyond either are forgotten, but never the last one.
struct HistoryLimits {
    size_t steps = 10000;
    size_t bytes = size_t{64} << 20;
};

// Owned by its document, if that keeps a history; those that are read for a moment, and the batch program's,
// do not. It holds a shadow of all that may change. At the end of an act it compares what the act has named
// with the shadow and keeps, as a step, the former state of what differs. To undo is to exchange the two
// states, and so is to redo: nothing is inverted, and nothing is read from a text. Boxes and inputs that
// leave the network are parked, and come back as the same objects. Who shows the document hears of both as of
// any edit. Main thread only; nothing here can fail.
class EditHistory {
  public:
    // Begins with the document as it stands, which counts as saved unless it is modified.
    explicit EditHistory(CTvDoc& document, HistoryLimits limits = {});
    EditHistory(const EditHistory&) = delete;
    EditHistory& operator=(const EditHistory&) = delete;
    ~EditHistory();

    // For `Edits`: an act has ended. One that joins the run of the step before becomes part of that.
    void Commit(const Change& change);
    // For `Edits`: what leaves the network, before its act ends.
    void Park(std::unique_ptr<COpBox> box);
    void Park(std::unique_ptr<COpButton> button);

    // The document's boxes are about to be destroyed all at once.
    void Forget();
    // Another document has taken its place.
    void DocumentReplaced();
    void DocumentSaved() { m_saved = m_place; }
    void NeverSaved() { m_saved.reset(); }
    // Whether nothing that counts as a change of the document lies between here and where it was saved.
    bool IsAtSaved() const;

    // What is typed or stepped from here on is a step of its own.
    void EndRun() { m_runGoesOn = false; }

    // The steps from the oldest on; those before `Place` are done, the others undone.
    size_t Count() const { return m_steps.size(); }
    size_t Place() const { return m_place; }
    const std::string& Name(size_t step) const;
    size_t Bytes() const { return m_bytes; }
    // Neither while an act goes on.
    bool CanUndo() const;
    bool CanRedo() const;

    // Nothing happens where there is no such step.
    void Undo();
    void Redo();
    // Undoes or redoes until that many steps are done.
    void GoTo(size_t place);

  private:
    struct ButtonShadow {
        COpButton* button = nullptr;
        ButtonState state;
        ButtonWires wires;
    };
    struct BoxShadow {
        BoxState state;
        std::vector<ButtonShadow> inputs;
        std::vector<ButtonShadow> outputs;
    };
    struct ParkedBox {
        std::unique_ptr<COpBox> box;
        BoxShadow shadow;
        COpBox* above = nullptr;  // that it lay right below; null for the top
    };
    struct ParkedButton {
        std::unique_ptr<COpButton> button;
        ButtonShadow shadow;
    };
    struct InputsChange {
        COpBox* box = nullptr;
        std::vector<COpButton*> order;
        std::vector<ParkedButton> absent;
    };
    template <typename Object, typename State>
    struct StateChange {
        Object* object = nullptr;
        State state;
    };
    struct OptionChange {
        std::string name;
        std::optional<std::string> value;
    };
    struct FrameChange {
        int number = 0;
        std::optional<DeskFrame> frame;
    };
    // The other state of all that differs, before the step while it is done, after it while it is undone.
    struct Step {
        std::string act;
        bool joins = false;            // of a run, which more may join
        bool marks = false;            // counts as a change of the document
        std::vector<COpBox*> present;  // stand in the network now, and not in the other state
        std::vector<ParkedBox> absent;
        std::vector<InputsChange> inputs;
        std::vector<StateChange<COpBox, BoxState>> boxes;
        std::vector<StateChange<COpButton, ButtonState>> buttons;
        std::vector<StateChange<COpButton, ButtonWires>> wires;
        std::vector<OptionChange> options;
        std::optional<SettingsState> settings;
        std::vector<FrameChange> frames;
        size_t bytes = 0;

        bool HasNetwork() const;  // boxes, inputs or wires that are others
        bool IsEmpty() const;
        size_t CountBytes() const;
    };

    static ButtonShadow ShadowOf(COpButton& button);
    static BoxShadow ShadowOf(const COpBox& box);
    BoxShadow* FindShadow(const COpBox& box);
    ButtonShadow* FindShadow(const COpButton& button);

    void RecordMembership(const Change& change, Step& step);
    void RecordBox(COpBox& box, bool isReshaped, Step& step);
    void RecordInputs(COpBox& box, BoxShadow& shadow, Step& step);
    void RecordButton(ButtonShadow& shadow, Step& step);
    void RecordWires(Step& step);
    void RecordOptions(Step& step);
    void RecordSettings(Step& step);
    void RecordFrames(Step& step);
    void Keep(Step step);
    bool Joins(const Step& step) const;
    void Join(Step& step);
    void DropWhatIsTheSame(Step& step);
    void CutBranch();
    void KeepLimits();

    Change Swap(Step& step);
    void SwapMembership(Step& step, Change& change);
    std::vector<ParkedBox> TakeOut(const std::vector<COpBox*>& boxes, Change& change);
    std::vector<COpBox*> BringBack(std::vector<ParkedBox>& boxes, Change& change);
    void SwapInputs(InputsChange& inputs, Change& change);
    void SwapStates(Step& step, Change& change);
    void SwapOptions(Step& step, Change& change);
    void SwapFrames(Step& step, Change& change);
    void Tell(const Change& change);
    std::vector<COpBox*> Stack() const;

    CTvDoc& m_document;
    const HistoryLimits m_limits;
    std::unordered_map<const COpBox*, BoxShadow> m_shadows;
    std::vector<COpBox*> m_stack;  // at the last change of which boxes there are
    OptionsState m_options;
    SettingsState m_settings;
    DeskFrames m_frames;
    std::unordered_map<const COpBox*, std::unique_ptr<COpBox>> m_leavingBoxes;
    std::unordered_map<const COpButton*, std::unique_ptr<COpButton>> m_leavingButtons;
    std::deque<Step> m_steps;
    size_t m_place = 0;  // how many are done
    size_t m_bytes = 0;
    std::optional<size_t> m_saved = 0;
    bool m_runGoesOn = false;
};

}  // namespace tavrin
