// SPDX-License-Identifier: Apache-2.0
#include "ui/support/DeskPointer.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>
#include <QWindow>
#include <stdexcept>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/MainFrame.h"
#include "ui/support/Windows.h"

namespace tavrin::test {

QWidget& DeskPointer::Pane() const { return m_frame.Desk().Desk(); }

QPoint DeskPointer::At(DeskPoint point) const {
    const WindowPoint at = m_frame.Desk().View().ToWindow(point);
    const QPoint pixel(static_cast<int>(at.x), static_cast<int>(at.y));
    EXPECT_TRUE(Pane().rect().contains(pixel)) << pixel.x() << ", " << pixel.y() << " is out of sight";
    return pixel;
}

QPoint DeskPointer::Of(const COpButton& button) const {
    return At(ButtonRect(ButtonPlace::Of(button)).Middle());
}

QPoint DeskPointer::Of(COpBox& box, const std::string& button) const {
    const COpButton* found = box.FindButton(button);
    if (found == nullptr) throw std::logic_error(box.filename + " has no " + button);
    return Of(*found);
}

QPoint DeskPointer::TitleOf(const COpBox& box) const { return At(TitleRect(box).Middle()); }

QPoint DeskPointer::OfWireInto(const COpButton& input) const {
    const Polyline wire = ConnectionPolyline(ButtonPlace::Of(*input.connections.First()),
                                             ButtonPlace::Of(input), m_frame.Work().document.linetype == 1);
    const DeskPoint from = wire.points[wire.count / 2 - 1];
    const DeskPoint to = wire.points[wire.count / 2];
    return At({(from.x + to.x) / 2, (from.y + to.y) / 2});
}

void DeskPointer::MoveTo(QPoint at, Qt::MouseButton held) {
    QMouseEvent move(QEvent::MouseMove, at, Pane().mapToGlobal(at), Qt::NoButton, held, {});
    QApplication::sendEvent(&Pane(), &move);
}

void DeskPointer::Press(QPoint at) {
    MoveTo(at);
    QTest::mousePress(&Pane(), Qt::LeftButton, {}, at);
}

void DeskPointer::Release(QPoint at) {
    MoveTo(at, Qt::LeftButton);
    QTest::mouseRelease(&Pane(), Qt::LeftButton, {}, at);
    HandleEvents();
}

void DeskPointer::Click(QPoint at) {
    Press(at);
    Release(at);
}

void DeskPointer::WireByDrag(QPoint from, QPoint to) {
    Press(from);
    MoveTo((from + to) / 2, Qt::LeftButton);
    Release(to);
}

void DeskPointer::WireByClicks(QPoint from, QPoint to) {
    Click(from);
    Click(to);
}

void DeskPointer::WireToArrow(QPoint from, const COpButton& vinput, bool above) {
    Press(from);
    MoveTo(Of(vinput), Qt::LeftButton);
    m_frame.Desk().Desk().grabFramebuffer();  // a paint brings the arrows up
    Release(At(GrowArrowRect(ButtonPlace::Of(vinput), above).Middle()));
}

QMenu* DeskPointer::OpenMenu(QPoint at) {
    QWindow* window = m_frame.windowHandle();
    const QPoint inWindow = Pane().mapTo(&m_frame, at);
    QTest::mouseMove(window, inWindow);
    QTest::mouseClick(window, Qt::RightButton, {}, inWindow);
    HandleEvents();
    return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

void DeskPointer::Choose(QMenu* menu, const QStringList& way) {
    for (const QString& text : way) {
        ASSERT_NE(menu, nullptr) << "no menu is open for " << Bytes(text);
        QAction* item = nullptr;
        for (QAction* action : menu->actions()) {
            if (action->text() == text) item = action;
        }
        ASSERT_NE(item, nullptr) << "the menu does not offer " << Bytes(text);
        EXPECT_TRUE(item->isEnabled()) << Bytes(text);
        QMenu* next = item->menu();
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
        if (next != nullptr) {
            ASSERT_TRUE(WaitUntil([&] { return next->isVisible(); })) << Bytes(text);
        }
        menu = next;
    }
    HandleEvents();
}

}  // namespace tavrin::test
