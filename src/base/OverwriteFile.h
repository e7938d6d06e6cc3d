// SPDX-License-Identifier: Apache-2.0
// Writing over a file that no other can take the place of.
#pragma once

#include <string>
#include <string_view>

#include "base/ReplaceFile.h"

namespace tavrin {

// Writes over a regular file that is there, in place, as ReplaceFile tells.
bool OverwriteFile(const std::string& path, std::string_view text, std::string& error,
                   const PutAside& putAside);

}  // namespace tavrin
