// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskViewport.h"

#include <algorithm>
#include <cmath>

#include "document/TvDoc.h"

namespace tavrin {

namespace {

constexpr float kZoomStep = 1.1F;
// Beyond these neither the window nor a box has a size that numbers can hold.
constexpr float kLeastUsableZoom = 1e-6F;
constexpr float kMostUsableZoom = 1e6F;
// What a scroll bar can count to, with room for the page to be added.
constexpr float kScrollLimit = 1e9F;

int Truncated(float number) {
    return std::isnan(number) ? 0 : static_cast<int>(std::clamp(number, -kScrollLimit, kScrollLimit));
}

int Target(const ScrollRange& range, ScrollAction action, int thumb) {
    int position = range.position;
    switch (action) {
        case ScrollAction::kLineUp:
            position -= 1;
            break;
        case ScrollAction::kLineDown:
            position += 1;
            break;
        case ScrollAction::kPageUp:
            position -= range.page;
            break;
        case ScrollAction::kPageDown:
            position += range.page;
            break;
        case ScrollAction::kThumb:
            position = thumb;
            break;
        case ScrollAction::kTop:
            position = range.minimum;
            break;
        case ScrollAction::kBottom:
            position = range.maximum;
            break;
    }
    return std::max(range.minimum, std::min(position, range.maximum));
}

}  // namespace

void DeskViewport::SetSize(float width, float height) {
    m_width = width;
    m_height = height;
}

float DeskViewport::Zoom() const {
    const float zoom = m_document.zoomFactor;
    return zoom >= kLeastUsableZoom && zoom <= kMostUsableZoom ? zoom : 1;
}

DeskPoint DeskViewport::ToDesk(WindowPoint point) const {
    return {(point.x - m_document.offset[0]) / Zoom(), (m_height - point.y - m_document.offset[1]) / Zoom()};
}

WindowPoint DeskViewport::ToWindow(DeskPoint point) const {
    return {point.x * Zoom() + m_document.offset[0], m_height - (point.y * Zoom() + m_document.offset[1])};
}

DeskRect DeskViewport::Visible() const {
    const float zoom = Zoom();
    return {-m_document.offset[0] / zoom, -m_document.offset[1] / zoom, m_width / zoom, m_height / zoom};
}

void DeskViewport::CentreView(DeskPoint middle) {
    m_document.offset[0] = m_width * 0.5F - Zoom() * middle.x;
    m_document.offset[1] = m_height * 0.5F - Zoom() * middle.y;
    m_document.ViewMoved();
}

bool DeskViewport::CentreOnBox(const std::string& boxTitleWid) {
    for (const auto& box : m_document.m_boxes) {
        if (box->BoxTitleWid() != boxTitleWid) continue;
        CentreView(BoxRect(*box).Middle());
        return true;
    }
    return false;
}

void DeskViewport::SetZoom(float zoom) {
    const DeskPoint middle = Visible().Middle();
    m_document.zoomFactor = zoom;
    CentreView(middle);
}

bool DeskViewport::ZoomIn() {
    const float zoom = Zoom() * kZoomStep;
    if (m_document.IsBare() || zoom > std::min(m_limits.most, kMostUsableZoom)) return false;
    SetZoom(zoom);
    return true;
}

bool DeskViewport::ZoomOut() {
    const float zoom = Zoom() / kZoomStep;
    if (m_document.IsBare() || zoom < std::max(m_limits.least, kLeastUsableZoom)) return false;
    SetZoom(zoom);
    return true;
}

bool DeskViewport::ZoomReset() {
    if (m_document.zoomFactor == 1) return false;
    SetZoom(1);
    return true;
}

bool DeskViewport::FitToWindow() {
    const auto network = NetworkRect(m_document, Zoom());
    if (!network || m_width <= 0 || m_height <= 0) return false;
    float zoom = 1;
    float width = m_width;
    float height = m_height;
    while ((width < network->width || height < network->height) && zoom / kZoomStep >= kLeastUsableZoom) {
        zoom /= kZoomStep;
        width *= kZoomStep;
        height *= kZoomStep;
    }
    m_document.zoomFactor = zoom;
    CentreView(network->Middle());
    return true;
}

bool DeskViewport::Pan(float dx, float dy) {
    if (m_document.IsBare()) return false;
    m_document.offset[0] += dx;
    m_document.offset[1] -= dy;
    m_document.ViewMoved();
    return true;
}

void DeskViewport::ScrollBy(DeskPoint pixels) {
    m_document.offset[0] -= pixels.x;
    m_document.offset[1] -= pixels.y;
    m_document.ViewMoved();
}

// The desk's y runs upward, a scroll bar's downward.
ScrollRanges DeskViewport::Ranges() const {
    const DeskRect visible = Visible();
    const DeskRect network = NetworkRect(m_document, Zoom()).value_or(visible);
    return {{Truncated(std::min(visible.left, network.left)),
             Truncated(std::max(visible.Right(), network.Right())), Truncated(visible.width),
             Truncated(visible.left), network.left < visible.left || network.Right() > visible.Right()},
            {Truncated(-std::max(visible.Top(), network.Top())),
             Truncated(-std::min(visible.bottom, network.bottom)), Truncated(visible.height),
             Truncated(-visible.Top()), network.bottom < visible.bottom || network.Top() > visible.Top()}};
}

void DeskViewport::ScrollHorizontally(ScrollAction action, int thumb) {
    m_document.offset[0] = -(Zoom() * static_cast<float>(Target(Ranges().across, action, thumb)));
    m_document.ViewMoved();
}

void DeskViewport::ScrollVertically(ScrollAction action, int thumb) {
    const auto position = static_cast<float>(Target(Ranges().down, action, thumb));
    m_document.offset[1] = Zoom() * position + m_height;
    m_document.ViewMoved();
}

}  // namespace tavrin
