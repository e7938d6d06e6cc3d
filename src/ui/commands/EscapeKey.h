// SPDX-License-Identifier: Apache-2.0
// What Escape does on the desk before it resets the zoom.
#pragma once

#include <QObject>
#include <functional>
#include <vector>

class QAction;
class QWidget;

namespace tavrin {

// Belongs to the frame. The key is that of Zoom Reset, and of nothing but the first step while one is wanted:
// who presses it then lets go of a wire, or ends what is shown, and nothing else happens.
class EscapeKey : public QObject {
  public:
    struct Step {
        std::function<bool()> isWanted;
        std::function<void()> run;
    };
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        QAction& zoomReset;
        std::vector<Step> steps;       // the first that is wanted is done
        std::function<void()> hasRun;  // is called after each step
    };
    explicit EscapeKey(Needs needs);
    ~EscapeKey() override;

    // Gives the key to whom it belongs now. Each press asks by itself; so that the menu tells it as well, who
    // knows that a step has come to be wanted calls this.
    void Follow();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    const Step* Wanted() const;
    void Run();

    Needs m_needs;
    QAction* m_step;
};

}  // namespace tavrin
