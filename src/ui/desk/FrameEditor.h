// SPDX-License-Identifier: Apache-2.0
// The field over the desk in which the title of a frame or the text of a note is typed.
#pragma once

#include <QPlainTextEdit>
#include <functional>

#include "desk/OpDesk.h"

namespace tavrin {

class DeskViewport;

// Hidden while nothing is edited; a child of the desk's widget, to which the rest belongs and which outlives
// it. A note grows with its text, up to
// a page. Each key is an edit of the document at once, so nothing is lost by how the field is left, and those
// of one opening are one step to undo. Escape ends it, as does Enter in a title, Control and Enter in a note,
// a click elsewhere, or the end of the frame.
class FrameEditor : public QPlainTextEdit {
  public:
    struct Needs {
        CTvDoc& document;
        COpDesk& desk;
        const DeskViewport& view;
        std::function<void()> closed;  // who has the focus then is for others
    };
    FrameEditor(QWidget* parent, Needs needs);

    // On the frame or note of that number, with all of its text selected. Nothing where there is none, and on
    // a locked desk.
    void Open(int number);
    void Close();
    // The view, the document or the text may be another.
    void Follow();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    const DeskFrame* Edited() const;
    void EndStep();
    void Commit();
    void GrowNote(const DeskFrame& note);
    void ShowText(const DeskFrame& frame);
    void ShowLook(const DeskFrame& frame);
    void Place(const DeskFrame& frame);

    Needs m_needs;
    int m_number = 0;  // 0 while it is closed
    bool m_isLatin1 = false;
};

}  // namespace tavrin
