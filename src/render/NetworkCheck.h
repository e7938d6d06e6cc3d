// SPDX-License-Identifier: Apache-2.0
// What a user should know of a network before rendering it.
#pragma once

#include <string>
#include <vector>

namespace tavrin {

class COpRegistry;
class CTvDoc;
class Settings;
class DocumentForm;
struct Site;

// One thing that was found, as it is printed. A plain value.
struct Finding {
    enum class Severity {
        kWarning,  // the shader will be made, perhaps not as meant
        kError,    // the shader will lack something
    };
    // What would mend it, where that is clear (NetworkMend.h).
    enum class Mend {
        kNone,
        kDeleteBox,
        kCutWire,         // that enters the button
        kTakeNoArgument,  // the button is to be none
        kAddOutputBox,    // the box named in `operatorName`
    };
    Severity severity = Severity::kWarning;
    std::string box = {};     // title and number; empty for the document as a whole
    std::string button = {};  // display name; empty for the box as a whole
    std::string message = {};
    Mend mend = Mend::kNone;
    std::string operatorName = {};

    bool operator==(const Finding&) const = default;

    // "error: BOX BUTTON: MESSAGE".
    std::string Text() const;
};

// The operators of which a network has to have one for there to be a picture, as the library names them:
// words behind this key of its site file. A library that names none has no such rule.
inline constexpr const char* kOutputBoxesKey = "check.outputboxes";

// Looks at the boxes in the order of their numbers: inputs without any value, types that differ along a
// wire in the words of the target, arguments of one name, arguments that a wire has silenced, tiebacks that
// lead nowhere, boxes that feed nothing, boxes without templates, boxes in a circle, more boxes of an
// operator than it allows, muted boxes, placeholders and stray buttons; and, first, at the network as a
// whole: whether a box makes the picture, and whether the settings in force are those of its library.
std::vector<Finding> CheckNetwork(const CTvDoc& document, const Site& site);

// Why the picture of a network will be black: none of its boxes is one that makes it. Empty where that is not
// so or cannot be told, as of a network without boxes.
std::string WhyBlack(const CTvDoc& document, const Settings& settings);

// Looks at what a document's file says for what its opening passes over or stops at: operators that the
// library lacks, and render options that are none of `document`'s. As far as the file can be read; no
// definition is.
std::vector<Finding> CheckDocumentForm(const DocumentForm& form, const CTvDoc& document,
                                       const COpRegistry& registry);

}  // namespace tavrin
