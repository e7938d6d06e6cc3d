// SPDX-License-Identifier: Apache-2.0
// What stands in a network for a box whose operator cannot be had.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace tavrin {

// A plain value that never changes once a box has it, shared by the box and its clones. The box's buttons are
// made of the block, to be seen and wired; what is saved is the block itself.
struct Placeholder {
    // Part of the block, from its first byte up to the one behind it.
    struct Span {
        size_t begin = 0;
        size_t end = 0;
    };

    std::string block;   // as the file has it, from its keyword to its closing brace
    std::string reason;  // why there is no real box, for the user
    // Where the operands stand that count, if there are any, and what they say.
    std::optional<Span> widPlace;
    std::optional<Span> xyPlace;
    int wid = 0;
    float xypos[2] = {0, 0};
    size_t nameEnd = 0;  // behind the operator's name
};

// The block with a number and a place of its own: another text than the file's only in operands that say
// something else, and where it has none for what is no longer the default.
std::string BlockOf(const Placeholder& placeholder, int wid, const float (&xypos)[2]);

}  // namespace tavrin
