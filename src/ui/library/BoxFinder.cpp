// SPDX-License-Identifier: Apache-2.0
#include "ui/library/BoxFinder.h"

#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>
#include <vector>

#include "document/Change.h"
#include "library/OpBox.h"
#include "text/Tokens.h"
#include "ui/windows/FinderList.h"

namespace tavrin {

namespace {

constexpr QRgb kBackground = qRgb(190, 210, 210);
constexpr QRgb kText = qRgb(0, 10, 0);
constexpr int kColumnsShown = 32;
constexpr int kRowsShown = 16;

}  // namespace

BoxFinder::BoxFinder(QWidget* frame, Needs needs)
    : ToolWindow("Box Finder", frame), m_needs(std::move(needs)), m_update(new QTimer(this)) {
    m_list = new FinderList(this, {QColor(kBackground), QColor(kText)},
                            [this](const std::string& name) { Choose(name); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    m_update->setSingleShot(true);
    connect(m_update, &QTimer::timeout, this, [this] { UpdateList(); });
    const QFontMetrics metrics = m_list->fontMetrics();
    resize(kColumnsShown * metrics.averageCharWidth() +
               style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this),
           kRowsShown * metrics.height());
}

void BoxFinder::Follow(const Change& change) {
    if (change.replaced) Clear();
    for (const GoneBox& box : change.went) RemoveName(box.boxTitleWid);
    for (const COpBox* box : change.came) AddName(box->BoxTitleWid());
}

void BoxFinder::AddName(const std::string& name) {
    m_names.emplace(ToLower(name), name);
    RowsChanged();
}

void BoxFinder::RemoveName(const std::string& name) {
    const auto found = m_names.find({ToLower(name), name});
    if (found == m_names.end()) return;
    m_names.erase(found);
    RowsChanged();
}

void BoxFinder::Clear() {
    m_names.clear();
    m_currentName.clear();
    RowsChanged();
}

void BoxFinder::Closing() {
    m_currentName.clear();
    m_needs.repaintDesk();
}

void BoxFinder::showEvent(QShowEvent* event) {
    if (m_update->isActive()) UpdateList();
    ToolWindow::showEvent(event);
}

void BoxFinder::TakeKeys() {
    m_list->TakeKeys();
    activateWindow();
}

void BoxFinder::RowsChanged() {
    if (!m_update->isActive()) m_update->start(0);
}

void BoxFinder::UpdateList() {
    m_update->stop();
    std::vector<FinderRow> rows;
    rows.reserve(m_names.size());
    for (const auto& [key, name] : m_names) rows.push_back({name, false});
    m_list->SetRows(std::move(rows));
}

void BoxFinder::Choose(const std::string& name) {
    m_currentName = name;
    m_needs.centreOnBox(name);
}

}  // namespace tavrin
