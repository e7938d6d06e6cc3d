// The window that lists the renders of this run.
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "ui/ToolWindow.h"

namespace tavrin {

class FinderList;

// Shows the history's entries, newest first, and hands the chosen one to whoever opens documents; a line
// that is no entry opens nothing. Owned by the frame, which refreshes it after each render.
class CRenderHistoryDlg : public ToolWindow {
  public:
    // The lines "NUMBER NAME" of the history, which outlives the window.
    using Entries = std::function<const std::deque<std::string>&()>;
    using Open = std::function<void(const std::string& name, int number)>;

    CRenderHistoryDlg(QWidget* frame, Entries entries, Open open);

    // Shows the history as it is now. The current row stays on its entry; there is none if the entry left
    // the history.
    void Refresh();

  private:
    void OpenEntry(const std::string& entry);

    Entries m_entries;
    Open m_open;
    FinderList* m_list;  // a child
};

}  // namespace tavrin
