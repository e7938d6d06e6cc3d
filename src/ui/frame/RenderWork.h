// Renders, exports and views as the frame's commands do them, and the word in the status box on how they go.
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTimer>
#include <functional>
#include <optional>

#include "render/ShaderExport.h"

class QWidget;

namespace tavrin {

class CStatusBox;
struct Workspace;

// Belongs to the frame. While a command is waited for, the wait cursor is shown and the status box tells the
// step and the time; so it does while a child runs.
class RenderWork {
  public:
    RenderWork(QWidget& frame, Workspace& work, CStatusBox& statusBox, std::function<void()> historyChanged);
    ~RenderWork();

    void RenderIt();
    void StopRender();
    void ExportAll();
    // Asks where to.
    void ExportOne(ExportKind kind);
    void ViewShaderSource();
    void ViewRenderInterface();
    void ViewShaderInterface();

    // Shell commands that others run are waited for under this name; given back when it goes.
    class Step {
      public:
        Step(RenderWork& work, const QString& name) : m_work(work), m_before(work.m_step) {
            work.m_step = name;
        }
        ~Step() { m_work.m_step = m_before; }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

      private:
        RenderWork& m_work;
        QString m_before;
    };

  private:
    void OpenView(const QString& step, const std::function<std::optional<std::string>()>& view);
    void StartWatching(const QString& doing, const QString& done);
    void Watch();
    void OnChildEnd(int exitCode);
    void OnWait(std::optional<std::chrono::milliseconds> elapsed);

    QWidget& m_frame;
    Workspace& m_work;
    CStatusBox& m_statusBox;
    std::function<void()> m_historyChanged;
    QString m_step;  // what commands that are waited for are part of
    bool m_isWaiting = false;
    bool m_stepTold = false;  // of the wait that goes on
    QString m_doing;  // what the children do, such as "Rendering marble"
    QString m_done;   // the same when they have done it
    bool m_stopped = false;
    QElapsedTimer m_since;  // the start of the child that was started last
    QTimer m_watch;
    QTimer m_forget;  // ends the word on what is over
};

}  // namespace tavrin
