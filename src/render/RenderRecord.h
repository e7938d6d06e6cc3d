// SPDX-License-Identifier: Apache-2.0
// What is known of a render beside its line in the history.
#pragma once

#include <chrono>
#include <string>

namespace tavrin {

// A plain value.
struct RenderRecord {
    enum class State {
        kRunning,
        kDone,
        kFailed,   // the script ended with a status that says so, or broke a limit
        kStopped,  // by the user
    };

    int number = 0;
    std::string name;  // of the shader
    std::chrono::system_clock::time_point started;
    std::chrono::milliseconds duration{0};  // once it is over
    State state = State::kRunning;
    std::string failure;  // of one that failed, in a few words
    std::string picture;  // its file once it is over; empty for none
    std::string differs;  // from the render before, in a few words
    std::string kept;     // the copy of its document that was put beside the user's own; empty for none
};

}  // namespace tavrin
