// SPDX-License-Identifier: Apache-2.0
// Starting programs without a shell.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

// Splits a command line into words. Blanks, tabs and line ends separate; a double quote opens or closes a
// run in which they do not, and is itself dropped. There is no escape character.
std::vector<std::string> SplitCommandLine(std::string_view line);

// Words as one line, as a user is shown them: those that are empty or hold blanks in double quotes.
std::string JoinCommandLine(const std::vector<std::string>& words);

// The value of PATH in a "NAME=VALUE" list; empty if there is none.
std::string_view SearchPathOf(const std::vector<std::string>& environment);

// Finds the file to run for the first word of a command: a word with a '/' stands for itself, any other
// is looked for in `searchPath`, a colon-separated list. Empty if there is no such program.
std::string FindProgram(const std::string& word, std::string_view searchPath);

// Whether there is such a program, found as FindProgram does, and we may run it.
bool HasProgram(const std::string& word, std::string_view searchPath);

// What a child is started with. A plain value; the descriptors stay the caller's.
struct SpawnRequest {
    std::vector<std::string> words;        // program and arguments
    std::vector<std::string> environment;  // "NAME=VALUE"; its PATH is the search path
    // Descriptors that the child gets as its standard streams; -1 lets it inherit ours.
    int standardInput = -1;
    int standardOutput = -1;
    int standardError = -1;
    int tag = -1;  // what MakeTag gave, for the child to carry
};

// Starts the program in a process group of its own, so that it does not get our terminal's signals, and
// with the default signal handling. The identifier is the group's as well. On failure the result is -1
// and `error` says why. The cost does not depend on our own size.
pid_t Spawn(const SpawnRequest& request, std::string& error);

// Returns when a child has ended, which leaves it to be reaped: its number stays its own until then.
void AwaitExit(pid_t child);

// Whether that is so.
bool HasExited(pid_t child);

// Returns when one of the children, of which there is one at least, has ended, or the time is over.
void AwaitAnyExit(const std::vector<pid_t>& children, std::chrono::milliseconds time);

// Waits for the end of a child. Its exit code, or 128 plus the number of the signal that ended it; 127 if
// it cannot be waited for.
int WaitForEnd(pid_t child);

}  // namespace tavrin
