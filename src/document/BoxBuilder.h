// SPDX-License-Identifier: Apache-2.0
// Gives a box what a document says of it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "document/DocumentForm.h"

namespace tavrin {

class COpBox;
class COpButton;
class Report;

// Hears of a button of the file that the definition does not have: its place in the text, and the words for
// it.
using TellUnknownButton = std::function<void(size_t place, const std::string& message)>;

// For one box that is as its definition made it. The file's buttons are matched to those of the definition:
// inputs by name or former name, looking forward only, and outputs by position.
// Who wants to hear of unknown buttons gets a box with all buttons of the file: inputs are found in any
// order, and what the definition does not have stands where the file has it, as a stray button.
class BoxBuilder {
  public:
    // All outlive it. Alerts name the form's file.
    BoxBuilder(COpBox& box, const DocumentForm& form, Report& report, TellUnknownButton tellUnknown = {})
        : m_box(box), m_form(form), m_report(report), m_tellUnknown(std::move(tellUnknown)) {}

    // False, reported, at a button that the definition does not have, unless those are wanted. A record that
    // is not whole gives the box what there is of it.
    bool Build(const BoxRecord& record);

    // The inputs and outputs of the file, in its order, as buttons of the box; for who wants unknown ones.
    const std::vector<COpButton*>& Inputs() const { return m_inputs; }
    const std::vector<COpButton*>& Outputs() const { return m_outputs; }

  private:
    void Take(const BoxSettingRecord& setting);
    bool Build(const ButtonRecord& record);
    COpButton* FindInput(const ButtonRecord& record);
    size_t PlaceOfInput(std::string_view name);
    bool IsOrWasAnInput(std::string_view name);
    void PassToTwin();
    COpButton* NextOutput(const ButtonRecord& record);
    COpButton* AddStray(const ButtonRecord& record, size_t place, const std::string& message);
    void ChooseCast(COpButton& button, const ButtonRecord& record);
    void Alert(size_t place, const std::string& message);

    COpBox& m_box;
    const DocumentForm& m_form;
    Report& m_report;
    TellUnknownButton m_tellUnknown;
    std::vector<COpButton*> m_inputs;
    std::vector<COpButton*> m_outputs;
    size_t m_inputCursor = 0;
    size_t m_outputCursor = 0;
    size_t m_strayPlace = 0;                  // among the inputs, behind the one that was built last
    const COpButton* m_inputBuilt = nullptr;  // the input that was given something last
    // Of the definition's inputs, former ones among them; made when it is asked for.
    std::optional<std::unordered_set<std::string_view>> m_names;
    std::unordered_set<std::string_view> m_namesSeen;
    std::unordered_set<const COpButton*> m_built;
};

// Settings and values of a record, whichever of them are there and the button has.
void TakeButtonRecord(COpButton& button, const ButtonRecord& record);

}  // namespace tavrin
