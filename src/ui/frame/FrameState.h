// What the enable and check rules of the commands look at, taken from the frame at one moment.
#pragma once

namespace tavrin {

struct FrameState {
    // What is there.
    bool modified = false;
    bool differsFromFile = false;  // not modified, and yet something to be saved
    bool locked = false;  // the document's lock flag
    bool childRuns = false;
    bool scriptRuns = false;
    bool empty = true;  // no box on the desk
    bool zoomIsOne = true;
    bool boxSelected = false;
    bool canPaste = false;   // the desk's clipboard holds boxes
    bool canDelete = false;  // boxes, connections or a button are selected
    bool sliderPanels = false;
    bool multipleRenders = true;

    // What is shown or switched on.
    bool exportOptionsUp = false;
    bool historyUp = false;
    bool boxFinderUp = false;
    bool menuFinderUp = false;
    bool renderOptionsUp = false;
    bool argumentEditorUp = false;
    bool helpUp = false;
    bool frozen = false;
    bool displayIcons = false;
    bool traceLines = false;
    bool linesOverBoxes = false;
    bool varnames = false;
    bool statusBox = true;
    bool scrollBars = true;
    bool sliderDesk = true;
    bool keepHistory = true;
    bool quiet = false;
    bool debug = false;
    bool wallpaper = false;
    bool wallpaperTiled = false;
};

}  // namespace tavrin
