// SPDX-License-Identifier: Apache-2.0
// Where a window stands while it is not maximized.
#pragma once

#include <QObject>
#include <QPoint>
#include <QSize>

class QWidget;

namespace tavrin {

// A maximized window tells its maximized size alone, and the toolkit's own memory of what was before may
// already hold that too: a window manager may change the size before it says why. So this watches the window,
// which outlives it.
class NormalPlace : public QObject {
  public:
    explicit NormalPlace(QWidget& window);
    ~NormalPlace() override;

    // The position with what the window manager draws round the window, the size without, as those of
    // QWidget.
    QPoint Position() const;
    QSize Size() const;

    // The present place is the normal one, if the window is neither maximized nor minimized. The watch does
    // that by itself once a window is shown.
    void Note();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    bool IsNormal() const;
    bool FillsScreen() const;

    QWidget& m_window;
    QPoint m_position;
    QSize m_size;  // not valid until the first note
};

}  // namespace tavrin
