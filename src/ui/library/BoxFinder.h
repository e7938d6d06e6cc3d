// SPDX-License-Identifier: Apache-2.0
// The window "Box Finder": the boxes on the desk in one alphabetical list.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>

#include "ui/windows/ToolWindow.h"

class QTimer;

namespace tavrin {

class FinderList;
struct Change;

// Lives as long as the frame. Names are those of BoxTitleWid, of boxes in the network and under the mouse.
class BoxFinder : public ToolWindow {
  public:
    struct Needs {
        std::function<void(const std::string& name)> centreOnBox;
        std::function<void()> repaintDesk;
    };

    BoxFinder(QWidget* frame, Needs needs);

    // Lists what came and drops what went.
    void Follow(const Change& change) override;
    // Each costs the logarithm of the count: the list itself follows when the window is shown, or at the
    // next turn of the event loop.
    void AddName(const std::string& name);
    // Removes a row of exactly that text, if there is one.
    void RemoveName(const std::string& name);
    // Empties the list and forgets the current name.
    void Clear();

    // The name chosen last, whose box paints highlighted; empty if none was since the window was closed.
    const std::string& CurrentName() const { return m_currentName; }

    void SetLocked(bool locked) override { setEnabled(!locked); }
    void TakeKeys() override;

  protected:
    void Closing() override;
    void showEvent(QShowEvent* event) override;

  private:
    void RowsChanged();
    void UpdateList();
    void Choose(const std::string& name);

    Needs m_needs;
    std::multiset<std::pair<std::string, std::string>> m_names;  // in lower case, and as it is
    std::string m_currentName;
    FinderList* m_list;  // a child
    QTimer* m_update;    // a child; runs while the list is behind the names
};

}  // namespace tavrin
