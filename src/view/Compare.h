// SPDX-License-Identifier: Apache-2.0
// How far two pictures are apart.
#pragma once

#include "view/Picture.h"

namespace tavrin {

// A plain value.
struct PictureDifference {
    PicturePtr picture;  // of the part that both have; null where they have none
    int greatest = 0;    // of a channel, 0 to 255
    double mean = 0;     // over all channels of that part
    QSize common;        // the part that both have, from the top left corner
    QSize all;           // what either has
};

// For each channel the absolute difference times the gain, 255 at most. Where opacity differs, no channel
// shows less than that. The figures are without the gain, and with opacity as a fourth channel if either
// picture has it. Rows that are not there yet count as not had.
PictureDifference DifferenceOf(const Picture& one, const Picture& other, int gain);

}  // namespace tavrin
