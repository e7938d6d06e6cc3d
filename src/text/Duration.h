// SPDX-License-Identifier: Apache-2.0
// How long something took, as users are told.
#pragma once

#include <chrono>
#include <string>

namespace tavrin {

// "2.3 s", from a minute on "1:05 min".
std::string DurationText(std::chrono::milliseconds duration);

}  // namespace tavrin
