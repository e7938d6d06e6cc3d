// SPDX-License-Identifier: Apache-2.0
// A tool window that lists something of the document, to be looked at.
#pragma once

#include <functional>
#include <vector>

#include "ui/windows/ToolWindow.h"

class QTreeWidget;

namespace tavrin {

// Asks for its rows when it comes up and whenever it is told that they may have changed.
class TableWindow : public ToolWindow {
  public:
    using Rows = std::vector<QStringList>;

    TableWindow(const QString& title, QWidget* frame, const QStringList& columns, std::function<Rows()> rows);

    // Costs nothing while the window is hidden.
    void Refresh();

    void Follow(const Change&) override { Refresh(); }
    void TitleChanged() override { Refresh(); }

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    std::function<Rows()> m_rows;
    Rows m_shown;
    QTreeWidget* m_table;
};

}  // namespace tavrin
