// SPDX-License-Identifier: Apache-2.0
// The whole network, small, in a corner of the desk.
#pragma once

#include <QImage>
#include <QPointF>
#include <QWidget>
#include <functional>
#include <optional>

#include "desk/DeskGeometry.h"
#include "desk/DeskStyle.h"
#include "desk/DeskViewport.h"

namespace tavrin {

// Lies over the desk's window, its parent, in the lower right corner, where it is wanted, some box is out of
// view, and the window has room for it. A press centres the view there, a drag takes it along; the wheel is
// the desk's. Boxes and
// frames are drawn once and kept until they are said to have changed.
class Minimap : public QWidget {
  public:
    // All of it outlives this.
    struct Needs {
        const CTvDoc& document;
        const DeskViewport& view;
        const DeskStyle& style;
        std::function<void(DeskPoint)> centreView;  // on that point; tells of it by ViewChanged
    };
    Minimap(QWidget* desk, Needs needs);

    void SetWanted(bool wanted);
    bool IsWanted() const { return m_isWanted; }
    // Boxes or frames came or went, stand elsewhere, or look different.
    void NetworkChanged();
    // What is seen of the desk, or the size of its window.
    void ViewChanged();

    // In pixels of this.
    QPointF ToMap(DeskPoint point) const;
    DeskPoint ToDesk(QPointF at) const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    bool IsNeeded() const;
    void TakePlace();
    void Measure();
    double Scale() const;  // pixels in a desk unit, where there are boxes
    void Draw();
    QRectF OnMap(const DeskRect& rect) const;
    void Lead(QPointF at);

    Needs m_needs;
    bool m_isWanted = false;
    bool m_isMeasured = false;          // what is below is that of the network as it is
    bool m_isDrawn = false;             // and so is the picture
    float m_zoom = 0;                   // of the picture: boxes are as wide as their texts
    std::optional<DeskRect> m_network;  // what all of them cover, if there are any
    QImage m_picture;
    std::optional<DeskPoint> m_held;  // while the view is led: its middle, as seen from the pointer
};

}  // namespace tavrin
