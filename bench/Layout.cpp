// SPDX-License-Identifier: Apache-2.0
// Time to tidy a desk, to find the wire under a box and to keep the flow past half of all boxes. The floor of
// tidying is a sort of the boxes by their heights, once for each column, which whoever orders columns cannot
// save.
#include <random>

#include "bench/BenchNetwork.h"
#include "desk/DeskFlow.h"
#include "desk/OpDesk.h"

namespace {

using namespace tavrin;
using namespace tavrin::bench;

class PlainMeasure : public TextMeasure {
  public:
    float LabelWidth(const std::string& text) const override { return static_cast<float>(text.size()) * 4; }
    float TitleWidth(const std::string& text) const override { return static_cast<float>(text.size()) * 7; }
};

struct Bench {
    Bench(int count, int width) {
        Fill(document, host, count, width);
        const PlainMeasure measure;
        for (const auto& box : document.m_boxes) LayoutBox(*box, 1, measure, {});
        Scatter();
    }
    // Anywhere, the same in every run.
    void Scatter() {
        std::mt19937 random(1);
        for (const auto& box : document.m_boxes) {
            box->layout.left = static_cast<float>(random() % 20000);
            box->layout.bottom = static_cast<float>(random() % 20000);
        }
    }
    double Floor() {
        std::vector<float> heights;
        return MedianMilliseconds([&] {
            heights.clear();
            for (const auto& box : document.m_boxes) heights.push_back(box->layout.bottom);
            std::sort(heights.begin(), heights.end());
        });
    }

    BenchHost host;
    CTvDoc document{host};
    COpDesk desk{document, host};
};

void Print(const char* what, int boxes, int width, double time, double floor) {
    std::printf("layout %-28s %6d boxes, %4d wide %9.3f ms  floor %7.4f ms\n", what, boxes, width, time,
                floor);
}

void Measure(int count, int width) {
    Bench bench(count, width);
    const double floor = bench.Floor();
    const auto tidy = [&] { bench.desk.Tidy(COpDesk::TidyScope::kAll); };
    tidy();
    Print("tidy a tidy desk", count, width, MedianMilliseconds(tidy), floor);
    bench.Scatter();
    Print("tidy a scattered desk", count, width, MedianMilliseconds(tidy, [&] { bench.Scatter(); }), floor);
    tidy();
    const COpBox& box = *bench.document.m_boxes.back();
    Print("find the wire under a box", count, width,
          MedianMilliseconds([&] { FindInsertion(bench.document, box); }), floor);
    std::vector<COpBox*> half;
    for (const auto& own : bench.document.m_boxes) {
        if (own->wid % 2 != 0) half.push_back(own.get());
    }
    Print("wires past half of them", count, width, MedianMilliseconds([&] { WiresPast(half); }), floor);
}

}  // namespace

int main() {
    for (const int count : {1000, 5000}) {
        for (const int width : {10, 100}) Measure(count, width);
    }
    PrintPeakMemory();
    return 0;
}
