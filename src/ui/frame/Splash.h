// SPDX-License-Identifier: Apache-2.0
// The picture that stands over the main window while the program starts, and the box that tells of it later.
#pragma once

#include <QElapsedTimer>
#include <QWidget>
#include <string>

namespace tavrin {

// Owned by the frame, its parent, until its time is over.
class Splash : public QWidget {
  public:
    // It goes when more than this has passed, or an alert waits.
    static constexpr qint64 kTime = 2500;  // milliseconds

    Splash(QWidget* frame, const std::string& version);

    // In its middle, and there it stays if the frame is moved: a window manager may place that only now. To
    // be called when the frame is on the screen, else the splash could come to lie under it. Turns the event
    // loop.
    void ShowOverFrame();

    qint64 TimeLeft() const { return kTime + 1 - m_since.elapsed(); }

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void MoveToMiddle();

    QElapsedTimer m_since;
};

// Modal.
void ShowAboutBox(QWidget* owner, const std::string& version);

// The name of the program and the three-component form of its version, on two lines.
QString ProductText(const std::string& version);

}  // namespace tavrin
