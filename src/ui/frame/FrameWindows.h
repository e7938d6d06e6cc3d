// SPDX-License-Identifier: Apache-2.0
// The modeless windows that stand beside the main frame, once each for its life.
#pragma once

#include <QRect>
#include <functional>
#include <type_traits>
#include <vector>

#include "ui/frame/WindowTable.h"
#include "ui/windows/ToolWindow.h"
#include "ui/windows/WindowPlaces.h"

namespace tavrin {

// Makes every row of the table a window with its command. All are children of the frame, which destroys them.
class FrameWindows {
  public:
    FrameWindows(const WindowNeeds& needs, CommandActions& commands);

    // In the order of the table.
    const std::vector<ToolWindow*>& All() const { return m_all; }
    // The one that a command shows. There is one.
    ToolWindow& Of(CommandId command) const;
    // The one of this class. There is one.
    template <class Window>
    Window& Get() const {
        Window* found = nullptr;
        for (ToolWindow* window : m_all) {
            if (found == nullptr) found = dynamic_cast<Window*>(window);
        }
        return *found;
    }

    // Tells all of them, such as `Tell(&ToolWindow::SetLocked, true)`.
    template <class... Words>
    void Tell(void (ToolWindow::*what)(Words...), std::type_identity_t<Words>... words) const {
        for (ToolWindow* window : m_all) (window->*what)(words...);
    }
    // Called when one was shown or hidden by whatever way.
    void OnShownOrHidden(const std::function<void()>& observer) const;

    // A window that was never placed comes up on the `ground`, asked for then: where desk and sliders are, in
    // global coordinates.
    void RestorePlaces(WindowPlaces& places, const std::function<QRect()>& ground) const;
    // Of those that have been placed.
    void SavePlaces(WindowPlaces& places) const;
    void HideAll() const;

  private:
    std::vector<ToolWindow*> m_all;  // one for each row of the table
};

}  // namespace tavrin
