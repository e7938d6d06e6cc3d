// SPDX-License-Identifier: Apache-2.0
#include "ui/library/CustomizeDialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "library/OpRegistry.h"
#include "text/Tokens.h"
#include "ui/base/Text.h"
#include "ui/library/OperatorMenus.h"

namespace tavrin {

namespace {

constexpr int kNameRole = Qt::UserRole;  // the name's bytes, which the text shows
constexpr int kColumnsShown = 36;

QListWidgetItem* MakeRow(const std::string& name) {
    auto* row = new QListWidgetItem(Shown(name));
    row->setData(kNameRole, QByteArray::fromStdString(name));
    return row;
}

std::string NameOf(const QListWidgetItem& row) { return row.data(kNameRole).toByteArray().toStdString(); }

// While no row is selected there is no current one either: its mark would look like a selection, and the
// arrow keys would start from it.
class RowList : public QListWidget {
  public:
    using QListWidget::QListWidget;

  protected:
    void focusInEvent(QFocusEvent* event) override {
        QListWidget::focusInEvent(event);
        ForgetUnselected();
    }
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override {
        QListWidget::selectionChanged(selected, deselected);
        ForgetUnselected();
    }

  private:
    void ForgetUnselected() {
        if (!selectionModel()->hasSelection()) selectionModel()->clearCurrentIndex();
    }
};

}  // namespace

CustomizeDialog::CustomizeDialog(QWidget* owner, const COpRegistry& registry, std::vector<std::string> names,
                                 std::function<void()> beep)
    : QDialog(owner),
      m_registry(registry),
      m_result(std::move(names)),
      m_beep(std::move(beep)),
      m_list(new RowList(this)),
      m_operators(new QMenu(this)) {
    setWindowTitle("Customize Operator Toolbar");
    setModal(true);
    m_list->setObjectName("list");
    m_list->setMinimumWidth(kColumnsShown * fontMetrics().averageCharWidth());
    m_operators->setObjectName("operators");
    FillOperatorMenu(*m_operators, registry.Root(), [this](uint32_t id) { AddOperator(id); });
    MakeLayout();
    for (const std::string& name : m_result) {
        if (const COpEntry* entry = registry.FindByName(name)) m_list->addItem(MakeRow(entry->name));
    }
    AppendEndMarker();
    connect(m_list, &QListWidget::itemSelectionChanged, this, [this] { EnableButtons(); });
    EnableButtons();
}

void CustomizeDialog::MakeLayout() {
    auto* column = new QVBoxLayout;
    column->addWidget(MakeButton(kAdd, "add", "&Add..."));
    column->addWidget(MakeButton(kDelete, "delete", "&Delete"));
    column->addSpacing(fontMetrics().height() / 2);
    column->addWidget(MakeButton(kRaise, "raise", "&Raise"));
    column->addWidget(MakeButton(kLower, "lower", "&Lower"));
    column->addWidget(MakeButton(kSort, "sort", "&Sort"));
    column->addStretch();
    connect(m_buttons[kAdd], &QPushButton::clicked, this, [this] { OpenOperators(); });
    connect(m_buttons[kDelete], &QPushButton::clicked, this, [this] { DeleteRow(); });
    connect(m_buttons[kRaise], &QPushButton::clicked, this, [this] { MoveRow(-1); });
    connect(m_buttons[kLower], &QPushButton::clicked, this, [this] { MoveRow(1); });
    connect(m_buttons[kSort], &QPushButton::clicked, this, [this] { SortRows(); });

    auto* ends = new QDialogButtonBox(this);
    QPushButton* ok = ends->addButton("OK", QDialogButtonBox::AcceptRole);
    ok->setObjectName("ok");
    ok->setDefault(true);
    ends->addButton("Cancel", QDialogButtonBox::RejectRole)->setObjectName("cancel");
    connect(ends, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(ends, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* upper = new QHBoxLayout;
    upper->addWidget(m_list, 1);
    upper->addLayout(column);
    auto* whole = new QVBoxLayout(this);
    whole->addLayout(upper, 1);
    whole->addWidget(ends);
}

QPushButton* CustomizeDialog::MakeButton(ControlId id, const char* role, const QString& caption) {
    auto* button = new QPushButton(caption, this);
    button->setObjectName(role);
    button->setAutoDefault(false);  // Enter is "OK" wherever the focus is
    m_buttons[id] = button;
    return button;
}

void CustomizeDialog::AppendEndMarker() {
    QListWidgetItem* marker = MakeRow({});
    marker->setToolTip("The end of the toolbar");
    m_list->addItem(marker);
}

void CustomizeDialog::OpenOperators() {
    const QPushButton& button = *m_buttons[kAdd];
    m_operators->popup(button.mapToGlobal(button.rect().topRight()));
}

void CustomizeDialog::AddOperator(uint32_t id) {
    const COpEntry* entry = m_registry.FindById(id);
    if (entry == nullptr) return;
    for (int row = 0; row < EndRow(); ++row) {
        if (NameAt(row) != entry->name) continue;
        m_beep();
        return;
    }
    const int selected = SelectedRow();
    m_list->insertItem(selected < 0 ? EndRow() : selected, MakeRow(entry->name));
    EnableButtons();
}

void CustomizeDialog::DeleteRow() {
    const int row = SelectedRow();
    if (row < 0 || row == EndRow()) return;
    const QSignalBlocker whole(m_list);
    delete m_list->takeItem(row);
    m_list->setCurrentRow(row);  // what took its place, so that deleting goes on downwards
    EnableButtons();
}

void CustomizeDialog::MoveRow(int step) {
    const int row = SelectedRow();
    const int target = row + step;
    if (row < 0 || row == EndRow() || target < 0 || target == EndRow()) return;
    const QSignalBlocker whole(m_list);  // taken out, the row leaves the selection to another
    QListWidgetItem* item = m_list->takeItem(row);
    m_list->insertItem(target, item);
    m_list->setCurrentItem(item);
    EnableButtons();
}

void CustomizeDialog::SortRows() {
    const QSignalBlocker whole(m_list);
    const int selected = SelectedRow();
    QListWidgetItem* selectedItem = selected < 0 ? nullptr : m_list->item(selected);
    std::vector<std::pair<std::string, QListWidgetItem*>> rows;  // by the name in lower case
    while (EndRow() > 0) {
        QListWidgetItem* item = m_list->takeItem(0);
        rows.emplace_back(ToLower(NameOf(*item)), item);
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [key, item] : rows) m_list->insertItem(EndRow(), item);
    if (selectedItem != nullptr) {
        m_list->setCurrentItem(selectedItem);
    } else {
        m_list->clearSelection();  // taking rows away selects others
    }
    EnableButtons();
}

// A button that would do nothing for the selected row is disabled.
void CustomizeDialog::EnableButtons() {
    const int row = SelectedRow();
    const int end = EndRow();
    const bool isReal = row >= 0 && row < end;
    Enable(kAdd, !m_registry.Root().items.empty());
    Enable(kDelete, isReal);
    Enable(kRaise, isReal && row > 0);
    Enable(kLower, isReal && row < end - 1);
    Enable(kSort, end > 1);
}

void CustomizeDialog::Enable(ControlId id, bool enabled) {
    QPushButton* button = m_buttons[id];
    // Otherwise the focus would go on to "Lower" from a row that was raised to the top.
    if (!enabled && focusWidget() == button) m_list->setFocus();
    button->setEnabled(enabled);
}

int CustomizeDialog::SelectedRow() const {
    const QModelIndexList selected = m_list->selectionModel()->selectedIndexes();
    return selected.isEmpty() ? -1 : selected.front().row();
}

int CustomizeDialog::EndRow() const { return m_list->count() - 1; }

std::string CustomizeDialog::NameAt(int row) const { return NameOf(*m_list->item(row)); }

void CustomizeDialog::accept() {
    m_result.clear();
    for (int row = 0; row < EndRow(); ++row) m_result.push_back(NameAt(row));
    QDialog::accept();
}

}  // namespace tavrin
