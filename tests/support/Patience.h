// SPDX-License-Identifier: Apache-2.0
// How long a test waits for what has to come.
#pragma once

#include <chrono>

namespace tavrin::test {

// Far more than anything in a test takes, also on a machine that has much else to do: a test that has waited
// so long has failed.
inline constexpr std::chrono::seconds kPatience{90};

}  // namespace tavrin::test
