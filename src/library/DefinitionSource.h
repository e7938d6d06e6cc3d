// SPDX-License-Identifier: Apache-2.0
// What a box was read from, by which it can be told later whether it would still be read so.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

// A file as a directory knows it. Two that are equal are taken for the same contents, as build tools do.
struct FileStamp {
    std::string path;
    uint64_t device = 0;
    uint64_t node = 0;  // 0 for a file that is not there
    int64_t size = 0;
    int64_t seconds = 0;  // of its last change
    int64_t nanoseconds = 0;

    bool operator==(const FileStamp&) const = default;
    bool IsThere() const { return node != 0; }
};
FileStamp StampOf(const std::string& path);

// A plain value, shared by all boxes that were read from one run of the preprocessor, and by their copies.
struct DefinitionSource {
    size_t textHash = 0;           // of the definition as the preprocessor gave it; within one process
    std::vector<FileStamp> files;  // the operator's own, and all that the preprocessor names
    std::string lines;             // the preprocessor's table, as SourceLines reads it; empty for none
    // A file may have been changed between its being read and this being made.
    bool isUncertain = false;
};

// When a run began, as files count time.
using RunStart = int64_t;  // seconds
RunStart BeginRun();

// Of an operator's file and what a run over it has given, right after that run.
std::shared_ptr<const DefinitionSource> SourceOf(const std::string& operatorPath,
                                                 std::string_view preprocessed, RunStart begun);

}  // namespace tavrin
