// SPDX-License-Identifier: Apache-2.0
// Macro expansion of a megabyte with fifty names, against a bare word scan with a hash look-up over the same
// text.
#include "bench/BareExpander.h"
#include "bench/BenchNetwork.h"
#include "codegen/Mex.h"

int main() {
    using namespace tavrin;
    using namespace tavrin::bench;
    constexpr int kNames = 50;
    constexpr size_t kBytes = 1 << 20;
    std::string text;
    for (int i = 0; text.size() < kBytes; ++i) {
        text += "    name" + std::to_string(i % kNames) + " = mix(name" + std::to_string(i * 7 % kNames) +
                ", ${name" + std::to_string(i * 3 % kNames) + "}, 0.5); // a line of code\n";
    }
    const BareExpander bare(kNames);
    CMex mex;
    for (const auto& [name, value] : bare.Values()) mex.SetVariable(name, value);
    std::string result;
    const double floor = MedianMilliseconds([&] {
        result.clear();
        bare.Expand(text, result);
    });
    const double time = MedianMilliseconds([&] { mex.Expand(text, result); });
    std::printf("expand %zu bytes, %d names  %.3f ms  floor %.3f ms  speed %.2f of the floor's\n",
                text.size(), kNames, time, floor, floor / time);
    return 0;
}
