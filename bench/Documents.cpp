// SPDX-License-Identifier: Apache-2.0
// Reading and writing documents in memory, definitions' preprocessing apart, and looking into them without
// making boxes. The floors: reading the tokens of the text, and copying it.
#include "bench/BenchNetwork.h"
#include "document/DocumentReader.h"
#include "document/DocumentSnapshot.h"

namespace {

using namespace tavrin;
using namespace tavrin::bench;

void Measure(BenchHost& host, int count) {
    CTvDoc document(host);
    Fill(document, host, count, 10);
    std::string text;
    const double write = MedianMilliseconds([&] { text = document.Store(); });
    std::string copy;
    const double copyFloor = MedianMilliseconds([&] { copy = text + "x"; });

    std::vector<std::unique_ptr<COpBox>> boxes;
    const double definitions = MedianMilliseconds(
        [&] {
            for (int i = 0; i < count; ++i)
                host.DefineBox(*boxes.emplace_back(std::make_unique<COpBox>()), "Mix");
        },
        [&] { boxes.clear(); });
    const double tokens = MedianMilliseconds([&] {
        CArchive archive = CArchive::FromText("document", text);
        std::string token;
        while (ReadToken(archive, token)) {
        }
    });
    std::unique_ptr<CTvDoc> loaded;
    const double read = MedianMilliseconds(
        [&] {
            loaded = std::make_unique<CTvDoc>(host);
            if (!loaded->Load(ReadDocument(CArchive::FromText("document", text)))) std::exit(1);
        },
        [&] { loaded.reset(); });
    std::printf(
        "read  %6d boxes  %8.3f ms beyond the definitions' %.3f ms  floor (tokens) %7.3f ms  (%zu bytes)\n",
        count, read - definitions, definitions, tokens, text.size());
    const double look = MedianMilliseconds([&] { ReadDocument(CArchive::FromText("document", text)); });
    std::printf("look  %6d boxes  %8.3f ms  floor (tokens) %7.3f ms\n", count, look, tokens);
    std::printf("write %6d boxes  %8.3f ms  floor (copy) %7.3f ms\n", count, write, copyFloor);
}

// What a copy of unsaved work costs the thread of the windows: slices of two milliseconds until all texts are
// made, and handing them over. Of the floor, the whole text at once, none is late.
void MeasureAside(BenchHost& host, int count) {
    constexpr std::chrono::microseconds kSlice{2000};
    CTvDoc document(host);
    Fill(document, host, count, 10);
    const double whole = MedianMilliseconds([&] { document.Snapshot(); });
    std::unique_ptr<DocumentSnapshot> snapshot;
    DocumentSnapshot::Pieces pieces;
    double longest = 0;
    int slices = 0;
    const auto makeTexts = [&] {
        snapshot = std::make_unique<DocumentSnapshot>(document, host);
        slices = 0;
        for (bool isDone = false; !isDone; ++slices) {
            const double time = MedianMilliseconds([&] { isDone = snapshot->Advance(kSlice); }, [] {}, 1);
            longest = std::max(longest, time);
        }
    };
    makeTexts();
    const double hand = MedianMilliseconds([&] { pieces = snapshot->Take(); }, makeTexts);
    const auto move = [&] {
        const EditScope edit(document, "Move");
        document.edits.BoxTouched(*document.m_boxes.front());
    };
    move();
    const double again = MedianMilliseconds([&] { pieces = snapshot->Take(); }, move);
    std::printf(
        "aside %6d boxes  %d slices, the longest %.3f ms, then %.3f ms; after a move %.3f ms  floor (whole) "
        "%.3f ms\n",
        count, slices, longest, hand, again, whole);
}

}  // namespace

int main() {
    BenchHost host;
    for (const int count : {1000, 10000}) Measure(host, count);
    for (const int count : {1000, 5000}) MeasureAside(host, count);
    PrintPeakMemory();
    return 0;
}
