// SPDX-License-Identifier: Apache-2.0
// Gives a box what a document says of it.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "document/DocumentForm.h"

namespace tavrin {

class COpBox;
class COpButton;
class Report;

// For one box that is as its definition made it. The file's buttons are matched to those of the definition:
// inputs by name, looking forward only, and outputs by position.
class BoxBuilder {
  public:
    // All outlive it. Alerts name the form's file.
    BoxBuilder(COpBox& box, const DocumentForm& form, Report& report)
        : m_box(box), m_form(form), m_report(report) {}

    // False, reported, at a button that the definition does not have. A record that is not whole gives the
    // box what there is of it.
    bool Build(const BoxRecord& record);

  private:
    void Take(const BoxSettingRecord& setting);
    bool Build(const ButtonRecord& record);
    COpButton* FindInput(const ButtonRecord& record);
    void PassToTwin();
    COpButton* NextOutput(const ButtonRecord& record);
    void ChooseCast(COpButton& button, const ButtonRecord& record);
    void Alert(size_t place, const std::string& message);

    COpBox& m_box;
    const DocumentForm& m_form;
    Report& m_report;
    size_t m_inputCursor = 0;
    size_t m_outputCursor = 0;
    const COpButton* m_inputBuilt = nullptr;  // the input that was given something last
    std::set<std::string_view> m_namesSeen;
};

}  // namespace tavrin
