// SPDX-License-Identifier: Apache-2.0
#include "document/DocumentFile.h"

#include <functional>

#include "base/Files.h"

namespace tavrin {

ContentMark MarkOf(std::string_view text) { return std::hash<std::string_view>()(text); }

// Not by its time: one that was only touched, or written again as it was, holds nothing that could be lost.
DocumentFile::Now DocumentFile::Look() const {
    if (!PathExists(path)) return held ? Now::kGone : Now::kAsKnown;
    if (IsDirectory(path)) return Now::kAsKnown;
    if (!held) return Now::kUnknown;
    std::string text;
    std::string unreadable;
    const bool isSame = ReadWholeFile(path, text, unreadable) && MarkOf(text) == *held;
    return isSame ? Now::kAsKnown : Now::kChanged;
}

bool DocumentFile::HoldsOther() const {
    const Now now = Look();
    return now == Now::kUnknown || now == Now::kChanged;
}

}  // namespace tavrin
