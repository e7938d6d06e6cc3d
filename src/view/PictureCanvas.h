// SPDX-License-Identifier: Apache-2.0
// Where pictures are looked at: one, or two against each other.
#pragma once

#include <QWidget>
#include <functional>
#include <optional>

#include "view/Compare.h"
#include "view/PictureView.h"

class QLabel;

namespace tavrin {

// Shows a first picture, and a second to compare it with; both by one place and zoom, their left top corners
// on each other. The wheel zooms about the pointer, a drag moves, a double click changes between all and 1:1.
// Owned by the window. How it is painted stands in PictureCanvasPaint.cpp.
class PictureCanvas : public QWidget {
  public:
    enum class Mode { kSingle, kToggle, kWipe, kDifference };

    // What is under the pointer.
    struct Pointed {
        QPoint pixel;
        std::optional<QRgb> first;
        std::optional<QRgb> second;  // where two are compared
    };
    struct Hands {
        std::function<void()> told;     // what the status line tells may have changed
        std::function<void()> painted;  // what is shown stands on the screen
    };
    PictureCanvas(QWidget* parent, Hands hands);

    // Either may be null. A picture of another size than the one before is fitted, if that was.
    void ShowPictures(PicturePtr first, PicturePtr second);
    // What they are called where two are shown.
    void SetTitles(const QString& first, const QString& second);
    // More of them has come.
    void PicturesChanged();
    const PicturePtr& First() const { return m_first; }
    const PicturePtr& Second() const { return m_second; }

    void SetMode(Mode mode);
    // The one that counts: one picture alone is shown as it is.
    Mode ModeShown() const { return m_first && m_second ? m_mode : Mode::kSingle; }
    void Flip();
    bool ShowsSecond() const { return m_showsSecond; }
    void SetGain(int gain);
    // Of the mode for it; none in others.
    const PictureDifference* Differing() const {
        return ModeShown() == Mode::kDifference ? &m_difference : nullptr;
    }
    // The place of the line, from 0, left, to 1.
    double Wipe() const { return m_wipe; }
    void SetWipe(double wipe);

    void Fit();
    void ActualSize();
    // By steps of the wheel, about the middle.
    void ZoomBy(int steps);
    double Zoom() const { return m_place.zoom; }
    bool IsFitted() const { return m_isFitted; }
    const ViewPlace& Place() const { return m_place; }

    // A text over the picture, and one in place of it. Empty for none.
    void SetTrouble(const QString& text);
    void SetHint(const QString& text);

    std::optional<Pointed> UnderPointer() const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    enum class Drag { kNone, kMove, kWipe };
    static constexpr int kGrip = 11;   // pixels: the radius of the wipe's grip, and the reach of its line
    static constexpr int kMargin = 8;  // round texts

    QSize DeviceSize() const;
    QPoint ToDevice(QPointF place) const;
    QSize Extent() const;
    QSize ComparedExtent() const;
    void PlaceAnew(QSize before);
    void MoveTo(const ViewPlace& place);
    void ZoomAbout(int steps, QPointF device);
    void Compare();
    int WipeLine() const;
    bool IsAtWipe(QPointF place) const;
    void UpdateWipe(int from, int to);
    void UpdateCursor(QPointF place);
    void PlaceTrouble();
    void ShowViews();
    void DrawViews(QPainter& painter, const QRect& part);
    void DrawWipeLine(QPainter& painter);
    void DrawTitles(QPainter& painter);
    void DrawTitle(QPainter& painter, const QString& text, Qt::Alignment side);
    ViewGround Ground() const;

    Hands m_hands;
    PicturePtr m_first;
    PicturePtr m_second;
    QString m_firstTitle;
    QString m_secondTitle;
    Mode m_mode = Mode::kSingle;
    bool m_showsSecond = false;
    int m_gain = 1;
    double m_wipe = 0.5;
    PictureDifference m_difference;
    ViewPlace m_place;
    bool m_isFitted = true;
    PictureView m_firstView;
    PictureView m_secondView;
    QString m_hint;
    QLabel* m_trouble;  // a child
    Drag m_drag = Drag::kNone;
    QPointF m_dragFrom;    // in device pixels
    QPointF m_dragOrigin;  // of the place, then
    std::optional<QPointF> m_pointer;
    int m_wheel = 0;  // of a notch, in eighths of a degree
};

}  // namespace tavrin
