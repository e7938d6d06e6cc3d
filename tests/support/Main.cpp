// SPDX-License-Identifier: Apache-2.0
// The unit tests' main: runs them, and fails if a test file on disk has no test in this program.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TestFiles.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    ::umask(022);  // site files that tests write are not for a group to write
    const int missing = tavrin::test::CountMissingTestFiles(TAVRIN_SOURCE_DIR, TAVRIN_TEST_ROOMS);
    const int result = RUN_ALL_TESTS();
    return missing > 0 ? 1 : result;
}
