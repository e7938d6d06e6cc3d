// SPDX-License-Identifier: Apache-2.0
// The tool windows of the frame, a row each.
#pragma once

#include <QPointF>
#include <functional>
#include <vector>

#include "app/CommandId.h"

class QWidget;

namespace tavrin {

class CommandActions;
class DeskPane;
class DocumentWork;
class KeepWork;
class LogWindow;
class OperatorWork;
class ToolWindow;
struct FormAction;
struct Workspace;

// What windows are made with. All of it outlives them.
struct WindowNeeds {
    QWidget& frame;  // their parent
    Workspace& work;
    DeskPane& desk;
    DocumentWork& documents;
    KeepWork& keeps;
    OperatorWork& operators;
    LogWindow& log;                                     // stands before all others
    std::function<void(const FormAction&)> doAction;    // of a form, to be called once the frame stands
    std::function<void(int older, int newer)> compare;  // renders, or the desk; the same holds for this
    std::function<void(int first, int second)> comparePictures;
};

// Everything else about a window follows from its row: that it is there, its command and the check mark, that
// its place is kept from one run to the next.
struct WindowRow {
    enum class Way { kToggles, kComesUp };  // the command hides what is up; it never does, and has no mark

    CommandId command;
    Way way;
    const char* place;  // its name in the profile
    bool keepsSize;     // its size is kept with its place
    QPointF share;      // of the free room that is left of it and above it when it comes up first
    ToolWindow* (*make)(const WindowNeeds& needs);
    void (*addCommands)(ToolWindow& window, CommandActions& commands) = nullptr;  // those it has besides
    bool takesKeys = false;  // when its command brings it up, where the library wants that
};

// In the order in which they come up at the start.
const std::vector<WindowRow>& WindowTable();

}  // namespace tavrin
