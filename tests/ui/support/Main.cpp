// The windows' tests' main: one application for all tests of the process.
#include <gtest/gtest.h>

#include <QApplication>
#include <QSurfaceFormat>

#include "support/TestFiles.h"
#include "ui/support/Windows.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QSurfaceFormat format;
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    tavrin::test::WatchToolkit();
    const int missing = tavrin::test::CountMissingTestFiles(TAVRIN_SOURCE_DIR, TAVRIN_TEST_ROOMS);
    const int result = RUN_ALL_TESTS();
    return missing > 0 ? 1 : result;
}
