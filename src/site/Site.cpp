// SPDX-License-Identifier: Apache-2.0
#include "site/Site.h"

#include "base/Files.h"
#include "base/Paths.h"

namespace tavrin {

namespace {

// Enough for a large picture on a slow machine, and too little to bring one to a halt.
constexpr int kMostRenderSeconds = 1800;
constexpr int kMostCompileSeconds = 60;
constexpr int kMostMegabytes = 4096;

}  // namespace

std::string Site::LibraryPath(const std::string& path) const { return ResolvePath(path, directories.libDir); }

std::string Site::WorkPath(const std::string& name) const { return JoinPath(directories.workDir, name); }

bool Site::WriteWorkFile(const std::string& name, std::string_view text, std::string& error) const {
    return WriteOwnFile(directories.workDir, name, text, error);
}

void Site::LogFile(const std::string& path) { report.LogRaw(LogText(path)); }

std::string Site::LogText(const std::string& path) const {
    std::string text;
    for (const char c : OutputBound::OfFile(path, commands.OutputLimit())) {
        if (c == '\n') text += '\r';
        text += c;
    }
    if (!text.empty() && text.back() != '\n') text += "\r\n";
    return text;
}

void Site::ReadLimits() {
    const auto number = [this](const char* key, int otherwise) {
        int value = otherwise;
        settings.GetSettingInt(key, value);
        return static_cast<unsigned>(value < 0 ? otherwise : value);
    };
    const auto setBy = [](const char* key) { return key + std::string(" in the site definitions"); };
    constexpr int kMegabyte = 20;  // as a shift
    const uint64_t memory = uint64_t{number("limit.memory", kMostMegabytes)} << kMegabyte;
    const auto limits = [&](const char* key, int seconds) {
        return ChildLimits{std::chrono::seconds(number(key, seconds)), memory, setBy(key),
                           setBy("limit.memory")};
    };
    renderLimits = limits("limit.rendertime", kMostRenderSeconds);
    compileLimits = limits("limit.compiletime", kMostCompileSeconds);
    const uint64_t output = number("limit.output", Commands::kMostOutput >> kMegabyte);
    commands.SetOutputLimit(output == 0 ? Commands::kAnyOutput : output << kMegabyte);
}

// A document can bring another library into use, of which these settings say nothing.
std::vector<std::string> Site::ProbePaths() const {
    std::vector<std::string> paths;
    if (settingsLibrary != directories.libName) return paths;
    for (const std::string& file : probes) paths.push_back(LibraryPath(file));
    return paths;
}

bool Site::PreprocessIsPure() const {
    int isPure = 0;
    return settings.GetSettingInt("preprocess.pure", isPure) && isPure != 0 &&
           settingsLibrary == directories.libName;
}

}  // namespace tavrin
