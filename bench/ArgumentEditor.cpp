// SPDX-License-Identifier: Apache-2.0
// The Argument Editor over a document of 5,000 boxes with some 15,000 free inputs: coming up, a step of the
// scroll bar, a change of one input, a wire. Wants a display; each time goes to the end of painting. The
// floor is a repaint of what is seen, with nothing changed.
#include "ui/sliders/ArgumentEditor.h"

#include <QApplication>
#include <QCheckBox>
#include <QScrollBar>
#include <QWindow>

#include "bench/BenchNetwork.h"
#include "sliders/ArgumentEdits.h"
#include "ui/sliders/ArgumentRow.h"

namespace {

using namespace tavrin;

constexpr int kBoxes = 5000;

void Print(const char* what, double milliseconds) {
    std::printf("arguments %-36s %9.3f ms\n", what, milliseconds);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    bench::BenchHost host;
    CTvDoc document(host);
    bench::Fill(document, host, kBoxes, kBoxes);
    CArgumentEditor editor(nullptr, document);
    const auto listener = document.edits.Observe([&](const Change& change) { editor.Follow(change); });
    const auto hide = [&] {
        editor.hide();
        QApplication::processEvents();
    };
    editor.resize(900, 1000);
    const auto settle = [] { QApplication::processEvents(); };
    const auto comeUp = [&] {
        editor.show();
        while (!editor.windowHandle()->isExposed())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        editor.repaint();
    };
    const double first = bench::MedianMilliseconds(comeUp, hide, 1);
    const double again = bench::MedianMilliseconds(comeUp, hide);
    comeUp();
    std::printf("arguments %zu rows, %zu of them with windows\n", editor.Rows().Count(),
                editor.RowWindows().size());
    Print("coming up first, with the display", first);
    Print("coming up again, the same", again);
    Print("floor: a repaint", bench::MedianMilliseconds([&] { editor.repaint(); }));

    auto& bar = *editor.findChild<QScrollBar*>();
    const auto scroll = [&](QAbstractSlider::SliderAction action) {
        return bench::MedianMilliseconds(
            [&] {
                bar.triggerAction(action);
                editor.repaint();
            },
            settle);
    };
    Print("a row further", scroll(QAbstractSlider::SliderSingleStepAdd));
    Print("a page further", scroll(QAbstractSlider::SliderPageStepAdd));
    Print("to the end and back", bench::MedianMilliseconds([&] {
              bar.setValue(bar.value() == 0 ? bar.maximum() : 0);
              editor.repaint();
          }));

    COpButton& seen = *editor.RowWindows().begin()->second->Button();
    int count = 0;
    Print("one comment, unpainted",
          bench::MedianMilliseconds([&] { SetComment(document, seen, std::to_string(++count)); }));
    Print("one argument, unpainted",
          bench::MedianMilliseconds([&] { SetArgument(document, seen, ++count % 2 == 0); }));

    COpBox& from = *document.m_boxes.front();
    COpButton& input = *document.m_boxes.back()->inputs[0];
    const auto wire = [&](bool isThere) {
        const EditScope edit(document, "Wire");
        document.edits.WiresChanged();
        if (isThere) {
            input.Connect(*from.outputs[0]);
        } else {
            input.Disconnect();
        }
    };
    Print("one wire, unpainted", bench::MedianMilliseconds([&] { wire(true); }, [&] { wire(false); }));
    Print("floor: the list of inputs", bench::MedianMilliseconds([&] {
              if (document.CollectUnconnectedInputs().empty()) std::exit(1);
          }));
    bench::PrintPeakMemory();
    return 0;
}
