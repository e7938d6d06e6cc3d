// SPDX-License-Identifier: Apache-2.0
// What differs between two states of a network, in words for the user.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "render/NetworkPicture.h"

namespace tavrin {

// One thing that is not as it was. Titles and names are those of the newer state, where it has them. A plain
// value; its texts are short, each one line, and free of control characters.
struct Difference {
    enum class Kind {
        kBox,       // came, went, or another operator's has taken its number
        kInput,     // an input that the library or the user gives and takes came or went
        kWire,      // to an input that was there before
        kValue,     // of any cast, or which cast is current
        kArgument,  // whether it is one, its name, its comment, the range of its slider
        kOption,    // of the render
        kHelp,      // of the finished shader
    };
    // Which property of a button it is, for who takes it over.
    enum class Property { kNone, kValue, kCast, kArg, kArgname, kComments, kRange };

    Kind kind = Kind::kBox;
    Property property = Property::kNone;
    std::string box;     // as COpBox::BoxTitleWid; empty for options and help
    std::string button;  // display name, of a wire the input's; the name of an option
    std::string what;    // "Noise_3 scale"
    std::string older;   // "4"; empty where there was nothing
    std::string newer;   // "6.5"
    std::string text;    // "Noise_3 scale: 4 -> 6.5"
    // Where it stands in the pictures: places in their rows.
    struct Place {
        uint32_t box = NetworkPicture::kNone;
        uint32_t button = NetworkPicture::kNone;
        uint32_t value = NetworkPicture::kNone;
    };
    Place inOlder;
    Place inNewer;
};

// All that differs: boxes in the order of their numbers, then options, then help. A box is the same by
// operator and number; of those that are left, those that hold the same are, then those in the same place. Of
// a box that came or went nothing else is told, but what it feeds. Numbers that show the same are the same: a
// file keeps no more of them. The cost is that of the buttons and texts there are; `looks`, if it is wanted,
// counts the boxes and buttons that were looked at.
std::vector<Difference> CompareNetworks(const NetworkPicture& older, const NetworkPicture& newer,
                                        size_t* looks = nullptr);

// In a few words: the first `most`, and how many more there are, as in "Noise_3 scale 4 -> 6.5, +2". Empty
// where nothing differs.
std::string Summary(const std::vector<Difference>& differences, size_t most);

}  // namespace tavrin
