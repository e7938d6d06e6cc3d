// SPDX-License-Identifier: Apache-2.0
// tavrin-batch: the system's work without a window.
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "base/Warden.h"
#include "batch/BatchRun.h"

namespace {

// Standard streams that the program was started without: no file of ours may take their numbers. Reading
// from them gives nothing, writing to them fails.
void FillMissingStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", O_RDONLY);
    }
}

}  // namespace

int main(int argc, char** argv) {
    FillMissingStreams();
    std::error_code unknown;
    const std::string program = std::filesystem::read_symlink("/proc/self/exe", unknown).string();
    const tavrin::Warden warden;
    const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
    return tavrin::BatchRun(unknown ? argv[0] : program).Run(words);
}
