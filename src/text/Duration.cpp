// SPDX-License-Identifier: Apache-2.0
#include "text/Duration.h"

#include "text/Report.h"

namespace tavrin {

std::string DurationText(std::chrono::milliseconds duration) {
    const auto milliseconds = static_cast<long long>(duration.count());
    const long long seconds = milliseconds / 1000;
    if (seconds < 60) return FormatText("%lld.%lld s", seconds, milliseconds % 1000 / 100);
    return FormatText("%lld:%02lld min", seconds / 60, seconds % 60);
}

}  // namespace tavrin
