// SPDX-License-Identifier: Apache-2.0
// Renders, exports and views as the frame's commands do them, and the word in the status box on how they go.
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTimer>
#include <functional>
#include <optional>

#include "base/Listeners.h"
#include "render/ShaderExport.h"

class QWidget;

namespace tavrin {

class CommandActions;
class CStatusBox;
struct ChildEnd;
struct Workspace;

// Belongs to the frame. While a command is waited for, the wait cursor is shown and the status box tells the
// step and the time; so it does while a child runs.
class RenderWork {
  public:
    // All of it outlives this.
    struct Needs {
        QWidget& frame;
        Workspace& work;
        CStatusBox& statusBox;
        std::function<void()> historyChanged;
    };
    explicit RenderWork(Needs needs);
    ~RenderWork();

    void AddTo(CommandActions& commands);

    void RenderIt();
    void StopRender();
    // The running children are being stopped by somebody else: their end is no failure.
    void ChildrenAreStopped();
    void ExportAll();
    // Asks where to.
    void ExportOne(ExportKind kind);
    void ViewShaderSource();
    void ViewRenderInterface();
    void ViewShaderInterface();

    bool ChildRuns() const;

    // Commands that are waited for while it lives are told under its name, with the time since it began.
    class Step {
      public:
        Step(RenderWork& work, const QString& name);
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

      private:
        RenderWork& m_work;
    };

  private:
    void AddExports(CommandActions& commands);
    void AddViews(CommandActions& commands);
    // Shows what a document from elsewhere wants, and asks, unless the user has agreed to that before.
    bool MayFollow(const ExportPlan& plan);
    void OpenView(const QString& step, const std::function<std::optional<std::string>()>& view);
    // Tells the log of a network that can only make a black picture.
    bool TellIfBlack();
    void StartWatching(const QString& doing, const QString& done);
    void Watch();
    void OnChildEnd(const ChildEnd& end);
    void OnWait(std::optional<std::chrono::milliseconds> elapsed);
    void TellStep(const QString& step, qint64 time);
    void EndTelling();

    Needs m_needs;
    Workspace& m_work;
    QString m_step;             // what commands that are waited for are part of
    QElapsedTimer m_stepSince;  // its beginning
    qint64 m_stepTold = -1;     // its time when it was told last; -1 if it was not yet
    bool m_isWaiting = false;
    QString m_doing;  // what the children do, such as "Rendering marble"
    QString m_done;   // the same when they have done it
    bool m_stopped = false;
    QElapsedTimer m_since;  // the start of the child that was started last
    QTimer m_watch;
    QTimer m_forget;  // ends the word on what is over
    Listeners<const ChildEnd&>::Subscription m_childEnds;
};

}  // namespace tavrin
