// SPDX-License-Identifier: Apache-2.0
#include "forms/FormCommands.h"

#include <functional>

#include "forms/FormButtons.h"
#include "forms/FormFields.h"
#include "forms/FormFrame.h"
#include "forms/FormVisitor.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

// As the dispatch of actions compares them.
bool RunsCommand(const FormAction& action) {
    return Trim(action.to) == "form" && Trim(action.message) == "system";
}

// Hands on every action that runs a command, with what the user knows its widget by and what it runs.
class CommandFinder : public FormVisitor {
  public:
    using Found = std::function<void(FormAction& action, const std::string& widget, const std::string& runs)>;
    explicit CommandFinder(Found found) : m_found(std::move(found)) {}

    void Visit(CFormFrame& frame) override {
        for (const auto& child : frame.children) child->Accept(*this);
    }
    void Visit(CFormLabel&) override {}
    void Visit(CFormXField&) override {}
    void Visit(CFormXYField&) override {}
    void Visit(CFormXYZField&) override {}
    void Visit(CFormStringInput&) override {}
    void Visit(CFormButton& button) override {
        Take(button.action, "button " + button.label, button.action.argument);
    }
    void Visit(CFormLedButton& button) override { Take(button.action, "button " + button.label, "1 or 0"); }
    void Visit(CFormChooser& chooser) override {
        std::string lines;
        for (const std::string& line : chooser.lines) lines += (lines.empty() ? "" : " | ") + line;
        Take(chooser.action, "chooser " + chooser.envname, lines);
    }
    void Visit(CFormOkField& field) override {
        Take(field.ok, "button OK", field.ok.argument);
        Take(field.defaults, "button Default", field.defaults.argument);
    }

  private:
    void Take(FormAction& action, const std::string& widget, const std::string& runs) {
        if (RunsCommand(action)) m_found(action, widget, runs);
    }

    Found m_found;
};

}  // namespace

std::vector<std::string> HoldFormCommands(CFormFrame& form, size_t first) {
    std::vector<std::string> lines;
    CommandFinder finder([&lines](FormAction& action, const std::string& widget, const std::string& runs) {
        action.isHeld = true;
        lines.push_back(widget + ": " + runs);
    });
    for (size_t child = first; child < form.children.size(); ++child) form.children[child]->Accept(finder);
    return lines;
}

void ReleaseFormCommands(CFormFrame& form) {
    CommandFinder finder(
        [](FormAction& action, const std::string&, const std::string&) { action.isHeld = false; });
    finder.Visit(form);
}

}  // namespace tavrin
