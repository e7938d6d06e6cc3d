// SPDX-License-Identifier: Apache-2.0
// SHA-256, as FIPS 180-4 defines it.
#pragma once

#include <string>
#include <string_view>

namespace tavrin {

// The digest as 64 hexadecimal digits in lower case. Unlike a hash of the standard library it is the same in
// every run, and nobody can make another text with it.
std::string Sha256Hex(std::string_view text);

}  // namespace tavrin
