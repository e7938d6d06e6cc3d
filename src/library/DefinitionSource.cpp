// SPDX-License-Identifier: Apache-2.0
#include "library/DefinitionSource.h"

#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <functional>

#include "library/SourceLines.h"

namespace tavrin {

namespace {

// Some file systems count whole or every second second.
constexpr RunStart kCoarseness = 2;

}  // namespace

FileStamp StampOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return {path};
    return {path,
            static_cast<uint64_t>(status.st_dev),
            static_cast<uint64_t>(status.st_ino),
            static_cast<int64_t>(status.st_size),
            static_cast<int64_t>(status.st_mtim.tv_sec),
            static_cast<int64_t>(status.st_mtim.tv_nsec)};
}

RunStart BeginRun() { return static_cast<RunStart>(std::time(nullptr)); }

std::shared_ptr<const DefinitionSource> SourceOf(const std::string& operatorPath,
                                                 std::string_view preprocessed, RunStart begun) {
    auto source = std::make_shared<DefinitionSource>();
    const size_t end = EndOfDefinition(preprocessed);
    source->textHash = std::hash<std::string_view>()(preprocessed.substr(0, end));
    source->lines = preprocessed.substr(end);
    std::vector<std::string> paths = SourceLines(source->lines).Files();
    std::erase(paths, operatorPath);
    paths.insert(paths.begin(), operatorPath);
    for (const std::string& path : paths) {
        const FileStamp& stamp = source->files.emplace_back(StampOf(path));
        source->isUncertain = source->isUncertain || stamp.seconds + kCoarseness >= begun;
    }
    return source;
}

}  // namespace tavrin
