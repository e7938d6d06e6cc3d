// SPDX-License-Identifier: Apache-2.0
// The window that lists the renders of this run.
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "ui/windows/ToolWindow.h"

namespace tavrin {

class FinderList;

// Shows the history's entries, newest first, and hands the chosen one to whoever opens documents. Owned by
// the frame.
class CRenderHistoryDlg : public ToolWindow {
  public:
    // The lines "NUMBER NAME" of the history, which outlives the window.
    using Entries = std::function<const std::deque<std::string>&()>;
    using Open = std::function<void(const std::string& entry)>;

    CRenderHistoryDlg(QWidget* frame, Entries entries, Open open);

    // Shows the history as it is now. The current row stays on its entry; there is none if the entry left
    // the history.
    void Refresh();
    void HistoryChanged() override { Refresh(); }

  private:
    Entries m_entries;
    FinderList* m_list;  // a child
};

}  // namespace tavrin
