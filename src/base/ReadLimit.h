// SPDX-License-Identifier: Apache-2.0
// How large a file may be that is read into memory.
#pragma once

#include <cstdint>
#include <string>

namespace tavrin {

inline constexpr uint64_t kMegabyte = 1024 * 1024;  // bytes
inline constexpr uint64_t kDefaultReadLimit = 256 * kMegabyte;

// One for the whole process, since files are read in every room. A larger file is refused with the text of
// TooLarge and costs no memory. Any thread.
uint64_t ReadLimit();
void SetReadLimit(uint64_t bytes);

// "larger than the 256 MB that are read of a file (setting maxfilesize)".
std::string TooLarge();

}  // namespace tavrin
