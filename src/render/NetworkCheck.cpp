// SPDX-License-Identifier: Apache-2.0
#include "render/NetworkCheck.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_set>
#include <utility>

#include "document/DocumentForm.h"
#include "document/TvDoc.h"
#include "library/OpRegistry.h"
#include "library/Placeholder.h"
#include "text/Report.h"
#include "text/StoredText.h"

namespace tavrin {

namespace {

using Severity = Finding::Severity;

std::string NameOf(const COpButton& button) {
    return button.owner->BoxTitleWid() + " " + button.DisplayName();
}

// Collects the findings of one network.
class NetworkCheck {
  public:
    NetworkCheck(const CTvDoc& document, Report& report)
        : m_document(document), m_names{document.preparedVariables, &report} {
        for (const auto& box : document.m_boxes) m_boxes.push_back(box.get());
        std::stable_sort(m_boxes.begin(), m_boxes.end(),
                         [](const COpBox* left, const COpBox* right) { return left->wid < right->wid; });
    }

    std::vector<Finding> Run() {
        FindCircles();
        for (COpBox* box : m_boxes) {
            if (box->IsPlaceholder()) {
                Add(Severity::kWarning, *box, {},
                    "is a placeholder, so no code is generated for it: " + OneLine(box->placeholder->reason));
                continue;
            }
            CheckBox(*box);
            for (const auto& input : box->inputs) {
                if (!IsStray(*input)) CheckInput(*input);
            }
            for (const auto& output : box->outputs) {
                if (!IsStray(*output)) CheckOutput(*output);
            }
        }
        CheckInstances();
        return std::move(m_findings);
    }

  private:
    void Add(Severity severity, const COpBox& box, const std::string& button, const std::string& message) {
        m_findings.push_back({severity, box.BoxTitleWid(), button, message});
    }
    void Add(Severity severity, const COpButton& button, const std::string& message) {
        Add(severity, *button.owner, button.DisplayName(), message);
    }

    void FindCircles() {
        const std::vector<COpBox*> ordered = m_document.OrderBoxes();
        m_generated.insert(ordered.begin(), ordered.end());
    }

    void CheckBox(const COpBox& box) {
        if (!m_generated.contains(&box)) {
            Add(Severity::kError, box, {}, "is part of a circle of wires, so no code is generated for it");
        }
        const auto isWired = [](const auto& button) { return !button->connections.Empty(); };
        const bool feeds = std::any_of(box.outputs.begin(), box.outputs.end(), isWired);
        const bool isFed = std::any_of(box.inputs.begin(), box.inputs.end(), isWired);
        if (!box.outputs.empty() && !feeds) {
            Add(Severity::kWarning, box, {}, "feeds nothing; its code is generated all the same");
        }
        if (box.outputs.empty() && !box.inputs.empty() && !isFed) {
            Add(Severity::kWarning, box, {}, "nothing is wired to it");
        }
    }

    bool IsStray(const COpButton& button) {
        if (button.stray == nullptr) return false;
        Add(Severity::kWarning, button,
            "is no button of its operator; it is kept, and no code is made of it");
        return true;
    }

    void CheckInput(COpButton& input) {
        if (const COpButton* feeder = input.Feeder()) {
            const COpButton& source = *feeder;
            if (source.CurrentType() != input.CurrentType() && !source.values.empty()) {
                Add(Severity::kWarning, input,
                    "takes " + input.CurrentType() + " and is fed " + source.CurrentType() + " by " +
                        NameOf(source));
            }
            return;
        }
        if (input.arg != 0 && input.fixedtext.empty()) return CheckArgument(input);
        if (input.MacroValue(m_names).empty())
            Add(Severity::kError, input, "nothing is wired to it, and it has no value");
    }

    void CheckArgument(COpButton& input) {
        const std::string name = input.ArgumentName(m_names);
        const auto [first, isNew] = m_arguments.emplace(name, &input);
        if (isNew) return;
        const bool sameType = first->second->CurrentType() == input.CurrentType();
        Add(sameType ? Severity::kWarning : Severity::kError, input,
            "is the argument " + name + (sameType ? ", as is " : " of another type than ") +
                NameOf(*first->second));
    }

    void CheckOutput(COpButton& output) {
        if (output.tieback.empty() || output.owner->FindButton(output.tieback) != nullptr) return;
        Add(Severity::kError, output, "passes through " + output.tieback + ", which is not there any more");
    }

    void CheckInstances() {
        std::map<std::string, int> counts;
        for (const COpBox* box : m_boxes) {
            if (++counts[box->filename] != box->maxinstances + 1 || box->maxinstances == 0) continue;
            Add(Severity::kWarning, *box, {},
                "is one more than the " + std::to_string(box->maxinstances) + " that " + box->filename +
                    " allows on a desk");
        }
    }

    const CTvDoc& m_document;
    NameSource m_names;
    std::vector<COpBox*> m_boxes;
    std::unordered_set<const COpBox*> m_generated;
    std::map<std::string, const COpButton*> m_arguments;
    std::vector<Finding> m_findings;
};

}  // namespace

std::string Finding::Text() const {
    std::string text = severity == Severity::kError ? "error: " : "warning: ";
    if (!box.empty()) text += box + (button.empty() ? "" : " " + button) + ": ";
    return text + message;
}

std::vector<Finding> CheckNetwork(const CTvDoc& document, Report& report) {
    return NetworkCheck(document, report).Run();
}

std::vector<Finding> CheckDocumentForm(const DocumentForm& form, const CTvDoc& document,
                                       const COpRegistry& registry) {
    std::vector<Finding> findings;
    std::set<std::string> seen;
    const auto add = [&](Severity severity, const std::string& message) {
        if (seen.insert(message).second) findings.push_back({severity, {}, {}, message});
    };
    // Those the network's own findings tell of.
    std::set<std::string> placeholders;
    for (const auto& box : document.m_boxes) {
        if (box->IsPlaceholder()) placeholders.insert(box->filename);
    }
    const auto isMissing = [&](const std::string& name) {
        return registry.FindByName(name) == nullptr && registry.MayHaveBeenCalled(name).empty() &&
               !placeholders.contains(name);
    };
    const auto checkDesk = [&](const DeskRecord& desk) {
        for (const auto& item : desk.items) {
            const auto* box = std::get_if<BoxRecord>(&item);
            if (box == nullptr) continue;
            const std::string name(box->operatorName);
            if (isMissing(name)) add(Severity::kError, "the library has no operator " + name);
        }
    };
    const auto checkOptions = [&](const RenderOptionsRecord& section) {
        for (const RenderOptionRecord& option : section.options) {
            const std::string name(option.name);
            if (!document.m_renderOptions.contains(name))
                add(Severity::kWarning, "the form has no render option " + name);
        }
    };
    for (const SectionRecord& section : form.sections) {
        if (const auto* desk = std::get_if<DeskRecord>(&section)) checkDesk(*desk);
        if (const auto* options = std::get_if<RenderOptionsRecord>(&section)) checkOptions(*options);
    }
    return findings;
}

}  // namespace tavrin
