// SPDX-License-Identifier: Apache-2.0
// Files and directories as the system needs them. Nothing here reports to the user: an operation that
// fails returns false and leaves the platform's words for the error where the caller asks for them.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

// Reads a whole regular file, of which no more than ReadLimit bytes may be there. On failure `error` holds
// the platform's message, or that of the limit, and `text` is empty.
bool ReadWholeFile(const std::string& path, std::string& text, std::string& error);
// The same of a file that is open and whose beginning comes next; it stays open.
bool ReadOpenFile(int file, std::string& text, std::string& error);

// Writes in place, replacing what was there. For work files that can be made again.
bool WriteWholeFile(const std::string& path, std::string_view text, std::string& error);

// The same for a file of a directory that is this user's own, and below it: `name` may lead through further
// directories. A directory of somebody else is refused, and links are followed neither there nor from there.
bool WriteOwnFile(const std::string& directory, const std::string& name, std::string_view text,
                  std::string& error);

// Creates one directory; 0, or the error number.
int MakeDirectory(const std::string& path);

bool PathExists(const std::string& path);
bool IsDirectory(const std::string& path);
// Whether both lead to one file that is there, by whatever way.
bool IsSameFile(const std::string& one, const std::string& other);

// What a directory lists of one of its members.
struct DirEntry {
    std::string name;
    bool isDirectory = false;  // symbolic links to directories count
};

// Every entry but "." and "..", in no order. False if the directory cannot be listed.
bool ListDirectory(const std::string& path, std::vector<DirEntry>& entries);

// Removes a directory and what is in it. Directories whose name begins with '.' are left, so that their
// parent stays as well; links are removed and never followed, also where `path` itself is one. Each
// directory that could not be removed is named to `log` as "unable to remove PATH", and makes the result
// false. A path that cannot be listed is left alone and counts as success.
bool RemoveTree(const std::string& path, const std::function<void(const std::string&)>& log);

// Whether RemoveTree would leave nothing of it, as far as that can be told without trying. A directory `own`
// right below it is none of those that are left for their name: the caller removes it first.
bool CanRemoveTree(const std::string& path, std::string_view own = {});

// Makes sure that there is a directory in which files can be made, with missing parents.
bool MakeWritableDirectory(const std::string& path, std::string& error);

// Copies the files of a directory tree, making `to` and missing parents. False with `error` at the first
// failure.
bool CopyTree(const std::string& from, const std::string& to, std::string& error);

}  // namespace tavrin
