// SPDX-License-Identifier: Apache-2.0
// What a file has beside its content.
#pragma once

#include <sys/stat.h>

#include <string>

namespace tavrin {

// Gives the open file the owner, group, permissions and extended attributes, access lists among them, of the
// file at `path`, of which `status` tells. False if one of them cannot be given; labels that the system puts
// on files by itself do not count.
bool TakeAttributes(int file, const std::string& path, const struct stat& status);

}  // namespace tavrin
