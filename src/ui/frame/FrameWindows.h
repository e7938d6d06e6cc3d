// The modeless windows that stand beside the main frame, once each for its life.
#pragma once

#include <QRect>
#include <functional>
#include <vector>

#include "ui/frame/FrameState.h"
#include "ui/frame/WindowPlaces.h"

namespace tavrin {

class BoxFinder;
class CExportDlg;
class CHelpEditor;
class CRenderHistoryDlg;
class LogWindow;
class MenuFinder;
class TableWindow;
class ToolWindow;

// All are children of the frame, which destroys them.
struct FrameWindows {
    LogWindow* log = nullptr;
    TableWindow* renderOptions = nullptr;
    CHelpEditor* helpEditor = nullptr;
    BoxFinder* boxFinder = nullptr;
    MenuFinder* menuFinder = nullptr;
    CRenderHistoryDlg* renderHistory = nullptr;
    TableWindow* argumentEditor = nullptr;
    CExportDlg* exportDialog = nullptr;

    std::vector<ToolWindow*> All() const;
    // What the lists show of the document may have changed.
    void RefreshTables() const;
    // A window that was never placed comes up on the `ground`, asked for then: where desk and sliders are, in
    // global coordinates.
    void RestorePlaces(WindowPlaces& places, const std::function<QRect()>& ground) const;
    // Of those that have been placed.
    void SavePlaces(WindowPlaces& places) const;
    // Fills in which of them are up.
    void TellState(FrameState& state) const;
};

}  // namespace tavrin
