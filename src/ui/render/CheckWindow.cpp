// SPDX-License-Identifier: Apache-2.0
#include "ui/render/CheckWindow.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "document/DocumentReader.h"
#include "document/TvDoc.h"
#include "render/NetworkMend.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

// Milliseconds without a change after which a hand rests.
constexpr int kPause = 60;
constexpr int kSpace = 8;
constexpr QSize kFirstSize(620, 280);

enum Column { kWhere, kWhat, kColumns };

QString WhereOf(const Finding& finding) {
    if (finding.box.empty()) return "Network";
    return Shown(finding.button.empty() ? finding.box : finding.box + " " + finding.button);
}

QString TextOf(const QTreeWidgetItem& row) { return row.text(kWhere) + row.text(kWhat); }

}  // namespace

CheckWindow::CheckWindow(QWidget* frame, Needs needs)
    : ToolWindow("Check", frame), m_needs(std::move(needs)) {
    MakeList();
    m_sum = new QLabel(this);
    m_sum->setTextFormat(Qt::PlainText);
    const auto button = [this](const QString& text, const QString& tip, auto press) {
        auto* made = new QPushButton(text, this);
        made->setToolTip(tip);
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, press);
        return made;
    };
    m_goTo = button("&Go to Box", "Show the box on the desk (double click)", [this] { GoTo(); });
    m_mend = button("&Mend", {}, [this] { Mend(); });
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_sum, 1);
    buttons->addWidget(m_goTo);
    buttons->addWidget(m_mend);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kSpace, kSpace, kSpace, kSpace);
    column->addWidget(m_list, 1);
    column->addLayout(buttons);
    setFocusProxy(m_list);
    resize(kFirstSize);
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPause);
    m_pause.callOnTimeout([this] { Refresh(); });
    UpdateButtons();
}

void CheckWindow::MakeList() {
    m_list = new QTreeWidget(this);
    m_list->setColumnCount(kColumns);
    m_list->setHeaderLabels({"Where", "What"});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setAccessibleName("Findings");
    m_list->header()->resizeSection(kWhere, m_list->fontMetrics().averageCharWidth() * 26);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, [this] { UpdateButtons(); });
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, [this] { GoTo(); });
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* go = new QShortcut(key, m_list, nullptr, nullptr, Qt::WidgetShortcut);
        connect(go, &QShortcut::activated, this, [this] { GoTo(); });
    }
}

void CheckWindow::Follow(const Change& change) {
    if (change.replaced) LookAtFile();
    const bool concerns = change.HasBoxes() || !change.buttons.empty() || !change.tuned.empty() ||
                          change.wires || change.options || change.settings;
    if (concerns) NetworkChanged();
}

// Of what stands in the file and is not in the network, nobody could tell later.
void CheckWindow::LookAtFile() {
    m_ofFile.clear();
    if (m_needs.document.Path().empty()) return;
    std::string error;
    auto archive = CArchive::Open(m_needs.document.Path(), error);
    if (!archive) return;
    m_ofFile = CheckDocumentForm(ReadDocument(std::move(*archive)), m_needs.document, m_needs.registry);
}

void CheckWindow::NetworkChanged() {
    m_isStale = true;
    if (isVisible()) m_pause.start();
}

void CheckWindow::showEvent(QShowEvent* event) {
    if (m_isStale) Refresh();
    ToolWindow::showEvent(event);
}

void CheckWindow::SetLocked(bool locked) {
    m_isLocked = locked;
    UpdateButtons();
}

void CheckWindow::Refresh() {
    m_pause.stop();
    m_isStale = false;
    // What is amiss is what the list is for.
    std::vector<Finding> findings = m_ofFile;
    {
        const HeldAlerts alerts(m_needs.site.report);
        const HeldLog log(m_needs.site.report);
        const std::vector<Finding> found = CheckNetwork(m_needs.document, m_needs.site);
        findings.insert(findings.end(), found.begin(), found.end());
    }
    std::stable_partition(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Finding::Severity::kError;
    });
    if (findings == m_findings && !findings.empty()) return;
    findings.swap(m_findings);
    Show(findings);
}

