#include "ui/support/RunningProgram.h"

#include <gtest/gtest.h>
#include <signal.h>

#include "support/Patience.h"
#include "support/TestSite.h"
#include "ui/Text.h"
#include "ui/support/Windows.h"

namespace tavrin::test {

namespace {

constexpr int kPatienceInMs = std::chrono::milliseconds(kPatience).count();

}  // namespace

Said Ask(const QString& tool, const QStringList& words) {
    QProcess process;
    process.start(tool, words);
    const bool ended = process.waitForFinished(kPatienceInMs);
    return {ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
            process.readAllStandardOutput().toStdString()};
}

RunningProgram::RunningProgram(const Environment& environment, const QStringList& words) {
    QStringList variables;
    for (const std::string& variable : environment.ToList()) variables << Shown(variable);
    m_process.setEnvironment(variables);
    // Where the tests run in the background, these may be ignored, and the program would keep it so.
    m_process.setChildProcessModifier([] {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::signal(signal, SIG_DFL);
    });
    m_process.start(Shown(BuildPath("bin/tavrin")), words);
    EXPECT_TRUE(m_process.waitForStarted(kPatienceInMs));
}

RunningProgram::~RunningProgram() {
    if (m_process.state() == QProcess::NotRunning) return;
    m_process.kill();
    m_process.waitForFinished();
}

int RunningProgram::Status() {
    if (!WaitUntil([&] { return !IsRunning(); })) return -1;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void RunningProgram::Send(int signal) { ::kill(Id(), signal); }

QStringList RunningProgram::Windows(const QString& title) const {
    const Said said =
        Ask("xdotool", {"search", "--onlyvisible", "--all", "--pid", QString::number(Id()), "--name", title});
    return Shown(said.text).split('\n', Qt::SkipEmptyParts);
}

QString RunningProgram::Window(const QString& title) const {
    QString window;
    WaitUntil(
        [&] {
            window = Windows(title).value(0);
            return !window.isEmpty() || !IsRunning();
        });
    if (window.isEmpty()) {
        std::string others;
        for (const QString& other : Windows()) others += Ask("xdotool", {"getwindowname", other}).text;
        ADD_FAILURE() << "no window " << Bytes(title) << " but\n" << others;
    }
    return window;
}

void RunningProgram::Press(const QString& title, const QString& key) const {
    const QString window = Window(title);
    EXPECT_TRUE(WaitUntil(
        [&] {
            if (Ask("xdotool", {"getactivewindow"}).text == Bytes(window) + "\n") return true;
            Ask("xdotool", {"windowactivate", window});
            return false;
        }))
        << Bytes(title) << " does not become active";
    EXPECT_TRUE(Ask("xdotool", {"key", key}).ok);
}

void RunningProgram::WaitForSplashToGo() const {
    bool came = false;
    EXPECT_TRUE(WaitUntil(
        [&] {
            const auto count = Windows().size();
            came = came || count > 1;
            return came && count == 1;
        }));
}

}  // namespace tavrin::test
