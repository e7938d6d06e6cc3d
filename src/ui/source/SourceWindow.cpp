// SPDX-License-Identifier: Apache-2.0
#include "ui/source/SourceWindow.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "document/TvDoc.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "ui/base/Text.h"
#include "ui/source/SourceColumn.h"

namespace tavrin {

namespace {

constexpr const char* kTypeOption = "TAVRN_SHADER_TYPE";
constexpr int kLetters = 96;  // at first
constexpr int kLines = 40;
constexpr int kSpace = 6;

}  // namespace

SourceWindow::SourceWindow(QWidget* frame, Needs needs)
    : ToolWindow("Source", frame),
      m_needs(std::move(needs)),
      m_maker({m_needs.document, m_needs.session, m_needs.site, m_needs.siteCodeGen,
               [this](const SourceKind& kind) { ShowMade(kind); }}) {
    m_chooser = new QToolButton(this);
    m_chooser->setText("&Columns");
    m_chooser->setToolTip("Choose which sources stand side by side");
    m_chooser->setPopupMode(QToolButton::InstantPopup);
    m_choices = new QMenu(m_chooser);
    m_chooser->setMenu(m_choices);
    connect(m_choices, &QMenu::aboutToShow, this, [this] { FillChooser(); });
    m_remark = new QLabel(this);
    m_remark->setTextFormat(Qt::PlainText);
    m_remark->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_split = new QSplitter(Qt::Horizontal, this);
    m_split->setChildrenCollapsible(false);
    m_place = new QLabel(this);
    m_place->setTextFormat(Qt::PlainText);
    m_place->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_place->setText("A click on a line goes to its box");
    m_place->setAccessibleName("Origin of the line");
    auto* top = new QHBoxLayout;
    top->addWidget(m_chooser);
    top->addWidget(m_remark, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kSpace, kSpace, kSpace, kSpace);
    column->addLayout(top);
    column->addWidget(m_split, 1);
    column->addWidget(m_place);
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPause);
    m_pause.callOnTimeout([this] { RefreshWhenIdle(); });
    m_marksChange = m_needs.session.marks.afterChange.Add([this] {
        if (IsUp()) Mark();
    });
    ArrangeColumns();
    resize(kLetters * fontMetrics().averageCharWidth(), kLines * fontMetrics().lineSpacing());
}

SourceWindow::~SourceWindow() = default;

std::string SourceWindow::CurrentType() const {
    const auto& options = m_needs.document.m_renderOptions;
    const auto found = options.find(kTypeOption);
    return found == options.end() ? std::string() : found->second;
}

std::vector<SourceKind> SourceWindow::Offered() const {
    std::vector<SourceKind> offered;
    const auto add = [&offered](SourceKind kind) {
        if (std::find(offered.begin(), offered.end(), kind) == offered.end())
            offered.push_back(std::move(kind));
    };
    for (const std::string& type : m_needs.types()) add({true, type});
    add({true, CurrentType()});
    add({false, {}});
    return offered;
}

std::vector<SourceKind> SourceWindow::Chosen() const {
    if (!m_chosen) return {{true, CurrentType()}};
    std::vector<SourceKind> chosen = Offered();
    std::erase_if(chosen, [this](const SourceKind& kind) {
        return std::find(m_chosen->begin(), m_chosen->end(), kind) == m_chosen->end();
    });
    return chosen;
}

void SourceWindow::FillChooser() {
    m_choices->clear();
    const std::vector<SourceKind> chosen = Chosen();
    for (const SourceKind& kind : Offered()) {
        QAction* choice = m_choices->addAction(LiteralLabel(SourceColumn::NameOf(kind)));
        const bool isShown = std::find(chosen.begin(), chosen.end(), kind) != chosen.end();
        choice->setCheckable(true);
        choice->setChecked(isShown);
        choice->setEnabled(!isShown || chosen.size() > 1);
        connect(choice, &QAction::triggered, this, [this, kind](bool shows) { Choose(kind, shows); });
    }
}

void SourceWindow::Choose(const SourceKind& kind, bool isShown) {
    std::vector<SourceKind> chosen = Chosen();
    std::erase(chosen, kind);
    if (isShown) chosen.push_back(kind);
    if (chosen.empty()) return;
    m_chosen = chosen;
    ArrangeColumns();
    Refresh();
}

SourceColumn* SourceWindow::ColumnOf(const SourceKind& kind) const {
    const auto isIt = [&kind](const SourceColumn* column) { return column->Kind() == kind; };
    const auto found = std::find_if(m_columns.begin(), m_columns.end(), isIt);
    return found == m_columns.end() ? nullptr : *found;
}

// Columns that stand already keep what they show.
void SourceWindow::ArrangeColumns() {
    const std::vector<SourceKind> chosen = Chosen();
    std::vector<SourceColumn*> columns;
    for (const SourceKind& kind : chosen) {
        SourceColumn* column = ColumnOf(kind);
        if (column == nullptr) {
            column = new SourceColumn(kind, {[this, kind](size_t line) { TellPlace(kind, line); },
                                             [this, kind](size_t line) { GoTo(kind, line); }});
        }
        m_split->insertWidget(static_cast<int>(columns.size()), column);
        columns.push_back(column);
    }
    for (SourceColumn* column : m_columns) {
        if (std::find(columns.begin(), columns.end(), column) == columns.end()) delete column;
    }
    const bool isOther = columns != m_columns;
    m_columns = columns;
    setFocusProxy(&m_columns.front()->View());
    if (!isOther) return;
    m_split->setSizes(QList<int>(static_cast<qsizetype>(columns.size()), 1000));
}

}  // namespace tavrin
