// SPDX-License-Identifier: Apache-2.0
// A child that stays and is spoken to in lines. It runs at a lower priority than the program.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "site/ProgramCall.h"

namespace tavrin {

class LineLife;

// How such a child is started. A plain value.
struct LineCall {
    ProgramCall call;                                // of its limits that of memory counts
    std::map<std::string, std::string> environment;  // beside that of all children, or in its place
    bool hasInput = true;         // lines can be sent; else its input is at its end from the start
    bool errorsAreLines = false;  // its standard error comes as lines too; else it goes into the log
};

// How it came to its end. A plain value.
struct LineEnd {
    std::string why;        // behind the child's name: "it ended with status 3"
    bool wasEnded = false;  // by us: it broke a bound, or has not even been started
    int exitCode = 0;       // as WaitForEnd gives it
};

// Who hears it, on the main thread.
struct LineHands {
    // A line of its output, without its end.
    std::function<void(const std::string& line)> line;
    // It is gone with all that it has started, and nothing more comes; once, and not after the LineChild
    // went.
    std::function<void(const LineEnd& end)> ended;
};

// Made by Commands::StartLines, owned by who speaks to the child; main thread only. None of its calls waits
// for the child: a thread reads, writes, and ends it. Who lets this go hears no more, and the child is asked:
// its input ends and its kill file appears; then by a signal; then it is ended with all that it has started.
// The commands see to it that nothing is left at the end of the program.
class LineChild {
  public:
    static constexpr size_t kLongestLine = 64 << 10;  // bytes, of what it writes; a longer one ends it

    explicit LineChild(std::shared_ptr<LineLife> life);
    ~LineChild();
    LineChild(const LineChild&) = delete;
    LineChild& operator=(const LineChild&) = delete;

    // Sends a line, which holds no line feed; what the child does not read waits.
    void Send(std::string_view line);
    // From now on the child has so long, else it is ended for the reason `why`; while this stands it is held
    // to its limit of memory as well. Each call takes the place of the one before.
    void ExpectWithin(std::chrono::milliseconds time, std::string why);
    // It owes nothing, and may wait for ever.
    void ExpectNothing();
    // Ends it at once.
    void EndNow();

  private:
    std::shared_ptr<LineLife> m_life;
};

}  // namespace tavrin
