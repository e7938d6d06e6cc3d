// SPDX-License-Identifier: Apache-2.0
// Whether every test file on disk became part of the program that runs.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <set>
#include <sstream>
#include <string>

namespace tavrin::test {

// A source file as the compiler names it, below the source tree: a compiler cache that serves several trees
// makes the names relative to the build.
inline std::string BelowSource(std::string file, const std::string& sourceDir) {
    if (file.starts_with(sourceDir + "/")) return file.substr(sourceDir.size() + 1);
    while (file.starts_with("../")) file.erase(0, 3);
    return file;
}

inline std::set<std::string> TestFilesInProgram(const std::string& sourceDir) {
    std::set<std::string> files;
    const auto& all = *testing::UnitTest::GetInstance();
    for (int suite = 0; suite < all.total_test_suite_count(); ++suite) {
        const auto& tests = *all.GetTestSuite(suite);
        for (int test = 0; test < tests.total_test_count(); ++test)
            files.insert(BelowSource(tests.GetTestInfo(test)->file(), sourceDir));
    }
    return files;
}

// Names on standard error each test file of the rooms that has no test in this program, and counts them.
// `rooms` are folders below `sourceDir` joined by ':'; one with '-' before it is left out of the others.
inline int CountMissingTestFiles(const std::string& sourceDir, const std::string& rooms) {
    namespace fs = std::filesystem;
    std::set<std::string> onDisk;
    std::set<std::string> leftOut;
    std::istringstream list(rooms);
    for (std::string room; std::getline(list, room, ':');) {
        const bool without = room.starts_with('-');
        const fs::path folder = fs::path(sourceDir) / room.substr(without ? 1 : 0);
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            const std::string path = BelowSource(entry.path().string(), sourceDir);
            if (path.ends_with("_test.cpp")) (without ? leftOut : onDisk).insert(path);
        }
    }
    const std::set<std::string> built = TestFilesInProgram(sourceDir);
    int missing = 0;
    for (const std::string& file : onDisk) {
        if (leftOut.contains(file) || built.contains(file)) continue;
        std::cerr << file << ": this test file did not become part of the tests; configure the build again\n";
        ++missing;
    }
    return missing;
}

}  // namespace tavrin::test
