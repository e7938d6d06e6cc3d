// SPDX-License-Identifier: Apache-2.0
// What the tests of the desk's pane build on: a desk in a real window, real events, and pictures of it.
#pragma once

#include <GL/gl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "desk/BoxMarks.h"
#include "support/TestHost.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/Windows.h"

namespace tavrin::test {

inline constexpr Rgb kGreen{0, 0.6F, 0};

// Colours are rounded by whatever draws.
inline bool IsAlike(QRgb pixel, const Rgb& color) {
    const auto near = [](int channel, float wanted) {
        return std::abs(static_cast<float>(channel) - wanted * 255) <= 1;
    };
    return near(qRed(pixel), color.r) && near(qGreen(pixel), color.g) && near(qBlue(pixel), color.b);
}
MATCHER_P(IsColor, color, "") { return IsAlike(arg, color); }

// The origin of the desk is in the lower left corner of its window, and a box's layout is what its texts make
// of it.
class DeskPaneTest : public DocumentTest {
  protected:
    DeskPaneTest() {
        Settings& settings = host.GetSite().settings;
        settings.Store("desk.font", "\"DejaVu Sans\"");
        settings.Store("desk.connectcolor", "0 0 1");
        settings.Store("desk.stipplelinecolor", "0 1 1");
        settings.Store("desk.selectedconnectcolor", "1 0 1");
        settings.Store("box.selectedcolor", "1 0.5 0");
    }
    // The pane without its window.
    void MakePane() {
        pane = std::make_unique<tavrin::DeskPane>(
            nullptr, document, desk, host.GetSite(),
            tavrin::DeskPane::Needs{[this] { return highlighted; },
                                    [this](const std::string& text) { status = text; },
                                    [](const std::string& text, int) { ADD_FAILURE() << text; },
                                    [this](const std::string& name) { edited.push_back(name); },
                                    [this] { return shown; },
                                    {},
                                    {},
                                    {},
                                    &marks});
    }
    void Show() {
        MakePane();
        pane->resize(640, 480);
        pane->move(0, 0);
        desk.OnInitialUpdate();
        ShowActive(*pane);
        document.SetModified(false);
        changes = 0;
    }

    // A green box with its middle at a point of the desk.
    COpBox& Put(std::unique_ptr<COpBox> box, float x, float y) {
        box->wid = ++m_lastWid;
        box->xypos[0] = x;
        box->xypos[1] = y;
        box->color[0] = kGreen.r;
        box->color[1] = kGreen.g;
        box->color[2] = kGreen.b;
        return Add(std::move(box));
    }
    COpBox& PutLink(float x, float y) { return Put(MakeLink("box", 0), x, y); }

    QPoint At(DeskPoint point) {
        const WindowPoint at = pane->View().ToWindow(point);
        return {static_cast<int>(at.x), static_cast<int>(at.y)};
    }
    // A place of the box that is on no button.
    QPoint TitleOf(const COpBox& box) { return At(TitleRect(box).Middle()); }
    void MoveTo(QPoint at, Qt::MouseButtons buttons = Qt::NoButton, Qt::KeyboardModifiers keys = {}) {
        QMouseEvent move(QEvent::MouseMove, at, pane->Desk().mapToGlobal(at), Qt::NoButton, buttons, keys);
        QApplication::sendEvent(&pane->Desk(), &move);
    }
    void Press(QPoint at, Qt::KeyboardModifiers keys = {}) {
        MoveTo(at);
        QTest::mousePress(&pane->Desk(), Qt::LeftButton, keys, at);
    }
    void Drag(QPoint at) { MoveTo(at, Qt::LeftButton); }
    void Release(QPoint at) { QTest::mouseRelease(&pane->Desk(), Qt::LeftButton, {}, at); }
    void Click(QPoint at, Qt::KeyboardModifiers keys = {}) {
        Press(at, keys);
        Release(at);
    }
    void TurnWheel(QWidget& over, int turn) {
        const QPointF at = over.rect().center();
        QWheelEvent wheel(at, over.mapToGlobal(at), QPoint(), QPoint(0, turn), Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        // As from the platform: others are not passed on to parents.
        QSpontaneKeyEvent::setSpontaneous(&wheel);
        qApp->notify(&over, &wheel);
    }
    QScrollBar& Bar(Qt::Orientation orientation) {
        for (QScrollBar* bar : pane->findChildren<QScrollBar*>()) {
            if (bar->orientation() == orientation) return *bar;
        }
        throw std::logic_error("no such bar");
    }

    void Look() {
        m_picture = pane->Desk().grabFramebuffer();
        pane->Desk().makeCurrent();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        pane->Desk().doneCurrent();
    }
    void Lock(bool locked) {
        document.lock = locked ? 1 : 0;
        pane->setEnabled(!locked);
    }
    const QImage& Picture() const { return m_picture; }
    QRgb Seen(DeskPoint point) { return m_picture.pixel(At(point) * Ratio()); }
    int Ratio() { return static_cast<int>(pane->Desk().devicePixelRatioF()); }
    // How many window pixels of the colour a rectangle of the desk shows.
    int Count(const DeskRect& rect, const Rgb& color) {
        const int ratio = Ratio();
        const QRect area(At({rect.left, rect.Top()}) * ratio,
                         At({rect.Right(), rect.bottom}) * ratio + QPoint(ratio - 1, ratio - 1));
        int count = 0;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                if (m_picture.valid(x, y) && IsAlike(m_picture.pixel(x, y), color)) ++count;
            }
        }
        return count / (ratio * ratio);
    }

    COpDesk desk{document, host};
    Edits::Subscription listener = document.edits.Observe([this](const Change&) { ++changes; });
    BoxMarks marks;  // before the pane, which they outlive
    std::unique_ptr<tavrin::DeskPane> pane;
    std::string highlighted;
    const COpButton* shown = nullptr;  // the output that stands for the picture
    std::string status;
    std::vector<std::string> edited;  // operators whose files were to be opened
    int changes = 0;

  private:
    QImage m_picture;
    int m_lastWid = 0;
};

inline constexpr Rgb kInk{0, 0, 0};
inline constexpr Rgb kLine{0, 0, 1};
inline constexpr Rgb kStippledLine{0, 1, 1};
inline constexpr Rgb kSelectedLine{1, 0, 1};
inline constexpr Rgb kOutline{1, 0.5F, 0};
inline constexpr Rgb kBackground{0.6F, 0.7F, 0.7F};

}  // namespace tavrin::test
