// SPDX-License-Identifier: Apache-2.0
#include "site/ProgramCall.h"

#include <utility>

namespace tavrin {

ProgramCall CallOf(std::vector<std::string> words, std::string name, ChildLimits limits) {
    std::string line;
    for (const std::string& word : words) {
        if (!line.empty()) line += ' ';
        line += word;
    }
    return {std::move(words), std::move(line), std::move(name), std::move(limits)};
}

}  // namespace tavrin
