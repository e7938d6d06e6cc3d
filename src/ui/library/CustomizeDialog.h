// SPDX-License-Identifier: Apache-2.0
// The modal dialog "Customize Operator Toolbar", where the user picks the operators of the toolbar.
#pragma once

#include <QApplication>
#include <QDialog>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

class QListWidget;
class QMenu;
class QPushButton;

namespace tavrin {

class COpRegistry;

// Made for one run; the registry is not reloaded meanwhile. The list ends in a row without text, the end
// marker, which stays last: what is added while it is selected comes last.
class CustomizeDialog : public QDialog {
  public:
    enum ControlId { kAdd = 1003, kDelete = 1004, kRaise = 1005, kLower = 1006, kSort = 1007 };

    // `names` is the toolbar's list; those that the library lacks get no row. `beep` refuses a name that is
    // in the list already.
    CustomizeDialog(QWidget* owner, const COpRegistry& registry, std::vector<std::string> names,
                    std::function<void()> beep = QApplication::beep);

    // The names as they stood when "OK" was pressed; before that, or after "Cancel", those given.
    std::vector<std::string> Result() const { return m_result; }

    void accept() override;

  private:
    void MakeLayout();
    QPushButton* MakeButton(ControlId id, const char* role, const QString& caption);
    void AppendEndMarker();

    void OpenOperators();
    void AddOperator(uint32_t id);
    void DeleteRow();
    void MoveRow(int step);
    void SortRows();
    void EnableButtons();
    void Enable(ControlId id, bool enabled);

    int SelectedRow() const;  // -1 for none
    int EndRow() const;       // of the end marker
    std::string NameAt(int row) const;

    const COpRegistry& m_registry;
    std::vector<std::string> m_result;
    std::function<void()> m_beep;
    // Children.
    QListWidget* m_list;
    QMenu* m_operators;
    std::map<ControlId, QPushButton*> m_buttons;
};

}  // namespace tavrin
