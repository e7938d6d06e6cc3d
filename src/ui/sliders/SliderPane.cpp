// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/SliderPane.h"

#include <QScrollBar>

namespace tavrin {

namespace {

constexpr int kPanelCharacters = 38;  // of average width, that a panel is wide

}  // namespace

SliderPane::SliderPane(QWidget* frame) : QScrollArea(frame) {
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
}

int SliderPane::ColumnWidth() const {
    return kPanelCharacters * fontMetrics().averageCharWidth() + verticalScrollBar()->sizeHint().width();
}

}  // namespace tavrin
