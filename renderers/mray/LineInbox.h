// SPDX-License-Identifier: Apache-2.0
// The lines that arrive on a pipe; whether there is a further one can be asked
// without waiting for it.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace tavrin::mray {

class LineInbox {
  public:
    static constexpr std::size_t kLongestLine = 64 * 1024;

    // The descriptor stays the caller's.
    explicit LineInbox(int descriptor) : descriptor_(descriptor) {}

    // The next line, without its end; nothing at the end of the pipe, where a line that
    // was cut is none.  Throws std::runtime_error for a line that is too long.
    std::optional<std::string> wait();

    // Whether a whole line is there already, or comes within that time.
    bool hasLine(std::chrono::milliseconds time = std::chrono::milliseconds(0));

  private:
    // Takes in what there is; false at the end.
    bool read();

    int descriptor_;
    std::string text_;
};

}  // namespace tavrin::mray
