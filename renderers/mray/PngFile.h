// SPDX-License-Identifier: Apache-2.0
// Writing of PNG files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavrin::mray {

// Writes 8-bit sRGB pixels, three bytes each, top row first.  The file appears
// under its name only when it is complete.  Throws std::runtime_error.
void writePng(const std::string& path, int width, int height, const std::vector<std::uint8_t>& pixels);

}  // namespace tavrin::mray
