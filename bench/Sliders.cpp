// SPDX-License-Identifier: Apache-2.0
// The slider column: a selection of 300 free inputs coming up and scrolled through, a change among 5,000
// boxes of which ten are selected, a step of a slider. Wants a display; each time goes to the end of
// painting. The floor is a repaint of what is seen, with nothing changed.
#include <QApplication>
#include <QScrollBar>

#include "bench/BenchNetwork.h"
#include "ui/sliders/SliderPane.h"
#include "ui/sliders/ValueSlider.h"

namespace {

using namespace tavrin;

constexpr int kBoxes = 5000;
constexpr int kInputs = 300;
constexpr int kInputsOfABox = 3;

void Paint() { QApplication::processEvents(); }

void Print(const char* what, double milliseconds) {
    std::printf("sliders %-32s %9.3f ms\n", what, milliseconds);
}

void Select(CTvDoc& document, int boxes) {
    for (const auto& box : document.m_boxes) box->selected = boxes-- > 0 ? 1 : 0;
    document.edits.SelectionChanged();
}

template <typename Child>
Child& First(QWidget& parent) {
    for (QWidget* widget : parent.findChildren<QWidget*>()) {
        if (auto* child = dynamic_cast<Child*>(widget)) return *child;
    }
    std::exit(EXIT_FAILURE);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    bench::BenchHost host;
    CTvDoc document(host);
    bench::Fill(document, host, kBoxes, kBoxes);  // without a wire
    CSliderDesk sliders(document);
    SliderPane pane(nullptr, sliders, {document, host.GetSite(), [](const std::string&, int) {}});
    pane.resize(pane.ColumnWidth(), 1000);
    pane.show();
    Paint();

    const auto none = [&] {
        Select(document, 0);
        Paint();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    const auto all = [&] {
        Select(document, kInputs / kInputsOfABox);
        Paint();
    };
    Print("300 inputs coming up first", bench::MedianMilliseconds(all, none, 1));
    Print("300 inputs coming up again", bench::MedianMilliseconds(all, none));
    all();
    Print("floor: a repaint", bench::MedianMilliseconds([&] {
              pane.viewport()->update();
              Paint();
          }));
    QScrollBar& bar = *pane.verticalScrollBar();
    std::vector<double> steps;
    while (bar.value() < bar.maximum()) {
        steps.push_back(bench::MedianMilliseconds(
            [&] {
                bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
                Paint();
            },
            [] {}, 1));
    }
    std::sort(steps.begin(), steps.end());
    Print("a line further, windows new", steps[steps.size() / 2]);
    Print("the slowest of them", steps.back());
    bar.setValue(0);
    Paint();
    Print("a line further, windows there", bench::MedianMilliseconds([&] {
              bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
              Paint();
          }));

    Select(document, 10);
    Paint();
    COpBox& last = *document.m_boxes.back();
    Print("a change among 5,000 boxes", bench::MedianMilliseconds([&] {
              const EditScope edit(document, "Move");
              document.edits.BoxTouched(last);
          }));
    int count = 10;
    Print("one box more selected", bench::MedianMilliseconds([&] {
              Select(document, ++count);
              Paint();
          }));

    none();
    for (const auto& input : last.inputs) input->SetCast(input->values.size() - 1);  // a number
    last.selected = 1;
    document.edits.SelectionChanged();
    Paint();
    auto& slider = First<ValueSlider>(pane);
    Print("a step of a slider", bench::MedianMilliseconds([&] {
              slider.triggerAction(slider.value() < 100 ? QAbstractSlider::SliderSingleStepAdd
                                                        : QAbstractSlider::SliderToMinimum);
              Paint();
          }));
    bench::PrintPeakMemory();
    return EXIT_SUCCESS;
}
