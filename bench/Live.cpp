// SPDX-License-Identifier: Apache-2.0
// Live as a user has it: the whole frame, the live command of mray and, where it is built, the picture
// window; the marble example at 320x240. From a change to the first picture, to the one that is final, and to
// a picture that stands in the window; medians. Then a slider that a mouse drags for some seconds. The
// driver's cache of compiled shaders is off: what a user makes is new. Wants a display. The floor of the
// desk's own answers is the same drag without Live.
#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QOpenGLWidget>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "app/TvApp.h"
#include "base/Profile.h"
#include "document/TvDoc.h"
#include "library/Value.h"
#include "ui/base/QtQueue.h"
#include "ui/commands/LiveWork.h"
#include "ui/desk/DeskContext.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/MainFrame.h"
#include "ui/sliders/SliderPane.h"
#include "ui/sliders/ValueSlider.h"

namespace {

using namespace tavrin;

constexpr int kValues = 200;
constexpr int kNetworks = 30;
constexpr int kDragSeconds = 5;
constexpr int kStepOfDrag = 8;  // milliseconds between two moves of the mouse, as a mouse sends them
constexpr int kPatience = 20'000;
constexpr double kFrame = 16;  // milliseconds in which a desk should answer

[[noreturn]] void Fail(const std::string& text) {
    std::fprintf(stderr, "live: %s\n", text.c_str());
    std::exit(EXIT_FAILURE);
}

double Median(std::vector<double> times) {
    if (times.empty()) return 0;
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

double Highest(const std::vector<double>& times) {
    return times.empty() ? 0 : *std::max_element(times.begin(), times.end());
}

void Print(const char* what, double milliseconds) {
    std::printf("live %-44s %9.1f ms\n", what, milliseconds);
}

// What came of the states, by the clock that runs since the last change.
class Ears {
  public:
    explicit Ears(LiveWork& live) {
        m_pictures = live.afterPicture.Add([this](const LivePicture& picture) {
            ++count;
            last = picture.id;
            if (first < 0) first = Now();
            if (picture.isFinal) final = Now();
        });
        m_troubles = live.afterTrouble.Add([](const std::string& text) { Fail(text); });
        m_shown = live.afterShown.Add([this](uint64_t id) {
            ++shownCount;
            lastShown = id;
            if (id >= wanted && shown < 0) shown = Now();
        });
    }
    void Start() {
        first = final = shown = -1;
        wanted = last + 1;
        m_clock.start();
    }
    double Now() const { return static_cast<double>(m_clock.nsecsElapsed()) / 1e6; }

    double first = -1;
    double final = -1;
    double shown = -1;
    uint64_t wanted = 0;
    uint64_t last = 0;
    uint64_t lastShown = 0;
    int count = 0;
    int shownCount = 0;

  private:
    QElapsedTimer m_clock;
    Listeners<const LivePicture&>::Subscription m_pictures;
    Listeners<const std::string&>::Subscription m_troubles;
    Listeners<uint64_t>::Subscription m_shown;
};

template <typename Condition>
void WaitFor(const Condition& condition, const char* what) {
    QElapsedTimer clock;
    clock.start();
    QTimer wakes;
    wakes.start(50);
    while (!condition()) {
        if (clock.elapsed() > kPatience) Fail(std::string("no ") + what);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

// The times in which the event loop came to nothing.
class Gaps {
  public:
    Gaps() {
        m_tick.setTimerType(Qt::PreciseTimer);
        m_tick.setInterval(1);
        m_tick.callOnTimeout([this] {
            times.push_back(static_cast<double>(m_clock.nsecsElapsed()) / 1e6);
            m_clock.restart();
        });
    }
    void Start() {
        times.clear();
        m_clock.start();
        m_tick.start();
    }
    void Stop() { m_tick.stop(); }
    void Print(const std::string& what) {
        std::sort(times.begin(), times.end());
        const auto late = times.end() - std::upper_bound(times.begin(), times.end(), kFrame);
        std::printf("live %-44s %9.1f ms longest, %.1f of a hundred, %td of %zu over %.0f\n", what.c_str(),
                    times.back(), times[times.size() * 99 / 100], late, times.size(), kFrame);
    }
    std::vector<double> times;

  private:
    QTimer m_tick;
    QElapsedTimer m_clock;
};

struct Times {
    std::vector<double> first, final, shown;

    void Print(const std::string& what, bool isSeen) const {
        if (isSeen) ::Print((what + ", seen").c_str(), Median(shown));
        ::Print((what + ", first answer").c_str(), Median(first));
        ::Print((what + ", final answer").c_str(), Median(final));
        ::Print((what + ", the slowest first answer").c_str(), Highest(first));
    }
};

class Bench {
  public:
    Bench(MainFrame& frame, bool hasWindow) : m_frame(frame), m_ears(frame.Live()), m_hasWindow(hasWindow) {}

    void Run() {
        m_ears.Start();
        m_frame.Command(CommandId::kLive);
        Await();
        ::Print("the first picture of all", m_ears.final);
        Measure("a changed value", kValues,
                [this](int step) { ChangeValue(0.1F + 0.003F * static_cast<float>(step)); });
        Measure("a changed network", kNetworks, [this](int) { ChangeNetwork(); });
        Drag();
    }

  private:
    void Await() {
        WaitFor([this] { return m_ears.final >= 0 && (!m_hasWindow || m_ears.lastShown >= m_ears.last); },
                "picture");
    }
    template <typename Work>
    void Measure(const std::string& what, int steps, Work work) {
        Times times;
        for (int step = 0; step < steps; ++step) {
            m_ears.Start();
            work(step);
            Await();
            times.first.push_back(m_ears.first);
            times.final.push_back(m_ears.final);
            if (m_hasWindow) times.shown.push_back(m_ears.shown);
        }
        times.Print(what, m_hasWindow);
    }
    COpBox& Box(const std::string& name) {
        for (const auto& box : Document().m_boxes) {
            if (box->filename == name) return *box;
        }
        Fail("there is no box " + name);
    }
    CTvDoc& Document() { return m_frame.Work().document; }
    COpButton& Knob() {
        for (const auto& input : Box("Plastic").inputs) {
            if (input->connections.Empty() && input->values[input->currentcast]->type == "float")
                return *input;
        }
        Fail("there is no value to be changed");
    }
    void ChangeValue(float value) {
        COpButton& knob = Knob();
        const EditScope edit(Document(), "Value");
        Document().edits.ButtonTuned(knob);
        static_cast<COpValueFloat&>(*knob.values[knob.currentcast]).value = value;
    }
    // One more box in the wire to the picture: a shader that nobody has compiled.
    void ChangeNetwork() {
        COpDesk& desk = m_frame.Work().desk;
        const EditScope edit(Document(), "Insert");
        COpButton& input = *Box("Surface").FindButton("colour");
        COpButton& source = *input.connections.First();
        desk.AddOperator("Adjust");
        desk.DropPending();
        COpBox& added = *Document().m_boxes.front();  // on top
        desk.Connect(*added.inputs.front(), source);
        desk.Connect(input, *added.outputs.front());
    }

    ValueSlider& Slider() {
        m_frame.Work().desk.SelectAllBoxes();
        QCoreApplication::processEvents();
        CSliderFrame* frame = m_frame.Sliders().BringIntoView(Knob());
        if (frame == nullptr) Fail("there is no slider");
        for (QWidget* widget : frame->findChildren<QWidget*>()) {
            if (auto* slider = dynamic_cast<ValueSlider*>(widget)) return *slider;
        }
        Fail("there is no slider");
    }
    static QPoint ThumbAt(ValueSlider& slider, int position) {
        QStyleOptionSlider option;
        option.initFrom(&slider);
        option.orientation = Qt::Horizontal;
        option.minimum = slider.minimum();
        option.maximum = slider.maximum();
        option.sliderPosition = option.sliderValue = position;
        const QRect thumb =
            slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider);
        return thumb.center();
    }
    static void Send(ValueSlider& slider, QEvent::Type type, int position) {
        const QPoint at = ThumbAt(slider, position);
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, slider.mapToGlobal(at), button, held, {});
        QApplication::sendEvent(&slider, &event);
    }
    // To and fro, by a mouse that moves all the time.
    void Drag() {
        ValueSlider& slider = Slider();
        const int range = slider.maximum() - slider.minimum();
        Send(slider, QEvent::MouseButtonPress, slider.sliderPosition());
        QElapsedTimer clock;
        clock.start();
        int step = 0;
        QTimer hand;
        hand.setTimerType(Qt::PreciseTimer);
        hand.setInterval(kStepOfDrag);
        hand.callOnTimeout([&] {
            const int phase = ++step % 400;
            Send(slider, QEvent::MouseMove,
                 slider.minimum() + range * (phase < 200 ? phase : 400 - phase) / 200);
        });
        // The same without Live tells what of the gaps is the desk's own.
        const auto drag = [&](Gaps& gaps) {
            clock.restart();
            gaps.Start();
            hand.start();
            WaitFor([&] { return clock.elapsed() >= kDragSeconds * 1000; }, "end");
            hand.stop();
            gaps.Stop();
        };
        Gaps gaps;
        m_ears.count = m_ears.shownCount = 0;
        drag(gaps);
        std::printf("live %-44s %9.1f a second\n", "pictures while a slider is dragged",
                    static_cast<double>(m_ears.count) / kDragSeconds);
        if (m_hasWindow) {
            std::printf("live %-44s %9.1f a second\n", "of them seen",
                        static_cast<double>(m_ears.shownCount) / kDragSeconds);
        }
        gaps.Print("without an answer of the desk");
        m_frame.Command(CommandId::kLive);
        Gaps without;
        drag(without);
        without.Print("floor: the same drag without Live");
        Send(slider, QEvent::MouseButtonRelease, slider.sliderPosition());
    }

    MainFrame& m_frame;
    Ears m_ears;
    bool m_hasWindow;
};

}  // namespace

int main(int argc, char** argv) {
    ::setenv("MESA_SHADER_CACHE_DISABLE", "true", 1);
    const std::string directory = std::filesystem::path(argv[0]).parent_path();
    const std::string view = std::filesystem::absolute(directory + "/../bin/tavrin-view").lexically_normal();
    const bool hasWindow = std::filesystem::exists(view);
    ::setenv("TAVRN_VIEW", hasWindow ? view.c_str() : "", 1);
    QSurfaceFormat::setDefaultFormat(DeskFormat());
    QApplication application(argc, argv);
    QtQueue queue;
    Report report;
    MemoryProfile profile;
    CTvApp app(report, queue, Environment::FromProcess(), argv[0]);
    {
        MainFrame frame({app, queue, profile}, false);
        if (!frame.OpenDocumentFile(TAVRIN_SOURCE_DIR "/examples/marble.tvn"))
            Fail("cannot open the example");
        app.SetVariable("MRAY_SIZE", "320,240", false);
        frame.show();
        WaitFor([&] { return frame.windowHandle()->isExposed(); }, "window");
        Bench(frame, hasWindow).Run();
    }
    app.CloseDown(std::chrono::milliseconds(500));
    return EXIT_SUCCESS;
}
