// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ColorPicker.h"

#include <QFrame>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <cmath>
#include <utility>

#include "sliders/NumberText.h"
#include "sliders/SliderValue.h"
#include "ui/sliders/ColorWheelView.h"
#include "ui/sliders/NumberSpin.h"
#include "ui/windows/DialogUnits.h"

namespace tavrin {

namespace {

// Dialog units.
constexpr int kWidth = 139;
constexpr int kHeight = 195;
constexpr int kMargin = 7;
constexpr int kGap = 4;
constexpr int kColumnGap = 8;
constexpr int kWheelHeight = 105;
constexpr int kSwatchHeight = 12;
constexpr int kButtonWidth = 50;

// What a field holds is left alone up to here, so that it does not fight with a user who types more digits. A
// number in the middle between two thousandths is not to count as farther from one of them by its last bit.
constexpr double kSameNumber = 0.0005 + 1e-6;

constexpr int kAwayFromOwner = 8;  // pixels

bool IsEscape(const QEvent& event) {
    const auto& key = static_cast<const QKeyEvent&>(event);
    return key.key() == Qt::Key_Escape && key.modifiers() == Qt::NoModifier;
}

}  // namespace

// Shows the colour within its edge.
class CColorPicker::Swatch : public QFrame {
  public:
    explicit Swatch(QWidget* parent) : QFrame(parent) {
        setFrameStyle(QFrame::Panel | QFrame::Sunken);
        setAccessibleName("Color");
    }
    void SetColor(const Color& color) {
        m_color = QColor(SwatchByte(color.r, kPickerSwatchScale), SwatchByte(color.g, kPickerSwatchScale),
                         SwatchByte(color.b, kPickerSwatchScale));
        update();
    }

  protected:
    void paintEvent(QPaintEvent* event) override {
        constexpr int kEdge = 2;
        QFrame::paintEvent(event);
        QPainter(this).fillRect(rect().adjusted(kEdge, kEdge, -kEdge, -kEdge), m_color);
    }

