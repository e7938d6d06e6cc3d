// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ColorPanels.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionFrame>

#include "site/Site.h"
#include "sliders/NumberText.h"
#include "sliders/SliderValue.h"
#include "text/Tokens.h"
#include "ui/base/DocumentText.h"
#include "ui/base/Text.h"
#include "ui/sliders/ColorPicker.h"
#include "ui/sliders/NumberField.h"
#include "ui/sliders/PixelPicker.h"
#include "ui/sliders/ValueSlider.h"

namespace tavrin {

namespace {

constexpr int kSwatchInset = 2;  // pixels on each side
constexpr const char* kNoShare = "Enter a number from 0 to 1";
constexpr ValueRange kShares{0, 1, false};

std::optional<float> ShareOf(const NumberField& field) {
    const auto number = field.Number();
    return number && *number >= 0 && *number <= 1 ? number : std::nullopt;
}

int Byte(float component) { return SwatchByte(component, kPanelSwatchScale); }

}  // namespace

ColorPanel::~ColorPanel() = default;

void ColorPanel::MakeControls(const Template& places) {
    for (size_t component = 0; component < places.components.size(); ++component)
        MakeComponent(places.components[component], component);
    m_swatch = Units().Pixels(places.swatch);
    if (places.alphaSwatch.width > 0) m_alphaSwatch = Units().Pixels(places.alphaSwatch);
    m_pick = new QPushButton("HSV", this);
    m_pick->setAutoDefault(false);
    m_pick->setGeometry(Units().Pixels(places.picker));
    m_pick->setToolTip("Choose the colour on a wheel");
    connect(m_pick, &QPushButton::clicked, this, [this] { OpenPicker(); });
    auto* screen = new CPixelPicker(this, Needs().site.report);
    screen->setGeometry(Units().Pixels(places.pixelPicker));
    screen->SetCallback([this](float r, float g, float b) { TakeFromScreen(r, g, b); });
}

void ColorPanel::MakeComponent(const Places& places, size_t component) {
    auto* label = new QLabel(places.letter, this);
    label->setGeometry(Units().Pixels(places.label));
    auto* field = new NumberField(this, places.name,
                                  {[this, component] { Typed(*m_fields[component]); }, [this] { Refresh(); },
                                   [this, component](double steps) { StepValue(component, steps); }});
    field->setGeometry(Units().Pixels(places.field));
    label->setBuddy(field);
    m_fields.push_back(field);
    const auto slide = [this, component](int position, bool isDrag) {
        if (isDrag) Slide(component, position);
    };
    auto* slider = new ValueSlider(this, places.name,
                                   {slide, [this](bool begins) { HoldEdit(begins); },
                                    [this, component] { return m_sliders[component]->sliderPosition(); }});
    slider->setGeometry(Units().Pixels(places.slider));
    m_sliders.push_back(slider);
}

ColorPanel::Components ColorPanel::Values() const {
    Components values;
    for (const float* component : Find()) values.push_back(*component);
    return values;
}

void ColorPanel::Store(const Components& values) {
    Edit([&] {
        const auto components = Find();
        for (size_t i = 0; i < components.size(); ++i) *components[i] = values[i];
    });
}

void ColorPanel::Refresh() {
    ShowFields();
    ShowColor();
    ShowInPicker();
}

void ColorPanel::ShowFields() {
    const Components values = Values();
    for (size_t i = 0; i < values.size(); ++i) m_fields[i]->ShowNumber(values[i]);
}

void ColorPanel::ShowColor() {
    const Components values = Values();
    for (size_t i = 0; i < values.size(); ++i) m_sliders[i]->ShowPosition(ComponentPosition(values[i]));
    update(m_swatch);
    update(m_alphaSwatch);
}

void ColorPanel::ShowInPicker() {
    const Components values = Values();
    if (m_picker != nullptr && m_picker->IsOpen() && !values.empty())
        m_picker->SetColor(values[0], values[1], values[2], false);
}

bool ColorPanel::Read() {
    Components values;
    for (const NumberField* field : m_fields) {
        const auto share = ShareOf(*field);
        if (!share) return false;
        values.push_back(*share);
    }
    if (Find().empty()) return false;
    Store(values);
    ShowColor();
    ShowInPicker();
    return true;
}

void ColorPanel::PutAside() {
    if (m_picker != nullptr) m_picker->close();
}

void ColorPanel::Release() {
    SliderPanel::Release();
    m_picker.reset();
}

void ColorPanel::Typed(const NumberField& field) {
    if (IsBeginOfShare(field.Text()) || Read()) return;
    Refresh();
    ShowRefusal(kNoShare);
}

void ColorPanel::Slide(size_t component, int position) {
    Components values = Values();
    if (values.empty()) return;
    values[component] = ComponentValue(position);
    Store(values);
    Refresh();
}

void ColorPanel::StepValue(size_t component, double steps) {
    const Components values = Values();
    if (values.empty()) return;
    m_fields[component]->Type(Shown(NumberText(SteppedValue(values[component], steps, kShares))));
}

void ColorPanel::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    if (event->button() != Qt::LeftButton || !(m_swatch.contains(at) || m_alphaSwatch.contains(at))) {
        SliderPanel::mousePressEvent(event);
        return;
    }
    LogColor();
}

