// SPDX-License-Identifier: Apache-2.0
#include "Report.h"

#include <unistd.h>

#include <cstdio>

namespace tavrin::mray {

Report::Report(bool quiet, std::string killFile) : quiet_(quiet), killFile_(std::move(killFile)) {}

void Report::checkStop() const {
    if (!killFile_.empty() && access(killFile_.c_str(), F_OK) == 0) {
        throw Stopped{};
    }
}

void Report::progress(int percent) {
    constexpr int kStep = 5;
    if (!quiet_ && (percent >= shown_ + kStep || percent == 100)) {
        shown_ = percent;
        std::printf("\r%4d%%", percent);
        std::fflush(stdout);
        openLine_ = true;
    }
}

void Report::endProgress() {
    if (openLine_) {
        std::printf("\n");
        std::fflush(stdout);
        openLine_ = false;
    }
}

void Report::mark(const char* step) {
    const Clock::time_point now = Clock::now();
    const double ms = std::chrono::duration<double, std::milli>(now - last_).count();
    last_ = now;
    for (auto& [name, sum] : steps_) {
        if (name == step) {
            sum += ms;
            return;
        }
    }
    steps_.emplace_back(step, ms);
}

std::string Report::timing() const {
    std::string text;
    double total = 0;
    char line[80];
    for (const auto& [name, ms] : steps_) {
        std::snprintf(line, sizeof line, "%-12s %7.1f ms\n", name.c_str(), ms);
        text += line;
        total += ms;
    }
    std::snprintf(line, sizeof line, "%-12s %7.1f ms\n", "total", total);
    return text + line;
}

std::string Report::timingLine() const {
    std::string text;
    char word[80];
    for (const auto& [name, ms] : steps_) {
        std::snprintf(word, sizeof word, "%s%s %.1f", text.empty() ? "" : ", ", name.c_str(), ms);
        text += word;
    }
    return text + " ms";
}

}  // namespace tavrin::mray
