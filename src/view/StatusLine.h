// SPDX-License-Identifier: Apache-2.0
// What is under the pointer, in numbers, and how the picture is shown.
#pragma once

#include <QWidget>

#include "view/PictureCanvas.h"

class QLabel;

namespace tavrin {

// One line, and a second one where two pictures are compared. Owned by the window.
class StatusLine : public QWidget {
  public:
    explicit StatusLine(QWidget* parent);

    void Tell(const PictureCanvas& canvas);

  private:
    class Swatch;
    struct Line {
        Swatch* swatch;
        QLabel* values;
        QLabel* figures;
    };
    Line AddLine(int row);
    static void TellPixel(const Line& line, const QString& before, const std::optional<QRgb>& pixel);

    Line m_first;
    Line m_second;
};

// "R 12  G 200  B 255   0.047 0.784 1.000"; opacity as well if there is any.
QString PixelText(QRgb pixel);
// What two pictures of different sizes do not have in common; empty if there is nothing.
QString MissingText(QSize first, QSize second);
QString DifferenceText(const PictureDifference& difference);
QString ZoomText(double zoom);

}  // namespace tavrin
