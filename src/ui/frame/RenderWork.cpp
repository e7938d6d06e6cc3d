#include "ui/frame/RenderWork.h"

#include <QGuiApplication>
#include <QWidget>

#include "app/Workspace.h"
#include "base/Paths.h"
#include "ui/Text.h"
#include "ui/frame/StatusBox.h"
#include "ui/render/SelectLocation.h"

namespace tavrin {

namespace {

// Milliseconds between two tellings of a time. Each repaints the window, which the desk makes dear where
// there is no graphics card.
constexpr int kTick = 500;
constexpr int kForget = 10000;    // milliseconds for which the end of a render is told
constexpr int kWaitToTell = 300;  // milliseconds that a step may take before it is told

QString Seconds(qint64 milliseconds) {
    const qint64 seconds = milliseconds / 1000;
    if (seconds < 60) return QString("%1.%2 s").arg(seconds).arg(milliseconds % 1000 / 100);
    return QString("%1:%2 min").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar('0'));
}

}  // namespace

RenderWork::RenderWork(QWidget& frame, Workspace& work, CStatusBox& statusBox,
                       std::function<void()> historyChanged)
    : m_frame(frame), m_work(work), m_statusBox(statusBox), m_historyChanged(std::move(historyChanged)) {
    m_watch.setInterval(kTick);
    m_watch.callOnTimeout([this] { Watch(); });
    m_forget.setSingleShot(true);
    m_forget.setInterval(kForget);
    m_forget.callOnTimeout([this] { m_statusBox.SetActivity({}); });
    Commands& commands = m_work.app.GetSite().commands;
    commands.OnWait([this](auto elapsed) { OnWait(elapsed); });
    commands.OnChildEnd([this](int exitCode) { OnChildEnd(exitCode); });
}

RenderWork::~RenderWork() {
    Commands& commands = m_work.app.GetSite().commands;
    commands.OnWait({});
    commands.OnChildEnd({});
}

void RenderWork::RenderIt() {
    m_work.app.RestoreWorkDirectory();
    const QString name = Shown(m_work.session.ShaderName());
    const QString number = QString::number(m_work.session.m_nextRender);
    const Step step(*this, "Saving shader " + name);
    const bool started = m_work.session.RenderIt();
    m_historyChanged();
    if (started) StartWatching("Rendering " + name + " (" + number + ")", "Rendered " + name);
}

void RenderWork::StopRender() {
    if (!m_work.app.GetSite().commands.AnyChildRunning()) return;
    m_work.session.StopRender();
    ChildrenAreStopped();
}

void RenderWork::ChildrenAreStopped() {
    m_stopped = true;
    Watch();
}

void RenderWork::ExportAll() {
    m_work.app.RestoreWorkDirectory();
    const QString name = Shown(m_work.session.ShaderName());
    const Step step(*this, "Saving shader " + name);
    if (m_work.exporter.Export(m_work.document.exportOptions)) {
        StartWatching("Exporting " + name, "Exported " + name);
    }
}

void RenderWork::ExportOne(ExportKind kind) {
    std::string path = m_work.exporter.DocumentPath(kind);
    if (!SelectFile(path, &m_frame, FilePurpose::kWrite)) return;
    m_work.app.RestoreWorkDirectory();
    const QString file = Shown(PathFile(path));
    const Step step(*this, "Saving shader " + Shown(m_work.session.ShaderName()));
    if (m_work.exporter.Export(ShaderExport::OnlyThis(kind, path))) {
        StartWatching("Exporting " + file, "Exported " + file);
    }
}

void RenderWork::ViewShaderSource() {
    OpenView("Making the shader's source", [this] { return m_work.views.ViewShaderSource(); });
}

void RenderWork::ViewRenderInterface() {
    OpenView("Making the render interface", [this] { return m_work.views.ViewRenderInterface(); });
}

void RenderWork::ViewShaderInterface() {
    OpenView("Making the shader interface", [this] { return m_work.views.ViewShaderInterface(); });
}

void RenderWork::OpenView(const QString& step, const std::function<std::optional<std::string>()>& view) {
    m_work.app.RestoreWorkDirectory();
    const Step named(*this, step);
    if (const auto path = view()) m_work.app.OpenInEditor(*path);
}

void RenderWork::StartWatching(const QString& doing, const QString& done) {
    m_stepTold = -1;  // what is told from here on is no step, and stays
    m_doing = doing;
    m_done = done;
    m_stopped = false;
    m_since.start();
    m_forget.stop();
    m_watch.start();
    Watch();
}

void RenderWork::Watch() {
    if (m_work.app.GetSite().commands.AnyChildRunning()) {
        m_statusBox.SetActivity(m_doing + ": " + Seconds(m_since.elapsed()));
        return;
    }
    if (!m_watch.isActive()) return;
    m_watch.stop();
    m_statusBox.SetActivity((m_stopped ? "Stopped after " : m_done + " in ") + Seconds(m_since.elapsed()));
    m_forget.start();
}

void RenderWork::OnChildEnd(int exitCode) {
    Watch();
    if (exitCode == 0 || m_stopped) return;
    m_statusBox.SetActivity(m_doing + QString(" failed (status %1); see the log [F8]").arg(exitCode));
    m_forget.start();
}

void RenderWork::OnWait(std::optional<std::chrono::milliseconds> elapsed) {
    if (!elapsed) {
        m_isWaiting = false;
        QGuiApplication::restoreOverrideCursor();
        if (m_step.isEmpty()) EndTelling();
        return;
    }
    if (!std::exchange(m_isWaiting, true)) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    if (!m_step.isEmpty()) {
        TellStep(m_step, m_stepSince.elapsed());
    } else if (elapsed->count() >= kWaitToTell) {
        TellStep("Running a command", elapsed->count());
    }
}

// Not for each of many short commands.
void RenderWork::TellStep(const QString& step, qint64 time) {
    if (m_stepTold >= 0 && time - m_stepTold < kTick / 2) return;
    m_stepTold = time;
    m_statusBox.SetActivity(step + ": " + Seconds(time), true);
}

void RenderWork::EndTelling() {
    if (std::exchange(m_stepTold, -1) < 0 || m_watch.isActive()) return;
    m_forget.stop();
    m_statusBox.SetActivity({});
}

RenderWork::Step::Step(RenderWork& work, const QString& name) : m_work(work) {
    work.m_step = name;
    work.m_stepSince.start();
}

RenderWork::Step::~Step() {
    m_work.m_step.clear();
    m_work.EndTelling();
}

}  // namespace tavrin
