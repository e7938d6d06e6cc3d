// SPDX-License-Identifier: Apache-2.0
// The program as a process of its own, seen and steered through the display.
#pragma once

#include <sys/types.h>

#include <QProcess>
#include <QStringList>
#include <string>

#include "base/Environment.h"

namespace tavrin::test {

// What a tool of the display prints, and whether it succeeds.
struct Said {
    bool ok = false;
    std::string text;
};
Said Ask(const QString& tool, const QStringList& words);

// One run of the program; killed at the latest with this object.
class RunningProgram {
  public:
    RunningProgram(const Environment& environment, const QStringList& words);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    pid_t Id() const { return static_cast<pid_t>(m_process.processId()); }
    bool IsRunning() const { return m_process.state() != QProcess::NotRunning; }
    // Its status, -1 if a signal has ended it or it does not end.
    int Status();
    std::string Output() { return m_process.readAllStandardOutput().toStdString(); }
    std::string Errors() { return m_process.readAllStandardError().toStdString(); }
    void Send(int signal);

    // Its windows on the screen whose title matches the expression.
    QStringList Windows(const QString& title = ".*") const;
    // Waits for a window and makes it the active one. Empty if none comes while the program runs.
    QString Window(const QString& title) const;
    void Press(const QString& title, const QString& key) const;
    // Presses Return on a box until it has gone: a window that comes up late may take the key away.
    void Answer(const QString& title) const;
    // The main window stands with that title.
    void WaitForTitle(const QString& title) const { Window("^" + title + "$"); }
    // The first idle pass is over: the splash has come and gone.
    void WaitForSplashToGo();

  private:
    bool HasShownTwoWindows();

    // Tells each list of the display's windows, so that also what has come and gone meanwhile is known.
    QProcess m_lists;
    QStringList m_told;  // the lists so far, that from before the program first
    QProcess m_process;
};

}  // namespace tavrin::test
