// SPDX-License-Identifier: Apache-2.0
#include "ui/render/CompareWindow.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <utility>

#include "ui/render/DifferenceList.h"
#include "ui/render/SourceColumns.h"

namespace tavrin {

namespace {

constexpr int kColumns = 130;  // letters, at first
constexpr int kLines = 30;

void Add(QBoxLayout& layout, std::initializer_list<QWidget*> widgets) {
    for (QWidget* widget : widgets) layout.addWidget(widget);
}

// A part of the window: what fills it, and a row of buttons below.
QWidget* Page(QWidget* filling, std::initializer_list<QWidget*> below) {
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->addWidget(filling, 1);
    auto* row = new QHBoxLayout;
    column->addLayout(row);
    Add(*row, below);
    row->addStretch();
    return page;
}

}  // namespace

CompareWindow::CompareWindow(QWidget* frame, Needs needs)
    : ToolWindow("Compare Renders", frame), m_needs(std::move(needs)), m_comparison(m_needs.comparison) {
    m_notes = new QLabel(this);
    m_notes->setTextFormat(Qt::PlainText);
    m_notes->setWordWrap(true);
    m_parts = new QTabWidget(this);
    m_parts->addTab(MakeDifferences(), "&Differences");
    m_parts->addTab(MakeSource(), "&Source");
    m_parts->addTab(MakePictures(), "&Pictures");
    auto* column = new QVBoxLayout(this);
    column->addWidget(MakeChoosers());
    column->addWidget(m_notes);
    column->addWidget(m_parts, 1);
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPause);
    connect(&m_pause, &QTimer::timeout, this, [this] { RefreshWhenIdle(); });
    connect(m_parts, &QTabWidget::currentChanged, this, [this](int part) {
        if (part == static_cast<int>(Part::kSource)) RefreshSource();
    });
    setFocusProxy(m_list);
    resize(kColumns * fontMetrics().averageCharWidth(), kLines * fontMetrics().lineSpacing());
    FillChoosers();
}

// Children that go tell of it.
CompareWindow::~CompareWindow() {
    m_list->disconnect(this);
    m_parts->disconnect(this);
}

QWidget* CompareWindow::MakeChoosers() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (auto [chooser, name] : {std::pair(&m_older, "&Older:"), std::pair(&m_newer, "&Newer:")}) {
        auto* label = new QLabel(name, row);
        *chooser = new QComboBox(row);
        (*chooser)->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        (*chooser)->setAccessibleName(chooser == &m_older ? "Older" : "Newer");
        label->setBuddy(*chooser);
        layout->addWidget(label);
        layout->addWidget(*chooser, 1);
        connect(*chooser, &QComboBox::activated, this, [this] { ChosenByHand(); });
    }
    return row;
}

QWidget* CompareWindow::MakeDifferences() {
    m_list = new DifferenceList(this, [this](size_t place) { GoTo(place); });
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, [this] { UpdateButtons(); });
    m_goToBox = MakeButton("&Go to Box", "Show the box on the desk and select it (double click)", [this] {
        if (const auto selected = m_list->Selected(); !selected.empty()) GoTo(selected.front());
    });
    m_takeOver = MakeButton("&Take Over", "Give the desk what the render has of the selected rows",
                            [this] { TakeOverSelected(); });
    return Page(m_list, {m_goToBox, m_takeOver});
}

QWidget* CompareWindow::MakeSource() {
    m_source = new SourceColumns(this);
    m_changes = new QLabel(this);
    const auto go = [this](bool next) {
        m_source->GoToChange(next);
        UpdateButtons();
    };
    m_previousChange =
        MakeButton("Pre&vious Change", "Go to the change before (P, Alt+Up)", [go] { go(false); });
    m_nextChange = MakeButton("Ne&xt Change", "Go to the next change (N, Alt+Down)", [go] { go(true); });
    return Page(m_source, {m_previousChange, m_nextChange, m_changes});
}

QWidget* CompareWindow::MakePictures() {
    m_pictures = new QLabel(this);
    m_pictures->setTextFormat(Qt::PlainText);
    m_pictures->setWordWrap(true);
    m_pictures->setAlignment(Qt::AlignCenter);
    m_comparePictures = MakeButton("&Compare Pictures", "Show both pictures in the picture window", [this] {
        m_needs.comparePictures(m_comparison.Older(), m_comparison.Newer());
    });
    return Page(m_pictures, {m_comparePictures});
}

QPushButton* CompareWindow::MakeButton(const QString& text, const QString& tip, std::function<void()> press) {
    auto* button = new QPushButton(text, this);
    button->setToolTip(tip);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, std::move(press));
    return button;
}

std::vector<size_t> CompareWindow::Givable() {
    std::vector<size_t> places = m_list->Selected();
    const std::vector<Difference>& differences = m_comparison.Differences();
    std::erase_if(places, [&](size_t place) {
        return place >= differences.size() || !m_comparison.CanGive(differences[place]);
    });
    return places;
}

void CompareWindow::UpdateButtons() {
    const std::vector<size_t> selected = m_list->Selected();
    m_goToBox->setEnabled(selected.size() == 1 && !BoxOnDesk(selected.front()).empty());
    m_takeOver->setEnabled(!m_isLocked && !selected.empty() && !Givable().empty());
    const int change = m_source->CurrentChange();
    const int count = static_cast<int>(m_source->ChangeCount());
    m_nextChange->setEnabled(count > 0 && change + 1 < count);
    m_previousChange->setEnabled(count > 0 && change != 0);
}

std::string CompareWindow::BoxOnDesk(size_t place) {
    const std::vector<Difference>& differences = m_comparison.Differences();
    if (place >= differences.size()) return {};
    const std::string& title = differences[place].box;
    const auto& boxes = m_needs.comparison.document.m_boxes;
    const auto isIt = [&title](const auto& box) { return box->BoxTitleWid() == title; };
    return std::any_of(boxes.begin(), boxes.end(), isIt) ? title : std::string();
}

void CompareWindow::GoTo(size_t place) {
    const std::string title = BoxOnDesk(place);
    if (!title.empty()) m_needs.goToBox(title);
}

void CompareWindow::TakeOverSelected() {
    const std::vector<size_t> places = Givable();
    if (m_isLocked || places.empty()) return;
    m_comparison.Give(places, m_needs.setOption);
    Refresh();
}

}  // namespace tavrin
