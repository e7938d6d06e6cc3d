// SPDX-License-Identifier: Apache-2.0
// How long the desktop program takes from its start to the first painted window, the splash left out. Runs
// itself anew for each measurement; the child is given the time of its start.
#include <QApplication>
#include <QOpenGLWidget>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/TvApp.h"
#include "base/Profile.h"
#include "ui/base/QtQueue.h"
#include "ui/desk/DeskContext.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/MainFrame.h"

namespace {

using namespace tavrin;
constexpr int kRuns = 9;

// The same clock in every process.
long long NowMicroseconds() {
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Prints the microseconds since `start` when the desk's first frame has reached the screen.
int RunChild(int argc, char** argv, long long start, const char* document) {
    QSurfaceFormat::setDefaultFormat(DeskFormat());
    QApplication application(argc, argv);
    QtQueue queue;
    Report report;
    MemoryProfile profile;
    CTvApp app(report, queue, Environment::FromProcess(), argv[0]);
    {
        MainFrame frame({app, queue, profile}, false);
        if (*document != '\0') frame.OpenDocumentFile(document);
        QObject::connect(&frame.Desk().Desk(), &QOpenGLWidget::frameSwapped, &frame, [start] {
            std::printf("%lld\n", NowMicroseconds() - start);
            std::fflush(stdout);
            QCoreApplication::quit();
        });
        frame.show();
        QApplication::exec();
    }
    app.CloseDown(std::chrono::milliseconds(0));
    return EXIT_SUCCESS;
}

double MedianMilliseconds(const std::string& program, const std::string& document) {
    std::vector<double> times;
    for (int run = 0; run < kRuns; ++run) {
        const std::string command =
            program + " --child " + std::to_string(NowMicroseconds()) + " '" + document + "'";
        FILE* output = ::popen(command.c_str(), "r");
        double microseconds = 0;
        if (output == nullptr || std::fscanf(output, "%lf", &microseconds) != 1) std::exit(EXIT_FAILURE);
        ::pclose(output);
        times.push_back(microseconds / 1000);
    }
    std::nth_element(times.begin(), times.begin() + kRuns / 2, times.end());
    return times[kRuns / 2];
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::string(argv[1]) == "--child") {
        return RunChild(argc, argv, std::atoll(argv[2]), argv[3]);
    }
    std::printf("start to the first painted window, empty desk: %.0f ms\n", MedianMilliseconds(argv[0], ""));
    std::printf("start to the first painted window, marble.tvn: %.0f ms\n",
                MedianMilliseconds(argv[0], TAVRIN_SOURCE_DIR "/examples/marble.tvn"));
    return EXIT_SUCCESS;
}
