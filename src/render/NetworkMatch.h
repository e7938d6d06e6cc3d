// SPDX-License-Identifier: Apache-2.0
// Which boxes and buttons of two states of a network are the same.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "render/NetworkPicture.h"

namespace tavrin {

// By the place in the row of the one picture the place in that of the other, NetworkPicture::kNone for what
// is there alone. A plain value.
struct NetworkMatch {
    std::vector<uint32_t> boxInNewer;
    std::vector<uint32_t> boxInOlder;
    std::vector<uint32_t> buttonInNewer;
    std::vector<uint32_t> buttonInOlder;
    // Boxes of different operators with the same number, one of which stands only in the older picture, the
    // other only in the newer: by the place in the newer one.
    std::vector<uint32_t> replacedByNewer;

    size_t looks = 0;  // how many boxes and buttons were looked at
};

// Each box and each button is looked at a bounded number of times. Of those that are alike in everything the
// first ones are the same, in their order.
NetworkMatch MatchNetworks(const NetworkPicture& older, const NetworkPicture& newer);

}  // namespace tavrin
