// SPDX-License-Identifier: Apache-2.0
// A copy of what is about to be written over a document, kept with those of unsaved work.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/ReplaceFile.h"

namespace tavrin {

// Puts the text into "recovery" below the state directory, where the next start of the window program finds
// it and offers it, unless it was removed. Null, with the reason in `error`, if that fails.
std::unique_ptr<SafeCopy> MakeSafeCopy(const std::string& stateDirectory, const std::string& documentPath,
                                       std::string_view text, std::string& error);

}  // namespace tavrin
