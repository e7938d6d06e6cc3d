// SPDX-License-Identifier: Apache-2.0
// The search's window among 3,000 operators: opening it, and each key until the list is painted. Wants a
// display. The floor of a key is the search alone.
#include "ui/search/SearchPopup.h"

#include <unistd.h>

#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <filesystem>

#include "bench/BenchNetwork.h"
#include "bench/SearchLibrary.h"
#include "library/OperatorIndex.h"

namespace {

using namespace tavrin;
using namespace tavrin::bench;

void Measure(const std::string& directory) {
    WriteOperators(directory);
    BenchLibrary library;
    library.Scan(directory, directory, false);
    OperatorIndex index(library.Registry(), library.GetSite());
    index.Reload();
    while (index.Step(std::chrono::milliseconds(4)) != OperatorIndex::Pace::kDone) {
    }
    OperatorSearch search(index);
    QMainWindow frame;
    frame.show();
    SearchPopup popup(&frame, {index, search, directory, [](const std::string&, const auto&) {}, [] {}});
    const auto settle = [] {
        for (int i = 0; i < 5; ++i) QApplication::processEvents();
    };
    popup.Open({QPoint(100, 100)});
    settle();
    popup.hide();
    const double opening = MedianMilliseconds(
        [&] {
            popup.Open({QPoint(100, 100)});
            popup.repaint();
        },
        [&] { popup.hide(); });
    std::printf("opening with all operators  %.3f ms\n", opening);
    popup.Open({QPoint(100, 100)});
    settle();
    auto& line = *popup.findChild<QLineEdit*>("text");
    const std::pair<const char*, const char*> keys[] = {{"", "n"},       {"n", "no"},      {"nois", "noise"},
                                                        {"pai", "pain"}, {"lay", "lay a"}, {"zzz", "zzzz"}};
    for (const auto& [before, typed] : keys) {
        line.setText(before);
        const double key = MedianMilliseconds(
            [&] {
                line.setText(typed);
                popup.repaint();
            },
            [&] {
                line.setText(before);
                settle();
            });
        OperatorSearch alone(index);
        alone.Refresh();
        const double floor = MedianMilliseconds([&] { alone.Find(typed); }, [&] { alone.Find(before); });
        std::printf("\"%s\" typed after \"%s\", painted  %.3f ms  floor %.3f ms (found alone)\n", typed,
                    before, key, floor);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    std::string directory = (std::filesystem::temp_directory_path() / "tavrin-search.XXXXXX").string();
    if (::mkdtemp(directory.data()) == nullptr) return 1;
    Measure(directory);
    std::filesystem::remove_all(directory);
    PrintPeakMemory();
    return 0;
}
