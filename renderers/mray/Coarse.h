// SPDX-License-Identifier: Apache-2.0
// How coarse a first picture is, so that it is seen soon.
#pragma once

#include <cstdint>
#include <vector>

#include "Options.h"

namespace tavrin::mray {

// What is drawn of a picture: every so many pixels across and down, with so many
// samples each.
struct Fineness {
    int shrink = 1;
    int samples = 1;
    bool operator==(const Fineness&) const = default;
};

// The side of a picture that is drawn in every so many pixels.
int shrunk(int side, int shrink);

// The finest first picture that takes no longer than the eye waits for, if a sample
// takes so many microseconds; the whole picture, if that is so soon.
Fineness firstFineness(const Options& options, double microsecondsASample);

// A picture in another size, smoothly: three bytes a pixel, top row first.
std::vector<std::uint8_t> enlarged(const std::vector<std::uint8_t>& from, int width, int height, int toWidth,
                                   int toHeight);

}  // namespace tavrin::mray
