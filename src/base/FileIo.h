// SPDX-License-Identifier: Apache-2.0
// What the operations on files have in common: whole writes, locks that tell who lives, names nobody has.
#pragma once

#include <string>
#include <string_view>

#include "base/FileDescriptor.h"

namespace tavrin {

// Sets `error` to the platform's words for the error number; false.
bool FailWith(std::string& error, int number);

// Writes all of the text where the file stands; if not, false, and `errno` tells why.
bool WriteAll(int file, std::string_view text);

// Letters and digits that nobody can foresee.
std::string RandomLetters(size_t count);

// Locks an open file or directory without waiting, until its last descriptor is closed: by its owner's end at
// the latest, whatever that is. False with EWOULDBLOCK in `errno` if another has locked it; with another
// error the file system knows no locks, and nobody can be told to be gone.
bool TryLock(const FileDescriptor& file);

// Whether the path, not followed where it is a link, still leads to what is open there. One who has locked a
// file asks this: it may have been taken away in between, and then keeps nobody out.
bool LeadsTo(const std::string& path, const FileDescriptor& file);

// Opens a directory of this user's own, links not followed. None, with `errno` set, if it is none.
FileDescriptor OpenOwnDirectory(const std::string& path);

}  // namespace tavrin
