// SPDX-License-Identifier: Apache-2.0
// What the user hears while a picture is made: progress, timing; and what the
// user tells: stop.
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace tavrin::mray {

// The user wants the render stopped.
struct Stopped {};

class Report {
  public:
    // killFile: the file that stops the render once it exists; may be empty.
    Report(bool quiet, std::string killFile);

    // Throws Stopped when the kill file is there.
    void checkStop() const;

    void progress(int percent);
    // Ends the line of progress, if there is one.
    void endProgress();

    // The time since the last mark goes to the named step.
    void mark(const char* step);
    [[nodiscard]] std::string timing() const;
    // The same on one line.
    [[nodiscard]] std::string timingLine() const;

  private:
    using Clock = std::chrono::steady_clock;
    bool quiet_;
    bool openLine_ = false;
    int shown_ = -100;  // the percentage last printed
    std::string killFile_;
    Clock::time_point last_ = Clock::now();
    std::vector<std::pair<std::string, double>> steps_;
};

}  // namespace tavrin::mray
