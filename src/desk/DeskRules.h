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
};

}  // namespace tavrin
