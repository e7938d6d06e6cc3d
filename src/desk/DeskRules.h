// SPDX-License-Identifier: Apache-2.0
// How the desk behaves where a library may choose.
#pragma once

#include <optional>

namespace tavrin {

class Settings;

// A plain value, read once when a desk is made. A library that says nothing has the rules that the desk has
// always had.
struct DeskRules {
    static DeskRules Read(const Settings& settings);

    // A copied box has the templates and castlock pairs of its original. Else it has none until its document
    // is saved and read again.
    bool copyTemplates = false;
    // Anchors move as far as the boxes are seen to move. Else by that times the zoom.
    bool plainAnchors = false;
    // A wire can be pulled off the input that it enters. Else a press there picks the input.
    bool pullWires = false;
    // A button that is dragged from lets go where the drag ends over the empty desk. Else it stays picked.
    bool dropWires = false;
    // Escape lets go of a picked button, and of a wire in hand, before it does anything else.
    bool escapeWires = false;
    // A box that is dropped on a wire goes between its ends.
    bool insertBoxes = false;
    // What a press would meet lights up before it.
    bool hover = false;
    // Pixels beside a line where a press still hits it, the nearest line if there are several. Else a line is
    // hit as far from its middle as it is wide, the first one of the network.
    std::optional<float> lineSlack = {};
    // What is pasted, merged or copied comes to lie in sight. Else where the rules of old put it, which may
    // be beyond the window's edge or nowhere until the mouse comes.
    bool copiesInSight = false;
    // Tab or a letter that is typed over the desk opens the search for an operator there, and so does a wire
    // that is let go of over the empty desk.
    bool search = false;
    // Shift and Delete deletes boxes and joins what they stood between. Else it cuts them.
    bool keepFlow = false;
};

}  // namespace tavrin
