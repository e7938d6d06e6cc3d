// SPDX-License-Identifier: Apache-2.0
// Time of what the desk does on each move of the mouse, in a network of any size, painting apart: the figures
// of one move. The floor is a bare pass over the boxes' rectangles in one piece of memory, which whoever
// looks for the box under the pointer or for the reach of the scroll bars cannot save.
#include <algorithm>

#include "bench/BenchNetwork.h"
#include "desk/DeskGestures.h"
#include "desk/HitTest.h"

namespace {

using namespace tavrin;
using namespace tavrin::bench;

constexpr int kBoxes = 5000;
constexpr int kWidth = 1000;  // boxes in a layer: with it 8,000 wires
constexpr int kNarrow = 10;   // the same where nearly all boxes lie downstream of the first
constexpr int kSelected = 100;
constexpr int kMoves = 100;     // in one run
constexpr float kColumn = 200;  // desk units from box to box
constexpr float kRow = 100;
constexpr int kColumns = 50;

// As wide as texts of one size for all letters.
class PlainMeasure : public TextMeasure {
  public:
    float LabelWidth(const std::string& text) const override { return static_cast<float>(text.size()) * 4; }
    float TitleWidth(const std::string& text) const override { return static_cast<float>(text.size()) * 7; }
};

// A window of the desk without the window: its scroll bars are asked for as the pane asks.
class Window : public DeskView {
  public:
    explicit Window(DeskViewport& view) : m_view(view) {}
    void UpdateScrollBars() override {
        const ScrollRanges ranges = m_view.Ranges();
        reach += ranges.across.maximum + ranges.down.maximum;
    }
    long reach = 0;

  private:
    DeskViewport& m_view;
};

struct Bench {
    explicit Bench(int width) {
        view.SetSize(1600, 1000);
        desk.SetView(&window);
        Fill(document, host, kBoxes, width);
        int place = 0;
        for (const auto& box : document.m_boxes) {
            box->xypos[0] = static_cast<float>(place % kColumns) * kColumn;
            box->xypos[1] = static_cast<float>(place / kColumns) * kRow;
            ++place;
        }
        LayOut();
    }
    void LayOut() {
        for (const auto& box : document.m_boxes) LayoutBox(*box, 1, measure, {});
    }
    COpBox& BoxAt(int place) { return **std::next(document.m_boxes.begin(), place); }
    PointerState At(DeskPoint point, bool left = false) {
        PointerState pointer;
        pointer.at = view.ToWindow(point);
        pointer.left = left;
        return pointer;
    }
    // The pointer to and fro between a point and one beside it; the time of a move.
    double MovesAt(DeskPoint point, bool left = false) {
        const PointerState there = At(point, left);
        const PointerState beside = At({point.x + 2, point.y + 1}, left);
        return MedianMilliseconds([&] {
                   for (int move = 0; move < kMoves; move += 2) {
                       gestures.Move(beside);
                       gestures.Move(there);
                   }
               }) /
               kMoves;
    }
    double Floor() {
        std::vector<DeskRect> rects;
        for (const auto& box : document.m_boxes) rects.push_back(BoxRect(*box));
        const DeskPoint nowhere{-1000, -1000};
        size_t hits = 0;
        DeskRect all = rects.front();
        const double time = MedianMilliseconds([&] {
            for (const DeskRect& rect : rects) {
                hits += rect.Contains(nowhere) ? 1 : 0;
                all = all.UnitedWith(rect);
            }
        });
        if (hits != 0 || all.width <= 0) std::exit(1);
        return time;
    }

    BenchHost host;
    CTvDoc document{host};
    DeskViewport view{document, {0.1F, 10}};
    Window window{view};
    COpDesk desk{document, host};
    PlainMeasure measure;
    DeskGestures gestures{
        {document, desk, view, window, host.GetSite().report, 3, [](const std::string&) {}}};
};

void Print(const char* what, double time, double floor) {
    std::printf("desk %-36s %6d boxes  %8.4f ms  floor %7.4f ms\n", what, kBoxes, time, floor);
}

void MeasureDrag(Bench& bench, double floor) {
    // Boxes all over the network, among them the one that is held.
    const int step = kBoxes / kSelected;
    for (int place = 0; place < kBoxes; place += step) bench.BoxAt(place).selected = 1;
    const DeskPoint grip = TitleRect(bench.BoxAt(step)).Middle();
    bench.gestures.LeftDown(bench.At(grip, true));
    for (const int trace : {0, 1}) {
        bench.document.linetype = trace;
        Print(trace == 1 ? "drag 100 boxes, traced lines" : "drag 100 boxes, direct lines",
              bench.MovesAt(grip, true), floor);
    }
    // Held beyond the edge: what the timer does.
    bench.gestures.Move(bench.At({-500, grip.y}, true));
    Print("scroll while dragging, traced lines", MedianMilliseconds([&] {
                                                     for (int tick = 0; tick < kMoves; ++tick)
                                                         bench.gestures.Tick();
                                                 }) / kMoves,
          floor);
    bench.gestures.LeftUp(bench.At(grip));
    bench.document.linetype = 0;
    bench.document.offset[0] = 0;
    bench.LayOut();
}

void MeasureHover(Bench& bench, const char* empty, const char* candidate, double floor) {
    bench.desk.m_selectedButton = nullptr;
    Print(empty, bench.MovesAt({bench.BoxAt(0).layout.left + kColumn * 0.75F, kRow * 0.45F}), floor);
    // The last box's input might be wired to the first one's output, if nothing led from there to here.
    COpBox& first = bench.BoxAt(0);
    COpBox& last = bench.BoxAt(kBoxes - 1);
    bench.document.offset[0] = -last.layout.left;
    bench.document.offset[1] = -last.layout.bottom;
    bench.desk.m_selectedButton = first.inputs[2].get();
    const double time = bench.MovesAt(ButtonRect({&last, true, 0}).Middle());
    if (bench.desk.m_mouseButton != last.outputs[0].get()) std::exit(1);
    Print(candidate, time, floor);
    bench.desk.m_selectedButton = nullptr;
    bench.document.offset[0] = bench.document.offset[1] = 0;
}

void MeasureLines(Bench& bench, double floor) {
    for (const int trace : {0, 1}) {
        bench.document.linetype = trace;
        const double time = MedianMilliseconds([&] {
            if (HitConnection(bench.document, {-1000, -1000}, 3) != nullptr) std::exit(1);
        });
        Print(trace == 1 ? "look for a traced line" : "look for a direct line", time, floor);
    }
    bench.document.linetype = 0;
}

}  // namespace

int main() {
    Bench wide(kWidth);
    const double floor = wide.Floor();
    MeasureDrag(wide, floor);
    MeasureHover(wide, "hover over the empty desk", "hover with a button in hand", floor);
    MeasureLines(wide, floor);
    Print("lay all boxes out", MedianMilliseconds([&] { wide.LayOut(); }), floor);
    Bench narrow(kNarrow);
    MeasureHover(narrow, "hover over the empty desk, narrow", "hover with a button in hand, narrow", floor);
    PrintPeakMemory();
    return 0;
}
