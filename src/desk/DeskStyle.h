// SPDX-License-Identifier: Apache-2.0
// The desk's colours, widths and limits, as the site sets them.
#pragma once

#include <string>

namespace tavrin {

class Settings;

// A colour; components from 0 to 1.
struct Rgb {
    float r = 0;
    float g = 0;
    float b = 0;
    bool operator==(const Rgb&) const = default;
};

// Factors beyond which a step of the zoom is not made.
struct ZoomLimits {
    float least = 0.1F;
    float most = 10;
};

// A plain value, read once when a pane is made.
struct DeskStyle {
    // A key that is absent or unreadable leaves its default. The colour of lines between different casts
    // follows the colour of all lines unless it has a key of its own.
    static DeskStyle Read(const Settings& settings);

    // What a box of its own colour is painted in.
    Rgb ColorOf(const float (&box)[3]) const {
        return {box[0] + boxTint.r, box[1] + boxTint.g, box[2] + boxTint.b};
    }

    Rgb background{0.6F, 0.7F, 0.7F};  // also the base of the veil over a locked desk
    Rgb rubberBand{1.0F, 0.5F, 0.5F};
    Rgb connect{0.6F, 0.2F, 0.2F};      // lines, and the wire being drawn
    Rgb stippleLine{0.6F, 0.2F, 0.2F};  // lines between different casts
    Rgb selectedConnect{1.0F, 0.8F, 0.5F};
    Rgb boxTint;                           // added to each box's own colour
    Rgb selectedBox;                       // outline
    float selectedBoxWidth = 3;            // of the outline, pixels
    Rgb highlightedBox{1, 1, 1};           // the one chosen in the Box Finder
    Rgb selectedButton{1.0F, 1.0F, 0.7F};  // also a candidate to wire to, and a hot grow arrow
    Rgb probe{0.1F, 0.55F, 0.95F};         // mark of the output that stands for the picture
    float connectWidth = 3;                // of lines, pixels; also how near a click on one must be
    Rgb hover{1, 1, 1};                    // what a press would meet, where the library lights it
    bool smoothText = false;               // letters have shades; labels are never too small to be read
    float leastLetters = 0;                // device pixels; labels of smaller letters are left out
    bool smoothLines = false;              // lines have shades at their edges
    bool typeMarks = false;                // buttons bear the colour and the shape of their types
    bool typeLines = false;                // lines have the colours of their types
    ZoomLimits zoom;
    std::string font = "Arial";  // face of all texts
    std::string wallpaper;       // path of an image as the site names it; empty for none
};

// What no site changes.
namespace desk_colors {
inline constexpr Rgb kBevelLight{0.75F, 0.7F, 0.65F};
inline constexpr Rgb kBevelDark{0.25F, 0.3F, 0.3F};  // also fills a column without buttons
inline constexpr Rgb kInk{0, 0, 0};                  // texts, crosses, arrows
inline constexpr Rgb kArgumentMark{1, 1, 0};
}  // namespace desk_colors

}  // namespace tavrin
