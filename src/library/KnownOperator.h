// SPDX-License-Identifier: Apache-2.0
// What is known of an operator without a box of it: enough to find it by, and to tell where a wire would go.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class COpButton;

// One button as a new box would have it. A vinput is known once, by its first instance.
struct KnownButton {
    std::string name;  // as it is shown
    bool isOutput = false;
    bool takesWires = true;
    std::vector<std::string> types;    // its casts, in the definition's order
    size_t currentcast = 0;            // index into `types`
    std::string help;                  // lines joined by CR LF
    std::vector<std::string> options;  // what may be chosen for its values
};

// A plain value. All texts are the bytes of their files.
struct KnownOperator {
    // How much has been read of it.
    enum class Source {
        kName,        // nothing yet, or nothing that can be read
        kOwnFile,     // its file as it stands, without the preprocessor
        kDefinition,  // what the preprocessor made of it
        kNetwork,     // its file, which is a saved network
    };

    uint32_t id = 0;   // menu command
    std::string name;  // as the menu shows it
    std::string menu;  // labels of the submenus joined by " > ", empty at the top
    std::string path;  // its file
    Source source = Source::kName;
    std::vector<std::string> aliases;  // those that are heeded
    std::vector<std::string> keywords;
    std::string icon;              // as the definition names it
    std::array<float, 3> color{};  // of its boxes
    // Of the box; of a saved network the comments at its beginning. Lines joined by CR LF.
    std::string help;
    std::vector<KnownButton> buttons;  // inputs, then outputs; none of one that no box can be made of
    std::string problem;               // why it cannot be read, for the user; empty where it can
    uint64_t revision = 0;             // of the index, when this was changed last
};

// Leaves nothing but where it stands and what is wrong with it.
void ForgetDefinition(KnownOperator& known);

// Takes over what a definition says, in place of what was known. Nothing is reported. What stood before an
// error stays, without the buttons, and `problem` tells the error. Relative files of templates lie in
// `libraryDir`.
void LearnDefinition(KnownOperator& known, const std::string& text, const std::string& libraryDir);

// The same of a saved network: no more than its leading comments is looked at.
void LearnNetwork(KnownOperator& known, std::string_view text);

// The open end of a wire. A plain value: the button may go.
struct OpenEnd {
    static OpenEnd Of(const COpButton& button);
    bool operator==(const OpenEnd&) const = default;

    bool isOutput = false;
    bool takesWires = true;
    std::vector<std::string> types;
    size_t currentcast = 0;
};

// Where a wire would go in a new box. The names are promises of the definition as it was read: whoever makes
// the box looks for the button again.
struct WireFit {
    enum class Types {
        kSame,     // the current ones are one
        kCast,     // they are, with another cast of the new button
        kOther,    // they are with another cast of the open end's button
        kForeign,  // none is: the templates convert, if anything does
    };
    Types types = Types::kForeign;
    std::string button;    // as it is shown
    std::string castType;  // kCast: what the new button is to be cast to
    bool operator==(const WireFit&) const = default;
};

// The first of the operator's buttons with which the types go together best. Nothing where none may be wired
// to that end, by the rules of COpButton::CanConnect.
std::optional<WireFit> FindFit(const OpenEnd& end, const KnownOperator& known);

}  // namespace tavrin
