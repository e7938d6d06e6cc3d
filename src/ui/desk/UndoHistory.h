// SPDX-License-Identifier: Apache-2.0
// The window that lists what was done to the document.
#pragma once

#include "ui/windows/ToolWindow.h"

class QListView;

namespace tavrin {

class COpDesk;
class CTvDoc;
class HistoryModel;

// One row for how the document began and one for each step since; those that are undone are pale. A click on
// a row, or Enter, goes to where that step was the last one done. Owned by the frame; the document, which
// keeps a history, and the desk outlive it.
class CUndoHistory : public ToolWindow {
  public:
    CUndoHistory(QWidget* frame, CTvDoc& document, COpDesk& desk);
    ~CUndoHistory() override;

    void Follow(const Change& change) override;
    void SetLocked(bool locked) override;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void Refresh();

    CTvDoc& m_document;
    HistoryModel* m_model;
    QListView* m_list;
};

}  // namespace tavrin
