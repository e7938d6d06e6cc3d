// SPDX-License-Identifier: Apache-2.0
// Saving what a user would miss.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tavrin {

// A whole copy of what is about to be written over a file. It stays when this goes, unless it was removed.
class SafeCopy {
  public:
    virtual ~SafeCopy() = default;

    virtual void Remove() = 0;
    virtual std::string Path() const = 0;
};

// Makes one; null, with the reason in `error`, if that fails.
using PutAside = std::function<std::unique_ptr<SafeCopy>(std::string& error)>;

// Saves so that whatever fails the old file is whole. The text is written beside the file, flushed to the
// disk and renamed over it; the file keeps its owner, group, permissions and extended attributes. A symbolic
// link is followed to the file that it names, which need not be there.
//
// A file that this would change or cannot reach is written in place instead: one with several names, one
// whose directory lets nobody make files, one whose owner or attributes cannot be given to another. Before
// that `putAside` is called, and if no copy can be made the file is left as it is. A write in place that
// fails puts back what was there; if even that fails, the copy stays and `error` names it. Without
// `putAside`, for texts that can be had again, only a kill in the middle of such a write can do harm. Devices
// (such as /dev/null) are simply written to.
bool ReplaceFile(const std::string& path, std::string_view text, std::string& error,
                 const PutAside& putAside = {});

// Makes a file that is not there, whole or not at all: what `write` puts where the file stands (false, with
// `errno` set, if it cannot) is flushed to the disk beside its place before it gets its name. Whatever has
// come to stand at the path by then is left alone; that is the error EEXIST. 0, or the error number.
int MakeNewFile(const std::string& path, const std::function<bool(int file)>& write);

// Whether a file could be made there or renamed over what is there, as far as can be told without doing it.
bool CanReplaceFile(const std::string& path, std::string& error);

// Removes what saves that were killed have left in a directory, or beside the file that a path leads to:
// files of this user whose names only ReplaceFile gives, and that nobody is writing any more. Costs one
// listing of the directory.
void ClearAbandonedSaves(const std::string& directory);
void ClearAbandonedSavesBeside(std::string path);

}  // namespace tavrin
