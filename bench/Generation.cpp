// Time and memory of turning networks into text: order, prepare, generate and the final lines in memory,
// definitions apart. The floor is what cannot be saved: each box's lines once through a bare word scan with
// a hash look-up.
#include <unordered_map>

#include "bench/BareExpander.h"
#include "bench/BenchNetwork.h"
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

}  // namespace

int main() {
    BenchHost host;
    for (const int count : {10, 100, 1000, 10000}) {
        Measure(host, "chain", count, 1);
        Measure(host, "wide", count, 10);
    }
    PrintPeakMemory();
    return 0;
}
