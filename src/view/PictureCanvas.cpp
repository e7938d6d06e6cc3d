// SPDX-License-Identifier: Apache-2.0
#include "view/PictureCanvas.h"

#include <QKeyEvent>
#include <QLabel>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace tavrin {

namespace {

constexpr int kNotch = 120;        // of a wheel, in eighths of a degree
constexpr double kStepsToTwo = 2;  // steps of the wheel from a zoom to twice that
constexpr double kPan = 0.1;       // of the canvas, for a key

}  // namespace

PictureCanvas::PictureCanvas(QWidget* parent, Hands hands)
    : QWidget(parent), m_hands(std::move(hands)), m_trouble(new QLabel(this)) {
    setObjectName("canvas");
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(160, 120);
    m_trouble->setObjectName("trouble");
    m_trouble->setWordWrap(true);
    m_trouble->setTextFormat(Qt::PlainText);
    m_trouble->setMargin(kMargin);
    m_trouble->setAutoFillBackground(true);
    m_trouble->setAttribute(Qt::WA_TransparentForMouseEvents);
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(112, 24, 24, 232));
    palette.setColor(QPalette::WindowText, QColor(255, 244, 240));
    m_trouble->setPalette(palette);
    m_trouble->hide();
}

void PictureCanvas::ShowPictures(PicturePtr first, PicturePtr second) {
    if (first == m_first && second == m_second) return PicturesChanged();
    const QSize before = Extent();
    m_first = std::move(first);
    m_second = std::move(second);
    Compare();
    PlaceAnew(before);
}

void PictureCanvas::SetTitles(const QString& first, const QString& second) {
    m_firstTitle = first;
    m_secondTitle = second;
    update();
}

void PictureCanvas::PicturesChanged() {
    Compare();
    update();
    m_hands.told();
}

void PictureCanvas::SetMode(Mode mode) {
    const QSize before = Extent();
    m_mode = mode;
    m_showsSecond = false;
    Compare();
    PlaceAnew(before);
}

void PictureCanvas::Flip() {
    m_showsSecond = !m_showsSecond;
    update();
    m_hands.told();
}

void PictureCanvas::SetGain(int gain) {
    m_gain = gain;
    PicturesChanged();
}

void PictureCanvas::Compare() {
    m_difference = {};
    if (ModeShown() == Mode::kDifference) m_difference = DifferenceOf(*m_first, *m_second, m_gain);
}

QSize PictureCanvas::DeviceSize() const {
    const double ratio = devicePixelRatioF();
    return {int(std::ceil(width() * ratio)), int(std::ceil(height() * ratio))};
}

QPoint PictureCanvas::ToDevice(QPointF place) const {
    const QPointF device = place * devicePixelRatioF();
    return {int(std::floor(device.x())), int(std::floor(device.y()))};
}

QSize PictureCanvas::Extent() const {
    QSize extent;
    if (m_first != nullptr) extent = extent.expandedTo(m_first->Size());
    if (m_second != nullptr && ModeShown() != Mode::kSingle) extent = extent.expandedTo(m_second->Size());
    return extent;
}

// So far there is to be a picture; nothing where one is shown alone.
QSize PictureCanvas::ComparedExtent() const {
    return ModeShown() == Mode::kSingle ? QSize() : m_first->Size().expandedTo(m_second->Size());
}

void PictureCanvas::PlaceAnew(QSize before) {
    const QSize extent = Extent();
    if (extent.isEmpty() || m_isFitted) {
        if (!extent.isEmpty()) m_place = ViewPlace::Fit(extent, DeviceSize());
    } else if (extent != before) {
        m_place = ViewPlace::Centred(extent, DeviceSize(), m_place.zoom);
    }
    update();
    m_hands.told();
}

void PictureCanvas::MoveTo(const ViewPlace& place) {
    m_place = place.Held(Extent(), DeviceSize());
    update();
    m_hands.told();
}

void PictureCanvas::Fit() {
    m_isFitted = true;
    PlaceAnew(Extent());
}

void PictureCanvas::ActualSize() {
    m_isFitted = false;
    const QPointF middle(DeviceSize().width() / 2.0, DeviceSize().height() / 2.0);
    MoveTo(m_pointer ? m_place.Zoomed(1, ToDevice(*m_pointer)) : m_place.Zoomed(1, middle));
}

void PictureCanvas::ZoomBy(int steps) {
    ZoomAbout(steps, QPointF(DeviceSize().width() / 2.0, DeviceSize().height() / 2.0));
}

// From step to step, 1:1 and 2:1 among them, wherever it was.
void PictureCanvas::ZoomAbout(int steps, QPointF device) {
    if (Extent().isEmpty()) return;
    constexpr double kNearly = 0.01;  // of a step
    const double now = std::log2(m_place.zoom) * kStepsToTwo;
    const double next = steps > 0 ? std::floor(now + kNearly) + steps : std::ceil(now - kNearly) + steps;
    m_isFitted = false;
    MoveTo(m_place.Zoomed(std::exp2(next / kStepsToTwo), device));
}

