#include "ui/frame/FrameWindows.h"

#include <array>

#include "ui/TableWindow.h"
#include "ui/library/BoxFinder.h"
#include "ui/library/MenuFinder.h"
#include "ui/log/LogWindow.h"
#include "ui/render/ExportDlg.h"
#include "ui/render/RenderHistoryDlg.h"
#include "ui/sliders/HelpEditor.h"

namespace tavrin {

namespace {

struct Place {
    ToolWindow* window;
    const char* name;
    bool restoresSize;
};

std::array<Place, 8> PlacesOf(const FrameWindows& windows) {
    return {{
        {windows.renderHistory, "RenderHistory", true},
        {windows.boxFinder, "BoxFinder", true},
        {windows.menuFinder, "MenuFinder", true},
        {windows.argumentEditor, "ArgumentEditor", true},
        {windows.renderOptions, "RenderOptionsEditor", false},
        {windows.exportDialog, "ExportOptionsEditor", false},
        {windows.helpEditor, "HelpEditor", true},
        {windows.log, "Log", true},
    }};
}

}  // namespace

std::vector<ToolWindow*> FrameWindows::All() const {
    std::vector<ToolWindow*> windows;
    for (const Place& place : PlacesOf(*this)) windows.push_back(place.window);
    return windows;
}

void FrameWindows::RefreshTables() const {
    renderOptions->Refresh();
    argumentEditor->Refresh();
}

void FrameWindows::RestorePlaces(WindowPlaces& places) const {
    for (const Place& place : PlacesOf(*this)) {
        places.RestoreWindow(*place.window, place.name, {place.restoresSize, true});
    }
}

void FrameWindows::SavePlaces(WindowPlaces& places) const {
    for (const Place& place : PlacesOf(*this)) places.SaveWindow(*place.window, place.name);
}

void FrameWindows::TellState(FrameState& state) const {
    state.exportOptionsUp = exportDialog->IsUp();
    state.historyUp = renderHistory->IsUp();
    state.boxFinderUp = boxFinder->IsUp();
    state.menuFinderUp = menuFinder->IsUp();
    state.renderOptionsUp = renderOptions->IsUp();
    state.argumentEditorUp = argumentEditor->IsUp();
    state.helpUp = helpEditor->IsUp();
}

}  // namespace tavrin
