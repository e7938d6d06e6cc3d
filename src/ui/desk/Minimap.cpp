// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/Minimap.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "desk/FrameGeometry.h"
#include "document/TvDoc.h"

namespace tavrin {

namespace {

// Pixels.
constexpr int kLeastWidth = 140;
constexpr int kMostWidth = 240;
constexpr int kMargin = 10;  // round it
constexpr int kPadding = 8;  // round the boxes in it
constexpr double kSmallestBox = 1.5;
constexpr QSize kLeastDesk(420, 300);  // on a smaller one it would hide more than it shows

constexpr double kShareOfDesk = 0.2;
constexpr double kHeightOfWidth = 0.66;

constexpr double kGroundShade = 0.45;  // how much darker than the desk
constexpr int kGroundAlpha = 225;
constexpr float kMutedShare = 0.4F;   // of a muted box's colour
constexpr float kFrameShare = 0.3F;   // of a frame's
constexpr QColor kVeil(0, 0, 0, 80);  // over what is out of view
constexpr QColor kFrame(255, 255, 255, 90);
constexpr QColor kView(255, 255, 255, 230);

QColor Shown(const Rgb& color) {
    const auto channel = [](float value) {
        return std::isfinite(value) ? std::clamp(static_cast<double>(value), 0.0, 1.0) : 0.0;
    };
    return QColor::fromRgbF(static_cast<float>(channel(color.r)), static_cast<float>(channel(color.g)),
                            static_cast<float>(channel(color.b)));
}

QColor Ground(const DeskStyle& style) {
    const QColor desk = Shown(style.background);
    const auto shaded = [](int value) { return static_cast<int>(value * (1 - kGroundShade)); };
    return {shaded(desk.red()), shaded(desk.green()), shaded(desk.blue()), kGroundAlpha};
}

// Positions from a file may be anything.
bool IsSomewhere(const DeskRect& rect) {
    return std::isfinite(rect.left) && std::isfinite(rect.bottom) && std::isfinite(rect.width) &&
           std::isfinite(rect.height);
}

QPointF Middle(const DeskRect& rect) {
    return {static_cast<double>(rect.Middle().x), static_cast<double>(rect.Middle().y)};
}

}  // namespace

Minimap::Minimap(QWidget* desk, Needs needs) : QWidget(desk), m_needs(std::move(needs)) {
    setObjectName("Minimap");
    setAccessibleName("Minimap");
    setCursor(Qt::ArrowCursor);
    hide();
}

void Minimap::SetWanted(bool wanted) {
    m_isWanted = wanted;
    ViewChanged();
}

void Minimap::NetworkChanged() {
    m_isMeasured = m_isDrawn = false;
    ViewChanged();
}

// While the view is led it stays, even where all boxes have come into view.
void Minimap::ViewChanged() {
    if (m_isWanted && !m_isMeasured) Measure();
    const bool isShown = m_isWanted && (m_held || IsNeeded());
    if (isShown) TakePlace();
    setVisible(isShown);
    update();
}

bool Minimap::IsNeeded() const {
    const QSize desk = parentWidget()->size();
    const bool hasRoom = desk.width() >= kLeastDesk.width() && desk.height() >= kLeastDesk.height();
    return hasRoom && m_network && !m_needs.view.Visible().Encloses(*m_network);
}

void Minimap::TakePlace() {
    const QSize desk = parentWidget()->size();
    const int width = std::clamp(static_cast<int>(desk.width() * kShareOfDesk), kLeastWidth, kMostWidth);
    const int height = static_cast<int>(width * kHeightOfWidth);
    setGeometry(desk.width() - width - kMargin, desk.height() - height - kMargin, width, height);
}

void Minimap::Measure() {
    m_isMeasured = true;
    m_network.reset();
    const auto add = [this](const DeskRect& rect) {
        if (IsSomewhere(rect)) m_network = m_network ? m_network->UnitedWith(rect) : rect;
    };
    for (const auto& box : m_needs.document.m_boxes) {
        add(BoxRect(*box));
    }
    for (const auto& [number, frame] : m_needs.document.frames) add(FrameRect(frame));
    if (m_network && !IsSomewhere(*m_network)) m_network.reset();
}

// The network in the middle, as large as it fits.
QPointF Minimap::ToMap(DeskPoint point) const {
    if (!m_network) return {};
    const QPointF middle = Middle(*m_network);
    return {width() * 0.5 + (static_cast<double>(point.x) - middle.x()) * Scale(),
            height() * 0.5 - (static_cast<double>(point.y) - middle.y()) * Scale()};
}

DeskPoint Minimap::ToDesk(QPointF at) const {
    if (!m_network) return {};
    const QPointF middle = Middle(*m_network);
    return {static_cast<float>(middle.x() + (at.x() - width() * 0.5) / Scale()),
            static_cast<float>(middle.y() - (at.y() - height() * 0.5) / Scale())};
}

double Minimap::Scale() const {
    const double across = (width() - 2 * kPadding) / std::max(1.0, static_cast<double>(m_network->width));
    const double up = (height() - 2 * kPadding) / std::max(1.0, static_cast<double>(m_network->height));
    return std::min(across, up);
}

// From below, as on the desk.
void Minimap::Draw() {
    const double ratio = devicePixelRatioF();
    m_picture = QImage((QSizeF(size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    m_picture.setDevicePixelRatio(ratio);
    m_picture.fill(Ground(m_needs.style));
    m_isDrawn = true;
    m_zoom = m_needs.view.Zoom();
    if (!m_network) return;
    QPainter painter(&m_picture);
    painter.setRenderHint(QPainter::Antialiasing);  // boxes of less than two pixels, and the gaps between
    for (const PlacedFrame& placed : FramesFromBelow(m_needs.document.frames, *m_network)) {
        QColor color = Shown(FrameColor(placed.frame->color));
        color.setAlphaF(kFrameShare);
        painter.fillRect(OnMap(FrameRect(*placed.frame)), color);
    }
    const auto& boxes = m_needs.document.m_boxes;
    for (auto place = boxes.rbegin(); place != boxes.rend(); ++place) {
        const COpBox& box = **place;
        if (!IsSomewhere(BoxRect(box))) continue;
        const DeskStyle& style = m_needs.style;
        QColor color = Shown(box.selected != 0 ? style.selectedBox : style.ColorOf(box.color));
        if (box.muted != 0) color.setAlphaF(kMutedShare);
        painter.fillRect(OnMap(BoxRect(box)), color);
    }
}

// Large enough to be seen.
QRectF Minimap::OnMap(const DeskRect& rect) const {
    const QPointF corner = ToMap({rect.left, rect.Top()});
    const QPointF opposite = ToMap({rect.Right(), rect.bottom});
    return {corner, QSizeF(std::max(opposite.x() - corner.x(), kSmallestBox),
                           std::max(opposite.y() - corner.y(), kSmallestBox))};
}

void Minimap::paintEvent(QPaintEvent*) {
    const bool fits = m_picture.devicePixelRatio() == devicePixelRatioF() &&
                      m_picture.size() == (QSizeF(size()) * devicePixelRatioF()).toSize();
    if (!m_isDrawn || !fits || m_zoom != m_needs.view.Zoom()) Draw();
    QPainter painter(this);
    painter.drawImage(0, 0, m_picture);
    const QRectF all = rect();
    const QRectF view = OnMap(m_needs.view.Visible()) & all;
    QPainterPath outside;
    outside.addRect(all);
    outside.addRect(view);  // by the odd-even rule a hole
    painter.fillPath(outside, kVeil);
    painter.setPen(kFrame);
    painter.drawRect(all.adjusted(0.5, 0.5, -0.5, -0.5));
    if (view.isEmpty()) return;
    painter.setPen(QPen(kView, 1.5, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(view.adjusted(0.75, 0.75, -0.75, -0.75));
}

void Minimap::mousePressEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != Qt::LeftButton) return;
    const QPointF at = event->position();
    const DeskPoint pressed = ToDesk(at);
    const DeskPoint middle = m_needs.view.Visible().Middle();
    m_held = OnMap(m_needs.view.Visible()).contains(at)
                 ? DeskPoint{middle.x - pressed.x, middle.y - pressed.y}
                 : DeskPoint{};
    Lead(at);
}

void Minimap::mouseMoveEvent(QMouseEvent* event) {
    event->accept();
    if (m_held && event->buttons().testFlag(Qt::LeftButton)) Lead(event->position());
}

void Minimap::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() != Qt::LeftButton) return;
    m_held.reset();
    ViewChanged();
}

// The pointer may be beyond the edge: the view stays at what is there.
void Minimap::Lead(QPointF at) {
    const QPointF inside(std::clamp(at.x(), 0.0, static_cast<double>(width())),
                         std::clamp(at.y(), 0.0, static_cast<double>(height())));
    const DeskPoint to = ToDesk(inside);
    m_needs.centreView({to.x + m_held->x, to.y + m_held->y});
}

}  // namespace tavrin
