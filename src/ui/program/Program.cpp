// SPDX-License-Identifier: Apache-2.0
#include "ui/program/Program.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QSurfaceFormat>
#include <QWindow>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "app/TvApp.h"
#include "app/Version.h"
#include "base/Interruption.h"
#include "base/Warden.h"
#include "icons/Icons.h"
#include "text/VisibleText.h"
#include "ui/base/IniProfile.h"
#include "ui/base/QtQueue.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskContext.h"
#include "ui/dialogs/Messages.h"
#include "ui/frame/MainFrame.h"
#include "ui/program/CommandLine.h"

namespace tavrin {

namespace {

constexpr int kWrongCommandLine = 2;
constexpr int kSignalBase = 128;
constexpr int kTimeToShow = 500;                   // milliseconds
constexpr std::chrono::milliseconds kGrace{1000};  // for children when the program is ended from outside

std::string ProgramPath(const char* invokedAs) {
    std::error_code unknown;
    const std::string path = std::filesystem::read_symlink("/proc/self/exe", unknown).string();
    return unknown ? invokedAs : path;
}

// Names from outside may hold anything, and standard error may be a terminal.
void PrintError(const std::string& text) {
    VisibleText visible;
    const std::string line = visible.Add("tavrin: " + text + "\n");
    std::fputs(line.c_str(), stderr);
}

// The document of the command line. If that cannot be opened, the program ends.
bool OpenNamedDocument(MainFrame& frame, Report& report, const std::string& path) {
    if (path.empty() || frame.OpenDocumentFile(path)) return true;
    const auto alert = report.TakePending();
    const std::string text = alert ? alert->text : "unable to open " + path;
    PrintError(text);
    ShowStop(nullptr, "Alert", Shown(text));
    return false;
}

bool AnyWindowToCome() {
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(),
                       [](const QWindow* window) { return window->isVisible() && !window->isExposed(); });
}

// Until all that is shown is on the screen, but not for long: some displays do not tell.
void WaitForWindows() {
    QElapsedTimer clock;
    clock.start();
    while (AnyWindowToCome() && clock.elapsed() < kTimeToShow) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, kTimeToShow / 10);
    }
    QCoreApplication::processEvents();
}

int RunWindows(const std::string& programPath, const std::string& documentPath) {
    QtQueue queue;
    Report report;
    IniProfile profile;
    CTvApp app(report, queue, Environment::FromProcess(), programPath);
    int status = EXIT_SUCCESS;
    {
        MainFrame frame({app, queue, profile}, true);
        // Called on a thread of its own. What is unsaved goes aside before the loop ends.
        Interruption interruption([&](int signal) {
            app.GetSite().commands.InterruptCommand(signal);
            queue.Post([&] {
                frame.SaveAside();
                QCoreApplication::exit(EXIT_FAILURE);
            });
        });
        // Within the loop: whatever ends the program meanwhile has a loop that it can end.
        const auto start = [&] {
            frame.show();
            // A long document is opened before the user's eyes.
            if (!documentPath.empty()) WaitForWindows();
            if (frame.IsClosed()) return;
            if (!OpenNamedDocument(frame, report, documentPath)) QCoreApplication::exit(EXIT_FAILURE);
        };
        QMetaObject::invokeMethod(&frame, start, Qt::QueuedConnection);
        status = QApplication::exec();
        if (frame.HasFailed()) status = frame.ExitStatusOfFailure();
        if (interruption.Signal() != 0) status = kSignalBase + interruption.Signal();
    }
    app.CloseDown(kGrace);
    return status;
}

// Ends the process with everything settled. The toolkit and the display's driver would join their threads and
// give back their memory piece by piece, which on a busy machine takes long after the window has gone. A text
// that was copied has still to be handed on by the toolkit, and a sanitizer looks for leaks at the end.
int End(int status, [[maybe_unused]] Warden& warden) {
#ifndef __SANITIZE_ADDRESS__
    if (!QGuiApplication::clipboard()->ownsClipboard()) {
        std::fflush(nullptr);
        warden.Dismiss();
        std::_Exit(status);
    }
#endif
    return status;
}

}  // namespace

int RunProgram(int& argc, char** argv) {
    // Before the toolkit wants a display.
    std::vector<std::string> words(argv + 1, argv + argc);
    ProgramOptions options = ParseProgramOptions(words);
    if (options.help) {
        std::fputs(ProgramHelp().c_str(), stdout);
        return EXIT_SUCCESS;
    }
    if (options.version) {
        std::printf("tavrin %s\n", VersionText(kProductVersion).c_str());
        return EXIT_SUCCESS;
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is an error of the write
    Warden warden;                  // before the toolkit has threads
    Interruption::Block();
    QSurfaceFormat::setDefaultFormat(DeskFormat());
    QApplication application(argc, argv);
    options = ParseProgramOptions({argv + 1, argv + argc});
    if (!options.error.empty()) {
        PrintError(options.error);
        return kWrongCommandLine;
    }
    QApplication::setApplicationName("tavrin");
    QApplication::setDesktopFileName("tavrin");
    QApplication::setWindowIcon(ApplicationIcon());
    QApplication::setQuitOnLastWindowClosed(false);
    if (const std::string fault = PlatformFault(); !fault.empty()) {
        PrintError(fault);
        ShowStop(nullptr, "Fatal Error", Shown(fault));
        return EXIT_FAILURE;
    }
    return End(RunWindows(ProgramPath(argv[0]), options.documentPath), warden);
}

}  // namespace tavrin
