// SPDX-License-Identifier: Apache-2.0
// What a renderer that stays is asked to draw.
#pragma once

#include "Options.h"

namespace tavrin::mray {

struct LiveRequest {
    std::string id;  // the asker's own word for it
    Options options;
};

// A request that cannot be understood; its id is empty where even that is missing.
struct RequestError : std::runtime_error {
    RequestError(std::string of, const std::string& why) : std::runtime_error(why), id(std::move(of)) {}
    std::string id;
};

// Reads "draw ID WORD...", the words being those of a command line.  In a word, %XX is
// the byte of that number.  Throws RequestError.
LiveRequest parseRequest(const std::string& line);

}  // namespace tavrin::mray
