// SPDX-License-Identifier: Apache-2.0
// A library in a directory that goes with it, and what is known of its operators.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "library/OpRegistry.h"
#include "library/OperatorIndex.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin::test {

// The time stands still unless a test moves it.
class SmallLibrary {
  public:
    explicit SmallLibrary(size_t runsAtATime = 2, size_t longestText = 64 * 1024) : registry(own.report) {
        own.site.directories.libDir = own.directory / "lib";
        own.site.directories.libName = own.site.settingsLibrary = "lib";
        OperatorIndex::Limits limits;
        limits.run = kLimit;
        limits.text = longestText;
        limits.atATime = runsAtATime;
        index = std::make_unique<OperatorIndex>(registry, own.site, limits, [this] { return now; });
    }

    // `name` with its sort key, and its submenus before it.
    void Add(const std::string& name, std::string_view text) const {
        own.directory.Write("lib/menu/" + name, text);
    }
    void Scan() {
        registry.Clear();
        registry.AddDirectory(own.directory / "lib/menu");
        index->Reload();
    }
    // Until all is read that can be; false if that takes far too long.
    bool Fill() const {
        return SleepUntil([this] { return Step() == OperatorIndex::Pace::kDone; });
    }
    bool Load() {
        Scan();
        return Fill();
    }
    OperatorIndex::Pace Step() const { return index->Step(std::chrono::milliseconds(1)); }
    // Until nothing is left but to wait for processes.
    void StepUntilWaiting() const {
        while (Step() == OperatorIndex::Pace::kBusy) {
        }
    }

    // Each further run of the preprocessor is this Perl script; it is called as bin/redirect.pl is.
    void SetPreprocessor(std::string_view script) {
        own.directory.Write("lib/bin/redirect.pl", script);
        own.site.settings.Store("preprocess.pure", "1");
    }

    const KnownOperator& Known(const std::string& name) const {
        for (const KnownOperator& known : index->Operators()) {
            if (known.name == name) return known;
        }
        static const KnownOperator kNone;
        ADD_FAILURE() << "no operator " << name;
        return kNone;
    }

    static constexpr std::chrono::seconds kLimit{10};  // of a run
    TestSite own;
    COpRegistry registry;
    std::chrono::steady_clock::time_point now;
    std::unique_ptr<OperatorIndex> index;
};

}  // namespace tavrin::test
