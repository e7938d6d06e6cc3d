// SPDX-License-Identifier: Apache-2.0
// The files that a picture is made from, and the place that it goes to.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tavrin::mray {

// These throw std::runtime_error with what to do about it.

// The text of a shader; one that is empty is a failure.
std::string readShader(const std::string& path);

// The numbers for a shader's block of values, apart by blanks or line ends, at most
// kMostValues: so much holds the block of every driver.
inline constexpr std::size_t kMostValues = 4096;
std::vector<float> readValues(const std::string& path);

// Whether a picture can be written there is better told before the work than after it.
void checkOutput(const std::string& path);

}  // namespace tavrin::mray
