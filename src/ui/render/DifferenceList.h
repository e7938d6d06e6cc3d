// SPDX-License-Identifier: Apache-2.0
// What differs between two networks, as a table.
#pragma once

#include <QTreeWidget>
#include <functional>
#include <set>
#include <vector>

#include "render/NetworkCompare.h"

namespace tavrin {

// Differences in groups by their kind, with what was and what is. Rows whose box cannot be gone to are paler,
// and their tips say why. A table of thousands shows the first ones and tells how many more there are. Owned
// by its window.
class DifferenceList : public QTreeWidget {
  public:
    static constexpr size_t kMostRows = 2000;
    enum Column { kWhat, kOlder, kNewer, kColumns };

    // `go` gets the place of a difference that is double clicked, or chosen by Enter.
    DifferenceList(QWidget* parent, std::function<void(size_t place)> go);

    // Replaces all rows; the selected ones, the folded groups and what is in view stay where they can.
    using IsOnDesk = std::function<bool(const Difference&)>;
    void Show(const std::vector<Difference>& differences, const IsOnDesk& isOnDesk);
    void SetNames(const QString& older, const QString& newer);

    // Places among the differences, in their order.
    std::vector<size_t> Selected() const;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    void AddGroup(const std::vector<Difference>& differences, const std::vector<size_t>& places,
                  const IsOnDesk& isOnDesk);
    void AddRow(QTreeWidgetItem& group, const Difference& difference, size_t place, bool isOnDesk);
    void Go(const QTreeWidgetItem* item) const;

    std::function<void(size_t)> m_go;
    size_t m_rows = 0;
    std::set<int> m_folded;  // kinds
    std::set<QString> m_wasSelected;
};

}  // namespace tavrin