// The end of a click that was taken.
void ColorPanel::mouseReleaseEvent(QMouseEvent* event) { event->accept(); }

void ColorPanel::LogColor() const {
    const COpButton* button = Button();
    if (button == nullptr) return;
    std::string line = VariableName() + " ";
    if (!button->comments.empty()) line += "(" + button->comments + ") ";
    line += LogName();
    const char* separator = " ";
    for (const float value : Values()) {
        line += separator + NumberText(value);
        separator = ", ";
    }
    Needs().site.report.LogLine("%s", line.c_str());
}

void ColorPanel::paintEvent(QPaintEvent*) {
    const Components values = Values();
    if (values.empty()) return;
    QPainter painter(this);
    const auto draw = [&](const QRect& place, const QColor& color) {
        QStyleOptionFrame frame;
        frame.initFrom(this);
        frame.rect = place;
        frame.lineWidth = 1;
        frame.midLineWidth = 0;
        frame.state |= QStyle::State_Sunken;
        frame.frameShape = QFrame::Panel;
        style()->drawControl(QStyle::CE_ShapedFrame, &frame, &painter, this);
        painter.fillRect(place.marginsRemoved({kSwatchInset, kSwatchInset, kSwatchInset, kSwatchInset}),
                         color);
    };
    draw(m_swatch, QColor(Byte(values[0]), Byte(values[1]), Byte(values[2])));
    if (values.size() > 3) draw(m_alphaSwatch, QColor(Byte(values[3]), Byte(values[3]), Byte(values[3])));
}

// What is locked cannot be changed through the picker either.
void ColorPanel::changeEvent(QEvent* event) {
    SliderPanel::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && m_picker != nullptr) m_picker->setEnabled(isEnabled());
}

void ColorPanel::OpenPicker() {
    const COpButton* button = Button();
    const Components values = Values();
    if (button == nullptr || values.empty()) return;
    const bool wasOpen = m_picker != nullptr && m_picker->IsOpen();
    if (m_picker == nullptr) {
        m_picker = std::make_unique<CColorPicker>(this);
        m_picker->SetCallback([this](float r, float g, float b) { TakeFromPicker(r, g, b); });
        m_picker->SetDragHook([this](bool begins) { HoldEdit(begins); });
    }
    const std::string comments(Trim(button->comments));
    m_picker->Open(comments.empty() ? Shown(VariableName() + " Color") : Decoded(comments).text);
    if (!wasOpen) m_picker->SetColor(values[0], values[1], values[2], false);
}

void ColorPanel::TakeFromPicker(float r, float g, float b) {
    const Components values = Values();
    if (values.empty()) return;
    if (!isEnabled()) {
        m_picker->SetColor(values[0], values[1], values[2], false);
        return;
    }
    Take(RoundedToThousandths(r), RoundedToThousandths(g), RoundedToThousandths(b));
}

void ColorPanel::TakeFromScreen(float r, float g, float b) {
    Take(r, g, b);
    ShowInPicker();
}

// The picker is left as it is: it may be the one that tells.
void ColorPanel::Take(float r, float g, float b) {
    Components values = Values();
    if (values.empty() || (r == values[0] && g == values[1] && b == values[2])) return;
    values[0] = r;
    values[1] = g;
    values[2] = b;
    Store(values);
    ShowFields();
    ShowColor();
}

CRgbPanel::CRgbPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs)
    : ColorPanel(frame, button, needs) {
    MakeControls({{{"R", "Red", {1, 1, 7, 12}, {9, 1, 27, 12}, {39, 1, 50, 12}},
                   {"G", "Green", {1, 14, 7, 12}, {9, 14, 27, 12}, {39, 14, 50, 12}},
                   {"B", "Blue", {1, 27, 7, 12}, {9, 27, 27, 12}, {39, 27, 50, 12}}},
                  {9, 41, 48, 25},
                  {},
                  {60, 41, 29, 12},
                  {60, 54, 29, 12}});
    Refresh();
}

std::vector<float*> CRgbPanel::Find() const {
    auto* value = FindValue<COpValueRgb>(type_words::kRgb);
    return value == nullptr ? std::vector<float*>() : std::vector<float*>{&value->r, &value->g, &value->b};
}

CRgbaPanel::CRgbaPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs)
    : ColorPanel(frame, button, needs) {
    MakeControls({{{"R", "Red", {1, 1, 7, 12}, {9, 1, 27, 12}, {39, 1, 50, 12}},
                   {"G", "Green", {1, 14, 7, 12}, {9, 14, 27, 12}, {39, 14, 50, 12}},
                   {"B", "Blue", {1, 27, 7, 12}, {9, 27, 27, 12}, {39, 27, 50, 12}},
                   {"A", "Alpha", {1, 40, 7, 12}, {9, 40, 27, 12}, {39, 40, 50, 12}}},
                  {9, 54, 48, 19},
                  {9, 75, 48, 12},
                  {60, 54, 29, 12},
                  {60, 67, 29, 12}});
    Refresh();
}

std::vector<float*> CRgbaPanel::Find() const {
    auto* value = FindValue<COpValueRgba>(type_words::kRgba);
    if (value == nullptr) return {};
    return {&value->r, &value->g, &value->b, &value->a};
}

}  // namespace tavrin
