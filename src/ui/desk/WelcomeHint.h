// SPDX-License-Identifier: Apache-2.0
// What a desk with nothing on it says to those who begin.
#pragma once

#include <QWidget>
#include <functional>
#include <string>

#include "desk/DeskStyle.h"

namespace tavrin {

class COpDesk;
class CTvDoc;
class DeskPane;
struct Workspace;

// Lies over the desk's window, its parent, while that is bare, nothing waits at the mouse and the desk is not
// locked. All events belong to the desk, but for those of a pointer on the link.
class WelcomeHint : public QWidget {
  public:
    struct Needs {
        const CTvDoc& document;
        const COpDesk& desk;
        Rgb background;                      // of the desk, which the text is to be read on
        std::string lastBox;                 // the operator that a network ends in; empty where none is known
        std::function<void()> openExamples;  // nothing where the library has none
    };
    WelcomeHint(QWidget& desk, Needs needs);
    // Makes one where the library wants it, by "desk.welcome". `openExamples` is not used without examples.
    static void AddTo(DeskPane& pane, Workspace& work, std::function<void()> openExamples);

    // What it says besides the link, a line each: only what the library has.
    QStringList Lines() const;
    // In its own coordinates; empty without a link.
    QRect LinkRect() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    // Where things are, in its own coordinates.
    struct Layout {
        QRect panel;
        QRect link;
        QRect lines;
    };
    Layout LayOut() const;
    QFont LinkFont() const;
    bool IsWanted() const;
    void Refresh();
    void SetHovered(bool isHovered);
    bool HearPress(const QPoint& at, Qt::MouseButton button);
    bool HearMove(const QPoint& at, Qt::MouseButtons held);
    bool HearRelease(const QPoint& at, Qt::MouseButton button);

    QWidget& m_desk;
    const Needs m_needs;
    bool m_isHovered = false;
    bool m_isPressed = false;
};

}  // namespace tavrin
