// SPDX-License-Identifier: Apache-2.0
// The two dialogs in which paths of an export are chosen.
#pragma once

#include <string>

class QWidget;

namespace tavrin {

// "Select Location": the user picks a directory, and the path's file name stays. True if `path` now lies in
// the directory chosen; false, with `path` as it was, if the user cancels. Nothing is asked about files that
// are there already.
bool SelectLocation(std::string& path, QWidget* owner);

// What a path is chosen for.
enum class FilePurpose {
    kRead,   // a file that is there is taken
    kWrite,  // a file that is there will be overwritten, which the user is asked about
};

// "Select File": any file name, whether there is such a file or not. True if `path` is the one chosen;
// false, with `path` as it was, if the user cancels.
bool SelectFile(std::string& path, QWidget* owner, FilePurpose purpose);

}  // namespace tavrin
