#include "ui/frame/CommandTable.h"

#include <algorithm>

namespace tavrin {

namespace {

using Id = CommandId;
using State = const FrameState&;

bool CanSave(State s) { return s.modified || s.differsFromFile; }
bool NoChild(State s) { return !s.childRuns; }
bool NoScriptNoChild(State s) { return !s.scriptRuns && !s.childRuns; }
bool SelectionUnlocked(State s) { return s.boxSelected && !s.locked; }
bool BoxesUnlocked(State s) { return !s.empty && !s.locked; }
bool Unlocked(State s) { return !s.locked; }
bool Panels(State s) { return s.sliderPanels; }
bool CanView(State s) { return !s.childRuns && !s.empty; }

std::vector<CommandSpec> FileCommands() {
    return {
        {Id::kNew, "&New", "Ctrl+N", "new", "Start a new network"},
        {Id::kOpen, "&Open...", "Ctrl+O", "open", "Open a network"},
        {Id::kMerge, "&Merge...", "", "merge", "Add the boxes of another network to this one"},
        {Id::kSave, "&Save", "Ctrl+S", "save", "Save the network", CanSave},
        {Id::kSaveAs, "Save &As...", "", "save-as", "Save the network under another name"},
        {Id::kExportOptions, "Export O&ptions...", "", "export-options",
         "Choose what Export All writes, and where", nullptr, [](State s) { return s.exportOptionsUp; }},
        {Id::kExportShaderSource, "Shader &Source ()", "", "export", "Export the shader's source", NoChild},
        {Id::kExportCompiledShader, "&Compiled Shader ()", "", "export", "Export the compiled shader",
         NoChild},
        {Id::kExportRenderInterface, "&Render Interface ()", "", "export", "Export the render interface",
         NoChild},
        {Id::kExportShaderInterface, "Shader &Interface ()", "", "export", "Export the shader interface",
         NoChild},
        {Id::kExportAll, "Expor&t All", "F7", "export-all", "Export everything that the export options name",
         NoChild},
        {Id::kRunScript, "&Run Script...", "", "run-script", "Run a script of actions", NoScriptNoChild},
        {Id::kHaltScript, "&Halt Script", "", "halt-script", "End the running script",
         [](State s) { return s.scriptRuns; }},
        {Id::kExit, "E&xit", "Ctrl+Q", "exit", "Leave Tavrin", NoScriptNoChild},
    };
}

std::vector<CommandSpec> EditCommands() {
    return {
        {Id::kRenderHistory, "Render &History", "F6", "render-history", "Show the renders of this session",
         nullptr, [](State s) { return s.historyUp; }},
        {Id::kCut, "Cu&t", "Ctrl+X;Shift+Delete", "cut", "Cut the selected boxes", SelectionUnlocked},
        {Id::kCopy, "&Copy", "Ctrl+C", "copy", "Copy the selected boxes", SelectionUnlocked},
        {Id::kPaste, "&Paste", "Ctrl+V;Shift+Insert", "paste", "Paste boxes under the mouse",
         [](State s) { return s.canPaste && !s.locked; }},
        {Id::kDelete, "&Delete", "Delete", "delete", "Delete the selected boxes and connections",
         [](State s) { return s.canDelete && !s.locked; }},
        {Id::kStowAllSliders, "&Stow All Sliders", "", "stow-all", "Stow all sliders", Panels},
        {Id::kUnstowAllSliders, "&Unstow All Sliders", "", "unstow-all", "Unstow all sliders", Panels},
        {Id::kPinAllSliders, "P&in All Sliders", "", "pin-all", "Keep all sliders, whatever is selected",
         Panels},
        {Id::kUnpinAllSliders, "U&npin All Sliders", "", "unpin-all", "Let sliders go with the selection",
         Panels},
        {Id::kLockAllSliders, "&Lock All Sliders", "", "lock-all", "Lock the values of all sliders", Panels},
        {Id::kUnlockAllSliders, "Unl&ock All Sliders", "", "unlock-all", "Unlock the values of all sliders",
         Panels},
        {Id::kSelectAllBoxes, "Select &All Boxes", "Ctrl+A", "select-all", "Select all boxes", BoxesUnlocked},
        {Id::kUnselectAllBoxes, "Uns&elect All Boxes", "", "unselect-all", "Unselect all boxes",
         BoxesUnlocked},
        {Id::kBoxFinder, "&Box Finder", "Ctrl+B", "box-finder", "Find a box on the desk by its name", nullptr,
         [](State s) { return s.boxFinderUp; }},
        {Id::kMenuFinder, "&Menu Finder", "Ctrl+M", "menu-finder", "Find an operator by its name", nullptr,
         [](State s) { return s.menuFinderUp; }},
    };
}

std::vector<CommandSpec> ViewCommands() {
    return {
        {Id::kFitToWindow, "&Fit to Window", "Ctrl+F", "fit-window", "Show the whole network", BoxesUnlocked},
        {Id::kZoomReset, "Zoom &Reset", "Esc", "zoom-reset", "Show the network at its natural size",
         [](State s) { return !s.zoomIsOne && !s.locked; }},
        {Id::kZoomIn, "&Zoom In", "Up", "zoom-in", "Show the network larger", BoxesUnlocked},
        {Id::kZoomOut, "Zoo&m Out", "Down", "zoom-out", "Show the network smaller", BoxesUnlocked},
        {Id::kFreezeSliders, "&Freeze Sliders", "F3", "freeze-sliders", "Keep the sliders that stand",
         nullptr, [](State s) { return s.frozen; }},
        {Id::kDisplayIcons, "Display &Icons", "", "display-icons", "Show the boxes' icons", Unlocked,
         [](State s) { return s.displayIcons; }},
        {Id::kStraightTraceLines, "Straight &Trace Lines", "Ctrl+T", "straight-lines",
         "Lead connections by right angles", Unlocked, [](State s) { return s.traceLines; }},
        {Id::kLinesOverBoxes, "Lines Draw &Over Boxes", "", "lines-over-boxes",
         "Draw connections over the boxes", Unlocked, [](State s) { return s.linesOverBoxes; }},
        {Id::kShowVarnames, "Show &Varnames", "", "show-varnames", "Show variables' names on connections",
         Unlocked, [](State s) { return s.varnames; }},
        {Id::kLockDesk, "&Lock Desk", "Ctrl+L", "lock-desk", "Keep the network from being changed", nullptr,
         [](State s) { return s.locked; }},
        {Id::kStatusBar, "&Status Bar", "", "status-bar", "Show the status box", nullptr,
         [](State s) { return s.statusBox; }},
        {Id::kScrollBars, "S&croll Bars", "", "scroll-bars", "Show the desk's scroll bars", nullptr,
         [](State s) { return s.scrollBars; }},
        {Id::kSliderDesk, "Slider Desk", "", "", "Show the slider column", nullptr,
         [](State s) { return s.sliderDesk; }},
        {Id::kKeepHistory, "Render &History", "", "", "Keep a copy of the network with each render", nullptr,
         [](State s) { return s.keepHistory; }},
        {Id::kSoundEffects, "Sound &Effects", "", "sound-effects", "Let scripts make sounds", nullptr,
         [](State s) { return !s.quiet; }},
        {Id::kDebugMode, "&Debug Mode", "", "debug-mode", "Let scripts tell what they do", nullptr,
         [](State s) { return s.debug; }},
        {Id::kRenderOptions, "Render O&ptions", "F2", "render-options", "Show the render options", nullptr,
         [](State s) { return s.renderOptionsUp; }},
        {Id::kArgumentEditor, "&Argument Editor", "F5", "argument-editor", "Edit the shader's arguments",
         nullptr, [](State s) { return s.argumentEditorUp; }},
        {Id::kShowWallpaper, "Show &Wallpaper", "", "wallpaper", "Show the desk's wallpaper", nullptr,
         [](State s) { return s.wallpaper; }},
        {Id::kTileWallpaper, "Tile Wallpaper", "", "", "Repeat the wallpaper over the desk", nullptr,
         [](State s) { return s.wallpaperTiled; }},
        {Id::kSetWallpaper, "Set Wallpaper...", "", "", "Choose the desk's wallpaper"},
        {Id::kReloadOperators, "&Reload Operators", "", "",
         "Look for new and removed operators of the library"},
    };
}

std::vector<CommandSpec> RenderCommands() {
    return {
        {Id::kRenderIt, "&Render It", "F1", "render", "Render the shader",
         [](State s) { return (s.multipleRenders || !s.childRuns) && !s.empty; }},
        {Id::kStopRender, "&Stop Render", "F4", "stop-render", "Stop the running renders and exports",
         [](State s) { return s.childRuns; }},
        {Id::kDisplayLog, "Display &Log", "F8", "display-log", "Show what the program and its scripts say"},
        {Id::kClearLog, "&Clear Log", "Ctrl+Delete", "clear-log", "Empty the log"},
        {Id::kViewShaderSource, "&View Shader Source ()", "F9", "view-source",
         "Open the shader's source in the editor", CanView},
        {Id::kViewRenderInterface, "View Render &Interface ()", "F10", "view-render-interface",
         "Open the render interface in the editor", CanView},
        {Id::kViewShaderInterface, "View Shader Inter&face ()", "F11", "view-shader-interface",
         "Open the shader interface in the editor", CanView},
        {Id::kMultipleRenders, "Allow Multiple Simultaneous Renders", "", "",
         "Let several renders run at once", nullptr, [](State s) { return s.multipleRenders; }},
        {Id::kShaderHelp, "&Shader Help", "", "shader-help", "Edit shader help", nullptr,
         [](State s) { return s.helpUp; }},
        {Id::kOnlineDocumentation, "&Online Documentation", "", "documentation", "Open the documentation"},
        {Id::kAbout, "&About Tavrin", "", "about", "Tell the program's version"},
        {Id::kCustomize, "Customize...", "", "customize", "Choose the operators of the toolbar"},
    };
}

Slot Gap() { return {Slot::Kind::kGap}; }
Slot Item(Id id) { return {Slot::Kind::kCommand, id}; }

// A run of slots, each list of commands parted from the next by a gap.
std::vector<Slot> Groups(std::initializer_list<std::initializer_list<Id>> groups) {
    std::vector<Slot> slots;
    for (const auto& group : groups) {
        if (!slots.empty()) slots.push_back(Gap());
        for (const Id id : group) slots.push_back(Item(id));
    }
    return slots;
}

std::vector<Slot> FileSlots() {
    std::vector<Slot> slots = Groups({{Id::kNew, Id::kOpen, Id::kMerge}, {Id::kSave, Id::kSaveAs}});
    const std::vector<Slot> exports = Groups({{Id::kExportShaderSource, Id::kExportCompiledShader,
                                               Id::kExportRenderInterface, Id::kExportShaderInterface}});
    slots.insert(slots.end(), {Gap(),
                               Item(Id::kExportOptions),
                               {Slot::Kind::kSubmenu, {}, "&Export", exports},
                               Item(Id::kExportAll),
                               Gap(),
                               Item(Id::kRunScript),
                               Item(Id::kHaltScript),
                               Gap(),
                               {Slot::Kind::kRecentFiles},
                               Gap(),
                               Item(Id::kExit)});
    return slots;
}

}  // namespace

const std::vector<CommandSpec>& CommandTable() {
    static const std::vector<CommandSpec> table = [] {
        std::vector<CommandSpec> all;
        for (const auto& part : {FileCommands(), EditCommands(), ViewCommands(), RenderCommands()}) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }();
    return table;
}

const CommandSpec& SpecOf(CommandId id) {
    const auto& table = CommandTable();
    return *std::find_if(table.begin(), table.end(), [id](const CommandSpec& spec) { return spec.id == id; });
}

const std::vector<MenuSpec>& MenuBarLayout() {
    static const std::vector<MenuSpec> layout = {
        {"&File", FileSlots()},
        {"&Edit", Groups({{Id::kRenderHistory},
                          {Id::kCut, Id::kCopy, Id::kPaste, Id::kDelete},
                          {Id::kSelectAllBoxes, Id::kUnselectAllBoxes},
                          {Id::kStowAllSliders, Id::kUnstowAllSliders},
                          {Id::kPinAllSliders, Id::kUnpinAllSliders},
                          {Id::kLockAllSliders, Id::kUnlockAllSliders}})},
        {"F&ind", Groups({{Id::kBoxFinder, Id::kMenuFinder}})},
        {"&View", Groups({{Id::kFitToWindow, Id::kZoomReset, Id::kZoomIn, Id::kZoomOut},
                          {Id::kStowAllSliders, Id::kUnstowAllSliders},
                          {Id::kPinAllSliders, Id::kUnpinAllSliders},
                          {Id::kLockAllSliders, Id::kUnlockAllSliders}})},
        {"&Options", Groups({{Id::kFreezeSliders},
                             {Id::kDisplayIcons, Id::kStraightTraceLines, Id::kLinesOverBoxes,
                              Id::kShowVarnames, Id::kLockDesk},
                             {Id::kStatusBar, Id::kScrollBars},
                             {Id::kKeepHistory, Id::kSoundEffects, Id::kDebugMode},
                             {Id::kRenderOptions, Id::kArgumentEditor},
                             {Id::kShowWallpaper, Id::kTileWallpaper, Id::kSetWallpaper},
                             {Id::kReloadOperators}})},
        {"&Render", Groups({{Id::kRenderIt, Id::kStopRender, Id::kRenderHistory},
                            {Id::kDisplayLog, Id::kClearLog},
                            {Id::kViewShaderSource, Id::kViewRenderInterface, Id::kViewShaderInterface}})},
        {"&Help", Groups({{Id::kShaderHelp}, {Id::kOnlineDocumentation, Id::kAbout}})},
    };
    return layout;
}

const std::vector<Slot>& ToolBarLayout() {
    static const std::vector<Slot> layout = Groups({
        {Id::kNew, Id::kOpen, Id::kSave},
        {Id::kExportOptions, Id::kExportAll},
        {Id::kCut, Id::kCopy, Id::kPaste},
        {Id::kSelectAllBoxes, Id::kUnselectAllBoxes},
        {Id::kStowAllSliders, Id::kUnstowAllSliders},
        {Id::kPinAllSliders, Id::kUnpinAllSliders},
        {Id::kLockAllSliders, Id::kUnlockAllSliders},
        {Id::kMenuFinder, Id::kBoxFinder},
        {Id::kFitToWindow, Id::kZoomReset, Id::kZoomIn, Id::kZoomOut},
        {Id::kFreezeSliders, Id::kDisplayIcons, Id::kStraightTraceLines, Id::kLinesOverBoxes,
         Id::kShowVarnames, Id::kLockDesk},
        {Id::kRenderIt, Id::kStopRender},
        {Id::kRenderOptions, Id::kArgumentEditor, Id::kRenderHistory, Id::kViewShaderSource},
        {Id::kDisplayLog, Id::kClearLog},
        {Id::kShaderHelp, Id::kAbout},
    });
    return layout;
}

const std::vector<CommandId>& HotKeys() {
    static const std::vector<CommandId> keys = {Id::kRenderIt,   Id::kRenderOptions,  Id::kFreezeSliders,
                                                Id::kStopRender, Id::kArgumentEditor, Id::kRenderHistory,
                                                Id::kExportAll,  Id::kDisplayLog};
    return keys;
}

}  // namespace tavrin
