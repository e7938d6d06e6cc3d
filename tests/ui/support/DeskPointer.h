// SPDX-License-Identifier: Apache-2.0
// A user's mouse on the desk of a main frame.
#pragma once

#include <QPoint>
#include <QStringList>
#include <string>

#include "desk/DeskGeometry.h"

class QMenu;
class QWidget;

namespace tavrin {
class MainFrame;
}

namespace tavrin::test {

// Places are in pixels of the desk's widget. What it asks for and does not find fails the test. The frame
// outlives it.
class DeskPointer {
  public:
    explicit DeskPointer(MainFrame& frame) : m_frame(frame) {}

    // Where things are seen.
    QPoint At(DeskPoint point) const;
    QPoint Of(const COpButton& button) const;
    QPoint Of(COpBox& box, const std::string& button) const;
    QPoint TitleOf(const COpBox& box) const;
    // In the middle of the middle piece of the wire that enters the input.
    QPoint OfWireInto(const COpButton& input) const;

    void MoveTo(QPoint at, Qt::MouseButton held = Qt::NoButton);
    void Press(QPoint at);
    void Release(QPoint at);
    void Click(QPoint at);
    void WireByDrag(QPoint from, QPoint to);
    void WireByClicks(QPoint from, QPoint to);
    // A wire from the button to a new copy of the vinput, which is made by its arrow.
    void WireToArrow(QPoint from, const COpButton& vinput, bool above);

    // The menu that a click of the right button brings; null if none comes.
    QMenu* OpenMenu(QPoint at);
    // Clicks an item of the menu, and on through its submenus.
    void Choose(QMenu* menu, const QStringList& way);
    void ChooseAt(QPoint at, const QStringList& way) { Choose(OpenMenu(at), way); }

  private:
    QWidget& Pane() const;

    MainFrame& m_frame;
};

}  // namespace tavrin::test
