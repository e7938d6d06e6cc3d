// tavrin-batch: the system's work without a window.
#include <filesystem>
#include <string>
#include <vector>

#include "batch/BatchRun.h"

int main(int argc, char** argv) {
    std::error_code unknown;
    const std::string program = std::filesystem::read_symlink("/proc/self/exe", unknown).string();
    const std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
    return tavrin::BatchRun(unknown ? argv[0] : program).Run(words);
}
