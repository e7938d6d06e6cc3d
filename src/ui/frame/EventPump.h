// SPDX-License-Identifier: Apache-2.0
// Letting the program live while a script waits.
#pragma once

#include <chrono>

namespace tavrin {

// Handles all events that wait; if none did, waits up to `wait` for one and handles it. Sleeps meanwhile.
void PumpEvents(std::chrono::milliseconds wait);

}  // namespace tavrin
