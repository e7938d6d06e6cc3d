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
#include "library/TiebackEnds.h"
#include "site/Site.h"
#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

using Severity = Finding::Severity;
using Mend = Finding::Mend;

std::string NameOf(const COpButton& button) {
    return button.owner->BoxTitleWid() + " " + button.DisplayName();
}

std::vector<std::string> WordsOf(std::string_view text) {
    std::vector<std::string> words;
    while (!(text = Trim(text)).empty()) {
        const size_t end = std::min(text.find_first_of(" \t"), text.size());
        words.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return words;
}

// An output that the box has to write: its name in the code is no other button's.
bool IsWritten(const COpButton& output) {
    return output.tieback.empty() && output.fixedvalue.empty() && !output.IsUnknown();
}

std::vector<std::string> OutputBoxes(const Settings& settings) {
    std::string setting;
    return settings.GetSettingRaw(kOutputBoxesKey, setting) ? WordsOf(setting) : std::vector<std::string>();
}

// Collects the findings of one network.
class NetworkCheck {
  public:
    NetworkCheck(const CTvDoc& document, const Site& site)
        : m_document(document), m_site(site), m_names{document.preparedVariables, &site.report, &m_ends} {
        for (const auto& box : document.m_boxes) m_boxes.push_back(box.get());
        std::stable_sort(m_boxes.begin(), m_boxes.end(),
                         [](const COpBox* left, const COpBox* right) { return left->wid < right->wid; });
    }

    std::vector<Finding> Run() {
        FindCircles();
        CheckLibrary();
        CheckPicture();
        for (COpBox* box : m_boxes) {
            if (box->IsPlaceholder()) {
                Add(Severity::kWarning, *box, {},
                    "is a placeholder, so no code is generated for it: " + OneLine(box->placeholder->reason));
                continue;
            }
            if (box->muted != 0) {
                CheckMuted(*box);
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
    void Add(Severity severity, const COpBox& box, const std::string& button, const std::string& message,
             Mend mend = Mend::kNone) {
        m_findings.push_back({severity, box.BoxTitleWid(), button, message, mend});
    }
    void Add(Severity severity, const COpButton& button, const std::string& message,
             Mend mend = Mend::kNone) {
        Add(severity, *button.owner, button.DisplayName(), message, mend);
    }

    void CheckLibrary() {
        const std::string& used = m_site.directories.libName;
        const std::string& set = m_site.settingsLibrary;
        if (set.empty() || used.empty() || set == used || m_boxes.empty()) return;
        m_findings.push_back({Severity::kError,
                              {},
                              {},
                              "the network is of the library " + used +
                                  ", but the settings in force are those of " + set +
                                  ": start the program with TAVRN_LIB=" + used});
    }

    void CheckPicture() {
        const std::string why = WhyBlack(m_document, m_site.settings);
        if (why.empty()) return;
        m_findings.push_back(
            {Severity::kWarning, {}, {}, why, Mend::kAddOutputBox, OutputBoxes(m_site.settings).front()});
    }

    void FindCircles() {
        const std::vector<COpBox*> ordered = m_document.OrderBoxes();
        m_generated.insert(ordered.begin(), ordered.end());
    }

    // Of its buttons those count that stand for others.
    void CheckMuted(const COpBox& box) {
        Add(Severity::kWarning, box, {}, "is muted, so no code is generated for it");
        std::unordered_set<const COpButton*> passed;
        for (const auto& output : box.outputs) {
            if (IsStray(*output)) continue;
            CheckOutput(*output);
            passed.insert(output->PassedInput());
        }
        for (const auto& input : box.inputs) {
            if (!IsStray(*input) && passed.contains(input.get())) CheckInput(*input);
        }
    }

    // What a wire carries in the end, past muted boxes.
    const COpButton& Carried(const COpButton& source) {
        return source.owner->muted == 0 || LeadsRound(source) ? source : *m_ends.Of(source).button;
    }
    bool LeadsRound(const COpButton& source) { return m_ends.Of(source).kind == TiebackEnds::Kind::kCircle; }

    void CheckBox(const COpBox& box) {
        if (!m_generated.contains(&box)) {
            Add(Severity::kError, box, {}, "is part of a circle of wires, so no code is generated for it");
        }
        const auto isWired = [](const auto& button) { return !button->connections.Empty(); };
        const bool feeds = std::any_of(box.outputs.begin(), box.outputs.end(), isWired);
        const bool isFed = std::any_of(box.inputs.begin(), box.inputs.end(), isWired);
        if (!box.outputs.empty() && !feeds) {
            Add(Severity::kWarning, box, {}, "feeds nothing; its code is generated all the same",
                Mend::kDeleteBox);
        }
        CheckTemplates(box);
        if (box.outputs.empty() && !box.inputs.empty() && !isFed) {
            Add(Severity::kWarning, box, {}, "nothing is wired to it");
        }
    }

    void CheckTemplates(const COpBox& box) {
        const auto isWritten = [](const auto& output) { return IsWritten(*output); };
        if (box.codegen.HasLines() || std::none_of(box.outputs.begin(), box.outputs.end(), isWritten)) return;
        Add(Severity::kWarning, box, {},
            box.lacksTemplates
                ? "is a copy without templates, so it makes no code until the document is saved and "
                  "opened again"
                : "its operator has no templates, so nothing writes its outputs");
    }

    bool IsStray(const COpButton& button) {
        if (button.stray == nullptr) return false;
        Add(Severity::kWarning, button,
            "is no button of its operator; it is kept, and no code is made of it");
        return true;
    }

    void CheckInput(COpButton& input) {
        if (const COpButton* feeder = input.Feeder()) {
            if (feeder->owner->muted != 0 && LeadsRound(*feeder)) {
                Add(Severity::kError, input,
                    "is fed by muted boxes that feed one another: cut a wire between them", Mend::kCutWire);
            }
            return CheckWire(input, Carried(*feeder));
        }
        CheckIdleWire(input);
        if (input.arg != 0 && input.fixedtext.empty()) return CheckArgument(input);
        if (input.MacroValue(m_names).empty())
            Add(Severity::kError, input, "nothing is wired to it, and it has no value");
    }

    void CheckIdleWire(const COpButton& input) {
        const COpButton* source = input.connections.First();
        if (source == nullptr || source->owner->muted == 0 || source->IsUnknown()) return;
        Add(Severity::kWarning, input,
            "takes its own value, since " + NameOf(*source) +
                " is muted and no input of its box has its type");
    }

    // Types that are one and the same word of the target are no difference to it.
    void CheckWire(const COpButton& input, const COpButton& source) {
        const auto word = [this](const COpButton& button) {
            return m_site.types.TranslateType(button.CurrentType());
        };
        if (!source.values.empty() && source.CurrentType() != input.CurrentType() &&
            word(source) != word(input)) {
            Add(Severity::kWarning, input,
                "takes " + input.CurrentType() + " and is fed " + source.CurrentType() + " by " +
                    NameOf(source),
                Mend::kCutWire);
        }
        if (input.arg != 0 && input.fixedtext.empty()) {
            Add(Severity::kWarning, input,
                "is an argument, which counts for nothing while " + NameOf(source) + " is wired to it",
                Mend::kTakeNoArgument);
        }
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
    const Site& m_site;
    TiebackEnds m_ends;
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

std::string WhyBlack(const CTvDoc& document, const Settings& settings) {
    const std::vector<std::string> names = OutputBoxes(settings);
    const auto makesPicture = [&names](const auto& box) {
        return std::find(names.begin(), names.end(), box->filename) != names.end();
    };
    const auto& boxes = document.m_boxes;
    if (names.empty() || boxes.empty() || std::any_of(boxes.begin(), boxes.end(), makesPicture)) return {};
    std::string wanted = names.front();
    for (size_t i = 1; i < names.size(); ++i) wanted += (i + 1 < names.size() ? ", " : " or ") + names[i];
    return "no box feeds the output: the picture will be black; add a " + wanted +
           " box and wire the network to it";
}

std::vector<Finding> CheckNetwork(const CTvDoc& document, const Site& site) {
    return NetworkCheck(document, site).Run();
}

std::vector<Finding> CheckDocumentForm(const DocumentForm& form, const CTvDoc& document,
                                       const COpRegistry& registry) {
    std::vector<Finding> findings;
    std::set<std::string> seen;
    const auto add = [&](Severity severity, const std::string& message) {
        if (seen.insert(message).second) findings.push_back({severity, {}, {}, message, Mend::kNone, {}});
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
