// SPDX-License-Identifier: Apache-2.0
// A file costs no more memory than it has reason to: nothing is allocated by a number of its header alone.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "images/SgiImage.h"
#include "images/SgiTestFile.h"
#include "support/TestSite.h"

namespace {

thread_local size_t* t_requested = nullptr;  // counts what this thread asks for, while it points anywhere

}  // namespace

// All other forms of new and delete come down to these, but for types of a larger alignment.
#if !defined(__SANITIZE_ADDRESS__)
void* operator new(size_t size) {
    if (t_requested != nullptr) *t_requested += size;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
#endif

namespace tavrin {
namespace {

using test::SgiTestFile;
using test::TempDir;

constexpr size_t kPictureBytes = 2000 * 2000 * 4;
constexpr size_t kMayTake = 192 * 1024;  // bytes, more than the tables of any file here

// How many bytes reading the file asks for, all together: not less than it ever holds.
struct Cost {
    size_t bytes = 0;
    bool isRead = false;
};
Cost CostOf(const std::string& bytes) {
    const TempDir directory;
    const std::string path = directory.Write("picture.sgi", bytes);
    Cost cost;
    t_requested = &cost.bytes;
    const CSgiImage image(path, {});
    t_requested = nullptr;
    cost.isRead = image.pixels != nullptr;
    return cost;
}

class SgiMemory : public testing::Test {
  protected:
    void SetUp() override {
#if defined(__SANITIZE_ADDRESS__)
        GTEST_SKIP() << "the sanitizer has operators of its own";
#endif
    }
    static void ExpectRefusedCheaply(const std::string& bytes) {
        const Cost cost = CostOf(bytes);
        EXPECT_FALSE(cost.isRead);
        EXPECT_LE(cost.bytes, kMayTake);
    }
};

TEST_F(SgiMemory, APictureCostsItsPixels) {
    const Cost cost = CostOf(SgiTestFile::Plain(2000, 2000, 4, {1, 2, 3, 4}).Bytes());
    EXPECT_TRUE(cost.isRead);
    EXPECT_GE(cost.bytes, kPictureBytes);
    EXPECT_LE(cost.bytes, kPictureBytes + kMayTake);
}

TEST_F(SgiMemory, VastSizesInASmallFileCostNothing) {
    for (const int width : {1, 4096, 32767}) {
        for (const int height : {1, 4096, 32767}) {
            SgiTestFile file;
            file.width = width;
            file.height = height;
            file.channels = 4;
            ExpectRefusedCheaply(file.Header() + std::string(88, '\0'));
        }
    }
}

// The tables are there, and the last row lies outside the file.
TEST_F(SgiMemory, WholeTablesWithOneBadRowCostTheTables) {
    SgiTestFile file = SgiTestFile::Plain(4, 2000, 3, {});
    file.width = 32767;  // the rows end early
    const std::string bytes = file.Bytes();
    for (const size_t row : {size_t{0}, file.rows.size() - 1}) {
        for (const uint64_t start : {uint64_t{0xFFFFFFFF}, uint64_t{0x80000000}, uint64_t{bytes.size()}}) {
            ExpectRefusedCheaply(test::WithEntry(bytes, file.StartOffset(row), start));
        }
        for (const uint64_t length : {uint64_t{0}, uint64_t{4097}, uint64_t{0xFFFFFFFF}}) {
            ExpectRefusedCheaply(test::WithEntry(bytes, file.LengthOffset(row), length));
        }
    }
}

TEST_F(SgiMemory, NegativeSizesCostNothing) {
    SgiTestFile file = SgiTestFile::Plain(4, 4, 4, {1, 2, 3, 4});
    for (const int size : {0, 0x8000, 0xFFFF}) {
        file.width = size;
        file.height = 4;
        ExpectRefusedCheaply(file.Bytes());
        file.width = 4;
        file.height = size;
        ExpectRefusedCheaply(file.Bytes());
    }
}

}  // namespace
}  // namespace tavrin
