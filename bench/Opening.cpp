// SPDX-License-Identifier: Apache-2.0
// Opening documents with the operators of a library through its real preprocessor, all of them in turn: one
// run for each operator, several at a time, and beside it the old way, a run for each box. The floors:
// reading the tokens of the text, and the bare runs of the preprocessor, one for each operator, shared out to
// the cores. Usage: bench_Opening LIBRARY WORKDIR [COUNT...], both directories given from the root on.
#include <thread>

#include "base/Process.h"
#include "bench/BenchNetwork.h"
#include "document/DocumentReader.h"
#include "library/DefinitionTexts.h"
#include "library/SavedNetwork.h"
#include "site/CommandQueue.h"

namespace {

using namespace tavrin;
using namespace tavrin::bench;

class LibraryHost : public BenchHost {
  public:
    LibraryHost(const std::string& library, const std::string& workDir) : m_library(m_silent) {
        Site& site = GetSite();
        site.environment = Environment::FromProcess();
        site.environment.Set("TAVRN_LIB", library);
        site.directories.libDir = library;
        site.directories.workDir = workDir;
        m_library.AddDirectory(library + "/menu");
        for (const auto& entry : m_library.Entries()) {
            if (!IsSavedNetwork(entry->path)) m_operators.push_back(entry.get());
        }
    }
    const COpRegistry& Registry() const override { return m_library; }
    const std::vector<const COpEntry*>& Operators() const { return m_operators; }
    void SetPure(bool isPure) { GetSite().settings.Store("preprocess.pure", isPure ? "1" : "0"); }

  protected:
    bool LoadDefinition(COpBox& box, const std::string& operatorName, DefinitionTexts* texts) override {
        return DocumentHost::LoadDefinition(box, operatorName, texts);
    }

  private:
    Report m_silent;
    COpRegistry m_library;
    std::vector<const COpEntry*> m_operators;
};

// Each box is a copy of the first of its operator, and takes its inputs from the boxes before it.
std::string DocumentOf(LibraryHost& host, int count) {
    host.SetPure(true);
    DefinitionTexts texts(host.Registry(), host.GetSite());
    CTvDoc document(host);
    COpBox* before = nullptr;
    for (int i = 0; i < count; ++i) {
        auto box = std::make_unique<COpBox>();
        const auto place = static_cast<size_t>(i) % host.Operators().size();
        if (!host.DefineBox(*box, host.Operators()[place]->name, &texts)) std::exit(1);
        box->wid = i + 1;
        if (before != nullptr && !before->outputs.empty() && !box->inputs.empty())
            box->inputs[0]->Connect(*before->outputs[0]);
        before = document.m_boxes.emplace_back(std::move(box)).get();
    }
    return document.Store();
}

// Processor time of this process and of those that it has waited for. On a machine that does other things
// beside, it says more than the clock.
struct CpuTime {
    double own = 0;
    double children = 0;

    static CpuTime Now() {
        const auto milliseconds = [](int who) {
            rusage usage{};
            ::getrusage(who, &usage);
            constexpr double kThousand = 1000;
            return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * kThousand +
                   static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / kThousand;
        };
        return {milliseconds(RUSAGE_SELF), milliseconds(RUSAGE_CHILDREN)};
    }
};

double Open(LibraryHost& host, const std::string& text, bool isPure, CpuTime& cpu, int runs = kRuns) {
    host.SetPure(isPure);
    CpuTime begin;
    std::unique_ptr<CTvDoc> document;
    return MedianMilliseconds(
        [&] {
            begin = CpuTime::Now();
            document = std::make_unique<CTvDoc>(host);
            if (!document->Load(ReadDocument(CArchive::FromText("document", text)))) std::exit(1);
            const CpuTime end = CpuTime::Now();
            cpu = {end.own - begin.own, end.children - begin.children};
        },
        [&] { document.reset(); }, runs);
}

// One run of the preprocessor for each operator.
double BareRuns(LibraryHost& host) {
    const Site& site = host.GetSite();
    const size_t threads = CommandQueue::CoreCount();
    const auto work = [&](size_t first) {
        for (size_t i = first; i < host.Operators().size(); i += threads) {
            const std::string file = site.WorkPath("bare." + std::to_string(first));
            SpawnRequest request;
            request.words = DefinitionTexts::Call(site, *host.Operators()[i], file, file + ".errors").words;
            request.environment = site.environment.ToList();
            std::string error;
            WaitForEnd(Spawn(request, error));
        }
    };
    return MedianMilliseconds([&] {
        std::vector<std::thread> workers;
        for (size_t i = 0; i < threads; ++i) workers.emplace_back(work, i);
        for (std::thread& worker : workers) worker.join();
    });
}

void Measure(LibraryHost& host, int count) {
    const std::string text = DocumentOf(host, count);
    CpuTime cpu;
    const double shared = Open(host, text, true, cpu);
    const double tokens = MedianMilliseconds([&] {
        CArchive archive = CArchive::FromText("document", text);
        std::string token;
        while (ReadToken(archive, token)) {
        }
    });
    std::printf(
        "open %6d boxes of %zu operators  %8.1f ms (cpu %.1f + %.1f)  floors: runs %.1f ms, tokens %.1f ms",
        count, host.Operators().size(), shared, cpu.own, cpu.children, BareRuns(host), tokens);
    constexpr int kMostOneByOne = 1000;  // several seconds
    if (count <= kMostOneByOne) std::printf("  a run a box %.1f ms", Open(host, text, false, cpu, 1));
    std::printf("  (%zu bytes)\n", text.size());
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int kDirectories = 3;
    if (argc < kDirectories) return 2;
    LibraryHost host(argv[1], argv[2]);
    std::vector<int> counts{1, 1000, 10000};
    if (argc > kDirectories) counts.clear();
    for (int i = kDirectories; i < argc; ++i) counts.push_back(std::atoi(argv[i]));
    for (const int count : counts) Measure(host, count);
    PrintPeakMemory();
    return 0;
}
