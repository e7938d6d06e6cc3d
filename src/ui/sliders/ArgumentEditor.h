// SPDX-License-Identifier: Apache-2.0
// The window "Argument Editor": which free inputs become arguments of the shader.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "base/Listeners.h"
#include "sliders/ArgumentRows.h"
#include "ui/windows/ToolWindow.h"

class QLabel;
class QScrollBar;

namespace tavrin {

class CArgumentRow;
class CTvDoc;

// Lists all free inputs of the network, whatever is selected, in step with the document. Lives as long as the
// frame; the document outlives it. There are row windows for what is in view, and for the row with the focus
// wherever it has been scrolled to; a row that is scrolled away gives its window to another one. A hidden
// editor does nothing until it comes up.
class CArgumentEditor : public ToolWindow {
  public:
    CArgumentEditor(QWidget* frame, CTvDoc& document);

    // Brings the rows of an editor that is shown in line with the network. Those that stay keep the focus,
    // caret and what is being typed.
    void SyncRows();
    // Shows one button as it is now; nothing without a row in view for it.
    void RefreshRow(const COpButton& button);
    // In pixels; brought into the range of the scroll bar.
    void SetScrollTop(int offset);

    void Follow(const Change& change) override;

    const ArgumentRows& Rows() const { return m_rows; }
    // By the number of the row, top first.
    const std::map<size_t, CArgumentRow*>& RowWindows() const { return m_windows; }
    // How often a row window was brought in line with its button, since the start: what an edit has cost.
    int Refreshes() const { return m_refreshes; }

  protected:
    // The Tab key goes through rows that have no window yet.
    bool focusNextPrevChild(bool next) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;
    // What the fields leave of the arrow and page keys.
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void MeasureRow();
    void LetAllGo();
    void MatchWindows();
    void PlaceRows();
    void SpareWindowsOutOf(const ArgumentRows::Span& span);
    void PlaceWindow(size_t row);
    CArgumentRow* SpareWindow();
    void DropSpareWindows();
    void UpdateScrollBar();
    std::optional<ArgumentPlace> FocusedPlace() const;
    bool FocusOn(const std::optional<ArgumentPlace>& place, Qt::FocusReason reason);
    void ShowWholeRow(const CArgumentRow& window);

    CTvDoc& m_document;
    ArgumentRows m_rows;
    std::map<size_t, CArgumentRow*> m_windows;  // children of m_client, by row
    std::vector<CArgumentRow*> m_spare;         // the same, hidden, without a button
    QWidget* m_client;                          // what is left of the scroll bar
    QScrollBar* m_bar;
    QLabel* m_nothing;  // stands where no rows do
    int m_refreshes = 0;
    Listeners<>::Subscription m_beforeDelete;
};

}  // namespace tavrin
