// SPDX-License-Identifier: Apache-2.0
#include "document/DocumentFile.h"

#include <functional>

#include "base/Files.h"

namespace tavrin {

ContentMark MarkOf(std::string_view text) { return std::hash<std::string_view>()(text); }

// A directory cannot be replaced, so nothing of it is lost.
bool DocumentFile::HoldsOther() const {
    if (!PathExists(path) || IsDirectory(path)) return false;
    std::string text;
    std::string unreadable;
    return !held || !ReadWholeFile(path, text, unreadable) || MarkOf(text) != *held;
}

}  // namespace tavrin
