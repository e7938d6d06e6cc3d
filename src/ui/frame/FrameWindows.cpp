#include "ui/frame/FrameWindows.h"

#include <QScreen>
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
    QPointF share;  // of the ground's free room that is left of it and above it at first
};

std::array<Place, 8> PlacesOf(const FrameWindows& windows) {
    return {{
        {windows.renderHistory, "RenderHistory", true, {1, 1}},
        {windows.boxFinder, "BoxFinder", true, {1, 0}},
        {windows.menuFinder, "MenuFinder", true, {0, 0}},
        {windows.argumentEditor, "ArgumentEditor", true, {0.5, 0.9}},
        {windows.renderOptions, "RenderOptionsEditor", false, {0.2, 0.2}},
        {windows.exportDialog, "ExportOptionsEditor", false, {0.5, 0.3}},
        {windows.helpEditor, "HelpEditor", true, {0.7, 0.5}},
        {windows.log, "Log", true, {0.1, 1}},
    }};
}

// The window manager will draw round it what it draws round the frame.
QSize WithBorder(const QWidget& window) {
    const QWidget& frame = *window.parentWidget();
    return window.size() + frame.frameGeometry().size() - frame.size();
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

void FrameWindows::RestorePlaces(WindowPlaces& places, const std::function<QRect()>& ground) const {
    for (const Place& place : PlacesOf(*this)) {
        if (places.RestoreWindow(*place.window, place.name, {place.restoresSize, true})) continue;
        place.window->PlaceWhenFirstShown([windows = All(), place, ground] {
            FirstPlaceRoom room{ground(), place.window->parentWidget()->screen()->availableGeometry(), {}};
            for (const ToolWindow* other : windows) {
                if (other->isVisible()) room.taken.push_back(other->pos());
            }
            return FirstPlace(room, WithBorder(*place.window), place.share);
        });
    }
}

void FrameWindows::SavePlaces(WindowPlaces& places) const {
    for (const Place& place : PlacesOf(*this)) {
        if (place.window->IsPlaced()) places.SaveWindow(*place.window, place.name);
    }
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
