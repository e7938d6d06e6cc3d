// SPDX-License-Identifier: Apache-2.0
// Every source says under which license it may be used.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/TestSite.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;

bool IsSource(const fs::path& path) { return path.extension() == ".cpp" || path.extension() == ".h"; }

TEST(LicenseRules, EverySourceNamesItsLicenseInItsFirstLine) {
    int sources = 0;
    for (const char* folder : {"src", "tests", "bench", "fuzz", "renderers"}) {
        for (const auto& entry : fs::recursive_directory_iterator(test::SourcePath(folder))) {
            if (!entry.is_regular_file() || !IsSource(entry.path())) continue;
            std::ifstream file(entry.path());
            std::string line;
            std::getline(file, line);
            EXPECT_EQ(line, "// SPDX-License-Identifier: Apache-2.0") << entry.path();
            ++sources;
        }
    }
    EXPECT_GT(sources, 500);
}

}  // namespace
}  // namespace tavrin
