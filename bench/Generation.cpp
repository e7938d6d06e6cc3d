// SPDX-License-Identifier: Apache-2.0
// Time and memory of turning networks into text: order, prepare, generate and the final lines in memory,
// definitions apart. The floor is what cannot be saved: each box's lines once through a bare word scan with
// a hash look-up.
#include <unordered_map>

#include "bench/BareExpander.h"
#include "bench/BenchNetwork.h"
#include "codegen/BoxMerge.h"
#include "render/RenderSession.h"

namespace {

using namespace tavrin;
using namespace tavrin::bench;

void Measure(BenchHost& host, const char* kind, int count, int width) {
    CTvDoc document(host);
    Fill(document, host, count, width);
    RenderSession session(document, host.GetSite(), host.CodeGen());
    size_t bytes = 0;
    std::vector<std::string> lines;
    const double time = MedianMilliseconds([&] { lines = session.Generate().code; });
    for (const std::string& line : lines) bytes += line.size() + 1;

    const BareExpander expander(50);
    std::string result;
    const double floor = MedianMilliseconds([&] {
        for (const std::string& line : lines) {
            result.clear();
            expander.Expand(line, result);
        }
    });
    std::printf("generate %-5s %6d boxes  %8.3f ms  floor %7.3f ms  beyond it %5.2f us/box  %8zu bytes\n",
                kind, count, time, floor, (time - floor) * 1000 / count, bytes);
}

// Boxes that only pass on what the one before has, between one that makes it and one that uses it. The floor
// is a row of boxes of which each makes a variable of its own. For short rows also the way without memory, in
// which each box asks for the whole of the row before it.
void MeasureRelays(BenchHost& host, int count) {
    constexpr const char* kRelay = "input in { float { 0 0 1 0 %g } } output tieback=in out { float out }\n";
    constexpr const char* kMaker = "input in { float { 0 0 1 0 %g } } output out { float out }\n";
    const auto generate = [&](const char* between, bool remembers) {
        CTvDoc document(host);
        for (int i = 0; i < count; ++i) {
            CArchive archive = CArchive::FromText("definition", i == 0 ? kMaker : between);
            auto box = std::make_unique<COpBox>();
            if (!box->ReadDefinition(archive, {}, host.GetSite().report)) std::exit(1);
            box->filename = "Relay";
            box->wid = i + 1;
            if (i > 0) box->inputs[0]->Connect(*document.m_boxes.back()->outputs[0]);
            document.m_boxes.push_back(std::move(box));
        }
        RenderSession session(document, host.GetSite(), host.CodeGen());
        if (remembers) return MedianMilliseconds([&] { session.Generate(); });
        return MedianMilliseconds([&] {
            CCodeGen shader = host.CodeGen();
            BoxMerge merge(shader);
            const NameSource names{document.preparedVariables, &host.GetSite().report};
            for (const COpBox* box : document.OrderBoxes())
                box->GenerateCode(merge, host.GetSite().types, names);
        });
    };
    std::printf("generate relay %6d boxes  %8.3f ms  floor %7.3f ms", count, generate(kRelay, true),
                generate(kMaker, true));
    constexpr int kMostWithout = 2000;
    if (count <= kMostWithout) std::printf("  without memory %8.3f ms", generate(kRelay, false));
    std::printf("\n");
}

}  // namespace

int main() {
    BenchHost host;
    for (const int count : {10, 100, 1000, 10000}) {
        Measure(host, "chain", count, 1);
        Measure(host, "wide", count, 10);
    }
    for (const int count : {2000, 5000, 20000}) MeasureRelays(host, count);
    PrintPeakMemory();
    return 0;
}
