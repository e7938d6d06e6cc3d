// SPDX-License-Identifier: Apache-2.0
// What is to be started, in words that nobody splits any more, and what it may use.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace tavrin {

// What a program may use with all that it starts. A plain value; 0 is no limit.
struct ChildLimits {
    std::chrono::seconds time{0};
    uint64_t memory = 0;    // bytes
    std::string timeSetBy;  // as a user finds it: "limit.rendertime in the site definitions"
    std::string memorySetBy;

    bool AreAny() const { return time.count() > 0 || memory > 0; }
};

// A plain value. Whatever the program composes itself is one of these from the start, since a path or a name
// may hold quotes, blanks and line ends; only a text that a site or a script's author wrote is split into
// words.
struct ProgramCall {
    std::vector<std::string> words;  // program and arguments, whatever they hold
    std::string shownAs;             // the command, where messages quote it
    std::string name;                // what it is in a word or two, such as "render 2"
    ChildLimits limits;
};

// Shown by its words with a blank between them, as the messages of the system have it.
ProgramCall CallOf(std::vector<std::string> words, std::string name = {}, ChildLimits limits = {});

}  // namespace tavrin
