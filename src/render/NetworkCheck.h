// SPDX-License-Identifier: Apache-2.0
// What a user should know of a network before rendering it.
#pragma once

#include <string>
#include <vector>

namespace tavrin {

class COpRegistry;
class CTvDoc;
class DocumentForm;
class Report;

// One thing that was found, as it is printed. A plain value.
struct Finding {
    enum class Severity {
        kWarning,  // the shader will be made, perhaps not as meant
        kError,    // the shader will lack something
    };
    Severity severity = Severity::kWarning;
    std::string box;     // title and number; empty for the document as a whole
    std::string button;  // display name; empty for the box as a whole
    std::string message;

    // "error: BOX BUTTON: MESSAGE".
    std::string Text() const;
};

// Looks at the boxes in the order of their titles: inputs without any value, casts that differ along a
// wire, arguments of one name, tiebacks that lead nowhere, boxes that feed nothing, boxes in a circle,
// more boxes of an operator than it allows, placeholders and stray buttons.
std::vector<Finding> CheckNetwork(const CTvDoc& document, Report& report);

// Looks at what a document's file says for what its opening passes over or stops at: operators that the
// library lacks, and render options that are none of `document`'s. As far as the file can be read; no
// definition is.
std::vector<Finding> CheckDocumentForm(const DocumentForm& form, const CTvDoc& document,
                                       const COpRegistry& registry);

}  // namespace tavrin
