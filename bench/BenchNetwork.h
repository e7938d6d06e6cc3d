// SPDX-License-Identifier: Apache-2.0
// Networks of any size without a library, and the way in which benchmarks take times.
#pragma once

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/MainThreadQueue.h"
#include "codegen/CodeGen.h"
#include "document/TvDoc.h"
#include "library/OpRegistry.h"
#include "site/Site.h"
#include "text/Archive.h"
#include "text/Tokens.h"

namespace tavrin::bench {

inline constexpr int kRuns = 9;

// The median time of some runs of `work`, in milliseconds; `cleanUp` runs after each and is not counted.
template <typename Work, typename CleanUp>
double MedianMilliseconds(Work work, CleanUp cleanUp, int runs = kRuns) {
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
        times.push_back(time.count());
        cleanUp();
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}
template <typename Work>
double MedianMilliseconds(Work work) {
    return MedianMilliseconds(work, [] {});
}

inline void PrintPeakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    std::printf("peak memory %.1f MB\n", static_cast<double>(usage.ru_maxrss) / 1024);
}

inline constexpr const char* kSiteTemplate = R"text(global-open append
#version 330 core
<<EOT>>
main-open append
void _SHADERNAME_()
<<EOT>>
main-header append
{
<<EOT>>
main-close append
}
<<EOT>>
)text";

// An operator as a library has it: three inputs, an output, a shared line and a few statements.
inline constexpr const char* kDefinition = R"text(size 64 48
color 0.5 0.5 0.8
icontext mix
boxhelp {
Mixes two colours by an amount.
}
input first { help {
The first colour.
}
rgb { 0.5 0.5 0.5 "vec3(%g, %g, %g)" } float { 0.5 0 1 0 "%g" } }
input second { help {
The second colour.
}
rgb { 1 1 1 "vec3(%g, %g, %g)" } float { 1 0 1 0 "%g" } }
input amount { help {
How much of the second.
}
float { 0.5 0 1 0 "%g" } }
output result { help {
The mixture.
}
rgb out float out }
defs { castlock.add first result }
codegen.global-header unique
//@use mixing
<<EOT>>
codegen.main-body append
// mixes by ${TAVRN_Cast_amount}
result = mrMix(mrColor(first), mrColor(second), amount);
<<EOT>>
)text";

class BenchHost : public DocumentHost {
  public:
    BenchHost() : m_site(m_report, Environment(), m_queue), m_registry(m_report) {
        m_site.types.SetDataType("rgb", {"vec3 ", ";"});
        m_site.types.SetWord("rgb", "vec3");
        CArchive archive = CArchive::FromText("template", kSiteTemplate);
        std::string keyword;
        std::string error;
        while (ReadToken(archive, keyword)) m_codeGen.ParseClause(archive, keyword, {}, error);
        m_codeGen.m_lineComment = "//";
    }
    Site& GetSite() override { return m_site; }
    const COpRegistry& Registry() const override { return m_registry; }
    const std::map<std::string, std::string>& AppVariables() const override { return m_variables; }
    const CExportOptions& ExportDefaults() const override { return m_exports; }
    bool IsUnsavedOption(const std::string&) const override { return false; }
    bool UseLibrary(const std::string&) override { return true; }
    std::string DocumentVersion() const override { return "bench"; }
    const CCodeGen& CodeGen() const { return m_codeGen; }

  protected:
    // Reads the definition as the preprocessor would have left it, without the preprocessor's process.
    bool LoadDefinition(COpBox& box, const std::string& operatorName, DefinitionTexts*) override {
        CArchive archive = CArchive::FromText("definition", kDefinition);
        box.filename = operatorName;
        return box.ReadDefinition(archive, {}, m_report);
    }

  private:
    Report m_report;
    PlainQueue m_queue;
    Site m_site;
    COpRegistry m_registry;
    CCodeGen m_codeGen;
    std::map<std::string, std::string> m_variables;
    CExportOptions m_exports;
};

// Boxes of which each takes its inputs from earlier ones: the one before in a chain, two of the layer
// before in a wide network.
inline void Fill(CTvDoc& document, BenchHost& host, int count, int width) {
    std::vector<COpBox*> boxes;
    for (int i = 0; i < count; ++i) {
        auto box = std::make_unique<COpBox>();
        if (!host.DefineBox(*box, "Mix")) std::exit(1);
        box->wid = i + 1;
        boxes.push_back(box.get());
        document.m_boxes.push_back(std::move(box));
        if (i < width) continue;
        const int layer = i - i % width - width;
        boxes.back()->inputs[0]->Connect(*boxes[static_cast<size_t>(layer + i % width)]->outputs[0]);
        boxes.back()->inputs[1]->Connect(
            *boxes[static_cast<size_t>(layer + (i * 7 + 3) % width)]->outputs[0]);
    }
}

}  // namespace tavrin::bench
