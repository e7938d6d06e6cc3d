// SPDX-License-Identifier: Apache-2.0
// What tests of children stand on: a shell in the place of what runs a library's scripts, and a main thread.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "base/Files.h"
#include "site/Commands.h"
#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin::test {

template <typename Sink>
class CommandsGround : public testing::Test {
  protected:
    CommandsGround() {
        report.SetSink(&sink);
        MakeDirectory(work);
        ::chmod(directory.Write("bin/PerlExec", "#!/bin/sh\nexec sh \"$@\"\n").c_str(), 0755);
        environment.Set("PATH", directory / "bin" + ":/usr/bin:/bin");
        commands->SetWorkDir(work);
    }

    // The file of a script of this shell text.
    std::string Script(const std::string& text) {
        return directory.Write("script." + std::to_string(++m_scripts), text);
    }
    // Lets posted work run until the condition holds; false if that takes far too long.
    bool PumpUntil(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + kPatience;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit) return false;
            queue.RunPending(std::chrono::milliseconds(2));
        }
        return true;
    }
    bool PumpUntilLogged(const std::string& text) {
        return PumpUntil([&] { return sink.log.find(text) != std::string::npos; });
    }
    // Until no child is left and all that it has written is in the log.
    bool PumpToTheEnd() {
        const bool ended = PumpUntil([this] { return !commands->AnyProcessLeft(); });
        while (queue.RunPending()) {
        }
        return ended;
    }

    TempDir directory;
    std::string work = directory / "work";
    Sink sink;
    Report report;
    PlainQueue queue;
    Environment environment;
    std::unique_ptr<Commands> commands = std::make_unique<Commands>(report, environment, queue);

  private:
    int m_scripts = 0;
};

}  // namespace tavrin::test
