// The desk's window: the OpenGL context and the pointer.
#pragma once

#include <QBasicTimer>
#include <QOpenGLWidget>
#include <functional>
#include <string>

#include "desk/DeskGestures.h"

namespace tavrin {

// Owns the context and forwards events; knows nothing of networks. Owned by the pane.
class DeskWidget : public QOpenGLWidget {
  public:
    struct Hooks {
        std::function<void()> contextIsNew;
        std::function<void()> paint;  // the context is current
        std::function<void()> resized;
        std::function<void(const std::string&)> fail;  // the platform cannot draw a desk; called once
    };
    DeskWidget(QWidget* parent, DeskGestures& gestures, Hooks hooks);

  protected:
    void initializeGL() override;
    void paintGL() override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    void Fail();
    void RunTimer();

    DeskGestures& m_gestures;
    Hooks m_hooks;
    QBasicTimer m_timer;
    bool m_usable = true;
};

}  // namespace tavrin
