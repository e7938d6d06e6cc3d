// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/DialogUnits.h"

namespace tavrin {

namespace {

constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr double kUnitsAcross = 4;  // to an average letter
constexpr double kUnitsDown = 8;    // to the font's height

}  // namespace

DialogUnits::DialogUnits(const QFontMetrics& metrics)
    : m_across(metrics.horizontalAdvance(kLetters) / double(sizeof kLetters - 1) / kUnitsAcross),
      m_down(metrics.height() / kUnitsDown) {}

int DialogUnits::Across(int units) const { return qRound(units * m_across); }

int DialogUnits::Down(int units) const { return qRound(units * m_down); }

QRect DialogUnits::Pixels(const UnitRect& rect) const {
    return {QPoint(Across(rect.x), Down(rect.y)),
            QPoint(Across(rect.x + rect.width) - 1, Down(rect.y + rect.height) - 1)};
}

}  // namespace tavrin
