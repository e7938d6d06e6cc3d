// SPDX-License-Identifier: Apache-2.0
// What one act of the user has changed of a document, as everybody hears of it who shows some of it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavrin {

class COpBox;
class COpButton;

// A box that stands no more: by its number of the process, and by what it was called.
struct GoneBox {
    uint64_t serial = 0;
    std::string boxTitleWid;
};

// A plain value that `Edits` makes and hands to its listeners, valid while they are told: the boxes and
// buttons named in it stand, and each is named once in a list. It says where to look, not what was there
// before.
struct Change {
    // What was done, in a word or two that could stand behind "Undo"; empty where nothing was edited.
    std::string act;
    // The document has given place to another: everything is new, and nothing below is listed but `came`.
    bool replaced = false;
    // An undo or a redo: objects that were parked have come back, others are parked now.
    bool swapped = false;
    bool marks = false;  // counts as a change of the document
    bool joins = false;  // goes on with a run of acts, such as typing
    // Boxes that were taken onto the desk, in this order, and may still wait under the mouse.
    std::vector<COpBox*> came;
    // Those that came to stand in the network, and count from here on.
    std::vector<COpBox*> dropped;
    // From the network or from under the mouse.
    std::vector<GoneBox> went;
    // Boxes of which something is different: place, inputs, or anything of their buttons.
    std::vector<COpBox*> touched;
    // Of some of those more than the place.
    bool reshaped = false;
    // Buttons of other boxes, of which only they are different: whether they are arguments.
    std::vector<COpButton*> buttons;
    // Buttons that are in none of those, and of which only what is tuned is different: values, the names and
    // comments of arguments, how their sliders stand. Nothing of it is seen on the desk.
    std::vector<COpButton*> tuned;
    bool wires = false;
    bool options = false;    // render options
    bool settings = false;   // export options, tool bar, display switches and lock, help
    bool frames = false;     // frames and notes, of which no code is made
    bool selection = false;  // of boxes, frames and notes; no edit

    // Whether boxes stand elsewhere, look different, or are others.
    bool HasBoxes() const {
        return replaced || !came.empty() || !dropped.empty() || !went.empty() || !touched.empty();
    }
    // Display switches are settings.
    bool IsSeenOnDesk() const {
        return HasBoxes() || !buttons.empty() || wires || settings || frames || selection;
    }
    bool IsEmpty() const { return !IsSeenOnDesk() && tuned.empty() && !options; }
};

}  // namespace tavrin