void PictureCanvas::SetTrouble(const QString& text) {
    m_trouble->setText(text);
    m_trouble->setVisible(!text.isEmpty());
    PlaceTrouble();
}

void PictureCanvas::SetHint(const QString& text) {
    if (m_hint == text) return;
    m_hint = text;
    update();
}

void PictureCanvas::PlaceTrouble() {
    const int most = std::max(0, width() - 2 * kMargin);
    const int high = std::min(m_trouble->heightForWidth(most), height());
    m_trouble->setGeometry(kMargin, height() - high - kMargin, most, high);
}

std::optional<PictureCanvas::Pointed> PictureCanvas::UnderPointer() const {
    if (!m_pointer || m_first == nullptr) return std::nullopt;
    Pointed pointed{m_place.PixelAt(ToDevice(*m_pointer)), {}, {}};
    pointed.first = m_first->At(pointed.pixel);
    if (ModeShown() != Mode::kSingle) pointed.second = m_second->At(pointed.pixel);
    if (!pointed.first && !pointed.second) return std::nullopt;
    return pointed;
}

// The wipe

int PictureCanvas::WipeLine() const { return int(std::lround(m_wipe * DeviceSize().width())); }

bool PictureCanvas::IsAtWipe(QPointF place) const {
    const double line = WipeLine() / devicePixelRatioF();
    return ModeShown() == Mode::kWipe && std::abs(place.x() - line) <= kGrip;
}

void PictureCanvas::SetWipe(double wipe) {
    const int before = WipeLine();
    m_wipe = std::clamp(wipe, 0.0, 1.0);
    if (WipeLine() != before) UpdateWipe(before, WipeLine());
    m_hands.told();
}

// Only the strip between the two lines looks otherwise.
void PictureCanvas::UpdateWipe(int from, int to) {
    const double ratio = devicePixelRatioF();
    const int left = int(std::floor(std::min(from, to) / ratio)) - kGrip - 2;
    const int right = int(std::ceil(std::max(from, to) / ratio)) + kGrip + 2;
    update(left, 0, right - left, height());
}

void PictureCanvas::UpdateCursor(QPointF place) {
    if (m_drag == Drag::kMove) {
        setCursor(Qt::ClosedHandCursor);
    } else if (m_drag == Drag::kWipe || IsAtWipe(place)) {
        setCursor(Qt::SplitHCursor);
    } else {
        setCursor(Qt::CrossCursor);
    }
}

// Events

void PictureCanvas::resizeEvent(QResizeEvent*) {
    if (m_isFitted) {
        PlaceAnew(Extent());
    } else if (!Extent().isEmpty()) {
        MoveTo(m_place);
    }
    PlaceTrouble();
}

void PictureCanvas::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) update();
    QWidget::changeEvent(event);
}

void PictureCanvas::wheelEvent(QWheelEvent* event) {
    m_wheel += event->angleDelta().y();
    const int steps = m_wheel / kNotch;
    m_wheel -= steps * kNotch;
    if (steps != 0) ZoomAbout(steps, QPointF(ToDevice(event->position())));
    event->accept();
}

void PictureCanvas::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) return;
    const bool isWipe = event->button() == Qt::LeftButton && IsAtWipe(event->position());
    m_drag = isWipe ? Drag::kWipe : Drag::kMove;
    m_dragFrom = event->position() * devicePixelRatioF();
    m_dragOrigin = m_place.origin;
    UpdateCursor(event->position());
}

void PictureCanvas::mouseMoveEvent(QMouseEvent* event) {
    m_pointer = event->position();
    const QPointF device = event->position() * devicePixelRatioF();
    if (m_drag == Drag::kWipe) {
        SetWipe(device.x() / DeviceSize().width());
    } else if (m_drag == Drag::kMove && device != m_dragFrom && !Extent().isEmpty()) {
        m_isFitted = false;
        MoveTo({m_place.zoom, m_dragOrigin + device - m_dragFrom});
    }
    UpdateCursor(event->position());
    m_hands.told();
}

void PictureCanvas::mouseReleaseEvent(QMouseEvent* event) {
    m_drag = Drag::kNone;
    UpdateCursor(event->position());
}

void PictureCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || IsAtWipe(event->position())) return;
    if (m_isFitted && m_place.zoom != 1) {
        m_pointer = event->position();
        ActualSize();
    } else {
        Fit();
    }
}

void PictureCanvas::leaveEvent(QEvent*) {
    m_pointer.reset();
    m_hands.told();
}

void PictureCanvas::keyPressEvent(QKeyEvent* event) {
    const auto move = [&](double x, double y) {
        if (Extent().isEmpty()) return;
        m_isFitted = false;
        const QPointF step(x * DeviceSize().width(), y * DeviceSize().height());
        MoveTo({m_place.zoom, m_place.origin + step});
    };
    switch (event->key()) {
        case Qt::Key_Left:
            return move(kPan, 0);
        case Qt::Key_Right:
            return move(-kPan, 0);
        case Qt::Key_Up:
            return move(0, kPan);
        case Qt::Key_Down:
            return move(0, -kPan);
        default:
            QWidget::keyPressEvent(event);
    }
}

}  // namespace tavrin
