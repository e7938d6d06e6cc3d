// SPDX-License-Identifier: Apache-2.0
// A library of 3,000 operators for the benchmarks of the search.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "base/MainThreadQueue.h"
#include "library/OpRegistry.h"
#include "site/Site.h"

namespace tavrin::bench {

inline constexpr int kOperators = 3000;

inline const char* const kWords[] = {"Noise",  "Soft", "Colour", "Worn",    "Paint",  "Marble",
                                     "Wave",   "Cell", "Ramp",   "Blend",   "Mask",   "Grain",
                                     "Stripe", "Wood", "Metal",  "Layer",   "Warp",   "Bump",
                                     "Facing", "Dust", "Rust",   "Scratch", "Velvet", "Glow"};
inline constexpr size_t kWordCount = std::size(kWords);

// About 800 bytes of help each, as the operators of the supplied library have them.
inline std::string DefinitionOf(size_t number) {
    const auto word = [&](size_t i) {
        return std::string(kWords[(number * 7 + i * i * 5 + i) % kWordCount]);
    };
    std::string text = "boxhelp {\n" + word(1) + word(2) + ": a pattern of its own kind.\n\n";
    for (size_t line = 0; line < 5; ++line)
        text +=
            "It lays a " + word(line) + " over the " + word(line + 3) + " and leaves the rest as it was.\n";
    text += "}\n";
    for (size_t i = 0; i < 4; ++i)
        text += "input " + word(i + 11) + std::to_string(i) + " { help {\nHow much of the " + word(i + 5) +
                " comes through, where 1 is all.\n}\nfloat { 0.5 0 1 0 \"%g\" } rgb { 1 1 1 \"%g\" } }\n";
    return text + "output result { help {\nThe value.\n}\nfloat out rgb out }\n";
}

class BenchLibrary {
  public:
    BenchLibrary() : m_site(m_report, Environment::FromProcess(), m_queue), m_registry(m_report) {}

    void Scan(const std::string& library, const std::string& workDir, bool isPure) {
        m_site.directories.libDir = library;
        m_site.directories.workDir = workDir;
        m_site.environment.Set("TAVRN_LIB", library);
        m_site.settings.Store("preprocess.pure", isPure ? "1" : "0");
        m_registry.Clear();
        m_registry.AddDirectory(library + "/menu");
    }
    Site& GetSite() { return m_site; }
    const COpRegistry& Registry() const { return m_registry; }

  private:
    Report m_report;
    PlainQueue m_queue;
    Site m_site;
    COpRegistry m_registry;
};

// Below "menu" of the directory, in 30 submenus.
inline void WriteOperators(const std::string& directory) {
    for (size_t i = 0; i < kOperators; ++i) {
        const std::string menu =
            directory + "/menu/0" + std::to_string(100 + i % 30) + "." + kWords[i % kWordCount];
        std::filesystem::create_directories(menu);
        std::ofstream(menu + "/" + std::to_string(1000 + i) + "." + kWords[i % kWordCount] +
                      kWords[i * 5 / kWordCount % kWordCount] + std::to_string(i))
            << DefinitionOf(i);
    }
}

}  // namespace tavrin::bench