  private:
    QColor m_color = Qt::black;
};

CColorPicker::CColorPicker(QWidget* owner) : ToolWindow({}, owner) {
    setAttribute(Qt::WA_ShowWithoutActivating, false);  // it comes when the user asks for it, to be used
    PlaceWhenFirstShown([this] { return PlaceBesideOwner(); });
}

// Before the hook is gone.
CColorPicker::~CColorPicker() {
    if (m_wheel != nullptr) m_wheel->EndDrag();
}

void CColorPicker::Open(const QString& title) {
    setWindowTitle(QString(title).replace("[*]", "[*][*]"));  // which else would stand for "modified"
    if (m_wheel == nullptr) MakeControls();
    ShowColor();
    ComeUp();
    activateWindow();
}

void CColorPicker::MakeControls() {
    const DialogUnits units(fontMetrics());
    m_wheel = new CColorWheel(this, std::min(units.Across(kWidth - 2 * kMargin), units.Down(kWheelHeight)),
                              {.picked =
                                   [this](const Color& color) {
                                       const Color rounded = Rounded(color);
                                       SetColor(rounded.r, rounded.g, rounded.b, true);
                                   },
                               .dragged =
                                   [this](bool begins) {
                                       const auto hook = m_dragHook;
                                       if (hook) hook(begins);
                                   }});
    m_swatch = new Swatch(this);
    m_swatch->setFixedHeight(units.Down(kSwatchHeight));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(units.Across(kMargin), units.Down(kMargin), units.Across(kMargin),
                               units.Down(kMargin));
    layout->setSpacing(units.Down(kGap));
    layout->addWidget(m_wheel, 1, Qt::AlignCenter);
    layout->addWidget(m_swatch);
    layout->addLayout(MakeFields());
    layout->addSpacing(units.Down(kGap) / 2);
    auto* ok = new QPushButton("OK", this);
    ok->setAutoDefault(true);
    ok->setFixedWidth(std::max(units.Across(kButtonWidth), ok->sizeHint().width()));
    connect(ok, &QPushButton::clicked, this, [this] { close(); });
    layout->addWidget(ok, 0, Qt::AlignHCenter);
    setFixedSize(layout->minimumSize().expandedTo({units.Across(kWidth), units.Down(kHeight)}));
    m_fields[kHue]->setFocus();
}

QLayout* CColorPicker::MakeFields() {
    constexpr const char* kLetters[kFieldCount] = {"H", "S", "V", "R", "G", "B"};
    constexpr const char* kNames[kFieldCount] = {"Hue", "Saturation", "Lightness", "Red", "Green", "Blue"};
    const DialogUnits units(fontMetrics());
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(units.Down(kGap) / 2);
    grid->setHorizontalSpacing(units.Across(kGap));
    grid->setColumnMinimumWidth(2, units.Across(kColumnGap) - units.Across(kGap));
    for (int i = 0; i < kFieldCount; ++i) {
        const bool isComponent = i >= kRed;
        const int row = isComponent ? i - kRed : i;
        const int column = isComponent ? 3 : 0;
        auto* field = new CNumberSpin(this, kNames[i], [this, isComponent](float) {
            if (isComponent) {
                TakeComponents();
            } else {
                TakeHsl();
            }
        });
        m_fields[static_cast<size_t>(i)] = field;
        grid->addWidget(new QLabel(kLetters[i], this), row, column);
        grid->addWidget(field, row, column + 1);
    }
    return grid;
}

void CColorPicker::SetColor(float r, float g, float b, bool notify) {
    const Color color{r, g, b};
    if (!notify && color == Rounded(m_color)) return;
    m_color = color;
    if (m_wheel != nullptr) ShowColor();
    if (!notify || !m_callback) return;
    const auto callback = m_callback;  // which may destroy the picker, and itself with it
    callback(r, g, b);
}

void CColorPicker::ShowColor() {
    m_wheel->SetColor(m_color);
    const Hsl hsl = HslOf(m_color);
    ShowNumber(kRed, m_color.r);
    ShowNumber(kGreen, m_color.g);
    ShowNumber(kBlue, m_color.b);
    ShowNumber(kHue, hsl.h);
    ShowNumber(kSaturation, hsl.s);
    ShowNumber(kLightness, hsl.l);
    m_swatch->SetColor(m_color);
}

void CColorPicker::ShowNumber(Field field, float number) {
    const float rounded = RoundedToThousandths(number);
    const double apart = static_cast<double>(rounded) - static_cast<double>(Number(field));
    if (std::abs(apart) > kSameNumber) m_fields[field]->SetValue(rounded);
}

float CColorPicker::Number(Field field) const { return m_fields[field]->Value(); }

void CColorPicker::TakeComponents() { SetColor(Number(kRed), Number(kGreen), Number(kBlue), true); }

// The fields are all that is known of the color: black and greys have no hue, so that it is gone with them.
void CColorPicker::TakeHsl() {
    const Color color = ColorOf({Number(kHue), Number(kSaturation), Number(kLightness)});
    SetColor(color.r, color.g, color.b, true);
}

// Escape closes the window from every control in it, though it may be the key of a command, and though
// nothing else reaches the window while it is disabled.
bool CColorPicker::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && IsEscape(*event)) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress && IsEscape(*event)) {
        close();
        return true;
    }
    return ToolWindow::event(event);
}

// At the right of its owner, or else at the left, and wholly on the screen. The window manager will draw
// round it what it draws round the owner's window.
QPoint CColorPicker::PlaceBesideOwner() const {
    const QWidget* owner = parentWidget();
    if (owner == nullptr) return pos();
    const QWidget* frame = owner->window();
    const QSize whole = size() + frame->frameGeometry().size() - frame->size();
    const QRect beside(owner->mapToGlobal(QPoint(0, 0)), owner->size());
    const QRect screen = owner->screen()->availableGeometry();
    const int atRight = beside.right() + 1 + kAwayFromOwner;
    const int atLeft = beside.left() - kAwayFromOwner - whole.width();
    const bool fitsRight = atRight + whole.width() <= screen.right() + 1;
    const auto bound = [](int at, int length, int begin, int room) {
        return std::clamp(at, begin, std::max(begin, begin + room - length));
    };
    return {bound(fitsRight ? atRight : atLeft, whole.width(), screen.x(), screen.width()),
            bound(beside.top(), whole.height(), screen.y(), screen.height())};
}

}  // namespace tavrin
