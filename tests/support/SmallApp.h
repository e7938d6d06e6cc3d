// SPDX-License-Identifier: Apache-2.0
// An application with a library of its own in a directory that goes with it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "app/TvApp.h"
#include "base/MainThreadQueue.h"
#include "support/TestSite.h"

namespace tavrin::test {

// The library "small" has the one operator Grain, which its preprocessor copies as it stands. A test writes
// into `directory` what else it needs, and then starts the application.
class SmallAppTest : public testing::Test {
  protected:
    SmallAppTest() {
        report.SetSink(&sink);
        directory.Write("site/small/bin/redirect.pl",
                        "open my $in, '<', $ARGV[4]; open my $out, '>', $ARGV[1]; print {$out} <$in>;");
        directory.Write("site/small/bin/spp", "");
        directory.Write("site/small/menu/0100.Grain",
                        "input in { float { 1 0 1 0 \"%g\" } }\noutput out { float out }\n");
    }
    ~SmallAppTest() override {
        if (app != nullptr) app->CloseDown(std::chrono::milliseconds(0));
    }

    // Without what its site files say, until they are loaded.
    void MakeApp() {
        Environment environment = Environment::FromProcess();
        environment.Set("TAVRN_DIR", directory / "site");
        environment.Set("TAVRN_LIB", "/small");
        environment.Set("TAVRN_TMPDIR", directory.Path());
        environment.Set("HOME", directory.Path());
        environment.Set("XDG_STATE_HOME", directory / "state");
        app = std::make_unique<CTvApp>(report, queue, environment, "/nowhere/bin/tavrin");
    }

    TempDir directory;
    CollectingSink sink;
    Report report;
    PlainQueue queue;
    std::unique_ptr<CTvApp> app;
};

}  // namespace tavrin::test