// Rows that are the same before and behind what differs stay: most changes concern a few of many. The row
// that was chosen stays so while it is among them.
void CheckWindow::Show(const std::vector<Finding>& before) {
    const auto listed = static_cast<size_t>(m_list->topLevelItemCount());
    const size_t wanted = std::min(m_findings.size(), kMostRows);
    const size_t both = std::min(listed, wanted);
    size_t ahead = 0;
    while (ahead < both && before[ahead] == m_findings[ahead]) ++ahead;
    size_t behind = 0;
    while (behind < both - ahead && before[listed - 1 - behind] == m_findings[wanted - 1 - behind]) ++behind;
    const QTreeWidgetItem* current = m_list->currentItem();
    const QString chosen = current == nullptr ? QString() : TextOf(*current);
    QList<QTreeWidgetItem*> rows;
    for (size_t place = ahead; place < wanted - behind; ++place) rows.append(MakeRow(m_findings[place]));
    const QSignalBlocker blocker(m_list);  // the toolkit chooses a neighbour of a row that goes
    for (size_t place = listed - behind; place > ahead; --place)
        delete m_list->takeTopLevelItem(static_cast<int>(place - 1));
    m_list->insertTopLevelItems(static_cast<int>(ahead), rows);
    current = m_list->currentItem();
    if (current == nullptr || TextOf(*current) != chosen) {
        const auto same = std::find_if(rows.begin(), rows.end(),
                                       [&](const QTreeWidgetItem* row) { return TextOf(*row) == chosen; });
        m_list->clearSelection();
        m_list->setCurrentItem(same == rows.end() ? nullptr : *same);
    }
    ShowSum();
    UpdateButtons();
}

void CheckWindow::ShowSum() {
    const auto isError = [](const Finding& finding) { return finding.severity == Finding::Severity::kError; };
    const auto errors = std::count_if(m_findings.begin(), m_findings.end(), isError);
    const auto warnings = static_cast<qsizetype>(m_findings.size()) - errors;
    const auto counted = [](qsizetype count, const char* thing) {
        return QString("%1 %2%3").arg(count).arg(thing).arg(count == 1 ? "" : "s");
    };
    if (m_findings.empty()) {
        m_sum->setText(m_needs.document.m_boxes.empty() ? "The desk is empty: there is nothing to check."
                                                        : "Nothing to tell: the network is fine.");
    } else {
        m_sum->setText(
            counted(errors, "error") + ", " + counted(warnings, "warning") +
            (m_findings.size() > kMostRows ? QString("; the first %1 are listed").arg(kMostRows) : ""));
    }
}

QTreeWidgetItem* CheckWindow::MakeRow(const Finding& finding) const {
    auto* row = new QTreeWidgetItem({WhereOf(finding), Shown(finding.message)});
    const bool isError = finding.severity == Finding::Severity::kError;
    row->setIcon(kWhere, style()->standardIcon(isError ? QStyle::SP_MessageBoxCritical
                                                       : QStyle::SP_MessageBoxWarning));
    const QString tip = Shown(finding.Text()).toHtmlEscaped();
    for (int column = 0; column < kColumns; ++column) row->setToolTip(column, "<qt>" + tip + "</qt>");
    row->setData(kWhere, Qt::AccessibleTextRole, (isError ? "Error: " : "Warning: ") + WhereOf(finding));
    return row;
}

const Finding* CheckWindow::Current() const {
    const QList<QTreeWidgetItem*> selected = m_list->selectedItems();
    if (selected.isEmpty()) return nullptr;
    const int place = m_list->indexOfTopLevelItem(selected.front());
    return place >= 0 && static_cast<size_t>(place) < m_findings.size()
               ? &m_findings[static_cast<size_t>(place)]
               : nullptr;
}

void CheckWindow::GoTo() {
    const Finding* finding = Current();
    if (finding != nullptr && !finding->box.empty()) m_needs.goToBox(finding->box);
}

void CheckWindow::Mend() {
    const Finding* current = Current();
    if (current == nullptr) return;
    const Finding finding = *current;
    if (!MendNetwork(finding, m_needs.document, m_needs.desk)) {
        m_needs.tell("Nothing was changed: " + MendText(finding) + " is not possible as the network stands");
    }
    NetworkChanged();
}

void CheckWindow::UpdateButtons() {
    const Finding* finding = Current();
    m_goTo->setEnabled(finding != nullptr && !finding->box.empty());
    const std::string offer = finding == nullptr ? std::string() : MendText(*finding);
    m_mend->setEnabled(!offer.empty() && !m_isLocked);
    m_mend->setText(offer.empty() ? "&Mend" : LiteralLabel(Shown(offer)));
    m_mend->setToolTip(offer.empty() ? "Choose a finding for which it is clear what to do" : Shown(offer));
}

}  // namespace tavrin
