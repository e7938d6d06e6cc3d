// SPDX-License-Identifier: Apache-2.0
// How the desk behaves where a library may choose.
#pragma once

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
};

}  // namespace tavrin
