// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/SliderFrame.h"

#include <QKeyEvent>
#include <QPainter>
#include <QToolButton>
#include <algorithm>

#include "icons/Icons.h"
#include "sliders/ArgumentEdits.h"
#include "ui/base/DocumentText.h"
#include "ui/base/Text.h"
#include "ui/sliders/NameLabel.h"
#include "ui/windows/OneLineField.h"

namespace tavrin {

namespace {

// Of the header, in dialog units.
constexpr int kUnitsWide = 92;
constexpr int kUnitsHigh = 27;
constexpr UnitRect kNames{3, 1, 86, 11};  // the box's and the button's
constexpr int kUnitsBetweenNames = 4;
constexpr UnitRect kComments{3, 13, 49, 12};
constexpr UnitRect kStow{54, 13, 12, 12};
constexpr UnitRect kPin{66, 13, 12, 12};
constexpr UnitRect kLock{78, 13, 12, 12};

constexpr int kBorder = 1;        // pixels round header and panel
constexpr int kHeaderAlpha = 22;  // of the text's colour over the ground

}  // namespace

CSliderFrame::CSliderFrame(QWidget* column, COpButton& button, CSliderDesk& desk, const SliderNeeds& needs)
    : QWidget(column),
      m_button(button),
      m_desk(desk),
      m_needs(needs),
      m_boxName(new NameLabel(this, Qt::AlignRight)),
      m_buttonName(new NameLabel(this, Qt::AlignRight)),
      m_comments(new OneLineField(this, [this](const std::string& text) { StoreComments(text); })),
      m_toggles{
          {{"Stow", "unstow-all", "stow-all", "Stow: show the name alone", &COpButton::stow},
           {"Pin", "unpin-all", "pin-all", "Pin: stay, whatever is selected", &COpButton::pin},
           {"Lock", "unlock-all", "lock-all", "Lock: keep the value from being changed", &COpButton::lock}}} {
    const DialogUnits units(fontMetrics());
    const auto place = [&](QWidget& control, const UnitRect& rect) {
        control.setGeometry(units.Pixels(rect).translated(kBorder, kBorder));
    };
    place(*m_comments, kComments);
    m_boxName->SetFaint(true);
    m_comments->setAccessibleName("Comments");
    m_comments->setPlaceholderText("Comment");
    MakeToggle(m_toggles[0], kStow, [this](bool stow) { Stow(stow); });
    MakeToggle(m_toggles[1], kPin, [this](bool pin) { Pin(pin); });
    MakeToggle(m_toggles[2], kLock, [this](bool lock) {
        if (COpButton* live = m_button.Get()) m_desk.SetLock(*live, lock);
    });
    Refresh();
}

void CSliderFrame::MakeToggle(Toggle& toggle, const UnitRect& place, std::function<void(bool)> clicked) {
    toggle.button = new QToolButton(this);
    toggle.button->setAccessibleName(toggle.name);
    toggle.button->setToolTip(toggle.tip);
    toggle.button->setCheckable(true);
    toggle.button->setAutoRaise(true);
    toggle.button->setFocusPolicy(Qt::TabFocus);
    toggle.button->setGeometry(DialogUnits(fontMetrics()).Pixels(place).translated(kBorder, kBorder));
    connect(toggle.button, &QToolButton::clicked, this, std::move(clicked));
}

int CSliderFrame::WidthIn(const DialogUnits& units) { return units.Across(kUnitsWide) + 2 * kBorder; }

int CSliderFrame::HeightOf(const COpButton& button, const DialogUnits& units) {
    const int header = units.Down(kUnitsHigh) + 2 * kBorder;
    return button.stow != 0 ? header : header + units.Down(PanelUnitsHigh(KindOfPanel(button)));
}

void CSliderFrame::Place(int y) {
    COpButton* button = m_button.Get();
    if (button == nullptr) return;
    const DialogUnits units(fontMetrics());
    const PanelKind kind = KindOfPanel(*button);
    SliderPanel*& slot = m_panels[static_cast<size_t>(kind)];
    const bool isNew = slot == nullptr;
    if (isNew) slot = MakePanel(kind, this, *button, m_needs);
    if (m_panel != slot) {
        if (m_panel != nullptr) {
            m_panel->PutAside();
            m_panel->hide();
        }
        m_panel = slot;
        m_panel->Refresh();
    }
    setGeometry(0, y, WidthIn(units), HeightOf(*button, units));
    if (button->stow == 0) {
        m_panel->setGeometry(kBorder + units.Across(kUnitsWide - SliderPanel::kUnitsWide) / 2,
                             units.Down(kUnitsHigh) + kBorder, units.Across(SliderPanel::kUnitsWide),
                             units.Down(PanelUnitsHigh(kind)));
    }
    m_panel->setVisible(button->stow == 0);
    if (isNew) FollowInTabChain(*m_comments);
    ShowNames();
    show();
}

void CSliderFrame::Refresh() {
    const COpButton* button = m_button.Get();
    if (button == nullptr) return;
    ShowNames();
    if (!m_isReading) m_comments->ShowText(button->comments);
    for (const Toggle& toggle : m_toggles) {
        const bool isSet = button->*toggle.flag != 0;
        toggle.button->setChecked(isSet);
        toggle.button->setIcon(Icon(isSet ? toggle.setIcon : toggle.clearedIcon));
    }
    if (m_panel != nullptr && !m_panel->IsEditing()) m_panel->Refresh();
}

void CSliderFrame::ShowNames() {
    const COpButton* button = m_button.Get();
    if (button == nullptr) return;
    m_boxName->SetName(Decoded(button->owner->BoxTitleWid()).text);
    m_buttonName->SetName(Decoded(button->DisplayName()).text);
    PlaceNames();
}

// Each has what it needs, or what the other leaves of the line, but no less than half.
void CSliderFrame::PlaceNames() {
    const DialogUnits units(fontMetrics());
    QRect box = units.Pixels(kNames).translated(kBorder, kBorder);
    QRect button = box;
    const int room = box.width() - units.Across(kUnitsBetweenNames);
    const int forBox = std::max(room / 2, room - m_buttonName->WholeWidth());
    const int forButton = room - std::min(m_boxName->WholeWidth(), forBox);
    button.setLeft(button.right() + 1 - forButton);
    box.setWidth(room - forButton);
    m_boxName->setGeometry(box);
    m_buttonName->setGeometry(button);
}

// As one edit: told in between, it would be shown again before all of it is read.
void CSliderFrame::Read() {
    const EditScope edit(m_needs.document, "Value");
    StoreComments(m_comments->Text());
    if (m_panel != nullptr) m_panel->Read();
}

void CSliderFrame::StoreComments(const std::string& text) {
    COpButton* button = m_button.Get();
    if (button == nullptr) return;
    m_isReading = true;
    SetComment(m_needs.document, *button, text);
    m_isReading = false;
}

// The frames below move, and this one may vanish.
void CSliderFrame::Stow(bool stow) {
    COpButton* button = m_button.Get();
    if (button == nullptr) return;
    m_desk.SetStow(*button, stow);
    m_desk.Update();
}

void CSliderFrame::Pin(bool pin) {
    COpButton* button = m_button.Get();
    if (button == nullptr) return;
    m_desk.SetPin(*button, pin);
    if (!pin) m_desk.Update();
}

void CSliderFrame::SetPanelEnabled(bool enabled) {
    if (m_panel != nullptr) m_panel->setEnabled(enabled);
    update();
}

void CSliderFrame::Release() {
    m_button = {};
    for (SliderPanel* panel : m_panels) {
        if (panel != nullptr) panel->Release();
    }
}

bool CSliderFrame::IsTabStop(const QWidget& widget) { return (widget.focusPolicy() & Qt::TabFocus) != 0; }

std::vector<QWidget*> CSliderFrame::TabChain() const {
    std::vector<QWidget*> chain{m_comments};
    for (const Toggle& toggle : m_toggles) chain.push_back(toggle.button);
    if (m_panel == nullptr) return chain;
    std::vector<QWidget*> controls;
    for (QWidget* control : m_panel->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!control->isWindow() && IsTabStop(*control)) controls.push_back(control);
    }
    std::stable_sort(controls.begin(), controls.end(), [](const QWidget* left, const QWidget* right) {
        return std::pair(left->y(), left->x()) < std::pair(right->y(), right->x());
    });
    chain.insert(chain.end(), controls.begin(), controls.end());
    return chain;
}

void CSliderFrame::FollowInTabChain(QWidget& before) {
    QWidget* last = &before;
    for (QWidget* stop : TabChain()) {
        if (stop != last) QWidget::setTabOrder(last, stop);
        last = stop;
    }
}

void CSliderFrame::ShowHelp() const {
    if (const COpButton* button = m_button.Get()) m_needs.showStatus(button->help, 0);
}

void CSliderFrame::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) update();
}

void CSliderFrame::enterEvent(QEnterEvent* event) {
    QWidget::enterEvent(event);
    ShowHelp();
}

// Escape is left alone: a frame has nothing to cancel.
void CSliderFrame::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QWidget::keyPressEvent(event);
        return;
    }
    Read();
    event->accept();
}

void CSliderFrame::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QColor ink = palette().color(QPalette::WindowText);
    ink.setAlpha(kHeaderAlpha);
    const int header = DialogUnits(fontMetrics()).Down(kUnitsHigh) + kBorder;
    painter.fillRect(0, 0, width(), header, ink);
    ink.setAlpha(3 * kHeaderAlpha);
    painter.fillRect(0, height() - kBorder, width(), kBorder, ink);
}

}  // namespace tavrin
