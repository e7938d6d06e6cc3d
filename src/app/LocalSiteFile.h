// SPDX-License-Identifier: Apache-2.0
// The site file of the current directory, which may be anybody's.
#pragma once

#include <string>

namespace tavrin {

// A plain value: what was found there.
struct LocalSiteFile {
    std::string path;     // absolute, for the user; empty if there is no such file
    std::string text;     // what it holds
    std::string problem;  // why it was not read; empty if it was
    bool isOther = true;  // it is none of the files that were told to be known already
};

// Reads `name` in the current directory if the file and the directory that it lies in, and the current one,
// belong to the user or to root and nobody else can write them. That is asked of what was opened, so that
// nobody can put another file in its place meanwhile. A group that has the user alone in it is nobody else.
// `known` are two paths that the file may have, too.
LocalSiteFile ReadLocalSiteFile(const std::string& name, const std::string& known,
                                const std::string& alsoKnown);

}  // namespace tavrin
