// SPDX-License-Identifier: Apache-2.0
// The windows' tests' main: one application for all tests of the process.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QApplication>

#include "support/TestFiles.h"
#include "ui/desk/DeskContext.h"
#include "ui/support/Windows.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    ::umask(022);  // site files that tests write are not for a group to write
    QSurfaceFormat::setDefaultFormat(tavrin::DeskFormat());
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    tavrin::test::WatchToolkit();
    const int missing = tavrin::test::CountMissingTestFiles(TAVRIN_SOURCE_DIR, TAVRIN_TEST_ROOMS);
    const int result = RUN_ALL_TESTS();
    return missing > 0 ? 1 : result;
}
