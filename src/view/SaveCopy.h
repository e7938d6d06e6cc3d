// SPDX-License-Identifier: Apache-2.0
// A copy of a picture where the user wants it.
#pragma once

#include <QString>
#include <string>

#include "view/PictureBook.h"

namespace tavrin {

// Writes the picture as a file: the bytes of its own file where the kind is the same, else PNG, to which the
// name's ending is then brought. A file that is there is replaced by a whole one. False, with the reason, if
// that fails.
bool SaveCopy(const PictureEntry& entry, std::string path, std::string& error);

// A name for it, such as "marble-12.png".
QString CopyName(const PictureEntry& entry);

}  // namespace tavrin
