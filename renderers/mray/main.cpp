// SPDX-License-Identifier: Apache-2.0
// mray-render: renders an object with a surface shader and writes a PNG.
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "Live.h"
#include "Program.h"
#include "Renderer.h"

namespace {

using namespace tavrin::mray;

enum ExitCode { kDone = 0, kFailed = 1, kUsage = 2, kStopped = 3 };

int fail(Report& report, const std::string& message) {
    report.endProgress();
    std::fputs(message.c_str(), stderr);
    return kFailed;
}

int run(const Options& options) {
    const char* killFile = std::getenv("TAVRN_KILLFILE");
    Report report(options.quiet, killFile != nullptr ? killFile : "");
    try {
        render(options, report);
    } catch (const Stopped&) {
        report.endProgress();
        std::puts("stopped");
        return kStopped;
    } catch (const ShaderError& error) {
        return fail(report, error.what());
    } catch (const std::bad_alloc&) {
        return fail(report, "mray-render: not enough memory; try a smaller --size\n");
    } catch (const std::exception& error) {
        return fail(report, std::string("mray-render: ") + error.what() + "\n");
    }
    if (options.timing) {
        std::fputs(report.timing().c_str(), stdout);
    }
    return kDone;
}

// Whoever asks for pictures takes the renderer along: one that a shader has made hang
// does not see the end of its input.
int runLive() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const char* killFile = std::getenv("TAVRN_KILLFILE");
    try {
        serveLive(STDIN_FILENO, killFile != nullptr ? killFile : "");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "mray-render: %s\n", error.what());
        return kFailed;
    }
    return kDone;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    try {
        options = parseOptions({argv + 1, argv + argc});
    } catch (const UsageError& error) {
        std::fprintf(stderr, "mray-render: %s\n", error.what());
        return kUsage;
    }
    if (options.help) {
        std::fputs(usage().c_str(), stdout);
        return kDone;
    }
    if (options.version) {
        std::puts("mray-render " MRAY_VERSION);
        return kDone;
    }
    return options.live ? runLive() : run(options);
}
