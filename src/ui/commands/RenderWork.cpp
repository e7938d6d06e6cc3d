// SPDX-License-Identifier: Apache-2.0
#include "ui/commands/RenderWork.h"

#include <QGuiApplication>
#include <QWidget>
#include <utility>

#include "app/Workspace.h"
#include "base/Paths.h"
#include "render/NetworkCheck.h"
#include "text/Duration.h"
#include "text/VisibleText.h"
#include "ui/base/Text.h"
#include "ui/commands/CommandActions.h"
#include "ui/dialogs/Messages.h"
#include "ui/frame/StatusBox.h"
#include "ui/render/SelectLocation.h"

namespace tavrin {

namespace {

// Milliseconds between two tellings of a time. Each repaints the window, which the desk makes dear where
// there is no graphics card.
constexpr int kTick = 500;
constexpr int kForget = 10000;    // milliseconds for which the end of a render is told
constexpr int kWaitToTell = 300;  // milliseconds that a step may take before it is told

QString Seconds(qint64 milliseconds) { return Shown(DurationText(std::chrono::milliseconds(milliseconds))); }

// The extension is that of the library at hand, and of this moment.
void ShowExtension(CommandActions& commands, CommandId id, const std::string& extension) {
    QString text = SpecOf(id).text;
    commands.SetText(id, text.replace("()", "(" + Shown(extension) + ")"));
}

}  // namespace

RenderWork::RenderWork(Needs needs) : m_needs(std::move(needs)), m_work(m_needs.work) {
    m_watch.setInterval(kTick);
    m_watch.callOnTimeout([this] { Watch(); });
    m_forget.setSingleShot(true);
    m_forget.setInterval(kForget);
    m_forget.callOnTimeout([this] { m_needs.statusBox.SetActivity({}); });
    Commands& commands = m_work.app.GetSite().commands;
    m_work.exporter.AskBeforeForeign([this](const ExportPlan& plan) { return MayFollow(plan); });
    commands.OnWait([this](auto elapsed) { OnWait(elapsed); });
    m_childEnds = commands.afterChild.Add([this](const ChildEnd& end) { OnChildEnd(end); });
}

RenderWork::~RenderWork() { m_work.app.GetSite().commands.OnWait({}); }

void RenderWork::AddTo(CommandActions& commands) {
    RenderSession& session = m_work.session;
    const auto canRender = [this, &session] {
        return (session.m_multipleRenders || !ChildRuns()) && !m_work.document.m_boxes.empty();
    };
    commands.On(CommandId::kRenderIt, {[this] { RenderIt(); }, canRender});
    commands.On(CommandId::kStopRender, {[this] { StopRender(); }, [this] { return ChildRuns(); }});
    AddExports(commands);
    AddViews(commands);
    const auto add = [&](CommandId id, bool& flag) {
        commands.On(id, {.run = [&flag] { flag = !flag; }, .checked = [&flag] { return flag; }});
    };
    add(CommandId::kKeepHistory, session.m_keepHistory);
    add(CommandId::kMultipleRenders, session.m_multipleRenders);
}

void RenderWork::AddExports(CommandActions& commands) {
    const Site& site = m_work.app.GetSite();
    const auto noChild = [this] { return !ChildRuns(); };
    const auto add = [&](CommandId id, ExportKind kind, const std::string& extension) {
        commands.On(id, {[this, kind] { ExportOne(kind); }, noChild});
        ShowExtension(commands, id, extension);
    };
    add(CommandId::kExportShaderSource, ExportKind::kShaderSource, site.extShaderSource);
    add(CommandId::kExportCompiledShader, ExportKind::kCompiledShader, site.extCompiledShader);
    add(CommandId::kExportRenderInterface, ExportKind::kRenderIface, site.extRenderIface);
    add(CommandId::kExportShaderInterface, ExportKind::kShaderIface, site.extShaderIface);
    commands.On(CommandId::kExportAll, {[this] { ExportAll(); }, noChild});
}

void RenderWork::AddViews(CommandActions& commands) {
    const Site& site = m_work.app.GetSite();
    const auto canView = [this] { return !ChildRuns() && !m_work.document.m_boxes.empty(); };
    const auto add = [&](CommandId id, void (RenderWork::*view)(), const std::string& extension) {
        commands.On(id, {[this, view] { (this->*view)(); }, canView});
        ShowExtension(commands, id, extension);
    };
    add(CommandId::kViewShaderSource, &RenderWork::ViewShaderSource, site.extShaderSource);
    add(CommandId::kViewRenderInterface, &RenderWork::ViewRenderInterface, site.extRenderIface);
    add(CommandId::kViewShaderInterface, &RenderWork::ViewShaderInterface, site.extShaderIface);
}

bool RenderWork::ChildRuns() const { return m_work.app.GetSite().commands.AnyChildRunning(); }

void RenderWork::RenderIt() {
    m_work.app.RestoreWorkDirectory();
    const QString name = Shown(m_work.session.ShaderName());
    const QString number = QString::number(m_work.session.m_nextRender);
    const Step step(*this, "Saving shader " + name);
    const bool started = m_work.session.RenderIt();
    m_needs.historyChanged();
    if (!started) return;
    const bool isBlack = TellIfBlack();
    StartWatching("Rendering " + name + " (" + number + ")",
                  "Rendered " + name + (isBlack ? " (black, see the log [F8])" : ""));
}

// An output that stands for the picture has a picture of its own.
bool RenderWork::TellIfBlack() {
    Site& site = m_work.app.GetSite();
    if (m_work.probe.Output() != nullptr) return false;
    const std::string why = WhyBlack(m_work.document, site.settings);
    if (!why.empty()) site.report.LogLine("WARNING: %s", why.c_str());
    return !why.empty();
}

void RenderWork::StopRender() {
    if (!ChildRuns()) return;
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
    if (m_work.exporter.ExportAll()) {
        StartWatching("Exporting " + name, "Exported " + name);
    }
}

bool RenderWork::MayFollow(const ExportPlan& plan) {
    TrustStore& trust = m_work.app.Trust();
    if (trust.Holds(TrustStore::Kind::kExports, plan.digest)) return true;
    std::string text = VisibleOneLine(m_work.document.Path()) +
                       " was not saved by you on this machine.  What it wants exported will\n";
    for (const std::string& line : plan.lines) text += "\n  " + line;
    if (!AskWarning(&m_needs.frame, Shown(text + "\n\nExport?"))) return false;
    trust.Add(TrustStore::Kind::kExports, plan.digest);
    // What the user changes of it from here on is the user's own.
    m_work.document.SetForeign(false);
    return true;
}

void RenderWork::ExportOne(ExportKind kind) {
    std::string path = m_work.exporter.DocumentPath(kind);
    if (!SelectFile(path, &m_needs.frame, FilePurpose::kWrite)) return;
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
    if (ChildRuns()) {
        m_needs.statusBox.SetActivity(m_doing + ": " + Seconds(m_since.elapsed()));
        return;
    }
    if (!m_watch.isActive()) return;
    m_watch.stop();
    m_needs.statusBox.SetActivity((m_stopped ? "Stopped after " : m_done + " in ") +
                                  Seconds(m_since.elapsed()));
    m_forget.start();
}

void RenderWork::OnChildEnd(const ChildEnd& end) {
    Watch();
    if (end.exitCode == 0 || m_stopped) return;
    m_needs.statusBox.SetActivity(m_doing +
                                  QString(" failed (status %1); see the log [F8]").arg(end.exitCode));
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
    m_needs.statusBox.SetActivity(step + ": " + Seconds(time), true);
}

void RenderWork::EndTelling() {
    if (std::exchange(m_stepTold, -1) < 0 || m_watch.isActive()) return;
    m_forget.stop();
    m_needs.statusBox.SetActivity({});
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
