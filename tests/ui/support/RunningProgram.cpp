// SPDX-License-Identifier: Apache-2.0
#include "ui/support/RunningProgram.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <QRegularExpression>
#include <QSet>
#include <algorithm>

#include "support/Patience.h"
#include "support/TestSite.h"
#include "ui/base/Text.h"
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
    m_lists.start("xprop", {"-root", "-spy", "_NET_CLIENT_LIST"});
    EXPECT_TRUE(WaitUntil([this] { return m_lists.canReadLine(); }));
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
    for (QProcess* process : {&m_lists, &m_process}) {
        if (process->state() == QProcess::NotRunning) continue;
        process->kill();
        process->waitForFinished(kPatienceInMs);
    }
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
    WaitUntil([&] {
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
    EXPECT_TRUE(WaitUntil([&] {
        if (Ask("xdotool", {"getactivewindow"}).text == Bytes(window) + "\n") return true;
        Ask("xdotool", {"windowactivate", window});
        return false;
    })) << Bytes(title)
        << " does not become active";
    EXPECT_TRUE(Ask("xdotool", {"key", key}).ok);
}

void RunningProgram::Answer(const QString& title) const {
    Press(title, "Return");
    EXPECT_TRUE(WaitUntil([&] {
        const QString window = Windows(title).value(0);
        if (window.isEmpty() || !IsRunning()) return true;
        Ask("xdotool", {"windowactivate", "--sync", window, "key", "Return"});
        return false;
    })) << Bytes(title)
        << " does not go";
}

bool RunningProgram::HasShownTwoWindows() {
    while (m_lists.canReadLine()) m_told << QString::fromUtf8(m_lists.readLine());
    static const QRegularExpression kId("0x[0-9a-f]+");
    const auto idsOf = [](const QString& list) {
        QSet<QString> ids;
        for (auto match = kId.globalMatch(list); match.hasNext();) ids << match.next().captured();
        return ids;
    };
    const QSet<QString> before = idsOf(m_told.value(0));
    return std::any_of(m_told.begin(), m_told.end(),
                       [&](const QString& list) { return (idsOf(list) - before).size() > 1; });
}

void RunningProgram::WaitForSplashToGo() {
    EXPECT_TRUE(WaitUntil([this] { return HasShownTwoWindows() && Windows().size() == 1; }));
}

}  // namespace tavrin::test
