// SPDX-License-Identifier: Apache-2.0
// The floor of opening a document: the bare process pair that each box costs, redirect.pl and spp, started as
// the program starts it and with nothing round it. Usage: bench_Pairs COUNT LIBRARY DEFINITION WORKDIR;
// prints the milliseconds of COUNT pairs.
#include "base/Process.h"
#include "bench/BenchNetwork.h"

int main(int argc, char** argv) {
    using namespace tavrin;
    constexpr int kArguments = 5;
    if (argc != kArguments) return 2;
    const int count = std::atoi(argv[1]);
    const std::string library = argv[2];
    const std::string work = argv[4];
    SpawnRequest request;
    request.words = {"perl",        library + "/bin/redirect.pl", "-",    work + "/out",
                     work + "/err", library + "/bin/spp",         argv[3]};
    request.environment = Environment::FromProcess().ToList();
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        std::string error;
        const pid_t child = Spawn(request, error);
        if (child < 0 || WaitForEnd(child) != 0) return 1;
    }
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
    std::printf("%.3f\n", time.count());
    return 0;
}
