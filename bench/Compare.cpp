// SPDX-License-Identifier: Apache-2.0
// Comparing networks of 5,000 boxes and sources of 20,000 lines, and the window that follows the desk. Wants
// a display. The floor of taking a network is a walk over its values; that of the lines is a comparison of a
// text with itself.
#include <QApplication>
#include <QTabWidget>
#include <QWindow>
#include <filesystem>

#include "base/Files.h"
#include "bench/BenchNetwork.h"
#include "render/RenderSession.h"
#include "ui/render/CompareWindow.h"

namespace {

using namespace tavrin;

constexpr int kBoxes = 5000;
constexpr int kLines = 20'000;

void Print(const char* what, double milliseconds) {
    std::printf("compare %-36s %9.3f ms\n", what, milliseconds);
}

void Tune(CTvDoc& document, float number) {
    COpButton& button = *document.m_boxes.front()->inputs[2];
    const EditScope edit(document, "Tune");
    document.edits.ButtonTuned(button);
    dynamic_cast<COpValueFloat&>(*button.values[0]).value = number;
}

void BenchNetworks(CTvDoc& document) {
    double sum = 0;
    Print("floor: a walk over the values", bench::MedianMilliseconds([&] {
              for (const auto& box : document.m_boxes) {
                  for (const auto& input : box->inputs) {
                      for (const auto& value : input->values)
                          sum += static_cast<double>(StateOf(*value).numbers[0]);
                  }
              }
          }));
    NetworkPicture picture;
    Print("5000 boxes taken", bench::MedianMilliseconds([&] { picture = CaptureNetwork(document); }));
    size_t found = sum < 0 ? 1 : 0;
    const auto compare = [&](const NetworkPicture& other) {
        return bench::MedianMilliseconds([&] { found += CompareNetworks(picture, other).size(); });
    };
    Print("5000 boxes, nothing differs", compare(picture));
    NetworkPicture tuned = picture;
    for (ValueState& value : tuned.values) value.numbers[0] += 1;
    Print("5000 boxes, every value differs", compare(tuned));
    NetworkPicture renumbered = picture;
    for (NetworkPicture::Box& box : renumbered.boxes) box.wid += kBoxes;
    Print("5000 boxes, all renumbered", compare(renumbered));
    std::printf("compare %zu differences in all\n", found);
}

void BenchLines() {
    std::string left;
    std::string right;
    for (int i = 0; i < kLines; ++i) {
        const std::string line =
            "float v" + std::to_string(i % 700) + " = mix(" + std::to_string(i * 7) + ");\n";
        left += line;
        right += i % 10 == 3 ? "// changed " + std::to_string(i % 50) + "\n" : line;
    }
    const auto compare = [&left](const std::string& other) {
        return bench::MedianMilliseconds([&] { CompareLines(left, other); });
    };
    Print("floor: 20000 lines, the same", compare(left));
    Print("20000 lines, 2000 of them others", compare(right));
    std::string words;
    std::string others;
    for (int i = 0; i < kLines; ++i) {
        words += std::to_string(i * 7919 % 41) + "\n";
        others += std::to_string(i * 6577 % 37) + "\n";
    }
    Print("20000 lines of 40 words, coarse", bench::MedianMilliseconds([&] { CompareLines(words, others); }));
}

void BenchWindow(bench::BenchHost& host, CTvDoc& document) {
    const std::string work = std::filesystem::temp_directory_path() / "tavrin-bench-compare";
    std::filesystem::create_directories(work + "/1");
    host.GetSite().directories.workDir = work;
    std::string error;
    if (!WriteWholeFile(work + "/1/marble.tvn", document.Snapshot(), error)) std::exit(1);
    RenderSession session(document, host.GetSite(), host.CodeGen());
    RenderRecord record;
    record.number = 1;
    record.name = "marble";
    session.records.Begin(record, true, 1);
    CompareWindow window(nullptr, {.comparison = {document, host, session, host.CodeGen()},
                                   .goToBox = [](const std::string&) {},
                                   .setOption = [](const std::string&, const std::string&) {},
                                   .comparePictures = [](int, int) {}});
    const auto listener = document.edits.Observe([&](const Change& change) { window.Follow(change); });
    Print("a render of 5000 boxes is chosen",
          bench::MedianMilliseconds([&] { window.Compare(1, Comparison::kDesk); },
                                    [&] { window.Compare(Comparison::kDesk, Comparison::kDesk); }, 3));
    window.Compare(1, Comparison::kDesk);
    while (!window.windowHandle()->isExposed()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    float number = 0;
    const auto follow = [&] {
        return bench::MedianMilliseconds([&] {
            const int before = window.Refreshes();
            Tune(document, number += 0.001F);
            while (window.Refreshes() == before) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        });
    };
    Print("an edit that is followed, unwaited",
          bench::MedianMilliseconds([&] { Tune(document, number += 0.001F); }));
    Print("followed, with the pause of 200 ms", follow());
    window.findChild<QTabWidget*>()->setCurrentIndex(1);
    Print("the same with the source", follow());
    std::filesystem::remove_all(work);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    bench::BenchHost host;
    CTvDoc document(host);
    bench::Fill(document, host, kBoxes, 50);
    BenchNetworks(document);
    BenchLines();
    BenchWindow(host, document);
    bench::PrintPeakMemory();
    return 0;
}
