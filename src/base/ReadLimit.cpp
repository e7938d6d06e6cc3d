// SPDX-License-Identifier: Apache-2.0
#include "base/ReadLimit.h"

#include <atomic>

namespace tavrin {

namespace {

std::atomic<uint64_t> g_readLimit = kDefaultReadLimit;

}  // namespace

uint64_t ReadLimit() { return g_readLimit; }

void SetReadLimit(uint64_t bytes) { g_readLimit = bytes; }

std::string TooLarge() {
    const uint64_t limit = ReadLimit();
    const std::string size =
        limit % kMegabyte == 0 ? std::to_string(limit / kMegabyte) + " MB" : std::to_string(limit) + " bytes";
    return "larger than the " + size + " that are read of a file (setting maxfilesize)";
}

}  // namespace tavrin
