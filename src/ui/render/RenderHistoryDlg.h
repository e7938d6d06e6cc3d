// SPDX-License-Identifier: Apache-2.0
// The window that lists the renders of this run.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "render/RenderRecords.h"
#include "ui/windows/ToolWindow.h"

class QMenu;

namespace tavrin {

class FinderList;
class RenderThumbnails;

// Shows the history's entries, newest first, with what is known of each render, and hands the chosen one to
// whoever opens documents. Owned by the frame.
class CRenderHistoryDlg : public ToolWindow {
  public:
    // All of it outlives the window.
    struct Needs {
        std::function<const std::deque<std::string>&()> entries;  // the lines "NUMBER NAME" of the history
        std::function<void(const std::string& entry)> open;
        RenderRecords& records;
        std::function<bool(int number)> canKeep;
        std::function<void(int number)> keep;
        std::function<void(int number)> compare = {};  // with the desk; not offered where there is none
    };
    CRenderHistoryDlg(QWidget* frame, Needs needs);

    // Shows the history as it is now. The current row stays on its entry; there is none if the entry left
    // the history.
    void Refresh();
    void HistoryChanged() override { Refresh(); }

    // The render of the row that is selected, while the window is seen.
    std::optional<int> CurrentRender() const;
    // Nothing happens where it has no row.
    void SelectRender(int number);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    const RenderRecord* RecordOf(const std::string& entry) const;
    void FillMenu(QMenu& menu, const std::string& entry);

    Needs m_needs;
    FinderList* m_list;              // a child
    RenderThumbnails* m_thumbnails;  // a child of the list
    Listeners<const RenderRecord&>::Subscription m_records;
};

}  // namespace tavrin
