// SPDX-License-Identifier: Apache-2.0
// The search among 3,000 operators: reading their files, the first key, a key more, a word more, and the keys
// with a wire. The floor of a key: one pass over all texts in lower case for the first byte of the word. With
// a library and a work directory, both given from the root on, also how long it takes until all its operators
// have been through the preprocessor. Usage: bench_Search [LIBRARY WORKDIR].
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <thread>

#include "bench/BenchNetwork.h"
#include "bench/SearchLibrary.h"
#include "library/OperatorIndex.h"
#include "library/OperatorSearch.h"

namespace {

using namespace tavrin;
using namespace tavrin::bench;
using Pace = OperatorIndex::Pace;
constexpr std::chrono::milliseconds kSlice{4};

// The time of all steps together, and the processor time of the longest, which says more on a machine that
// does other things beside.
struct Filling {
    double total = 0;
    double longest = 0;
};
Filling Fill(OperatorIndex& index) {
    Filling filling;
    const auto processorTime = [] {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        constexpr double kThousand = 1000;
        return static_cast<double>(time.tv_sec) * kThousand + static_cast<double>(time.tv_nsec) / 1e6;
    };
    const auto begin = std::chrono::steady_clock::now();
    for (Pace pace = Pace::kBusy; pace != Pace::kDone;) {
        const double step = processorTime();
        pace = index.Step(kSlice);
        filling.longest = std::max(filling.longest, processorTime() - step);
        if (pace == Pace::kWaiting) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    filling.total =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    return filling;
}

void Print(const char* what, const Filling& filling, size_t operators) {
    std::printf("%s of %zu operators  %.0f ms in steps of %lld ms, the longest %.1f ms (cpu)\n", what,
                operators, filling.total, static_cast<long long>(kSlice.count()), filling.longest);
}

void MeasureKeys(const OperatorIndex& index, const char* before, const char* typed, const OpenEnd* end) {
    OperatorSearch search(index);
    search.Refresh();
    size_t hits = 0;
    const double key =
        MedianMilliseconds([&] { hits = search.Find(typed, end).size(); }, [&] { search.Find(before, end); });
    std::string texts;
    for (const KnownOperator& known : index.Operators()) {
        texts += known.name + known.menu + known.help;
        for (const KnownButton& button : known.buttons) texts += button.name + button.help;
    }
    size_t found = 0;
    const double floor = MedianMilliseconds(
        [&] { found += static_cast<size_t>(std::count(texts.begin(), texts.end(), typed[0])); });
    std::printf("\"%s\" typed after \"%s\"%s  %.3f ms  %zu hits  floor %.3f ms (%zu bytes, %zu found)\n",
                typed, before, end == nullptr ? "" : " with a wire", key, hits, floor, texts.size(), found);
}

void MeasureOwn(const std::string& directory) {
    WriteOperators(directory);
    BenchLibrary library;
    library.Scan(directory, directory, false);
    OperatorIndex index(library.Registry(), library.GetSite());
    const double listing = MedianMilliseconds([&] { index.Reload(); });
    std::printf("listing %d operators  %.3f ms\n", kOperators, listing);
    Print("reading the files", Fill(index), index.Operators().size());
    std::unique_ptr<OperatorSearch> search;
    const double taking = MedianMilliseconds(
        [&] {
            search = std::make_unique<OperatorSearch>(index);
            search->Refresh();
        },
        [&] { search.reset(); });
    std::printf("taking over all of it  %.3f ms\n", taking);
    OpenEnd end;
    end.isOutput = true;
    end.types = {"rgb"};
    const std::pair<const char*, const char*> keys[] = {{"", ""},
                                                        {"x", "n"},
                                                        {"n", "no"},
                                                        {"no", "noi"},
                                                        {"nois", "noise"},
                                                        {"noise", "noise w"},
                                                        {"noise war", "noise warp"},
                                                        {"x", "pain"},
                                                        {"x", "patern"},
                                                        {"x", "scracth"},
                                                        {"x", "zzzz"}};
    for (const auto& [before, typed] : keys) MeasureKeys(index, before, typed, nullptr);
    MeasureKeys(index, "", "n", &end);
    MeasureKeys(index, "nois", "noise", &end);
    OperatorSearch hostile(index);
    const std::string megabyte(1 << 20, 'n');
    std::printf("a text of a megabyte  %.3f ms\n", MedianMilliseconds([&] { hostile.Find(megabyte); }));
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int kWithLibrary = 3;
    if (argc != 1 && argc != kWithLibrary) return 2;
    std::string directory = (std::filesystem::temp_directory_path() / "tavrin-search.XXXXXX").string();
    if (::mkdtemp(directory.data()) == nullptr) return 1;
    MeasureOwn(directory);
    std::filesystem::remove_all(directory);
    if (argc == kWithLibrary) {
        BenchLibrary library;
        library.Scan(argv[1], argv[2], true);
        OperatorIndex index(library.Registry(), library.GetSite());
        index.Reload();
        Print("the preprocessor's runs", Fill(index), index.Operators().size());
        index.Reload();
        Print("looking at all files again", Fill(index), index.Operators().size());
    }
    PrintPeakMemory();
    return 0;
}
