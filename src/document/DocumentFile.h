// SPDX-License-Identifier: Apache-2.0
// The file that a document is saved to, as the program has seen it last.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

// Stands for what a file holds: files that hold the same have the same mark, others do not.
using ContentMark = uint64_t;
ContentMark MarkOf(std::string_view text);

// Shared by the document and by the copies of it that the history of renders keeps, so that a copy goes back
// to the same file and knows what the document has written there since.
struct DocumentFile {
    std::string path;                 // empty while nobody has said where to
    std::optional<ContentMark> held;  // when it was read or written last; nothing before that
    bool cutShort = false;            // an error kept part of it from being read, which is still there
    std::string copyOf;               // the file of which the document began as a copy; empty for none

    // What stands at the path now. A directory cannot be replaced, so it counts as nothing new.
    enum class Now {
        kAsKnown,  // what was read or written last, or nothing where nothing was
        kUnknown,  // something that was never read
        kChanged,  // somebody has written something else there since
        kGone,     // somebody has removed it since
    };
    Now Look() const;
    // What is there is neither what was read from it nor what was written to it: saving would lose it.
    bool HoldsOther() const;
};

// Where the contents of a document come from and go to.
struct DocumentOrigin {
    std::shared_ptr<DocumentFile> file;     // null if nobody knows it
    std::shared_ptr<DocumentFile> cutFile;  // what was not read to its end for them; null if they are whole
    bool isForeign = false;                 // they were read from a file that the user has not written here
};

}  // namespace tavrin
