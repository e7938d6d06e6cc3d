// SPDX-License-Identifier: Apache-2.0
// The renderer that stays: reads requests, draws the newest, answers.
#pragma once

#include <string>

namespace tavrin::mray {

// Serves until the end of the input; answers go to standard output, a line each:
//
//   ready                 it can draw now
//   program ID new|kept   the shader was compiled, or was so already
//   alive ID              the work goes on; twice a second while there is nothing else to say
//   coarse ID             the coarse picture is written; may come again, with a better one
//   picture ID            the picture is written
//   dropped ID            a newer line came, a request or "stop", behind the first picture
//   refused ID            the shader does not compile; "say" has told why
//   failed ID TEXT        anything else went wrong
//   say ID TEXT           for the user's eyes
//   times ID TEXT         with --timing: where the time went
//
// Each request ends with one of picture, dropped, refused and failed.  killFile: see
// Report; what it stops is "failed ID stopped".  Throws std::runtime_error where nothing can be
// drawn at all, or what comes is no line of text.
void serveLive(int input, const std::string& killFile);

}  // namespace tavrin::mray
