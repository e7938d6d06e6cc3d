// SPDX-License-Identifier: Apache-2.0
// The picture window: from the start of its process until its first picture stands on the screen; from a
// picture that has been written until it stands there; and the wipe over two pictures of 4096 x 4096, a step
// of the line at a time. Wants a display. The floors are reading such a picture, and a window of that size
// that only clears the strip.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QPaintEvent>
#include <QPainter>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "render/PictureSocket.h"
#include "view/PictureCanvas.h"

namespace {

using namespace tavrin;

constexpr int kPictures = 100;
constexpr int kStarts = 5;
constexpr int kSteps = 200;
constexpr int kLarge = 4096;
constexpr QSize kWindow(1600, 1000);

double Milliseconds(const QElapsedTimer& clock) { return double(clock.nsecsElapsed()) / 1e6; }

void Tell(const char* what, std::vector<double> times) {
    std::sort(times.begin(), times.end());
    double sum = 0;
    for (const double time : times) sum += time;
    std::printf("view %-36s %4zu times  median %7.2f ms  mean %7.2f ms  longest %7.2f ms\n", what,
                times.size(), times[times.size() / 2], sum / double(times.size()), times.back());
}

QImage Noise(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) line[x] = QRgb(random()) | 0xff000000;
    }
    return image;
}

void Rest() { std::this_thread::sleep_for(std::chrono::microseconds(200)); }

// The window as a process, and a desk's end of the line to it.
class Window {
  public:
    explicit Window(const Environment& environment) {
        m_process = ::fork();
        if (m_process == 0) {
            ::execl(TAVRIN_BINARY_DIR "/bin/tavrin-view", "tavrin-view", nullptr);
            ::_exit(EXIT_FAILURE);
        }
        const PictureSocket socket(environment);
        FileDescriptor connection;
        while (!(connection = socket.Connect())) Rest();
        m_wire.emplace(std::move(connection));
        Say(PictureMessage("hello").Set("desk", "/bench"));
        Say(PictureMessage("frame")
                .Set("desk", "/bench")
                .Set("x", 10)
                .Set("y", 10)
                .Set("w", 800)
                .Set("h", 600));
    }
    ~Window() {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void Show(int id, const std::string& file) {
        Say(PictureMessage("live").Set("desk", "/bench").Set("id", id).Set("file", file).Set("final", 1));
        for (;;) {
            m_wire->Receive();
            while (const auto message = m_wire->Next())
                if (message->Verb() == "shown" && message->Number("id") == id) return;
            Rest();
        }
    }

  private:
    void Say(const PictureMessage& message) {
        m_wire->Send(message);
        m_wire->Flush();
    }

    pid_t m_process = -1;
    std::optional<PictureWire> m_wire;
};

void MeasureProcess(const QTemporaryDir& directory) {
    ::setenv("XDG_RUNTIME_DIR", directory.path().toUtf8().constData(), 1);
    ::setenv("XDG_CONFIG_HOME", directory.path().toUtf8().constData(), 1);
    const Environment environment = Environment::FromProcess();
    const QImage image = Noise(320, 240, 1);
    const std::string file = directory.filePath("it.png").toStdString();
    image.save(directory.filePath("it.png"));
    std::vector<double> starts, pictures, floor;
    for (int start = 0; start < kStarts; ++start) {
        QElapsedTimer clock;
        clock.start();
        Window window(environment);
        window.Show(1, file);
        starts.push_back(Milliseconds(clock));
        if (start + 1 < kStarts) continue;
        for (int id = 2; id < kPictures + 2; ++id) {
            clock.start();
            window.Show(id, file);
            pictures.push_back(Milliseconds(clock));
        }
    }
    for (int i = 0; i < kPictures; ++i) {
        QElapsedTimer clock;
        clock.start();
        if (QImage(directory.filePath("it.png")).isNull()) std::abort();
        floor.push_back(Milliseconds(clock));
    }
    Tell("start to first picture", starts);
    Tell("written to shown, 320x240", pictures);
    Tell("floor: reads it", floor);
}

// Cleared by strips.
class Strips : public QWidget {
  public:
    int paints = 0;

  protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter(this).fillRect(event->rect(), Qt::gray);
        ++paints;
    }
};

std::vector<double> Drag(const std::function<void(double)>& step, const std::function<int()>& paints) {
    std::vector<double> times;
    while (paints() == 0) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    for (int i = 0; i < kSteps; ++i) {
        QApplication::processEvents();
        const int before = paints();
        QElapsedTimer clock;
        clock.start();
        step(double(i % 100) / 100);
        while (paints() == before) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QApplication::sync();
        times.push_back(Milliseconds(clock));
    }
    return times;
}

void MeasureWipe() {
    int paints = 0;
    {
        PictureCanvas canvas(nullptr, {.told = [] {}, .painted = [&paints] { ++paints; }});
        canvas.resize(kWindow);
        QElapsedTimer clock;
        const auto first = std::make_shared<Picture>(Noise(kLarge, kLarge, 1));
        const auto second = std::make_shared<Picture>(Noise(kLarge, kLarge, 2));
        clock.start();
        canvas.ShowPictures(first, second);
        canvas.SetMode(PictureCanvas::Mode::kWipe);
        canvas.show();
        while (paints == 0) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        Tell("two of 4096x4096 come up", {Milliseconds(clock)});
        Tell("wipe over two of 4096x4096, a step",
             Drag([&](double at) { canvas.SetWipe(at); }, [&] { return paints; }));
        clock.start();
        canvas.SetMode(PictureCanvas::Mode::kDifference);
        Tell("their difference", {Milliseconds(clock)});
    }
    Strips strips;
    strips.resize(kWindow);
    strips.show();
    int before = 0;
    Tell("floor: clears the strip", Drag(
                                        [&](double at) {
                                            const int x = int(at * kWindow.width());
                                            strips.update(std::min(x, before), 0, std::abs(x - before) + 30,
                                                          kWindow.height());
                                            before = x;
                                        },
                                        [&] { return strips.paints; }));
}

}  // namespace

int main(int argc, char** argv) {
    const QTemporaryDir directory;
    QApplication application(argc, argv);
    MeasureProcess(directory);
    MeasureWipe();
    return 0;
}
