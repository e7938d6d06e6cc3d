// The unit tests' main: runs them, and fails if a test file on disk has no test in this program.
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <set>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

std::set<std::string> TestFilesOnDisk() {
    std::set<std::string> files;
    std::istringstream rooms(TAVRIN_TEST_ROOMS);
    for (std::string room; std::getline(rooms, room, ':');) {
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(TAVRIN_SOURCE_DIR) / room)) {
            const std::string path = entry.path().string();
            if (path.ends_with("_test.cpp")) files.insert(path);
        }
    }
    return files;
}

std::set<std::string> TestFilesInProgram() {
    std::set<std::string> files;
    const auto& all = *testing::UnitTest::GetInstance();
    for (int suite = 0; suite < all.total_test_suite_count(); ++suite) {
        const auto& tests = *all.GetTestSuite(suite);
        for (int test = 0; test < tests.total_test_count(); ++test)
            files.insert(tests.GetTestInfo(test)->file());
    }
    return files;
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const std::set<std::string> built = TestFilesInProgram();
    int missing = 0;
    for (const std::string& file : TestFilesOnDisk()) {
        if (built.contains(file)) continue;
        std::cerr << file << ": this test file did not become part of the tests; configure the build again\n";
        ++missing;
    }
    const int result = RUN_ALL_TESTS();
    return missing > 0 ? 1 : result;
}
