// SPDX-License-Identifier: Apache-2.0
#include "ui/render/DifferenceList.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <algorithm>
#include <array>

#include "ui/base/Text.h"

namespace tavrin {

namespace {

using Kind = Difference::Kind;

constexpr int kPlaceRole = Qt::UserRole;
constexpr int kKindRole = Qt::UserRole + 1;
constexpr int kTextRole = Qt::UserRole + 2;
constexpr int kWhatColumns = 44;  // letters
constexpr int kValueColumns = 26;

struct Group {
    Kind kind;
    const char* title;
};
constexpr std::array<Group, 7> kGroups = {{
    {Kind::kBox, "Boxes"},
    {Kind::kInput, "Inputs"},
    {Kind::kWire, "Wires"},
    {Kind::kValue, "Values"},
    {Kind::kArgument, "Arguments"},
    {Kind::kOption, "Render Options"},
    {Kind::kHelp, "Shader Help"},
}};

// The group says the rest of it.
QString WhatOf(const Difference& difference) {
    switch (difference.kind) {
        case Kind::kWire:
            return Shown(difference.box + " " + difference.button);
        case Kind::kOption:
            return Shown(difference.button);
        default:
            return Shown(difference.what);
    }
}

QString ValueOf(const std::string& text, Kind kind) {
    const bool comesAndGoes = kind == Kind::kBox || kind == Kind::kInput || kind == Kind::kWire;
    return text.empty() && comesAndGoes ? QString(QChar(0x2013)) : Shown(text);
}

}  // namespace

DifferenceList::DifferenceList(QWidget* parent, std::function<void(size_t place)> go)
    : QTreeWidget(parent), m_go(std::move(go)) {
    setColumnCount(kColumns);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setUniformRowHeights(true);
    setExpandsOnDoubleClick(false);
    setAllColumnsShowFocus(true);
    setAccessibleName("Differences");
    const int letter = fontMetrics().averageCharWidth();
    header()->resizeSection(kWhat, kWhatColumns * letter);
    header()->resizeSection(kOlder, kValueColumns * letter);
    connect(this, &QTreeWidget::itemCollapsed, this,
            [this](const QTreeWidgetItem* item) { m_folded.insert(item->data(0, kKindRole).toInt()); });
    connect(this, &QTreeWidget::itemExpanded, this,
            [this](const QTreeWidgetItem* item) { m_folded.erase(item->data(0, kKindRole).toInt()); });
}

void DifferenceList::SetNames(const QString& older, const QString& newer) {
    setHeaderLabels({"Difference", older, newer});
}

void DifferenceList::Show(const std::vector<Difference>& differences, const IsOnDesk& isOnDesk) {
    const int top = verticalScrollBar()->value();
    m_wasSelected.clear();
    for (const QTreeWidgetItem* item : selectedItems())
        m_wasSelected.insert(item->data(0, kTextRole).toString());
    clear();
    m_rows = 0;
    std::array<std::vector<size_t>, kGroups.size()> places;
    for (size_t place = 0; place < differences.size(); ++place)
        places.at(static_cast<size_t>(differences[place].kind)).push_back(place);
    for (const std::vector<size_t>& group : places) {
        if (!group.empty()) AddGroup(differences, group, isOnDesk);
    }
    if (differences.empty()) (new QTreeWidgetItem(this, {"Nothing differs"}))->setFlags(Qt::NoItemFlags);
    doItemsLayout();  // else there is no range to scroll in yet
    verticalScrollBar()->setValue(top);
}

void DifferenceList::AddGroup(const std::vector<Difference>& differences, const std::vector<size_t>& places,
                              const IsOnDesk& isOnDesk) {
    const Kind kind = differences[places.front()].kind;
    const auto isIt = [kind](const Group& group) { return group.kind == kind; };
    const QString title = std::find_if(kGroups.begin(), kGroups.end(), isIt)->title;
    auto* group = new QTreeWidgetItem(this, {QString("%1 (%2)").arg(title).arg(places.size())});
    group->setData(0, kKindRole, static_cast<int>(kind));
    group->setFlags(Qt::ItemIsEnabled);
    group->setFirstColumnSpanned(true);
    QFont bold = font();
    bold.setBold(true);
    group->setFont(0, bold);
    size_t shown = 0;
    for (; shown < places.size() && m_rows < kMostRows; ++shown, ++m_rows) {
        const Difference& difference = differences[places[shown]];
        AddRow(*group, difference, places[shown], isOnDesk(difference));
    }
    if (shown < places.size()) {
        auto* more = new QTreeWidgetItem(group, {QString("and %1 more").arg(places.size() - shown)});
        more->setFlags(Qt::NoItemFlags);
    }
    const bool isFolded = m_folded.contains(static_cast<int>(kind));
    group->setExpanded(!isFolded);
}

void DifferenceList::AddRow(QTreeWidgetItem& group, const Difference& difference, size_t place,
                            bool isOnDesk) {
    auto* row = new QTreeWidgetItem(&group, {WhatOf(difference), ValueOf(difference.older, difference.kind),
                                             ValueOf(difference.newer, difference.kind)});
    const QString text = Shown(difference.text);
    row->setData(0, kPlaceRole, static_cast<qulonglong>(place));
    row->setData(0, kTextRole, Shown(difference.what));
    const bool isPale = !difference.box.empty() && !isOnDesk;
    const QString tip = text.toHtmlEscaped() + (isPale ? "<br>The box is not on the desk." : "");
    for (int column = 0; column < kColumns; ++column) {
        row->setToolTip(column, "<qt>" + tip + "</qt>");
        if (isPale) row->setForeground(column, palette().brush(QPalette::Disabled, QPalette::Text));
    }
    if (m_wasSelected.contains(Shown(difference.what))) row->setSelected(true);
}

std::vector<size_t> DifferenceList::Selected() const {
    std::vector<size_t> places;
    for (const QTreeWidgetItem* item : selectedItems()) {
        const QVariant place = item->data(0, kPlaceRole);
        if (place.isValid()) places.push_back(place.toULongLong());
    }
    std::sort(places.begin(), places.end());
    return places;
}

void DifferenceList::Go(const QTreeWidgetItem* item) const {
    if (item == nullptr) return;
    const QVariant place = item->data(0, kPlaceRole);
    if (place.isValid()) m_go(place.toULongLong());
}

// Not by `activated`, which some desktops tell of a single click.
void DifferenceList::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        Go(currentItem());
    } else {
        QTreeWidget::keyPressEvent(event);
    }
}

void DifferenceList::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeWidget::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton) Go(itemAt(event->position().toPoint()));
}

}  // namespace tavrin
