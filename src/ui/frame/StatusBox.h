// SPDX-License-Identifier: Apache-2.0
// The box at the bottom of the frame that tells of what is under the mouse and of what goes on.
#pragma once

#include <QFrame>
#include <functional>
#include <string>

class QLabel;
class QPlainTextEdit;

namespace tavrin {

// A child of the frame, whose layout places it. Main thread only.
class CStatusBox : public QFrame {
  public:
    using Clock = std::function<long()>;  // whole seconds

    // `background` has three components from 0 to 1. The clock is a parameter for tests.
    CStatusBox(QWidget* frame, const float (&background)[3], Clock clock = {});

    // Shows a text, unless an earlier one is still being held. The text is held for `holdSeconds`. One that
    // the box has no room for ends in an ellipsis.
    void SetStatus(const std::string& text, int holdSeconds = 0);
    void ClearStatus() { SetStatus({}); }
    QString Status() const { return m_status; }  // whole
    // Whether this is the text that was set last.
    bool Shows(const std::string& text) const { return text == m_shown; }

    // What the program is busy with, beside the status text; empty for nothing. Shown at once if `isUrgent`,
    // for use while the event loop does not run.
    void SetActivity(const QString& text, bool isUrgent = false);
    const QString& Activity() const { return m_activityText; }
    // What goes on by itself beside all that; shown while the program is busy with nothing.
    void SetAside(const QString& text);
    const QString& Aside() const { return m_asideText; }
    // What the user has in hand and may do with it, before the status text; empty for nothing. Broken into
    // lines where the box is narrow.
    void SetHint(const QString& text);
    const QString& Hint() const { return m_hintText; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void ShowStatus();
    void ShowActivity();
    void ShowHint();

    QLabel* m_hint;
    QFrame* m_rule;  // between the hint and the text
    QPlainTextEdit* m_text;
    QLabel* m_activity;
    std::string m_shown;     // as it was set: the field has its own line ends
    QString m_status;        // whole, with the field's line ends
    QString m_activityText;  // whole; the label shows what fits
    QString m_hintText;
    QString m_asideText;
    Clock m_clock;
    long m_since = 0;  // when the text that is held was set
    int m_hold = 0;    // seconds; 0 for none
};

}  // namespace tavrin
